// Eigenvalues and eigenvectors: A V = V diag(d) with V orthonormal, known
// spectra, and what a non-symmetric matrix gives.
#include <numbers>
#include <numeric>

#include "support.hpp"

using namespace kwtest;

namespace {

class Eigen : public Numeric {
protected:
    // Checks the decomposition against the symmetric part of A; returns the
    // eigenvalues.
    std::vector<double> check(const RealMatrix &A) {
        const int32_t n = A.n;
        const Dense D = dense(A), T = transpose(D);
        Dense S = D;
        for (int32_t i = 0; i <= n; ++i)
            for (int32_t j = 0; j <= n; ++j) S[i][j] = 0.5 * (D[i][j] + T[i][j]);
        std::vector<double> d(n + 1);
        RealMatrix V = empty();
        EXPECT_EQ(M_rmaevv(&A, d.data(), &V, &stk), 0);
        const Dense Vd = dense(V);
        Dense VD = Vd;
        for (auto &row : VD)
            for (int32_t j = 0; j <= n; ++j) row[j] *= d[j];
        EXPECT_LT(max_difference(multiply(transpose(Vd), Vd), identity(n + 1)), 1e-13);
        EXPECT_LT(max_difference(multiply(S, Vd), VD), 1e-12 * (1 + std::fabs(d[0]) + std::fabs(d[n])));
        EXPECT_TRUE(std::is_sorted(d.begin(), d.end()));
        return d;
    }
};

TEST_F(Eigen, SymmetricNonSymmetricAndTriangularInputs) {
    for (int32_t n : {0, 1, 2, 5, 12}) {
        const RealMatrix R = random(KW_FULL, n, n);
        const std::vector<double> d = check(make(KW_FULL, n, n, n + 1, [&R](int32_t i, int32_t j) { return R.a[i][j] + R.a[j][i]; }));
        double trace = 0.0;
        for (int32_t i = 0; i <= n; ++i) trace += 2.0 * R.a[i][i];
        EXPECT_NEAR(std::accumulate(d.begin(), d.end(), 0.0), trace, 1e-12);
        check(R);  // its symmetric part
    }
    check(random(KW_LOWERLEFT, 3, 3));  // zeros outside the triangle
}

TEST_F(Eigen, KnownSpectraInAscendingOrder) {
    EXPECT_EQ(check(from({{3, 0, 0}, {0, 1, 0}, {0, 0, -1}})), (std::vector<double>{-1.0, 1.0, 3.0}));
    // The second difference matrix as a band: 2 - 2 cos(k pi / (n + 2)).
    const int32_t n = 7;
    const std::vector<double> d = check(make(KW_BANDED, n, n, 3, [](int32_t i, int32_t j) { return i == j ? 2.0 : -1.0; }));
    for (int32_t k = 1; k <= n + 1; ++k) EXPECT_NEAR(d[k - 1], 2.0 - 2.0 * std::cos(k * std::numbers::pi / (n + 2)), 1e-13);
    // Huge entries neither overflow nor lose the spectrum.
    const std::vector<double> h = check(from({{2e300, 1e300}, {1e300, 2e300}}));
    EXPECT_NEAR(h[0] / 1e300, 1.0, 1e-14);
    EXPECT_NEAR(h[1] / 1e300, 3.0, 1e-14);
}

TEST_F(Eigen, FailuresForShapeValuesAndIterations) {
    double d[3];
    RealMatrix V = empty(), R = random(KW_FULL, 1, 2), N = random(KW_FULL, 2, 2), S = from({{1, 2, 3}, {2, 3, 4}, {3, 4, 5}});
    EXPECT_FAILURE(M_rmaevv(&R, d, &V, &stk), KW_ESIZE, "M_RMAEVV");
    for (double bad : {std::numeric_limits<double>::infinity(), std::nan("")}) {
        N.a[1][2] = bad;
        EXPECT_FAILURE(M_rmaevv(&N, d, &V, &stk), KW_ESINGULAR, "M_RMAEVV");
    }
    const int32_t saved = M_iteevv;
    M_iteevv = 1;
    EXPECT_FAILURE(M_rmaevv(&S, d, &V, &stk), KW_ENOCONV, "M_RMAEVV");
    M_iteevv = saved;
    EXPECT_EQ(M_rmaevv(&S, d, &V, &stk), 0);
}

}  // namespace
