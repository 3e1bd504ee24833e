// The scalar kernels that are too long for a loop, and the table for the reduction of large angles.

#include "special/scalar_kernels.h"

#include <bit>
#include <climits>
#include <limits>

#include "base/number_tests.h"
#include "quorvex/values.h"

namespace kn {
namespace {

// -- 2^(e-1) mod 2 pi for each exponent e of a double, computed at the first use.
//
// A fixed-point number has one 32-bit word before the point and 36 after it, the most significant first.
// Doubling e-1 times multiplies the error of 2 pi by 2^1023 at most, so that about 120 good bits are left for
// the 53 that are kept.
struct Fixed {
    static constexpr int words = 37;
    uint32_t w[words] = {};

    void add(const Fixed &x) {
        uint64_t carry = 0;
        for (int k = words; k-- > 0;) {
            carry += uint64_t{w[k]} + x.w[k];
            w[k] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
    }
    void subtract(const Fixed &x) {
        uint64_t borrow = 0;
        for (int k = words; k-- > 0;) {
            uint64_t d = uint64_t{w[k]} - x.w[k] - borrow;
            w[k] = static_cast<uint32_t>(d);
            borrow = d >> 63;
        }
    }
    void divide(uint32_t n) {
        uint64_t rest = 0;
        for (int k = 0; k < words; ++k) {
            rest = rest << 32 | w[k];
            w[k] = static_cast<uint32_t>(rest / n);
            rest %= n;
        }
    }
    bool is_zero() const {
        for (uint32_t x : w)
            if (x) return false;
        return true;
    }
    bool below(const Fixed &x) const {
        for (int k = 0; k < words; ++k)
            if (w[k] != x.w[k]) return w[k] < x.w[k];
        return false;
    }
    // Rounded to nearest: the leading 64 bits, the last of them sticky, are converted at once.
    double value() const {
        int first = 0;
        while (first < words && w[first] == 0) ++first;
        if (first >= words) return 0;
        auto word = [this](int k) { return k < words ? uint64_t{w[k]} : 0; };
        uint64_t top = word(first) << 32 | word(first + 1);
        int shift = std::countl_zero(top);
        if (shift > 0) top = top << shift | word(first + 2) >> (32 - shift);
        return std::ldexp(static_cast<double>(top | 1), -32 * (first + 1) - shift);
    }
};

// n times the arc tangent of 1/q.
Fixed times_arctan(uint32_t n, uint32_t q) {
    Fixed power, sum;
    power.w[0] = n;
    power.divide(q);
    for (uint32_t k = 1; !power.is_zero(); k += 2) {
        Fixed term = power;
        term.divide(k);
        if (k % 4 == 1)
            sum.add(term);
        else
            sum.subtract(term);
        power.divide(q);
        power.divide(q);
    }
    return sum;
}

constexpr int largest_exponent = std::numeric_limits<double>::max_exponent;

// Elements 1 to largest_exponent. Two pi by Machin's formula: pi/4 = 4 arctan 1/5 - arctan 1/239.
struct PowersMod2Pi {
    double at[largest_exponent + 1] = {};

    PowersMod2Pi() {
        Fixed two_pi = times_arctan(32, 5);
        two_pi.subtract(times_arctan(8, 239));
        Fixed x;
        x.w[0] = 1;
        for (int e = 1; e <= largest_exponent; ++e) {
            at[e] = x.value();
            x.add(Fixed(x));
            if (!x.below(two_pi)) x.subtract(two_pi);
        }
    }
};

bool finite_quotient(double x, double y) { return y != 0 && is_finite(x) && is_finite(y); }

// The low 32 bits of a whole number.
uint32_t word(double x) { return std::fabs(x) < 0x1p63 ? static_cast<uint32_t>(static_cast<int64_t>(x)) : 0; }

double bit(double k) { return std::pow(2.0, k - 1); }

} // namespace

double rem_real(double x, double y) {
    if (!finite_quotient(x, y)) return raw_nan;
    double q = x / y, t, r;
    if (q >= 0) {
        t = std::floor(q);
        r = q - t >= 0.5 ? t + 1 : t;
    } else {
        t = std::ceil(q);
        r = t - q < 0.5 ? t - 1 : t; // stays negative, and so the test below never holds
        q = -q;
    }
    double e = raw_eps * q;
    if (q - e < r && q + e > r) return 0;
    return x - t * y;
}

double mod_real(double x, double y) {
    if (!finite_quotient(x, y)) return raw_nan;
    double q = x / y, a = std::fabs(q), t = std::floor(q);
    double r = q - t >= 0.5 ? t + 1 : t, e = raw_eps * a;
    if (a - e < r && r < a + e) return 0;
    return x - t * y;
}

double pow2_2(double f, double e) {
    if (std::isnan(e)) return raw_nan;
    if (std::isinf(e)) return e > 0 ? raw_inf : -raw_inf;
    double size = std::fabs(f);
    if ((size >= 1 && e >= 1024) || (size >= raw_realmax && e >= 1)) return f > 0 ? raw_inf : -raw_inf;
    return std::ldexp(f, double_to_int(e));
}

double range_reduce(double x) {
    if (!is_finite(x)) return raw_nan;
    static const PowersMod2Pi two_pow_mod_2pi;
    double rest = std::fabs(x), sum = 0;
    for (;;) {
        int e;
        double f = std::frexp(rest, &e);
        if (f == 0) break;
        if (e < 1) {
            sum += rest;
            break;
        }
        sum += two_pow_mod_2pi.at[e];
        rest = std::ldexp(f - 0.5, e);
    }
    return std::copysign(sum, x);
}

double bit_logic(double a, double b, Bits kind) {
    double ah = fix_real(a / 0x1p32), bh = fix_real(b / 0x1p32);
    auto combine = [kind](uint32_t x, uint32_t y) {
        return static_cast<double>(kind == Bits::and_ ? x & y : kind == Bits::or_ ? x | y : x ^ y);
    };
    return combine(word(ah), word(bh)) * 0x1p32 + combine(word(a - ah * 0x1p32), word(b - bh * 0x1p32));
}

double bit_complement(double a, double n) { return bit_logic(a, std::pow(2.0, n) - 1, Bits::xor_); }
double bit_get(double a, double k) { return bit_logic(a, bit(k), Bits::and_) != 0; }
double bit_set(double a, double k) { return bit_logic(a, bit(k), Bits::or_); }
double bit_reset(double a, double k) { return bit_get(a, k) != 0 ? bit_logic(a, bit(k), Bits::xor_) : a; }
double bit_shift(double a, double n) { return std::floor(pow2_2(a, n)); }

double round_real(double x) { return round_half_away(x); }

} // namespace kn

kn_size double_to_size(double x) {
    constexpr double most = sizeof(kn_size) == 8 ? 0x1p53 : INT_MAX;
    return static_cast<kn_size>(x >= most ? most : x >= -most ? x : -most);
}

int double_to_int(double x) {
    if (x >= 2147483647.0) return 2147483647;
    if (!(x >= -2147483647.0)) return -2147483647;
    return static_cast<int>(x);
}
