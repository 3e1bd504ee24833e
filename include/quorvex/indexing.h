// Indexed expressions and comma lists: what generated code makes of x(i,j), s.a, c{k}, [a, b; c] and {a, b}.
//
// An Mr holds a base and its subscripts, and does nothing until it is converted to a value (a read) or
// assigned to (a write). An Mc is a list of pointers. Both borrow what they refer to, so they must not
// outlive the full expression that makes them.
//
// Subscripts. A number v selects the 0-based index trunc(v - 1); a logical value selects where it is not zero
// (NaN does not select), the object c_p selects everything. x(i,j) of an array with more dimensions refers to
// its first page.
//
// Reading. x() and x(:,:) are x itself, x(:) has its elements as a column; all three share the block. With
// one subscript a vector base determines the direction of the result, otherwise the subscript its shape; a
// logical matrix gives a column. A complex selection without imaginary parts is real; a sparse base gives a
// sparse value. c{k} is only the first selected element, [] when there is none; s.a of several structures is
// a row of cells. An index out of range is reported, and the result is a value of type kn_none, as after
// every failed read. A sparse subscript of a plain matrix is converted to full, and remains full.
//
// Writing. The target keeps its type and its flags (except that x(:) = y of equal size shares the block of
// y), becomes complex when the source is, and grows to include all indices: a vector along its direction, a
// matrix with one subscript into a column. New elements are zero, [] or empty fields. A source of another
// type is converted; an unset or empty target receives the type of the source. A single element fills all
// indices; otherwise the counts must agree. An empty source deletes. c{k} = y stores y unchanged; s.a = y
// assigns to the first structure, and adds the field if needed. Structures that are assigned must have the
// same fields in the same order, or one more in the source. Objects use the methods subsref, subsasgn and
// subsindex of their class.
#ifndef QUORVEX_INDEXING_H
#define QUORVEX_INDEXING_H

#include "quorvex/values.h"

// The kinds of brackets.
enum Mr_idx_type { Mr_paren = 40, Mr_member = 46, Mr_none = 63, Mr_brace = 123 };

namespace kn {
struct RefAccess; // the library's own access to a reference (indexing/reference.h)
}

class QUORVEX_API Mr {
  public:
    Mr() : Mr(Mr_none, nullptr, nullptr, -1) {}
    Mr(const Mm &base) : Mr(base, Mr_paren, 0, nullptr) {} // x()
    Mr(const Mr &src);                                     // borrows the subscripts
    ~Mr() {
        if (owned) drop();
    }
    // n subscripts (0 to 4) on a value, or on another reference. A subscript that is not a double is
    // converted by subsindex; a cell as the only subscript of () counts as its elements. The colon is the
    // object c_p itself.
    Mr(const Mm &base, Mr_idx_type kind, int n, const Mm *const *subscripts);
    Mr(const Mr &base, Mr_idx_type kind, int n, const Mm *const *subscripts);
    // The same with one and two subscripts.
    Mr(const Mm &base, Mr_idx_type k, const Mm &a) : Mr(k, &base, nullptr, 1) { take(a); }
    Mr(const Mr &base, Mr_idx_type k, const Mm &a) : Mr(k, nullptr, &base, 1) { take(a); }
    Mr(const Mm &base, Mr_idx_type k, const Mm &a, const Mm &b) : Mr(k, &base, nullptr, 2) { take(a, b); }
    Mr(const Mr &base, Mr_idx_type k, const Mm &a, const Mm &b) : Mr(k, nullptr, &base, 2) { take(a, b); }
    // x.member
    Mr(const Mm &base, const char *field) : Mr(Mr_member, &base, nullptr, 0) { member_name = field; }
    Mr(const Mr &base, const char *field) : Mr(Mr_member, nullptr, &base, 0) { member_name = field; }

