// The evaluation hooks, and the functions of the language that use them.

#include "value/call_by_name.h"

#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "base/scratch.h"
#include "host/workspace.h"
#include "quorvex/arrays.h"
#include "quorvex/display.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "quorvex/text.h"
#include "value/header.h"

using namespace kn;

namespace {

constexpr int text_size = 16384;
constexpr size_t assignment_size = 2049;

// A statement that can't be the right side of an assignment.
bool stands_alone(const char *text) {
    for (const char *word : {"tripdata", "playshow", "load ", "global"})
        if (std::strstr(text, word)) return true;
    return false;
}

// Calls the hook, with its messages. Returns whether it succeeded.
bool run(const char *statement) {
    kn_printf("Calling eval('%s')\n", statement);
    const bool failed = eval_func(statement) > 0;
    kn_printf("Done eval\n");
    if (!failed) return true;
    kn_printf("eval '%s'\n", statement);
    error("error evaluating.");
    return false;
}

template <class... A> Mm feval_of(const Mm &f, const A &...x) {
    const Mm *list[] = {&x..., nullptr};
    return feval_one(f, cell_from_array(sizeof...(x), list));
}

} // namespace

Mm feval(const Mm &f) { return feval_one(f, nop_M); }
Mm feval(const Mm &f, const Mm &a) { return feval_of(f, a); }
Mm feval(const Mm &f, const Mm &a, const Mm &b) { return feval_of(f, a, b); }
Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c) { return feval_of(f, a, b, c); }
Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c, const Mm &d) { return feval_of(f, a, b, c, d); }

Mm eval(const Mm &m) {
    if (!eval_func) return str2num(m);
    Scratch<char> text(text_size);
    if (!text) return x_M;
    Mstr(m, text.get(), text_size);
    if (!*text.get()) return x_M;
    if (const Mm *variable = Scopes::lookup(text.get(), Scopes::level())) return *variable;

    static int count = 0;
    char name[32], assignment[assignment_size];
    std::snprintf(name, sizeof name, "%s_%d", "eval_result", ++count);
    Mm result(i_o, name, 0);
    result.getflags().persistent = 0; // it is removed when this call ends
    if (stands_alone(text.get())) {
        run(text.get());
        return x_M;
    }
    std::snprintf(assignment, sizeof assignment, "%s=%s", name, text.get());
    return run(assignment) ? result : x_M;
}

Mm eval(const Mm &text, const Mm &) { return eval(text); }
Mm evalin(const Mm &, const Mm &text) { return eval(text); }
Mm evalin(const Mm &, const Mm &text, const Mm &) { return eval(text); }

Mm inputname(const Mm &) { return TM(""); }

Mm nargchk(const Mm &low, const Mm &high, const Mm &n) {
    const char *message = "";
    if (istrue(n < low)) message = "too few input arguments";
    if (istrue(n > high)) message = "too many input arguments";
    return TM(message);
}

Mm fcnchk(const Mm &f, const Mm &, i_o_t, Mm &name, Mm &message) {
    name = f;
    message = TM("");
    return x_M;
}

Mm prefcnchk(const Mm &f, const Mm &a, const Mm &, const Mm &, i_o_t, Mm &name, Mm &message) {
    return fcnchk(f, a, i_o, name, message);
}
