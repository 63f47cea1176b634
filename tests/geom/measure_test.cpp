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
        G_makln1(&L, P3(0, 0, 0), P3(1, 0, 0), c.flag);
        double d = 0, t = 0;
        Point Q{};
        Box b{};
        ASSERT_EQ(G_displn(P, &L, &d), 0);
        ASSERT_EQ(G_prjpln(P, &L, &Q, &t), 0);
        G_linbox(&L, &b);
        EXPECT_DOUBLE_EQ(d, c.dist);
        EXPECT_EQ(t, c.t);
        EXPECT_EQ(b.xmin, c.xmin);
        EXPECT_EQ(b.xmax, c.xmax);
        EXPECT_EQ(b.ymin + b.ymax + b.zmin + b.zmax, 0.0);  // no extent where the direction is 0
    }
    double d = 0;
    G_dispab(P, P3(0, 0, 0), P3(1, 0, 0), &d);
    EXPECT_DOUBLE_EQ(d, 5.0);
    G_disqab(P, P3(1, 1, 0), P3(1, 1, 0), &d);  // a zero segment is its point
    EXPECT_DOUBLE_EQ(d, 25.0);
    Line L{};
    G_makln2(&L, P3(0, 0, 0), P3(0, 0, 0), 0);
    d = -1;
    E_clrerr();
    EXPECT_EQ(G_displn(P, &L, &d), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(d, -1);
}

TEST(Distances, PlanesCirclesAndSpheres) {
    double d = 0;
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 1), P3(0, 0, 5));
    ASSERT_EQ(G_disppl(P3(9, 9, -2), &pl, &d), 0);
    EXPECT_DOUBLE_EQ(d, -3.0);  // signed
    ASSERT_EQ(G_dispca(P3(5, 0, 4), P3(0, 0, 0), P3(0, 0, 3), 2.0, &d), 0);
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
    E_clrerr();
    EXPECT_EQ(G_dispca(P3(0, 0, 0), P3(0, 0, 0), P3(0, 0, 1), -1.0, &d), 1);
    EXPECT_EQ(E_errtyp(), 14);
    G_discpw(ControlPoint{1, 0, 0, 3}, ControlPoint{1, 0, 0, 1}, &d);  // the weights count
    EXPECT_DOUBLE_EQ(d, 2.0);
}

TEST(Measures, LengthsBoxesAndOverlaps) {
    Point pts[4] = {P3(0, 0, 0), P3(3, 4, 0), P3(3, 4, 12), P3(-1, 2, 1)};
    PointPolyline ppl{2, pts};
    double len = 0, diag = 0;
    G_dispol(&ppl, &len);
    EXPECT_DOUBLE_EQ(len, 17.0);
    ControlPoint cp[3] = {{0, 0, 0, 2}, {6, 8, 0, 2}, {3, 4, KW_PLANAR, KW_NONRATIONAL}};
    ControlPolygon pol{2, cp};
    G_discpl(&pol, &len);  // Cartesian: (0,0,0), (3,4,0), (3,4,0)
    EXPECT_DOUBLE_EQ(len, 5.0);
    ppl.n = 3;
    Box b{};
    G_po1box(&ppl, &b);
    const double want[6] = {-1, 3, 0, 4, 0, 12};
    double got[6];
    G_boxbre(&b, &got[0], &got[1], &got[2], &got[3], &got[4], &got[5]);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got[i], want[i]);
    G_po1ext(&ppl, &len);
    G_boxdia(&b, &diag);
    EXPECT_EQ(len, diag);
    EXPECT_DOUBLE_EQ(diag, std::sqrt(176.0));
    Box a{}, c{};
    G_boxdef(&a, 0, 1, 0, 1, 0, 1);
    G_boxdef(&c, 1, 2, 0.5, 3, 50, 60);  // touches in x; z is not looked at
    EXPECT_TRUE(G_bx2ovl(&a, &c) && G_bx2ovl(&c, &a));
    c.xmin = 1.0000001;
    EXPECT_FALSE(G_bx2ovl(&a, &c));
    ControlPoint r0[2] = {{0, 0, 0, KW_NONRATIONAL}, {0, 3, 0, KW_NONRATIONAL}};
    ControlPoint r1[2] = {{4, 0, 0, 2}, {2, 2, 0, 1}};
    ControlPoint *rows[2] = {r0, r1};
    ControlNet net{1, 1, rows};
    double lu = 0, lv = 0;
    G_netleg(&net, &lu, &lv);
    EXPECT_DOUBLE_EQ(lu, std::sqrt(5.0));
    EXPECT_DOUBLE_EQ(lv, 3.0);
}

TEST(SideTests, AreDeliberatelyAsymmetric) {
    Line L{};
    G_makln2(&L, P3(0, 0, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    EXPECT_EQ(G_lipost(&L, P3(5, 1, 0)), 1);
    EXPECT_EQ(G_lipost(&L, P3(5, -1, 0)), 2);
    EXPECT_EQ(G_lipost(&L, P3(5, 0, 0)), 1);  // on the line: 1
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, 1)), 2);
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, -1)), 1);
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, 0)), 2);  // on the plane: 2
}
