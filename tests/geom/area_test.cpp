// Areas, implicit forms and the polygon and point-set helpers.
#include "support.hpp"

using namespace geomtest;

TEST(Areas, KnownShapes) {
    double a = 0;
    G_aretrl(P3(0, 0, 0), P3(4, 0, 0), P3(0, 3, 7), &a);
    EXPECT_DOUBLE_EQ(a, 0.5 * 4 * std::sqrt(9.0 + 49.0));
    // An L-shaped hexagon of area 3, counter-clockwise, far from the origin.
    const double x0 = 1e6, y0 = -2e6;
    double x[6] = {0, 2, 2, 1, 1, 0}, y[6] = {0, 0, 1, 1, 2, 2};
    Point pts[6];
    for (int i = 0; i < 6; ++i) {
        x[i] += x0;
        y[i] += y0;
        pts[i] = P3(x[i], y[i], 5.0 * i);
    }
    G_pyarea(x, y, 5, &a);
    EXPECT_DOUBLE_EQ(a, 3.0);
    PointPolyline ppl{5, pts};
    G_araspl(&ppl, &a);
    EXPECT_DOUBLE_EQ(a, 3.0);
    // Clockwise: negative.
    double xr[6], yr[6];
    for (int i = 0; i < 6; ++i) {
        xr[i] = x[5 - i];
        yr[i] = y[5 - i];
    }
    G_pyarea(xr, yr, 5, &a);
    EXPECT_DOUBLE_EQ(a, -3.0);
}

TEST(Areas, SpatialPolygonsAreInvariantUnderRigidMotion) {
    Stacks s;
    RealMatrix T;
    M_inirma(&T);
    ASSERT_EQ(G_tragnr(P3(1, 2, 3), P3(1, -2, 0.5), 37.0, &T, &s.stk), 0);
    // A unit-radius regular octagon in the xy plane: area 2 sqrt 2.
    Point P[8], Q[8];
    for (int i = 0; i < 8; ++i) P[i] = P3(std::cos(i * M_PI / 4), std::sin(i * M_PI / 4), 0);
    ASSERT_EQ(G_traxyz(P, 7, &T, Q), 0);
    Point S{}, N{};
    double a = 0, cosine = 0;
    G_araspt(Q, 7, &S, &a);
    EXPECT_NEAR(a, 2 * std::sqrt(2.0), 1e-12);
    // The vector area is the rotated z axis.
    Point Z[1] = {P3(0, 0, 1)}, O[1] = {P3(0, 0, 0)}, Zt[1], Ot[1];
    G_traxyz(Z, 0, &T, Zt);
    G_traxyz(O, 0, &T, Ot);
    G_vecdif(Zt[0], Ot[0], &N);
    ASSERT_EQ(G_veccos(S, N, &cosine), 0);
    EXPECT_NEAR(cosine, 1.0, 1e-12);
    // The same polygon as weighted control points.
    ControlPoint cp[8];
    for (int i = 0; i < 8; ++i) cp[i] = ControlPoint{3 * Q[i].x, 3 * Q[i].y, 3 * Q[i].z, 3};
    ControlPolygon pol{7, cp};
    double b = 0;
    G_arecpl(&pol, &b);
    EXPECT_NEAR(b, a, 1e-12);
}

TEST(ImplicitForms, RoundTrip) {
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        Line L{};
        const Point P = rnd.point(5.0), V = rnd.point();
        G_makln2(&L, P3(P.x, P.y, 0), P3(V.x, V.y, 0), KW_LINE_INFINITE);
        double a = 0, b = 0, c = 0, d = 0, s = 0;
        ASSERT_EQ(G_ln2imp(&L, &a, &b, &c), 0);
        EXPECT_NEAR(a * a + b * b, 1.0, 1e-15);
        // The left of the direction is positive, at unit rate.
        Point left{};
        G_vecper(V.x, V.y, &left);
        G_vecnip(&left);
        G_dispnl(a, b, c, P3(P.x + 2 * left.x, P.y + 2 * left.y, 0), &s);
        EXPECT_NEAR(s, 2.0, 1e-12);
        Line M{};
        ASSERT_EQ(G_impln2(a, b, c, &M), 0);
        double dm = 0, cosine = 0;
        G_displn(P3(P.x, P.y, 0), &M, &dm);
        EXPECT_NEAR(dm, 0.0, 1e-12);
        G_veccos(M.direction, L.direction, &cosine);
        EXPECT_NEAR(cosine, 1.0, 1e-12);
        Plane pl{}, back{};
        G_makpln(&pl, rnd.point(5.0), rnd.point());
        ASSERT_EQ(G_plnimp(&pl, &a, &b, &c, &d), 0);
        ASSERT_EQ(G_imppln(2 * a, 2 * b, 2 * c, 2 * d, &back), 0);
        G_disppl(pl.point, &back, &s);
        EXPECT_NEAR(s, 0.0, 1e-12);
        G_veccos(back.normal, pl.normal, &cosine);
        EXPECT_NEAR(cosine, 1.0, 1e-12);
        G_dispnp(a, b, c, d, back.point, &s);
        EXPECT_NEAR(s, 0.0, 1e-12);
    }
    Line L{};
    Plane pl{};
    E_clrerr();
    EXPECT_EQ(G_impln2(0, 0, 1, &L), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_STREQ(E_errnam(), "G_IMPLN2");
    EXPECT_EQ(G_imppln(0, 0, 0, 1, &pl), 1);
    EXPECT_STREQ(E_errnam(), "G_IMPPLN");
    double a = 0, b = 0, c = 0;
    G_makln2(&L, P3(0, 0, 0), P3(0, 0, 1), 0);  // no xy part
    EXPECT_EQ(G_ln2imp(&L, &a, &b, &c), 1);
    EXPECT_EQ(E_errtyp(), 17);
}

