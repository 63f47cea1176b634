// Planar transforms, transformation matrices and the axial deformation.
#include "support.hpp"

using namespace geomtest;

namespace {
Point apply(const RealMatrix &T, Point P) { return result<Point>(A_trapoi, P.x, P.y, P.z, &T); }
}  // namespace

TEST(PlanarTransforms, KnownImagesWithZeroZ) {
    Point P[2] = {P3(1, 0, 5), P3(2, 3, -1)}, Q[2];
    G_traro2(P, 0, 0, 0, 90.0, Q);
    EXPECT_POINT_NEAR(Q[0], P3(0, 1, 0), 1e-15);
    EXPECT_EQ(Q[0].z, 0.0);
    G_traro2(P, 0, 1, 2, 90.0, Q);  // about (1, 2)
    EXPECT_POINT_NEAR(Q[0], P3(3, 2, 0), 1e-15);
    G_trasc2(P, 1, 1, 1, 2, 3, Q);
    EXPECT_POINT_NEAR(Q[1], P3(3, 7, 0), 1e-15);
    G_trash2(P, 1, 2, -1, Q);
    EXPECT_POINT_EQ(Q[1], P3(8, 1, 0));
    G_tratr2(P, 1, 1, -1, P);  // in place
    EXPECT_POINT_EQ(P[1], P3(3, 2, 0));
}

