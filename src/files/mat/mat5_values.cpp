// Values from a MAT-file of level 5, class by class. File format: mat5_layout.h.

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "base/scratch.h"
#include "files/mat/mat5_decode.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/sparse.h"
#include "value/fields.h"
#include "value/header.h"

namespace kn {

using namespace mat5;

namespace {

// Limits structures without fields and text without data, which occupy no bytes in a file.
constexpr int most_without_bytes = 1 << 16;

constexpr uint64_t least_element = 8; // bytes of the smallest matrix element

} // namespace

// The number of elements from the dimensions in the head, each of which must occupy some bytes of the file.
// False, after a report, when memory does not suffice for them.
bool Mat5Decoder::countable(const Head &h, uint64_t bytes_each, kn_size &n) const {
    n = product(h.entry.ndims, h.entry.dims);
    const uint64_t count = n < 0 ? UINT64_MAX : static_cast<uint64_t>(n);
    if (bytes_each > 0 && count > left(h.end) / bytes_each) return unread();
    if (n < 0) out_of_memory();
    return n >= 0;
}

// ---- Numbers and text ----

bool Mat5Decoder::array(const Head &h, Mm &out) {
    const Class type = h.type();
    const bool bytes = type == uint8_class;
    if (type == double_class && h.entry.ndims == 2 && h.entry.dims[0] == 1 && h.entry.dims[1] == 1 &&
        (h.flags & ~class_mask) == 0) { // a fast path for numbers
        double x;
        if (!plane(&x, 1, type, h.end)) return false;
        out = x;
        return !lacks(out, 1);
    }
    kn_size n;
    if (!countable(h, 1, n)) return false;
    out = Mm(h.entry.complex && type != text_class, 0, 0, h.entry.ndims, h.entry.dims,
             bytes ? kn_uint8 : kn_double);
    if (lacks(out, n)) return false;
    if (type == text_class) {
        out.setstr(1);
        if (!text(out.addr(), n, h.end)) return false;
    } else if (bytes) {
        unsigned char *const none = nullptr;
        if (!plane(out.getpr(none), n, type, h.end)) return false;
        if (out.isc() && !plane(out.getpi(none), n, type, h.end)) return false;
    } else {
        if (!plane(out.addr(), n, type, h.end)) return false;
        if (out.isc() && !plane(out.addi(), n, type, h.end)) return false;
    }
    out.setlogical(h.entry.logical);
    return true;
}

namespace {

// Decodes n bytes of UTF-8 to characters, as 16-bit codes (pairs of them above 65535) or whole; a byte that
// begins no character gives its own value. At most `room` are stored; returns how many there are.
kn_size decode_utf8(const unsigned char *from, kn_size n, bool pairs, double *to, kn_size room) {
    kn_size count = 0;
    auto put = [&](uint32_t code) {
        if (count < room) to[count] = code;
        ++count;
    };
    for (kn_size k = 0; k < n;) {
        const unsigned char first = from[k];
        const int more = first < 0xc2 ? 0 : first < 0xe0 ? 1 : first < 0xf0 ? 2 : first < 0xf5 ? 3 : 0;
        uint32_t code = more == 0 ? first : first & (0x3f >> more);
        int followers = 0;
        while (followers < more && k + followers + 1 < n && (from[k + followers + 1] & 0xc0) == 0x80)
            code = code << 6 | (from[k + ++followers] & 0x3f);
        k += followers == more ? more + 1 : 1;
        if (followers < more)
            put(first);
        else if (pairs && code > 0xffff) {
            put(0xd800 + ((code - 0x10000) >> 10));
            put(0xdc00 + (code & 0x3ff));
        } else
            put(code);
    }
    return count;
}

} // namespace

// UTF-8 is decoded in the way that gives n characters, as bytes if nothing else does. Text without bytes
// whose dimensions are not zero is filled with blanks: some programs write missing text in this way.
bool Mat5Decoder::text(double *to, kn_size n, uint64_t end) {
    Tag t;
    Layout l;
    if (n == 0) return true;
    if (!tag(t, end)) return unread();
    if (t.bytes == 0) {
        if (n > most_without_bytes) return unread();
        std::fill_n(to, n, ' ');
        return in_.seek(t.end) || unread();
    }
    if (t.type != utf8) return layout(t, text_class, l) && numbers(to, n, t, l);
    const kn_size bytes = t.bytes;
    Scratch<unsigned char> raw(bytes);
    if (!raw) return false;
    if (!in_.get(raw.get(), static_cast<size_t>(bytes)) || !in_.seek(t.end)) return unread();
    for (const bool pairs : {true, false})
        if (decode_utf8(raw.get(), bytes, pairs, to, n) == n) return true;
    if (bytes != n) return unread();
    std::copy_n(raw.get(), n, to);
    return true;
}

// ---- Sparse ----

// The file may have room for more entries than there are; the column starts give the count.
bool Mat5Decoder::sparse(const Head &h, Mm &out) {
    const Mat5Entry &e = h.entry;
    const kn_size rows = e.dims[0], cols = product(e.ndims - 1, e.dims + 1), size = product(e.ndims, e.dims);
    Tag t;
    Layout l;
    if (cols < 0 || size < 0) return failed("load5: '%s' contained sparse matrix that is too large");
    if (static_cast<uint64_t>(cols) + 1 > left(h.end)) return unread();

    kn_size there = 0;
    if (h.room != 0) {
        if (!tag(t, h.end)) return unread();
        if (!layout(t, sparse_class, l)) return false;
        there = t.bytes / static_cast<uint32_t>(l.size);
    }
    Scratch<kn_size> ir(there), jc(cols + 1);
    if (!ir || !jc || (h.room != 0 && !numbers(ir.get(), there, t, l))) return false;
    if (!tag(t, h.end)) return unread();
    if (!layout(t, sparse_class, l) || !numbers(jc.get(), cols + 1, t, l)) return false;

    const kn_size n = jc[cols];
    if (n < 0) return failed("load5: '%s' contained sparse matrix with negative nnz");
    bool sound = jc[0] == 0 && n <= there && n <= size;
    for (kn_size c = 0; c < cols; ++c) sound = sound && jc[c] <= jc[c + 1];
    for (kn_size k = 0; k < n && sound; ++k) sound = ir[k] >= 0 && ir[k] < rows;
    if (!sound) return failed("load5: '%s' contained sparse matrix with entries outside of it");

    Mm matrix(e.complex, 1, n, e.ndims, e.dims, kn_double);
    if (lacks(matrix, n) || !matrix.issparse()) return false;
    if (n > 0) {
        setIrJc(matrix, ir.get(), jc.get());
        // Logical values are stored as bytes, but their type may be that of doubles.
        if (!tag(t, h.end)) return unread();
        if (e.logical && t.type == float64 && t.bytes / sizeof(double) < static_cast<uint64_t>(n))
            t.type = uint8;
        if (!layout(t, sparse_class, l) || !numbers(matrix.addr(), n, t, l)) return false;
        if (matrix.isc() && !plane(matrix.addi(), n, sparse_class, h.end)) return false;
        matrix.sort();
        matrix.resparse();
    }
    matrix.setlogical(e.logical);
    out = std::move(matrix);
    return true;
}

// ---- Cells and structures ----

// A value whose elements are read one after another. `to` does not move meanwhile: it is the result, or an
// element of the level below, which grows only between its elements.
struct Mat5Decoder::Level {
    Level *below;
    Mm *to; // a row of the elements read so far, with spare capacity
    kn_size at, n;
    int field, names; // of structures: index of the name whose value is next, and their count
    uint64_t end;
    int ndims;
    kn_size dims[4];

