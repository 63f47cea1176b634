// Planar transforms, transformation matrices and the axial deformation.
#include "support.hpp"

using namespace geomtest;

namespace {

Point apply(const RealMatrix &T, Point P) {
    Point Q{};
    A_trapoi(P.x, P.y, P.z, &T, &Q);
    return Q;
}

}  // namespace

TEST(PlanarTransforms, KnownImagesAndZeroZ) {
    Point P[2] = {P3(1, 0, 5), P3(2, 3, -1)}, Q[2];
    G_traro2(P, 0, 0, 0, 90.0, Q);
    EXPECT_POINT_NEAR(Q[0], P3(0, 1, 0), 1e-15);
    EXPECT_EQ(Q[0].z, 0.0);
    // About another centre: (1, 0) about (1, 1) by 180 degrees is (1, 2).
    G_traro2(P, 0, 1, 1, 180.0, Q);
    EXPECT_POINT_NEAR(Q[0], P3(1, 2, 0), 1e-15);
    G_tratr2(P, 1, 1, -1, Q);
    EXPECT_POINT_NEAR(Q[1], P3(3, 2, 0), 1e-300);
    G_trasc2(P, 1, 1, 1, 2, 3, Q);  // about (1, 1)
    EXPECT_POINT_NEAR(Q[1], P3(3, 7, 0), 1e-15);
    G_trash2(P, 1, 2, 0.5, Q);
    EXPECT_POINT_NEAR(Q[1], P3(8, 4, 0), 1e-15);
    // In place.
    G_tratr2(P, 1, 1, 1, P);
    EXPECT_POINT_NEAR(P[0], P3(2, 1, 0), 1e-300);
}

TEST(PlanarTransforms, RotationsPreserveDistancesAndCompose) {
    Random rnd;
    Point P[8], Q[8], R[8];
    for (auto &X : P) X = rnd.point(3.0);
    G_traro2(P, 7, 0.5, -0.25, 30.0, Q);
    G_traro2(Q, 7, 0.5, -0.25, 45.0, R);
    G_traro2(P, 7, 0.5, -0.25, 75.0, Q);
    for (int i = 0; i < 8; ++i) {
        EXPECT_POINT_NEAR(R[i], Q[i], 1e-13);
        double d0 = 0, d1 = 0;
        G_dispp2(P[i], P[(i + 1) % 8], &d0);
        G_dispp2(Q[i], Q[(i + 1) % 8], &d1);
        EXPECT_NEAR(d0, d1, 1e-13);
    }
}

TEST(Matrices, TranslationAndPlanarMotion) {
    Stacks s;
    RealMatrix T;
    M_inirma(&T);
    ASSERT_EQ(G_tratrl(P3(1, 2, 3), P3(4, 4, 4), &T, &s.stk), 0);
    EXPECT_POINT_NEAR(apply(T, P3(1, 2, 3)), P3(4, 4, 4), 1e-15);
    EXPECT_POINT_NEAR(apply(T, P3(0, 0, 0)), P3(3, 2, 1), 1e-15);
    // Reused: the same record is overwritten without allocating.
    const double *data = T.a[0];
    const double s45 = std::sqrt(0.5);
    ASSERT_EQ(G_travec(P3(1, 1, 7), P3(1, 0, 0), P3(-2, 3, 9), P3(s45, s45, 0), &T, &s.stk), 0);
    EXPECT_EQ(T.a[0], data);
    EXPECT_POINT_NEAR(apply(T, P3(1, 1, 7)), P3(-2, 3, 0), 1e-14);
    const Point Q = apply(T, P3(2, 1, 5));  // one along a goes one along b
    EXPECT_POINT_NEAR(Q, P3(-2 + s45, 3 + s45, 0), 1e-14);
    for (int j = 0; j < 4; ++j) EXPECT_EQ(T.a[2][j], 0.0);  // row 2 flattens z
    EXPECT_EQ(apply(T, P3(4, -3, 100)).z, 0.0);
}

