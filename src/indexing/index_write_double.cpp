// Assignment of doubles, characters and logical values.

#include "indexing/index_write.h"

template bool kn::vwcopy1<double>(Mm &, const Mm &, const Mm &);
template bool kn::vwcopy2<double>(Mm &, const Mm &, const Mm &, const Mm &);
template bool kn::vwcopyn<double>(Mm &, Mr_idx_type, const Subscripts &, const Mm &);
