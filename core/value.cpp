// Construction, sharing and destruction of values: who makes a block, who counts it, who frees it.
//
// Every path that stores a block pointer in a header counts it, every path that drops one gives it back, and
// the last one frees. A header always refers to a block: when memory is exhausted and the error handler
// returns, to one static block that is never freed and always counts as shared, so that nobody writes into
// it.

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "core/header.h"
#include "core/hooks.h"
#include "core/scratch.h"
#include "quorvex/memory.h"
#include "quorvex/startup.h"

namespace kn {

constinit ScopeHooks scope_hooks = {nullptr, nullptr};

namespace {

struct EmptyBlock {
    double data[8];
    unsigned count;
};
constinit EmptyBlock no_memory_block = {{}, 1};

constexpr int slack = 8;       // spare elements of a numeric block
constexpr int value_slack = 5; // of a block of values

struct Extents {
    int d[2];
};

size_t aligned(size_t bytes) { return (bytes + 7) & ~size_t(7); }

// A value array: the number of its elements stands before it.
constexpr size_t array_header = 16;

void free_values(Mm *array, int n) {
    for (int k = n; k-- > 0;) array[k].~Mm();
    heap_free(reinterpret_cast<char *>(array) - array_header);
}

// n default values, or null. Nothing is left behind when the error handler throws for one of them.
Mm *make_values(int n) {
    struct Building {
        Mm *array = nullptr;
        int made = 0;
        ~Building() {
            if (array) free_values(array, made);
        }
    } building;
    if (static_cast<size_t>(n) > (SIZE_MAX - array_header) / sizeof(Mm)) return nullptr;
    char *start = static_cast<char *>(heap_alloc(array_header + static_cast<size_t>(n) * sizeof(Mm)));
    if (!start) return nullptr;
    std::memcpy(start, &n, sizeof n);
    building.array = reinterpret_cast<Mm *>(start + array_header);
    for (; building.made < n; ++building.made) new (building.array + building.made) Mm();
    Mm *array = building.array;
    building.array = nullptr;
    return array;
}

} // namespace

int product(int ndims, const int *dims) {
    long long n = 1;
    for (int k = 0; k < ndims; ++k) {
        if (dims[k] <= 0) return 0;
        n *= dims[k];
        if (n > INT_MAX) {
            for (int l = k + 1; l < ndims; ++l)
                if (dims[l] <= 0) return 0;
            return -1;
        }
    }
    return static_cast<int>(n);
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
    bool fits = nnz >= 0 && nnz <= INT_MAX - slack;
    if (nnz < 1) {
        nnz = 0;
        ndims = 2;
        std::memset(dims, 0, sizeof dims);
    }

    if (fits && flags.type == kn_Mm) {
        p = nnz + value_slack;
        pr = make_values(p);
        if (pr) refcount = static_cast<unsigned *>(kn_block_alloc(sizeof *refcount));
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
        }
    }
    if (refcount && with_index)
        index = static_cast<int *>(kn_block_alloc(static_cast<size_t>(p) * sizeof(int)));
    if (refcount && (index || !with_index)) {
        *refcount = 1;
        return;
    }

    if (flags.type != kn_Mm) {
        kn_block_free(pr);
    } else if (pr) {
        free_values(static_cast<Mm *>(pr), p);
        kn_block_free(refcount);
    }
    hold_nothing();
    out_of_memory();
}

// What it takes to give a block back.
struct Mm::Block {
    unsigned *refcount;
    void *pr;
    int *index;
    const char **fields;
    int p, nfields;
    kn_matrix_types type;
    const char *reported; // name of a scalar_only holder, for the debug handler

    explicit Block(const Mm &m)
        : refcount(m.refcount), pr(m.pr), index(m.index), fields(m.fields), p(m.p), nfields(m.nfields),
          type(m.flags.type), reported(m.flags.scalar_only && m.nnz == 1 ? m.name : nullptr) {}

    // Drops one hold on it.
    void release() const {
        if (--*refcount != 0 || refcount == &no_memory_block.count) return;
        if (type == kn_Mm) {
            free_values(static_cast<Mm *>(pr), p);
            kn_block_free(refcount);
            for (int k = 0; k < nfields; ++k) heap_free(const_cast<char *>(fields[k]));
            heap_free(fields);
        } else {
            kn_block_free(pr);
        }
        kn_block_free(index);
        if (reported && (kn_default_error_flags & 8)) kn_debug_handler('s', reported);
    }
};

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

// A plain scalar in a block of its own, as a fresh one has it.
bool Mm::is_number() const {
    return is_plain_scalar() && *refcount == 1 && ndims == 2 && !index && p == 1 + slack;
}

bool Mm::is_plain_scalar() const { return flags.type == kn_double && !flags.sparse && !pi && nnz == 1; }

