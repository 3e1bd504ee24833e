// The overloads of a function of two operands: values and temporaries, and plain numbers.
#ifndef QUORVEX_ENGINE_BINARY_OVERLOADS_H
#define QUORVEX_ENGINE_BINARY_OVERLOADS_H

#include "engine/elementwise.h"

#define KN_BINARY(name, op)                                              \
    Mm name(const Mm &a, const Mm &b) { return binary<op>(a, b); }       \
    Mm name(Mm &&a, const Mm &b) { return binary<op>(std::move(a), b); } \
    Mm name(const Mm &a, Mm &&b) { return binary<op>(a, std::move(b)); } \
    Mm name(Mm &&a, Mm &&b) { return binary<op>(std::move(a), std::move(b)); }
#define KN_NUMBER(name, op)                                                \
    Mm name(const Mm &a, double b) { return with_number<op>(a, b); }       \
    Mm name(Mm &&a, double b) { return with_number<op>(std::move(a), b); } \
    Mm name(double a, const Mm &b) { return number_with<op>(a, b); }       \
    Mm name(double a, Mm &&b) { return number_with<op>(a, std::move(b)); }

#endif
