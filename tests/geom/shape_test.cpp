// Shape predicates of curves, surfaces and point arrays.
#include <vector>

#include "support.hpp"

using namespace geomtest;

namespace {

// A non-rational curve of degree 1 on the given Cartesian points.
struct TestCurve {
    Stacks s;
    std::vector<ControlPoint> Pw;
    std::vector<double> U;
    Curve cur{};
    explicit TestCurve(const std::vector<Point> &pts, double w = KW_NONRATIONAL) {
        for (const Point &P : pts)
            Pw.push_back(w == KW_NONRATIONAL ? ControlPoint{P.x, P.y, P.z, w}
                                             : ControlPoint{w * P.x, w * P.y, w * P.z, w});
        const int n = static_cast<int>(pts.size()) - 1;
        U.assign(n + 3, 0.0);
        for (int i = 0; i <= n + 2; ++i) U[i] = std::clamp(i - 1, 0, n);
        EXPECT_EQ(U_makcu2(&cur, Pw.data(), n, 1, U.data(), n + 2, &s.stk), 0);
    }
};

}  // namespace

TEST(ShapePredicates, StraightCurvesAndPointArrays) {
    std::vector<Point> pts = {P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2), P3(5, 5, 5)};
    TestCurve line(pts, 2.0);
    EXPECT_TRUE(U_iscurl(&line.cur, 1e-9));
    EXPECT_TRUE(U_isp1li(pts.data(), 3, 1e-9));
    pts[2] = P3(2, 2, 2.01);
    TestCurve bent(pts);
    EXPECT_FALSE(U_iscurl(&bent.cur, 1e-3));
    EXPECT_TRUE(U_iscurl(&bent.cur, 1e-2));
    EXPECT_FALSE(U_isp1li(pts.data(), 3, 1e-3));
    // A point is not a line, nor is a single point.
    std::vector<Point> dot = {P3(1, 1, 1), P3(1, 1, 1 + 1e-9), P3(1, 1, 1)};
    TestCurve collapsed(dot);
    EXPECT_FALSE(U_iscurl(&collapsed.cur, 1e-6));
    EXPECT_FALSE(U_isp1li(dot.data(), 2, 1e-6));
    EXPECT_FALSE(U_isp1li(pts.data(), 0, 1.0));
    // A 2-D curve reads its z as 0.
    TestCurve flat({P3(0, 0, 0), P3(1, 2, 0), P3(2, 4, 0)});
    for (auto &P : flat.Pw) P.z = KW_PLANAR;
    EXPECT_TRUE(U_iscurl(&flat.cur, 1e-12));
}
