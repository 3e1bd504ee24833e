// Assignment through chains, s(2).a{3}(4) = y. The law: it does what fetching the element, changing it and
// storing it back does, whoever shares the values on the way, wherever source and subscripts come from, and
// an error leaves everything as it was. What the change doesn't touch is not copied.
#include <functional>
#include <new>
#include <optional>

#include "base/scratch.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

Mm deep(const Mm &m) {
    Mm copy;
    copy.deepcopy(m, kn_none);
    for (int k = 1; copy.gettype() == kn_Mm && k <= copy.getnnz(); ++k) copy.mr(k) = deep(m.mr(k));
    return copy;
}

// A way to an element that stands there already, at which f takes the reference; and the values it leads
// through, the root first, the element last.
using Values = std::vector<const Mm *>;
struct Path {
    const char *name;
    std::function<void(Mm &, const std::function<void(Mr)> &)> go;
    std::function<Values(const Mm &)> values;
};

template <class... M> Values way(const M &...values) { return {&values...}; }

const Path paths[] = {
    {"c{2}", [](Mm &c, const auto &f) { f(c.br(2)); }, [](const Mm &c) { return way(c, c.mr(2)); }},
    {"c{4}{1,2}", [](Mm &c, const auto &f) { f(c.br(4).br(1, 2)); },
     [](const Mm &c) { return way(c, c.mr(4), c.mr(4).mr(2)); }},
    {"c{5}.a", [](Mm &c, const auto &f) { f(c.br(5).member("a")); },
     [](const Mm &c) { return way(c, c.mr(5), c.mr(5).mr(1), c.mr(5).mr(1).mr(1)); }},
    {"c{6}(2).b{3}", [](Mm &c, const auto &f) { f(c.br(6)(2).member("b").br(3)); },
     [](const Mm &c) {
         const Mm &values = c.mr(6).mr(2), &b = values.mr(2);
         return way(c, c.mr(6), values, b, b.mr(3));
     }},
};

// A root whose paths all lead to a copy of x.
Mm root_with(const Mm &x) {
    Mm inner = cell_of(1, 3, {1.0, x, x}), array = struct_of({{"a", x}, {"b", inner}});
    array(2) = array(1);
    return deep(cell_of(1, 6, {7.0, x, TM("t"), inner, struct_of({{"a", x}, {"z", 1.0}}), array}));
}

// t is the element: a variable, or the reference at the end of a path. Root and element are where they are:
// for the reference they may change under the assignment.
struct Change {
    const char *name;
    std::function<void(Mr, const Mm &root, const Mm &element)> chained;
    std::function<void(Mm &, const Mm &root, const Mm &element)> direct;
    template <class F> Change(const char *n, F f) : name(n), chained(f), direct(f) {}
};

// A value made once, so that no allocation of its making fails later.
#define K(...)                               \
    ([]() -> const Mm & {                    \
        static const Mm value = __VA_ARGS__; \
        return value;                        \
    }())
#define CHANGE(...)                                                           \
    {                                                                         \
#__VA_ARGS__, [](auto &&t, [[maybe_unused]] const Mm &root,           \
                         [[maybe_unused]] const Mm &element) { __VA_ARGS__; } \
    }
