// A format (the first line) and values through sprintf.
#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input in(data, size);
    const bool throwing = in.byte() % 2;
    const Mm format = TM(in.line().c_str());
    Mm list(0, 0, 0, 1, in.byte() % 5, kn_Mm);
    for (int k = 1; k <= list.size(); ++k) list.mr(k) = in.value();
    fuzz::guarded(throwing, [&] {
        const Mm text = sprintf(format, list);
        fuzz::expect_valid(text);
        fuzz::expect(text.isstr() || text.size() == 0);
        for (int k = 1; k <= text.size(); ++k) fuzz::expect(text.r(k) >= 1 && text.r(k) <= 255);
    });
    return 0;
}
