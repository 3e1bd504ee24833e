// The entry list of a sparse value. A holder that changes it leaves the other holders as they were.
#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

std::vector<int> positions(const Mm &s) { return {s.getindex(), s.getindex() + s.getnnz()}; }
std::vector<double> values(const Mm &s) { return {s.addr(), s.addr() + s.getnnz()}; }

Mm complex_entries(int rows, int cols, const std::vector<std::pair<int, double>> &entries,
                   const std::vector<double> &im) {
    Mm s;
    s.deepcopy(1, sparse_of(rows, cols, entries), kn_double);
    std::copy(im.begin(), im.end(), s.addi());
    return s;
}

TEST(SparseHeader, full_values_are_refused) {
    Mm a = named("a", M({{1, 2}}));
    const char *names[] = {"search", "sort", "resparse", "extend_nnz"};
    test::Returning errors;
    EXPECT_EQ(a.search(0), -1);
    a.sort(), a.resparse(), a.extend_nnz(9);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(errors.errors().at(k),
                  std::string("::") + names[k] + ": sparse matrix expected, but matrix a is full");
    EXPECT_SAME(a, M({{1, 2}}));
}

TEST(SparseHeader, search_finds_every_entry_and_nothing_else) {
    Mm s = sparse_of(5, 5, {{0, 1}, {3, 2}, {4, 3}, {11, 4}, {24, 5}});
    for (int pos = -1, slot = 0; pos <= 25; ++pos) {
        bool stored = slot < s.getnnz() && s.getindex()[slot] == pos;
        EXPECT_EQ(s.search(pos), stored ? slot++ : -1) << pos;
    }
}

TEST(SparseHeader, sort_keeps_ties_in_their_order) {
    Mm s = complex_entries(5, 5, {{7, 1}, {3, 2}, {7, 3}, {0, 4}, {3, 5}}, {10, 20, 30, 40, 50});
    s.sort();
    EXPECT_EQ(positions(s), (std::vector<int>{0, 3, 3, 7, 7}));
    EXPECT_EQ(values(s), (std::vector<double>{4, 2, 5, 1, 3}));
    EXPECT_EQ(std::vector<double>(s.addi(), s.addi() + 5), (std::vector<double>{40, 20, 50, 10, 30}));
}

TEST(SparseHeader, resparse_drops_zeros_and_sums_equal_positions) {
    Mm s = sparse_of(5, 5, {{1, 0}, {1, 2}, {1, 3}, {4, -0.0}, {6, NAN}, {9, 5}, {9, -5}, {9, 0}, {20, 1}});
    s.resparse();
    // A sum that comes out as zero was no zero when it was read, and stays.
    EXPECT_SAME(s, sparse_of(5, 5, {{1, 5}, {6, NAN}, {9, 0}, {20, 1}}));

    Mm z = complex_entries(2, 2, {{0, 0}, {1, 0}, {1, 2}, {3, 1}}, {0, 7, 1, 0});
    z.resparse();
    EXPECT_SAME(z, complex_entries(2, 2, {{1, 2}, {3, 1}}, {8, 0}));
}

TEST(SparseHeader, sort_and_resparse_agree_with_a_map) {
    test::Random random(7);
    for (int round = 0; round < 200; ++round) {
        int n = random.below(13); // at most the size, or the entries are cut
        Mm s(0, 1, n, 3, 4, kn_double);
        std::map<int, double> sums;
        for (int k = 0; k < n; ++k) {
            s.getindex()[k] = random.below(12);
            s.addr()[k] = random.below(4); // whole numbers: sums are exact and never cancel
            if (s.addr()[k] != 0) sums[s.getindex()[k]] += s.addr()[k];
        }
        s.sort();
        s.resparse();
        kn::check(s);
        ASSERT_SAME(s, sparse_of(3, 4, {sums.begin(), sums.end()}));
    }
}

TEST(SparseHeader, extend_nnz_makes_room_of_zeros) {
    Mm s = named("s", complex_entries(2, 2, {{1, 5}, {2, 6}}, {7, 8}));
    s.setlogical(1);
    double *before = s.addr();
    s.extend_nnz(2);
    EXPECT_EQ(s.addr(), before) << "room enough";
    s.extend_nnz(40);
    EXPECT_STREQ(s.getname(), "s");
    EXPECT_EQ(s.getnnz(), 40);
    EXPECT_FALSE(s.islogical());
    for (int k = 2; k < 40; ++k) EXPECT_TRUE(s.addr()[k] == 0 && s.addi()[k] == 0 && s.getindex()[k] == 0);
    s.getnnz() = 2;
    EXPECT_SAME(s, complex_entries(2, 2, {{1, 5}, {2, 6}}, {7, 8}));

    // More entries than the extents have, in a list that somebody else holds too.
    Mm list = sparse_of(1, 2, {{1, 5}});
    list.extend_nnz(5);
    Mm other = list;
    list.sort();
    EXPECT_EQ(positions(list), (std::vector<int>{0, 0, 0, 0, 1}));
    EXPECT_EQ(positions(other), (std::vector<int>{1, 0, 0, 0, 0}));
}

TEST(SparseHeader, other_holders_keep_their_entries) {
    const std::function<void(Mm &)> changes[] = {[](Mm &s) { s.sort(); }, [](Mm &s) { s.resparse(); },
                                                 [](Mm &s) { s.extend_nnz(30); }};
    for (const auto &change : changes) {
        Mm s = sparse_of(3, 3, {{5, 1}, {2, 0}, {2, 3}}), other = s;
        change(s);
        EXPECT_EQ(positions(other), (std::vector<int>{5, 2, 2}));
        EXPECT_EQ(values(other), (std::vector<double>{1, 0, 3}));
    }
}

} // namespace
