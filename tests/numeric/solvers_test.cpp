// LU solvers (full, banded, pivoted), inverses and normal-equation least
// squares: solutions against known ones, factors against the matrix, and
// the failures each step is meant to report.
#include <cstring>

#include "support.hpp"

using namespace kwtest;

namespace {

class Solvers : public Numeric {
protected:
    // Solves A x = A x* with M_ludcmp and M_rafoba; returns max |x - x*|.
    double solve_known(RealMatrix A) {
        const Dense D = dense(A);
        const std::vector<double> xs = vec(A.n), b = times(D, xs);
        std::vector<double> x(A.n + 1);
        EXPECT_EQ(M_ludcmp(&A), 0);
        EXPECT_EQ(M_rafoba(&A, b.data(), x.data()), 0);
        return max_difference(x, xs);
    }
};

TEST_F(Solvers, FullLuSolvesKnownSystemsAndItsFactorsRebuildTheMatrix) {
    for (int32_t n : {0, 1, 4, 17}) {
        EXPECT_LT(solve_known(dominant(KW_FULL, n)), 1e-12) << n;
        RealMatrix A = dominant(KW_FULL, n);
        const Dense D = dense(A);
        ASSERT_EQ(M_ludcmp(&A), 0);
        Dense L = identity(n + 1), U(n + 1, std::vector<double>(n + 1, 0.0));
        for (int32_t i = 0; i <= n; ++i)
            for (int32_t j = 0; j <= n; ++j) (j < i ? L[i][j] : U[i][j]) = A.a[i][j];
        EXPECT_LT(max_difference(multiply(L, U), D), 1e-12) << n;
    }
}

TEST_F(Solvers, BandedLuSolvesEveryBandWidthWithoutReadingOutsideTheBand) {
    // The band's unused corners hold NaN: reading them would show in x.
    for (int32_t w = 1; w <= 9; ++w)
        for (int32_t n : {0, 1, 2, 12, 40}) EXPECT_LT(solve_known(dominant(KW_BANDED, n, w)), 1e-12) << w << " " << n;
}

TEST_F(Solvers, BandWidthOneIsDiagonal) {
    RealMatrix A = make(KW_BANDED, 3, 3, 1, [](int32_t i, int32_t) { return i + 2.0; });
    ASSERT_EQ(A.w, 1);
    ASSERT_EQ(M_ludcmp(&A), 0);
    for (int32_t i = 0; i <= 3; ++i) EXPECT_EQ(A.a[i][0], i + 2.0);
    const double b[] = {2.0, 6.0, 12.0, 20.0};
    double x[4];
    ASSERT_EQ(M_rafoba(&A, b, x), 0);
    for (int32_t i = 0; i <= 3; ++i) EXPECT_EQ(x[i], i + 1.0);
}

TEST_F(Solvers, PivotTestStandsWhereADivisionFollows) {
    // A zero pivot with rows left below it: M_ludcmp stops.
    RealMatrix A = make(KW_FULL, 2, 2, 3, [](int32_t i, int32_t j) {
        const double v[3][3] = {{1, 2, 3}, {2, 4, 1}, {1, 0, 5}};
        return v[i][j];
    });
    EXPECT_FAILURE(M_ludcmp(&A), KW_ESINGULAR, "M_LUDCMP");
    RealMatrix B = make(KW_BANDED, 3, 3, 3, [](int32_t, int32_t) { return 1.0; });
    EXPECT_FAILURE(M_ludcmp(&B), KW_ESINGULAR, "M_LUDCMP");

    // Only the last pivot is zero: decomposition succeeds, the substitution
    // refuses, leaving x as it was.
    RealMatrix C = make(KW_FULL, 1, 1, 2, [](int32_t, int32_t) { return 1.0; });
    ASSERT_EQ(M_ludcmp(&C), 0);
    const double b[] = {1.0, 2.0};
    double x[] = {7.0, 7.0};
    EXPECT_FAILURE(M_rafoba(&C, b, x), KW_ESINGULAR, "M_RAFOBA");
    EXPECT_EQ(x[0], 7.0);

    // A 1 x 1 band has no pivot test at all; only the guard stands.
    RealMatrix Z = make(KW_BANDED, 0, 0, 1, [](int32_t, int32_t) { return 0.0; });
    EXPECT_EQ(M_ludcmp(&Z), 0);
    EXPECT_FAILURE(M_rafoba(&Z, b, x), KW_ESINGULAR, "M_RAFOBA");
}

TEST_F(Solvers, OverflowGuardSwitchLetsOverflowingDivisionsThrough) {
    RealMatrix A = make(KW_BANDED, 0, 0, 1, [](int32_t, int32_t) { return 1e-320; });
    const double b[] = {1e-5};
    double x[] = {0.0};
    EXPECT_FAILURE(M_rafoba(&A, b, x), KW_ESINGULAR, "M_RAFOBA");
    M_NoErrChk(1);
    EXPECT_EQ(M_rafoba(&A, b, x), 0);
    M_NoErrChk(0);
    EXPECT_TRUE(std::isinf(x[0]));
}

TEST_F(Solvers, ShapesAndTypesTheSolversRefuse) {
    RealMatrix R = random(KW_FULL, 2, 3);
    EXPECT_FAILURE(M_ludcmp(&R), KW_ESIZE, "M_LUDCMP");
    EXPECT_FAILURE(M_ludpiv(&R, nullptr), KW_ESIZE, "M_LUDPIV");
    RealMatrix L = dominant(KW_LOWERLEFT, 2);
    EXPECT_FAILURE(M_ludcmp(&L), KW_EARG, "M_LUDCMP");
    int32_t piv[3];
    EXPECT_FAILURE(M_ludpiv(&L, piv), KW_EARG, "M_LUDPIV");
    RealMatrix Bd = dominant(KW_BANDED, 2, 3);
    EXPECT_FAILURE(M_ludpiv(&Bd, piv), KW_EARG, "M_LUDPIV");
    RealMatrix E;
    M_inirma(&E);
    EXPECT_FAILURE(M_ludcmp(&E), KW_EARG, "M_LUDCMP");
    double b[3] = {0, 0, 0};
    EXPECT_FAILURE(M_rafoba(&E, b, b), KW_EARG, "M_RAFOBA");
    RealMatrix F = dominant(KW_FULL, 2);
    EXPECT_FAILURE(M_forbac(&F, b, 3, nullptr, &stk), KW_EARG, "M_FORBAC");
}

TEST_F(Solvers, ForbacSolvesEachComponentAndKeepsMarkers) {
    for (int32_t w : {3, 5}) {
        RealMatrix A = dominant(KW_BANDED, 9, w);
        ASSERT_EQ(M_ludcmp(&A), 0);
        std::vector<Point> P(10);
        std::vector<ControlPoint> C(10), F(10), N(10), out(10);
        for (int32_t i = 0; i <= 9; ++i) {
            P[i] = Point{uniform(), uniform(), uniform()};
            C[i] = ControlPoint{uniform(), uniform(), uniform(), uniform(0.5, 2.0)};
            F[i] = ControlPoint{uniform(), uniform(), KW_PLANAR, KW_NONRATIONAL};
        }
        // Reference: M_rafoba on each coordinate.
        auto column = [&](auto get) {
            std::vector<double> b(10), x(10);
            for (int32_t i = 0; i <= 9; ++i) b[i] = get(i);
            EXPECT_EQ(M_rafoba(&A, b.data(), x.data()), 0);
            return x;
        };
        const auto px = column([&](int32_t i) { return P[i].x; });
        const auto pz = column([&](int32_t i) { return P[i].z; });
        const auto cw = column([&](int32_t i) { return C[i].w; });
        const auto fy = column([&](int32_t i) { return F[i].y; });

        ASSERT_EQ(M_forbac(&A, P.data(), 1, out.data(), &stk), 0);
        for (int32_t i = 0; i <= 9; ++i) {
            EXPECT_NEAR(out[i].x, px[i], 1e-14);
            EXPECT_NEAR(out[i].z, pz[i], 1e-14);
            EXPECT_EQ(out[i].w, 1.0);
        }
        ASSERT_EQ(M_forbac(&A, C.data(), 2, out.data(), &stk), 0);
        for (int32_t i = 0; i <= 9; ++i) EXPECT_NEAR(out[i].w, cw[i], 1e-14);
        ASSERT_EQ(M_forbac(&A, F.data(), 2, N.data(), &stk), 0);
        for (int32_t i = 0; i <= 9; ++i) {
            EXPECT_NEAR(N[i].y, fy[i], 1e-14);
            EXPECT_EQ(N[i].z, KW_PLANAR);
            EXPECT_EQ(N[i].w, KW_NONRATIONAL);
        }
        // The scratch arrays went back to the context.
        EXPECT_EQ(stk.head[KW_LIST_P1D], nullptr);
        EXPECT_EQ(stk.head[KW_LIST_C1D], nullptr);
    }
}

TEST_F(Solvers, PivotedLuSolvesSystemsThatNeedExchanges) {
    for (int32_t n : {0, 1, 3, 12}) {
        RealMatrix A = random(KW_FULL, n, n);
        if (n > 0) A.a[0][0] = 0.0;  // no decomposition without an exchange
        const Dense D = dense(A);
        const std::vector<double> xs = vec(n);
        std::vector<double> b = times(D, xs);
        std::vector<int32_t> piv(n + 1);
        ASSERT_EQ(M_ludpiv(&A, piv.data()), 0);
        ASSERT_EQ(M_rafbpv(&A, piv.data(), b.data()), 0);
        EXPECT_LT(max_difference(b, xs), 1e-9) << n;
        for (int32_t j = 0; j <= n; ++j) EXPECT_GE(piv[j], j);
    }
}

TEST_F(Solvers, PivotChoiceScalesRowsAndLetsALaterRowWinATie) {
    // Raw values 100 and 1 in column 0, but scaled by their rows' largest
    // values they are 0.5 and 1.
    RealMatrix A = make(KW_FULL, 1, 1, 2, [](int32_t i, int32_t j) {
        const double v[2][2] = {{100.0, 200.0}, {1.0, 0.5}};
        return v[i][j];
    });
    int32_t piv[2];
    ASSERT_EQ(M_ludpiv(&A, piv), 0);
    EXPECT_EQ(piv[0], 1);
    EXPECT_EQ(piv[1], 1);
    EXPECT_EQ(A.a[0][0], 1.0);
    // Scaled candidates 1 and 1: the later row is taken.
    RealMatrix T = make(KW_FULL, 1, 1, 2, [](int32_t i, int32_t j) {
        const double v[2][2] = {{2.0, 1.0}, {2.0, 2.0}};
        return v[i][j];
    });
    ASSERT_EQ(M_ludpiv(&T, piv), 0);
    EXPECT_EQ(piv[0], 1);
    EXPECT_EQ(T.a[0][1], 2.0);
}

TEST_F(Solvers, PivotedLuReportsZeroRowsBeforeEliminatingAndSingularPivots) {
    RealMatrix Z = make(KW_FULL, 2, 2, 3, [](int32_t i, int32_t j) { return i == 2 ? 0.0 : i + j + 1.0; });
    const Dense before = dense(Z);
    int32_t piv[3];
    EXPECT_FAILURE(M_ludpiv(&Z, piv), KW_ESINGULAR, "M_LUDPIV");
    EXPECT_EQ(max_difference(dense(Z), before), 0.0);
    // Rank 2 without a zero row: the last pivot vanishes.
    RealMatrix S = make(KW_FULL, 2, 2, 3, [](int32_t i, int32_t j) { return (i + 1.0) * (j + 1.0) + (i == j); });
    S.a[2][0] = S.a[0][0] + S.a[1][0];
    S.a[2][1] = S.a[0][1] + S.a[1][1];
    S.a[2][2] = S.a[0][2] + S.a[1][2];
    EXPECT_FAILURE(M_ludpiv(&S, piv), KW_ESINGULAR, "M_LUDPIV");
}

TEST_F(Solvers, PivotedSubstitutionChecksBeforeTouchingTheRightSide) {
    RealMatrix A = dominant(KW_FULL, 2);
    int32_t piv[3];
    ASSERT_EQ(M_ludpiv(&A, piv), 0);
    double b[] = {1.0, 2.0, 3.0};
    const int32_t bad[] = {0, 0, 2};
    EXPECT_FAILURE(M_rafbpv(&A, bad, b), KW_ESIZE, "M_RAFBPV");
    const int32_t out[] = {0, 3, 2};
    EXPECT_FAILURE(M_rafbpv(&A, out, b), KW_ESIZE, "M_RAFBPV");
    A.a[2][2] = 1e-10;
    EXPECT_FAILURE(M_rafbpv(&A, piv, b), KW_ESINGULAR, "M_RAFBPV");
    EXPECT_EQ(b[0], 1.0);
    EXPECT_EQ(b[2], 3.0);
}

TEST_F(Solvers, InversesTimesTheMatrixGiveTheIdentity) {
    for (int32_t n : {0, 3, 10}) {
        for (int32_t type : {KW_FULL, KW_BANDED}) {
            RealMatrix A = dominant(type, n, type == KW_BANDED ? 5 : 0);
            const Dense D = dense(A);
            RealMatrix X;
            M_inirma(&X);
            ASSERT_EQ(M_rmainv(&A, 0, &X, &stk), 0);
            EXPECT_EQ(X.type, KW_FULL);
            EXPECT_LT(max_difference(multiply(D, dense(X)), identity(n + 1)), 1e-12);
            // Already factored: the same inverse again.
            RealMatrix Y;
            M_inirma(&Y);
            ASSERT_EQ(M_rmainv(&A, 1, &Y, &stk), 0);
            EXPECT_EQ(max_difference(dense(X), dense(Y)), 0.0);
        }
        RealMatrix A = random(KW_FULL, n, n);
        for (int32_t i = 0; i <= n; ++i) A.a[i][i] += 3.0;
        const Dense D = dense(A);
        RealMatrix P, S;
        M_inirma(&P);
        M_inirma(&S);
        ASSERT_EQ(M_rmaivp(&A, &P, &stk), 0);
        ASSERT_EQ(M_rmaivs(&A, &S, &stk), 0);
        EXPECT_EQ(max_difference(dense(A), D), 0.0);
        EXPECT_LT(max_difference(multiply(D, dense(P)), identity(n + 1)), 1e-12);
        EXPECT_LT(max_difference(multiply(dense(S), D), identity(n + 1)), 1e-12);
    }
}

TEST_F(Solvers, InversesRefuseSingularAndSharedOperands) {
    RealMatrix A = make(KW_FULL, 1, 1, 2, [](int32_t, int32_t) { return 1.0; });
    RealMatrix X;
    M_inirma(&X);
    EXPECT_FAILURE(M_rmaivp(&A, &X, &stk), KW_ESINGULAR, "M_LUDPIV");
    RealMatrix Z = make(KW_FULL, 1, 1, 2, [](int32_t, int32_t) { return 0.0; });
    EXPECT_FAILURE(M_rmaivs(&Z, &X, &stk), KW_ESINGULAR, "M_SVDSBF");
    EXPECT_FAILURE(M_rmainv(&A, 0, &X, &stk), KW_ESINGULAR, "M_RAFOBA");
    RealMatrix B = dominant(KW_FULL, 2);
    EXPECT_FAILURE(M_rmaivp(&B, &B, &stk), KW_EARG, "M_RMAIVP");
    RealMatrix R = random(KW_FULL, 1, 2);
    EXPECT_FAILURE(M_rmainv(&R, 0, &X, &stk), KW_ESIZE, "M_RMAINV");
    EXPECT_FAILURE(M_rmaivs(&R, &X, &stk), KW_ESIZE, "M_RMAIVS");
}

TEST_F(Solvers, LeastSquaresSatisfiesTheNormalEquations) {
    for (auto [n, m] : {std::pair{1, 0}, {6, 2}, {30, 5}}) {
        RealMatrix A = random(KW_FULL, n, m);
        const Dense D = dense(A);
        const std::vector<double> b = vec(n);
        std::vector<double> x(m + 1);
        ASSERT_EQ(M_lsslsy(&A, b.data(), x.data()), 0);
        std::vector<double> r = times(D, x);
        for (int32_t i = 0; i <= n; ++i) r[i] -= b[i];
        const std::vector<double> g = times(transpose(D), r);
        EXPECT_LT(max_difference(g, std::vector<double>(m + 1, 0.0)), 1e-12);
        // An exact fit is found exactly.
        const std::vector<double> xs = vec(m), bs = times(D, xs);
        ASSERT_EQ(M_lsslsy(&A, bs.data(), x.data()), 0);
        EXPECT_LT(max_difference(x, xs), 1e-10);
    }
}

TEST_F(Solvers, LeastSquaresNeedsMoreEquationsThanUnknowns) {
    RealMatrix A = dominant(KW_FULL, 3);
    const double b[] = {1, 2, 3, 4, 5};
    double x[] = {5, 5, 5, 5};
    EXPECT_FAILURE(M_lsslsy(&A, b, x), KW_ESIZE, "M_LSSLSY");
    EXPECT_EQ(x[0], 5.0);
    // Dependent columns: singular normal equations, x untouched.
    RealMatrix S = make(KW_FULL, 4, 1, 5, [](int32_t i, int32_t) { return i + 1.0; });
    EXPECT_FAILURE(M_lsslsy(&S, b, x), KW_ESINGULAR, "M_LUDPIV");
    EXPECT_EQ(x[1], 5.0);
}

}  // namespace
