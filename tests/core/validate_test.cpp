// The error state and the input validators: each bad record, the exact code,
// the caller's name.
#include <cmath>
#include <limits>
#include <vector>

#include "core/support.hpp"

namespace {

using namespace kwtest;

char caller[] = "N_CALLER";
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// A clamped curve of degree p on n+1 control points, with weight w (or the
// non-rational marker) and z (or the planar marker) in every control point.
struct TestCurve {
    std::vector<ControlPoint> Pw;
    std::vector<double> U;
    ControlPolygon pol;
    KnotVector knt;
    Curve cur;
    TestCurve(int32_t n, int16_t p, double z = 0.0, double w = 1.0) : Pw(n + 1), U(n + p + 2) {
        for (int32_t i = 0; i <= n; ++i) Pw[i] = ControlPoint{1.0 * i, 2.0 * i, z, w};
        for (int32_t i = 0; i <= n + p + 1; ++i) U[i] = std::clamp(i - p, 0, n - p + 1);
        U_makpl1(&pol, Pw.data(), n);
        U_makknt(&knt, U.data(), n + p + 1);
        U_makcu1(&cur, &pol, p, &knt);
    }
};

struct TestSurface {
    std::vector<ControlPoint> data;
    std::vector<ControlPoint *> rows;
    std::vector<double> U, V;
    ControlNet net;
    KnotVector knu, knv;
    Surface sur;
    TestSurface(int32_t n, int32_t m, int16_t p, int16_t q, double w = 1.0)
        : data((n + 1) * (m + 1)), rows(n + 1), U(n + p + 2), V(m + q + 2) {
        for (int32_t i = 0; i <= n; ++i) {
            rows[i] = &data[i * (m + 1)];
            for (int32_t j = 0; j <= m; ++j) rows[i][j] = ControlPoint{1.0 * i, 1.0 * j, 0.0, w};
        }
        for (int32_t i = 0; i <= n + p + 1; ++i) U[i] = std::clamp(i - p, 0, n - p + 1);
        for (int32_t j = 0; j <= m + q + 1; ++j) V[j] = std::clamp(j - q, 0, m - q + 1);
        U_maknt1(&net, rows.data(), n, m);
        U_makknt(&knu, U.data(), n + p + 1);
        U_makknt(&knv, V.data(), m + q + 1);
        U_maksu1(&sur, &net, p, q, &knu, &knv);
    }
};

TEST(ErrorState, ClearSetAndStaleCodes) {
    static char name[] = "A_ROUTINE";
    EXPECT_EQ(E_seterr(KW_EWEIGHT, name), KW_EWEIGHT);
    EXPECT_EQ(E_errnam(), name);
    TestCurve good(3, 2);
    EXPECT_EQ(E_curinp(&good.cur, caller), 0);
    EXPECT_TRUE(Recorded(KW_EWEIGHT, "A_ROUTINE")) << "a successful call keeps the stale code";
    E_clrerr();
    EXPECT_TRUE(Recorded(0, " "));
}

TEST(KnotValidation, FollowsRunsAndMultiplicities) {
    struct Case {
        std::vector<double> U;
        int16_t p;
        bool ok;
    };
    const Case table[] = {
        {{0, 0, 0, 1, 1, 1}, 2, true},
        {{0, 0, 0, 1, 1, 1}, 1, false},             // end runs too long
        {{0, 0, 0, 1, 1, 1}, 3, false},             // too short for the degree
        {{0, 0, 1, 1}, 2, false},                   // too short
        {{0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1}, 2, false},  // interior multiplicity above p
        {{0, 0, 0, 0.5, 0.5, 1, 1, 1}, 2, true},
        {{0, 0, 0, 0.7, 0.3, 1, 1, 1}, 2, false},   // decreasing interior
        {{0, 0, 0, 0.5, 2, 1, 1, 1}, 2, false},     // interior beyond the end run
        {{0, 0, 0.5, 1, 1, 1}, 2, false},           // short start run
        {{0, 0, 0, 0.5, 1, 1}, 2, false},           // short end run
        {{0, 0, 0, NaN, 1, 1, 1}, 2, false},
        {{NaN, NaN, NaN, 1, 1, 1}, 2, false},
        {{0, 0, 0, INFINITY, INFINITY, INFINITY}, 2, false},
        {{0, 0, 0.25, 0.5, 0.75, 1, 1}, 1, true},
        {{0, 0, 0.5, 0.5, 1, 1}, 1, false},
        {{0, 0, 0, 0, 1, 2, 2, 3, 3, 3, 3}, 3, true},
    };
    for (const Case &c : table) {
        std::vector<double> U = c.U;
        KnotVector knt;
        U_makknt(&knt, U.data(), static_cast<int32_t>(U.size()) - 1);
        E_clrerr();
        EXPECT_EQ(E_kntdef(&knt, c.p, caller), c.ok ? 0 : 1) << ::testing::PrintToString(c.U) << " p=" << c.p;
        EXPECT_TRUE(Recorded(c.ok ? 0 : KW_EKNOTS, c.ok ? " " : "N_CALLER"));
    }
}

// A validator on objects spoiled one way each: the status and the exact code
// under the name passed.
template <class T>
struct Spoiled {
    const char *what;
    void (*spoil)(T &);
    int32_t code;
};

template <class T, class... Args>
void expect_codes(std::initializer_list<Spoiled<T>> table, int16_t (*check)(const T &), Args... args) {
    for (const Spoiled<T> &c : table) {
        T t(args...);
        c.spoil(t);
        E_clrerr();
        EXPECT_EQ(check(t), c.code ? 1 : 0) << c.what;
        EXPECT_TRUE(Recorded(c.code, c.code ? "N_CALLER" : " ")) << c.what;
        if (c.code) EXPECT_EQ(E_errnam(), caller) << "the name passed, not a copy";
    }
}

TEST(DefinitionValidation, CurveAndSurfaceCodes) {
    expect_codes<TestCurve>(
        {{"consistent", [](TestCurve &) {}, 0},
         {"m too large", [](TestCurve &t) { t.knt.m -= 1; t.pol.n -= 2; }, KW_ECURVE},
         {"degree 29", [](TestCurve &t) { t.cur.p = 29; t.pol.n -= 27; }, KW_EDEGREE},
         {"control point 3 alone 2-D", [](TestCurve &t) { t.Pw[3].z = kPlanar; }, KW_ECURVE},
         {"control point 3 alone non-rational", [](TestCurve &t) { t.Pw[3].w = kNonRational; }, KW_ECURVE},
         {"control point 0 alone 2-D", [](TestCurve &t) { t.Pw[0].z = kPlanar; }, KW_ECURVE},
         {"no polygon", [](TestCurve &t) { t.cur.pol = nullptr; }, KW_ECURVE}},
        [](const TestCurve &t) { return E_curdef(&t.cur, caller); }, 30, 2);
    expect_codes<TestSurface>(
        {{"consistent", [](TestSurface &) {}, 0},
         {"r off", [](TestSurface &t) { t.knu.m -= 1; }, KW_ESURFACE},
         {"s off", [](TestSurface &t) { t.knv.m += 1; }, KW_ESURFACE},
         {"q = 29", [](TestSurface &t) { t.sur.q = 29; t.net.m -= 27; }, KW_EDEGREE},
         {"one non-rational point", [](TestSurface &t) { t.net.Pw[2][1].w = kNonRational; }, KW_ESURFACE}},
        [](const TestSurface &t) { return E_surdef(&t.sur, caller); }, 3, 30, 2, 2);
    // All 2-D and non-rational is one consistent kind; the limit is U_maxdeg.
    TestCurve flat(5, 3, kPlanar, kNonRational);
    EXPECT_EQ(E_curdef(&flat.cur, caller), 0);
    const int16_t saved = U_maxdeg;
    U_maxdeg = 2;
    EXPECT_EQ(E_curdef(&flat.cur, caller), 1);
    EXPECT_TRUE(Recorded(KW_EDEGREE, "N_CALLER"));
    U_maxdeg = saved;
}

TEST(WeightValidation, BoundsAreInclusive) {
    const std::pair<double, bool> table[] = {{0.001, true},      {100.0, true},  {0.000999, false},
                                             {100.000001, false}, {-1.0, false}, {NaN, false}};
    for (const auto &[w, ok] : table) {
        TestCurve t(4, 2);
        t.Pw[2].w = w;
        TestSurface s(2, 2, 1, 1);
        s.net.Pw[1][2].w = w;
        E_clrerr();
        EXPECT_EQ(E_curwei(&t.cur, caller), ok ? 0 : 1) << w;
        EXPECT_EQ(E_surwei(&s.sur, caller), ok ? 0 : 1) << w;
        EXPECT_TRUE(Recorded(ok ? 0 : KW_EWEIGHT, ok ? " " : "N_CALLER"));
    }
    TestCurve nonrational(4, 2, 0.0, kNonRational);
    EXPECT_EQ(E_curwei(&nonrational.cur, caller), 0);
}

// The composite checks stop at the first failure, in their order.
TEST(InputValidation, StopsAtTheFirstFailure) {
    auto curve_code = [](bool def, bool wei, bool knt) {
        TestCurve t(4, 2);
        if (!def) t.Pw[1].z = kPlanar;
        if (!wei) t.Pw[2].w = 1000.0;
        if (!knt) t.U[3] = 5.0;
        E_clrerr();
        E_curinp(&t.cur, caller);
        return E_errtyp();
    };
    EXPECT_EQ(curve_code(false, false, false), KW_ECURVE);
    EXPECT_EQ(curve_code(true, false, false), KW_EWEIGHT);
    EXPECT_EQ(curve_code(true, true, false), KW_EKNOTS);
    EXPECT_EQ(curve_code(true, true, true), 0);
    TestSurface s(3, 4, 2, 3);
    s.V[4] = -1.0;  // only the v knots are bad
    EXPECT_EQ(E_surinp(&s.sur, caller), 1);
    EXPECT_TRUE(Recorded(KW_EKNOTS, "N_CALLER"));
}

TEST(ParameterValidation, EndsBelongToTheRangeButNotToItsInside) {
    std::vector<double> U = {0.5, 0.5, 2.0, 2.0};
    KnotVector knt;
    U_makknt(&knt, U.data(), 3);
    struct Case {
        double u;
        bool in_range, inside;
    };
    const Case table[] = {{0.5, true, false},
                          {2.0, true, false},
                          {std::nextafter(0.5, 1.0), true, true},
                          {std::nextafter(2.0, 0.0), true, true},
                          {std::nextafter(0.5, 0.0), false, false},
                          {std::nextafter(2.0, 3.0), false, false},
                          {NaN, false, false}};
    for (const Case &c : table) {
        E_clrerr();
        EXPECT_EQ(E_parval(&knt, c.u, caller), c.in_range ? 0 : 1) << c.u;
        EXPECT_TRUE(Recorded(c.in_range ? 0 : KW_EPARAM, c.in_range ? " " : "N_CALLER"));
        E_clrerr();
        EXPECT_EQ(E_endpar(&knt, c.u, caller), c.inside ? 0 : 1) << c.u;
        EXPECT_TRUE(Recorded(c.inside ? 0 : KW_EPARAM, c.inside ? " " : "N_CALLER"));
    }
}

// Every count of every storage validator is compared: equal passes, one more
// than held fails with code 9.
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
        EXPECT_EQ(check(held), 0);
        for (size_t i = 0; i < held.size(); ++i) {
            Counts more = held;
            more[i] += 1;
            E_clrerr();
            EXPECT_EQ(check(more), 1) << "count " << i;
            EXPECT_TRUE(Recorded(KW_ESTORAGE, "N_CALLER"));
        }
    }
}

