// Working along one dimension with the public operations.
#ifndef QUORVEX_ARRAYS_SLICE_H
#define QUORVEX_ARRAYS_SLICE_H

#include "quorvex/values.h"

namespace kn {

// x(:, ..., k, ..., :), with the subscript k at dimension `dim`, 1 to 4.
Mm slice(const Mm &x, int dim, const Mm &k);
// The same slice of x becomes v.
void set_slice(Mm &x, int dim, const Mm &k, const Mm &v);

// x repeated n times along `dim`, as if by repmat.
Mm repeat(const Mm &x, int dim, kn_size n);

// A vector laid along `dim`.
Mm along(const Mm &x, int dim);

// The dimension that a program gives, 1 to 4; else 0 after the error "%s: dimension=%d does not exist for
// matrix %s".
int dimension(const char *name, const Mm &x, const Mm &dim);

} // namespace kn

#endif
