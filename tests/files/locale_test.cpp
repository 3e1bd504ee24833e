// Numbers and letters are the same whatever locale the program has chosen: one with a decimal comma in which
// the small letter of I is none of ASCII.
#include <clocale>
#include <cstdlib>

#include "files/folder.h"

namespace {

using test::row;

class Locale : public test::Folder {
  protected:
    // All that makes text of numbers, or numbers of text.
    static Mm answers() {
        const Mm x = row({1.5, -2.25e-30, 1e300, 123456.789});
        put("text.txt", "+1.5 0x1.8p1 Inf\n2 3.5 4");
        saveascii(TM("ascii"), (CL(x)));
        Mm told = (CL(num2str(x)), mat2str(x), version(), datestr(730000.75, 0), datenum(TM("1.7.2001")),
                   datenum(TM("12-FRI-JAN-2001 10:30:12.5")), upper(TM("i\xe9")), lower(TM("I")),
                   isletter(TM("\xe9")), isspace(TM("\xa0")), vbload(TM("text.txt")),
                   TM(bytes("ascii").c_str()), fscanf(fopen(TM("text.txt")), TM("%f")));
        for (const char *format : {"%6.2f", "%g ", "%010.3e", "%+G", "%#g"})
            told = (CL(told), sprintf(TM(format), x));
        for (const char *text : {"1.5", "0x1.8p1", "1.5 + 2.5i", "+INFINITY"})
            told = (CL(told), str2num(TM(text)), str2double(TM(text)), sscanf(TM(text), TM("%f")));
        fclose(TM("all"));
        return told;
    }
};

TEST_F(Locale, has_no_say) {
#ifdef __linux__
    const std::string make = "localedef -i tr_TR -f ISO-8859-9 '" + home() + "/tr_TR' >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0) GTEST_SKIP() << "no localedef with the sources of tr_TR";
    kn::os::set_environment("LOCPATH", home().c_str());
    const char *name = "tr_TR";
#else
    const char *name = "tr-TR";
#endif
    const Mm wanted = answers();
    ASSERT_NE(std::setlocale(LC_ALL, name), nullptr);
    const std::string comma = std::localeconv()->decimal_point;
    const Mm got = answers();
    const std::string after = std::localeconv()->decimal_point;
    std::setlocale(LC_ALL, "C");
    kn::os::set_environment("LOCPATH", nullptr);
    EXPECT_EQ(comma, ",");
    EXPECT_EQ(after, ",") << "the program keeps its locale";
    EXPECT_SAME(got, wanted);
}

} // namespace
