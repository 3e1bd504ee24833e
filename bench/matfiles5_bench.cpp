// MAT-files of level 5: many small values.

#include <cstdio>
#include <string>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

constexpr int n = 100000;

// As they lie in the file, by a call of the C library for each.
void write_records(const char *name) {
    std::FILE *f = std::fopen(name, "wb");
    const char record[64] = {};
    for (int k = 0; f && k < n; ++k) std::fwrite(record, sizeof record, 1, f);
    if (f) std::fclose(f);
}

void read_records(const char *name) {
    std::FILE *f = std::fopen(name, "rb");
    char record[64];
    for (int k = 0; f && k < n; ++k) bench::keep(std::fread(record, sizeof record, 1, f));
    if (f) std::fclose(f);
}

} // namespace

void bench::matfile5_rows() {
    heading("MAT-files of level 5");
    const Mm name = strcat(tempname(), TM(".mat"));
    std::string native;
    for (int k = 0; k < name.size(); ++k) native += static_cast<char>(name.addr()[k]);
    native += ".native";
    const Mm numbers = num2cell(colon(1.0, n));
    row(
        "save of a cell of 1e5 numbers", ns_each(100, n), [&] { save(name, (CL(numbers))); },
        [&] { write_records(native.c_str()); });
    save(name, (CL(numbers)));
    write_records(native.c_str());
    row(
        "load of a cell of 1e5 numbers", ns_each(100, n), [&] { keep(load(name)); },
        [&] { read_records(native.c_str()); });
    deleteM(name);
    std::remove(native.c_str());
}
