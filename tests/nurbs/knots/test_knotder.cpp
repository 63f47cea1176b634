// Derivatives of basis functions with respect to a knot, against one-sided
// finite differences in that knot: a knot that opens its run (knot side 1)
// can only move left without passing its neighbours, one that closes it
// (knot side 2) only right.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// N[i,p](u) on the knots with U[j] moved by t.
double moved(const Knots &k, int i, int j, double t, double u, int16_t side, StorageStacks *stk) {
    std::vector<double> U(k.U);
    U[j] += t;
    KnotVector knt;
    U_makknt(&knt, U.data(), k.knt.m);
    double N = 0.0;
    EXPECT_EQ(N_kntbas(&knt, i, int16_t(k.p), u, side, &N, stk), 0);
    return N;
}

// The interior knots j that may be differentiated from kside, with the room
// to move them.
std::vector<std::pair<int, double>> movable(const Knots &k, int16_t kside) {
    std::vector<std::pair<int, double>> out;
    const int p = k.p, n = k.n();
    for (int j = p + 1; j <= n; ++j) {
        const bool opens = k.U[j] != k.U[j - 1], closes = k.U[j] != k.U[j + 1];
        if (kside == KW_RIGHT ? !opens : !closes) continue;
        const int s = int(std::count(k.U.begin(), k.U.end(), k.U[j]));
        if (s >= p) continue;
        const double room = kside == KW_RIGHT ? k.U[j] - k.U[j - 1] : k.U[j + 1] - k.U[j];
        out.emplace_back(j, room);
    }
    return out;
}

// A parameter at least margin away from every knot.
double off_knots(Rng &rng, const Knots &k, double margin) {
    for (;;) {
        const double u = rng.uniform(k.U.front(), k.U.back());
        bool clear = true;
        for (double t : k.U) clear = clear && std::fabs(u - t) > margin;
        if (clear) return u;
    }
}

}  // namespace

TEST(KnotDerivatives, AgreeWithOneSidedDifferencesInTheKnot) {
    Rng rng(31);
    int checked = 0;
    for (Knots &k : random_vectors(7, 70)) {
        if (k.p > 7 || k.p < 2) continue;
        Context ctx;
        for (int16_t kside : {KW_RIGHT, KW_LEFT})
            for (auto [j, room] : movable(k, kside)) {
                const double h = 1e-4 * room;
                const double u = off_knots(rng, k, 4 * h);
                for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                    std::vector<double> d(k.p + 2, -9.0);
                    ASSERT_EQ(N_kntadk(&k.knt, j, int16_t(k.p), u, kside, side, d.data(), ctx.get()), 0);
                    double sum = 0.0, scale = 0.0;
                    for (int i = j - k.p - 1; i <= j; ++i) {
                        const double dk = d[i - j + k.p + 1];
                        auto f = [&](double t) { return moved(k, i, j, t, u, side, ctx.get()); };
                        const double fd = one_sided(f, h, kside == KW_RIGHT ? -1 : 1);
                        EXPECT_NEAR(dk, fd, 1e-5 * (1.0 + std::fabs(fd)) / room)
                            << "p " << k.p << " i " << i << " j " << j << " kside " << kside;
                        sum += dk;
                        scale = std::max(scale, std::fabs(dk));
                        ++checked;
                    }
                    // Moving a knot keeps the partition of unity.
                    EXPECT_NEAR(sum, 0.0, 1e-12 * (1.0 + scale));
                }
            }
        EXPECT_EQ(ctx.nodes(), 0);
    }
    EXPECT_GT(checked, 500);
}

TEST(KnotDerivatives, FunctionsAwayFromTheKnotDoNotMove) {
    Knots k = make_knots({0, 0, 0, 0, 0.2, 0.4, 0.6, 0.8, 1, 1, 1, 1}, 3);
    Context ctx;
    double d = -1.0;
    ASSERT_EQ(N_kntbdk(&k.knt, 0, 6, 3, 0.5, KW_RIGHT, KW_RIGHT, &d, ctx.get()), 0);
    EXPECT_EQ(d, 0.0);
    ASSERT_EQ(N_kntbdk(&k.knt, 7, 6, 3, 0.5, KW_RIGHT, KW_RIGHT, &d, ctx.get()), 0);
    EXPECT_EQ(d, 0.0);
}

