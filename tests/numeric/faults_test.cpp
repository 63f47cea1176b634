// Every numeric routine that allocates, made to fail at each of its
// allocations in turn: status 1, code 15 under an allocator's name, and
// nothing left once the context is emptied (the sanitized build checks
// for leaks of private scratch contexts).
#include <cstring>
#include <functional>

#include "core/alloc.hpp"
#include "support.hpp"

using namespace kwtest;

namespace {

using Operation = std::function<int16_t()>;
// Builds the inputs of one run on the context and gives the call to make.
using Setup = std::function<Operation(StorageStacks *)>;

RealMatrix filled(StorageStacks *stk, int32_t type, int32_t n, int32_t m, int32_t w) {
    RealMatrix A;
    M_inirma(&A);
    EXPECT_EQ(M_getrma(&A, n, m, type, w, stk), 0);
    for (int32_t i = 0; i <= n; ++i) {
        const kw::Span cols = kw::row_span(A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) kw::entry(A, i, j) = i == j ? 10.0 + i : 1.0 / (1 + i + 2 * j);
    }
    return A;
}

// Runs the operation with the k-th allocation failing, k = 1, 2, ..., until
// it succeeds without the fault; returns how many allocations failed.
int sweep(const Setup &setup) {
    int failures = 0;
    for (long k = 1; k < 200; ++k) {
        StorageStacks stk;
        N_inurbs(&stk);
        const Operation op = setup(&stk);
        E_clrerr();
        kw::fault::fail_at(k);
        const int16_t status = op();
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        if (!fired) {
            EXPECT_EQ(status, 0) << E_errtyp() << " " << E_errnam();
            N_enurbs(&stk);
            return failures;
        }
        ++failures;
        EXPECT_EQ(status, 1) << k;
        EXPECT_EQ(E_errtyp(), KW_ENOMEM) << k;
        EXPECT_EQ(std::strncmp(E_errnam(), "S_GET", 5), 0) << E_errnam();
        N_enurbs(&stk);
        for (StackNode *head : stk.head) EXPECT_EQ(head, nullptr);
    }
    ADD_FAILURE() << "never succeeded";
    return failures;
}

struct Shape {
    int32_t type, n, m, w;
};

// Sweeps f(A, B, &C, stk) with fresh A and B of the given shapes and an
// empty result C.
template <class F>
int sweep_on(Shape a, Shape b, F f) {
    RealMatrix C;
    return sweep([&](StorageStacks *stk) -> Operation {
        M_inirma(&C);
        RealMatrix A = filled(stk, a.type, a.n, a.m, a.w), B = filled(stk, b.type, b.n, b.m, b.w);
        return [=, &C]() mutable { return f(A, B, &C, stk); };
    });
}

constexpr Shape kSquare{KW_FULL, 4, 4, 5};

TEST(Faults, ProductsAndTransposes) {
    EXPECT_GT(sweep_on({KW_FULL, 3, 2, 4}, {KW_LOWERLEFT, 2, 4, 3},
                       [](auto &A, auto &B, auto *C, auto *stk) { return M_rmamul(&A, &B, C, stk); }),
              0);
    EXPECT_GT(sweep_on({KW_FULL, 3, 2, 4}, {KW_FULL, 5, 2, 6},
                       [](auto &A, auto &B, auto *C, auto *stk) { return M_rmamtr(&A, &B, C, stk); }),
              0);
    EXPECT_GT(sweep_on({KW_UPPERRIGHT, 3, 2, 4}, kSquare,
                       [](auto &A, auto &, auto *C, auto *stk) { return M_rmamtm(&A, C, stk); }),
              0);
    EXPECT_GT(sweep_on({KW_BANDED, 6, 6, 4}, kSquare,
                       [](auto &A, auto &, auto *C, auto *stk) { return M_rmatrp(&A, C, stk); }),
              0);
    ControlPointMatrix Q;
    EXPECT_GT(sweep([&Q](StorageStacks *stk) -> Operation {
                  M_inicma(&Q);
                  RealMatrix A = filled(stk, KW_FULL, 2, 3, 3);
                  ControlPointMatrix P;
                  M_inicma(&P);
                  EXPECT_EQ(M_getcma(&P, 3, 1, KW_FULL, 4, stk), 0);
                  for (int32_t i = 0; i <= 3; ++i)
                      for (int32_t j = 0; j <= 1; ++j) P.a[i][j] = ControlPoint{1.0 * i, 1.0 * j, 0.5, 1.0};
                  return [&Q, A, P, stk] { return M_rmcprm(&A, &P, 1, &Q, stk); };
              }),
              0);
}

TEST(Faults, SolversAndInverses) {
    std::vector<ControlPoint> out(6);
    for (int16_t kind : {1, 2}) {
        EXPECT_GT(sweep([&out, kind](StorageStacks *stk) -> Operation {
                      RealMatrix A = filled(stk, KW_BANDED, 5, 5, 3);
                      EXPECT_EQ(M_ludcmp(&A), 0);
                      auto *P = S_getp1d(5, stk);
                      auto *C = S_getc1d(5, stk);
                      for (int32_t i = 0; i <= 5; ++i) {
                          P[i] = Point{1.0, 2.0, 3.0};
                          C[i] = ControlPoint{1.0, 2.0, KW_PLANAR, 1.0};
                      }
                      const void *rhs = kind == 1 ? static_cast<const void *>(P) : C;
                      return [&out, A, rhs, kind, stk] { return M_forbac(&A, rhs, kind, out.data(), stk); };
                  }),
                  0);
    }
    int32_t piv[5];
    EXPECT_GT(sweep_on(kSquare, kSquare, [&piv](auto &A, auto &, auto *, auto *) { return M_ludpiv(&A, piv); }), 0);
    for (int32_t type : {KW_FULL, KW_BANDED}) {
        EXPECT_GT(sweep_on({type, 4, 4, 3}, kSquare,
                           [](auto &A, auto &, auto *C, auto *stk) { return M_rmainv(&A, 0, C, stk); }),
                  0);
    }
    EXPECT_GT(sweep_on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmaivp(&A, C, stk); }),
              0);
    EXPECT_GT(sweep_on(kSquare, kSquare, [](auto &A, auto &, auto *C, auto *stk) { return M_rmaivs(&A, C, stk); }),
              0);
    const double b[] = {0, 1, 2, 3, 4, 5, 6};
    double x[3];
    EXPECT_GT(sweep_on({KW_FULL, 6, 2, 7}, kSquare, [&](auto &A, auto &, auto *, auto *) { return M_lsslsy(&A, b, x); }),
              0);
    double d[5];
    EXPECT_GT(sweep_on(kSquare, kSquare,
                       [&d](auto &A, auto &, auto *C, auto *stk) { return M_rmaevv(&A, d, C, stk); }),
              0);
}

