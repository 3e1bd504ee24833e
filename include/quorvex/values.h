// Mm, the one value class of the language.
//
// A value is a header and a block. The header is the `Mm` object itself: dimensions, flags, name, and
// pointers into the block. The block holds the elements and the count of the headers that refer to it:
//
//     double, real       [ p doubles | count ]                    pr = start
//     double, complex    [ p doubles | p doubles | count ]        pr = start, pi = pr + p
//     uint8              [ p bytes   | count ]                    pr = start
//     cell, structure    [ count | p values ]                     pr = first value
//
// p is nnz + 8 elements (nnz + 5 for values), so that a short vector can grow in place. A sparse value has a
// third array, index, with the 0-based column-major index of each stored entry. A structure has a list of
// field names, and each of its elements is a cell of the field values. Every empty value is 0 by 0: a zero
// size makes all four dims 0.
//
// Sharing. Copying a header shares the block and increments the count; there is no other aliasing. ndims,
// dims, nnz, pi and the flags are in each header, so a holder can reshape itself or drop its imaginary part
// without effect on others. The elements belong to all holders: before writing them, check dirty(), and make
// a deepcopy when others hold the block. The raw accessors (r, addr, getpr, ...) do not check: the library
// writes through them only into values it has just made.
//
// Ownership. The block owns its elements, index and field names; it is freed with its last header. A name is
// borrowed: the pointer is kept, never freed, and compared as an address. The markers (c_p, semi, l_M) are
// recognised in this way.
//
// A value without content (a default one, a named variable before its first value, one that was moved from)
// refers to one static block, a constant of the language to a separate one. These always count as shared, and
// their holders are not counted.
//
// Threads. A count is a plain number, so a value and its copies belong to one thread at a time:
// docs/threads.md.
//
// Failure. When memory is exhausted "Out of memory!" goes through `error`; if the handler returns, the value
// is a valid 0 by 0.
#ifndef QUORVEX_VALUES_H
#define QUORVEX_VALUES_H

#include "quorvex/export.h" // first: it asks for C++20

#include <stddef.h>

#include "quorvex/op_list.h"

// Sizes, counts and indices: as wide as an address.
typedef ptrdiff_t kn_size;

// A pointer to the sizes of an array. A class, so that a literal 0 selects the overload for a number.
struct kn_extents {
    const kn_size *d;
    kn_extents(const kn_size *dims) : d(dims) {}
};

// Element types.
enum kn_matrix_types : unsigned char {
    kn_none = 0,   // no value yet
    kn_double = 1, // doubles; also characters, logical values and sparse
    kn_uint8 = 2,  // unsigned bytes
    kn_Mm = 3      // values: cell, structure or object
};

// The flags of a value.
struct M_types {
    unsigned char str;         // characters, one double each
    unsigned char sparse;      // sparse storage
    unsigned char logical;     // logical array
    unsigned char scalar_only; // a named value that has only ever held real full scalars
    unsigned char persistent;  // a variable of one of the two outermost levels
    unsigned char global;      // global variable
    kn_matrix_types type;      // element type
};

// Separates inputs from outputs in a call: f(a, b, i_o, x, y) assigns x and y and returns x_M.
struct i_o_t {};
extern QUORVEX_API const i_o_t i_o;

class Mm;
class Mr;
class Mc;
namespace kn {
struct Header; // the library's own access to the fields (value/header.h)

template <class T> inline constexpr bool is_bool = false;
template <> inline constexpr bool is_bool<bool> = true;
} // namespace kn

class QUORVEX_API Mm {
  public:
    // -- Constructors. New elements are uninitialized unless stated otherwise.

