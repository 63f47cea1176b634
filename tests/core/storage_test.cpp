// Storage contexts: which list holds what, kills, resizes, emptying, printing.
#include <functional>

#include "core/support.hpp"

namespace {

using namespace kwtest;
// Row pointers go on the 2-D list and address one block on the 1-D list.
TEST(Allocators, TwoDimensionalArraysAreRowsIntoOneBlock) {
    kw::LocalStacks stk;
    double **a = S_getr2d(2, 3, stk.get());
    EXPECT_EQ(stk.get()->head[KW_LIST_R2D]->block, a);
    EXPECT_EQ(stk.get()->head[KW_LIST_R1D]->block, a[0]);
    for (int i = 0; i <= 2; ++i) EXPECT_EQ(a[i], a[0] + 4 * i);
    double ***b = S_getr3d(1, 2, 3, stk.get());
    EXPECT_EQ(&b[1][2][3] - &b[0][0][0], 23);
    EXPECT_EQ(stk.get()->head[KW_LIST_R3D]->block, b);
    Point **v = S_getp2v(2, std::array<int32_t, 3>{2, 0, 4}.data(), stk.get());
    EXPECT_EQ(v[1] - v[0], 3);
    EXPECT_EQ(v[2] - v[1], 1);
    Curve **c = S_getcu1(1, 1, stk.get());
    EXPECT_TRUE(U_iscurn(c[0]) && U_iscurn(c[1]) && c[0] != c[1]);
}

// A highest index of 0 is one element; a negative one is refused with
// code 14 under the allocator's name and leaves nothing behind.
TEST(Allocators, CountsAreHighestIndices) {
    kw::LocalStacks stk;
    double *one = S_getr1d(0, stk.get());
    ASSERT_NE(one, nullptr);
    one[0] = 1.0;
    double **a = S_getr2d(0, 0, stk.get());
    ASSERT_NE(a, nullptr);
    a[0][0] = 1.0;
    kw::LocalStacks bad;
    static const int32_t neg[1] = {-1};
    const std::pair<const char *, std::function<const void *(StorageStacks *)>> table[] = {
        {"S_GETR1D", [](StorageStacks *s) { return (const void *)S_getr1d(-1, s); }},
        {"S_GETR2D", [](StorageStacks *s) { return (const void *)S_getr2d(-1, 0, s); }},
        {"S_GETP2D", [](StorageStacks *s) { return (const void *)S_getp2d(0, -1, s); }},
        {"S_GETR3D", [](StorageStacks *s) { return (const void *)S_getr3d(0, 0, -1, s); }},
        {"S_GETR4D", [](StorageStacks *s) { return (const void *)S_getr4d(0, -1, 0, 0, s); }},
        {"S_GETP2V", [](StorageStacks *s) { return (const void *)S_getp2v(0, neg, s); }},
        {"S_GETKN2", [](StorageStacks *s) { return (const void *)S_getkn2(3, -1, s); }},
    };
    for (const auto &[name, run] : table) {
        E_clrerr();
        EXPECT_EQ(run(bad.get()), nullptr) << name;
        EXPECT_TRUE(Recorded(KW_EARG, name));
        EXPECT_TRUE(all_empty(bad.get())) << name;
    }
}

TEST(Kills, FreeExactlyTheBlockAskedFor) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    double *a = S_getr1d(1, s), *b = S_getr1d(1, s), *c = S_getr1d(1, s);
    ControlPoint *P = S_getc1d(1, s);
    double local = 0.0;
    U_kilr1d(&local, s);                     // not on any list
    U_kilr1d(reinterpret_cast<double *>(P), s);  // on another list
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_R1D, 3}, {KW_LIST_C1D, 1}}));
    U_kilr1d(b, s);  // from the middle of the list
    U_kilr1d(b, s);  // a second kill finds nothing
    EXPECT_TRUE(holds(s, KW_LIST_R1D, a) && holds(s, KW_LIST_R1D, c) && !holds(s, KW_LIST_R1D, b));
    U_kilr1d(c, s);  // the head
    U_kilr1d(a, s);  // the last
    U_kilc1d(P, s);
    EXPECT_TRUE(all_empty(s));
}

