// Shape predicates of curves, surfaces and point arrays.
#include <vector>

#include "support.hpp"

using namespace geomtest;

namespace {

std::vector<Point> circle(int n, double z = 0.0) {
    std::vector<Point> pts;
    for (int i = 0; i <= n; ++i) pts.push_back(P3(2 * std::cos(i * 0.4), 2 * std::sin(i * 0.4), z));
    return pts;
}

}  // namespace

TEST(ShapePredicates, PointArrays) {
    const double tol = 1e-6;
    std::vector<Point> line = {P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2), P3(5, 5, 5)};
    std::vector<Point> dot = {P3(1, 1, 1), P3(1, 1, 1 + 1e-9), P3(1, 1, 1), P3(1, 1, 1)};
    std::vector<Point> ring = circle(8), tilted = {P3(0, 0, 0), P3(1, 0, 1), P3(0, 1, 1), P3(3, 2, 5), P3(-1, 1, 0)};
    std::vector<Point> ball, bent = line;
    bent[2].z += 0.01;
    for (int i = 0; i < 12; ++i)
        ball.push_back(P3(3 * std::cos(i) * std::sin(0.3 * i + 0.2), 3 * std::sin(i) * std::sin(0.3 * i + 0.2), 3 * std::cos(0.3 * i + 0.2)));
    // Columns: line, plane, circle, sphere. A point is none of them; a line
    // is no plane or circle; a circle is planar; a sphere's points are none
    // of the others.
    const struct {
        const std::vector<Point> *pts;
        bool li, pl, ci, sp;
    } cases[] = {{&line, 1, 0, 0, 0}, {&dot, 0, 0, 0, 0},  {&bent, 0, 1, 0, 0},
                 {&tilted, 0, 1, 0, 0}, {&ring, 0, 1, 1, 0}, {&ball, 0, 0, 0, 1}};
    for (const auto &c : cases) {
        const int32_t n = static_cast<int32_t>(c.pts->size()) - 1;
        EXPECT_EQ(U_isp1li(c.pts->data(), n, tol), c.li) << n;
        EXPECT_EQ(U_isp1pl(c.pts->data(), n, tol), c.pl) << n;
        EXPECT_EQ(U_isp1ci(c.pts->data(), n, tol), c.ci) << n;
        EXPECT_EQ(U_isp1sp(c.pts->data(), n, tol), c.sp) << n;
    }
    EXPECT_TRUE(U_isp1li(bent.data(), 3, 1e-2));  // within a wider tolerance
    ring[3].z = 1e-3;
    EXPECT_FALSE(U_isp1ci(ring.data(), 8, tol));
}

TEST(ShapePredicates, CurvesAndSurfaces) {
    Stacks s;
    // Degree-1 curves on weighted control points.
    auto curve = [&](const std::vector<Point> &pts, double w) {
        const int32_t n = static_cast<int32_t>(pts.size()) - 1;
        ControlPoint *Pw = S_getc1d(n, &s.stk);
        double *U = S_getr1d(n + 2, &s.stk);
        for (int32_t i = 0; i <= n; ++i) Pw[i] = ControlPoint{w * pts[i].x, w * pts[i].y, w * pts[i].z, w};
        for (int32_t i = 0; i <= n + 2; ++i) U[i] = std::clamp(i - 1, 0, n);
        Curve c{};
        EXPECT_EQ(U_makcu2(&c, Pw, n, 1, U, n + 2, &s.stk), 0);
        return c;
    };
    Curve straight = curve({P3(0, 0, 0), P3(1, 1, 1), P3(3, 3, 3)}, 2.0);
    Curve ring = curve(circle(6, 4.0), 0.5), point = curve({P3(1, 1, 1), P3(1, 1, 1), P3(1, 1, 1)}, 1.0);
    Point N = P3(7, 7, 7);
    EXPECT_TRUE(U_iscurl(&straight, 1e-9));
    EXPECT_FALSE(U_iscurl(&ring, 1e-3) || U_iscurl(&point, 1e-3));
    EXPECT_FALSE(U_iscurf(&straight, 1e-9, &N) || U_iscurf(&point, 1e-9, &N));
    EXPECT_POINT_NEAR(N, P3(7, 7, 7), 1e-300);
    ASSERT_TRUE(U_iscurf(&ring, 1e-9, &N));
    EXPECT_NEAR(std::fabs(N.z), 1.0, 1e-12);
    ring.pol->Pw[2].z += 0.01;
    EXPECT_FALSE(U_iscurf(&ring, 1e-3, &N));
    // A bilinear patch: flat when its corners are coplanar; a net collapsed
    // to a line is flat but has no plane.
    Surface sur{};
    ASSERT_EQ(U_getsur(&sur, 1, 1, 1, 1, 3, 3, &s.stk), 0);
    const Point corner[4] = {P3(0, 0, 0), P3(0, 2, 0), P3(3, 0, 0), P3(3, 2, 1e-4)};
    for (int i = 0; i < 4; ++i) sur.net->Pw[i / 2][i % 2] = ControlPoint{corner[i].x, corner[i].y, corner[i].z, KW_NONRATIONAL};
    EXPECT_TRUE(U_issflt(&sur, 1e-4) && U_issurf(&sur, 1e-4, &N));
    EXPECT_FALSE(U_issflt(&sur, 1e-6) || U_issurf(&sur, 1e-6, &N));
    for (int i = 0; i < 4; ++i) sur.net->Pw[i / 2][i % 2] = ControlPoint{double(i), double(i), 0, KW_NONRATIONAL};
    EXPECT_TRUE(U_issflt(&sur, 1e-9));
    EXPECT_FALSE(U_issurf(&sur, 1e-9, &N));
}
