// Conversions composed of others: int2str, mat2str, str2double, str2mat.

#include <algorithm>

#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/conversions.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/operations.h"
#include "quorvex/structures.h"
#include "text/number_from_text.h"
#include "text/number_text.h"
#include "value/constants.h"
#include "value/nesting.h"
#include "value/strings.h"

namespace {

using namespace kn;

constexpr double standard_digits = 15;

// The content of a cell of one element, through nested cells of one element.
const Mm &only_element(const Mm &m) {
    const Mm *x = &m;
    while (is_cell(*x) && x->size() == 1) x = &element_at(*x, 0);
    return *x;
}

Mm stack(std::initializer_list<const Mm *> inputs) {
    if (inputs.size() > 1)
        return strvcat(cell_from_array(static_cast<kn_size>(inputs.size()), inputs.begin()));
    (*inputs.begin())->warn_uninit();
    const Mm &c = only_element(**inputs.begin());
    if (is_cell(c)) return strvcat(c);
    return error_numeric(c, "str2mat") ? x_M : setstr(c);
}

} // namespace

Mm int2str(const Mm &m) { return num2str(round(m)); }

Mm mat2str(const Mm &m) { return mat2str(m, standard_digits); }

Mm mat2str(const Mm &m, const Mm &digits) {
    m.warn_uninit();
    const Mm x = mdouble(m.isstruct() ? mdouble(m) : m); // a method may give any class
    if (error_numeric(x, "mat2str")) return x_M;
    if (x.size() == 0) return TM("[]");
    const NumberFormat format{Digits(precision_of(digits)), 0, 1};
    const kn_size n = x.size(), rows = x.rows();
    if (lacks(x, n)) return x_M;
    const double *re = x.addr(), *im = x.addi();
    TextRows out;
    TextBuffer &text = out.text;
    if (n > 1) text.append('[');
    for (kn_size r = 0; r < rows && text; ++r) {
        if (r > 0) text.append(';');
        for (kn_size k = r; k < n && text.goes_on(); k += rows) {
            if (im)
                append_field(text, re[k], im[k], format, format);
            else
                append_number(text, re[k], format);
        }
    }
    if (n > 1) text.append(']');
    out.end_row();
    return out ? out.value() : x_M;
}

Mm str2double(const Mm &s) {
    if (!is_cell(s)) {
        Mm x = str2num(s);
        return x.size() == 0 ? Mm(raw_nan) : x;
    }
    Mm out = czeros(0, s.getndims(), s.getdims());
    const kn_size n = s.size();
    if (lacks(out, n)) return x_M;
    for (kn_size k = 0; k < n; ++k) {
        const Mm &element = only_element(s.mr(k + 1));
        TextNumber number;
        if (!text_number(element, number)) {
            const Mm x = is_cell(element) ? x_M : str2double(element);
            if (x.size() != 1) {
                error("str2double: element %td of %s is not one number", k + 1, kn_display_name(s));
                return x_M;
            }
            number = {x.r(), x.isc() ? x.i() : 0, x.isc() != 0};
        }
        if (number.complex && !out.isc()) {
            out.getcomplex();
            if (!out.isc()) return x_M;
        }
        out.addr()[k] = number.re;
        if (out.isc()) out.addi()[k] = number.im;
    }
    return out;
}

KN_LISTS_OF_TEXTS(str2mat, stack)
KN_LISTS_OF_TEXTS(mchar, stack)
