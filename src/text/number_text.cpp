// Numbers as fields of text.
//
// A full value is measured first: the real field is as wide as the longest %.Pg of the real plane and two
// blanks, the imaginary one as the longest of the imaginary plane, with the imaginary sign and "i" around it.
// A byte gets a field of 4 whatever its value, so that three digits and a wide precision overflow it. Numbers
// that are not finite are formatted like all others and then respelled by tables of replacements, which
// contain the spellings of several platforms.

#include "text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

#include "base/number_tests.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/strings.h"

int format_short = 1;

namespace kn {
namespace {

struct Spelling {
    std::string_view searched, shown;
};

constexpr Spelling nan_spellings[] = {
    {"-1.#QNAN0e+000", "           NaN"},
    {"1.#QNAN0e+000", "          NaN"},
    {"-1.#QO0e+000", "         NaN"},
    {"1.#QO0e+000", "        NaN"},
    {"-1.#QNAN", "     NaN"},
    {"1.#QNAN", "    NaN"},
    {"-1.#QO", "   NaN"},
    {"1.#QO", "  NaN"},
    {"  ?", "NaN"},
    {"-1.#IO", "   NaN"},
    {"-1.#IND", "    NaN"},
    {"1.#IND", "   NaN"},
    {"+NAN", " NaN"},
    {"-NAN", " NaN"},
    {"-nan", " NaN"},
    {"nan", "NaN"},
};

constexpr Spelling inf_spellings[] = {
    {"1.#INF00e+000", "           Inf"},
    {"1.#IO00e+000", "          Inf"},
    {"1.#INF", "   Inf"},
    {"1.#IO", "   Inf"},
    {"+INF", " Inf"},
    {" ++", "Inf"},
    {"inf", "Inf"},
};

constexpr Spelling minus_inf_spellings[] = {
    {"-1.#INF00e+000", "          -Inf"},
    {"-1.#IO00e+000", "          -Inf"},
    {"-1.#INF", "   -Inf"},
    {"-1.#IO", "   -Inf"},
    {"-INF", "-Inf"},
    {" ---", "-Inf"},
    {"-inf", "-Inf"},
};

std::span<const Spelling> spellings_of(double x) {
    if (std::isnan(x)) return nan_spellings;
    if (std::isinf(x)) return x > 0 ? std::span<const Spelling>(inf_spellings) : minus_inf_spellings;
    return {};
}

int decimal_digits(kn_size n) {
    int d = 1;
    while (n >= 10) n /= 10, ++d;
    return d;
}

void append_int(TextBuffer &out, kn_size n, int width) {
    char text[24];
    size_t length = static_cast<size_t>(std::to_chars(text, text + sizeof text, n).ptr - text);
    if (length < static_cast<size_t>(width)) out.append_blanks(static_cast<size_t>(width) - length);
    out.append({text, length});
}

// Stops when the text can't be completed.
template <class T> size_t longest(const T *x, kn_size n, const Digits &digits, TextBuffer &out) {
    char text[Digits::room];
    size_t w = 0;
    for (kn_size k = 0; k < n && out.goes_on(); ++k) w = std::max(w, digits.write(text, x[k]));
    return w;
}

// The elements of a value as fields.
template <class T> struct Fields {
    const T *re, *im; // im is null for a real value
    NumberFormat re_format, im_format;

    void append(TextBuffer &out, ptrdiff_t k) const {
        if (im)
            append_field(out, re[k], im[k], re_format, im_format);
        else
            append_number(out, re[k], re_format);
    }
};

template <class T> void append_full(const Mm &m, const Fields<T> &fields, TextRows &out, size_t &width) {
    const kn_size rows = m.rows(), cols = m.cols();
    for (kn_size r = 0; r < rows && out; ++r) {
        for (kn_size c = 0; c < cols && out.text.goes_on(); ++c) {
            fields.append(out.text, r + c * rows);
            if (r == 0 && c == 0) width = out.text.size();
        }
        out.end_row();
    }
}

// "(position) " of an entry in a vector, "(row,column) " in a matrix.
template <class T> void append_sparse(const Mm &m, const Fields<T> &fields, TextRows &out, size_t &width) {
    bool vector = m.vectordim() != 0;
    const kn_size rows = m.rows();
    const int digits = decimal_digits(vector ? m.size() : std::max(rows, m.cols()));
    for (kn_size k = 0; k < m.getnnz() && out.text.goes_on(); ++k) {
        const kn_size at = m.getindex()[k];
        out.text.append('(');
        if (vector) {
            append_int(out.text, at + 1, digits);
        } else {
            append_int(out.text, at % rows + 1, digits);
            out.text.append(',');
            append_int(out.text, at / rows + 1, digits);
        }
        out.text.append(") ");
        fields.append(out.text, k);
        if (k == 0) width = out.text.size();
        out.end_row();
    }
}

template <class T> void append_rows(const Mm &m, const Fields<T> &fields, TextRows &out, size_t &width) {
    if (m.issparse())
        append_sparse(m, fields, out, width);
    else
        append_full(m, fields, out, width);
}

// Removes leading blank columns and then every null character, which turns a matrix into a row. Returns the
// text itself when there is neither.
Mm deblank_leading(const Mm &text) {
    Codes codes(text);
    if (!codes) return x_M;
    kn_size m = codes.rows(), n = codes.cols(), first = 0;
    const double *code = codes.data(), *end = code + codes.size();
    while (first < n && std::all_of(code, code + m, [](double c) { return c == 32; })) {
        ++first;
        code += m;
    }
    ptrdiff_t nulls = std::count(code, end, 0.0), kept = end - code - nulls;
    if (first == 0 && nulls == 0) return text;
    const kn_size size = kept;
    Mm out = nulls == 0       ? Mm(0, 0, 0, m, n - first, kn_double)
             : n - first == 1 ? Mm(0, 0, 0, size, 1, kn_double)
                              : Mm(0, 0, 0, 1, size, kn_double);
    if (lacks(out, size)) return x_M;
    std::copy_if(code, end, out.addr(), [](double c) { return c != 0; });
    out.setstr(text.isstr());
    return out;
}

constexpr int standard_precision = 4;

bool has_characters(const Mm &m) {
    return m.isstr() && m.size() > 0 && m.gettype() != kn_Mm && m.gettype() != kn_none;
}

Mm numeric_text(const Mm &m, int precision, Mm &text, Mm &width) {
    if (has_characters(m)) {
        text = m;
        width = m.cols();
        return x_M;
    }
    TextRows rows;
    size_t w;
    if (!number_rows(m, precision, rows, w)) return x_M;
    text = rows.value();
    width = static_cast<double>(w);
    return x_M;
}

} // namespace

Digits::Digits(int precision)
    : precision_(precision < 0 ? 6 : std::clamp(precision, 1, max_precision)), whole_(1) {
    for (int k = 0; k < std::min(precision_, 15); ++k) whole_ *= 10;
}

size_t Digits::write(char *out, double x) const {
    if (std::fabs(x) < whole_) {
        auto n = static_cast<long long>(x);
        if (static_cast<double>(n) == x && (n != 0 || !std::signbit(x)))
            return static_cast<size_t>(std::to_chars(out, out + room, n).ptr - out);
    }
    return static_cast<size_t>(std::to_chars(out, out + room, x, std::chars_format::general, precision_).ptr -
                               out);
}

int precision_of(const Mm &digits) {
    return digits.gettype() == kn_uint8 ? digits.ur(1) : double_to_int(digits.r());
}

void respell(TextBuffer &out, size_t start, double x) {
    for (const Spelling &s : spellings_of(x))
        for (size_t at = start; (at = out.view().find(s.searched, at)) != std::string_view::npos;
             at += s.shown.size()) {
            out.replace(at, s.searched.size(), s.shown);
            if (!out) return;
        }
}

void append_number(TextBuffer &out, double x, const NumberFormat &f) {
    char text[Digits::room];
    size_t start = out.size(), n = f.digits.write(text, x);
    out.append_blanks(f.blanks + (n < f.width ? f.width - n : 0));
    out.append({text, n});
    if (out && !is_finite(x)) respell(out, start, x);
}

void append_field(TextBuffer &out, double re, double im, const NumberFormat &re_format,
                  const NumberFormat &im_format) {
    append_number(out, re, re_format);
    size_t start = out.size();
    out.append("  ");
    append_number(out, std::fabs(im), im_format);
    out.append('i');
    if (!out) return;
    if (im == 0)
        std::memset(out.data() + start, ' ', out.size() - start);
    else
        out.data()[start + 1] = im > 0 ? '+' : '-';
}

bool number_rows(const Mm &m, int precision, TextRows &out, size_t &width) {
    width = 0;
    std::string_view fixed;
    if (m.gettype() == kn_none) {
        fixed = "(this variable has no value)";
    } else if (m.gettype() == kn_Mm) {
        error("Can not convert %s into a numerical matrix", kn_display_name(m));
        return false;
    } else if (m.size() == 0) {
        fixed = m.isstr() ? "''" : "[]";
    } else if (m.issparse() && m.getnnz() == 0) {
        out.text.append("All zeros sparse");
        out.end_row();
        return out.finish();
    }
    if (!fixed.empty()) {
        out.text.append(fixed);
        out.end_row();
        width = fixed.size();
        return out.finish();
    }

    Digits digits(precision);
    if (m.gettype() == kn_uint8) {
        auto byte = static_cast<unsigned char *>(nullptr);
        Fields<unsigned char> fields{m.getpr(byte), m.getpi(byte), {digits, 4}, {digits, 2}};
        if (fields.im && std::count(fields.im, fields.im + m.getnnz(), 0) == m.getnnz()) fields.im = nullptr;
        append_rows(m, fields, out, width);
    } else {
        m.getreal(0);
        Fields<double> fields{m.addr(), m.addi(), {digits}, {digits, 1}};
        fields.re_format.width = longest(fields.re, m.getnnz(), digits, out.text) + 2;
        if (fields.im) fields.im_format.width = longest(fields.im, m.getnnz(), digits, out.text);
        append_rows(m, fields, out, width);
    }
    return out.finish();
}

} // namespace kn

using namespace kn;

Mm num2str(const Mm &m) {
    if (has_characters(m)) return deblank_leading(m);
    TextRows rows;
    size_t width;
    if (!number_rows(m, standard_precision, rows, width)) return x_M;
    return rows.value(rows.leading_blanks());
}

Mm num2str(const Mm &m, const Mm &digits) {
    Mm text = x_M, width;
    num2str(m, digits, i_o, text, width);
    return text;
}

Mm num2str(const Mm &m, i_o_t, Mm &text, Mm &width) {
    return numeric_text(m, standard_precision, text, width);
}

Mm num2str(const Mm &m, const Mm &digits, i_o_t, Mm &text, Mm &width) {
    return numeric_text(m, precision_of(digits), text, width);
}
