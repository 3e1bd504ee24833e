// fread and fwrite against a model that works byte by byte.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "files/file_table.h"
#include "files/folder.h"
#include "files/precision.h"

namespace {

using test::col;
using test::M;
using test::row;

struct Kind {
    char type; // f floating point, i signed, u unsigned, w unsigned in two words
    int size;
    std::vector<const char *> names;
};
const std::vector<Kind> kinds = {
    {'f', 8, {"double", "float64", "real*8", "adouble", "long double", "float80", "real*10"}},
    {'f', 4, {"float", "float32", "real*4"}},
    {'i', 4, {"long", "int", "integer*4", "int32"}},
    {'i', 2, {"short", "int16", "integer*2"}},
    {'u', 2, {"ushort", "unsigned short", "uint16"}},
    {'u', 1, {"uchar", "unsigned char", "uint8"}},
    {'u', 4, {"unsigned long", "unsigned int", "ulong", "uint", "uint32"}},
    {'i', 1, {"char", "char*1", "int8", "schar", "signed char", "integer*1"}},
    {'w', 8, {"integer*8", "int64", "uint64"}},
};

// What is outside 64-bit integers counts as 0.
uint64_t wrapped(double x) {
    x = std::trunc(x);
    return std::fabs(x) < std::ldexp(1.0, 63) ? static_cast<uint64_t>(static_cast<int64_t>(x)) : 0;
}

std::string encoded(const Kind &k, double x, bool big) {
    uint64_t bits = wrapped(x);
    const float f = static_cast<float>(x);
    uint32_t f_bits;
    std::memcpy(&f_bits, &f, 4);
    if (k.type == 'f') k.size == 8 ? (void)std::memcpy(&bits, &x, 8) : (void)(bits = f_bits);
    if (k.type == 'w') {
        const double high = x / std::ldexp(1.0, 32);
        bits = wrapped(high) << 32 | (wrapped(x - std::ldexp(std::floor(high), 32)) & 0xffffffff);
    }
    std::string out;
    for (int b = 0; b < k.size; ++b) out += static_cast<char>(bits >> 8 * b);
    if (big) std::reverse(out.begin(), out.end());
    return out;
}

double decoded(const Kind &k, std::string raw, bool big) {
    if (big) std::reverse(raw.begin(), raw.end());
    uint64_t bits = 0;
    for (int b = 0; b < k.size; ++b) bits |= uint64_t(static_cast<unsigned char>(raw[size_t(b)])) << 8 * b;
    if (k.type == 'f' && k.size == 8) {
        double x;
        std::memcpy(&x, &bits, 8);
        return x;
    }
    if (k.type == 'f') {
        float x;
        const uint32_t low = static_cast<uint32_t>(bits);
        std::memcpy(&x, &low, 4);
        return x;
    }
    if (k.type == 'w') return std::ldexp(double(bits >> 32), 32) + double(bits & 0xffffffff);
    const double x = static_cast<double>(bits);
    return k.type == 'i' && bits >> (8 * k.size - 1) ? x - std::ldexp(1.0, 8 * k.size) : x;
}

class Numbers : public test::Folder {
  protected:
    std::mt19937 random_{7};
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    std::string noise(int n) {
        std::string s;
        while (n-- > 0) s += static_cast<char>(random_());
        return s;
    }
};

TEST_F(Numbers, every_precision_in_both_orders) {
    std::vector<double> x = {0,     -0.0,  1,      -1,  0.5,      -0.5,      127,   128,
                             -129,  255,   256,    300, 65535,    -1e5,      1e10,  1e20,
                             -1e20, 1e300, 1e-310, NAN, INFINITY, -INFINITY, -1e-20};
    for (int e : {31, 32, 53, 63, 64})
        for (double d : {-1.0, 0.0, 1.0})
            x.push_back(std::ldexp(1, e) + d), x.push_back(-std::ldexp(1, e) + d);
    while (x.size() < 2000) x.push_back(std::ldexp(int(random_()) / 65536.0, below(40) - 20));
    const Mm values = col(x);
    for (const Kind &k : kinds)
        for (const char *name : k.names)
            for (bool big : {false, true}) {
                SCOPED_TRACE(std::string(name) + (big ? " big" : " little"));
                const Mm format = TM(big ? "ieee-be" : "ieee-le"), f = fopen(TM("f"), TM("w"), format);
                EXPECT_SAME(fwrite(f, values, TM(name)), double(x.size()));
                fclose(f);
                std::string wanted;
                std::vector<double> back;
                for (double v : x) {
                    wanted += encoded(k, v, big);
                    back.push_back(decoded(k, encoded(k, v, big), big));
                }
                ASSERT_TRUE(bytes("f") == wanted);
                const Mm g = fopen(TM("f"), TM("r"), TM(big ? "l" : "b"));
                ASSERT_SAME(fread(g, Inf, TM(name), 0.0, format), col(back));
                fclose(g);
            }
}

// Reads as the description goes: shape, elements, how many, end of file, position.
TEST_F(Numbers, sizes_and_skips) {
    for (int round = 0; round < 2000; ++round) {
        const Kind &k = kinds[size_t(below(int(kinds.size())))];
        const bool big = below(2), two = below(2), skipping = below(2);
        const std::string file = noise(round % 200 == 199 ? 200000 : below(60));
        const int start = below(int(file.size()) + 1), e = k.size,
                  skip = skipping ? below(4) == 0 ? 1025 : below(7) : 0;
        const double m = below(5) == 0 ? INFINITY : below(9), n = below(3) == 0 ? INFINITY : below(5);
        const Mm f = reading(file, big ? "b" : "l"), size = two ? row({m, n}) : Mm(m);
        fseek(f, start, -1.0);
        Mm a, count;
        fread(f, size, TM(k.names[0]), skip, i_o, a, count);

        const int avail = int(file.size()) - start, most = avail >= e ? (avail - e) / (skip + e) + 1 : 0;
        double rows = m, cols = two ? n : 1;
        bool clamped = true;
        if (rows > most)
            rows = most, cols = 1;
        else if (rows * cols > most)
            cols = rows > 0 ? std::ceil(avail / ((skip + e) * rows)) : 0;
        else
            clamped = false;
        const int total = rows > 0 && cols > 0 ? int(rows * cols) : 0, word = k.type == 'w' ? 4 : e;
        std::vector<double> x(size_t(total), 0.0);
        int at = start, items = 0;
        for (int i = 0; i < total; ++i) {
            const int words =
                std::clamp(int(file.size()) - at, 0, e) / word; // of the last one perhaps a half
            if (words == 0) at = int(file.size());
            if (words == 0) break;
            std::string raw = file.substr(size_t(at), size_t(words * word));
            raw.resize(size_t(e));
            x[size_t(i)] = decoded(k, raw, big);
            items += words;
            at += e + skip;
        }
        SCOPED_TRACE(std::string(k.names[0]) + " of " + std::to_string(avail) + " bytes, skip " +
                     std::to_string(skip) + ", size " + testing::PrintToString(size));
        Mm wanted = col(x);
        if (total > 0) wanted.reshape(int(rows), int(cols));
        ASSERT_SAME(a, total > 0 ? wanted : Mm());
        ASSERT_SAME(count, double(items));
        ASSERT_SAME(feof(f), clamped && at >= int(file.size()));
        ASSERT_TRUE(clamped || test::same(ftell(f), double(at)));
        fclose(f);
    }
}

// Gaps keep what stands in them, also in a file that can't be read, and reach nowhere in one that is appended
// to.
TEST_F(Numbers, gaps_are_left_alone) {
    for (int round = 0; round < 400; ++round) {
        const Kind &k = kinds[size_t(below(int(kinds.size())))];
        const bool long_one = round % 100 == 99;
        const int n = long_one ? 30000 : below(40), e = k.size, skip = below(4) == 0 ? 1025 : 1 + below(9);
        const char *mode = std::vector{"w", "r+", "a"}[size_t(below(3))];
        std::string wanted = noise(long_one ? 100000 : below(400));
        const int start = below(int(wanted.size()) + 30);
        std::vector<double> x(static_cast<size_t>(n));
        for (double &v : x) v = below(1000) - 500;
        put("f", *mode == 'w' ? "" : wanted);
        const Mm f = fopen(TM("f"), TM(mode));
        if (*mode == 'w') fwrite(f, TM(wanted.c_str())), fflush(f), wanted = bytes("f");
        fseek(f, start, -1.0);
        ASSERT_SAME(fwrite(f, row(x), TM(k.names[0]), skip), double(n));
        const Mm end = ftell(f);
        fclose(f);
        size_t at = *mode == 'a' ? wanted.size() : size_t(start);
        for (double v : x) {
            if (wanted.size() < at + size_t(e)) wanted.resize(at + size_t(e));
            wanted.replace(at, size_t(e), encoded(k, v, kn::native_format == kn::big_endian));
            at += size_t(e + (*mode == 'a' ? 0 : skip));
        }
        ASSERT_TRUE(bytes("f") == wanted) << mode << " " << k.names[0] << " " << n << " at " << start;
        if (*mode == 'a' && n > 0) at += size_t(skip);
        ASSERT_TRUE((*mode == 'a' && n == 0) || test::same(end, double(at)));
    }
}

#ifdef __linux__
TEST_F(Numbers, a_pipe_gives_what_it_has) {
    const std::string sent = noise(300000);
    put("sent", sent);
    struct Pipe {
        std::FILE *from = popen("cat sent", "r");
        const Mm fid = fopen(TM(("/dev/fd/" + std::to_string(fileno(from))).c_str()));
        ~Pipe() { pclose(from); }
    } first, second;
    const Mm f = first.fid;
    std::vector<double> head, tail, apart;
    for (size_t k = 0; k < sent.size(); ++k)
        (k < 3 ? head : tail).push_back(static_cast<unsigned char>(sent[k]));
    EXPECT_SAME(fread(f, 3.0), col(head));
    EXPECT_SAME(feof(f), 0);
    EXPECT_SAME(fread(f), col(tail));
    EXPECT_SAME(feof(f), 1);
    Mm a, count;
    fread(second.fid, row({2, INFINITY}), TM("uint8"), 2000, i_o, a, count);
    for (size_t k = 0; k < sent.size(); k += 2001) apart.push_back(static_cast<unsigned char>(sent[k]));
    EXPECT_SAME(a, reshape(col(apart), 2, double(apart.size()) / 2));
    EXPECT_SAME(count, double(apart.size()));
    EXPECT_GT(fread(fopen(TM("/proc/self/status"))).size(), 100) << "a file that tells no size";
}
#endif

TEST_F(Numbers, written_by_hand) {
    const Mm f = fopen(TM("f"), TM("w+"));
    EXPECT_SAME(fwrite(f, M({{300, -1}, {1.9, 0}})), 4);
    EXPECT_SAME(fwrite(f, 1, TM("double"), 0.0, TM("ieee-be")), 1);
    EXPECT_SAME(fwrite(f, row({1, -2}), TM("short"), 2.4), 2);
    EXPECT_SAME(fwrite(f, test::complex_of(row({7, 8}), row({1, 2}))), 2);
    EXPECT_SAME(fwrite(f, test::U8({{200, 255}}), TM("int16")), 2);
    EXPECT_SAME(fwrite(f, test::sparse_of(2, 1, {{1, 5}})), 2);
    EXPECT_SAME(fwrite(f, TM("text")), 4);
    EXPECT_SAME(fwrite(f, -1, TM("int64"), -3.0), 1);
    EXPECT_SAME(fwrite(f, nop_M), 0);
    const std::string wanted("\54\1\xff\0\x3f\xf0\0\0\0\0\0\0\1\0\0\0\xfe\xff\0\0\7\x8\xc8\0\xff\0\0\5text"
                             "\xff\xff\xff\xff\0\0\0\0",
                             40);
    frewind(f);
    EXPECT_SAME(fread(f, 3.0, TM("uchar")),
                col({44, 1, 255})); // between writing and reading: what is held back
    fclose(f);
    EXPECT_TRUE(bytes("f") == wanted);

    const Mm g = reading(std::string(8, '\xff') + "\1\2\3\4\5\6\7\x8\x9\xa");
    Mm a, n;
    EXPECT_SAME(fread(g, 1.0, TM("int64")), std::ldexp(1.0, 64));
    EXPECT_SAME(fread(g, TM("uint16")), col({0x201, 0x403, 0x605, 0x807, 0xa09}));
    EXPECT_SAME(feof(g), 1);
    frewind(g), fseek(g, 8, TM("bof"));
    EXPECT_SAME(fread(g, row({4, INFINITY}), i_o, a, n), x_M);
    EXPECT_SAME(a, M({{1, 5, 9}, {2, 6, 10}, {3, 7, 0}, {4, 8, 0}}));
    EXPECT_SAME(n, 10);
    EXPECT_RAISES(fread(g, row({1, 2, 3})), "fread: can not read multi-dimensional matrices");
    EXPECT_RAISES(fread(g, 1.0, TM("int7")), "fileio: unknown precision int7");
    EXPECT_RAISES(fwrite(g, 1, 2), "fwrite: precision not a string");
    test::Returning errors;
    frewind(g);
    EXPECT_EQ(fread(g, 2.0, TM("int7")).size(), 2) << "goes on with doubles";
    // More than one block.
    const Mm many = fopen(TM("many"), TM("w+")), x = transpose(colon(1.0, 1200000.0));
    EXPECT_SAME(fwrite(many, x, TM("int32")), 1200000);
    frewind(many);
    EXPECT_SAME(fread(many, Inf, TM("int32")), x);
    // A format that nobody knows swaps.
    test::Warnings warnings;
    const Mm h = reading(std::string("\0\1", 2), "?");
    EXPECT_SAME(fread(h, 1.0, TM("int16")), kn::native_format == kn::little_endian ? 1 : 256);
}

// The readers and the writer that other formats are built on.
TEST_F(Numbers, element_readers) {
    put("f", std::string("\0\0\xc0\x3f\0\0\x96\x43", 8)); // the singles 1.5 and 300
    for (bool all : {true, false}) {
        int i[3] = {9, 9, 9};
        unsigned char b[3] = {9, 9, 9};
        kn::Stream f(kn::io::open("f", "rb")), g(kn::io::open("f", "rb"));
        EXPECT_EQ(kn::read_elements_int32(i, all ? 2 : 3, f.get(), 1, kn::native_format == kn::big_endian),
                  2);
        EXPECT_EQ(kn::read_elements_byte(b, all ? 2 : 3, g.get(), 1, kn::native_format == kn::big_endian), 2);
        EXPECT_EQ((std::vector<int>{i[0], i[1], i[2]}), (std::vector<int>{1, 300, all ? 9 : 0}));
        EXPECT_EQ((std::vector<int>{b[0], b[1], b[2]}), (std::vector<int>{1, 44, all ? 9 : 0}));
        double none = 9;
        EXPECT_EQ(kn::read_elements(&none, 1, f.get(), 0, false), 0);
        EXPECT_EQ(kn::read_elements(&none, 1, f.get(), 11, false), 0);
        EXPECT_EQ(none, 9);
    }
    kn::Stream f(kn::io::open("f", "wb"));
    EXPECT_EQ(kn::write_element(1, f.get(), 9, false), 2);
    EXPECT_EQ(kn::write_element(1, f.get(), 6, false), 1);
    EXPECT_EQ(kn::write_element(1, f.get(), -1, false), -1);
}

} // namespace
