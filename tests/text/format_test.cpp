// sprintf against plain snprintf, and what it and sscanf do with
// formats that C leaves undefined. Layouts of numbers are those of glibc.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <tuple>

#include "support/support.h"
#include "text/format/format_list.h"
#include "text/text_of.h"

using namespace test;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

Mm list(const std::vector<Mm> &values) { return cell_of(1, static_cast<int>(values.size()), values); }
Mm T(const char *text) { return TM(text); }

std::string print(const std::string &format, const std::vector<Mm> &values) {
    return text_of(sprintf(TM(format.c_str()), list(values)));
}

TEST(Sprintf, rules) {
    const Mm abc = row({1, 2, 3}), empty;
    const std::tuple<const char *, std::vector<Mm>, const char *> cases[] = {
        // The format is used again and again; text at its end is written, in front of a conversion it is not.
        {"%d and %d", {1, 2, 3}, "1 and 23"},
        {"x", {1, 2, empty}, "xxx"},
        {"%g|", {test::U8({{1, 2}}), sparse_of(1, 3, {{1, 5}}), C(1, 2)}, "1|2|0|5|0|1|"},
        {"%d %s", {1, l_M, T("b")}, "1 b"},
        // Characters: s takes all there is, and the value ends there.
        {"%s=%d;", {T("ab"), 5, T("c"), 6}, "ab=5;c=6;"},
        {"%5.2s|%d", {T("abc"), 1}, "   ab|1"},
        {"<%c>", {0, 65}, "<><A>"},
        {"%s", {row({72, 105.9, 256, 33})}, "Hi"},
        // Numbers that aren't finite, and numbers without a fraction.
        {"<%5d>", {NAN, inf, -inf}, "NaN>Inf>-Inf>"},
        {"%G %+E ", {inf, NAN}, "INF  NaN "},
        {"%d %i %u %x|", {-2.9, 2.9, -1, 255}, "-2 2 18446744073709551615 ff|"},
        {"%D %I %O %U", {row({8, 8, 8, 8})}, "8 8 10 8"},
        {"%hd %Lf %ls", {1, 2, T("s")}, "1 2.000000 s"},
        // Bytes, low digit first; without width and text.
        {"<%9bd>", {1}, "0000000000000FF3>"},
        {"%tx %Tu", {1, 2}, "000008F300000004"},
        // What C doesn't define.
        {"%%d|", {5, 6}, "%ld|%ld|"},
        {"100%% %d%%", {5}, "100% 5%"},
        {"% d %y %5", {5}, "% d %y %5"},
        {"%*d %.*f|%-*5d|", {row({5, 2.5, 7})}, "5 2.500000|7    |"},
        {"%5-3d|%d", {1, 2}, "%5-3ld|2"},
        // n uses up a value and stays where it is.
        {"%n%d %d|", {row({7, 8, 9})}, "0 8|"},
        // Escapes.
        {"a\\tb\\\\n\\r\\q\\%d\\", {5}, "a\tb\\n\rq5"},
    };
    for (const auto &[format, values, wanted] : cases) EXPECT_EQ(print(format, values), wanted) << format;

    EXPECT_EQ(text_of(sprintf(T("%d 5%%\\n"))), "%d 5%%\n");
    EXPECT_EQ(text_of(sprintf(T("%d"), 5)), "5") << "no cell";
    const Mm none = sprintf(T("%d"), list({empty}));
    EXPECT_EQ(none.size(), 0);
    EXPECT_TRUE(none.isstr());
}

// As C writes the number, but for those that aren't finite.
template <class T> std::string formatted(const std::string &format, T x) {
    char out[2000];
    std::string text(out, static_cast<size_t>(std::snprintf(out, sizeof out, format.c_str(), x)));
    for (auto [from, to] : {std::pair{"+NAN", " NaN"},
                            {"-NAN", " NaN"},
                            {"-nan", " NaN"},
                            {"nan", "NaN"},
                            {"+INF", " Inf"},
                            {"inf", "Inf"},
                            {"-INF", "-Inf"}})
        if (size_t at = text.find(from); at != text.npos) text.replace(at, std::strlen(from), to);
    return text;
}

