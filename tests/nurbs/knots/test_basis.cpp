// Basis functions and their derivatives: partition of unity, agreement of
// the single-function and all-function schemes with the textbook recursion,
// derivatives against finite differences, sides at knots, rational bases.
#include <functional>

#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// N[i,p](u) from the right by its defining recursion (0/0 read as 0).
double textbook(const std::vector<double> &U, int i, int p, double u) {
    if (p == 0) return U[i] <= u && u < U[i + 1] ? 1.0 : 0.0;
    double v = 0.0;
    if (U[i + p] > U[i]) v += (u - U[i]) / (U[i + p] - U[i]) * textbook(U, i, p - 1, u);
    if (U[i + p + 1] > U[i + 1]) v += (U[i + p + 1] - u) / (U[i + p + 1] - U[i + 1]) * textbook(U, i + 1, p - 1, u);
    return v;
}

// Row pointers over a (k+1) x (p+1) block.
struct Table {
    std::vector<double> data;
    std::vector<double *> rows;
    Table(int k, int p) : data((k + 1) * (p + 1), -99.0), rows(k + 1) {
        for (int d = 0; d <= k; ++d) rows[d] = data.data() + d * (p + 1);
    }
};

// A parameter strictly inside a span, at least a fraction margin of the span
// away from its ends.
double inside_span(Rng &rng, const Knots &v, double margin) {
    for (;;) {
        const double u = rng.uniform(v.U.front(), v.U.back());
        int32_t k;
        N_kntfsp(&v.knt, int16_t(v.p), u, KW_RIGHT, &k);
        const double a = v.U[k], b = v.U[k + 1];
        if (u > a + margin * (b - a) && u < b - margin * (b - a)) return u;
    }
}

}  // namespace

TEST(Basis, PartitionOfUnityAndTheTwoSchemesAgree) {
    Rng rng(21);
    for (Knots &v : random_vectors(1, 96, 0.0, 2.0)) {
        Context ctx;
        std::vector<double> us(v.U);
        for (int t = 0; t < 12; ++t) us.push_back(rng.uniform(v.U.front(), v.U.back()));
        for (double u : us)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                double N[KW_MAX_DEGREE + 1];
                int32_t span;
                ASSERT_EQ(N_kntalb(&v.knt, int16_t(v.p), u, side, N, &span), 0);
                double sum = 0.0;
                for (int r = 0; r <= v.p; ++r) {
                    EXPECT_GE(N[r], 0.0);
                    sum += N[r];
                    double one;
                    ASSERT_EQ(N_kntbas(&v.knt, span - v.p + r, int16_t(v.p), u, side, &one, ctx.get()), 0);
                    EXPECT_NEAR(one, N[r], 1e-13);
                }
                EXPECT_NEAR(sum, 1.0, 1e-13);
                // Functions outside the span vanish.
                for (int i : {int(span) - v.p - 1, int(span) + 1})
                    if (i >= 0 && i <= v.knt.m - v.p - 1) {
                        double zero = -1.0;
                        ASSERT_EQ(N_kntbas(&v.knt, i, int16_t(v.p), u, side, &zero, ctx.get()), 0);
                        EXPECT_EQ(zero, 0.0);
                    }
            }
        EXPECT_EQ(ctx.nodes(), 0);  // N_kntbas kills its work array
    }
}

TEST(Basis, MatchesTheRecursiveDefinition) {
    Rng rng(22);
    for (Knots &v : random_vectors(2, 56)) {
        if (v.p > 7) continue;
        for (int t = 0; t < 10; ++t) {
            const double u = rng.uniform(v.U.front(), v.U.back());
            double N[KW_MAX_DEGREE + 1];
            int32_t span;
            ASSERT_EQ(N_kntalb(&v.knt, int16_t(v.p), u, KW_RIGHT, N, &span), 0);
            for (int r = 0; r <= v.p; ++r) EXPECT_NEAR(N[r], textbook(v.U, span - v.p + r, v.p, u), 1e-13);
        }
    }
}

TEST(Basis, EndKnotsGiveTheEndFunctionFromEitherSide) {
    for (Knots &v : random_vectors(3, 16))
        for (int side : {1, 2, 7}) {
            double N[KW_MAX_DEGREE + 1];
            int32_t span;
            E_clrerr();
            ASSERT_EQ(N_kntalb(&v.knt, int16_t(v.p), v.U.back(), int16_t(side), N, &span), 0);
            EXPECT_EQ(span, v.knt.m - v.p - 1);
            EXPECT_EQ(N[v.p], 1.0);
            ASSERT_EQ(N_kntalb(&v.knt, int16_t(v.p), v.U.front(), int16_t(side), N, &span), 0);
            EXPECT_EQ(span, v.p);
            EXPECT_EQ(N[0], 1.0);
            EXPECT_EQ(E_errtyp(), 0);  // the end cases come before the side
        }
}

