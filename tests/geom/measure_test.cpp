// Distances, lengths, boxes and the side tests.
#include "support.hpp"

using namespace geomtest;

TEST(Distances, PointsAndControlPoints) {
    double d = 0;
    G_dispop(P3(0, 0, 0), P3(1, 2, 2), &d);
    EXPECT_EQ(d, 3.0);
    G_disqpp(P3(0, 0, 0), P3(1, 2, 2), &d);
    EXPECT_EQ(d, 9.0);
    G_dispp2(P3(0, 0, 5), P3(3, 4, -5), &d);
    EXPECT_EQ(d, 5.0);
    G_disqp2(P3(0, 0, 5), P3(3, 4, -5), &d);
    EXPECT_EQ(d, 25.0);
    // Cartesian distance: (1, 2, 0) (planar, weight 2) to (4, 6, 0).
    G_discpp(ControlPoint{2, 4, KW_PLANAR, 2}, ControlPoint{4, 6, 0, KW_NONRATIONAL}, &d);
    EXPECT_DOUBLE_EQ(d, 5.0);
    G_discpo(ControlPoint{2, 4, 6, 2}, P3(1, 2, 7), &d);
    EXPECT_DOUBLE_EQ(d, 4.0);
    // Four-component distance counts the weights.
    G_discpw(ControlPoint{1, 0, 0, 3}, ControlPoint{1, 0, 0, 1}, &d);
    EXPECT_DOUBLE_EQ(d, 2.0);
    G_discpw(ControlPoint{3, 4, KW_PLANAR, KW_NONRATIONAL}, ControlPoint{0, 0, KW_PLANAR, KW_NONRATIONAL}, &d);
    EXPECT_DOUBLE_EQ(d, 5.0);
    G_dispnp(0, 0, 1, -2, P3(5, 5, 7), &d);
    EXPECT_EQ(d, 5.0);
    G_dispnl(0.6, 0.8, -1, P3(3, 4, 99), &d);
    EXPECT_DOUBLE_EQ(d, 4.0);
}

TEST(Distances, SegmentsLinesAndPlanes) {
    double d = 0;
    G_dispab(P3(0.5, 1, 0), P3(0, 0, 0), P3(1, 0, 0), &d);
    EXPECT_DOUBLE_EQ(d, 1.0);
    G_dispab(P3(3, 4, 0), P3(0, 0, 0), P3(-1, 0, 0), &d);  // beyond the end A
    EXPECT_DOUBLE_EQ(d, 5.0);
    G_disqab(P3(3, 4, 0), P3(0, 0, 0), P3(0, 0, 0), &d);  // degenerate: a point
    EXPECT_DOUBLE_EQ(d, 25.0);
    Line L{};
    G_makln1(&L, P3(0, 0, 0), P3(1, 0, 0), KW_LINE_SEGMENT);
    ASSERT_EQ(G_displn(P3(3, 4, 0), &L, &d), 0);
    EXPECT_DOUBLE_EQ(d, std::hypot(2.0, 4.0));
    G_linsfl(&L, KW_LINE_RAY);
    ASSERT_EQ(G_displn(P3(3, 4, 0), &L, &d), 0);
    EXPECT_DOUBLE_EQ(d, 4.0);
    ASSERT_EQ(G_displn(P3(-3, 4, 0), &L, &d), 0);
    EXPECT_DOUBLE_EQ(d, 5.0);
    G_linsfl(&L, 77);  // an unknown flag reads as infinite
    ASSERT_EQ(G_displn(P3(-3, 4, 0), &L, &d), 0);
    EXPECT_DOUBLE_EQ(d, 4.0);
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 1), P3(0, 0, 5));
    ASSERT_EQ(G_disppl(P3(9, 9, -2), &pl, &d), 0);
    EXPECT_DOUBLE_EQ(d, -3.0);
    // Degenerate directions: 17 and outputs untouched.
    d = -1;
    G_makln2(&L, P3(0, 0, 0), P3(0, 0, 0), 0);
    E_clrerr();
    EXPECT_EQ(G_displn(P3(1, 0, 0), &L, &d), 1);
    EXPECT_EQ(E_errtyp(), 17);
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 0));
    EXPECT_EQ(G_disppl(P3(1, 0, 0), &pl, &d), 1);
    EXPECT_STREQ(E_errnam(), "G_DISPPL");
    EXPECT_EQ(d, -1);
}

