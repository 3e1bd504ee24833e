// Element access with its range and type messages, display names, and the scalar in a value.
//
// A failed access goes on, when the error handler returns, with a scratch element.

#include <cstdio>

#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

template <class T> T &scratch_element() {
    static thread_local T element;
    element = T();
    return element;
}

template <class T> bool has_type(const Mm &m) {
    if (m.gettype() == type_of<T>) return true;
    error(".r / .i : wrong matrix type");
    return false;
}

kn_size subscript(double x) { return double_to_size(x); }
kn_size subscript(kn_size k) { return k; }

bool inside(kn_size k, kn_size n) { return k >= 1 && k <= n; }

// Element `offset` (0-based) of a plane. A missing imaginary plane reads as zeros, and a sparse value has its
// stored elements only.
template <class T> T &element(const Mm &m, void *plane, kn_size offset) {
    if (!plane || offset >= m.getnnz()) return scratch_element<T>();
    return static_cast<T *>(plane)[offset];
}

// The families: by type of element and of index, whose format the message has.
template <class T> T &at(const Mm &m, void *plane) {
    if (!has_type<T>(m)) return scratch_element<T>();
    if (m.size() >= 1) return element<T>(m, plane, 0);
    error("%s.r(): matrix is empty", kn_display_name(m));
    return scratch_element<T>();
}

template <class T, class I> T &at(const Mm &m, void *plane, I idx, const char *text) {
    if (!has_type<T>(m)) return scratch_element<T>();
    const kn_size k = subscript(idx);
    if (inside(k, m.size()) && k <= m.getnnz()) return element<T>(m, plane, k - 1);
    error(text, kn_display_name(m), idx);
    return scratch_element<T>();
}

template <class T, class I> T &at(const Mm &m, void *plane, I row, I col, const char *text) {
    if (!has_type<T>(m)) return scratch_element<T>();
    const kn_size r = subscript(row), c = subscript(col);
    const kn_size *d = m.getdims();
    if (inside(r, d[0]) && inside(c, d[1])) return element<T>(m, plane, (r - 1) + (c - 1) * d[0]);
    error(text, kn_display_name(m), row, col);
    return scratch_element<T>();
}

double &at(const Mm &m, void *plane, double row, double col, double depth) {
    if (!has_type<double>(m)) return scratch_element<double>();
    const kn_size r = subscript(row), c = subscript(col), l = subscript(depth);
    const kn_size *d = m.getdims();
    if (inside(r, d[0]) && inside(c, d[1]) && inside(l, d[2]))
        return element<double>(m, plane, (r - 1) + d[0] * ((c - 1) + (l - 1) * d[1]));
    error("%s.r(row,col,depth): row=%g, col=%g or depth=%g out of matrix", kn_display_name(m), row, col,
          depth);
    return scratch_element<double>();
}

constexpr char r1[] = "%s.r(idx): idx=%g out of matrix";
constexpr char r2[] = "%s.r(row,col): row=%g or col=%g out of matrix";

} // namespace
} // namespace kn

using namespace kn;

double &Mm::r() const { return kn::at<double>(*this, pr); }
double &Mm::r(double idx) const { return kn::at<double>(*this, pr, idx, r1); }
double &Mm::r(double row, double col) const { return kn::at<double>(*this, pr, row, col, r2); }
double &Mm::r(double row, double col, double depth) const { return kn::at(*this, pr, row, col, depth); }
// The imaginary family has the messages of the real one.
double &Mm::i() const { return kn::at<double>(*this, pi); }
double &Mm::i(double idx) const { return kn::at<double>(*this, pi, idx, r1); }
double &Mm::i(double row, double col) const { return kn::at<double>(*this, pi, row, col, r2); }
double &Mm::i(double row, double col, double depth) const { return kn::at(*this, pi, row, col, depth); }
unsigned char &Mm::ur(kn_size idx) const {
    return kn::at<unsigned char>(*this, pr, idx, "%s.ur(idx): idx=%td out of matrix");
}
unsigned char &Mm::ur(kn_size row, kn_size col) const {
    return kn::at<unsigned char>(*this, pr, row, col, "%s.ur(row,col): row=%td or col=%td out of matrix");
}
Mm &Mm::mr(kn_size idx) const { return kn::at<Mm>(*this, pr, idx, "%s.mr(idx): idx=%td out of matrix"); }
Mm &Mm::mr(kn_size row, kn_size col) const {
    return kn::at<Mm>(*this, pr, row, col, "%s.mr(row,col): row=%td or col=%td out of matrix");
}

Mm Mm::safebr(kn_size k) const {
    return flags.type == kn_Mm && inside(k, size()) && k <= nnz ? static_cast<Mm *>(pr)[k - 1] : nop_M;
}

void Mm::warn_uninit() const {
    if (flags.type == kn_none) error("variable '%s' was used without a value", kn_display_name(*this));
}

const char *kn_display_name(const Mm &x) {
    // One message can have several names.
    static thread_local char texts[4][24];
    static thread_local int turn = 0;
    if (x.getname()) return x.getname();
    if (x.gettype() != kn_double || x.size() != 1) return "(temporary)";
    char *text = texts[turn];
    turn = (turn + 1) % 4;
    std::snprintf(text, sizeof texts[0], "=%td", x.getnnz() > 0 ? double_to_size(*x.addr()) : 0);
    return text;
}

double scalar(const Mm &x) {
    const char *fault = x.size() != 1              ? "not scalar"
                        : x.isc()                  ? "complex"
                        : x.isstr()                ? "string"
                        : x.issparse()             ? "sparse"
                        : x.gettype() != kn_double ? "not double"
                                                   : nullptr;
    if (!fault) return *x.addr();
    error("scalar: matrix %s is %s", kn_display_name(x), fault);
    return 0.0;
}
