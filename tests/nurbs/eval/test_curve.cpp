// Points and derivatives of random curves against de Boor's algorithm, the
// hodographs with the quotient rule, and finite differences; sides at knots;
// the markers; the failures.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// Random parameters and every knot of the curve.
std::vector<double> parameters(Rng &rng, const Curve &cur, int count) {
    std::vector<double> us(cur.knt->U, cur.knt->U + cur.knt->m + 1);
    for (int t = 0; t < count; ++t) us.push_back(rng.uniform(cur.knt->U[0], cur.knt->U[cur.knt->m]));
    return us;
}

// A parameter inside a span, a fraction margin of the span from its ends.
double inside_span(Rng &rng, const Curve &cur, double margin, double *len) {
    for (;;) {
        const double u = rng.uniform(0.0, 1.0);
        int32_t k;
        N_kntfsp(cur.knt, cur.p, u, KW_RIGHT, &k);
        const double a = cur.knt->U[k], b = cur.knt->U[k + 1];
        *len = b - a;
        if (u > a + margin * (b - a) && u < b - margin * (b - a)) return u;
    }
}

Point cartesian(ControlPoint P) {
    Point E;
    A_euclid(P, &E);
    return E;
}

}  // namespace

TEST(CurvePoints, MatchDeBoorOnEveryShape) {
    each_curve(51, 4, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        for (double u : parameters(rng, cur, 12))
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                Point C;
                ControlPoint Cw;
                ASSERT_EQ(N_curevn(&cur, u, side, &C), 0);
                ASSERT_EQ(N_curevr(&cur, u, side, &Cw), 0);
                EXPECT_POINT_NEAR(C, ref_point(cur, u, side), 1e-12);
                const Point E = cartesian(Cw);
                EXPECT_EQ(std::memcmp(&E, &C, sizeof C), 0);
                // The homogeneous point keeps the markers.
                EXPECT_EQ(Cw.z == KW_PLANAR, sh.planar);
                EXPECT_EQ(Cw.w == KW_NONRATIONAL, !sh.rational);
                if (sh.planar) EXPECT_EQ(C.z, 0.0);
            }
    });
}

TEST(CurvePoints, EndsAreTheEndControlPoints) {
    each_curve(52, 1, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        const int n = cur.pol->n, m = cur.knt->m;
        for (int16_t side : {KW_RIGHT, KW_LEFT}) {
            Point C;
            ASSERT_EQ(N_curevn(&cur, cur.knt->U[m], side, &C), 0);
            const Point last = cartesian(cur.pol->Pw[n]);
            EXPECT_EQ(std::memcmp(&C, &last, sizeof C), 0);
            ASSERT_EQ(N_curevn(&cur, cur.knt->U[0], side, &C), 0);
            const Point first = cartesian(cur.pol->Pw[0]);
            EXPECT_EQ(std::memcmp(&C, &first, sizeof C), 0);
        }
    });
}

TEST(CurvePoints, SidesAgreeAwayFromKnots) {
    each_curve(53, 1, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        for (int t = 0; t < 10; ++t) {
            double len;
            const double u = inside_span(rng, cur, 1e-9, &len);
            Point R[6], L[6];
            ASSERT_EQ(N_curder(&cur, u, KW_RIGHT, 5, R), 0);
            ASSERT_EQ(N_curder(&cur, u, KW_LEFT, 5, L), 0);
            EXPECT_EQ(std::memcmp(R, L, sizeof R), 0);
        }
    });
}

TEST(CurveDerivatives, MatchHodographsAndTheQuotientRule) {
    each_curve(54, 3, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        for (double u : parameters(rng, cur, 8))
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                Point CK[6];
                ASSERT_EQ(N_curder(&cur, u, side, 5, CK), 0);
                const std::vector<Point> ref = ref_curve_ders(cur, u, side, 5);
                double scale = 1.0;
                for (int d = 0; d <= 5; ++d) {
                    scale = std::max(scale, mag(ref[d]));
                    EXPECT_LE(dist(CK[d], ref[d]), 1e-10 * scale)
                        << "p " << sh.p << " rational " << sh.rational << " order " << d << " u " << u;
                }
                if (sh.planar)
                    for (int d = 0; d <= 5; ++d) EXPECT_EQ(CK[d].z, 0.0);
            }
    });
}

