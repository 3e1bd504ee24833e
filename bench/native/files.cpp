#include "bench/native.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

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
    std::ifstream in(name);
    long characters = 0;
    for (std::string line; std::getline(in, line);) characters += static_cast<long>(line.size());
    return characters;
}

void print_doubles(const char *name, int n, const double *x) {
    std::FILE *f = std::fopen(name, "w");
    if (!f) std::abort();
    for (int k = 0; k < n; ++k) std::fprintf(f, "%23.13g\n", x[k]);
    std::fclose(f);
}

int scan_doubles(const char *name, int n, double *out) {
    std::ifstream in(name, std::ios::binary | std::ios::ate);
    std::string text(static_cast<std::size_t>(in.tellg()), ' ');
    in.seekg(0);
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    const char *at = text.c_str();
    for (int k = 0; k < n; ++k) {
        char *end;
        out[k] = std::strtod(at, &end);
        if (end == at) return k;
        at = end;
    }
    return n;
}

} // namespace native
