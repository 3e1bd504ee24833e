// The order of the library's static objects, which come before those of programs.
#ifndef QUORVEX_BASE_STATIC_ORDER_H
#define QUORVEX_BASE_STATIC_ORDER_H

// In front of a definition: 1 for the named values, 2 for what start-up needs them for. 101 is the lowest
// priority that a program may use, so that in a static library objects of 103 and above find the library
// ready.
#if defined(__GNUC__)
#define KN_FIRST(n) __attribute__((init_priority(100 + n)))
#else
#define KN_FIRST(n)
#endif

#endif
