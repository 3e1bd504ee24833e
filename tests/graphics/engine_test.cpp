// The boundary to the graphics engine: the hand-shake, the calls back, the one guarded call, and miniM.
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/recording_engine.h"
#include "support/support.h"

using test::M;
using Calls = std::vector<std::string>;

namespace {

class Engine : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(kn_set_engine(&engine), nullptr);
        shaken = std::move(engine.calls);
        engine.calls.clear();
    }
    void TearDown() override {
        callback_func = old_callback;
        EXPECT_EQ(kn_set_engine(nullptr), &engine);
    }

    // Runs a callback text as the engine would.
    void evaluate(const char *text) {
        int n = static_cast<int>(std::strlen(text));
        miniM record(miniM::Dims(1, n), 1);
        for (int k = 1; k <= n; ++k) record.r(k) = text[k - 1];
        engine.eval(&record);
    }

    test::RecordingEngine engine;
    Calls shaken;
    kn_callback old_callback = callback_func;
};

TEST_F(Engine, hand_shake_in_order_hooks_that_work_and_are_taken_back) {
    EXPECT_EQ(shaken, (Calls{"start 4500", "eval 1", "error 1", "free 1"}));
    EXPECT_RAISES(engine.error("100%s of %d"), "100%s of %d");
    Mm a = M({{1, 2}});
    engine.free(new Mm(a));
    EXPECT_EQ(a.dirty(), 0) << "no holder is left";
    test::RecordingEngine other;
    EXPECT_EQ(kn_set_engine(&other), &engine);
    EXPECT_EQ(other.calls, shaken);
    EXPECT_EQ(engine.calls, (Calls{"eval 0", "error 0", "free 0"}));
    EXPECT_EQ(kn_set_engine(&engine), &other);
}

TEST_F(Engine, commands) {
    drawnow();
    EXPECT_EQ(engine.calls, Calls{}) << "nothing to draw on";
    engine.figure = engine.button = 1;
    drawnow(), guiexit(3);
    EXPECT_TRUE(waitforbuttonpress() == 1 && checkforbuttonpress() == 1);
    exitM();
    kn_interactive_flag = 1, exitM(), kn_interactive_flag = 0;
    EXPECT_EQ(engine.calls, (Calls{"flush", "flush", "quit 3", "wait_button 0", "wait_button 1", "flush",
                                   "quit 0", "flush", "quit 1"}));
    kn_set_engine(nullptr);
    drawnow(), guiexit(0);
    EXPECT_TRUE(waitforbuttonpress() == 0 && checkforbuttonpress() < 0) << "without an engine";
    kn_set_engine(&engine);
}

TEST_F(Engine, exit_and_quit_end_the_process_after_closing_the_graphics) {
    struct Telling : test::RecordingEngine {
        void selo_quit(int) override { std::fputs("closed.", stderr); }
    };
    for (Mm (*leave)() : {static_cast<Mm (*)()>(exit), static_cast<Mm (*)()>(quit)}) {
        auto child = [leave] {
            static Telling told;
            kn_set_engine(&told);
            leave();
        };
        EXPECT_EXIT(child(), testing::ExitedWithCode(0), "closed\\.");
    }
}

// -- The guarded call.

Mm last_text;
Mm remember(Mm text) {
    last_text = text;
    return x_M;
}

TEST_F(Engine, a_callback_gets_the_text_in_its_shape) {
    callback_func = remember;
    evaluate("plot(1)");
    EXPECT_SAME(last_text, TM("plot(1)"));
    miniM block(miniM::Dims(2, 3));
    engine.eval(&block);
    EXPECT_SAME(last_text, setstr(zeros(2, 3))) << "a callback is text, whatever the record says";
    last_text = 1.0;
    evaluate("");
    engine.eval(nullptr);
    EXPECT_SAME(last_text, Mm(1.0)) << "nothing to evaluate";
}

Mm fail(Mm text) {
    kn_error_stack.depth = 7;
    if (text.getnnz() == 1) throw std::runtime_error("foreign");
    error("in a callback");
    return x_M;
}

TEST_F(Engine, whatever_a_callback_throws_ends_there) {
    callback_func = fail;
    kn_text_handler old = kn_set_error_handler(nullptr);
    unsigned flags = kn_default_error_flags;
    kn_default_error_flags = 16 | 1;
    kn_error_stack.depth = 1;
    for (int k = 1; k <= 7; ++k) kn_error_stack.file[k] = "file.m", kn_error_stack.line[k] = k;

    for (auto [text, told] :
         {std::pair{"xx", "error: in a callback\ncalled from file.m 7\n"}, {"x", "Aborted!\n"}}) {
        const std::string shown = test::printed([this, at = text] { evaluate(at); });
        EXPECT_EQ(shown.rfind(told, 0), 0u) << shown;
        EXPECT_EQ(kn_error_stack.depth, 1);
    }

    kn_error_stack.depth = 0;
    kn_default_error_flags = flags;
    kn_set_error_handler(old);
}

// -- miniM.

TEST(MiniM, extents_and_zeros) {
    const int five[] = {1, 1, 1, 1, 9};
    const std::tuple<miniM::Dims, int, int> table[] = {
        {{2, 3, 4}, 3, 24}, {{2, 3, 0}, 2, 6}, {{-2, 5}, 2, 0}, {{5, five}, 4, 1}};
    for (const auto &[dims, ndims, count] : table) {
        miniM m(dims);
        EXPECT_TRUE(m.ndims() == ndims && m.count() == count && !m.is_string()) << ndims << " " << count;
        for (int k = 1; k <= m.count(); ++k) EXPECT_EQ(m.r(k), 0);
    }
}

TEST(MiniM, access_is_checked) {
    miniM m(miniM::Dims(2, 2));
    m.r(4) = 8;
    EXPECT_EQ(*m.addr(3), 8);
    EXPECT_EQ(m.addr(4), m.addr() + 4) << "the end";
    for (int k : {0, 5}) EXPECT_RAISES(m.r(k), "miniM.r: r out of range");
    for (int k : {-1, 5}) EXPECT_RAISES(m.addr(k), "miniM addr: offset out of range.");
    EXPECT_RAISES(miniM(miniM::Dims(65536, 65536)), "Out of memory!");
    test::Returning errors;
    m.r(5) = 99;
    EXPECT_EQ(m.r(5), 0);
    EXPECT_EQ(miniM(miniM::Dims(65536, 65536)).count(), 0);
}

} // namespace
