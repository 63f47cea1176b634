// Quadratic roots, polynomial derivatives and the clamped Newton iteration.
#include "support.hpp"

using namespace kwtest;

namespace {

class Roots : public Numeric {
protected:
    struct Result {
        int16_t status, count;
        double x1, x2;
    };
    Result quadratic(double a, double b, double c) {
        Result r{0, -1, NAN, NAN};
        r.status = M_quades(a, b, c, &r.x1, &r.x2, &r.count);
        return r;
    }
};

TEST_F(Roots, QuadraticDegenerateCases) {
    for (double c : {0.0, 1.0, -5.0}) EXPECT_EQ(quadratic(0.0, 0.0, c).count, 0);
    Result r = quadratic(0.0, 2.0, -3.0);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.x1, 1.5);
    r = quadratic(2.0, 0.0, -8.0);
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.x1, -2.0);
    EXPECT_EQ(r.x2, 2.0);
    EXPECT_EQ(quadratic(2.0, 0.0, 8.0).count, 0);
    r = quadratic(-1.0, 3.0, 0.0);
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.x1, 0.0);
    EXPECT_EQ(r.x2, 3.0);
    // Coefficients below 1e-12 are zeros: this is the line 2x - 3.
    r = quadratic(1e-13, 2.0, -3.0);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.x1, 1.5);
}

TEST_F(Roots, QuadraticRootsInAscendingOrderAndDoubleRoots) {
    Result r = quadratic(1.0, 1.0, -6.0);
    EXPECT_EQ(r.count, 2);
    EXPECT_EQ(r.x1, -3.0);
    EXPECT_EQ(r.x2, 2.0);
    r = quadratic(-1.0, -1.0, 6.0);
    EXPECT_EQ(r.x1, -3.0);
    EXPECT_EQ(r.x2, 2.0);
    r = quadratic(1.0, -2.0, 1.0);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.x1, 1.0);
    // A discriminant of -1e-9 is rounding: one double root.
    r = quadratic(1.0, -2.0, 1.0 + 2.5e-10);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.x1, 1.0);
    EXPECT_EQ(quadratic(1.0, -2.0, 1.0 + 1e-8).count, 0);
    // Random quadratics with real roots: both roots satisfy the equation,
    // also when b^2 dwarfs 4ac.
    for (int i = 0; i < 200; ++i) {
        const double a = uniform(0.5, 2.0), p = uniform(-10, 10), q = uniform(-1e-6, 1e-6) * (i % 2 ? 1 : 1e6);
        r = quadratic(a, -a * (p + q), a * p * q);
        if (std::fabs(q) < 1e-12 || std::fabs(p * q) * a < 1e-12) continue;
        ASSERT_EQ(r.count, 2);
        EXPECT_LE(r.x1, r.x2);
        EXPECT_NEAR(r.x1, std::min(p, q), 1e-10 * (1 + std::fabs(r.x1)));
        EXPECT_NEAR(r.x2, std::max(p, q), 1e-10 * (1 + std::fabs(r.x2)));
    }
}

TEST_F(Roots, QuadraticRefusesOverflowingDivisions) {
    Result r = quadratic(0.0, 1e-11, 1e300);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(E_errtyp(), KW_ESINGULAR);
    EXPECT_STREQ(E_errnam(), "M_QUADES");
    EXPECT_EQ(quadratic(1e-11, 0.0, -1e300).status, 1);
}

TEST_F(Roots, PolynomialDerivativesMatchTheExpandedForm) {
    // p(x) = 2 - x + 3x^2 + 0.5x^4
    const double poly[] = {2.0, -1.0, 3.0, 0.0, 0.5};
    for (double x : {-1.5, 0.0, 0.7, 2.0}) {
        double d[7];
        ASSERT_EQ(M_polder(poly, 4, x, 6, d), 0);
        EXPECT_NEAR(d[0], 2 - x + 3 * x * x + 0.5 * std::pow(x, 4), 1e-13);
        EXPECT_NEAR(d[1], -1 + 6 * x + 2 * std::pow(x, 3), 1e-13);
        EXPECT_NEAR(d[2], 6 + 6 * x * x, 1e-13);
        EXPECT_NEAR(d[3], 12 * x, 1e-13);
        EXPECT_EQ(d[4], 12.0);
        EXPECT_EQ(d[5], 0.0);
        EXPECT_EQ(d[6], 0.0);
    }
    double d[2];
    EXPECT_FAILURE(M_polder(poly, -1, 0.0, 1, d), KW_EARG, "M_POLDER");
}

TEST_F(Roots, NewtonFindsRootsAndClampsToItsInterval) {
    const double p[] = {-2.0, 0.0, 1.0};  // x^2 - 2
    double x = 0.0;
    ASSERT_EQ(M_polnew(p, 2, 1.0, 0.0, 3.0, 1e-14, &x), 0);
    EXPECT_NEAR(x, std::sqrt(2.0), 1e-14);
    // From 0.1 the first step would go to 266: clamped to 10, from where it
    // converges.
    const double q[] = {-8.0, 0.0, 0.0, 1.0};  // x^3 - 8
    ASSERT_EQ(M_polnew(q, 3, 0.1, 0.0, 10.0, 1e-12, &x), 0);
    EXPECT_NEAR(x, 2.0, 1e-13);
    const int32_t saved = N_itenew;
    N_itenew = 1;
    EXPECT_FAILURE(M_polnew(q, 3, 0.1, 0.0, 10.0, 1e-12, &x), KW_ENOCONV, "M_POLNEW");
    N_itenew = saved;
    EXPECT_EQ(x, 10.0);
    // The root 5 lies outside [0, 1]: every step is clamped to 1.
    const double l[] = {-5.0, 1.0};
    EXPECT_FAILURE(M_polnew(l, 1, 0.2, 0.0, 1.0, 1e-9, &x), KW_ENOCONV, "M_POLNEW");
    EXPECT_EQ(x, 1.0);
    // Just beyond the bound but within tol there: success on the bound.
    const double m[] = {-1.0000001, 1.0};
    ASSERT_EQ(M_polnew(m, 1, 0.2, 0.0, 1.0, 1e-6, &x), 0);
    EXPECT_EQ(x, 1.0);
    // A flat start cannot be divided by.
    EXPECT_FAILURE(M_polnew(p, 2, 0.0, -3.0, 3.0, 1e-12, &x), KW_ESINGULAR, "M_POLNEW");
    EXPECT_FAILURE(M_polnew(p, 2, 0.0, 3.0, -3.0, 1e-12, &x), KW_EARG, "M_POLNEW");
}

}  // namespace
