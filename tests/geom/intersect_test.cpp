// Intersections and projections against constructed answers.
#include "support.hpp"

using namespace geomtest;

TEST(Intersections, LinesAndPlanesMeetWhereConstructed) {
    Random rnd;
    for (int k = 0; k < 30; ++k) {
        const Point X = rnd.point(10.0), d1 = rnd.point(), d2 = rnd.point();
        const double s0 = rnd.uniform(-1, 2), t0 = rnd.uniform(-1, 2);
        Line L1{}, L2{};
        G_makln2(&L1, P3(X.x - s0 * d1.x, X.y - s0 * d1.y, X.z - s0 * d1.z), d1, KW_LINE_SEGMENT);
        G_makln2(&L2, P3(X.x - t0 * d2.x, X.y - t0 * d2.y, X.z - t0 * d2.z), d2, KW_LINE_SEGMENT);
        Point Y{};
        double s = 0, t = 0;
        // As segments they meet only when both parameters lie in [0, 1].
        EXPECT_EQ(G_intlnl(&L1, &L2, &Y, &s, &t), s0 >= 0 && s0 <= 1 && t0 >= 0 && t0 <= 1 ? 0 : 2);
        EXPECT_POINT_NEAR(Y, X, 1e-10);
        EXPECT_NEAR(s - s0 + t - t0, 0.0, 1e-10);
        // Planes through X: a line meets them there; two meet in a line on both.
        Plane A{}, B{};
        Line M{};
        G_makpln(&A, X, d1);
        G_makpln(&B, X, d2);
        ASSERT_NE(G_intlnp(&L1, &B, &Y, &s), 1);
        EXPECT_POINT_NEAR(Y, X, 1e-8);
        ASSERT_EQ(G_intplp(&A, &B, &M), 0);
        double da = 0, db = 0;
        G_vecpfv(M.point, 3.0, M.direction, &Y);
        G_disppl(Y, &A, &da);
        G_disppl(Y, &B, &db);
        EXPECT_NEAR(std::fabs(da) + std::fabs(db), 0.0, 1e-9);
    }
    Line L1{}, L2{};
    Plane A{}, B{};
    G_makln2(&L1, P3(0, 0, 0), P3(1, 0, 0), 0);
    G_makln2(&L2, P3(0, 0, 1), P3(0, 1, 0), 0);
    Point X = P3(5, 5, 5);
    double s = 0, t = 0;
    EXPECT_EQ(G_intlnl(&L1, &L2, &X, &s, &t), 2);  // skew: the nearest point reported
    EXPECT_POINT_NEAR(X, P3(0, 0, 0), 1e-15);
    G_makln2(&L2, P3(0, 1, 0), P3(-2, 0, 0), 0);
    G_makpln(&A, P3(0, 0, 3), P3(0, 1, 0));
    G_makpln(&B, P3(0, 0, 1), P3(0, -3, 0));
    Line M{};
    EXPECT_FAILS(G_intlnl(&L1, &L2, &X, &s, &t), 11);  // parallel
    EXPECT_FAILS(G_intlnp(&L1, &A, &X, &t), 11);
    EXPECT_FAILS(G_intplp(&A, &B, &M), 11);
    EXPECT_POINT_EQ(X, P3(0, 0, 0));
}

