// The commands of an interactive host, as a host gives them: numbers and addresses.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/recording_engine.h"
#include "support/support.h"
#include "value/header.h"

using test::row;

namespace {

template <class F> intptr_t at(F *f) { return reinterpret_cast<intptr_t>(f); }

// What a command prints.
std::string shown(int command, intptr_t a, intptr_t b) {
    return test::printed([&] { ive_do(command, a, b); });
}

// What it writes into its buffer; the rest stays as it was.
std::string written(int command, intptr_t a, size_t size) {
    std::string buffer(size, '~');
    buffer += "guard";
    ive_do(command, a, at(buffer.data()));
    EXPECT_EQ(buffer.substr(size), "guard") << command;
    return buffer.c_str();
}

class Host : public testing::Test {
  protected:
    Host() { ive_do(0, 0, 0); }
    ~Host() override {
        kn_interactive_flag = 0;
        for (int command : {12, 20, 25}) ive_do(command, 0, 0);
        ive_do(4, 0, 0);
        ive_do(4, 0, at("global"));
    }
};

TEST_F(Host, variables_by_position_and_name) {
    variables_scope.begin();
    Mm x(i_o, "x", 0), t(i_o, "text_", 0), g(i_o, "g", 1);
    Mm object(i_o, "aNameThatIsLongerThanThirtyNineCharacters", 0);
    x = row({1, 2, 3}), t = TM("abc"), g = 7.5;
    object = mclass(test::struct_of({{"f", 1.0}}), TM("account"));
    EXPECT_EQ(ive_do(1, 0, 0), 3);
    EXPECT_EQ(written(2, 2, 40), "aNameThatIsLongerThanThirtyNineCharacte");
    EXPECT_EQ(written(10, 2, 40), "account");
    EXPECT_EQ(ive_do(10, 2, 0), 1);
    EXPECT_EQ(written(30, 0, 128), "7.5");
    EXPECT_EQ(ive_do(26, 0, at("text")), at(&t));
    EXPECT_EQ(ive_do(26, 0, at("g")), at(&g));
    EXPECT_EQ(shown(9, 0, at("global")), "g                      (1x1)=1 double elements real (8 bytes)\n");
    for (int command : {2, 10, 24, 29, 30}) {
        char buffer[128];
        for (intptr_t beyond : {intptr_t{99}, intptr_t{1} << 32})
            EXPECT_RAISES(ive_do(command, beyond, at(buffer)), "variable_scope: index out of range");
        test::Returning errors;
        EXPECT_EQ(ive_do(command, -1, at(buffer)), 0);
    }

    ive_do(4, 0, at("text"));
    EXPECT_EQ(shown(11, 0, 0).substr(0, 4), "x aN");
    EXPECT_SAME(t, TM("abc")) << "forgotten, not emptied";
    ive_do(4, 0, at("global"));
    EXPECT_EQ(ive_do(23, 0, 0), 0);
    ive_do(4, 0, 0);
    EXPECT_EQ(shown(11, 0, 0), "");
    variables_scope.end();
}

// ---- Handlers and hooks ----

std::string told;
void take_text(const char *text) { told += text; }
int take_command(const char *, int, char *, int) { return 0; }

TEST_F(Host, handlers_and_hooks) {
    const kn_text_handler print = kn_print_handler;
    told.clear();
    ive_do(16, 0, at(take_text));
    ive_do(15, 0, at(+[](int, const char *text) { told += text; }));
    ive_do(18, 0, at(+[] { return told += "key ", 1; }));
    ive_do(19, 0, at(+[] { told += "clear "; }));
    pauseM();
    ive_do(21, 0, 0);
    kn_debug_handler('s', "debug");
    ive_do(25, 0, at(take_command));
    EXPECT_EQ(kn_command_handler, take_command);
    for (int command = 15; command <= 19; ++command) ive_do(command, 0, 0);
    EXPECT_EQ(told, "key \nclear debug");
    EXPECT_EQ(kn_print_handler, kn_default_print);
    kn_set_print_handler(print);
}

TEST_F(Host, words_for_a_person) {
    const std::string directory = testing::TempDir() + "host words";
    std::filesystem::create_directories(directory + "/inner");
    for (const char *name : {"/b.m", "/a.m", "/c.txt"}) std::ofstream(directory + name) << "12345";
    kn_path_record *record = kn_new_path_record("");
    ive_do(20, 0, at(record));
    EXPECT_EQ(mpath_pointer, record);
    addpath(TM(directory.c_str()));
    char path[1024];
    ive_do(33, at(path), at("a"));
    EXPECT_EQ(path, directory + "/a.m");
    EXPECT_EQ(shown(14, 0, at((directory + "/*.m").c_str())), "a.m\nb.m\n");
    EXPECT_EQ(shown(31, 0, at("discrete Laplacian")), "del2                 discrete Laplacian\n");
    EXPECT_NE(shown(32, 0, at("")).find("\nnumel "), std::string::npos);
    kn_delete_path_record(record);

    const Mm listing = dir(TM(directory.c_str()));
    ASSERT_EQ(listing.size(), 6) << "with . and ..";
    EXPECT_SAME(Mm(listing(3).member("bytes")), Mm(5.0));
    const std::string lines = test::printed([&] { ls(TM((directory + "/?.txt").c_str())); });
    EXPECT_EQ(lines.substr(20), "            5  c.txt\n");
}

TEST_F(Host, the_engine_and_what_is_to_come) {
    test::RecordingEngine engine;
    SeloEngine *old = kn_set_engine(&engine);
    engine.calls.clear();
    ive_do(22, 0, 0);
    ive_do(38, 0, 0);
    ive_do(28, 3, 0);
    kn_set_engine(old);
    for (const char *call : {"application_handle", "application_key_handle", "quit 3"})
        EXPECT_NE(std::find(engine.calls.begin(), engine.calls.end(), call), engine.calls.end()) << call;
    const std::pair<int, const char *> later[] = {{5, "designer is not yet implemented"},
                                                  {27, "clear_mex is not yet implemented"},
                                                  {34, "figure_close is not yet implemented"}};
    for (auto [command, text] : later) EXPECT_RAISES(ive_do(command, 0, at("nobody")), text);
    for (int command : {-1, 7, 8, 39, 1000}) EXPECT_EQ(ive_do(command, 1, 1), 0);
}

// -- The poll hook.

int asked;

TEST(PollHook, interrupts_long_calls_whatever_the_handlers_do) {
    const Mm x = randM(3000, 3000), words = cell(1, 1000);
    for (int k = 1; k <= 1000; ++k) words.mr(k) = TM("word");
    const std::function<Mm()> long_calls[] = {
        [&] { return sin(x); },       [&] { return log(x); }, // on what may be complex
        [&] { return median(x); },    [&] { return sprintf(TM("%g"), x); },
        [&] { return upper(words); }, [&] { return disp(x); },
        [] { return pauseM(); },
    };
    kn_poll_hook const hooks[] = {[] { return ++asked; }, [] { return ++asked ? throw "Ctrl-C" : 0; }};
    for (const auto &call : long_calls)
        for (kn_poll_hook hook : hooks) {
            SCOPED_TRACE(&call - long_calls);
            asked = 0;
            kn::os::pause_milliseconds(30);
            test::Returning errors;
            kn_poll_handler = hook;
            kn_set_kbhit_handler([] { return 0; });
            try {
                EXPECT_TRUE(kn::same_block(call(), x_M));
                EXPECT_EQ(errors.errors(), std::vector<std::string>{"Interrupted"});
            } catch (const char *text) {
                EXPECT_STREQ(text, "Ctrl-C");
            }
            kn_poll_handler = nullptr;
            kn_set_kbhit_handler(nullptr);
            EXPECT_GE(asked, 1);
        }
}

} // namespace