TEST(Basis, InnermostRoutineLeavesTheSideToItsCaller) {
    Knots v = make_knots({0, 0, 0, 0.4, 0.7, 1, 1, 1}, 2);
    double N[3], R[3];
    int32_t span, rspan;
    E_clrerr();
    EXPECT_EQ(N_kntalb(&v.knt, 2, 0.5, 9, N, &span), 0);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    EXPECT_STREQ(E_errnam(), "N_KNTFSP");
    ASSERT_EQ(N_kntalb(&v.knt, 2, 0.5, KW_RIGHT, R, &rspan), 0);
    EXPECT_EQ(span, rspan);
    // The parameter is its own check.
    EXPECT_EQ(N_kntalb(&v.knt, 2, 1.5, KW_RIGHT, N, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_EPARAM);
    EXPECT_STREQ(E_errnam(), "N_KNTALB");
}

TEST(BasisDerivatives, AgreeWithFiniteDifferencesAndSumToZero) {
    Rng rng(23);
    for (Knots &v : random_vectors(4, 96)) {
        Context ctx;
        const int p = v.p, k = std::min(p, 4);
        const double u = inside_span(rng, v, 0.05);
        int32_t span, sa, sb;
        Table D(k, p), A(k, p), B(k, p);
        ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u, KW_RIGHT, int16_t(k), D.rows.data(), &span, ctx.get()), 0);
        const double h = 1e-5 * (v.U[span + 1] - v.U[span]);
        ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u + h, KW_RIGHT, int16_t(k), A.rows.data(), &sa, ctx.get()), 0);
        ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u - h, KW_RIGHT, int16_t(k), B.rows.data(), &sb, ctx.get()), 0);
        ASSERT_EQ(sa, span);
        ASSERT_EQ(sb, span);
        for (int d = 1; d <= k; ++d) {
            double scale = 0.0, sum = 0.0;
            for (int j = 0; j <= p; ++j) scale = std::max(scale, std::fabs(D.rows[d][j]));
            for (int j = 0; j <= p; ++j) {
                const double fd = (A.rows[d - 1][j] - B.rows[d - 1][j]) / (2 * h);
                EXPECT_NEAR(D.rows[d][j], fd, 1e-5 * scale) << "p " << p << " order " << d;
                sum += D.rows[d][j];
            }
            EXPECT_NEAR(sum, 0.0, 1e-12 * (p + 1) * scale);
        }
        EXPECT_EQ(ctx.nodes(), 0);
    }
}

TEST(BasisDerivatives, OrdersAboveTheDegreeAreZero) {
    Knots v = make_knots({0, 0, 0, 0.3, 0.6, 1, 1, 1}, 2);
    Context ctx;
    Table D(5, 2);
    int32_t span;
    ASSERT_EQ(N_kntadb(&v.knt, 2, 0.45, KW_LEFT, 5, D.rows.data(), &span, ctx.get()), 0);
    for (int d = 3; d <= 5; ++d)
        for (int j = 0; j <= 2; ++j) EXPECT_EQ(D.rows[d][j], 0.0);
    // Second derivatives of a quadratic: constant within the span.
    for (int j = 0; j <= 2; ++j) EXPECT_NE(D.rows[2][j], 0.0);
}

TEST(BasisDerivatives, SidesAgreeUpToTheContinuityOfTheKnot) {
    // At a knot of multiplicity s the functions are C^(p-s): derivatives up
    // to p - s agree from both sides, order p - s + 1 jumps.
    for (Knots &v : random_vectors(5, 96)) {
        Context ctx;
        const int p = v.p;
        if (p > 7) continue;
        for (int i = p + 1; i < v.knt.m - p; ++i) {
            if (v.U[i] == v.U[i - 1]) continue;
            const double u = v.U[i];
            const int s = int(std::count(v.U.begin(), v.U.end(), u));
            Table R(p, p), L(p, p);
            int32_t kr, kl;
            ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u, KW_RIGHT, int16_t(p), R.rows.data(), &kr, ctx.get()), 0);
            ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u, KW_LEFT, int16_t(p), L.rows.data(), &kl, ctx.get()), 0);
            EXPECT_EQ(kr - kl, s);
            // Compare by global function index over the union of both spans.
            auto value = [p](const Table &T, int32_t span, int d, int g) {
                const int r = g - span + p;
                return r >= 0 && r <= p ? T.rows[d][r] : 0.0;
            };
            for (int d = 0; d <= std::min(p, p - s + 1); ++d) {
                double scale = 0.0, jump = 0.0;
                for (int g = kl - p; g <= kr; ++g) {
                    scale = std::max({scale, std::fabs(value(R, kr, d, g)), std::fabs(value(L, kl, d, g))});
                    jump = std::max(jump, std::fabs(value(R, kr, d, g) - value(L, kl, d, g)));
                }
                if (d <= p - s) EXPECT_LE(jump, 1e-10 * scale) << "p " << p << " s " << s << " order " << d;
                else EXPECT_GT(jump, 1e-6 * scale) << "p " << p << " s " << s << " order " << d;
            }
        }
    }
}