TEST(CurveDerivatives, AgreeWithFiniteDifferences) {
    each_curve(55, 3, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        double len;
        const double u = inside_span(rng, cur, 0.05, &len), h = 1e-5 * len;
        Point D[6], A[6], B[6];
        ASSERT_EQ(N_curder(&cur, u, KW_RIGHT, 5, D), 0);
        ASSERT_EQ(N_curder(&cur, u + h, KW_RIGHT, 5, A), 0);
        ASSERT_EQ(N_curder(&cur, u - h, KW_RIGHT, 5, B), 0);
        for (int d = 1; d <= 5; ++d) {
            const Point fd = (1.0 / (2 * h)) * (A[d - 1] - B[d - 1]);
            EXPECT_LE(dist(D[d], fd), 1e-5 * std::max({1.0, mag(D[d]), mag(D[d - 1]) / len}))
                << "p " << sh.p << " order " << d;
        }
    });
}

TEST(CurveDerivatives, HomogeneousDerivativesAndTheirQuotient) {
    each_curve(56, 1, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        const int before = ctx.nodes(), n = cur.pol->n;
        std::vector<std::vector<double>> c(n + 1);
        for (int i = 0; i <= n; ++i) {
            const ControlPoint &P = cur.pol->Pw[i];
            c[i] = {P.x, P.y, sh.planar ? 0.0 : P.z, sh.rational ? P.w : 0.0};
        }
        const std::vector<double> U(cur.knt->U, cur.knt->U + cur.knt->m + 1);
        for (double u : parameters(rng, cur, 6)) {
            ControlPoint CKw[6];
            Point CK[6];
            ASSERT_EQ(N_currdr(&cur, u, KW_LEFT, 5, CKw, ctx.get()), 0);
            ASSERT_EQ(N_curder(&cur, u, KW_LEFT, 5, CK), 0);
            const auto ref = ref_spline_ders(U, cur.p, c, u, KW_LEFT, 5);
            double scale = 1.0;
            for (int d = 0; d <= 5; ++d) {
                for (double x : ref[d]) scale = std::max(scale, std::fabs(x));
                EXPECT_NEAR(CKw[d].x, ref[d][0], 1e-10 * scale);
                EXPECT_NEAR(CKw[d].y, ref[d][1], 1e-10 * scale);
                if (sh.planar) EXPECT_EQ(CKw[d].z, KW_PLANAR);
                else EXPECT_NEAR(CKw[d].z, ref[d][2], 1e-10 * scale);
                if (sh.rational) EXPECT_NEAR(CKw[d].w, ref[d][3], 1e-10 * scale);
                else EXPECT_EQ(CKw[d].w, KW_NONRATIONAL);
            }
            // The quotient rule on the homogeneous derivative gives the
            // rational basis route's tangent.
            Point d1;
            A_ratder(CKw[0], CKw[1], &d1);
            EXPECT_POINT_NEAR(d1, CK[1], 1e-10);
        }
        EXPECT_EQ(ctx.nodes(), before);
    });
}