TEST(Polygons, OffsetKeepsItsDistanceFromEveryLeg) {
    Point P[5] = {P3(0, 0, 0), P3(4, 0, 0), P3(4, 3, 0), P3(6, 5, 0), P3(10, 5, 0)}, Q[5];
    ASSERT_EQ(G_poloff(P, 4, 0.5, Q), 0);
    EXPECT_POINT_NEAR(Q[0], P3(0, 0.5, 0), 1e-15);
    EXPECT_POINT_NEAR(Q[1], P3(3.5, 0.5, 0), 1e-14);  // inner corner of a left turn
    for (int i = 0; i < 4; ++i) {
        // Both ends of each offset leg lie 0.5 from the leg's carrier, on its left.
        Line L{};
        G_makln1(&L, P[i], P[i + 1], KW_LINE_INFINITE);
        double a = 0, b = 0, c = 0, s0 = 0, s1 = 0;
        ASSERT_EQ(G_ln2imp(&L, &a, &b, &c), 0);
        G_dispnl(a, b, c, Q[i], &s0);
        G_dispnl(a, b, c, Q[i + 1], &s1);
        EXPECT_NEAR(s0, 0.5, 1e-12);
        EXPECT_NEAR(s1, 0.5, 1e-12);
    }
    Point before[2] = {P3(9, 9, 9), P3(9, 9, 9)};
    Point back[3] = {P3(0, 0, 0), P3(2, 0, 0), P3(1, 0, 0)};
    E_clrerr();
    EXPECT_EQ(G_poloff(back, 2, 1.0, before), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_POINT_NEAR(before[0], P3(9, 9, 9), 1e-300);
    Point dup[3] = {P3(0, 0, 0), P3(0, 0, 1), P3(1, 0, 0)};
    EXPECT_EQ(G_poloff(dup, 2, 1.0, before), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(G_poloff(dup, 0, 1.0, before), 1);
    EXPECT_EQ(E_errtyp(), 14);
}

TEST(Polygons, PlanesCleaningOrderingAndRectangles) {
    ControlPoint cp[4] = {{0, 0, 1, KW_NONRATIONAL}, {2, 0, 1, KW_NONRATIONAL}, {4, 4, 2, 2},
                          {0, 2, 1, KW_NONRATIONAL}};
    ControlPolygon pol{3, cp};
    Plane pl{};
    ASSERT_EQ(G_polpln(&pol, &pl), 0);
    EXPECT_POINT_NEAR(pl.normal, P3(0, 0, 1), 1e-15);
    EXPECT_POINT_NEAR(pl.point, P3(1, 1, 1), 1e-15);
    ControlPoint line[3] = {{0, 0, 0, KW_NONRATIONAL}, {1, 1, 1, KW_NONRATIONAL}, {2, 2, 2, KW_NONRATIONAL}};
    ControlPolygon straight{2, line};
    E_clrerr();
    EXPECT_EQ(G_polpln(&straight, &pl), 1);
    EXPECT_EQ(E_errtyp(), 17);

    Point P[6] = {P3(0, 0, 0), P3(0, 0, 0.5e-3), P3(1, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(2, 1e-4, 0)};
    int32_t k = 0;
    G_poicln(P, 5, 1e-3, P, &k);  // in place
    ASSERT_EQ(k, 2);
    EXPECT_POINT_NEAR(P[1], P3(1, 0, 0), 1e-300);
    EXPECT_POINT_NEAR(P[2], P3(2, 0, 0), 1e-300);

    Point Q[5] = {P3(3, 0, 0), P3(1, 5, 0), P3(1, -5, 0), P3(-2, 0, 0), P3(1, 0, 1)};
    G_poiord(Q, 4, P3(1, 0, 0));
    EXPECT_EQ(Q[0].x, -2);
    EXPECT_POINT_NEAR(Q[1], P3(1, -5, 0), 1e-300);  // ties by y, then z
    EXPECT_POINT_NEAR(Q[2], P3(1, 0, 1), 1e-300);
    EXPECT_POINT_NEAR(Q[3], P3(1, 5, 0), 1e-300);
    EXPECT_EQ(Q[4].x, 3);

    Rectangle r{};
    G_makrct(&r, 0, 1, 2, 3);
    EXPECT_TRUE(G_poirct(P3(0, 2, 99), &r));
    EXPECT_TRUE(G_poirct(P3(1, 3, 0), &r));
    EXPECT_FALSE(G_poirct(P3(0.5, 1.9, 0), &r));
}

TEST(Polygons, ReflectionsAndBarycentricWeights) {
    Plane pl{};
    G_makpln(&pl, P3(1, 0, 0), P3(2, 0, 0));  // the plane x = 1
    ControlPoint Q{};
    ASSERT_EQ(G_reflcp(ControlPoint{6, 4, 2, 2}, &pl, &Q), 0);  // (3, 2, 1) -> (-1, 2, 1)
    EXPECT_DOUBLE_EQ(Q.x, -2);
    EXPECT_DOUBLE_EQ(Q.y, 4);
    EXPECT_DOUBLE_EQ(Q.z, 2);
    EXPECT_EQ(Q.w, 2);
    ASSERT_EQ(G_reflcp(ControlPoint{3, 2, KW_PLANAR, KW_NONRATIONAL}, &pl, &Q), 0);
    EXPECT_DOUBLE_EQ(Q.x, -1);
    EXPECT_EQ(Q.z, KW_PLANAR);
    EXPECT_EQ(Q.w, KW_NONRATIONAL);
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        const Point A = rnd.point(), B = rnd.point(), C = rnd.point();
        const double wa = rnd.uniform(-1, 2), wb = rnd.uniform(-1, 2), wc = 1 - wa - wb;
        Point P{}, N{};
        G_veccmb(wa, A, wb, B, &P);
        G_vecpfv(P, wc, C, &P);
        // Lifted off the triangle's plane: the weights are those of the foot.
        Point u{}, v{};
        G_vecdif(B, A, &u);
        G_vecdif(C, A, &v);
        G_veccro(u, v, &N);
        G_vecpfv(P, 0.3, N, &P);
        double a = 0, b = 0, c = 0;
        ASSERT_EQ(G_gweabc(P, A, B, C, &a, &b, &c), 0);
        EXPECT_NEAR(a, wa, 1e-9);
        EXPECT_NEAR(b, wb, 1e-9);
        EXPECT_NEAR(c, wc, 1e-9);
    }
    double a = 0, b = 0, c = 0;
    E_clrerr();
    EXPECT_EQ(G_gweabc(P3(0, 0, 0), P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2), &a, &b, &c), 1);
    EXPECT_EQ(E_errtyp(), 11);
}

TEST(Circles, ThroughPointsAndOfCurvature) {
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        // Three points of a circle with a chosen centre, axis and radius.
        const Point M0 = rnd.point(5.0);
        Point e1 = rnd.point(), n = rnd.point(), e2{};
        G_veccro(n, e1, &e1);
        G_vecnip(&e1);
        G_vecnip(&n);
        G_veccro(n, e1, &e2);
        const double r0 = rnd.uniform(0.5, 3.0);
        Point X[4];
        for (int i = 0; i < 3; ++i) {
            const double t = rnd.uniform(0, 2 * M_PI);
            A_cirpoi(M0, r0 * std::cos(t), e1, r0 * std::sin(t), e2, &X[i]);
        }
        Point M{}, N{};
        double r = 0, cosine = 0;
        ASSERT_EQ(G_circer(X[0], X[1], X[2], &M, &N, &r), 0);
        EXPECT_POINT_NEAR(M, M0, 1e-9);
        EXPECT_NEAR(r, r0, 1e-9);
        G_veccos(N, n, &cosine);
        EXPECT_NEAR(std::fabs(cosine), 1.0, 1e-9);
        // Four points of a sphere.
        for (int i = 0; i < 4; ++i) {
            Point d = rnd.point();
            G_vecnip(&d);
            G_vecpfv(M0, r0, d, &X[i]);
        }
        ASSERT_EQ(G_sphcer(X[0], X[1], X[2], X[3], &M, &r), 0);
        EXPECT_POINT_NEAR(M, M0, 1e-8);
        EXPECT_NEAR(r, r0, 1e-8);
    }
    // The helix (cos t, sin t, t) has curvature 1/2 everywhere.
    const double t = 0.7;
    Point M{}, N{};
    double r = 0;
    ASSERT_EQ(G_cirder(P3(std::cos(t), std::sin(t), t), P3(-std::sin(t), std::cos(t), 1),
                       P3(-std::cos(t), -std::sin(t), 0), &M, &N, &r), 0);
    EXPECT_NEAR(r, 2.0, 1e-14);
    EXPECT_POINT_NEAR(M, P3(-std::cos(t), -std::sin(t), t), 1e-14);
    E_clrerr();
    EXPECT_EQ(G_circer(P3(0, 0, 0), P3(1, 1, 0), P3(3, 3, 0), &M, &N, &r), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_EQ(G_sphcer(P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0), P3(1, 1, 0), &M, &r), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_EQ(G_cirder(P3(0, 0, 0), P3(0, 0, 0), P3(1, 0, 0), &M, &N, &r), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(G_cirder(P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), &M, &N, &r), 1);
    EXPECT_EQ(E_errtyp(), 11);
}
