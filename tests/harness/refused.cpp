// Not compiled: a value is no condition, and older C++ has no quorvex.
#include <quorvex.h>

int refused(const Mm &x) { return x ? 1 : 0; }