TEST(CurveDerivatives, TheSideChoosesThePolygonLegAtAKnotOfMultiplicityP) {
    for (int p : {2, 3, 5}) {
        Rng rng(57 + p);
        for (bool rational : {false, true}) {
            Context ctx;
            Curve cur = random_curve(rng, {p, 2 * p + 1, rational, false, 1}, ctx);
            // Knots p+1..2p: one value of multiplicity p at index 2p.
            double *U = cur.knt->U;
            for (int i = p + 1; i <= 2 * p; ++i) U[i] = 0.5;
            U[2 * p + 1] = 0.75;
            const int k = 2 * p;  // the span from the right
            const double u = 0.5;
            Point R[2], L[2], C;
            ASSERT_EQ(N_curder(&cur, u, KW_RIGHT, 1, R), 0);
            ASSERT_EQ(N_curder(&cur, u, KW_LEFT, 1, L), 0);
            const ControlPoint *Pw = cur.pol->Pw;
            const Point Pm = cartesian(Pw[k - p - 1]), P0 = cartesian(Pw[k - p]), P1 = cartesian(Pw[k - p + 1]);
            EXPECT_POINT_NEAR(R[0], P0, 1e-13);
            EXPECT_POINT_NEAR(L[0], P0, 1e-13);
            ASSERT_EQ(N_curevn(&cur, u, KW_LEFT, &C), 0);
            EXPECT_POINT_NEAR(C, P0, 1e-13);
            // Tangents along the legs: exactly p/(span length) times the leg
            // for equal weights, in the leg's direction for any weights.
            const double wr = rational ? Pw[k - p + 1].w / Pw[k - p].w : 1.0;
            const double wl = rational ? Pw[k - p - 1].w / Pw[k - p].w : 1.0;
            const Point right = (p * wr / (U[k + 1] - u)) * (P1 - P0);
            const Point left = (p * wl / (u - U[k - p])) * (P0 - Pm);
            EXPECT_POINT_NEAR(R[1], right, 1e-12);
            EXPECT_POINT_NEAR(L[1], left, 1e-12);
        }
    }
}

TEST(CurveDerivatives, OrdersAboveTheDegreeAndEqualWeights) {
    Rng rng(58);
    Context ctx;
    Curve poly = random_curve(rng, {2, 6, false, false, 0}, ctx);
    Point CK[6];
    ASSERT_EQ(N_curder(&poly, 0.37, KW_RIGHT, 5, CK), 0);
    for (int d = 3; d <= 5; ++d) {
        EXPECT_EQ(CK[d].x, 0.0);
        EXPECT_EQ(CK[d].y, 0.0);
        EXPECT_EQ(CK[d].z, 0.0);
    }
    // The same polygon with equal weights everywhere.
    Curve rat;
    U_inicur(&rat);
    ASSERT_EQ(U_curcop(&poly, &rat, ctx.get()), 0);
    for (int i = 0; i <= rat.pol->n; ++i) {
        ControlPoint &P = rat.pol->Pw[i];
        P = ControlPoint{2.5 * P.x, 2.5 * P.y, 2.5 * P.z, 2.5};
    }
    Point RK[6];
    ASSERT_EQ(N_curder(&rat, 0.37, KW_RIGHT, 5, RK), 0);
    for (int d = 0; d <= 5; ++d) EXPECT_POINT_NEAR(RK[d], CK[d], 1e-12);
}

TEST(CurveKnotDerivatives, AgreeWithDifferencesInTheKnot) {
    Rng rng(59);
    for (int p : {2, 3, 4, 6})
        for (bool rational : {false, true}) {
            Context ctx;
            Curve cur = random_curve(rng, {p, p + 5, rational, false, 1}, ctx);
            const int before = ctx.nodes();
            for (int j = p + 1; j <= cur.pol->n; ++j) {
                const double Uj = cur.knt->U[j], room = cur.knt->U[j + 1] - Uj, h = 1e-4 * room;
                const double u = rng.uniform(0.0, 1.0);
                Point dC;
                ASSERT_EQ(N_curdrk(&cur, j, u, KW_LEFT, KW_RIGHT, &dC, ctx.get()), 0);
                auto at = [&](double t) {
                    return knot_moved(cur.knt, j, t, [&] {
                        Point C;
                        EXPECT_EQ(N_curevn(&cur, u, KW_RIGHT, &C), 0);
                        return C;
                    });
                };
                const Point fd = one_sided(at, h, 1);
                EXPECT_LE(dist(dC, fd), 1e-5 * std::max(1.0, mag(fd)) / room) << "p " << p << " j " << j;
            }
            EXPECT_EQ(ctx.nodes(), before);
        }
}

