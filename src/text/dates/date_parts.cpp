// The calendar, and dates written by date formats.
//
// Between days and dates: the algorithms of Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms"
// (2013), in which a year begins in March, so that its leap day is the last one, and 400 years are an era of
// 146097 days. Here they run on doubles, exact for all days that are distinguishable.

#include "text/dates/date_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "value/constants.h"

namespace kn {

const char week_day_names[7][name_length + 1] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char month_names[12][name_length + 1] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

namespace {

constexpr double first_of_march = 61; // of the year 0
constexpr double days_in_era = 146097;
constexpr double ms_in_second = 1e3, ms_in_minute = 6e4, ms_in_hour = 36e5, ms_in_day = 864e5;

double days_before_month(double months_since_march) { return std::floor((153 * months_since_march + 2) / 5); }

} // namespace

double day_number(double year, double month, double day) {
    month = std::floor(month);
    month = month < 1 ? 0 : month - 1;
    const double y = std::floor(year) + std::floor(month / 12) - (std::fmod(month, 12) < 2);
    const double days = 365 * y + std::floor(y / 4) - std::floor(y / 100) + std::floor(y / 400);
    return days + days_before_month(std::fmod(month + 10, 12)) + day - 1 + first_of_march;
}

double date_number(const DateParts &p) {
    return day_number(p.year, p.month, p.day) + (p.hour * 3600 + p.minute * 60 + p.second) / 86400;
}

DateParts parts_of(double date) {
    if (!(std::fabs(date) < 1e15)) return {raw_nan, raw_nan, raw_nan, raw_nan, raw_nan, raw_nan};
    double day = std::floor(date), ms = std::round((date - day) * ms_in_day);
    if (ms >= ms_in_day) day += 1, ms = 0;

    const double z = day - first_of_march, era = std::floor(z / days_in_era), d = z - era * days_in_era;
    const double y =
        std::floor((d - std::floor(d / 1460) + std::floor(d / 36524) - std::floor(d / 146096)) / 365);
    const double day_of_year = d - (365 * y + std::floor(y / 4) - std::floor(y / 100));
    const double since_march = std::floor((5 * day_of_year + 2) / 153);
    const double month = since_march < 10 ? since_march + 3 : since_march - 9;

    const double hour = std::floor(ms / ms_in_hour), rest = ms - hour * ms_in_hour,
                 minute = std::floor(rest / ms_in_minute);
    return {y + 400 * era + (month <= 2),
            month,
            day_of_year - days_before_month(since_march) + 1,
            hour,
            minute,
            (rest - minute * ms_in_minute) / ms_in_second};
}

double days_in_month(double year, double month) {
    return day_number(year, std::max(month, 1.0) + 1, 1) - day_number(year, month, 1);
}

int day_of_week(double date) {
    const double n = std::fmod(std::floor(date) - 2, 7);
    return static_cast<int>(n < 0 ? n + 7 : n);
}

// ---- Date formats ----

namespace {

constexpr std::array pictures = {
    "dd-mmm-yyyy HH:MM:SS",
    "dd-mmm-yyyy",
    "mm/dd/yy",
    "mmm",
    "m",
    "mm",
    "mm/dd",
    "dd",
    "ddd",
    "d",
    "yyyy",
    "yy",
    "mmmyy",
    "HH:MM:SS",
    "HH:MM:SS PM",
    "HH:MM",
    "HH:MM PM",
    "QQ-yy",
    "QQ",
    "dd/mm",
    "dd/mm/yy",
    "mmm.dd,yyyy HH:MM:SS",
    "mmm.dd,yyyy",
    "mm/dd/yyyy",
    "dd/mm/yyyy",
    "yy/mm/dd",
    "yyyy/mm/dd",
    "QQ-yyyy",
    "mmmyyyy",
    "yyyy-mm-dd",
    "yyyymmddTHHMMSS",
    "yyyy-mm-dd HH:MM:SS",
};

// The elements of a date format; of two with the same beginning the longer one is first.
enum class Item {
    year,
    short_year,
    month_name,
    month,
    month_letter,
    day_name,
    day,
    day_letter,
    hour,
    minute,
    second,
    thousandths,
    half,
    quarter
};
struct Word {
    std::string_view text;
    Item item;
};
constexpr Word words[] = {{"yyyy", Item::year}, {"yy", Item::short_year},  {"mmm", Item::month_name},
                          {"mm", Item::month},  {"m", Item::month_letter}, {"ddd", Item::day_name},
                          {"dd", Item::day},    {"d", Item::day_letter},   {"HH", Item::hour},
                          {"MM", Item::minute}, {"SS", Item::second},      {"FFF", Item::thousandths},
                          {"PM", Item::half},   {"AM", Item::half},        {"QQ", Item::quarter}};

void append_padded(TextBuffer &out, const char *format, double x) {
    char text[32];
    const int n = std::snprintf(text, sizeof text, format, x);
    out.append({text, static_cast<size_t>(n)});
}

void append_item(TextBuffer &out, Item item, const DateParts &p, int week_day, bool halves) {
    const char *month = month_names[static_cast<int>(p.month) - 1], *day = week_day_names[week_day];
    switch (item) {
    case Item::year: return append_padded(out, "%04.0f", p.year);
    case Item::short_year: return append_padded(out, "%02.0f", std::fmod(std::fabs(p.year), 100));
    case Item::month_name: return out.append(month);
    case Item::month: return append_padded(out, "%02.0f", p.month);
    case Item::month_letter: return out.append(month[0]);
    case Item::day_name: return out.append(day);
    case Item::day: return append_padded(out, "%02.0f", p.day);
    case Item::day_letter: return out.append(day[0]);
    case Item::hour:
        return halves ? append_padded(out, "%2.0f",
                                      p.hour > 12   ? p.hour - 12
                                      : p.hour == 0 ? 12
                                                    : p.hour)
                      : append_padded(out, "%02.0f", p.hour);
    case Item::minute: return append_padded(out, "%02.0f", p.minute);
    case Item::second: return append_padded(out, "%02.0f", std::floor(p.second));
    case Item::thousandths:
        return append_padded(out, "%03.0f", std::round((p.second - std::floor(p.second)) * ms_in_second));
    case Item::half: return out.append(p.hour < 12 ? "AM" : "PM");
    case Item::quarter: return append_padded(out, "Q%.0f", std::ceil(p.month / 3));
    }
}

} // namespace

const char *picture_of(double form) {
    for (size_t k = 0; k < pictures.size(); ++k)
        if (form == static_cast<double>(k)) return pictures[k];
    return nullptr;
}

void append_date(TextBuffer &out, double date, std::string_view picture) {
    const DateParts p = parts_of(date);
    const int week_day = day_of_week(day_number(p.year, p.month, p.day));
    const bool halves =
        picture.find("PM") != std::string_view::npos || picture.find("AM") != std::string_view::npos;
    while (!picture.empty()) {
        const Word *word = std::find_if(std::begin(words), std::end(words), [&](const Word &w) {
            return picture.substr(0, w.text.size()) == w.text;
        });
        if (word == std::end(words)) {
            out.append(picture[0]);
            picture.remove_prefix(1);
        } else {
            append_item(out, word->item, p, week_day, halves);
            picture.remove_prefix(word->text.size());
        }
    }
}

} // namespace kn
