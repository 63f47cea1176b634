// Knot insertion and splitting leave the curve where it was, on every shape,
// at random places and at existing knots of every multiplicity.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

int multiplicity(const Curve &c, double u) { return int(std::count(c.knt->U, c.knt->U + c.knt->m + 1, u)); }

// b evaluates like a over [lo, hi] (points to 1e-12, tangents to 1e-9,
// relative) at a's knots and at random places, from each side that stays
// inside the piece.
void expect_same(const Curve &a, const Curve &b, double lo, double hi, Rng &rng) {
    std::vector<double> us(a.knt->U, a.knt->U + a.knt->m + 1);
    for (int t = 0; t < 10; ++t) us.push_back(rng.uniform(lo, hi));
    for (double u : us)
        for (int16_t side : {KW_RIGHT, KW_LEFT}) {
            if (u < lo || u > hi || (u == lo && lo > 0 && side == KW_LEFT) || (u == hi && hi < 1 && side == KW_RIGHT)) continue;
            Point A[2], B[2];
            ASSERT_EQ(N_curder(&a, u, side, 1, A) + N_curder(&b, u, side, 1, B), 0);
            EXPECT_CLOSE(A[0], B[0], 1e-12) << "u " << u;
            EXPECT_CLOSE(A[1], B[1], 1e-9) << "u " << u;
        }
}

// Two random interior parameters and every distinct interior knot.
std::vector<double> cuts(Rng &rng, const Curve &cur) {
    std::vector<double> us{rng.uniform(0, 1), rng.uniform(0, 1)};
    for (int i = cur.p + 1; i <= cur.pol->n; ++i)
        if (cur.knt->U[i] != cur.knt->U[i - 1]) us.push_back(cur.knt->U[i]);
    return us;
}

}  // namespace

TEST(Tools, InsertionKeepsTheCurveIntoANewRecordAndInPlace) {
    each_curve(21, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        for (double u : cuts(rng, cur))
            for (int r : {0, 1, cur.p - multiplicity(cur, u)}) {
                if (r > cur.p - multiplicity(cur, u)) continue;
                Curve out;
                U_inicur(&out);
                ASSERT_EQ(N_toocki(&cur, u, r, &out, ctx.get(), ctx.get()), 0);
                EXPECT_EQ(multiplicity(out, u), multiplicity(cur, u) + r);
                EXPECT_EQ(E_curinp(&out, name()), 0);
                expect_same(cur, out, 0.0, 1.0, rng);
                U_kilcur(&out, ctx.get());
            }
        // In place: the old parts are killed on the curve's context.
        Curve copy;
        U_inicur(&copy);
        ASSERT_EQ(U_curcop(&cur, &copy, ctx.get()), 0);
        const int nodes = ctx.nodes();
        const double u = rng.uniform(0.05, 0.95);
        ASSERT_EQ(N_toocki(&cur, u, std::max(1, cur.p - multiplicity(cur, u)), &cur, ctx.get(), ctx.get()), 0);
        EXPECT_EQ(ctx.nodes(), nodes);
        EXPECT_NE(cur.pol->Pw, copy.pol->Pw);
        expect_same(copy, cur, 0.0, 1.0, rng);
    });
}

TEST(Tools, SplittingGivesPiecesThatMeetOnTheCurve) {
    each_curve(23, 1, [](Curve &cur, Context &ctx, Rng &rng) {
        for (double u : cuts(rng, cur)) {
            Curve left, right;
            U_inicur(&left);
            U_inicur(&right);
            ASSERT_EQ(N_toocsp(&cur, u, &left, &right, ctx.get()), 0);
            EXPECT_EQ(E_curinp(&left, name()) + E_curinp(&right, name()), 0);
            EXPECT_EQ(multiplicity(left, u) + multiplicity(right, u), 2 * cur.p + 2);
            Point C, L = cartesian(left.pol->Pw[left.pol->n]), R = cartesian(right.pol->Pw[0]);
            ASSERT_EQ(N_curevn(&cur, u, KW_RIGHT, &C), 0);
            EXPECT_CLOSE(L, C, 1e-12);
            EXPECT_EQ(std::memcmp(&L, &R, sizeof L), 0);
            if (multiplicity(cur, u) == cur.p)  // nothing to insert: the points stay
                EXPECT_EQ(std::memcmp(left.pol->Pw, cur.pol->Pw, sizeof(ControlPoint) * (left.pol->n + 1)), 0);
            expect_same(cur, left, 0.0, u, rng);
            expect_same(cur, right, u, 1.0, rng);
        }
    });
}

TEST(Tools, RefusalsAndAllocationFailuresLeaveTheCurveWhole) {
    auto quartic = [](StorageStacks *stk) {
        Rng rng{std::mt19937_64(25)};
        return random_curve(rng, 4, 9, true, false, 1, stk);
    };
    Context ctx;
    StorageStacks *stk = ctx.get();
    Curve cur = quartic(stk), out, small, left, right;
    const double u = cur.knt->U[6];  // a simple knot
    for (Curve *c : {&out, &left, &right}) U_inicur(c);
    ASSERT_EQ(U_getcur(&small, 4, 3, 8, stk), 0);
    expect_failure(N_toocki(&cur, u, 4, &out, stk, stk), KW_EPARAM, "N_TOOCKI");  // beyond multiplicity p
    expect_failure(N_toocki(&cur, u, -1, &out, stk, stk), KW_EPARAM, "N_TOOCKI");
    expect_failure(N_toocki(&cur, 1.0, 1, &cur, stk, stk), KW_EPARAM, "N_TOOCKI");
    expect_failure(N_toocki(&cur, 0.5, 1, &small, stk, stk), KW_ESTORAGE, "N_TOOCKI");
    expect_failure(N_toocsp(&cur, 0.0, &left, &right, stk), KW_EPARAM, "N_TOOCSP");
    expect_failure(N_toocsp(&cur, 0.5, &left, &left, stk), KW_EARG, "N_TOOCSP");
    expect_failure(N_toocsp(&cur, 0.5, &left, &small, stk), KW_ESTORAGE, "N_TOOCSP");
    EXPECT_TRUE(U_iscurn(&out));
    ASSERT_EQ(N_toocki(&cur, u, 3, &out, stk, stk), 0);  // r = p - s: multiplicity p
    for (bool in_place : {false, true})
        EXPECT_GT(sweep(swept(quartic, [&, in_place](Curve &c, StorageStacks *s) {
                      const Curve before = c;
                      U_inicur(&out);
                      const int16_t status = N_toocki(&c, 0.37, 2, in_place ? &c : &out, s, s);
                      if (status) EXPECT_EQ(std::memcmp(&c, &before, sizeof c), 0);
                      return status;
                  }, false)).size(), 2u);
    EXPECT_GT(sweep(swept(quartic, [&](Curve &c, StorageStacks *s) {
                  U_inicur(&left);
                  U_inicur(&right);
                  return N_toocsp(&c, 0.37, &left, &right, s);
              }, false)).size(), 4u);
}
