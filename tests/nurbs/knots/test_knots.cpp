// Spans, basis functions and their derivatives in u and in a knot, and the
// knot-vector facts, on the knots of random curves of every shape.
#include <numeric>

#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// Rows 0..k of p + 1 doubles.
struct Table {
    std::vector<double> d;
    std::vector<double *> rows;
    Table(int k, int p) : d((k + 1) * (p + 1)) {
        for (int i = 0; i <= k; ++i) rows.push_back(&d[i * (p + 1)]);
    }
};

}  // namespace

TEST(Basis, SpansMultiplicitiesPartitionOfUnityAndNodes) {
    each_curve(1, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        const KnotVector *k = cur.knt;
        const double *U = k->U;
        std::vector<double> us(U, U + k->m + 1);
        for (int t = 0; t < 8; ++t) us.push_back(rng.uniform(0, 1));
        for (double u : us)
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                double N[KW_MAX_DEGREE + 1], sum = 0.0, v;
                int32_t span, span2, s;
                ASSERT_EQ(N_kntalb(k, cur.p, u, side, N, &span) + N_kntfsm(k, cur.p, u, side, &span2, &s), 0);
                EXPECT_EQ(span, span2);
                EXPECT_EQ(s, std::count(U, U + k->m + 1, u));
                if (u > 0.0 && u < 1.0)
                    EXPECT_TRUE(side == KW_RIGHT ? U[span] <= u && u < U[span + 1] : U[span] < u && u <= U[span + 1]);
                for (int i = 0; i <= cur.pol->n; ++i) {
                    ASSERT_EQ(N_kntbas(k, i, cur.p, u, side, &v, ctx.get()), 0);
                    EXPECT_NEAR(v, i < span - cur.p || i > span ? 0.0 : N[i - span + cur.p], 1e-13);
                    EXPECT_GE(v, 0.0);
                    sum += v;
                }
                EXPECT_NEAR(sum, 1.0, 1e-13);
            }
        EXPECT_EQ(ctx.nodes(), 4);  // the curve's parts alone: scratch was killed
        // Control points at their Greville nodes reproduce x(u) = u.
        std::vector<double> t(cur.pol->n + 1);
        N_kntand(k, cur.p, t.data());
        for (int i = 0; i <= cur.pol->n; ++i) {
            double one;
            ASSERT_EQ(N_kntcnd(k, cur.p, i, &one), 0);
            EXPECT_NEAR(one, t[i], 1e-15);
            cur.pol->Pw[i] = ControlPoint{t[i], 0.0, KW_PLANAR, KW_NONRATIONAL};
        }
        Point C;
        const double u = rng.uniform(0, 1);
        ASSERT_EQ(N_curevn(&cur, u, KW_RIGHT, &C), 0);
        EXPECT_NEAR(C.x, u, 1e-13);
        // The distinct knots and their multiplicities give the vector back.
        double *v;
        int32_t *mult, top, spans;
        ASSERT_EQ(N_kntdkm(k, &v, &mult, &top, ctx.get()), 0);
        std::vector<double> again;
        for (int i = 0; i <= top; ++i) again.insert(again.end(), mult[i], v[i]);
        EXPECT_EQ(again, std::vector<double>(k->U, k->U + k->m + 1));
        N_kntnsp(k, cur.p, &spans);
        EXPECT_EQ(spans, top);
    });
}

