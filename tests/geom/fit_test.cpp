// Best-fit lines, planes, circles and spheres.
#include <vector>

#include "support.hpp"

using namespace geomtest;

namespace {

// n+1 points along the line P + t V, each moved off it by up to noise.
std::vector<Point> along_line(Random &rnd, Point P, Point V, int n, double noise) {
    std::vector<Point> pts;
    for (int i = 0; i <= n; ++i) {
        const double t = rnd.uniform(-3, 3);
        const Point e = rnd.point(noise);
        pts.push_back(P3(P.x + t * V.x + e.x, P.y + t * V.y + e.y, P.z + t * V.z + e.z));
    }
    return pts;
}

double abs_cos(Point U, Point V) {
    double c = 0;
    EXPECT_EQ(G_veccos(U, V, &c), 0);
    return std::fabs(c);
}

}  // namespace

TEST(LineFits, RecoverExactLinesAndStayCloseOnNoisyOnes) {
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        const Point P = rnd.point(5.0), V = rnd.point();
        auto pts = along_line(rnd, P, V, 12, 0.0);
        Point C{}, D{};
        double mean = -1, max = -1;
        ASSERT_EQ(G_lsqdln(pts.data(), 12, &C, &D, &mean, &max), 0);
        EXPECT_NEAR(abs_cos(D, V), 1.0, 1e-12);
        EXPECT_LT(max, 1e-12);
        EXPECT_LE(mean, max);
        Line L{};
        G_makln2(&L, P, V, KW_LINE_INFINITE);
        double dc = 0;
        G_displn(C, &L, &dc);  // the centroid lies on the line
        EXPECT_LT(dc, 1e-12);
        // Noisy: the direction stays close and the greatest distance bounds
        // every point's distance.
        pts = along_line(rnd, P, V, 40, 1e-3);
        ASSERT_EQ(G_lsqdln(pts.data(), 40, &C, &D, &mean, &max), 0);
        EXPECT_NEAR(abs_cos(D, V), 1.0, 1e-5);
        EXPECT_LT(max, 4e-3);
        G_makln2(&L, C, D, KW_LINE_INFINITE);
        for (const Point &X : pts) {
            double d = 0;
            G_displn(X, &L, &d);
            EXPECT_LE(d, max * (1 + 1e-12));
        }
    }
}

TEST(LineFits, DegenerateInput) {
    Point same[3] = {P3(1, 2, 3), P3(1, 2, 3), P3(1, 2, 3)};
    Point C = P3(9, 9, 9), D = P3(9, 9, 9);
    double mean = -1, max = -1;
    E_clrerr();
    EXPECT_EQ(G_lsqdln(same, 2, &C, &D, &mean, &max), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_STREQ(E_errnam(), "G_VECNIP");
    EXPECT_POINT_NEAR(C, P3(9, 9, 9), 1e-300);
    EXPECT_EQ(mean, -1);
    EXPECT_EQ(G_lsqdln(same, -1, &C, &D, &mean, &max), 1);
    EXPECT_EQ(E_errtyp(), 11);
    EXPECT_STREQ(E_errnam(), "G_LSQDLN");
    EXPECT_EQ(G_lsqdln(same, -3, &C, &D, &mean, &max), 1);
    EXPECT_EQ(E_errtyp(), 14);
    // Two points: the line through them.
    Point two[2] = {P3(0, 0, 0), P3(2, 2, 0)};
    ASSERT_EQ(G_lsqdln(two, 1, &C, &D, &mean, &max), 0);
    EXPECT_POINT_NEAR(C, P3(1, 1, 0), 1e-15);
    EXPECT_NEAR(abs_cos(D, P3(1, 1, 0)), 1.0, 1e-15);
    Line L{};
    EXPECT_EQ(G_lsqln2(same, 2, &L, &mean, &max), 1);
    EXPECT_EQ(E_errtyp(), 17);
    EXPECT_EQ(G_lsqln2(same, 0, &L, &mean, &max), 1);
    EXPECT_EQ(E_errtyp(), 14);
}

TEST(LineFits, PlanarRegressionMinimisesOrthogonalDistances) {
    Random rnd;
    for (int k = 0; k < 20; ++k) {
        const Point P = rnd.point(5.0), V = P3(rnd.uniform(-1, 1), rnd.uniform(-1, 1), 0);
        auto pts = along_line(rnd, P, V, 30, 0.05);
        Line L{};
        double mean = 0, max = 0;
        ASSERT_EQ(G_lsqln2(pts.data(), 30, &L, &mean, &max), 0);
        EXPECT_EQ(L.point.z, 0.0);
        EXPECT_EQ(L.direction.z, 0.0);
        // The sum of squared xy distances does not drop for turned lines.
        auto cost = [&](Point D) {
            double s = 0;
            for (const Point &X : pts) {
                const double c = (X.x - L.point.x) * D.y - (X.y - L.point.y) * D.x;
                s += c * c;
            }
            return s;
        };
        const double best = cost(L.direction);
        for (double a : {-0.01, 0.01, 0.3}) {
            const Point D = P3(std::cos(a) * L.direction.x - std::sin(a) * L.direction.y,
                               std::sin(a) * L.direction.x + std::cos(a) * L.direction.y, 0);
            EXPECT_GT(cost(D), best);
        }
    }
}
