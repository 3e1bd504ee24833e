// Functions of dates and times. quorvex/dates.h says what a date may be: `dates_of` converts all of these to
// date numbers.

#include <algorithm>
#include <cmath>

#include "base/number_tests.h"
#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/dates.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/text.h"
#include "special/scalar_kernels.h"
#include "text/dates/date_parts.h"
#include "value/constants.h"
#include "value/strings.h"

namespace {

using namespace kn;

constexpr int n_parts = 6;

DateParts local_now() {
    os::LocalTime t;
    if (!os::local_time(os::wall_clock(), t)) {
        error("clock: the system has no local time");
        return {};
    }
    return {double(t.year), double(t.month), double(t.day), double(t.hour), double(t.minute), t.second};
}

DateParts parts_at(const double *const *x, const int *step, kn_size k) {
    auto part = [&](int p) { return x[p] ? x[p][k * step[p]] : 0; };
    return {part(0), part(1), part(2), part(3), part(4), part(5)};
}

// ---- Date numbers of any date ----

bool text_dates(const char *caller, const Mm &m, const DateParts &today, double *to) {
    const Codes codes(m);
    if (!codes) return false;
    for (kn_size r = 0; r < codes.rows(); ++r) {
        TextBuffer text;
        for (ptrdiff_t c = 0; c < codes.cols(); ++c)
            text.append(static_cast<char>(to_byte(codes.data()[r + c * codes.rows()])));
        if (!text) return false;
        if (!parse_date(text.view(), today, to[r])) {
            error("%s: '%s' is not a date", caller, text.c_str());
            return false;
        }
    }
    return true;
}

Mm column(kn_size n) { return Mm(0, 0, 0, n, 1, kn_double); }

// Whether the rows are date vectors: by the number of columns alone, or also by a valid month and day.
bool are_vectors(const Mm &x, bool any) {
    const kn_size n = x.rows();
    if (x.getndims() > 2 || (x.cols() != 3 && x.cols() != n_parts)) return false;
    auto within = [&](int col, double most) {
        const double *v = x.addr(1, col);
        return std::all_of(v, v + n, [&](double e) { return e >= 1 && e <= most; });
    };
    return any || (within(2, 12) && within(3, 31));
}

// Real doubles; x_M after a report.
Mm dates_of(const char *caller, const Mm &m, bool any_vector = false) {
    m.warn_uninit();
    if (is_cell(m)) {
        const kn_size n = m.size();
        Mm out = column(n);
        if (lacks(out, n)) return x_M;
        const CellItems elements(m);
        for (kn_size k = 0; k < n; ++k) {
            const Mm one = is_cell(elements[k]) ? x_M : dates_of(caller, elements[k], any_vector);
            if (one.size() != 1) {
                error("%s: element %td of %s is not one date", caller, k + 1, kn_display_name(m));
                return x_M;
            }
            out.addr()[k] = one.addr()[0];
        }
        return out;
    }
    if (m.isstr() && is_text(m)) {
        const kn_size n = m.rows();
        Mm out = column(n);
        return lacks(out, n) || !text_dates(caller, m, local_now(), out.addr()) ? x_M : out;
    }
    if (error_numeric(m, caller)) return x_M;
    const Mm x = real(mdouble(m));
    if (x.size() == 0 || !are_vectors(x, any_vector)) return x;
    const kn_size n = x.rows();
    const double *parts[n_parts] = {};
    int step[n_parts];
    std::fill_n(step, n_parts, 1);
    for (kn_size p = 0; p < x.cols(); ++p) parts[p] = x.addr(1, p + 1);
    Mm out = column(n);
    if (lacks(out, n)) return x_M;
    for (kn_size k = 0; k < n; ++k) out.addr()[k] = date_number(parts_at(parts, step, k));
    return out;
}

// ---- Date numbers from parts ----

Mm date_numbers(const char *caller, std::initializer_list<const Mm *> inputs) {
    Mm held[n_parts];
    const double *parts[n_parts] = {};
    int step[n_parts] = {}, k = 0;
    const Mm *shape = nullptr;
    for (const Mm *input : inputs) {
        input->warn_uninit();
        if (error_numeric(*input, caller)) return x_M;
        held[k] = real(mdouble(*input));
        if (!shape || (shape->size() == 1 && held[k].size() != 1)) shape = &held[k];
        ++k;
    }
    for (int p = 0; p < k; ++p) {
        step[p] = held[p].size() != 1;
        parts[p] = held[p].addr();
        if (step[p] && !same_size(held[p], *shape)) {
            error("%s: inputs must be of same size", caller);
            return x_M;
        }
    }
    Mm out = fresh_like(*shape, 0, kn_double);
    const kn_size n = shape->size();
    if (lacks(out, n)) return x_M;
    for (kn_size e = 0; e < n; ++e) out.addr()[e] = date_number(parts_at(parts, step, e));
    return out;
}

// ---- Text of dates ----

const char *standard_picture(const Mm &dates) {
    const double *x = dates.addr(), *end = x + dates.getnnz();
    if (std::all_of(x, end, [](double d) { return d >= 0 && d < 1; })) return picture_of(16);
    return picture_of(std::all_of(x, end, [](double d) { return d == std::floor(d); }) ? 1 : 0);
}

Mm text_of_dates(const Mm &dates, std::string_view picture) {
    TextRows rows;
    for (kn_size k = 0; k < dates.getnnz() && rows; ++k) {
        const double date = dates.addr()[k];
        if (std::isnan(parts_of(date).year)) {
            error("datestr: not a date");
            return x_M;
        }
        append_date(rows.text, date, picture);
        rows.end_row();
    }
    return rows.finish() ? rows.value() : x_M;
}

Mm month_of(const DateParts &p) {
    Mm out(0, 0, 0, 6, 7, kn_double);
    if (lacks(out, 42)) return x_M;
    std::fill_n(out.addr(), 42, 0.0);
    const double days = days_in_month(p.year, p.month);
    const int first = is_finite(days) ? day_of_week(day_number(p.year, p.month, 1)) : 0;
    for (int day = 0; day < days; ++day) *out.addr((first + day) / 7 + 1, (first + day) % 7 + 1) = day + 1;
    return out;
}

} // namespace