TEST(Distances, CirclesAndSpheres) {
    double d = 0;
    // Circle of radius 2 about z through the origin.
    ASSERT_EQ(G_dispca(P3(5, 0, 4), P3(0, 0, 0), P3(0, 0, 3), 2.0, &d), 0);
    EXPECT_DOUBLE_EQ(d, 5.0);
    ASSERT_EQ(G_dispca(P3(0, 0, 0), P3(0, 0, 0), P3(0, 0, 1), 2.0, &d), 0);  // the centre
    EXPECT_DOUBLE_EQ(d, 2.0);
    E_clrerr();
    EXPECT_EQ(G_dispca(P3(0, 0, 0), P3(0, 0, 0), P3(0, 0, 1), -1.0, &d), 1);
    EXPECT_EQ(E_errtyp(), 14);
    Line L{};
    G_makln2(&L, P3(-10, 3, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);  // misses by 1
    EXPECT_DOUBLE_EQ(d, 1.0);
    G_makln2(&L, P3(-10, 1, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);  // cuts
    EXPECT_EQ(d, 0.0);
    // A segment wholly inside the circle: the distance from its far end.
    G_makln1(&L, P3(-1, 0, 0), P3(0.5, 0, 0), KW_LINE_SEGMENT);
    ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);
    EXPECT_DOUBLE_EQ(d, 1.0);
    // A segment wholly outside, its nearest point an end.
    G_makln1(&L, P3(3, 0, 0), P3(5, 0, 0), KW_LINE_SEGMENT);
    ASSERT_EQ(G_dislci(&L, P3(0, 0, 0), 2.0, &d), 0);
    EXPECT_DOUBLE_EQ(d, 1.0);
}

TEST(Measures, LengthsAndBoxes) {
    Point pts[4] = {P3(0, 0, 0), P3(3, 4, 0), P3(3, 4, 12), P3(-1, 2, 1)};
    PointPolyline ppl{};
    G_makppl(&ppl, 2, pts);
    double len = 0;
    G_dispol(&ppl, &len);
    EXPECT_DOUBLE_EQ(len, 17.0);
    ControlPoint cp[3] = {{0, 0, 0, 2}, {6, 8, 0, 2}, {3, 4, KW_PLANAR, KW_NONRATIONAL}};
    ControlPolygon pol{2, cp};
    G_discpl(&pol, &len);  // (0,0,0) -> (3,4,0) -> (3,4,0)
    EXPECT_DOUBLE_EQ(len, 5.0);
    G_polleg(&pol, &len);
    EXPECT_DOUBLE_EQ(len, 5.0);
    G_makppl(&ppl, 3, pts);
    Box b{};
    G_po1box(&ppl, &b);
    EXPECT_EQ(b.xmin, -1);
    EXPECT_EQ(b.xmax, 3);
    EXPECT_EQ(b.ymin, 0);
    EXPECT_EQ(b.ymax, 4);
    EXPECT_EQ(b.zmin, 0);
    EXPECT_EQ(b.zmax, 12);
    double dx = 0, dy = 0, dz = 0, diag = 0, ext = 0;
    G_boxdim(&b, &dx, &dy, &dz);
    EXPECT_EQ(dx * 100 + dy * 10 + dz, 4 * 100 + 4 * 10 + 12);
    G_boxdia(&b, &diag);
    G_po1ext(&ppl, &ext);
    EXPECT_DOUBLE_EQ(diag, std::sqrt(16.0 + 16.0 + 144.0));
    EXPECT_EQ(diag, ext);
    Point C{};
    G_boxcen(&b, &C);
    EXPECT_POINT_NEAR(C, P3(1, 2, 6), 1e-15);
    Point row0[2] = {P3(0, 0, 0), P3(1, 5, 0)}, row1[2] = {P3(-2, 0, 1), P3(0, 0, 0)};
    Point *rows[2] = {row0, row1};
    PointNet net{};
    G_makntl(&net, 1, 1, rows);
    G_po2box(&net, &b);
    EXPECT_EQ(b.xmin, -2);
    EXPECT_EQ(b.ymax, 5);
    EXPECT_EQ(b.zmax, 1);
    G_po2ext(&net, &ext);
    EXPECT_DOUBLE_EQ(ext, std::sqrt(9.0 + 25.0 + 1.0));
    G_polbox(&pol, &b);
    EXPECT_EQ(b.xmax, 3);
    EXPECT_EQ(b.zmax, 0);
}

TEST(Measures, NetsAndLineBoxes) {
    ControlPoint r0[3] = {{0, 0, 0, KW_NONRATIONAL}, {0, 1, 0, KW_NONRATIONAL}, {0, 3, 0, KW_NONRATIONAL}};
    ControlPoint r1[3] = {{4, 0, 0, 2}, {2, 2, 0, 1}, {1, 3, 0, 1}};
    ControlPoint *rows[2] = {r0, r1};
    ControlNet net{1, 2, rows};
    double lu = 0, lv = 0;
    G_netleg(&net, &lu, &lv);
    EXPECT_DOUBLE_EQ(lu, std::sqrt(5.0));  // (0,1) -> (2,2); row 1's first point is (2,0,0)
    EXPECT_DOUBLE_EQ(lv, 2.0);             // (0,1) -> (0,3) and (2,0) -> (2,2)
    Box b{};
    G_netbox(&net, &b);
    EXPECT_EQ(b.xmax, 2);
    EXPECT_EQ(b.ymax, 3);
    Line L{};
    G_makln1(&L, P3(1, 2, 3), P3(0, 5, 3), KW_LINE_SEGMENT);
    G_linbox(&L, &b);
    EXPECT_EQ(b.xmin, 0);
    EXPECT_EQ(b.xmax, 1);
    EXPECT_EQ(b.ymin, 2);
    EXPECT_EQ(b.ymax, 5);
    EXPECT_EQ(b.zmin, 3);
    EXPECT_EQ(b.zmax, 3);
    G_linsfl(&L, KW_LINE_RAY);  // direction (-1, 3, 0)
    G_linbox(&L, &b);
    EXPECT_EQ(b.xmin, -DBL_MAX);
    EXPECT_EQ(b.xmax, 1);
    EXPECT_EQ(b.ymin, 2);
    EXPECT_EQ(b.ymax, DBL_MAX);
    EXPECT_EQ(b.zmin, 3);
    EXPECT_EQ(b.zmax, 3);
    Box a{}, c{};
    G_boxdef(&a, 0, 1, 0, 1, 0, 1);
    G_boxdef(&c, 1, 2, 0.5, 3, 50, 60);  // touches in x, z far apart: ignored
    EXPECT_TRUE(G_bx2ovl(&a, &c));
    EXPECT_TRUE(G_bx2ovl(&c, &a));
    G_boxdef(&c, 1.0000001, 2, 0.5, 3, 0, 1);
    EXPECT_FALSE(G_bx2ovl(&a, &c));
}

TEST(SideTests, AreDeliberatelyAsymmetric) {
    Line L{};
    G_makln2(&L, P3(0, 0, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    EXPECT_EQ(G_lipost(&L, P3(5, 1, 0)), 1);   // left: c.z > 0
    EXPECT_EQ(G_lipost(&L, P3(5, -1, 0)), 2);  // right
    EXPECT_EQ(G_lipost(&L, P3(5, 0, 0)), 1);   // on the line
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, 1)), 2);   // normal's side
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, -1)), 1);  // other side
    EXPECT_EQ(G_plpost(&pl, P3(1, 1, 0)), 2);   // on the plane
}