TEST(Intersections, ControlPolygonAndPlane) {
    // A crossing, a vertex on the plane, another crossing.
    ControlPoint cp[5] = {{0, 0, -1, KW_NONRATIONAL}, {2, 0, 2, 2}, {2, 0, 0, KW_NONRATIONAL},
                          {3, 0, -1, KW_NONRATIONAL}, {4, 0, 1, KW_NONRATIONAL}};
    ControlPolygon pol{4, cp};
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    Point X[5];
    int32_t k = 0;
    ASSERT_EQ(G_intcpl(&pol, &pl, X, &k), 0);
    ASSERT_EQ(k, 2);
    EXPECT_POINT_NEAR(X[0], P3(0.5, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(X[1], P3(2, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(X[2], P3(3.5, 0, 0), 1e-15);
}

TEST(Intersections, PlanarSegmentsAndCircles) {
    Point X{}, X1{};
    double s = 0, t = 0;
    ASSERT_EQ(G_intlsg(P3(0, 0, 3), P3(2, 2, 3), P3(0, 2, 0), P3(2, 0, 0), &X, &s, &t), 0);
    EXPECT_POINT_NEAR(X, P3(1, 1, 0), 1e-15);
    EXPECT_FAILS(G_intlsg(P3(0, 0, 0), P3(1, 1, 0), P3(0, 1, 0), P3(1, 2, 0), &X, &s, &t), 11);
    Random rnd;  // the predicate agrees with the intersection
    for (int k = 0; k < 200; ++k) {
        const Point A = rnd.point(), B = rnd.point(), C = rnd.point(), D = rnd.point();
        const int16_t rc = G_intlsg(A, B, C, D, &X, &s, &t);
        if (rc != 1) EXPECT_EQ(G_dolsin(A, B, C, D), rc == 0);
    }
    EXPECT_TRUE(G_dolsin(P3(0, 0, 0), P3(2, 0, 0), P3(1, 0, 0), P3(3, 0, 0)));  // overlapping
    EXPECT_FALSE(G_dolsin(P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0)));
    // A line and the circle of radius 5: two points, one from inside a ray,
    // one where it touches, none where it misses.
    const struct {
        Point P;
        int16_t flag, k;
        Point first;
    } cases[] = {{P3(-5, 3, 0), KW_LINE_INFINITE, 2, P3(-4, 3, 0)},
                 {P3(0, 3, 0), KW_LINE_RAY, 1, P3(4, 3, 0)},
                 {P3(0, 5, 0), KW_LINE_INFINITE, 1, P3(0, 5, 0)},
                 {P3(0, 6, 0), KW_LINE_INFINITE, 0, P3(0, 0, 0)}};
    for (const auto &c : cases) {
        Line L{};
        int16_t k = -1;
        X = P3(0, 0, 0);
        G_makln2(&L, c.P, P3(1, 0, 0), c.flag);
        ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X, &X1), 0);
        EXPECT_EQ(k, c.k);
        EXPECT_POINT_NEAR(X, c.first, 1e-14);
    }
}

TEST(Intersections, PolygonsPlanesAndPoints) {
    Point sq[4] = {P3(0, 0, 0), P3(4, 0, 0), P3(4, 4, 0), P3(0, 4, 0)};
    Point in[3] = {P3(1, 1, 0), P3(2, 1, 0), P3(1, 2, 0)}, far[3] = {P3(9, 9, 0), P3(11, 9, 0), P3(9, 11, 0)};
    PointPolyline S{3, sq}, T{2, in}, F{2, far};
    EXPECT_TRUE(G_ispgpg(&S, &T) && G_ispgpg(&T, &S));  // one inside the other
    EXPECT_FALSE(G_ispgpg(&S, &F));
    EXPECT_TRUE(G_ispppl(P3(4, 2, 0), &S));  // on the boundary
    // A U shape: its notch is outside.
    Point u[8] = {P3(0, 0, 0), P3(3, 0, 0), P3(3, 3, 0), P3(2, 3, 0), P3(2, 1, 0), P3(1, 1, 0), P3(1, 3, 0), P3(0, 3, 0)};
    PointPolyline U{7, u};
    EXPECT_FALSE(G_ispppl(P3(1.5, 2, 0), &U));
    EXPECT_TRUE(G_ispppl(P3(0.5, 2, 0), &U));
    Plane pl{};
    G_makpln(&pl, P3(2, 0, 0), P3(1, 0, 0));
    EXPECT_TRUE(G_ispgpl(&S, &pl));
    pl.point.x = 5;
    EXPECT_FALSE(G_ispgpl(&S, &pl));
}

TEST(Projections, LandOnTheirLineOrPlane) {
    Random rnd;
    for (int k = 0; k < 30; ++k) {
        const Point P = rnd.point(5.0);
        Plane pl{};
        G_makpln(&pl, rnd.point(5.0), rnd.point());
        Point Q{}, Qh{}, Qa[1];
        double d = 0, dp = 0, a = 0, b = 0, c = 0, e = 0, t = 0;
        ASSERT_EQ(G_prjppl(P, &pl, &Q), 0);
        G_disppl(Q, &pl, &d);
        G_disppl(P, &pl, &dp);
        EXPECT_NEAR(d, 0.0, 1e-12);
        EXPECT_NEAR(dist(P, Q), std::fabs(dp), 1e-12);  // moved along the normal
        ASSERT_EQ(G_plnimp(&pl, &a, &b, &c, &e) + G_prjphp(P, 3 * a, 3 * b, 3 * c, 3 * e, &Qh), 0);
        ASSERT_EQ(G_prjpab(&P, 0, &pl, Qa), 0);
        EXPECT_LT(dist(Qh, Q) + dist(Qa[0], Q), 1e-12);
        Line L{};
        G_makln2(&L, rnd.point(5.0), rnd.point(), KW_LINE_INFINITE);
        ASSERT_EQ(G_prjpln(P, &L, &Q, &t), 0);
        G_displn(Q, &L, &d);
        G_vecdot(P3(P.x - Q.x, P.y - Q.y, P.z - Q.z), L.direction, &dp);
        EXPECT_NEAR(std::fabs(d) + std::fabs(dp), 0.0, 1e-12);  // on it, perpendicular foot
    }
}