    Mm();         // 0 by 0 double
    Mm(double x); // 1 by 1
    // rows by cols of type t; a sparse value with nnz entries, at most rows * cols (a full value ignores
    // nnz). A zero size gives 0 by 0.
    Mm(int complex, int sparse, kn_size nnz, kn_size rows, kn_size cols, kn_matrix_types t);
    // The same with ndims (at most 4) sizes from dims; trailing sizes of 1 after the second are dropped.
    Mm(int complex, int sparse, kn_size nnz, kn_size ndims, kn_extents dims, kn_matrix_types t);
    // A named variable without a value. Registered in the workspace when the library runs under an
    // interactive host.
    Mm(i_o_t, const char *name, int global);
    Mm(const char *name, kn_size rows, kn_size cols); // a named double
    // A double with these elements, column by column; complex where `im` is given.
    Mm(kn_size rows, kn_size cols, const double *re, const double *im = nullptr);
    // Characters, from rows of equal length that follow one another: Mm(2, 3, "abc" "def").
    Mm(kn_size rows, kn_size cols, const char *characters);
    // Shares the block. The copy has no name and is neither persistent nor global.
    Mm(const Mm &src);
    // Moves the block from a temporary, which becomes empty.
    Mm(Mm &&src) noexcept;
    Mm(const Mm &src, const char *name); // a named copy, which keeps `global`
    // The result of an element operation: `op` on a and b (zero_M for one operand), or along `dim` when
    // do_dim is set (zero_M: the first dimension above 1), with an imaginary plane if complex_result is set;
    // `extra` receives the indices of max and min (l_M: not needed). A failure leaves an empty double or x_M.
    Mm(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim, Mm &extra);
    // The value that an indexed expression reads. If strict is 0 nothing is reported, and a missing element
    // gives a value of type kn_none.
    Mm(const Mr &r, int strict = 1);
    // [a, b; c] or {a, b; c}.
    Mm(const Mc &list);
    ~Mm() {
        if (p != 0 || name) end();
    }

    // Shares the block of src. The target keeps its name, persistent and global; its type and shape are
    // replaced.
    Mm &operator=(const Mm &src);
    Mm &operator=(double x);
    Mm &operator=(Mm &&src);    // moves the block
    Mm &operator=(const Mr &r); // the value that an indexed expression reads

    // Heap headers come from the block allocator. Exhausted memory is reported, "Out of memory!"; if the
    // handler returns, std::bad_alloc is thrown.
    static void *operator new(size_t n);
    static void operator delete(void *p);
    static void *operator new(size_t, void *place) noexcept { return place; }
    static void operator delete(void *, void *) noexcept {}

    // -- Sizes and shape.

    kn_size rows() const { return dims[0]; }
    kn_size cols() const { return dims[1]; }
    kn_size size() const;        // number of elements; -1 for a destroyed header
    kn_size size(int dim) const; // size of dimension 1 to 4; error "%s.size(dim): no such dimension=%d"
    kn_size length() const;      // the largest size; 0 for an empty value
    int nsingleton() const;      // first dimension with a size above 1; 1 if there is none
    int vectordim() const;       // the only dimension with a size above 1; 0 if there are several; 2 if none
    void collapse();             // drops trailing sizes of at most 1 after the second
    void reshape(kn_size r, kn_size c); // this header only; error "reshape: size=%d is different than %d*%d"
    // The same with n sizes, of which those after the fourth must be 1: "reshape: size=%d is different than
    // the product of new dimensions".
    void reshape(kn_size n, kn_extents d);

    // -- Predicates.

    int isstr() const { return flags.str; }
    int issparse() const { return flags.sparse; }
    int islogical() const { return flags.logical; }
    int isglobal() const { return flags.global; }
    int isc() const { return pi != nullptr; }          // has an imaginary plane
    int isstruct() const { return fields != nullptr; } // structure or object
    int issamename(const char *n) const { return name == n; }

    // -- Fields of the header.

    const char *getname() const { return name; }
    // Changes the name, and registers the value under it as the constructor with a name does; the
    // registration under the old name is removed.
    void setname(const char *n);
    M_types &getflags() const { return const_cast<M_types &>(flags); }
    kn_matrix_types &gettype() const { return const_cast<kn_matrix_types &>(flags.type); }
    int &getndims() const { return const_cast<int &>(ndims); }
    kn_size &getnnz() const { return const_cast<kn_size &>(nnz); }
    kn_size *getdims() const { return const_cast<kn_size *>(dims); }
    kn_size getp() const { return p; }
    kn_size *getindex() const { return index; }
    int getnfields() const { return nfields; }
    const char **getfields() const { return fields; }
    int getclassid() const { return classid; }
    void setclassid(int id) { classid = id; }
    void setstr(int on) { flags.str = on != 0; }
    void setsparse(int on) { flags.sparse = on != 0; }
    void setlogical(int on) { flags.logical = on != 0; }

