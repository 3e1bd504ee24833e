// Source text into statements: a lexer, and a parser by precedence.
//
// A command is a word followed by words: save work x. It begins with a name that is not a variable and a
// blank, followed by neither "=" nor "(" nor an operator and another blank: `cd ..` and `ls *.m` are
// commands, `a - b` is not. 'Quotes' hold a word together. The caller decides which names are variables, and
// which are commands even when no words follow. Faults are reported by the library's error(), which throws in
// this host.
//
// There are no control statements: such a block is read to its end, and reported as a whole.
#ifndef HOST_READER_H
#define HOST_READER_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct Node;

// One link after a name: (arguments), {arguments} or .field
struct Step {
    char kind; // '(' '{' '.'
    std::string field;
    std::vector<Node> arguments;
};

struct Node {
    enum Kind {
        number,     // value
        imaginary,  // value, of 3i
        text,       // name holds the characters
        all,        // a bare : as an argument
        end,        // the last position, in a subscript
        reference,  // name and steps: a variable, or a call
        operation,  // name of the function, or && and ||; parts are the operands
        matrix,     // parts are its rows
        cell,       // the same in braces
        row,        // parts are its elements
        assignment, // parts are the targets, then the right side
    };
    Kind kind;
    double value = 0;
    std::string name = {};
    std::vector<Node> parts = {};
    std::vector<Step> steps = {};
};

struct Statement {
    bool is_command = false;
    std::string word;               // of a command
    std::vector<std::string> words; // that follow it
    Node node = {Node::row};        // of anything else
    bool shown = true;              // no semicolon follows
};

// Whether the word begins a command; `alone` when no words follow.
using CommandTest = std::function<bool(const std::string &word, bool alone)>;

// The statements of a text of one or more lines; none when it ends inside brackets or a block, or after
// "...", so that another line has to follow.
std::optional<std::vector<Statement>> parse(const std::string &source, const CommandTest &is_command);

// Reports an error of the user's.
[[noreturn]] void fail(const std::string &message);

#endif
