// The generators of random.h.
#include "arrays/random.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "base/lock.h"
#include "quorvex/startup.h"

namespace kn {

constinit RandomFunction<UniformGenerator> uniform_random;
constinit RandomFunction<NormalGenerator> normal_random;

namespace {

constexpr double ulp = 0x1p-53;       // one unit of a lag
constexpr double word_unit = 0x1p-52; // of the integers in a state column
constexpr double two_32 = 0x1p32;
constexpr std::uint32_t top_bits = 0x80008000;

std::uint32_t xorshift(std::uint32_t j) {
    j ^= j << 13;
    j ^= j >> 17;
    return j ^ j << 5;
}

double as_signed(std::uint32_t x) { return static_cast<std::int32_t>(x); }

} // namespace

std::uint32_t low_word(double x) {
    if (!(std::fabs(x) < 0x1p63)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(x));
}

// ---- The older generator ----

void SeedGenerator::set(double y) {
    std::uint32_t v = low_word(y);
    if (v == 0) v = 931316785;
    if (v & 0x8000) v ^= top_bits;
    seed = std::rotl(v, 16);
}

double SeedGenerator::get() const {
    std::uint32_t v = std::rotl(seed, 16);
    return v & 0x80000000 ? v ^ top_bits : v;
}

// ---- Uniform ----

double UniformGenerator::next() {
    // Whether the difference falls below 0 is worked out for both cases, so that from one number to the next
    // only a choice between two bits has to wait, and nothing branches on a random bit.
    static constexpr double lent[] = {0, ulp}, repaid[] = {0, 1};
    double z = u[(i + 20) & 31] - u[(i + 5) & 31];
    unsigned owed = borrow != 0, below[] = {z < 0, z - ulp < 0};
    unsigned now = (below[1] & owed) | (below[0] & ~owed);
    z = z - lent[owed] + repaid[now];
    borrow = static_cast<std::int32_t>(now);
    u[i] = z;
    i = (i + 1) & 31;

    std::uint32_t before = j;
    j = xorshift(j);
    std::uint64_t stir = static_cast<std::uint64_t>(j & 0xFFFFF) << 32 | before;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(z) ^ stir);
}

void UniformGenerator::reset(double y) {
    *this = UniformGenerator();
    if (y >= two_32 || y <= -two_32)
        j = 0xFFFFFFFF;
    else if (y != 0)
        j = low_word(y < 0 ? std::min(y + two_32, two_32 - 1) : y);
}

void UniformGenerator::set(const double *y) {
    std::copy(y, y + 32, u.begin());
    borrow = static_cast<std::int32_t>(low_word(y[32] / ulp));
    i = low_word(y[33] / word_unit) & 31;
    j = low_word(y[34] / word_unit);
}

void UniformGenerator::get(double *y) const {
    std::copy(u.begin(), u.end(), y);
    y[32] = borrow * ulp;
    y[33] = i * word_unit;
    y[34] = as_signed(j) * word_unit;
}

// ---- Normal ----

inline std::int32_t NormalGenerator::step() {
    congruential = congruential * 69069 + 1234567;
    shift_register = xorshift(shift_register);
    return static_cast<std::int32_t>(congruential + shift_register);
}

double NormalGenerator::next() {
    auto uniform = [this] { return step() * 0x1p-32 + 0.5; };

    std::int32_t sum = step();
    int k = sum & 63;
    double x = sum * strips.scaled[k];
    double a2 = 2 * std::fabs(x);
    if (a2 <= strips.lower[k]) return x;

    double top = strips.upper[k];
    double t = (top - a2) / strips.width[k];
    double w = 1 - uniform();
    double s = w + t;
    double xn = t * 0.4878992;
    double xs = std::copysign(xn, x);
    if (s <= 0.698802) return xs;
    if (s >= 1.0310721) return x;
    if (12.37586 * std::exp(-xn * xn / 2) > w + 11.67706) return xs;
    if (std::exp(-top * top / 8) + (1 - w) * 0.03916606 / top <= std::exp(-a2 * a2 / 8)) return x;

    double p, q;
    do {
        p = std::log(uniform());
        q = std::log(uniform());
    } while (!(q * -15.423391352072002 >= p * p));
    return x >= 0 ? 2.776994 - p * 0.3601016062692249 : p * 0.3601016062692249 - 2.776994;
}

void NormalGenerator::reset(double) { *this = NormalGenerator(); }

void NormalGenerator::set(const double *y) {
    congruential = low_word(y[0]);
    shift_register = low_word(y[1]);
}

void NormalGenerator::get(double *y) const {
    y[0] = congruential;
    y[1] = shift_register;
}

template <class Step> double NormalGenerator::from_seed(Step step) {
    double v1, w;
    do {
        v1 = 2 * step() - 1;
        double v2 = 2 * step() - 1;
        if (v1 == -1 && v2 == -1) return 0;
        w = v1 * v1 + v2 * v2;
    } while (!(w > 0 && w <= 1));
    return v1 * std::sqrt(-2 * std::log(w) / w);
}

// ---- The two functions ----

template <class Generator> double RandomFunction<Generator>::draw() {
    auto uniform = [this] {
        Lock lock(Guarded::random_generators);
        return old_.next();
    };
    if (!use_state_.load(std::memory_order_relaxed)) return Generator::from_seed(uniform);
    Lock lock(Guarded::random_generators);
    return now_.next();
}

template <class Generator> void RandomFunction<Generator>::fill(double *x, ptrdiff_t n) {
    if (kn_threads_flag) {
        for (ptrdiff_t k = 0; k < n; k++) x[k] = draw();
    } else if (use_state_) {
        Generator now = now_;
        for (ptrdiff_t k = 0; k < n; k++) x[k] = now.next();
        now_ = now;
    } else {
        SeedGenerator old = old_;
        for (ptrdiff_t k = 0; k < n; k++) x[k] = Generator::from_seed([&old] { return old.next(); });
        old_ = old;
    }
}

template <class Generator> bool RandomFunction<Generator>::set_state(const double *y, int n) {
    Lock lock(Guarded::random_generators);
    use_state_ = true;
    if (n == 1)
        now_.reset(y[0]);
    else if (n == state_size)
        now_.set(y);
    else
        return false;
    return true;
}

template <class Generator> void RandomFunction<Generator>::get_state(double *y) const {
    Lock lock(Guarded::random_generators);
    now_.get(y);
}

template <class Generator> void RandomFunction<Generator>::set_seed(double y) {
    Lock lock(Guarded::random_generators);
    use_state_ = false;
    old_.set(y);
}

template <class Generator> double RandomFunction<Generator>::get_seed() const {
    Lock lock(Guarded::random_generators);
    return old_.get();
}

template class RandomFunction<UniformGenerator>;
template class RandomFunction<NormalGenerator>;

} // namespace kn
