// Records: output checks, copies, compaction, reparametrisation, conversions,
// predicates, make and break.
#include <malloc.h>

#include <functional>
#include <numeric>

#include "core/support.hpp"

namespace {

using namespace kwtest;
using CP = ControlPoint;
constexpr double M = kPlanar, NR = kNonRational;
char caller[] = "N_CALLER";

// Curves and surfaces seen alike (the function records share their code);
// blocks() lists the stored doubles, row by row.
using Blocks = std::vector<std::pair<double *, int32_t>>;
struct CurveKind {
    using R = Curve;
    static constexpr const char *copy_name = "U_CURCOP";
    static constexpr auto copy = U_curcop, compact = U_curcmp, ini = U_inicur;
    static R *get(int k, StorageStacks *s) { return S_getcur(2 + k, 2, 5 + k, s); }
    static int16_t chk(R *r, const R *l, StorageStacks *s) { return U_curchk(r, l->pol->n, l->p, l->knt->m, caller, s); }
    static std::vector<int32_t> counts(const R *r) { return {r->pol->n, r->p, r->knt->m}; }
    static Blocks blocks(const R *r) { return {{&r->pol->Pw->x, 4 * (r->pol->n + 1)}, {r->knt->U, r->knt->m + 1}}; }
    static std::vector<const void *> arrays(const R *r) { return {r->pol->Pw, r->knt->U}; }
};
struct SurfaceKind {
    using R = Surface;
    static constexpr const char *copy_name = "U_SURCOP";
    static constexpr auto copy = U_surcop, compact = U_surcmp, ini = U_inisur;
    static R *get(int k, StorageStacks *s) { return S_getsur(2 + k, 3 + k, 1, 2, 4 + k, 6 + k, s); }
    static int16_t chk(R *r, const R *l, StorageStacks *s) {
        return U_surchk(r, l->net->n, l->net->m, l->p, l->q, l->knu->m, l->knv->m, caller, s);
    }
    static std::vector<int32_t> counts(const R *r) { return {r->net->n, r->net->m, r->p, r->q, r->knu->m, r->knv->m}; }
    static Blocks blocks(const R *r) {
        Blocks b;
        for (int32_t i = 0; i <= r->net->n; ++i) b.emplace_back(&r->net->Pw[i]->x, 4 * (r->net->m + 1));
        b.insert(b.end(), {{r->knu->U, r->knu->m + 1}, {r->knv->U, r->knv->m + 1}});
        return b;
    }
    static std::vector<const void *> arrays(const R *r) { return {r->net->Pw, r->net->Pw[0], r->knu->U, r->knv->U}; }
};

// A copy runs the output check under its own name: an empty destination is
// allocated, a large one reused without allocating, a small one refused.
// After a check has shrunk the counts, compaction moves the values into
// arrays of exactly that size and frees the larger ones.
template <class K>
void copies_and_compacts() {
    using R = typename K::R;
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    auto filled = [s](int k, double v) {  // distinct values, both markers among them
        R *r = K::get(k, s);
        for (auto [d, count] : K::blocks(r)) std::generate_n(d, count, [&v] { return v += 0.25; });
        K::blocks(r)[0].first[6] = M;
        K::blocks(r)[0].first[11] = NR;
        return r;
    };
    auto contents = [](const R *r) {
        const std::vector<int32_t> n = K::counts(r);
        std::vector<uint64_t> c(n.begin(), n.end());
        for (auto [d, count] : K::blocks(r)) std::transform(d, d + count, std::back_inserter(c), bits);
        return c;
    };
    const R *src = filled(1, 0.0);
    R fresh;
    K::ini(&fresh);
    ASSERT_EQ(K::copy(src, &fresh, s), 0);
    EXPECT_EQ(contents(&fresh), contents(src));
    for (const void *a : K::arrays(&fresh)) EXPECT_TRUE(on_a_list(s, a));
    R *big = filled(3, 100.0);
    const auto arrays = K::arrays(big);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(K::copy(src, big, s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_EQ(contents(big), contents(src));
    EXPECT_EQ(K::arrays(big), arrays);
    R *small = filled(0, 100.0);
    const auto before = contents(small);
    EXPECT_FAILURE(K::copy(src, small, s), KW_ESTORAGE, K::copy_name);
    EXPECT_EQ(K::chk(small, src, s), 1);
    EXPECT_EQ(E_errnam(), caller) << "the caller's own name";
    EXPECT_EQ(contents(small), before);

    R *r = filled(4, 0.0);
    ASSERT_EQ(K::chk(r, small, s), 0);
    const auto kept = contents(r);
    const auto old = K::arrays(r);
    const size_t old_size = malloc_usable_size(const_cast<void *>(old.back()));
    const Census nodes = census(s);
    ASSERT_EQ(K::compact(r, s), 0);
    EXPECT_EQ(contents(r), kept);
    EXPECT_EQ(census(s), nodes);
    for (const void *a : old) EXPECT_FALSE(on_a_list(s, a));
    EXPECT_LT(malloc_usable_size(const_cast<void *>(K::arrays(r).back())), old_size);
}

TEST(OutputRecords, CurvesCopyAndCompact) { copies_and_compacts<CurveKind>(); }
TEST(OutputRecords, SurfacesCopyAndCompact) { copies_and_compacts<SurfaceKind>(); }

TEST(OutputRecords, KnotVectorsCheckAndCopy) {
    kw::LocalStacks stk;
    KnotVector *k = nullptr, *src = S_getknt(3, stk.get());
    ASSERT_EQ(U_kntchk(&k, 4, caller, stk.get()), 0);
    ASSERT_TRUE(k && k->m == 4);
    std::iota(src->U, src->U + 4, 0.5);
    double *U = k->U;
    kw::fault::fail_at(1, true);
    EXPECT_EQ(U_kntcop(src, &k, stk.get()), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_TRUE(k->m == 3 && k->U == U && std::equal(U, U + 4, src->U));
    src->m = 5;
    EXPECT_FAILURE(U_kntcop(src, &k, stk.get()), KW_ESTORAGE, "U_KNTCOP");
}

TEST(OutputRecords, DegreeMinusOneOrAMissingPartMeansEmpty) {
    ControlPolygon pol{0, nullptr};
    KnotVector knt{0, nullptr};
    ValueVector cvl{0, nullptr};
    ControlNet net{0, 0, nullptr};
    ValueGrid svl{0, 0, nullptr};
    const std::pair<Curve, bool> curves[] = {{{&pol, 2, &knt}, false},   {{&pol, -1, &knt}, true},
                                             {{nullptr, 2, &knt}, true}, {{&pol, 2, nullptr}, true},
                                             {{&pol, -2, &knt}, false},  {{&pol, INT16_MAX, &knt}, false}};
    for (const auto &[c, empty] : curves) {
        const CurveFunction f{c.pol ? &cvl : nullptr, c.p, c.knt};
        EXPECT_EQ(U_iscurn(&c) != 0, empty) << c.p;
        EXPECT_EQ(U_iscfnn(&f) != 0, empty) << c.p;
    }
    for (const auto &[p, q, empty] : {std::tuple{1, 1, false}, {-1, 1, true}, {1, -1, true}}) {
        const Surface r{&net, int16_t(p), int16_t(q), &knt, &knt};
        const SurfaceFunction f{&svl, int16_t(p), int16_t(q), &knt, &knt};
        EXPECT_EQ(U_issurn(&r) != 0, empty);
        EXPECT_EQ(U_issfnn(&f) != 0, empty);
    }
}

TEST(Reparametrisation, OwnIntervalUnchangedOtherwiseLinear) {
    // 0.45 does not survive (u - 0.1) * 1 + 0.1: the own interval must leave
    // the knots alone rather than map them.
    ASSERT_NE((0.45 - 0.1) * ((1.3 - 0.1) / (1.3 - 0.1)) + 0.1, 0.45);
    const std::vector<double> U0 = {0.1, 0.1, 0.1, 0.45, 0.7, 1.3, 1.3, 1.3}, V0 = {0.1, 0.1, 0.45, 0.7, 1.3, 1.3};
    auto mapped = [](std::vector<double> K, int p, double a, double b) {
        const double u0 = K.front(), scale = (b - a) / (K.back() - u0);
        for (size_t i = 0; i < K.size(); ++i) K[i] = i <= size_t(p) ? a : i + p + 1 >= K.size() ? b : (K[i] - u0) * scale + a;
        return K;
    };
    for (const bool surface : {false, true}) {
        for (const auto &[a, b, c, d] : {std::tuple{0.1, 1.3, 0.1, 1.3}, {-2.0, 5.0, 3.0, 4.0}}) {
            std::vector<double> U = U0, V = V0;
            KnotVector knu{7, U.data()}, knv{5, V.data()};
            Curve cur{nullptr, 2, &knu};
            Surface sur{nullptr, 2, 1, &knu, &knv};
            ASSERT_EQ(surface ? U_surkts(&sur, a, b, c, d) : U_curkts(&cur, a, b), 0);
            const bool own = a == U0.front();  // then bit for bit unchanged
            EXPECT_EQ(U, own ? U0 : mapped(U0, 2, a, b));
            EXPECT_EQ(V, own || !surface ? V0 : mapped(V0, 1, c, d));
        }
    }
}

TEST(Conversions, InPlaceOnEveryControlPointAndMadeCompatible) {
    const std::vector<CP> rational = {{2, 4, 6, 2}, {1, 1, M, 0.5}, {3, 0, 3, 3}};
    const std::pair<void (*)(Curve *), std::vector<CP>> table[] = {
        {U_cur3t2, {{2, 4, M, 2}, {1, 1, M, 0.5}, {3, 0, M, 3}}},
        {U_cur2t3, {{2, 4, 6, 2}, {1, 1, 0, 0.5}, {3, 0, 3, 3}}},
        {U_currnr, {{2, 4, 6, NR}, {1, 1, M, NR}, {3, 0, 3, NR}}},
        {U_cureuc, {{1, 2, 3, NR}, {2, 2, M, NR}, {1, 0, 1, NR}}},
        {U_curnrr, rational},  // already rational: unchanged
    };
    for (const auto &[convert, want] : table) {
        OwnCurve p(rational);
        convert(&p.cur);
        for (size_t i = 0; i < want.size(); ++i) EXPECT_TRUE(SameBits(p.Pw[i], want[i])) << i;
    }
    OwnSurface s(1, 1, 1, 1);
    s.rows[0][1] = {1, 1, M, NR};
    s.rows[1][0] = {3, 3, 3, 3};
    U_surnrr(&s.sur);
    EXPECT_TRUE(SameBits(s.rows[0][1], CP{1, 1, M, 1.0}) && SameBits(s.rows[1][0], CP{3, 3, 3, 3}));
    U_sureuc(&s.sur);
    EXPECT_TRUE(SameBits(s.rows[1][0], CP{1, 1, 1, NR}));
    s.rows[1][1].w = 4.0;
    U_surrnr(&s.sur);
    EXPECT_TRUE(SameBits(s.rows[1][1], CP{1, 1, 0, NR}));
    // Compatible: every curve raised to the richest kind among them.
    OwnCurve a({{1, 2, M, NR}, {3, 4, M, NR}}), b({{1, 2, 5, NR}, {3, 4, 6, NR}}), c({{2, 2, M, 2}, {3, 3, M, 3}});
    Curve *two[2] = {&a.cur, &b.cur}, *three[3] = {&a.cur, &b.cur, &c.cur};
    U_makcco(two, 1);  // one 3-D, none rational
    EXPECT_TRUE(SameBits(a.Pw[1], CP{3, 4, 0, NR}) && SameBits(b.Pw[1], CP{3, 4, 6, NR}));
    U_makcco(three, 2);
    EXPECT_TRUE(SameBits(a.Pw[0], CP{1, 2, 0, 1}) && SameBits(b.Pw[0], CP{1, 2, 5, 1}));
    EXPECT_TRUE(SameBits(c.Pw[1], CP{3, 3, 0, 3}));
    OwnSurface s0(0, 0, 0, 0, NR), s1(0, 0, 0, 0, 2.0);
    Surface *both[2] = {&s0.sur, &s1.sur};
    U_maksco(both, 0);
    EXPECT_FALSE(U_issurr(&s0.sur));
    U_maksco(both, 1);
    EXPECT_TRUE(SameBits(s0.rows[0][0], CP{0, 0, 0, 1}) && SameBits(s1.rows[0][0], CP{0, 0, 0, 2}));
}

// The first control point decides the kind; closed and point-like are strict
// tests in Cartesian space.
TEST(ShapePredicates, OfCurves) {
    const double tol = U_tolpoi;  // 1e-7
    const std::tuple<int16_t (*)(const Curve *), std::vector<CP>, bool> table[] = {
        {U_iscur3, {{1, 1, M, 1}, {1, 1, 1, NR}}, false},
        {U_iscurr, {{1, 1, M, 1}, {1, 1, 1, NR}}, true},
        {U_iscur3, {{1, 1, 1, NR}, {1, 1, M, 1}}, true},
        {U_iscurr, {{1, 1, 1, NR}, {1, 1, M, 1}}, false},
        {U_iscuz0, {{1, 1, 0, 1}, {2, 2, -0.0, NR}}, true},
        {U_iscuz0, {{1, 1, 0, 1}, {2, 2, M, NR}}, false},
        {U_iscurc, {{0, 0, 0, NR}, {5, 5, 5, NR}, {tol, 0, 0, NR}}, false},  // exactly the tolerance
        {U_iscurc, {{0, 0, 0, NR}, {5, 5, 5, NR}, {0.99 * tol, 0, 0, NR}}, true},
        {U_iscurc, {{0, 0, 0, 2}, {5, 5, 5, 1}, {2 * tol, 0, 0, 2}}, false},  // Cartesian gap 1e-7
        {U_iscurc, {{1, 1, M, 4}, {5, 5, M, 1}, {0.5, 0.5, M, 2}}, true},      // one point, two weights
        {U_iscurp, {{2, 2, 2, 2}, {3, 3, 3, 3}, {1, 1, 1, NR}}, true},
        {U_iscurp, {{1, 1, M, NR}, {1, 1 + 2.1 * tol, M, NR}}, false},  // 1.05e-7 from the centroid
        {U_iscurp, {{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}}, true},
        {U_iscurp, {{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}, {1, 1, 0, NR}}, false},
    };
    for (const auto &[predicate, P, want] : table) {
        OwnCurve c(P);
        EXPECT_EQ(predicate(&c.cur) != 0, want) << ::testing::PrintToString(P.size());
    }
}

TEST(ShapePredicates, OfSurfacesAndArrays) {
    OwnSurface s(2, 1, 1, 1);  // rows 0 and 2 agree as Cartesian points
    s.rows[2][0] = {0, 0, 0, 2};
    s.rows[2][1] = {0, 2, 0, 2};
    EXPECT_TRUE(U_issurc(&s.sur, 1) && !U_issurc(&s.sur, 2) && !U_issurc(&s.sur, 3));
    EXPECT_TRUE(U_issurr(&s.sur) && !U_issurp(&s.sur));
    const auto *grid = reinterpret_cast<const void *const *>(s.rows.data());
    EXPECT_TRUE(U_isp2dc(grid, 2, 1, 2, 1, 1e-9) && !U_isp2dc(grid, 2, 1, 3, 1, 1e-9));
    for (CP *r : s.rows) r[0] = r[1] = CP{2, 2, 2, 2};
    EXPECT_TRUE(U_issurp(&s.sur) && U_issurc(&s.sur, 2));
    const Point P[3] = {{0, 0, 0}, {1, 1, 1}, {0, 0.5, 0}};
    EXPECT_TRUE(U_isp1dc(P, 2, 1, 0.5 + 1e-12) && !U_isp1dc(P, 2, 1, 0.5));
    const CP C[2] = {{1, 1, M, 1}, {2, 2, M, 2}};
    EXPECT_TRUE(U_isp1dc(C, 1, 2, 1e-12) && !U_isp1dc(C, 1, 0, 1.0));
}

// Makers wrap the caller's arrays in records from the context; the degree-1
// makers add knots of their own.
TEST(MakeAndBreak, RoundTripsThroughTheFields) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    CP Pw[3] = {}, row0[2], row1[2], *net[2] = {row0, row1};
    double U[6] = {0, 0, 0, 1, 1, 1}, V[4] = {0, 0, 1, 1};
    Curve cur;
    ASSERT_EQ(U_makcu2(&cur, Pw, 2, 2, U, 5, s), 0);
    EXPECT_EQ(census(s), nodes_on({{KW_LIST_POL, 1}, {KW_LIST_KNT, 1}})) << "the arrays stay the caller's";
    int32_t n, m, r, sv;
    int16_t p, q;
    CP **N;
    double *Uo, *Vo;
    Surface sur;
    ASSERT_EQ(U_maksu2(&sur, net, 1, 1, 2, 1, U, V, 5, 3, s), 0);
    U_surbre(&sur, &n, &m, &N, &p, &q, &r, &sv, &Uo, &Vo);
    EXPECT_EQ(std::tuple(n, m, N, p, q, r, sv, Uo, Vo), std::tuple(1, 1, net, 2, 1, 5, 3, U, V));
    double wx[2] = {2, 4}, wy[2] = {6, 8}, wz[2] = {M, M}, w[2] = {2, NR}, *gx[2] = {wx, wy}, *gw[2] = {w, w};
    ASSERT_EQ(U_makcu3(&cur, wx, wy, wz, w, 1, 1, V, 3, s), 0);
    EXPECT_TRUE(SameBits(cur.pol->Pw[1], CP{4, 8, M, NR}));
    ControlNet built;
    ASSERT_EQ(U_maknt2(&built, gx, gx, gx, gw, 1, 1, s), 0);
    EXPECT_TRUE(SameBits(built.Pw[1][0], CP{6, 6, 6, 2}));
    ASSERT_EQ(U_makcpl(&cur, S_getpol(1, s), 0, 0.5, 1.5, 2, s), 0);
    EXPECT_EQ(cur.p, 1);
    EXPECT_EQ(std::vector<double>(cur.knt->U, cur.knt->U + 4), (std::vector<double>{0, 0.5, 1.5, 2}));
    ASSERT_EQ(U_makspl(&sur, S_getnet(1, 1, s), 0, 1, 2, 5, s), 0);
    EXPECT_TRUE(sur.p == 1 && sur.q == 1);
    EXPECT_EQ(std::vector<double>(sur.knv->U, sur.knv->U + 4), (std::vector<double>{2, 2, 5, 5}));
    EXPECT_FAILURE(U_makcpl(&cur, S_getpol(2, s), 0, 0, 1, 1, s), KW_EARG, "U_MAKCPL");
    EXPECT_FAILURE(U_makspl(&sur, S_getnet(1, 2, s), 0, 1, 0, 1, s), KW_EARG, "U_MAKSPL");
}

}  // namespace
