// The objects the cases run on, built once with a fixed seed, and the
// registration of a case: "group/implementation", timed per operation.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "knotwork.h"

namespace bench {

// A private storage context for the life of the program.
inline StorageStacks *stacks() {
    static StorageStacks stk = [] {
        StorageStacks s;
        N_inurbs(&s);
        return s;
    }();
    return &stk;
}

struct Rng {
    std::mt19937_64 g;
    double uniform(double a, double b) { return a + (b - a) * (double(g() >> 11) * 0x1p-53); }
};

// Clamped knots of degree p for n + 1 control points over [0, 1], interior
// knots spaced like chord lengths of uneven data.
inline std::vector<double> knots(int p, int n, Rng &rng) {
    std::vector<double> U(p + 1, 0.0);
    while (int(U.size()) < n + 1) U.push_back(U.back() + rng.uniform(0.5, 1.5));
    const double end = U.back() + rng.uniform(0.5, 1.5);
    for (double &u : U) u /= end;
    U.insert(U.end(), p + 1, 1.0);
    return U;
}

// A control point in [-1, 1]^3, homogeneous with a weight in [0.5, 2] when
// rational.
inline ControlPoint control_point(Rng &rng, bool rational) {
    const double w = rational ? rng.uniform(0.5, 2.0) : 1.0;
    return ControlPoint{w * rng.uniform(-1, 1), w * rng.uniform(-1, 1), w * rng.uniform(-1, 1),
                        rational ? w : KW_NONRATIONAL};
}

// The 3-D cubic of 100 control points.
inline Curve make_curve(bool rational) {
    Rng rng{std::mt19937_64(rational ? 7 : 5)};
    constexpr int p = 3, n = 99;
    const std::vector<double> U = knots(p, n, rng);
    static char name[] = "BENCH";
    Curve cur;
    U_inicur(&cur);
    U_curchk(&cur, n, p, n + p + 1, name, stacks());
    std::copy(U.begin(), U.end(), cur.knt->U);
    for (int i = 0; i <= n; ++i) cur.pol->Pw[i] = control_point(rng, rational);
    return cur;
}

// The bicubic surface on a 20 x 20 net.
inline Surface make_surface(bool rational) {
    static char name[] = "BENCH";
    Rng rng{std::mt19937_64(rational ? 11 : 13)};
    constexpr int p = 3, n = 19;
    const std::vector<double> U = knots(p, n, rng), V = knots(p, n, rng);
    Surface sur;
    U_inisur(&sur);
    U_surchk(&sur, n, n, p, p, n + p + 1, n + p + 1, name, stacks());
    std::copy(U.begin(), U.end(), sur.knu->U);
    std::copy(V.begin(), V.end(), sur.knv->U);
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= n; ++j) sur.net->Pw[i][j] = control_point(rng, rational);
    return sur;
}

// count parameters in [a, b], uniformly at random or the same sorted.
inline std::vector<double> parameters(size_t count, double a, double b, bool sorted, uint64_t seed = 3) {
    Rng rng{std::mt19937_64(seed)};
    std::vector<double> u(count);
    for (double &x : u) x = rng.uniform(a, b);
    if (sorted) std::sort(u.begin(), u.end());
    return u;
}

// A grid of side x side parameter pairs over [0, 1]^2, rows of constant u,
// as flat u and v arrays.
inline void grid(int side, std::vector<double> &u, std::vector<double> &v) {
    u.clear();
    v.clear();
    for (int i = 0; i < side; ++i)
        for (int j = 0; j < side; ++j) u.push_back(i / (side - 1.0)), v.push_back(j / (side - 1.0));
}

// Registers group/impl; body(state) runs one pass and returns how many
// operations it made.
template <class Body>
void add(const std::string &group, const std::string &impl, Body body) {
    benchmark::RegisterBenchmark((group + "/" + impl).c_str(), [body](benchmark::State &state) {
        int64_t ops = 0;
        for (auto _ : state) ops += body(state);
        state.SetItemsProcessed(ops);
    })->Unit(benchmark::kMillisecond);
}

// Keeps a result alive for the optimiser.
template <class T>
inline void keep(const T &value) {
    benchmark::DoNotOptimize(value);
}

}  // namespace bench
