// Every numeric routine that allocates, made to fail at each of its
// allocations in turn: status 1, code 15 under an allocator's name, and
// nothing left once the context is emptied (the sanitized build checks
// for leaks of private scratch contexts).
#include "core/fault_sweep.hpp"
#include "support.hpp"

using namespace kwtest;

namespace {

struct Shape {
    int32_t type, n, m, w;
};
constexpr Shape kSquare{KW_FULL, 4, 4, 5};

// A diagonally dominant matrix of the given shape on stk.
RealMatrix filled(StorageStacks *stk, Shape s) {
    return make(s.type, s.n, s.m, s.w, [](int32_t i, int32_t j) { return i == j ? 10.0 + i : 1.0 / (1 + i + 2 * j); }, stk);
}

// f(A, B, &C, stk) on A and B of the given shapes, prepared with no fault
// armed, and an empty result C.
FaultCase on(const char *name, Shape a, Shape b, std::function<int16_t(RealMatrix &, RealMatrix &, RealMatrix *, StorageStacks *)> f) {
    return {name, [=](StorageStacks *stk) {
                RealMatrix A = filled(stk, a), B = filled(stk, b), C;
                M_inirma(&C);
                return std::function<int()>([=]() mutable { return f(A, B, &C, stk); });
            }};
}

// SVD factors of a 6 x 4 matrix and a right side large enough for every kind.
FaultCase svd(const char *name, int16_t kind) {  // kind 0: the decomposition itself
    return {name, [kind](StorageStacks *stk) {
                double **u = filled(stk, {KW_FULL, 5, 3, 6}).a, **v = S_getr2d(3, 3, stk), *w = S_getr1d(3, stk);
                if (kind == 0) return std::function<int()>([=] { return M_svdcpf(u, w, v, 5, 3); });
                EXPECT_EQ(M_svdcpf(u, w, v, 5, 3), 0);
                ControlPoint *c = S_getc1d(9, stk);
                std::fill_n(&c[0].x, 40, 1.0);
                return std::function<int()>([=] { return M_svdsbf(u, w, v, 5, 3, c, kind, 1, c + 6); });
            }};
}

TEST(Faults, EveryAllocatingRoutine) {
    static int32_t piv[5];
    static double x[5], ones[24];
    static const double b[] = {0, 1, 2, 3, 4, 5, 6};
    static ControlPoint out[6];
    std::fill_n(ones, 24, 1.0);
    using M = RealMatrix;
    using S = StorageStacks;
    auto forbac = [](const char *name, int16_t kind) {  // the right side: 6 Points or ControlPoints of ones
        return on(name, {KW_BANDED, 5, 5, 3}, kSquare, [kind](M &A, M &, M *, S *s) -> int16_t {
            EXPECT_EQ(M_ludcmp(&A), 0);
            return M_forbac(&A, ones, kind, out, s);
        });
    };
    const FaultCase cases[] = {
        on("M_rmamul", {KW_FULL, 3, 2, 4}, {KW_LOWERLEFT, 2, 4, 3}, [](M &A, M &B, M *C, S *s) { return M_rmamul(&A, &B, C, s); }),
        on("M_rmamtr", {KW_FULL, 3, 2, 4}, {KW_FULL, 5, 2, 6}, [](M &A, M &B, M *C, S *s) { return M_rmamtr(&A, &B, C, s); }),
        on("M_rmamtm", kSquare, kSquare, [](M &A, M &, M *C, S *s) { return M_rmamtm(&A, C, s); }),
        on("M_rmatrp", {KW_BANDED, 6, 6, 4}, kSquare, [](M &A, M &, M *C, S *s) { return M_rmatrp(&A, C, s); }),
        on("M_rmcprm", kSquare, kSquare, [](M &A, M &, M *, S *s) -> int16_t {
            ControlPointMatrix P, Q;
            M_inicma(&P);
            M_inicma(&Q);
            if (M_getcma(&P, 4, 1, KW_FULL, 5, s)) return 1;
            std::fill_n(&P.a[0][0].x, 40, 1.0);
            return M_rmcprm(&A, &P, 1, &Q, s);
        }),
        on("M_ludpiv", kSquare, kSquare, [](M &A, M &, M *, S *) { return M_ludpiv(&A, piv); }),
        on("M_rmainv full", kSquare, kSquare, [](M &A, M &, M *C, S *s) { return M_rmainv(&A, 0, C, s); }),
        on("M_rmainv banded", {KW_BANDED, 4, 4, 3}, kSquare, [](M &A, M &, M *C, S *s) { return M_rmainv(&A, 0, C, s); }),
        on("M_rmaivp", kSquare, kSquare, [](M &A, M &, M *C, S *s) { return M_rmaivp(&A, C, s); }),
        on("M_rmaivs", kSquare, kSquare, [](M &A, M &, M *C, S *s) { return M_rmaivs(&A, C, s); }),
        on("M_svdinv", kSquare, kSquare, [](M &A, M &B, M *, S *) { return M_svdinv(A.a, 4, B.a); }),
        on("M_lsslsy", {KW_FULL, 6, 2, 7}, kSquare, [](M &A, M &, M *, S *) { return M_lsslsy(&A, b, x); }),
        on("M_rmaevv", kSquare, kSquare, [](M &A, M &, M *C, S *s) { return M_rmaevv(&A, x, C, s); }),
        forbac("M_forbac points", 1),
        forbac("M_forbac control points", 2),
        svd("M_svdcpf", 0),
        svd("M_svdsbf points", 1),
        svd("M_svdsbf control points", 2),
        svd("M_svdsbf doubles", 3),
        call("hash table", [](StorageStacks *stk) {
            double **table = nullptr;
            if (M_inrhas(&table, 3, stk)) return 1;
            for (double v : {1.0, 2.0, 1.0, 3.5, -4.0, 2.0})
                if (M_uprhas(table, 3, v, stk)) return 1;
            return 0;
        }),
    };
    for (const FaultCase &c : cases) EXPECT_FALSE(sweep(c).empty()) << c.name;
}

}  // namespace
