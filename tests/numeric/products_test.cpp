// Products, transposes and the matrix printer. Every input matrix holds NaN
// in its stored cells outside its shape, so a product that reads there
// shows it in the result.
#include "support.hpp"

using namespace kwtest;

namespace {

class Products : public Numeric {};

TEST_F(Products, ProductsMatchDenseAndTakeTheirResultTypes) {
    constexpr int32_t F = KW_FULL, L = KW_LOWERLEFT, U = KW_UPPERRIGHT;
    for (int32_t ta : {F, L, U}) {
        for (int32_t tb : {F, L, U}) {
            RealMatrix A = random(ta, 4, 3), B = random(tb, 3, 5), Bt = random(tb, 6, 3), C = empty(), D = empty(), S = empty();
            ASSERT_EQ(M_rmamul(&A, &B, &C, &stk) + M_rmamtr(&A, &Bt, &D, &stk) + M_rmamtm(&A, &S, &stk), 0);
            EXPECT_LT(max_difference(dense(C), multiply(dense(A), dense(B))), 1e-15);
            EXPECT_LT(max_difference(dense(D), multiply(dense(A), transpose(dense(Bt)))), 1e-15);
            EXPECT_LT(max_difference(dense(S), multiply(dense(A), transpose(dense(A)))), 1e-15);
            EXPECT_EQ(C.type, ta == tb ? ta : F) << ta << tb;
            EXPECT_EQ(D.type, ta == L && tb == U ? L : ta == U && tb == L ? U : F) << ta << tb;
            EXPECT_EQ(S.type, F);
        }
    }
    RealMatrix A = random(F, 2, 2), Bd = random(KW_BANDED, 2, 2, 3), R = random(F, 3, 3), C = empty();
    EXPECT_FAILURE(M_rmamul(&A, &Bd, &C, &stk), KW_EARG, "M_RMAMUL");
    EXPECT_FAILURE(M_rmamtm(&Bd, &C, &stk), KW_EARG, "M_RMAMTM");
    EXPECT_FAILURE(M_rmamul(&A, &R, &C, &stk), KW_ESIZE, "M_RMAMUL");
    EXPECT_FAILURE(M_rmamtr(&A, &R, &C, &stk), KW_ESIZE, "M_RMAMTR");
    EXPECT_FAILURE(M_rmamul(&A, &A, &A, &stk), KW_EARG, "M_RMAMUL");  // a result sharing a factor's rows
    EXPECT_FAILURE(M_rmatrp(&A, &A, &stk), KW_EARG, "M_RMATRP");
    EXPECT_TRUE(M_isrman(&C));
}

TEST_F(Products, TransposeTurnsEveryShapeOver) {
    for (const auto &[type, n, m, w, turned] :
         {std::tuple{KW_FULL, 3, 5, 4, KW_FULL}, {KW_LOWERLEFT, 4, 2, 5, KW_UPPERRIGHT}, {KW_UPPERRIGHT, 2, 4, 3, KW_LOWERLEFT},
          {KW_BANDED, 6, 6, 5, KW_BANDED}, {KW_BANDED, 6, 6, 4, KW_BANDED}, {KW_BANDED, 3, 3, 1, KW_BANDED}}) {
        RealMatrix A = random(type, n, m, w), T = empty(), TT = empty();
        ASSERT_EQ(M_rmatrp(&A, &T, &stk) + M_rmatrp(&T, &TT, &stk), 0);
        EXPECT_EQ(T.type, turned);
        EXPECT_EQ(max_difference(dense(T), transpose(dense(A))), 0.0) << type << " " << w;
        EXPECT_EQ(max_difference(dense(TT), dense(A)), 0.0);
    }
}

// Matrix times Points and ControlPoints for every storage type, and real
// times ControlPoint matrices on either side (Q = A P for upper-right A,
// S = P B^T): component by component, with the markers kept, also in a row
// that sums nothing.
TEST_F(Products, PointOperands) {
    for (int32_t type : {KW_FULL, KW_LOWERLEFT, KW_UPPERRIGHT, KW_BANDED}) {
        RealMatrix A = random(type, 5, 5, type == KW_BANDED ? 3 : 0);
        std::vector<Point> P(6), Q(6);
        std::vector<ControlPoint> C(6), R(6);
        std::vector<double> x(6), w(6);
        for (int32_t i = 0; i <= 5; ++i) {
            P[i] = Point{x[i] = uniform(), uniform(), uniform()};
            C[i] = ControlPoint{uniform(), uniform(), KW_PLANAR, w[i] = uniform(0.5, 2.0)};
        }
        ASSERT_EQ(M_rmapoi(&A, P.data(), Q.data()) + M_rmacpt(&A, C.data(), R.data()), 0);
        const std::vector<double> qx = times(dense(A), x), rw = times(dense(A), w);
        for (int32_t i = 0; i <= 5; ++i) EXPECT_TRUE(std::fabs(Q[i].x - qx[i]) < 1e-15 && std::fabs(R[i].w - rw[i]) < 1e-15 && R[i].z == KW_PLANAR);
    }
    RealMatrix A = random(KW_UPPERRIGHT, 3, 2), B = random(KW_FULL, 4, 3);
    ControlPointMatrix P, Q, S;
    M_inicma(&Q);
    M_inicma(&S);
    ASSERT_EQ(M_getcma(&P, 2, 3, KW_FULL, 3, &stk), 0);
    Dense Px(3, std::vector<double>(4));
    for (int32_t i = 0; i <= 2; ++i)
        for (int32_t j = 0; j <= 3; ++j) P.a[i][j] = ControlPoint{Px[i][j] = uniform(), 0.0, 0.0, KW_NONRATIONAL};
    ASSERT_EQ(M_rmcprm(&A, &P, 1, &Q, &stk) + M_rmcprm(&B, &P, 2, &S, &stk), 0);
    const Dense AP = multiply(dense(A), Px), PB = multiply(Px, transpose(dense(B)));
    ASSERT_TRUE(Q.n == 3 && Q.m == 3 && S.n == 2 && S.m == 4);
    for (int32_t i = 0; i <= 3; ++i)
        for (int32_t j = 0; j <= 3; ++j)
            EXPECT_TRUE(std::fabs(Q.a[i][j].x - AP[i][j]) < 1e-15 && Q.a[i][j].w == KW_NONRATIONAL && (i > 2 || std::fabs(S.a[i][j].x - PB[i][j]) < 1e-15));
    EXPECT_FAILURE(M_rmcprm(&B, &P, 1, &S, &stk), KW_ESIZE, "M_RMCPRM");
    EXPECT_FAILURE(M_rmcprm(&A, &P, 3, &S, &stk), KW_EARG, "M_RMCPRM");
    P.type = KW_LOWERLEFT;
    EXPECT_FAILURE(M_rmcprm(&A, &P, 1, &S, &stk), KW_EARG, "M_RMCPRM");
}

TEST_F(Products, PrinterWritesTheStoredValuesOfEachType) {
    auto printed = [](const RealMatrix &A) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(M_prtrma(&A), 0);
        return testing::internal::GetCapturedStdout();
    };
    auto value = [](int32_t i, int32_t j) { return 10.0 * i + j + 0.5; };
    EXPECT_EQ(printed(make(KW_FULL, 1, 2, 2, value)), "1 2\nfull      \n2\n0.500000 1.500000 2.500000 \n10.500000 11.500000 12.500000 \n");
    EXPECT_EQ(printed(make(KW_LOWERLEFT, 2, 2, 3, value)),
              "2 2\nlowerleft \n3\n0.500000 \n10.500000 11.500000 \n20.500000 21.500000 22.500000 \n");
    EXPECT_EQ(printed(make(KW_UPPERRIGHT, 1, 2, 2, value)), "1 2\nupperright\n2\n0.500000 1.500000 2.500000 \n11.500000 12.500000 \n");
    // A band prints all w stored values, the diagonal in the middle.
    RealMatrix B = make(KW_BANDED, 2, 2, 3, value), E = empty();
    B.a[0][0] = B.a[2][2] = -1.0;
    EXPECT_EQ(printed(B), "2 2\nbanded    \n3\n-1.000000 0.500000 1.500000 \n10.500000 11.500000 12.500000 \n21.500000 22.500000 -1.000000 \n");
    EXPECT_EQ(printed(E), "-1 -1\nfull      \n0\n");
    E.type = 4;
    EXPECT_FAILURE(M_prtrma(&E), KW_EARG, "M_PRTRMA");
}

}  // namespace
