// Knot insertion and splitting leave the curve where it was: every point
// and derivative of the result matches the input, on every shape, at random
// places and at existing knots of every multiplicity.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// Parameters to compare at: random ones and the knots of both curves.
std::vector<double> samples(Rng &rng, const Curve &a, const Curve &b, double lo, double hi) {
    std::vector<double> us;
    for (const Curve *c : {&a, &b})
        for (int i = 0; i <= c->knt->m; ++i)
            if (c->knt->U[i] >= lo && c->knt->U[i] <= hi) us.push_back(c->knt->U[i]);
    for (int t = 0; t < 16; ++t) us.push_back(rng.uniform(lo, hi));
    return us;
}

// b evaluates like a over [lo, hi] from both sides, points to 1e-12 and
// derivatives up to the second to 1e-9, relative.
void expect_same_curve(const Curve &a, const Curve &b, double lo, double hi, Rng &rng) {
    for (double u : samples(rng, a, b, lo, hi))
        for (int16_t side : {KW_RIGHT, KW_LEFT}) {
            if ((u == lo && side == KW_LEFT && lo != a.knt->U[0]) ||
                (u == hi && side == KW_RIGHT && hi != a.knt->U[a.knt->m]))
                continue;  // the side that looks past the piece's end
            Point A, B, DA[3], DB[3];
            ASSERT_EQ(N_curevn(&a, u, side, &A), 0);
            ASSERT_EQ(N_curevn(&b, u, side, &B), 0);
            EXPECT_POINT_NEAR(A, B, 1e-12) << " u " << u << " side " << side;
            ASSERT_EQ(N_curder(&a, u, side, 2, DA), 0);
            ASSERT_EQ(N_curder(&b, u, side, 2, DB), 0);
            for (int d = 1; d <= 2; ++d) EXPECT_POINT_NEAR(DA[d], DB[d], 1e-9) << " order " << d;
        }
}

// Places to cut: random interior parameters and every distinct interior knot.
std::vector<double> cuts(Rng &rng, const Curve &cur) {
    std::vector<double> us;
    const double *U = cur.knt->U;
    for (int i = cur.p + 1; i < cur.knt->m - cur.p; ++i)
        if (U[i] != U[i - 1]) us.push_back(U[i]);
    for (int t = 0; t < 2; ++t) us.push_back(rng.uniform(U[0], U[cur.knt->m]));
    return us;
}

int multiplicity(const Curve &c, double u) {
    return int(std::count(c.knt->U, c.knt->U + c.knt->m + 1, u));
}

}  // namespace

TEST(Insertion, KeepsTheCurveOnEveryShape) {
    each_curve(81, 2, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        for (double u : cuts(rng, cur)) {
            const int s = multiplicity(cur, u);
            for (int r : {0, 1, sh.p - s}) {
                if (r < 0 || r > sh.p - s) continue;
                Curve out;
                U_inicur(&out);
                ASSERT_EQ(N_toocki(&cur, u, r, &out, ctx.get(), ctx.get()), 0);
                EXPECT_EQ(out.pol->n, cur.pol->n + r);
                EXPECT_EQ(out.knt->m, cur.knt->m + r);
                EXPECT_EQ(multiplicity(out, u), s + r);
                EXPECT_EQ(E_curinp(&out, name("TEST")), 0);
                expect_same_curve(cur, out, 0.0, 1.0, rng);
                U_kilcur(&out, ctx.get());
            }
        }
    });
}

TEST(Insertion, InPlaceReleasesTheOldStorage) {
    each_curve(82, 1, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        Curve copy;
        U_inicur(&copy);
        ASSERT_EQ(U_curcop(&cur, &copy, ctx.get()), 0);
        const int before = ctx.nodes();
        ControlPoint *old = cur.pol->Pw;
        const double u = rng.uniform(0.05, 0.95);
        const int r = std::max(1, sh.p - multiplicity(cur, u));
        ASSERT_EQ(N_toocki(&cur, u, r, &cur, ctx.get(), ctx.get()), 0);
        EXPECT_NE(cur.pol->Pw, old);
        EXPECT_EQ(ctx.nodes(), before);  // four parts killed, four made
        EXPECT_EQ(cur.pol->n, copy.pol->n + r);
        expect_same_curve(copy, cur, 0.0, 1.0, rng);
        // Nothing to insert: the curve is left as it is.
        ControlPoint *now = cur.pol->Pw;
        ASSERT_EQ(N_toocki(&cur, u, 0, &cur, ctx.get(), ctx.get()), 0);
        EXPECT_EQ(cur.pol->Pw, now);
        EXPECT_EQ(ctx.nodes(), before);
    });
}

