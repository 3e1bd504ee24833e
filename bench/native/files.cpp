#include "bench/native.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

namespace {

template <class T> void read(const char *name, int n, T *out) {
    std::FILE *f = std::fopen(name, "rb");
    if (!f || std::fread(out, sizeof *out, static_cast<std::size_t>(n), f) != static_cast<std::size_t>(n))
        std::abort();
    std::fclose(f);
}

template <class T> void write(const char *name, int n, const T *x) {
    std::FILE *f = std::fopen(name, "wb");
    if (!f || std::fwrite(x, sizeof *x, static_cast<std::size_t>(n), f) != static_cast<std::size_t>(n))
        std::abort();
    std::fclose(f);
}

std::string whole(const char *name) {
    std::ifstream in(name, std::ios::binary | std::ios::ate);
    std::string text(static_cast<std::size_t>(in.tellg()), '\0');
    in.seekg(0);
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    return text;
}

} // namespace

namespace native {

void read_doubles(const char *name, int n, double *out) { read(name, n, out); }

void read_shorts(const char *name, int n, short *work, double *out) {
    read(name, n, work);
    std::copy(work, work + n, out);
}

void write_doubles(const char *name, int n, const double *x) { write(name, n, x); }

void write_shorts(const char *name, int n, const double *x, short *work) {
    for (int k = 0; k < n; ++k) work[k] = static_cast<short>(x[k]);
    write(name, n, work);
}

void write_shorts_apart(const char *name, int n, const double *x, short *work) {
    for (int k = 0; k < n; ++k) work[2 * k] = static_cast<short>(x[k]), work[2 * k + 1] = 0;
    write(name, 2 * n - 1, work);
}

long read_lines(const char *name) {
    const std::string text = whole(name);
    long characters = 0;
    std::string line;
    for (const char *at = text.data(), *end = at + text.size(); at < end;) {
        const void *found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
        const char *stop = found ? static_cast<const char *>(found) : end;
        line.assign(at, stop);
        benchmark::DoNotOptimize(line.data());
        characters += stop - at;
        at = stop + 1;
    }
    return characters;
}

void print_doubles(const char *name, int n, const double *x) {
    constexpr std::size_t width = 23, digits = 13, line = width + 1, lines = 4096;
    std::FILE *f = std::fopen(name, "w");
    if (!f) std::abort();
    std::string text(lines * line, ' ');
    for (int k = 0; k < n;) {
        char *to = text.data();
        for (std::size_t l = 0; l < lines && k < n; ++l, ++k, to += line) {
            char number[width];
            const char *stop =
                std::to_chars(number, number + width, x[k], std::chars_format::general, digits).ptr;
            char *first = std::fill_n(to, number + width - stop, ' ');
            *std::copy(static_cast<const char *>(number), stop, first) = '\n';
        }
        const auto size = static_cast<std::size_t>(to - text.data());
        if (std::fwrite(text.data(), 1, size, f) != size) std::abort();
    }
    std::fclose(f);
}

int scan_doubles(const char *name, int n, double *out) {
    const std::string text = whole(name);
    const char *at = text.data(), *end = at + text.size();
    for (int k = 0; k < n; ++k) {
        while (at < end && (*at == ' ' || *at == '\n')) ++at;
        const auto [stop, fault] = std::from_chars(at, end, out[k]);
        if (fault != std::errc()) return k;
        at = stop;
    }
    return n;
}

} // namespace native
