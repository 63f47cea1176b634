// The matrix record family, alike for the four element kinds, and the
// overflow guard.
#include <cmath>
#include <random>

#include "core/support.hpp"

namespace {

using namespace kwtest;

// The family members of one element kind.
template <class E, class Mat>
struct Family {
    using Element = E;
    using Matrix = Mat;
    void (*ini)(Mat *);
    void (*make)(Mat *, int32_t, int32_t, E **, int32_t, int32_t);
    void (*brk)(const Mat *, int32_t *, int32_t *, E ***, int32_t *, int32_t *);
    void (*def)(Mat *, int32_t, int32_t, int32_t, int32_t);
    void (*ind)(const Mat *, int32_t *, int32_t *);
    void (*data)(const Mat *, E ***);
    int16_t (*get)(Mat *, int32_t, int32_t, int32_t, int32_t, StorageStacks *);
    int16_t (*isn)(const Mat *);
    int16_t (*chk)(Mat *, int32_t, int32_t, int32_t, int32_t, char *, StorageStacks *);
    const char *get_name;
};

template <class F>
class MatrixFamily : public ::testing::Test {
protected:
    static const F family;
    kw::LocalStacks stk;
};

struct Real : Family<double, RealMatrix> {};
struct Integer : Family<int32_t, IntegerMatrix> {};
struct Points : Family<Point, PointMatrix> {};
struct ControlPoints : Family<ControlPoint, ControlPointMatrix> {};

template <>
const Real MatrixFamily<Real>::family{
    {M_inirma, M_makrma, M_rmabre, M_rmadef, M_rmaind, M_rmarmp, M_getrma, M_isrman, M_rmachk, "M_GETRMA"}};
template <>
const Integer MatrixFamily<Integer>::family{
    {M_iniima, M_makima, M_imabre, M_imadef, M_imaind, M_imaimp, M_getima, M_isiman, M_imachk, "M_GETIMA"}};
template <>
const Points MatrixFamily<Points>::family{
    {M_inipma, M_makpma, M_pmabre, M_pmadef, M_pmaind, M_pmapmp, M_getpma, M_ispman, M_pmachk, "M_GETPMA"}};
template <>
const ControlPoints MatrixFamily<ControlPoints>::family{
    {M_inicma, M_makcma, M_cmabre, M_cmadef, M_cmaind, M_cmacmp, M_getcma, M_iscman, M_cmachk, "M_GETCMA"}};

using Kinds = ::testing::Types<Real, Integer, Points, ControlPoints>;
TYPED_TEST_SUITE(MatrixFamily, Kinds);

TYPED_TEST(MatrixFamily, FieldsRoundTripInRecordOrder) {
    const auto &f = this->family;
    typename TypeParam::Matrix a;
    typename TypeParam::Element *rows[1] = {};
    f.make(&a, 4, 6, rows, KW_UPPERRIGHT, 3);
    int32_t n, m, type, w;
    typename TypeParam::Element **data;
    f.brk(&a, &n, &m, &data, &type, &w);
    EXPECT_EQ(std::tuple(n, m, data, type, w), std::tuple(4, 6, rows, KW_UPPERRIGHT, 3));
    f.def(&a, 2, 1, KW_BANDED, 5);
    f.ind(&a, &n, &m);
    f.data(&a, &data);
    EXPECT_EQ(std::tuple(n, m, data, a.type, a.w), std::tuple(2, 1, rows, KW_BANDED, 5));
    f.ini(&a);
    EXPECT_EQ(std::tuple(a.n, a.m, a.a, a.w), std::tuple(-1, -1, nullptr, 0));
}

// Empty unless both last indices are at least 0, the data is set and the
// band width is positive.
TYPED_TEST(MatrixFamily, EmptyPredicate) {
    const auto &f = this->family;
    typename TypeParam::Element *rows[1] = {};
    const std::tuple<int32_t, int32_t, bool, int32_t, bool> table[] = {
        {0, 0, true, 1, false}, {-1, 0, true, 1, true}, {0, -1, true, 1, true},
        {0, 0, false, 1, true}, {0, 0, true, 0, true},  {3, 3, true, -2, true}};
    for (const auto &[n, m, has_data, w, empty] : table) {
        typename TypeParam::Matrix a;
        f.make(&a, n, m, has_data ? rows : nullptr, KW_FULL, w);
        EXPECT_EQ(f.isn(&a) != 0, empty) << n << " " << m << " " << has_data << " " << w;
    }
}

// Full and triangular rows hold m+1 values, banded rows w, and a band of
// one is given two columns.
TYPED_TEST(MatrixFamily, AllocationShapes) {
    const auto &f = this->family;
    const std::tuple<int32_t, int32_t, int32_t> table[] = {
        {KW_FULL, 4, 7}, {KW_LOWERLEFT, 4, 7}, {KW_UPPERRIGHT, 4, 7}, {KW_BANDED, 5, 5}, {KW_BANDED, 1, 2}};
    for (const auto &[type, w, stride] : table) {
        typename TypeParam::Matrix a;
        ASSERT_EQ(f.get(&a, 3, 6, type, w, this->stk.get()), 0);
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(3, 6, type, w));
        EXPECT_EQ(a.a[3] - a.a[0], 3 * stride) << type << " " << w;
        EXPECT_FALSE(f.isn(&a));
    }
    typename TypeParam::Matrix a;
    f.ini(&a);
    E_clrerr();
    EXPECT_EQ(f.get(&a, 3, 3, 4, 4, this->stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_EARG, f.get_name));
    EXPECT_EQ(f.get(&a, 3, 3, KW_FULL, 0, this->stk.get()), 1);
    EXPECT_TRUE(f.isn(&a));
}

