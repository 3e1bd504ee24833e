// The entry list of a sparse value.
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

TEST(SparseHeader, resparse_keeps_sums_that_are_zero) {
    Mm s = sparse_of(5, 5, {{1, 0}, {1, 2}, {1, 3}, {4, -0.0}, {6, NAN}, {9, 5}, {9, -5}, {9, 0}, {20, 1}});
    s.resparse();
    EXPECT_SAME(s, sparse_of(5, 5, {{1, 5}, {6, NAN}, {9, 0}, {20, 1}})) << "each was none when it was read";
}

TEST(SparseHeader, sort_search_and_resparse_agree_with_a_map) {
    test::Random random(7);
    for (int round = 0; round < 300; ++round) {
        // Many are sorted in another way. At most the size, or the entries are cut.
        const int rows = round % 20 ? 3 : 30, cols = round % 20 ? 4 : 90, n = random.below(rows * cols + 1);
        const bool complex = round % 2;
        Mm s(complex, 1, n, rows, cols, kn_double);
        std::map<int, std::pair<double, double>> sums;
        for (int k = 0; k < n; ++k) {
            const int at = s.getindex()[k] = random.below(rows * cols);
            // Whole numbers: sums are exact and never cancel.
            s.addr()[k] = random.below(4);
            if (complex) s.addi()[k] = random.below(3);
            const double re = s.addr()[k], im = complex ? s.addi()[k] : 0;
            if (re != 0 || im != 0) sums[at].first += re, sums[at].second += im;
        }
        s.sort();
        s.resparse();
        kn::check(s);
        ASSERT_EQ(s.getnnz(), static_cast<int>(sums.size()));
        for (int at = -1, slot = 0; at <= rows * cols; ++at) {
            const auto found = sums.find(at);
            ASSERT_EQ(s.search(at), found == sums.end() ? -1 : slot) << at;
            if (found == sums.end()) continue;
            ASSERT_EQ(s.addr()[slot], found->second.first);
            ASSERT_EQ(complex ? s.addi()[slot] : 0, found->second.second);
            ++slot;
        }
    }
}

TEST(SparseHeader, extend_nnz_makes_room_of_zeros) {
    Mm s = complex_of(row({0, 5}), row({0, 7})), list = sparse_of(1, 2, {{1, 5}});
    s = sparse(s);
    double *before = s.addr();
    s.extend_nnz(1);
    EXPECT_EQ(s.addr(), before) << "room enough";
    s.extend_nnz(40);
    EXPECT_EQ(s.getnnz(), 40);
    for (int k = 1; k < 40; ++k) EXPECT_TRUE(s.addr()[k] == 0 && s.addi()[k] == 0 && s.getindex()[k] == 0);
    list.extend_nnz(5); // more entries than the extents have
    list.sort();
    EXPECT_EQ(std::vector<int>(list.getindex(), list.getindex() + 5), (std::vector<int>{0, 0, 0, 0, 1}));
}

} // namespace
