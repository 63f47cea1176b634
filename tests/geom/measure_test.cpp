// Vectors, distances, boxes and the side tests.
#include "support.hpp"

using namespace geomtest;

TEST(Vectors, OperandOrdersAndNormalisation) {
    EXPECT_POINT_EQ(result<Point>(G_vecdif, P3(1, 2, 3), P3(4, 6, 8)), P3(-3, -4, -5));
    EXPECT_POINT_EQ(result<Point>(G_vecdir, P3(1, 2, 3), P3(4, 6, 8)), P3(3, 4, 5));  // from the first to the second
    EXPECT_POINT_EQ(result<Point>(G_vecsca, P3(1, 2, 3), 2.0), P3(2, 4, 6));          // the factor last
    EXPECT_POINT_EQ(result<Point>(G_vecdcp, ControlPoint{2, 4, 6, 2}, ControlPoint{1, 1, KW_PLANAR, KW_NONRATIONAL}), P3(0, 1, 3));
    Random rnd;
    for (int k = 0; k < 50; ++k) {
        const Point V = rnd.point(1e3);
        Point U{}, W = V;
        double r = 0;
        ASSERT_EQ(G_vecnor(V, &U, &r) + G_vecnip(&W), 0);
        EXPECT_NEAR(result<double>(G_vecmag, U), 1.0, 1e-15);
        EXPECT_POINT_NEAR(P3(U.x * r, U.y * r, U.z * r), V, 1e-12);
        EXPECT_POINT_EQ(W, U);
    }
    // Code 17 under each routine's name, outputs untouched; a length that
    // underflows is refused by the overflow guard too.
    Point U = P3(7, 8, 9), Z = P3(0, 0, 0);
    double r = -5, c = -5;
    EXPECT_FAILURE(G_vecnor(P3(1e-320, 0, 0), &U, &r), 17, "G_VECNOR");
    EXPECT_FAILURE(G_vecnor(Z, &U, &r), 17, "G_VECNOR");
    EXPECT_FAILURE(G_vecnip(&Z), 17, "G_VECNIP");
    EXPECT_FAILURE(G_veccos(Z, P3(1, 0, 0), &c), 17, "G_VECCOS");
    EXPECT_TRUE(dist(U, P3(7, 8, 9)) == 0 && dist(Z, P3(0, 0, 0)) == 0 && r + c == -10);
}

// Parallel vectors whose plainly computed cosine rounds above 1 get exactly
// 1 (and -1 reversed).
TEST(Vectors, CosineIsClampedAndAnglesAreAccurate) {
    Random rnd;
    int above = 0;
    for (int k = 0; k < 2000; ++k) {
        const Point V = rnd.point(10.0);
        const double s = rnd.uniform(0.1, 10.0);
        const Point U = P3(s * V.x, s * V.y, s * V.z);
        const double uu = U.x * U.x + U.y * U.y + U.z * U.z, vv = V.x * V.x + V.y * V.y + V.z * V.z;
        const bool over = (U.x * V.x + U.y * V.y + U.z * V.z) / std::sqrt(uu * vv) > 1.0;
        double c = 0, d = 0;
        above += over;
        ASSERT_EQ(G_veccos(U, V, &c) + G_veccos(P3(-U.x, -U.y, -U.z), V, &d), 0);
        EXPECT_TRUE(c <= 1.0 && d >= -1.0);
        if (over) EXPECT_TRUE(c == 1.0 && d == -1.0);
    }
    EXPECT_GT(above, 0);
    double a = 0;
    ASSERT_EQ(G_vecang(P3(1, 0, 0), P3(1, 1e-9, 0), &a), 0);  // small angles stay accurate
    EXPECT_NEAR(a, 1e-9 * 180.0 / M_PI, 1e-20);
    ASSERT_EQ(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, -1), &a), 0);
    EXPECT_NEAR(a, 270.0, 1e-12);
    for (int k = 0; k < 20; ++k) {
        // About U x V the directed angle is the plain one; about -(U x V) the rest of a turn.
        const Point U = rnd.point(), V = rnd.point(), N = result<Point>(G_veccro, U, V);
        double up = 0, down = 0, plain = 0;
        ASSERT_EQ(G_vecdan(U, V, N, &up) + G_vecdan(U, V, P3(-N.x, -N.y, -N.z), &down) + G_vecang(U, V, &plain), 0);
        EXPECT_NEAR(up + down, 360.0, 1e-9);
        EXPECT_NEAR(up, plain, 1e-9);
    }
    EXPECT_FAILURE(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, 0), &a), 17, "G_VECDAN");
}

