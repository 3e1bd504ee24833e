// Construction, sharing and destruction of values: who makes a block, who counts it, who frees it.
//
// Every path that stores a block pointer in a header counts it, every path that drops one gives it back, and
// the last one frees. A header always refers to a block. That of a value without content, be it a default
// one, one that was moved from or one that got no memory, is a static block that is never counted or freed,
// and that always counts as shared, so that it is never written. Those of the constants are the same. Since
// their count is never written, threads may share them.
//
// Values nest to any depth. The arrays of values that die together are threaded on a list through their own
// memory and freed one after the other: the stack stays small, and no memory is asked for.
//
// Numbers, real full doubles of size 1, take a short way throughout: their header is written as a whole,
// their block comes from the list of its size and goes back there.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "base/hooks.h"
#include "base/scratch.h"
#include "quorvex/memory.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_block.h"

namespace kn {

constinit StaticBlock empty_block;

namespace {

constexpr kn_size slack = block_slack;
constexpr kn_size value_slack = 5;             // of a block of values
constexpr kn_size most_stored = size_max / 32; // whose bytes can be counted
constexpr size_t many_numbers = 4096;          // likely to free much memory together

struct RowsAndColumns {
    kn_size d[2];
};

static_assert(sizeof(Mm) <= 16 * sizeof(void *)); // two cache lines

size_t aligned(size_t bytes) { return (bytes + 7) & ~size_t(7); }

// An array of values. The number of its elements and the count of its holders precede it.
struct alignas(double) ValueArray {
    kn_size n;
    unsigned count;
    ValueArray *next; // while it is destroyed

    Mm *values() { return reinterpret_cast<Mm *>(this + 1); }
    static ValueArray *of(unsigned *count) {
        return reinterpret_cast<ValueArray *>(reinterpret_cast<char *>(count) - offsetof(ValueArray, count));
    }
    // n default values and a count of 1, or null.
    static ValueArray *make(kn_size n) {
        if (static_cast<size_t>(n) > (SIZE_MAX - sizeof(ValueArray)) / sizeof(Mm)) return nullptr;
        size_t bytes = sizeof(ValueArray) + static_cast<size_t>(n) * sizeof(Mm);
        auto *array = static_cast<ValueArray *>(kn_block_alloc(bytes));
        if (!array) return nullptr;
        array->n = n;
        array->count = 1;
        for (kn_size k = 0; k < n; ++k) new (array->values() + k) Mm();
        return array;
    }
};

// What is destroyed together: the arrays of values still to be freed, and the count of numbers already freed.
struct Dying {
    ValueArray *arrays = nullptr;
    size_t numbers = 0;
};

} // namespace

kn_size product(kn_size ndims, const kn_size *dims) {
    kn_size n = 1;
    bool fits = true;
    for (kn_size k = 0; k < ndims; ++k) {
        if (dims[k] <= 0) return 0;
        fits = fits && !__builtin_mul_overflow(n, dims[k], &n);
    }
    return fits ? n : -1;
}

} // namespace kn

using namespace kn;

// Gives this header a block for nnz elements of flags.type (nnz -1: a count that does not fit). Without
// memory it becomes an empty double on the static block.
void Mm::allocate(int complex, int with_index) {
    fields = nullptr;
    nfields = 0;
    classid = 0;
    pr = pi = nullptr;
    refcount = nullptr;
    index = nullptr;
    bool fits = nnz >= 0 && nnz <= most_stored;
    if (nnz < 1) {
        nnz = 0;
        ndims = 2;
        std::memset(dims, 0, sizeof dims);
    }

    if (fits && flags.type == kn_Mm) {
        p = nnz + value_slack;
        if (ValueArray *array = ValueArray::make(p)) {
            pr = array->values();
            refcount = &array->count;
        }
    } else if (fits) {
        p = nnz + slack;
        size_t plane = static_cast<size_t>(p) * (flags.type == kn_uint8 ? 1 : sizeof(double));
        size_t imaginary = static_cast<size_t>(p) * sizeof(double);
        size_t end = aligned(complex ? imaginary + plane : plane);
        char *start = static_cast<char *>(kn_block_alloc(end + sizeof(double)));
        if (start) {
            pr = start;
            if (complex) pi = start + imaginary;
            refcount = reinterpret_cast<unsigned *>(start + end);
            *refcount = 1;
        }
    }
    if (refcount && with_index)
        index = static_cast<kn_size *>(kn_block_alloc(static_cast<size_t>(p) * sizeof(kn_size)));
    if (refcount && (index || !with_index)) return;

    if (refcount && flags.type == kn_Mm)
        kn_block_free(ValueArray::of(refcount)); // of values without content
    else
        kn_block_free(pr);
    hold_nothing();
    out_of_memory();
}

