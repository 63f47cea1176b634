// Singular value decomposition: it rebuilds its input with orthonormal
// factors, its back substitution gives least-squares and minimum-norm
// solutions, and the inverse built on it inverts.
#include "support.hpp"

using namespace kwtest;

namespace {

class Svd : public Numeric {
protected:
    struct Factors {
        int32_t m, n;
        double **u, **v, *w;
    };
    // Decomposes a copy on stk of the (m+1) x (n+1) matrix A.
    Factors decompose(const Dense &A) {
        const auto m = static_cast<int32_t>(A.size()) - 1, n = static_cast<int32_t>(A[0].size()) - 1;
        Factors f{m, n, copy(A), S_getr2d(n, n, &stk), S_getr1d(n, &stk)};
        EXPECT_EQ(M_svdcpf(f.u, f.w, f.v, m, n), 0);
        return f;
    }
    double **copy(const Dense &A) {
        double **a = S_getr2d(static_cast<int32_t>(A.size()) - 1, static_cast<int32_t>(A[0].size()) - 1, &stk);
        for (size_t i = 0; i < A.size(); ++i) std::copy(A[i].begin(), A[i].end(), a[i]);
        return a;
    }
    Dense random_dense(int32_t m, int32_t n) { return dense(random(KW_FULL, m, n)); }
    std::vector<double> solve(const Factors &f, const std::vector<double> &b, int16_t first) {
        std::vector<double> x(f.n + 1);
        EXPECT_EQ(M_svdsbf(f.u, f.w, f.v, f.m, f.n, b.data(), 3, first, x.data()), 0);
        return x;
    }
};

// Orthonormal factors that rebuild A, values in descending order; for full
// rank the least-squares solution: the residual is orthogonal to A's columns.
TEST_F(Svd, DecompositionRebuildsItsInputAndSolvesLeastSquares) {
    for (auto [m, n] : {std::pair{0, 0}, {3, 3}, {9, 4}, {20, 1}}) {
        const Dense A = random_dense(m, n);
        const Factors f = decompose(A);
        const Dense U = rows_of(f.u, m, n), V = rows_of(f.v, n, n);
        Dense UW = U;
        for (auto &row : UW)
            for (int32_t j = 0; j <= n; ++j) row[j] *= f.w[j];
        EXPECT_LT(max_difference(multiply(UW, transpose(V)), A), 1e-13) << m << " " << n;
        EXPECT_LT(max_difference(multiply(transpose(U), U), identity(n + 1)), 1e-13);
        EXPECT_LT(max_difference(multiply(transpose(V), V), identity(n + 1)), 1e-13);
        EXPECT_TRUE(std::is_sorted(f.w, f.w + n + 1, std::greater<>()) && f.w[n] >= 0.0);
        const std::vector<double> b = vec(m), x = solve(f, b, 1);
        std::vector<double> r = times(A, x);
        for (int32_t i = 0; i <= m; ++i) r[i] -= b[i];
        EXPECT_LT(max_difference(times(transpose(A), r), std::vector<double>(n + 1, 0.0)), 1e-12);
    }
}

// A = B C of rank 2, 7 x 5: A+ = C^T (C C^T)^-1 (B^T B)^-1 B^T. The zeroed
// values stay for the next right side.
TEST_F(Svd, RankDeficientSystemsGetTheMinimumNormSolution) {
    const Dense B = random_dense(6, 1), C = random_dense(1, 4), A = multiply(B, C);
    auto inverse2 = [](const Dense &M) {
        const double det = M[0][0] * M[1][1] - M[0][1] * M[1][0];
        return Dense{{M[1][1] / det, -M[0][1] / det}, {-M[1][0] / det, M[0][0] / det}};
    };
    const Dense pinv = multiply(multiply(transpose(C), inverse2(multiply(C, transpose(C)))),
                                multiply(inverse2(multiply(transpose(B), B)), transpose(B)));
    const Factors f = decompose(A);
    const std::vector<double> b1 = vec(6), b2 = vec(6);
    EXPECT_LT(max_difference(solve(f, b1, 1), times(pinv, b1)), 1e-12);
    EXPECT_EQ(std::count(f.w, f.w + 5, 0.0), 3);
    EXPECT_LT(max_difference(solve(f, b2, 0), times(pinv, b2)), 1e-12);
    // Point and ControlPoint right sides are solved component by component.
    std::vector<Point> P(7), X(5);
    std::vector<ControlPoint> Q(7), Y(5);
    for (int32_t i = 0; i <= 6; ++i) {
        P[i] = Point{0.0, b1[i], 1.0};
        Q[i] = ControlPoint{1.0, 2.0, KW_PLANAR, b2[i]};
    }
    ASSERT_EQ(M_svdsbf(f.u, f.w, f.v, 6, 4, P.data(), 1, 0, X.data()) + M_svdsbf(f.u, f.w, f.v, 6, 4, Q.data(), 2, 0, Y.data()), 0);
    const std::vector<double> x1 = solve(f, b1, 0), x2 = solve(f, b2, 0);
    for (int32_t j = 0; j <= 4; ++j) EXPECT_TRUE(std::fabs(X[j].y - x1[j]) < 1e-14 && std::fabs(Y[j].w - x2[j]) < 1e-14 && Y[j].z == KW_PLANAR);
}

TEST_F(Svd, InverseAndPseudoInverse) {
    Dense A = random_dense(5, 5);
    double **inv = S_getr2d(5, 5, &stk);
    for (int singular = 0; singular < 2; ++singular) {
        if (singular) A[5] = A[0];
        double **a = copy(A);
        ASSERT_EQ(M_svdinv(a, 5, inv), 0);
        // A A+ A = A, which for a regular A makes A+ the inverse.
        EXPECT_LT(max_difference(multiply(multiply(A, rows_of(inv, 5, 5)), A), A), 1e-11);
        EXPECT_EQ(max_difference(rows_of(a, 5, 5), A), 0.0);
    }
}

TEST_F(Svd, ShapeValueAndIterationFailures) {
    const Dense A = random_dense(2, 3), G = random_dense(4, 3);
    double **v = S_getr2d(3, 3, &stk), *w = S_getr1d(3, &stk);
    EXPECT_FAILURE(M_svdcpf(copy(A), w, v, 2, 3), KW_EARG, "M_SVDCPF");
    EXPECT_FAILURE(M_svdsbf(copy(A), w, v, 2, 3, A[0].data(), 3, 1, w), KW_EARG, "M_SVDSBF");
    const Factors z = decompose({{0, 0}, {0, 0}});
    const std::vector<double> b{1.0, 1.0};
    std::vector<double> x(2);
    EXPECT_FAILURE(M_svdsbf(z.u, z.w, z.v, 1, 1, b.data(), 3, 1, x.data()), KW_ESINGULAR, "M_SVDSBF");
    EXPECT_FAILURE(M_svdsbf(z.u, z.w, z.v, 1, 1, b.data(), 4, 1, x.data()), KW_EARG, "M_SVDSBF");
    const int32_t saved = M_itesvd;
    M_itesvd = 0;
    EXPECT_FAILURE(M_svdcpf(copy(G), w, v, 4, 3), KW_ENOCONV, "M_SVDCPF");
    M_itesvd = saved;
    double **g = copy(G);
    g[2][1] = std::nan("");  // never converges, and stays inside its arrays
    EXPECT_FAILURE(M_svdcpf(g, w, v, 4, 3), KW_ENOCONV, "M_SVDCPF");
}

}  // namespace