TEST(CurveEvaluation, FailuresRecordTheirCodesAndWriteNothing) {
    Rng rng(60);
    Context ctx;
    Curve cur = random_curve(rng, {3, 6, true, false, 0}, ctx);
    const Point untouched{7, 7, 7};
    Point C = untouched, CK[7];
    ControlPoint Cw{7, 7, 7, 7}, CKw[7];
    const double beyond = std::nextafter(1.0, 2.0);
    struct Case {
        int16_t status;
        int code;
        const char *name;
    };
    auto run = [](int16_t status) {
        return Case{status, int(E_errtyp()), E_errnam()};
    };
    auto expect = [](Case c, int code, const char *name) {
        EXPECT_EQ(c.status, 1) << name;
        EXPECT_EQ(c.code, code) << name;
        EXPECT_STREQ(c.name, name);
    };
    expect(run(N_curevn(&cur, beyond, KW_RIGHT, &C)), KW_EPARAM, "N_CUREVN");
    expect(run(N_curevr(&cur, -1e-300, KW_RIGHT, &Cw)), KW_EPARAM, "N_CUREVR");
    expect(run(N_curder(&cur, beyond, KW_RIGHT, 1, CK)), KW_EPARAM, "N_CURDER");
    expect(run(N_curder(&cur, 0.5, KW_RIGHT, 6, CK)), KW_EORDER, "N_CURDER");
    expect(run(N_curder(&cur, 0.5, KW_RIGHT, -1, CK)), KW_EORDER, "N_CURDER");
    expect(run(N_curder(&cur, 0.5, 3, 1, CK)), KW_ECASE, "N_KNTFSP");
    expect(run(N_currdr(&cur, beyond, KW_RIGHT, 2, CKw, ctx.get())), KW_EPARAM, "N_CURRDR");
    expect(run(N_currdr(&cur, 0.5, KW_RIGHT, 6, CKw, ctx.get())), KW_EORDER, "N_CURRDR");
    expect(run(N_currdr(&cur, 0.5, 0, 2, CKw, ctx.get())), KW_ECASE, "N_KNTFSP");
    // Inconsistent, too high a degree, and empty records.
    Curve bad = cur;
    KnotVector shorter = *cur.knt;
    --shorter.m;
    bad.knt = &shorter;
    expect(run(N_curevn(&bad, 0.5, KW_RIGHT, &C)), KW_ECURVE, "N_CUREVN");
    Curve empty;
    U_inicur(&empty);
    expect(run(N_curder(&empty, 0.5, KW_RIGHT, 1, CK)), KW_ECURVE, "N_CURDER");
    EXPECT_EQ(std::memcmp(&C, &untouched, sizeof C), 0);
    EXPECT_EQ(Cw.x, 7.0);
    // k = 5 is the highest order accepted.
    EXPECT_EQ(N_curder(&cur, 0.5, KW_RIGHT, 5, CK), 0);
    EXPECT_EQ(N_currdr(&cur, 0.5, KW_RIGHT, 5, CKw, ctx.get()), 0);
}

TEST(CurveEvaluation, PointEvaluatorsReportABadSideButStillAnswer) {
    Rng rng(61);
    Context ctx;
    Curve cur = random_curve(rng, {3, 6, false, true, 0}, ctx);
    Point C, R;
    ControlPoint Cw;
    E_clrerr();
    EXPECT_EQ(N_curevn(&cur, 0.5, 4, &C), 0);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    EXPECT_STREQ(E_errnam(), "N_KNTFSP");
    ASSERT_EQ(N_curevn(&cur, 0.5, KW_RIGHT, &R), 0);
    EXPECT_EQ(std::memcmp(&C, &R, sizeof C), 0);
    E_clrerr();
    EXPECT_EQ(N_curevr(&cur, 0.5, -1, &Cw), 0);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
}

// ---- Curve functions ------------------------------------------------------------

namespace {

CurveFunction random_function(Rng &rng, int p, int n, Context &ctx, double lo = -2.0, double hi = 2.0,
                              int maxmult = 0) {
    const std::vector<double> U = random_knots(rng, p, n, 0.0, 1.0, maxmult ? maxmult : p);
    CurveFunction f;
    U_inicfn(&f);
    EXPECT_EQ(U_cfnchk(&f, n, int16_t(p), int32_t(U.size()) - 1, name("TEST"), ctx.get()), 0);
    std::copy(U.begin(), U.end(), f.knt->U);
    for (int i = 0; i <= n; ++i) f.cvl->v[i] = rng.uniform(lo, hi);
    return f;
}

}  // namespace

