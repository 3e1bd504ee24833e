// What generated code is made of: functions and their counts, try, switch, globals, literals, `end`.
#include "quorvex/generated.h"

#include "support/support.h"

using namespace test;
using generated::Counts, generated::end_of, generated::Frame, generated::is_case, generated::line,
    generated::Try;

namespace {

Mm calls_(i_o, "calls", 1);

// [q, n] = divide(a, b): b is 2 where it is left out; n is the number of calls so far
Mm divide(Counts n, Mm a, Mm b, i_o_t, Mm &q_, Mm &n_) {
    Frame frame("divide.m", n);
    a.setname("a"), b.setname("b");
    Mm q(i_o, "q", 0);
    Mm &calls = generated::global(calls_);
    line(2), validate_narg("divide", static_cast<int>(nargout()), static_cast<int>(nargin()), 0, 2, 1, 2);
    if (nargin() < 2) line(3), b = 2.0;
    line(4), calls.br(end_of(calls) + 1) = TM("divide");
    line(5), q = rdivide(a, b);
    EXPECT_SAME(who(), cell_of(3, 1, {TM("a"), TM("b"), TM("q")}));
    if (istrue(q == 0)) line(6), error("nothing left");
    return q_ = q, n_ = end_of(calls), x_M;
}

Mm divide_by_name(Mm, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &, Mm &, Mm &, Mm &) {
    return divide({static_cast<int>(args.size()), 9}, args.safebr(1), args.safebr(2), i_o, y1, y2);
}

TEST(Generated, functions_leave_everything_as_it_was) {
    kn_interactive_flag = 1;
    kn_feval_hook old = std::exchange(feval_func, divide_by_name);
    Mm x = 12.0, y = 5.0;
    divide({2, 2}, x, y, i_o, y, x); // [y, x] = divide(x, y)
    EXPECT_SAME(y, Mm(2.4));
    EXPECT_SAME(x, Mm(1.0));
    divide({1, 1}, y, Mm(i_o, "b", 0), i_o, y, x);
    EXPECT_SAME(y, Mm(1.2));
    EXPECT_SAME(feval(TM("divide"), 8.0), Mm(4.0)) << "one output, as feval says";
    EXPECT_EQ(nargout_set, 0);
    EXPECT_RAISES(divide({1, 3}, y, y, i_o, y, x), "Too many (3>2) outputs for divide");
    EXPECT_RAISES(divide({2, 2}, 0.0, 1.0, i_o, y, x), "nothing left");
    EXPECT_SAME(y, Mm(1.2)) << "no output of a call that failed";
    EXPECT_EQ(nargin() + nargout() + kn_error_stack.depth, 0);
    EXPECT_EQ(who().size(), 0) << "the levels are closed";
    feval_func = old;
    kn_interactive_flag = 0;
    calls_ = Mm();
}

TEST(Generated, an_inner_try_leaves_the_outer_one_armed) {
    std::string caught;
    kn_set_default_error_flags(16, 0);
    try {
        Try armed;
        try {
            Try inner;
            kn_default_error("first");
        } catch (const char *text) {
            caught = text;
        }
        EXPECT_TRUE(kn_default_error_flags & 16);
        kn_default_error("second");
    } catch (const char *text) {
        caught += text;
    }
    EXPECT_EQ(caught, "firstsecond");
    EXPECT_FALSE(kn_default_error_flags & 16);
    lasterr();
}

// C++ has these operators for everything that it may ask for a condition.
TEST(Generated, logic_of_references_and_of_numbers_that_are_no_doubles) {
    Mm x = row({0, 2}), yes = mlogical(1), no = mlogical(0);
    for (const Mm &m :
         {x(1) || x(2), x(2) && 1, true && x(2), x(1) || 3u, !x(1), Mm(5.0) && true, (x > 1)(2) && yes})
        EXPECT_SAME(m, yes);
    for (const Mm &m : {x(1) && x(2), 0 || x(1), !x(2), x(1) || no}) EXPECT_SAME(m, no);
}

TEST(Generated, literals_cases_and_ends) {
    static const double table[] = {1, 4, 2, 5, 3, 6};
    EXPECT_SAME(Mm(2, 3, table), M({{1, 2, 3}, {4, 5, 6}}));
    EXPECT_SAME(generated::matrix(1, 2, {7.5, 8}), row({7.5, 8}));
    EXPECT_SAME(Mm(3, 1, table, table + 3), complex_of(col({1, 4, 2}), col({5, 3, 6})));
    EXPECT_SAME(Mm(2, 2, "abcd"), Mm((BR("ab"), semi, "cd")));
    static const char *const names[] = {"one", "two"};
    EXPECT_SAME(generated::texts(2, 1, names), Mm((CL("one"), semi, "two")));

    for (const Mm &label : {TM("b"), Mm((CL("a"), 3, "b"))}) EXPECT_TRUE(is_case(TM("b"), label));
    EXPECT_TRUE(is_case(3.0, (CL("a"), 3)));
    for (const Mm &label : {TM("c"), Mm(98.0), Mm((CL("a"), 3)), nop_M})
        EXPECT_FALSE(is_case(TM("b"), label));

    Mm x(i_o, "x", 0), s(i_o, "s", 0), a = ones(2, 3, 4);
    x(end_of(x) + 1) = 5.0;
    x(end_of(x) + 1) = 6.0;
    EXPECT_SAME(x, row({5, 6}));
    s.member("list").br(end_of(s.member("list")) + 1) = 7.0;
    EXPECT_EQ(end_of(s.member("list")), 1);
    EXPECT_EQ(end_of(a), 24);
    EXPECT_EQ(end_of(a, 3, 3) + 10 * end_of(a, 2, 2), 34);
}

} // namespace