    int *place() { return reinterpret_cast<int *>(this + 1); } // the field index of each name

    // Allocates element `at`: all elements, when the file can hold that many (`credit` more), else some at a
    // time. False when memory is exhausted.
    bool grow(uint64_t &credit) {
        if (at < to->getnnz()) return true;
        const uint64_t more = static_cast<uint64_t>(n - at),
                       few = std::max<uint64_t>(16, static_cast<uint64_t>(at));
        const kn_size room = more <= std::max(few, credit) ? n : at + static_cast<kn_size>(few);
        if (more > few && room == n) credit -= more;
        Mm larger(0, 0, 0, 1, room, kn_Mm);
        if (lacks(larger, room)) return false;
        if (!copy_fields(larger, *to)) return false;
        larger.setclassid(to->getclassid());
        if (at > 0) Header::move_values(larger, *to);
        *to = std::move(larger);
        return true;
    }

    // The target of the next value; null when memory is exhausted.
    Mm *next(uint64_t &credit) {
        if (field == 0 && !grow(credit)) return nullptr;
        Mm &element = to->getpr(static_cast<Mm *>(nullptr))[at];
        if (!to->isstruct()) {
            ++at;
            return &element;
        }
        if (field == 0) element = Header::values(to->getnfields());
        if (lacks(element, to->getnfields())) return nullptr;
        Mm *const value = element.getpr(static_cast<Mm *>(nullptr)) + place()[field];
        if (++field == names) field = 0, ++at;
        return value;
    }
};

// The open values, the innermost first.
class Mat5Decoder::Levels {
  public:
    Levels() = default;
    ~Levels() {
        while (top_) pop();
    }
    Levels(const Levels &) = delete;
    Levels &operator=(const Levels &) = delete;

