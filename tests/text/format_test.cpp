// sprintf against a model made of plain snprintf calls, sscanf against the C library's, and what they do with
// formats that C leaves undefined. Layouts of numbers are those of glibc.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

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
    const struct {
        const char *format;
        std::vector<Mm> values;
        const char *wanted;
    } cases[] = {
        // The format is used again and again; text at its end is written, in front of a conversion it is not.
        {"%d", {abc}, "123"},
        {"%d,", {abc}, "1,2,3,"},
        {"%d and %d", {1, 2, 3}, "1 and 23"},
        {"%d-%d\\n", {abc, 4}, "1-2\n3-4\n"},
        {"x", {1, 2, empty}, "xxx"},
        {"", {1}, ""},
        {"%d.", {empty}, ""},
        {"%g|", {test::U8({{1, 2}}), sparse_of(1, 3, {{1, 5}}), C(1, 2)}, "1|2|0|5|0|1|"},
        {"%d %s", {1, l_M, T("b")}, "1 b"},
        // Characters: s takes all there is, and the value ends there.
        {"%s", {T("abc")}, "abc"},
        {"%d ", {T("a")}, "97 "},
        {"%s=%d;", {T("ab"), 5, T("c"), 6}, "ab=5;c=6;"},
        {"%s.", {T("ab"), T("c")}, "ab.c"},
        {"%5.2s|%d", {T("abc"), 1}, "   ab|1"},
        {"%-4c|", {T("xy")}, "x   |y   |"},
        {"<%c>", {0, 65}, "<><A>"},
        {"%s", {row({72, 105.9, 256, 33})}, "Hi"},
        // Numbers that aren't finite, and numbers without a fraction.
        {"<%5d>", {NAN, inf, -inf}, "NaN>Inf>-Inf>"},
        {"<%6.2f>", {NAN, inf, -inf, -NAN}, "<   NaN><   Inf><  -Inf><   NaN>"},
        {"nan %g", {NAN}, "NaN NaN"},
        {"%G %+E ", {inf, NAN}, "INF  NaN "},
        {"%d %i %u %x|", {-2.9, 2.9, -1, 255}, "-2 2 18446744073709551615 ff|"},
        {"%ld %d ", {1e300, -1e300}, "9223372036854775807 -9223372036854775808 "},
        {"%u", {1e19}, "10000000000000000000"},
        {"%D %I %O %U", {row({8, 8, 8, 8})}, "8 8 10 8"},
        {"%hd %Lf %ls", {1, 2, T("s")}, "1 2.000000 s"},
        // Bytes, low digit first; without width and text.
        {"<%9bd>", {1}, "0000000000000FF3>"},
        {"%tx %Tu", {1, 2}, "000008F300000004"},
        // What C doesn't define.
        {"%%d|", {5, 6}, "%ld|%ld|"},
        {"%%s %d", {T("ab"), 5}, "%s 5"},
        {"100%% %d%%", {5}, "100% 5%"},
        {"% d %y %5", {5}, "% d %y %5"},
        {"%lld", {5}, "%ld"},
        {"%*d %.*f|%-*5d|", {row({5, 2.5, 7})}, "5 2.500000|7    |"},
        {"%5-3d|%d", {1, 2}, "%5-3ld|2"},
        {"%", {1}, "%"},
        // n uses up a value and stays where it is.
        {"%n%d %d|", {row({7, 8, 9})}, "0 8|"},
        // Escapes.
        {"a\\tb\\\\n\\r\\q\\%d\\", {5}, "a\tb\\n\rq5"},
    };
    for (const auto &c : cases) EXPECT_EQ(print(c.format, c.values), c.wanted) << c.format;

    EXPECT_EQ(text_of(sprintf(T("%d 5%%\\n"))), "%d 5%%\n");
    EXPECT_EQ(text_of(sprintf(T("a%d"), cell(0.0, 0.0))), "a%d");
    EXPECT_EQ(text_of(sprintf(T("%d"), 5)), "5") << "no cell";
    const Mm none = sprintf(T("%d"), list({empty}));
    EXPECT_EQ(none.size(), 0);
    EXPECT_TRUE(none.isstr());
}

// One conversion with the text in front of it, for the model.
struct Spec {
    std::string text, flags, width, precision;
    char letter;
    std::string c() const {
        return "%" + flags + width + precision + (std::strchr("cs", letter) ? "" : "l") + letter;
    }
};

template <class T> std::string formatted(const Spec &s, T x) {
    char out[2000];
    return std::string(out, static_cast<size_t>(std::snprintf(out, sizeof out, s.c().c_str(), x)));
}