const Change changes[] = {
    CHANGE(t(2) = 9.0),
    CHANGE(t(1, 2) = 9.0),
    CHANGE(t(K(row({3, 1, 3}))) = K(row({7, 8, 9}))),
    CHANGE(t(K(logical_of(row({1, 0, 1})))) = 5.0),
    CHANGE(t(c_p) = 4.0),
    CHANGE(t(c_p) = K(row({1, 2, 3}))),
    CHANGE(t() = K(TM("new"))),
    CHANGE(t(4) = 9.0),
    CHANGE(t(2, 4) = 9.0),
    CHANGE(t(2) = K(C(1, 2))),
    CHANGE(t(2) = K(U8({{3}}))),
    CHANGE(t(2) = Mm()),
    CHANGE(t(c_p, 1) = Mm()),
    CHANGE(t(2) = K(cell_of(1, 1, {5.0}))),
    CHANGE(t(2) = K(struct_of({{"a", 1.0}}))),
    CHANGE(t(3) = K(struct_of({{"a", 1.0}, {"n", 2.0}}))),
    CHANGE(t.br(2) = K(row({1, 2}))),
    CHANGE(t.br(9) = 5.0),
    CHANGE(t.member("a") = 5.0),
    CHANGE(t.member("new") = 5.0),
    CHANGE(t(2).member("a") = 5.0),
    CHANGE(t(3).member("new") = 5.0),
    CHANGE(t.br(1).br(2)(3) = 6.0),
    // Sources and subscripts from within.
    CHANGE(t(2) = root),
    CHANGE(t.br(2) = root),
    CHANGE(t.br(4) = element),
    CHANGE(t.member("a") = root),
    CHANGE(t(2) = element),
    CHANGE(t(element) = 3.0),
    CHANGE(t(element) = element),
    CHANGE(t(c_p) = element),
    CHANGE(t(5).member("a") = element),
    CHANGE(t = root),
    // Errors, some of them found late.
    CHANGE(t(0.0) = 1.0),
    CHANGE(t(K(row({5, 6, 7}))) = K(row({1, 2}))),
    CHANGE(t(c_p) = K(row({1, 2, 3, 4}))),
    CHANGE(t(1, 1, 1) = Mm()),
    CHANGE(t.br(0.0) = 1.0),
    CHANGE(t(1) = Mm(i_o, "u", 0)),
    CHANGE(t(1) = root(99)),
    CHANGE(t(1e12, 1e12) = 1.0),
};

std::vector<Mm> elements() {
    return {row({3, 1, 2}),
            complex_of(row({3, 1, 2}), row({0, 1, 0})),
            TM("abc"),
            U8({{3, 1, 2}}),
            sparse_of(1, 3, {{1, 5}}),
            M({{1, 2}, {3, 4}}),
            2.0,
            Mm(),
            cell_of(1, 3, {1.0, row({1, 2}), TM("x")}),
            cell_of(1, 1, {cell_of(1, 2, {1.0, 2.0})}),
            mstruct(cell_of(1, 4, {TM("a"), cell_of(1, 2, {1.0, 2.0}), TM("b"), 3.0})),
            struct_of({{"a", row({1, 2})}})};
}

// The first error of the work, "" if none, with a handler that returns or throws.
std::string first_error(bool returning, const std::function<void()> &work) {
    Returning errors;
    const std::string text = returning ? (work(), "(no error)") : raised(work);
    return !errors.errors().empty() ? errors.errors()[0] : text == "(no error)" ? "" : text;
}

// What the change makes of the root, as the law says, and the error it reports.
std::string changed(Mm &root, const Path &path, const Change &change) {
    const Mm before = deep(root);
    Mm element = *path.values(before).back();
    std::string error =
        first_error(false, [&] { change.direct(element, before, *path.values(before).back()); });
    if (error.empty()) path.go(root, [&](Mr r) { r = element; });
    return error;
}

TEST(Chain, is_fetch_change_and_store_back) {
    int errors = 0;
    for (const Mm &x : elements())
        for (const Path &path : paths)
            for (const Change &change : changes) {
                SCOPED_TRACE(std::string(path.name) + " of " + testing::PrintToString(x) + ": " +
                             change.name);
                Mm wanted = root_with(x);
                const Mm before = deep(wanted);
                const std::string error = changed(wanted, path, change);
                errors += !error.empty();
                // Shared by nobody, or by holders of the root, of a value on the way, or of all.
                const int levels = static_cast<int>(path.values(before).size());
                for (int shared = 0; shared <= levels + 1; ++shared)
                    for (bool returning : {false, true}) {
                        Mm root = root_with(x);
                        std::vector<Mm> holders;
                        for (int l = 0; l < levels; ++l)
                            if (shared > levels || shared == l + 1)
                                holders.push_back(*path.values(root)[static_cast<size_t>(l)]);
                        std::vector<Mm> held;
                        for (const Mm &m : holders) held.push_back(deep(m));
                        std::string text = first_error(returning, [&] {
                            const Mm &element = *path.values(root).back();
                            path.go(root, [&](Mr r) { change.chained(r, root, element); });
                        });
                        ASSERT_EQ(text, error) << "shared " << shared;
                        kn::check(root);
                        ASSERT_SAME(root, wanted) << "shared " << shared << ", returning " << returning;
                        for (size_t k = 0; k < held.size(); ++k) ASSERT_SAME(holders[k], held[k]);
                    }
            }
    EXPECT_GT(errors, 100);
}

