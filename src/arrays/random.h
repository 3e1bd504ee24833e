// The random generators of randM and randn.
//
// Each of the two functions has a present generator, whose state is a column of numbers, and an older one
// with an integer seed; setting a state or a seed selects the generator. The streams are exact: all words are
// unsigned 32-bit, every uniform number is a multiple of 2^-53 before its mantissa is stirred.
//
// While kn_threads_flag is set, every draw and every read or change of a state holds the lock of the random
// generators. A draw of the older normal generator holds it for each of its uniform steps. Without the flag
// an array is filled from a copy of the state in local memory.
#ifndef QUORVEX_ARRAYS_RANDOM_H
#define QUORVEX_ARRAYS_RANDOM_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "arrays/random_tables.h"

namespace kn {

// The low 32 bits of x truncated to an integer; 0 for NaN and from 2^63 on.
std::uint32_t low_word(double x);

// Multiplicative congruential generator modulo 2^31 - 1 with multiplier 16807. Source: S. K. Park and K. W.
// Miller, "Random number generators: good ones are hard to find", Comm. ACM 31 (1988) 1192-1201.
struct SeedGenerator {
    static constexpr std::uint32_t start = 1144108930;
    std::uint32_t seed = start;

    double next() {
        seed = static_cast<std::uint32_t>(seed * std::uint64_t{16807} % 2147483647);
        return seed * 4.656612875245797e-10;
    }

    // The number that a program sets and sees: the halves of the seed swapped, its top bits moved out of the
    // way of the modulus.
    void set(double y);
    double get() const;
};

// Uniform numbers: subtract with borrow on 32 doubles, its mantissas stirred by a 32-bit xorshift. Sources:
// G. Marsaglia and A. Zaman, "A new class of random number generators", Ann. Appl. Prob. 1 (1991) 462-480; G.
// Marsaglia, "Xorshift RNGs", J. Stat. Soft. 8 (2003) no. 14.
struct UniformGenerator {
    static constexpr const char *name = "rand";
    static constexpr int state_size = 35;

    std::array<double, 32> u = start_lags;
    std::uint32_t i = 0;          // current lag
    std::int32_t borrow = 0;      // nonzero: the last subtraction borrowed
    std::uint32_t j = 0x80000000; // xorshift register

    double next();
    void reset(double y);      // from the start lags, y sets the register
    void set(const double *y); // lags, borrow 2^-53, i 2^-52, j 2^-52
    void get(double *y) const;

    template <class Step> static double from_seed(Step step) { return step(); }
};

// Standard normal numbers by strips of equal area (random_tables.h), on the sum of a congruential generator
// and a xorshift register.
struct NormalGenerator {
    static constexpr const char *name = "randn";
    static constexpr int state_size = 2;

    std::uint32_t congruential = 362436069;
    std::uint32_t shift_register = 521288629;

    double next();
    void reset(double); // the start state, whatever the argument
    void set(const double *y);
    void get(double *y) const;

    // The polar method. A seed that is a multiple of the modulus has become 0 for good: no pair would ever be
    // accepted, and the number is 0.
    template <class Step> static double from_seed(Step step);

  private:
    std::int32_t step();
};

// One of the two functions: its generators and which of them is selected.
template <class Generator> class RandomFunction {
  public:
    static constexpr const char *name = Generator::name;
    static constexpr int state_size = Generator::state_size;

    double draw();
    void fill(double *x, ptrdiff_t n);

    // Selects the present generator. n is the number of elements in y: 1 resets, state_size sets; any other
    // count leaves the state alone and gives false.
    bool set_state(const double *y, int n);
    void get_state(double *y) const;

    void set_seed(double y); // selects the older generator
    double get_seed() const;

  private:
    Generator now_;
    SeedGenerator old_;
    std::atomic<bool> use_state_ = true;
};

extern RandomFunction<UniformGenerator> uniform_random;
extern RandomFunction<NormalGenerator> normal_random;

} // namespace kn

#endif
