// Files of any kind, as load and whos find them: loaded whole and by names, and told of.
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const int file = memfd_create("file", 0);
    static const Mm name = TM(("/proc/self/fd/" + std::to_string(file)).c_str());
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
    kn_set_print_handler([](const char *) {});
    Mm a, b;
    for (auto work : {+[](Mm &, Mm &) { fuzz::expect_valid(load(name)); },
                      +[](Mm &, Mm &) { fuzz::expect_valid(kn_matfile_variables(name)); },
                      +[](Mm &x, Mm &y) { load(name, (CL(x), y)); }})
        fuzz::guarded(true, [&] { work(a, b); });
    fuzz::expect_valid(a);
    fuzz::expect_valid(b);
    return 0;
}
