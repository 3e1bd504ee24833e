// MAT-files of level 5: bytes written by hand in both orders, round trips, damage, compressed variables.
#include <tuple>

#include <zlib.h>

#include "files/file_table.h"
#include "files/folder.h"
#include "files/mat/mat5.h"
#include "value/header.h"

namespace {

using namespace std::string_literals;
using test::row;

// Elements of a file, in one byte order.
struct Elements {
    bool big = false;

    template <class T> std::string raw(T x) const { return test::bytes_of(x, big); }
    template <class T> std::string all(const std::vector<T> &x) const {
        std::string s;
        for (T each : x) s += raw(each);
        return s;
    }
    std::string word(uint32_t x) const { return raw(x); }
    static std::string padded(std::string s) { return s + std::string(-s.size() & 7, '\0'); }
    std::string element(uint32_t type, const std::string &data) const {
        const uint32_t n = static_cast<uint32_t>(data.size());
        return padded((n > 0 && n < 5 ? word(type | n << 16) : word(type) + word(n)) + data);
    }
    std::string matrix(uint32_t flags, const std::vector<int> &dims, const std::string &name,
                       const std::string &data, uint32_t room = 0) const {
        const std::string body = word(6) + word(8) + word(flags) + word(room) + word(5) +
                                 word(static_cast<uint32_t>(4 * dims.size())) + padded(all(dims)) +
                                 element(1, name) + data;
        return word(14) + word(static_cast<uint32_t>(body.size())) + body;
    }
    std::string packed(const std::string &plain) const {
        uLongf n = compressBound(plain.size());
        std::string out(n, '\0');
        compress(reinterpret_cast<Bytef *>(out.data()), &n, reinterpret_cast<const Bytef *>(plain.data()),
                 plain.size());
        out.resize(n);
        return word(15) + word(static_cast<uint32_t>(n)) + out;
    }
    std::string number(double x, const char *name = "x") const {
        return matrix(6, {1, 1}, name, element(9, raw(x)));
    }
    // One of each class.
    std::vector<std::string> everything() const {
        const std::string names = "a"s + std::string(31, '\0') + "bc"s + std::string(30, '\0');
        return {number(2.5, "x"),
                matrix(6 | 2048, {1, 2}, "complex", element(2, "\1\2") + element(9, all<double>({0.5, -1}))),
                matrix(9 | 512, {2, 2, 2}, "bytes", element(2, "\0\1\1\0\0\0\0\1"s)),
                matrix(4, {1, 3}, "text", element(4, all<uint16_t>({'a', 'b', 0x20ac}))),
                matrix(5, {3, 2}, "sparse",
                       element(5, all<int>({0, 2, 1})) + element(5, all<int>({0, 2, 3})) +
                           element(9, all<double>({7, 8, 9})),
                       3),
                matrix(1, {1, 2}, "cell", number(1, "") + matrix(6, {0, 0}, "", element(9, ""))),
                matrix(2, {1, 2}, "struct",
                       element(5, word(32)) + element(1, names) + number(1, "") + number(2, "") + word(14) +
                           word(0) + number(4, ""))};
    }
};
const Elements little, big{true};
const std::string head(128, ' ');

class Mat5 : public test::Folder {
  protected:
    static std::string saved(const std::vector<Mm> &values, std::vector<const char *> names = {}) {
        kn::Stream f(kn::io::open("saved", "wb"));
        kn::Mat5Writer writer(f.get(), "saved");
        bool taken = writer.header();
        names.resize(values.size()); // the others have none
        for (size_t k = 0; k < values.size(); ++k) taken = writer.write(values[k], names[k]) && taken;
        EXPECT_TRUE(f.close() && taken);
        return bytes("saved");
    }
    struct Loaded {
        std::vector<Mm> values;
        std::vector<std::string> names;
        bool ended; // no variable failed
    };
    // All variables of a file, until one fails.
    static Loaded loaded(const std::string &content) {
        std::string copy = content;
        kn::Stream f(kn::io::opened(fmemopen(copy.data(), copy.size(), "rb")));
        kn::Mat5Reader reader(f.get(), "load");
        kn::Mat5Entry entry;
        Loaded out{{}, {}, true};
        size_t heads = 0;
        while (reader.next(entry)) ++heads;
        reader.rewind();
        for (Mm x; out.values.size() < heads && out.ended; x = Mm()) {
            out.ended = reader.read(x);
            EXPECT_TRUE(out.ended || x.size() == 0);
            kn::check(x);
            out.values.push_back(x);
            out.names.push_back(reader.name());
        }
        return out;
    }
    static Mm value_of(const std::string &element) { return loaded(head + element).values.at(0); }
};

TEST_F(Mat5, bytesOfEitherOrderAreRead) {
    Mm structs = test::struct_of({{"a", 1.0}, {"bc", 2.0}});
    structs(2.0).member("bc") = 4.0;
    const Mm wanted[] = {2.5,
                         test::complex_of(row({1, 2}), row({0.5, -1})),
                         test::logical_of(reshape(muint8(row({0, 1, 1, 0, 0, 0, 0, 1})), row({2, 2, 2}))),
                         setstr(row({'a', 'b', 0x20ac})),
                         test::sparse_of(3, 2, {{0, 7}, {2, 8}, {4, 9}}),
                         test::cell_of(1, 2, {1.0, nop_M}),
                         structs};
    for (const Elements &order : {little, big}) {
        std::string plain, packed;
        for (const std::string &each : order.everything()) plain += each, packed += order.packed(each);
        for (const std::string &content : {plain, packed}) {
            const Loaded all = loaded(head + content);
            EXPECT_EQ(all.names, (std::vector<std::string>{"x", "complex", "bytes", "text", "sparse", "cell",
                                                           "struct"}));
            ASSERT_EQ(all.values.size(), 7u);
            for (size_t k = 0; k < 7; ++k) EXPECT_SAME(all.values[k], wanted[k]);
        }
    }
}

TEST_F(Mat5, unnamedValuesGetLetters) {
    std::string letters;
    for (const std::string &name : loaded(saved(std::vector<Mm>(56, 1.0))).names) letters += name;
    EXPECT_EQ(letters, "ABCDEFGHIJKLMNOPQRSTUVWXYZ[abcdefghijklmnopqrstuvwxyz{AB");
}

TEST_F(Mat5, bytesAreWritten) {
    const std::string content = saved({row({1, 2}), TM("a\xff"), test::cell_of(1, 2, {7.0, sparse(3.0, 2.0)}),
                                       test::struct_of({{"first", nop_M}})},
                                      {"x", "longer"});
    EXPECT_EQ(content.substr(0, 50), "TARVEK 4.0 MAT-file, Platform: PCWIN, Created on: ");
    EXPECT_EQ(content.substr(74, 54), std::string(50, ' ') + "\0\1IM"s);
    const Elements &e = little;
    const std::string none = e.element(9, ""),
                      no_entries = e.element(5, "") + e.element(5, e.all<int>({0, 0, 0})) + none,
                      field = e.element(5, e.word(32)) + e.element(1, "first"s + std::string(27, '\0'));
    EXPECT_EQ(content.substr(128),
              e.matrix(6, {1, 2}, "x", e.element(9, e.all<double>({1, 2}))) +
                  e.matrix(4, {1, 2}, "longer", e.element(4, e.all<uint16_t>({'a', 255}))) +
                  e.matrix(1, {1, 2}, "A", e.number(7, "B") + e.matrix(5, {3, 2}, "C", no_entries, 1)) +
                  e.matrix(2, {1, 1}, "D", field + e.matrix(6, {0, 0}, "E", none)));
}

// With [] for what was never assigned, which has no data, and text as doubles.
Mm settled(const Mm &x) {
    if (x.gettype() == kn_uint8 && x.isstr()) return setstr(mdouble(x));
    if (x.gettype() != kn_Mm || x.isstruct()) return x.gettype() == kn_none ? nop_M : x;
    Mm out(0, 0, 0, x.getndims(), x.getdims(), kn_Mm);
    for (int k = 1; k <= x.getnnz(); ++k) out.mr(k) = settled(x.mr(k));
    return out;
}

TEST_F(Mat5, randomValuesComeBack) {
    test::Random random(11);
    std::vector<Mm> values = {mclass(test::struct_of({{"value", 3.0}}), TM("mat5class")),
                              test::nd({2, 3, 2, 2}, std::vector<double>(24, 4)),
                              rmfield(test::struct_of({{"f", 1.0}}), TM("f")),
                              randM(300.0, 40.0),
                              muint8(randM(200.0, 300.0) * 255.0),
                              setstr(muint8(round(randM(1.0, 2000.0) * 255.0))),
                              reshape(sparse(round(randM(6.0, 8.0))), 3, 4, 2, 2)};
    for (int k = 0; k < 500; ++k)
        values.push_back(k % 3 ? random.any() : test::cell_of(2, 1, {random.any(), random.any()}));
    std::string content;
    {
        test::Returning errors; // "variable '%s' was used without a value"
        content = saved(values);
    }
    const Loaded all = loaded(content);
    ASSERT_TRUE(all.ended && all.values.size() == values.size());
    for (size_t k = 0; k < values.size(); ++k) EXPECT_SAME(all.values[k], settled(values[k])) << k;
    EXPECT_EQ(mclass(all.values[0]).size(), 9);
}

TEST_F(Mat5, nestingHasNoLimit) {
    constexpr int levels = 200000;
    Mm deep = 1.0;
    for (int k = 0; k < levels; ++k)
        deep = k % 2 ? test::cell_of(1, 1, {deep}) : test::struct_of({{"s", deep}});
    const std::string content = saved({deep});
    for (const std::string &file : {content, head + little.packed(content.substr(128))}) {
        const Loaded all = loaded(file);
        EXPECT_TRUE(all.ended && isequal(all.values.at(0), deep).r() == 1);
    }
}

TEST_F(Mat5, otherClassesAreReadAsDoubles) {
    for (const Elements &e : {little, big}) {
        const std::tuple<uint32_t, std::string, Mm> numbers[] = {
            {7, e.element(7, e.raw(0.5f)), 0.5},
            {8, e.element(1, "\xfe"), -2},
            {10, e.element(3, e.raw(int16_t{-300})), -300},
            {11, e.element(4, e.raw(uint16_t{65535})), 65535},
            {12, e.element(5, e.raw(-70000)), -70000},
            {13, e.element(6, e.raw(4000000000u)), 4e9},
            {14, e.element(12, e.raw(int64_t{-5})), -5},
            {15, e.element(13, e.raw(uint64_t{1} << 63)), 9223372036854775808.0},
            {9, e.element(9, e.raw(-3.7)), muint8(253)}};
        for (const auto &[type, data, wanted] : numbers)
            EXPECT_SAME(value_of(e.matrix(type, {1, 1}, "x", data)), wanted) << type;
        const std::tuple<uint32_t, std::string, Mm> texts[] = {
            {1, "\xe4z", row({0xe4, 'z'})},
            {16, "\xf0\x9f\x98\x80", row({0xd83d, 0xde00})},
            {16, "\xf0\x9f\x98\x80", row({0xf0, 0x9f, 0x98, 0x80})},
            {17, e.all<uint16_t>({0x20ac, 'z'}), row({0x20ac, 'z'})},
            {18, e.all<uint32_t>({0x1f600, 'z'}), row({0x1f600, 'z'})}};
        for (const auto &[type, data, codes] : texts)
            EXPECT_SAME(
                value_of(e.matrix(4, {1, static_cast<int>(codes.size())}, "t", e.element(type, data))),
                setstr(codes));
        test::Warnings warnings;
        const std::string opaque = e.word(6) + e.word(8) + e.word(17) + e.word(0) + e.element(1, "obj");
        const Loaded all = loaded(head + e.matrix(16, {1, 1}, "f", e.number(1)) + e.word(14) +
                                  e.word(static_cast<uint32_t>(opaque.size())) + opaque + e.number(3));
        EXPECT_EQ(warnings.texts(),
                  (std::vector<std::string>{
                      "load5: 'load': variable 'f' of class 'function_handle' can not be loaded",
                      "load5: 'load': variable 'obj' of class 'opaque' can not be loaded"}));
        ASSERT_EQ(all.values.size(), 3u);
        EXPECT_SAME(all.values[2], Mm(3.0));
    }
}

TEST_F(Mat5, whatCanNotBeReadIsReported) {
    const Elements &e = little;
    std::string wrong_sum = e.packed(e.number(1));
    wrong_sum.back() ^= 1;
    const std::string unread = "load: 'load' could not read data set", x = e.element(9, e.raw(1.0)),
                      outside = "load5: 'load' contained sparse matrix with entries outside of it";
    auto sparse_with = [&](const std::vector<int> &ir, const std::vector<int> &jc, int rows = 2) {
        return e.matrix(5, {rows, 1}, "s", e.element(5, e.all(ir)) + e.element(5, e.all(jc)) + x, 1);
    };
    const std::pair<std::string, std::string> cases[] = {
        {"\16\0\0\0"s, "load5: 'load' could not read header"},
        {e.matrix(6, {1, 1, 1, 1, 1}, "x", x),
         "load5: Can not read matrix from file 'load' which has more then 4 dimensions."},
        {e.matrix(99, {1, 1}, "x", x), "load5: 'load' unrecognized matrix type"},
        {e.matrix(6, {1, 1}, "x", e.element(7, e.raw(1.0f))), "loadsave5: unknown data format"},
        {e.matrix(6, {-1, 1}, "x", x), "load5: 'load' contained matrix with negative dimension"},
        {e.matrix(6, {2, 1}, "x", x), unread},
        {e.packed(e.matrix(6, {30000, 30000}, "x", x)), unread},
        {wrong_sum, unread},
        {e.matrix(1, {1000, 1000}, "c", x), unread},
        {e.matrix(2, {30000, 30000}, "s", e.element(5, e.word(32)) + e.element(1, "")), unread},
        {e.matrix(2, {1, 1}, "s", e.element(5, e.word(0)) + e.element(1, "abcdefgh")),
         "load5: could not read field name from 'load'"},
        {sparse_with({0}, {0, -1}), "load5: 'load' contained sparse matrix with negative nnz"},
        {sparse_with({0}, {0, 2}), outside},
        {sparse_with({2}, {0, 1}), outside},
        {e.matrix(6, {1, 1}, "x", x).substr(0, 36), "loadv5: file 'load' ended prematurely."},
    };
    test::Returning errors;
    for (const auto &[element, message] : cases) {
        put("load", head + element);
        kn::Stream f(kn::io::open("load", "rb"));
        Mm target = 5.0;
        EXPECT_FALSE(kn::Mat5Reader(f.get(), "load").read(target));
        EXPECT_EQ(errors.errors().back(), message);
        EXPECT_EQ(target.size(), 0);
    }
    EXPECT_EQ(errors.errors().size(), std::size(cases));
}

TEST_F(Mat5, variablesAreFoundByName) {
    test::Warnings warnings;
    put("load", head + little.number(1, "first") + big.number(2, "i") +
                    little.packed(little.number(3, "third")) + little.number(4, "after"));
    kn::Stream f(kn::io::open("load", "rb"));
    kn::Mat5Reader reader(f.get(), "load");
    for (auto [name, found, value] : {std::tuple<const char *, bool, double>{"after", true, 4},
                                      {"third", true, 3},
                                      {"i_", true, 2},
                                      {"firs", false, 9},
                                      {"ans", true, 9}}) {
        Mm x = test::named(name, 9.0);
        EXPECT_EQ(reader.read_named(x), found) << name;
        EXPECT_SAME(x, Mm(value));
    }
    Mm unnamed, other = test::named("other", 0.0);
    EXPECT_RAISES(reader.read_named(unnamed), "Could not load unnamed variable from file 'load'");
    EXPECT_TRUE(warnings.texts().empty());
    reader.rewind();
    EXPECT_TRUE(reader.read(other));
    EXPECT_EQ(warnings.texts(),
              std::vector<std::string>{"load5: 'load': variable named 'first' loaded into 'other'"});
}

// Whatever a file holds, it is loaded or reported, and memory is asked for in proportion to its bytes.
TEST_F(Mat5, damagedFilesAreLoadedOrReported) {
    test::Warnings warnings;
    test::Returning errors;
    kn::alloc_probe.largest = 1 << 20; // where there is a probe, "Out of memory!" beyond
    std::vector<std::string> files;
    for (const Elements &e : {little, big}) {
        files.push_back(
            e.packed(e.matrix(1, {1, 2}, "c", e.number(2) + e.matrix(4, {1, 2}, "", e.element(16, "ab")))));
        files.emplace_back();
        for (const std::string &each : e.everything()) files.back() += each;
    }
    const std::string claim = // more elements than the stream can give
        little.packed(little.matrix(1, {1, 200000}, "c", "")).substr(8) + std::string(2000, 'x');
    loaded(head + little.word(15) + little.word(static_cast<uint32_t>(claim.size())) + claim);
    for (const std::string &content : files) {
        for (size_t n = 0; n < content.size(); ++n) loaded(head + content.substr(0, n));
        for (size_t at = 0; at < content.size(); ++at)
            for (const int change : {1, 2, 4, 8, 16, 32, 64, 128, 255}) {
                std::string damaged = content;
                damaged[at] = static_cast<char>(damaged[at] ^ change);
                loaded(head + damaged);
            }
    }
    kn::alloc_probe.largest = 0;
    for (const std::string &text : errors.errors()) EXPECT_NE(text, "Out of memory!");
}

} // namespace
