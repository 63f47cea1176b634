// Intersections and projections against constructed answers.
#include "support.hpp"

using namespace geomtest;

TEST(Intersections, LinesMeetWhereConstructed) {
    Random rnd;
    for (int k = 0; k < 30; ++k) {
        // Two lines through a chosen point X.
        const Point X = rnd.point(10.0), d1 = rnd.point(), d2 = rnd.point();
        const double s0 = rnd.uniform(-2, 2), t0 = rnd.uniform(-2, 2);
        Line L1{}, L2{};
        G_makln2(&L1, P3(X.x - s0 * d1.x, X.y - s0 * d1.y, X.z - s0 * d1.z), d1, KW_LINE_INFINITE);
        G_makln2(&L2, P3(X.x - t0 * d2.x, X.y - t0 * d2.y, X.z - t0 * d2.z), d2, KW_LINE_INFINITE);
        Point Y{};
        double s = 0, t = 0;
        ASSERT_EQ(G_intlnl(&L1, &L2, &Y, &s, &t), 0);
        EXPECT_POINT_NEAR(Y, X, 1e-10);
        EXPECT_NEAR(s, s0, 1e-10);
        EXPECT_NEAR(t, t0, 1e-10);
        // As segments they meet only when both parameters lie in [0, 1].
        G_linsfl(&L1, KW_LINE_SEGMENT);
        G_linsfl(&L2, KW_LINE_SEGMENT);
        const bool inside = s0 >= 0 && s0 <= 1 && t0 >= 0 && t0 <= 1;
        EXPECT_EQ(G_intlnl(&L1, &L2, &Y, &s, &t), inside ? 0 : 2);
    }
}

TEST(Intersections, SkewAndParallelLines) {
    Line L1{}, L2{};
    G_makln2(&L1, P3(0, 0, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    G_makln2(&L2, P3(0, 0, 1), P3(0, 1, 0), KW_LINE_INFINITE);
    Point X{};
    double s = 0, t = 0;
    EXPECT_EQ(G_intlnl(&L1, &L2, &X, &s, &t), 2);  // skew: nearest points reported
    EXPECT_POINT_NEAR(X, P3(0, 0, 0), 1e-15);
    G_makln2(&L2, P3(0, 1, 0), P3(-2, 0, 0), KW_LINE_INFINITE);
    X = P3(5, 5, 5);
    E_clrerr();
    EXPECT_EQ(G_intlnl(&L1, &L2, &X, &s, &t), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_STREQ(E_errnam(), "G_INTLNL");
    EXPECT_POINT_NEAR(X, P3(5, 5, 5), 1e-300);
    G_makln2(&L2, P3(0, 1, 0), P3(0, 0, 0), KW_LINE_INFINITE);
    EXPECT_EQ(G_intlnl(&L1, &L2, &X, &s, &t), 1);
    EXPECT_EQ(E_errtyp(), 17);
}

TEST(Intersections, LinesAndPlanes) {
    Line L{};
    Plane pl{};
    G_makln1(&L, P3(0, 0, -1), P3(1, 1, 1), KW_LINE_SEGMENT);
    G_makpln(&pl, P3(5, 5, 0), P3(0, 0, 2));
    Point X{};
    double t = 0;
    ASSERT_EQ(G_intlnp(&L, &pl, &X, &t), 0);
    EXPECT_POINT_NEAR(X, P3(0.5, 0.5, 0), 1e-15);
    EXPECT_DOUBLE_EQ(t, 0.5);
    G_makpln(&pl, P3(0, 0, 3), P3(0, 0, 1));
    EXPECT_EQ(G_intlnp(&L, &pl, &X, &t), 2);  // beyond the segment's end
    EXPECT_DOUBLE_EQ(t, 2.0);
    G_makpln(&pl, P3(0, 0, 3), P3(1, -1, 0));  // contains the direction
    E_clrerr();
    EXPECT_EQ(G_intlnp(&L, &pl, &X, &t), 1);
    EXPECT_EQ(E_errtyp(), 11);
    // Two planes: the line lies on both.
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        Plane A{}, B{};
        G_makpln(&A, rnd.point(5), rnd.point());
        G_makpln(&B, rnd.point(5), rnd.point());
        Line M{};
        ASSERT_EQ(G_intplp(&A, &B, &M), 0);
        for (double u : {-3.0, 0.0, 2.0}) {
            Point Y{};
            G_vecpfv(M.point, u, M.direction, &Y);
            double da = 0, db = 0;
            G_disppl(Y, &A, &da);
            G_disppl(Y, &B, &db);
            EXPECT_NEAR(da, 0.0, 1e-9);
            EXPECT_NEAR(db, 0.0, 1e-9);
        }
        // The point is the one nearest A's point.
        double dd = 0;
        G_vecdot(M.direction, P3(A.point.x - M.point.x, A.point.y - M.point.y, A.point.z - M.point.z), &dd);
        EXPECT_NEAR(dd, 0.0, 1e-9);
    }
    Plane A{}, B{};
    G_makpln(&A, P3(0, 0, 0), P3(0, 0, 1));
    G_makpln(&B, P3(0, 0, 1), P3(0, 0, -3));
    Line M{};
    EXPECT_EQ(G_intplp(&A, &B, &M), 1);
    EXPECT_EQ(E_errtyp(), 11);
}

TEST(Intersections, ControlPolygonAndPlane) {
    // A zigzag about z = 0: a crossing, a vertex on the plane, another crossing.
    ControlPoint cp[5] = {{0, 0, -1, KW_NONRATIONAL}, {2, 0, 2, 2}, {2, 0, 0, KW_NONRATIONAL},
                          {3, 0, -1, KW_NONRATIONAL}, {4, 0, 1, KW_NONRATIONAL}};
    ControlPolygon pol{4, cp};
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 1));
    Point X[5];
    int32_t k = 0;
    ASSERT_EQ(G_intcpl(&pol, &pl, X, &k), 0);
    ASSERT_EQ(k, 2);
    EXPECT_POINT_NEAR(X[0], P3(0.5, 0, 0), 1e-15);  // (0,0,-1) to (1,0,1)
    EXPECT_POINT_NEAR(X[1], P3(2, 0, 0), 1e-15);
    EXPECT_POINT_NEAR(X[2], P3(3.5, 0, 0), 1e-15);
    G_makpln(&pl, P3(0, 0, 10), P3(0, 0, 1));
    ASSERT_EQ(G_intcpl(&pol, &pl, X, &k), 0);
    EXPECT_EQ(k, -1);
}

