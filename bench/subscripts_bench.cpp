// One element at a time: reads, assignments and growth in loops, as generated code writes them.

#include <vector>

#include "bench/generated.h"
#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using generated::loop;

void access_rows() {
    constexpr int n = 1000000, m = 1000;
    Mm x(i_o, "x", 0), a(i_o, "A", 0), s(i_o, "s", 0), v(i_o, "v", 0), k(i_o, "k", 0), i(i_o, "i", 0),
        j(i_o, "j", 0);
    x = randn(1.0, n), a = randn(m, m), v = 1.0;
    std::vector<double> px(x.addr(), x.addr() + n);

    auto along = [&](auto body) { return [&, body] { loop(k, n, body); }; };
    auto across = [&](auto body) { return [&, body] { loop(j, m, [&] { loop(i, m, body); }); }; };
    auto read = [&] { bench::keep(native::read_each(n, px.data())); };
    auto write = [&] { native::write_each(n, px.data(), 1.0); };
    bench::row("s = x(k)", bench::times_native(1.2), along([&] { s = x(k); }), read);
    bench::row("x(k) = v", bench::times_native(1.2), along([&] { x(k) = v; }), write);
    bench::row("s = A(i,j)", bench::times_native(1.2), across([&] { s = a(i, j); }), read);
    bench::row("A(i,j) = v", bench::times_native(1.2), across([&] { a(i, j) = v; }), write);
}

void append_rows(int n) {
    std::string upto = ", 1 to " + bench::size_text(n);
    auto native = [=] { native::append(n); };
    bench::row(
        "x(k) = k after the end" + upto, bench::times_native(1.2),
        [=] {
            Mm x(i_o, "x", 0), k(i_o, "k", 0);
            loop(k, n, [&] { x(k) = k; });
            bench::keep(x);
        },
        native);
    bench::row(
        "x(end+1) = k" + upto, bench::times_native(1.2),
        [=] {
            Mm x(i_o, "x", 0), k(i_o, "k", 0);
            x = nop_M;
            loop(k, n, [&] { x(numel(x) + 1.0) = k; });
            bench::keep(x);
        },
        native);
}

} // namespace

void bench::subscript_rows() {
    heading("One element at a time");
    access_rows();
    append_rows(100000);
    append_rows(1000000);
}
