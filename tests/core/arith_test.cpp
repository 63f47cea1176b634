// Point arithmetic: the markers carried bit for bit through every routine,
// and the values checked against plain Cartesian geometry.
#include <functional>
#include <random>
#include <vector>

#include "core/support.hpp"

namespace {

using namespace kwtest;
using CP = ControlPoint;
constexpr double M = kPlanar, NR = kNonRational;

// One control point of each kind: 3-D or 2-D, rational or not.
std::vector<CP> kinds(std::mt19937_64 &rng) {
    std::uniform_real_distribution<double> c(-4.0, 4.0), w(0.5, 2.0);
    std::vector<CP> out;
    for (bool flat : {false, true})
        for (bool weighted : {true, false}) out.push_back({c(rng), c(rng), flat ? M : c(rng), weighted ? w(rng) : NR});
    return out;
}

Point cartesian(const CP &P) { return result<Point>(A_euclid, P); }

// s0 P0 + s1 P1 + ... by the sum rule: z over the operands that have one
// (the marker when none has), w the marker as soon as one operand lacks it.
CP reference(const std::vector<double> &s, const std::vector<CP> &P) {
    CP r{0, 0, 0, 0};
    bool any_z = false, all_w = true;
    for (size_t i = 0; i < P.size(); ++i) {
        r.x += s[i] * P[i].x;
        r.y += s[i] * P[i].y;
        if (P[i].z != M) r.z += s[i] * P[i].z, any_z = true;
        if (P[i].w == NR) all_w = false;
        else r.w += s[i] * P[i].w;
    }
    return {r.x, r.y, any_z ? r.z : M, all_w ? r.w : NR};
}

// Every combination routine over every assignment of kinds to its operands.
TEST(Combinations, CarryTheMarkersOfTheSumRule) {
    const double a = 0.75, b = -1.5, c = 2.0, d = 0.25;
    const std::pair<std::vector<double>, std::function<CP(const std::vector<CP> &)>> table[] = {
        {{1, 1}, [](auto &P) { return result<CP>(A_sumcpt, P[0], P[1]); }},
        {{a, b}, [=](auto &P) { return result<CP>(A_comcpt, a, P[0], b, P[1]); }},
        {{1, b}, [=](auto &P) { CP R = P[0]; A_updcpt(b, P[1], &R); return R; }},
        {{1, a, b}, [=](auto &P) { return result<CP>(A_circpt, P[0], a, P[1], b, P[2]); }},
        {{a, b, c, d}, [=](auto &P) { return result<CP>(A_bilcpt, a, P[0], b, P[1], c, P[2], d, P[3]); }},
    };
    std::mt19937_64 rng(7);
    for (const auto &[s, run] : table) {
        const std::vector<CP> pool = kinds(rng);
        for (size_t code = 0; code < (1u << (2 * s.size())); ++code) {
            std::vector<CP> P;
            for (size_t i = 0; i < s.size(); ++i) P.push_back(pool[(code >> (2 * i)) & 3]);
            const CP R = run(P), E = reference(s, P);
            SCOPED_TRACE(s.size());
            EXPECT_EQ(bits(R.z) == bits(M), bits(E.z) == bits(M));
            EXPECT_EQ(bits(R.w) == bits(NR), bits(E.w) == bits(NR));
            EXPECT_TRUE(Near(Point{R.x, R.y, E.z == M ? 0 : R.z}, Point{E.x, E.y, E.z == M ? 0 : E.z}, 1e-12));
            if (E.w != NR) EXPECT_NEAR(R.w, E.w, 1e-12);
        }
    }
}

// Known answers, markers included, of the routines with mixed-kind rules
// other than the sum rule.
TEST(KnownAnswers, SumsDifferencesScalingsAndConversions) {
    const std::pair<CP, CP> table[] = {
        {result<CP>(A_difcpt, CP{1, 2, M, 1}, CP{3, 4, 5, 1}), {-2, -2, 5, 0}},  // as it is
        {result<CP>(A_difcpt, CP{1, 2, 5, 1}, CP{3, 4, M, 1}), {-2, -2, 5, 0}},
        {result<CP>(A_difcpt, CP{1, 2, 3, NR}, CP{1, 1, 1, 4}), {0, 1, 2, NR}},
        {result<CP>(A_sumpcp, Point{1, 2, M}, CP{1, 1, 3, 2}), {2, 3, 3, NR}},  // a Point has no weight
        {result<CP>(A_difpcp, Point{1, 2, 3}, CP{1, 1, M, NR}), {0, 1, 3, NR}},
        // Component products: a term exists only where both its factors do.
        {result<CP>(A_vcocpt, CP{1, 2, 3, 2}, CP{2, 2, 2, 3}, CP{1, 1, M, 1}, CP{1, 1, 1, 1}), {3, 5, 6, 7}},
        {result<CP>(A_vcocpt, CP{1, 2, M, 2}, CP{2, 2, 2, 3}, CP{1, 1, M, 1}, CP{1, 1, 1, NR}), {3, 5, M, NR}},
        {result<CP>(A_crocpo, CP{1, 0, M, 2}, CP{0, 1, M, NR}), {0, 0, 1, 2}},  // planar z read as 0
        {result<CP>(A_crocpo, CP{1, 2, 3, NR}, CP{4, 5, 6, 3}), {-3, 6, -3, 3}},
        {result<CP>(A_crocpo, CP{2, 0, 0, 2}, CP{0, 3, 0, 3}), {0, 0, 6, 6}},
        {result<CP>(A_crocpo, CP{1, 0, 0, NR}, CP{0, 1, 0, NR}), {0, 0, 1, NR}},
        {result<CP>(A_weight, CP{1, 2, 3, 2}), {2, 4, 6, 2}},
        {result<CP>(A_weight, CP{1, 2, 3, NR}), {1, 2, 3, NR}},
        {result<CP>(A_weight, CP{1, 2, M, 2}), {2, 4, M, 2}},
        {result<CP>(A_euccpt, CP{2, 4, M, 2}), {1, 2, M, NR}},
        {result<CP>(A_poicpt, Point{1, 2, M}), {1, 2, M, NR}},
    };
    for (const auto &[got, want] : table) EXPECT_TRUE(SameBits(got, want));
    const std::pair<Point, Point> points[] = {
        {result<Point>(A_euclid, CP{2, 4, M, 2}), {1, 2, 0}},
        {result<Point>(A_euclid, CP{2, 4, 6, NR}), {2, 4, 6}},
        {result<Point>(A_cptpoi, CP{2, 4, M, 2}), {2, 4, 0}},
        {result<Point>(A_bilpoi, 1.0, Point{1, 2, 3}, 2.0, Point{-2, 0.5, 4}, 3.0, Point{0, 1, -1}, 0.5, Point{2, 2, 2}), {-2, 7, 9}},
        {result<Point>(A_cirpoi, Point{1, 2, 3}, 2.0, Point{-2, 0.5, 4}, -1.0, Point{0, 1, -1}), {-3, 2, 12}},
        {result<Point>(A_vcopoi, Point{1, 2, 3}, Point{-2, 0.5, 4}, Point{0, 1, -1}, Point{2, 2, 2}), {-2, 3, 10}},
    };
    for (const auto &[got, want] : points) EXPECT_TRUE(SameBits(got, want));
    double x, y, z, w;
    A_exteco(CP{2, 4, M, 4}, &x, &y, &z);
    EXPECT_TRUE(SameBits(Point{x, y, z}, Point{0.5, 1, 0}));
    CP Q;
    A_initcp(-0.0, 1, 2, 3, &Q);  // stored values come back as they are
    A_setcpz(M, &Q);
    A_setcpw(NR, &Q);
    A_extcpc(Q, &x, &y, &z, &w);
    EXPECT_TRUE(SameBits(CP{x, y, z, w}, CP{-0.0, 1, M, NR}));
    Point U{1, 2, 3};
    A_updpoi(2, Point{-2, 0.5, 4}, &U);
    EXPECT_TRUE(SameBits(U, Point{-3, 3, 11}));
}

TEST(KnownAnswers, DotProductsCountAMissingWeightAsOne) {
    struct Row {
        CP a, b;
        double dot, d, w;  // A_dotcpt; A_dotcpo's product and weight
    };
    const Row table[] = {
        {{1, 0, 0, 2}, {1, 0, 0, NR}, 3, 1, 2},
        {{1, 0, 0, NR}, {1, 0, 0, 2}, 3, 1, 2},
        {{1, 2, 3, 2}, {1, 1, 1, 3}, 12, 6, 6},
        {{1, 2, 3, NR}, {1, 1, 1, NR}, 6, 6, NR},
        {{1, 2, M, NR}, {1, 1, 7, NR}, 3, 3, NR},  // z left out when either is planar
    };
    for (const Row &r : table) {
        double dot, d, w;
        A_dotcpt(r.a, r.b, &dot);
        A_dotcpo(r.a, r.b, &d, &w);
        EXPECT_EQ(dot, r.dot);
        EXPECT_EQ(d, r.d);
        EXPECT_EQ(bits(w), bits(r.w));
    }
    double d;
    A_magcpt(CP{3, 4, M, NR}, &d);
    EXPECT_EQ(d, 5.0);
}

// A projective 4 x 4 transform as a RealMatrix.
struct Transform {
    double rows[4][4] = {{0.5, -1, 0, 2}, {1, 0.5, 0.25, -1}, {0, 0.3, 2, 0.5}, {0.1, -0.05, 0.2, 1.5}};
    double *a[4] = {rows[0], rows[1], rows[2], rows[3]};
    RealMatrix T{3, 3, a, KW_FULL, 4};
    Point apply(Point P) const {
        double r[4];
        for (int i = 0; i < 4; ++i) r[i] = rows[i][0] * P.x + rows[i][1] * P.y + rows[i][2] * P.z + rows[i][3];
        return {r[0] / r[3], r[1] / r[3], r[2] / r[3]};
    }
};

// Over random points of every kind: scalings, reweighting, transforms and
// translations act on the Cartesian point and keep the markers.
TEST(Properties, CartesianMeaningOfEveryKind) {
    const Transform t;
    EXPECT_TRUE(Near(result<Point>(A_trapoi, 1.0, 2.0, 3.0, &t.T), t.apply(Point{1, 2, 3}), 1e-14));
    std::mt19937_64 rng(11);
    for (int trial = 0; trial < 50; ++trial) {
        for (const CP &P : kinds(rng)) {
            const Point E = cartesian(P);
            const double z0 = P.z == M ? 0.0 : 1.0;  // 0 where z is no coordinate
            auto same_kind = [&](const CP &R) { return (R.z == M) == (P.z == M) && bits(R.w) == bits(P.w); };
            CP R = result<CP>(A_scacpt, -2.0, P);
            EXPECT_TRUE(SameBits(R, CP{-2 * P.x, -2 * P.y, P.z == M ? M : -2 * P.z, P.w == NR ? NR : -2 * P.w}));
            EXPECT_TRUE(SameBits(result<Point>(A_scacpo, -2.0, P), Point{R.x, R.y, z0 * R.z}));
            R = result<CP>(A_sclcpt, 2.0, 3.0, 4.0, Point{1, 1, 1}, P);
            EXPECT_TRUE(same_kind(R));
            EXPECT_TRUE(Near(cartesian(R), Point{2 * E.x - 1, 3 * E.y - 2, z0 * (4 * E.z - 3)}, 1e-12));
            R = result<CP>(A_trlcpt, P, 1.5, -2.0, 4.0);
            EXPECT_TRUE(same_kind(R));
            EXPECT_TRUE(Near(cartesian(R), Point{E.x + 1.5, E.y - 2.0, z0 * (E.z + 4.0)}, 1e-12));
            R = result<CP>(A_tracpt, P, &t.T);
            const Point G = t.apply(E);
            EXPECT_TRUE((R.z == M) == (P.z == M) && (R.w == NR) == (P.w == NR));
            EXPECT_TRUE(Near(cartesian(R), Point{G.x, G.y, z0 * G.z}, 1e-12));
            // Reweighting keeps the point; to no weight it is the Cartesian form.
            R = result<CP>(A_rewecp, P, 3.5);
            EXPECT_TRUE(Near(cartesian(R), E, 1e-13) && R.w == 3.5 && (R.z == M) == (P.z == M));
            EXPECT_TRUE(SameBits(result<CP>(A_rewecp, P, NR), result<CP>(A_euccpt, P)));
            Point C;
            double w;
            A_mapcpt(P, &C, &w);
            EXPECT_TRUE(SameBits(C, E) && bits(w) == bits(P.w));
        }
    }
}

// The derivative of C = A / w from the homogeneous point and its derivative,
// against a central difference of the quotient.
TEST(Properties, RationalDerivativeMatchesFiniteDifference) {
    auto Cw = [](double t) { return CP{1 + t * t, 2 * t - t * t * t, 3 - t, 1 + t + 0.5 * t * t}; };
    auto dCw = [](double t) { return CP{2 * t, 2 - 3 * t * t, -1, 1 + t}; };
    for (double t : {-0.4, 0.0, 0.3, 1.7}) {
        const double h = 1e-6;
        const Point lo = cartesian(Cw(t - h)), hi = cartesian(Cw(t + h));
        const Point fd{(hi.x - lo.x) / (2 * h), (hi.y - lo.y) / (2 * h), (hi.z - lo.z) / (2 * h)};
        EXPECT_TRUE(Near(result<Point>(A_ratder, Cw(t), dCw(t)), fd, 1e-7)) << t;
        CP flat = Cw(t), dflat = dCw(t), plain = Cw(t), dplain = dCw(t);
        flat.z = dflat.z = M;
        plain.w = dplain.w = NR;
        EXPECT_EQ(result<Point>(A_ratder, flat, dflat).z, 0.0);
        EXPECT_TRUE(SameBits(result<Point>(A_ratder, plain, dplain), Point{dplain.x, dplain.y, dplain.z}));
    }
}

}  // namespace
