// New arrays: zeros, ones, identity, random numbers, ranges.
#ifndef QUORVEX_BUILDERS_H
#define QUORVEX_BUILDERS_H

#include "quorvex/counts.h"

// Full arrays of zeros, ones, an identity, or random numbers: m by n (by p by q), n by n for one size. Sizes
// are truncated; those below 1 and NaN count as 0. A value with several elements among several sizes counts
// as its first, with the warning "eye01: expecting scalar argument". A size vector alone is rounded and cut
// after four elements ("eye01: too many dimensions"). An empty size gives nop_M.
#define QUORVEX_BUILDER_FUNCTIONS(F) F(zeros) F(ones) F(eye) F(randM) F(randn)
#define QUORVEX_BUILDER(name)                                   \
    QUORVEX_API Mm name(double n);                              \
    QUORVEX_API Mm name(double m, double n);                    \
    QUORVEX_API Mm name(const Mm &a);                           \
    QUORVEX_API Mm name(const Mm &a, const Mm &b);              \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d);
QUORVEX_BUILDER_FUNCTIONS(QUORVEX_BUILDER)
#undef QUORVEX_BUILDER

QUORVEX_API Mm zeros(); // 0
QUORVEX_API Mm eye();   // 1

// The processor time of the process, always 0.
QUORVEX_API Mm cputime();

// Random numbers, uniform on [0, 1) or standard normal; one number without sizes. randM("state") gives the
// state of the generator (a column of 35 elements, 2 for randn), randM("state", y) sets it ("%s('state',y): y
// must be scalar or %d-element state vector"); "seed" does the same for an older generator. Setting selects
// the generator. The streams are exact: a state gives the same numbers everywhere. Sources: subtract with
// borrow by Marsaglia and Zaman, xorshift by Marsaglia, the older generator by Park and Miller, randn by
// Marsaglia and Tsang, SIAM J. Sci. Stat. Comput. 5 (1984) 349-359.
QUORVEX_API double randM();
QUORVEX_API double randn();

// A matrix of zeros, or an identity matrix; with an imaginary plane of zeros when `complex` is set. More than
// four sizes are cut ("czeros: too many dimensions").
QUORVEX_API Mm czeros(int complex, kn_size rows, kn_size cols);
QUORVEX_API Mm czeros(int complex, kn_size ndims, kn_extents dims);
QUORVEX_API Mm ceye(int complex, kn_size rows, kn_size cols);

// The range a:b or a:s:b as a row of double. With a step the elements are computed from both ends, with
// symmetric rounding, and never pass b; 0:0.1:1 has 11 elements. nop_M for an empty range, an empty operand
// or NaN, and for step 0. Of operands with several elements the first is used. colon() is an unnamed copy of
// ":", and thus not a marker.
QUORVEX_API Mm colon();
QUORVEX_API Mm colon(double a, double b);
QUORVEX_API Mm colon(double a, double s, double b);
QUORVEX_API Mm colon(const Mm &a, const Mm &b);
QUORVEX_API Mm colon(const Mm &a, const Mm &s, const Mm &b);

// A row of n points: linspace from a to b, evenly spaced (n is 100 by default), logspace from 10^a to 10^b
// with evenly spaced logarithms (n is 50 by default; for b == pi up to pi). n below 2 gives the end point. A
// single input is returned unchanged.
QUORVEX_API Mm linspace(const Mm &a);
QUORVEX_API Mm linspace(const Mm &a, const Mm &b);
QUORVEX_API Mm linspace(const Mm &a, const Mm &b, const Mm &n);
QUORVEX_API Mm logspace(const Mm &a);
QUORVEX_API Mm logspace(const Mm &a, const Mm &b);
QUORVEX_API Mm logspace(const Mm &a, const Mm &b, const Mm &n);

#define QUORVEX_BUILDER_COUNTS(ROW)                     \
    ROW(zeros, "array of zeros", 0, 1, 2, 3, 4)         \
    ROW(ones, "array of ones", 1, 2, 3, 4)              \
    ROW(eye, "identity matrix", 0, 1, 2, 3, 4)          \
    ROW(randM, "uniform random numbers", 0, 1, 2, 3, 4) \
    ROW(randn, "normal random numbers", 0, 1, 2, 3, 4)  \
    ROW(cputime, "processor time, always 0", 0)         \
    ROW(colon, "range a:b or a:s:b", 0, 2, 3)           \
    ROW(linspace, "evenly spaced points", 1, 2, 3)      \
    ROW(logspace, "logarithmically spaced points", 1, 2, 3)
QUORVEX_BUILDER_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
