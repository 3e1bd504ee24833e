#include "host/reader.h"

#include <quorvex.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

bool is_letter(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)); }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
bool is_one_of(char c, const char *set) { return c != '\0' && std::strchr(set, c); }

// ---- Operators ----

// From the loosest to the tightest level. They are calls of these functions; && and ||, which don't always
// look at their second operand, have none.
enum Level { either = 1, both, any, every, comparison, range, sum, product, sign, power };

struct Operator {
    std::string_view symbol;
    Level level;
    const char *function;
};

constexpr Operator binary_operators[] = {
    {"||", either, "||"},        {"&&", both, "&&"},         {"|", any, "or"},
    {"&", every, "and"},         {"<", comparison, "lt"},    {"<=", comparison, "le"},
    {">", comparison, "gt"},     {">=", comparison, "ge"},   {"==", comparison, "eq"},
    {"~=", comparison, "ne"},    {":", range, "colon"},      {"+", sum, "plus"},
    {"-", sum, "minus"},         {"*", product, "mtimes"},   {".*", product, "times"},
    {"/", product, "mrdivide"},  {"./", product, "rdivide"}, {"\\", product, "mldivide"},
    {".\\", product, "ldivide"}, {"^", power, "mpower"},     {".^", power, "power"}};
constexpr Operator prefix_operators[] = {{"+", sign, "uplus"}, {"-", sign, "uminus"}, {"~", sign, "not"}};
constexpr Operator postfix_operators[] = {{"'", power, "ctranspose"}, {".'", power, "transpose"}};

// Longer ones first, since the first that fits is taken.
constexpr std::string_view symbols[] = {
    "||", "&&", "<=", ">=", "==", "~=", ".*", "./", ".\\", ".^", ".'", "|", "&", "<", ">", "=", "~",
    ":",  "+",  "-",  "*",  "/",  "\\", "^",  "'",  ".",   ",",  ";",  "(", ")", "[", "]", "{", "}"};

template <size_t n> const Operator *find(const Operator (&list)[n], std::string_view symbol) {
    for (const Operator &op : list)
        if (op.symbol == symbol) return &op;
    return nullptr;
}

// ---- Lexer ----

struct Token {
    enum Kind { number, imaginary, quoted, name, command, symbol, end };
    Kind kind;
    std::string text; // the end of a line is the symbol "\n", in a matrix ";"
    double value = 0;
    std::vector<std::string> words = {}; // of a command
};

struct Incomplete {}; // thrown where more text has to follow

class Lexer {
  public:
    Lexer(const std::string &source, const CommandTest &is_command)
        : source_(source), is_command_(is_command) {}

    std::vector<Token> tokens() {
        for (;;) {
            const bool blank = skip_blanks();
            if (at_ == source_.size()) break;
            // In a matrix a blank separates elements: [a -b] has two, [a - b] has one.
            const bool separated = in_matrix() && blank && behind_operand();
            if (separated && before_operand()) add(Token::symbol, ",");
            const char c = peek();
            if (c == '\n')
                line_end();
            else if (is_digit(c) || (c == '.' && is_digit(peek(1))))
                number();
            else if (is_letter(c))
                word();
            else if (c == '\'' && (separated || !behind_operand()))
                text();
            else
                symbol();
        }
        if (in_matrix() || blocks_ > 0) throw Incomplete();
        if (!control_.empty()) fail("This host carries out no '" + control_ + "'");
        add(Token::end, "end of line");
        return std::move(tokens_);
    }

