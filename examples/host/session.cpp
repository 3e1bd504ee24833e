#include "host/session.h"

#include <cctype>
#include <fstream>
#include <sstream>

namespace {

// The words that are commands of ive_do, with their numbers, of which some need more than their argument.
enum { forget = 4, where = 33, version_text = 37, leave = -1 };
const std::map<std::string, int> commands = {{"clear", forget},
                                             {"whos", 9},
                                             {"who", 11},
                                             {"help", 13},
                                             {"dir", 14},
                                             {"ls", 14},
                                             {"clc", 21},
                                             {"lookfor", 31},
                                             {"helpwin", 32},
                                             {"which", where},
                                             {"openvar", 35},
                                             {"memory", 36},
                                             {"version", version_text},
                                             {"exit", leave},
                                             {"quit", leave}};

std::vector<std::string> words_of(const std::string &text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

} // namespace

Session *Session::current = nullptr;

Session::Session(const std::string &host_directory)
    : path_(kn_new_path_record(host_directory.c_str())),
      stack_(*reinterpret_cast<kn_error_stack_t *>(ive(6))) {
    current = this;
    ive(0); // interactive: named values register
    ive(12, nullptr, reinterpret_cast<void *>(eval_hook));
    ive(17, nullptr, reinterpret_cast<void *>(console::input));
    ive(20, nullptr, path_);
    feval_func = feval_hook;
    evaluator_.define("run", [this](const Values &arguments, int) { return run_script(arguments); });
}

Session::~Session() {
    evaluator_.forget("");
    ive(20);
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

// A whole text has nothing behind it that could complete it, and shows nothing.
Session::Outcome Session::execute(const std::string &text, bool whole) {
    struct Nesting {
        explicit Nesting(int &depth) : depth_(depth) { ++depth_; }
        ~Nesting() { --depth_; }
        int &depth_;
    } nesting(nesting_);
    if (nesting_ > 100) fail("Scripts and evaluated texts are nested too deeply");
    const auto program =
        parse(text, [this](const std::string &word, char next) { return is_command(word, next); });
    if (!program && whole) fail("The text ends inside a statement");
    if (!program) return incomplete;
    for (const Statement &statement : *program) {
        if (finished_) break;
        if (console::take_break()) fail("Ctrl-C");
        if (statement.is_command)
            command(statement.word, statement.argument);
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
    } catch (const std::exception &e) {
        kn_printf("error: %s\n\n", e.what());
    }
    stack_.depth = depth;
    stack_.line_ptr = &stack_.line[depth];
    return failed;
}

// ---- Commands ----

// One of the table; or any name with a word behind it, which is a call with texts: format long
bool Session::is_command(const std::string &word, char next) const {
    const bool known = commands.count(word) || std::isalpha(static_cast<unsigned char>(next));
    return known && !Evaluator::find(word);
}

void Session::command(const std::string &word, const std::string &argument) {
    const auto found = commands.find(word);
    const int number = found == commands.end() ? 0 : found->second;
    char text[2048] = "";
    switch (number) {
    case 0: {
        Values arguments;
        for (const std::string &w : words_of(argument)) arguments.push_back(TM(w.c_str()));
        evaluator_.call(word, arguments, 0);
        break;
    }
    case leave: finished_ = true; break;
    case forget:
        if (argument.empty()) evaluator_.forget("");
        for (const std::string &name : words_of(argument)) evaluator_.forget(name);
        break;
    case where:
        ive(where, text, argument.c_str());
        kn_printf("%s\n", text);
        break;
    case version_text:
        ive(version_text, nullptr, text);
        kn_printf("%s\n", text);
        break;
    default: ive(number, nullptr, argument.c_str());
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
