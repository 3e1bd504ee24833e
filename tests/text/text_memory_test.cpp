// Every allocation of the text words fails once: "Out of memory!" is reported, nothing is lost, and the
// result is a valid value, whether the error handler throws or returns.
#ifdef QUORVEX_ALLOC_PROBE

#include <functional>

#include "core/header.h"
#include "core/scratch.h"
#include "support/support.h"

namespace {

// Runs the word with its allocation number k failing; false when it makes fewer.
bool fails_at(long k, const std::function<Mm()> &word, bool throws) {
    test::Returning returning;
    if (throws) kn_set_error_handler([](const char *text) { throw test::Raised{text}; });
    std::vector<std::string> raised;
    long live = kn::alloc_probe.live;
    kn::alloc_probe.allocations = 0;
    kn::alloc_probe.fail_at = k;
    try {
        Mm result = word();
        kn::alloc_probe.fail_at = 0;
        kn::check(result);
    } catch (const test::Raised &r) {
        kn::alloc_probe.fail_at = 0;
        raised.push_back(r.text);
    }
    bool failed = kn::alloc_probe.allocations >= k;
    raised.insert(raised.end(), returning.errors().begin(), returning.errors().end());
    EXPECT_EQ(kn::alloc_probe.live, live) << "allocation " << k;
    EXPECT_EQ(!raised.empty(), failed) << "allocation " << k;
    for (const std::string &text : raised) EXPECT_EQ(text, "Out of memory!") << "allocation " << k;
    return failed;
}

TEST(TextMemory, each_failing_allocation_is_reported_and_nothing_is_lost) {
    test::Random random(3);
    Mm matrix = random.matrix(8, 80, true), bytes = test::U8({{5, 200}, {7, 8}});
    Mm cube = test::nd({2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
    Mm cell = test::cell_of(2, 2, {matrix, TM("text"), NAN, cube});
    Mm record = test::struct_of({{"a", cell}, {"a_long_name", TM("text")}});
    Mm numbers = TM("1 2 3+4i; 5 6e- 3 7; 8"), text = strvcat(TM("  some"), TM("   text"));
    const std::pair<const char *, std::function<Mm()>> words[] = {
        {"disp", [&] { return disp(matrix); }},
        {"display", [&] { return display(bytes); }},
        {"pages", [&] { return display(cube); }},
        {"cell", [&] { return celldisp(cell); }},
        {"struct", [&] { return display(record); }},
        {"num2str", [&] { return num2str(matrix); }},
        {"num2str of text", [&] { return num2str(text); }},
        {"get_whos_line", [&] { return get_whos_line(record); }},
        {"strvcat", [&] { return strvcat(text, bytes, numbers); }},
        {"str2num", [&] { return str2num(numbers); }},
        {"format", [&] { return format(); }},
    };
    kn_text_handler print = kn_set_print_handler([](const char *) {});
    for (const auto &[name, word] : words)
        for (bool throws : {true, false}) {
            SCOPED_TRACE(std::string(name) + (throws ? ", throwing" : ", returning"));
            for (long k = 1; fails_at(k, word, throws); ++k) {
            }
        }
    kn_set_print_handler(print);
}

} // namespace

#endif
