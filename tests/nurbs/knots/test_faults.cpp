// Every allocation of the knot routines made to fail in turn: status 1,
// code 15 from the allocator, and the caller's context as it was (scratch
// killed on the failing path too). The innermost routine allocates nothing.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

Knots cubic() { return make_knots({0, 0, 0, 0, 0.2, 0.45, 0.45, 0.7, 1, 1, 1, 1}, 3); }

// Runs op on fresh cubic knots under every failing allocation; op must kill
// whatever it took from the context, failing or not.
template <class Op>
int sweep_scratch(Op op) {
    return sweep_allocations([](Context &) { return cubic(); },
                             [&](Knots &k, Context &ctx) {
                                 const int before = ctx.nodes();
                                 const int16_t status = op(k.knt, ctx.get());
                                 EXPECT_EQ(ctx.nodes(), before);
                                 return status;
                             });
}

}  // namespace

TEST(KnotFaults, ScratchAllocationsFailCleanly) {
    double value, d[5], one[4];
    double rows[4][4], *ders[4] = {rows[0], rows[1], rows[2], rows[3]};
    int32_t span;
    EXPECT_GT(sweep_scratch([&](const KnotVector &k, StorageStacks *stk) {
                  return N_kntbas(&k, 3, 3, 0.5, KW_RIGHT, &value, stk);
              }), 0);
    EXPECT_GT(sweep_scratch([&](const KnotVector &k, StorageStacks *stk) {
                  return N_kntadb(&k, 3, 0.5, KW_LEFT, 3, ders, &span, stk);
              }), 3);
    EXPECT_GT(sweep_scratch([&](const KnotVector &k, StorageStacks *stk) {
                  return N_kntbad(&k, 3, 3, 0.5, KW_LEFT, 3, one, stk);
              }), 4);
    EXPECT_GT(sweep_scratch([&](const KnotVector &k, StorageStacks *stk) {
                  return N_kntbdk(&k, 3, 4, 3, 0.5, KW_RIGHT, KW_RIGHT, &value, stk);
              }), 1);
    EXPECT_GT(sweep_scratch([&](const KnotVector &k, StorageStacks *stk) {
                  return N_kntadk(&k, 6, 3, 0.5, KW_LEFT, KW_RIGHT, d, stk);
              }), 4);
}

TEST(KnotFaults, DistinctKnotsFailWithoutResults) {
    sweep_allocations([](Context &) { return cubic(); },
                      [](Knots &k, Context &ctx) {
                          double *values = nullptr;
                          int32_t *mult = nullptr, top = -1;
                          const int16_t status = N_kntdkm(&k.knt, &values, &mult, &top, ctx.get());
                          EXPECT_EQ(ctx.nodes(), status ? 0 : 2);
                          if (status) EXPECT_EQ(values, nullptr);
                          return status;
                      });
}

TEST(KnotFaults, RationalKnotDerivativeFailsCleanly) {
    sweep_allocations(
        [](Context &ctx) {
            Rng rng(41);
            return random_curve(rng, {3, 7, true, false, 1}, ctx);
        },
        [](Curve &cur, Context &ctx) {
            const int before = ctx.nodes();
            double dR[8];
            const int16_t status = N_kntakr(&cur, 5, 0.5, KW_RIGHT, KW_LEFT, dR, ctx.get());
            EXPECT_EQ(ctx.nodes(), before);
            return status;
        });
}

TEST(KnotFaults, InnermostRoutineNeedsNoMemory) {
    Knots k = cubic();
    double N[4];
    int32_t span;
    kw::fault::fail_at(1, true);
    const int16_t status = N_kntalb(&k.knt, 3, 0.3, KW_RIGHT, N, &span);
    const bool fired = kw::fault::fired();
    kw::fault::fail_at(0);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(fired);
    EXPECT_NEAR(N[0] + N[1] + N[2] + N[3], 1.0, 1e-15);
}