TEST(Records, ConstructorsAndAccessorsRoundTrip) {
    Line L{};
    G_makln1(&L, P3(1, 1, 1), P3(2, 3, 4), 2);
    Point P{}, V{};
    int16_t flag = 0;
    G_linbre(&L, &P, &V, &flag);
    EXPECT_POINT_NEAR(P, P3(1, 1, 1), 1e-300);
    EXPECT_POINT_NEAR(V, P3(1, 2, 3), 1e-300);
    EXPECT_EQ(flag, 2);
    G_lindir(&L, &V);
    EXPECT_POINT_NEAR(V, P3(1, 2, 3), 1e-300);
    Plane pl{};
    G_makpln(&pl, P3(1, 0, 0), P3(0, 1, 0));
    Point N{};
    G_plnbre(&pl, &P, &N);
    G_plnnor(&pl, &V);
    EXPECT_POINT_NEAR(N, V, 1e-300);
    Box b{};
    G_boxdef(&b, 1, 2, 3, 4, 5, 6);
    double v[6];
    G_boxbre(&b, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5]);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(v[i], i + 1);
    Interval u{}, w{};
    double a = 0, bb = 0, c = 0, d = 0;
    G_makitv(&u, -1, 1);
    G_itvbre(&u, &a, &bb);
    EXPECT_EQ(a + 2 * bb, 1);
    Rectangle r{};
    G_makrct(&r, 1, 2, 3, 4);
    G_rctbre(&r, &a, &bb, &c, &d);
    EXPECT_EQ(a * 1000 + bb * 100 + c * 10 + d, 1234);
    G_rctitv(&r, &u, &w);
    EXPECT_EQ(u.b, 2);
    EXPECT_EQ(w.a, 3);
    Point pts[3] = {};
    PointPolyline ppl{};
    G_makppl(&ppl, 2, pts);
    G_defppl(&ppl, 1);
    int32_t n = 0, m = 0;
    Point *Pp = nullptr;
    G_pplbre(&ppl, &n, &Pp);
    EXPECT_EQ(n, 1);
    EXPECT_EQ(Pp, pts);
    Point *rows[1] = {pts};
    PointNet net{};
    G_makntl(&net, 0, 2, rows);
    Point **Pr = nullptr;
    G_ntlbre(&net, &n, &m, &Pr);
    EXPECT_EQ(n * 10 + m, 2);
    EXPECT_EQ(Pr, rows);
    // Closed when first and last are closer than the point tolerance.
    Point closed[3] = {P3(0, 0, 0), P3(1, 0, 0), P3(0.99e-7, 0, 0)};
    G_makppl(&ppl, 2, closed);
    EXPECT_TRUE(G_ispplc(&ppl));
    closed[2].x = 1e-7;
    EXPECT_FALSE(G_ispplc(&ppl));
}
