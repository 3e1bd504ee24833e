// Loading and saving: a matrix in each of the formats, and a cell of many small values.

#include <cstdio>
#include <string>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::keep;
using bench::row;

constexpr int m = 1000, n = m * m;
const bench::Limit limit = bench::times_native(1.3);

// A name that no file has; the file is removed at the end.
struct Name {
    Mm value = strcat(tempname(), TM(".mat"));
    std::string text;

    Name() {
        for (int k = 0; k < value.size(); ++k) text += static_cast<char>(value.addr()[k]);
    }
    ~Name() { deleteM(value); }
};

constexpr int cells = 100000;

// As they lie in the file, by a call of the C library for each.
void write_records(const char *name) {
    std::FILE *f = std::fopen(name, "wb");
    const char record[64] = {};
    for (int k = 0; f && k < cells; ++k) std::fwrite(record, sizeof record, 1, f);
    if (f) std::fclose(f);
}

void read_records(const char *name) {
    std::FILE *f = std::fopen(name, "rb");
    char record[64];
    for (int k = 0; f && k < cells; ++k) bench::keep(std::fread(record, sizeof record, 1, f));
    if (f) std::fclose(f);
}

void cell_rows() {
    const Name ours, other;
    const Mm numbers = num2cell(colon(1.0, cells));
    row(
        "save of a cell of 1e5 numbers", bench::times_native(2), [&] { save(ours.value, (CL(numbers))); },
        [&] { write_records(other.text.c_str()); });
    save(ours.value, (CL(numbers)));
    write_records(other.text.c_str());
    row(
        "load of a cell of 1e5 numbers", bench::times_native(2), [&] { keep(load(ours.value)); },
        [&] { read_records(other.text.c_str()); });
}

} // namespace

void bench::matfile_rows() {
    heading("MAT-files");
    const Mm x = randM(m, m);
    const Name ours, native_file;
    std::vector<double> out(n);
    row(
        "saveV4 of 1000 x 1000", limit, [&] { saveV4(ours.value, (CL(x))); },
        [&] { native::write_doubles(native_file.text.c_str(), n, x.addr()); });
    row(
        "save of 1000 x 1000", limit, [&] { save(ours.value, (CL(x))); },
        [&] { native::write_doubles(native_file.text.c_str(), n, x.addr()); });
    saveV4(ours.value, (CL(x)));
    native::write_doubles(native_file.text.c_str(), n, x.addr());
    row(
        "load of 1000 x 1000, level 4", limit, [&] { keep(load(ours.value)); },
        [&] { native::read_doubles(native_file.text.c_str(), n, out.data()); });
    save(ours.value, (CL(x)));
    row(
        "load of 1000 x 1000, level 5", limit, [&] { keep(load(ours.value)); },
        [&] { native::read_doubles(native_file.text.c_str(), n, out.data()); });
    for (const Mm &shape : {x, reshape(x, n, 1)}) {
        const std::string what = shape.cols() == 1 ? "1e6 x 1" : "1000 x 1000";
        row(
            "saveascii of " + what, bench::times_native(1.5), [&] { saveascii(ours.value, (CL(shape))); },
            [&] { native::print_doubles(native_file.text.c_str(), n, shape.addr()); });
        saveascii(ours.value, (CL(shape)));
        row(
            "load of " + what + " as text", bench::times_native(1.5), [&] { keep(load(ours.value)); },
            [&] { keep(native::scan_doubles(ours.text.c_str(), n, out.data())); });
    }
    cell_rows();
}
