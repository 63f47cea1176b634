// Intersections and projections against constructed answers.
#include "support.hpp"

using namespace geomtest;

namespace {
Point along(Point X, double t, Point d) { return P3(X.x + t * d.x, X.y + t * d.y, X.z + t * d.z); }
}  // namespace

// Lines, planes and the projections onto them, built through a known point.
TEST(Intersections, LinesAndPlanesMeetWhereConstructed) {
    Random rnd;
    for (int k = 0; k < 30; ++k) {
        const Point X = rnd.point(10.0), d1 = rnd.point(), d2 = rnd.point();
        const double s0 = rnd.uniform(-1, 2), t0 = rnd.uniform(-1, 2);
        Line L1{}, L2{}, M{};
        Plane A{}, B{};
        Point Y{};
        double s = 0, t = 0, da = 0, db = 0;
        G_makln2(&L1, along(X, -s0, d1), d1, KW_LINE_SEGMENT);
        G_makln2(&L2, along(X, -t0, d2), d2, KW_LINE_SEGMENT);
        // As segments they meet only when both parameters lie in [0, 1].
        EXPECT_EQ(G_intlnl(&L1, &L2, &Y, &s, &t), s0 >= 0 && s0 <= 1 && t0 >= 0 && t0 <= 1 ? 0 : 2);
        EXPECT_POINT_NEAR(Y, X, 1e-10);
        EXPECT_NEAR(s - s0 + t - t0, 0.0, 1e-10);
        // Planes through X: a line meets them there; two meet in a line on both.
        G_makpln(&A, X, d1);
        G_makpln(&B, X, d2);
        ASSERT_NE(G_intlnp(&L1, &B, &Y, &s), 1);
        EXPECT_POINT_NEAR(Y, X, 1e-8);
        ASSERT_EQ(G_intplp(&A, &B, &M), 0);
        G_disppl(along(M.point, 3.0, M.direction), &A, &da);
        G_disppl(along(M.point, 3.0, M.direction), &B, &db);
        EXPECT_NEAR(std::fabs(da) + std::fabs(db), 0.0, 1e-9);
        // Projections land on their plane (along the normal) or line (at the foot).
        const Point P = rnd.point(5.0), Q = result<Point>(G_prjppl, P, &A);
        Point Qh{}, Qa[1];
        double a = 0, b = 0, c = 0, e = 0;
        EXPECT_NEAR(result<double>(G_disppl, Q, &A), 0.0, 1e-12);
        EXPECT_NEAR(dist(P, Q), std::fabs(result<double>(G_disppl, P, &A)), 1e-12);
        ASSERT_EQ(G_plnimp(&A, &a, &b, &c, &e) + G_prjphp(P, 3 * a, 3 * b, 3 * c, 3 * e, &Qh) + G_prjpab(&P, 0, &A, Qa), 0);
        EXPECT_LT(dist(Qh, Q) + dist(Qa[0], Q), 1e-12);
        G_makln2(&M, rnd.point(5.0), rnd.point(), KW_LINE_INFINITE);
        ASSERT_EQ(G_prjpln(P, &M, &Y, &t) + G_displn(Y, &M, &da), 0);
        G_vecdot(P3(P.x - Y.x, P.y - Y.y, P.z - Y.z), M.direction, &db);
        EXPECT_NEAR(std::fabs(da) + std::fabs(db), 0.0, 1e-12);
    }
    Line L1{}, L2{}, M{};
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
    EXPECT_FAILURE(G_intlnl(&L1, &L2, &X, &s, &t), 11, "G_INTLNL");  // parallel
    EXPECT_FAILURE(G_intlnp(&L1, &A, &X, &t), 11, "G_INTLNP");
    EXPECT_FAILURE(G_intplp(&A, &B, &M), 11, "G_INTPLP");
    EXPECT_POINT_EQ(X, P3(0, 0, 0));
}