TEST(Chain, copies_nothing_that_it_does_not_touch) {
    Mm x = zeros(1, 1000), root = root_with(x);
    for (const Path &path : paths) {
        auto block = [&] { return path.values(root).back()->addr(); };
        const double *before = block();
        path.go(root, [](Mr r) {
            r(2) = 1.0;
            r(row({3, 5})) = row({1, 2});
            r(logical_of(row({1, 0, 1}))) = 5.0;
            r(1, 9) = 4.0;
            r(1001) = 3.0;
            r(row({1, 2})) = Mm();
        });
        EXPECT_EQ(block(), before) << path.name;
        EXPECT_EQ(path.values(root).back()->getnnz(), 999);
    }
}

// ---- An error handler that assigns to the variable itself ----

Mm *variable;
void assign_and_return(const char *) { *variable = 5.0; }
void assign_and_throw(const char *text) {
    *variable = 5.0;
    throw Raised{text};
}

TEST(Chain, the_error_handler_may_assign_to_the_variable) {
    for (kn_text_handler handler : {assign_and_return, assign_and_throw}) {
        kn_text_handler old = kn_set_error_handler(handler);
        for (const Path &path : paths) {
            Mm root = root_with(row({1, 2}));
            variable = &root;
            try {
                path.go(root, [](Mr r) { r(row({7, 8, 9})) = row({1, 2}); });
            } catch (const Raised &) {
            }
            EXPECT_SAME(root, Mm(5.0));
        }
        Mm s = struct_of({{"a", 1.0}});
        variable = &s;
        if (handler == assign_and_return) {
            EXPECT_SAME(fieldnames(s(7)), cell_of(1, 1, {TM("a")})) << "while it is read";
        }
        kn_set_error_handler(old);
    }
}

// ---- Exhausted memory ----

#ifdef QUORVEX_ALLOC_PROBE
TEST(Chain, without_memory_it_is_done_or_not_begun) {
    for (const Mm &x : elements())
        for (const Path &path : paths)
            for (const Change &change : changes) {
                Mm wanted = root_with(x);
                const Mm before = deep(wanted);
                if (!changed(wanted, path, change).empty()) continue;
                for (bool returning : {false, true})
                    for (long k = 0, failed = 1; failed != 0; ++k) { // none of them, then each
                        Mm root = root_with(x);
                        long start = kn::alloc_probe.allocations;
                        first_error(returning, [&] {
                            const Mm &element = *path.values(root).back();
                            kn::alloc_probe.fail_at = k ? start + k : 0;
                            try {
                                path.go(root, [&](Mr r) { change.chained(r, root, element); });
                            } catch (const std::bad_alloc &) {
                            } catch (...) {
                                kn::alloc_probe.fail_at = 0;
                                throw;
                            }
                        });
                        failed = kn::alloc_probe.allocations >= start + k;
                        kn::alloc_probe.fail_at = 0;
                        kn::check(root);
                        SCOPED_TRACE(std::string(path.name) + " of " + testing::PrintToString(x) + ": " +
                                     change.name + ", allocation " + std::to_string(k));
                        // A handler that returns may leave the sources and subscripts empty.
                        ASSERT_TRUE(returning || same(root, before) || same(root, wanted));
                        path.go(root, [&](Mr r) { r = *path.values(before).back(); });
                        ASSERT_SAME(root, before) << "what stands beside the element";
                    }
            }
}
#endif

} // namespace