// Derivatives in u against central differences; in a knot that opens its
// run (knot side 1, moving left) or closes it (2, moving right) against
// one-sided differences that do not pass a neighbour.
TEST(Basis, DerivativesInUAndInAKnotMatchDifferences) {
    each_curve(2, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        const int16_t p = cur.p, K = int16_t(std::min(p + 1, 5));
        double *U = cur.knt->U;
        int32_t span, sa, sb;
        N_kntfsp(cur.knt, p, rng.uniform(0, 1), KW_RIGHT, &span);
        const double len = U[span + 1] - U[span], u = U[span] + rng.uniform(0.1, 0.9) * len, h = 1e-5 * len;
        Table D(K, p), A(K, p), B(K, p);
        ASSERT_EQ(N_kntadb(cur.knt, p, u, KW_LEFT, K, D.rows.data(), &span, ctx.get()), 0);
        ASSERT_EQ(N_kntadb(cur.knt, p, u + h, KW_LEFT, K, A.rows.data(), &sa, ctx.get()), 0);
        ASSERT_EQ(N_kntadb(cur.knt, p, u - h, KW_LEFT, K, B.rows.data(), &sb, ctx.get()), 0);
        for (int d = 1; d <= K; ++d) {
            double scale = 0.0, sum = 0.0;
            for (int j = 0; j <= p; ++j) scale = std::max(scale, std::fabs(D.rows[d][j]));
            for (int j = 0; j <= p; ++j) {
                EXPECT_NEAR(D.rows[d][j], (A.rows[d - 1][j] - B.rows[d - 1][j]) / (2 * h), 1e-5 * scale) << d;
                sum += D.rows[d][j];
            }
            EXPECT_NEAR(sum, 0.0, 1e-11 * scale);
            EXPECT_EQ(d > p, scale == 0.0);  // orders above p vanish
        }
        // The single function's derivatives: its column, or zero off the span.
        std::vector<double> one(K + 1);
        for (int i = std::max(0, span - p - 1); i <= std::min(span + 1, cur.pol->n); ++i) {
            ASSERT_EQ(N_kntbad(cur.knt, i, p, u, KW_LEFT, K, one.data(), ctx.get()), 0);
            for (int d = 0; d <= K; ++d) EXPECT_EQ(one[d], i < span - p || i > span ? 0.0 : D.rows[d][i - span + p]);
        }
        for (int j = p + 1; j <= cur.pol->n && p < 8; ++j)
            for (int16_t kside : {KW_RIGHT, KW_LEFT}) {
                const int dir = kside == KW_RIGHT ? -1 : 1;
                if (U[j] == U[j + dir] || std::count(U, U + cur.knt->m + 1, U[j]) >= p) continue;
                const double room = std::fabs(U[j + dir] - U[j]), x = rng.uniform(0, 1);
                const int16_t side = int16_t(rng.integer(1, 2));
                std::vector<double> dk(p + 2);
                ASSERT_EQ(N_kntadk(cur.knt, j, p, x, kside, side, dk.data(), ctx.get()), 0);
                for (int i = j - p - 1; i <= j; ++i) {
                    auto N = [&](double t) {
                        double v;
                        U[j] += t;
                        EXPECT_EQ(N_kntbas(cur.knt, i, p, x, side, &v, ctx.get()), 0);
                        U[j] -= t;
                        return v;
                    };
                    EXPECT_NEAR(dk[i - j + p + 1], one_sided(N, 1e-4 * room, dir), 1e-5 / room) << p << " " << j;
                }
                // Moving a knot keeps the partition of unity.
                EXPECT_NEAR(std::accumulate(dk.begin(), dk.end(), 0.0), 0.0, 1e-10 / room);
            }
        EXPECT_EQ(ctx.nodes(), 4);
    });
}

