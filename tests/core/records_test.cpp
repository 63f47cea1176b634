// Records: output checks, copies, compaction, reparametrisation, conversions,
// predicates, make and break.
#include <malloc.h>

#include <functional>
#include <vector>

#include "core/support.hpp"

namespace {

using namespace kwtest;
constexpr double M = kPlanar, NR = kNonRational;
char caller[] = "N_CALLER";

// ---- The four record families, seen alike --------------------------------

template <class R>
struct Kind;

// Every stored double of a coefficient or a knot vector, in order.
void add(std::vector<double *> &v, double &d) { v.push_back(&d); }
void add(std::vector<double *> &v, ControlPoint &c) { v.insert(v.end(), {&c.x, &c.y, &c.z, &c.w}); }
void add(std::vector<double *> &v, const KnotVector *k) {
    for (int32_t i = 0; i <= k->m; ++i) v.push_back(&k->U[i]);
}
template <class C>
void add(std::vector<double *> &v, C *c, int32_t n) {
    for (int32_t i = 0; i <= n; ++i) add(v, c[i]);
}
template <class C>
void add(std::vector<double *> &v, C **c, int32_t n, int32_t m) {
    for (int32_t i = 0; i <= n; ++i) add(v, c[i], m);
}

template <>
struct Kind<Curve> {
    static constexpr const char *copy_name = "U_CURCOP";
    // size 0, 1, 2, ...: larger objects of degree 2.
    static Curve *get(int k, StorageStacks *s) { return S_getcur(2 + k, 2, 5 + k, s); }
    static int16_t chk(Curve *r, const Curve *like, char *name, StorageStacks *s) {
        return U_curchk(r, like->pol->n, like->p, like->knt->m, name, s);
    }
    static std::vector<int32_t> counts(const Curve *r) { return {r->pol->n, r->p, r->knt->m}; }
    static std::vector<double *> values(const Curve *r) {
        std::vector<double *> v;
        add(v, r->pol->Pw, r->pol->n);
        add(v, r->knt);
        return v;
    }
    static std::vector<const void *> arrays(const Curve *r) { return {r->pol->Pw, r->knt->U}; }
    static constexpr auto copy = U_curcop;
    static constexpr auto compact = U_curcmp;
    static constexpr auto ini = U_inicur;
};

template <>
struct Kind<CurveFunction> {
    static constexpr const char *copy_name = "U_CFNCOP";
    static CurveFunction *get(int k, StorageStacks *s) { return S_getcfn(2 + k, 2, 5 + k, s); }
    static int16_t chk(CurveFunction *r, const CurveFunction *like, char *name, StorageStacks *s) {
        return U_cfnchk(r, like->cvl->n, like->p, like->knt->m, name, s);
    }
    static std::vector<int32_t> counts(const CurveFunction *r) { return {r->cvl->n, r->p, r->knt->m}; }
    static std::vector<double *> values(const CurveFunction *r) {
        std::vector<double *> v;
        add(v, r->cvl->v, r->cvl->n);
        add(v, r->knt);
        return v;
    }
    static std::vector<const void *> arrays(const CurveFunction *r) { return {r->cvl->v, r->knt->U}; }
    static constexpr auto copy = U_cfncop;
    static constexpr auto compact = U_cfncmp;
    static constexpr auto ini = U_inicfn;
};

template <>
struct Kind<Surface> {
    static constexpr const char *copy_name = "U_SURCOP";
    static Surface *get(int k, StorageStacks *s) { return S_getsur(2 + k, 3 + k, 1, 2, 4 + k, 6 + k, s); }
    static int16_t chk(Surface *r, const Surface *like, char *name, StorageStacks *s) {
        return U_surchk(r, like->net->n, like->net->m, like->p, like->q, like->knu->m, like->knv->m, name, s);
    }
    static std::vector<int32_t> counts(const Surface *r) {
        return {r->net->n, r->net->m, r->p, r->q, r->knu->m, r->knv->m};
    }
    static std::vector<double *> values(const Surface *r) {
        std::vector<double *> v;
        add(v, r->net->Pw, r->net->n, r->net->m);
        add(v, r->knu);
        add(v, r->knv);
        return v;
    }
    static std::vector<const void *> arrays(const Surface *r) { return {r->net->Pw, r->net->Pw[0], r->knu->U, r->knv->U}; }
    static constexpr auto copy = U_surcop;
    static constexpr auto compact = U_surcmp;
    static constexpr auto ini = U_inisur;
};

template <>
struct Kind<SurfaceFunction> {
    static constexpr const char *copy_name = "U_SFNCOP";
    static SurfaceFunction *get(int k, StorageStacks *s) { return S_getsfn(2 + k, 3 + k, 1, 2, 4 + k, 6 + k, s); }
    static int16_t chk(SurfaceFunction *r, const SurfaceFunction *like, char *name, StorageStacks *s) {
        return U_sfnchk(r, like->svl->n, like->svl->m, like->p, like->q, like->knu->m, like->knv->m, name, s);
    }
    static std::vector<int32_t> counts(const SurfaceFunction *r) {
        return {r->svl->n, r->svl->m, r->p, r->q, r->knu->m, r->knv->m};
    }
    static std::vector<double *> values(const SurfaceFunction *r) {
        std::vector<double *> v;
        add(v, r->svl->v, r->svl->n, r->svl->m);
        add(v, r->knu);
        add(v, r->knv);
        return v;
    }
    static std::vector<const void *> arrays(const SurfaceFunction *r) { return {r->svl->v, r->svl->v[0], r->knu->U, r->knv->U}; }
    static constexpr auto copy = U_sfncop;
    static constexpr auto compact = U_sfncmp;
    static constexpr auto ini = U_inisfn;
};

template <class R>
class RecordFamily : public ::testing::Test {
protected:
    using K = Kind<R>;
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();

