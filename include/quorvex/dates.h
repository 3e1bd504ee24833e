// Dates, clocks and stopwatches.
//
// A date number counts days in the proleptic Gregorian calendar: 1 is 1 January of the year 0, 730486 is 1
// January 2000; the fraction is the time of day. A date vector is the row [year month day hour minute
// second], or its first three elements. Functions accept a date as date numbers of any size, as date vectors
// in rows, as text with one date in each row, or as a cell of texts.
//
// Text is a date, a time, or both: "01-Mar-2000", "Mar 1, 2000", "03/01/2000" (month first), "2000-03-01",
// "03/01" (in this year); "15:45:17.5", "3:45 PM" (today). Names are recognised by their first three letters;
// week days are ignored. A year of two digits is the one closest to this year. "%s: '%s' is not a date".
#ifndef QUORVEX_DATES_H
#define QUORVEX_DATES_H

#include "quorvex/counts.h"

// -- The current local time. The language's `clock` is clockM.

QUORVEX_API Mm clockM(); // as a date vector, with fractions of a second
QUORVEX_API Mm now();    // as a date number
QUORVEX_API Mm date();   // "01-Mar-2000"

// Elapsed seconds. tic starts the stopwatch, the global TICTOC; toc gives the seconds since then ("toc: no
// tic before"). etime(b, a) gives the seconds from date vector a to b, row by row: "etime: date vectors of 6
// columns expected".
QUORVEX_API Mm tic();
QUORVEX_API Mm toc();
QUORVEX_API Mm etime(const Mm &b, const Mm &a);

// -- Date numbers, date vectors and text.

// The date numbers of dates, m by 1 for m date vectors (3 or 6 columns) or texts; other numbers are date
// numbers already and are returned unchanged. With several inputs the dates given by their parts, arrays of
// one size or single elements ("datenum: inputs must be of same size"). A part outside its range carries over
// to the next one; months below 1 count as 1; fractions of years and months are dropped.
QUORVEX_API Mm datenum(const Mm &date);
QUORVEX_API Mm datenum(const Mm &y, const Mm &m, const Mm &d);
QUORVEX_API Mm datenum(const Mm &y, const Mm &m, const Mm &d, const Mm &h, const Mm &mi, const Mm &s);

// The date vectors of dates, m by 6, rounded to milliseconds, or their six columns as outputs. NaN for date
// numbers beyond 1e15.
QUORVEX_API Mm datevec(const Mm &date);
QUORVEX_API Mm datevec(const Mm &date, i_o_t, Mm &y, Mm &m, Mm &d, Mm &h, Mm &mi, Mm &s);

// Dates as text, one row for each. The format is a number ("datestr: no such form"):
//
//      0  01-Mar-2000 15:45:17     7  01         14   3:45:17 PM
//      1  01-Mar-2000              8  Wed        15  15:45
//      2  03/01/00                 9  W          16   3:45 PM
//      3  Mar                     10  2000       17  Q1-00
//      4  M                       11  00         18  Q1
//      5  03                      12  Mar00      23  03/01/2000
//      6  03/01                   13  15:45:17   29  2000-03-01     31  2000-03-01 15:45:17
//
// or a text made of yyyy yy mmm mm m ddd dd d HH MM SS FFF PM QQ and other characters. The default is 1 when
// all dates are integers, 16 when all are times (0 to below 1), otherwise 0. Seconds are truncated. "datestr:
// not a date" for NaN and numbers out of range.
QUORVEX_API Mm datestr(const Mm &date);
QUORVEX_API Mm datestr(const Mm &date, const Mm &form);

// The number of the day in the week of each date, Sunday is 1; the second output is its name, "Sun".
QUORVEX_API Mm weekday(const Mm &date);
QUORVEX_API Mm weekday(const Mm &date, i_o_t, Mm &number, Mm &name);

// The days of a month as a 6 by 7 matrix, one week in each row from Sunday to Saturday, other elements 0: of
// this month, of the month of a date, or of month m of year y.
QUORVEX_API Mm calendar();
QUORVEX_API Mm calendar(const Mm &date);
QUORVEX_API Mm calendar(const Mm &y, const Mm &m);

// The number of days in month m of year y, for each element.
QUORVEX_API Mm eomday(const Mm &y, const Mm &m);

#define QUORVEX_DATE_COUNTS(ROW)                                \
    ROW(clockM, "date and time as a vector", 0)                 \
    ROW(now, "date and time as a date number", 0)               \
    ROW(date, "date as text", 0)                                \
    ROW(tic, "starts the stopwatch", 0_to_0)                    \
    ROW(toc, "seconds on the stopwatch", 0)                     \
    ROW(etime, "seconds between date vectors", 2)               \
    ROW(datenum, "date as a number of days", 1, 3, 6)           \
    ROW(datevec, "year, month, day, time of a date", 1, 1_to_6) \
    ROW(datestr, "date as text", 1, 2)                          \
    ROW(weekday, "day of the week", 1, 1_to_2)                  \
    ROW(calendar, "days of a month by weeks", 0, 1, 2)          \
    ROW(eomday, "last day of a month", 2)
QUORVEX_DATE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