TEST(Insertion, ZeroTimesCopiesBitForBit) {
    Rng rng(83);
    Context ctx;
    Curve cur = random_curve(rng, {4, 9, true, true, 0}, ctx), out;
    U_inicur(&out);
    ASSERT_EQ(N_toocki(&cur, 0.5, 0, &out, ctx.get(), ctx.get()), 0);
    ASSERT_EQ(out.pol->n, cur.pol->n);
    EXPECT_EQ(std::memcmp(out.pol->Pw, cur.pol->Pw, sizeof(ControlPoint) * (cur.pol->n + 1)), 0);
    EXPECT_EQ(std::memcmp(out.knt->U, cur.knt->U, sizeof(double) * (cur.knt->m + 1)), 0);
}

TEST(Insertion, RefusesWhatWouldBreakTheCurve) {
    Context ctx;
    // A cubic with a double knot at 0.5.
    std::vector<double> U = {0, 0, 0, 0, 0.25, 0.5, 0.5, 0.75, 1, 1, 1, 1};
    std::vector<ControlPoint> Pw(8);
    for (int i = 0; i < 8; ++i) Pw[i] = ControlPoint{double(i), double(i % 3), KW_PLANAR, KW_NONRATIONAL};
    Curve cur, out, small;
    ASSERT_EQ(U_makcu2(&cur, Pw.data(), 7, 3, U.data(), 11, ctx.get()), 0);
    U_inicur(&out);
    auto refused = [&](double u, int r, Curve *to, int code) {
        E_clrerr();
        EXPECT_EQ(N_toocki(&cur, u, r, to, ctx.get(), ctx.get()), 1) << u << " " << r;
        EXPECT_EQ(E_errtyp(), code);
        EXPECT_STREQ(E_errnam(), "N_TOOCKI");
    };
    refused(0.5, 2, &out, KW_EPARAM);  // multiplicity 4 > p
    refused(0.5, -1, &out, KW_EPARAM);
    refused(0.0, 1, &out, KW_EPARAM);  // the ends are refused
    refused(1.0, 1, &out, KW_EPARAM);
    refused(std::nextafter(1.0, 2.0), 1, &out, KW_EPARAM);
    EXPECT_TRUE(U_iscurn(&out));  // nothing allocated for a refused call
    // A result record too small for the refined curve.
    U_inicur(&small);
    ASSERT_EQ(U_getcur(&small, 7, 3, 11, ctx.get()), 0);
    refused(0.3, 1, &small, KW_ESTORAGE);
    // r = p - s is the most: the knot reaches multiplicity p.
    ASSERT_EQ(N_toocki(&cur, 0.5, 1, &out, ctx.get(), ctx.get()), 0);
    EXPECT_EQ(multiplicity(out, 0.5), 3);
    EXPECT_EQ(cur.pol->Pw, Pw.data());  // the input untouched throughout
}

TEST(Splitting, PiecesEvaluateLikeTheCurve) {
    each_curve(84, 2, [](const Shape &sh, Curve &cur, Context &ctx, Rng &rng) {
        for (double u : cuts(rng, cur)) {
            Curve left, right;
            U_inicur(&left);
            U_inicur(&right);
            ASSERT_EQ(N_toocsp(&cur, u, &left, &right, ctx.get()), 0);
            EXPECT_EQ(E_curinp(&left, name("TEST")), 0);
            EXPECT_EQ(E_curinp(&right, name("TEST")), 0);
            EXPECT_EQ(left.knt->U[left.knt->m], u);
            EXPECT_EQ(right.knt->U[0], u);
            EXPECT_EQ(multiplicity(left, u), sh.p + 1);
            EXPECT_EQ(multiplicity(right, u), sh.p + 1);
            EXPECT_EQ(left.pol->n + right.pol->n, cur.pol->n + sh.p - multiplicity(cur, u));
            // The shared end is the curve point at u.
            Point C, L, R;
            ASSERT_EQ(N_curevn(&cur, u, KW_RIGHT, &C), 0);
            A_euclid(left.pol->Pw[left.pol->n], &L);
            A_euclid(right.pol->Pw[0], &R);
            EXPECT_POINT_NEAR(L, C, 1e-12);
            EXPECT_EQ(std::memcmp(&L, &R, sizeof L), 0);
            expect_same_curve(cur, left, 0.0, u, rng);
            expect_same_curve(cur, right, u, 1.0, rng);
        }
    });
}

