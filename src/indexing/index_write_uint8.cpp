// Assignment of bytes.

#include "indexing/index_write.h"

template bool kn::vwcopy1<unsigned char>(Mm &, const Mm &, const Mm &);
template bool kn::vwcopy2<unsigned char>(Mm &, const Mm &, const Mm &, const Mm &);
template bool kn::vwcopyn<unsigned char>(Mm &, Mr_idx_type, const Subscripts &, const Mm &);