TEST(Basis, FailuresScratchAndNoMemory) {
    Context ctx;
    StorageStacks *stk = ctx.get();
    // A cubic with a double knot at 0.4 and a triple one at 0.7.
    double U[] = {0, 0, 0, 0, 0.4, 0.4, 0.7, 0.7, 0.7, 1, 1, 1, 1}, open[] = {0, 1, 2, 3, 4, 5}, x = -1, v[6];
    KnotVector k{12, U}, o{5, open};
    Table D(2, 3);
    int32_t span = -1, s;
    expect_failure(N_kntfsp(&k, 3, std::nextafter(1.0, 2.0), KW_RIGHT, &span), KW_EPARAM, "N_KNTFSP");
    expect_failure(N_kntfsm(&k, 3, 0.5, 3, &span, &s), KW_ECASE, "N_KNTFSM");
    expect_failure(N_kntfsp(&k, 29, 0.5, KW_RIGHT, &span), KW_EDEGREE, "N_KNTFSP");
    expect_failure(N_kntfsp(&k, 6, 0.5, KW_RIGHT, &span), KW_EKNOTS, "N_KNTFSP");
    expect_failure(N_kntalb(&k, 3, -1e-300, KW_RIGHT, v, &span), KW_EPARAM, "N_KNTALB");
    expect_failure(N_kntbas(&k, 9, 3, 0.5, KW_RIGHT, &x, stk), KW_ESIZE, "N_KNTBAS");
    expect_failure(N_kntbas(&k, 1, 3, 0.5, 0, &x, stk), KW_ECASE, "N_KNTBAS");
    expect_failure(N_kntbad(&k, -1, 3, 0.5, KW_LEFT, 2, v, stk), KW_ESIZE, "N_KNTBAD");
    expect_failure(N_kntadb(&k, 3, 0.5, 4, 2, D.rows.data(), &span, stk), KW_ECASE, "N_KNTFSP");
    expect_failure(N_kntbdk(&k, 3, 5, 3, 0.5, KW_RIGHT, KW_RIGHT, &x, stk), KW_EARG, "N_KNTBDK");  // not first of its run
    expect_failure(N_kntbdk(&k, 3, 4, 3, 0.5, KW_LEFT, KW_RIGHT, &x, stk), KW_EARG, "N_KNTBDK");   // not last
    expect_failure(N_kntbdk(&k, 3, 6, 3, 0.5, KW_RIGHT, KW_RIGHT, &x, stk), KW_EMULT, "N_KNTBDK");  // multiplicity p
    expect_failure(N_kntbdk(&k, 3, 3, 3, 0.5, KW_RIGHT, KW_RIGHT, &x, stk), KW_ESIZE, "N_KNTBDK");  // an end knot
    expect_failure(N_kntadk(&k, 8, 3, 0.5, KW_LEFT, KW_LEFT, v, stk), KW_EMULT, "N_KNTBDK");
    expect_failure(N_kntcnd(&k, 3, 9, &x), KW_ESIZE, "N_KNTCND");
    EXPECT_EQ(x + span + ctx.nodes(), -2);  // nothing written, nothing left
    // The innermost routine records a bad side but returns 0.
    E_clrerr();
    EXPECT_EQ(N_kntalb(&k, 3, 0.5, 9, v, &span), 0);
    EXPECT_EQ(E_errtyp(), KW_ECASE);
    // Node 0 is the first knot even where the vector is not clamped.
    ASSERT_EQ(N_kntcnd(&o, 2, 0, &x), 0);
    EXPECT_EQ(x, 0.0);
    // Scratch is killed, failing or not; the distinct knots come both or
    // none; the innermost routine allocates nothing.
    static double W[] = {0, 0, 0, 0, 0.2, 0.45, 0.45, 0.7, 1, 1, 1, 1};
    auto knots = [](StorageStacks *) { return KnotVector{11, W}; };
    double rows[4][4], *ders[4] = {rows[0], rows[1], rows[2], rows[3]}, *values;
    int32_t *mult, top;
    using Op = std::function<int16_t(KnotVector &, StorageStacks *)>;
    for (const Op &op : {Op([&](KnotVector &kv, StorageStacks *s) { return N_kntbas(&kv, 3, 3, 0.5, KW_RIGHT, &x, s); }),
                         Op([&](KnotVector &kv, StorageStacks *s) { return N_kntadb(&kv, 3, 0.5, KW_LEFT, 3, ders, &span, s); }),
                         Op([&](KnotVector &kv, StorageStacks *s) { return N_kntbad(&kv, 3, 3, 0.5, KW_LEFT, 3, v, s); }),
                         Op([&](KnotVector &kv, StorageStacks *s) { return N_kntbdk(&kv, 3, 4, 3, 0.5, KW_RIGHT, KW_RIGHT, &x, s); }),
                         Op([&](KnotVector &kv, StorageStacks *s) { return N_kntadk(&kv, 6, 3, 0.5, KW_LEFT, KW_RIGHT, v, s); })})
        EXPECT_FALSE(sweep(swept(knots, op)).empty());
    EXPECT_FALSE(sweep(swept(knots, [&](KnotVector &kv, StorageStacks *s) {
                     const int16_t status = N_kntdkm(&kv, &values, &mult, &top, s);
                     EXPECT_EQ(nodes(s), status ? 0 : 2);
                     return status;
                 }, false)).empty());
    KnotVector w{11, W};
    kw::fault::fail_at(1, true);
    EXPECT_EQ(N_kntalb(&w, 3, 0.3, KW_RIGHT, v, &span), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
}
