// What a compiler of the language emits around its statements: the frame of a running function, try and
// catch, literals as tables of data, `end` in subscripts, the cases of a switch, globals.
// docs/generated-code.md shows each with the statement it comes from.
//
// Generated code includes this header, which includes quorvex.h. It is a convenience:
// it uses only the public interface, and a compiler may emit other code.
#ifndef QUORVEX_GENERATED_H
#define QUORVEX_GENERATED_H

#include "quorvex.h"

namespace generated {

// Numbers of inputs and outputs of a call.
struct Counts {
    int in = 0, out = 0;
};

// The frame of a running function, declared before its variables: an entry on the stack of source positions,
// a level of the workspace, and the results of nargin() and nargout(). The destructor restores those of the
// caller, also after an error. Counts that the caller has set itself (nargout_set, as feval does) take
// precedence for this one call.
class Frame {
  public:
    explicit Frame(const char *file, Counts counts = {}) : position_(file), counts_(counts) {}
    Frame(const Frame &) = delete;
    Frame &operator=(const Frame &) = delete;

  private:
    // The stack of source positions has 512 entries; deeper calls share the last.
    struct Position {
        explicit Position(const char *file) {
            if (kn_error_stack.depth < 512) ++kn_error_stack.depth;
            kn_error_stack.file[kn_error_stack.depth] = file;
            kn_error_stack.line_ptr = kn_error_stack.line + kn_error_stack.depth;
            *kn_error_stack.line_ptr = 0;
        }
        ~Position() {
            kn_error_stack.depth = caller;
            kn_error_stack.line_ptr = kn_error_stack.line + caller;
        }
        int caller = kn_error_stack.depth;
    } position_;
    struct Level {
        Level() { variables_scope.begin(); }
        ~Level() { variables_scope.end(); }
    } level_;
    struct ArgumentCounts {
        explicit ArgumentCounts(Counts n) {
            if (!nargin_set) nargin_val = n.in;
            if (!nargout_set) nargout_val = n.out;
            nargin_set = nargout_set = 0;
        }
        ~ArgumentCounts() {
            nargin_val = in;
            nargout_val = out;
        }
        double in = nargin_val, out = nargout_val;
    } counts_;
};

// Stores the line number of the next statement.
inline void line(int n) { *kn_error_stack.line_ptr = n; }

// The first variable of a try block. Errors are thrown until it is destroyed; then the earlier behaviour is
// restored.
class Try {
  public:
    Try() { kn_set_default_error_flags(16, 1); }
    ~Try() { kn_set_default_error_flags(16, before_); }
    Try(const Try &) = delete;
    Try &operator=(const Try &) = delete;

  private:
    unsigned before_ = kn_default_error_flags & 16;
};

// -- Literals. Static data of thousands of elements compile fast.

// A rows by cols matrix with its elements in column order: matrix(2, 2, {1, 3, 2, 4}). Longer ones are static
// tables, Mm(rows, cols, table), and so are character matrices, Mm(2, 3, "abc" "def").
template <size_t n> Mm matrix(kn_size rows, kn_size cols, const double (&re)[n]) {
    return Mm(rows, cols, re + 0);
}
// A rows by cols cell of texts, in column order.
QUORVEX_API Mm texts(kn_size rows, kn_size cols, const char *const *list);

// -- Subscripts, switch, globals.

// The value of `end` as subscript k of n: the size of that dimension; for a single subscript the number of
// elements. 0 for a variable without a value, so that x(end + 1) = y creates x.
QUORVEX_API double end_of(const Mm &x, int k = 1, int n = 1);
QUORVEX_API double end_of(const Mr &x, int k = 1, int n = 1);

// Whether a case of a switch matches: an equal text, an equal number, or a cell with such an element.
inline bool is_case(const Mm &value, const Mm &label) {
    auto same = [&](const Mm &one) {
        if (istrue(iscell(one))) return false;
        if (value.isstr() || one.isstr()) return istrue(strcmp(value, one)) != 0;
        return value.size() > 0 && one.size() > 0 && istrue(value == one);
    };
    if (!istrue(iscell(label))) return same(label);
    for (kn_size k = 1; k <= label.size(); ++k)
        if (same(label.mr(k))) return true;
    return false;
}

// The statement `global x`, for a variable defined outside all functions: Mm x_(i_o, "x", 1). It is [] before
// its first value.
inline Mm &global(Mm &x) {
    if (x.gettype() == kn_none) x = nop_M;
    return x;
}

} // namespace generated

#endif
