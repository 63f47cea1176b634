// Points and derivatives of random curves of every shape (the differential
// tests compare them with the peers, from both sides): the markers, exact
// ends, finite differences, the quotient rule on the homogeneous
// derivatives, knot derivatives; curve functions; failures.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

TEST(Curves, PointsKeepTheMarkersAndTheEnds) {
    each_curve(11, 1, [](Curve &cur, Context &, Rng &rng) {
        const ControlPoint *Pw = cur.pol->Pw;
        std::vector<double> us(cur.knt->U, cur.knt->U + cur.knt->m + 1);
        for (int t = 0; t < 10; ++t) us.push_back(rng.uniform(0, 1));
        for (double u : us)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                Point C;
                ControlPoint Cw;
                ASSERT_EQ(N_curevn(&cur, u, side, &C) + N_curevr(&cur, u, side, &Cw), 0);
                const Point E = cartesian(Cw);
                EXPECT_EQ(std::memcmp(&E, &C, sizeof C), 0);
                EXPECT_EQ(Cw.z == KW_PLANAR, Pw[0].z == KW_PLANAR);
                EXPECT_EQ(Cw.w == KW_NONRATIONAL, Pw[0].w == KW_NONRATIONAL);
                if (Pw[0].z == KW_PLANAR) EXPECT_EQ(C.z, 0.0);
                // The ends are the end control points, exactly.
                const Point end = cartesian(Pw[u == 0.0 ? 0 : cur.pol->n]);
                if (u == 0.0 || u == 1.0) EXPECT_EQ(std::memcmp(&C, &end, sizeof C), 0);
            }
    });
}

// In u against central differences and, from the homogeneous derivatives,
// C(d) = (Cw(d) - sum Bin(d, i) w(i) C(d-i)) / w; in a knot against a
// one-sided difference.
TEST(Curves, DerivativesMatchDifferencesAndTheQuotientRule) {
    each_curve(12, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        int32_t s;
        double *U = cur.knt->U;
        N_kntfsp(cur.knt, cur.p, rng.uniform(0, 1), KW_RIGHT, &s);
        const double len = U[s + 1] - U[s], u = U[s] + rng.uniform(0.1, 0.9) * len, h = 1e-5 * len;
        Point D[6], A[6], B[6], L[6];
        ControlPoint W[6];
        ASSERT_EQ(N_curder(&cur, u, KW_RIGHT, 5, D) + N_curder(&cur, u, KW_LEFT, 5, L), 0);
        ASSERT_EQ(N_curder(&cur, u + h, KW_RIGHT, 5, A) + N_curder(&cur, u - h, KW_RIGHT, 5, B), 0);
        ASSERT_EQ(N_currdr(&cur, u, KW_RIGHT, 5, W, ctx.get()), 0);
        EXPECT_EQ(std::memcmp(D, L, sizeof D), 0);  // away from knots the sides agree
        const bool rational = W[0].w != KW_NONRATIONAL;
        for (int d = 0; d <= 5; ++d) {
            const double scale = std::max({1.0, mag(D[d]), d ? mag(D[d - 1]) / len : 0.0});
            if (d > 0) EXPECT_LE(dist(D[d], (1 / (2 * h)) * (A[d - 1] - B[d - 1])), 1e-5 * scale) << d;
            Point q{W[d].x, W[d].y, W[d].z == KW_PLANAR ? 0.0 : W[d].z};
            for (int i = 1, bin = 1; i <= d && rational; ++i) {
                bin = bin * (d - i + 1) / i;
                q = q - (bin * W[i].w) * D[d - i];
            }
            EXPECT_LE(dist((1 / (rational ? W[0].w : 1.0)) * q, D[d]), 1e-10 * scale) << d;
        }
        if (!rational && cur.p < 5) EXPECT_EQ(mag(D[5]), 0.0);  // orders above p vanish
        EXPECT_EQ(ctx.nodes(), 4);
        const int j = cur.p + 1;
        if (cur.p < 2 || cur.p > 7 || U[j] == U[j + 1] || std::count(U, U + cur.knt->m + 1, U[j]) >= cur.p) return;
        const double x = rng.uniform(U[j - cur.p], U[j + 1]), room = U[j + 1] - U[j];  // where U[j] counts
        Point dC;
        ASSERT_EQ(N_curdrk(&cur, j, x, KW_LEFT, KW_RIGHT, &dC, ctx.get()), 0);
        auto C = [&](double t) {
            Point P;
            U[j] += t;
            EXPECT_EQ(N_curevn(&cur, x, KW_RIGHT, &P), 0);
            U[j] -= t;
            return P;
        };
        EXPECT_CLOSE(dC, one_sided(C, 1e-4 * room, 1), 1e-5 / room);
        EXPECT_EQ(ctx.nodes(), 4);
    });
}