    // The number of other holders of the block; when it is nonzero a writer must make a copy first.
    int dirty() const { return static_cast<int>(*refcount) - 1; }

    // -- Elements, 1-based, column-major. A wrong index or type is reported ("%s.r(idx): idx=%g out of
    // matrix", ...); if the handler returns, the reference is to a scratch element. Indices of r and i are
    // truncated.

    double &r() const;
    double &r(double idx) const;
    double &r(double row, double col) const;
    double &r(double row, double col, double depth) const;
    double &i() const;
    double &i(double idx) const;
    double &i(double row, double col) const;
    double &i(double row, double col, double depth) const;
    unsigned char &ur(kn_size idx) const;
    unsigned char &ur(kn_size row, kn_size col) const;
    Mm &mr(kn_size idx) const;
    Mm &mr(kn_size row, kn_size col) const;

    // The planes themselves, unchecked.
    double *addr() const { return static_cast<double *>(pr); }
    double *addr(kn_size k) const { return addr() + (k - 1); }
    double *addr(kn_size row, kn_size col) const { return addr() + at(row, col); }
    double *addi() const { return static_cast<double *>(pi); }
    double *addi(kn_size k) const { return addi() + (k - 1); }
    double *addi(kn_size row, kn_size col) const { return addi() + at(row, col); }
    // The same by element type: the first argument is a typed null pointer, m.getpr((unsigned char *)0).
    template <class T> T *getpr(T *) const { return static_cast<T *>(pr); }
    template <class T> T *getpr(T *, kn_size k) const { return static_cast<T *>(pr) + (k - 1); }
    template <class T> T *getpr(T *, kn_size row, kn_size col) const {
        return static_cast<T *>(pr) + at(row, col);
    }
    template <class T> T *getpi(T *) const { return static_cast<T *>(pi); }
    template <class T> T *getpi(T *, kn_size k) const { return static_cast<T *>(pi) + (k - 1); }
    template <class T> T *getpi(T *, kn_size row, kn_size col) const {
        return static_cast<T *>(pi) + at(row, col);
    }

    // A copy of element k of a cell, or of nop_M if there is no such element; never reports.
    Mm safebr(kn_size k) const;

    // -- Indexing: see indexing.h.