TEST(Sprintf, numbers_are_written_as_by_snprintf) {
    Random random(32);
    auto one_of = [&](const char *set) { return set[random.below(static_cast<int>(std::strlen(set)))]; };
    for (int round = 0; round < 20000; ++round) {
        const char letter = one_of("dieEfFgGcdfg");
        std::string spec = random.below(2) ? "text %" : "%";
        if (random.below(3) == 0) spec += '-';
        if (letter != 'c' && random.below(3) == 0) spec += one_of("+0");
        if (std::strchr("eEfFgG", letter) && random.below(4) == 0) spec += '#';
        if (random.below(3) == 0) spec += std::to_string(1 + random.below(30));
        if (letter != 'c' && random.below(2))
            spec += "." + std::to_string(random.below(4) ? random.below(20) : random.below(400));
        double x = letter == 'c' ? 33 + random.below(90) : random.number();
        const bool whole = std::strchr("di", letter);
        if (whole && !(std::fabs(x) < 9e18)) x = 1e15 / 7;
        const std::string wanted = letter == 'c' ? formatted(spec + letter, static_cast<int>(x))
                                   : whole       ? formatted(spec + "l" + letter, static_cast<long>(x))
                                                 : formatted(spec + letter, x);
        EXPECT_EQ(print(spec + letter, {x}), wanted) << spec << letter;
    }
}

TEST(Sprintf, of_any_length) {
    EXPECT_EQ(print("%100000d|", {1}), std::string(99999, ' ') + "1|");
    EXPECT_EQ(print("%.5000f", {0.5}).size(), 5002u);
    EXPECT_EQ(print("%s", {repmat(T("ab"), 1, 50000)}).size(), 100000u);
}

TEST(Sprintf, errors) {
    const Mm bad = list({1, struct_of({{"a", 1}})});
    EXPECT_RAISES(sprintf(T("%1000001d"), 1), "sprintf: field width 1000001 is too large");
    EXPECT_RAISES(sprintf(T("%.99999999999999999999f"), 1),
                  "sprintf: precision 99999999999999999999 is too large");
    EXPECT_RAISES(sprintf(T("%d"), bad), "Can not convert (temporary) into a numeric matrix");
    EXPECT_RAISES(sprintf(T("%d"), list({Mm(i_o, "q", 0)})),
                  "variable '(temporary)' was used without a value");
    EXPECT_RAISES(sscanf(T("1"), T("%d"), row({1, 2, 3})),
                  "scanf: size (temporary) is not one or two elements");
    EXPECT_RAISES(sscanf(T("1"), T("%d%p")), "sscanf: p conversions can not be read from a text");
    Returning errors;
    EXPECT_SAME(sprintf(T("%d"), bad), x_M);
}

TEST(Sscanf, rules) {
    const Mm all = inf;
    const std::tuple<const char *, const char *, Mm, Mm, int> cases[] = {
        {"ab cd", "%s", all, T("abcd"), 4},
        {"ab cd", "%5c", 3, T("ab "), 3},
        {"1 2 3 4", "%d", row({2, 2}), M({{1, 3}, {2, 4}}), 4},
        {"1 2 3", "%d", row({2, inf}), M({{1, 3}, {2, 0}}), 3},
        {"x=1.5 x=2", "x=%g", all, col({1.5, 2}), 2},
        {"1 a 2 b", "%d %*s", all, col({1, 2}), 2},
        {"ab 1", "%s %d", 2, col({97, 98}), 3},
        {"0x1F 1f 077", "%x %x %i", all, col({31, 31, 63}), 3},
        {"5% 6%", "%d%%", all, col({5, 6}), 2},
        {"%ld 8", "%%d", all, M({}), 0},
        {"1 2", "%d", row({-1, -1}), M({}), 0},
    };
    for (const auto &[text, format, size, wanted, n] : cases) {
        Mm a, count, msg, next;
        sscanf(T(text), T(format), size, i_o, a, count, msg, next);
        EXPECT_SAME(a, wanted) << text << " by " << format;
        EXPECT_SAME(count, Mm(double(n))) << text << " by " << format;
        EXPECT_TRUE(msg.isstr() && msg.size() == 0);
        EXPECT_SAME(next, Mm(0.0));
    }
}

} // namespace
