// Functions of single characters: case and character class.

#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/text.h"
#include "value/nesting.h"
#include "value/strings.h"

namespace {

using namespace kn;

template <class T, class F> void replace_each(T *x, kn_size n, F f) {
    for (kn_size k = 0; k < n; ++k) x[k] = f(x[k]);
}

template <class F> Mm mapped_text(const Mm &s, F f) {
    s.warn_uninit();
    if (!s.isstr() || s.size() == 0 || s.gettype() == kn_Mm) return s;
    Mm out;
    out.deepcopy(s, kn_none);
    if (lacks(out, s.getnnz())) return x_M;
    if (out.gettype() == kn_uint8)
        replace_each(out.getpr(static_cast<unsigned char *>(nullptr)), out.getnnz(), f);
    else
        replace_each(out.addr(), out.getnnz(), f);
    return out;
}

template <class F> Mm mapped(const Mm &s, F f) {
    return map_leaves(s, [&](const Mm &text) { return mapped_text(text, f); });
}

template <class F> Mm where(const Mm &s, F is) {
    s.warn_uninit();
    const kn_size n = s.size();
    Mm out = fresh_like(s, 0, kn_double);
    if (lacks(out, n)) return x_M;
    double *to = out.addr();
    if (s.isstr() && is_text(s)) {
        const Codes codes(s);
        if (!codes) return x_M;
        for (kn_size k = 0; k < n; ++k) to[k] = is(codes.data()[k]);
    } else {
        std::fill_n(to, n, 0.0);
    }
    out.setlogical(1);
    return out;
}

} // namespace

Mm upper(const Mm &s) {
    return mapped(s, [](auto c) { return to_upper(c); });
}

Mm lower(const Mm &s) {
    return mapped(s, [](auto c) { return to_lower(c); });
}

Mm isspace(const Mm &s) { return where(s, is_white<double>); }

Mm isletter(const Mm &s) { return where(s, is_letter<double>); }

Mm isstr(const Mm &s) { return ischar(s); }
