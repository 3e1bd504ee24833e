// Mm, the one value class of the language.
//
// A value is a header and a block. The header is the `Mm` object itself: dimensions, flags, name, and
// pointers into the block. The block holds the elements, and beside them the count of the headers that refer
// to it:
//
//     double, real       [ p doubles | count ]                    pr = start
//     double, complex    [ p doubles | p doubles | count ]        pr = start, pi = pr + p
//     uint8              [ p bytes   | count ]                    pr = start
//     cell, structure    [ count | p values ]                     pr = first value
//
// p is nnz + 8 elements (nnz + 5 for values), so that a short vector can grow in place. A sparse value has a
// third array, index, with the 0-based column-major position of each stored entry. A structure has a list of
// field names, and each of its elements is a cell of the field values. Every empty value is 0 by 0: a zero
// extent makes all four dims 0.
//
// Sharing. Copying a header shares the block and raises the count; nothing else aliases. ndims, dims, nnz, pi
// and the flags live in each header, so a holder may reshape itself, or forget its imaginary part, alone.
// Elements belong to all holders: who writes them asks dirty() first, and takes a deepcopy when others hold
// the block. The raw accessors (r, addr, getpr, ...) do not ask: the library writes through them only into
// values it has just made.
//
// Ownership. The block owns its elements, index and field names; it dies with its last header. A name is
// borrowed: the pointer is kept as given, never freed, and compared by identity. That is also how the markers
// (c_p, semi, l_M) are recognised.
//
// A value without content (a default one, a named variable before its first value, one that was moved from)
// refers to one static block, a constant of the language to one of its own. These always count as shared, and
// nobody counts their holders.
//
// Threads. A count is a plain number, so a value and its copies belong to one thread at a time:
// docs/threads.md.
//
// Failure. When memory is exhausted "Out of memory!" goes through `error`; should the handler return, the
// value is a valid 0 by 0.
#ifndef QUORVEX_VALUES_H
#define QUORVEX_VALUES_H

#include "quorvex/export.h" // first: it asks for C++20

#include <stddef.h>

#include "quorvex/op_list.h"

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
    unsigned char persistent;  // lives in one of the two outermost scopes
    unsigned char global;      // global variable
    kn_matrix_types type;      // element type
};