TEST(BasisDerivatives, SingleFunctionIsTheColumnOfItsSpan) {
    Rng rng(25);
    for (Knots &v : random_vectors(6, 40)) {
        Context ctx;
        const int p = v.p, k = std::min(p + 1, 5);
        const double u = rng.uniform(v.U.front(), v.U.back());
        for (int16_t side : {KW_RIGHT, KW_LEFT}) {
            Table D(k, p);
            int32_t span;
            ASSERT_EQ(N_kntadb(&v.knt, int16_t(p), u, side, int16_t(k), D.rows.data(), &span, ctx.get()), 0);
            for (int i = 0; i <= v.knt.m - p - 1; ++i) {
                std::vector<double> one(k + 1, -5.0);
                ASSERT_EQ(N_kntbad(&v.knt, i, int16_t(p), u, side, int16_t(k), one.data(), ctx.get()), 0);
                const int r = i - span + p;
                for (int d = 0; d <= k; ++d) EXPECT_EQ(one[d], r >= 0 && r <= p ? D.rows[d][r] : 0.0);
            }
        }
        EXPECT_EQ(ctx.nodes(), 0);
    }
}

TEST(Basis, FailuresRecordTheirCodes) {
    Knots v = make_knots({0, 0, 0, 0.5, 1, 1, 1}, 2);
    Context ctx;
    double x = -3.0, ders[3] = {-3.0, -3.0, -3.0};
    Table D(2, 2);
    int32_t span = -3;
    struct Case {
        std::function<int16_t()> call;
        int code;
        const char *name;
    };
    StorageStacks *stk = ctx.get();
    const KnotVector *k = &v.knt;
    double **rows = D.rows.data();
    const Case cases[] = {
        {[&] { return N_kntbas(k, 0, 2, -0.1, KW_RIGHT, &x, stk); }, KW_EPARAM, "N_KNTBAS"},
        {[&] { return N_kntbas(k, 4, 2, 0.5, KW_RIGHT, &x, stk); }, KW_ESIZE, "N_KNTBAS"},
        {[&] { return N_kntbas(k, -1, 2, 0.5, KW_RIGHT, &x, stk); }, KW_ESIZE, "N_KNTBAS"},
        {[&] { return N_kntbas(k, 1, 2, 0.5, 3, &x, stk); }, KW_ECASE, "N_KNTBAS"},
        {[&] { return N_kntbad(k, 4, 2, 0.5, KW_RIGHT, 2, ders, stk); }, KW_ESIZE, "N_KNTBAD"},
        {[&] { return N_kntbad(k, 1, 2, 0.5, 0, 2, ders, stk); }, KW_ECASE, "N_KNTBAD"},
        {[&] { return N_kntbad(k, 1, 2, 1.5, KW_LEFT, 2, ders, stk); }, KW_EPARAM, "N_KNTBAD"},
        {[&] { return N_kntadb(k, 2, 1.5, KW_LEFT, 2, rows, &span, stk); }, KW_EPARAM, "N_KNTFSP"},
        {[&] { return N_kntadb(k, 2, 0.5, 5, 2, rows, &span, stk); }, KW_ECASE, "N_KNTFSP"},
        {[&] { return N_kntadb(k, 2, 0.5, KW_LEFT, -1, rows, &span, stk); }, KW_EARG, "N_KNTADB"},
        {[&] { return N_kntalb(k, 30, 0.5, KW_LEFT, ders, &span); }, KW_EDEGREE, "N_KNTALB"},
        {[&] { return N_kntalb(k, -1, 0.5, KW_LEFT, ders, &span); }, KW_EDEGREE, "N_KNTALB"},
    };
    for (const Case &c : cases) {
        E_clrerr();
        EXPECT_EQ(c.call(), 1) << c.name << " " << c.code;
        EXPECT_EQ(E_errtyp(), c.code) << c.name;
        EXPECT_STREQ(E_errnam(), c.name);
    }
    EXPECT_EQ(x, -3.0);
    EXPECT_EQ(ders[0], -3.0);
    EXPECT_EQ(span, -3);
    EXPECT_EQ(ctx.nodes(), 0);
}

