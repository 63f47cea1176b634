// Records: output checks, copies, compaction, reparametrisation, conversions,
// predicates, make and break.
#include <malloc.h>

#include <functional>
#include <numeric>
#include <vector>

#include "core/support.hpp"

namespace {

using namespace kwtest;
constexpr double M = kPlanar, NR = kNonRational;
char caller[] = "N_CALLER";

// Every stored double of a record, in order.
void add(std::vector<double *> &v, ControlPoint &c) { v.insert(v.end(), {&c.x, &c.y, &c.z, &c.w}); }
void add(std::vector<double *> &v, const KnotVector *k) {
    for (int32_t i = 0; i <= k->m; ++i) v.push_back(&k->U[i]);
}

// Curves and surfaces seen alike (the function records share their code).
struct CurveKind {
    using R = Curve;
    static constexpr const char *copy_name = "U_CURCOP";
    static Curve *get(int k, StorageStacks *s) { return S_getcur(2 + k, 2, 5 + k, s); }
    static int16_t chk(Curve *r, const Curve *like, StorageStacks *s) {
        return U_curchk(r, like->pol->n, like->p, like->knt->m, caller, s);
    }
    static std::vector<int32_t> counts(const Curve *r) { return {r->pol->n, r->p, r->knt->m}; }
    static std::vector<double *> values(const Curve *r) {
        std::vector<double *> v;
        for (int32_t i = 0; i <= r->pol->n; ++i) add(v, r->pol->Pw[i]);
        add(v, r->knt);
        return v;
    }
    static std::vector<const void *> arrays(const Curve *r) { return {r->pol->Pw, r->knt->U}; }
    static constexpr auto copy = U_curcop, compact = U_curcmp;
    static constexpr auto ini = U_inicur;
};

struct SurfaceKind {
    using R = Surface;
    static constexpr const char *copy_name = "U_SURCOP";
    static Surface *get(int k, StorageStacks *s) { return S_getsur(2 + k, 3 + k, 1, 2, 4 + k, 6 + k, s); }
    static int16_t chk(Surface *r, const Surface *like, StorageStacks *s) {
        return U_surchk(r, like->net->n, like->net->m, like->p, like->q, like->knu->m, like->knv->m, caller, s);
    }
    static std::vector<int32_t> counts(const Surface *r) {
        return {r->net->n, r->net->m, r->p, r->q, r->knu->m, r->knv->m};
    }
    static std::vector<double *> values(const Surface *r) {
        std::vector<double *> v;
        for (int32_t i = 0; i <= r->net->n; ++i)
            for (int32_t j = 0; j <= r->net->m; ++j) add(v, r->net->Pw[i][j]);
        add(v, r->knu);
        add(v, r->knv);
        return v;
    }
    static std::vector<const void *> arrays(const Surface *r) { return {r->net->Pw, r->net->Pw[0], r->knu->U, r->knv->U}; }
    static constexpr auto copy = U_surcop, compact = U_surcmp;
    static constexpr auto ini = U_inisur;
};

template <class K>
class RecordFamily : public ::testing::Test {
protected:
    using R = typename K::R;
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();

