// The message funnel with its standard handlers, the language's words about messages, and the validators.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "platform/platform.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

std::string shown; // what the dialogs and, between them, the print handler were handed
void record_box(const char *text, const char *title, unsigned style) {
    shown += "[" + std::string(title) + " " + std::to_string(style) + ": " + text + "]";
}
void record_print(const char *text) { shown += text; }

// Standard handlers, with recorded dialogs and prints; the state of the funnel is put back.
class Messages : public testing::Test {
  protected:
    Messages() {
        kn_set_warning_handler(nullptr);
        kn_set_print_handler(record_print);
        shown.clear();
    }
    ~Messages() override {
        kn_default_error_flags = 7;
        kn_default_warning_flags = 0;
        warning(0, "forget the line");
        kn_default_warning_flags = 3;
        kn_set_error_source(nullptr, nullptr);
        kn_error_stack.depth = 0;
        lasterr();
        kn_set_message_box_handler(old_box);
        kn_set_print_handler(nullptr);
        kn_set_error_handler(old_error);
    }
    static void push(const char *file, int line) {
        int k = ++kn_error_stack.depth;
        kn_error_stack.file[k] = file;
        kn_error_stack.line[k] = line;
    }
    // The text that `error` throws.
    template <class F> static std::string thrown(F work) {
        kn_set_default_error_flags(16, 1);
        std::string text = "(nothing)";
        try {
            work();
        } catch (const char *caught) {
            text = caught;
        }
        kn_set_default_error_flags(16, 0);
        return text;
    }

  private:
    const kn_text_handler old_error = kn_set_error_handler(nullptr);
    const kn_box_handler old_box = kn_set_message_box_handler(record_box);
};

// -- Handlers and flags.

std::string handled;
template <char mark> void handler(const char *text) { handled += mark + std::string(text); }

TEST_F(Messages, each_entry_point_formats_for_its_handler) {
    kn_set_error_handler(handler<'e'>);
    kn_set_warning_handler(handler<'w'>);
    kn_set_message_handler(handler<'m'>);
    kn_set_logmessage_handler(handler<'l'>);
    error("%s %d.", "one", 1), warning("%s %d.", "two", 2), message("%g.", 0.5), logmessage("%%.");
    error(3, "%d.", 4), warning(5, "%c.", 'x');
    EXPECT_EQ(handled, "eone 1.wtwo 2.m0.5.l%.e4.wx.");
    EXPECT_EQ(kn_set_error_handler(nullptr), handler<'e'>);
    EXPECT_EQ(kn_set_warning_handler(nullptr), handler<'w'>);
    kn_set_message_handler(nullptr), kn_set_logmessage_handler(nullptr);
    EXPECT_TRUE(kn_was_handler_set());
}

// -- Errors.

TEST_F(Messages, a_thrown_error_stays_pending_until_it_is_fetched) {
    EXPECT_EQ(thrown([] { error("a/b %d", 7); }), "a/b 7");
    EXPECT_EQ(shown, "");
    EXPECT_SAME(lasterr(), TM("error: a/b 7\n"));
    EXPECT_EQ(lasterr().size(), 0);
}

TEST_F(Messages, an_error_ends_the_process_with_status_1) {
    auto die = [] {
        kn_set_print_handler([](const char *text) { std::fputs(text, stderr); });
        kn_set_message_box_handler([](const char *text, const char *title, unsigned style) {
            std::fprintf(stderr, "%s|%s|%u", title, text, style);
        });
        push("dir/prog.m", 3);
        error("no file a/b");
        std::_Exit(0);
    };
    EXPECT_EXIT(die(), testing::ExitedWithCode(1),
                "^error: no file a\\\\b\ncalled from dir\\\\prog\\.m 3\n\n"
                "Problem\\|error: no file a\\\\b\ncalled from dir\\\\prog\\.m 3\n\\|48$");
}

#ifndef _WIN32
TEST_F(Messages, without_windows_a_dialog_writes_what_was_not_printed) {
    kn_set_message_box_handler(nullptr);
    kn_default_error_flags = 2;
    testing::internal::CaptureStderr();
    warning("printed");
    kn_default_warning_flags = 2;
    warning("w"), message("m");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Problem: warning: w\n\n\nMessage: m\n");
}
#endif

TEST_F(Messages, shown_errors_break_at_the_first_blank_behind_column_64) {
    kn_default_error_flags = 1;
    auto wrapped = [](const std::string &text) {
        shown.clear();
        lasterr(TM(text.c_str()));
        error_lasterr();
        return shown;
    };
    std::string x63(63, 'x'), x64(64, 'x'), x200(200, 'x');
    EXPECT_EQ(wrapped(x63 + " a b"), x63 + " a\nb\n");
    EXPECT_EQ(wrapped(x64 + " a b"), x64 + "\na b\n");
    EXPECT_EQ(wrapped(x200 + " " + x63 + " " + x63 + " y"), x200 + "\n" + x63 + " " + x63 + "\ny\n");
}

