// Reading of doubles, characters and logical values.

#include "indexing/index_read.h"

template Mm kn::select<double>(const Mm &, const Selection &, const kn_size *);
template Mm kn::read_selection<double>(const Mm &, const Subscripts &, int);