    Mr operator()() const { return Mr(*this, Mr_paren, 0, nullptr); }
    Mr operator()(const Mm &a) const { return Mr(*this, Mr_paren, a); }
    Mr operator()(const Mm &a, const Mm &b) const { return Mr(*this, Mr_paren, a, b); }
    Mr operator()(const Mm &a, const Mm &b, const Mm &c) const;
    Mr operator()(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const;
    Mr br(const Mm &a) const { return Mr(*this, Mr_brace, a); }
    Mr br(const Mm &a, const Mm &b) const { return Mr(*this, Mr_brace, a, b); }
    Mr br(const Mm &a, const Mm &b, const Mm &c) const;
    Mr br(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const;
    Mr member(const char *name) const { return Mr(*this, name); }

    // Assignments through the reference. They grow, convert and delete as described above.
    void operator=(const Mm &src);
    void operator=(const Mr &src);
    void operator=(double x);

    kn_size size() const; // number of elements of the value read

    template <class T>
    requires kn::is_bool<T>
    explicit operator T() const {
        static_assert(!kn::is_bool<T>, "a value is no condition: write istrue(x), as in if (istrue(x(1)))");
        return false;
    }

  private:
    friend struct kn::RefAccess;

    // Every subscript of a program makes one, so construction uses few stores: subscripts after the first
    // nidx, and fields that the kind does not use, are uninitialized.
    Mr_idx_type kind;
    short nidx;
    short owned;      // a bit for each subscript that is an owned copy
    const Mm *base_m; // null when the base is another reference
    const Mr *base_r;
    const char *member_name;
    const Mm *idx[4];

    Mr(Mr_idx_type k, const Mm *m, const Mr *r, int n)
        : kind(k), nidx(static_cast<short>(n)), owned(0), base_m(m), base_r(r) {
        if (m && m->getflags().scalar_only) m->getflags().scalar_only = 0;
    }
    void take(const Mm &a) {
        idx[0] = &a;
        if (a.gettype() != kn_double) convert();
    }
    void take(const Mm &a, const Mm &b) {
        idx[0] = &a;
        idx[1] = &b;
        if (a.gettype() != kn_double || b.gettype() != kn_double) convert();
    }
    void convert();
    void drop();
};

inline Mr Mm::operator()() const { return Mr(*this); }
inline Mr Mm::operator()(const Mm &a) const { return Mr(*this, Mr_paren, a); }
inline Mr Mm::operator()(const Mm &a, const Mm &b) const { return Mr(*this, Mr_paren, a, b); }
inline Mr Mm::br(const Mm &a) const { return Mr(*this, Mr_brace, a); }
inline Mr Mm::br(const Mm &a, const Mm &b) const { return Mr(*this, Mr_brace, a, b); }
inline Mr Mm::member(const char *field) const { return Mr(*this, field); }

// The numbers that x selects as a subscript: characters and bytes become doubles, an object uses the method
// subsindex of its class. A cell or structure is reported, and gives an empty value.
QUORVEX_API Mm subsindex(const Mm &x);

// A comma list. An item is a value, or a number or text that becomes a value only when it is needed: a
// literal of thousands of items then compiles without a temporary for each.
class QUORVEX_API Mc {
  public:
    Mc();
    Mc(int cell, const Mm &x);
    Mc(int cell, double x);
    Mc(int cell, const char *text);
    Mc(const Mc &src);
    ~Mc() {
        if (capacity > near_capacity || made) release();
    }
    // Append; "Out of memory!".
    Mc &operator,(const Mm &x);
    Mc &operator,(double x);
    template <size_t n> Mc &operator,(const char (&text)[n]) { return append_text(text); }
    void operator=(const Mc &src); // "Mc=Mc called"

    kn_size count() const { return last + 1; }
    int is_cell() const { return cell; }
    const Mm &item(kn_size k) const { return items[k].value ? *items[k].value : make(items[k]); } // from 0
    // The number that item k was given as; null for other items.
    const double *number(kn_size k) const { return items[k].kind == Item::number ? &items[k].x : nullptr; }

  private:
    static constexpr int near_capacity = 16;
    struct Item {
        const Mm *value; // null for a number or text not yet converted
        union {
            double x;
            const char *characters;
        };
        enum { borrowed, number, text } kind;
    };
    Item near_items[near_capacity];
    Item *items;
    kn_size capacity;
    kn_size last;
    int cell;
    mutable int made; // whether items were converted to values, which the list owns

    Mc(int is_cell, int n)
        : items(near_items), capacity(near_capacity), last(n - 1), cell(is_cell), made(0) {}
    Item *next();
    Mc &append_text(const char *characters);
    const Mm &make(const Item &item) const;
    void release();
};

QUORVEX_API Mc BR(const Mm &x); // begins [x, ...
QUORVEX_API Mc BR(double x);
template <size_t n> Mc BR(const char (&text)[n]) { return Mc(0, text); }
QUORVEX_API Mc CL(const Mm &x); // begins {x, ...
QUORVEX_API Mc CL(double x);
template <size_t n> Mc CL(const char (&text)[n]) { return Mc(1, text); }

#endif
