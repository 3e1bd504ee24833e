// A MAT-file of level 5, behind its header: every variable is read, shown, indexed, written and read again.
#include <cstdio>

#include "files/file_table.h"
#include "files/mat/mat5.h"
#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input in(data, size);
    const bool throwing = in.byte() & 1;
    const std::string content = in.text(1 << 16);
    kn::Stream from(kn::io::opened(std::tmpfile())), to(kn::io::opened(std::tmpfile()));
    if (!from || !to) return 0;
    std::fseek(from.get(), 128, SEEK_SET);
    std::fwrite(content.data(), 1, content.size(), from.get());
    std::fflush(from.get());
    kn_set_print_handler([](const char *) {});
    fuzz::guarded(throwing, [&] {
        kn::Mat5Reader reader(from.get(), "from");
        kn::Mat5Writer writer(to.get(), "to");
        kn::Mat5Entry entry;
        int variables = 0;
        bool written = writer.header();
        while (reader.next(entry)) ++variables;
        fuzz::expect(variables <= static_cast<int>(content.size() / 8));
        reader.rewind();
        for (Mm x; variables > 0 && reader.read(x); --variables) {
            fuzz::expect_valid(x);
            display(x);
            if (x.size() > 0) fuzz::expect_valid(Mm(x(double(x.size()))));
            written = writer.write(x, reader.name()) && written;
        }
        if (!written) return;
        std::fflush(to.get());
        Mm x;
        fuzz::expect(kn::Mat5Reader(to.get(), "to").next(entry) == (kn::Mat5Reader(to.get(), "to").read(x)));
        fuzz::expect_valid(x);
    });
    return 0;
}