TEST_F(Messages, the_call_stack_is_shown_from_within_and_bounded) {
    error_lasterr();
    EXPECT_EQ(shown, "Aborted!\n\n[Problem 48: Aborted!\n]");
    shown.clear();
    push("outer.m", 4);
    push("inner.m", 0);
    lasterr(TM("mine\n"));
    kn_default_error_flags = 1;
    error_lasterr();
    EXPECT_EQ(shown, "mine\ncalled from inner.m\ncalled from outer.m 4\n\n");

    const std::string name(700, 'n');
    while (kn_error_stack.depth < 512) push(kn_error_stack.depth == 511 ? nullptr : name.c_str(), 512);
    kn_error_stack.depth = 100000;
    char buf[2048] = "text\n";
    error_call_stack(buf);
    EXPECT_EQ(std::strncmp(buf, "text\ncalled from  512\ncalled from nnn", 36), 0) << buf;
    EXPECT_LE(std::strlen(buf), 2047u);
}

TEST_F(Messages, line_forms_quote_the_source_line) {
    const char *const lines = "a = 1\n\t b = 2\r\nc = 3";
    const std::tuple<const char *, int, const char *> table[] = {
        {lines, 2, "b = 2"}, {lines, 9, "c = 3"}, {nullptr, 3, ""}};
    kn_default_warning_flags = 1;
    for (const auto &[text, line, quoted] : table) {
        kn_set_error_source("prog.m", text);
        const std::string wanted = "Error prog.m " + std::to_string(line) + ": '" + quoted + "'\nbad 7\n\n";
        thrown([at = line] { error(at, "bad %d", 7); });
        EXPECT_SAME(lasterr(), TM(wanted.c_str()));
        shown.clear();
        warning(line, "bad %d", 7);
        EXPECT_EQ(shown, wanted);
    }
    thrown([] { error("plain"); });
    EXPECT_SAME(lasterr(), TM("Error prog.m 3: ''\nplain\n\n")) << "a line once set stays";
    const std::string long_text(6000, 'y');
    kn_set_error_source(long_text.c_str(), long_text.c_str());
    thrown([] { error(1, "bad"); });
    EXPECT_EQ(lasterr().size(), 2047);
}

// -- The other default handlers.

TEST_F(Messages, default_handlers_by_flags) {
    warning("w"), message("m"), logmessage("l");
    EXPECT_EQ(shown, "warning: w\n\n[Problem 48: warning: w\n\n][Message 0: m]m\nl\n");
    shown.clear();
    kn_set_default_error_flags(7 | 16, 0), kn_set_default_warning_flags(1 | 2, 0);
    EXPECT_EQ(kn_default_error_flags + kn_default_warning_flags, 0u);
    warning("w"), message("m"), error_lasterr();
    EXPECT_EQ(shown, "");
    testing::internal::CaptureStdout();
    kn_default_debug('s', "name"), kn_default_print("text"), kn_default_print(nullptr);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "DEBUG:s name\ntext");
}

// -- The language's words.

TEST_F(Messages, error_and_warning_of_values) {
    const std::string text(3000, 'x');
    EXPECT_EQ(thrown([&] { error(TM(("100% %s" + text).c_str())); }), "100% %s" + text.substr(0, 2040));
    test::Warnings warnings;
    for (const char *w : {"off", "on", "%d?", text.c_str()}) warning(TM(w));
    EXPECT_EQ(warnings.texts(), (std::vector<std::string>{"%d?", text.substr(0, 1024)}));
    EXPECT_SAME(warning(), TM("on"));
    lasterr(TM("mine"));
    EXPECT_RAISES(lasterr(named("c", test::cell_of(1, 1, {1.0}))),
                  "lasterr: numeric data expected, but matrix c is not");
    EXPECT_SAME(lasterr(), TM("mine"));
}

TEST_F(Messages, position_of_the_innermost_entry) {
    EXPECT_SAME(mfilename(), TM("unknown"));
    push("a/b.c/prog.tar.m", 7);
    EXPECT_SAME(mfilename(), TM("prog"));
    EXPECT_SAME(mfileline(), Mm(7.0));
    kn_error_stack.depth = -1;
    EXPECT_SAME(mfilename(), TM("unknown"));
}

// -- Validators.

TEST(Validators, of_counts) {
    const std::tuple<int, int, const char *> counts[] = {
        {0, 9, "Too few (0<1) outputs for f"}, // counted first
        {3, 9, "Too many (3>2) outputs for f"},
        {1, 0, "Too few (0<1) inputs for f"},
        {1, 3, "Too many (3>2) inputs for f"},
        {1, 1, "(no error)"}};
    for (auto [outputs, inputs, text] : counts)
        EXPECT_RAISES(validate_narg("f", outputs, inputs, 1, 2, 1, 2), text);
    EXPECT_RAISES(error_input("f", 0), "f does not accept 0 inputs");
}

} // namespace
