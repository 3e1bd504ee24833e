// The element engine as a function, for callers inside the library: what the constructor of Mm builds,
// without a second header.
#ifndef QUORVEX_ENGINE_ELEMENT_ENGINE_H
#define QUORVEX_ENGINE_ELEMENT_ENGINE_H

#include "kernels/kernel_table.h"
#include "quorvex/values.h"

namespace kn {

Mm element_operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim,
                     Mm &extra);

// The dimension in the first element of `dim`, -1 when there is none.
int dimension_in(const Mm &dim);

// Reports that two operands of a function do not have the same size, nor one of them one element.
void report_incompatible(const char *function, const Mm &a, const Mm &b);

// The elements of `op` on a and b, full values of one numeric type, written into `out`, which has the type
// and the extents of the result and may be a or b. For one operand b is not looked at. False when
// interrupted; then `out` holds nothing of use.
bool element_loops(Mm &out, const Mm &a, const Mm &b, op_t op);

// A function of one real operand whose result rule looks at the elements: n of them, if they all lie where it
// is real. When one doesn't, and when interrupted, `out` holds nothing of use. So `out` must not be x, but
// where the answer is known.
enum class Realness { real, left, interrupted };
Realness real_elements(op_t op, double *out, const double *x, ptrdiff_t n);

// The operation on one real number or two, as the loops have it in the instruction set in use.
inline double real_number(op_t op, double x) { return kernels().numbers[op].unary(x); }
inline double real_number(op_t op, double x, double y) { return kernels().numbers[op].binary(x, y); }

} // namespace kn

#endif
