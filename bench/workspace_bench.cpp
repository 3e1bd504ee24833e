// Named values under an interactive host, against a hash table of names, and calls by name against the calls
// themselves.

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

constexpr int steps = 1000, names = 100, locals = 10;

template <class F> auto many(F f) {
    return [f] {
        for (int k = 0; k < steps; ++k) f();
    };
}

std::vector<std::string> numbered(const char *stem, int n) {
    std::vector<std::string> list;
    for (int k = 0; k < n; ++k) list.push_back(stem + std::to_string(k));
    return list;
}

} // namespace

void bench::workspace_rows() {
    heading("Workspace / hash table of names; calls by name / calls");
    const std::vector<std::string> others = numbered("variable", names), inner = numbered("local", locals);
    std::unordered_map<std::string, Mm *> table;
    for (const std::string &name : others) table[name] = nullptr;

    row("named value, no host", times_native(2), many([] { keep(Mm(i_o, "x", 0)); }),
        many([] { keep(Mm()); }));

    kn_interactive_flag = 1;
    variables_scope.begin();
    std::vector<std::unique_ptr<Mm>> values;
    for (const std::string &name : others) values.push_back(std::make_unique<Mm>(i_o, name.c_str(), 0));
    row("register and forget among 100 names", times_native(1), many([] { keep(Mm(i_o, "one_more", 0)); }),
        many([&] {
            table["one_more"] = nullptr;
            table.erase("one_more");
        }));
    row("a function with 10 named values", times_native(1.5), many([&] {
            variables_scope.begin();
            for (const std::string &name : inner)
                values.push_back(std::make_unique<Mm>(i_o, name.c_str(), 0));
            values.resize(names);
            variables_scope.end();
        }),
        many([&] {
            std::unordered_map<std::string, Mm *> level;
            for (const std::string &name : inner) level[name] = nullptr;
            keep(level);
        }));
    values.clear();
    variables_scope.end();
    kn_interactive_flag = 0;

    const Mm a(3.0), b(4.0), name = TM("atan2"), args = (CL(a), b);
    Mm y, *out = &y;
    row("atan2 by kn_call_function", times_native(4),
        many([&] { keep(kn_call_function("atan2", args, 1, &out)); }), many([&] { keep(atan2(a, b)); }));
    feval_func = kn_feval;
    row("atan2 by feval", times_native(4), many([&] {
            Mm y1, y2, y3, y4, y5, y6;
            keep(feval_func(name, args, i_o, y1, y2, y3, y4, y5, y6));
        }),
        many([&] { keep(atan2(a, b)); }));
}
