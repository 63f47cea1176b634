// Storage contexts: array layouts, refused counts, kills, emptying, printing.
// Which list each allocator uses is checked by the fault sweep.
#include <functional>
#include <map>

#include "core/support.hpp"

namespace {

using namespace kwtest;

// Row pointers address one block; a highest index of 0 is one element; a
// negative one is refused with code 14 under the allocator's name and leaves
// nothing behind.
TEST(Allocators, LayoutsAndCounts) {
    kw::LocalStacks stk;
    double **a = S_getr2d(2, 3, stk.get());
    for (int i = 0; i <= 2; ++i) EXPECT_EQ(a[i], a[0] + 4 * i);
    EXPECT_TRUE(stk.get()->head[KW_LIST_R2D]->block == a && stk.get()->head[KW_LIST_R1D]->block == a[0]);
    double ***b = S_getr3d(1, 2, 3, stk.get());
    EXPECT_EQ(&b[1][2][3] - &b[0][0][0], 23);
    EXPECT_EQ(stk.get()->head[KW_LIST_R3D]->block, b);
    Point **v = S_getp2v(2, std::array<int32_t, 3>{2, 0, 4}.data(), stk.get());
    EXPECT_TRUE(v[1] - v[0] == 3 && v[2] - v[1] == 1);
    Curve **c = S_getcu1(1, 1, stk.get());
    EXPECT_TRUE(U_iscurn(c[0]) && U_iscurn(c[1]) && c[0] != c[1]);
    S_getr1d(0, stk.get())[0] = 1.0;
    S_getr2d(0, 0, stk.get())[0][0] = 1.0;
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
    kw::LocalStacks bad;
    for (const auto &[name, run] : table) {
        E_clrerr();
        EXPECT_EQ(run(bad.get()), nullptr) << name;
        EXPECT_TRUE(Recorded(KW_EARG, name));
        EXPECT_TRUE(all_empty(bad.get())) << name;
    }
}

// A kill frees exactly its block, from anywhere in its list, once; an
// address the list does not hold is ignored. Composite kills free every
// part but leave a Curve (Surface, function) record until the context empties.
TEST(Kills, FreeExactlyTheirBlocks) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    double *a = S_getr1d(1, s), *b = S_getr1d(1, s), *c = S_getr1d(1, s), local = 0.0;
    ControlPoint *P = S_getc1d(1, s);
    U_kilr1d(&local, s);                         // not on any list
    U_kilr1d(reinterpret_cast<double *>(P), s);  // on another list
    U_kilr1d(b, s);                              // from the middle of the list
    U_kilr1d(b, s);                              // a second kill finds nothing
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_R1D, 2}, {KW_LIST_C1D, 1}}));
    EXPECT_TRUE(holds(s, KW_LIST_R1D, a) && holds(s, KW_LIST_R1D, c));
    U_kilr1d(c, s);  // the head
    U_kilr1d(a, s);  // the last
    U_kilc1d(P, s);
    EXPECT_TRUE(all_empty(s));
    const std::function<void()> whole[] = {
        [s] { U_kilr2d(S_getr2d(2, 2, s), s); },        [s] { U_kilc2d(S_getc2d(2, 2, s), s); },
        [s] { U_kili2p(S_geti2p(2, 2, s), s); },        [s] { U_kili1p(S_geti1p(2, s), s); },
        [s] { U_kilr3d(S_getr3d(1, 2, 3, s), s); },     [s] { U_kilknt(S_getknt(4, s), s); },
        [s] { U_kilpol(S_getpol(4, s), s); },           [s] { U_kilnet(S_getnet(2, 4, s), s); },
        [s] { U_kilsvl(S_getsvs(2, 4, s), s); },
    };
    for (size_t i = 0; i < std::size(whole); ++i) {
        whole[i]();
        EXPECT_TRUE(all_empty(s)) << i;
    }
    U_kilcur(S_getcur(3, 2, 6, s), s);
    U_kilcfn(S_getcfn(3, 2, 6, s), s);
    U_kilsur(S_getsur(1, 2, 1, 1, 3, 4, s), s);
    U_kilsfn(S_getsfn(1, 2, 1, 1, 3, 4, s), s);
    ControlPoint Pw[2] = {};  // only the records of this one are the context's
    double U[4] = {0, 0, 1, 1};
    Curve cur;
    ASSERT_EQ(U_makcu2(&cur, Pw, 1, 1, U, 3, s), 0);
    U_kilcur(&cur, s);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_CUR, 1}, {KW_LIST_CFN, 1}, {KW_LIST_SUR, 1}, {KW_LIST_SFN, 1}}));
}

TEST(Contexts, ShowPrintsEachLabelledListAsStars) {
    static const char *labels[] = {"f1d", "f2d", "i1d", "i2d", "i3d", "r1d", "r2d", "r3d", "r4d", "p1d", "p2d",
                                   "p3d", "c1d", "c2d", "c3d", "cur", "cu2", "cu3", "cu4", "sur", "su2", "su3",
                                   "pol", "net", "knt", "kn2", "cvl", "svl", "ima", "rma", "pma", "cma"};
    const std::map<std::string, std::string> stars = {{"r1d", "*****"}, {"r2d", "**"}, {"knt", "*"}, {"cvl", "*"}, {"rma", "*"}};
    kw::LocalStacks stk;
    for (bool used : {false, true}) {
        if (used) {
            S_getr2d(1, 1, stk.get());
            S_getr1d(1, stk.get());
            S_getcfn(1, 1, 3, stk.get());  // the function record's list is not shown
            S_getrma(1, 1, KW_FULL, 2, stk.get());
        }
        std::string want;
        for (const char *label : labels) want += std::string(label) + ": " + (used && stars.count(label) ? stars.at(label) : "") + "|\n";
        ::testing::internal::CaptureStdout();
        U_shwstk(stk.get());
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), want);
    }
}

}  // namespace
