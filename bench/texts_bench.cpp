// Texts: replacement of parts, and conversion of texts to numbers.

#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

void replace_row() {
    std::string text;
    while (text.size() < 1000000) text += "a line of words, some of which are to be replaced by others\n";
    const Mm s = TM(text.c_str()), old = TM("which"), now = TM("that");
    std::vector<double> out(static_cast<size_t>(s.size()));
    bench::row(
        "strrep in 1e6 characters", bench::times_native(2), [&] { bench::keep(strrep(s, old, now)); },
        [&] {
            bench::keep(native::replace(s.size(), s.addr(), old.size(), old.addr(), now.size(), now.addr(),
                                        out.data()));
        });
}

// The native side has the texts as bytes already, and its numbers in place.
void number_row() {
    constexpr int n = 10000;
    std::vector<std::string> texts;
    std::vector<double> out(n);
    Mm list = cell(1.0, double(n));
    for (int k = 0; k < n; ++k) {
        char text[32];
        std::snprintf(text, sizeof text, "%.6g", k * 0.37 - 1000);
        texts.push_back(text);
        list.mr(k + 1) = TM(text);
    }
    bench::row(
        "str2double of 1e4 texts", bench::times_native(4), [&] { bench::keep(str2double(list)); },
        [&] {
            for (int k = 0; k < n; ++k) {
                const std::string &text = texts[static_cast<size_t>(k)];
                std::from_chars(text.data(), text.data() + text.size(), out[static_cast<size_t>(k)]);
            }
            bench::keep(out);
        });
}

} // namespace

void bench::text_rows() {
    heading("Texts");
    replace_row();
    number_row();
}
