// Quadratic roots, polynomial derivatives and the clamped Newton iteration.
#include "support.hpp"

using namespace kwtest;

namespace {

class Roots : public Numeric {};

TEST_F(Roots, QuadraticCasesInAscendingOrder) {
    const std::tuple<double, double, double, int16_t, double, double> table[] = {
        {0, 0, 0, 0, 0, 0},       {0, 0, 1, 0, 0, 0},     {0, 0, -5, 0, 0, 0},
        {0, 2, -3, 1, 1.5, 1.5},  {1e-13, 2, -3, 1, 1.5, 1.5},  // a below 1e-12 is zero
        {2, 0, -8, 2, -2, 2},     {2, 0, 8, 0, 0, 0},     {-1, 3, 0, 2, 0, 3},
        {1, 1, -6, 2, -3, 2},     {-1, -1, 6, 2, -3, 2},  {1, -2, 1, 1, 1, 1},
        {1, -2, 1 + 2.5e-10, 1, 1, 1},  // discriminant -1e-9: rounding
        {1, -2, 1 + 1e-8, 0, 0, 0},
    };
    for (const auto &[a, b, c, count, x1, x2] : table) {
        double r1 = NAN, r2 = NAN;
        int16_t k = -1;
        EXPECT_EQ(M_quades(a, b, c, &r1, &r2, &k), 0);
        EXPECT_EQ(k, count) << a << " " << b << " " << c;
        if (count > 0) EXPECT_TRUE(r1 == x1 && r2 == x2) << r1 << " " << r2;
    }
    // Roots p and q of a (x - p)(x - q), also when one is tiny.
    for (int i = 0; i < 200; ++i) {
        const double a = uniform(0.5, 2.0), p = uniform(-10, 10), q = uniform(-1, 1) * (i % 2 ? 1e-6 : 1.0);
        double r1, r2;
        int16_t k;
        ASSERT_EQ(M_quades(a, -a * (p + q), a * p * q, &r1, &r2, &k) + k, 2);
        EXPECT_NEAR(r1, std::min(p, q), 1e-10 * (1 + std::fabs(r1)));
        EXPECT_NEAR(r2, std::max(p, q), 1e-10 * (1 + std::fabs(r2)));
    }
    double x1, x2;
    int16_t count;
    EXPECT_FAILURE(M_quades(0.0, 1e-11, 1e300, &x1, &x2, &count), KW_ESINGULAR, "M_QUADES");
    EXPECT_FAILURE(M_quades(1e-11, 0.0, -1e300, &x1, &x2, &count), KW_ESINGULAR, "M_QUADES");
}

TEST_F(Roots, PolynomialDerivativesMatchTheExpandedForm) {
    const double poly[] = {2.0, -1.0, 3.0, 0.0, 0.5};  // 2 - x + 3x^2 + 0.5x^4
    for (double x : {-1.5, 0.0, 0.7, 2.0}) {
        double d[7];
        ASSERT_EQ(M_polder(poly, 4, x, 6, d), 0);
        const std::vector<double> want = {2 - x + 3 * x * x + 0.5 * std::pow(x, 4), -1 + 6 * x + 2 * std::pow(x, 3), 6 + 6 * x * x, 12 * x, 12, 0, 0};
        EXPECT_LT(max_difference(std::vector<double>(d, d + 7), want), 1e-13);
    }
    EXPECT_FAILURE(M_polder(poly, -1, 0.0, 1, nullptr), KW_EARG, "M_POLDER");
}

TEST_F(Roots, NewtonFindsRootsAndClampsToItsInterval) {
    const double p[] = {-2.0, 0.0, 1.0}, q[] = {-8.0, 0.0, 0.0, 1.0}, l[] = {-5.0, 1.0}, m[] = {-1.0000001, 1.0};
    double x = 0.0;
    ASSERT_EQ(M_polnew(p, 2, 1.0, 0.0, 3.0, 1e-14, &x), 0);
    EXPECT_NEAR(x, std::sqrt(2.0), 1e-14);
    // x^3 - 8 from 0.1: the first step would reach 266, is clamped to 10,
    // and the iteration converges from there.
    ASSERT_EQ(M_polnew(q, 3, 0.1, 0.0, 10.0, 1e-12, &x), 0);
    EXPECT_NEAR(x, 2.0, 1e-13);
    const int32_t saved = N_itenew;
    N_itenew = 1;
    EXPECT_FAILURE(M_polnew(q, 3, 0.1, 0.0, 10.0, 1e-12, &x), KW_ENOCONV, "M_POLNEW");
    N_itenew = saved;
    EXPECT_EQ(x, 10.0);
    // The root 5 lies outside [0, 1]: every step ends on 1.
    EXPECT_FAILURE(M_polnew(l, 1, 0.2, 0.0, 1.0, 1e-9, &x), KW_ENOCONV, "M_POLNEW");
    EXPECT_EQ(x, 1.0);
    // Beyond the bound but within tol there: success on the bound.
    ASSERT_EQ(M_polnew(m, 1, 0.2, 0.0, 1.0, 1e-6, &x), 0);
    EXPECT_EQ(x, 1.0);
    EXPECT_FAILURE(M_polnew(p, 2, 0.0, -3.0, 3.0, 1e-12, &x), KW_ESINGULAR, "M_POLNEW");  // p'(0) = 0
    EXPECT_FAILURE(M_polnew(p, 2, 0.0, 3.0, -3.0, 1e-12, &x), KW_EARG, "M_POLNEW");
}

}  // namespace