std::string respelled(std::string text) {
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

std::string model(const std::vector<Spec> &specs, const std::string &tail, const std::vector<Mm> &values) {
    std::string out;
    size_t at = 0;
    for (const Mm &m : values) {
        for (int k = 0;; ++k) {
            if (at == specs.size()) {
                out += tail;
                at = 0;
            }
            if (k == m.size()) break;
            const Spec &s = specs[at++];
            const double x = m.r(k + 1);
            if (std::strchr("di", s.letter))
                out += std::isnan(x)   ? "NaN"
                       : std::isinf(x) ? x > 0 ? "Inf" : "-Inf"
                                       : s.text + formatted(s, static_cast<long>(x));
            else if (s.letter == 'c')
                out += s.text + formatted(s, static_cast<int>(x));
            else
                out += std::isfinite(x) ? s.text + formatted(s, x) : respelled(s.text + formatted(s, x));
        }
    }
    return out;
}

TEST(Sprintf, random_formats_equal_a_model_of_snprintf) {
    Random random(32);
    auto one_of = [&](const char *set) { return set[random.below(static_cast<int>(std::strlen(set)))]; };
    auto text = [&] {
        std::string t;
        while (random.below(3)) t += one_of("xyz ,;=()[]\n");
        return t;
    };
    for (int round = 0; round < 4000; ++round) {
        std::vector<Spec> specs;
        std::string format;
        for (int k = 1 + random.below(4); k > 0; --k) {
            Spec s{text(), "", "", "", one_of("dieEfFgGcdfg")};
            if (random.below(3) == 0) s.flags += '-';
            if (s.letter != 'c' && random.below(3) == 0) s.flags += one_of("+0");
            if (std::strchr("eEfFgG", s.letter) && random.below(4) == 0) s.flags += '#';
            if (random.below(3) == 0) s.width = std::to_string(1 + random.below(30));
            if (s.letter != 'c' && random.below(2))
                s.precision = "." + std::to_string(random.below(4) ? random.below(20) : random.below(400));
            format += s.text + "%" + s.flags + s.width + s.precision + s.letter;
            specs.push_back(s);
        }
        const std::string tail = text();
        const bool characters = format.find('c') != format.npos;
        std::vector<Mm> values;
        for (int k = 1 + random.below(3); k > 0; --k) {
            Mm m = random.matrix(1, 1 + random.below(5));
            for (int e = 1; e <= m.size(); ++e)
                m.r(e) = characters ? 33 + random.below(90)
                         : std::fabs(m.r(e)) < 1e18 || !std::isfinite(m.r(e)) || random.below(2) == 0
                             ? m.r(e)
                             : 12345678.9 * m.r(e);
            if (!characters && format.find_first_of("di") != format.npos)
                for (int e = 1; e <= m.size(); ++e)
                    if (std::isfinite(m.r(e)) && std::fabs(m.r(e)) > 9e18) m.r(e) = 1e15 / 7;
            values.push_back(m);
        }
        EXPECT_EQ(print(format + tail, values), model(specs, tail, values)) << format + tail;
    }
}

TEST(Sprintf, of_any_length) {
    std::string format, wanted;
    std::vector<double> x;
    for (int k = 0; k < 5000; ++k) {
        format += "piece %d, ";
        wanted += "piece " + std::to_string(k) + ", ";
        x.push_back(k);
    }
    EXPECT_EQ(print(format, {row(x)}), wanted);
    EXPECT_EQ(print("%100000d|", {1}), std::string(99999, ' ') + "1|");
    EXPECT_EQ(print("%.5000f", {0.5}).size(), 5002u);
    EXPECT_EQ(print("%s", {repmat(T("ab"), 1, 50000)}).size(), 100000u);
}

TEST(Sprintf, errors) {
    const Mm bad = list({1, struct_of({{"a", 1}})});
    auto all = [&] {
        EXPECT_RAISES(sprintf(T("%1000001d"), 1), "sprintf: field width 1000001 is too large");
        EXPECT_RAISES(sprintf(T("%.99999999999999999999f"), 1),
                      "sprintf: precision 99999999999999999999 is too large");
        EXPECT_RAISES(sprintf(T("%d"), bad), "Can not convert (temporary) into a numeric matrix");
        EXPECT_RAISES(sprintf(bad, 1), "Can not convert (temporary) into a numeric matrix");
        EXPECT_RAISES(sprintf(T("%d"), list({Mm(i_o, "q", 0)})),
                      "variable '(temporary)' was used without a value");
        EXPECT_RAISES(sscanf(T("1"), T("%d"), row({1, 2, 3})),
                      "scanf: size (temporary) is not one or two elements");
        EXPECT_RAISES(sscanf(T("1"), T("%d%p")), "sscanf: p conversions can not be read from a text");
    };
    all();
    Returning errors;
    EXPECT_SAME(sprintf(T("%d"), bad), x_M);
    Mm a, count, msg, next;
    sscanf(T("1"), T("%d"), row({1, 2, 3}), i_o, a, count, msg, next);
    for (const Mm &out : {a, count, msg, next}) EXPECT_SAME(out, x_M);
    EXPECT_EQ(errors.errors().size(), 2u);
}

TEST(Sscanf, rules) {
    const Mm all = inf;
    const struct {
        const char *text, *format;
        Mm size, wanted;
        int count = -1; // the size of what is wanted
    } cases[] = {
        {"1 2 3", "%d", all, col({1, 2, 3})},
        {"1\n 2\t3 ", "%d\\n", all, col({1, 2, 3})},
        {"abc", "%s", all, T("abc")},
        {"ab cd", "%s", all, T("abcd")},
        {"ab cd", "%s", 1, T("ab")},
        {"ab cd", "%c", all, T("ab cd")},
        {"ab cd", "%5c", 3, T("ab ")},
        {"1 2 3 4", "%d", row({2, 2}), M({{1, 3}, {2, 4}})},
        {"1 2 3", "%d", row({2, inf}), M({{1, 3}, {2, 0}}), 3},
        {"1 2 3", "%d", 2, col({1, 2})},
        {"3.5 x", "%f", all, 3.5},
        {"1,2,3", "%d", all, 1.0},
        {"12345 6", "%2d", all, col({12, 6})},
        {"x=1.5 x=2", "x=%g", all, col({1.5, 2})},
        {"1 a 2 b", "%d %*s", all, col({1, 2})},
        {"a 1 b 2", "%s %d", all, col({97, 1, 98, 2})},
        {"ab 1", "%s %d", 2, col({97, 98}), 3},
        {"0x1F 1f 077", "%x %x %i", all, col({31, 31, 63})},
        {"-1 99999999999999999999", "%u %d", all, col({-1, 9223372036854775807.0})},
        {"inf nan -Infinity 0x1p4 1e400", "%g", all, col({inf, NAN, -inf, 16, inf})},
        {"a b c", "%n", all, col({0, 0, 0})},
        {"5% 6%", "%d%%", all, col({5, 6})},
        {"7 8", "%+d", all, M({})},
        {"%ld 8", "%%d", all, M({})},
        {"abc", "xyz", all, T("")},
        {"abc", "%*d", all, M({})},
        {"", "%d", all, M({})},
        {"1 2", "%d", 0, M({})},
        {"1 2", "%d", NAN, M({})},
        {"1 2", "%d", row({-1, -1}), M({})},
    };
    for (const auto &c : cases) {
        Mm a, count, msg, next;
        sscanf(T(c.text), T(c.format), c.size, i_o, a, count, msg, next);
        EXPECT_SAME(a, c.wanted) << c.text << " by " << c.format;
        EXPECT_SAME(count, Mm(c.count < 0 ? c.wanted.size() : c.count)) << c.text << " by " << c.format;
        EXPECT_TRUE(msg.isstr() && msg.size() == 0);
        EXPECT_SAME(next, Mm(0.0));
        EXPECT_SAME(sscanf(T(c.text), T(c.format), c.size), c.wanted);
    }
}

TEST(Sscanf, words_are_read_as_by_the_C_library) {
    Random random(33);
    for (int round = 0; round < 20000; ++round) {
        std::string word, spec = "%";
        const char *alphabet = random.below(2) ? "0123456789+-.eE" : "00x1Xp.-naif89";
        for (int k = 1 + random.below(8); k > 0; --k)
            word += alphabet[random.below(static_cast<int>(std::strlen(alphabet)))];
        if (random.below(2)) spec += std::to_string(random.below(6));
        const char letter = "dioxuefgG"[random.below(9)];
        double x = 0;
        long n = 0;
        const bool whole = std::strchr("dioxu", letter);
        const std::string c = spec + "l" + letter;
        const int read =
            whole ? std::sscanf(word.c_str(), c.c_str(), &n) : std::sscanf(word.c_str(), c.c_str(), &x);
        const Mm wanted = read < 1 ? M({}) : whole ? static_cast<double>(n) : x;
        EXPECT_SAME(sscanf(TM(word.c_str()), TM((spec + letter).c_str())), wanted)
            << word << " by " << spec << letter;
    }
}

TEST(Sscanf, reads_what_sprintf_wrote) {
    Random random(34);
    for (const char *format : {"%.17g ", "%.16e\\n", "%.17G "}) {
        const Mm x = random.matrix(1, 500);
        EXPECT_SAME(sscanf(sprintf(T(format), x), T("%f"), row({1, inf})), x) << format;
    }
}

} // namespace