// Marker behind the inputs of a function with several results: f(a, b, i_o, x, y) assigns x and y and returns
// x_M.
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
    // -- Constructors. Elements of fresh values are not cleared, but where it is said.

    Mm();         // 0 by 0 double
    Mm(double x); // 1 by 1
    // rows by cols (a sparse value: room for nnz entries, of which at most rows * cols are stored; else nnz
    // is not used). A zero extent gives 0 by 0.
    Mm(int complex, int sparse, int nnz, int rows, int cols, kn_matrix_types t);
    // ndims (at most 4) extents from dims; trailing extents of 1 above the second are dropped.
    Mm(int complex, int sparse, int nnz, int ndims, const int *dims, kn_matrix_types t);
    // A named variable without a value. Registered in the workspace when the library runs under an
    // interactive host.
    Mm(i_o_t, const char *name, int global);
    Mm(const char *name, int rows, int cols); // a named double
    // A double with these elements, column by column; complex where `im` is given.
    Mm(int rows, int cols, const double *re, const double *im = nullptr);
    // Characters, from rows of equal length that follow one another: Mm(2, 3, "abc" "def").
    Mm(int rows, int cols, const char *characters);
    // Shares the block. The copy has no name and is neither persistent nor global.
    Mm(const Mm &src);
    // Takes the block of a temporary, which is left empty.
    Mm(Mm &&src) noexcept;
    Mm(const Mm &src, const char *name); // keeps `global`
    // Element operation: `op` on a and b (zero_M for one operand), or along `dim` when do_dim is set (zero_M:
    // the first non-singleton dimension); an imaginary plane as complex_result says; `extra` takes the
    // positions of max and min (l_M: not wanted). Failures leave an empty double or x_M.
    Mm(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim, Mm &extra);
    // The value that an indexed expression reads. A read that is not strict reports nothing: what is missing
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
    Mm &operator=(Mm &&src);    // takes its block, as the constructor does
    Mm &operator=(const Mr &r); // the value that an indexed expression reads

    // Heap headers come from the block allocator. "Out of memory!" is reported; std::bad_alloc when the
    // handler returns.
    static void *operator new(size_t n);
    static void operator delete(void *p);
    static void *operator new(size_t, void *place) noexcept { return place; }
    static void operator delete(void *, void *) noexcept {}

    // -- Sizes and shape.

    int rows() const { return dims[0]; }
    int cols() const { return dims[1]; }
    int size() const;           // product of the extents; -1 for a destroyed header
    int size(int dim) const;    // extent of dimension 1 to 4; error "%s.size(dim): no such dimension=%d"
    int length() const;         // the largest extent; 0 if any is 0
    int nsingleton() const;     // first dimension above 1; 1 if there is none
    int vectordim() const;      // the only dimension above 1; 0 if there are several; 2 if there is none
    void collapse();            // drops trailing extents of at most 1 above the second
    void reshape(int r, int c); // this header only; error "reshape: size=%d is different than %d*%d"
    // The same to n extents, of which those above the fourth must be 1: "reshape: size=%d is different than
    // the product of new dimensions".
    void reshape(int n, const int *d);

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
    // Registers the value as the constructor with a name does; under its old name it is forgotten.
    void setname(const char *n);
    M_types &getflags() const { return const_cast<M_types &>(flags); }
    kn_matrix_types &gettype() const { return const_cast<kn_matrix_types &>(flags.type); }
    int &getndims() const { return const_cast<int &>(ndims); }
    int &getnnz() const { return const_cast<int &>(nnz); }
    int *getdims() const { return const_cast<int *>(dims); }
    int getp() const { return p; }
    int *getindex() const { return index; }
    int getnfields() const { return nfields; }
    const char **getfields() const { return fields; }
    int getclassid() const { return classid; }
    void setclassid(int id) { classid = id; }
    void setstr(int on) { flags.str = on != 0; }
    void setsparse(int on) { flags.sparse = on != 0; }
    void setlogical(int on) { flags.logical = on != 0; }

    // Other holders of the block: nonzero means that a writer must take a copy first.
    int dirty() const { return static_cast<int>(*refcount) - 1; }

    // -- Elements, 1-based, column-major. A bad index or type is reported ("%s.r(idx): idx=%g out of matrix",
    // ...); should the handler return, the reference is to a scratch element. Indices of r and i are
    // truncated.

    double &r() const;
    double &r(double idx) const;
    double &r(double row, double col) const;
    double &r(double row, double col, double depth) const;
    double &i() const;
    double &i(double idx) const;
    double &i(double row, double col) const;
    double &i(double row, double col, double depth) const;
    unsigned char &ur(int idx) const;
    unsigned char &ur(int row, int col) const;
    Mm &mr(int idx) const;
    Mm &mr(int row, int col) const;

    // The planes themselves, without any test.
    double *addr() const { return static_cast<double *>(pr); }
    double *addr(int k) const { return addr() + (k - 1); }
    double *addr(int row, int col) const { return addr() + at(row, col); }
    double *addi() const { return static_cast<double *>(pi); }
    double *addi(int k) const { return addi() + (k - 1); }
    double *addi(int row, int col) const { return addi() + at(row, col); }
    // The same by element type: the first argument is a typed null pointer, m.getpr((unsigned char *)0).
    template <class T> T *getpr(T *) const { return static_cast<T *>(pr); }
    template <class T> T *getpr(T *, int k) const { return static_cast<T *>(pr) + (k - 1); }
    template <class T> T *getpr(T *, int row, int col) const { return static_cast<T *>(pr) + at(row, col); }
    template <class T> T *getpi(T *) const { return static_cast<T *>(pi); }
    template <class T> T *getpi(T *, int k) const { return static_cast<T *>(pi) + (k - 1); }
    template <class T> T *getpi(T *, int row, int col) const { return static_cast<T *>(pi) + at(row, col); }

    // A copy of element k of a cell, or of nop_M when there is no such element; never reports.
    Mm safebr(int k) const;

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

    // A value is no condition of C++: which elements of a matrix count is a matter of istrue.
    template <class T>
    requires kn::is_bool<T>
    explicit operator T() const {
        static_assert(!kn::is_bool<T>, "a value is no condition: write istrue(x), as in if (istrue(x))");
        return false;
    }

    // -- Conversions in place.

    // Drops the imaginary plane: with force 0 only from a double value whose imaginary parts all equal 0 (NaN
    // does not). Returns whether it is still there. This header only.
    int getreal(int force) const;
    // Gives a real value an imaginary plane of zeros (a block of its own).
    void getcomplex() const;
    // Becomes a copy of src with a block of its own, converted to type t (kn_none keeps it). double to uint8
    // truncates and keeps the low byte; numbers to kn_Mm makes scalars; kn_Mm to kn_Mm shares the elements;
    // kn_Mm to numbers is the error "Can not convert %s into a numeric matrix" and leaves *this as it was.
    void deepcopy(const Mm &src, kn_matrix_types t);
    void deepcopy(int complex, const Mm &src, kn_matrix_types t);
    void deepcopy(int complex, int sparse, const Mm &src, kn_matrix_types t);

    // "variable '%s' was used without a value" when there is none.
    void warn_uninit() const;

    // -- Sparse values. Each begins with error_sparse.

    int search(int pos) const; // slot of a position by binary search, or -1
    void sort();               // entries by position, ties in their order
    void resparse();           // drops zeros and sums equal positions of sorted entries
    void extend_nnz(int n);    // room for n entries, the new ones zero

    // -- Field names of a structure.

    // 0-based position, or -1; strict reports "%s.%s: not a structure" or "%s.%s: structure field does not
    // exist".
    int findfield(const char *field, int strict) const;
    const char *getfield(int k) const; // "getfield: index=%d out of range [0..%d)"
    // Position of the field, added when it is not there (force: without looking). Unshares first. -1 when
    // memory is exhausted.
    int addfield(const char *field, int force);
    int rmfield(const char *field); // the name list only; old position or -1
    void extend_nfields(int n);     // room for n names

  private:
    friend struct kn::Header;

    int ndims;
    int dims[4];
    int p;                  // capacity of the block in elements; 0 for the static block
    unsigned int *refcount; // headers that hold the block
    void *pr;
    void *pi;
    int nnz; // stored elements; the product of the dims for a full value
    M_types flags;
    int nfields;
    int classid;
    int level; // of the workspace that holds this named value, -1 for none; not set where there is no name
    int *index;
    const char *name;
    const char **fields;
    Mm *shadow; // the value that this named value covers in the workspace

    ptrdiff_t at(int row, int col) const { return (row - 1) + static_cast<ptrdiff_t>(col - 1) * dims[0]; }
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

// The name of a value in messages: its name, "=%d" for an unnamed double scalar, "(temporary)" otherwise.
QUORVEX_API const char *kn_display_name(const Mm &x);

// The scalar in x: a real full double of size 1 that is no character; else error "scalar: matrix %s is %s".
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

// Saturating conversion: 2147483647 from there on and for +Inf, -2147483647 below it and for -Inf and NaN,
// else truncation.
QUORVEX_API int double_to_int(double x);

#endif
