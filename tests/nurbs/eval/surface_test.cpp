// Partial derivatives of random surfaces against finite differences (the
// differential tests compare them with the peers), the derivative modes,
// points and normals alike; the bounds of a degenerate normal; failures.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// Degrees p and q on the knots of two random curves (interior
// multiplicities up to the degree), control points in [-2, 2]^3, z planar
// when asked, weights in [0.3, 3] when rational.
Surface random_surface(Rng &rng, int p, int q, bool rational, bool planar, Context &ctx) {
    const int n = p + rng.integer(1, 4), m = q + rng.integer(1, 4);
    const Curve cu = random_curve(rng, p, n, false, false, p, ctx), cv = random_curve(rng, q, m, false, false, q, ctx);
    Surface sur;
    EXPECT_EQ(U_maksu2(&sur, S_getc2d(n, m, ctx.get()), n, m, p, q, cu.knt->U, cv.knt->U, n + p + 1, m + q + 1, ctx.get()), 0);
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= m; ++j)
            A_weight({rng.uniform(-2, 2), rng.uniform(-2, 2), planar ? KW_PLANAR : rng.uniform(-2, 2),
                      rational ? rng.uniform(0.3, 3.0) : KW_NONRATIONAL}, &sur.net->Pw[i][j]);
    return sur;
}

constexpr Point kUnset{7, 7, 7};

// Room for all partials up to order 5 in each direction, unset.
struct Partials {
    Point d[6][6], *rows[6] = {d[0], d[1], d[2], d[3], d[4], d[5]};
    PointMatrix mat{5, 5, rows, KW_FULL, 1};
    Partials() { std::fill_n(&d[0][0], 36, kUnset); }
    int16_t eval(const Surface &s, double u, double v, int16_t mode = 0, int16_t ku = 5, int16_t kv = 5, int16_t side = KW_RIGHT) {
        return N_surder(&s, u, v, side, side, mode, ku, kv, &mat);
    }
};

}  // namespace

TEST(Surfaces, PartialsModesPointsAndNormalsAgree) {
    Rng rng{std::mt19937_64(21)};
    for (int shape = 0; shape < 100; ++shape) {  // degrees 1..5 each way, rational or not, 3-D or planar
        Context ctx;
        const bool rational = shape / 25 % 2;
        Surface sur = random_surface(rng, 1 + shape % 5, 1 + shape / 5 % 5, rational, shape / 50, ctx);
        const int p = sur.p, q = sur.q;
        const double u = rng.uniform(0, 1), v = rng.uniform(0, 1), h = 1e-6;
        Partials S, F[2][2];  // at (u, v); at u -+ h; at v -+ h
        ASSERT_EQ(S.eval(sur, u, v), 0);
        for (int s : {0, 1}) ASSERT_EQ(F[0][s].eval(sur, u + (2 * s - 1) * h, v) + F[1][s].eval(sur, u, v + (2 * s - 1) * h), 0);
        for (int k = 0; k <= 5; ++k)
            for (int l = 0; l <= 5; ++l) {
                for (int dir : {0, 1})
                    if (const int a = k - !dir, b = l - dir; a >= 0 && b >= 0)
                        EXPECT_LE(dist(S.d[k][l], (0.5 / h) * (F[dir][1].d[a][b] - F[dir][0].d[a][b])),
                                  1e-5 * std::max({1.0, mag(S.d[k][l]), mag(S.d[a][b])})) << k << l << dir;
                if (!rational && (k > p || l > q)) EXPECT_EQ(mag(S.d[k][l]), 0.0);  // orders above the degree
            }
        for (int16_t ku = 0; ku <= 5; ++ku)  // mode 1: the triangle k + l <= ku when ku == kv, else the rectangle
            for (int16_t kv : {ku, int16_t(5 - ku)}) {
                Partials T;
                ASSERT_EQ(T.eval(sur, u, v, 1, ku, kv), 0);
                for (int k = 0; k <= 5; ++k)
                    for (int l = 0; l <= 5; ++l) {
                        const bool filled = k <= ku && l <= kv && (kv != ku || k + l <= ku);
                        EXPECT_EQ(std::memcmp(&T.d[k][l], filled ? &S.d[k][l] : &kUnset, sizeof(Point)), 0) << ku << kv << k << l;
                    }
            }
        Point P, O, Su, Sv, N;
        ASSERT_EQ(N_surevn(&sur, u, v, 1, 2, &P) + N_surnor(&sur, u, v, 2, 2, &O, &Su, &Sv, &N, ctx.get()), 0);
        EXPECT_CLOSE(P, S.d[0][0], 1e-13);
        EXPECT_CLOSE(O, S.d[0][0], 1e-13);
        EXPECT_CLOSE(Su, (1 / mag(S.d[1][0])) * S.d[1][0], 1e-13);
        EXPECT_CLOSE(Sv, (1 / mag(S.d[0][1])) * S.d[0][1], 1e-13);
        EXPECT_NEAR(mag(N), 1.0, 1e-15);
        EXPECT_NEAR(std::fabs(kw::dot(N, Su)) + std::fabs(kw::dot(N, Sv)), 0.0, 1e-15);
    }
}