TEST(Intersections, PolygonsSegmentsAndCircles) {
    // A crossing, a vertex on the plane, another crossing.
    ControlPoint cp[5] = {{0, 0, -1, KW_NONRATIONAL}, {2, 0, 2, 2}, {2, 0, 0, KW_NONRATIONAL}, {3, 0, -1, KW_NONRATIONAL}, {4, 0, 1, KW_NONRATIONAL}};
    ControlPolygon pol{4, cp};
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    Point X[5], X1{};
    int32_t k = 0;
    ASSERT_EQ(G_intcpl(&pol, &pl, X, &k), 0);
    ASSERT_EQ(k, 2);
    EXPECT_LT(dist(X[0], P3(0.5, 0, 0)) + dist(X[1], P3(2, 0, 0)) + dist(X[2], P3(3.5, 0, 0)), 1e-15);
    double s = 0, t = 0;
    ASSERT_EQ(G_intlsg(P3(0, 0, 3), P3(2, 2, 3), P3(0, 2, 0), P3(2, 0, 0), X, &s, &t), 0);
    EXPECT_POINT_NEAR(X[0], P3(1, 1, 0), 1e-15);
    EXPECT_FAILURE(G_intlsg(P3(0, 0, 0), P3(1, 1, 0), P3(0, 1, 0), P3(1, 2, 0), X, &s, &t), 11, "G_INTLSG");
    Random rnd;  // the predicate agrees with the intersection
    for (int i = 0; i < 200; ++i) {
        const Point A = rnd.point(), B = rnd.point(), C = rnd.point(), D = rnd.point();
        const int16_t rc = G_intlsg(A, B, C, D, X, &s, &t);
        if (rc != 1) EXPECT_EQ(G_dolsin(A, B, C, D), rc == 0);
    }
    EXPECT_TRUE(G_dolsin(P3(0, 0, 0), P3(2, 0, 0), P3(1, 0, 0), P3(3, 0, 0)));  // overlapping
    EXPECT_FALSE(G_dolsin(P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0)));
    // A line and the circle of radius 5: two points, one from inside a ray,
    // one where it touches, none where it misses.
    for (const auto &[P, flag, count, first] : {std::tuple{P3(-5, 3, 0), KW_LINE_INFINITE, 2, P3(-4, 3, 0)}, {P3(0, 3, 0), KW_LINE_RAY, 1, P3(4, 3, 0)},
                                                 {P3(0, 5, 0), KW_LINE_INFINITE, 1, P3(0, 5, 0)}, {P3(0, 6, 0), KW_LINE_INFINITE, 0, P3(0, 0, 0)}}) {
        Line L{};
        int16_t n = -1;
        X[0] = P3(0, 0, 0);
        G_makln2(&L, P, P3(1, 0, 0), int16_t(flag));
        ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &n, X, &X1), 0);
        EXPECT_EQ(n, count);
        EXPECT_POINT_NEAR(X[0], first, 1e-14);
    }
}

TEST(Intersections, PolygonsPlanesAndPoints) {
    Point sq[4] = {P3(0, 0, 0), P3(4, 0, 0), P3(4, 4, 0), P3(0, 4, 0)};
    Point in[3] = {P3(1, 1, 0), P3(2, 1, 0), P3(1, 2, 0)}, far[3] = {P3(9, 9, 0), P3(11, 9, 0), P3(9, 11, 0)};
    // A U shape: its notch is outside.
    Point u[8] = {P3(0, 0, 0), P3(3, 0, 0), P3(3, 3, 0), P3(2, 3, 0), P3(2, 1, 0), P3(1, 1, 0), P3(1, 3, 0), P3(0, 3, 0)};
    PointPolyline S{3, sq}, T{2, in}, F{2, far}, U{7, u};
    EXPECT_TRUE(G_ispgpg(&S, &T) && G_ispgpg(&T, &S));  // one inside the other
    EXPECT_FALSE(G_ispgpg(&S, &F));
    EXPECT_TRUE(G_ispppl(P3(4, 2, 0), &S));  // on the boundary
    EXPECT_TRUE(!G_ispppl(P3(1.5, 2, 0), &U) && G_ispppl(P3(0.5, 2, 0), &U));
    Plane pl{};
    G_makpln(&pl, P3(2, 0, 0), P3(1, 0, 0));
    EXPECT_TRUE(G_ispgpl(&S, &pl));
    pl.point.x = 5;
    EXPECT_FALSE(G_ispgpl(&S, &pl));
}