TEST(Matrices, GeneralRotationKeepsItsAxisAndDistances) {
    Stacks s;
    Random rnd;
    for (int k = 0; k < 10; ++k) {
        RealMatrix T;
        M_inirma(&T);
        const Point C = rnd.point(5.0), n = rnd.point();
        const double angle = rnd.uniform(-360.0, 360.0);
        ASSERT_EQ(G_tragnr(C, n, angle, &T, &s.stk), 0);
        // Points on the axis stay put.
        const Point onAxis = P3(C.x + 2 * n.x, C.y + 2 * n.y, C.z + 2 * n.z);
        EXPECT_POINT_NEAR(apply(T, C), C, 1e-12);
        EXPECT_POINT_NEAR(apply(T, onAxis), onAxis, 1e-12);
        for (int j = 0; j < 5; ++j) {
            const Point A = rnd.point(5.0), B = rnd.point(5.0);
            EXPECT_NEAR(dist(apply(T, A), apply(T, B)), dist(A, B), 1e-12);
            // The angle turned about the axis is the one asked for (right-handed).
            Point u{}, v{}, a{}, b{}, N = n;
            G_vecdif(A, C, &u);
            G_vecdif(apply(T, A), C, &v);
            G_vecnip(&N);
            double h = 0, deg = 0;
            G_vecdot(u, N, &h);
            G_vecpfv(u, -h, N, &a);
            G_vecdot(v, N, &h);
            G_vecpfv(v, -h, N, &b);
            ASSERT_EQ(G_vecdan(a, b, N, &deg), 0);
            double want = std::fmod(angle, 360.0);
            if (want < 0) want += 360.0;
            EXPECT_NEAR(std::fmod(deg - want + 540.0, 360.0) - 180.0, 0.0, 1e-8);
        }
    }
    RealMatrix T;
    M_inirma(&T);
    E_clrerr();
    EXPECT_EQ(G_tragnr(P3(0, 0, 0), P3(0, 0, 0), 30, &T, &s.stk), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_STREQ(E_errnam(), "G_VECNIP");
}

TEST(Matrices, BuildersRefuseTooSmallRecords) {
    Stacks s;
    RealMatrix T;
    M_inirma(&T);
    ASSERT_EQ(M_getrma(&T, 2, 2, KW_FULL, 3, &s.stk), 0);
    E_clrerr();
    EXPECT_EQ(G_tratrl(P3(0, 0, 0), P3(1, 1, 1), &T, &s.stk), 1);
    EXPECT_EQ(E_errtyp(), 9);
    EXPECT_STREQ(E_errnam(), "G_TRATRL");
    EXPECT_EQ(G_travec(P3(0, 0, 0), P3(1, 0, 0), P3(0, 0, 0), P3(1, 0, 0), &T, &s.stk), 1);
    EXPECT_STREQ(E_errnam(), "G_TRAVEC");
    EXPECT_EQ(G_tragnr(P3(0, 0, 0), P3(1, 0, 0), 1, &T, &s.stk), 1);
    EXPECT_STREQ(E_errnam(), "G_TRAGNR");
    EXPECT_EQ(G_traort(P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0), &T, &s.stk), 1);
    EXPECT_STREQ(E_errnam(), "G_TRAORT");
}

