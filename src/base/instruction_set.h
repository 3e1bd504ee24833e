// The instruction set that a source is compiled for.
//
// The sources of kernels/loops/ are compiled once for each instruction set, with that set's compiler flags
// and its name as KN_ISA. Everything they define, also in headers, is in the inline namespace
// kn::KN_ISA, so that the linker never uses a function built for one processor on another. For the same
// reason they use nothing of the standard library that is not inlined. Everywhere else KN_ISA is `baseline`.
#ifndef QUORVEX_BASE_INSTRUCTION_SET_H
#define QUORVEX_BASE_INSTRUCTION_SET_H

#ifndef KN_ISA
#define KN_ISA baseline
#endif

// Before a loop in which no element depends on the result of another one: the result may be an operand
// itself, which __restrict would deny. (Other compilers ask at run time whether they overlap.)
#if defined(__GNUC__) && !defined(__clang__)
#define KN_INDEPENDENT _Pragma("GCC ivdep")
#else
#define KN_INDEPENDENT
#endif

#endif