TEST(Intersections, PlanarSegments) {
    Point X{};
    double s = 0, t = 0;
    ASSERT_EQ(G_intlsg(P3(0, 0, 3), P3(2, 2, 3), P3(0, 2, 0), P3(2, 0, 0), &X, &s, &t), 0);
    EXPECT_POINT_NEAR(X, P3(1, 1, 0), 1e-15);
    EXPECT_DOUBLE_EQ(s, 0.5);
    EXPECT_DOUBLE_EQ(t, 0.5);
    EXPECT_EQ(G_intlsg(P3(0, 0, 0), P3(1, 1, 0), P3(0, 4, 0), P3(4, 0, 0), &X, &s, &t), 2);
    EXPECT_DOUBLE_EQ(s, 2.0);
    E_clrerr();
    EXPECT_EQ(G_intlsg(P3(0, 0, 0), P3(1, 1, 0), P3(0, 1, 0), P3(1, 2, 0), &X, &s, &t), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_EQ(G_intlsg(P3(0, 0, 0), P3(0, 0, 5), P3(0, 1, 0), P3(1, 2, 0), &X, &s, &t), 1);
    EXPECT_EQ(E_errtyp(), 17);
    // The predicate agrees with the intersection on random segments.
    Random rnd;
    for (int k = 0; k < 200; ++k) {
        const Point A = rnd.point(), B = rnd.point(), C = rnd.point(), D = rnd.point();
        const int16_t rc = G_intlsg(A, B, C, D, &X, &s, &t);
        if (rc == 1) continue;
        EXPECT_EQ(G_dolsin(A, B, C, D), rc == 0) << k;
    }
    // Touching and collinear overlaps count.
    EXPECT_TRUE(G_dolsin(P3(0, 0, 0), P3(1, 0, 0), P3(1, 0, 0), P3(1, 1, 0)));
    EXPECT_TRUE(G_dolsin(P3(0, 0, 0), P3(2, 0, 0), P3(1, 0, 0), P3(3, 0, 0)));
    EXPECT_FALSE(G_dolsin(P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0)));
}

