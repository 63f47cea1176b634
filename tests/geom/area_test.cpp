// Areas, implicit forms, polygon helpers and circles through points.
#include "support.hpp"

using namespace geomtest;

TEST(Areas, KnownShapes) {
    EXPECT_DOUBLE_EQ(result<double>(G_aretrl, P3(0, 0, 0), P3(4, 0, 0), P3(0, 3, 7)), 2 * std::sqrt(58.0));
    // An L-shaped hexagon of area 3, counter-clockwise, far from the origin.
    double x[6] = {0, 2, 2, 1, 1, 0}, y[6] = {0, 0, 1, 1, 2, 2};
    Point pts[6];
    for (int i = 0; i < 6; ++i) {
        x[i] += 1e6;
        y[i] -= 2e6;
        pts[5 - i] = P3(x[i], y[i], 5.0 * i);  // clockwise
    }
    PointPolyline ppl{5, pts};
    EXPECT_DOUBLE_EQ(result<double>(G_pyarea, x, y, 5), 3.0);
    EXPECT_DOUBLE_EQ(result<double>(G_araspl, &ppl), -3.0);
    // A regular octagon of unit radius (area 2 sqrt 2) in a tilted plane, as
    // Points and as weighted control points; the normal is right-handed.
    Point P[8], S{};
    ControlPoint cp[8];
    for (int i = 0; i < 8; ++i) {
        const double c = std::cos(i * M_PI / 4), s = std::sin(i * M_PI / 4);
        P[i] = P3(1 + c, 2 + 0.6 * s, 3 + 0.8 * s);
        cp[i] = ControlPoint{3 * P[i].x, 3 * P[i].y, 3 * P[i].z, 3};
    }
    ControlPolygon pol{7, cp};
    double a = 0;
    G_araspt(P, 7, &S, &a);
    EXPECT_NEAR(a, 2 * std::sqrt(2.0), 1e-14);
    EXPECT_NEAR(result<double>(G_arecpl, &pol), a, 1e-14);
    EXPECT_POINT_NEAR(S, P3(0, -0.8 * a, 0.6 * a), 1e-14);
}

TEST(ImplicitForms, RoundTrip) {
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        const Point P = P3(rnd.uniform(-5, 5), rnd.uniform(-5, 5), 0), V = P3(rnd.uniform(-1, 1), rnd.uniform(-1, 1), 0);
        Line L{}, M{};
        G_makln2(&L, P, V, KW_LINE_INFINITE);
        double a = 0, b = 0, c = 0, d = 0;
        ASSERT_EQ(G_ln2imp(&L, &a, &b, &c), 0);
        // Left of the line is positive.
        EXPECT_NEAR(result<double>(G_dispnl, a, b, c, P3(P.x - 2 * V.y, P.y + 2 * V.x, 0)), 2 * std::hypot(V.x, V.y), 1e-12);
        ASSERT_EQ(G_impln2(a, b, c, &M), 0);
        EXPECT_NEAR(result<double>(G_displn, P, &M), 0.0, 1e-12);
        EXPECT_NEAR(result<double>(G_veccos, M.direction, V), 1.0, 1e-12);
        Plane pl{}, back{};
        G_makpln(&pl, rnd.point(5.0), rnd.point());
        ASSERT_EQ(G_plnimp(&pl, &a, &b, &c, &d) + G_imppln(2 * a, 2 * b, 2 * c, 2 * d, &back), 0);
        EXPECT_NEAR(result<double>(G_disppl, pl.point, &back), 0.0, 1e-12);
        EXPECT_NEAR(result<double>(G_veccos, back.normal, pl.normal), 1.0, 1e-12);
    }
    Line L{};
    Plane pl{};
    EXPECT_FAILURE(G_impln2(0, 0, 1, &L), 11, "G_IMPLN2");
    EXPECT_FAILURE(G_imppln(0, 0, 0, 1, &pl), 11, "G_IMPPLN");
}

