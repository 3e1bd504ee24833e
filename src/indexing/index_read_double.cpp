// Reading of doubles, characters and logical values.

#include "indexing/index_read.h"

template Mm kn::select<double>(const Mm &, const Selection &, const int *);
template Mm kn::read_selection<double>(const Mm &, const Subscripts &, int);