  private:
    char peek(size_t ahead = 0) const { return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0'; }
    bool in_matrix() const { return !brackets_.empty() && brackets_.back() != '('; }
    bool at_statement() const {
        return brackets_.empty() && (tokens_.empty() || (tokens_.back().kind == Token::symbol &&
                                                         is_one_of(tokens_.back().text[0], ",;\n")));
    }
    void add(Token::Kind kind, std::string text, double value = 0) {
        tokens_.push_back({kind, std::move(text), value});
    }

    bool behind_operand() const {
        if (tokens_.empty()) return false;
        const Token &last = tokens_.back();
        if (last.kind != Token::symbol) return true;
        return is_one_of(last.text[0], ")]}'") || last.text == ".'";
    }
    bool before_operand() const {
        const char c = peek(), next = peek(1);
        if (is_one_of(c, "+-")) return !is_blank(next) && next != '=';
        if (c == '~') return next != '=';
        return is_letter(c) || is_digit(c) || is_one_of(c, "'([{") || (c == '.' && is_digit(next));
    }

    // Blanks, comments, and the rest of a line after "...".
    bool skip_blanks() {
        const size_t start = at_;
        for (;; ++at_) {
            const bool continued = source_.compare(at_, 3, "...") == 0;
            if (continued || is_one_of(peek(), "%#")) at_ = std::min(source_.find('\n', at_), source_.size());
            if (continued && at_ == source_.size()) throw Incomplete();
            if (!continued && !is_blank(peek())) return at_ > start;
        }
    }

    void line_end() {
        ++at_;
        add(Token::symbol, in_matrix() ? ";" : "\n");
    }

    void number() {
        const size_t start = at_;
        auto digits = [this] {
            while (is_digit(peek())) ++at_;
        };
        digits();
        if (peek() == '.' && !is_one_of(peek(1), "*/\\^'.")) ++at_, digits();
        if (is_one_of(peek(), "eEdD") && is_digit(peek(is_one_of(peek(1), "+-") ? 2 : 1))) at_ += 2, digits();
        std::string spelling = source_.substr(start, at_ - start);
        for (char &c : spelling)
            if (is_one_of(c, "dD")) c = 'e';
        const bool imaginary = is_one_of(peek(), "ij") && !is_letter(peek(1)) && !is_digit(peek(1));
        if (imaginary) ++at_;
        add(imaginary ? Token::imaginary : Token::number, spelling, std::strtod(spelling.c_str(), nullptr));
    }

    // A name; or a command with its words, which reach to the end of the statement.
    void word() {
        const bool first = at_statement();
        const size_t start = at_;
        while (is_letter(peek()) || is_digit(peek())) ++at_;
        const std::string name = source_.substr(start, at_ - start);
        block(name, first);
        add(Token::name, name);
        size_t from = at_;
        while (from < source_.size() && is_blank(source_[from])) ++from;
        const bool alone = from == source_.size() || is_one_of(source_[from], ",;\n%#");
        if (!first || !control_.empty() || (!alone && (from == at_ || !begins_words(from)))) return;
        if (!is_command_(name, alone)) return;
        tokens_.back().kind = Token::command;
        at_ = from;
        words(tokens_.back().words);
    }

    // Whether plain words follow a name and a blank.
    bool begins_words(size_t from) const {
        const std::string_view rest = std::string_view(source_).substr(from);
        auto blank_at = [&](size_t k) { return k < rest.size() && is_blank(rest[k]); };
        if (is_one_of(rest[0], "()]}") || rest.substr(0, 3) == "..." ||
            (rest[0] == '=' && rest.substr(0, 2) != "=="))
            return false;
        for (std::string_view s : symbols)
            if (rest.substr(0, s.size()) == s) return !find(binary_operators, s) || !blank_at(s.size());
        return true;
    }

    void words(std::vector<std::string> &list) {
        while (at_ < source_.size() && !is_one_of(peek(), ",;\n%#")) {
            std::string one;
            while (at_ < source_.size() && !is_blank(peek()) && !is_one_of(peek(), ",;\n%#")) {
                if (peek() == '\'')
                    one += quoted();
                else
                    one += source_[at_++];
            }
            list.push_back(one);
            while (is_blank(peek())) ++at_;
        }
    }

    void block(const std::string &name, bool first) {
        if (first && name == "function") fail("This host carries out no 'function'");
        const bool begins =
            name == "if" || name == "for" || name == "while" || name == "switch" || name == "try";
        if (begins && first) {
            ++blocks_;
            if (control_.empty()) control_ = name;
        } else if (name == "end" && brackets_.empty() && blocks_ > 0) {
            --blocks_;
        }
    }

    // 'it''s' is a text with one quote in it.
    void text() { add(Token::quoted, quoted()); }
    std::string quoted() {
        std::string characters;
        for (++at_;; ++at_) {
            if (peek() == '\0' || peek() == '\n') fail("A text without its closing quote");
            if (peek() == '\'' && peek(1) != '\'') break;
            if (peek() == '\'') ++at_;
            characters += peek();
        }
        ++at_;
        return characters;
    }

    void symbol() {
        const std::string_view rest = std::string_view(source_).substr(at_);
        for (std::string_view s : symbols) {
            if (rest.substr(0, s.size()) != s) continue;
            if (is_one_of(s[0], "([{")) brackets_ += s;
            if (is_one_of(s[0], ")]}") && !brackets_.empty()) brackets_.pop_back();
            at_ += s.size();
            return add(Token::symbol, std::string(s));
        }
        fail("Unexpected character '" + std::string(1, peek()) + "'");
    }

    const std::string &source_;
    const CommandTest &is_command_;
    size_t at_ = 0;
    std::string brackets_; // those that are open
    int blocks_ = 0;       // likewise
    std::string control_;  // the word of the first one there was
    std::vector<Token> tokens_;
};

// ---- Parser ----

class Parser {
  public:
    explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    std::vector<Statement> program() {
        std::vector<Statement> list;
        for (;;) {
            while (accept(",") || accept(";") || accept("\n")) {
            }
            if (token().kind == Token::end) return list;
            list.push_back(statement());
        }
    }

