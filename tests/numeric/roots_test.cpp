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
    void expect_roots(double a, double b, double c, int16_t count, double x1 = NAN, double x2 = NAN) {
        const Result r = quadratic(a, b, c);
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.count, count) << a << " " << b << " " << c;
        if (count > 0) EXPECT_EQ(r.x1, x1);
        if (count > 0) EXPECT_EQ(r.x2, count == 2 ? x2 : x1);
    }
};

TEST_F(Roots, QuadraticCasesInAscendingOrder) {
    for (double c : {0.0, 1.0, -5.0}) expect_roots(0.0, 0.0, c, 0);
    expect_roots(0.0, 2.0, -3.0, 1, 1.5);
    expect_roots(1e-13, 2.0, -3.0, 1, 1.5);  // a below 1e-12 is zero
    expect_roots(2.0, 0.0, -8.0, 2, -2.0, 2.0);
    expect_roots(2.0, 0.0, 8.0, 0);
    expect_roots(-1.0, 3.0, 0.0, 2, 0.0, 3.0);
    expect_roots(1.0, 1.0, -6.0, 2, -3.0, 2.0);
    expect_roots(-1.0, -1.0, 6.0, 2, -3.0, 2.0);
    expect_roots(1.0, -2.0, 1.0, 1, 1.0);
    expect_roots(1.0, -2.0, 1.0 + 2.5e-10, 1, 1.0);  // discriminant -1e-9: rounding
    expect_roots(1.0, -2.0, 1.0 + 1e-8, 0);
    // Roots p and q of a (x - p)(x - q), also when one is tiny.
    for (int i = 0; i < 200; ++i) {
        const double a = uniform(0.5, 2.0), p = uniform(-10, 10), q = uniform(-1, 1) * (i % 2 ? 1e-6 : 1.0);
        const Result r = quadratic(a, -a * (p + q), a * p * q);
        ASSERT_EQ(r.count, 2);
        EXPECT_NEAR(r.x1, std::min(p, q), 1e-10 * (1 + std::fabs(r.x1)));
        EXPECT_NEAR(r.x2, std::max(p, q), 1e-10 * (1 + std::fabs(r.x2)));
    }
    double x1, x2;
    int16_t count;
    EXPECT_FAILURE(M_quades(0.0, 1e-11, 1e300, &x1, &x2, &count), KW_ESINGULAR, "M_QUADES");
    EXPECT_EQ(quadratic(1e-11, 0.0, -1e300).status, 1);
}

TEST_F(Roots, PolynomialDerivativesMatchTheExpandedForm) {
    const double poly[] = {2.0, -1.0, 3.0, 0.0, 0.5};  // 2 - x + 3x^2 + 0.5x^4
    for (double x : {-1.5, 0.0, 0.7, 2.0}) {
        double d[7];
        ASSERT_EQ(M_polder(poly, 4, x, 6, d), 0);
        EXPECT_NEAR(d[0], 2 - x + 3 * x * x + 0.5 * std::pow(x, 4), 1e-13);
        EXPECT_NEAR(d[1], -1 + 6 * x + 2 * std::pow(x, 3), 1e-13);
        EXPECT_NEAR(d[2], 6 + 6 * x * x, 1e-13);
        EXPECT_NEAR(d[3], 12 * x, 1e-13);
        EXPECT_EQ(std::vector<double>(d + 4, d + 7), (std::vector<double>{12.0, 0.0, 0.0}));
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
