// Singular value decomposition: it rebuilds its input with orthonormal
// factors, its back substitution gives least-squares and minimum-norm
// solutions, and the inverse built on it inverts.
#include <algorithm>

#include "support.hpp"

using namespace kwtest;

namespace {

class Svd : public Numeric {
protected:
    // Working copies on stk of an (m+1) x (n+1) dense matrix.
    struct Factors {
        double **u, **v, *w;
    };
    Factors factors(const Dense &A) {
        const int32_t m = static_cast<int32_t>(A.size()) - 1, n = static_cast<int32_t>(A[0].size()) - 1;
        Factors f{S_getr2d(m, n, &stk), S_getr2d(n, n, &stk), S_getr1d(n, &stk)};
        for (int32_t i = 0; i <= m; ++i) std::copy(A[i].begin(), A[i].end(), f.u[i]);
        return f;
    }
    Dense random_dense(int32_t m, int32_t n) {
        Dense A(m + 1, std::vector<double>(n + 1));
        for (auto &row : A)
            for (double &x : row) x = uniform();
        return A;
    }
    // x = A^+ b through the decomposition, with kind 3.
    std::vector<double> solve(Factors f, int32_t m, int32_t n, const std::vector<double> &b, int16_t first) {
        std::vector<double> x(n + 1);
        EXPECT_EQ(M_svdsbf(f.u, f.w, f.v, m, n, b.data(), 3, first, x.data()), 0);
        return x;
    }
};

TEST_F(Svd, DecompositionRebuildsItsInputWithOrthonormalFactors) {
    for (auto [m, n] : {std::pair{0, 0}, {3, 3}, {9, 4}, {6, 6}, {20, 1}}) {
        const Dense A = random_dense(m, n);
        const Factors f = factors(A);
        ASSERT_EQ(M_svdcpf(f.u, f.w, f.v, m, n), 0);
        const Dense U = rows_of(f.u, m, n), V = rows_of(f.v, n, n);
        Dense UW = U;
        for (int32_t i = 0; i <= m; ++i)
            for (int32_t j = 0; j <= n; ++j) UW[i][j] *= f.w[j];
        EXPECT_LT(max_difference(multiply(UW, transpose(V)), A), 1e-13) << m << " " << n;
        EXPECT_LT(max_difference(multiply(transpose(U), U), identity(n + 1)), 1e-13);
        EXPECT_LT(max_difference(multiply(transpose(V), V), identity(n + 1)), 1e-13);
        EXPECT_TRUE(std::is_sorted(f.w, f.w + n + 1, std::greater<>()));
        EXPECT_GE(f.w[n], 0.0);
    }
}

TEST_F(Svd, KnownSingularValues) {
    // Orthogonal columns of lengths 5 and 3 (rows scaled): values 5 and 3.
    const Dense A = {{3, 0}, {4, 0}, {0, -3}};
    const Factors f = factors(A);
    ASSERT_EQ(M_svdcpf(f.u, f.w, f.v, 2, 1), 0);
    EXPECT_NEAR(f.w[0], 5.0, 1e-14);
    EXPECT_NEAR(f.w[1], 3.0, 1e-14);
    const Dense Z = {{0, 0}, {0, 0}};
    const Factors z = factors(Z);
    ASSERT_EQ(M_svdcpf(z.u, z.w, z.v, 1, 1), 0);
    EXPECT_EQ(z.w[0], 0.0);
    EXPECT_FAILURE(M_svdsbf(z.u, z.w, z.v, 1, 1, Z[0].data(), 3, 1, std::vector<double>(2).data()),
                   KW_ESINGULAR, "M_SVDSBF");
}

TEST_F(Svd, BackSubstitutionGivesTheLeastSquaresSolution) {
    const int32_t m = 12, n = 3;
    const Dense A = random_dense(m, n);
    const Factors f = factors(A);
    ASSERT_EQ(M_svdcpf(f.u, f.w, f.v, m, n), 0);
    const std::vector<double> b = vec(m), x = solve(f, m, n, b, 1);
    // The same as the normal equations through M_lsslsy.
    RealMatrix R = make(KW_FULL, m, n, m + 1, [&A](int32_t i, int32_t j) { return A[i][j]; });
    std::vector<double> y(n + 1);
    ASSERT_EQ(M_lsslsy(&R, b.data(), y.data()), 0);
    EXPECT_LT(max_difference(x, y), 1e-12);
}

TEST_F(Svd, RankDeficientSystemsGetTheMinimumNormSolution) {
    // A = B C of rank 2, 7 x 5. The minimum-norm least-squares solution is
    // C^T (C C^T)^-1 (B^T B)^-1 B^T b.
    const int32_t m = 6, n = 4;
    const Dense B = random_dense(m, 1), C = random_dense(1, n), A = multiply(B, C);
    auto inverse2 = [](const Dense &M) {
        const double det = M[0][0] * M[1][1] - M[0][1] * M[1][0];
        return Dense{{M[1][1] / det, -M[0][1] / det}, {-M[1][0] / det, M[0][0] / det}};
    };
    const Dense pinv = multiply(multiply(transpose(C), inverse2(multiply(C, transpose(C)))),
                                multiply(inverse2(multiply(transpose(B), B)), transpose(B)));
    const Factors f = factors(A);
    ASSERT_EQ(M_svdcpf(f.u, f.w, f.v, m, n), 0);
    const std::vector<double> b1 = vec(m), b2 = vec(m);
    EXPECT_LT(max_difference(solve(f, m, n, b1, 1), times(pinv, b1)), 1e-12);
    // The zeroed values stay for the next right side.
    EXPECT_EQ(std::count(f.w, f.w + n + 1, 0.0), 3);
    EXPECT_LT(max_difference(solve(f, m, n, b2, 0), times(pinv, b2)), 1e-12);
}

TEST_F(Svd, PointAndControlPointRightSidesSolveEachComponent) {
    const int32_t m = 5, n = 2;
    const Dense A = random_dense(m, n);
    const Factors f = factors(A);
    ASSERT_EQ(M_svdcpf(f.u, f.w, f.v, m, n), 0);
    std::vector<Point> P(m + 1), X(n + 1);
    std::vector<ControlPoint> C(m + 1), Y(n + 1);
    std::vector<double> py(m + 1), cw(m + 1);
    for (int32_t i = 0; i <= m; ++i) {
        P[i] = Point{uniform(), uniform(), uniform()};
        C[i] = ControlPoint{uniform(), uniform(), KW_PLANAR, uniform()};
        py[i] = P[i].y;
        cw[i] = C[i].w;
    }
    const std::vector<double> xy = solve(f, m, n, py, 1), xw = solve(f, m, n, cw, 0);
    ASSERT_EQ(M_svdsbf(f.u, f.w, f.v, m, n, P.data(), 1, 0, X.data()), 0);
    ASSERT_EQ(M_svdsbf(f.u, f.w, f.v, m, n, C.data(), 2, 0, Y.data()), 0);
    for (int32_t j = 0; j <= n; ++j) {
        EXPECT_NEAR(X[j].y, xy[j], 1e-14);
        EXPECT_NEAR(Y[j].w, xw[j], 1e-14);
        EXPECT_EQ(Y[j].z, KW_PLANAR);
    }
    EXPECT_FAILURE(M_svdsbf(f.u, f.w, f.v, m, n, P.data(), 4, 0, X.data()), KW_EARG, "M_SVDSBF");
}

TEST_F(Svd, InverseAndPseudoInverse) {
    const int32_t n = 5;
    const Dense A = random_dense(n, n);
    const Factors f = factors(A);
    double **inv = S_getr2d(n, n, &stk);
    ASSERT_EQ(M_svdinv(f.u, n, inv), 0);
    EXPECT_LT(max_difference(multiply(A, rows_of(inv, n, n)), identity(n + 1)), 1e-11);
    // Singular: A A+ A = A.
    Dense S = A;
    S[n] = S[0];
    const Factors g = factors(S);
    ASSERT_EQ(M_svdinv(g.u, n, inv), 0);
    EXPECT_LT(max_difference(multiply(multiply(S, rows_of(inv, n, n)), S), S), 1e-12);
}

TEST_F(Svd, ShapeAndIterationFailures) {
    const Dense A = random_dense(2, 3);
    const Factors f = factors(A);
    EXPECT_FAILURE(M_svdcpf(f.u, f.w, f.v, 2, 3), KW_EARG, "M_SVDCPF");
    EXPECT_FAILURE(M_svdsbf(f.u, f.w, f.v, 2, 3, A[0].data(), 3, 1, f.w), KW_EARG, "M_SVDSBF");
    const Dense B = random_dense(4, 3);
    const Factors g = factors(B);
    const int32_t saved = M_itesvd;
    M_itesvd = 0;
    EXPECT_FAILURE(M_svdcpf(g.u, g.w, g.v, 4, 3), KW_ENOCONV, "M_SVDCPF");
    M_itesvd = saved;
}

}  // namespace