    Mr operator()() const;
    Mr operator()(const Mm &a) const;
    Mr operator()(const Mm &a, const Mm &b) const;
    Mr operator()(const Mm &a, const Mm &b, const Mm &c) const;
    Mr operator()(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const;
    Mr br(const Mm &a) const;
    Mr br(const Mm &a, const Mm &b) const;
    Mr br(const Mm &a, const Mm &b, const Mm &c) const;
    Mr br(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const;
    Mr member(const char *field) const;

    void vwcopy1(const Mm &src, const Mm &i);              // this(i) = src
    void vwcopy2(const Mm &src, const Mm &i, const Mm &j); // this(i,j) = src
    void vwcopyn(const Mr &r, const Mm &src);              // this(...) = src with the subscripts of r
    void vwcopy0(const Mr &r);                             // this(...) = []

    // A value is not a condition in C++; istrue decides whether a matrix is true.
    template <class T>
    requires kn::is_bool<T>
    explicit operator T() const {
        static_assert(!kn::is_bool<T>, "a value is no condition: write istrue(x), as in if (istrue(x))");
        return false;
    }

    // -- Conversions in place.

    // Drops the imaginary plane: with force 0 only from a double value whose imaginary parts are all 0 (NaN
    // is not). Returns whether it remains. This header only.
    int getreal(int force) const;
    // Adds an imaginary plane of zeros to a real value, in an unshared block.
    void getcomplex() const;
    // Makes this value a copy of src in an unshared block, converted to type t (kn_none keeps the type).
    // double to uint8 truncates and keeps the low byte; numbers to kn_Mm makes scalars; kn_Mm to kn_Mm shares
    // the elements; kn_Mm to numbers is the error "Can not convert %s into a numeric matrix" and leaves *this
    // unchanged.
    void deepcopy(const Mm &src, kn_matrix_types t);
    void deepcopy(int complex, const Mm &src, kn_matrix_types t);
    void deepcopy(int complex, int sparse, const Mm &src, kn_matrix_types t);

    // Reports "variable '%s' was used without a value" for a variable never assigned.
    void warn_uninit() const;

    // -- Sparse values. Each begins with error_sparse.

    kn_size search(kn_size pos) const; // number of the entry with this index, by binary search; -1 for none
    void sort();                       // sorts the entries by index, equal ones in their order
    void resparse();                   // drops zeros and adds sorted entries with equal indices
    void extend_nnz(kn_size n);        // extends to n entries, the new ones zero

    // -- Field names of a structure.

    // Finds a field: its 0-based index, or -1; with strict set "%s.%s: not a structure" or "%s.%s: structure
    // field does not exist" is reported.
    int findfield(const char *field, int strict) const;
    const char *getfield(int k) const; // "getfield: index=%d out of range [0..%d)"
    // Adds a field, unless it exists (force: without a search), and returns its index; -1 when memory is
    // exhausted. Unshares the block first.
    int addfield(const char *field, int force);
    int rmfield(const char *field); // removes a name from the list only; its old index or -1
    void extend_nfields(int n);     // makes room for n names

  private:
    friend struct kn::Header;

    // First what work with single numbers looks at.
    void *pr;
    void *pi;
    kn_size nnz;            // stored elements; the product of the dims for a full value
    kn_size p;              // capacity of the block in elements; 0 for the static block
    unsigned int *refcount; // headers that hold the block
    M_types flags;
    const char *name;
    int ndims;
    int level; // workspace level of this named value, -1 for none; uninitialized without a name
    kn_size dims[4];
    kn_size *index;
    const char **fields;
    int nfields;
    int classid;
    Mm *shadow; // the value that this named value covers in the workspace

    kn_size at(kn_size row, kn_size col) const { return (row - 1) + (col - 1) * dims[0]; }
    struct Block;
    void allocate(int complex, int with_index);
    void hold(const Mm &src);
    void hold_nothing();
    void give_number();
    void share() const;
    Mm &take(Mm &src);
    Mm &take_number(double x);
    void end();
    void end_slowly();
    struct Number {
        void *block;
        double value;
        bool logical, scalar_only;
    };
    explicit Mm(const Number &n);
    bool is_number() const;
};

// The name of a value in messages: its own, "=%d" for an unnamed double scalar, otherwise "(temporary)".
QUORVEX_API const char *kn_display_name(const Mm &x);

// The number in x, a real full double of size 1 that is not a character: "scalar: matrix %s is %s" for
// others.
QUORVEX_API double scalar(const Mm &x);
inline double scalar(double x) { return x; }

// -- Storage of generated code: switch statements, and the argument counts of calls, for each thread.

QUORVEX_API Mm switchinit(const Mm &x); // warn_uninit, then a copy of x
extern QUORVEX_API Mm switchvar;
extern QUORVEX_API int switchdepth;
extern QUORVEX_API int switchfalse;

extern QUORVEX_API QUORVEX_THREAD_LOCAL double nargin_val, nargout_val;
extern QUORVEX_API QUORVEX_THREAD_LOCAL int nargin_set, nargout_set;
QUORVEX_API double nargin();
QUORVEX_API double nargout();
QUORVEX_API Mm argn(i_o_t, Mm &out, Mm &in); // out = nargout_val, in = nargin_val

// Truncate with saturation; NaN counts as -Inf. Sizes end at 2^53, to which doubles count every number (at
// 2147483647 where kn_size has 32 bits), ints at 2147483647; below zero both end at the negative of that.
QUORVEX_API kn_size double_to_size(double x);
QUORVEX_API int double_to_int(double x);

#endif