TYPED_TEST(MatrixFamily, CheckAllocatesReusesOrRefuses) {
    const auto &f = this->family;
    static char name[] = "M_CALLER";
    StorageStacks *s = this->stk.get();
    typename TypeParam::Matrix a;
    f.ini(&a);
    ASSERT_EQ(f.chk(&a, 5, 5, KW_FULL, 6, name, s), 0);
    const auto data = a.a;
    // An unknown type or a band width below 1 is refused, storage or not.
    for (const auto &[type, w] : {std::pair{4, 3}, std::pair{-1, 3}, std::pair{0, 0}}) {
        E_clrerr();
        EXPECT_EQ(f.chk(&a, 3, 4, type, w, name, s), 1);
        EXPECT_TRUE(Recorded(KW_EARG, name));
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(5, 5, KW_FULL, 6));
    }
    // Smaller or equal requests reuse the storage and allocate nothing.
    kw::fault::fail_at(1, true);
    EXPECT_EQ(f.chk(&a, 3, 4, KW_LOWERLEFT, 4, name, s), 0);
    EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w, a.a), std::tuple(3, 4, KW_LOWERLEFT, 4, data));
    EXPECT_EQ(f.chk(&a, 3, 4, KW_BANDED, 3, name, s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    struct Refused {
        int32_t n, m, type, w;
    };
    for (const Refused &r : {Refused{4, 4, KW_FULL, 5}, Refused{3, 5, KW_FULL, 4}}) {
        E_clrerr();
        EXPECT_EQ(f.chk(&a, r.n, r.m, r.type, r.w, name, s), 1);
        EXPECT_EQ(E_errtyp(), KW_ESTORAGE);
        EXPECT_EQ(E_errnam(), name);
        EXPECT_EQ(std::tuple(a.n, a.m, a.type, a.w), std::tuple(3, 4, KW_BANDED, 3));
    }
    // Rows of a narrow band cannot hold a wider band or full rows.
    typename TypeParam::Matrix band;
    ASSERT_EQ(f.get(&band, 5, 5, KW_BANDED, 3, s), 0);
    E_clrerr();
    EXPECT_EQ(f.chk(&band, 5, 5, KW_FULL, 6, name, s), 1);
    EXPECT_EQ(f.chk(&band, 5, 5, KW_BANDED, 5, name, s), 1);
    EXPECT_TRUE(Recorded(KW_ESTORAGE, name));
    EXPECT_EQ(f.chk(&band, 5, 5, KW_BANDED, 1, name, s), 0);
}

// The guard answers whether the operation leaves the finite doubles.
TEST(OverflowGuard, ReportsExactlyTheOperationsThatOverflow) {
    struct Case {
        double a, b;
        int16_t op, overflow;
    };
    const double big = DBL_MAX;
    const Case table[] = {
        {big, big, 1, 1},       {big, -big, 1, 0},      {big, 1.0, 1, 0},    {-big, -big, 1, 1},
        {big, big, 2, 0},       {-big, big, 2, 1},      {big, -big, 2, 1},   {1e200, 1e200, 3, 1},
        {1e154, 1e154, 3, 0},   {-1e200, 1e200, 3, 1},  {1e-300, 1e-300, 3, 0}, {1.0, 1e-320, 4, 1},
        {1.0, 1e-300, 4, 0},    {1.0, 0.0, 4, 1},       {big, 0.5, 4, 1},    {big, 2.0, 4, 0},
        {1.0, 1.0, 0, 1},       {1.0, 1.0, 5, 1},
    };
    for (const Case &c : table) EXPECT_EQ(M_chkfop(c.a, c.b, c.op), c.overflow) << c.a << " " << c.b << " " << c.op;
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
}

TEST(OverflowGuard, SwitchedOffWhileTheFlagIsPositive) {
    M_NoErrChk(1);
    EXPECT_EQ(M_chkfop(DBL_MAX, DBL_MAX, 1), 0);
    EXPECT_EQ(M_chkfop(1.0, 0.0, 4), 0);
    EXPECT_EQ(M_chkfop(1.0, 1.0, 9), 0);
    M_NoErrChk(0);
    EXPECT_EQ(M_chkfop(DBL_MAX, DBL_MAX, 1), 1);
    M_NoErrChk(-3);
    EXPECT_EQ(M_chkfop(1.0, 1.0, 9), 1);
    M_NoErrChk(0);
}

}  // namespace