TEST(Surfaces, NormalsFailAtACollapsedEdgeAndAtTheirExactBounds) {
    Rng rng{std::mt19937_64(24)};
    Context ctx;
    Point S = kUnset, Su, Sv, N;
    Surface edge = random_surface(rng, 3, 2, true, false, ctx);
    for (int i = 1; i <= edge.net->n; ++i) edge.net->Pw[i][0] = edge.net->Pw[0][0];
    expect_failure(N_surnor(&edge, 0.3, 0.0, 1, 1, &S, &Su, &Sv, &N, ctx.get()), KW_EZEROVEC, "N_SURNOR");
    // A bilinear patch whose tangents at (0, 0) are exactly Su = (a, 0, 0)
    // and Sv = (2, 2b, 0): |Su| = a, and as 1 + b^2 rounds to 1, the cross
    // product of the unit tangents has length b (of the tangents, 2ab).
    ControlPoint net[2][2], *rows[2] = {net[0], net[1]};
    double knots[4] = {0, 0, 1, 1};
    Surface sur;
    ASSERT_EQ(U_maksu2(&sur, rows, 1, 1, 1, 1, knots, knots, 3, 3, ctx.get()), 0);
    auto normal = [&](double a, double b) {
        net[0][0] = {0, 0, 0, KW_NONRATIONAL}, net[1][0] = {a, 0, 0, KW_NONRATIONAL};
        net[0][1] = {2, 2 * b, 0, KW_NONRATIONAL}, net[1][1] = {2 + a, 2 * b, 0, KW_NONRATIONAL};
        return N_surnor(&sur, 0.0, 0.0, 1, 1, &S, &Su, &Sv, &N, ctx.get());
    };
    const double tangent = 0.001 * U_tolpoi, cross = U_tolzer;
    expect_failure(normal(tangent, 0.5), KW_EZEROVEC, "N_SURNOR");
    expect_failure(normal(2.0, cross), KW_EZEROVEC, "N_SURNOR");
    EXPECT_EQ(S.x, 7.0);  // outputs untouched
    EXPECT_EQ(normal(std::nextafter(tangent, 1.0), 0.5) + normal(2.0, std::nextafter(cross, 1.0)), 0);
}

TEST(SurfaceFailures, CodesNamesAndNoMemory) {
    Context ctx;
    Rng rng{std::mt19937_64(25)};
    Surface sur = random_surface(rng, 3, 2, true, false, ctx);
    Partials D, small;
    Point S = kUnset, Su, Sv, N;
    double ****T = S_getr4d(1, 1, 3, 2, ctx.get());
    int32_t su, sv;
    small.mat.m = 2;
    expect_failure(N_surevn(&sur, std::nextafter(1.0, 2.0), 0.5, 1, 1, &S), KW_EPARAM, "N_SUREVN");
    expect_failure(N_surnor(&sur, 0.5, -1e-300, 1, 1, &S, &Su, &Sv, &N, ctx.get()), KW_EPARAM, "N_SURNOR");
    expect_failure(N_kntabd(sur.knu, sur.knv, 3, 2, 0.5, 1.5, 1, 1, 1, 1, T, &su, &sv), KW_EPARAM, "N_KNTABD");
    expect_failure(D.eval(sur, 0.5, 0.5, 1, 6, 6), KW_EORDER, "N_SURDER");
    expect_failure(N_kntasd(&sur, 0.5, 0.5, 1, 1, -1, 0, T, &su, &sv), KW_EORDER, "N_KNTASD");
    expect_failure(D.eval(sur, 0.5, 0.5, 0, 1, 1, 3), KW_ECASE, "N_KNTFSP");
    expect_failure(small.eval(sur, 0.5, 0.5, 0, 1, 3), KW_ESTORAGE, "N_SURDER");
    EXPECT_EQ(std::memcmp(&S, &D.d[0][0], sizeof S), 0);  // outputs untouched
    // The work table on the heap and the normal's matrix on the context fail
    // cleanly and leave nothing.
    for (int normal : {0, 1})
        for (int k = 1;; ++k) {
            const int nodes = ctx.nodes();
            kw::fault::fail_at(k);
            const int16_t status = normal ? N_surnor(&sur, 0.2, 0.7, 2, 2, &S, &Su, &Sv, &N, ctx.get()) : D.eval(sur, 0.2, 0.7);
            const bool fired = kw::fault::fired();
            kw::fault::fail_at(0);
            EXPECT_EQ(ctx.nodes(), nodes);
            if (!fired) {
                EXPECT_EQ(status + k, normal ? 9 : 5);  // two blocks and two nodes, then the table's four arrays
                break;
            }
            expect_failure(status, KW_ENOMEM, normal && k <= 4 ? "S_GETP2D" : "N_SURDER");
        }
}
