// A format (the first line), a size and a text through sscanf.
#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input in(data, size);
    const uint8_t kind = in.byte();
    const Mm format = TM(in.line().c_str());
    const double first = kind & 2 ? in.byte() : kind & 4 ? 4 : 1e9; // few rows, since a matrix has them all
    const Mm extents = kind & 4 ? horzcat(first, in.number()) : Mm(first);
    const Mm text = TM(in.text(size).c_str());
    fuzz::guarded(kind & 1, [&] {
        Mm a, count;
        sscanf(text, format, extents, i_o, a, count);
        fuzz::expect_valid(a);
        fuzz::expect(count.size() == 0 || count.r(1) >= 0);
        fuzz::expect((kind & 4) || count.size() == 0 || a.size() <= count.r(1));
    });
    return 0;
}
