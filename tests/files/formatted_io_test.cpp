// Formatted text to files and the console and back; what fscanf takes from a stream, beside C's fscanf.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "files/file_table.h"
#include "support/support.h"

using namespace test;

namespace {

Mm T(const char *text) { return TM(text); }
Mm list(const std::vector<Mm> &values) { return cell_of(1, static_cast<int>(values.size()), values); }

// A temporary file with a text, open under a fid.
class File {
  public:
    explicit File(const std::string &text = "") : stream_(std::tmpfile()) {
        std::fwrite(text.data(), 1, text.size(), stream_);
        std::rewind(stream_);
        kn::Stream owner(stream_);
        kn::count_open(1);
        fid = kn::fid_store(owner, "temporary", "w+b", kn::native_format);
    }
    ~File() { kn::fid_close(fid); }
    std::string text() const {
        std::string all(10000, '\0');
        std::rewind(stream_);
        all.resize(std::fread(all.data(), 1, all.size(), stream_));
        return all;
    }
    std::FILE *stream() const { return stream_; }
    int fid;

  private:
    std::FILE *stream_;
};

TEST(Fprintf, to_files_and_the_console) {
    File file;
    fprintf(file.fid, T("%d,"), list({row({1, 2}), 3}));
    fprintf(file.fid, T("5%%\\n"));
    fprintf(file.fid, T("%d%%"), cell(0.0, 0.0));
    EXPECT_EQ(file.text(), "1,2,3,5%\n%d%%");

    EXPECT_PRINTS(fprintf(1, T("%d|"), list({row({1, 2})})), "1|2|");
    EXPECT_PRINTS(fprintf(2, T("%s"), T("err")), "err");
    EXPECT_PRINTS(fprintf(T("%d %s|"), 5, list({T("a")})), "5 a");
    EXPECT_PRINTS(fprintf(T("%s\\n"), T("text")), "text\n");
    EXPECT_PRINTS(fprintf(T("a%%%d")), "");
    EXPECT_PRINTS(printf(T("100%%\\n")), "100%\n");
    EXPECT_PRINTS(printf(T("%g "), row({1.5, 2})), "1.5 2 ");
    for (double nowhere : {0.0, -1.0, -3e10}) EXPECT_PRINTS(fprintf(nowhere, T("x")), "");

    // By name, with the arguments side by side.
    Mm out;
    Mm *const one[] = {&out};
    EXPECT_PRINTS(kn_call_function("fprintf", list({T("%d%%\\n")}), 0, one), "");
    EXPECT_PRINTS(kn_call_function("fprintf", list({1, T("%d-%s\\n"), 5, T("b")}), 0, one), "5-b");
    EXPECT_PRINTS(kn_call_function("printf", list({T("1%%")}), 0, one), "1%");
    kn_call_function("sprintf", list({T("%d,%d"), 1, 2}), 1, one);
    EXPECT_SAME(out, T("1,2"));
    kn_call_function("sprintf", list({T("%d")}), 1, one);
    EXPECT_SAME(out, T("%d"));
}

TEST(Fprintf, errors) {
    EXPECT_RAISES(fprintf(55, T("x")), "Fid not opened.");
    EXPECT_RAISES(fprintf(500, T("x")), "Illegal fid.");
    EXPECT_RAISES(fprintf(row({1, 2}), T("x")), "Size of fid (temporary) not one.");
    EXPECT_RAISES(fscanf(1, T("%d")), "fscanf: Illegal fid.");
    EXPECT_RAISES(fprintf(1, T("%9999999d"), 1), "sprintf: field width 9999999 is too large");
    Returning errors;
    EXPECT_PRINTS(fprintf(1, T("%d "), list({1, list({2}), 3})), "1 ");
    Mm a, count, msg;
    fscanf(55, T("%d"), i_o, a, count, msg);
    for (const Mm &m : {a, count, msg}) EXPECT_SAME(m, x_M);
    EXPECT_EQ(errors.errors().size(), 2u);
}

TEST(Fscanf, reads_on_behind_what_it_took) {
    const std::string word(40000, 'w');
    File file("1 2.5\n3;4 x=7 " + word + " 8");
    EXPECT_SAME(fscanf(file.fid, T("%f"), 2), col({1, 2.5}));
    EXPECT_SAME(fscanf(file.fid, T("%d;%d")), col({3, 4})) << "up to the x";
    EXPECT_SAME(fscanf(file.fid, T("x=%d"), 1), Mm(7.0));
    Mm a, count;
    fscanf(file.fid, T("%s"), 1, i_o, a, count);
    EXPECT_SAME(count, Mm(40000.0));
    EXPECT_EQ(a.isstr(), 1);
    EXPECT_EQ(std::ftell(file.stream()), 14 + 40000);
    EXPECT_SAME(fscanf(file.fid, T("%d\\n")), Mm(8.0));
    EXPECT_TRUE(std::feof(file.stream()));
    for (const char *format : {"", "\\n", "x", "%n", "%*d"}) {
        File other("abc");
        EXPECT_LE(fscanf(other.fid, T(format)).size(), 1) << "and it ends";
    }
}

TEST(Fscanf, takes_what_C_takes) {
    Random random(35);
    const auto text_of = [&](const char *alphabet) {
        std::string text;
        for (int k = random.below(12); k > 0; --k)
            text += alphabet[random.below(static_cast<int>(std::strlen(alphabet)))];
        return text;
    };
    for (int round = 0; round < 4000; ++round) {
        const std::string text = text_of(random.below(2) ? "0011 5x.eE+- \nf%;," : "inafty 0xp1%,");
        std::string format = random.below(3) ? "" : text_of("0 ,;%%").substr(0, 3);
        while (!format.empty() && format.back() == '%') format.pop_back();
        for (size_t k = 0; k < format.size(); ++k) // percent signs in twos, no letter behind them
            if (format[k] == '%') format.insert(k++, "%");
        const char letter = "dioxugs"[random.below(7)];
        const std::string width = random.below(2) ? std::to_string(1 + random.below(5)) : "";
        File file(text), same(text);
        const std::string c = format + "%" + width + (letter == 's' ? "" : "l") + letter;
        char word[32] = "";
        double x = 0;
        long n = 0;
        int read;
        if (letter == 's')
            read = std::fscanf(same.stream(), c.c_str(), word);
        else if (letter == 'g')
            read = std::fscanf(same.stream(), c.c_str(), &x);
        else
            read = std::fscanf(same.stream(), c.c_str(), &n);
        const Mm wanted = letter == 's'   ? T(word)
                          : read < 1      ? M({})
                          : letter == 'g' ? x
                                          : static_cast<double>(n);
        const std::string ours = format + "%" + width + letter;
        EXPECT_SAME(fscanf(file.fid, T(ours.c_str()), 1), wanted) << text << " by " << ours;
        if (read == 1) {
            EXPECT_EQ(std::ftell(file.stream()), std::ftell(same.stream())) << text << " by " << ours;
        }
    }
}

} // namespace
