// Vectors: operand orders, normalisation, cosines and angles.
#include "support.hpp"

using namespace geomtest;

TEST(Vectors, OperandOrdersAreTheDocumentedOnes) {
    const Point U = P3(1, 2, 3), V = P3(4, 6, 8);
    Point R{};
    G_vecdif(U, V, &R);
    EXPECT_POINT_NEAR(R, P3(-3, -4, -5), 1e-300);
    G_vecdir(U, V, &R);  // from U to V: the reverse of G_vecdif
    EXPECT_POINT_NEAR(R, P3(3, 4, 5), 1e-300);
    G_vecsca(U, 2.0, &R);
    EXPECT_POINT_NEAR(R, P3(2, 4, 6), 1e-300);
    const Point *pu = &U;
    G_vecscp(pu, -1.0, &R);
    EXPECT_POINT_NEAR(R, P3(-1, -2, -3), 1e-300);
    G_veccmb(2.0, U, -1.0, V, &R);
    EXPECT_POINT_NEAR(R, P3(-2, -2, -2), 1e-300);
    G_vecpfv(U, 0.5, V, &R);
    EXPECT_POINT_NEAR(R, P3(3, 5, 7), 1e-300);
    ControlPoint A{2, 4, 6, 2}, B{1, 1, KW_PLANAR, KW_NONRATIONAL};
    G_vecdcp(A, B, &R);  // (1, 2, 3) - (1, 1, 0)
    EXPECT_POINT_NEAR(R, P3(0, 1, 3), 1e-15);
}

TEST(Vectors, ProductsAgreeWithTheirByAddressForms) {
    Random rnd;
    for (int k = 0; k < 50; ++k) {
        const Point U = rnd.point(), V = rnd.point(), W = rnd.point();
        Point C{}, Cp{};
        double d = 0, dp = 0, mix = 0, mag = 0, magp = 0;
        G_veccro(U, V, &C);
        G_veccrp(&U, &V, &Cp);
        EXPECT_POINT_NEAR(C, Cp, 1e-300);
        // The cross product is perpendicular to both factors.
        G_vecdot(C, U, &d);
        EXPECT_NEAR(d, 0.0, 1e-14);
        G_vecdop(&C, &V, &dp);
        EXPECT_NEAR(dp, 0.0, 1e-14);
        G_vecmix(U, V, W, &mix);
        G_vecdot(C, W, &d);
        EXPECT_DOUBLE_EQ(mix, d);
        G_vecmag(U, &mag);
        G_vecmap(&U, &magp);
        EXPECT_EQ(mag, magp);
        EXPECT_NEAR(mag * mag, U.x * U.x + U.y * U.y + U.z * U.z, 1e-14);
    }
}

TEST(Vectors, ReversalsTurnToTheReference) {
    Point V = P3(1, -1, 0);
    G_vecrvp(&V);
    EXPECT_POINT_NEAR(V, P3(-1, 1, 0), 1e-300);
    G_vecrwp(P3(1, 0, 0), &V);  // -1 < 0: turned
    EXPECT_POINT_NEAR(V, P3(1, -1, 0), 1e-300);
    G_vecrwp(P3(0, 0, 1), &V);  // perpendicular: kept
    EXPECT_POINT_NEAR(V, P3(1, -1, 0), 1e-300);
    Point R{};
    G_vecrwv(P3(-1, 0, 0), V, &R);
    EXPECT_POINT_NEAR(R, P3(-1, 1, 0), 1e-300);
    G_vecper(3, 4, &R);
    EXPECT_POINT_NEAR(R, P3(-4, 3, 0), 1e-300);
    EXPECT_TRUE(G_arevps(P3(1, 0, 0), P3(0, 1, 0)));
    EXPECT_FALSE(G_arevps(P3(1, 0, 0), P3(-1e-300, 1, 0)));
    EXPECT_TRUE(G_arepos(P3(1, 2, 3), P3(1, 2, 3)));
    EXPECT_FALSE(G_arepos(P3(1, 2, 3), P3(1, 2, std::nextafter(3.0, 4.0))));
}

TEST(Vectors, NormalisationGivesUnitVectorsAndMagnitudes) {
    Random rnd;
    for (int k = 0; k < 50; ++k) {
        const Point V = rnd.point(1e3);
        Point U{};
        double r = 0;
        ASSERT_EQ(G_vecnor(V, &U, &r), 0);
        double len = 0;
        G_vecmag(U, &len);
        EXPECT_NEAR(len, 1.0, 1e-15);
        EXPECT_POINT_NEAR(P3(U.x * r, U.y * r, U.z * r), V, 1e-12);
        Point W = V;
        ASSERT_EQ(G_vecnip(&W), 0);
        EXPECT_POINT_NEAR(W, U, 1e-300);
    }
}

