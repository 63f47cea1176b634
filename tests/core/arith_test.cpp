// Point arithmetic: the markers carried bit for bit through every routine,
// and the values checked against plain Cartesian geometry.
#include <functional>
#include <random>
#include <vector>

#include "core/support.hpp"

namespace {

using namespace kwtest;

constexpr double M = kPlanar, NR = kNonRational;

// One control point of each kind: 3-D or 2-D, rational or not.
std::vector<ControlPoint> kinds(std::mt19937_64 &rng) {
    std::uniform_real_distribution<double> c(-4.0, 4.0), w(0.5, 2.0);
    std::vector<ControlPoint> out;
    for (bool flat : {false, true})
        for (bool weighted : {true, false}) out.push_back({c(rng), c(rng), flat ? M : c(rng), weighted ? w(rng) : NR});
    return out;
}

// s0 P0 + s1 P1 + ... with the combination rule: x and y always combine; z
// over the operands that have one, the planar marker when none has; w the
// non-rational marker as soon as one operand lacks a weight.
ControlPoint reference(const std::vector<double> &s, const std::vector<ControlPoint> &P) {
    ControlPoint r{0, 0, 0, 0};
    bool any_z = false, all_w = true;
    for (size_t i = 0; i < P.size(); ++i) {
        r.x += s[i] * P[i].x;
        r.y += s[i] * P[i].y;
        if (P[i].z != M) r.z += s[i] * P[i].z, any_z = true;
        if (P[i].w == NR) all_w = false;
        else r.w += s[i] * P[i].w;
    }
    if (!any_z) r.z = M;
    if (!all_w) r.w = NR;
    return r;
}

// Every combination routine over every mix of operand kinds.
TEST(Combinations, CarryTheMarkersOfTheSumRule) {
    using Run = std::function<ControlPoint(const std::vector<ControlPoint> &)>;
    const double a = 0.75, b = -1.5, c = 2.0, d = 0.25;
    struct Case {
        const char *name;
        std::vector<double> s;
        Run run;
    };
    const Case table[] = {
        {"A_sumcpt", {1, 1}, [](auto &P) { ControlPoint R; A_sumcpt(P[0], P[1], &R); return R; }},
        {"A_comcpt", {a, b}, [=](auto &P) { ControlPoint R; A_comcpt(a, P[0], b, P[1], &R); return R; }},
        {"A_updcpt", {1, b}, [=](auto &P) { ControlPoint R = P[0]; A_updcpt(b, P[1], &R); return R; }},
        {"A_circpt", {1, a, b}, [=](auto &P) { ControlPoint R; A_circpt(P[0], a, P[1], b, P[2], &R); return R; }},
        {"A_bilcpt", {a, b, c, d}, [=](auto &P) { ControlPoint R; A_bilcpt(a, P[0], b, P[1], c, P[2], d, P[3], &R); return R; }},
    };
    std::mt19937_64 rng(7);
    for (const Case &cs : table) {
        const std::vector<ControlPoint> pool = kinds(rng);
        std::vector<size_t> pick(cs.s.size(), 0);
        for (;;) {  // every assignment of kinds to operands
            std::vector<ControlPoint> P;
            for (size_t k : pick) P.push_back(pool[k]);
            const ControlPoint R = cs.run(P), E = reference(cs.s, P);
            EXPECT_EQ(bits(R.z) == bits(M), bits(E.z) == bits(M)) << cs.name;
            EXPECT_EQ(bits(R.w) == bits(NR), bits(E.w) == bits(NR)) << cs.name;
            EXPECT_NEAR(R.x, E.x, 1e-12) << cs.name;
            EXPECT_NEAR(R.y, E.y, 1e-12) << cs.name;
            if (E.z != M) EXPECT_NEAR(R.z, E.z, 1e-12) << cs.name;
            if (E.w != NR) EXPECT_NEAR(R.w, E.w, 1e-12) << cs.name;
            size_t i = 0;
            while (i < pick.size() && ++pick[i] == pool.size()) pick[i++] = 0;
            if (i == pick.size()) break;
        }
    }
}

TEST(Combinations, EdgeCasesOfSumsAndDifferences) {
    struct Case {
        const char *what;
        void (*op)(ControlPoint, ControlPoint, ControlPoint *);
        ControlPoint a, b, want;
    };
    const Case table[] = {
        {"planar + 3-D takes the 3-D z", A_sumcpt, {1, 2, M, 1}, {3, 4, 5, 1}, {4, 6, 5, 2}},
        {"rational + non-rational", A_sumcpt, {1, 2, 3, 2}, {1, 1, 1, NR}, {2, 3, 4, NR}},
        {"planar - 3-D takes the 3-D z as it is", A_difcpt, {1, 2, M, 1}, {3, 4, 5, 1}, {-2, -2, 5, 0}},
        {"3-D - planar keeps the 3-D z", A_difcpt, {1, 2, 5, 1}, {3, 4, M, 1}, {-2, -2, 5, 0}},
        {"non-rational - rational", A_difcpt, {1, 2, 3, NR}, {1, 1, 1, 4}, {0, 1, 2, NR}},
    };
    for (const Case &c : table) {
        ControlPoint R;
        c.op(c.a, c.b, &R);
        EXPECT_TRUE(SameBits(R, c.want)) << c.what;
    }
    // A Point enters as a control point without a weight.
    ControlPoint R;
    A_sumpcp(Point{1, 2, M}, ControlPoint{1, 1, 3, 2}, &R);
    EXPECT_TRUE(SameBits(R, ControlPoint{2, 3, 3, NR}));
    A_difpcp(Point{1, 2, 3}, ControlPoint{1, 1, M, NR}, &R);
    EXPECT_TRUE(SameBits(R, ControlPoint{0, 1, 3, NR}));
    // Component products: a term exists only where both of its factors do.
    A_vcocpt({1, 2, 3, 2}, {2, 2, 2, 3}, {1, 1, M, 1}, {1, 1, 1, 1}, &R);
    EXPECT_TRUE(SameBits(R, ControlPoint{3, 5, 6, 7}));
    A_vcocpt({1, 2, M, 2}, {2, 2, 2, 3}, {1, 1, M, 1}, {1, 1, 1, NR}, &R);
    EXPECT_TRUE(SameBits(R, ControlPoint{3, 5, M, NR}));
}

TEST(Scalings, KeepTheMarkers) {
    const ControlPoint table[] = {{1, -2, 3, 4}, {1, -2, M, 4}, {1, -2, 3, NR}, {1, -2, M, NR}};
    for (const ControlPoint &P : table) {
        ControlPoint R;
        A_scacpt(-2.0, P, &R);
        EXPECT_TRUE(SameBits(R, ControlPoint{-2, 4, P.z == M ? M : -6, P.w == NR ? NR : -8}));
        Point Q;
        A_scacpo(-2.0, P, &Q);
        EXPECT_TRUE(SameBits(Q, Point{-2, 4, P.z == M ? 0.0 : -6}));
        // About a centre, per axis, in Cartesian space; the weight is kept.
        A_sclcpt(2.0, 3.0, 4.0, Point{1, 1, 1}, P, &R);
        Point E, F;
        A_euclid(P, &E);
        A_euclid(R, &F);
        EXPECT_TRUE(Near(F, Point{1 + 2 * (E.x - 1), 1 + 3 * (E.y - 1), P.z == M ? 0.0 : 1 + 4 * (E.z - 1)}, 1e-12));
        EXPECT_EQ(bits(R.w), bits(P.w));
        EXPECT_EQ(R.z == M, P.z == M);
    }
}

TEST(Products, DotCrossAndMagnitude) {
    struct Dot {
        ControlPoint a, b;
        double d;
    };
    const Dot dots[] = {
        {{1, 0, 0, 2}, {1, 0, 0, NR}, 3},  // one weight present counts once
        {{1, 0, 0, NR}, {1, 0, 0, 2}, 3},
        {{1, 2, 3, 2}, {1, 1, 1, 3}, 12},
        {{1, 2, 3, NR}, {1, 1, 1, NR}, 6},  // no weight term
        {{1, 2, M, NR}, {1, 1, 7, NR}, 3},  // z left out when either is planar
    };
    for (const Dot &t : dots) {
        double d;
        A_dotcpt(t.a, t.b, &d);
        EXPECT_EQ(d, t.d);
    }
    double d, w;
    A_magcpt(ControlPoint{3, 4, M, NR}, &d);
    EXPECT_EQ(d, 5.0);
    const std::pair<std::pair<ControlPoint, ControlPoint>, std::pair<double, double>> dotcpo[] = {
        {{{1, 2, 3, 2}, {1, 1, 1, 3}}, {6, 6}},
        {{{1, 2, 3, NR}, {1, 1, 1, 3}}, {6, 3}},
        {{{1, 2, 3, 2}, {1, 1, M, NR}}, {3, 2}},
        {{{1, 2, 3, NR}, {1, 1, 1, NR}}, {6, NR}},
    };
    for (const auto &[ab, dw] : dotcpo) {
        A_dotcpo(ab.first, ab.second, &d, &w);
        EXPECT_EQ(d, dw.first);
        EXPECT_EQ(bits(w), bits(dw.second));
    }
    const std::pair<std::pair<ControlPoint, ControlPoint>, ControlPoint> cross[] = {
        {{{1, 0, 0, NR}, {0, 1, 0, NR}}, {0, 0, 1, NR}},
        {{{1, 0, M, 2}, {0, 1, M, NR}}, {0, 0, 1, 2}},  // planar z read as 0, one weight
        {{{1, 2, 3, NR}, {4, 5, 6, 3}}, {-3, 6, -3, 3}},
        {{{2, 0, 0, 2}, {0, 3, 0, 3}}, {0, 0, 6, 6}},
    };
    for (const auto &[ab, want] : cross) {
        ControlPoint R;
        A_crocpo(ab.first, ab.second, &R);
        EXPECT_TRUE(SameBits(R, want));
    }
}

TEST(Conversions, MarkersAndDivisions) {
    Point P;
    A_euclid(ControlPoint{2, 4, M, 2}, &P);
    EXPECT_TRUE(SameBits(P, Point{1, 2, 0}));
    A_euclid(ControlPoint{2, 4, 6, NR}, &P);
    EXPECT_TRUE(SameBits(P, Point{2, 4, 6}));
    ControlPoint Q;
    A_weight(ControlPoint{1, 2, 3, 2}, &Q);
    EXPECT_TRUE(SameBits(Q, ControlPoint{2, 4, 6, 2}));
    A_weight(ControlPoint{1, 2, 3, NR}, &Q);
    EXPECT_TRUE(SameBits(Q, ControlPoint{1, 2, 3, NR}));
    A_weight(ControlPoint{1, 2, M, 2}, &Q);
    EXPECT_TRUE(SameBits(Q, ControlPoint{2, 4, M, 2}));
    A_euccpt(ControlPoint{2, 4, M, 2}, &Q);
    EXPECT_TRUE(SameBits(Q, ControlPoint{1, 2, M, NR}));
    A_cptpoi(ControlPoint{2, 4, M, 2}, &P);
    EXPECT_TRUE(SameBits(P, Point{2, 4, 0}));
    A_poicpt(Point{1, 2, M}, &Q);
    EXPECT_TRUE(SameBits(Q, ControlPoint{1, 2, M, NR}));
    double x, y, z, w;
    A_exteco(ControlPoint{2, 4, M, 4}, &x, &y, &z);
    EXPECT_TRUE(SameBits(Point{x, y, z}, Point{0.5, 1, 0}));
    A_mapcpt(ControlPoint{2, 4, 6, 2}, &P, &w);
    EXPECT_TRUE(SameBits(P, Point{1, 2, 3}));
    EXPECT_EQ(w, 2.0);
    // Stored values come back as they are, markers and signed zeros included.
    A_initcp(-0.0, 1, 2, 3, &Q);
    A_setcpz(M, &Q);
    A_setcpw(NR, &Q);
    A_extcpc(Q, &x, &y, &z, &w);
    EXPECT_TRUE(SameBits(ControlPoint{x, y, z, w}, ControlPoint{-0.0, 1, M, NR}));
}

// Reweighting, weighting and dividing out are inverse to each other.
TEST(Conversions, RoundTripsKeepTheCartesianPoint) {
    std::mt19937_64 rng(11);
    for (int trial = 0; trial < 50; ++trial) {
        for (const ControlPoint &P : kinds(rng)) {
            Point E, F;
            A_euclid(P, &E);
            ControlPoint Q, R;
            A_rewecp(P, 3.5, &Q);
            A_euclid(Q, &F);
            EXPECT_TRUE(Near(E, F, 1e-13));
            EXPECT_EQ(Q.w, 3.5);
            EXPECT_EQ(Q.z == M, P.z == M);
            A_rewecp(P, NR, &Q);  // to a non-rational point
            A_euccpt(P, &R);
            EXPECT_TRUE(SameBits(Q, R));
            A_weight(ControlPoint{R.x, R.y, R.z, P.w}, &Q);  // weight back
            EXPECT_TRUE(Near(Point{Q.x, Q.y, Q.z == M ? 0 : Q.z}, Point{P.x, P.y, P.z == M ? 0 : P.z}, 1e-13));
            EXPECT_EQ(bits(Q.w), bits(P.w));
        }
    }
}

// A projective 4 x 4 transform on a RealMatrix, rows R0..R3.
struct Transform {
    double rows[4][4] = {{0.5, -1, 0, 2}, {1, 0.5, 0.25, -1}, {0, 0.3, 2, 0.5}, {0.1, -0.05, 0.2, 1.5}};
    double *a[4] = {rows[0], rows[1], rows[2], rows[3]};
    RealMatrix T;
    Transform() { M_makrma(&T, 3, 3, a, KW_FULL, 4); }
    Point apply(Point P) const {
        double r[4];
        for (int i = 0; i < 4; ++i) r[i] = rows[i][0] * P.x + rows[i][1] * P.y + rows[i][2] * P.z + rows[i][3];
        return {r[0] / r[3], r[1] / r[3], r[2] / r[3]};
    }
};

TEST(Transforms, AgreeWithTheCartesianTransform) {
    const Transform t;
    Point P;
    A_trapoi(1, 2, 3, &t.T, &P);
    EXPECT_TRUE(Near(P, t.apply(Point{1, 2, 3}), 1e-14));
    std::mt19937_64 rng(3);
    for (int trial = 0; trial < 50; ++trial) {
        for (const ControlPoint &Pw : kinds(rng)) {
            ControlPoint Q;
            A_tracpt(Pw, &t.T, &Q);
            Point E, F;
            A_euclid(Pw, &E);
            A_euclid(Q, &F);
            const Point G = t.apply(E);
            EXPECT_TRUE(Near(F, Point{G.x, G.y, Pw.z == M ? 0.0 : G.z}, 1e-12));
            EXPECT_EQ(Q.z == M, Pw.z == M);
            EXPECT_EQ(Q.w == NR, Pw.w == NR);
            // A translation moves the Cartesian point and keeps the weight.
            A_trlcpt(Pw, 1.5, -2.0, 4.0, &Q);
            A_euclid(Q, &F);
            EXPECT_TRUE(Near(F, Point{E.x + 1.5, E.y - 2.0, Pw.z == M ? 0.0 : E.z + 4.0}, 1e-12));
            EXPECT_EQ(bits(Q.w), bits(Pw.w));
            EXPECT_EQ(Q.z == M, Pw.z == M);
        }
    }
}

// The derivative of C = A / w from the homogeneous point and its derivative,
// against a central difference of the quotient.
TEST(Transforms, RationalDerivativeMatchesFiniteDifference) {
    // A(t) = (1 + t^2, 2t - t^3, 3 - t), w(t) = 1 + t + 0.5 t^2.
    auto Cw = [](double t) { return ControlPoint{1 + t * t, 2 * t - t * t * t, 3 - t, 1 + t + 0.5 * t * t}; };
    auto dCw = [](double t) { return ControlPoint{2 * t, 2 - 3 * t * t, -1, 1 + t}; };
    for (double t : {-0.4, 0.0, 0.3, 1.7}) {
        const double h = 1e-6;
        Point lo, hi, d;
        A_euclid(Cw(t - h), &lo);
        A_euclid(Cw(t + h), &hi);
        A_ratder(Cw(t), dCw(t), &d);
        EXPECT_TRUE(Near(d, Point{(hi.x - lo.x) / (2 * h), (hi.y - lo.y) / (2 * h), (hi.z - lo.z) / (2 * h)}, 1e-7)) << t;
        ControlPoint flat = Cw(t), dflat = dCw(t);
        flat.z = dflat.z = M;
        A_ratder(flat, dflat, &d);
        EXPECT_EQ(d.z, 0.0);
        ControlPoint plain = Cw(t), dplain = dCw(t);
        plain.w = dplain.w = NR;
        A_ratder(plain, dplain, &d);
        EXPECT_TRUE(SameBits(d, Point{dplain.x, dplain.y, dplain.z}));
    }
}

// The fixed combinations of Points take their coefficients in order.
TEST(PointRoutines, CoefficientsInOrder) {
    const Point P{1, 2, 3}, Q{-2, 0.5, 4}, R{0, 1, -1}, S{2, 2, 2};
    Point T, U = P;
    A_bilpoi(1, P, 2, Q, 3, R, 0.5, S, &T);
    EXPECT_TRUE(SameBits(T, Point{-2, 7, 9}));
    A_cirpoi(P, 2, Q, -1, R, &T);
    EXPECT_TRUE(SameBits(T, Point{-3, 2, 12}));
    A_vcopoi(P, Q, R, S, &T);
    EXPECT_TRUE(SameBits(T, Point{-2, 3, 10}));
    A_updpoi(2, Q, &U);
    EXPECT_TRUE(SameBits(U, Point{-3, 3, 11}));
}

}  // namespace
