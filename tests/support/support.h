// The vocabulary of the tests: values from literals, comparisons with type, shape and tolerance, captured
// output, expected errors.
//
// All tests run with an error handler that throws `Raised`; Returning switches, for a scope, to one that
// records and returns.
//
// The standard headers of this vocabulary, such as <string> and <vector>, come with it.
#ifndef QUORVEX_TESTS_SUPPORT_H
#define QUORVEX_TESTS_SUPPORT_H

#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "quorvex.h"

void PrintTo(const Mm &m, std::ostream *out); // class, extents and elements, for failures

namespace test {

// An empty directory under that of temporary files.
std::string new_directory();

// -- Values.

using Row = std::initializer_list<double>;

Mm M(std::initializer_list<Row> rows);
Mm U8(std::initializer_list<Row> rows);
Mm row(const std::vector<double> &x);
Mm col(const std::vector<double> &x);
Mm nd(const std::vector<kn_size> &dims, const std::vector<double> &x);
Mm complex_of(const Mm &re, const Mm &im);
Mm C(double re, double im);
Mm logical_of(const Mm &m);
Mm named(const char *name, const Mm &m); // a copy with a name
Mm sparse_of(int rows, int cols,
             const std::vector<std::pair<int, double>> &entries); // 0-based positions, ascending
Mm cell_of(int rows, int cols, const std::vector<Mm> &elements);
Mm struct_of(const std::vector<std::pair<const char *, Mm>> &fields);

// Random values with a fixed seed: every type, shapes up to 4 by 4 by 3 by 2, empties, special numbers.
class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}
    int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
    double number(); // mostly small integers and fractions, at times NaN, Inf, huge, tiny, signed zero
    Mm matrix(int rows, int cols, bool complex = false);
    Mm any(); // any kind of value
    // Sparse: whole numbers, some of them stored zeros, for about one element in `every`.
    Mm thin(int rows, int cols, int every, bool complex = false);

  private:
    std::mt19937 engine_;
};

// -- Comparisons.

// Bit for bit, but that any NaN equals any other.
bool same_bits(double x, double y);

// Same class, flags of kind, extents and elements; NaN equals NaN, 0 equals -0.
testing::AssertionResult same(const Mm &got, const Mm &wanted);
// The same with elements that differ by at most `ulps` units in the last place of the wanted one.
testing::AssertionResult near(const Mm &got, const Mm &wanted, double ulps);
#define EXPECT_SAME(got, wanted) EXPECT_TRUE(test::same(got, wanted))
#define ASSERT_SAME(got, wanted) ASSERT_TRUE(test::same(got, wanted))
#define EXPECT_NEAR_ULP(got, wanted, ulps) EXPECT_TRUE(test::near(got, wanted, ulps))

// -- Output and errors.

// For a scope, the handler records the texts that it is handed, and returns.
template <kn_text_handler (*set_handler)(kn_text_handler)> class Recorded {
  public:
    Recorded() : old_(set_handler(record)) { texts_.clear(); }
    ~Recorded() { set_handler(old_); }
    const std::vector<std::string> &texts() const { return texts_; }

  private:
    static void record(const char *text) { texts_.push_back(text ? text : ""); }
    static inline std::vector<std::string> texts_;
    kn_text_handler old_;
};
using Prints = Recorded<kn_set_print_handler>;
using Warnings = Recorded<kn_set_warning_handler>;
struct Returning : Recorded<kn_set_error_handler> {
    const std::vector<std::string> &errors() const { return texts(); }
};

// What the print handler was handed.
std::string printed(const std::function<void()> &work);
#define EXPECT_PRINTS(expression, text) EXPECT_EQ(test::printed([&] { (void)(expression); }), text)

struct Raised {
    std::string text;
};
// The text of the error that the work raises; "(no error)" if none.
std::string raised(const std::function<void()> &work);
#define EXPECT_RAISES(expression, message) EXPECT_EQ(test::raised([&] { (void)(expression); }), message)

} // namespace test

#endif