// ---- Now ----

Mm clockM() {
    const DateParts p = local_now();
    Mm out(0, 0, 0, 1, n_parts, kn_double);
    if (lacks(out, n_parts)) return x_M;
    const double parts[] = {p.year, p.month, p.day, p.hour, p.minute, p.second};
    std::copy_n(parts, n_parts, out.addr());
    return out;
}

Mm now() { return date_number(local_now()); }
Mm date() { return datestr(now(), 1.0); }

Mm tic() {
    TICTOC = os::monotonic_clock();
    return x_M;
}

Mm toc() {
    const double end = os::monotonic_clock();
    const bool number = TICTOC.gettype() == kn_double && TICTOC.size() == 1 && !TICTOC.issparse();
    if (number && *TICTOC.addr() != 0) return end - *TICTOC.addr();
    error("toc: no tic before");
    return x_M;
}

Mm etime(const Mm &b, const Mm &a) {
    if (error_numeric(b, "etime") || error_numeric(a, "etime")) return x_M;
    const Mm end = real(mdouble(b)), start = real(mdouble(a));
    const kn_size n = end.rows();
    if (end.size() != n * n_parts || end.cols() != n_parts || start.rows() != n ||
        start.size() != end.size() || start.cols() != n_parts) {
        error("etime: date vectors of %d columns expected", n_parts);
        return x_M;
    }
    Mm out = column(n);
    if (lacks(out, n)) return x_M;
    for (kn_size k = 1; k <= n; ++k) {
        auto day = [&](const Mm &v) { return day_number(*v.addr(k, 1), *v.addr(k, 2), *v.addr(k, 3)); };
        auto later = [&](int part) { return *end.addr(k, part) - *start.addr(k, part); };
        *out.addr(k) = 86400 * (day(end) - day(start)) + 3600 * later(4) + 60 * later(5) + later(6);
    }
    return out;
}

// ---- Date numbers, date vectors and text ----

Mm datenum(const Mm &date) { return dates_of("datenum", date, true); }
Mm datenum(const Mm &y, const Mm &m, const Mm &d) { return date_numbers("datenum", {&y, &m, &d}); }
Mm datenum(const Mm &y, const Mm &m, const Mm &d, const Mm &h, const Mm &mi, const Mm &s) {
    return date_numbers("datenum", {&y, &m, &d, &h, &mi, &s});
}

