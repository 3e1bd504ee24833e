// A text through str2num.
#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input in(data, size);
    const bool throwing = in.byte() % 2;
    const Mm text = TM(in.text(size).c_str());
    fuzz::guarded(throwing, [&] { fuzz::expect_valid(str2num(text)); });
    return 0;
}
