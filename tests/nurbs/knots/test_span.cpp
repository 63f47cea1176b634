// Span search, multiplicities, span counts, Greville abscissae and distinct
// knots over random clamped knot vectors.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// The count of knots equal to u.
int count_of(const std::vector<double> &U, double u) { return int(std::count(U.begin(), U.end(), u)); }

}  // namespace

TEST(Span, AgreesWithALinearScanAtKnotsAndBetween) {
    Rng rng(11);
    for (Knots &k : random_vectors(1, 120, -1.0, 3.0)) {
        std::vector<double> us(k.U);
        for (int t = 0; t < 20; ++t) us.push_back(rng.uniform(k.U.front(), k.U.back()));
        for (double u : us)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                int32_t span = -1;
                ASSERT_EQ(N_kntfsp(&k.knt, int16_t(k.p), u, side, &span), 0);
                EXPECT_EQ(span, ref_span(k.U.data(), k.knt.m, k.p, u, side)) << "u " << u << " side " << side;
            }
    }
}

TEST(Span, EndsOfTheDomain) {
    Knots k = make_knots({0, 0, 0, 0.5, 0.5, 1, 1, 1}, 2);
    int32_t span;
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 1.0, KW_RIGHT, &span), 0);
    EXPECT_EQ(span, k.n());  // the last span holds the end from the right
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 0.0, KW_LEFT, &span), 0);
    EXPECT_EQ(span, 2);
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 0.0, KW_RIGHT, &span), 0);
    EXPECT_EQ(span, 2);
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 1.0, KW_LEFT, &span), 0);
    EXPECT_EQ(span, k.n());
    // At the double knot the sides part by its multiplicity.
    int32_t right, left;
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 0.5, KW_RIGHT, &right), 0);
    ASSERT_EQ(N_kntfsp(&k.knt, 2, 0.5, KW_LEFT, &left), 0);
    EXPECT_EQ(right - left, 2);
}

TEST(Span, MultiplicityOfEveryKnot) {
    Rng rng(12);
    for (Knots &k : random_vectors(2, 80, -1.0, 3.0)) {
        const int m = k.knt.m;
        for (int i = 0; i <= m; ++i)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                int32_t span, s;
                ASSERT_EQ(N_kntfsm(&k.knt, int16_t(k.p), k.U[i], side, &span, &s), 0);
                EXPECT_EQ(s, count_of(k.U, k.U[i])) << "knot " << i << " side " << side;
            }
        const double u = rng.uniform(k.U.front(), k.U.back());
        int32_t span, s;
        ASSERT_EQ(N_kntfsm(&k.knt, int16_t(k.p), u, KW_RIGHT, &span, &s), 0);
        EXPECT_EQ(s, count_of(k.U, u));
    }
}

