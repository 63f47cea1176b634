// Fault injection: every routine that allocates fails cleanly at every
// allocation, with code 15 from an allocator and nothing left behind.
#include <functional>
#include <string>

#include "core/alloc.hpp"
#include "support.hpp"

using namespace geomtest;

namespace {

// Runs op(stk) with the k-th allocation failing, k = 1, 2, ... until it
// succeeds without the fault firing; returns the number of failing runs.
// A failing run must give `failed` (a predicate answers 0) and code 15.
int sweep(const std::function<int16_t(StorageStacks *)> &op, int16_t failed = 1) {
    for (int k = 1; k < 1000; ++k) {
        StorageStacks stk;
        N_inurbs(&stk);
        E_clrerr();
        kw::fault::fail_at(k);
        const int16_t rc = op(&stk);
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        N_enurbs(&stk);
        if (!fired) {
            EXPECT_EQ(rc, 1 - failed);
            return k - 1;
        }
        EXPECT_EQ(rc, failed) << "allocation " << k;
        EXPECT_EQ(E_errtyp(), 15) << "allocation " << k;
        EXPECT_EQ(std::string(E_errnam()).rfind("S_GET", 0), 0u) << E_errnam();
    }
    ADD_FAILURE() << "never succeeded";
    return -1;
}

}  // namespace

TEST(FaultInjection, MatrixBuildersOnEmptyRecords) {
    const Point O = P3(0, 0, 0), X = P3(1, 0, 0), Y = P3(0, 1, 0);
    auto empty = [](StorageStacks *, auto build) {
        RealMatrix T;
        M_inirma(&T);
        return build(&T);
    };
    EXPECT_GT(sweep([&](StorageStacks *stk) { return empty(stk, [&](RealMatrix *T) { return G_tratrl(O, X, T, stk); }); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *stk) { return empty(stk, [&](RealMatrix *T) { return G_travec(O, X, Y, Y, T, stk); }); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *stk) { return empty(stk, [&](RealMatrix *T) { return G_tragnr(O, X, 30, T, stk); }); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *stk) { return empty(stk, [&](RealMatrix *T) { return G_traort(O, X, Y, T, stk); }); }), 0);
}

TEST(FaultInjection, FitsOnTheirPrivateStacks) {
    // Private stacks: the caller's context is never used, so the sweep's
    // emptiness check is the leak checker's.
    Point P[7];
    for (int i = 0; i < 7; ++i) P[i] = P3(std::cos(i), std::sin(i), 0.1 * (i % 2));
    Point C{}, N{};
    Line L{};
    Plane pl{};
    ControlPoint Pw[7];
    for (int i = 0; i < 7; ++i) A_poicpt(P[i], &Pw[i]);
    double r = 0, mean = 0, max = 0;
    EXPECT_GT(sweep([&](StorageStacks *) { return G_lsqdpl(P, 6, &C, &N, &mean, &max); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return G_lsqln3(P, 6, &L, &mean, &max); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return G_lsqpln(Pw, 6, &pl, &mean, &max); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return G_mxapln(P, 6, &pl, &max); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return G_lsqcir(P, 6, &C, &N, &r, &mean, &max); }), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return G_lsqsph(P, 6, &C, &r, &mean, &max); }), 0);
}

TEST(FaultInjection, PredicatesAnswerNoWhenRefusedScratch) {
    Point ring[6], ball[6];
    ControlPoint Pw[6];
    for (int i = 0; i < 6; ++i) {
        ring[i] = P3(std::cos(i), std::sin(i), 1);
        ball[i] = P3(std::cos(i) * std::sin(i + 0.5), std::sin(i) * std::sin(i + 0.5), std::cos(i + 0.5));
        A_poicpt(ring[i], &Pw[i]);
    }
    double U[8] = {0, 0, 1, 2, 3, 4, 5, 5};
    ControlPolygon pol{5, Pw};
    KnotVector knt{7, U};
    Curve cur{&pol, 1, &knt};
    ControlPoint *rows[2] = {Pw, Pw + 3};
    ControlNet net{1, 2, rows};
    KnotVector ku{3, U + 1}, kv{4, U + 1};
    U[1] = 0;
    Surface sur{&net, 1, 1, &ku, &kv};
    Point N{};
    EXPECT_GT(sweep([&](StorageStacks *) { return U_isp1pl(ring, 5, 1e-9); }, 0), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return U_isp1ci(ring, 5, 1e-9); }, 0), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return U_isp1sp(ball, 5, 1e-9); }, 0), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return U_iscurf(&cur, 1e-9, &N); }, 0), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return U_issurf(&sur, 1e-9, &N); }, 0), 0);
    EXPECT_GT(sweep([&](StorageStacks *) { return U_issflt(&sur, 1e-9); }, 0), 0);
}