// What is needed to free a block.
struct Mm::Block {
    unsigned *refcount;
    void *pr;
    kn_size *index;
    const char **fields;
    int nfields;
    kn_matrix_types type;
    const char *reported; // name of a scalar_only holder, for the debug handler

    explicit Block(const Mm &m)
        : refcount(m.refcount), pr(m.pr), index(m.index), fields(m.fields), nfields(m.nfields),
          type(m.flags.type), reported(m.flags.scalar_only && m.nnz == 1 ? m.name : nullptr) {}

    void drop() const {
        if (*refcount < uncounted && --*refcount == 0) free();
    }

  private:
    void free() const {
        Dying dying;
        free(dying);
        while (ValueArray *array = dying.arrays) {
            dying.arrays = array->next;
            for (kn_size k = array->n; k-- > 0;) end_element(array->values()[k], dying);
            kn_block_free(array);
        }
        if (dying.numbers >= many_numbers) quick_freed(dying.numbers, number_bytes);
    }
    // An array of values joins those that die.
    void free(Dying &dying) const {
        if (type == kn_Mm) {
            ValueArray *array = ValueArray::of(refcount);
            array->next = dying.arrays;
            dying.arrays = array;
            for (int k = 0; k < nfields; ++k) heap_free(const_cast<char *>(fields[k]));
            heap_free(fields);
        } else {
            kn_block_free(pr);
        }
        kn_block_free(index);
        if (reported && (kn_default_error_flags & 8)) kn_debug_handler('s', reported);
    }
    // What the destructor does.
    static void end_element(Mm &m, Dying &dying) {
        if (m.p == 0 && !m.name) return;
        if (m.name && m.level >= 0) scope_hooks.detach(m);
        if (*m.refcount >= uncounted || --*m.refcount > 0) return;
        if (m.flags.type != kn_Mm && !m.name && Header::has_number_block(m) && quick_free<number_bytes>(m.pr))
            ++dying.numbers;
        else
            Block(m).free(dying);
    }
};

// The slow paths are separate functions, so that the fast ones need no stack frame.
[[gnu::noinline]] void Mm::end_slowly() {
    if (name && level >= 0) scope_hooks.detach(*this);
    ndims = -1;
    Block(*this).drop();
}

void Mm::share() const {
    if (*refcount < uncounted) ++*refcount;
}

Mm Header::real_like(const Mm &like) {
    Mm out;
    out.ndims = like.ndims;
    for (int k = 0; k < 4; ++k) out.dims[k] = like.dims[k];
    out.nnz = like.nnz;
    out.allocate(0, 0);
    return out;
}

Mm Header::constant(StaticBlock &block, kn_size nnz, bool complex) {
    Mm out;
    out.dims[0] = out.dims[1] = out.dims[2] = out.dims[3] = out.nnz = nnz;
    out.p = nnz + slack;
    out.pr = block.data;
    if (complex) out.pi = block.data + number_room;
    out.refcount = &block.count;
    return out;
}

Mm Header::values(kn_size n) {
    if (n < 1) return Mm(0, 0, 0, 0, 0, kn_Mm);
    Mm out;
    ValueArray *array = ValueArray::make(n);
    if (!array) {
        out_of_memory();
        return out;
    }
    out.flags.type = kn_Mm;
    out.dims[0] = out.dims[2] = out.dims[3] = 1;
    out.dims[1] = out.nnz = out.p = n;
    out.pr = array->values();
    out.refcount = &array->count;
    return out;
}

