// Values to a MAT-file of level 5. File format: mat5_layout.h.
//
// A matrix element is written with a byte count of 0, which is patched when its end is known.

#include <algorithm>
#include <cstring>

#include "files/mat/mat5.h"
#include "files/mat/mat5_layout.h"
#include "files/precision.h"
#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/sparse.h"
#include "text/dates/date_parts.h"
#include "value/header.h"
#include "value/nesting.h"
#include "value/sparse_walk.h"

namespace kn {

using namespace mat5;

namespace {

Class class_of(const Mm &x) {
    if (x.issparse()) return sparse_class;
    if (x.isstr() && x.gettype() != kn_Mm) return text_class;
    if (x.gettype() == kn_uint8) return uint8_class;
    if (x.gettype() == kn_Mm)
        return !x.isstruct() ? cell_class : x.getclassid() != 0 ? object_class : struct_class;
    return double_class;
}

void to_codes(const double *from, kn_size n, uint16_t *to) {
    bool characters = true; // as in nearly all text: converted by vector instructions
    for (kn_size k = 0; k < n; ++k) characters &= (from[k] >= 0) & (from[k] < 65536);
    for (kn_size k = 0; k < n; ++k)
        to[k] = characters ? static_cast<uint16_t>(static_cast<int>(from[k]))
                           : static_cast<uint16_t>(low_bits(from[k]));
}

// An array of getIr or getJc.
struct Indices {
    kn_size *p;
    ~Indices() { freeIrJc(p, nullptr); }
};

} // namespace

struct Mat5Encoder {
    Mat5Writer &writer;
    Mat5Output &out;
    const char *file;

