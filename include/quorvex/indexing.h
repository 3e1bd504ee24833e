// Indexed expressions and comma lists: what generated code makes of x(i,j), s.a, c{k}, [a, b; c] and {a, b}.
//
// Mr remembers a base and its subscripts, and does nothing until it is converted to a value (a read) or
// assigned to (a write). Mc is a list of pointers; both borrow what they refer to, so they live no longer
// than the full expression that makes them.
//
// Subscripts. A number v selects position trunc(v - 1) from 0, so that fractions are cut; a logical value
// selects where it is not zero (NaN does not), the object c_p everything. x(i,j) of an array of more
// dimensions sees its first page.
//
// Reading. x() and x(:,:) are x itself, x(:) its elements as a column: they share the block. One subscript
// gives the direction of a vector base, else its own shape; a logical matrix gives a column. A complex
// selection without imaginary parts is real; a sparse base gives a sparse value. c{k} is the first selected
// element only, [] when there is none; s.a of several structures a row of cells. What lies outside is
// reported, and gives a value of type kn_none, as every failed read does. A sparse subscript of a plain
// matrix is made full in passing, and stays so.
//
// Writing. The target keeps its type and its flags (except that x(:) = y of equal size takes the block of y),
// becomes complex when the source is, and grows to hold the positions: a vector along its direction, a matrix
// with one subscript into a column, new places zero, [] or empty fields. A source of another type is
// converted; an unset or empty target takes the type of the source. One element fills all positions,
// otherwise the numbers must agree. An empty source deletes. c{k} = y stores y as it is, s.a = y in the first
// structure, with a new field if need be. Structures that are assigned must have the same fields in the same
// order, or one more in the source. Objects with methods subsref, subsasgn and subsindex answer for
// themselves.
#ifndef QUORVEX_INDEXING_H
#define QUORVEX_INDEXING_H

#include "quorvex/values.h"

// The kinds of brackets.
enum Mr_idx_type { Mr_paren = 40, Mr_member = 46, Mr_none = 63, Mr_brace = 123 };

namespace kn {
struct RefAccess; // the library's own access to a reference (indexing/reference.cpp)
}

class QUORVEX_API Mr {
  public:
    Mr() : Mr(Mr_none, nullptr, nullptr, -1) {}
    Mr(const Mm &base) : Mr(base, Mr_paren, 0, nullptr) {} // x()
    Mr(const Mr &src);                                     // borrows the subscripts
    ~Mr() {
        if (owned) drop();
    }
    // n subscripts (0 to 4) on a value, or on another reference. A subscript that is no double is converted
    // by subsindex; a cell as the only subscript of () stands for its elements. The colon is the object c_p
    // itself.
    Mr(const Mm &base, Mr_idx_type kind, int n, const Mm *const *subscripts);
    Mr(const Mr &base, Mr_idx_type kind, int n, const Mm *const *subscripts);
    // The same for one and two.
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

    // Assignment through the reference: grows, converts and deletes as the language does. The target keeps
    // its type and flags.
    void operator=(const Mm &src);
    void operator=(const Mr &src);
    void operator=(double x);

    int size() const; // of the value read

    template <class T>
    requires kn::is_bool<T>
    explicit operator T() const {
        static_assert(!kn::is_bool<T>, "a value is no condition: write istrue(x), as in if (istrue(x(1)))");
        return false;
    }

  private:
    friend struct kn::RefAccess;

    // One is made for each subscript that a program writes, so it is written with few stores: what stands
    // behind nidx subscripts, or is of no use to the kind, is not set.
    Mr_idx_type kind;
    short nidx;
    short owned;      // a bit for each subscript that is a copy of its own
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

// What x stands for as a subscript: characters and bytes become numbers, an object is asked by the method
// subsindex of its class. A cell or structure is reported, and gives an empty value.
QUORVEX_API Mm subsindex(const Mm &x);

// An item is a value, or a number or a text that is made into a value only when it is needed: a literal of
// thousands of items costs the compiler of the program no temporary for each.
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

    int count() const { return last + 1; }
    int is_cell() const { return cell; }
    const Mm &item(int k) const { return items[k].value ? *items[k].value : make(items[k]); } // from 0
    // The number that item k is, when it is no value; null otherwise.
    const double *number(int k) const { return items[k].kind == Item::number ? &items[k].x : nullptr; }

  private:
    static constexpr int near_capacity = 16;
    struct Item {
        const Mm *value; // null for a number or text that is not made yet
        union {
            double x;
            const char *characters;
        };
        enum { borrowed, number, text } kind;
    };
    Item near_items[near_capacity];
    Item *items;
    int capacity;
    int last;
    int cell;
    mutable int made; // whether values were made, which the list owns

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