TEST(KnotDerivatives, RationalBasisAgreesWithDifferences) {
    Rng rng(32);
    for (int p : {2, 3, 4, 5}) {
        Context ctx;
        Curve cur = random_curve(rng, {p, p + 6, true, false, 1}, ctx);
        const int n = cur.pol->n, before = ctx.nodes();
        std::vector<double> U(cur.knt->U, cur.knt->U + cur.knt->m + 1);
        for (int j = p + 1; j <= n; ++j) {
            const double room = U[j] - U[j - 1], h = 1e-4 * room;
            const double u = rng.uniform(0.0, 1.0);
            std::vector<double> dR(n + 1, -9.0);
            ASSERT_EQ(N_kntakr(&cur, j, u, KW_RIGHT, KW_RIGHT, dR.data(), ctx.get()), 0);
            double sum = 0.0;
            for (int i = 0; i <= n; ++i) {
                auto f = [&](double t) {
                    return knot_moved(cur.knt, j, t, [&] {
                        double R;
                        EXPECT_EQ(N_kntrcb(&cur, i, u, KW_RIGHT, &R), 0);
                        return R;
                    });
                };
                EXPECT_NEAR(dR[i], one_sided(f, h, -1), 1e-5 / room) << "p " << p << " i " << i << " j " << j;
                sum += dR[i];
            }
            EXPECT_NEAR(sum, 0.0, 1e-11);
        }
        EXPECT_EQ(ctx.nodes(), before);
    }
}

TEST(KnotDerivatives, RefuseKnotsTheyCannotMove) {
    // Cubic with a double knot at 0.4 and a triple one at 0.7.
    Knots k = make_knots({0, 0, 0, 0, 0.4, 0.4, 0.7, 0.7, 0.7, 1, 1, 1, 1}, 3);
    Context ctx;
    double d = -1.0;
    struct Case {
        int32_t i, j;
        int16_t kside, side;
        int code;
    };
    const Case cases[] = {
        {3, 5, KW_RIGHT, KW_RIGHT, KW_EARG},  // second of a double knot, from the right
        {3, 4, KW_LEFT, KW_RIGHT, KW_EARG},   // first of it, from the left
        {3, 6, KW_RIGHT, KW_RIGHT, KW_EMULT}, // multiplicity p
        {3, 8, KW_LEFT, KW_RIGHT, KW_EMULT},
        {3, 3, KW_RIGHT, KW_RIGHT, KW_ESIZE}, // an end knot
        {3, 9, KW_LEFT, KW_RIGHT, KW_ESIZE},
        {9, 4, KW_RIGHT, KW_RIGHT, KW_ESIZE}, // no such function
        {3, 4, 0, KW_RIGHT, KW_ECASE},
        {3, 4, KW_RIGHT, 3, KW_ECASE},
    };
    for (const Case &c : cases) {
        E_clrerr();
        EXPECT_EQ(N_kntbdk(&k.knt, c.i, c.j, 3, 0.5, c.kside, c.side, &d, ctx.get()), 1) << c.j;
        EXPECT_EQ(E_errtyp(), c.code) << "i " << c.i << " j " << c.j;
        EXPECT_STREQ(E_errnam(), "N_KNTBDK");
    }
    // The accepted ends of the double knot.
    EXPECT_EQ(N_kntbdk(&k.knt, 3, 4, 3, 0.5, KW_RIGHT, KW_RIGHT, &d, ctx.get()), 0);
    EXPECT_EQ(N_kntbdk(&k.knt, 3, 5, 3, 0.5, KW_LEFT, KW_RIGHT, &d, ctx.get()), 0);
    std::vector<double> all(5, -1.0);
    E_clrerr();
    EXPECT_EQ(N_kntadk(&k.knt, 6, 3, 0.5, KW_RIGHT, KW_RIGHT, all.data(), ctx.get()), 1);
    EXPECT_EQ(E_errtyp(), KW_EMULT);
    EXPECT_EQ(all[0], -1.0);
    EXPECT_EQ(ctx.nodes(), 0);
}
