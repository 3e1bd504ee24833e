// strvcat: rows stacked to one character matrix. The inputs are traversed twice, to measure and to fill.

#include <algorithm>
#include <initializer_list>

#include "base/scratch.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "quorvex/text.h"
#include "value/nesting.h"
#include "value/strings.h"

namespace {

using namespace kn;

constexpr double blank = 32;

// Calls `work` for each value that gives rows, in order. False when there is a structure.
template <class F> bool each_text(const Mm &m, F work) {
    return each_leaf(m, [&](const Mm &x) {
        if (x.size() == 0) return true;
        if (x.isstruct()) {
            error("Can not convert %s into a numerical matrix", kn_display_name(x));
            return false;
        }
        work(x);
        return true;
    });
}

Mm stack(std::initializer_list<const Mm *> inputs) {
    kn_size m = 0, cols = 0;
    for (const Mm *input : inputs) {
        auto measure = [&](const Mm &text) {
            m += text.rows();
            cols = std::max(cols, text.size() / text.rows());
        };
        if (!each_text(*input, measure)) return x_M;
    }
    Mm out(0, 0, 0, m, cols, kn_double);
    if (m > 0 && out.getnnz() == 0) return x_M;

    double *to = out.addr();
    bool complete = true;
    for (const Mm *input : inputs) {
        each_text(*input, [&](const Mm &text) {
            Codes codes(text);
            complete = complete && codes;
            kn_size r = complete ? codes.rows() : 0, n = complete ? codes.cols() : 0;
            for (kn_size c = 0; c < cols; ++c) {
                double *column = to + c * m;
                if (c < n)
                    std::copy_n(codes.data() + c * r, r, column);
                else
                    std::fill_n(column, r, blank);
            }
            to += r;
        });
    }
    if (!complete) return x_M;
    out.setstr(1);
    return out;
}

} // namespace

KN_LISTS_OF_TEXTS(strvcat, stack)
