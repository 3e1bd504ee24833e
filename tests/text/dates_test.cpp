// Date numbers, vectors and text, and the clocks.
#include <chrono>
#include <cmath>

#include "support/support.h"
#include "text/text_of.h"

using namespace test;

namespace {

TEST(Dates, numbers_of_dates) {
    for (const auto &[parts, number] : {std::pair<Mm, double>{row({1900, 2, 29}), 694021},
                                        {row({2000, 14, 1}), 730883},
                                        {row({2000, 0, 1}), 730486},
                                        {row({2000, 3, 0}), 730545},
                                        {row({2000, 1, 1, 12, 0, 43200}), 730487}})
        EXPECT_SAME(datenum(parts), Mm(number));
    EXPECT_SAME(datenum(2000.0, row({1, 2}), 1.0), row({730486, 730517}));
    EXPECT_SAME(datenum(NAN, 1.0, 1.0), Mm(NAN));
    EXPECT_RAISES(datenum(row({1, 2}), col({1, 2}), 1.0), "datenum: inputs must be of same size");
}

TEST(Dates, days_are_those_of_the_Gregorian_calendar) {
    for (int n = -146500; n < 740000; ++n) {
        const std::chrono::sys_days day{std::chrono::days{n - 719529}};
        const std::chrono::year_month_day date = day;
        const Mm v = datevec(n), wanted = row({double(int(date.year())), double(unsigned(date.month())),
                                               double(unsigned(date.day()))});
        ASSERT_TRUE(istrue(isequal(v(colon(1, 3)), wanted)) && v.r(4) == 0) << n;
        if (n % 7 != 0) continue;
        ASSERT_EQ(scalar(datenum(wanted)), n);
        ASSERT_EQ(scalar(weekday(n)), std::chrono::weekday(day).c_encoding() + 1);
    }
}

TEST(Dates, text) {
    const double t = scalar(datenum(row({2000, 3, 1, 15, 45, 17.25})));
    std::string all;
    for (double form = 0; form < 20; ++form) all += text_of(datestr(t, form)) + "|";
    EXPECT_EQ(all, "01-Mar-2000 15:45:17|01-Mar-2000|03/01/00|Mar|M|03|03/01|01|Wed|W|2000|00|Mar00|"
                   "15:45:17| 3:45:17 PM|15:45| 3:45 PM|Q1-00|Q1|01/03|");
    EXPECT_EQ(text_of(datestr(t, TM("yyyy:SS.FFF\n"))), "2000:17.250 ");
    EXPECT_EQ(text_of(datestr(row({t, 1}))), "01-Mar-2000 15:45:17\n01-Jan-0000 00:00:00");
    EXPECT_EQ(text_of(datestr(0.0)), "12:00 AM");
    EXPECT_EQ(text_of(datestr(730486 - 1e-9)), "01-Jan-2000 00:00:00"); // the last thousandth carries
    EXPECT_RAISES(datestr(t, 32.0), "datestr: no such form");
    for (double bad : std::initializer_list<double>{NAN, HUGE_VAL, 1e15})
        EXPECT_RAISES(datestr(bad), "datestr: not a date");

    const double day = std::floor(t);
    for (auto [text, number] : {std::pair{"01-Mar-2000", day},
                                {"Wed, March 1, 2000", day},
                                {"2000/3/1 3:45:17.25 pm", t},
                                {"2000-03-01T15:45:17.25", t},
                                {"03/01", scalar(datenum(clockM().r(1), 3.0, 1.0))},
                                {"12:00 AM", std::floor(scalar(now()))}})
        EXPECT_SAME(datenum(TM(text)), Mm(number)) << text;
    for (const char *bad : {"x", "2000-13-01", "30-Feb-2000", "1:2:3:4", "12:", "25:00", "13:00 PM", "5",
                            "1 2 3 4", "Mar Mar 1", "1;2;3", "99999999999999999999999999/1/1"})
        EXPECT_RAISES(datenum(TM(bad)), "datenum: '" + std::string(bad) + "' is not a date");
    for (double n = 600000; n < 800000; n += 97.123456) EXPECT_NEAR(scalar(datenum(datevec(n))), n, 1e-8);
    EXPECT_SAME(datenum(cell_of(1, 2, {TM("1-Mar-2000"), 5.0})), col({day, 5}));
    EXPECT_RAISES(datenum(cell_of(1, 1, {row({1, 2})})), "datenum: element 1 of (temporary) is not one date");
}

TEST(Dates, week_days_and_months) {
    Mm n, name;
    weekday(row({730486, 730487, NAN}), i_o, n, name);
    EXPECT_SAME(n, row({7, 1, NAN}));
    EXPECT_EQ(text_of(name), "Sat\nSun\n   ");
    const Mm month = calendar(2000.0, 4.0); // begins on a Saturday, 30 days
    EXPECT_SAME(Mm(month(1.0, c_p)), row({0, 0, 0, 0, 0, 0, 1}));
    EXPECT_SAME(Mm(month(6.0, c_p)), row({30, 0, 0, 0, 0, 0, 0}));
    EXPECT_SAME(calendar(TM("15-Apr-2000")), month);
}

TEST(Dates, clocks) {
    TICTOC = 0.0;
    EXPECT_RAISES(toc(), "toc: no tic before");
    tic();
    const double first = scalar(toc()), second = scalar(toc());
    EXPECT_TRUE(first >= 0 && second >= first && second < 60);
    EXPECT_SAME(etime(row({2000, 3, 1, 0, 0, 1.5}), row({2000, 2, 28, 23, 59, 0})), Mm(86400 + 61.5));
    EXPECT_RAISES(etime(1.0, 2.0), "etime: date vectors of 6 columns expected");
    EXPECT_NEAR(scalar(datenum(clockM())), scalar(now()), 1.0 / 1440);
    EXPECT_EQ(text_of(date()), text_of(datestr(std::floor(scalar(now())))));
}

} // namespace
