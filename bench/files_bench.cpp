// Files: blocks of numbers, and lines.

#include <string>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::keep;
using bench::row;

constexpr int n = 10000000, lines = 1000000;
const bench::Limit limit = bench::times_native(1.3);

// A file that is there for a scope.
struct File {
    Mm name = tempname();
    std::string text;

    File() : text(static_cast<size_t>(name.size()), ' ') {
        for (int k = 0; k < name.size(); ++k)
            text[static_cast<size_t>(k)] = static_cast<char>(name.addr()[k]);
    }
    ~File() { deleteM(name); }

    void write(const Mm &x, const char *precision) const {
        Mm f = fopen(name, TM("w"));
        fwrite(f, x, TM(precision));
        fclose(f);
    }
    void read(const char *precision) const {
        Mm f = fopen(name);
        keep(fread(f, double(n), TM(precision)));
        fclose(f);
    }
};

void number_rows() {
    const Mm x = colon(1.0, n) / 1000.0, half = colon(1.0, n / 2) / 1000.0;
    std::vector<double> out(n);
    std::vector<short> work(n);
    File file;
    const char *name = file.text.c_str();
    row(
        "fwrite of 1e7 doubles", limit, [&] { file.write(x, "double"); },
        [&] { native::write_doubles(name, n, x.addr()); });
    file.write(x, "double");
    row(
        "fread of 1e7 doubles", limit, [&] { file.read("double"); },
        [&] { native::read_doubles(name, n, out.data()); });
    row(
        "fwrite of 1e7 doubles as int16", limit, [&] { file.write(x, "int16"); },
        [&] { native::write_shorts(name, n, x.addr(), work.data()); });
    row(
        "fwrite of 5e6 int16 with gaps of 2 bytes", bench::times_native(2),
        [&] {
            Mm f = fopen(file.name, TM("w"));
            fwrite(f, half, TM("int16"), 2.0);
            fclose(f);
        },
        [&] { native::write_shorts_apart(name, n / 2, half.addr(), work.data()); });
    file.write(x, "int16");
    row(
        "fread of 1e7 int16", limit, [&] { file.read("int16"); },
        [&] { native::read_shorts(name, n, work.data(), out.data()); });
}

void line_rows() {
    File file;
    std::string text;
    for (int k = 0; k < lines; ++k) text += "line number " + std::to_string(k) + " of a text\n";
    file.write(TM(text.c_str()), "uchar");
    row(
        "fgetl of 1e6 lines", bench::times_native(2),
        [&] {
            Mm f = fopen(file.name), line(i_o, "line", 0);
            for (line = fgetl(f); line.isstr(); line = fgetl(f)) keep(line);
            fclose(f);
        },
        [&] { keep(native::read_lines(file.text.c_str())); });
}

} // namespace

void bench::file_rows() {
    heading("Files");
    number_rows();
    line_rows();
}
