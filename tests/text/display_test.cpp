// What disp, display and their relatives print, and in how many calls of the print handler.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "quorvex/classes.h"
#include "support/support.h"
#include "text/text_of.h"
#include "text/value_display.h"
#include "value/header.h"

using namespace test;

namespace {

std::vector<std::string> calls;

// The texts handed to the print handler, one by one.
template <class F> std::vector<std::string> calls_of(F work) {
    calls.clear();
    kn_text_handler old = kn_set_print_handler([](const char *text) { calls.push_back(text); });
    work();
    kn_set_print_handler(old);
    return calls;
}

using Calls = std::vector<std::string>;

struct LongFormat {
    LongFormat() { format(TM("long")); }
    ~LongFormat() { format(); }
};

Mm unset() { return Mm(i_o, "unset", 0); }
TEST(Disp, short_format_drops_the_common_blanks_and_long_keeps_them) {
    EXPECT_PRINTS(disp(M_PI), "3.142\n");
    EXPECT_PRINTS(puts(1.0), "1\n");
    LongFormat on;
    EXPECT_PRINTS(disp(M_PI), "  3.14159265359\n");
    EXPECT_PRINTS(disp(M({{1, 2}, {3, 4}})), "  1  2\n  3  4\n");
    EXPECT_PRINTS(disp(TM("  x")), "  x\n");
}

TEST(Disp, format_looks_at_the_first_letter) {
    for (const char *mode : {"Long", "l", "LONG E"}) {
        format(TM(mode), 1.0);
        EXPECT_PRINTS(disp(1.0), "  1\n") << mode;
        format(TM("any"));
        EXPECT_PRINTS(disp(1.0), "1\n");
    }
}

TEST(Disp, every_kind_of_empty_value) {
    EXPECT_PRINTS(disp(Mm()), "[]\n");
    EXPECT_PRINTS(disp(TM(nullptr)), "''\n");
    EXPECT_PRINTS(disp(cell_of(0, 0, {})), "{}\n");
    EXPECT_PRINTS(disp(unset()), "(this variable has no value)\n");
    EXPECT_PRINTS(disp(x_M), "");
    EXPECT_PRINTS(display(Mm(x_M)), "");
}

TEST(Disp, text_of_any_element_type) {
    EXPECT_PRINTS(disp(setstr(U8({{72, 105}}))), "Hi\n");
    EXPECT_PRINTS(disp(setstr(sparse_of(1, 2, {{0, 72}, {1, 105}}))), "Hi\n");
    EXPECT_PRINTS(disp(setstr(row({65.9, 66 + 256, 0, 67}))), "AB\n") << "a row ends at a null character";
    EXPECT_PRINTS(disp(test::logical_of(row({1, 0}))), "1  0\n");
}

TEST(Disp, pages) {
    EXPECT_PRINTS(disp(nd({1, 1, 2, 2}, {1, 2, 3, 4})),
                  "(:,:,1,1)\n1\n(:,:,2,1)\n2\n(:,:,1,2)\n3\n(:,:,2,2)\n4\n");
    EXPECT_PRINTS(disp(setstr(nd({1, 2, 2}, {65, 66, 67, 68}))), "(:,:,1)\nAB\n(:,:,2)\nCD\n");
    int dims[] = {1, 1, 2};
    Mm cell(0, 0, 0, 3, dims, kn_Mm);
    cell.mr(1) = TM("a");
    EXPECT_PRINTS(disp(cell), "(:,:,1)\n[a] \n(:,:,2)\n[0x0 double] \n");
}

TEST(Disp, structures) {
    Mm s = struct_of({{"name", TM("a text that is long.")}, {"x", M_PI}, {"f", Mm()}});
    EXPECT_PRINTS(disp(s), "  name: [1x20 char]\n  x: [3.142]\n  f: [0x0 double]\n");
    Mm array(0, 0, 0, 1, 2, kn_Mm);
    array.addfield("a", 0);
    array.addfield("b", 0);
    EXPECT_PRINTS(disp(array), "field list:\n  a\n  b\n");
    Mm short_one = named("s", struct_of({{"a", 1.0}}));
    short_one.addfield("b", 0);
    EXPECT_RAISES(disp(short_one), "structure 's' is built wrong");
}

Mm shown(Mm) {
    kn_print_handler("shown\n");
    return x_M;
}

TEST(Disp, objects_print_themselves_or_their_fields) {
    Mm p = mclass(struct_of({{"x", 1.0}, {"y", 2.0}}), TM("point"));
    EXPECT_PRINTS(disp(p), "field list:\nx\ny\n");
    register_class_function("point", "disp", shown);
    EXPECT_PRINTS(disp(p), "shown\n");
    EXPECT_PRINTS(display(named("p", p)),
                  "p (1x1)=1 point elements real (" + std::to_string(sizeof(Mm)) + " bytes) = \nshown\n");
    register_class_function("point", "display", shown);
    EXPECT_PRINTS(display(p), "shown\n");
    unregister_class_function("point", "disp");
    unregister_class_function("point", "display");
}

TEST(Disp, cells_are_padded_to_the_longest_summary) {
    Mm c = cell_of(2, 2, {1.0, 3.0, TM("ab"), M({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}})});
    std::string pad1(9, ' '), pad2(8, ' ');
    EXPECT_EQ(calls_of([&] { disp(c); }),
              (Calls{"[1] " + pad1 + "[ab] " + pad2 + "\n", "[3] " + pad1 + "[3x3 double] \n"}));
    EXPECT_PRINTS(
        disp(cell_of(1, 3, {cell_of(1, 2, {1.0, 2.0}), TM("1234567890123456"), TM("12345678901234567")})),
        "[1x2 cell]         [1234567890123456] [1x17 char]        \n");
}

