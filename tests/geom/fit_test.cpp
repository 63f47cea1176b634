// Best-fit lines, planes, circles and spheres, exact on noiseless points and
// close on noisy ones, and the shape predicates built on them.
#include <vector>

#include "support.hpp"

using namespace geomtest;

namespace {

// Points C + a e1 + b e2 + c e3 for (a, b, c) from gen, each moved by up to noise.
struct Frame {
    Point C, e1, e2, e3;
    explicit Frame(Random &rnd) : C(rnd.point(5.0)) {
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
            const Point P = result<Point>(A_bilpoi, 1.0, C, abc.x, e1, abc.y, e2, abc.z, e3);
            pts.push_back(P3(P.x + e.x, P.y + e.y, P.z + e.z));
        }
        return pts;
    }
};

double abs_cos(Point U, Point V) { return std::fabs(result<double>(G_veccos, U, V)); }

std::vector<Point> circle(int n, double z = 0.0) {
    std::vector<Point> pts;
    for (int i = 0; i <= n; ++i) pts.push_back(P3(2 * std::cos(i * 0.4), 2 * std::sin(i * 0.4), z));
    return pts;
}

}  // namespace

TEST(Fits, LinesAndPlanes) {
    Random rnd;
    for (double noise : {0.0, 1e-3}) {
        const double tol = noise == 0 ? 1e-12 : 5e-3, ctol = noise == 0 ? 1e-12 : 1e-5;
        for (int k = 0; k < 10; ++k) {
            const Frame F(rnd);
            auto line = F.points(rnd, 30, noise, [&](int) { return P3(rnd.uniform(-3, 3), 0, 0); });
            auto plane = F.points(rnd, 30, noise, [&](int) { return P3(rnd.uniform(-3, 3), rnd.uniform(-3, 3), 0); });
            Point C{}, D{};
            Line L{};
            Plane pl{};
            double mean = 0, max = 0, mx = 0;
            ASSERT_EQ(G_lsqdln(line.data(), 30, &C, &D, &mean, &max), 0);
            EXPECT_TRUE(abs_cos(D, F.e1) > 1 - ctol && max < tol);
            ASSERT_EQ(G_lsqln3(line.data(), 30, &L, &mean, &max), 0);
            EXPECT_TRUE(abs_cos(L.direction, F.e1) > 1 - ctol && mean <= max && max < tol);
            ASSERT_EQ(G_lsqdpl(plane.data(), 30, &C, &D, &mean, &max), 0);
            EXPECT_TRUE(abs_cos(D, F.e3) > 1 - ctol && max < tol);
            // The minimax plane's greatest distance is not above the least-squares one's.
            ASSERT_EQ(G_mxapln(plane.data(), 30, &pl, &mx), 0);
            EXPECT_LE(mx, max + 1e-7);
            for (const Point &X : plane) EXPECT_LE(std::fabs(result<double>(G_disppl, X, &pl)), mx + 1e-12);
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
            auto circle = F.points(rnd, 20, noise, [&](int i) { return P3(r0 * std::cos(arc * i / 20), r0 * std::sin(arc * i / 20), 0); });
            auto sphere = F.points(rnd, 30, noise, [&](int) {
                Point d = rnd.point();
                G_vecnip(&d);
                return P3(r0 * d.x, r0 * d.y, r0 * std::fabs(d.z));  // a half sphere
            });
            Point C{}, N{};
            double r = 0, mean = 0, max = 0;
            ASSERT_EQ(G_lsqcir(circle.data(), 20, &C, &N, &r, &mean, &max), 0) << arc;
            EXPECT_POINT_NEAR(C, F.C, 30 * tol);
            EXPECT_NEAR(r, r0, 30 * tol);
            EXPECT_TRUE(abs_cos(N, F.e3) > 1 - tol && max < 3 * tol);
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
    EXPECT_FAILURE(G_lsqdln(same, 3, &C, &D, &mean, &max), 17, "G_VECNIP");  // coincident points
    EXPECT_TRUE(dist(C, P3(9, 9, 9)) == 0 && mean == -1);
    EXPECT_FAILURE(G_lsqdln(same, -1, &C, &D, &mean, &max), 11, "G_LSQDLN");
    EXPECT_FAILURE(G_lsqdpl(same, -3, &C, &D, &mean, &max), 14, "G_LSQDPL");
    EXPECT_FAILURE(G_lsqln3(same, 3, &L, &mean, &max), 17, "G_LSQLN3");
    EXPECT_FAILURE(G_lsqcir(row, 4, &C, &D, &r, &mean, &max), 11, "G_LSQCIR");  // collinear
    EXPECT_FAILURE(G_lsqsph(flat, 4, &C, &r, &mean, &max), 11, "G_LSQSPH");     // coplanar
    EXPECT_FAILURE(G_lsqsph(flat, 2, &C, &r, &mean, &max), 14, "G_LSQSPH");
}

// Columns: line, plane, circle, sphere. A point is none of them; a line is
// no plane or circle; a circle is planar; a sphere's points are none of the
// others.
TEST(ShapePredicates, PointArrays) {
    const double tol = 1e-6;
    std::vector<Point> line = {P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2), P3(5, 5, 5)}, bent = line;
    std::vector<Point> dot = {P3(1, 1, 1), P3(1, 1, 1 + 1e-9), P3(1, 1, 1), P3(1, 1, 1)};
    std::vector<Point> ring = circle(8), tilted = {P3(0, 0, 0), P3(1, 0, 1), P3(0, 1, 1), P3(3, 2, 5), P3(-1, 1, 0)}, ball;
    bent[2].z += 0.01;
    for (int i = 0; i < 12; ++i)
        ball.push_back(P3(3 * std::cos(i) * std::sin(0.3 * i + 0.2), 3 * std::sin(i) * std::sin(0.3 * i + 0.2), 3 * std::cos(0.3 * i + 0.2)));
    for (const auto &[pts, li, pl, ci, sp] : {std::tuple{&line, 1, 0, 0, 0}, {&dot, 0, 0, 0, 0}, {&bent, 0, 1, 0, 0},
                                               {&tilted, 0, 1, 0, 0}, {&ring, 0, 1, 1, 0}, {&ball, 0, 0, 0, 1}}) {
        const auto n = static_cast<int32_t>(pts->size()) - 1;
        EXPECT_EQ(std::tuple(U_isp1li(pts->data(), n, tol), U_isp1pl(pts->data(), n, tol), U_isp1ci(pts->data(), n, tol),
                             U_isp1sp(pts->data(), n, tol)),
                  std::tuple(li, pl, ci, sp)) << n;
    }
    EXPECT_TRUE(U_isp1li(bent.data(), 3, 1e-2));  // within a wider tolerance
    ring[3].z = 1e-3;
    EXPECT_FALSE(U_isp1ci(ring.data(), 8, tol));
}

TEST(ShapePredicates, CurvesAndSurfaces) {
    auto curve = [](const std::vector<Point> &pts, double w) {  // degree 1 on weighted control points
        std::vector<ControlPoint> P;
        for (const Point &X : pts) P.push_back({w * X.x, w * X.y, w * X.z, w});
        return std::make_unique<kwtest::OwnCurve>(P);
    };
    const auto straight = curve({P3(0, 0, 0), P3(1, 1, 1), P3(3, 3, 3)}, 2.0), ring = curve(circle(6, 4.0), 0.5),
               point = curve({P3(1, 1, 1), P3(1, 1, 1), P3(1, 1, 1)}, 1.0);
    Point N = P3(7, 7, 7);
    EXPECT_TRUE(U_iscurl(&straight->cur, 1e-9));
    EXPECT_FALSE(U_iscurl(&ring->cur, 1e-3) || U_iscurl(&point->cur, 1e-3));
    EXPECT_FALSE(U_iscurf(&straight->cur, 1e-9, &N) || U_iscurf(&point->cur, 1e-9, &N));
    EXPECT_POINT_EQ(N, P3(7, 7, 7));
    ASSERT_TRUE(U_iscurf(&ring->cur, 1e-9, &N));
    EXPECT_NEAR(std::fabs(N.z), 1.0, 1e-12);
    ring->Pw[2].z += 0.01;
    EXPECT_FALSE(U_iscurf(&ring->cur, 1e-3, &N));
    // A bilinear patch: flat when its corners are coplanar; a net collapsed
    // to a line is flat but has no plane.
    kwtest::OwnSurface s(1, 1, 1, 1, KW_NONRATIONAL);
    s.rows[1][0] = {3, 0, 0, KW_NONRATIONAL};
    s.rows[0][1] = {0, 2, 0, KW_NONRATIONAL};
    s.rows[1][1] = {3, 2, 1e-4, KW_NONRATIONAL};
    EXPECT_TRUE(U_issflt(&s.sur, 1e-4) && U_issurf(&s.sur, 1e-4, &N));
    EXPECT_FALSE(U_issflt(&s.sur, 1e-6) || U_issurf(&s.sur, 1e-6, &N));
    for (int i = 0; i < 4; ++i) s.rows[i / 2][i % 2] = ControlPoint{double(i), double(i), 0, KW_NONRATIONAL};
    EXPECT_TRUE(U_issflt(&s.sur, 1e-9));
    EXPECT_FALSE(U_issurf(&s.sur, 1e-9, &N));
}