  private:
    // Deeper nesting or longer chains would exhaust the stack of those who walk over the tree.
    static constexpr int most = 1000, deepest = 200;
    struct Nesting {
        explicit Nesting(int &depth) : depth_(depth) {
            if (++depth_ > deepest) fail("Expression nested too deeply");
        }
        ~Nesting() { --depth_; }
        int &depth_;
    };

    const Token &token(size_t ahead = 0) const { return tokens_[std::min(at_ + ahead, tokens_.size() - 1)]; }
    bool is(std::string_view symbol, size_t ahead = 0) const {
        return token(ahead).kind == Token::symbol && token(ahead).text == symbol;
    }
    bool accept(std::string_view symbol) { return is(symbol) && ++at_; }
    [[noreturn]] void unexpected() const {
        fail("Syntax error at '" + (is("\n") ? "end of line" : token().text) + "'");
    }
    void expect(std::string_view symbol) {
        if (!accept(symbol)) unexpected();
    }
    template <size_t n> const Operator *accept_one_of(const Operator (&list)[n]) {
        const Operator *op = token().kind == Token::symbol ? find(list, token().text) : nullptr;
        if (op) ++at_;
        return op;
    }
    Node operation(const char *function, std::vector<Node> operands) {
        if (++operations_ > most) fail("Expression too long");
        return {Node::operation, 0, function, std::move(operands)};
    }

    Statement statement() {
        Statement s;
        operations_ = 0;
        if (token().kind == Token::command) {
            s.is_command = true;
            s.word = token().text;
            s.words = token().words;
            ++at_;
        } else {
            s.node = assignment();
        }
        s.shown = !is(";");
        if (!is(";") && !is(",") && !is("\n") && token().kind != Token::end) unexpected();
        return s;
    }

    // target = right, [target, target] = right, or an expression; right may be an assignment again.
    Node assignment() {
        const Nesting nesting(depth_);
        Node left = binary(either);
        if (!is("=")) return left;
        Node result = {Node::assignment};
        if (left.kind == Node::matrix && left.parts.size() == 1)
            result.parts = std::move(left.parts[0].parts);
        else
            result.parts.push_back(std::move(left));
        for (const Node &target : result.parts)
            if (target.kind != Node::reference) unexpected();
        ++at_;
        result.parts.push_back(assignment());
        return result;
    }

