// Helpers shared by the test programs: list census, bitwise comparisons,
// recorded errors and small records on arrays of their own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "core/storage.hpp"
#include "knotwork.h"

namespace kwtest {

constexpr double kPlanar = DBL_MAX;
constexpr double kNonRational = -DBL_MAX;

inline uint64_t bits(double d) {
    uint64_t u;
    std::memcpy(&u, &d, sizeof u);
    return u;
}

// The result that f writes through its last argument.
template <class R, class F, class... A>
R result(F f, A... a) {
    R r;
    f(a..., &r);
    return r;
}

// Node counts of every list of a context.
using Census = std::array<int, KW_STACK_LISTS>;
inline Census census(const StorageStacks *stk) {
    Census c{};
    for (int list = 0; list < KW_STACK_LISTS; ++list)
        for (const StackNode *node = stk->head[list]; node; node = node->next) ++c[list];
    return c;
}
inline bool all_empty(const StorageStacks *stk) { return census(stk) == Census{}; }
inline int nodes(const StorageStacks *stk) {
    const Census c = census(stk);
    return std::accumulate(c.begin(), c.end(), 0);
}

// A storage context for one test, emptied at the end.
struct Context : kw::LocalStacks {
    int nodes() const { return kwtest::nodes(const_cast<Context *>(this)->get()); }
};
// The census of a context holding the given numbers of nodes on the given lists.
inline Census nodes_on(const std::vector<std::pair<int, int>> &lists) {
    Census c{};
    for (const auto &[list, count] : lists) c[list] = count;
    return c;
}

// Whether list holds a node for block.
inline bool holds(const StorageStacks *stk, int list, const void *block) {
    for (const StackNode *node = stk->head[list]; node; node = node->next)
        if (node->block == block) return true;
    return false;
}
inline bool on_a_list(const StorageStacks *stk, const void *block) {
    for (int list = 0; list < KW_STACK_LISTS; ++list)
        if (holds(stk, list, block)) return true;
    return false;
}

// Equal bit for bit, markers, signed zeros and NaNs included.
inline ::testing::AssertionResult SameBits(const ControlPoint &a, const ControlPoint &b) {
    if (bits(a.x) == bits(b.x) && bits(a.y) == bits(b.y) && bits(a.z) == bits(b.z) && bits(a.w) == bits(b.w))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ", " << a.w
                                         << ") differs from (" << b.x << ", " << b.y << ", " << b.z << ", " << b.w << ")";
}
inline ::testing::AssertionResult SameBits(const Point &a, const Point &b) {
    return SameBits(ControlPoint{a.x, a.y, a.z, 0.0}, ControlPoint{b.x, b.y, b.z, 0.0});
}

inline ::testing::AssertionResult Near(const Point &a, const Point &b, double tol) {
    const double d = std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
    if (d <= tol) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") and (" << b.x << ", "
                                         << b.y << ", " << b.z << ") differ by " << d;
}

// The error state is the recorded code under exactly the given name.
inline ::testing::AssertionResult Recorded(int32_t code, const char *name) {
    if (E_errtyp() == code && std::string(E_errnam()) == name) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "recorded " << E_errtyp() << " \"" << E_errnam() << "\", wanted "
                                         << code << " \"" << name << "\"";
}

// The call fails with status 1 and records code under the routine's name.
#define EXPECT_FAILURE(call, code, routine) \
    do {                                    \
        E_clrerr();                         \
        EXPECT_EQ((call), 1);               \
        EXPECT_TRUE(::kwtest::Recorded(code, routine)); \
    } while (0)

// Clamped knots 0 .. n - p + 1 of degree p, interior ones at the integers.
inline std::vector<double> clamped(int32_t n, int16_t p) {
    std::vector<double> U(n + p + 2);
    for (int32_t i = 0; i <= n + p + 1; ++i) U[i] = std::clamp(i - p, 0, n - p + 1);
    return U;
}

// A curve of degree p on arrays of its own.
struct OwnCurve {
    std::vector<ControlPoint> Pw;
    std::vector<double> U;
    ControlPolygon pol;
    KnotVector knt;
    Curve cur;
    explicit OwnCurve(std::vector<ControlPoint> P, int16_t p = 1)
        : Pw(std::move(P)), U(clamped(static_cast<int32_t>(Pw.size()) - 1, p)),
          pol{static_cast<int32_t>(Pw.size()) - 1, Pw.data()}, knt{static_cast<int32_t>(U.size()) - 1, U.data()},
          cur{&pol, p, &knt} {}
    // n+1 control points (i, 2i, z, w).
    OwnCurve(int32_t n, int16_t p, double z = 0.0, double w = 1.0) : OwnCurve(line(n, z, w), p) {}
    static std::vector<ControlPoint> line(int32_t n, double z, double w) {
        std::vector<ControlPoint> P;
        for (int32_t i = 0; i <= n; ++i) P.push_back({1.0 * i, 2.0 * i, z, w});
        return P;
    }
};

// A surface of degrees p and q on an (n+1) x (m+1) net (i, j, 0, w) of its own.
struct OwnSurface {
    std::vector<ControlPoint> data;
    std::vector<ControlPoint *> rows;
    std::vector<double> U, V;
    ControlNet net;
    KnotVector knu, knv;
    Surface sur;
    OwnSurface(int32_t n, int32_t m, int16_t p, int16_t q, double w = 1.0)
        : data((n + 1) * (m + 1)), rows(n + 1), U(clamped(n, p)), V(clamped(m, q)), net{n, m, rows.data()},
          knu{n + p + 1, U.data()}, knv{m + q + 1, V.data()}, sur{&net, p, q, &knu, &knv} {
        for (int32_t i = 0; i <= n; ++i) {
            rows[i] = &data[i * (m + 1)];
            for (int32_t j = 0; j <= m; ++j) rows[i][j] = ControlPoint{1.0 * i, 1.0 * j, 0.0, w};
        }
    }
};

}  // namespace kwtest
