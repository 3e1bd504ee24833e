// A small file read by fread, with a size, a precision (the first line), a number of bytes to skip and a byte
// order.
#include <cstdio>

#include "files/file_table.h"
#include "support/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const char *const precisions[] = {"double",  "float",  "int32", "int16", "uint16", "uint8",
                                             "real*10", "uint32", "int8",  "int64", "uint64"};
    fuzz::Input in(data, size);
    const uint8_t kind = in.byte();
    const std::string name = in.line();
    const Mm precision = TM(name.empty() ? precisions[in.byte() % 11] : name.c_str());
    Mm extents = in.number();
    if (kind & 2) extents = horzcat(extents, in.number());
    const Mm skip = in.number(), order = TM(kind & 4 ? "ieee-be" : "ieee-le");
    const std::string content = in.text(64);

    kn::Stream stream(kn::io::opened(std::tmpfile()));
    if (!stream) return 0;
    std::fwrite(content.data(), 1, content.size(), stream.get());
    std::rewind(stream.get());
    const int fid = kn::fid_store(stream, "fuzz", "w+b", kn::native_format);
    fuzz::guarded(kind & 1, [&] {
        Mm a, count;
        fread(fid, extents, precision, skip, order, i_o, a, count);
        fuzz::expect_valid(a);
        fuzz::expect(a.size() <= 2 * 64);
    });
    kn::fid_close(fid);
    return 0;
}
