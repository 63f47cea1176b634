// Helpers shared by the test programs: list census, bitwise comparisons.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
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

// Node counts of every list of a context.
using Census = std::array<int, KW_STACK_LISTS>;
inline Census census(const StorageStacks *stk) {
    Census c{};
    for (int list = 0; list < KW_STACK_LISTS; ++list)
        for (const StackNode *node = stk->head[list]; node; node = node->next) ++c[list];
    return c;
}
inline bool all_empty(const StorageStacks *stk) { return census(stk) == Census{}; }
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
    if (bits(a.x) == bits(b.x) && bits(a.y) == bits(b.y) && bits(a.z) == bits(b.z) &&
        bits(a.w) == bits(b.w))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ", " << a.w
                                         << ") differs from (" << b.x << ", " << b.y << ", "
                                         << b.z << ", " << b.w << ")";
}
inline ::testing::AssertionResult SameBits(const Point &a, const Point &b) {
    return SameBits(ControlPoint{a.x, a.y, a.z, 0.0}, ControlPoint{b.x, b.y, b.z, 0.0});
}

inline ::testing::AssertionResult Near(const Point &a, const Point &b, double tol) {
    const double d = std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
    if (d <= tol) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") and ("
                                         << b.x << ", " << b.y << ", " << b.z << ") differ by "
                                         << d;
}

// The error state is the recorded code under exactly the given name.
inline ::testing::AssertionResult Recorded(int32_t code, const char *name) {
    if (E_errtyp() == code && std::string(E_errnam()) == name)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "recorded " << E_errtyp() << " \"" << E_errnam()
                                         << "\", wanted " << code << " \"" << name << "\"";
}

}  // namespace kwtest
