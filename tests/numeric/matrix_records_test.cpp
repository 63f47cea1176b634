// The matrix record family, alike for the four element kinds, and the
// overflow guard.
#include <random>

#include "support.hpp"

namespace {

using namespace kwtest;

// The members of one element kind that decide storage; the rest of each
// family only reads and writes fields.
template <class Mat>
struct Family {
    using Matrix = Mat;
    void (*ini)(Mat *);
    int16_t (*get)(Mat *, int32_t, int32_t, int32_t, int32_t, StorageStacks *);
    int16_t (*isn)(const Mat *);
    int16_t (*chk)(Mat *, int32_t, int32_t, int32_t, int32_t, char *, StorageStacks *);
    const char *get_name;
};
template <class F>
struct MatrixFamily : ::testing::Test {
    static const F f;
    kw::LocalStacks stk;
};
struct Real : Family<RealMatrix> {};
struct Integer : Family<IntegerMatrix> {};
struct Points : Family<PointMatrix> {};
struct ControlPoints : Family<ControlPointMatrix> {};
template <>
const Real MatrixFamily<Real>::f{{M_inirma, M_getrma, M_isrman, M_rmachk, "M_GETRMA"}};
template <>
const Integer MatrixFamily<Integer>::f{{M_iniima, M_getima, M_isiman, M_imachk, "M_GETIMA"}};
template <>
const Points MatrixFamily<Points>::f{{M_inipma, M_getpma, M_ispman, M_pmachk, "M_GETPMA"}};
template <>
const ControlPoints MatrixFamily<ControlPoints>::f{{M_inicma, M_getcma, M_iscman, M_cmachk, "M_GETCMA"}};
using Kinds = ::testing::Types<Real, Integer, Points, ControlPoints>;
TYPED_TEST_SUITE(MatrixFamily, Kinds);

// Full and triangular rows hold m+1 values, banded rows w, and a band of one
// is given two columns. Empty unless both last indices are at least 0, the
// data is set and the band width is positive. The check allocates an empty
// record, reuses large enough storage without allocating, refuses too
// little (code 9) or an unknown type or width (code 14) under the caller's
// name.
TYPED_TEST(MatrixFamily, AllocationEmptinessAndCheck) {
    const auto &f = this->f;
    StorageStacks *s = this->stk.get();
    typename TypeParam::Matrix a, band;
    for (const auto &[type, w, stride] : {std::tuple{KW_FULL, 4, 7}, {KW_LOWERLEFT, 4, 7}, {KW_UPPERRIGHT, 4, 7},
                                          {KW_BANDED, 5, 5}, {KW_BANDED, 1, 2}}) {
        ASSERT_EQ(f.get(&a, 3, 6, type, w, s), 0);
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(3, 6, type, w));
        EXPECT_EQ(a.a[3] - a.a[0], 3 * stride) << type << " " << w;
    }
    for (const auto &[n, m, has_data, w, empty] : {std::tuple{0, 0, true, 1, false}, {-1, 0, true, 1, true},
                                                  {0, -1, true, 1, true}, {0, 0, false, 1, true}, {0, 0, true, 0, true}}) {
        const auto data = a.a;
        a = {n, m, has_data ? data : nullptr, KW_FULL, w};
        EXPECT_EQ(f.isn(&a) != 0, empty) << n << " " << m << " " << has_data << " " << w;
        a.a = data;
    }
    f.ini(&a);
    EXPECT_TRUE(f.isn(&a));
    EXPECT_FAILURE(f.get(&a, 3, 3, 4, 4, s), KW_EARG, f.get_name);
    EXPECT_FAILURE(f.get(&a, 3, 3, KW_FULL, 0, s), KW_EARG, f.get_name);
    EXPECT_TRUE(f.isn(&a));
    static char name[] = "M_CALLER";
    ASSERT_EQ(f.chk(&a, 5, 5, KW_FULL, 6, name, s), 0);
    const auto data = a.a;
    for (const auto &[type, w] : {std::pair{4, 3}, {-1, 3}, {0, 0}}) {
        EXPECT_FAILURE(f.chk(&a, 3, 4, type, w, name, s), KW_EARG, name);
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(5, 5, KW_FULL, 6));
    }
    kw::fault::fail_at(1, true);
    EXPECT_EQ(f.chk(&a, 3, 4, KW_LOWERLEFT, 4, name, s), 0);
    EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w, a.a), std::tuple(3, 4, KW_LOWERLEFT, 4, data));
    EXPECT_EQ(f.chk(&a, 3, 4, KW_BANDED, 3, name, s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    for (const auto &[n, m, type, w] : {std::tuple{4, 4, KW_FULL, 5}, {3, 5, KW_FULL, 4}}) {
        EXPECT_FAILURE(f.chk(&a, n, m, type, w, name, s), KW_ESTORAGE, name);
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(3, 4, KW_BANDED, 3));
    }
    // Rows of a narrow band cannot hold a wider band or full rows.
    ASSERT_EQ(f.get(&band, 5, 5, KW_BANDED, 3, s), 0);
    EXPECT_FAILURE(f.chk(&band, 5, 5, KW_FULL, 6, name, s), KW_ESTORAGE, name);
    EXPECT_FAILURE(f.chk(&band, 5, 5, KW_BANDED, 5, name, s), KW_ESTORAGE, name);
    EXPECT_EQ(f.chk(&band, 5, 5, KW_BANDED, 1, name, s), 0);
}

// The guard answers whether the operation leaves the finite doubles, unless
// switched off by a positive flag.
TEST(OverflowGuard, ReportsExactlyTheOperationsThatOverflow) {
    const double big = DBL_MAX;
    const std::tuple<double, double, int16_t, int16_t> table[] = {
        {big, big, 1, 1},     {big, -big, 1, 0},     {big, 1.0, 1, 0},      {-big, -big, 1, 1},  {big, big, 2, 0},
        {-big, big, 2, 1},    {1e200, 1e200, 3, 1},  {1e154, 1e154, 3, 0},  {-1e200, 1e200, 3, 1}, {1e-300, 1e-300, 3, 0},
        {1.0, 1e-320, 4, 1},  {1.0, 1e-300, 4, 0},   {1.0, 0.0, 4, 1},      {0.0, -0.0, 4, 1},   {big, 0.5, 4, 1},
        {big, 2.0, 4, 0},     {1.0, 1.0, 0, 1},      {1.0, 1.0, 5, 1},
    };
    for (const auto &[a, b, op, overflow] : table) EXPECT_EQ(M_chkfop(a, b, op), overflow) << a << " " << b << " " << op;
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> mant(-2.0, 2.0);
    std::uniform_int_distribution<int> ex(-1024, 1023);
    for (int trial = 0; trial < 20000; ++trial) {
        const int op = 1 + trial % 4;
        const double a = std::ldexp(mant(rng), op < 3 ? 1023 : ex(rng)), b = std::ldexp(mant(rng), op < 3 ? 1023 : ex(rng));
        if (b == 0.0) continue;
        const double r = op == 1 ? a + b : op == 2 ? a - b : op == 3 ? a * b : a / b;
        ASSERT_EQ(M_chkfop(a, b, op), std::isinf(r) ? 1 : 0) << a << " " << b << " " << op;
    }
    M_NoErrChk(1);
    EXPECT_EQ(M_chkfop(big, big, 1) + M_chkfop(1.0, 0.0, 4) + M_chkfop(1.0, 1.0, 9), 0);
    M_NoErrChk(-3);
    EXPECT_EQ(M_chkfop(1.0, 1.0, 9), 1);
    M_NoErrChk(0);
}

}  // namespace