TEST(Matrices, FrameTransformGivesLocalCoordinates) {
    Stacks s;
    RealMatrix T;
    M_inirma(&T);
    ASSERT_EQ(G_traort(P3(1, 1, 1), P3(0, 2, 0), P3(-1, 1, 0), &T, &s.stk), 0);
    // Frame: x along +y, y along -x, z along +z.
    EXPECT_POINT_NEAR(apply(T, P3(1, 1, 1)), P3(0, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(apply(T, P3(1, 3, 1)), P3(2, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(apply(T, P3(0, 1, 1)), P3(0, 1, 0), 1e-15);
    EXPECT_POINT_NEAR(apply(T, P3(1, 1, 4)), P3(0, 0, 3), 1e-15);
    RealMatrix U;
    M_inirma(&U);
    E_clrerr();
    EXPECT_EQ(G_traort(P3(0, 0, 0), P3(0, 0, 0), P3(0, 1, 0), &U, &s.stk), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(G_traort(P3(0, 0, 0), P3(1, 1, 0), P3(-2, -2, 0), &U, &s.stk), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_TRUE(M_isrman(&U));  // bad input: the record was not touched
}

TEST(Matrices, ApplyingToPointArrays) {
    Stacks s;
    RealMatrix T;
    M_inirma(&T);
    ASSERT_EQ(G_tragnr(P3(0, 0, 0), P3(0, 0, 1), 90, &T, &s.stk), 0);
    Point P[3] = {P3(1, 0, 0), P3(0, 1, 2), P3(3, 3, 3)}, Q[3];
    ASSERT_EQ(G_traxyz(P, 2, &T, Q), 0);
    EXPECT_POINT_NEAR(Q[0], P3(0, 1, 0), 1e-15);
    EXPECT_POINT_NEAR(Q[1], P3(-1, 0, 2), 1e-15);
    // A projective row that sends point 2 to infinity: refused, Q untouched.
    T.a[3][0] = 1.0;
    T.a[3][3] = -3.0;
    Q[2] = P3(9, 9, 9);
    E_clrerr();
    EXPECT_EQ(G_traxyz(P, 2, &T, Q), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_POINT_NEAR(Q[2], P3(9, 9, 9), 1e-300);
    RealMatrix S;
    M_inirma(&S);
    ASSERT_EQ(M_getrma(&S, 2, 2, KW_FULL, 3, &s.stk), 0);
    EXPECT_EQ(G_traxyz(P, 2, &S, Q), 1);
    EXPECT_EQ(E_errtyp(), 7);
    ASSERT_EQ(M_getrma(&S, 3, 3, KW_LOWERLEFT, 4, &s.stk), 0);
    EXPECT_EQ(G_traxyz(P, 2, &S, Q), 1);
    EXPECT_EQ(E_errtyp(), 14);
}

TEST(AxialDeformation, ScalesAndTwistsByTheFunction) {
    Stacks s;
    // f(u) = u on [0, 2] as a degree-1 function, and a quadratic with
    // f(u) = 1 + u^2 / 4 on [0, 2].
    double v1[2] = {0, 2}, U1[4] = {0, 0, 2, 2};
    double v2[3] = {1, 1, 2}, U2[6] = {0, 0, 0, 2, 2, 2};
    CurveFunction lin, quad;
    ASSERT_EQ(U_makcf2(&lin, v1, 1, 1, U1, 3, &s.stk), 0);
    ASSERT_EQ(U_makcf2(&quad, v2, 2, 2, U2, 5, &s.stk), 0);
    Point Q{};
    // Axis x: mode 1 scales y, mode 2 scales z, mode 3 both.
    ASSERT_EQ(G_traaxl(P3(1.5, 2, 3), &lin, 1, 1, 2.0, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(1.5, 6, 3), 1e-15);
    ASSERT_EQ(G_traaxl(P3(1.5, 2, 3), &lin, 1, 2, 2.0, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(1.5, 2, 9), 1e-15);
    ASSERT_EQ(G_traaxl(P3(1, 2, 3), &quad, 1, 3, 1.0, &Q), 0);  // f(1) = 1.25
    EXPECT_POINT_NEAR(Q, P3(1, 2.5, 3.75), 1e-15);
    // Axis z, mode 4: a quarter turn of (x, y) where factor * f = 0.5.
    ASSERT_EQ(G_traaxl(P3(1, 0, 1), &lin, 3, 4, 0.5, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(0, 1, 1), 1e-15);
    // Axis y: the other coordinates in cyclic order are z, then x.
    ASSERT_EQ(G_traaxl(P3(5, 2, 7), &lin, 2, 1, 1.0, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(5, 2, 14), 1e-15);
    // The function value at the end of its range.
    ASSERT_EQ(G_traaxl(P3(0, 2, 4), &quad, 1, 3, 1.0, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(0, 2, 4), 1e-15);
    ASSERT_EQ(G_traaxl(P3(2, 2, 4), &quad, 1, 3, 1.0, &Q), 0);
    EXPECT_POINT_NEAR(Q, P3(2, 4, 8), 1e-15);
    const Point before = P3(-1, -1, -1);
    Q = before;
    E_clrerr();
    EXPECT_EQ(G_traaxl(P3(2.5, 0, 0), &lin, 1, 1, 1.0, &Q), 1);
    EXPECT_EQ(E_errtyp(), 6);
    EXPECT_EQ(G_traaxl(P3(1, 0, 0), &lin, 4, 1, 1.0, &Q), 1);
    EXPECT_EQ(E_errtyp(), 13);
    EXPECT_EQ(G_traaxl(P3(1, 0, 0), &lin, 1, 5, 1.0, &Q), 1);
    EXPECT_EQ(E_errtyp(), 13);
    U1[1] = 0.5;  // the knots no longer have a full end run
    EXPECT_EQ(G_traaxl(P3(1, 0, 0), &lin, 1, 1, 1.0, &Q), 1);
    EXPECT_EQ(E_errtyp(), 4);
    EXPECT_STREQ(E_errnam(), "G_TRAAXL");
    EXPECT_POINT_NEAR(Q, before, 1e-300);
}
