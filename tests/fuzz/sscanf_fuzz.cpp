// A format (the first line), a size and a text through sscanf.
#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t kind) {
    const Mm format = TM(in.line().c_str());
    const double first = kind & 2 ? in.byte() : kind & 4 ? 4 : 1e9; // few rows, since a matrix has them all
    const Mm extents = kind & 4 ? horzcat(first, in.number()) : Mm(first);
    Mm a, count;
    sscanf(TM(in.rest().c_str()), format, extents, i_o, a, count);
    expect_valid(a);
    expect(count.size() == 0 || count.r(1) >= 0);
    expect((kind & 4) || count.size() == 0 || a.size() <= count.r(1));
}
