// Fault injection: every routine that allocates fails cleanly at every
// allocation, with code 15 from an allocator and nothing left behind.
#include <functional>
#include <string>

#include "core/alloc.hpp"
#include "support.hpp"

using namespace geomtest;

namespace {

// Runs op(stk) with the k-th allocation failing, for k = 1, 2, ... until it
// succeeds without the fault firing. Returns the number of failing runs.
int sweep(const std::function<int16_t(StorageStacks *)> &op) {
    for (int k = 1; k < 1000; ++k) {
        StorageStacks stk;
        N_inurbs(&stk);
        E_clrerr();
        kw::fault::fail_at(k);
        const int16_t rc = op(&stk);
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        if (!fired) {
            EXPECT_EQ(rc, 0);
            N_enurbs(&stk);
            return k - 1;
        }
        EXPECT_EQ(rc, 1) << "allocation " << k;
        EXPECT_EQ(E_errtyp(), 15) << "allocation " << k;
        EXPECT_EQ(std::string(E_errnam()).rfind("S_GET", 0), 0u) << E_errnam();
        N_enurbs(&stk);
        for (StackNode *head : stk.head) EXPECT_EQ(head, nullptr);
    }
    ADD_FAILURE() << "never succeeded";
    return -1;
}

}  // namespace

TEST(FaultInjection, MatrixBuildersOnEmptyRecords) {
    const Point O = P3(0, 0, 0), X = P3(1, 0, 0), Y = P3(0, 1, 0);
    EXPECT_GT(sweep([&](StorageStacks *stk) {
                  RealMatrix T;
                  M_inirma(&T);
                  return G_tratrl(O, X, &T, stk);
              }),
              0);
    EXPECT_GT(sweep([&](StorageStacks *stk) {
                  RealMatrix T;
                  M_inirma(&T);
                  return G_travec(O, X, Y, Y, &T, stk);
              }),
              0);
    EXPECT_GT(sweep([&](StorageStacks *stk) {
                  RealMatrix T;
                  M_inirma(&T);
                  return G_tragnr(O, X, 30.0, &T, stk);
              }),
              0);
    EXPECT_GT(sweep([&](StorageStacks *stk) {
                  RealMatrix T;
                  M_inirma(&T);
                  return G_traort(O, X, Y, &T, stk);
              }),
              0);
}
