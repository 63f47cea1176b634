// Eigenvalues and eigenvectors: A V = V diag(d) with V orthonormal, known
// spectra, and what a non-symmetric matrix gives.
#include <algorithm>
#include <numbers>

#include "support.hpp"

using namespace kwtest;

namespace {

class Eigen : public Numeric {
protected:
    // Checks the decomposition of A's symmetric part S; returns d.
    std::vector<double> check(const RealMatrix &A, const Dense &S) {
        const int32_t n = A.n;
        std::vector<double> d(n + 1);
        RealMatrix V;
        M_inirma(&V);
        EXPECT_EQ(M_rmaevv(&A, d.data(), &V, &stk), 0);
        const Dense Vd = dense(V);
        EXPECT_LT(max_difference(multiply(transpose(Vd), Vd), identity(n + 1)), 1e-13);
        Dense VD = Vd;
        for (int32_t i = 0; i <= n; ++i)
            for (int32_t j = 0; j <= n; ++j) VD[i][j] *= d[j];
        EXPECT_LT(max_difference(multiply(S, Vd), VD), 1e-12);
        EXPECT_TRUE(std::is_sorted(d.begin(), d.end()));
        return d;
    }
};

TEST_F(Eigen, RandomSymmetricMatricesDecompose) {
    for (int32_t n : {0, 1, 2, 5, 12}) {
        const RealMatrix R = random(KW_FULL, n, n);
        const RealMatrix A = make(KW_FULL, n, n, n + 1, [&R](int32_t i, int32_t j) { return R.a[i][j] + R.a[j][i]; });
        const std::vector<double> d = check(A, dense(A));
        double trace = 0.0, sum = 0.0;
        for (int32_t i = 0; i <= n; ++i) trace += A.a[i][i];
        for (double x : d) sum += x;
        EXPECT_NEAR(trace, sum, 1e-12);
    }
}

TEST_F(Eigen, KnownSpectraInAscendingOrder) {
    const RealMatrix D = make(KW_FULL, 2, 2, 3, [](int32_t i, int32_t j) { return i == j ? 3.0 - 2.0 * i : 0.0; });
    EXPECT_EQ(check(D, dense(D)), (std::vector<double>{-1.0, 1.0, 3.0}));
    // The second difference matrix as a band: 2 - 2 cos(k pi / (n + 2)).
    const int32_t n = 7;
    const RealMatrix T = make(KW_BANDED, n, n, 3, [](int32_t i, int32_t j) { return i == j ? 2.0 : -1.0; });
    const std::vector<double> d = check(T, dense(T));
    for (int32_t k = 1; k <= n + 1; ++k)
        EXPECT_NEAR(d[k - 1], 2.0 - 2.0 * std::cos(k * std::numbers::pi / (n + 2)), 1e-13);
    // Eigenvalues of a scaled matrix scale; huge entries do not overflow.
    const RealMatrix H = make(KW_FULL, 1, 1, 2, [](int32_t i, int32_t j) { return (i == j ? 2.0 : 1.0) * 1e300; });
    std::vector<double> h(2);
    RealMatrix V;
    M_inirma(&V);
    ASSERT_EQ(M_rmaevv(&H, h.data(), &V, &stk), 0);
    EXPECT_NEAR(h[0] / 1e300, 1.0, 1e-14);
    EXPECT_NEAR(h[1] / 1e300, 3.0, 1e-14);
}

TEST_F(Eigen, NonSymmetricInputGivesItsSymmetricPart) {
    const RealMatrix A = random(KW_FULL, 4, 4);
    Dense S = dense(A);
    for (int32_t i = 0; i <= 4; ++i)
        for (int32_t j = 0; j <= 4; ++j) S[i][j] = 0.5 * (A.a[i][j] + A.a[j][i]);
    check(A, S);
    // A triangle reads as zeros outside it.
    const RealMatrix L = random(KW_LOWERLEFT, 3, 3);
    Dense SL = dense(L);
    const Dense T = transpose(SL);
    for (int32_t i = 0; i <= 3; ++i)
        for (int32_t j = 0; j <= 3; ++j) SL[i][j] = 0.5 * (SL[i][j] + T[i][j]);
    check(L, SL);
}

TEST_F(Eigen, FailuresForShapeValuesAndIterations) {
    double d[3];
    RealMatrix V;
    M_inirma(&V);
    const RealMatrix R = random(KW_FULL, 1, 2);
    EXPECT_FAILURE(M_rmaevv(&R, d, &V, &stk), KW_ESIZE, "M_RMAEVV");
    RealMatrix N = random(KW_FULL, 2, 2);
    N.a[1][2] = std::numeric_limits<double>::infinity();
    EXPECT_FAILURE(M_rmaevv(&N, d, &V, &stk), KW_ESINGULAR, "M_RMAEVV");
    N.a[1][2] = std::nan("");
    EXPECT_FAILURE(M_rmaevv(&N, d, &V, &stk), KW_ESINGULAR, "M_RMAEVV");
    const RealMatrix S = make(KW_FULL, 2, 2, 3, [](int32_t i, int32_t j) { return 1.0 + i + j; });
    const int32_t saved = M_iteevv;
    M_iteevv = 1;
    EXPECT_FAILURE(M_rmaevv(&S, d, &V, &stk), KW_ENOCONV, "M_RMAEVV");
    M_iteevv = saved;
    EXPECT_EQ(M_rmaevv(&S, d, &V, &stk), 0);
}

}  // namespace
