// What disp, display and their relatives print, and in how many calls of the print handler.
#include <cmath>
#include <cstdint>

#include "quorvex/classes.h"
#include "support/support.h"
#include "text/text_of.h"
#include "value/header.h"

using namespace test;

namespace {

struct LongFormat {
    LongFormat() { format(TM("LONG E"), 1.0); }
    ~LongFormat() { format(); }
};

Mm unset() { return Mm(i_o, "unset", 0); }
TEST(Disp, short_format_drops_the_common_blanks_and_long_keeps_them) {
    EXPECT_PRINTS(disp(M_PI), "3.142\n");
    LongFormat on;
    EXPECT_PRINTS(disp(M_PI), "  3.14159265359\n");
    EXPECT_PRINTS(disp(M({{1, 2}, {3, 4}})), "  1  2\n  3  4\n");
}

TEST(Disp, every_kind_of_empty_value) {
    EXPECT_PRINTS(disp(TM(nullptr)), "''\n");
    EXPECT_PRINTS(disp(cell_of(0, 0, {})), "{}\n");
    EXPECT_PRINTS(disp(unset()), "(this variable has no value)\n");
    EXPECT_PRINTS(disp(x_M), "");
}

TEST(Disp, pages) {
    EXPECT_PRINTS(disp(nd({1, 1, 2, 2}, {1, 2, 3, 4})),
                  "(:,:,1,1)\n1\n(:,:,2,1)\n2\n(:,:,1,2)\n3\n(:,:,2,2)\n4\n");
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
    unregister_class_function("point", "disp");
}

TEST(Disp, cells_are_padded_to_the_longest_summary) {
    const Mm c = cell_of(2, 2, {1.0, C(1, 2), TM("ab"), nd({2, 1, 2}, {1, 2, 3, 4})});
    EXPECT_PRINTS(disp(c), "[1]            [ab]           \n[1x1 double]   [2x1x2 double] \n");
    EXPECT_PRINTS(
        disp(cell_of(1, 3, {cell_of(1, 2, {1.0, 2.0}), TM("1234567890123456"), TM("12345678901234567")})),
        "[1x2 cell]         [1234567890123456] [1x17 char]        \n");
}

TEST(Display, header_comes_in_three_pieces_and_a_line_of_whos_in_one) {
    const Prints prints;
    display(named("x", M({{1, 2}})));
    whos_line(named("x_with_a_name_of_its_own", 3.0));
    whos_line(Mm(Mm(3.0), reinterpret_cast<const char *>(uintptr_t{64})));
    EXPECT_EQ(prints.texts(),
              (std::vector<std::string>{"x", " (1x2)=2 double elements real (16 bytes)", " = \n", "1  2\n",
                                        "x_with_a_name_of_its_own (1x1)=1 double elements real (8 bytes)\n",
                                        "whos: bad name pointer 00000040"}));
}

TEST(Display, description_of_each_kind) {
    const std::pair<Mm, std::string> table[] = {
        {U8({{1, 2}}), " (1x2)=2 uint8 elements real (2 bytes)"},
        {sparse_of(9, 9, {{0, 1}, {5, 1}}),
         " (9x9)=81 sparse elements real (" + std::to_string(16 + 2 * sizeof(kn_size)) + " bytes)"},
        {unset(), " (0x0)=0 double elements real (0 bytes)"},
        {cell_of(1, 2, {1.0, 2.0}),
         " (1x2)=2 cell elements real (" + std::to_string(2 * sizeof(Mm)) + " bytes)"}};
    for (const auto &[m, text] : table) EXPECT_EQ(test::text_of(get_whos_line(m)), text);
}

TEST(Display, celldisp_names_each_element) {
    Mm c = named("c", cell_of(1, 2, {M({{1, 2}}), cell_of(2, 1, {TM("a"), 5.0})}));
    EXPECT_PRINTS(celldisp(c), "c{1,1}\n1  2\nc{1,2}\nans{1,1}\na\nans{2,1}\n5\n");
}

TEST(Display, dump) {
    std::string text = test::printed([] { dump(named("s", struct_of({{"a", 1.0}, {"b", 2.0}}))); });
    EXPECT_EQ(text.rfind("**dump of s this = ", 0), 0u);
    EXPECT_NE(text.find("str = 0 sparse = 0 logical = 0 nfields = 2\nfields: a b \n"), text.npos) << text;
}

} // namespace
