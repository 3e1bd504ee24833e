// Reading of bytes.

#include "indexing/index_read.h"

template Mm kn::select<unsigned char>(const Mm &, const Selection &, const kn_size *);
template Mm kn::read_selection<unsigned char>(const Mm &, const Subscripts &, int);
