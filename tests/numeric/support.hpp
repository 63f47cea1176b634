// Shared fixtures of the numeric tests: matrices of any storage type filled
// on a context, seeded random data, and a plain dense copy to compare with.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "core/support.hpp"
#include "numeric/matrix.hpp"

namespace kwtest {

using Dense = std::vector<std::vector<double>>;

// A matrix of the given shape on stk: existing entries from f(i, j), every
// other stored value NaN, so that a routine reading outside the shape
// poisons its result.
inline RealMatrix make(int32_t type, int32_t n, int32_t m, int32_t w, const std::function<double(int32_t, int32_t)> &f,
                       StorageStacks *stk) {
    RealMatrix A;
    M_inirma(&A);
    EXPECT_EQ(M_getrma(&A, n, m, type, w, stk), 0);
    kw::clear_stored(A, std::numeric_limits<double>::quiet_NaN());
    for (int32_t i = 0; i <= n; ++i) {
        const kw::Span cols = kw::row_span(A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) kw::entry(A, i, j) = f(i, j);
    }
    return A;
}

class Numeric : public ::testing::Test {
protected:
    void SetUp() override {
        N_inurbs(&stk);
        E_clrerr();
    }
    void TearDown() override { N_enurbs(&stk); }

    double uniform(double lo = -1.0, double hi = 1.0) { return std::uniform_real_distribution<double>(lo, hi)(rng); }
    std::vector<double> vec(int32_t n) {
        std::vector<double> v(n + 1);
        for (double &x : v) x = uniform();
        return v;
    }
    RealMatrix make(int32_t type, int32_t n, int32_t m, int32_t w, const std::function<double(int32_t, int32_t)> &f) {
        return kwtest::make(type, n, m, w, f, &stk);
    }
    // The existing entries of a shape taken from a dense matrix.
    RealMatrix from(const Dense &D, int32_t type = KW_FULL, int32_t w = 0) {
        const auto n = static_cast<int32_t>(D.size()) - 1, m = static_cast<int32_t>(D[0].size()) - 1;
        return make(type, n, m, w > 0 ? w : n + 1, [&D](int32_t i, int32_t j) { return D[i][j]; });
    }
    RealMatrix random(int32_t type, int32_t n, int32_t m, int32_t w = 0) {
        return make(type, n, m, w > 0 ? w : n + 1, [this](int32_t, int32_t) { return uniform(); });
    }
    // Square and strictly diagonally dominant: LU needs no pivoting.
    RealMatrix dominant(int32_t type, int32_t n, int32_t w = 0) {
        return make(type, n, n, w > 0 ? w : n + 1, [this, n](int32_t i, int32_t j) { return i == j ? 2.0 * (n + 2) + uniform() : uniform(); });
    }
    RealMatrix empty() {
        RealMatrix E;
        M_inirma(&E);
        return E;
    }

    StorageStacks stk;
    std::mt19937_64 rng{20240611};
};

// The matrix as it reads: zeros outside its shape.
inline Dense dense(const RealMatrix &A) {
    Dense D(A.n + 1, std::vector<double>(A.m + 1, 0.0));
    for (int32_t i = 0; i <= A.n; ++i) {
        const kw::Span cols = kw::row_span(A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) D[i][j] = kw::entry(A, i, j);
    }
    return D;
}
inline Dense rows_of(double *const *a, int32_t n, int32_t m) {
    RealMatrix A{n, m, const_cast<double **>(a), KW_FULL, n + 1};
    return dense(A);
}

inline Dense multiply(const Dense &A, const Dense &B) {
    Dense C(A.size(), std::vector<double>(B[0].size(), 0.0));
    for (size_t i = 0; i < A.size(); ++i)
        for (size_t k = 0; k < B.size(); ++k)
            for (size_t j = 0; j < B[0].size(); ++j) C[i][j] += A[i][k] * B[k][j];
    return C;
}
inline Dense transpose(const Dense &A) {
    Dense T(A[0].size(), std::vector<double>(A.size()));
    for (size_t i = 0; i < A.size(); ++i)
        for (size_t j = 0; j < A[0].size(); ++j) T[j][i] = A[i][j];
    return T;
}
inline Dense identity(size_t n) {
    Dense I(n, std::vector<double>(n, 0.0));
    for (size_t i = 0; i < n; ++i) I[i][i] = 1.0;
    return I;
}
inline std::vector<double> times(const Dense &A, const std::vector<double> &x) {
    return transpose(multiply(A, transpose(Dense{x})))[0];
}

inline double max_difference(const Dense &A, const Dense &B) {
    double d = 0.0;
    for (size_t i = 0; i < A.size(); ++i)
        for (size_t j = 0; j < A[i].size(); ++j) d = std::max(d, std::fabs(A[i][j] - B[i][j]));
    return d;
}
inline double max_difference(const std::vector<double> &a, const std::vector<double> &b) {
    return max_difference(Dense{a}, Dense{b});
}

}  // namespace kwtest