TEST(Intersections, LineAndCircle) {
    Line L{};
    G_makln2(&L, P3(-5, 3, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    int16_t k = -1;
    Point X0{}, X1{};
    ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X0, &X1), 0);
    ASSERT_EQ(k, 2);
    EXPECT_POINT_NEAR(X0, P3(-4, 3, 0), 1e-14);
    EXPECT_POINT_NEAR(X1, P3(4, 3, 0), 1e-14);
    G_linsfl(&L, KW_LINE_RAY);  // starts at x = -5 inside... outside: both kept
    ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X0, &X1), 0);
    EXPECT_EQ(k, 2);
    G_makln2(&L, P3(0, 3, 0), P3(1, 0, 0), KW_LINE_RAY);  // from inside: one
    ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X0, &X1), 0);
    ASSERT_EQ(k, 1);
    EXPECT_POINT_NEAR(X0, P3(4, 3, 0), 1e-14);
    G_makln2(&L, P3(0, 5, 0), P3(1, 0, 0), KW_LINE_INFINITE);  // tangent
    ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X0, &X1), 0);
    ASSERT_EQ(k, 1);
    EXPECT_POINT_NEAR(X0, P3(0, 5, 0), 1e-14);
    G_makln2(&L, P3(0, 6, 0), P3(1, 0, 0), KW_LINE_INFINITE);
    ASSERT_EQ(G_isntlc(&L, P3(0, 0, 0), 5.0, &k, &X0, &X1), 0);
    EXPECT_EQ(k, 0);
    E_clrerr();
    EXPECT_EQ(G_isntlc(&L, P3(0, 0, 0), -5.0, &k, &X0, &X1), 1);
    EXPECT_EQ(E_errtyp(), 14);
}

TEST(Intersections, PolygonsPlanesAndPoints) {
    Point sq[4] = {P3(0, 0, 0), P3(4, 0, 0), P3(4, 4, 0), P3(0, 4, 0)};
    Point tri[3] = {P3(1, 1, 0), P3(2, 1, 0), P3(1, 2, 0)};  // inside the square
    Point far[3] = {P3(10, 10, 0), P3(11, 10, 0), P3(10, 11, 0)};
    Point cut[3] = {P3(3, 3, 0), P3(6, 3, 0), P3(3, 6, 0)};
    PointPolyline S{3, sq}, T{2, tri}, F{2, far}, C{2, cut};
    EXPECT_TRUE(G_ispgpg(&S, &T));
    EXPECT_TRUE(G_ispgpg(&T, &S));
    EXPECT_TRUE(G_ispgpg(&S, &C));
    EXPECT_FALSE(G_ispgpg(&S, &F));
    EXPECT_TRUE(G_ispppl(P3(2, 2, 0), &S));
    EXPECT_TRUE(G_ispppl(P3(4, 2, 0), &S));  // on the boundary
    EXPECT_TRUE(G_ispppl(P3(2, 4 + 0.5e-7, 0), &S));
    EXPECT_FALSE(G_ispppl(P3(5, 2, 0), &S));
    // A concave polygon: the notch is outside.
    Point u[8] = {P3(0, 0, 0), P3(3, 0, 0), P3(3, 3, 0), P3(2, 3, 0),
                  P3(2, 1, 0), P3(1, 1, 0), P3(1, 3, 0), P3(0, 3, 0)};
    PointPolyline Ushape{7, u};
    EXPECT_FALSE(G_ispppl(P3(1.5, 2, 0), &Ushape));
    EXPECT_TRUE(G_ispppl(P3(0.5, 2, 0), &Ushape));
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(1, 0, 0));
    EXPECT_TRUE(G_ispgpl(&S, &pl));  // two points on the plane
    G_makpln(&pl, P3(2, 0, 0), P3(1, 0, 0));
    EXPECT_TRUE(G_ispgpl(&S, &pl));
    G_makpln(&pl, P3(5, 0, 0), P3(1, 0, 0));
    EXPECT_FALSE(G_ispgpl(&S, &pl));
    G_makpln(&pl, P3(5, 0, 0), P3(0, 0, 0));
    EXPECT_FALSE(G_ispgpl(&S, &pl));
}

