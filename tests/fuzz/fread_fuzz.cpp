// A small file read by fread, with a size, a precision (the first line), a number of bytes to skip and a byte
// order.
#include "files/file_table.h"
#include "support/fuzz_input.h"

void fuzz::run(Input &in, uint8_t kind) {
    static const char *const precisions[] = {"double",  "float",  "int32", "int16", "uint16", "uint8",
                                             "real*10", "uint32", "int8",  "int64", "uint64"};
    const std::string name = in.line();
    const Mm precision = TM(name.empty() ? precisions[in.byte() % 11] : name.c_str());
    Mm extents = in.number(), a, count;
    if (kind & 2) extents = horzcat(extents, in.number());
    const Mm skip = in.number(), order = TM(kind & 4 ? "ieee-be" : "ieee-le");
    struct Closing {
        ~Closing() { kn::fid_close_all(); }
    } closing;
    kn::Stream stream(file_with(in.text(64)));
    const int fid = kn::fid_store(stream, "fuzz", "w+b", kn::native_format);
    fread(fid, extents, precision, skip, order, i_o, a, count);
    expect_valid(a);
    expect(a.size() <= 2 * 64);
}
