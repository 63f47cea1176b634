// Vectors: operand orders, normalisation, cosines and angles.
#include "support.hpp"

using namespace geomtest;

TEST(Vectors, OperandOrders) {
    Point R{};
    G_vecdif(P3(1, 2, 3), P3(4, 6, 8), &R);
    EXPECT_POINT_EQ(R, P3(-3, -4, -5));
    G_vecdir(P3(1, 2, 3), P3(4, 6, 8), &R);  // from the first to the second
    EXPECT_POINT_EQ(R, P3(3, 4, 5));
    G_vecsca(P3(1, 2, 3), 2.0, &R);  // the factor last
    EXPECT_POINT_EQ(R, P3(2, 4, 6));
    G_vecdcp(ControlPoint{2, 4, 6, 2}, ControlPoint{1, 1, KW_PLANAR, KW_NONRATIONAL}, &R);
    EXPECT_POINT_EQ(R, P3(0, 1, 3));
}

TEST(Vectors, NormalisationAndTheZeroVector) {
    Random rnd;
    for (int k = 0; k < 50; ++k) {
        const Point V = rnd.point(1e3);
        Point U{}, W = V;
        double r = 0, len = 0;
        ASSERT_EQ(G_vecnor(V, &U, &r) + G_vecnip(&W), 0);
        G_vecmag(U, &len);
        EXPECT_NEAR(len, 1.0, 1e-15);
        EXPECT_POINT_NEAR(P3(U.x * r, U.y * r, U.z * r), V, 1e-12);
        EXPECT_POINT_EQ(W, U);
    }
    // Code 17 under each routine's name, outputs untouched; a length that
    // underflows is refused by the overflow guard too.
    Point U = P3(7, 8, 9), Z = P3(0, 0, 0);
    double r = -5, c = -5;
    EXPECT_FAILS(G_vecnor(Z, &U, &r), 17);
    EXPECT_STREQ(E_errnam(), "G_VECNOR");
    EXPECT_FAILS(G_vecnor(P3(1e-320, 0, 0), &U, &r), 17);
    EXPECT_FAILS(G_vecnip(&Z), 17);
    EXPECT_STREQ(E_errnam(), "G_VECNIP");
    EXPECT_FAILS(G_veccos(Z, P3(1, 0, 0), &c), 17);
    EXPECT_STREQ(E_errnam(), "G_VECCOS");
    EXPECT_POINT_EQ(U, P3(7, 8, 9));
    EXPECT_POINT_EQ(Z, P3(0, 0, 0));
    EXPECT_EQ(r + c, -10);
}

TEST(Vectors, CosineIsClampedToExactlyOne) {
    // Parallel vectors whose plainly computed cosine rounds above 1.
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
        ASSERT_EQ(G_veccos(U, V, &c), 0);
        ASSERT_EQ(G_veccos(P3(-U.x, -U.y, -U.z), V, &d), 0);
        EXPECT_TRUE(c <= 1.0 && d >= -1.0);
        if (over) EXPECT_TRUE(c == 1.0 && d == -1.0);
    }
    EXPECT_GT(above, 0);
}

TEST(Vectors, AnglesUnsignedAndDirected) {
    double a = 0;
    ASSERT_EQ(G_vecang(P3(1, 0, 0), P3(1, 1e-9, 0), &a), 0);  // small angles stay accurate
    EXPECT_NEAR(a, 1e-9 * 180.0 / M_PI, 1e-20);
    ASSERT_EQ(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, -1), &a), 0);
    EXPECT_NEAR(a, 270.0, 1e-12);
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        // About U x V the directed angle is the plain one; about -(U x V) the rest of a turn.
        const Point U = rnd.point(), V = rnd.point();
        Point N{};
        double up = 0, down = 0, plain = 0;
        G_veccro(U, V, &N);
        G_vecdan(U, V, N, &up);
        G_vecdan(U, V, P3(-N.x, -N.y, -N.z), &down);
        G_vecang(U, V, &plain);
        EXPECT_NEAR(up + down, 360.0, 1e-9);
        EXPECT_NEAR(up, plain, 1e-9);
    }
    EXPECT_FAILS(G_vecdan(P3(1, 0, 0), P3(0, 1, 0), P3(0, 0, 0), &a), 17);
}
