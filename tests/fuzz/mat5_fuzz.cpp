// A MAT-file of level 5, after its header: every variable is read, shown, indexed, written and read again.
#include "files/file_table.h"
#include "files/mat/mat5.h"
#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t) {
    const std::string content = in.rest();
    kn::Stream from(file_with(std::string(128, '\0') + content)), to(file_with(""));
    kn::Mat5Reader reader(from.get(), "from");
    kn::Mat5Writer writer(to.get(), "to");
    kn::Mat5Entry entry;
    int variables = 0;
    bool written = writer.header();
    while (reader.next(entry)) ++variables;
    expect(variables <= static_cast<int>(content.size() / 8));
    reader.rewind();
    Mm x;
    for (; variables > 0 && reader.read(x); --variables) {
        expect_valid(x);
        display(x);
        if (x.size() > 0) expect_valid(Mm(x(double(x.size()))));
        written = writer.write(x, reader.name()) && written;
    }
    if (!written) return;
    std::fflush(to.get());
    expect(kn::Mat5Reader(to.get(), "to").next(entry) == kn::Mat5Reader(to.get(), "to").read(x));
    expect_valid(x);
}