    // Operands joined by operators of this level and of tighter ones.
    Node binary(int level) {
        Node left = prefix();
        for (;;) {
            const Operator *op =
                token().kind == Token::symbol ? find(binary_operators, token().text) : nullptr;
            if (!op || op->level < level) return left;
            ++at_;
            std::vector<Node> operands = {std::move(left), binary(op->level + 1)};
            if (op->level == range && accept(":")) operands.push_back(binary(op->level + 1));
            left = operation(op->function, std::move(operands));
        }
    }

    // Signs bind less tightly than powers, but for those of an exponent: -2^2, 2^-1
    Node prefix(bool exponent = false) {
        const Nesting nesting(depth_);
        if (const Operator *op = accept_one_of(prefix_operators))
            return operation(op->function, {prefix(exponent)});
        return exponent ? primary() : powers();
    }

    // Powers and transposes, from left to right.
    Node powers() {
        Node left = primary();
        for (;;) {
            if (const Operator *op = accept_one_of(postfix_operators)) {
                left = operation(op->function, {std::move(left)});
            } else if (is("^") || is(".^")) {
                const Operator *op = accept_one_of(binary_operators);
                left = operation(op->function, {std::move(left), prefix(true)});
            } else {
                return left;
            }
        }
    }

    Node primary() {
        const Token &t = token();
        if (t.kind == Token::name) return reference();
        if (accept("(")) {
            Node inner = binary(either);
            expect(")");
            return inner;
        }
        if (accept("[")) return brackets(Node::matrix, "]");
        if (accept("{")) return brackets(Node::cell, "}");
        Node::Kind kind = Node::number;
        switch (t.kind) {
        case Token::number: break;
        case Token::imaginary: kind = Node::imaginary; break;
        case Token::quoted: kind = Node::text; break;
        default: unexpected();
        }
        ++at_;
        return {kind, t.value, t.text};
    }

    Node reference() {
        Node n = {token().text == "end" ? Node::end : Node::reference, 0, token().text};
        ++at_;
        while (n.kind == Node::reference) {
            if (n.steps.size() > most) fail("Expression too long");
            if (accept("(")) {
                n.steps.push_back({'(', "", arguments(")")});
            } else if (accept("{")) {
                n.steps.push_back({'{', "", arguments("}")});
            } else if (accept(".")) {
                if (token().kind != Token::name) unexpected();
                n.steps.push_back({'.', token().text, {}});
                ++at_;
            } else {
                break;
            }
        }
        return n;
    }

    std::vector<Node> arguments(std::string_view close) {
        std::vector<Node> list;
        if (accept(close)) return list;
        do {
            if (is(":") && (is(",", 1) || is(close, 1)))
                list.push_back({Node::all}), ++at_;
            else
                list.push_back(binary(either));
        } while (accept(","));
        expect(close);
        return list;
    }

    Node brackets(Node::Kind kind, std::string_view close) {
        Node result = {kind}, line = {Node::row};
        for (;;) {
            const bool closed = accept(close);
            if (closed || accept(";")) {
                if (!line.parts.empty()) result.parts.push_back(std::move(line));
                if (closed) return result;
                line = {Node::row};
            } else if (!accept(",")) {
                line.parts.push_back(binary(either));
                if (!is(",") && !is(";") && !is(close)) unexpected();
            }
        }
    }

    std::vector<Token> tokens_;
    size_t at_ = 0;
    int depth_ = 0, operations_ = 0;
};

} // namespace

std::optional<std::vector<Statement>> parse(const std::string &source, const CommandTest &is_command) {
    try {
        return Parser(Lexer(source, is_command).tokens()).program();
    } catch (const Incomplete &) {
        return std::nullopt;
    }
}

void fail(const std::string &message) {
    error("%s", message.c_str());
    std::abort(); // error() throws: flag 16 is set
}
