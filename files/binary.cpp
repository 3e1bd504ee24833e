// Numbers in binary files.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "core/header.h"
#include "core/scratch.h"
#include "files/file_table.h"
#include "files/inputs.h"
#include "files/precision.h"
#include "files/stream_calls.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/files.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"

using namespace kn;

namespace {

// A file and how its elements stand there.
struct Layout {
    int slot;
    std::FILE *stream;
    Precision precision;
    int skip;
    bool swap;

    Layout(int s, const Mm &name, const Mm &skipped, const Mm &format)
        : slot(s), stream(fid_stream(s)), precision(file_precision(name)), skip(count_in(skipped)) {
        const int code = machine_format_code(format);
        swap = (code == unknown_format ? fid_format(slot) : code) != native_format;
    }
    long long stride() const { return static_cast<long long>(precision.size) + skip; }
};

// Bytes up to the end of the file; 0 where that can't be told.
long long bytes_left(std::FILE *stream) {
    const long at = io::tell(stream);
    if (at < 0 || io::seek(stream, 0, SEEK_END) != 0) return 0;
    const long end = io::tell(stream);
    return io::seek(stream, at, SEEK_SET) == 0 && end > at ? end - at : 0;
}

struct Shape {
    double rows, cols;
    bool clamped; // to what is there
};

// The shape for what a file of `avail` bytes can give of the size asked for.
Shape shape_of(const Mm &size, long long avail, const Layout &f) {
    double rows = INFINITY, cols = 1;
    if (size.size() > 0) {
        rows = std::trunc(*size.addr());
        if (size.size() == 2) cols = std::trunc(*size.addr(2));
    }
    const long long e = f.precision.size, stride = f.stride();
    const double most = avail >= e ? static_cast<double>((avail - e) / stride + 1) : 0;
    if (rows > most || std::isnan(rows) || std::isnan(cols)) return {most, 1, true};
    if (!(rows * cols > most)) return {rows, cols, false};
    if (rows < 1 || cols < 1) return {0, 0, true};
    const double line = static_cast<double>(stride) * rows, there = static_cast<double>(avail);
    cols = std::floor(there / line);
    if (cols * line < there) ++cols;
    return {rows, cols, true};
}

// Reads elements with gaps; the stream's count of items. Small gaps are read along, many elements a call.
ptrdiff_t read_apart(double *to, ptrdiff_t n, const Layout &f) {
    constexpr long long block_bytes = 1 << 16, largest_gap = 1 << 10;
    const size_t e = static_cast<size_t>(f.precision.size);
    const long long stride = f.stride();
    const long start = io::tell(f.stream);
    ptrdiff_t done = 0, end = n;
    if (f.skip <= largest_gap && f.precision.code < 9 && start >= 0) {
        char block[block_bytes];
        const ptrdiff_t room = static_cast<ptrdiff_t>(block_bytes / stride);
        const size_t step = static_cast<size_t>(stride);
        while (done < n) {
            const ptrdiff_t wanted = std::min(n - done, room);
            const size_t got = io::read(block, 1, static_cast<size_t>(wanted) * step, f.stream);
            const ptrdiff_t whole = got < e ? 0 : static_cast<ptrdiff_t>((got - e) / step + 1);
            for (ptrdiff_t k = 1; k < whole; ++k)
                std::memmove(block + static_cast<size_t>(k) * e, block + static_cast<size_t>(k) * step, e);
            decode_elements(block, to + done, whole, f.precision.code, f.swap);
            done += whole;
            if (whole < wanted) break;
        }
        const long long behind = start + done * stride;
        if (behind > LONG_MAX || io::seek(f.stream, static_cast<long>(behind), SEEK_SET) != 0) end = done;
    }
    ptrdiff_t items = done;
    for (bool more = true; more && done < end;) {
        const ptrdiff_t got = read_elements(to + done, 1, f.stream, f.precision.code, f.swap);
        if (got < 1) break;
        items += got;
        ++done;
        more = io::seek(f.stream, f.skip, SEEK_CUR) == 0;
    }
    std::fill(to + done, to + n, 0.0);
    return items;
}

Mm read_matrix(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format,
               Mm &count) {
    if (size.isstr()) return read_matrix(fid, Inf, size, skip, format, count);
    count = 0.0;
    const int slot = file_lookup(fid);
    if (slot < 0) return nop_M;
    if (size.size() > 2) {
        error("fread: can not read multi-dimensional matrices");
        return nop_M;
    }
    const Mm sides = mdouble(size);
    if (sides.gettype() != kn_double || sides.issparse() || sides.size() != size.size()) return nop_M;
    const Layout f(slot, precision, skip, format);
    const Shape shape = shape_of(sides, bytes_left(f.stream), f);

    Mm out;
    if (shape.rows >= 1 && shape.cols >= 1) {
        if (shape.rows * shape.cols > INT_MAX) {
            out_of_memory();
            return nop_M;
        }
        const int m = static_cast<int>(shape.rows), n = static_cast<int>(shape.cols);
        out = Mm(0, 0, 0, m, n, kn_double);
        if (lacks(out, m * n)) return nop_M;
        double *to = out.addr();
        const ptrdiff_t items =
            f.skip ? read_apart(to, m * n, f) : read_elements(to, m * n, f.stream, f.precision.code, f.swap);
        if (items == 0) std::fill(to, to + m * n, 0.0);
        count = static_cast<double>(items);
    }
    if (shape.clamped) {
        char beyond;
        io::read(&beyond, 1, 1, f.stream);
    }
    check(out);
    return out;
}

// Writes elements, each followed by a gap; how many the stream took. Where no gap can be made, the first is
// the last.
template <class T> ptrdiff_t write_all(const T *from, ptrdiff_t n, const Layout &f) {
    if (!f.skip) return write_elements(from, n, f.stream, f.precision.code, f.swap);
    ptrdiff_t done = 0;
    for (bool more = true; more && done < n;) {
        if (write_elements(from + done, 1, f.stream, f.precision.code, f.swap) < 1) break;
        ++done;
        more = io::seek(f.stream, f.skip, SEEK_CUR) == 0;
    }
    return done;
}

} // namespace

