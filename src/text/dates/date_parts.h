// The parts of dates: conversion between day numbers and the calendar, and their text.
#ifndef QUORVEX_TEXT_DATES_DATE_PARTS_H
#define QUORVEX_TEXT_DATES_DATE_PARTS_H

#include <string_view>

#include "text/text_buffer.h"

namespace kn {

struct DateParts {
    double year, month, day, hour, minute, second;
};

// The date number of a day from whole years and months; months above 12 carry over, those below 1 count as 1.
double day_number(double year, double month, double day);
double date_number(const DateParts &parts);

// The parts of a date number, rounded to the thousandth of a second. All NaN beyond 1e15 days.
DateParts parts_of(double date);

double days_in_month(double year, double month);

// 0 is Sunday.
int day_of_week(double date);
inline constexpr int name_length = 3;
extern const char week_day_names[7][name_length + 1], month_names[12][name_length + 1];

// The date number in a text; missing parts are those of `today`, except for the time, which is 0 then. False
// when it is no date.
bool parse_date(std::string_view text, const DateParts &today, double &date);

// The date format with this number in datestr; null when there is none.
const char *picture_of(double form);
// Appends a date, which is finite, in the date format.
void append_date(TextBuffer &out, double date, std::string_view picture);

} // namespace kn

#endif