TEST(RationalBasis, CurveFunctionsSumToOneAndReduceWithEqualWeights) {
    Rng rng(26);
    for (const Shape &sh : shapes()) {
        Context ctx;
        Curve cur = random_curve(rng, sh, ctx);
        const int n = cur.pol->n;
        for (int t = 0; t < 6; ++t) {
            const double u = rng.uniform(0.0, 1.0);
            double sum = 0.0;
            for (int i = 0; i <= n; ++i) {
                double R, Rr;
                ASSERT_EQ(N_kntcbf(&cur, i, u, KW_RIGHT, &R), 0);
                ASSERT_EQ(N_kntrcb(&cur, i, u, KW_RIGHT, &Rr), 0);
                EXPECT_GE(R, 0.0);
                if (sh.rational) EXPECT_EQ(R, Rr);
                else EXPECT_NEAR(R, Rr, 1e-13);  // unit weights
                sum += R;
                if (!sh.rational) {
                    double N;
                    ASSERT_EQ(N_kntbas(cur.knt, i, cur.p, u, KW_RIGHT, &N, ctx.get()), 0);
                    EXPECT_NEAR(R, N, 1e-13);
                }
            }
            EXPECT_NEAR(sum, 1.0, 1e-13);
        }
        // Equal weights: the rational basis is the polynomial one.
        if (sh.rational) {
            for (int i = 0; i <= n; ++i) cur.pol->Pw[i] = ControlPoint{1.5, 3.0, 4.5, 1.5};
            const double u = rng.uniform(0.0, 1.0);
            for (int i = 0; i <= n; ++i) {
                double R, N;
                ASSERT_EQ(N_kntcbf(&cur, i, u, KW_LEFT, &R), 0);
                ASSERT_EQ(N_kntbas(cur.knt, i, cur.p, u, KW_LEFT, &N, ctx.get()), 0);
                EXPECT_NEAR(R, N, 1e-13);
            }
        }
    }
}

TEST(RationalBasis, SurfaceFunctionsSumToOneAndFactor) {
    Rng rng(27);
    for (bool rational : {false, true}) {
        Context ctx;
        const int p = 3, q = 2, n = 5, m = 4;
        const std::vector<double> U = random_knots(rng, p, n, 0.0, 1.0, p);
        const std::vector<double> V = random_knots(rng, q, m, -1.0, 1.0, q);
        Surface sur;
        U_inisur(&sur);
        ASSERT_EQ(U_surchk(&sur, n, m, p, q, n + p + 1, m + q + 1, name("TEST"), ctx.get()), 0);
        std::copy(U.begin(), U.end(), sur.knu->U);
        std::copy(V.begin(), V.end(), sur.knv->U);
        for (int i = 0; i <= n; ++i)
            for (int j = 0; j <= m; ++j)
                sur.net->Pw[i][j] = ControlPoint{double(i), double(j), 0.0, rational ? rng.uniform(0.5, 2.0) : KW_NONRATIONAL};
        for (int t = 0; t < 8; ++t) {
            const double u = rng.uniform(0.0, 1.0), v = rng.uniform(-1.0, 1.0);
            double sum = 0.0;
            for (int i = 0; i <= n; ++i)
                for (int j = 0; j <= m; ++j) {
                    double R;
                    ASSERT_EQ(N_kntsbf(&sur, i, j, u, v, KW_RIGHT, KW_LEFT, &R), 0);
                    EXPECT_GE(R, 0.0);
                    sum += R;
                    if (!rational) {
                        double Nu, Nv;
                        ASSERT_EQ(N_kntbas(sur.knu, i, p, u, KW_RIGHT, &Nu, ctx.get()), 0);
                        ASSERT_EQ(N_kntbas(sur.knv, j, q, v, KW_LEFT, &Nv, ctx.get()), 0);
                        EXPECT_NEAR(R, Nu * Nv, 1e-13);
                    }
                }
            EXPECT_NEAR(sum, 1.0, 1e-13);
        }
        double R = -1.0;
        E_clrerr();
        EXPECT_EQ(N_kntrsb(&sur, n + 1, 0, 0.5, 0.0, KW_RIGHT, KW_RIGHT, &R), 1);
        EXPECT_EQ(E_errtyp(), KW_ESIZE);
        EXPECT_EQ(N_kntrsb(&sur, 0, 0, 0.5, 1.5, KW_RIGHT, KW_RIGHT, &R), 1);
        EXPECT_EQ(E_errtyp(), KW_EPARAM);
        EXPECT_EQ(N_kntsbf(&sur, 0, 0, 0.5, 0.5, KW_RIGHT, 0, &R), 1);
        EXPECT_EQ(E_errtyp(), KW_ECASE);
        EXPECT_STREQ(E_errnam(), "N_KNTSBF");
        EXPECT_EQ(R, -1.0);
    }
}
