// The error state and the input validators: each bad record, the exact code,
// the caller's name.
#include <functional>
#include <limits>

#include "core/support.hpp"

namespace {

using namespace kwtest;

char caller[] = "N_CALLER";
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// The call's status, and the code recorded under the caller's own name (the
// pointer passed, not a copy), or nothing recorded when it passes.
::testing::AssertionResult Refused(int16_t status, int32_t code) {
    if (status != (code ? 1 : 0)) return ::testing::AssertionFailure() << "status " << status;
    if (code && E_errnam() != caller) return ::testing::AssertionFailure() << "name " << E_errnam();
    return Recorded(code, code ? "N_CALLER" : " ");
}

TEST(ErrorState, ClearSetAndStaleCodes) {
    static char name[] = "A_ROUTINE";
    EXPECT_EQ(E_seterr(KW_EWEIGHT, name), KW_EWEIGHT);
    OwnCurve good(3, 2);
    EXPECT_EQ(E_curinp(&good.cur, caller), 0);
    EXPECT_TRUE(Recorded(KW_EWEIGHT, "A_ROUTINE")) << "a successful call keeps the stale code";
    EXPECT_EQ(E_errnam(), name);
    E_clrerr();
    EXPECT_TRUE(Recorded(0, " "));
}

TEST(KnotValidation, FollowsRunsAndMultiplicities) {
    const std::tuple<std::vector<double>, int16_t, bool> table[] = {
        {{0, 0, 0, 1, 1, 1}, 2, true},
        {{0, 0, 0, 1, 1, 1}, 1, false},                 // end runs too long
        {{0, 0, 1, 1}, 2, false},                       // too short for the degree
        {{0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1}, 2, false},  // interior multiplicity above p
        {{0, 0, 0, 0.5, 0.5, 1, 1, 1}, 2, true},
        {{0, 0, 0, 0.7, 0.3, 1, 1, 1}, 2, false},       // decreasing interior
        {{0, 0, 0, 0.5, 2, 1, 1, 1}, 2, false},         // interior beyond the end run
        {{0, 0, 0.5, 1, 1, 1}, 2, false},               // short start run
        {{0, 0, 0, 0.5, 1, 1}, 2, false},               // short end run
        {{0, 0, 0, NaN, 1, 1, 1}, 2, false},
        {{0, 0, 0, 0, 1, 2, 2, 3, 3, 3, 3}, 3, true},
    };
    for (auto [U, p, ok] : table) {
        const KnotVector knt{static_cast<int32_t>(U.size()) - 1, U.data()};
        E_clrerr();
        EXPECT_TRUE(Refused(E_kntdef(&knt, p, caller), ok ? 0 : KW_EKNOTS)) << ::testing::PrintToString(U) << p;
    }
}

// A validator on objects spoiled one way each.
template <class T, class... Args>
void expect_codes(std::initializer_list<std::tuple<const char *, std::function<void(T &)>, int32_t>> table,
                  std::function<int16_t(const T &)> check, Args... args) {
    for (const auto &[what, spoil, code] : table) {
        T t(args...);
        spoil(t);
        E_clrerr();
        EXPECT_TRUE(Refused(check(t), code)) << what;
    }
}

TEST(DefinitionValidation, CurveAndSurfaceCodes) {
    expect_codes<OwnCurve>(
        {{"consistent", [](OwnCurve &) {}, 0},
         {"m too large", [](OwnCurve &t) { t.knt.m -= 1; t.pol.n -= 2; }, KW_ECURVE},
         {"degree 29", [](OwnCurve &t) { t.cur.p = 29; t.pol.n -= 27; }, KW_EDEGREE},
         {"control point 3 alone 2-D", [](OwnCurve &t) { t.Pw[3].z = kPlanar; }, KW_ECURVE},
         {"control point 3 alone non-rational", [](OwnCurve &t) { t.Pw[3].w = kNonRational; }, KW_ECURVE},
         {"control point 0 alone 2-D", [](OwnCurve &t) { t.Pw[0].z = kPlanar; }, KW_ECURVE},
         {"no polygon", [](OwnCurve &t) { t.cur.pol = nullptr; }, KW_ECURVE}},
        [](const OwnCurve &t) { return E_curdef(&t.cur, caller); }, 30, int16_t{2}, 0.0, 1.0);
    expect_codes<OwnSurface>(
        {{"consistent", [](OwnSurface &) {}, 0},
         {"r off", [](OwnSurface &t) { t.knu.m -= 1; }, KW_ESURFACE},
         {"s off", [](OwnSurface &t) { t.knv.m += 1; }, KW_ESURFACE},
         {"q = 29", [](OwnSurface &t) { t.sur.q = 29; t.net.m -= 27; }, KW_EDEGREE},
         {"one non-rational point", [](OwnSurface &t) { t.net.Pw[2][1].w = kNonRational; }, KW_ESURFACE}},
        [](const OwnSurface &t) { return E_surdef(&t.sur, caller); }, 3, 30, int16_t{2}, int16_t{2}, 1.0);
    // All 2-D and non-rational is one consistent kind; the limit is U_maxdeg.
    OwnCurve flat(5, 3, kPlanar, kNonRational);
    EXPECT_EQ(E_curdef(&flat.cur, caller), 0);
    const int16_t saved = U_maxdeg;
    U_maxdeg = 2;
    EXPECT_TRUE(Refused(E_curdef(&flat.cur, caller), KW_EDEGREE));
    U_maxdeg = saved;
}

// Weight bounds are inclusive; the composite checks stop at the first failure.
TEST(InputValidation, WeightsThenKnotsInOrder) {
    for (const auto &[w, ok] : {std::pair{0.001, true}, {100.0, true}, {0.000999, false}, {100.000001, false},
                                {NaN, false}}) {
        OwnCurve t(4, 2);
        t.Pw[2].w = w;
        OwnSurface s(2, 2, 1, 1);
        s.net.Pw[1][2].w = w;
        E_clrerr();
        EXPECT_TRUE(Refused(E_curwei(&t.cur, caller), ok ? 0 : KW_EWEIGHT)) << w;
        EXPECT_TRUE(Refused(E_surwei(&s.sur, caller), ok ? 0 : KW_EWEIGHT)) << w;
    }
    OwnCurve nonrational(4, 2, 0.0, kNonRational);
    nonrational.Pw[3].w = kNonRational;
    EXPECT_EQ(E_curwei(&nonrational.cur, caller), 0);
    for (int bad = 0; bad < 4; ++bad) {  // definition, weights, knots, none
        OwnCurve t(4, 2);
        if (bad < 1) t.Pw[1].z = kPlanar;
        if (bad < 2) t.Pw[2].w = 1000.0;
        if (bad < 3) t.U[3] = 5.0;
        E_clrerr();
        EXPECT_TRUE(Refused(E_curinp(&t.cur, caller), std::array<int32_t, 4>{KW_ECURVE, KW_EWEIGHT, KW_EKNOTS, 0}[bad]));
    }
    OwnSurface s(3, 4, 2, 3);
    s.V[4] = -1.0;  // only the v knots are bad
    EXPECT_TRUE(Refused(E_surinp(&s.sur, caller), KW_EKNOTS));
}

TEST(ParameterValidation, EndsBelongToTheRangeButNotToItsInside) {
    std::vector<double> U = {0.5, 0.5, 2.0, 2.0};
    const KnotVector knt{3, U.data()};
    const std::tuple<double, bool, bool> table[] = {
        {0.5, true, false}, {2.0, true, false}, {std::nextafter(0.5, 1.0), true, true},
        {std::nextafter(2.0, 0.0), true, true}, {std::nextafter(0.5, 0.0), false, false},
        {std::nextafter(2.0, 3.0), false, false}, {NaN, false, false}};
    for (const auto &[u, in_range, inside] : table) {
        E_clrerr();
        EXPECT_TRUE(Refused(E_parval(&knt, u, caller), in_range ? 0 : KW_EPARAM)) << u;
        E_clrerr();
        EXPECT_TRUE(Refused(E_endpar(&knt, u, caller), inside ? 0 : KW_EPARAM)) << u;
    }
}

// Every count of every storage validator: equal passes, one more fails.
TEST(StorageValidation, EachCountMustBeHeld) {
    kw::LocalStacks stk;
    StorageStacks *s = stk.get();
    Curve *c = S_getcur(3, 2, 6, s);
    Surface *r = S_getsur(3, 4, 1, 2, 5, 7, s);
    CurveFunction *f = S_getcfn(3, 2, 6, s);
    SurfaceFunction *g = S_getsfn(3, 4, 1, 2, 5, 7, s);
    RealMatrix *ra = S_getrma(3, 4, KW_FULL, 4, s);
    IntegerMatrix *ia = S_getima(3, 4, KW_FULL, 4, s);
    PointMatrix *pa = S_getpma(3, 4, KW_FULL, 4, s);
    ControlPointMatrix *ca = S_getcma(3, 4, KW_FULL, 4, s);
    using Counts = std::vector<int32_t>;
    const std::pair<Counts, std::function<int16_t(const Counts &)>> table[] = {
        {{3, 6}, [=](const Counts &k) { return E_cursto(c, k[0], k[1], caller); }},
        {{3, 6}, [=](const Counts &k) { return E_cfnsto(f, k[0], k[1], caller); }},
        {{3, 4, 5, 7}, [=](const Counts &k) { return E_sursto(r, k[0], k[1], k[2], k[3], caller); }},
        {{3, 4, 5, 7}, [=](const Counts &k) { return E_sfnsto(g, k[0], k[1], k[2], k[3], caller); }},
        {{3, 4}, [=](const Counts &k) { return E_rmasto(ra, k[0], k[1], caller); }},
        {{3, 4}, [=](const Counts &k) { return E_imasto(ia, k[0], k[1], caller); }},
        {{3, 4}, [=](const Counts &k) { return E_pmasto(pa, k[0], k[1], caller); }},
        {{3, 4}, [=](const Counts &k) { return E_cmasto(ca, k[0], k[1], caller); }},
    };
    for (const auto &[held, check] : table) {
        E_clrerr();
        EXPECT_TRUE(Refused(check(held), 0));
        for (size_t i = 0; i < held.size(); ++i) {
            Counts more = held;
            more[i] += 1;
            EXPECT_TRUE(Refused(check(more), KW_ESTORAGE)) << "count " << i;
        }
    }
}

// The first coincident pair is reported by the index of its second point,
// compared as four-component vectors, and no code is recorded.
TEST(DistinctPoints, ReportTheFirstCoincidentPair) {
    const std::tuple<const char *, std::function<void(std::vector<ControlPoint> &)>, int32_t> table[] = {
        {"all distinct", [](auto &) {}, -1},
        {"3 on 2", [](auto &P) { P[3] = P[2]; }, 3},
        {"4 on 3 and 5 on 4", [](auto &P) { P[5] = P[4] = P[3]; }, 4},
        {"exactly the tolerance apart", [](auto &P) { P[2] = P[1]; P[2].x += 0.5; }, -1},
        {"same x, y, z, other weight", [](auto &P) { P[2] = P[1]; P[2].w = 2.0; }, -1},
        {"not a number", [](auto &P) { P[4].y = NaN; }, 4},
        {"markers take no part", [](auto &P) { for (auto &Q : P) Q = {Q.x, Q.y, kPlanar, kNonRational}; P[2] = P[1]; P[2].x += 0.25; }, 2},
    };
    for (const auto &[what, spoil, at] : table) {
        OwnCurve t(6, 2);
        spoil(t.Pw);
        int32_t i = -1;
        E_clrerr();
        EXPECT_EQ(E_curcpd(&t.cur, 0.5, &i), at >= 0 ? 1 : 0) << what;
        EXPECT_EQ(i, at) << what;
        EXPECT_EQ(E_errtyp(), 0);
    }
    OwnSurface s(3, 3, 1, 1);
    int32_t a = -1, b = -1;
    EXPECT_EQ(E_surcpd(&s.sur, 0.5, &a, &b), 0);
    s.net.Pw[2][3] = s.net.Pw[1][3];  // a column pair
    EXPECT_EQ(E_surcpd(&s.sur, 0.5, &a, &b), 1);
    EXPECT_EQ(std::pair(a, b), std::pair(2, 3));
    s.net.Pw[3][2] = s.net.Pw[3][1];  // a row pair, found first
    EXPECT_EQ(E_surcpd(&s.sur, 0.5, &a, &b), 1);
    EXPECT_EQ(std::pair(a, b), std::pair(3, 2));
}

}  // namespace