// ---- fread ----

Mm fread(const Mm &fid) { return fread(fid, Inf); }
Mm fread(const Mm &fid, const Mm &size) { return fread(fid, size, TM("uchar")); }
Mm fread(const Mm &fid, const Mm &size, const Mm &precision) { return fread(fid, size, precision, 0.0); }
Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip) {
    return fread(fid, size, precision, skip, TM("?"));
}
Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format) {
    Mm count;
    return read_matrix(fid, size, precision, skip, format, count);
}

Mm fread(const Mm &fid, i_o_t, Mm &a, Mm &count) { return fread(fid, Inf, i_o, a, count); }
Mm fread(const Mm &fid, const Mm &size, i_o_t, Mm &a, Mm &count) {
    return fread(fid, size, TM("uchar"), i_o, a, count);
}
Mm fread(const Mm &fid, const Mm &size, const Mm &precision, i_o_t, Mm &a, Mm &count) {
    return fread(fid, size, precision, 0.0, i_o, a, count);
}
Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, i_o_t, Mm &a, Mm &count) {
    return fread(fid, size, precision, skip, TM("?"), i_o, a, count);
}
Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format, i_o_t, Mm &a,
         Mm &count) {
    Mm n, out = read_matrix(fid, size, precision, skip, format, n);
    a = out;
    count = n;
    return x_M;
}

// ---- fwrite ----

Mm fwrite(const Mm &fid, const Mm &a) { return fwrite(fid, a, TM("uchar")); }
Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision) { return fwrite(fid, a, precision, 0.0); }
Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip) {
    return fwrite(fid, a, precision, skip, TM("?"));
}

Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip, const Mm &format) {
    const int slot = file_lookup(fid);
    if (slot < 0 || error_numeric(a, "fwrite")) return 0.0;
    if (!precision.isstr()) {
        error("fwrite: precision not a string");
        return 0.0;
    }
    const Layout f(slot, precision, skip, format);
    const Mm elements = full(a);
    if (elements.size() != a.size()) return 0.0;
    fid_turn(slot);
    return static_cast<double>(
        elements.gettype() == kn_uint8
            ? write_all(elements.getpr(static_cast<unsigned char *>(nullptr)), elements.size(), f)
            : write_all(elements.addr(), elements.size(), f));
}
