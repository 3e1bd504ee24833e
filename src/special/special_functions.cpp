// The special functions that the C++ library answers to the last bits, and beta and betaln; the others have
// their own files. Only the edges are computed here: poles, infinities and NaN.

#include "special/special_functions.h"
#include "special/stirling.h"

#include <array>
#include <cmath>

namespace kn {

using namespace special;

namespace {

/// n! for every n that has one, exact as long as a double can be.
constexpr auto factorial = [] {
    std::array<double, 171> f{};
    wide product = f[0] = 1;
    for (int n = 1; n <= 170; ++n) f[n] = product *= n;
    return f;
}();

bool is_pole(double x) { return x <= 0 && x == std::floor(x); }

} // namespace

double gamma_real(double x) noexcept {
    if (std::isnan(x)) return x;
    if (x == -inf) return nan;
    if (is_pole(x)) return inf;
    // std::tgamma misses many whole results by a bit.
    if (x >= 1 && x <= 171 && x == std::floor(x)) return factorial[static_cast<int>(x) - 1];
    return std::tgamma(x);
}

// std::lgamma also writes the C library's `signgam`, which nothing here reads.
double gammaln_real(double x) noexcept {
    if (std::isnan(x)) return x;
    return is_pole(x) ? inf : std::lgamma(x);
}

double beta_real(double a, double b) noexcept {
    if (std::isnan(a) || std::isnan(b)) return a + b;
    if (a < 0 || b < 0) return nan;
    if (a == 0 || b == 0) return inf;
    if (a == inf || b == inf) return 0;
    return std::exp(log_beta(a, b));
}

double betaln_real(double a, double b) noexcept {
    if (std::isnan(a) || std::isnan(b)) return a + b;
    if (a < 0 || b < 0) return nan;
    if (a == 0 || b == 0) return inf;
    if (a == inf || b == inf) return -inf;
    return log_beta(a, b);
}

double erf_real(double x) noexcept { return std::erf(x); }
double erfc_real(double x) noexcept { return std::erfc(x); }

} // namespace kn
