// The real scalar kernels of the special functions.
//
// Pure functions on doubles: they know no value class, never throw, never report, and keep no state. NaN
// gives NaN. The largest relative errors below were seen over 10^5 to 10^6 arguments spread over the stated
// range, compared with evaluations in 64 to 200 bits; a unit in the last place is 1.1e-16 to 2.2e-16. Results
// below 2.2e-308 lose digits to the format, not to the kernels. They rest on the C library's tgamma, lgamma,
// erf, erfc, and on a long double of 64 bits: where that is only a double, beta, betaln, gammainc and betainc
// are about a thousand times less accurate in their far tails.

#pragma once

namespace kn {

/// Gamma(x). Nonpositive whole numbers, both zeros included, give Inf; Inf gives Inf, -Inf gives NaN. Above
/// 171.62 it is Inf. Whole numbers are rounded correctly: (x - 1)! is exact as long as a double can be.
/// Largest error seen: 6.5e-16.
double gamma_real(double x) noexcept;

/// ln |Gamma(x)|. Nonpositive whole numbers, both infinities give Inf. Accurate near its zeros too, those at
/// 1 and 2 and those below 0. Largest error seen: 4e-16 for x > 0; 8e-16 for -60 < x < 0.
double gammaln_real(double x) noexcept;

/// Regularized lower incomplete gamma function P(a, x), x first: from 0 to 1 as x goes from 0 to Inf, for x,
/// a >= 0; NaN if either is negative or both are Inf. x = 0 or a = Inf give 0, also for a = 0, so that
/// unstored zeros stay zeros; else a = 0 or x = Inf give 1. Largest error seen: 6e-16, for a to 1e14 and
/// values down to 1e-307.
double gammainc_real(double x, double a) noexcept;

/// B(a, b) = Gamma(a) Gamma(b) / Gamma(a + b) for a, b >= 0, else NaN. Symmetric. An argument 0 gives Inf,
/// otherwise an argument Inf gives 0. Largest error seen: 2.5e-16, for arguments from 1e-300 to 1e300.
double beta_real(double a, double b) noexcept;

/// ln B(a, b) for a, b >= 0, else NaN. Symmetric. An argument 0 gives Inf, otherwise an argument Inf gives
/// -Inf. Largest error seen: 1.1e-16 where |ln B| > 1; 1e-18 absolutely along the curve B = 1, so that
/// |ln B| > 1e-5 still has 13 digits.
double betaln_real(double a, double b) noexcept;

/// Regularized incomplete beta function I_x(a, b): from 0 to 1 as x goes from 0 to 1, for a, b >= 0; NaN
/// outside, and for 0 < x < 1 when a and b are both 0 or both Inf. x = 0 and x = 1 give x; else a = 0 or b =
/// Inf give 1, b = 0 or a = Inf give 0. Largest error seen: 9e-16, for parameters from 1e-12 to 1e14 and
/// values down to 1e-307, however close to 0 or 1 x is.
double betainc_real(double x, double a, double b) noexcept;

/// erf(x): odd, keeps the sign of zero, Inf gives 1. Largest error seen: 1.7e-16.
double erf_real(double x) noexcept;

/// erfc(x) = 1 - erf(x): 2 at -Inf, 0 at Inf and above 27.3. Largest error seen: 6e-16.
double erfc_real(double x) noexcept;

/// exp(x^2) erfc(x): 1 at 0, falls to 0 as 1 / (x sqrt(pi)), Inf below -26.63. Largest error seen: 7e-16.
double erfcx_real(double x) noexcept;

/// The inverse of erf on -1..1: odd, keeps the sign of zero, -1 and 1 give -Inf and Inf; NaN outside. Largest
/// error seen: 4e-16.
double erfinv_real(double x) noexcept;

/// E1(x), the integral of exp(-t) / t from x to Inf, for x > 0; its real part -Ei(-x) for x < 0. Both zeros
/// give Inf, Inf gives 0, -Inf gives -Inf, as does all below -716.36. Accurate near its zero at -0.3725 too.
/// Largest error seen: 8e-16 for x > 0; 2e-15 for x < 0.
double expint_real(double x) noexcept;

} // namespace kn