TEST(Vectors, ZeroVectorRecordsCode17AndLeavesOutputsUntouched) {
    const Point zero = P3(0, 0, 0), sentinel = P3(7, 8, 9);
    Point U = sentinel;
    double r = -5, c = -5, a = -5;
    E_clrerr();
    EXPECT_EQ(G_vecnor(zero, &U, &r), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_STREQ(E_errnam(), "G_VECNOR");
    EXPECT_POINT_NEAR(U, sentinel, 1e-300);
    EXPECT_EQ(r, -5);
    Point W = zero;
    EXPECT_EQ(G_vecnip(&W), 1);
    EXPECT_STREQ(E_errnam(), "G_VECNIP");
    EXPECT_EQ(G_veccos(zero, P3(1, 0, 0), &c), 1);
    EXPECT_STREQ(E_errnam(), "G_VECCOS");
    EXPECT_EQ(c, -5);
    EXPECT_EQ(G_vecang(P3(1, 0, 0), zero, &a), 1);
    EXPECT_EQ(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), zero, &a), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(a, -5);
    // A vector whose length underflows is refused by the overflow guard too.
    EXPECT_EQ(G_vecnor(P3(1e-320, 0, 0), &U, &r), 1);
}

TEST(Vectors, CosineIsClampedToExactlyOne) {
    // Parallel vectors whose rounded cosine exceeds 1 in plain arithmetic.
    Random rnd;
    int above = 0;
    for (int k = 0; k < 2000; ++k) {
        const Point V = rnd.point(10.0);
        const double s = rnd.uniform(0.1, 10.0);
        const Point U = P3(s * V.x, s * V.y, s * V.z);
        const double uu = U.x * U.x + U.y * U.y + U.z * U.z, vv = V.x * V.x + V.y * V.y + V.z * V.z;
        const bool over = (U.x * V.x + U.y * V.y + U.z * V.z) / std::sqrt(uu * vv) > 1.0;
        above += over;
        double c = 0;
        ASSERT_EQ(G_veccos(U, V, &c), 0);
        EXPECT_LE(c, 1.0);
        if (over) EXPECT_EQ(c, 1.0);
        ASSERT_EQ(G_veccos(P3(-U.x, -U.y, -U.z), V, &c), 0);
        EXPECT_GE(c, -1.0);
        if (over) EXPECT_EQ(c, -1.0);
    }
    EXPECT_GT(above, 0);  // the clamp was exercised
    double c = 0;
    ASSERT_EQ(G_veccos(P3(1, 0, 0), P3(1, 1, 0), &c), 0);
    EXPECT_NEAR(c, std::sqrt(0.5), 1e-15);
}

TEST(Vectors, AnglesUnsignedAndDirected) {
    double a = 0;
    ASSERT_EQ(G_vecang(P3(1, 0, 0), P3(0, 2, 0), &a), 0);
    EXPECT_NEAR(a, 90.0, 1e-12);
    ASSERT_EQ(G_vecang(P3(1, 0, 0), P3(-1, 0, 0), &a), 0);
    EXPECT_NEAR(a, 180.0, 1e-12);
    // Small angles stay accurate.
    ASSERT_EQ(G_vecang(P3(1, 0, 0), P3(1, 1e-9, 0), &a), 0);
    EXPECT_NEAR(a, 1e-9 * 180.0 / M_PI, 1e-20);
    ASSERT_EQ(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, 1), &a), 0);
    EXPECT_NEAR(a, 90.0, 1e-12);
    ASSERT_EQ(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, -1), &a), 0);
    EXPECT_NEAR(a, 270.0, 1e-12);
    ASSERT_EQ(G_vecdan(P3(1, 0, 0), P3(1, 0, 0), P3(0, 0, 1), &a), 0);
    EXPECT_EQ(a, 0.0);
    // Directed angles about opposite axes add up to a full turn.
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        const Point U = rnd.point(), V = rnd.point();
        Point N{};
        G_veccro(U, V, &N);
        double up = 0, down = 0, plain = 0;
        G_vecdan(U, V, N, &up);
        G_vecdan(U, V, P3(-N.x, -N.y, -N.z), &down);
        G_vecang(U, V, &plain);
        EXPECT_NEAR(up + down, 360.0, 1e-9);
        EXPECT_NEAR(up, plain, 1e-9);
    }
}