    Level *top() const { return top_; }
    // A level for n elements with this many names; null when memory is exhausted.
    Level *push(const Head &h, Mm &to, kn_size n, int names) {
        void *const room = scratch_alloc(1, sizeof(Level) + sizeof(int) * static_cast<size_t>(names));
        if (!room) return nullptr;
        top_ = new (room) Level{top_, &to, 0, n, 0, names, h.end, h.entry.ndims, {}};
        std::copy_n(h.entry.dims, most_dims, top_->dims);
        return top_;
    }
    void pop() {
        Level *const level = top_;
        top_ = level->below;
        heap_free(level);
    }

  private:
    Level *top_ = nullptr;
};

// Adds n names; place[k] becomes the field index of name k. Equal names (they were truncated when they were
// written) share one field.
bool Mat5Decoder::field_names(Mm &out, const Tag &t, uint32_t length, int n, int *place) {
    const auto unreadable = [this] { return failed("load5: could not read field name from '%s'"); };
    const size_t step = size_t{length} + 1;
    Scratch<char> names(static_cast<ptrdiff_t>(step) * n);
    Scratch<int> order(n);
    if (!names || !order) return false;
    for (int k = 0; k < n; ++k) {
        char *name = names.get() + step * static_cast<size_t>(k);
        if (!in_.get(name, length)) return unreadable();
        name[length] = '\0';
        if (!*name) return unreadable();
        order[k] = k;
    }
    if (!in_.seek(t.end)) return unreadable();
    auto name_at = [&](int k) { return names.get() + step * static_cast<size_t>(k); };
    std::sort(order.get(), order.get() + n, [&](int a, int b) {
        const int c = std::strcmp(name_at(a), name_at(b));
        return c < 0 || (c == 0 && a < b);
    });
    for (int k = 0; k < n; ++k) {
        const bool again = k > 0 && std::strcmp(name_at(order[k - 1]), name_at(order[k])) == 0;
        place[order[k]] = again ? place[order[k - 1]] : order[k];
        if (again) warning("load5: '%s' contained structure with two fields '%s'", file_, name_at(order[k]));
    }
    for (int k = 0; k < n; ++k) {
        place[k] = place[k] == k ? out.addfield(name_at(k), 1) : place[place[k]];
        if (place[k] < 0) return false;
    }
    return true;
}

bool Mat5Decoder::open_structure(const Head &h, Mm &out, Levels &levels) {
    char cls[Mat5Entry::name_size] = "";
    if (h.type() == object_class && !name(cls, h.end)) return false;

    Tag t;
    uint32_t word[1] = {};
    const auto unreadable = [this] { return failed("load5: could not read field name from '%s'"); };
    if (!tag(t, h.end) || t.bytes < sizeof word || !words(word, h.end) || !in_.seek(t.end) ||
        !tag(t, h.end) || (t.bytes > 0 && word[0] == 0))
        return unreadable();
    const uint32_t length = word[0];
    const int names = length == 0 ? 0 : static_cast<int>(std::min<uint32_t>(t.bytes / length, INT32_MAX));
    if (t.bytes > 0 && names == 0) return unreadable();

    kn_size n;
    if (!countable(h, static_cast<uint64_t>(names) * least_element, n)) return false;
    if (names == 0 && n > most_without_bytes) return unread();
    out = Mm(0, 0, 0, 0, 0, kn_Mm);
    out.extend_nfields(std::max(names, 1));
    Level *const level = levels.push(h, out, n, names);
    if (!level || !out.isstruct() || !field_names(out, t, length, names, level->place())) return false;
    if (*cls) {
        const Mm class_name = TM(cls);
        if (lacks(class_name, 1)) return false;
        out = mclass(out, class_name);
    }
    for (; names == 0 && level->at < n; ++level->at) {
        if (!level->grow(credit_)) return false;
        out.getpr(static_cast<Mm *>(nullptr))[level->at] = Header::values(0);
    }
    return true;
}

bool Mat5Decoder::open(const Head &h, Mm &out, Levels &levels) {
    if (h.type() != cell_class) return open_structure(h, out, levels);
    kn_size n;
    if (!countable(h, least_element, n)) return false;
    out = Mm(0, 0, 0, 0, 0, kn_Mm);
    return levels.push(h, out, n, 0) != nullptr;
}

// ---- Any class ----

// The value of one element, or the container of its elements.
bool Mat5Decoder::one(const Head &h, Mm &out, Levels &levels) {
    const Class type = h.type();
    const bool outermost = !levels.top();
    if (h.holds_values()) return open(h, out, levels);
    bool done = true;
    if (!h.has_data) {
        out = Mm();
    } else if (type == no_class) {
        out = Mm();
        out.gettype() = kn_none;
    } else if (type == sparse_class) {
        done = sparse(h, out);
    } else if (type <= last_number_class) {
        done = array(h, out);
    } else if (type == handle_class || type == opaque_class) {
        warning("load5: '%s': variable '%s' of class '%s' can not be loaded", file_, h.entry.name,
                class_word(type));
        out = Mm();
    } else {
        return failed("load5: '%s' unrecognized matrix type");
    }
    // A compressed variable may end before its announced size, with all its data present.
    if (done && outermost) in_.seek(h.end);
    return done && (outermost || settle(type, h.end));
}

// Goes to the end of a nested element. In compressed variables of some programs the size of a text includes 8
// bytes that are missing, unless they don't begin an element, and that of cells and structures is arbitrary:
// those end with their last element.
bool Mat5Decoder::settle(Class type, uint64_t end) {
    if (inflated_ && type == text_class) {
        if (!align(end)) return unread();
        surplus_ = left(end) == 8;
        if (surplus_) return true;
    }
    return in_.seek(end) || unread();
}

bool Mat5Decoder::value(const Head &outermost, Mm &out) {
    constexpr uint64_t usual_ratio = 256; // a compressed byte counts for less than it may expand to
    credit_ = in_.left() / (inflated_ ? usual_ratio * least_element : least_element);
    Levels levels;
    Head h = outermost;
    for (Mm *to = &out;;) {
        if (inflated_ && h.holds_values()) h.end = in_.size();
        if (!one(h, *to, levels)) return false;
        for (Level *level = levels.top(); level && level->at == level->n; level = levels.top()) {
            level->to->reshape(level->ndims, level->dims);
            if (level->below && !inflated_ && !in_.seek(level->end)) return unread();
            levels.pop();
        }
        Level *const level = levels.top();
        if (!level) break;
        to = level->next(credit_);
        if (!to) return false;
        if (!align(level->end)) return unread();
        if (!head(h, level->end)) return false;
    }
    check(out);
    return true;
}

} // namespace kn
