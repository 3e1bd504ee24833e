// Writes the reference from the public headers: generator <directory of quorvex/*.h> <directory for the
// results>.
//
//     help_texts.cpp                   the text of each function, for `help name` in a host
//     html/<header>.html, index.html   a page for each header, and all functions by the language's names
//     man/quorvex-<header>.3quorvex    the same page; a page for each function that refers to it
//
// Functions are those of the row lists (QUORVEX_..._COUNTS and the lists that make declarations). The text of
// a function is the block of comment above its declaration, or above the list that declares it; the first
// block of a header is the introduction of its page, and is also shown for functions without a text. A
// declaration whose form is not in its row, or a function without declaration or text, is an error.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "host/renamed.h"

namespace fs = std::filesystem;
using std::string;
using Lines = std::vector<string>;

namespace {

struct Function {
    string name, word, description, header;
    std::vector<string> forms;
    Lines usage, text;
};

struct Page {
    string name; // of the header
    Lines introduction;
    std::vector<string> functions;
};

std::map<string, Function> functions; // by C++ name
std::map<string, Page> pages;
int faults = 0; // of the headers

Lines read(const fs::path &path) {
    std::ifstream in(path);
    Lines lines;
    for (string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

string word_of(const string &name) { return kn::word_of(name.c_str()); }

bool is_word(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// The comment of a line that begins with one.
string comment_of(const string &line) {
    const size_t at = line.find("//");
    const string rest = line.substr(at + 2);
    return rest.starts_with(" -- ") ? rest.substr(4) : rest.starts_with(' ') ? rest.substr(1) : rest;
}

bool is_comment(const string &line) { return line.starts_with("//"); }

// The rows of the lists.
void collect_rows(const Lines &lines) {
    static const std::regex row(R"re(ROW\((\w+), "([^"]*)"((?:, *[\w]+)*)\))re"), count(R"(\w+)");
    for (const string &line : lines) {
        if (is_comment(line)) continue; // an example
        for (std::sregex_iterator r(line.begin(), line.end(), row), end; r != end; ++r) {
            const string name = (*r)[1], counts = (*r)[3];
            if (name.starts_with("kn_")) continue;
            Function &f = functions[name];
            f.name = name, f.word = word_of(name), f.description = (*r)[2];
            for (std::sregex_iterator c(counts.begin(), counts.end(), count); c != end; ++c)
                f.forms.push_back(c->str());
        }
    }
}

// "[y, i] = max(a)" from the parameters of a declaration.
string usage(const string &word, const string &parameters) {
    string inputs, outputs;
    bool behind = false;
    string part;
    for (size_t at = 0; at <= parameters.size(); ++at) {
        if (at < parameters.size() && parameters[at] != ',') {
            part += parameters[at];
            continue;
        }
        if (part.find("i_o_t") != string::npos) {
            behind = true;
        } else if (size_t end = part.find_last_not_of(" &"); end != string::npos) {
            size_t begin = end;
            while (begin > 0 && is_word(part[begin - 1])) --begin;
            string &list = behind ? outputs : inputs;
            list += (list.empty() ? "" : ", ") + part.substr(begin, end + 1 - begin);
        }
        part.clear();
    }
    return (outputs.empty() ? "" : "[" + outputs + "] = ") + word + "(" + inputs + ")";
}

// The same from a form of a row.
string usage_of_form(const string &word, const string &form) {
    static const char *const in[] = {"a", "b", "c", "d", "e", "f"}, *const out[] = {"x", "y", "z",
                                                                                    "u", "v", "w"};
    string inputs, outputs;
    const int n = std::stoi(form);
    for (int k = 0; k < n; ++k) inputs += (k ? ", " : "") + string(in[k]);
    if (form.find("_names") != string::npos) return word + " " + inputs + " variables ...";
    if (form.find("_list") != string::npos) inputs += ", ...";
    if (const size_t to = form.find("_to_"); to != string::npos)
        for (int k = 0, m = std::stoi(form.substr(to + 4)); m > 1 && k < m; ++k)
            outputs += (k ? ", " : "") + string(out[k]);
    return (outputs.empty() ? "" : "[" + outputs + "] = ") + word + "(" + inputs + ")";
}

// The form of a declaration, as its row must have it but for "_to_0": "2", "1_to_2", "1_names", and "2_list"
// when the last input is called list.
string form_of(const string &parameters) {
    const size_t outputs = parameters.find("i_o_t");
    auto commas = [](const string &list) { return std::count(list.begin(), list.end(), ','); };
    if (outputs != string::npos)
        return std::to_string(commas(parameters.substr(0, outputs))) + "_to_" +
               std::to_string(commas(parameters.substr(outputs)));
    if (parameters.find("kn_names") != string::npos) return std::to_string(commas(parameters)) + "_names";
    return std::to_string(commas(parameters) + !parameters.empty()) +
           (parameters.ends_with("&list") ? "_list" : "");
}

// What a way to call gives and takes, without names: two outputs and three inputs are "2:3".
string shape_of(const string &use) {
    const size_t open = use.find('('), equals = use.find(" = ");
    auto items = [](const string &list) {
        return list.empty() ? 0 : 1 + std::count(list.begin(), list.end(), ',');
    };
    const string inputs = open == string::npos ? "" : use.substr(open + 1, use.find(')', open) - open - 1);
    return std::to_string(equals < open ? items(use.substr(0, equals)) : 0) + ":" +
           std::to_string(items(inputs));
}

// The forms of the row that no declaration shows, since a list makes them.
void complete_usage(Function &f) {
    for (const string &form : f.forms) {
        const string use = usage_of_form(f.word, form);
        if (std::none_of(f.usage.begin(), f.usage.end(),
                         [&](auto &u) { return shape_of(u) == shape_of(use); }))
            f.usage.push_back(use);
    }
    std::stable_sort(f.usage.begin(), f.usage.end(),
                     [](auto &a, auto &b) { return shape_of(a) < shape_of(b); });
}

// Texts and uses of the functions that a header declares.
void collect_texts(const string &header, const Lines &lines) {
    static const std::regex declared(
        R"((?:QUORVEX_API|inline) (?:\w+ )+(\w+)\(([^()]*)\)[^/]*(?:// ?(.*))?)"),
        listed(R"((?:ROW|F|^QUORVEX_\w+)\((\w+)[,)])");
    Page &page = pages[header];
    page.name = header;
    size_t k = 0;
    for (; k < lines.size() && is_comment(lines[k]); ++k) page.introduction.push_back(comment_of(lines[k]));

    Lines block;
    bool counts = false; // within the list of rows of a header, which declares nothing
    for (; k < lines.size(); ++k) {
        string line = lines[k];
        if (line.starts_with("QUORVEX_API"))
            for (; line.find_first_of(");") == string::npos && k + 1 < lines.size(); ++k)
                line += " " + lines[k + 1].substr(lines[k + 1].find_first_not_of(' '));
        if (is_comment(line)) {
            if (!is_comment(lines[k - 1])) block.clear();
            block.push_back(comment_of(line));
            continue;
        }
        if (line.empty()) {
            if (!is_comment(lines[k - 1])) block.clear();
            continue;
        }
        if (line.starts_with("#define")) counts = line.find("_COUNTS(ROW)") != string::npos;
        auto add = [&](const string &name) -> Function * {
            const auto found = functions.find(name);
            if (found == functions.end()) return nullptr;
            Function &f = found->second;
            if (f.header.empty()) page.functions.push_back(name), f.header = header;
            if (!block.empty() &&
                std::search(f.text.begin(), f.text.end(), block.begin(), block.end()) == f.text.end()) {
                if (!f.text.empty()) f.text.push_back("");
                f.text.insert(f.text.end(), block.begin(), block.end());
            }
            return &f;
        };
        std::smatch m;
        if (std::regex_search(line, m, declared)) {
            if (Function *f = add(m[1])) {
                string use = usage(f->word, m[2]);
                if (m[3].length() > 0) use += "  " + string(m[3]);
                if (std::find(f->usage.begin(), f->usage.end(), use) == f->usage.end())
                    f->usage.push_back(use);
                const string form = form_of(m[2]);
                if (line.find("Mm " + f->name + "(") != string::npos &&
                    m.str(2).find("Mc &") == string::npos &&
                    std::none_of(f->forms.begin(), f->forms.end(),
                                 [&](auto &row) { return row == form || row == form + "_to_0"; })) {
                    std::cerr << header << ".h: the row of " << f->name << " lacks " << form << "\n";
                    ++faults;
                }
            }
        } else if (!counts) {
            for (std::sregex_iterator r(line.begin(), line.end(), listed), end; r != end; ++r) add((*r)[1]);
        }
    }
}

string escaped_html(const string &text) {
    string out;
    for (char c : text) out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : string(1, c);
    return out;
}

string escaped_man(const string &text) {
    string out = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (char c : text) out += c == '\\' ? "\\e" : c == '-' ? "\\-" : string(1, c);
    return out;
}

string escaped_cpp(const string &text) {
    string out;
    for (char c : text) out += c == '"' || c == '\\' ? string{'\\', c} : string(1, c);
    return out;
}

// Functions in the order of the language's names.
std::vector<const Function *> by_word() {
    std::vector<const Function *> list;
    for (const auto &[name, f] : functions) list.push_back(&f);
    std::sort(list.begin(), list.end(), [](auto *a, auto *b) { return a->word < b->word; });
    return list;
}

void write_help(const fs::path &to) {
    std::ofstream out(to);
    out << "// Made from the public headers by docs/reference/generator.cpp.\n#include "
           "\"host/help_texts.h\"\n\n"
           "namespace kn {\n\nconst HelpText help_texts[] = {\n";
    for (const auto &[name, f] : functions) {
        out << "    {\"" << name << "\",\n";
        for (const Lines *part : {&f.usage, f.text.empty() ? &pages[f.header].introduction : &f.text})
            for (const string &line : *part) out << "     \"" << escaped_cpp(line) << "\\n\"\n";
        out << "    },\n";
    }
    out << "};\nconst int help_text_count = " << functions.size() << ";\n\n} // namespace kn\n";
}

void write_html(const fs::path &to) {
    fs::create_directories(to);
    const string head =
        "<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\"><style>body{font:16px/1.5 "
        "sans-serif;max-width:52em;margin:2em auto;padding:0 1em}pre{white-space:pre-wrap;font:14px/1.5 "
        "monospace}h2{border-top:1px solid #ccc;padding-top:.6em}td{padding:0 1em .2em 0}</style><title>";
    for (const auto &[name, page] : pages) {
        if (page.functions.empty()) continue;
        std::ofstream out(to / (name + ".html"));
        out << head << "quorvex: " << name
            << "</title></head><body><p><a href=\"index.html\">All functions</a></p><h1>" << name
            << "</h1>\n<pre>";
        for (const string &line : page.introduction) out << escaped_html(line) << "\n";
        out << "</pre>\n";
        for (const string &function : page.functions) {
            const Function &f = functions[function];
            out << "<h2 id=\"" << f.word << "\">" << f.word << "</h2><p>" << escaped_html(f.description)
                << "</p>\n<pre>";
            for (const string &line : f.usage) out << escaped_html(line) << "\n";
            out << "</pre><pre>";
            for (const string &line : f.text) out << escaped_html(line) << "\n";
            out << "</pre>\n";
        }
        out << "</body></html>\n";
    }
    std::ofstream out(to / "index.html");
    out << head << "quorvex: functions</title></head><body><h1>Functions</h1><table>\n";
    for (const Function *f : by_word())
        out << "<tr><td><a href=\"" << f->header << ".html#" << f->word << "\">" << f->word << "</a></td><td>"
            << escaped_html(f->description) << "</td></tr>\n";
    out << "</table></body></html>\n";
}

void write_man(const fs::path &to) {
    fs::create_directories(to);
    for (const auto &[name, page] : pages) {
        if (page.functions.empty()) continue;
        const string file = "quorvex-" + name + ".3quorvex";
        std::ofstream out(to / file);
        out << ".TH QUORVEX\\-" << name << " 3quorvex\n.SH NAME\n";
        for (size_t k = 0; k < page.functions.size(); ++k)
            out << (k ? ", " : "") << functions[page.functions[k]].word;
        out << " \\- functions of quorvex/" << name << ".h\n.SH DESCRIPTION\n.nf\n";
        for (const string &line : page.introduction) out << escaped_man(line) << "\n";
        out << ".fi\n";
        for (const string &function : page.functions) {
            const Function &f = functions[function];
            out << ".SH " << f.word << "\n" << escaped_man(f.description) << "\n.nf\n";
            for (const string &line : f.usage) out << ".B " << escaped_man(line) << "\n";
            for (const string &line : f.text) out << escaped_man(line) << "\n";
            out << ".fi\n";
            std::ofstream(to / (f.word + ".3quorvex")) << ".so man3/" << file << "\n";
        }
    }
}

// The commands of ive_do, from their list.
void write_commands(const Lines &lines, const fs::path &to) {
    static const std::regex row(R"re(COMMAND\((\d+), (\w+), "([^"]*)", "([^"]*)", "((?:[^"\\]|\\.)*)"\))re");
    std::ofstream html(to / "html" / "host-commands.html"), man(to / "man" / "quorvex-ive_do.3quorvex");
    html << "<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\"><title>quorvex: commands of a "
            "host</title></head><body><h1>ive_do(command, a, b)</h1>\n<table><tr><th>command<th>name<th>a<th>"
            "b<th>what is done</tr>\n";
    man << ".TH QUORVEX\\-ive_do 3quorvex\n.SH NAME\nive_do \\- commands of an interactive host\n.SH "
           "DESCRIPTION\n.nf\n";
    for (const string &line : lines)
        for (std::sregex_iterator r(line.begin(), line.end(), row), end; r != end; ++r) {
            const string text = std::regex_replace((*r)[5].str(), std::regex(R"(\\")"), "\"");
            html << "<tr><td>" << (*r)[1] << "<td>kn_host_" << (*r)[2] << "<td>" << (*r)[3] << "<td>"
                 << (*r)[4] << "<td>" << escaped_html(text) << "</tr>\n";
            man << (*r)[1] << " kn_host_" << (*r)[2] << " (a: " << escaped_man((*r)[3])
                << "; b: " << escaped_man((*r)[4]) << ")\n    " << escaped_man(text) << "\n";
        }
    html << "</table></body></html>\n";
    man << ".fi\n";
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: generator <headers> <results>\n";
        return 2;
    }
    std::map<string, Lines> headers;
    for (const auto &entry : fs::directory_iterator(argv[1]))
        if (entry.path().extension() == ".h") headers[entry.path().stem().string()] = read(entry.path());
    for (const auto &[name, lines] : headers) collect_rows(lines);
    for (const auto &[name, lines] : headers) collect_texts(name, lines);

    for (auto &[name, f] : functions) {
        complete_usage(f);
        if (f.header.empty() || (f.text.empty() && pages[f.header].introduction.empty())) {
            std::cerr << name << ": no declaration with a text\n";
            ++faults;
        }
    }
    if (faults > 0) return 1;
    const fs::path to = argv[2];
    fs::create_directories(to);
    write_help(to / "help_texts.cpp");
    write_html(to / "html");
    write_man(to / "man");
    write_commands(headers["host"], to);
    return 0;
}
