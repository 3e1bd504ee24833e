// What a compiler of the language emits around its statements: the frame of a running function, try and
// catch, literals as tables of data, `end` in subscripts, the cases of a switch, globals.
// docs/generated-code.md shows each with the statement it comes from.
//
// Generated code includes this header in place of quorvex.h. All of it is sugar over the public interface: a
// compiler may emit something of its own.
#ifndef QUORVEX_GENERATED_H
#define QUORVEX_GENERATED_H

#include "quorvex.h"

namespace generated {

// Numbers of inputs and outputs of a call.
struct Counts {
    int in = 0, out = 0;
};

// A running function, declared before its variables: an entry on the stack of source positions, a level of
// the workspace, and what nargin() and nargout() answer. All three are the caller's again when the function
// is left, by an error too. Counts that the caller has set itself (nargout_set, as feval does) go first, and
// hold for this one call.
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

// Stores the line of the statement that follows.
inline void line(int n) { *kn_error_stack.line_ptr = n; }

// The first variable of a try block: errors are thrown until the block is left, whichever way, and then go as
// they went before.
class Try {
  public:
    Try() { kn_set_default_error_flags(16, 1); }
    ~Try() { kn_set_default_error_flags(16, before_); }
    Try(const Try &) = delete;
    Try &operator=(const Try &) = delete;

  private:
    unsigned before_ = kn_default_error_flags & 16;
};

// -- Literals. The compiler of the program takes thousands of elements as static data in no time.

// A matrix of the given extents with its elements column by column: matrix(2, 2, {1, 3, 2, 4}). Longer ones
// are static tables, Mm(rows, cols, table), and so are texts, Mm(2, 3, "abc" "def").
template <size_t n> Mm matrix(int rows, int cols, const double (&re)[n]) { return Mm(rows, cols, re + 0); }
// A cell of texts, column by column.
QUORVEX_API Mm texts(int rows, int cols, const char *const *list);

// -- Subscripts, switch, globals.

// `end` as subscript k of n: the extent there, of one subscript the number of elements. 0 for what has no
// value yet, so that x(end + 1) = y makes x.
QUORVEX_API double end_of(const Mm &x, int k = 1, int n = 1);
QUORVEX_API double end_of(const Mr &x, int k = 1, int n = 1);

// Whether a case of a switch is taken: a text that is the same, a number that is equal, any such element of a
// cell.
inline bool is_case(const Mm &value, const Mm &label) {
    auto same = [&](const Mm &one) {
        if (istrue(iscell(one))) return false;
        if (value.isstr() || one.isstr()) return istrue(strcmp(value, one)) != 0;
        return value.size() > 0 && one.size() > 0 && istrue(value == one);
    };
    if (!istrue(iscell(label))) return same(label);
    for (int k = 1; k <= label.size(); ++k)
        if (same(label.mr(k))) return true;
    return false;
}

// The statement `global x`, of a variable that stands outside all functions: Mm x_(i_o, "x", 1). It is []
// before its first value.
inline Mm &global(Mm &x) {
    if (x.gettype() == kn_none) x = nop_M;
    return x;
}

} // namespace generated

#endif