TEST(Splitting, AtAKnotOfMultiplicityPTheControlPointsStay) {
    Rng rng(85);
    Context ctx;
    Curve cur = random_curve(rng, {3, 8, true, false, 1}, ctx);
    double *U = cur.knt->U;  // interior knots at indices 4..8
    U[5] = U[6] = U[4];
    const double u = U[4];
    Curve left, right;
    U_inicur(&left);
    U_inicur(&right);
    ASSERT_EQ(N_toocsp(&cur, u, &left, &right, ctx.get()), 0);
    ASSERT_EQ(left.pol->n, 3);
    ASSERT_EQ(right.pol->n, 5);
    EXPECT_EQ(std::memcmp(left.pol->Pw, cur.pol->Pw, 4 * sizeof(ControlPoint)), 0);
    EXPECT_EQ(std::memcmp(right.pol->Pw, cur.pol->Pw + 3, 6 * sizeof(ControlPoint)), 0);
}

TEST(Splitting, RefusesEndsSharedRecordsAndSmallResults) {
    Rng rng(86);
    Context ctx;
    Curve cur = random_curve(rng, {2, 5, false, false, 0}, ctx), left, right, tiny;
    U_inicur(&left);
    U_inicur(&right);
    auto refused = [&](double u, Curve *l, Curve *r, int code) {
        E_clrerr();
        EXPECT_EQ(N_toocsp(&cur, u, l, r, ctx.get()), 1);
        EXPECT_EQ(E_errtyp(), code);
        EXPECT_STREQ(E_errnam(), "N_TOOCSP");
    };
    refused(0.0, &left, &right, KW_EPARAM);
    refused(1.0, &left, &right, KW_EPARAM);
    refused(0.5, &left, &left, KW_EARG);
    refused(0.5, &cur, &right, KW_EARG);
    ASSERT_EQ(U_getcur(&tiny, 1, 2, 4, ctx.get()), 0);
    refused(0.5, &left, &tiny, KW_ESTORAGE);
}

// ---- Allocation failures ------------------------------------------------------

namespace {

auto quartic(Context &ctx) {
    Rng rng(87);
    return random_curve(rng, {4, 9, true, false, 0}, ctx);
}

}  // namespace

TEST(ToolFaults, InsertionIntoANewRecord) {
    EXPECT_GT(sweep_allocations(quartic, [](Curve &cur, Context &ctx) {
                  Curve out;
                  U_inicur(&out);
                  return N_toocki(&cur, 0.37, 2, &out, ctx.get(), ctx.get());
              }), 2);
}

TEST(ToolFaults, InsertionInPlaceLeavesTheCurveWhole) {
    EXPECT_GT(sweep_allocations(quartic, [](Curve &cur, Context &ctx) {
                  const Curve before = cur;
                  ControlPolygon pol = *cur.pol;
                  const int16_t status = N_toocki(&cur, 0.37, 2, &cur, ctx.get(), ctx.get());
                  if (status) {
                      EXPECT_EQ(std::memcmp(&cur, &before, sizeof cur), 0);
                      EXPECT_EQ(cur.pol->Pw, pol.Pw);
                      EXPECT_EQ(cur.pol->n, pol.n);
                  }
                  return status;
              }), 2);
}

TEST(ToolFaults, Splitting) {
    EXPECT_GT(sweep_allocations(quartic, [](Curve &cur, Context &ctx) {
                  Curve left, right;
                  U_inicur(&left);
                  U_inicur(&right);
                  return N_toocsp(&cur, 0.37, &left, &right, ctx.get());
              }), 4);
}
