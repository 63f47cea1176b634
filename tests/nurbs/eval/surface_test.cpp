// Points, partial derivatives and normals of random surfaces against finite
// differences and curves through the net; the derivative modes; the bounds
// of a degenerate normal; failures.
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

// All partials up to order 5 in each direction, prefilled with 7s.
struct Partials {
    Point d[6][6], *rows[6] = {d[0], d[1], d[2], d[3], d[4], d[5]};
    PointMatrix mat{5, 5, rows, KW_FULL, 1};
    Partials() { std::fill_n(&d[0][0], 36, Point{7, 7, 7}); }
    int16_t eval(const Surface &s, double u, double v, int16_t mode = 0, int16_t ku = 5, int16_t kv = 5, int16_t side = KW_RIGHT) {
        return N_surder(&s, u, v, side, side, mode, ku, kv, &mat);
    }
};

}  // namespace

TEST(Surfaces, PartialsPointsAndNormalsAgreeWithDifferencesAndCurvesThroughTheNet) {
    Rng rng{std::mt19937_64(21)};
    for (int shape = 0; shape < 100; ++shape) {  // degrees 1..5 each way, rational or not, 3-D or planar
        Context ctx;
        const bool rational = shape / 25 % 2;
        Surface sur = random_surface(rng, 1 + shape % 5, 1 + shape / 5 % 5, rational, shape / 50, ctx);
        const int p = sur.p, q = sur.q, n = sur.net->n;
        double at[2], len[2];  // inside a span of each direction
        for (int dir : {0, 1}) {
            const KnotVector *knt = dir ? sur.knv : sur.knu;
            int32_t s;
            N_kntfsp(knt, dir ? q : p, rng.uniform(0, 1), KW_RIGHT, &s);
            len[dir] = knt->U[s + 1] - knt->U[s];
            at[dir] = knt->U[s] + rng.uniform(0.1, 0.9) * len[dir];
        }
        const double u = at[0], v = at[1];
        Partials S, F[2][2];  // at (u, v); at u -+ h; at v -+ h
        ASSERT_EQ(S.eval(sur, u, v), 0);
        for (int dir : {0, 1})
            for (int s : {0, 1}) ASSERT_EQ(F[dir][s].eval(sur, u + (1 - dir) * (2 * s - 1) * 1e-6 * len[0], v + dir * (2 * s - 1) * 1e-6 * len[1]), 0);
        for (int k = 0; k <= 5; ++k)
            for (int l = 0; l <= 5; ++l) {
                for (int dir : {0, 1}) {
                    const int a = k - (dir == 0), b = l - (dir == 1);
                    if (a < 0 || b < 0) continue;
                    const double scale = std::max({1.0, mag(S.d[k][l]), mag(S.d[a][b]) / len[dir]});
                    const Point diff = (0.5e6 / len[dir]) * (F[dir][1].d[a][b] - F[dir][0].d[a][b]);
                    EXPECT_LE(dist(S.d[k][l], diff), 1e-5 * scale) << k << l << dir;
                }
                if (!rational && (k > p || l > q)) EXPECT_EQ(mag(S.d[k][l]), 0.0);  // orders above the degree
            }
        // Derivative l of the row curves at v is the u-polygon of the l-th
        // v-derivative: mixed partials of polynomial surfaces, and for l = 0
        // the isoparametric curve, rational or not.
        std::vector<ControlPoint> Q(6 * (n + 1));
        for (int i = 0; i <= n; ++i) {
            Curve row;
            ControlPoint W[6];
            ASSERT_EQ(U_makcu2(&row, sur.net->Pw[i], sur.net->m, q, sur.knv->U, sur.knv->m, ctx.get()), 0);
            ASSERT_EQ(N_currdr(&row, v, KW_RIGHT, 5, W, ctx.get()), 0);
            for (int l = 0; l <= 5; ++l) Q[l * (n + 1) + i] = W[l];
        }
        for (int l = 0; l <= (rational ? 0 : 5); ++l) {
            Curve col;
            Point K[6];
            ASSERT_EQ(U_makcu2(&col, &Q[l * (n + 1)], n, p, sur.knu->U, sur.knu->m, ctx.get()), 0);
            ASSERT_EQ(N_curder(&col, u, KW_RIGHT, 5, K), 0);
            for (int k = 0; k <= 5; ++k) EXPECT_CLOSE(S.d[k][l], K[k], 1e-11) << k << l;
        }
        // Mode 1 with ku == kv fills the triangle k + l <= ku, other orders the rectangle.
        for (int16_t ku = 0; ku <= 5; ++ku)
            for (int16_t kv : {ku, int16_t(5 - ku)}) {
                const Point seven{7, 7, 7};
                Partials T;
                ASSERT_EQ(T.eval(sur, u, v, 1, ku, kv), 0);
                for (int k = 0; k <= 5; ++k)
                    for (int l = 0; l <= 5; ++l) {
                        const bool filled = k <= ku && l <= kv && (kv != ku || k + l <= ku);
                        EXPECT_EQ(std::memcmp(&T.d[k][l], filled ? &S.d[k][l] : &seven, sizeof(Point)), 0) << ku << kv << k << l;
                    }
            }
        Point P;
        ASSERT_EQ(N_surevn(&sur, u, v, KW_RIGHT, KW_LEFT, &P), 0);
        EXPECT_CLOSE(P, S.d[0][0], 1e-13);
    }
}

