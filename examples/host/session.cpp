#include "host/session.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

// The words that are commands of ive_do: their numbers, and the word that may follow, "*" for any. With other
// words they are calls by name, as all others.
constexpr int leave = -1;
struct Command {
    int number;
    std::string word;
};
const std::map<std::string, Command> commands = {{"whos", {kn_host_list_lines, "global"}},
                                                 {"who", {kn_host_list_names, "global"}},
                                                 {"help", {kn_host_show_help, "*"}},
                                                 {"dir", {kn_host_list_files, "*"}},
                                                 {"ls", {kn_host_list_files, "*"}},
                                                 {"clc", {kn_host_clear_screen, ""}},
                                                 {"lookfor", {kn_host_search_help, "*"}},
                                                 {"helpwin", {kn_host_help_window, "*"}},
                                                 {"which", {kn_host_find_file, "*"}},
                                                 {"openvar", {kn_host_open_variable, "*"}},
                                                 {"memory", {kn_host_memory_use, ""}},
                                                 {"version", {kn_host_show_version, ""}},
                                                 {"exit", {leave, ""}},
                                                 {"quit", {leave, ""}}};

// What open files hold back: after an error a user looks into them, or ends the host.
void write_out_files() {
    const Mm fids = fopen(TM("all"));
    for (int k = 1; k <= fids.size(); ++k) fflush(Mm(fids(k)));
}

// Asked by the library in its long calls.
int poll() {
    std::fflush(stdout);
    if (console::take_break()) fail("Ctrl-C");
    return 0;
}

} // namespace

Session *Session::current = nullptr;

Session::Session(const std::string &host_directory)
    : path_(kn_new_path_record(host_directory.c_str())),
      stack_(*reinterpret_cast<kn_error_stack_t *>(ive(kn_host_error_stack))) {
    current = this;
    ive(kn_host_interactive); // interactive: named values register
    ive(kn_host_set_eval, nullptr, reinterpret_cast<void *>(eval_hook));
    ive(kn_host_set_input, nullptr, reinterpret_cast<void *>(console::input));
    ive(kn_host_set_path, nullptr, path_);
    feval_func = feval_hook;
    kn_poll_handler = poll;
    evaluator_.define("run", [this](const Values &arguments, int) { return run_script(arguments); });
}

Session::~Session() {
    evaluator_.forget();
    kn_poll_handler = nullptr;
    ive(kn_host_set_path);
    kn_delete_path_record(path_);
}

// ---- Lines ----

void Session::run_console() {
    run_lines(
        "console",
        [](std::string &line, bool continued) { return console::read(line, continued ? "   " : ">> "); },
        true);
}

// run('file'): carries out a text file of statements.
Values Session::run_script(const Values &arguments) {
    if (arguments.size() != 1 || !arguments[0].isstr()) fail("run: needs the name of a file");
    const std::string file = text_of(arguments[0]);
    std::ifstream stream(file);
    if (!stream) fail("run: can't open " + file);
    auto next = [&](std::string &line, bool) { return getline(stream, line) ? Line::read : Line::ended; };
    run_lines(file, next, false);
    return {x_M};
}

// Carries out the lines one by one; those that belong together as one. With `survives` an error is shown and
// the next line follows; else it goes to the caller, and what was pushed here stays on the stack of source
// positions for its report.
void Session::run_lines(const std::string &file, const LineSource &next, bool survives) {
    const int caller = stack_.depth;
    const int entry = ++stack_.depth; // there are 512, far more than texts can nest
    stack_.file[entry] = files_.insert(file).first->c_str();
    stack_.line[entry] = 0;

    std::string text, line;
    while (!finished_) {
        stack_.line_ptr = &stack_.line[entry];
        const Line got = next(line, !text.empty());
        const bool last = got == Line::ended;
        if (last && text.empty()) break;
        if (got == Line::broken) {
            text.clear();
            continue;
        }
        if (!last) ++*stack_.line_ptr, text += line;
        const Outcome outcome = survives ? attempt(text, last) : execute(text, last);
        if (outcome == incomplete)
            text += '\n';
        else
            text.clear();
        if (outcome == failed) variables_scope.reset();
        if (last) break;
    }
    stack_.depth = caller;
    stack_.line_ptr = &stack_.line[caller];
}

