// Arrays from nothing: zeros, ones, eye, random numbers, ranges.
//
// Sizes. With plain doubles each size is truncated, below 1 (and NaN) it counts 0. With values: up to four
// sizes, the same way (of a value with several elements the first, with the warning "eye01: expecting scalar
// argument"); or one size vector, its elements rounded, more than four cut ("eye01: too many dimensions"). An
// empty size gives nop_M.
#ifndef QUORVEX_BUILDERS_H
#define QUORVEX_BUILDERS_H

#include "quorvex/counts.h"

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

QUORVEX_API Mm zeros();   // 0
QUORVEX_API Mm eye();     // 1
QUORVEX_API Mm cputime(); // always 0

// One number, uniform on [0, 1) or standard normal. As functions of the language they also take a text first:
// randM("state"), randM("state", y) read and set the state (35 elements; 2 for randn); "seed" the seed of the
// older generators. Setting selects the generator. Both streams are exact: a state gives the same numbers
// everywhere. "%s('state',y): y must be scalar or %d-element state vector" for another count. Sources:
// Marsaglia and Zaman (subtract with borrow), Marsaglia's xorshift, Park and Miller (seed), Marsaglia and
// Tsang (RNOR).
QUORVEX_API double randM();
QUORVEX_API double randn();

// A zero matrix, or an identity, with an imaginary plane of zeros when `complex` is set. More than four
// extents are cut ("czeros: too many dimensions").
QUORVEX_API Mm czeros(int complex, int rows, int cols);
QUORVEX_API Mm czeros(int complex, int ndims, const int *dims);
QUORVEX_API Mm ceye(int complex, int rows, int cols);

// The ranges a:b and a:s:b as rows. colon() is a plain copy of the ":" marker, and so no marker. The second
// form is built from both ends, symmetrical in its rounding, and never passes b; 0:0.1:1 has 11 elements.
// nop_M for an empty operand or step 0.
QUORVEX_API Mm colon();
QUORVEX_API Mm colon(double a, double b);
QUORVEX_API Mm colon(double a, double s, double b);
QUORVEX_API Mm colon(const Mm &a, const Mm &b);
QUORVEX_API Mm colon(const Mm &a, const Mm &s, const Mm &b);

// n points (default 100; 50) from a to b, evenly spaced; from 10^a to 10^b, evenly spaced logarithms (b ==
// pi: up to pi). n below 2 gives the end point; one input comes back as it is.
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
