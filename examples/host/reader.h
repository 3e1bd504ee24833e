// Source text into statements: a lexer, and a parser by precedence.
//
// A command is a word with words behind it: save work x. It begins with a name that is no variable, a blank,
// and what is neither "=" nor "(" nor an operator with another blank behind it; so `cd ..` and `ls *.m` are
// commands, and `a - b` is none. 'Quotes' hold a word together. Which words are commands when nothing is
// behind them, and which are variables, the caller tells. Faults are reported by the library's error(), which
// throws in this host.
//
// There are no control statements: such a block is read to its end, and reported as a whole.
#ifndef HOST_READER_H
#define HOST_READER_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct Node;

// One link behind a name: (arguments), {arguments} or .field
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
        assignment, // parts are the targets, and behind them the right side
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
    std::vector<std::string> words; // behind it
    Node node = {Node::row};        // of anything else
    bool shown = true;              // no semicolon behind it
};

// Whether the word begins a command; `alone` when nothing is behind it.
using CommandTest = std::function<bool(const std::string &word, bool alone)>;

// The statements of a text of one or more lines; none when it ends inside brackets or a block, or after
// "...", so that another line has to follow.
std::optional<std::vector<Statement>> parse(const std::string &source, const CommandTest &is_command);

// Reports an error of the user's.
[[noreturn]] void fail(const std::string &message);

#endif