TEST(Span, RefusesParametersOutsideAndUnknownSides) {
    Knots k = make_knots({0, 0, 0, 0.5, 1, 1, 1}, 2);
    int32_t span = -7, s = -7;
    E_clrerr();
    EXPECT_EQ(N_kntfsp(&k.knt, 2, std::nextafter(0.0, -1.0), KW_RIGHT, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_EPARAM);
    EXPECT_STREQ(E_errnam(), "N_KNTFSP");
    EXPECT_EQ(N_kntfsp(&k.knt, 2, std::nextafter(1.0, 2.0), KW_LEFT, &span), 1);
    EXPECT_EQ(N_kntfsp(&k.knt, 2, NAN, KW_LEFT, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_EPARAM);
    EXPECT_EQ(N_kntfsp(&k.knt, 2, 0.3, 3, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    EXPECT_EQ(N_kntfsm(&k.knt, 2, 0.3, 0, &span, &s), 1);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    EXPECT_STREQ(E_errnam(), "N_KNTFSM");
    EXPECT_EQ(span, -7);  // outputs untouched
    EXPECT_EQ(s, -7);
    // Degrees the tables cannot hold, and vectors too short for the degree.
    EXPECT_EQ(N_kntfsp(&k.knt, 29, 0.3, KW_RIGHT, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_EDEGREE);
    EXPECT_EQ(N_kntfsp(&k.knt, 3, 0.3, KW_RIGHT, &span), 1);
    EXPECT_EQ(E_errtyp(), KW_EKNOTS);
}

TEST(Span, EndsOnKnotsThatAreNotClamped) {
    // Decreasing and unclamped knots are not valid, but the search must end
    // with a span inside the vector.
    Knots bad = make_knots({0, 3, 1, 2, 0.5, 4, 1, 5}, 2);
    Knots open = make_knots({0, 1, 2, 3, 4, 5, 6, 7}, 2);
    for (Knots *k : {&bad, &open})
        for (double u = 0.0; u <= 5.0; u += 0.25)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                int32_t span = -1;
                if (N_kntfsp(&k->knt, 2, u, side, &span)) continue;
                EXPECT_GE(span, 2);
                EXPECT_LE(span, k->n());
            }
}

TEST(Span, CountOfNonEmptySpans) {
    for (Knots &k : random_vectors(3, 60)) {
        std::vector<double> inner(k.U.begin() + k.p, k.U.end() - k.p);
        inner.erase(std::unique(inner.begin(), inner.end()), inner.end());
        int32_t count = -1;
        N_kntnsp(&k.knt, int16_t(k.p), &count);
        EXPECT_EQ(count, int32_t(inner.size()) - 1);
    }
}

TEST(Greville, NodesGiveLinearPrecision) {
    // A curve whose control points sit at their nodes reproduces x(u) = u.
    Rng rng(13);
    for (Knots &k : random_vectors(4, 60)) {
        Context ctx;
        const int n = k.n();
        std::vector<double> t(n + 1);
        N_kntand(&k.knt, int16_t(k.p), t.data());
        for (int i = 0; i <= n; ++i) {
            double one;
            ASSERT_EQ(N_kntcnd(&k.knt, int16_t(k.p), i, &one), 0);
            EXPECT_NEAR(one, t[i], 1e-15 * (1.0 + std::fabs(t[i])));
            if (i > 0) EXPECT_LE(t[i - 1], t[i]);
        }
        std::vector<ControlPoint> Pw(n + 1);
        for (int i = 0; i <= n; ++i) Pw[i] = ControlPoint{t[i], 0.0, KW_PLANAR, KW_NONRATIONAL};
        Curve cur;
        ASSERT_EQ(U_makcu2(&cur, Pw.data(), n, int16_t(k.p), k.U.data(), k.knt.m, ctx.get()), 0);
        for (int s = 0; s < 10; ++s) {
            const double u = rng.uniform(k.U.front(), k.U.back());
            Point C;
            ASSERT_EQ(N_curevn(&cur, u, KW_RIGHT, &C), 0);
            EXPECT_NEAR(C.x, u, 1e-12 * 4.0);
        }
    }
}

TEST(Greville, EndNodesAndIndexRange) {
    // Node 0 is the first knot even where the vector is not clamped.
    Knots open = make_knots({0, 1, 2, 3, 4, 5}, 2);
    double t;
    ASSERT_EQ(N_kntcnd(&open.knt, 2, 0, &t), 0);
    EXPECT_EQ(t, 0.0);
    ASSERT_EQ(N_kntcnd(&open.knt, 2, 2, &t), 0);
    EXPECT_EQ(t, 5.0);
    ASSERT_EQ(N_kntcnd(&open.knt, 2, 1, &t), 0);
    EXPECT_EQ(t, 2.5);
    E_clrerr();
    EXPECT_EQ(N_kntcnd(&open.knt, 2, 3, &t), 1);
    EXPECT_EQ(E_errtyp(), KW_ESIZE);
    EXPECT_STREQ(E_errnam(), "N_KNTCND");
    EXPECT_EQ(N_kntcnd(&open.knt, 2, -1, &t), 1);
}

TEST(DistinctKnots, RebuildTheVector) {
    for (Knots &k : random_vectors(5, 60)) {
        Context ctx;
        double *values = nullptr;
        int32_t *mult = nullptr, top = -1;
        ASSERT_EQ(N_kntdkm(&k.knt, &values, &mult, &top, ctx.get()), 0);
        std::vector<double> again;
        for (int i = 0; i <= top; ++i) {
            if (i > 0) EXPECT_LT(values[i - 1], values[i]);
            again.insert(again.end(), mult[i], values[i]);
        }
        EXPECT_EQ(again, k.U);
        EXPECT_EQ(mult[0], k.p + 1);
        EXPECT_EQ(mult[top], k.p + 1);
        EXPECT_EQ(ctx.nodes(), 2);  // the two results live on the context
    }
}