TEST(Distances, LinesCirclesPlanesAndPolylines) {
    // P lies behind the start of the line (0,0,0) + t (1,0,0): the extent
    // decides the nearest point; an unknown flag reads as infinite.
    const Point P = P3(-3, 4, 0);
    for (const auto &[flag, d0, t0, lo, hi] : {std::tuple{int(KW_LINE_INFINITE), 4.0, -3.0, -DBL_MAX, DBL_MAX}, {KW_LINE_RAY, 5.0, 0.0, 0.0, DBL_MAX},
                                               {KW_LINE_SEGMENT, 5.0, 0.0, 0.0, 1.0}, {77, 4.0, -3.0, -DBL_MAX, DBL_MAX}}) {
        Line L{};
        Point Q{};
        Box b{};
        double d = 0, t = 0;
        G_makln1(&L, P3(0, 0, 0), P3(1, 0, 0), int16_t(flag));
        ASSERT_EQ(G_displn(P, &L, &d) + G_prjpln(P, &L, &Q, &t), 0);
        G_linbox(&L, &b);
        EXPECT_TRUE(d == d0 && t == t0 && b.xmin == lo && b.xmax == hi) << flag;
        EXPECT_EQ(b.ymin + b.ymax + b.zmin + b.zmax, 0.0);  // no extent where the direction is 0
    }
    EXPECT_DOUBLE_EQ(result<double>(G_dispab, P, P3(0, 0, 0), P3(1, 0, 0)), 5.0);
    Line L{};
    G_makln2(&L, P3(0, 0, 0), P3(0, 0, 0), 0);
    double d = 5.0;
    EXPECT_FAILURE(G_displn(P, &L, &d), 17, "G_DISPLN");
    EXPECT_EQ(d, 5.0);
    // A line and a circle of radius 2 about the origin: missing by 1, cutting,
    // a segment inside (distance from its far end), a segment outside.
    for (const auto &[A, B, flag, want] : {std::tuple{P3(-10, 3, 0), P3(10, 3, 0), KW_LINE_INFINITE, 1.0},
                                            {P3(-10, 1, 0), P3(10, 1, 0), KW_LINE_INFINITE, 0.0},
                                            {P3(-1, 0, 0), P3(0.5, 0, 0), KW_LINE_SEGMENT, 1.0},
                                            {P3(3, 0, 0), P3(5, 0, 0), KW_LINE_SEGMENT, 1.0}}) {
        G_makln1(&L, A, B, int16_t(flag));
        ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);
        EXPECT_DOUBLE_EQ(d, want);
    }
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 1), P3(0, 0, 5));
    ASSERT_EQ(G_disppl(P3(9, 9, -2), &pl, &d), 0);
    EXPECT_DOUBLE_EQ(d, -3.0);  // signed
    ASSERT_EQ(G_dispca(P3(5, 0, 4), P3(0, 0, 0), P3(0, 0, 3), 2.0, &d), 0);  // circle of radius 2
    EXPECT_DOUBLE_EQ(d, 5.0);
    EXPECT_FAILURE(G_dispca(P3(0, 0, 0), P3(0, 0, 0), P3(0, 0, 1), -1.0, &d), 14, "G_DISPCA");
    Point pts[4] = {P3(0, 0, 0), P3(3, 4, 0), P3(3, 4, 12), P3(-1, 2, 1)};
    PointPolyline ppl{2, pts};
    ControlPoint cp[3] = {{0, 0, 0, 2}, {6, 8, 0, 2}, {3, 4, KW_PLANAR, KW_NONRATIONAL}};
    ControlPolygon pol{2, cp};
    EXPECT_DOUBLE_EQ(result<double>(G_dispol, &ppl) + result<double>(G_discpl, &pol), 17.0 + 5.0);  // Cartesian
}

TEST(Boxes, OfPointsAndOverlaps) {
    Point pts[4] = {P3(0, 0, 0), P3(3, 4, 0), P3(3, 4, 12), P3(-1, 2, 1)};
    PointPolyline ppl{3, pts};
    Box b{}, a{}, c{};
    G_po1box(&ppl, &b);
    G_boxdef(&a, -1, 3, 0, 4, 0, 12);
    EXPECT_EQ(memcmp(&a, &b, sizeof a), 0);
    EXPECT_DOUBLE_EQ(result<double>(G_boxdia, &b), std::sqrt(176.0));
    G_boxdef(&a, 0, 1, 0, 1, 0, 1);
    G_boxdef(&c, 1, 2, 0.5, 3, 50, 60);  // touches in x; z is not looked at
    EXPECT_TRUE(G_bx2ovl(&a, &c) && G_bx2ovl(&c, &a));
    c.xmin = 1.0000001;
    EXPECT_FALSE(G_bx2ovl(&a, &c));
}

// Left, right and on the line: 1, 2, 1; the normal's side, the other and on
// the plane: 2, 1, 2.
TEST(SideTests, AreDeliberatelyAsymmetric) {
    Line L{};
    Plane pl{};
    G_makln2(&L, P3(0, 0, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    EXPECT_EQ(G_lipost(&L, P3(5, 1, 0)) * 100 + G_lipost(&L, P3(5, -1, 0)) * 10 + G_lipost(&L, P3(5, 0, 0)), 121);
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, 1)) * 100 + G_plpost(&pl, P3(1, 1, -1)) * 10 + G_plpost(&pl, P3(1, 1, 0)), 212);
}
