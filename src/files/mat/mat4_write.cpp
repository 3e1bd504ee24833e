// Writing MAT-files of level 4; mat4_read.cpp describes their format. Of the choices there this writes:
//
//     type    1000 M + T: M the order of the machine, P 0 for doubles, whatever the value holds; T 1 text,
//             2 sparse (text, too: nobody reads 3)
//     imagf   1 for a complex value; 0 for a sparse one, whose triplets have a column of imaginary parts
//     namlen  characters of the name and 1; a value without a name is "noname"

#include <cstring>

#include "files/mat/matfile.h"
#include "files/precision.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "value/header.h"
#include "value/sparse_walk.h"

namespace kn {
namespace {

constexpr int double_code = 0, int32_code = 2;

// A row [i j value], or [i j re im], for each entry, and the row [rows columns 0] with the size.
Mm triplets_of(const Mm &s) {
    const kn_size n = s.getnnz(), width = s.isc() ? 4 : 3;
    Mm out(0, 0, 0, n + 1, width, kn_double);
    if (lacks(out, (n + 1) * width)) return out;
    auto put = [&](kn_size k, kn_size row, kn_size column, double re, double im) {
        const double fields[] = {double(row), double(column), re, im};
        for (int c = 0; c < width; ++c) *out.addr(k + 1, c + 1) = fields[c];
    };
    for_entries(s, [&](kn_size k, kn_size row, kn_size column) {
        put(k, row + 1, column + 1, s.addr()[k], s.isc() ? s.addi()[k] : 0);
    });
    put(n, s.rows(), s.cols(), 0, 0);
    return out;
}

bool failed(const char *what) {
    error("save: could not write %s", what);
    return false;
}

} // namespace

bool mat4_save(std::FILE *stream, const Mm &x) {
    if (x.getndims() > 2) {
        error("save: matrix '%s' has more than two dimensions and can not be saved in 4.0 format",
              kn_display_name(x));
        return true;
    }
    x.warn_uninit();
    Mm m = x;
    if (x.gettype() != kn_double && x.gettype() != kn_none) {
        m = Mm();
        m.deepcopy(x, kn_double); // which reports cells
        if (x.gettype() == kn_Mm) return true;
        if (lacks(m, x.getnnz())) return false;
    }
    if (m.issparse()) {
        m = triplets_of(m);
        if (m.size() == 0) return false;
    }
    if (std::max(m.rows(), m.cols()) > INT32_MAX) {
        error("save: matrix '%s' is too large and can not be saved in 4.0 format", kn_display_name(x));
        return true;
    }
    const char *name = x.getname() && *x.getname() ? x.getname() : "noname";
    const size_t namlen = std::strlen(name) + 1;
    const int kind = x.issparse() ? 2 : x.isstr() ? 1 : 0;
    const double header[] = {1000.0 * native_format + kind, double(m.rows()), double(m.cols()),
                             double(m.isc()), static_cast<double>(namlen)};
    const kn_size fields = std::ssize(header), n = m.getnnz();
    if (write_elements(header, fields, stream, int32_code, false) != fields) return failed("header");
    if (io::write(name, 1, namlen, stream) != namlen) return failed("matrix name");
    if (write_elements(m.addr(), n, stream, double_code, false) != n) return failed("real part");
    if (m.isc() && write_elements(m.addi(), n, stream, double_code, false) != n) return failed("imag part");
    return true;
}

} // namespace kn