TEST(Projections, LandOnTheirLineOrPlane) {
    Random rnd;
    for (int k = 0; k < 30; ++k) {
        const Point P = rnd.point(5.0);
        Plane pl{};
        G_makpln(&pl, rnd.point(5.0), rnd.point());
        Point Q{}, Qh{};
        ASSERT_EQ(G_prjppl(P, &pl, &Q), 0);
        double d = 0, dp = 0;
        G_disppl(Q, &pl, &d);
        EXPECT_NEAR(d, 0.0, 1e-12);
        // The offset is along the normal, its length the distance.
        G_disppl(P, &pl, &dp);
        EXPECT_NEAR(dist(P, Q), std::fabs(dp), 1e-12);
        double a = 0, b = 0, c = 0, e = 0;
        ASSERT_EQ(G_plnimp(&pl, &a, &b, &c, &e), 0);
        ASSERT_EQ(G_prjphp(P, 3 * a, 3 * b, 3 * c, 3 * e, &Qh), 0);
        EXPECT_POINT_NEAR(Qh, Q, 1e-12);
        Point arr[2] = {P, Q}, out[2];
        ASSERT_EQ(G_prjpab(arr, 1, &pl, out), 0);
        EXPECT_POINT_NEAR(out[0], Q, 1e-12);
        EXPECT_POINT_NEAR(out[1], Q, 1e-12);
        // Onto an infinite line: perpendicular foot.
        Line L{};
        G_makln2(&L, rnd.point(5.0), rnd.point(), KW_LINE_INFINITE);
        double t = 0, dl = 0, dot = 0;
        ASSERT_EQ(G_prjpln(P, &L, &Q, &t), 0);
        G_displn(Q, &L, &dl);
        EXPECT_NEAR(dl, 0.0, 1e-12);
        G_vecdot(P3(P.x - Q.x, P.y - Q.y, P.z - Q.z), L.direction, &dot);
        EXPECT_NEAR(dot, 0.0, 1e-12);
        // On a segment the foot is clamped to its ends.
        G_linsfl(&L, KW_LINE_SEGMENT);
        ASSERT_EQ(G_prjpln(P, &L, &Q, &t), 0);
        EXPECT_GE(t, 0.0);
        EXPECT_LE(t, 1.0);
    }
    Plane pl{};
    G_makpln(&pl, P3(0, 0, 0), P3(0, 0, 0));
    Point Q = P3(1, 2, 3);
    E_clrerr();
    EXPECT_EQ(G_prjppl(P3(0, 0, 1), &pl, &Q), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(G_prjphp(P3(0, 0, 1), 0, 0, 0, 1, &Q), 1);
    EXPECT_EQ(G_prjpab(&Q, 0, &pl, &Q), 1);
    EXPECT_POINT_NEAR(Q, P3(1, 2, 3), 1e-300);
}

TEST(Projections, NearestPointOfAPolyline) {
    Point pts[4] = {P3(0, 0, 0), P3(2, 0, 0), P3(2, 2, 0), P3(0, 2, 0)};
    PointPolyline ppl{3, pts};
    Point Q{};
    int32_t i = -1;
    double t = -1;
    G_polppr(P3(3, 1, 0), &ppl, &Q, &i, &t);
    EXPECT_POINT_NEAR(Q, P3(2, 1, 0), 1e-15);
    EXPECT_EQ(i, 1);
    EXPECT_DOUBLE_EQ(t, 0.5);
    G_polppr(P3(-1, 1, 0), &ppl, &Q, &i, &t);  // the open end: nearest is (0, 0) or (0, 2)
    EXPECT_EQ(i, 0);
    EXPECT_POINT_NEAR(Q, P3(0, 0, 0), 1e-15);
    ppl.n = 0;
    G_polppr(P3(5, 5, 5), &ppl, &Q, &i, &t);
    EXPECT_POINT_NEAR(Q, P3(0, 0, 0), 1e-300);
    EXPECT_EQ(i, 0);
    EXPECT_EQ(t, 0.0);
}
