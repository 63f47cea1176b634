// Scaling of banded LU decomposition without pivoting plus one substitution, on
// diagonally dominant systems of band width 7: the time grows linearly
// with the order n (complexity fitted as O(N)).
#include <benchmark/benchmark.h>

#include <algorithm>

#include "knotwork.h"

namespace {

constexpr int32_t kWidth = 7;

void BandedLuScaling(benchmark::State &state) {
    const auto n = static_cast<int32_t>(state.range(0)) - 1;
    StorageStacks stk;
    N_inurbs(&stk);
    RealMatrix A, LU;
    M_inirma(&A);
    M_inirma(&LU);
    double *b = S_getr1d(n, &stk), *x = S_getr1d(n, &stk);
    if (M_getrma(&A, n, n, KW_BANDED, kWidth, &stk) || M_getrma(&LU, n, n, KW_BANDED, kWidth, &stk) || !b ||
        !x) {
        state.SkipWithError("out of memory");
        N_enurbs(&stk);
        return;
    }
    // The stored band, unused corners included; the diagonal sits at w/2.
    for (int32_t i = 0; i <= n; ++i) {
        for (int32_t c = 0; c < kWidth; ++c) A.a[i][c] = c == kWidth / 2 ? 8.0 : 1.0 / (1 + c + i % 5);
        b[i] = 1.0 + i % 3;
    }
    const size_t values = static_cast<size_t>(n + 1) * kWidth;
    for (auto _ : state) {
        state.PauseTiming();
        std::copy_n(A.a[0], values, LU.a[0]);
        state.ResumeTiming();
        if (M_ludcmp(&LU) || M_rafoba(&LU, b, x)) state.SkipWithError("singular");
        benchmark::DoNotOptimize(x[n / 2]);
        benchmark::ClobberMemory();
    }
    state.SetComplexityN(n + 1);
    N_enurbs(&stk);
}

}  // namespace

BENCHMARK(BandedLuScaling)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
