// Dense products against BLAS on the same data.

#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

void bench::product_rows() {
    constexpr int n = 1000;
    Mm a = randn(n, n), b = randn(n, n), za = a + i * b, zb = b - i * a;
    std::vector<double> re(size_t(n) * n), im(re);
    const native::Planes pa{za.addr(), za.addi()}, pb{zb.addr(), zb.addi()}, out{re.data(), im.data()};
    heading("Products / BLAS");
    row(
        "A*B of 1000x1000", times_native(1.05), [&] { keep(a * b); },
        [&] { native::product(n, a.addr(), b.addr(), re.data()); });
    row(
        "complex A*B / three products", times_native(1.1), [&] { keep(za * zb); },
        [&] { native::complex_product(n, pa, pb, out); });
    row(
        "complex A*B / four products", times_native(1.1), [&] { keep(za * zb); },
        [&] { native::complex_product_exact(n, pa, pb, out); });
}
