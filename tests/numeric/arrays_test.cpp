// Shell sorts, extremes, the hash table, the random generator and Pascal's
// triangle.
#include <algorithm>
#include <cfloat>
#include <cstdlib>
#include <numeric>

#include "support.hpp"

using namespace kwtest;

namespace {

class Arrays : public Numeric {};

// Sorted, with each companion carried along and the permutation returned.
TEST_F(Arrays, ShellSortsSortAndCarryTheirCompanions) {
    for (int32_t n : {-1, 0, 1, 2, 3, 5, 11, 100, 1000}) {
        std::vector<double> a(n + 1), b(n + 1);
        std::vector<int32_t> ia(n + 1), ib(n + 1), idx(n + 1);
        for (int32_t i = 0; i <= n; ++i) {
            a[i] = std::floor(uniform(0.0, n < 4 ? 2.0 : 20.0));  // many ties
            b[i] = 3.0 * a[i] + 1.0;
            ia[i] = static_cast<int32_t>(a[i]) - 10;
            ib[i] = 2 * ia[i];
        }
        std::vector<double> ar = a, ac = a, ap = a, as = a, want = a;
        std::vector<int32_t> ii = ia, is = ia;
        std::sort(want.begin(), want.end());
        M_rrshel(ar.data(), b.data(), n);
        M_rishel(ac.data(), ib.data(), n);
        M_ishell(is.data(), n);
        M_rshell(as.data(), n);
        EXPECT_TRUE(as == want && ar == want && ac == want && std::is_sorted(is.begin(), is.end()));
        for (int32_t i = 0; i <= n; ++i) EXPECT_TRUE(b[i] == 3.0 * ar[i] + 1.0 && ib[i] == 2 * (int32_t(ac[i]) - 10));
        M_rshel2(ap.data(), n, idx.data());
        for (int32_t i = 0; i <= n; ++i) EXPECT_EQ(ap[i], a[idx[i]]);
        M_ishel2(ii.data(), n, idx.data());
        for (int32_t i = 0; i <= n; ++i) EXPECT_EQ(ii[i], ia[idx[i]]);
    }
}

// Each bound is a highest index: what lies beyond it is never read.
TEST_F(Arrays, SmallestAndLargestValues) {
    double r[] = {3.5, -2.0, 7.25, 0.0}, *g[2] = {r, r + 2};
    int32_t k[] = {4, 9, -6, 20}, *h[2] = {k, k + 2};
    EXPECT_EQ(std::vector<double>({M_r1mima(r, 3, 1), M_r1mima(r, 3, 2), M_r2mima(g, 1, 0, 1), M_r2mima(g, 0, 1, 2)}),
              std::vector<double>({-2.0, 7.25, 3.5, 3.5}));
    EXPECT_EQ(std::vector<int32_t>({M_i1mima(k, 2, 1), M_i1mima(k, 2, 2), M_i2mima(h, 1, 0, 2), M_i2mima(h, 0, 1, 1)}),
              std::vector<int32_t>({-6, 9, 4, 4}));
    EXPECT_EQ(M_r1mima(r, 3, 3), 0.0);
    EXPECT_EQ(E_errtyp(), KW_EARG);
    EXPECT_EQ(M_i2mima(h, -1, 1, 1), 0);
    EXPECT_TRUE(Recorded(KW_EARG, "M_I2MIMA"));
}

// Each value once, buckets in index order, each in the order its values
// first came; one array per bucket left on the context.
TEST_F(Arrays, HashTableKeepsEachValueOnceBucketByBucket) {
    const int32_t n = 6;
    double **table = nullptr;
    int32_t k = 5, buckets = 0;
    ASSERT_EQ(M_inrhas(&table, n, &stk), 0);
    M_rerhas(table, n, nullptr, &k);
    EXPECT_EQ(k, -1);
    std::vector<double> values = {-0.0, 0.0, -DBL_MAX}, walk;
    for (int i = 0; i < 40; ++i) values.push_back(std::floor(uniform(-15.0, 15.0)) / 4.0);
    for (double v : values) ASSERT_EQ(M_uprhas(table, n, v, &stk), 0);
    M_rerhas(table, n, nullptr, &k);
    std::vector<double> out(k + 1), distinct = values;
    M_rerhas(table, n, out.data(), &k);
    for (int32_t i = 0; i <= n; ++i) {
        std::vector<size_t> first;
        for (const double *v = table[i]; v && *v != DBL_MAX; ++v) {
            walk.push_back(*v);
            first.push_back(std::find(values.begin(), values.end(), *v) - values.begin());
        }
        EXPECT_TRUE(std::is_sorted(first.begin(), first.end()));
        buckets += table[i] != nullptr;
    }
    EXPECT_EQ(census(&stk)[KW_LIST_R1D], buckets);
    EXPECT_EQ(out, walk);
    std::sort(out.begin(), out.end());
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    EXPECT_EQ(out, distinct);
    EXPECT_FAILURE(M_uprhas(table, n, DBL_MAX, &stk), KW_EARG, "M_UPRHAS");
    EXPECT_FAILURE(M_uprhas(table, n, std::nan(""), &stk), KW_EARG, "M_UPRHAS");
    EXPECT_FAILURE(M_inrhas(&table, -1, &stk), KW_EARG, "M_INRHAS");
}

TEST_F(Arrays, RandomSequenceFollowsItsRecurrence) {
    // A fresh process starts from seed 7, whatever the other tests drew.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(M_inrand() == 19565 && M_inrand() == 9806 ? 0 : 1), testing::ExitedWithCode(0), "");
    std::vector<int32_t> want, got;  // computed independently, in 64 bits
    for (uint64_t seed = 7; want.size() < 2000;) {
        seed = (seed * 1103515245ULL + 12345ULL) % 4294967296ULL;
        want.push_back(static_cast<int32_t>((seed >> 16) % 32767ULL));
    }
    EXPECT_EQ(std::vector<int32_t>(want.begin(), want.begin() + 3), (std::vector<int32_t>{19565, 9806, 10868}));
    M_serand(7);
    for (int i = 0; i < 2000; ++i) got.push_back(M_inrand());
    EXPECT_EQ(got, want);
    M_serand(7);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(M_fliflo(), (want[i] & 1) + 1);
}

TEST_F(Arrays, PascalRowsAndTriangle) {
    std::vector<int32_t> row(34, -1);
    for (int32_t n = 0; n <= 33; ++n) {
        ASSERT_EQ(M_pascal(row.data(), n), 0);
        double c = 1.0;  // n over k by its product formula
        for (int32_t k = 0; k <= n; c = c * (n - k) / (k + 1), ++k) EXPECT_EQ(row[k], std::llround(c)) << n;
    }
    EXPECT_FAILURE(M_pascal(row.data(), 34), KW_EARG, "M_PASCAL");
    int32_t **bin = S_geti2d(12, 12, &stk);
    ASSERT_EQ(M_pastri(bin, 12), 0);
    for (int32_t i = 1; i <= 12; ++i)
        for (int32_t j = 0; j <= 12; ++j) EXPECT_EQ(bin[i][j], j > i ? 0 : j == 0 ? 1 : bin[i - 1][j - 1] + bin[i - 1][j]);
    EXPECT_FAILURE(M_pastri(bin, -1), KW_EARG, "M_PASTRI");
}

}  // namespace
