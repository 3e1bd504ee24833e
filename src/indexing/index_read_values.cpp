// Reading of cells and structures.

#include "indexing/index_read.h"

template Mm kn::select<Mm>(const Mm &, const Selection &, const kn_size *);
template Mm kn::read_selection<Mm>(const Mm &, const Subscripts &, int);
