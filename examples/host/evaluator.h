// Values of expressions, and the variables of the base workspace.
//
// A variable is a named Mm on the heap. The library registers it by itself, since the interactive flag is
// set, and is asked for it from then on; the host owns the object and its name. One that was forgotten gives
// its content back, and serves the next variable of its name: a statement that is running may still refer to
// it. Functions and operators are calls by name.
#ifndef HOST_EVALUATOR_H
#define HOST_EVALUATOR_H

#include <quorvex.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/reader.h"

using Values = std::vector<Mm>;

// A command of ive_do with addresses.
inline intptr_t ive(kn_host_command command, const void *a = nullptr, const void *b = nullptr) {
    return ive_do(command, reinterpret_cast<intptr_t>(a), reinterpret_cast<intptr_t>(b));
}

std::string text_of(const Mm &value);

class Evaluator {
  public:
    // A function of the host's own: what it gives for its inputs, and the number of outputs wanted.
    using Function = std::function<Values(const Values &, int)>;
    void define(const std::string &name, Function f) { own_[name] = std::move(f); }
    bool defines(const std::string &name) const { return own_.count(name) > 0; }

    // Carries out a statement that is no command; `quiet` shows nothing.
    void run(const Statement &statement, bool quiet);
    // Whether the name is a variable or a constant.
    static bool is_value(const std::string &name);
    // The function's results: at least one, without a value (kn_has_value) when there is nothing to give.
    Values call(const std::string &name, const Values &arguments, int wanted);

    static Mm *find(const std::string &name); // null when there is no such variable
    void set(const std::string &name, const Mm &value);
    void forget(); // all

  private:
    struct Variable {
        explicit Variable(const std::string &n) : name(n), value(i_o, name.c_str(), 0) {}
        const std::string name; // the library borrows it
        Mm value;
    };
    class Chain;
    // The value of `end`: the last position of subscript number `position` of `count` ones.
    struct Last {
        const Mm *value;
        size_t position, count;
    };
    class Meaning {
      public:
        Meaning(Evaluator &e, const Last *end) : e_(e), outer_(std::exchange(e.last_, end)) {}
        ~Meaning() { e_.last_ = outer_; }

      private:
        Evaluator &e_;
        const Last *outer_;
    };

    Values values(const Node &node, int wanted);
    Mm value(const Node &node);
    Values reference(const Node &node, int wanted);
    Values assign(const Node &node);
    void store(const Node &target, const Mm &value);
    Mm operation(const Node &node);
    Mm brackets(const Node &node);
    Mm last() const;

    std::map<std::string, Function> own_;
    std::map<std::string, std::unique_ptr<Variable>> variables_; // registered or forgotten
    const Last *last_ = nullptr;                                 // null outside subscripts
};

#endif
