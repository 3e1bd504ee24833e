// Formatted output, input and waiting, with hooks in place of a user.
#include <cstdio>
#include <cstring>

#include "support/support.h"

using test::M;

namespace {

std::string reply;
int asked_size, polls;

void answer(char *buf, int size) {
    asked_size = size;
    std::strcpy(buf, reply.c_str());
}

class Console : public testing::Test {
  protected:
    void SetUp() override { kn_set_input_handler(answer); }
    void TearDown() override {
        kn_set_input_handler(nullptr);
        kn_set_kbhit_handler(nullptr);
    }
    test::Warnings warnings;
    Mm x;
};

TEST_F(Console, input_shows_the_prompt_and_reads_numbers) {
    reply = "1 2.5e1\n";
    EXPECT_PRINTS(x = input(TM("x? ")), "x? \n\n");
    EXPECT_SAME(x, M({{1, 25}}));
    EXPECT_EQ(asked_size, 2048);
    reply = "yes no";
    EXPECT_PRINTS(x = input(TM("?")), "?\n\n");
    EXPECT_SAME(x, M({{0, 0}}));
    EXPECT_EQ(warnings.texts(), std::vector<std::string>{"input: text is non-numeric, use input(...,'s')"});
    reply = " a line\nmore";
    EXPECT_PRINTS(x = input(TM("?"), TM("s")), "?\n\n");
    EXPECT_SAME(x, TM(" a line"));
    reply = "ctrl_c_event";
    test::printed([] { EXPECT_RAISES(input(TM("?")), "Ctrl-C"); });
}

TEST_F(Console, hooks_are_called_until_null_restores_the_default) {
    kn_kbhit_hook standard = kn_kbhit_handler, mine = [] { return static_cast<int>(++polls == 3); };
    EXPECT_EQ(kn_set_kbhit_handler(mine), standard);
    EXPECT_PRINTS(pauseM(), "\n");
    EXPECT_EQ(polls, 3);
    EXPECT_EQ(kn_set_kbhit_handler(nullptr), mine);
    ASSERT_TRUE(std::freopen("/dev/null", "r", stdin));
    EXPECT_PRINTS(pauseM(), "pause: standard input is no terminal, so there is no key to wait for\n");
}

TEST_F(Console, printed_words) {
    std::string longer(20000, 'y');
    int n = 0;
    EXPECT_PRINTS(n = kn_printf("%s", longer.c_str()), longer.substr(0, 2 + 16381));
    EXPECT_EQ(n, 2 + 16381);
    EXPECT_PRINTS(usage(TM("f(x)")), "Usage: f(x)\n");
    EXPECT_PRINTS(smiley(), "8-)\n");
}

} // namespace