// A whole text is complete: no further line follows. Its statements show no values.
Session::Outcome Session::execute(const std::string &text, bool whole) {
    struct Nesting {
        explicit Nesting(int &depth) : depth_(depth) { ++depth_; }
        ~Nesting() { --depth_; }
        int &depth_;
    } nesting(nesting_);
    if (nesting_ > 100) fail("Scripts and evaluated texts are nested too deeply");
    const auto program =
        parse(text, [this](const std::string &word, bool alone) { return is_command(word, alone); });
    if (!program && whole) fail("The text ends inside a statement");
    if (!program) return incomplete;
    for (const Statement &statement : *program) {
        if (finished_) break;
        poll();
        if (statement.is_command)
            command(statement, whole);
        else
            evaluator_.run(statement, whole);
    }
    return done;
}

// The same; an error is shown with the calls that led to it, which are then taken off the stack.
Session::Outcome Session::attempt(const std::string &text, bool whole) {
    const int depth = stack_.depth;
    try {
        return execute(text, whole);
    } catch (const char *) { // what error() throws; it keeps the text
        error_lasterr();
        write_out_files();
    } catch (const std::exception &e) {
        kn_printf("error: %s\n\n", e.what());
    }
    stack_.depth = depth;
    stack_.line_ptr = &stack_.line[depth];
    return failed;
}

// ---- Commands ----

// A command of the table, or any name followed by words that is neither a variable nor a constant.
bool Session::is_command(const std::string &word, bool alone) const {
    return (!alone || commands.count(word)) && !Evaluator::is_value(word);
}

// A call with texts, where it isn't one of the table: format long
void Session::command(const Statement &statement, bool quiet) {
    const auto found = commands.find(statement.word);
    const std::string word = statement.words.empty() ? "" : statement.words[0];
    const bool direct = found != commands.end() && statement.words.size() < 2 &&
                        (word.empty() || found->second.word == "*" || found->second.word == word);
    if (!direct) {
        Step arguments = {'(', "", {}};
        for (const std::string &text : statement.words) arguments.arguments.push_back({Node::text, 0, text});
        Statement call = statement;
        call.node = {Node::reference, 0, statement.word, {}, {arguments}};
        return evaluator_.run(call, quiet);
    }
    char text[2048] = "";
    switch (const int number = found->second.number) {
    case leave: finished_ = true; break;
    case kn_host_find_file:
        ive(kn_host_find_file, text, word.c_str());
        kn_printf("%s\n", text);
        break;
    case kn_host_show_version:
        ive(kn_host_show_version, nullptr, text);
        kn_printf("%s\n", text);
        break;
    default: ive(static_cast<kn_host_command>(number), nullptr, word.c_str());
    }
}

// ---- Hooks ----

// The library's eval: "eval_result_7=text", where the variable is one of the library's.
int Session::eval_hook(const char *statement) { return current->attempt(statement, true) == failed; }

// The library's feval: the host's own functions first.
Mm Session::feval_hook(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6) {
    const std::string name = text_of(f);
    if (!current->evaluator_.defines(name)) return kn_feval(f, args, i_o, y1, y2, y3, y4, y5, y6);
    Values arguments;
    for (int k = 1; k <= args.size(); ++k) arguments.push_back(args.safebr(k));
    Mm *const outputs[] = {&y1, &y2, &y3, &y4, &y5, &y6};
    const Values results =
        current->evaluator_.call(name, arguments, nargout_set ? static_cast<int>(nargout()) : 1);
    for (size_t k = 0; k < results.size() && k < std::size(outputs); ++k) *outputs[k] = results[k];
    return x_M;
}