    explicit Mat5Encoder(Mat5Writer &w) : writer(w), out(w.out_), file(w.file_) {}
    struct Level { // of a value whose elements are being written
        const Mm *x;
        kn_size at;
        int field;
        uint64_t start;
    };
    bool variable(const Mm &x, const char *name);
    bool begin(const Mm &x, Class type, const char *name) const;
    bool end(uint64_t start) const;
    bool next(Level &level, const Mm *&value) const;
    const char *letter(char (&text)[2]) const;
    bool tag(Type type, uint64_t bytes) const;
    bool text(const char *x) const;
    bool array(Type type, const void *data, uint64_t bytes) const;
    bool planes(Type type, const Mm &x, uint64_t bytes) const;
    template <class T, class F> bool blocks(Type type, kn_size n, F put) const;
    bool codes(const Mm &x) const;
    bool indices(const kn_size *x, kn_size n) const;
    bool sparse(const Mm &x) const;
    bool field_names(const Mm &x) const;
    bool data(const Mm &x, Class type) const;
    bool failed(const char *format) const {
        error(format, file);
        return false;
    }
    bool too_large() const { return failed("save5: '%s' can not hold a variable of more than 4 GB"); }
    bool not_written() const { return failed("load: '%s' could not write data set"); }
};

// ---- Elements ----

bool Mat5Encoder::tag(Type type, uint64_t bytes) const {
    const uint32_t count = static_cast<uint32_t>(bytes), words[] = {type, count}, small = type | count << 16;
    return bytes < 5 ? out.put(&small, sizeof small) : out.put(words, sizeof words);
}

bool Mat5Encoder::text(const char *x) const {
    const size_t n = std::strlen(x);
    return out.align() && tag(int8, n) && out.put(x, n);
}

bool Mat5Encoder::array(Type type, const void *data, uint64_t bytes) const {
    return out.align() && tag(type, bytes) && out.put(data, static_cast<size_t>(bytes));
}

bool Mat5Encoder::planes(Type type, const Mm &x, uint64_t bytes) const {
    return array(type, x.addr(), bytes) && (!x.isc() || array(type, x.addi(), bytes));
}

// ---- Classes ----

// n elements of type T, which put(to, first, m) makes a block at a time.
template <class T, class F> bool Mat5Encoder::blocks(Type type, kn_size n, F put) const {
    constexpr kn_size room = 512;
    T block[room];
    if (!out.align() || !tag(type, sizeof(T) * static_cast<uint64_t>(n))) return false;
    for (kn_size done = 0; done < n; done += room) {
        const kn_size m = std::min(room, n - done);
        put(block, done, m);
        if (!out.put(block, sizeof *block * static_cast<size_t>(m))) return false;
    }
    return true;
}

bool Mat5Encoder::codes(const Mm &x) const {
    return blocks<uint16_t>(uint16, x.getnnz(), [&x](uint16_t *to, kn_size first, kn_size m) {
        if (x.gettype() == kn_uint8)
            std::copy_n(x.getpr(static_cast<unsigned char *>(nullptr)) + first, m, to);
        else
            to_codes(x.addr() + first, m, to);
    });
}

bool Mat5Encoder::indices(const kn_size *x, kn_size n) const {
    return blocks<int32_t>(int32, n, [x](int32_t *to, kn_size first, kn_size m) {
        std::transform(x + first, x + first + m, to, [](kn_size k) { return static_cast<int32_t>(k); });
    });
}

bool Mat5Encoder::sparse(const Mm &x) const {
    const kn_size n = x.getnnz(), starts = column_count(x) + 1;
    if (4 * static_cast<uint64_t>(starts) > UINT32_MAX) return too_large();
    const Indices ir{getIr(x)}, jc{ir.p ? getJc(x) : nullptr};
    if (!jc.p) return false;
    return (indices(ir.p, n) && indices(jc.p, starts) && planes(float64, x, 8 * static_cast<uint64_t>(n))) ||
           not_written();
}

bool Mat5Encoder::field_names(const Mm &x) const {
    const uint32_t all = static_cast<uint32_t>(x.getnfields()) * field_bytes,
                   words[] = {int32 | 4 << 16, field_bytes, int8, all};
    bool taken = out.align() && out.put(words, sizeof words);
    for (int f = 0; f < x.getnfields() && taken; ++f) {
        char name[field_bytes] = {};
        const char *field = x.getfields()[f];
        std::memcpy(name, field, std::min<size_t>(std::strlen(field), field_bytes));
        taken = out.put(name, field_bytes);
    }
    return taken || failed("save5: could not save field name in file '%s'");
}

// What precedes the elements of a cell or structure; the whole of any other value.
bool Mat5Encoder::data(const Mm &x, Class type) const {
    const uint64_t n = static_cast<uint64_t>(x.getnnz());
    if (n * (x.gettype() == kn_double ? 8 : x.isstr() ? 2 : 1) > UINT32_MAX) return too_large();
    if (type == sparse_class) return sparse(x);
    if (type == text_class) return codes(x) || not_written();
    if (type == uint8_class) return planes(uint8, x, n) || not_written();
    if (type == double_class) return planes(float64, x, 8 * n) || not_written();
    if (type == cell_class) return true;
    if (type == object_class && !text(kn_class_name(x.getclassid())))
        return failed("save5: could not save field name in file '%s'");
    return field_names(x);
}

// ---- Variables ----

const char *Mat5Encoder::letter(char (&text)[2]) const {
    unsigned char &c = writer.letter_;
    c = c == 0 || c == '{' ? 'A' : c == '[' ? 'a' : static_cast<unsigned char>(c + 1);
    text[0] = static_cast<char>(c);
    text[1] = '\0';
    return text;
}

bool Mat5Encoder::begin(const Mm &x, Class type, const char *name) const {
    const uint32_t ndims = static_cast<uint32_t>(x.getndims()),
                   flags = type | (x.islogical() ? logical_flag : 0) |
                           (x.isc() && type != text_class ? complex_flag : 0),
                   room = type == sparse_class ? static_cast<uint32_t>(std::max<kn_size>(x.getnnz(), 1)) : 0;
    const uint32_t head[] = {matrix, 0, 6, 8, flags, room, int32, 4 * ndims};
    if (!out.put(head, sizeof head)) return failed("save5: '%s' could not write header");
    int32_t dims[most_dims];
    for (uint32_t k = 0; k < ndims; ++k) {
        if (x.getdims()[k] > INT32_MAX) return too_large();
        dims[k] = static_cast<int32_t>(x.getdims()[k]);
    }
    if (!out.put(dims, 4 * ndims)) return failed("savev5: could not write file '%s'.");
    return text(name) || failed("save5: could not save name to file '%s'");
}

// Patches the byte count of the element that began at `start`.
bool Mat5Encoder::end(uint64_t start) const {
    if (!out.align()) return not_written();
    const uint64_t bytes = out.at() - start - 8;
    if (bytes > UINT32_MAX) return too_large();
    return out.patch(start + 4, static_cast<uint32_t>(bytes)) || failed("save5: '%s' could not write header");
}

// The next value to write of a cell or structure, null after the last. False after a report.
bool Mat5Encoder::next(Level &level, const Mm *&value) const {
    const Mm &x = *level.x;
    value = nullptr;
    if (level.at < x.getnnz() && !x.isstruct()) value = &element_at(x, level.at++);
    while (level.at < x.getnnz() && !value) {
        const Mm &fields = element_at(x, level.at);
        if (fields.gettype() != kn_Mm || fields.getnnz() < x.getnfields()) {
            error("structure '%s' is built wrong", kn_display_name(x));
            return false;
        }
        if (level.field < x.getnfields())
            value = &element_at(fields, level.field++);
        else
            level.field = 0, ++level.at;
    }
    return true;
}

bool Mat5Encoder::variable(const Mm &whole, const char *name) {
    whole.warn_uninit();
    Mm held = whole; // in case an error handler assigns to the variable
    Header::lend_name(held, whole.getname());
    Path<Level> levels;
    for (const Mm *x = &held; x;) {
        char one[2];
        if (x != &held) x->warn_uninit(), name = x->getname();
        if (!name) name = letter(one);
        const Class type = class_of(*x);
        if (!out.align()) return failed("save5: '%s' could not write header");
        const uint64_t start = out.at();
        if (!begin(*x, type, name) || (x->gettype() != kn_none && !data(*x, type))) return false;
        if (x->gettype() != kn_Mm) {
            if (!end(start)) return false;
        } else if (!levels.push({x, 0, 0, start}))
            return false;
        for (x = nullptr; !x && !levels.empty();) {
            if (!next(levels.top(), x)) return false;
            if (x) break;
            if (!end(levels.top().start)) return false;
            levels.pop();
        }
    }
    return true;
}

bool Mat5Writer::header() {
    char head[header_bytes + 1];
    os::LocalTime t;
    int n = std::snprintf(head, sizeof head, "TARVEK 4.0 MAT-file, Platform: PCWIN, Created on: ");
    if (os::local_time(os::wall_clock(), t))
        n += std::snprintf(head + n, sizeof head - static_cast<size_t>(n), "%s %s %02d %02d:%02d:%02d %d",
                           week_day_names[t.weekday], month_names[t.month - 1], t.day, t.hour, t.minute,
                           static_cast<int>(t.second), t.year);
    std::memset(head + n, ' ', static_cast<size_t>(text_bytes - n));
    std::memcpy(head + text_bytes, &version, sizeof version);
    std::memcpy(head + text_bytes + sizeof version, &order_mark, sizeof order_mark);
    letter_ = 0;
    if (out_.put(head, header_bytes) && out_.flush()) return true;
    error("save5: '%s' could not write header", file_);
    return false;
}

bool Mat5Writer::write(const Mm &x, const char *name) {
    if (!Mat5Encoder(*this).variable(x, name)) return false;
    if (out_.flush()) return true;
    error("load: '%s' could not write data set", file_);
    return false;
}

} // namespace kn