std::string summary(const Mm &m) {
    kn::TextBuffer text;
    kn::append_summary(text, m);
    return text.c_str();
}

TEST(Disp, summaries) {
    const std::pair<Mm, const char *> table[] = {
        {NAN, "NaN"},
        {-HUGE_VAL, "-Inf"},
        {U8({{200}}), "200"},
        {sparse_of(1, 1, {}), "0"},
        {C(1, 2), "1x1 double"},
        {TM(""), "0x0 char"},
        {nd({2, 1, 3}, {1, 2, 3, 4, 5, 6}), "2x1x3 double"},
        {sparse_of(2, 2, {}), "2x2 sparse"},
        {struct_of({{"a", 1.0}}), "1x1 struct"},
    };
    for (const auto &[m, text] : table) EXPECT_EQ(summary(m), text);
    EXPECT_RAISES(summary(named("v", Mm(0, 0, 0, 1, 1, kn_none))), "variable 'v' was used without a value");
}

TEST(Display, header_comes_in_three_pieces) {
    Mm x = named("x", M({{1, 2}, {3, 4}}));
    EXPECT_EQ(calls_of([&] { display(x); }),
              (Calls{"x", " (2x2)=4 double elements real (32 bytes)", " = \n", "1  2\n", "3  4\n"}));
    EXPECT_PRINTS(disp_header(TM("abc")), "ans (1x3)=3 char elements  (24 bytes) = \n");
}

TEST(Display, description_of_each_kind) {
    const std::pair<Mm, std::string> table[] = {
        {C(1, 2), " (1x1)=1 double elements complex (8 bytes)"},
        {U8({{1, 2}}), " (1x2)=2 uint8 elements real (2 bytes)"},
        {sparse_of(9, 9, {{0, 1}, {5, 1}}), " (9x9)=81 sparse elements real (24 bytes)"},
        {unset(), " (0x0)=0 double elements real (0 bytes)"},
        {cell_of(1, 2, {1.0, 2.0}),
         " (1x2)=2 cell elements real (" + std::to_string(2 * sizeof(Mm)) + " bytes)"}};
    for (const auto &[m, text] : table) EXPECT_EQ(test::text_of(get_whos_line(m)), text);
}

TEST(Display, whos_line_is_one_call) {
    Mm x = named("x_with_a_name_of_its_own", Mm(3.0));
    EXPECT_EQ(calls_of([&] { whos_line(x); }),
              Calls{"x_with_a_name_of_its_own (1x1)=1 double elements real (8 bytes)\n"});
    EXPECT_EQ(calls_of([&] { whos_line(3.0); }),
              Calls{std::string(22, ' ') + " (1x1)=1 double elements real (8 bytes)\n"});
    Mm bad(Mm(3.0), reinterpret_cast<const char *>(uintptr_t{64}));
    EXPECT_PRINTS(whos_line(bad), "whos: bad name pointer 00000040");
}

TEST(Display, celldisp_names_each_element) {
    Mm c = named("c", cell_of(1, 2, {M({{1, 2}}), cell_of(2, 1, {TM("a"), 5.0})}));
    EXPECT_PRINTS(celldisp(c), "c{1,1}\n1  2\nc{1,2}\nans{1,1}\na\nans{2,1}\n5\n");
    EXPECT_RAISES(celldisp(named("x", 1.0)), "x is not a cell array.");
}

TEST(Display, any_value_can_be_displayed) {
    test::Random random(77);
    for (int round = 0; round < 1000; ++round) {
        Mm m = random.any();
        std::string text = test::printed([&] { display(m); }), name = m.getname() ? m.getname() : "ans";
        EXPECT_EQ(text.back(), '\n');
        EXPECT_EQ(text.rfind(name + " (", 0), 0u);
    }
    std::string text = test::printed([] { dump(named("s", struct_of({{"a", 1.0}, {"b", 2.0}}))); });
    EXPECT_EQ(text.rfind("**dump of s this = ", 0), 0u);
    EXPECT_NE(text.find("str = 0 sparse = 0 logical = 0 nfields = 2\nfields: a b \n"), text.npos) << text;
}

} // namespace
