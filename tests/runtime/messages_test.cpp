// The message funnel with its standard handlers, the language's words about messages, and the validators.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/header.h"
#include "platform/platform.h"
#include "support/support.h"

using test::M;
using test::named;
using test::nd;
using test::printed;

namespace {

std::string shown; // what the dialogs and, between them, the print handler were handed
void record_box(const char *text, const char *title, unsigned style) {
    shown += "[" + std::string(title) + " " + std::to_string(style) + ": " + text + "]";
}
void record_print(const char *text) { shown += text; }

// Standard handlers, with recorded dialogs and prints; the state of the funnel is put back.
class Messages : public testing::Test {
  protected:
    void SetUp() override {
        old_error = kn_set_error_handler(nullptr);
        kn_set_warning_handler(nullptr);
        kn_set_print_handler(record_print);
        old_box = kn_set_message_box_handler(record_box);
        shown.clear();
    }
    void TearDown() override {
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
    kn_text_handler old_error = nullptr;
    kn_box_handler old_box = nullptr;
};

std::string text_of(const Mm &m) { return std::string(m.addr(), m.addr() + m.getnnz()); }

// -- Handlers and flags.

std::string handled;
template <char mark> void handler(const char *text) { handled += mark + std::string(text); }

TEST_F(Messages, each_entry_point_formats_for_its_handler) {
    handled.clear();
    kn_text_handler old_error = kn_set_error_handler(handler<'e'>);
    kn_set_warning_handler(handler<'w'>);
    kn_set_message_handler(handler<'m'>);
    kn_set_logmessage_handler(handler<'l'>);
    error("%s %d.", "one", 1), warning("%s %d.", "two", 2), message("%g.", 0.5), logmessage("%%.");
    error(3, "%d.", 4), warning(5, "%c.", 'x');
    EXPECT_EQ(handled, "eone 1.wtwo 2.m0.5.l%.e4.wx.");
    EXPECT_EQ(kn_set_error_handler(old_error), handler<'e'>);
    EXPECT_EQ(kn_set_warning_handler(nullptr), handler<'w'>);
    EXPECT_EQ(kn_set_warning_handler(nullptr), kn_default_warning);
    EXPECT_EQ(kn_set_message_handler(nullptr), handler<'m'>);
    EXPECT_EQ(kn_set_logmessage_handler(nullptr), handler<'l'>);
    EXPECT_EQ(kn_set_debug_handler(nullptr), kn_default_debug);
    EXPECT_EQ(kn_set_print_handler(nullptr), record_print);
    EXPECT_EQ(kn_print_handler, kn_default_print);
    EXPECT_TRUE(kn_was_handler_set());
}

TEST_F(Messages, flags_are_set_and_cleared_by_mask) {
    EXPECT_EQ(kn_default_error_flags, 7u);
    EXPECT_EQ(kn_default_warning_flags, 3u);
    kn_set_default_error_flags(16 | 1, 1);
    EXPECT_EQ(kn_default_error_flags, 23u);
    kn_set_default_error_flags(16 | 2, 0);
    EXPECT_EQ(kn_default_error_flags, 5u);
    kn_set_default_warning_flags(2, 0);
    EXPECT_EQ(kn_default_warning_flags, 1u);
    kn_set_default_warning_flags(2, 42);
    EXPECT_EQ(kn_default_warning_flags, 3u);
}

TEST_F(Messages, long_texts_are_cut) {
    std::string text(5000, 'x');
    EXPECT_EQ(thrown([&] { error("%s", text.c_str()); }), text.substr(0, 2047));
    EXPECT_EQ(lasterr().size(), 2047);
    warning("%s", text.c_str());
    EXPECT_EQ(shown.find_last_not_of("x]"), shown.find("warning: x", 10) + 8) << "cut in print and dialog";
}

// -- Errors.

TEST_F(Messages, a_thrown_error_stays_pending_until_it_is_fetched) {
    EXPECT_EQ(thrown([] { error("a/b %d", 7); }), "a/b 7");
    EXPECT_EQ(shown, "");
    EXPECT_SAME(lasterr(), TM("error: a/b 7\n"));
    EXPECT_EQ(lasterr().size(), 0);
    EXPECT_SAME(lasterr(TM("mine")), x_M);
    EXPECT_SAME(lasterr(), TM("mine"));
}

TEST_F(Messages, a_caught_text_can_be_reported_again) {
    auto again = [] {
        try {
            error("%s", "inner");
        } catch (const char *text) {
            error("outer: %s", text);
        }
    };
    EXPECT_EQ(thrown(again), "outer: inner");
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
    auto standard_error = [](auto work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(standard_error([] { warning("w"); }), "");
    EXPECT_EQ(shown, "warning: w\n\n");
    kn_default_warning_flags = kn_default_error_flags = 2;
    EXPECT_EQ(standard_error([] { warning("w"); }), "Problem: warning: w\n\n\n");
    EXPECT_EQ(standard_error([] { message("m"); }), "Message: m\n");
    EXPECT_EQ(standard_error([] { error_lasterr(); }), "Problem: Aborted!\n\n");
}
#endif

TEST_F(Messages, error_lasterr_shows_and_clears) {
    error_lasterr();
    EXPECT_EQ(shown, "Aborted!\n\n[Problem 48: Aborted!\n]");
    shown.clear();
    push("outer.m", 4);
    push("inner.m", 0);
    lasterr(TM("mine\n"));
    kn_default_error_flags = 1;
    error_lasterr();
    EXPECT_EQ(shown, "mine\ncalled from inner.m\ncalled from outer.m 4\n\n");
    EXPECT_EQ(lasterr().size(), 0);
}

TEST_F(Messages, shown_errors_break_at_the_first_blank_behind_column_64) {
    kn_default_error_flags = 1;
    auto wrapped = [](const std::string &text) {
        shown.clear();
        lasterr(TM(text.c_str()));
        error_lasterr();
        return shown;
    };
    std::string x63(63, 'x'), x64(64, 'x'), x200(200, 'x');
    EXPECT_EQ(wrapped(x200), x200 + "\n");
    EXPECT_EQ(wrapped(x63 + " a b"), x63 + " a\nb\n");
    EXPECT_EQ(wrapped(x64 + " a b"), x64 + "\na b\n");
    EXPECT_EQ(wrapped(x200 + " " + x63 + " " + x63 + " y"), x200 + "\n" + x63 + " " + x63 + "\ny\n");
    EXPECT_EQ(wrapped(x63 + "\n a " + x64), x63 + "\n a " + x64 + "\n");
}

TEST_F(Messages, the_call_stack_is_bounded) {
    std::string name(700, 'n');
    for (int k = 1; k <= 512; ++k) push(k == 512 ? nullptr : name.c_str(), k);
    kn_error_stack.depth = 100000;
    char buf[2048] = "text\n";
    error_call_stack(buf);
    EXPECT_EQ(std::strncmp(buf, "text\ncalled from  512\ncalled from nnn", 36), 0) << buf;
    EXPECT_LE(std::strlen(buf), 2047u);
    kn_error_stack.depth = -3;
    std::strcpy(buf, "text");
    error_call_stack(buf);
    EXPECT_STREQ(buf, "text");
}

TEST_F(Messages, line_forms_quote_the_source_line) {
    struct {
        const char *text;
        int line;
        const char *quoted;
    } const table[] = {
        {"a = 1\n\t b = 2\r\nc = 3\n", 1, "a = 1"},
        {"a = 1\n\t b = 2\r\nc = 3\n", 2, "b = 2"},
        {"a = 1\n\t b = 2\r\nc = 3", 9, "c = 3"},
        {"", 3, ""},
        {nullptr, 3, ""},
    };
    for (const auto &row : table) {
        kn_set_error_source("prog.m", row.text);
        std::string wanted = "Error prog.m " + std::to_string(row.line) + ": '" + row.quoted + "'\nbad 7\n\n";
        thrown([&] { error(row.line, "bad %d", 7); });
        EXPECT_EQ(text_of(lasterr()), wanted);
        kn_default_warning_flags = 1;
        shown.clear();
        warning(row.line, "bad %d", 7);
        EXPECT_EQ(shown, wanted);
    }
    thrown([] { error("plain"); });
    EXPECT_SAME(lasterr(), TM("Error prog.m 3: ''\nplain\n\n")) << "a line once set stays";

    std::string long_text(6000, 'y');
    kn_set_error_source(long_text.c_str(), long_text.c_str());
    thrown([] { error(1, "bad"); });
    EXPECT_EQ(lasterr().size(), 2047);
}

// -- The other default handlers.

TEST_F(Messages, default_handlers_by_flags) {
    warning("w");
    EXPECT_EQ(shown, "warning: w\n\n[Problem 48: warning: w\n\n]");
    shown.clear();
    message("m");
    EXPECT_EQ(shown, "[Message 0: m]m\n") << "the dialog comes first";
    shown.clear();
    logmessage("l");
    EXPECT_EQ(shown, "l\n");
    shown.clear();
    kn_default_error_flags = kn_default_warning_flags = 0;
    warning("w"), message("m"), error_lasterr();
    EXPECT_EQ(shown, "");

    testing::internal::CaptureStdout();
    kn_default_debug('s', "name");
    kn_default_print("text");
    kn_default_print(nullptr);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "DEBUG:s name\ntext");
}

// -- The language's words.

TEST_F(Messages, error_and_warning_of_values) {
    EXPECT_SAME(error(Mm()), x_M);
    EXPECT_SAME(error(TM("")), x_M);
    EXPECT_EQ(thrown([] { error(TM("100% %s")); }), "100% %s");
    std::string text(3000, 'x');
    EXPECT_EQ(thrown([&] { error(TM(text.c_str())); }), text.substr(0, 2047));

    test::Warnings warnings;
    EXPECT_SAME(warning(TM("off")), x_M);
    warning(TM("on"));
    EXPECT_SAME(warning(TM("%d?")), x_M);
    warning(TM(text.c_str()));
    EXPECT_EQ(warnings.texts(), (std::vector<std::string>{"%d?", text.substr(0, 1024)}));
    EXPECT_SAME(warning(), TM("on"));
}

TEST_F(Messages, what_has_no_text_is_reported_once) {
    Mm cell = named("c", test::cell_of(1, 1, {1.0}));
    lasterr(TM("mine"));
    test::Returning errors;
    test::Warnings warnings;
    EXPECT_SAME(error(cell), x_M);
    EXPECT_SAME(warning(cell), x_M);
    EXPECT_SAME(lasterr(cell), x_M);
    EXPECT_EQ(errors.errors(),
              (std::vector<std::string>{"error: numeric data expected, but matrix c is not",
                                        "warning: numeric data expected, but matrix c is not",
                                        "lasterr: numeric data expected, but matrix c is not"}));
    EXPECT_TRUE(warnings.texts().empty());
    EXPECT_SAME(lasterr(), TM("mine"));
}

TEST_F(Messages, position_of_the_innermost_entry) {
    EXPECT_SAME(mfilename(), TM("unknown"));
    EXPECT_SAME(mfileline(), Mm(0.0));
    struct {
        const char *file, *name;
    } const table[] = {{"prog.m", "prog"},
                       {"a/b.c/prog.tar.m", "prog"},
                       {"C:\\dir\\prog", "prog"},
                       {"mixed/dir\\p.m", "p"},
                       {"dir/", ""}};
    int line = 0;
    for (const auto &row : table) {
        push(row.file, ++line);
        EXPECT_EQ(text_of(mfilename()), row.name);
        EXPECT_SAME(mfileline(), Mm(double(line)));
    }
    kn_error_stack.depth = -1;
    EXPECT_SAME(mfilename(), TM("unknown"));
}

// -- Validators.

TEST(Validators, pass_or_name_caller_and_value) {
    Mm cube = named("c", nd({1, 2, 2}, {1, 2, 3, 4})), wide = named("w", M({{1, 2}})),
       sparse_one = named("s", test::sparse_of(1, 1, {{0, 1}})),
       structure = named("st", test::struct_of({{"a", 1.0}})), square = M({{1}});
    struct {
        int (*check)(const Mm &, const char *);
        const Mm &good, &bad;
        const char *text;
    } const table[] = {
        {error_2d, wide, cube, "f: 2-d matrix expected, but matrix c has 3 dimensions"},
        {error_square, square, wide, "f: square matrix expected, but matrix w has 1 rows and 2 columns"},
        {error_square, square, cube, "f: 2-d matrix expected, but matrix c has 3 dimensions"},
        {error_sparse, sparse_one, square, "f: sparse matrix expected, but matrix =1 is full"},
        {error_struct, structure, wide, "f: structure expected, but matrix w is not"},
        {error_numeric, wide, structure, "f: numeric data expected, but matrix st is not"},
    };
    for (const auto &row : table) {
        EXPECT_EQ(row.check(row.good, "f"), 0) << row.text;
        EXPECT_RAISES(row.check(row.bad, "f"), row.text);
        test::Returning errors;
        EXPECT_EQ(row.check(row.bad, "f"), 1);
        EXPECT_EQ(errors.errors(), std::vector<std::string>{row.text});
    }
}

TEST(Validators, counts_are_tested_outputs_first) {
    EXPECT_EQ(test::raised([] { validate_narg("f", 1, 2, 1, 1, 2, 2); }), "(no error)");
    EXPECT_RAISES(validate_narg("f", 0, 9, 1, 2, 1, 2), "Too few (0<1) outputs for f");
    EXPECT_RAISES(validate_narg("f", 3, 9, 1, 2, 1, 2), "Too many (3>2) outputs for f");
    EXPECT_RAISES(validate_narg("f", 1, 0, 1, 2, 1, 2), "Too few (0<1) inputs for f");
    EXPECT_RAISES(validate_narg("f", 1, 3, 1, 2, 1, 2), "Too many (3>2) inputs for f");
    EXPECT_RAISES(error_input("f", 1), "f does not accept 1 input");
    EXPECT_RAISES(error_input("f", 0), "f does not accept 0 inputs");
}

} // namespace