Mm datevec(const Mm &date) {
    const Mm dates = dates_of("datevec", date);
    const kn_size n = dates.size();
    Mm out(0, 0, 0, n, n_parts, kn_double);
    if (n > 0 && out.getnnz() == 0) return x_M;
    for (kn_size k = 1; k <= n; ++k) {
        const DateParts p = parts_of(*dates.addr(k));
        const double parts[] = {p.year, p.month, p.day, p.hour, p.minute, p.second};
        for (int c = 0; c < n_parts; ++c) *out.addr(k, c + 1) = parts[c];
    }
    return out;
}

Mm datevec(const Mm &date, i_o_t, Mm &y, Mm &m, Mm &d, Mm &h, Mm &mi, Mm &s) {
    const Mm all = datevec(date);
    const kn_size n = all.rows();
    Mm parts[n_parts];
    for (int c = 0; c < n_parts; ++c) {
        parts[c] = column(n);
        if (lacks(parts[c], n)) return x_M;
        if (n > 0) std::copy_n(all.addr(1, c + 1), n, parts[c].addr());
    }
    Mm *const out[] = {&y, &m, &d, &h, &mi, &s};
    for (int c = 0; c < n_parts; ++c) *out[c] = parts[c];
    return x_M;
}

Mm datestr(const Mm &date) {
    const Mm dates = dates_of("datestr", date);
    return text_of_dates(dates, standard_picture(dates));
}

Mm datestr(const Mm &date, const Mm &form) {
    if (error_numeric(form, "datestr")) return x_M;
    if (form.isstr()) {
        const Codes codes(form);
        TextBuffer picture;
        for (ptrdiff_t k = 0; k < codes.size(); ++k) {
            const auto c = static_cast<char>(to_byte(codes.data()[k]));
            picture.append(c >= 0 && c < ' ' ? ' ' : c); // a control character would end the row
        }
        return codes && picture ? text_of_dates(dates_of("datestr", date), picture.view()) : x_M;
    }
    if (const char *picture = picture_of(mdouble(form).r()))
        return text_of_dates(dates_of("datestr", date), picture);
    error("datestr: no such form");
    return x_M;
}

Mm weekday(const Mm &date, i_o_t, Mm &number, Mm &name) {
    const Mm dates = dates_of("weekday", date);
    const kn_size n = dates.size();
    Mm numbers = fresh_like(dates, 0, kn_double), names(0, 0, 0, n, name_length, kn_double);
    if (lacks(numbers, n) || (n > 0 && names.getnnz() == 0)) return x_M;
    for (kn_size k = 1; k <= n; ++k) {
        const double x = *dates.addr(k);
        const bool known = is_finite(x);
        *numbers.addr(k) = known ? day_of_week(x) + 1 : raw_nan;
        for (int c = 0; c < name_length; ++c)
            *names.addr(k, c + 1) = known ? week_day_names[day_of_week(x)][c] : ' ';
    }
    names.setstr(1);
    number = numbers;
    name = names;
    return x_M;
}

Mm weekday(const Mm &date) {
    Mm number = x_M, name;
    weekday(date, i_o, number, name);
    return number;
}

Mm calendar() { return month_of(local_now()); }

Mm calendar(const Mm &date) {
    const Mm dates = dates_of("calendar", date);
    return dates.size() == 0 ? x_M : month_of(parts_of(*dates.addr()));
}

Mm calendar(const Mm &y, const Mm &m) {
    const Mm day = 1.0;
    const Mm first = date_numbers("calendar", {&y, &m, &day});
    return first.size() == 0 ? x_M : month_of(parts_of(*first.addr()));
}

Mm eomday(const Mm &y, const Mm &m) {
    const Mm day = 1.0;
    Mm days = date_numbers("eomday", {&y, &m, &day});
    for (kn_size k = 0; k < days.getnnz(); ++k) {
        const DateParts p = parts_of(days.addr()[k]);
        days.addr()[k] = days_in_month(p.year, p.month);
    }
    return days;
}
