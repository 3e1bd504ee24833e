// Assignment of cells and structures.

#include "indexing/index_write.h"

template bool kn::vwcopy1<Mm>(Mm &, const Mm &, const Mm &);
template bool kn::vwcopy2<Mm>(Mm &, const Mm &, const Mm &, const Mm &);
template bool kn::vwcopyn<Mm>(Mm &, Mr_idx_type, const Subscripts &, const Mm &);
