// LU solvers (full, banded, pivoted), inverses and normal-equation least
// squares: solutions against known ones, factors against the matrix, and
// the failures each step is meant to report.
#include "support.hpp"

using namespace kwtest;

namespace {

class Solvers : public Numeric {
protected:
    // Solves A x = A x* with M_ludcmp and M_rafoba; returns max |x - x*|.
    double solve_known(RealMatrix A) {
        const std::vector<double> xs = vec(A.n), b = times(dense(A), xs);
        std::vector<double> x(A.n + 1);
        EXPECT_EQ(M_ludcmp(&A) + M_rafoba(&A, b.data(), x.data()), 0);
        return max_difference(x, xs);
    }
};

// Stored cells outside a band hold NaN: reading them would show in x
// (a band of one is diagonal, its second stored column never read).
TEST_F(Solvers, LuSolvesFullAndEveryBandWidthAndItsFactorsRebuildTheMatrix) {
    for (int32_t n : {0, 1, 2, 17}) {
        EXPECT_LT(solve_known(dominant(KW_FULL, n)), 1e-12) << n;
        for (int32_t w = 1; w <= 9; ++w) EXPECT_LT(solve_known(dominant(KW_BANDED, n, w)), 1e-12) << w << " " << n;
        RealMatrix A = dominant(KW_FULL, n);
        const Dense D = dense(A);
        ASSERT_EQ(M_ludcmp(&A), 0);
        Dense L = identity(n + 1), U(n + 1, std::vector<double>(n + 1, 0.0));
        for (int32_t i = 0; i <= n; ++i)
            for (int32_t j = 0; j <= n; ++j) (j < i ? L[i][j] : U[i][j]) = A.a[i][j];
        EXPECT_LT(max_difference(multiply(L, U), D), 1e-12) << n;
    }
}

TEST_F(Solvers, PivotTestStandsWhereADivisionFollows) {
    RealMatrix A = from({{1, 2, 3}, {2, 4, 1}, {1, 0, 5}}), B = make(KW_BANDED, 3, 3, 3, [](int32_t, int32_t) { return 1.0; });
    EXPECT_FAILURE(M_ludcmp(&A), KW_ESINGULAR, "M_LUDCMP");
    EXPECT_FAILURE(M_ludcmp(&B), KW_ESINGULAR, "M_LUDCMP");
    // Only the last pivot is zero: the substitution's guard refuses it, and
    // x is left as it was. A 1 x 1 band has only the guard.
    const double b[] = {1.0, 2.0};
    double x[] = {7.0, 7.0};
    for (RealMatrix C : {from({{1, 1}, {1, 1}}), from({{0.0}}, KW_BANDED, 1)}) {
        ASSERT_EQ(M_ludcmp(&C), 0);
        EXPECT_FAILURE(M_rafoba(&C, b, x), KW_ESINGULAR, "M_RAFOBA");
        EXPECT_EQ(x[0], 7.0);
    }
    // With the guard switched off the overflowing quotient goes through.
    RealMatrix T = from({{1e-320}}, KW_BANDED, 1);
    EXPECT_FAILURE(M_rafoba(&T, b, x), KW_ESINGULAR, "M_RAFOBA");
    M_NoErrChk(1);
    EXPECT_EQ(M_rafoba(&T, b, x), 0);
    M_NoErrChk(0);
    EXPECT_TRUE(std::isinf(x[0]));
    // Shapes and types the solvers refuse.
    RealMatrix R = random(KW_FULL, 2, 3), L = dominant(KW_LOWERLEFT, 2), Bd = dominant(KW_BANDED, 2, 3), E = empty();
    int32_t piv[3];
    double z[3] = {0, 0, 0};
    EXPECT_FAILURE(M_ludcmp(&R), KW_ESIZE, "M_LUDCMP");
    EXPECT_FAILURE(M_ludpiv(&R, piv), KW_ESIZE, "M_LUDPIV");
    EXPECT_FAILURE(M_ludcmp(&L), KW_EARG, "M_LUDCMP");
    EXPECT_FAILURE(M_ludpiv(&Bd, piv), KW_EARG, "M_LUDPIV");
    EXPECT_FAILURE(M_rafoba(&E, z, z), KW_EARG, "M_RAFOBA");
    EXPECT_FAILURE(M_forbac(&Bd, z, 3, nullptr, &stk), KW_EARG, "M_FORBAC");
}

// Points and ControlPoints are solved component by component, the markers
// kept, a Point result of weight 1; the scratch goes back to the context.
TEST_F(Solvers, ForbacSolvesEachComponentAndKeepsMarkers) {
    RealMatrix A = dominant(KW_BANDED, 9, 5);
    ASSERT_EQ(M_ludcmp(&A), 0);
    std::vector<Point> P(10);
    std::vector<ControlPoint> C(10), F(10), out(10), flat(10), cout(10);
    std::vector<double> px(10), cw(10);
    for (int32_t i = 0; i <= 9; ++i) {
        P[i] = Point{px[i] = uniform(), uniform(), uniform()};
        C[i] = ControlPoint{uniform(), uniform(), uniform(), cw[i] = uniform(0.5, 2.0)};
        F[i] = ControlPoint{uniform(), uniform(), KW_PLANAR, KW_NONRATIONAL};
    }
    ASSERT_EQ(M_rafoba(&A, px.data(), px.data()) + M_rafoba(&A, cw.data(), cw.data()), 0);
    ASSERT_EQ(M_forbac(&A, P.data(), 1, out.data(), &stk) + M_forbac(&A, F.data(), 2, flat.data(), &stk), 0);
    ASSERT_EQ(M_forbac(&A, C.data(), 2, cout.data(), &stk), 0);
    for (int32_t i = 0; i <= 9; ++i) {
        EXPECT_TRUE(std::fabs(out[i].x - px[i]) < 1e-14 && out[i].w == 1.0 && std::fabs(cout[i].w - cw[i]) < 1e-14);
        EXPECT_TRUE(flat[i].z == KW_PLANAR && flat[i].w == KW_NONRATIONAL);
    }
    EXPECT_EQ(census(&stk)[KW_LIST_P1D] + census(&stk)[KW_LIST_C1D], 0);
}

TEST_F(Solvers, PivotedLuSolvesSystemsThatNeedExchanges) {
    for (int32_t n : {0, 1, 3, 12}) {
        RealMatrix A = random(KW_FULL, n, n);
        if (n > 0) A.a[0][0] = 0.0;  // no decomposition without an exchange
        const std::vector<double> xs = vec(n);
        std::vector<double> b = times(dense(A), xs);
        std::vector<int32_t> piv(n + 1);
        ASSERT_EQ(M_ludpiv(&A, piv.data()) + M_rafbpv(&A, piv.data(), b.data()), 0);
        EXPECT_LT(max_difference(b, xs), 1e-9) << n;
    }
    // Raw values 100 and 1 in column 0; scaled by their rows, 0.5 and 1.
    int32_t piv[3];
    RealMatrix S = from({{100, 200}, {1, 0.5}}), T = from({{2, 1}, {2, 2}});
    ASSERT_EQ(M_ludpiv(&S, piv), 0);
    EXPECT_EQ(piv[0], 1);
    // Scaled candidates 1 and 1: the later row wins the tie.
    ASSERT_EQ(M_ludpiv(&T, piv), 0);
    EXPECT_TRUE(piv[0] == 1 && T.a[0][1] == 2.0);
    // Row 0's scale moves with it: column 1 then picks row 1, not row 2.
    RealMatrix W = from({{1, 8, -4}, {-8, -4, 10}, {4, 8, 4}});
    ASSERT_EQ(M_ludpiv(&W, piv), 0);
    EXPECT_EQ(std::vector<int32_t>(piv, piv + 3), (std::vector<int32_t>{1, 1, 2}));
    // A zero row stops before any elimination; a dependent row later.
    RealMatrix Z = from({{1, 2, 3}, {2, 3, 4}, {0, 0, 0}}), D = from({{2, 2, 3}, {2, 5, 6}, {4, 7, 9}});
    const Dense before = dense(Z);
    EXPECT_FAILURE(M_ludpiv(&Z, piv), KW_ESINGULAR, "M_LUDPIV");
    EXPECT_EQ(max_difference(dense(Z), before), 0.0);
    EXPECT_FAILURE(M_ludpiv(&D, piv), KW_ESINGULAR, "M_LUDPIV");
    // Bad exchanges and tiny diagonals are refused before b is touched.
    RealMatrix A = dominant(KW_FULL, 2);
    ASSERT_EQ(M_ludpiv(&A, piv), 0);
    double b[] = {1.0, 2.0, 3.0};
    const int32_t back[] = {0, 0, 2}, beyond[] = {0, 3, 2};
    EXPECT_FAILURE(M_rafbpv(&A, back, b), KW_ESIZE, "M_RAFBPV");
    EXPECT_FAILURE(M_rafbpv(&A, beyond, b), KW_ESIZE, "M_RAFBPV");
    A.a[2][2] = 1e-10;
    EXPECT_FAILURE(M_rafbpv(&A, piv, b), KW_ESINGULAR, "M_RAFBPV");
    EXPECT_EQ(b[0] + b[1] + b[2], 6.0);
}

TEST_F(Solvers, InversesTimesTheMatrixGiveTheIdentity) {
    for (int32_t n : {0, 3, 10}) {
        for (int32_t w : {0, 5}) {
            RealMatrix A = dominant(w ? KW_BANDED : KW_FULL, n, w), X = empty(), Y = empty();
            const Dense D = dense(A);
            ASSERT_EQ(M_rmainv(&A, 0, &X, &stk), 0);
            EXPECT_LT(max_difference(multiply(D, dense(X)), identity(n + 1)), 1e-12);
            ASSERT_EQ(M_rmainv(&A, 1, &Y, &stk), 0);  // already factored
            EXPECT_EQ(max_difference(dense(X), dense(Y)), 0.0);
        }
        RealMatrix A = random(KW_FULL, n, n), P = empty(), S = empty();
        for (int32_t i = 0; i <= n; ++i) A.a[i][i] += 3.0;
        const Dense D = dense(A);
        ASSERT_EQ(M_rmaivp(&A, &P, &stk) + M_rmaivs(&A, &S, &stk), 0);
        EXPECT_EQ(max_difference(dense(A), D), 0.0);
        EXPECT_LT(max_difference(multiply(D, dense(P)), identity(n + 1)), 1e-12);
        EXPECT_LT(max_difference(multiply(dense(S), D), identity(n + 1)), 1e-12);
    }
    RealMatrix O = from({{1, 1}, {1, 1}}), Z = from({{0, 0}, {0, 0}}), R = random(KW_FULL, 1, 2), X = empty();
    EXPECT_FAILURE(M_rmaivp(&O, &X, &stk), KW_ESINGULAR, "M_LUDPIV");
    EXPECT_FAILURE(M_rmaivs(&Z, &X, &stk), KW_ESINGULAR, "M_SVDSBF");
    EXPECT_FAILURE(M_rmainv(&O, 0, &X, &stk), KW_ESINGULAR, "M_RAFOBA");
    EXPECT_FAILURE(M_rmaivp(&O, &O, &stk), KW_EARG, "M_RMAIVP");
    EXPECT_FAILURE(M_rmainv(&R, 0, &X, &stk), KW_ESIZE, "M_RMAINV");
}

TEST_F(Solvers, LeastSquaresSatisfiesTheNormalEquations) {
    for (auto [n, m] : {std::pair{1, 0}, {6, 2}, {30, 5}}) {
        RealMatrix A = random(KW_FULL, n, m);
        const Dense D = dense(A);
        const std::vector<double> b = vec(n), xs = vec(m), exact = times(D, xs);
        std::vector<double> x(m + 1);
        ASSERT_EQ(M_lsslsy(&A, b.data(), x.data()), 0);
        std::vector<double> r = times(D, x);
        for (int32_t i = 0; i <= n; ++i) r[i] -= b[i];
        EXPECT_LT(max_difference(times(transpose(D), r), std::vector<double>(m + 1, 0.0)), 1e-12);
        ASSERT_EQ(M_lsslsy(&A, exact.data(), x.data()), 0);  // an exact fit
        EXPECT_LT(max_difference(x, xs), 1e-10);
    }
    // As many equations as unknowns, or dependent columns: x untouched.
    RealMatrix A = dominant(KW_FULL, 3), S = from({{1, 2}, {2, 4}, {3, 6}, {4, 8}, {5, 10}});
    const double b[] = {1, 2, 3, 4, 5};
    double x[] = {5, 5, 5, 5};
    EXPECT_FAILURE(M_lsslsy(&A, b, x), KW_ESIZE, "M_LSSLSY");
    EXPECT_FAILURE(M_lsslsy(&S, b, x), KW_ESINGULAR, "M_LUDPIV");
    EXPECT_EQ(x[0] + x[1], 10.0);
}

}  // namespace
