// Structures and cells in loops.

#include <vector>

#include "bench/generated.h"
#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::row;
using generated::loop;

void record_rows() {
    constexpr int n = 10000;
    Mm s(i_o, "s", 0), t(i_o, "t", 0), k(i_o, "k", 0);
    row(
        "s(k).a = k, 1e4 structures", bench::times_native(2),
        [&] {
            Mm fresh(i_o, "s", 0);
            loop(k, n, [&] { fresh(k).member("a") = k; });
            bench::keep(fresh);
        },
        [] { native::append_records(n); });
    std::vector<native::Record> records(n);
    loop(k, n, [&] { s(k).member("a") = k; });
    row(
        "t = s(k).a", bench::times_native(1.2), [&] { loop(k, n, [&] { t = s(k).member("a"); }); },
        [&] { bench::keep(native::read_records(n, records.data())); });
}

// Assignments to one element after another of what a container holds, in turns that go on with the next call.
struct Chain {
    static constexpr int steps = 200; // of a call: few, should each copy what it need not
    int size;
    int at = 0;
    Mm s{i_o, "s", 0}, c{i_o, "c", 0}, i{i_o, "i", 0}, k{2.0}, v{1.0};

    explicit Chain(int n) : size(n) {
        s.member("a") = zeros(1.0, n);
        c = cell(1.0, 3.0);
        c.br(k) = zeros(1.0, n);
    }
    template <class F> void run(F step) {
        for (int l = 0; l < steps; ++l) {
            at = at % size + 1;
            i = double(at);
            step();
        }
    }
    void field() {
        run([&] { s.member("a")(i) = v; });
    }
    void element() {
        run([&] { c.br(k)(i) = v; });
    }
};

// What is not touched must cost nothing: here the other side is the library's own on few elements.
void chain_rows() {
    Chain few(10), many(1000000);
    const bench::Limit limit = bench::times_native(1.2);
    row(
        "s.a(i) = v, 1e6 elements / 10 elements", limit, [&] { many.field(); }, [&] { few.field(); });
    row(
        "c{k}(i) = v, 1e6 elements / 10 elements", limit, [&] { many.element(); }, [&] { few.element(); });
}

} // namespace

void bench::structure_rows() {
    heading("Structures and cells");
    record_rows();
    chain_rows();
}
