// Allocation-failure sweeps. A FaultCase names an operation; prepare() builds
// its inputs on the context with no fault armed and returns the call, which
// gives 0 on success and 1 on failure (a pointer result as 0 or 1) and checks
// whatever the routine promises: its result on success, what it leaves alone
// on failure. Other test programs include this header and sweep tables of
// their own.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/alloc.hpp"
#include "core/support.hpp"

namespace kwtest {

struct FaultCase {
    std::string name;
    std::function<std::function<int()>(StorageStacks *)> prepare;
    // When given: the lists a successful call leaves its blocks on, and how many.
    std::vector<std::pair<int, int>> lists = {};
};

inline void PrintTo(const FaultCase &c, std::ostream *os) { *os << c.name; }

// A case whose call needs nothing prepared.
inline FaultCase call(std::string name, std::function<int(StorageStacks *)> run,
                      std::vector<std::pair<int, int>> lists = {}) {
    return {std::move(name), [run](StorageStacks *stk) { return std::function<int()>([=] { return run(stk); }); },
            std::move(lists)};
}

inline int status(const void *p) { return p ? 0 : 1; }

// Runs the case with the k-th allocation failing, k = 1, 2, ..., until it
// succeeds with no fault fired. At each k the call must fail with status 1,
// code 15 and an allocator's name, and the emptied context must hold
// nothing. Returns the name recorded at each k.
inline std::vector<std::string> sweep(const FaultCase &c) {
    std::vector<std::string> names;
    for (long k = 1;; ++k) {
        SCOPED_TRACE(c.name + " failing at allocation " + std::to_string(k));
        StorageStacks stk;
        N_inurbs(&stk);
        const std::function<int()> run = c.prepare(&stk);
        E_clrerr();
        kw::fault::fail_at(k);
        const int st = run();
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        const Census left = census(&stk);
        N_enurbs(&stk);
        EXPECT_TRUE(all_empty(&stk));
        if (!fired) {
            EXPECT_EQ(st, 0);
            if (!c.lists.empty()) EXPECT_EQ(left, nodes_on(c.lists)) << "lists of a successful call";
            return names;
        }
        EXPECT_EQ(st, 1);
        EXPECT_EQ(E_errtyp(), KW_ENOMEM);
        names.emplace_back(E_errnam());
        EXPECT_EQ(names.back().rfind("S_GET", 0), 0u) << names.back();
        if (k > 1000 || ::testing::Test::HasFailure()) return names;
    }
}

// The allocators a routine calls, in order: the names of a sweep with runs
// of one name folded.
inline std::vector<std::string> allocators(const FaultCase &c) {
    std::vector<std::string> order;
    for (const std::string &name : sweep(c))
        if (order.empty() || order.back() != name) order.push_back(name);
    return order;
}

}  // namespace kwtest
