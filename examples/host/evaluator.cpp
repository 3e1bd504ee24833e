#include "host/evaluator.h"

#include <algorithm>
#include <deque>
#include <optional>

namespace {

// The constants, unless a variable has the name.
const Mm *constant(const std::string &name) {
    static const std::map<std::string, const Mm *> constants = {
        {"pi", &pi}, {"i", &i}, {"j", &j}, {"Inf", &Inf}, {"NaN", &NaN}, {"eps", &eps}, {"ans", &ans}};
    const auto found = constants.find(name);
    return found == constants.end() ? nullptr : found->second;
}

} // namespace

std::string text_of(const Mm &value) {
    std::string text(static_cast<size_t>(std::max<kn_size>(Mstr_size(value), 1)), '\0');
    Mstr(value, text.data(), std::ssize(text));
    text.resize(text.find('\0'));
    return text;
}

// ---- Variables ----

Mm *Evaluator::find(const std::string &name) {
    return reinterpret_cast<Mm *>(ive(kn_host_find, nullptr, name.c_str()));
}

void Evaluator::set(const std::string &name, const Mm &value) {
    Mm *variable = find(name);
    if (!variable) {
        auto &own = variables_[name];
        if (own)
            own->value.setname(own->name.c_str());
        else
            own = std::make_unique<Variable>(name);
        variable = &own->value;
    }
    *variable = value;
}

bool Evaluator::is_value(const std::string &name) { return find(name) || constant(name); }

void Evaluator::forget() {
    ive(kn_host_forget);
    for (auto &[name, variable] : variables_) variable->value = Mm();
}

// ---- Statements ----

void Evaluator::run(const Statement &statement, bool quiet) {
    const Meaning outside(*this, nullptr); // eval may run inside a subscript
    const Node &n = statement.node;
    std::vector<std::string> named;
    if (n.kind == Node::assignment) {
        assign(n);
        for (size_t k = 0; k + 1 < n.parts.size(); ++k) named.push_back(n.parts[k].name);
    } else if (n.kind == Node::reference && n.steps.empty() && find(n.name)) {
        named.push_back(n.name);
    } else if (const Mm result = values(n, 0)[0]; kn_has_value(result)) {
        set("ans", result);
        named.push_back("ans");
    }
    if (!statement.shown || quiet) return;
    for (const std::string &name : named)
        if (const Mm *variable = find(name)) display(*variable);
}

Values Evaluator::assign(const Node &node) {
    const size_t n = node.parts.size() - 1;
    const Values right = values(node.parts[n], static_cast<int>(n));
    if (right.size() < n) fail("Not so many values on the right side of =");
    for (size_t k = 0; k < n; ++k) store(node.parts[k], right[k]);
    return right;
}

// ---- Subscripts ----

// The links after a name as references, each on the one before. They borrow their subscripts, which are kept
// here in containers that never move an element.
class Evaluator::Chain {
  public:
    Chain(Evaluator &evaluator, const Mm &base, const std::vector<Step> &steps, size_t first) : base_(base) {
        for (size_t k = first; k < steps.size(); ++k) link(evaluator, steps[k]);
    }
    Mm read() const { return links_.empty() ? base_ : Mm(links_.back()); }
    void write(const Mm &value) { links_.back() = value; }

  private:
    static constexpr size_t most = 4;

    void link(Evaluator &evaluator, const Step &step) {
        if (step.kind == '.') return append(step.field.c_str());
        const size_t n = step.arguments.size();
        if (n > most) fail("Too many subscripts");
        const Mm *pointers[most] = {};
        const Mm subject = links_.empty() ? base_ : Mm(links_.back(), 0); // lenient: it may not be there yet
        for (size_t k = 0; k < n; ++k) {
            const Last last = {&subject, k + 1, n};
            const Meaning inside(evaluator, &last);
            const Node &argument = step.arguments[k];
            if (argument.kind == Node::all)
                pointers[k] = &c_p; // recognised by its address
            else
                pointers[k] = &subscripts_.emplace_back(evaluator.value(argument));
        }
        append(static_cast<Mr_idx_type>(step.kind), static_cast<int>(n), pointers);
    }
    template <class... A> void append(A... a) {
        if (links_.empty())
            links_.emplace_back(base_, a...);
        else
            links_.emplace_back(links_.back(), a...);
    }

