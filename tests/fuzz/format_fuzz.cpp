// A format (the first line) and values through sprintf.
#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t) {
    const Mm format = TM(in.line().c_str());
    Mm list(0, 0, 0, 1, in.byte() % 5, kn_Mm);
    for (int k = 1; k <= list.size(); ++k) list.mr(k) = in.value();
    const Mm text = sprintf(format, list);
    expect_valid(text);
    expect(text.isstr() || text.size() == 0);
    for (int k = 1; k <= text.size(); ++k) expect(text.r(k) >= 1 && text.r(k) <= 255);
}
