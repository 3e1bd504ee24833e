// A text through str2num.
#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t) { expect_valid(str2num(TM(in.rest().c_str()))); }
