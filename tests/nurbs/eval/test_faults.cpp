// Allocation failures in the evaluators: those that take scratch fail with
// code 15 at every allocation and leave the context as it was; the point and
// derivative evaluators need no memory at all.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// A rational or polynomial 3-D cubic with simple knots.
auto cubic(bool rational) {
    return [rational](Context &ctx) {
        Rng rng(71);
        return random_curve(rng, {3, 8, rational, false, 1}, ctx);
    };
}

// op(cur, stk) under every failing allocation; scratch is killed either way.
template <class Op>
void sweep_curve(bool rational, Op op) {
    const int points = sweep_allocations(cubic(rational), [&](Curve &cur, Context &ctx) {
        const int before = ctx.nodes();
        const int16_t status = op(cur, ctx.get());
        EXPECT_EQ(ctx.nodes(), before);
        return status;
    });
    EXPECT_GT(points, 0);
}

}  // namespace

TEST(EvalFaults, ScratchAllocationsFailCleanly) {
    for (bool rational : {false, true}) {
        ControlPoint CKw[6];
        Point dC;
        sweep_curve(rational, [&](Curve &c, StorageStacks *stk) { return N_currdr(&c, 0.4, KW_LEFT, 5, CKw, stk); });
        sweep_curve(rational, [&](Curve &c, StorageStacks *stk) {
            return N_curdrk(&c, 5, 0.4, KW_RIGHT, KW_LEFT, &dC, stk);
        });
    }
}

TEST(EvalFaults, CurveFunctionScratchFailsCleanly) {
    auto function = [](Context &ctx) {
        CurveFunction f;
        U_inicfn(&f);
        EXPECT_EQ(U_cfnchk(&f, 5, 2, 8, name("TEST"), ctx.get()), 0);
        const double U[9] = {0, 0, 0, 0.2, 0.4, 0.6, 1, 1, 1};
        std::copy(U, U + 9, f.knt->U);
        for (int i = 0; i <= 5; ++i) f.cvl->v[i] = 1.0 + i;
        return f;
    };
    double ders[4], df;
    sweep_allocations(function, [&](CurveFunction &f, Context &ctx) {
        return N_cfnder(&f, 0.5, KW_RIGHT, 3, ders, ctx.get());
    });
    sweep_allocations(function, [&](CurveFunction &f, Context &ctx) {
        return N_cfndrk(&f, 4, 0.5, KW_RIGHT, KW_RIGHT, &df, ctx.get());
    });
}

TEST(EvalFaults, PointAndDerivativeEvaluatorsNeedNoMemory) {
    for (bool rational : {false, true}) {
        Context ctx;
        Curve cur = cubic(rational)(ctx);
        Point C, CK[6], ref[6];
        ControlPoint Cw;
        ASSERT_EQ(N_curder(&cur, 0.3, KW_RIGHT, 5, ref), 0);
        kw::fault::fail_at(1, true);
        const int16_t a = N_curevn(&cur, 0.3, KW_RIGHT, &C);
        const int16_t b = N_curevr(&cur, 0.3, KW_LEFT, &Cw);
        const int16_t c = N_curder(&cur, 0.3, KW_RIGHT, 5, CK);
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        EXPECT_EQ(a, 0);
        EXPECT_EQ(b, 0);
        EXPECT_EQ(c, 0);
        EXPECT_FALSE(fired);
        EXPECT_EQ(std::memcmp(CK, ref, sizeof ref), 0);
        EXPECT_LE(dist(C, ref[0]), 1e-14);
    }
}
