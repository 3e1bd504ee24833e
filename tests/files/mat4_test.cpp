// MAT-files of level 4: what the bytes mean, in both orders, and what damaged ones give.
#include <cstdint>

#include "files/file_table.h"
#include "files/folder.h"

namespace {

using std::string;
using test::col;
using test::M;
using test::named;
using test::row;

class Level4 : public test::Folder {
  protected:
    static Mm loaded(const string &file) {
        put("f.mat", file);
        return vbload(TM("f"));
    }
};

// Numbers as a file holds them.
template <class T> string all_of(std::initializer_list<double> x, bool big) {
    string out;
    for (double v : x) out += test::bytes_of(static_cast<T>(v), big);
    return out;
}

string header(double type, double rows, double cols, double imagf, const string &name, bool big) {
    return all_of<int32_t>({type, rows, cols, imagf, double(name.size() + 1)}, big) + name + '\0';
}

string doubles(std::initializer_list<double> x, bool big = false) { return all_of<double>(x, big); }

TEST_F(Level4, matrices_by_hand_in_both_orders) {
    for (bool big : {false, true}) {
        const double m = big ? 1000 : 0;
        auto file = [&](double type, double rows, double cols, double imagf, const string &data) {
            return loaded(header(m + type, rows, cols, imagf, "x", big) + data);
        };
        EXPECT_SAME(file(0, 2, 1, 0, doubles({1, -2.5}, big)), col({1, -2.5}));
        EXPECT_SAME(file(30, 1, 2, 0, all_of<int16_t>({-7, 300}, big)), row({-7, 300}));
        EXPECT_SAME(file(40, 1, 2, 0, all_of<uint16_t>({65535, 300}, big)), row({65535, 300}));
        EXPECT_SAME(file(51, 1, 2, 0, "hi"), TM("hi"));
        EXPECT_SAME(file(0, 1, 1, 7, doubles({1, 2}, big)), test::C(1, 2));
        EXPECT_SAME(file(0, 0, 7, 0, ""), nop_M);
        const Mm bits = file(50, 2, 2, 0, string("\0\1\1\0", 4)),
                 grey = file(0, 1, 1, 1, doubles({1, 1}, big));
        EXPECT_SAME(bits, test::logical_of(M({{0, 1}, {1, 0}})));
        EXPECT_FALSE(grey.islogical());
        EXPECT_SAME(file(2, 3, 3, 0, doubles({2, 1, 4, 3, 1, 5, 0.5, -1, 0}, big)),
                    sparse(col({2, 1}), col({3, 1}), col({0.5, -1}), 4, 5));
        EXPECT_SAME(file(2, 2, 4, 0, doubles({1, 2, 2, 2, 3, 0, 4, 0}, big)),
                    sparse(1, 2, test::C(3, 4), 2, 2));
    }
}

TEST_F(Level4, the_bytes_that_are_saved) {
    const bool big = kn::native_format == kn::big_endian;
    const double m = big ? 1000 : 0;
    const Mm x = named("x", test::C(1, 2)), s = named("longer", sparse(2, 3, 7, 4, 5)), t = TM("a"),
             u = test::U8({{200}}), none = named("e", nop_M);
    saveV4(TM("f"), (CL(x), s, t, u, none));
    EXPECT_TRUE(bytes("f.mat") ==
                header(m, 1, 1, 1, "x", big) + doubles({1, 2}, big) + header(m + 2, 2, 3, 0, "longer", big) +
                    doubles({2, 4, 3, 5, 7, 0}, big) + header(m + 1, 1, 1, 0, "noname", big) +
                    doubles({'a'}, big) + header(m, 1, 1, 0, "noname", big) + doubles({200}, big) +
                    header(m, 0, 0, 0, "e", big));
}

TEST_F(Level4, names_and_the_end) {
    Mm a = named("a", 3), b = named("bcd", row({1, 2}));
    saveV4(TM("f"), (CL(a), b, a));
    test::Warnings warnings;
    Mm ab = named("ab", 0), q = named("q", 0), plain, c = named("c", 5), d = named("d", 5);
    EXPECT_SAME(load(TM("f"), (CL(ab), q, plain, c, d)), x_M);
    EXPECT_SAME(ab, a);
    EXPECT_SAME(q, b);
    EXPECT_SAME(plain, a);
    EXPECT_SAME(c, nop_M);
    EXPECT_SAME(d, 5) << "after the end";
    EXPECT_EQ(warnings.texts(), std::vector<string>{"load4 'f': variable named 'bcd' loaded into 'q'"});
}

TEST_F(Level4, damage_is_told) {
    const string data = doubles({3, 4});
    auto file = [](double type, double rows, double cols, double imagf, double namlen, const string &rest) {
        return all_of<int32_t>({type, rows, cols, imagf, namlen}, false) + rest;
    };
    const string name("x\0", 2), real = "load4: could not read real part from file 'f'",
                                 imaginary = "load4: could not read imaginary part from file 'f'",
                                 no_name = "load4: 'f' could not read matrix name",
                                 no_type = "load4: 'f' unknown matrix type";
    for (const auto &[bytes, text] : std::vector<std::pair<string, string>>{
             {file(4, 1, 1, 0, 2, name + data), no_type},
             {file(0, 1, 1, 0, 30, name + data), no_name},
             {file(0, 1, 3, 0, 2, name + data), real},
             {file(0, 2147483647, 2147483647, 1, 2, name + data), real},
             {file(0, 1, 2, 1, 2, name + data), imaginary},
             {file(2, 1, 3, 0, 2, name + doubles({-1, 1, 1})), "sparse: non-positive row index encountered"},
             {file(2, 1, 3, 0, 2, name + doubles({4e9, 4e9, 1})), "Out of memory!"}}) {
        put("f.mat", bytes);
        test::Warnings warnings;
        Mm t = named("t", 7), u = named("u", 8);
        EXPECT_RAISES(load(TM("f"), (CL(t), u)), text);
        EXPECT_SAME(t, 7);
        test::Returning errors;
        load(TM("f"), (CL(t), u));
        EXPECT_TRUE(t.gettype() == x_M.gettype() && t.size() == x_M.size()) << text;
        EXPECT_SAME(u, 8);
    }
    test::Warnings warnings;
    EXPECT_SAME(loaded(file(200, 1, 2, 0, 2, name + data)), row({3, 4}));
    EXPECT_SAME(loaded(file(0, 1, 2, 0, 300, string(255, 'n') + data)), row({3, 4}));
    EXPECT_EQ(warnings.texts(),
              (std::vector<string>{"load4: 'f' O not zero", "load4: name field is too long in file 'f'"}));
    put("f.mat", file(-2147483520, 1, 2, 0, 2, name + data)); // negative in both orders
    EXPECT_RAISES(whos(TM("-file"), TM("f")), "load4: 'f' could not read header");
    put("f.mat", file(5000, 1, 2, 0, 2, name + data));
    EXPECT_RAISES(vbload(TM("f")), "load4: 'f' no conversion from this");
    EXPECT_SAME(loaded(string("\0\0\0\0\1\0\0", 7)), nop_M) << "less than a header is the end";
}

} // namespace
