// Formatted text to files and the console and back; what fscanf takes from a stream, beside C's fscanf.
#include <cstdio>
#include <cstring>

#include "files/file_table.h"
#include "files/folder.h"

using namespace test;

namespace {

Mm T(const char *text) { return TM(text); }
Mm list(const std::vector<Mm> &values) { return cell_of(1, static_cast<int>(values.size()), values); }

using Fprintf = Folder;
using Fscanf = Folder;

std::FILE *stream_of(const Mm &fid) { return kn::fid_stream(static_cast<int>(scalar(fid))); }

TEST_F(Fprintf, to_files_and_the_console) {
    const Mm file = fopen(T("f"), T("w"));
    fprintf(file, T("%d,"), list({row({1, 2}), 3}));
    fprintf(file, T("5%%\\n"));
    fprintf(file, T("%d%%"), cell(0.0, 0.0));
    fclose(file);
    EXPECT_EQ(bytes("f"), "1,2,3,5%\n%d%%");

    EXPECT_PRINTS(fprintf(1, T("%d|"), list({row({1, 2})})), "1|2|");
    EXPECT_PRINTS(fprintf(T("%d %s|"), 5, list({T("a")})), "5 a");
    EXPECT_PRINTS(fprintf(T("a%%%d")), "");
    for (double nowhere : {0.0, -1.0, -3e10}) EXPECT_PRINTS(fprintf(nowhere, T("x")), "");
}

TEST_F(Fprintf, errors) {
    EXPECT_RAISES(fprintf(55, T("x")), "Fid not opened.");
    EXPECT_RAISES(fscanf(1, T("%d")), "fscanf: Illegal fid.");
    EXPECT_RAISES(fprintf(1, T("%9999999d"), 1), "sprintf: field width 9999999 is too large");
    Returning errors;
    EXPECT_PRINTS(fprintf(1, T("%d "), list({1, list({2}), 3})), "1 ");
    Mm a, count, msg;
    fscanf(55, T("%d"), i_o, a, count, msg);
    for (const Mm &m : {a, count, msg}) EXPECT_SAME(m, x_M);
    EXPECT_EQ(errors.errors().size(), 2u);
}

TEST_F(Fscanf, reads_on_behind_what_it_took) {
    const std::string word(40000, 'w');
    const Mm file = reading("1 2.5\n3;4 x=7 " + word + " 8");
    EXPECT_SAME(fscanf(file, T("%f"), 2), col({1, 2.5}));
    EXPECT_SAME(fscanf(file, T("%d;%d")), col({3, 4})) << "up to the x";
    EXPECT_SAME(fscanf(file, T("x=%d"), 1), Mm(7.0));
    Mm a, count;
    fscanf(file, T("%s"), 1, i_o, a, count);
    EXPECT_SAME(count, Mm(40000.0));
    EXPECT_EQ(a.isstr(), 1);
    EXPECT_EQ(std::ftell(stream_of(file)), 14 + 40000);
    EXPECT_SAME(fscanf(file, T("%d\\n")), Mm(8.0));
    EXPECT_TRUE(std::feof(stream_of(file)));
    for (const char *format : {"", "\\n", "x", "%n", "%*d"}) {
        EXPECT_LE(fscanf(reading("abc"), T(format)).size(), 1) << "and it ends";
    }
}

TEST_F(Fscanf, takes_what_C_takes) {
    Random random(35);
    const auto text_of = [&](const char *alphabet) {
        std::string text;
        for (int k = random.below(12); k > 0; --k)
            text += alphabet[random.below(static_cast<int>(std::strlen(alphabet)))];
        return text;
    };
    const char *const prefixes[] = {"", "0", " ", ",", ";", "0 ", ",0", "%%", "%%0", " %%,", "%%%% ", "0%%;"};
    const char *const alphabets[] = {"0011 5x.eE+- \nf%;,", "inafty 0xp1%,", "00x1Xp.-naif89"};
    for (int round = 0; round < 8000; ++round) {
        const std::string text = text_of(alphabets[random.below(3)]);
        const std::string format = prefixes[random.below(3) ? 0 : random.below(12)];
        const char letter = "dioxugs"[random.below(7)];
        const std::string width = random.below(2) ? std::to_string(1 + random.below(5)) : "";
        const Mm file = reading(text);
        const kn::Stream same(kn::io::opened(
            text.empty() ? std::tmpfile() : fmemopen(const_cast<char *>(text.data()), text.size(), "r")));
        const std::string ours = format + "%" + width + letter,
                          c = letter == 's' ? ours : format + "%" + width + "l" + letter;
        char word[32] = "";
        double x = 0;
        long n = 0;
        void *const to = letter == 's' ? word : letter == 'g' ? static_cast<void *>(&x) : &n;
        const int read = std::fscanf(same.get(), c.c_str(), to);
        const Mm wanted = letter == 's' ? T(word) : read < 1 ? M({}) : letter == 'g' ? x : double(n);
        EXPECT_SAME(fscanf(file, T(ours.c_str()), 1), wanted) << text << " by " << ours;
        if (read == 1) {
            EXPECT_EQ(std::ftell(stream_of(file)), std::ftell(same.get())) << text << " by " << ours;
        }
        fclose(file);
    }
}

} // namespace
