// Numbers written in other bases, and the bytes of a double in hexadecimal digits.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/conversions.h"
#include "quorvex/messages.h"
#include "special/scalar_kernels.h"
#include "value/strings.h"

namespace {

using namespace kn;

constexpr double hexadecimal = 16;

double digit_value(double code) {
    const double c = to_upper(static_cast<double>(to_byte(code)));
    if (c >= '0' && c <= '9') return c - '0';
    return is_upper(c) ? c - 'A' + 10 : 0;
}

double digit_code(double r) { return r < 10 ? r + '0' : r + 'A' - 10; }

// Rounds half up; a negative number, and NaN, gives 0.
int rounded(const Mm &x) { return std::max(double_to_int(mdouble(x).r() + 0.5), 0); }

// A whole number of any size, in words of 32 bits, from which digits are extracted. The mantissa is a whole
// number of 53 bits.
class Whole {
  public:
    explicit Whole(double x) {
        int exponent;
        const double fraction = std::frexp(x, &exponent);
        const uint64_t mantissa = static_cast<uint64_t>(std::ldexp(fraction, mantissa_bits));
        const int shift = exponent - mantissa_bits;
        if (shift < 0) {
            put(0, mantissa >> -shift);
        } else {
            put(shift / 32, mantissa << shift % 32);
            if (shift % 32 > 0) words_[shift / 32 + 2] = static_cast<uint32_t>(mantissa >> (64 - shift % 32));
        }
        while (n_ > 0 && words_[n_ - 1] == 0) --n_;
    }
    explicit operator bool() const { return n_ > 0; }
    int take_digit(int base) {
        uint64_t rest = 0;
        for (int k = n_ - 1; k >= 0; --k) {
            rest = rest << 32 | words_[k];
            words_[k] = static_cast<uint32_t>(rest / static_cast<unsigned>(base));
            rest %= static_cast<unsigned>(base);
        }
        while (n_ > 0 && words_[n_ - 1] == 0) --n_;
        return static_cast<int>(rest);
    }

  private:
    static constexpr int mantissa_bits = 53, most = 1024 / 32 + 2;
    void put(int at, uint64_t value) {
        words_[at] = static_cast<uint32_t>(value);
        words_[at + 1] = static_cast<uint32_t>(value >> 32);
    }
    uint32_t words_[most] = {};
    int n_ = most;
};

bool is_whole(double x) { return x >= 0 && x == std::floor(x); }

// The width of the largest number, enough for all its digits.
int width_in(double largest, int base) {
    int digits = 1;
    if (is_whole(largest))
        for (Whole rest(largest); rest.take_digit(base), rest;) ++digits;
    const double width = std::ceil(std::log10(largest + 1) / std::log10(base));
    return width >= digits ? double_to_int(width) : digits;
}

Mm digits_of(const Mm &d, int base, int len) {
    d.warn_uninit();
    if (error_numeric(d, "dec2base")) return x_M;
    if (d.size() == 0) return setstr(d);
    const Codes numbers(d);
    if (!numbers) return x_M;
    const double *x = numbers.data(), *end = x + numbers.size();
    if (base < 2) {
        error("dec2base: base must be 2 or more");
        return x_M;
    }
    if (!std::all_of(x, end, [](double v) { return is_finite(v); })) {
        error("dec2base: numbers must be finite");
        return x_M;
    }
    const kn_size m = d.size();
    const int width = std::max(width_in(*std::max_element(x, end), base), len);
    Mm out(0, 0, 0, m, width, kn_double);
    if (out.getnnz() == 0) return x_M;
    double *const to = out.addr();
    for (kn_size r = 0; r < m; ++r) {
        ptrdiff_t c = width - 1;
        if (is_whole(x[r])) {
            for (Whole rest(x[r]); c >= 0; --c) to[r + c * m] = digit_code(rest.take_digit(base));
            continue;
        }
        for (double v = x[r]; c >= 0; --c, v = std::floor(v / base))
            to[r + c * m] = digit_code(v == 0 ? 0 : rem_real(v, base));
    }
    out.setstr(1);
    return out;
}

} // namespace

Mm base2dec(const Mm &s, const Mm &b) {
    s.warn_uninit();
    const Mm text = is_cell(s) ? mchar(s) : s;
    if (error_numeric(text, "base2dec")) return x_M;
    const Codes codes(text);
    const double base = mdouble(b).r();
    const kn_size m = codes.rows();
    Mm out(0, 0, 0, m, 1, kn_double);
    if (!codes || lacks(out, m)) return x_M;
    for (kn_size r = 0; r < m; ++r) {
        double value = 0, weight = 1;
        for (ptrdiff_t c = codes.cols() - 1; c >= 0; --c, weight *= base)
            if (double digit = digit_value(codes.data()[r + c * m]); digit != 0) value += digit * weight;
        out.addr()[r] = value;
    }
    return out;
}

Mm base2dec(const Mm &s) { return base2dec(s, hexadecimal); }
Mm bin2dec(const Mm &s) { return base2dec(s, 2.0); }
Mm hex2dec(const Mm &s) { return base2dec(s, hexadecimal); }

Mm dec2base(const Mm &d, const Mm &b, const Mm &len) { return digits_of(d, rounded(b), rounded(len)); }
Mm dec2base(const Mm &d, const Mm &b) { return digits_of(d, rounded(b), 0); }
Mm dec2base(const Mm &d) { return dec2base(d, hexadecimal); }
Mm dec2bin(const Mm &d) { return dec2base(d, 2.0); }
Mm dec2bin(const Mm &d, const Mm &len) { return dec2base(d, 2.0, len); }
Mm dec2hex(const Mm &d) { return dec2base(d, hexadecimal); }
Mm dec2hex(const Mm &d, const Mm &len) { return dec2base(d, hexadecimal, len); }

Mm hex2num(const Mm &s) {
    s.warn_uninit();
    if (error_numeric(s, "hex2num")) return x_M;
    constexpr int n = 16;
    char digits[n + 1];
    const Codes codes(s);
    if (!codes) return x_M;
    // Row by row, a newline between rows, as in Mstr; only the first n characters are used.
    int k = 0;
    for (int r = 0; r < codes.rows() && k < n; ++r) {
        if (r > 0) digits[k++] = '\n';
        for (ptrdiff_t c = 0; c < codes.cols() && k < n; ++c)
            digits[k++] = static_cast<char>(to_byte(codes.data()[r + c * codes.rows()]));
    }
    k = static_cast<int>(std::find(digits, digits + k, '\0') - digits);
    std::fill(digits + k, digits + n, '0');

    const os::PlainNumbers plain;
    uint64_t bits = 0;
    for (k = 0; k < n; k += 2) {
        const char pair[] = {digits[k], digits[k + 1], '\0'};
        bits = bits << 8 | (std::strtoul(pair, nullptr, 16) & 0xff);
    }
    return std::bit_cast<double>(bits);
}
