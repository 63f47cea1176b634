// Best-fit lines, planes, circles and spheres: exact on noiseless points,
// close on noisy ones.
#include <vector>

#include "support.hpp"

using namespace geomtest;

namespace {

// Points C + a e1 + b e2 + c e3 for (a, b, c) from gen, each moved by up to noise.
struct Frame {
    Point C, e1, e2, e3;
    Frame(Random &rnd) : C(rnd.point(5.0)) {
        e1 = rnd.point();
        G_vecnip(&e1);
        G_veccro(e1, rnd.point(), &e2);
        G_vecnip(&e2);
        G_veccro(e1, e2, &e3);
    }
    template <class Gen>
    std::vector<Point> points(Random &rnd, int n, double noise, Gen gen) const {
        std::vector<Point> pts;
        for (int i = 0; i <= n; ++i) {
            const Point abc = gen(i), e = rnd.point(noise);
            Point P{};
            A_bilpoi(1, C, abc.x, e1, abc.y, e2, abc.z, e3, &P);
            pts.push_back(P3(P.x + e.x, P.y + e.y, P.z + e.z));
        }
        return pts;
    }
};

double abs_cos(Point U, Point V) {
    double c = 0;
    EXPECT_EQ(G_veccos(U, V, &c), 0);
    return std::fabs(c);
}

}  // namespace

TEST(Fits, LinesAndPlanes) {
    Random rnd;
    for (double noise : {0.0, 1e-3}) {
        const double tol = noise == 0 ? 1e-12 : 5e-3, ctol = noise == 0 ? 1e-12 : 1e-5;
        for (int k = 0; k < 10; ++k) {
            const Frame F(rnd);
            auto line = F.points(rnd, 30, noise, [&](int) { return P3(rnd.uniform(-3, 3), 0, 0); });
            Point C{}, D{};
            Line L{};
            double mean = 0, max = 0;
            ASSERT_EQ(G_lsqdln(line.data(), 30, &C, &D, &mean, &max), 0);
            EXPECT_GT(abs_cos(D, F.e1), 1 - ctol);
            EXPECT_LT(max, tol);
            ASSERT_EQ(G_lsqln3(line.data(), 30, &L, &mean, &max), 0);
            EXPECT_GT(abs_cos(L.direction, F.e1), 1 - ctol);
            EXPECT_LE(mean, max);
            EXPECT_LT(max, tol);
            auto plane = F.points(rnd, 30, noise, [&](int) { return P3(rnd.uniform(-3, 3), rnd.uniform(-3, 3), 0); });
            ASSERT_EQ(G_lsqdpl(plane.data(), 30, &C, &D, &mean, &max), 0);
            EXPECT_GT(abs_cos(D, F.e3), 1 - ctol);
            EXPECT_LT(max, tol);
            // The minimax plane's greatest distance is not above the least-squares one's.
            Plane pl{};
            double mx = 0;
            ASSERT_EQ(G_mxapln(plane.data(), 30, &pl, &mx), 0);
            EXPECT_LE(mx, max + 1e-7);
            for (const Point &X : plane) {
                double d = 0;
                G_disppl(X, &pl, &d);
                EXPECT_LE(std::fabs(d), mx + 1e-12);
            }
        }
    }
    // The minimax plane of a box's corners halves its thinnest side.
    Point box[8];
    for (int i = 0; i < 8; ++i) box[i] = P3(i & 1 ? 4 : 0, i & 2 ? 3 : 0, i & 4 ? 0.5 : 0);
    Plane pl{};
    double mx = 0;
    ASSERT_EQ(G_mxapln(box, 7, &pl, &mx), 0);
    EXPECT_NEAR(mx, 0.25, 1e-7);
}

TEST(Fits, CirclesAndSpheres) {
    Random rnd;
    for (double noise : {0.0, 1e-3}) {
        const double tol = noise == 0 ? 1e-9 : 5e-3;
        for (int k = 0; k < 10; ++k) {
            const Frame F(rnd);
            const double r0 = rnd.uniform(0.5, 3.0), arc = rnd.uniform(0.5, 2 * M_PI);
            auto circle = F.points(rnd, 20, noise, [&](int i) {
                return P3(r0 * std::cos(arc * i / 20), r0 * std::sin(arc * i / 20), 0);
            });
            Point C{}, N{};
            double r = 0, mean = 0, max = 0;
            ASSERT_EQ(G_lsqcir(circle.data(), 20, &C, &N, &r, &mean, &max), 0) << arc;
            EXPECT_POINT_NEAR(C, F.C, 30 * tol);
            EXPECT_NEAR(r, r0, 30 * tol);
            EXPECT_GT(abs_cos(N, F.e3), 1 - tol);
            EXPECT_LT(max, 3 * tol);
            auto sphere = F.points(rnd, 30, noise, [&](int) {
                Point d = rnd.point();
                G_vecnip(&d);
                return P3(r0 * d.x, r0 * d.y, r0 * std::fabs(d.z));  // a half sphere
            });
            ASSERT_EQ(G_lsqsph(sphere.data(), 30, &C, &r, &mean, &max), 0);
            EXPECT_POINT_NEAR(C, F.C, 10 * tol);
            EXPECT_NEAR(r, r0, 10 * tol);
            EXPECT_LT(max, 3 * tol);
        }
    }
}

TEST(Fits, DegenerateInput) {
    Point same[4] = {P3(1, 2, 3), P3(1, 2, 3), P3(1, 2, 3), P3(1, 2, 3)}, C = P3(9, 9, 9), D = C;
    Point row[5] = {P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0), P3(5, 0, 0)};
    Point flat[5] = {P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0), P3(1, 1, 0), P3(3, 2, 0)};
    double mean = -1, max = -1, r = 0;
    Line L{};
    EXPECT_FAILS(G_lsqdln(same, 3, &C, &D, &mean, &max), 17);  // coincident points
    EXPECT_STREQ(E_errnam(), "G_VECNIP");
    EXPECT_POINT_EQ(C, P3(9, 9, 9));
    EXPECT_EQ(mean, -1);
    EXPECT_FAILS(G_lsqdln(same, -1, &C, &D, &mean, &max), 11);
    EXPECT_FAILS(G_lsqdpl(same, -3, &C, &D, &mean, &max), 14);
    EXPECT_FAILS(G_lsqln3(same, 3, &L, &mean, &max), 17);
    EXPECT_FAILS(G_lsqcir(row, 4, &C, &D, &r, &mean, &max), 11);  // collinear
    EXPECT_FAILS(G_lsqsph(flat, 4, &C, &r, &mean, &max), 11);     // coplanar
    EXPECT_STREQ(E_errnam(), "G_LSQSPH");
    EXPECT_FAILS(G_lsqsph(flat, 2, &C, &r, &mean, &max), 14);
}
