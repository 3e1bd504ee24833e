// Reading MAT-files of level 4.
//
// A file is a sequence of matrices, one after another, and has no header itself. A matrix is:
//
//     offset  bytes                          field
//     0       4                              type    decimal digits MOPT, see below
//     4       4                              mrows   rows
//     8       4                              ncols   columns
//     12      4                              imagf   not 0: there is an imaginary part
//     16      4                              namlen  bytes of the name, with its null character
//     20      namlen                         name
//             mrows * ncols * element size   real part, column after column
//             the same, when imagf           imaginary part
//
//     M  order of bytes in all numbers: 0 little endian, 1 big endian
//     O  0
//     P  elements: 0 double, 1 single, 2 int32, 3 int16, 4 uint16, 5 uint8 (the codes of precision.h)
//     T  0 numbers, 1 text, 2 sparse
//
// The numbers of the header are signed 32-bit integers. A sparse matrix is stored as full: a row [i j value],
// or [i j re im], for each entry, and a last row [rows columns 0] with its size.
//
// A type in the opposite byte order is negative or above 9999, and so is recognised. No header field is used
// before it has been checked against the bytes left in the file.

#include <algorithm>
#include <cstring>

#include "files/mat/matfile.h"
#include "files/precision.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

constexpr int int32_code = 2, header_fields = 5, longest_name = 255;
constexpr int element_size[] = {8, 4, 4, 2, 2, 1}; // by P

// The header fields are doubles, so that their products can't overflow.
struct Header4 {
    double type, rows, cols, imagf, namlen;
    bool swap = false;
    int m = 0, o = 0, p = 0, t = 0;

    double count() const { return rows * cols; }
    double plane() const { // bytes; below 0: unknown
        return p >= 0 && p < 6 ? count() * element_size[p] : -1;
    }
    bool complex() const { return imagf != 0; }
    bool has_extents() const { return rows >= 0 && cols >= 0; }
};

enum class Found { matrix, end, damage };

// Swaps when the byte order given by the type isn't the machine's; an invalid type changes nothing.
Found read_header(const MatFile &file, Header4 &h) {
    unsigned char raw[4 * header_fields];
    double field[header_fields];
    const long long left = file.left();
    if (io::read(raw, sizeof raw, 1, file.get()) != 1)
        return left >= 0 && left < static_cast<long long>(sizeof raw) ? Found::end : Found::damage;
    auto decode = [&](bool swap) {
        decode_elements(raw, field, header_fields, int32_code, swap);
        h.type = field[0], h.rows = field[1], h.cols = field[2], h.imagf = field[3], h.namlen = field[4];
    };
    decode(false);
    if (h.type < 0 || h.type >= 10000) decode_elements(raw, &h.type, 1, int32_code, true);
    const int type = static_cast<int>(h.type);
    if (type < 0) // in either order
        h.m = h.p = -1;
    else
        h.m = type / 1000, h.o = type / 100 % 10, h.p = type / 10 % 10, h.t = type % 10;
    h.swap = h.m == 1 - native_format;
    if (h.swap) {
        decode(true);
        h.type = type;
    }
    return Found::matrix;
}

// The first n bytes of the name. False when there are fewer.
bool read_name(const MatFile &file, double n, char (&name)[longest_name + 1]) {
    std::memset(name, 0, sizeof name);
    if (n < 0 || n > static_cast<double>(file.left())) return false;
    const size_t bytes = static_cast<size_t>(n);
    return io::read(name, 1, bytes, file.get()) == bytes;
}

bool begin_alike(const char *a, const char *b) {
    return std::strncmp(a, b, std::min(std::strlen(a), std::strlen(b))) == 0;
}

bool zeros_and_ones(const Mm &x) {
    const kn_size n = x.getnnz();
    auto bit = [](double v) { return v == 0 || v == 1; };
    return n > 0 && std::all_of(x.addr(), x.addr() + n, bit) &&
           (!x.isc() || std::all_of(x.addi(), x.addi() + n, [](double v) { return v == 0; }));
}

