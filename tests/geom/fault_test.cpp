// Fault injection: every routine that allocates fails cleanly at every
// allocation, with code 15 from an allocator and nothing left behind. The
// fits and predicates work on private contexts, so the sweep's emptiness
// check is the leak checker's; a predicate refused its scratch answers no.
#include "core/fault_sweep.hpp"
#include "support.hpp"

using namespace geomtest;

TEST(FaultInjection, EveryAllocatingRoutine) {
    static const Point O = P3(0, 0, 0), X = P3(1, 0, 0), Y = P3(0, 1, 0);
    static Point P[7], ring[6], ball[6], C, N;
    static ControlPoint Pw[7], Rw[6];
    static double U[8] = {0, 0, 1, 2, 3, 4, 5, 5}, r, mean, max;
    static Line L;
    static Plane pl;
    for (int i = 0; i < 7; ++i) {
        P[i] = P3(std::cos(i), std::sin(i), 0.1 * (i % 2));
        A_poicpt(P[i], &Pw[i]);
    }
    for (int i = 0; i < 6; ++i) {
        ring[i] = P3(std::cos(i), std::sin(i), 1);
        ball[i] = P3(std::cos(i) * std::sin(i + 0.5), std::sin(i) * std::sin(i + 0.5), std::cos(i + 0.5));
        A_poicpt(ring[i], &Rw[i]);
    }
    static ControlPolygon pol{5, Rw};
    static KnotVector knt{7, U}, ku{3, U + 1}, kv{4, U + 1};
    static Curve cur{&pol, 1, &knt};
    static ControlPoint *rows[2] = {Rw, Rw + 3};
    static ControlNet net{1, 2, rows};
    static Surface sur{&net, 1, 1, &ku, &kv};
    using kwtest::call;
    auto matrix = [](const char *name, int16_t (*build)(RealMatrix *, StorageStacks *)) {
        return call(name, [build](StorageStacks *s) { RealMatrix T; M_inirma(&T); return int(build(&T, s)); });
    };
    auto no = [](const char *name, std::function<int16_t()> predicate) {  // 0 on success, 1 when it answers no
        return call(name, [predicate](StorageStacks *) { return 1 - predicate(); });
    };
    const kwtest::FaultCase cases[] = {
        matrix("G_tratrl", [](RealMatrix *T, StorageStacks *s) { return G_tratrl(O, X, T, s); }),
        matrix("G_travec", [](RealMatrix *T, StorageStacks *s) { return G_travec(O, X, Y, Y, T, s); }),
        matrix("G_tragnr", [](RealMatrix *T, StorageStacks *s) { return G_tragnr(O, X, 30, T, s); }),
        matrix("G_traort", [](RealMatrix *T, StorageStacks *s) { return G_traort(O, X, Y, T, s); }),
        call("G_lsqdpl", [](StorageStacks *) { return int(G_lsqdpl(P, 6, &C, &N, &mean, &max)); }),
        call("G_lsqln3", [](StorageStacks *) { return int(G_lsqln3(P, 6, &L, &mean, &max)); }),
        call("G_lsqpln", [](StorageStacks *) { return int(G_lsqpln(Pw, 6, &pl, &mean, &max)); }),
        call("G_mxapln", [](StorageStacks *) { return int(G_mxapln(P, 6, &pl, &max)); }),
        call("G_lsqcir", [](StorageStacks *) { return int(G_lsqcir(P, 6, &C, &N, &r, &mean, &max)); }),
        call("G_lsqsph", [](StorageStacks *) { return int(G_lsqsph(P, 6, &C, &r, &mean, &max)); }),
        no("U_isp1pl", [] { return U_isp1pl(ring, 5, 1e-9); }),
        no("U_isp1ci", [] { return U_isp1ci(ring, 5, 1e-9); }),
        no("U_isp1sp", [] { return U_isp1sp(ball, 5, 1e-9); }),
        no("U_iscurf", [] { return U_iscurf(&cur, 1e-9, &N); }),
        no("U_issurf", [] { return U_issurf(&sur, 1e-9, &N); }),
        no("U_issflt", [] { return U_issflt(&sur, 1e-9); }),
    };
    for (const kwtest::FaultCase &c : cases) EXPECT_FALSE(kwtest::sweep(c).empty()) << c.name;
}
