// The intrinsic functions of x86, for sources that test __SSE2__, __AVX2__ and __AVX512F__.
#ifndef QUORVEX_KERNELS_LOOPS_INTRINSICS_H
#define QUORVEX_KERNELS_LOOPS_INTRINSICS_H

#if defined(__SSE2__)
#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 takes the undefined vectors that its own header starts from for variables that somebody forgot to
// set.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#endif

#endif