bool Header::extend(Mm &m, kn_size room) {
    if (m.flags.type == kn_Mm || m.pi || m.index || *m.refcount != 1) return false;
    const size_t end =
        aligned(static_cast<size_t>(room + slack) * (m.flags.type == kn_uint8 ? 1 : sizeof(double)));
    char *start = static_cast<char *>(extend_block(m.pr, end + sizeof(double)));
    if (!start) return false;
    m.pr = start;
    m.p = room + slack;
    m.refcount = reinterpret_cast<unsigned *>(start + end);
    *m.refcount = 1;
    return true;
}

// Headers are moved as they are: no count changes. Names are not moved, as when elements are copied.
void Header::move_values(Mm &to, Mm &from) {
    const kn_size n = from.nnz;
    Mm *elements = static_cast<Mm *>(from.pr);
    for (kn_size k = 0; k < n; ++k)
        if (elements[k].name) elements[k].setname(nullptr);
    std::memcpy(to.pr, from.pr, static_cast<size_t>(n) * sizeof(Mm));
    for (kn_size k = n; k < from.p; ++k) elements[k].~Mm();
    ValueArray::of(from.refcount)->n = 0;
    from.nnz = 0;
}

// Takes over the header of src, but not what belongs to this variable: name, shadow, persistent and global.
// Field by field, as the fields were written: wider moves would wait for the writes (see
// cmake/library.cmake).
void Mm::hold(const Mm &src) {
    ndims = src.ndims;
    for (int k = 0; k < 4; ++k) dims[k] = src.dims[k];
    p = src.p;
    refcount = src.refcount;
    pr = src.pr;
    pi = src.pi;
    nnz = src.nnz;
    index = src.index;
    fields = src.fields;
    nfields = src.nfields;
    classid = src.classid;
    flags.str = src.flags.str;
    flags.sparse = src.flags.sparse;
    flags.logical = src.flags.logical;
    flags.type = src.flags.type;
}

// With a block by call. Without memory an empty value.
Mm Header::number_slowly(double x, bool logical, bool scalar_only) {
    if (void *block = kn_block_alloc(number_bytes)) return Mm(Mm::Number{block, x, logical, scalar_only});
    out_of_memory();
    return Mm();
}

Mm::Mm() : flags{0, 0, 0, 0, 0, 0, kn_double}, name(nullptr), shadow(nullptr) { hold_nothing(); }

Mm::Mm(double x) : Mm(Header::number(x, false, true)) {}

Mm::Mm(int complex, int sparse, kn_size stored, kn_size rows, kn_size cols, kn_matrix_types t)
    : Mm(complex, sparse, stored, 2, RowsAndColumns{{rows, cols}}.d, t) {}

Mm::Mm(int complex, int sparse, kn_size stored, kn_size n, kn_extents extents, kn_matrix_types t)
    : flags{}, name(nullptr), ndims(static_cast<int>(std::clamp<kn_size>(n, 2, 4))), dims{1, 1, 1, 1},
      shadow(nullptr) {
    const kn_size *d = extents.d;
    flags.sparse = sparse != 0;
    flags.type = t;
    for (int k = 0; k < n && k < 4; ++k) dims[k] = d[k] > 0 ? d[k] : 0;
    while (ndims > 2 && dims[ndims - 1] == 1) --ndims;
    kn_size full = product(4, dims);
    if (!sparse || full < 0) {
        nnz = full;
        allocate(complex, sparse);
        return;
    }
    // Room for all entries asked for, though no more than the size are stored.
    if (full == 0) {
        ndims = 2;
        std::memset(dims, 0, sizeof dims);
    }
    const int n_dims = ndims;
    const kn_size shape[] = {dims[0], dims[1], dims[2], dims[3]};
    nnz = std::max<kn_size>(stored, 0);
    allocate(complex, 1);
    if (!index) return;
    nnz = std::min(nnz, full);
    ndims = n_dims;
    std::memcpy(dims, shape, sizeof dims);
}

