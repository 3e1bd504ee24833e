// fread and fwrite against a model that works byte by byte.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "files/file_table.h"
#include "files/folder.h"

namespace {

using test::col;
using test::M;
using test::row;

// What is outside 64-bit integers counts as 0.
uint64_t wrapped(double x) {
    x = std::trunc(x);
    return std::fabs(x) < std::ldexp(1.0, 63) ? static_cast<uint64_t>(static_cast<int64_t>(x)) : 0;
}

template <class T> std::string encoded(double x, bool big) {
    if constexpr (std::is_floating_point_v<T>) return test::bytes_of(static_cast<T>(x), big);
    uint64_t bits = wrapped(x);
    if (std::is_same_v<T, uint64_t>) { // two words
        const double high = x / std::ldexp(1.0, 32);
        bits = wrapped(high) << 32 | (wrapped(x - std::ldexp(std::floor(high), 32)) & 0xffffffff);
    }
    return test::bytes_of(static_cast<T>(bits), big);
}

template <class T> double decoded(std::string raw, bool big) {
    if (big != (kn::native_format == kn::big_endian)) std::reverse(raw.begin(), raw.end());
    T x;
    std::memcpy(&x, raw.data(), sizeof x);
    return static_cast<double>(x);
}

struct Kind {
    int size, word; // bytes of an element, and of what is counted
    std::string (*encoded)(double, bool);
    double (*decoded)(std::string, bool);
    std::vector<const char *> names;
};
template <class T> Kind kind(std::vector<const char *> names) {
    const int size = sizeof(T);
    return {size, std::is_same_v<T, uint64_t> ? 4 : size, encoded<T>, decoded<T>, std::move(names)};
}
const std::vector<Kind> kinds = {
    kind<double>({"double", "float64", "real*8", "adouble", "long double", "float80", "real*10"}),
    kind<float>({"float", "float32", "real*4"}),
    kind<int32_t>({"long", "int", "integer*4", "int32"}),
    kind<int16_t>({"short", "int16", "integer*2"}),
    kind<uint16_t>({"ushort", "unsigned short", "uint16"}),
    kind<uint8_t>({"uchar", "unsigned char", "uint8"}),
    kind<uint32_t>({"unsigned long", "unsigned int", "ulong", "uint", "uint32"}),
    kind<int8_t>({"char", "char*1", "int8", "schar", "signed char", "integer*1"}),
    kind<uint64_t>({"integer*8", "int64", "uint64"})};

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
    std::vector<double> x = {0,     -0.0, 1,     -0.5,  127, 128,    -129,     255,      256,
                             65535, 1e20, -1e20, 1e300, NAN, 1e-310, INFINITY, -INFINITY};
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
                    wanted += k.encoded(v, big);
                    back.push_back(k.decoded(k.encoded(v, big), big));
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
        const int total = rows > 0 && cols > 0 ? int(rows * cols) : 0, word = k.word;
        std::vector<double> x(size_t(total), 0.0);
        int at = start, items = 0;
        for (int i = 0; i < total; ++i) {
            const int words =
                std::clamp(int(file.size()) - at, 0, e) / word; // of the last one perhaps a half
            if (words == 0) at = int(file.size());
            if (words == 0) break;
            std::string raw = file.substr(size_t(at), size_t(words * word));
            raw.resize(size_t(e));
            x[size_t(i)] = k.decoded(raw, big);
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
            wanted.replace(at, size_t(e), k.encoded(v, kn::native_format == kn::big_endian));
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
    const std::vector<unsigned char> numbers(sent.begin(), sent.end());
    const Mm all = col({numbers.begin(), numbers.end()});
    put("sent", sent);
    struct Pipe {
        std::FILE *from = popen("cat sent", "r");
        const Mm fid = fopen(TM(("/dev/fd/" + std::to_string(fileno(from))).c_str()));
        ~Pipe() { pclose(from); }
    } first, second;
    EXPECT_SAME(fread(first.fid, 3.0), Mm(all(colon(1, 3))));
    EXPECT_SAME(feof(first.fid), 0);
    EXPECT_SAME(fread(first.fid), Mm(all(colon(4, 300000))));
    EXPECT_SAME(feof(first.fid), 1);
    Mm a, count;
    fread(second.fid, row({2, INFINITY}), TM("uint8"), 2000, i_o, a, count);
    EXPECT_SAME(a, reshape(all(colon(1, 2001, 300000)), 2, 75));
    EXPECT_SAME(count, 150);
    EXPECT_GT(fread(fopen(TM("/proc/self/status"))).size(), 100) << "a file that tells no size";
}
#endif

TEST_F(Numbers, written_by_hand) {
    const Mm f = fopen(TM("f"), TM("w+"));
    EXPECT_SAME(fwrite(f, M({{300, -1}, {1.9, 0}})), 4);
    EXPECT_SAME(fwrite(f, row({1, -2}), TM("short"), 2.4), 2);
    EXPECT_SAME(fwrite(f, test::complex_of(row({7, 8}), row({1, 2}))), 2);
    EXPECT_SAME(fwrite(f, test::U8({{200, 255}}), TM("int16")), 2);
    EXPECT_SAME(fwrite(f, test::sparse_of(2, 1, {{1, 5}})), 2);
    EXPECT_SAME(fwrite(f, TM("text")), 4);
    EXPECT_SAME(fwrite(f, nop_M), 0);
    frewind(f);
    EXPECT_SAME(fread(f, 3.0, TM("uchar")),
                col({44, 1, 255})); // between writing and reading: what is held back
    fclose(f);
    EXPECT_TRUE(bytes("f") == std::string("\54\1\xff\0\1\0\0\0\xfe\xff\0\0\7\x8\xc8\0\xff\0\0\5text", 24));

    const Mm g = reading("x");
    EXPECT_RAISES(fread(g, row({1, 2, 3})), "fread: can not read multi-dimensional matrices");
    EXPECT_RAISES(fread(g, 1.0, TM("int7")), "fileio: unknown precision int7");
}

} // namespace
