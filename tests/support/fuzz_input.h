// What the fuzz targets share: values out of bytes, and calls whose errors are caught or returned from. A
// target defines `fuzz::run`.
#ifndef QUORVEX_TESTS_SUPPORT_FUZZ_INPUT_H
#define QUORVEX_TESTS_SUPPORT_FUZZ_INPUT_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "files/stream_calls.h"
#include "quorvex.h"
#include "value/header.h"

namespace fuzz {

// Bytes taken one after the other; zeros after their end.
class Input {
  public:
    Input(const uint8_t *data, size_t size) : at_(data), end_(data + size) {}

    bool more() const { return at_ < end_; }
    uint8_t byte() { return more() ? *at_++ : 0; }
    std::string text(size_t n) {
        std::string s;
        for (; n > 0 && more(); --n) s += static_cast<char>(byte());
        return s;
    }
    std::string rest() { return text(static_cast<size_t>(end_ - at_)); }
    std::string line() { // up to a newline, which is dropped
        std::string s;
        for (char c; more() && (c = static_cast<char>(byte())) != '\n';) s += c;
        return s;
    }
    double number() {
        static const double special[] = {0,         -0.0,         1,    -1,      2,    0.5,      1e300,
                                         -1e-300,   2147483648.0, 1e19, 1.0 / 3, 1e15, HUGE_VAL, HUGE_VAL,
                                         -HUGE_VAL, NAN};
        const uint8_t kind = byte();
        if (kind < 16) return special[kind];
        if (kind < 200) return kind - 100.0;
        double x = 0;
        const std::string bytes = text(sizeof x);
        std::memcpy(&x, bytes.data(), bytes.size());
        return x;
    }
    Mm value() {
        switch (byte() % 6) {
        case 0: return TM(text(byte()).c_str());
        case 1: {
            Mm m(0, 0, 0, 1 + byte() % 3, byte() % 9, byte() % 4 ? kn_double : kn_uint8);
            for (int k = 1; k <= m.size(); ++k)
                m.gettype() == kn_double ? void(m.r(k) = number()) : void(m.ur(k) = byte());
            return m;
        }
        case 2: return sparse(Mm(number()));
        default: return number();
        }
    }

  private:
    const uint8_t *at_, *end_;
};

struct Raised {};

// Runs the work with an error handler that throws, or one that returns; nothing is printed.
template <class F> void guarded(bool throwing, F work) {
    kn_set_error_handler(throwing ? [](const char *) { throw Raised(); } : [](const char *) {});
    kn_set_warning_handler([](const char *) {});
    kn_set_print_handler([](const char *) {});
    try {
        work();
    } catch (const Raised &) {
    }
}

// What holds for every value.
inline void expect(bool fact) {
    if (!fact) std::abort();
}
inline void expect_valid(const Mm &m) {
    kn::check(m);
    expect(m.issparse() || m.getnnz() == m.size());
}

// A temporary file of these bytes.
inline std::FILE *file_with(const std::string &bytes) {
    std::FILE *file = kn::io::opened(std::tmpfile());
    expect(file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size());
    std::rewind(file);
    return file;
}

// A target, given the bytes after the first one, `kind`, whose lowest bit tells whether errors are thrown.
void run(Input &in, uint8_t kind);

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input in(data, size);
    const uint8_t kind = in.byte();
    fuzz::guarded(kind & 1, [&] { fuzz::run(in, kind); });
    return 0;
}

#endif