TEST(CurveFunctions, ValuesAndDerivativesMatchHodographs) {
    Rng rng(62);
    for (int p : {1, 2, 3, 5, 7, 28}) {
        Context ctx;
        CurveFunction f = random_function(rng, p, p + (p == 28 ? 20 : 8), ctx);
        const int before = ctx.nodes();
        std::vector<std::vector<double>> c;
        for (int i = 0; i <= f.cvl->n; ++i) c.push_back({f.cvl->v[i]});
        const std::vector<double> U(f.knt->U, f.knt->U + f.knt->m + 1);
        for (int t = 0; t < 10; ++t) {
            const double u = t < 2 ? U[t * f.knt->m] : rng.uniform(0.0, 1.0);
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                double value, ders[6];
                ASSERT_EQ(N_cfnevn(&f, u, side, &value), 0);
                ASSERT_EQ(N_cfnder(&f, u, side, 5, ders, ctx.get()), 0);
                const auto ref = ref_spline_ders(U, p, c, u, side, 5);
                EXPECT_NEAR(value, ref[0][0], 1e-12 * 2);
                double scale = 1.0;
                for (int d = 0; d <= 5; ++d) {
                    scale = std::max(scale, std::fabs(ref[d][0]));
                    EXPECT_NEAR(ders[d], ref[d][0], 1e-10 * scale) << "p " << p << " order " << d;
                }
            }
        }
        EXPECT_EQ(ctx.nodes(), before);
    }
}

TEST(CurveFunctions, KnotDerivativeAndRationalBasis) {
    Rng rng(63);
    for (int p : {2, 3, 4}) {
        Context ctx;
        CurveFunction f = random_function(rng, p, p + 5, ctx, 0.5, 2.0, 1);
        const int n = f.cvl->n;
        const double u = rng.uniform(0.0, 1.0);
        // Rational basis with the values as weights: sums to one.
        double sum = 0.0;
        for (int i = 0; i <= n; ++i) {
            double R;
            ASSERT_EQ(N_cfnrbf(&f, i, u, KW_RIGHT, &R), 0);
            EXPECT_GE(R, 0.0);
            sum += R;
        }
        EXPECT_NEAR(sum, 1.0, 1e-13);
        // Knot derivative against a difference, for a knot with room both ways.
        const int j = p + 2;
        const double Uj = f.knt->U[j], h = 1e-4 * (Uj - f.knt->U[j - 1]);
        double df;
        ASSERT_EQ(N_cfndrk(&f, j, u, KW_RIGHT, KW_LEFT, &df, ctx.get()), 0);
        auto at = [&](double t) {
            return knot_moved(f.knt, j, t, [&] {
                double v;
                EXPECT_EQ(N_cfnevn(&f, u, KW_LEFT, &v), 0);
                return v;
            });
        };
        EXPECT_NEAR(df, one_sided(at, h, -1), 1e-5 / (Uj - f.knt->U[j - 1]));
    }
    // A zero function has no rational basis.
    Context ctx;
    CurveFunction zero = random_function(rng, 2, 4, ctx);
    std::fill_n(zero.cvl->v, 5, 0.0);
    double R = -1.0;
    E_clrerr();
    EXPECT_EQ(N_cfnrbf(&zero, 1, 0.5, KW_RIGHT, &R), 1);
    EXPECT_EQ(E_errtyp(), KW_ESINGULAR);
    EXPECT_STREQ(E_errnam(), "N_CFNRBF");
    EXPECT_EQ(N_cfnrbf(&zero, 5, 0.5, KW_RIGHT, &R), 1);
    EXPECT_EQ(E_errtyp(), KW_ESIZE);
    EXPECT_EQ(N_cfnevn(&zero, 1.5, KW_RIGHT, &R), 1);
    EXPECT_EQ(E_errtyp(), KW_EPARAM);
    EXPECT_STREQ(E_errnam(), "N_CFNEVN");
    EXPECT_EQ(N_cfnder(&zero, 0.5, KW_RIGHT, 6, &R, ctx.get()), 1);
    EXPECT_EQ(E_errtyp(), KW_EORDER);
    EXPECT_STREQ(E_errnam(), "N_CFNDER");
    EXPECT_EQ(R, -1.0);
}
