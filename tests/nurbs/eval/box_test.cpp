// Boxes of curves and surfaces: each side is the extreme of the geometry
// itself, not of the control points.
#include <array>

#include "nurbs/eval/shapes.hpp"
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// xmin, xmax, ymin, ymax, zmin, zmax.
std::array<double, 6> sides(const Box &b) { return {b.xmin, b.xmax, b.ymin, b.ymax, b.zmin, b.zmax}; }
double coord(const Point &P, int c) { return c == 0 ? P.x : c == 1 ? P.y : P.z; }

// The greatest of f over [a, b], f unimodal there, by golden section.
template <class F>
double peak(F f, double a, double b) {
    const double g = 0.5 * (std::sqrt(5.0) - 1.0);
    double c = b - g * (b - a), d = a + g * (b - a), fc = f(c), fd = f(d);
    for (int i = 0; i < 200 && b - a > 1e-15; ++i) {
        if (fc < fd) a = c, c = d, fc = fd, d = a + g * (b - a), fd = f(d);
        else b = d, d = c, fd = fc, c = b - g * (b - a), fc = f(c);
    }
    return std::max({fc, fd, f(a), f(b)});
}

}  // namespace

// Each side is the greatest sample, refined by golden section around it.
TEST(CurveBox, EachSideIsTheCurvesExtreme) {
    each_curve(31, 1, [](Curve &cur, Context &, Rng &) {
        Box box;
        ASSERT_EQ(N_curbox(&cur, &box), 0);
        const auto b = sides(box);
        const double tol = 1e-12 * std::max(1.0, *std::max_element(b.begin(), b.end()));
        const int dims = cur.pol->Pw[0].z == KW_PLANAR ? 2 : 3;
        if (dims == 2) EXPECT_TRUE(box.zmin == 0.0 && box.zmax == 0.0);
        constexpr int kSamples = 20000;
        std::vector<Point> C(kSamples + 1);
        for (int i = 0; i <= kSamples; ++i) N_curevn(&cur, double(i) / kSamples, KW_RIGHT, &C[i]);
        for (int k = 0; k < 2 * dims; ++k) {
            const int c = k / 2;
            const double s = k % 2 ? 1.0 : -1.0;
            auto value = [&](double u) {
                Point P;
                N_curevn(&cur, std::clamp(u, 0.0, 1.0), KW_RIGHT, &P);
                return s * coord(P, c);
            };
            int best = 0;
            for (int i = 0; i <= kSamples; ++i)
                if (s * coord(C[i], c) > s * coord(C[best], c)) best = i;
            const double top = peak(value, double(best - 1) / kSamples, double(best + 1) / kSamples);
            EXPECT_NEAR(s * b[k], top, tol) << "side " << k << " degree " << cur.p;
        }
    });
    // Three arcs of 120 degrees: the extremes lie inside the pieces.
    Context ctx;
    Curve c;
    three_arc_circle(&c, 3, -1, ctx.get());
    Box box;
    ASSERT_EQ(N_curbox(&c, &box), 0);
    const std::array<double, 6> want = {2, 4, -2, 0, 0, 0}, got = sides(box);
    for (int k = 0; k < 6; ++k) EXPECT_NEAR(got[k], want[k], 1e-15) << k;
}

// z = A(u) B(v) over a net of x = i, y = j: the box of z is that of the
// product of the curves (i, a_i) and (j, b_j), rational too; with B
// constant the extreme runs along a whole ridge.
TEST(SurfaceBox, ProductsOfCurves) {
    Rng rng{std::mt19937_64(7)};
    for (int shape = 0; shape < 12; ++shape) {
        Context ctx;
        const int p = 1 + shape % 4, q = 2 + shape % 3;
        const bool weighted = shape % 2, ridge = shape % 3 == 0;
        Curve A = random_curve(rng, p, p + 3, weighted, true, p, ctx);
        Curve B = random_curve(rng, q, q + 2, weighted, true, q, ctx);
        const int32_t n = A.pol->n, m = B.pol->n;
        Surface s;
        U_inisur(&s);
        ASSERT_EQ(U_surchk(&s, n, m, int16_t(p), int16_t(q), A.knt->m, B.knt->m, name(), ctx.get()), 0);
        std::copy_n(A.knt->U, A.knt->m + 1, s.knu->U);
        std::copy_n(B.knt->U, B.knt->m + 1, s.knv->U);
        auto value = [](const ControlPoint &P) { return cartesian(P).y + 3.0; };  // positive
        auto mass = [](const ControlPoint &P) { return P.w == KW_NONRATIONAL ? 1.0 : P.w; };
        for (int i = 0; i <= n; ++i) A_weight(ControlPoint{double(i), value(A.pol->Pw[i]), KW_PLANAR, mass(A.pol->Pw[i])}, &A.pol->Pw[i]);
        for (int j = 0; j <= m; ++j) A_weight(ControlPoint{double(j), ridge ? 2.0 : value(B.pol->Pw[j]), KW_PLANAR, mass(B.pol->Pw[j])}, &B.pol->Pw[j]);
        for (int i = 0; i <= n; ++i)
            for (int j = 0; j <= m; ++j) {
                const Point a = cartesian(A.pol->Pw[i]), b = cartesian(B.pol->Pw[j]);
                const double w = weighted ? mass(A.pol->Pw[i]) * mass(B.pol->Pw[j]) : KW_NONRATIONAL;
                A_weight(ControlPoint{a.x, b.x, a.y * b.y, w}, &s.net->Pw[i][j]);
            }
        Box box, a, b;
        ASSERT_EQ(N_surbox(&s, &box) + N_curbox(&A, &a) + N_curbox(&B, &b), 0);
        const std::array<double, 6> got = sides(box), want = {0, double(n), 0, double(m), a.ymin * b.ymin, a.ymax * b.ymax};
        for (int k = 0; k < 6; ++k) EXPECT_NEAR(got[k], want[k], 1e-11 * std::max(1.0, std::fabs(want[k]))) << "shape " << shape << " side " << k;
    }
}

TEST(Boxes, RefuseBadInputAndSurviveEveryAllocationFailure) {
    Context ctx;
    Rng rng{std::mt19937_64(3)};
    Curve c = random_curve(rng, 3, 5, true, false, 1, ctx);
    Box box;
    expect_failure(N_curbox(&c, nullptr), KW_EARG, "N_CURBOX");
    c.knt->U[4] = c.knt->U[5] + 0.1;
    expect_failure(N_curbox(&c, &box), KW_EKNOTS, "N_CURBOX");
    Surface s;
    U_inisur(&s);
    expect_failure(N_surbox(&s, &box), KW_ESURFACE, "N_SURBOX");
    EXPECT_FALSE(sweep(swept([](StorageStacks *stk) { return wavy_surface(true, 3, 2, 2, 2, stk); },
                             [&box](Surface *f, StorageStacks *) { return N_surbox(f, &box); })).empty());
}