// Multi-level kills free every block of the object; record kills free the
// record's arrays; a Curve record outlives U_kilcur until the context empties.
TEST(Kills, TakeWholeObjects) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    const std::pair<const char *, std::function<void()>> table[] = {
        {"U_kilr2d", [s] { U_kilr2d(S_getr2d(2, 2, s), s); }},
        {"U_kilc2d", [s] { U_kilc2d(S_getc2d(2, 2, s), s); }},
        {"U_kili2p", [s] { U_kili2p(S_geti2p(2, 2, s), s); }},
        {"U_kili1p", [s] { U_kili1p(S_geti1p(2, s), s); }},
        {"U_kilr3d", [s] { U_kilr3d(S_getr3d(1, 2, 3, s), s); }},
        {"U_kilknt", [s] { U_kilknt(S_getknt(4, s), s); }},
        {"U_kilpol", [s] { U_kilpol(S_getpol(4, s), s); }},
        {"U_kilnet", [s] { U_kilnet(S_getnet(2, 4, s), s); }},
        {"U_kilsvl", [s] { U_kilsvl(S_getsvs(2, 4, s), s); }},
    };
    for (const auto &[name, run] : table) {
        run();
        EXPECT_TRUE(all_empty(s)) << name;
    }
    U_kilcur(S_getcur(3, 2, 6, s), s);
    U_kilcfn(S_getcfn(3, 2, 6, s), s);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_CUR, 1}, {KW_LIST_CFN, 1}}));
    U_kilsur(S_getsur(1, 2, 1, 1, 3, 4, s), s);
    U_kilsfn(S_getsfn(1, 2, 1, 1, 3, 4, s), s);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_CUR, 1}, {KW_LIST_CFN, 1}, {KW_LIST_SUR, 1}, {KW_LIST_SFN, 1}}));
    // A curve around the caller's arrays: only the records are the context's.
    ControlPoint Pw[2] = {};
    double U[4] = {0, 0, 1, 1};
    Curve cur;
    ASSERT_EQ(U_makcu2(&cur, Pw, 1, 1, U, 3, s), 0);
    U_kilcur(&cur, s);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_CUR, 1}, {KW_LIST_CFN, 1}, {KW_LIST_SUR, 1}, {KW_LIST_SFN, 1}}));
    N_enurbs(s);
    EXPECT_TRUE(all_empty(s));
}

// Resizes keep the common elements and replace the old array by the new.
TEST(Resizes, KeepElementsAndDropTheOldArray) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    for (const auto &[oldn, newn] : {std::pair{4, 9}, std::pair{9, 2}, std::pair{3, 3}}) {
        double *a = S_getr1d(oldn, s);
        for (int i = 0; i <= oldn; ++i) a[i] = i + 0.5;
        double *old = a;
        ASSERT_EQ(U_ralr1d(&a, oldn, newn, s), 0);
        EXPECT_FALSE(holds(s, KW_LIST_R1D, old));
        EXPECT_EQ(census(s), nodes_on({{KW_LIST_R1D, 1}}));
        for (int i = 0; i <= std::min(oldn, newn); ++i) EXPECT_EQ(a[i], i + 0.5);
        a[newn] = 0.0;
        U_kilr1d(a, s);
    }
    ControlPoint **P = S_getc2d(2, 3, s);
    for (int i = 0; i <= 2; ++i)
        for (int j = 0; j <= 3; ++j) P[i][j] = ControlPoint{1.0 * i, 1.0 * j, kPlanar, kNonRational};
    ASSERT_EQ(U_ralc2d(&P, 2, 3, 4, 1, s), 0);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_C1D, 1}, {KW_LIST_C2D, 1}}));
    for (int i = 0; i <= 2; ++i)
        for (int j = 0; j <= 1; ++j) EXPECT_TRUE(SameBits(P[i][j], ControlPoint{1.0 * i, 1.0 * j, kPlanar, kNonRational}));
    P[4][1].x = 0.0;
}

TEST(Contexts, EmptyCompletelyAndCanBeReused) {
    StorageStacks stk;
    N_inurbs(&stk);
    N_enurbs(&stk);
    EXPECT_TRUE(all_empty(&stk));
    for (int round = 0; round < 2; ++round) {
        S_getsf3(1, 1, 1, 1, 3, 3, 1, 1, &stk);
        S_getss3(1, 1, 1, 1, 3, 3, 0, 1, &stk);
        S_getr4d(1, 1, 1, 1, &stk);
        S_getc2p(1, 1, &stk);
        S_getcma(1, 1, KW_BANDED, 3, &stk);
        EXPECT_FALSE(all_empty(&stk));
        N_enurbs(&stk);
        EXPECT_TRUE(all_empty(&stk));
    }
}

std::string shown(const StorageStacks *stk) {
    ::testing::internal::CaptureStdout();
    U_shwstk(stk);
    return ::testing::internal::GetCapturedStdout();
}

TEST(Contexts, ShowPrintsEachLabelledListAsStars) {
    static const char *labels[] = {"f1d", "f2d", "i1d", "i2d", "i3d", "r1d", "r2d", "r3d",
                                   "r4d", "p1d", "p2d", "p3d", "c1d", "c2d", "c3d", "cur",
                                   "cu2", "cu3", "cu4", "sur", "su2", "su3", "pol", "net",
                                   "knt", "kn2", "cvl", "svl", "ima", "rma", "pma", "cma"};
    kw::LocalStacks stk;
    std::string empty;
    for (const char *label : labels) empty += std::string(label) + ": |\n";
    EXPECT_EQ(shown(stk.get()), empty);
    S_getr2d(1, 1, stk.get());
    S_getr1d(1, stk.get());
    S_getcfn(1, 1, 3, stk.get());  // the function record's list is not shown
    S_getrma(1, 1, KW_FULL, 2, stk.get());
    std::string used = empty;
    auto put = [&used](const char *label, const char *stars) {
        const std::string line = std::string(label) + ": |";
        used.replace(used.find(line), line.size(), std::string(label) + ": " + stars + "|");
    };
    put("r1d", "*****");
    put("r2d", "**");
    put("knt", "*");
    put("cvl", "*");
    put("rma", "*");
    EXPECT_EQ(shown(stk.get()), used);
}

}  // namespace