Mm sparse_of_triplets(const Mm &rows) {
    const bool empty = rows.rows() == 1 && rows.cols() >= 3 && *rows.addr(1) == 0 && *rows.addr(2) == 0;
    return spconvert(empty ? nop_M : rows); // [0 0 0] is the size row of a matrix without elements
}

// The elements after a header. False after a report.
bool read_data(const MatFile &file, const Header4 &h, Mm &out) {
    const double n = h.count(), left = static_cast<double>(file.left());
    auto failed = [&](const char *part) {
        error("load4: could not read %s part from file '%s'", part, file.name);
        return false;
    };
    if (!h.has_extents() || h.plane() < 0 || h.plane() > left) return failed("real");
    if (h.complex() && 2 * h.plane() > left) return failed("imaginary");
    if (n == 0) return true;
    out = Mm(h.complex(), 0, 0, static_cast<kn_size>(h.rows), static_cast<kn_size>(h.cols), kn_double);
    if (static_cast<double>(out.getnnz()) != n) return false;
    const kn_size count = out.getnnz();
    if (read_elements(out.addr(), count, file.get(), h.p, h.swap) != count) return failed("real");
    if (h.complex() && read_elements(out.addi(), count, file.get(), h.p, h.swap) != count)
        return failed("imaginary");
    return true;
}

// Loads the next matrix. Found::damage after a report.
Found load(const MatFile &file, const char *wanted, Mm &out) {
    Header4 h;
    const Found found = read_header(file, h);
    if (found == Found::damage) error("load4: '%s' could not read header", file.name);
    if (found != Found::matrix) return found;
    if (h.m != 0 && h.m != 1) {
        error("load4: '%s' no conversion from this", file.name);
        os::end_process(1);
    }
    if (h.o != 0) warning("load4: '%s' O not zero", file.name);
    if (h.t >= 3) {
        error("load4: '%s' unknown matrix type", file.name);
        return Found::damage;
    }
    char name[longest_name + 1];
    if (h.namlen > longest_name) warning("load4: name field is too long in file '%s'", file.name);
    if (!read_name(file, std::min<double>(h.namlen, longest_name), name)) {
        error("load4: '%s' could not read matrix name", file.name);
        return Found::damage;
    }
    if (wanted && !begin_alike(name, wanted))
        warning("load4 '%s': variable named '%s' loaded into '%s'", file.name, name, wanted);
    if (!read_data(file, h, out)) return Found::damage;
    out.setstr(h.t & 1);
    out.setlogical(zeros_and_ones(out));
    if (h.t & 2) out = sparse_of_triplets(out);
    return h.t & 2 && !out.issparse() ? Found::damage : Found::matrix;
}

} // namespace

bool mat4_load(const MatFile &file, Mm &t) {
    Mm out;
    const Found found = load(file, t.getname(), out);
    check(out);
    switch (found) {
    case Found::matrix: t = out; return false;
    case Found::end: t = nop_M; return true;
    case Found::damage: t = x_M; return true;
    }
    return true;
}

bool mat4_next(const MatFile &file, MatEntry &entry) {
    Header4 h;
    const Found found = read_header(file, h);
    if (found == Found::end) return false;
    char name[longest_name + 1];
    const double kept = std::min<double>(h.namlen, longest_name), rest = h.namlen - kept;
    const double bytes = h.complex() ? 2 * h.plane() : h.plane();
    const bool whole = found == Found::matrix && h.has_extents() && h.plane() >= 0 &&
                       read_name(file, kept, name) && rest + bytes <= static_cast<double>(file.left()) &&
                       io::seek(file.get(), static_cast<long long>(rest + bytes), SEEK_CUR) == 0;
    if (!whole) {
        error("load4: '%s' could not read header", file.name);
        return false;
    }
    std::snprintf(entry.name, sizeof entry.name, "%.*s", MatEntry::name_size - 1, name);
    entry.ndims = 2;
    entry.dims[0] = static_cast<kn_size>(h.rows);
    entry.dims[1] = static_cast<kn_size>(h.cols);
    entry.bytes = bytes;
    return true;
}

} // namespace kn