TEST(Polygons, OffsetPlaneAndWeights) {
    // Each offset leg keeps 0.5 from its leg's carrier, on the left.
    Point P[5] = {P3(0, 0, 0), P3(4, 0, 0), P3(4, 3, 0), P3(6, 5, 0), P3(10, 5, 0)}, Q[5];
    ASSERT_EQ(G_poloff(P, 4, 0.5, Q), 0);
    EXPECT_POINT_NEAR(Q[1], P3(3.5, 0.5, 0), 1e-14);
    for (int i = 0; i < 4; ++i) {
        Line L{};
        double a = 0, b = 0, c = 0;
        G_makln1(&L, P[i], P[i + 1], 0);
        G_ln2imp(&L, &a, &b, &c);
        EXPECT_NEAR(result<double>(G_dispnl, a, b, c, Q[i]) + result<double>(G_dispnl, a, b, c, Q[i + 1]), 1.0, 1e-12);
    }
    Point back[3] = {P3(0, 0, 0), P3(2, 0, 0), P3(1, 0, 0)};
    EXPECT_FAILURE(G_poloff(back, 2, 1.0, Q), 11, "G_POLOFF");  // turns back on itself
    EXPECT_POINT_EQ(Q[0], P3(0, 0.5, 0));
    ControlPoint cp[4] = {{0, 0, 1, KW_NONRATIONAL}, {2, 0, 1, KW_NONRATIONAL}, {4, 4, 2, 2}, {0, 2, 1, KW_NONRATIONAL}};
    ControlPolygon pol{3, cp};
    Plane pl{};
    ASSERT_EQ(G_polpln(&pol, &pl), 0);
    EXPECT_LT(dist(pl.normal, P3(0, 0, 1)) + dist(pl.point, P3(1, 1, 1)), 1e-15);
    double a = 0, b = 0, c = 0;
    ASSERT_EQ(G_gweabc(P3(0.2, 0.3, 5), P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0), &a, &b, &c), 0);
    EXPECT_NEAR(std::fabs(a - 0.5) + std::fabs(b - 0.2) + std::fabs(c - 0.3), 0.0, 1e-15);
}

TEST(Circles, ThroughPointsAndOfCurvature) {
    Point M{}, N{};
    double r = 0;
    ASSERT_EQ(G_circer(P3(1, 5, 2), P3(4, 2, 2), P3(1, -1, 2), &M, &N, &r), 0);
    EXPECT_POINT_NEAR(M, P3(1, 2, 2), 1e-14);
    EXPECT_POINT_NEAR(N, P3(0, 0, -1), 1e-15);  // along (B - A) x (C - A)
    EXPECT_NEAR(r, 3.0, 1e-14);
    ASSERT_EQ(G_sphcer(P3(1, 2, 5), P3(1, 2, -1), P3(4, 2, 2), P3(1, -1, 2), &M, &r), 0);
    EXPECT_POINT_NEAR(M, P3(1, 2, 2), 1e-14);
    EXPECT_NEAR(r, 3.0, 1e-14);
    const double t = 0.7;  // the helix (cos t, sin t, t) has radius of curvature 2
    ASSERT_EQ(G_cirder(P3(std::cos(t), std::sin(t), t), P3(-std::sin(t), std::cos(t), 1), P3(-std::cos(t), -std::sin(t), 0), &M, &N, &r), 0);
    EXPECT_NEAR(r, 2.0, 1e-14);
    EXPECT_POINT_NEAR(M, P3(-std::cos(t), -std::sin(t), t), 1e-14);
    EXPECT_FAILURE(G_circer(P3(0, 0, 0), P3(1, 1, 0), P3(3, 3, 0), &M, &N, &r), 11, "G_CIRCER");
    EXPECT_FAILURE(G_sphcer(P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0), P3(1, 1, 0), &M, &r), 11, "G_SPHCER");
    EXPECT_FAILURE(G_cirder(P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), &M, &N, &r), 11, "G_CIRDER");
}
