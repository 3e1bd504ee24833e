// Files of any kind, as load and whos find them: loaded whole and by names, and told of.
#include <sys/mman.h>
#include <unistd.h>

#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t) {
    static const int file = memfd_create("file", 0);
    static const Mm name = TM(("/proc/self/fd/" + std::to_string(file)).c_str());
    const std::string bytes = in.rest();
    const auto size = static_cast<ssize_t>(bytes.size());
    if (ftruncate(file, 0) != 0 || pwrite(file, bytes.data(), bytes.size(), 0) != size) return;
    Mm a, b;
    guarded(true, [] { expect_valid(load(name)); });
    guarded(true, [] { expect_valid(kn_matfile_variables(name)); });
    guarded(true, [&] { load(name, (CL(a), b)); });
    expect_valid(a);
    expect_valid(b);
}
