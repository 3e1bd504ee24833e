// Numbers in binary files.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>

#include "base/scratch.h"
#include "files/file_table.h"
#include "files/precision.h"
#include "files/stream_calls.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/files.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "text/text_buffer.h"
#include "value/header.h"
#include "value/number_argument.h"

using namespace kn;

namespace {

// A file and the layout of its elements.
struct Layout {
    int slot;
    std::FILE *stream;
    Precision precision;
    int skip;
    bool swap;

    Layout(int s, const Mm &name, const Mm &skipped, const Mm &format)
        : slot(s), stream(fid_stream(s)), precision(file_precision(name)),
          skip(static_cast<int>(std::min<kn_size>(count_argument(skipped), INT_MAX))) {
        const int code = machine_format_code(format);
        swap = (code == unknown_format ? fid_format(slot) : code) != native_format;
    }
    long long stride() const { return static_cast<long long>(precision.size) + skip; }
};

// Gaps up to this size are read and written together with the elements around them, many elements a call.
constexpr long long block_bytes = 1 << 16, largest_gap = 1 << 10;

// Bytes up to the end of the file; 0 where that is unknown: for pipes and devices.
long long bytes_left(std::FILE *stream) {
    const long long at = io::tell(stream);
    if (at < 0 || io::seek(stream, 0, SEEK_END) != 0) return 0;
    const long long end = io::tell(stream);
    return io::seek(stream, at, SEEK_SET) == 0 && end > at ? end - at : 0;
}

// Skips a gap; by reading it where the stream cannot seek.
bool pass(std::FILE *stream, long long bytes) {
    if (io::seek(stream, bytes, SEEK_CUR) == 0) return true;
    char block[4096];
    while (bytes > 0) {
        const size_t n = static_cast<size_t>(std::min<long long>(bytes, sizeof block));
        if (io::read(block, 1, n, stream) < n) return false;
        bytes -= static_cast<long long>(n);
    }
    return true;
}

struct Shape {
    double rows, cols;
    bool clamped; // to what the file has
};

// The shape of the result when a file with `avail` bytes left is asked for the given size.
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

// Reads elements with gaps; returns the stream's count of items.
ptrdiff_t read_apart(double *to, ptrdiff_t n, const Layout &f) {
    const size_t e = static_cast<size_t>(f.precision.size);
    const long long stride = f.stride(), start = io::tell(f.stream);
    ptrdiff_t done = 0, end = n;
    if (f.skip <= largest_gap && f.precision.code < 9) {
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
        if (start < 0 || io::seek(f.stream, start + done * stride, SEEK_SET) != 0) end = done;
    }
    ptrdiff_t items = done;
    for (bool more = true; more && done < end;) {
        const ptrdiff_t got = read_elements(to + done, 1, f.stream, f.precision.code, f.swap);
        if (got < 1) break;
        items += got;
        ++done;
        more = pass(f.stream, f.skip);
    }
    std::fill(to + done, to + n, 0.0);
    return items;
}

ptrdiff_t read_items(double *to, ptrdiff_t n, const Layout &f) {
    const ptrdiff_t items =
        f.skip ? read_apart(to, n, f) : read_elements(to, n, f.stream, f.precision.code, f.swap);
    if (items == 0) std::fill(to, to + n, 0.0);
    return items;
}

// A matrix of this shape; empty for no shape, and when memory is exhausted.
Mm matrix_of(const Shape &shape) {
    if (shape.rows < 1 || shape.cols < 1) return nop_M;
    return Mm(0, 0, 0, double_to_size(shape.rows), double_to_size(shape.cols), kn_double);
}

// From a file whose remaining size is known.
Mm read_sized(const Shape &shape, const Layout &f, ptrdiff_t &items) {
    Mm out = matrix_of(shape);
    if (out.getnnz() > 0) items = read_items(out.addr(), out.getnnz(), f);
    if (shape.clamped) {
        char beyond;
        io::read(&beyond, 1, 1, f.stream);
    }
    return out;
}

// From a pipe, a device, or at the end of a file: reads until the size asked for, or the end, is reached.
Mm read_unsized(const Mm &size, const Layout &f, ptrdiff_t &items) {
    const Shape most = shape_of(size, LLONG_MAX, f);
    const double limit = most.rows >= 1 && most.cols >= 1 ? most.rows * most.cols : 0;
    const ptrdiff_t per_element = f.precision.code < 9 ? 1 : 2;
    TextBuffer bytes;
    double block[4096];
    kn_size stored = 0;
    for (bool more = true; more && static_cast<double>(stored) < limit;) {
        const ptrdiff_t n = static_cast<ptrdiff_t>(
                            std::min<double>(limit - static_cast<double>(stored), std::size(block))),
                        got = read_items(block, n, f);
        const size_t elements = static_cast<size_t>((got + per_element - 1) / per_element);
        bytes.append({reinterpret_cast<const char *>(block), elements * sizeof *block});
        if (!bytes) return nop_M;
        stored += static_cast<kn_size>(elements);
        items += got;
        more = got == n * per_element;
    }
    const Shape shape = shape_of(size, stored * f.stride() - f.skip, f);
    if (shape.clamped && limit == 0) { // nothing was asked for, but the file may be at its end
        const int next = std::getc(f.stream);
        if (next != EOF) std::ungetc(next, f.stream);
    }
    Mm out = matrix_of(shape);
    if (out.getnnz() == 0) return out;
    std::memcpy(out.addr(), bytes.data(), bytes.size());
    std::fill(out.addr() + stored, out.addr() + out.getnnz(), 0.0);
    return out;
}

Mm read_matrix(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format,
               Mm &count) {
    if (size.isstr()) return read_matrix(fid, Inf, size, skip, format, count);
    count = 0.0;
    const int slot = file_lookup(fid, "fread");
    if (slot < 0) return nop_M;
    if (size.size() > 2) {
        error("fread: can not read multi-dimensional matrices");
        return nop_M;
    }
    const Mm sides = full(mdouble(size));
    if (sides.gettype() != kn_double || sides.size() != size.size()) return nop_M;
    const Layout f(slot, precision, skip, format);
    const long long avail = bytes_left(f.stream);
    ptrdiff_t items = 0;
    Mm out = avail > 0 ? read_sized(shape_of(sides, avail, f), f, items) : read_unsized(sides, f, items);
    count = static_cast<double>(out.size() > 0 ? items : 0);
    check(out);
    return out;
}

// Writes elements and, between them, the old contents of the file, many elements a call.
template <class T> ptrdiff_t write_over(const T *from, ptrdiff_t n, const Layout &f, std::FILE *old) {
    constexpr size_t large_block_bytes = 1 << 20;
    const size_t e = static_cast<size_t>(f.precision.size), step = static_cast<size_t>(f.stride());
    const ptrdiff_t room = std::min(n, static_cast<ptrdiff_t>(large_block_bytes / step));
    const Scratch<char> space(room * static_cast<ptrdiff_t>(step));
    if (!space) return 0;
    char *const block = space.get();
    bool more = true; // of the old contents: what follows their end was written meanwhile
    size_t unclear = static_cast<size_t>(room) * step; // up to here gaps may hold nonzero bytes
    for (ptrdiff_t done = 0; done < n;) {
        const ptrdiff_t m = std::min(n - done, room);
        const size_t bytes = static_cast<size_t>(m) * step - (done + m < n ? 0 : step - e),
                     held = more ? io::read(block, 1, bytes, old) : 0;
        more = more && held == bytes;
        if (!more && !std::feof(old)) return done;
        if (held < unclear) std::memset(block + held, 0, unclear - held);
        unclear = held;
        encode_elements(from + done, m, f.precision.code, f.swap, block, step);
        const size_t written = io::write(block, 1, bytes, f.stream);
        if (written < bytes) return done + static_cast<ptrdiff_t>((written + step - e) / step);
        done += m;
    }
    io::seek(f.stream, f.skip, SEEK_CUR);
    return n;
}

// Writes elements, each followed by a gap; returns how many the stream accepted. Where a gap is impossible,
// writing ends after the first element. In append mode the elements are written without gaps.
template <class T> ptrdiff_t write_all(const T *from, ptrdiff_t n, const Layout &f) {
    constexpr ptrdiff_t worth_a_copy = 16;
    const bool appends = std::strchr(fid_mode(f.slot), 'a');
    if (!f.skip || appends) {
        const ptrdiff_t done = write_elements(from, n, f.stream, f.precision.code, f.swap);
        if (f.skip && done > 0) io::seek(f.stream, f.skip, SEEK_CUR);
        return done;
    }
    if (n >= worth_a_copy && f.skip <= largest_gap && io::flush(f.stream) == 0) {
        const Stream old(io::open_again(f.stream));
        const long long at = io::tell(f.stream);
        if (old && at >= 0 && io::seek(old.get(), at, SEEK_SET) == 0)
            return write_over(from, n, f, old.get());
    }
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
    const int slot = file_lookup(fid, "fwrite");
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