Mm::Mm(i_o_t, const char *n, int global) : Mm() {
    flags.type = kn_none;
    flags.scalar_only = 1;
    flags.global = global != 0;
    name = n;
    level = -1;
    if (kn_interactive_flag && name && scope_hooks.add) scope_hooks.add(*this);
}

Mm::Mm(const char *n, kn_size rows, kn_size cols) : Mm(0, 0, 0, rows, cols, kn_double) {
    name = n;
    level = -1;
}

Mm::Mm(kn_size rows, kn_size cols, const double *re, const double *im)
    : Mm(im != nullptr, 0, 0, rows, cols, kn_double) {
    std::copy_n(re, nnz, addr());
    if (isc()) std::copy_n(im, nnz, addi());
}

Mm::Mm(kn_size rows, kn_size cols, const char *characters) : Mm(0, 0, 0, rows, cols, kn_double) {
    for (kn_size k = 0; k < nnz; ++k)
        *addr(k / cols + 1, k % cols + 1) = static_cast<unsigned char>(characters[k]);
    flags.str = 1;
}

Mm::Mm(const Mm &src) : name(nullptr), shadow(nullptr) {
    hold(src);
    flags.scalar_only = src.flags.scalar_only;
    flags.persistent = 0;
    flags.global = 0;
    share();
}

Mm::Mm(Mm &&src) noexcept : name(nullptr), shadow(nullptr) {
    hold(src);
    flags.scalar_only = src.flags.scalar_only;
    flags.persistent = 0;
    flags.global = 0;
    src.hold_nothing();
}

Mm::Mm(const Mm &src, const char *n) : Mm(src) {
    name = n;
    level = -1;
    flags.global = src.flags.global;
}

// The destructor of a value that has a name, or a block other than the static one.
void Mm::end() {
    if (name && (level >= 0 || (kn_default_error_flags & 8))) return end_slowly();
    if (const unsigned count = *refcount; count > 1) {
        if (count < uncounted) *refcount = count - 1;
    } else if (flags.type == kn_Mm || !Header::has_number_block(*this) || !quick_free<number_bytes>(pr)) {
        return end_slowly();
    }
    ndims = -1;
}

Mm &Mm::operator=(const Mm &src) {
    if (this == &src) return *this;
    Block old(*this);
    src.share();
    hold(src);
    if (!is_real_scalar(*this)) flags.scalar_only = 0;
    old.drop(); // now, since the source may live inside it
    return *this;
}

// A number takes the place of a number, unless its release is to be reported.
Mm &Mm::operator=(double x) {
    if (!is_number() || (kn_default_error_flags & 8)) return take_number(x);
    *addr() = x;
    ndims = 2;
    flags.str = flags.logical = 0;
    return *this;
}

Mm &Mm::operator=(Mm &&src) {
    if (!is_number() || !is_real_scalar(src) || (kn_default_error_flags & 8)) return take(src);
    *addr() = *src.addr();
    ndims = src.ndims;
    flags.str = src.flags.str;
    flags.logical = src.flags.logical;
    return *this;
}

[[gnu::noinline]] Mm &Mm::take_number(double x) {
    Mm number = x;
    return take(number);
}

// A temporary's block changes hands without counting.
[[gnu::noinline]] Mm &Mm::take(Mm &src) {
    if (this == &src) return *this;
    Block old(*this);
    hold(src);
    src.hold_nothing();
    if (!is_real_scalar(*this)) flags.scalar_only = 0;
    old.drop();
    return *this;
}

void Mm::setname(const char *n) {
    if (name && level >= 0) {
        flags.persistent = 0; // no copy stays under the old name
        scope_hooks.detach(*this);
    }
    name = n;
    level = -1;
    if (kn_interactive_flag && name && scope_hooks.add) scope_hooks.add(*this);
}

void *Mm::operator new(size_t n) {
    void *p = kn_block_alloc(n);
    if (p) return p;
    out_of_memory();
    throw std::bad_alloc();
}

void Mm::operator delete(void *p) { kn_block_free(p); }
