// Constant data of the random generators, made at compile time.
//
// Normal numbers: V(0..64) cuts the half of the normal density into strips of equal area; a strip below,
// above and its width are the tables, each twice V because half of the variable covers both signs. Source: G.
// Marsaglia and W. W. Tsang, "A fast, easily implemented method for sampling from decreasing or symmetric
// unimodal density functions", SIAM J. Sci. Stat. Comput. 5 (1984) 349-359. The published values have seven
// decimals; they are kept as integers, so that every table entry is the double nearest to its decimal value.
//
// Uniform numbers: the 32 lags that a scalar state starts from, multiples of 2^-53 in [0, 1), drawn from
// splitmix64 (Steele, Lea and Flood 2014) started at 0. They are part of what a program sees and never
// change.
#ifndef QUORVEX_ARRAYS_RANDOM_TABLES_H
#define QUORVEX_ARRAYS_RANDOM_TABLES_H

#include <array>
#include <cstdint>

namespace kn {

// 10^7 V(k).
inline constexpr int strip_edges[65] = {
    3409450,  4573146,  5397793,  6062427,  6631691,  7136975,  7596125,  8020356,  8417227,  8792102,
    9148948,  9490791,  9820005,  10138492, 10447810, 10749254, 11043917, 11332738, 11616530, 11896010,
    12171815, 12444516, 12714635, 12982650, 13249008, 13514125, 13778399, 14042211, 14305929, 14569915,
    14834527, 15100122, 15367061, 15635712, 15906454, 16179680, 16455802, 16735255, 17018503, 17306045,
    17598422, 17896223, 18200099, 18510770, 18829044, 19155831, 19492166, 19839239, 20198431, 20571356,
    20959930, 21366450, 21793713, 22245175, 22725186, 23239338, 23795008, 24402218, 25075117, 25834658,
    26713916, 27769942, 27769942, 27769942, 27769942,
};

struct Strips {
    double lower[64], upper[64], width[64];
    double scaled[64]; // upper * 2^-32: takes a signed 32-bit number into the strip
};

constexpr Strips make_strips() {
    Strips s{};
    for (int k = 0; k < 64; k++) {
        s.lower[k] = 2 * strip_edges[k] / 1e7;
        s.upper[k] = 2 * strip_edges[k + 1] / 1e7;
        s.width[k] = 2 * (strip_edges[k + 1] - strip_edges[k]) / 1e7;
        s.scaled[k] = s.upper[k] * 0x1p-32;
    }
    return s;
}

inline constexpr Strips strips = make_strips();
static_assert(strips.lower[0] == 0.68189 && strips.upper[1] == 1.0795586 && strips.width[2] == 0.1329268);

constexpr std::array<double, 32> make_start_lags() {
    std::array<double, 32> u{};
    std::uint64_t state = 0;
    for (double &lag : u) {
        std::uint64_t z = state += 0x9E3779B97F4A7C15;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        lag = static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
    }
    return u;
}

inline constexpr std::array<double, 32> start_lags = make_start_lags();

} // namespace kn

#endif