TEST(CurveFunctions, AgreeWithThePlanarCurveOfTheirValues) {
    each_curve(15, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        if (cur.pol->Pw[0].w != KW_NONRATIONAL || cur.p > 7) return;
        const int n = cur.pol->n, j = cur.p + 1;
        std::vector<double> f(n + 1);
        for (int i = 0; i <= n; ++i) f[i] = cur.pol->Pw[i].x = 1.0 + rng.uniform(0, 1);
        CurveFunction cfn;
        ASSERT_EQ(U_makcf2(&cfn, f.data(), n, cur.p, cur.knt->U, cur.knt->m, ctx.get()), 0);
        const double u = rng.uniform(0, 1);
        double v, ders[6], df, R, sum = 0.0;
        Point C[6], dC;
        ASSERT_EQ(N_curder(&cur, u, KW_LEFT, 5, C) + N_cfnevn(&cfn, u, KW_LEFT, &v), 0);
        ASSERT_EQ(N_cfnder(&cfn, u, KW_LEFT, 5, ders, ctx.get()), 0);
        EXPECT_NEAR(v, C[0].x, 1e-14);
        for (int d = 0; d <= 5; ++d) EXPECT_NEAR(ders[d], C[d].x, 1e-10 * std::max(1.0, std::fabs(C[d].x)));
        if (N_curdrk(&cur, j, u, KW_LEFT, KW_LEFT, &dC, ctx.get()) == 0) {
            ASSERT_EQ(N_cfndrk(&cfn, j, u, KW_LEFT, KW_LEFT, &df, ctx.get()), 0);
            EXPECT_NEAR(df, dC.x, 1e-12 * std::max(1.0, std::fabs(df)));
        }
        for (int i = 0; i <= n; ++i) sum += N_cfnrbf(&cfn, i, u, KW_RIGHT, &R) ? 9.0 : R;
        EXPECT_NEAR(sum, 1.0, 1e-13);  // the values as weights: a partition of unity
    });
}

TEST(EvalFailures, CodesAndNamesScratchAndNoMemory) {
    auto curve = [](StorageStacks *stk) {
        Rng rng{std::mt19937_64(17)};
        return random_curve(rng, 3, 8, true, false, 1, stk);
    };
    Context ctx;
    StorageStacks *stk = ctx.get();
    Curve cur = curve(stk), empty;
    U_inicur(&empty);
    Point C{7, 7, 7}, CK[7], R;
    ControlPoint W[7];
    double f = 7, zeros[9] = {};
    CurveFunction zero;
    ASSERT_EQ(U_makcf2(&zero, zeros, 8, 3, cur.knt->U, cur.knt->m, stk), 0);
    expect_failure(N_curevn(&cur, std::nextafter(1.0, 2.0), KW_RIGHT, &C), KW_EPARAM, "N_CUREVN");
    expect_failure(N_curder(&cur, 0.5, KW_RIGHT, 6, CK), KW_EORDER, "N_CURDER");
    expect_failure(N_curder(&cur, 0.5, 3, 1, CK), KW_ECASE, "N_KNTFSP");
    expect_failure(N_currdr(&cur, -1e-300, KW_RIGHT, 2, W, stk), KW_EPARAM, "N_CURRDR");
    expect_failure(N_currdr(&cur, 0.5, KW_RIGHT, 6, W, stk), KW_EORDER, "N_CURRDR");
    expect_failure(N_curevr(&empty, 0.5, KW_RIGHT, W), KW_ECURVE, "N_CUREVR");
    expect_failure(N_cfnrbf(&zero, 2, 0.5, KW_RIGHT, &f), KW_ESINGULAR, "N_CFNRBF");
    expect_failure(N_cfnrbf(&zero, 9, 0.5, KW_RIGHT, &f), KW_ESIZE, "N_CFNRBF");
    EXPECT_EQ(C.x + f, 14.0);  // outputs untouched
    E_clrerr();  // the point evaluators record a bad side but answer from the right
    ASSERT_EQ(N_curevn(&cur, 0.5, 9, &C) + N_curevn(&cur, 0.5, KW_RIGHT, &R), 0);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    EXPECT_EQ(std::memcmp(&C, &R, sizeof C), 0);
    // Scratch allocations fail cleanly and are killed; the polynomial knot
    // derivative takes another path; points and derivatives need none.
    EXPECT_GT(sweep(swept(curve, [&](Curve &c, StorageStacks *s) { return N_currdr(&c, 0.4, KW_LEFT, 5, W, s); })).size(), 2u);
    EXPECT_GT(sweep(swept(curve, [&](Curve &c, StorageStacks *s) { return N_curdrk(&c, 5, 0.4, KW_RIGHT, KW_LEFT, &R, s); })).size(), 2u);
    U_currnr(&cur);
    EXPECT_GT(sweep(swept([&](StorageStacks *) { return cur; },
                          [&](Curve &c, StorageStacks *s) { return N_curdrk(&c, 5, 0.4, KW_RIGHT, KW_LEFT, &R, s); })).size(), 2u);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(N_curevn(&cur, 0.3, KW_RIGHT, &C) + N_curevr(&cur, 0.3, KW_LEFT, W) + N_curder(&cur, 0.3, KW_RIGHT, 5, CK), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_CLOSE(C, CK[0], 1e-15);
}
