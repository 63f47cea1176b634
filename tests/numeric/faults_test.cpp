// Every numeric routine that allocates, made to fail at each of its
// allocations in turn: status 1, code 15 under an allocator's name, and
// nothing left once the context is emptied (the sanitized build checks
// for leaks of private scratch contexts).
#include <cstring>
#include <functional>
#include <memory>

#include "core/alloc.hpp"
#include "support.hpp"

using namespace kwtest;

namespace {

using Operation = std::function<int16_t()>;
// Builds the inputs of one run on the context and gives the call to make.
using Prepare = std::function<Operation(StorageStacks *)>;

struct Shape {
    int32_t type, n, m, w;
};

RealMatrix filled(StorageStacks *stk, Shape s) {
    RealMatrix A;
    M_inirma(&A);
    EXPECT_EQ(M_getrma(&A, s.n, s.m, s.type, s.w, stk), 0);
    for (int32_t i = 0; i <= s.n; ++i) {
        const kw::Span cols = kw::row_span(A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) kw::entry(A, i, j) = i == j ? 10.0 + i : 1.0 / (1 + i + 2 * j);
    }
    return A;
}

// Runs the operation with the k-th allocation failing, k = 1, 2, ..., until
// it succeeds without the fault; returns how many runs failed.
int sweep(const Prepare &setup) {
    for (long k = 1; k < 200; ++k) {
        StorageStacks stk;
        N_inurbs(&stk);
        const Operation op = setup(&stk);
        E_clrerr();
        kw::fault::fail_at(k);
        const int16_t status = op();
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        N_enurbs(&stk);
        if (!fired) {
            EXPECT_EQ(status, 0) << E_errtyp() << " " << E_errnam();
            return static_cast<int>(k - 1);
        }
        EXPECT_EQ(status, 1) << k;
        EXPECT_EQ(E_errtyp(), KW_ENOMEM) << k;
        EXPECT_EQ(std::strncmp(E_errnam(), "S_GET", 5), 0) << E_errnam();
    }
    ADD_FAILURE() << "never succeeded";
    return 0;
}

// f(A, B, &C, stk) on fresh A and B of the given shapes and an empty C.
template <class F>
Prepare on(Shape a, Shape b, F f) {
    auto C = std::make_shared<RealMatrix>();
    return [=](StorageStacks *stk) -> Operation {
        M_inirma(C.get());
        RealMatrix A = filled(stk, a), B = filled(stk, b);
        return [=]() mutable { return f(A, B, C.get(), stk); };
    };
}

constexpr Shape kSquare{KW_FULL, 4, 4, 5};

TEST(Faults, EveryAllocatingRoutine) {
    int32_t piv[5];
    double x[5];
    const double b[] = {0, 1, 2, 3, 4, 5, 6};
    std::vector<ControlPoint> out(6);
    auto forbac = [&out](int16_t kind) -> Prepare {
        return [&out, kind](StorageStacks *stk) -> Operation {
            RealMatrix A = filled(stk, {KW_BANDED, 5, 5, 3});
            EXPECT_EQ(M_ludcmp(&A), 0);
            void *rhs = kind == 1 ? static_cast<void *>(S_getp1d(5, stk)) : S_getc1d(5, stk);
            std::fill_n(static_cast<double *>(rhs), kind == 1 ? 18 : 24, 1.0);
            return [&out, A, rhs, kind, stk] { return M_forbac(&A, rhs, kind, out.data(), stk); };
        };
    };
    auto svd = [](int16_t kind) -> Prepare {  // kind 0: the decomposition itself
        return [kind](StorageStacks *stk) -> Operation {
            double **u = filled(stk, {KW_FULL, 5, 3, 6}).a, **v = S_getr2d(3, 3, stk), *w = S_getr1d(3, stk);
            if (kind == 0) return [u, v, w] { return M_svdcpf(u, w, v, 5, 3); };
            EXPECT_EQ(M_svdcpf(u, w, v, 5, 3), 0);
            auto *c = S_getc1d(9, stk);  // right side and solution, large enough for every kind
            std::fill_n(&c[0].x, 40, 1.0);
            return [u, v, w, c, kind] { return M_svdsbf(u, w, v, 5, 3, c, kind, 1, c + 6); };
        };
    };
    const std::pair<const char *, Prepare> cases[] = {
        {"M_rmamul", on({KW_FULL, 3, 2, 4}, {KW_LOWERLEFT, 2, 4, 3},
                        [](auto &A, auto &B, auto *C, auto *stk) { return M_rmamul(&A, &B, C, stk); })},
        {"M_rmamtr", on({KW_FULL, 3, 2, 4}, {KW_FULL, 5, 2, 6},
                        [](auto &A, auto &B, auto *C, auto *stk) { return M_rmamtr(&A, &B, C, stk); })},
        {"M_rmamtm", on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmamtm(&A, C, stk); })},
        {"M_rmatrp", on({KW_BANDED, 6, 6, 4}, kSquare,
                        [](auto &A, auto &, auto *C, auto *stk) { return M_rmatrp(&A, C, stk); })},
        {"M_rmcprm", on(kSquare, kSquare,
                        [](auto &A, auto &, auto *, auto *stk) {
                            ControlPointMatrix P, Q;
                            M_inicma(&P);
                            M_inicma(&Q);
                            if (M_getcma(&P, 4, 1, KW_FULL, 5, stk)) return int16_t{1};
                            std::fill_n(&P.a[0][0].x, 40, 1.0);
                            return M_rmcprm(&A, &P, 1, &Q, stk);
                        })},
        {"M_ludpiv", on(kSquare, kSquare, [&piv](auto &A, auto &, auto *, auto *) { return M_ludpiv(&A, piv); })},
        {"M_rmainv full", on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmainv(&A, 0, C, stk); })},
        {"M_rmainv banded", on({KW_BANDED, 4, 4, 3}, kSquare,
                               [](auto &A, auto &, auto *C, auto *stk) { return M_rmainv(&A, 0, C, stk); })},
        {"M_rmaivp", on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmaivp(&A, C, stk); })},
        {"M_rmaivs", on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmaivs(&A, C, stk); })},
        {"M_svdinv", on(kSquare, kSquare, [](auto &A, auto &B, auto *, auto *) { return M_svdinv(A.a, 4, B.a); })},
        {"M_lsslsy", on({KW_FULL, 6, 2, 7}, kSquare, [&](auto &A, auto &, auto *, auto *) { return M_lsslsy(&A, b, x); })},
        {"M_rmaevv", on(kSquare, kSquare, [&x](auto &A, auto &, auto *C, auto *stk) { return M_rmaevv(&A, x, C, stk); })},
        {"M_forbac points", forbac(1)},
        {"M_forbac control points", forbac(2)},
        {"M_svdcpf", svd(0)},
        {"M_svdsbf points", svd(1)},
        {"M_svdsbf control points", svd(2)},
        {"M_svdsbf doubles", svd(3)},
        {"hash table", [](StorageStacks *stk) -> Operation {
             return [stk] {
                 double **table = nullptr;
                 if (M_inrhas(&table, 3, stk)) return int16_t{1};
                 for (double v : {1.0, 2.0, 1.0, 3.5, -4.0, 2.0})
                     if (M_uprhas(table, 3, v, stk)) return int16_t{1};
                 return int16_t{0};
             };
         }},
    };
    for (const auto &[what, setup] : cases) {
        SCOPED_TRACE(what);
        EXPECT_GT(sweep(setup), 0);
    }
}

}  // namespace