    const Mm &base_;
    std::deque<Mm> subscripts_;
    std::deque<Mr> links_;
};

Mm Evaluator::last() const {
    if (!last_) fail("'end' stands outside a subscript");
    const Mm &m = *last_->value;
    if (last_->count == 1) return m.size();
    return last_->position <= 4 ? m.size(static_cast<int>(last_->position)) : 1;
}

void Evaluator::store(const Node &target, const Mm &value) {
    if (!kn_has_value(value)) fail("There is no value for '" + target.name + "'");
    if (target.steps.empty()) return set(target.name, value);
    Mm fresh; // becomes a variable only when all went well
    Mm *variable = find(target.name);
    Chain(*this, variable ? *variable : fresh, target.steps, 0).write(value);
    if (!variable) set(target.name, fresh);
}

// ---- Expressions ----

Mm Evaluator::value(const Node &node) {
    const Mm result = values(node, 1)[0];
    if (!kn_has_value(result)) fail("'" + node.name + "' gives no value");
    return result;
}

Values Evaluator::values(const Node &node, int wanted) {
    switch (node.kind) {
    case Node::number: return {node.value};
    case Node::imaginary: return {node.value * i};
    case Node::text: return {TM(node.name.c_str())};
    case Node::all: return {TM(":")};
    case Node::end: return {last()};
    case Node::reference: return reference(node, wanted);
    case Node::operation: return {operation(node)};
    case Node::matrix:
    case Node::cell: return {brackets(node)};
    case Node::assignment: return assign(node);
    case Node::row: break; // brackets() looks at these
    }
    return {x_M};
}

// A variable or a constant with its subscripts; else a call, whose result may have subscripts, too.
Values Evaluator::reference(const Node &node, int wanted) {
    const Mm *base = find(node.name);
    if (!base) base = constant(node.name);
    if (base) return {Chain(*this, *base, node.steps, 0).read()};
    Values arguments;
    const bool called = !node.steps.empty() && node.steps[0].kind == '(';
    if (called)
        for (const Node &argument : node.steps[0].arguments) arguments.push_back(value(argument));
    Values results = call(node.name, arguments, wanted);
    if (node.steps.size() == size_t(called)) return results;
    return {Chain(*this, results[0], node.steps, called).read()};
}

Values Evaluator::call(const std::string &name, const Values &arguments, int wanted) {
    if (const auto found = own_.find(name); found != own_.end()) return found->second(arguments, wanted);
    const int n = static_cast<int>(arguments.size());
    Mm list(0, 0, 0, 1, n, kn_Mm);
    for (int k = 0; k < n; ++k) list.mr(k + 1) = arguments[static_cast<size_t>(k)];
    Values results(static_cast<size_t>(std::max(wanted, 1)));
    std::vector<Mm *> out;
    for (Mm &result : results) out.push_back(&result);
    kn_call_function(name.c_str(), list, wanted, out.data());
    return results;
}

Mm Evaluator::operation(const Node &node) {
    if (node.name == "&&" || node.name == "||") {
        const bool settles = node.name == "||";
        const bool first = istrue(value(node.parts[0]));
        return mlogical(first == settles ? first : istrue(value(node.parts[1])));
    }
    Values operands;
    for (const Node &part : node.parts) operands.push_back(value(part));
    // By a number, this is an operation of elements.
    if (node.name == "mldivide" && operands[0].size() == 1) return call("ldivide", operands, 1)[0];
    return call(node.name, operands, 1)[0];
}

Mm Evaluator::brackets(const Node &node) {
    const bool braces = node.kind == Node::cell;
    std::deque<Mm> elements; // the list borrows them
    std::optional<Mc> list;
    for (const Node &row : node.parts) {
        if (list) *list, semi;
        for (const Node &element : row.parts) {
            const Mm &m = elements.emplace_back(value(element));
            if (list)
                *list, m;
            else
                list.emplace(braces, m);
        }
    }
    if (list) return Mm(*list);
    return braces ? cell(0.0, 0.0) : Mm(nop_M);
}