TEST(SurfaceFailures, CodesNamesAndNoMemory) {
    Context ctx;
    Rng rng{std::mt19937_64(25)};
    Surface sur = random_surface(rng, 3, 2, true, false, ctx);
    Partials D, small;
    Point S{7, 7, 7}, Su, Sv, N;
    double ****T = S_getr4d(1, 1, 3, 2, ctx.get());
    int32_t su, sv;
    const double past = std::nextafter(1.0, 2.0);
    small.mat.m = 2;
    expect_failure(N_surevn(&sur, past, 0.5, KW_RIGHT, KW_RIGHT, &S), KW_EPARAM, "N_SUREVN");
    expect_failure(D.eval(sur, 0.5, -1e-300), KW_EPARAM, "N_SURDER");
    expect_failure(N_kntabd(sur.knu, sur.knv, 3, 2, past, 0.5, 1, 1, 1, 1, T, &su, &sv), KW_EPARAM, "N_KNTABD");
    expect_failure(D.eval(sur, 0.5, 0.5, 1, 6, 6), KW_EORDER, "N_SURDER");
    expect_failure(N_kntasd(&sur, 0.5, 0.5, 1, 1, -1, 0, T, &su, &sv), KW_EORDER, "N_KNTASD");
    expect_failure(D.eval(sur, 0.5, 0.5, 0, 1, 1, 3), KW_ECASE, "N_KNTFSP");
    expect_failure(small.eval(sur, 0.5, 0.5, 0, 1, 3), KW_ESTORAGE, "N_SURDER");
    sur.knv->m += 1;
    expect_failure(N_surevn(&sur, 0.5, 0.5, KW_RIGHT, KW_RIGHT, &S), KW_ESURFACE, "N_SUREVN");
    EXPECT_EQ(S.x + D.d[0][0].x, 14.0);  // outputs untouched
    sur.knv->m -= 1;
    // The work table on the heap and the normal's matrix on the context fail
    // cleanly, and leave nothing; a point needs no memory.
    for (int normal : {0})
        for (int k = 1;; ++k) {
            const int nodes = ctx.nodes();
            kw::fault::fail_at(k);
            const int16_t status = D.eval(sur, 0.2, 0.7);
            const bool fired = kw::fault::fired();
            kw::fault::fail_at(0);
            EXPECT_EQ(ctx.nodes(), nodes);
            if (!fired) {
                EXPECT_EQ(status + k, normal ? 9 : 5);  // two blocks and two nodes, then the table's four arrays
                break;
            }
            expect_failure(status, KW_ENOMEM, normal && k <= 4 ? "S_GETP2D" : "N_SURDER");
        }
    kw::fault::fail_at(1, true);
    EXPECT_EQ(N_surevn(&sur, 0.2, 0.7, KW_RIGHT, KW_LEFT, &S), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
}
