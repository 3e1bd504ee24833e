// Dates read from text.
//
// A text is a list of numbers, names and signs. Numbers joined by ":" are a time, with an optional AM or PM.
// All other numbers, up to three, are the date: with the name of a month among them, day and year, in the
// order that the larger number implies; without one, month, day and year, or year, month and day when the
// first cannot be a month. Names of week days are skipped.

#include <charconv>
#include <cmath>

#include "base/ascii.h"
#include "text/dates/date_parts.h"

namespace kn {
namespace {

struct Number {
    double value;
    size_t digits;
};

class Reader {
  public:
    Reader(std::string_view text, const DateParts &today) : text_(text), today_(today) {}

    bool read(double &date) {
        while (!text_.empty()) {
            const char c = text_[0];
            if (is_digit(c) ? !number() : is_letter(c) ? !name() : !sign(c)) return false;
        }
        return settle(date);
    }

  private:
    std::string_view text_;
    const DateParts &today_;
    Number dates_[3], times_[3];
    int n_dates_ = 0, n_times_ = 0, month_ = 0;
    char half_ = 0; // 'a' or 'p'
    bool in_time_ = false;

    bool sign(char c) {
        text_.remove_prefix(1);
        return c == ' ' || c == '\t' || c == '-' || c == '/' || c == ',' || c == '.';
    }

    bool number() {
        size_t n = 0;
        while (n < text_.size() && is_digit(text_[n])) ++n;
        const bool time = in_time_ || (n < text_.size() && text_[n] == ':');
        Number x{0, n};
        if (time && n < text_.size() && text_[n] == '.') // fractional seconds
            for (++n; n < text_.size() && is_digit(text_[n]);) ++n;
        std::from_chars(text_.data(), text_.data() + n, x.value);
        text_.remove_prefix(n);
        int &count = time ? n_times_ : n_dates_;
        if (count == 3) return false;
        (time ? times_ : dates_)[count++] = x;
        in_time_ = time && !text_.empty() && text_[0] == ':';
        if (in_time_) text_.remove_prefix(1);
        return !in_time_ || (!text_.empty() && is_digit(text_[0]));
    }

    bool name() {
        size_t n = 0;
        char word[name_length + 1] = {};
        for (; n < text_.size() && is_letter(text_[n]); ++n)
            if (n < name_length) word[n] = to_lower(text_[n]);
        text_.remove_prefix(n);
        if (n == 2 && word[1] == 'm' && (word[0] == 'a' || word[0] == 'p')) {
            const bool first = half_ == 0;
            half_ = word[0];
            return first && n_times_ > 0;
        }
        if (n == 1 && word[0] == 't') return n_dates_ > 0; // 2000-03-01T12:00
        if (n < name_length) return false;
        word[0] = to_upper(word[0]);
        const std::string_view name(word);
        for (const auto &day : week_day_names)
            if (name == day) return true;
        for (int m = 0; m < 12; ++m) {
            if (name != month_names[m]) continue;
            const bool first = month_ == 0;
            month_ = m + 1;
            return first;
        }
        return false;
    }

    double year(const Number &x) const {
        if (x.digits > 2) return x.value;
        return x.value + 100 * std::round((today_.year - x.value) / 100);
    }

    bool date_of(DateParts &p) const {
        auto is_year = [](const Number &x) { return x.digits > 2 || x.value > 31; };
        const Number *x = dates_;
        if (month_ > 0) {
            p.month = month_;
            if (n_dates_ == 0 || n_dates_ > 2) return false;
            p.day = 1;
            if (n_dates_ == 1) {
                (is_year(x[0]) ? p.year : p.day) = is_year(x[0]) ? year(x[0]) : x[0].value;
            } else {
                const bool year_first = is_year(x[0]);
                p.year = year(x[year_first ? 0 : 1]);
                p.day = x[year_first ? 1 : 0].value;
            }
        } else if (n_dates_ == 3 && is_year(x[0])) {
            p.year = year(x[0]), p.month = x[1].value, p.day = x[2].value;
        } else if (n_dates_ >= 2) {
            p.month = x[0].value, p.day = x[1].value;
            if (n_dates_ == 3) p.year = year(x[2]);
        } else {
            return n_dates_ == 0; // a time today
        }
        return p.month >= 1 && p.month <= 12 && p.day >= 1 && p.day <= days_in_month(p.year, p.month);
    }

    bool settle(double &date) const {
        DateParts p = {today_.year, today_.month, today_.day, 0, 0, 0};
        if (n_dates_ + month_ + n_times_ == 0 || n_times_ == 1 || !date_of(p)) return false;
        if (n_times_ > 0) {
            p.hour = times_[0].value;
            p.minute = times_[1].value;
            p.second = n_times_ == 3 ? times_[2].value : 0;
            if (half_ != 0) {
                if (p.hour < 1 || p.hour > 12) return false;
                p.hour = std::fmod(p.hour, 12) + (half_ == 'p' ? 12 : 0);
            }
            if (p.hour > 24 || p.minute >= 60 || p.second >= 60) return false;
        }
        date = date_number(p);
        return true;
    }
};

} // namespace

bool parse_date(std::string_view text, const DateParts &today, double &date) {
    return Reader(text, today).read(date);
}

} // namespace kn