    // An object of size k with distinct values, markers among them.
    R *filled(int k, double base) {
        R *r = K::get(k, s);
        double v = base;
        for (double *d : K::values(r)) *d = (v += 0.25);
        if constexpr (std::is_same_v<R, Curve>) r->pol->Pw[1].z = M, r->pol->Pw[2].w = NR;
        return r;
    }
    static std::vector<uint64_t> contents(const R *r) {
        std::vector<uint64_t> c;
        for (int32_t n : K::counts(r)) c.push_back(static_cast<uint64_t>(n));
        for (const double *d : K::values(r)) c.push_back(bits(*d));
        return c;
    }
};

using Families = ::testing::Types<Curve, CurveFunction, Surface, SurfaceFunction>;
TYPED_TEST_SUITE(RecordFamily, Families);

TYPED_TEST(RecordFamily, CopyIntoAnEmptyRecordMakesAnEqualIndependentObject) {
    using K = Kind<TypeParam>;
    const TypeParam *src = this->filled(1, 0.0);
    TypeParam dst;
    K::ini(&dst);
    ASSERT_EQ(K::copy(src, &dst, this->s), 0);
    EXPECT_EQ(this->contents(&dst), this->contents(src));
    for (const void *a : K::arrays(&dst)) EXPECT_TRUE(on_a_list(this->s, a));
    *K::values(&dst)[0] += 1.0;
    EXPECT_NE(this->contents(&dst), this->contents(src));
}

TYPED_TEST(RecordFamily, CopyReusesLargeEnoughStorageWithoutAllocating) {
    using K = Kind<TypeParam>;
    const TypeParam *src = this->filled(1, 0.0);
    TypeParam *dst = this->filled(3, 100.0);
    const auto arrays = K::arrays(dst);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(K::copy(src, dst, this->s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_EQ(this->contents(dst), this->contents(src));
    EXPECT_EQ(K::arrays(dst), arrays);
}

TYPED_TEST(RecordFamily, CopyIntoTooSmallStorageFailsUnderItsOwnName) {
    using K = Kind<TypeParam>;
    const TypeParam *src = this->filled(1, 0.0);
    TypeParam *dst = this->filled(0, 100.0);
    const auto before = this->contents(dst);
    E_clrerr();
    EXPECT_EQ(K::copy(src, dst, this->s), 1);
    EXPECT_TRUE(Recorded(KW_ESTORAGE, K::copy_name));
    EXPECT_EQ(this->contents(dst), before);
}

// The output check: an empty record is allocated, a large one redefined in
// place, a small one refused with code 9 under the caller's name.
TYPED_TEST(RecordFamily, OutputCheckAllocatesReusesOrRefuses) {
    using K = Kind<TypeParam>;
    const TypeParam *like = this->filled(1, 0.0);
    TypeParam rec;
    K::ini(&rec);
    const Census before = census(this->s);
    ASSERT_EQ(K::chk(&rec, like, caller, this->s), 0);
    EXPECT_EQ(K::counts(&rec), K::counts(like));
    EXPECT_NE(census(this->s), before);
    TypeParam *big = this->filled(2, 0.0);
    const auto arrays = K::arrays(big);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(K::chk(big, like, caller, this->s), 0);
    EXPECT_EQ(K::chk(&rec, like, caller, this->s), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_EQ(K::counts(big), K::counts(like));
    EXPECT_EQ(K::arrays(big), arrays);
    TypeParam *small = this->filled(0, 0.0);
    const auto kept = this->contents(small);
    E_clrerr();
    EXPECT_EQ(K::chk(small, like, caller, this->s), 1);
    EXPECT_EQ(E_errtyp(), KW_ESTORAGE);
    EXPECT_EQ(E_errnam(), caller);
    EXPECT_EQ(this->contents(small), kept);
}

// Compaction moves the values into arrays of exactly the counts' size and
// frees the larger ones.
TYPED_TEST(RecordFamily, CompactionShrinksAndFreesTheOldArrays) {
    using K = Kind<TypeParam>;
    TypeParam *r = this->filled(4, 0.0);
    const TypeParam *like = this->filled(0, 50.0);
    ASSERT_EQ(K::chk(r, like, caller, this->s), 0);
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

// ---- Empty records and knot vectors -----------------------------------------

TEST(EmptyRecords, DegreeMinusOneOrAMissingPartMeansEmpty) {
    ControlPolygon pol{0, nullptr};
    KnotVector knt{0, nullptr};
    ValueVector cvl{0, nullptr};
    const std::pair<Curve, bool> curves[] = {
        {{&pol, 2, &knt}, false},    {{&pol, -1, &knt}, true},     {{nullptr, 2, &knt}, true},
        {{&pol, 2, nullptr}, true},  {{&pol, -2, &knt}, false},    {{&pol, INT16_MAX, &knt}, false},
        {{&pol, static_cast<int16_t>(0xFFFF), &knt}, true},
    };
    for (const auto &[c, empty] : curves) {
        EXPECT_EQ(U_iscurn(&c) != 0, empty) << c.p;
        const CurveFunction f{c.pol ? &cvl : nullptr, c.p, c.knt};
        EXPECT_EQ(U_iscfnn(&f) != 0, empty) << c.p;
    }
    Curve c;
    U_inicur(&c);
    EXPECT_TRUE(U_iscurn(&c));
    ControlNet net{0, 0, nullptr};
    ValueGrid svl{0, 0, nullptr};
    for (const auto &[p, q, empty] : {std::tuple{1, 1, false}, std::tuple{-1, 1, true}, std::tuple{1, -1, true}, std::tuple{-2, 3, false}}) {
        const Surface r{&net, static_cast<int16_t>(p), static_cast<int16_t>(q), &knt, &knt};
        const SurfaceFunction f{&svl, static_cast<int16_t>(p), static_cast<int16_t>(q), &knt, &knt};
        EXPECT_EQ(U_issurn(&r) != 0, empty);
        EXPECT_EQ(U_issfnn(&f) != 0, empty);
    }
    const Surface no_v{&net, 1, 1, &knt, nullptr};
    EXPECT_TRUE(U_issurn(&no_v));
}

TEST(KnotVectors, CheckAndCopy) {
    kw::LocalStacks stk;
    KnotVector *k = nullptr;
    ASSERT_EQ(U_kntchk(&k, 4, caller, stk.get()), 0);
    ASSERT_NE(k, nullptr);
    EXPECT_EQ(k->m, 4);
    KnotVector *src = S_getknt(3, stk.get());
    for (int i = 0; i <= 3; ++i) src->U[i] = 0.1 * i;
    double *U = k->U;
    kw::fault::fail_at(1, true);
    EXPECT_EQ(U_kntcop(src, &k, stk.get()), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    EXPECT_EQ(k->m, 3);
    EXPECT_EQ(k->U, U);
    EXPECT_TRUE(std::equal(U, U + 4, src->U));
    src->m = 5;
    E_clrerr();
    EXPECT_EQ(U_kntcop(src, &k, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_ESTORAGE, "U_KNTCOP"));
    EXPECT_EQ(k->m, 3);
}

// ---- Reparametrisation ------------------------------------------------------

TEST(Reparametrisation, OwnIntervalUnchangedOtherwiseLinear) {
    // 0.45 does not survive (u - 0.1) * 1 + 0.1 unchanged: the own interval
    // must leave the knots alone rather than map them.
    ASSERT_NE((0.45 - 0.1) * ((1.3 - 0.1) / (1.3 - 0.1)) + 0.1, 0.45);
    const std::vector<double> U0 = {0.1, 0.1, 0.1, 0.45, 0.7, 1.3, 1.3, 1.3};  // p = 2
    const std::vector<double> V0 = {0.1, 0.1, 0.45, 0.7, 1.3, 1.3};            // q = 1
    std::vector<double> U, V;
    KnotVector knu, knv;
    auto reset = [&] {
        U = U0, V = V0;
        U_makknt(&knu, U.data(), 7);
        U_makknt(&knv, V.data(), 5);
    };
    ControlPolygon pol{4, nullptr};
    Curve cur{&pol, 2, &knu};
    ValueVector cvl{4, nullptr};
    CurveFunction cfn{&cvl, 2, &knu};
    ControlNet net{4, 3, nullptr};
    Surface sur{&net, 2, 1, &knu, &knv};
    ValueGrid svl{4, 3, nullptr};
    SurfaceFunction sfn{&svl, 2, 1, &knu, &knv};
    const std::pair<const char *, std::function<int16_t(double, double, double, double)>> table[] = {
        {"U_curkts", [&](double a, double b, double, double) { return U_curkts(&cur, a, b); }},
        {"U_cfnkts", [&](double a, double b, double, double) { return U_cfnkts(&cfn, a, b); }},
        {"U_surkts", [&](double a, double b, double c, double d) { return U_surkts(&sur, a, b, c, d); }},
        {"U_sfnkts", [&](double a, double b, double c, double d) { return U_sfnkts(&sfn, a, b, c, d); }},
    };
    auto mapped = [](const std::vector<double> &K, int p, double a, double b) {
        std::vector<double> out = K;
        const double scale = (b - a) / (K.back() - K.front());
        for (size_t i = p + 1; i + p + 1 < K.size(); ++i) out[i] = (K[i] - K.front()) * scale + a;
        std::fill_n(out.begin(), p + 1, a);
        std::fill_n(out.end() - p - 1, p + 1, b);
        return out;
    };
    for (const auto &[name, kts] : table) {
        const bool surface = name[2] == 's';
        reset();
        ASSERT_EQ(kts(0.1, 1.3, 0.1, 1.3), 0);
        EXPECT_EQ(U, U0) << name;
        EXPECT_EQ(V, V0) << name;
        ASSERT_EQ(kts(-2.0, 5.0, 3.0, 4.0), 0);
        EXPECT_EQ(U, mapped(U0, 2, -2.0, 5.0)) << name;
        EXPECT_EQ(V, surface ? mapped(V0, 1, 3.0, 4.0) : V0) << name;
    }
}

// ---- Conversions -------------------------------------------------------------

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

// A predicate's answer on a curve over the given control points.
bool on(std::vector<ControlPoint> P, int16_t (*predicate)(const Curve *)) {
    Poly p(std::move(P));
    return predicate(&p.cur) != 0;
}

TEST(Conversions, InPlaceOnEveryControlPoint) {
    const std::vector<ControlPoint> rational = {{2, 4, 6, 2}, {1, 1, M, 0.5}, {3, 0, 3, 3}};
    struct Case {
        const char *name;
        void (*convert)(Curve *);
        std::vector<ControlPoint> want;
    };
    const Case table[] = {
        {"U_cur3t2", U_cur3t2, {{2, 4, M, 2}, {1, 1, M, 0.5}, {3, 0, M, 3}}},
        {"U_cur2t3", U_cur2t3, {{2, 4, 6, 2}, {1, 1, 0, 0.5}, {3, 0, 3, 3}}},
        {"U_currnr", U_currnr, {{2, 4, 6, NR}, {1, 1, M, NR}, {3, 0, 3, NR}}},
        {"U_cureuc", U_cureuc, {{1, 2, 3, NR}, {2, 2, M, NR}, {1, 0, 1, NR}}},
        {"U_curnrr", U_curnrr, rational},  // already rational: unchanged
    };
    for (const Case &c : table) {
        Poly p(rational);
        c.convert(&p.cur);
        for (size_t i = 0; i < p.Pw.size(); ++i) EXPECT_TRUE(SameBits(p.Pw[i], c.want[i])) << c.name << " " << i;
    }
    Poly plain({{1, 2, 3, NR}, {4, 5, M, NR}});
    U_curnrr(&plain.cur);
    EXPECT_TRUE(SameBits(plain.Pw[0], ControlPoint{1, 2, 3, 1.0}));
    EXPECT_TRUE(SameBits(plain.Pw[1], ControlPoint{4, 5, M, 1.0}));

    // Surfaces: the same on every point of the net.
    ControlPoint row0[2] = {{2, 4, 6, 2}, {1, 1, M, NR}}, row1[2] = {{3, 3, 3, 3}, {0, 0, 0, NR}};
    ControlPoint *rows[2] = {row0, row1};
    ControlNet net;
    U_maknt1(&net, rows, 1, 1);
    Surface sur{&net, 1, 1, nullptr, nullptr};
    U_surnrr(&sur);
    EXPECT_TRUE(SameBits(row0[1], ControlPoint{1, 1, M, 1.0}));
    EXPECT_TRUE(SameBits(row1[0], ControlPoint{3, 3, 3, 3}));
    U_sureuc(&sur);
    EXPECT_TRUE(SameBits(row0[0], ControlPoint{1, 2, 3, NR}));
    EXPECT_TRUE(SameBits(row1[1], ControlPoint{0, 0, 0, NR}));
    row1[1].w = 4.0;
    U_surrnr(&sur);
    EXPECT_TRUE(SameBits(row1[1], ControlPoint{0, 0, 0, NR}));
}

TEST(Conversions, MakingCompatibleRaisesToTheRichestKind) {
    Poly a({{1, 2, M, NR}, {3, 4, M, NR}}), b({{1, 2, 5, NR}, {3, 4, 6, NR}}), c({{2, 2, M, 2}, {3, 3, M, 3}});
    Curve *two[2] = {&a.cur, &b.cur};
    U_makcco(two, 1);  // one 3-D, none rational
    EXPECT_TRUE(SameBits(a.Pw[1], ControlPoint{3, 4, 0, NR}));
    EXPECT_TRUE(SameBits(b.Pw[1], ControlPoint{3, 4, 6, NR}));
    Curve *three[3] = {&a.cur, &b.cur, &c.cur};
    U_makcco(three, 2);
    EXPECT_TRUE(SameBits(a.Pw[0], ControlPoint{1, 2, 0, 1}));
    EXPECT_TRUE(SameBits(b.Pw[0], ControlPoint{1, 2, 5, 1}));
    EXPECT_TRUE(SameBits(c.Pw[1], ControlPoint{3, 3, 0, 3}));

    ControlPoint r0[1] = {{1, 1, 1, NR}}, r1[1] = {{2, 2, 2, 2}};
    ControlPoint *g0[1] = {r0}, *g1[1] = {r1};
    ControlNet n0{0, 0, g0}, n1{0, 0, g1};
    Surface s0{&n0, 1, 1, nullptr, nullptr}, s1{&n1, 1, 1, nullptr, nullptr};
    Surface *one[1] = {&s0};
    U_maksco(one, 0);
    EXPECT_FALSE(U_issurr(&s0));
    Surface *both[2] = {&s0, &s1};
    U_maksco(both, 1);
    EXPECT_TRUE(SameBits(r0[0], ControlPoint{1, 1, 1, 1}));
    EXPECT_TRUE(SameBits(r1[0], ControlPoint{2, 2, 2, 2}));
}

// ---- Shape predicates ----------------------------------------------------------

TEST(ShapePredicates, FirstControlPointDecidesKind) {
    Poly flat_first({{1, 1, M, 1}, {1, 1, 1, NR}}), solid_first({{1, 1, 1, NR}, {1, 1, M, 1}});
    EXPECT_FALSE(U_iscur3(&flat_first.cur));
    EXPECT_TRUE(U_iscurr(&flat_first.cur));
    EXPECT_TRUE(U_iscur3(&solid_first.cur));
    EXPECT_FALSE(U_iscurr(&solid_first.cur));
    const std::pair<std::vector<ControlPoint>, bool> z0[] = {
        {{{1, 1, 0, 1}, {2, 2, -0.0, NR}}, true}, {{{1, 1, 0, 1}, {2, 2, M, NR}}, false}, {{{1, 1, 1e-300, 1}}, false}};
    for (const auto &[P, want] : z0) EXPECT_EQ(on(P, U_iscuz0), want);
}

TEST(ShapePredicates, ClosedAndPointLikeAreStrictInCartesianSpace) {
    const double tol = U_tolpoi;  // 1e-7
    const std::pair<std::vector<ControlPoint>, bool> closed[] = {
        {{{0, 0, 0, NR}, {5, 5, 5, NR}, {tol, 0, 0, NR}}, false},  // exactly the tolerance
        {{{0, 0, 0, NR}, {5, 5, 5, NR}, {0.99 * tol, 0, 0, NR}}, true},
        {{{0, 0, 0, 2}, {5, 5, 5, 1}, {2 * tol, 0, 0, 2}}, false},  // Cartesian gap 1e-7
        {{{1, 1, M, 4}, {5, 5, M, 1}, {0.5, 0.5, M, 2}}, true},      // the same point, weighted differently
    };
    for (const auto &[P, want] : closed) EXPECT_EQ(on(P, U_iscurc), want);
    const std::pair<std::vector<ControlPoint>, bool> point[] = {
        {{{1, 1, 1, NR}, {1, 1, 1, NR}, {1, 1, 1, NR}}, true},
        {{{2, 2, 2, 2}, {3, 3, 3, 3}, {1, 1, 1, 1}}, true},          // one Cartesian point
        {{{1, 1, M, NR}, {1, 1 + 2.1 * tol, M, NR}}, false},  // 1.05e-7 from the centroid
        {{{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}, {1, 1, 0, NR}}, false},
        {{{1, 1, M, NR}, {1, 1 + 1.9 * tol, M, NR}}, true},
    };
    for (const auto &[P, want] : point) EXPECT_EQ(on(P, U_iscurp), want);
}

TEST(ShapePredicates, SurfacesAndArrays) {
    // A 3 x 2 net closed in u (rows 0 and 2 agree) but not in v.
    ControlPoint r0[2] = {{0, 0, 0, 1}, {1, 0, 0, 1}}, r1[2] = {{0, 1, 0, 1}, {1, 1, 0, 1}},
                 r2[2] = {{0, 0, 0, 2}, {2, 0, 0, 2}};
    ControlPoint *rows[3] = {r0, r1, r2};
    ControlNet net{2, 1, rows};
    Surface sur{&net, 1, 1, nullptr, nullptr};
    EXPECT_TRUE(U_issurc(&sur, 1));
    EXPECT_FALSE(U_issurc(&sur, 2));
    EXPECT_FALSE(U_issurc(&sur, 3));
    EXPECT_TRUE(U_issurr(&sur));
    EXPECT_FALSE(U_issurp(&sur));
    EXPECT_TRUE(U_isp2dc(reinterpret_cast<const void *const *>(rows), 2, 1, 2, 1, 1e-9));
    EXPECT_FALSE(U_isp2dc(reinterpret_cast<const void *const *>(rows), 2, 1, 3, 1, 1e-9));
    for (ControlPoint *r : rows) r[0] = r[1] = ControlPoint{2, 2, 2, 2};
    EXPECT_TRUE(U_issurp(&sur));
    EXPECT_TRUE(U_issurc(&sur, 2));

    const Point P[3] = {{0, 0, 0}, {1, 1, 1}, {0, 0.5, 0}};
    EXPECT_TRUE(U_isp1dc(P, 2, 1, 0.5 + 1e-12));
    EXPECT_FALSE(U_isp1dc(P, 2, 1, 0.5));
    const ControlPoint C[2] = {{1, 1, M, 1}, {2, 2, M, 2}};
    EXPECT_TRUE(U_isp1dc(C, 1, 2, 1e-12));
    EXPECT_FALSE(U_isp1dc(C, 1, 0, 1.0));
}

// ---- Make, break and get ----------------------------------------------------------

TEST(MakeAndBreak, RoundTripsThroughTheFields) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    ControlPoint Pw[3] = {};
    double U[6] = {0, 0, 0, 1, 1, 1}, V[4] = {0, 0, 1, 1};
    Curve cur;
    ASSERT_EQ(U_makcu2(&cur, Pw, 2, 2, U, 5, s), 0);
    Census records{};
    records[KW_LIST_POL] = records[KW_LIST_KNT] = 1;
    EXPECT_EQ(census(s), records);  // the arrays stay the caller's
    int32_t n, m, r, sv;
    int16_t p, q;
    ControlPoint *P;
    double *Uo, *Vo;
    U_curbre(&cur, &n, &P, &p, &m, &Uo);
    EXPECT_EQ(std::tuple(n, P, p, m, Uo), std::tuple(2, Pw, 2, 5, U));
    double u0, um;
    U_curpar(&cur, &u0, &um);
    EXPECT_EQ(std::pair(u0, um), std::pair(0.0, 1.0));
    KnotVector *knt;
    U_curpku(&cur, &P, &knt, &Uo);
    EXPECT_EQ(std::tuple(P, knt, Uo), std::tuple(Pw, cur.knt, U));
    U_defcur(&cur, 1, 1, 3);
    U_curind(&cur, &n, &m);
    U_curdeg(&cur, &p);
    EXPECT_EQ(std::tuple(n, p, m), std::tuple(1, 1, 3));

    ControlPoint row0[2], row1[2];
    ControlPoint *net[2] = {row0, row1};
    Surface sur;
    ASSERT_EQ(U_maksu2(&sur, net, 1, 1, 2, 1, U, V, 5, 3, s), 0);
    ControlPoint **N;
    U_surbre(&sur, &n, &m, &N, &p, &q, &r, &sv, &Uo, &Vo);
    EXPECT_EQ(std::tuple(n, m, N, p, q, r, sv, Uo, Vo), std::tuple(1, 1, net, 2, 1, 5, 3, U, V));
    U_surknt(&sur, &r, &Uo, &sv, &Vo);
    EXPECT_EQ(std::tuple(r, Uo, sv, Vo), std::tuple(5, U, 3, V));
    U_surind(&sur, &n, &m, &r, &sv);
    EXPECT_EQ(std::tuple(n, m, r, sv), std::tuple(1, 1, 5, 3));
    double ur, v0, vs;
    U_surpar(&sur, &u0, &ur, &v0, &vs);
    EXPECT_EQ(std::tuple(u0, ur, v0, vs), std::tuple(0.0, 1.0, 0.0, 1.0));

    double wx[2] = {2, 4}, wy[2] = {6, 8}, wz[2] = {M, M}, w[2] = {2, NR};
    ASSERT_EQ(U_makcu3(&cur, wx, wy, wz, w, 1, 1, V, 3, s), 0);
    EXPECT_TRUE(SameBits(cur.pol->Pw[1], ControlPoint{4, 8, M, NR}));
    EXPECT_TRUE(holds(s, KW_LIST_C1D, cur.pol->Pw));
    double *gx[2] = {wx, wy}, *gw[2] = {w, w};
    ControlNet built;
    ASSERT_EQ(U_maknt2(&built, gx, gx, gx, gw, 1, 1, s), 0);
    EXPECT_TRUE(SameBits(built.Pw[1][0], ControlPoint{6, 6, 6, 2}));
    ControlPolygon pol;
    ASSERT_EQ(U_makpl2(&pol, wx, wy, wz, w, 1, s), 0);
    EXPECT_TRUE(SameBits(pol.Pw[0], ControlPoint{2, 6, M, 2}));

    double v[3] = {1, 2, 3};
    CurveFunction cfn;
    ASSERT_EQ(U_makcf2(&cfn, v, 2, 2, U, 5, s), 0);
    double *vo;
    U_cfnbre(&cfn, &n, &vo, &p, &m, &Uo);
    EXPECT_EQ(std::tuple(n, vo, p, m, Uo), std::tuple(2, v, 2, 5, U));
    double *vg[2] = {wx, wy};
    SurfaceFunction sfn;
    ASSERT_EQ(U_maksf2(&sfn, vg, 1, 1, 2, 1, U, V, 5, 3, s), 0);
    double **vgo;
    U_sfnbre(&sfn, &n, &m, &vgo, &p, &q, &r, &sv, &Uo, &Vo);
    EXPECT_EQ(std::tuple(n, m, vgo, p, q, r, sv, Uo, Vo), std::tuple(1, 1, vg, 2, 1, 5, 3, U, V));
}

// The degree-1 makers wrap a two-point polygon or a 2 x 2 net.
TEST(MakeAndBreak, DegreeOneCurvesAndSurfaces) {
    kw::LocalStacks stk;
    ControlPolygon *pol = S_getpol(1, stk.get());
    Curve cur;
    ASSERT_EQ(U_makcpl(&cur, pol, 0, 0.5, 1.5, 2, stk.get()), 0);
    EXPECT_EQ(cur.p, 1);
    EXPECT_EQ(std::vector<double>(cur.knt->U, cur.knt->U + 4), (std::vector<double>{0, 0.5, 1.5, 2}));
    ControlNet *net = S_getnet(1, 1, stk.get());
    Surface sur;
    ASSERT_EQ(U_makspl(&sur, net, 0, 1, 2, 5, stk.get()), 0);
    EXPECT_TRUE(sur.p == 1 && sur.q == 1);
    EXPECT_EQ(std::vector<double>(sur.knv->U, sur.knv->U + 4), (std::vector<double>{2, 2, 5, 5}));
    ControlPolygon *three = S_getpol(2, stk.get());
    E_clrerr();
    EXPECT_EQ(U_makcpl(&cur, three, 0, 0, 1, 1, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_EARG, "U_MAKCPL"));
    ControlNet *wide = S_getnet(1, 2, stk.get());
    EXPECT_EQ(U_makspl(&sur, wide, 0, 1, 0, 1, stk.get()), 1);
    EXPECT_TRUE(Recorded(KW_EARG, "U_MAKSPL"));
}

}  // namespace