// Makes this header, which holds no block, an empty double on the static block.
void Mm::hold_nothing() {
    nnz = 0;
    ndims = 2;
    std::memset(dims, 0, sizeof dims);
    flags.type = kn_double;
    flags.sparse = 0;
    p = slack;
    pr = no_memory_block.data;
    pi = nullptr;
    index = nullptr;
    fields = nullptr;
    nfields = 0;
    classid = 0;
    refcount = &no_memory_block.count;
    ++*refcount;
}

Mm::Mm()
    : ndims(2), dims{0, 0, 0, 0}, nnz(0), name(nullptr), shadow(nullptr), flags{0, 0, 0, 0, 0, 0, kn_double} {
    allocate(0, 0);
}

Mm::Mm(double x)
    : ndims(2), dims{1, 1, 1, 1}, nnz(1), name(nullptr), shadow(nullptr), flags{0, 0, 0, 1, 0, 0, kn_double} {
    allocate(0, 0);
    if (nnz == 1) *addr() = x;
}

Mm::Mm(int complex, int sparse, int stored, int rows, int cols, kn_matrix_types t)
    : Mm(complex, sparse, stored, 2, Extents{{rows, cols}}.d, t) {}

Mm::Mm(int complex, int sparse, int stored, int n, const int *d, kn_matrix_types t)
    : ndims(n < 2   ? 2
            : n > 4 ? 4
                    : n),
      dims{1, 1, 1, 1}, name(nullptr), shadow(nullptr), flags{0, sparse, 0, 0, 0, 0, t} {
    for (int k = 0; k < n && k < 4; ++k) dims[k] = d[k] > 0 ? d[k] : 0;
    while (ndims > 2 && dims[ndims - 1] == 1) --ndims;
    int full = product(4, dims);
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
    const int shape[] = {ndims, dims[0], dims[1], dims[2], dims[3]};
    nnz = std::max(stored, 0);
    allocate(complex, 1);
    if (!index) return;
    nnz = std::min(nnz, full);
    ndims = shape[0];
    std::memcpy(dims, shape + 1, sizeof dims);
}

Mm::Mm(i_o_t, const char *n, int global) : Mm() {
    name = n;
    flags.type = kn_none;
    flags.scalar_only = 1;
    flags.global = global;
    if (kn_interactive_flag && scope_hooks.add) scope_hooks.add(*this);
}

Mm::Mm(const char *n, int rows, int cols) : Mm(0, 0, 0, rows, cols, kn_double) { name = n; }

Mm::Mm(const Mm &src) : name(nullptr), shadow(nullptr) {
    hold(src);
    flags.scalar_only = src.flags.scalar_only;
    flags.persistent = 0;
    flags.global = 0;
    ++*refcount;
}

Mm::Mm(const Mm &src, const char *n) : Mm(src) {
    name = n;
    flags.global = src.flags.global;
}

Mm::~Mm() {
    if (kn_interactive_flag && name && scope_hooks.detach) scope_hooks.detach(*this);
    ndims = -1;
    Block(*this).release();
}

Mm &Mm::operator=(const Mm &src) {
    if (this == &src) return *this;
    // The source may live inside the target's block: what this header held is dropped last.
    Block old(*this);
    ++*src.refcount;
    hold(src);
    if (!is_plain_scalar()) flags.scalar_only = 0;
    old.release();
    return *this;
}

// A number takes the place of a number, unless its release is to be reported.
Mm &Mm::operator=(double x) {
    if (!is_number() || (kn_default_error_flags & 8)) return *this = Mm(x);
    *addr() = x;
    flags.str = flags.logical = 0;
    return *this;
}

// A temporary's block changes hands without counting. Not for a target that holds values, among which the
// temporary might live.
Mm &Mm::operator=(Mm &&src) {
    if (this == &src || flags.type == kn_Mm) return *this = src;
    if (is_number() && src.is_number() && !(kn_default_error_flags & 8)) {
        *addr() = *src.addr();
        flags.str = src.flags.str;
        flags.logical = src.flags.logical;
        return *this;
    }
    Block old(*this);
    hold(src);
    if (!is_plain_scalar()) flags.scalar_only = 0;
    src.hold_nothing();
    old.release();
    return *this;
}

void Mm::setname(const char *n) {
    if (kn_interactive_flag && name && !n && scope_hooks.detach) scope_hooks.detach(*this);
    name = n;
    if (kn_interactive_flag && name && scope_hooks.add) scope_hooks.add(*this);
}

void *Mm::operator new(size_t n) {
    void *p = kn_block_alloc(n);
    if (p) return p;
    out_of_memory();
    throw std::bad_alloc();
}

void Mm::operator delete(void *p) { kn_block_free(p); }