// The first coincident pair is reported by the index of its second point,
// compared as four-component vectors, and no code is recorded.
TEST(DistinctPoints, ReportTheFirstCoincidentPair) {
    struct Case {
        const char *what;
        void (*spoil)(TestCurve &);
        int32_t at;
    };
    const Case table[] = {
        {"all distinct", [](TestCurve &) {}, -1},
        {"3 on 2", [](TestCurve &t) { t.Pw[3] = t.Pw[2]; }, 3},
        {"4 on 3 and 5 on 4", [](TestCurve &t) { t.Pw[5] = t.Pw[4] = t.Pw[3]; }, 4},
        {"exactly the tolerance apart", [](TestCurve &t) { t.Pw[2] = t.Pw[1]; t.Pw[2].x += 0.5; }, -1},
        {"same x, y, z, other weight", [](TestCurve &t) { t.Pw[2] = t.Pw[1]; t.Pw[2].w = 2.0; }, -1},
        {"not a number", [](TestCurve &t) { t.Pw[4].y = NaN; }, 4},
    };
    for (const Case &c : table) {
        TestCurve t(6, 2);
        c.spoil(t);
        int32_t i = -1;
        E_clrerr();
        EXPECT_EQ(E_curcpd(&t.cur, 0.5, &i), c.at >= 0 ? 1 : 0) << c.what;
        EXPECT_EQ(i, c.at) << c.what;
        EXPECT_EQ(E_errtyp(), 0);
    }
    TestCurve flat(3, 2, kPlanar, kNonRational);
    flat.Pw[2] = flat.Pw[1];
    flat.Pw[2].x += 0.25;
    int32_t i = -1;
    EXPECT_EQ(E_curcpd(&flat.cur, 0.5, &i), 1) << "the markers take no part in the distance";
    EXPECT_EQ(i, 2);

    TestSurface s(3, 3, 1, 1);
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