    // An object of size k with distinct values and both markers among them.
    R *filled(int k, double v) {
        R *r = K::get(k, s);
        for (double *d : K::values(r)) *d = (v += 0.25);
        *K::values(r)[6] = M;
        *K::values(r)[11] = NR;
        return r;
    }
    static std::vector<uint64_t> contents(const R *r) {
        const std::vector<int32_t> n = K::counts(r);
        std::vector<uint64_t> c(n.begin(), n.end());
        for (const double *d : K::values(r)) c.push_back(bits(*d));
        return c;
    }
};

using Families = ::testing::Types<CurveKind, SurfaceKind>;
TYPED_TEST_SUITE(RecordFamily, Families);

// A copy runs the output check under its own name: an empty destination is
// allocated, a large one reused without allocating, a small one refused.
TYPED_TEST(RecordFamily, CopyAllocatesReusesOrRefuses) {
    using K = TypeParam;
    const auto *src = this->filled(1, 0.0);
    typename K::R fresh;
    K::ini(&fresh);
    ASSERT_EQ(K::copy(src, &fresh, this->s), 0);
    EXPECT_EQ(this->contents(&fresh), this->contents(src));
    for (const void *a : K::arrays(&fresh)) EXPECT_TRUE(on_a_list(this->s, a));

    auto *big = this->filled(3, 100.0);
    const auto arrays = K::arrays(big);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(K::copy(src, big, this->s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_EQ(this->contents(big), this->contents(src));
    EXPECT_EQ(K::arrays(big), arrays);

    auto *small = this->filled(0, 100.0);
    const auto before = this->contents(small);
    E_clrerr();
    EXPECT_EQ(K::copy(src, small, this->s), 1);
    EXPECT_TRUE(Recorded(KW_ESTORAGE, K::copy_name));
    EXPECT_EQ(K::chk(small, src, this->s), 1);
    EXPECT_EQ(E_errnam(), caller) << "the caller's own name";
    EXPECT_EQ(this->contents(small), before);
}

// After a check has shrunk the counts, compaction moves the values into
// arrays of exactly that size and frees the larger ones.
TYPED_TEST(RecordFamily, CompactionShrinksAndFreesTheOldArrays) {
    using K = TypeParam;
    auto *r = this->filled(4, 0.0);
    ASSERT_EQ(K::chk(r, this->filled(0, 50.0), this->s), 0);
    const auto before = this->contents(r);
    const auto old = K::arrays(r);
    const size_t old_size = malloc_usable_size(const_cast<void *>(old.back()));
    const Census nodes = census(this->s);
    ASSERT_EQ(K::compact(r, this->s), 0);
    EXPECT_EQ(this->contents(r), before);
    EXPECT_EQ(census(this->s), nodes);
    for (const void *a : old) EXPECT_FALSE(on_a_list(this->s, a));
    EXPECT_LT(malloc_usable_size(const_cast<void *>(K::arrays(r).back())), old_size);
}

TEST(EmptyRecords, DegreeMinusOneOrAMissingPartMeansEmpty) {
    ControlPolygon pol{0, nullptr};
    KnotVector knt{0, nullptr};
    ValueVector cvl{0, nullptr};
    const std::pair<Curve, bool> curves[] = {
        {{&pol, 2, &knt}, false},   {{&pol, -1, &knt}, true},  {{nullptr, 2, &knt}, true},
        {{&pol, 2, nullptr}, true}, {{&pol, -2, &knt}, false}, {{&pol, INT16_MAX, &knt}, false}};
    for (const auto &[c, empty] : curves) {
        EXPECT_EQ(U_iscurn(&c) != 0, empty) << c.p;
        const CurveFunction f{c.pol ? &cvl : nullptr, c.p, c.knt};
        EXPECT_EQ(U_iscfnn(&f) != 0, empty) << c.p;
    }
    ControlNet net{0, 0, nullptr};
    ValueGrid svl{0, 0, nullptr};
    for (const auto &[p, q, empty] : {std::tuple{1, 1, false}, std::tuple{-1, 1, true}, std::tuple{1, -1, true}}) {
        const Surface r{&net, static_cast<int16_t>(p), static_cast<int16_t>(q), &knt, &knt};
        const SurfaceFunction f{&svl, static_cast<int16_t>(p), static_cast<int16_t>(q), &knt, &knt};
        EXPECT_EQ(U_issurn(&r) != 0, empty);
        EXPECT_EQ(U_issfnn(&f) != 0, empty);
    }
}

TEST(KnotVectors, CheckAndCopy) {
    kw::LocalStacks stk;
    KnotVector *k = nullptr;
    ASSERT_EQ(U_kntchk(&k, 4, caller, stk.get()), 0);
    ASSERT_TRUE(k && k->m == 4);
    KnotVector *src = S_getknt(3, stk.get());
    std::iota(src->U, src->U + 4, 0.5);
    double *U = k->U;
    kw::fault::fail_at(1, true);
    EXPECT_EQ(U_kntcop(src, &k, stk.get()), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_TRUE(k->m == 3 && k->U == U && std::equal(U, U + 4, src->U));
    src->m = 5;
    E_clrerr();
    EXPECT_EQ(U_kntcop(src, &k, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_ESTORAGE, "U_KNTCOP"));
}

TEST(Reparametrisation, OwnIntervalUnchangedOtherwiseLinear) {
    // 0.45 does not survive (u - 0.1) * 1 + 0.1: the own interval must leave
    // the knots alone rather than map them.
    ASSERT_NE((0.45 - 0.1) * ((1.3 - 0.1) / (1.3 - 0.1)) + 0.1, 0.45);
    const std::vector<double> U0 = {0.1, 0.1, 0.1, 0.45, 0.7, 1.3, 1.3, 1.3};  // p = 2
    const std::vector<double> V0 = {0.1, 0.1, 0.45, 0.7, 1.3, 1.3};            // q = 1
    auto mapped = [](const std::vector<double> &K, int p, double a, double b) {
        std::vector<double> out = K;
        const double scale = (b - a) / (K.back() - K.front());
        for (size_t i = p + 1; i + p + 1 < K.size(); ++i) out[i] = (K[i] - K.front()) * scale + a;
        std::fill_n(out.begin(), p + 1, a);
        std::fill_n(out.end() - p - 1, p + 1, b);
        return out;
    };
    for (const bool surface : {false, true}) {
        for (const auto &[a, b, c, d] : {std::tuple{0.1, 1.3, 0.1, 1.3}, std::tuple{-2.0, 5.0, 3.0, 4.0}}) {
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

// ---- Conversions and predicates over a curve of given control points ----------

struct Poly {
    std::vector<ControlPoint> Pw;
    ControlPolygon pol;
    KnotVector knt{0, nullptr};
    Curve cur;
    explicit Poly(std::vector<ControlPoint> P) : Pw(std::move(P)) {
        U_makpl1(&pol, Pw.data(), static_cast<int32_t>(Pw.size()) - 1);
        U_makcu1(&cur, &pol, 1, &knt);
    }
};

bool on(std::vector<ControlPoint> P, int16_t (*predicate)(const Curve *)) {
    Poly p(std::move(P));
    return predicate(&p.cur) != 0;
}

TEST(Conversions, InPlaceOnEveryControlPoint) {
    const std::vector<ControlPoint> rational = {{2, 4, 6, 2}, {1, 1, M, 0.5}, {3, 0, 3, 3}};
    const std::pair<void (*)(Curve *), std::vector<ControlPoint>> table[] = {
        {U_cur3t2, {{2, 4, M, 2}, {1, 1, M, 0.5}, {3, 0, M, 3}}},
        {U_cur2t3, {{2, 4, 6, 2}, {1, 1, 0, 0.5}, {3, 0, 3, 3}}},
        {U_currnr, {{2, 4, 6, NR}, {1, 1, M, NR}, {3, 0, 3, NR}}},
        {U_cureuc, {{1, 2, 3, NR}, {2, 2, M, NR}, {1, 0, 1, NR}}},
        {U_curnrr, rational},  // already rational: unchanged
    };
    for (const auto &[convert, want] : table) {
        Poly p(rational);
        convert(&p.cur);
        for (size_t i = 0; i < want.size(); ++i) EXPECT_TRUE(SameBits(p.Pw[i], want[i])) << i;
    }
    Poly plain({{1, 2, 3, NR}, {4, 5, M, NR}});
    U_curnrr(&plain.cur);
    EXPECT_TRUE(SameBits(plain.Pw[1], ControlPoint{4, 5, M, 1.0}));
    // Surfaces: the same on every point of the net.
    ControlPoint row0[2] = {{2, 4, 6, 2}, {1, 1, M, NR}}, row1[2] = {{3, 3, 3, 3}, {0, 0, 0, NR}};
    ControlPoint *rows[2] = {row0, row1};
    ControlNet net{1, 1, rows};
    Surface sur{&net, 1, 1, nullptr, nullptr};
    U_surnrr(&sur);
    EXPECT_TRUE(SameBits(row0[1], ControlPoint{1, 1, M, 1.0}) && SameBits(row1[0], ControlPoint{3, 3, 3, 3}));
    U_sureuc(&sur);
    EXPECT_TRUE(SameBits(row0[0], ControlPoint{1, 2, 3, NR}) && SameBits(row1[1], ControlPoint{0, 0, 0, NR}));
    row1[1].w = 4.0;
    U_surrnr(&sur);
    EXPECT_TRUE(SameBits(row1[1], ControlPoint{0, 0, 0, NR}));
}

TEST(Conversions, MakingCompatibleRaisesToTheRichestKind) {
    Poly a({{1, 2, M, NR}, {3, 4, M, NR}}), b({{1, 2, 5, NR}, {3, 4, 6, NR}}), c({{2, 2, M, 2}, {3, 3, M, 3}});
    Curve *two[2] = {&a.cur, &b.cur};
    U_makcco(two, 1);  // one 3-D, none rational
    EXPECT_TRUE(SameBits(a.Pw[1], ControlPoint{3, 4, 0, NR}) && SameBits(b.Pw[1], ControlPoint{3, 4, 6, NR}));
    Curve *three[3] = {&a.cur, &b.cur, &c.cur};
    U_makcco(three, 2);
    EXPECT_TRUE(SameBits(a.Pw[0], ControlPoint{1, 2, 0, 1}) && SameBits(b.Pw[0], ControlPoint{1, 2, 5, 1}));
    EXPECT_TRUE(SameBits(c.Pw[1], ControlPoint{3, 3, 0, 3}));
    ControlPoint r0 = {1, 1, 1, NR}, r1 = {2, 2, 2, 2};
    ControlPoint *g0 = &r0, *g1 = &r1;
    ControlNet n0{0, 0, &g0}, n1{0, 0, &g1};
    Surface s0{&n0, 1, 1, nullptr, nullptr}, s1{&n1, 1, 1, nullptr, nullptr};
    Surface *both[2] = {&s0, &s1};
    U_maksco(both, 0);
    EXPECT_FALSE(U_issurr(&s0));
    U_maksco(both, 1);
    EXPECT_TRUE(SameBits(r0, ControlPoint{1, 1, 1, 1}) && SameBits(r1, ControlPoint{2, 2, 2, 2}));
}

TEST(ShapePredicates, FirstControlPointDecidesTheKind) {
    EXPECT_FALSE(on({{1, 1, M, 1}, {1, 1, 1, NR}}, U_iscur3));
    EXPECT_TRUE(on({{1, 1, M, 1}, {1, 1, 1, NR}}, U_iscurr));
    EXPECT_TRUE(on({{1, 1, 1, NR}, {1, 1, M, 1}}, U_iscur3));
    EXPECT_FALSE(on({{1, 1, 1, NR}, {1, 1, M, 1}}, U_iscurr));
    EXPECT_TRUE(on({{1, 1, 0, 1}, {2, 2, -0.0, NR}}, U_iscuz0));
    EXPECT_FALSE(on({{1, 1, 0, 1}, {2, 2, M, NR}}, U_iscuz0));
}

TEST(ShapePredicates, ClosedAndPointLikeAreStrictInCartesianSpace) {
    const double tol = U_tolpoi;  // 1e-7
    const std::pair<std::vector<ControlPoint>, bool> closed[] = {
        {{{0, 0, 0, NR}, {5, 5, 5, NR}, {tol, 0, 0, NR}}, false},  // exactly the tolerance
        {{{0, 0, 0, NR}, {5, 5, 5, NR}, {0.99 * tol, 0, 0, NR}}, true},
        {{{0, 0, 0, 2}, {5, 5, 5, 1}, {2 * tol, 0, 0, 2}}, false},  // Cartesian gap 1e-7
        {{{1, 1, M, 4}, {5, 5, M, 1}, {0.5, 0.5, M, 2}}, true},      // one point, two weights
    };
    for (const auto &[P, want] : closed) EXPECT_EQ(on(P, U_iscurc), want);
    const std::pair<std::vector<ControlPoint>, bool> point[] = {
        {{{2, 2, 2, 2}, {3, 3, 3, 3}, {1, 1, 1, NR}}, true},  // one Cartesian point
        {{{1, 1, M, NR}, {1, 1 + 2.1 * tol, M, NR}}, false},  // 1.05e-7 from the centroid
        {{{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}}, true},
        {{{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}, {1, 1, 0, NR}}, false},
    };
    for (const auto &[P, want] : point) EXPECT_EQ(on(P, U_iscurp), want);
}

TEST(ShapePredicates, SurfacesAndArrays) {
    // A 3 x 2 net closed in u (rows 0 and 2 agree as Cartesian points) only.
    ControlPoint r0[2] = {{0, 0, 0, 1}, {1, 0, 0, 1}}, r1[2] = {{0, 1, 0, 1}, {1, 1, 0, 1}},
                 r2[2] = {{0, 0, 0, 2}, {2, 0, 0, 2}};
    ControlPoint *rows[3] = {r0, r1, r2};
    ControlNet net{2, 1, rows};
    Surface sur{&net, 1, 1, nullptr, nullptr};
    EXPECT_TRUE(U_issurc(&sur, 1) && !U_issurc(&sur, 2) && !U_issurc(&sur, 3));
    EXPECT_TRUE(U_issurr(&sur) && !U_issurp(&sur));
    const auto *grid = reinterpret_cast<const void *const *>(rows);
    EXPECT_TRUE(U_isp2dc(grid, 2, 1, 2, 1, 1e-9) && !U_isp2dc(grid, 2, 1, 3, 1, 1e-9));
    for (ControlPoint *r : rows) r[0] = r[1] = ControlPoint{2, 2, 2, 2};
    EXPECT_TRUE(U_issurp(&sur) && U_issurc(&sur, 2));
    const Point P[3] = {{0, 0, 0}, {1, 1, 1}, {0, 0.5, 0}};
    EXPECT_TRUE(U_isp1dc(P, 2, 1, 0.5 + 1e-12) && !U_isp1dc(P, 2, 1, 0.5));
    const ControlPoint C[2] = {{1, 1, M, 1}, {2, 2, M, 2}};
    EXPECT_TRUE(U_isp1dc(C, 1, 2, 1e-12) && !U_isp1dc(C, 1, 0, 1.0));
}

// ---- Make and break -------------------------------------------------------------

TEST(MakeAndBreak, RoundTripsThroughTheFields) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    ControlPoint Pw[3] = {}, row0[2], row1[2];
    ControlPoint *net[2] = {row0, row1};
    double U[6] = {0, 0, 0, 1, 1, 1}, V[4] = {0, 0, 1, 1};
    Curve cur;
    ASSERT_EQ(U_makcu2(&cur, Pw, 2, 2, U, 5, s), 0);
    Census records{};
    records[KW_LIST_POL] = records[KW_LIST_KNT] = 1;
    EXPECT_EQ(census(s), records) << "the arrays stay the caller's";
    int32_t n, m, r, sv;
    int16_t p, q;
    ControlPoint *P, **N;
    double *Uo, *Vo;
    U_curbre(&cur, &n, &P, &p, &m, &Uo);
    EXPECT_EQ(std::tuple(n, P, p, m, Uo), std::tuple(2, Pw, 2, 5, U));
    Surface sur;
    ASSERT_EQ(U_maksu2(&sur, net, 1, 1, 2, 1, U, V, 5, 3, s), 0);
    U_surbre(&sur, &n, &m, &N, &p, &q, &r, &sv, &Uo, &Vo);
    EXPECT_EQ(std::tuple(n, m, N, p, q, r, sv, Uo, Vo), std::tuple(1, 1, net, 2, 1, 5, 3, U, V));
    U_surknt(&sur, &r, &Uo, &sv, &Vo);
    EXPECT_EQ(std::tuple(r, Uo, sv, Vo), std::tuple(5, U, 3, V));
    double wx[2] = {2, 4}, wy[2] = {6, 8}, wz[2] = {M, M}, w[2] = {2, NR};
    ASSERT_EQ(U_makcu3(&cur, wx, wy, wz, w, 1, 1, V, 3, s), 0);
    EXPECT_TRUE(SameBits(cur.pol->Pw[1], ControlPoint{4, 8, M, NR}));
    double *gx[2] = {wx, wy}, *gw[2] = {w, w};
    ControlNet built;
    ASSERT_EQ(U_maknt2(&built, gx, gx, gx, gw, 1, 1, s), 0);
    EXPECT_TRUE(SameBits(built.Pw[1][0], ControlPoint{6, 6, 6, 2}));
}

// The degree-1 makers wrap a two-point polygon or a 2 x 2 net.
TEST(MakeAndBreak, DegreeOneCurvesAndSurfaces) {
    kw::LocalStacks stk;
    Curve cur;
    ASSERT_EQ(U_makcpl(&cur, S_getpol(1, stk.get()), 0, 0.5, 1.5, 2, stk.get()), 0);
    EXPECT_EQ(cur.p, 1);
    EXPECT_EQ(std::vector<double>(cur.knt->U, cur.knt->U + 4), (std::vector<double>{0, 0.5, 1.5, 2}));
    Surface sur;
    ASSERT_EQ(U_makspl(&sur, S_getnet(1, 1, stk.get()), 0, 1, 2, 5, stk.get()), 0);
    EXPECT_TRUE(sur.p == 1 && sur.q == 1);
    EXPECT_EQ(std::vector<double>(sur.knv->U, sur.knv->U + 4), (std::vector<double>{2, 2, 5, 5}));
    E_clrerr();
    EXPECT_EQ(U_makcpl(&cur, S_getpol(2, stk.get()), 0, 0, 1, 1, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_EARG, "U_MAKCPL"));
    EXPECT_EQ(U_makspl(&sur, S_getnet(1, 2, stk.get()), 0, 1, 0, 1, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_EARG, "U_MAKSPL"));
}

}  // namespace
