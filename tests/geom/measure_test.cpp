// Distances, boxes and the side tests.
#include "support.hpp"

using namespace geomtest;

TEST(Distances, LineExtentsDecideTheNearestPoint) {
    // P lies behind the start of the line (0,0,0) + t (1,0,0).
    const Point P = P3(-3, 4, 0);
    const struct {
        int16_t flag;
        double dist, t, xmin, xmax;
    } cases[] = {{KW_LINE_INFINITE, 4, -3, -DBL_MAX, DBL_MAX},
                 {KW_LINE_RAY, 5, 0, 0, DBL_MAX},
                 {KW_LINE_SEGMENT, 5, 0, 0, 1},
                 {77, 4, -3, -DBL_MAX, DBL_MAX}};  // an unknown flag reads as infinite
    for (const auto &c : cases) {
        Line L{};
        Point Q{};
        Box b{};
        double d = 0, t = 0;
        G_makln1(&L, P3(0, 0, 0), P3(1, 0, 0), c.flag);
        ASSERT_EQ(G_displn(P, &L, &d) + G_prjpln(P, &L, &Q, &t), 0);
        G_linbox(&L, &b);
        EXPECT_DOUBLE_EQ(d, c.dist);
        EXPECT_EQ(t, c.t);
        EXPECT_TRUE(b.xmin == c.xmin && b.xmax == c.xmax);
        EXPECT_EQ(b.ymin + b.ymax + b.zmin + b.zmax, 0.0);  // no extent where the direction is 0
    }
    double d = -1;
    G_dispab(P, P3(0, 0, 0), P3(1, 0, 0), &d);
    EXPECT_DOUBLE_EQ(d, 5.0);
    Line L{};
    G_makln2(&L, P3(0, 0, 0), P3(0, 0, 0), 0);
    EXPECT_FAILS(G_displn(P, &L, &d), 17);
    EXPECT_EQ(d, 5.0);
}

TEST(Distances, PlanesCirclesAndSpheres) {
    double d = 0;
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 1), P3(0, 0, 5));
    ASSERT_EQ(G_disppl(P3(9, 9, -2), &pl, &d), 0);
    EXPECT_DOUBLE_EQ(d, -3.0);  // signed
    ASSERT_EQ(G_dispca(P3(5, 0, 4), P3(0, 0, 0), P3(0, 0, 3), 2.0, &d), 0);  // circle of radius 2
    EXPECT_DOUBLE_EQ(d, 5.0);
    // A line and a circle of radius 2 about the origin: missing by 1, cutting,
    // a segment inside (distance from its far end), a segment outside.
    const struct {
        Point A, B;
        int16_t flag;
        double dist;
    } cases[] = {{P3(-10, 3, 0), P3(10, 3, 0), KW_LINE_INFINITE, 1},
                 {P3(-10, 1, 0), P3(10, 1, 0), KW_LINE_INFINITE, 0},
                 {P3(-1, 0, 0), P3(0.5, 0, 0), KW_LINE_SEGMENT, 1},
                 {P3(3, 0, 0), P3(5, 0, 0), KW_LINE_SEGMENT, 1}};
    for (const auto &c : cases) {
        Line L{};
        G_makln1(&L, c.A, c.B, c.flag);
        ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);
        EXPECT_DOUBLE_EQ(d, c.dist);
    }
    EXPECT_FAILS(G_dispca(P3(0, 0, 0), P3(0, 0, 0), P3(0, 0, 1), -1.0, &d), 14);
}

TEST(Measures, LengthsBoxesAndOverlaps) {
    Point pts[4] = {P3(0, 0, 0), P3(3, 4, 0), P3(3, 4, 12), P3(-1, 2, 1)};
    PointPolyline ppl{2, pts};
    ControlPoint cp[3] = {{0, 0, 0, 2}, {6, 8, 0, 2}, {3, 4, KW_PLANAR, KW_NONRATIONAL}};
    ControlPolygon pol{2, cp};
    double len = 0, clen = 0, diag = 0;
    G_dispol(&ppl, &len);
    G_discpl(&pol, &clen);  // Cartesian: (0,0,0), (3,4,0), (3,4,0)
    EXPECT_DOUBLE_EQ(len + clen, 17.0 + 5.0);
    ppl.n = 3;
    Box b{}, a{}, c{};
    G_po1box(&ppl, &b);
    G_boxdef(&a, -1, 3, 0, 4, 0, 12);
    EXPECT_EQ(memcmp(&a, &b, sizeof a), 0);
    G_boxdia(&b, &diag);
    EXPECT_DOUBLE_EQ(diag, std::sqrt(176.0));
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