TEST(Faults, SingularValueDecomposition) {
    struct Svd {
        double **u, **v, *w;
    };
    auto decomposed = [](StorageStacks *stk, bool factor) {
        RealMatrix A = filled(stk, KW_FULL, 5, 3, 6);
        Svd s{A.a, S_getr2d(3, 3, stk), S_getr1d(3, stk)};
        if (factor) EXPECT_EQ(M_svdcpf(s.u, s.w, s.v, 5, 3), 0);
        return s;
    };
    EXPECT_GT(sweep([&](StorageStacks *stk) -> Operation {
                  const Svd s = decomposed(stk, false);
                  return [s] { return M_svdcpf(s.u, s.w, s.v, 5, 3); };
              }),
              0);
    for (int16_t kind : {1, 2, 3}) {
        EXPECT_GT(sweep([&](StorageStacks *stk) -> Operation {
                      const Svd s = decomposed(stk, true);
                      auto *b = S_getc1d(5, stk);  // large enough for every kind
                      auto *x = S_getc1d(3, stk);
                      for (int32_t i = 0; i <= 5; ++i) b[i] = ControlPoint{1.0 * i, 1.0, 2.0, 1.0};
                      return [s, b, x, kind] { return M_svdsbf(s.u, s.w, s.v, 5, 3, b, kind, 1, x); };
                  }),
                  0);
    }
    EXPECT_GT(sweep([](StorageStacks *stk) -> Operation {
                  RealMatrix A = filled(stk, KW_FULL, 3, 3, 4);
                  double **inv = S_getr2d(3, 3, stk);
                  return [A, inv] { return M_svdinv(A.a, 3, inv); };
              }),
              0);
}

TEST(Faults, HashTable) {
    EXPECT_GT(sweep([](StorageStacks *stk) -> Operation {
                  return [stk] {
                      double **table = nullptr;
                      if (M_inrhas(&table, 3, stk)) return int16_t{1};
                      for (double v : {1.0, 2.0, 1.0, 3.5, -4.0, 2.0})
                          if (M_uprhas(table, 3, v, stk)) return int16_t{1};
                      return int16_t{0};
                  };
              }),
              0);
}

}  // namespace