// Each builder checks its result record: an existing one is overwritten, one
// too small refused under the builder's name.
TEST(Matrices, TranslationPlanarMotionAndFrame) {
    Context s;
    RealMatrix T, U, small;
    M_inirma(&T);
    M_inirma(&U);
    ASSERT_EQ(G_tratrl(P3(1, 2, 3), P3(4, 4, 4), &T, s.get()), 0);
    EXPECT_POINT_NEAR(apply(T, P3(0, 0, 0)), P3(3, 2, 1), 1e-15);
    const double *reused = T.a[0], h = std::sqrt(0.5);
    ASSERT_EQ(G_travec(P3(1, 1, 7), P3(1, 0, 0), P3(-2, 3, 9), P3(h, h, 0), &T, s.get()), 0);
    EXPECT_EQ(T.a[0], reused);
    EXPECT_POINT_NEAR(apply(T, P3(1, 1, 7)), P3(-2, 3, 0), 1e-14);
    EXPECT_POINT_NEAR(apply(T, P3(2, 1, 5)), P3(-2 + h, 3 + h, 0), 1e-14);  // a goes to b
    EXPECT_EQ(apply(T, P3(4, -3, 100)).z, 0.0);                              // row 2 flattens z
    ASSERT_EQ(G_traort(P3(1, 1, 1), P3(0, 2, 0), P3(-1, 1, 0), &T, s.get()), 0);
    EXPECT_POINT_NEAR(apply(T, P3(1, 3, 1)), P3(2, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(apply(T, P3(0, 1, 4)), P3(0, 1, 3), 1e-15);
    EXPECT_FAILURE(G_traort(P3(0, 0, 0), P3(1, 1, 0), P3(-2, -2, 0), &U, s.get()), 11, "G_TRAORT");
    EXPECT_TRUE(M_isrman(&U));  // refused before the record was touched
    ASSERT_EQ(M_getrma(&small, 2, 2, KW_FULL, 3, s.get()), 0);
    EXPECT_FAILURE(G_tratrl(P3(0, 0, 0), P3(1, 1, 1), &small, s.get()), 9, "G_TRATRL");
}

TEST(Matrices, GeneralRotationKeepsItsAxisDistancesAndAngle) {
    Context s;
    Random rnd;
    RealMatrix T;
    M_inirma(&T);
    for (int k = 0; k < 10; ++k) {
        const Point C = rnd.point(5.0), n = rnd.point(), A = rnd.point(5.0), B = rnd.point(5.0);
        const double angle = rnd.uniform(0.0, 360.0);
        ASSERT_EQ(G_tragnr(C, n, angle, &T, s.get()), 0);
        const Point onAxis = P3(C.x + 2 * n.x, C.y + 2 * n.y, C.z + 2 * n.z);
        EXPECT_POINT_NEAR(apply(T, onAxis), onAxis, 1e-12);
        EXPECT_NEAR(dist(apply(T, A), apply(T, B)), dist(A, B), 1e-12);
        // Seen along n, A turns right-handedly by the angle.
        Plane across{};
        double deg = 0;
        G_makpln(&across, C, n);
        const Point u = result<Point>(G_vecdif, result<Point>(G_prjppl, A, &across), C);
        const Point v = result<Point>(G_vecdif, result<Point>(G_prjppl, apply(T, A), &across), C);
        ASSERT_EQ(G_vecdan(u, v, n, &deg), 0);
        EXPECT_NEAR(std::remainder(deg - angle, 360.0), 0.0, 1e-8);
    }
    EXPECT_FAILURE(G_tragnr(P3(0, 0, 0), P3(0, 0, 0), 30, &T, s.get()), 17, "G_VECNIP");
    // Applied to an array; a point sent to infinity is refused, Q untouched.
    ASSERT_EQ(G_tragnr(P3(0, 0, 0), P3(0, 0, 1), 90, &T, s.get()), 0);
    Point P[2] = {P3(1, 0, 0), P3(3, 3, 3)}, Q[2];
    ASSERT_EQ(G_traxyz(P, 1, &T, Q), 0);
    EXPECT_POINT_NEAR(Q[0], P3(0, 1, 0), 1e-15);
    T.a[3][0] = 1.0;
    T.a[3][3] = -3.0;
    Q[1] = P3(9, 9, 9);
    EXPECT_FAILURE(G_traxyz(P, 1, &T, Q), 11, "G_TRAXYZ");
    EXPECT_POINT_EQ(Q[1], P3(9, 9, 9));
}

TEST(AxialDeformation, ScalesAndTwistsByTheFunction) {
    Context s;
    // f(u) = u and f(u) = 1 + u^2 / 4 on [0, 2].
    double v1[2] = {0, 2}, U1[4] = {0, 0, 2, 2}, v2[3] = {1, 1, 2}, U2[6] = {0, 0, 0, 2, 2, 2};
    CurveFunction lin, quad;
    ASSERT_EQ(U_makcf2(&lin, v1, 1, 1, U1, 3, s.get()) + U_makcf2(&quad, v2, 2, 2, U2, 5, s.get()), 0);
    for (const auto &[f, P, axis, mode, factor, want] : {std::tuple{&lin, P3(1.5, 2, 3), 1, 1, 2.0, P3(1.5, 6, 3)},  // y by 2 f(x)
                                                          {&quad, P3(1, 2, 3), 1, 3, 1.0, P3(1, 2.5, 3.75)},
                                                          {&quad, P3(2, 2, 4), 1, 3, 1.0, P3(2, 4, 8)},   // the range's end
                                                          {&lin, P3(5, 2, 7), 2, 1, 1.0, P3(5, 2, 14)},   // axis y: z comes first
                                                          {&lin, P3(5, 2, 7), 2, 2, 1.0, P3(10, 2, 7)},   // then x
                                                          {&lin, P3(1, 0, 1), 3, 4, 0.5, P3(0, 1, 1)}}) {  // a quarter turn
        Point Q{};
        ASSERT_EQ(G_traaxl(P, f, int16_t(axis), int16_t(mode), factor, &Q), 0);
        EXPECT_POINT_NEAR(Q, want, 1e-15);
    }
    Point Q = P3(-1, -1, -1);
    EXPECT_FAILURE(G_traaxl(P3(2.5, 0, 0), &lin, 1, 1, 1.0, &Q), 6, "G_TRAAXL");
    EXPECT_FAILURE(G_traaxl(P3(1, 0, 0), &lin, 1, 5, 1.0, &Q), 13, "G_TRAAXL");
    U1[1] = 0.5;
    EXPECT_FAILURE(G_traaxl(P3(1, 0, 0), &lin, 1, 1, 1.0, &Q), 4, "G_TRAAXL");
    EXPECT_POINT_EQ(Q, P3(-1, -1, -1));
}
