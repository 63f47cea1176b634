// The matrix record family: one body for real, integer, Point and
// ControlPoint matrices.
#pragma once

#include "core/error.hpp"
#include "core/storage.hpp"
#include "knotwork/numeric.h"

namespace kw {

// Highest stored column index of a matrix as M_getrma allocates it: a banded
// matrix keeps w values per row, and a band of 1 is given two columns.
inline int32_t matrix_columns(int32_t m, int32_t type, int32_t w) noexcept {
    if (type != KW_BANDED) return m;
    return w == 1 ? 1 : w - 1;
}

template <class E>
void matrix_empty(Matrix<E> *mat) noexcept {
    *mat = Matrix<E>{-1, -1, nullptr, KW_FULL, 0};
}

template <class E>
void matrix_break(const Matrix<E> *mat, int32_t *n, int32_t *m, E ***a, int32_t *type,
                  int32_t *w) noexcept {
    *n = mat->n;
    *m = mat->m;
    *a = mat->a;
    *type = mat->type;
    *w = mat->w;
}

template <class E>
void matrix_define(Matrix<E> *mat, int32_t n, int32_t m, int32_t type, int32_t w) noexcept {
    mat->n = n;
    mat->m = m;
    mat->type = type;
    mat->w = w;
}

template <class E>
bool matrix_is_empty(const Matrix<E> *mat) noexcept {
    return !(mat->n >= 0 && mat->m >= 0 && mat->a && mat->w > 0);
}

inline bool matrix_shape_ok(int32_t type, int32_t w) noexcept {
    return type >= KW_FULL && type <= KW_BANDED && w >= 1;
}

template <class E>
int16_t matrix_get(Matrix<E> *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                   StorageStacks *stk) noexcept {
    if (!matrix_shape_ok(type, w)) return fail(KW_EARG, name);
    E **a = get2d<E>(n, matrix_columns(m, type, w), stk);
    if (!a) return 1;
    *mat = Matrix<E>{n, m, a, type, w};
    return 0;
}

int16_t matrix_storage_ok(const RealMatrix *mat, int32_t n, int32_t m, char *name);
int16_t matrix_storage_ok(const IntegerMatrix *mat, int32_t n, int32_t m, char *name);
int16_t matrix_storage_ok(const PointMatrix *mat, int32_t n, int32_t m, char *name);
int16_t matrix_storage_ok(const ControlPointMatrix *mat, int32_t n, int32_t m, char *name);

// An empty result is allocated; an existing one must hold the rows, the
// columns and, stored, the row width wanted (code 9), and is redefined. An
// unknown type or band width is refused (code 14) either way.
template <class E>
int16_t matrix_check(Matrix<E> *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                     StorageStacks *stk) noexcept {
    if (matrix_is_empty<E>(mat)) return matrix_get<E>(mat, n, m, type, w, name, stk);
    if (!matrix_shape_ok(type, w)) return fail(KW_EARG, name);
    if (matrix_storage_ok(mat, n, m, name)) return 1;
    if (matrix_columns(m, type, w) > matrix_columns(mat->m, mat->type, mat->w))
        return fail(KW_ESTORAGE, name);
    matrix_define<E>(mat, n, m, type, w);
    return 0;
}

// ---- Entries of the four storage types ------------------------------------

constexpr bool known_type(int32_t type) noexcept { return type >= KW_FULL && type <= KW_BANDED; }

// A band of width w keeps w/2 diagonals below the main one and the rest
// above: the same number for the usual odd widths, one fewer above for an
// even width, which is all its w stored values can hold.
constexpr int32_t band_below(int32_t w) noexcept { return w / 2; }
constexpr int32_t band_above(int32_t w) noexcept { return w - 1 - w / 2; }

// An inclusive index range, empty when lo > hi.
struct Span {
    int32_t lo, hi;
};
constexpr Span meet(Span a, Span b) noexcept {
    return Span{a.lo > b.lo ? a.lo : b.lo, a.hi < b.hi ? a.hi : b.hi};
}

// The columns of row i, and the rows of column j, that exist in a matrix of
// the given shape: entries outside them are zeros that are never read.
constexpr Span row_span(int32_t i, int32_t m, int32_t type, int32_t w) noexcept {
    switch (type) {
    case KW_LOWERLEFT: return meet({0, i}, {0, m});
    case KW_UPPERRIGHT: return {i, m};
    case KW_BANDED: return meet({i - band_below(w), i + band_above(w)}, {0, m});
    default: return {0, m};
    }
}
constexpr Span col_span(int32_t j, int32_t n, int32_t type, int32_t w) noexcept {
    switch (type) {
    case KW_LOWERLEFT: return {j, n};
    case KW_UPPERRIGHT: return meet({0, j}, {0, n});
    case KW_BANDED: return meet({j - band_above(w), j + band_below(w)}, {0, n});
    default: return {0, n};
    }
}
template <class M>
constexpr Span row_span(const M &A, int32_t i) noexcept {
    return row_span(i, A.m, A.type, A.w);
}
template <class M>
constexpr Span col_span(const M &A, int32_t j) noexcept {
    return col_span(j, A.n, A.type, A.w);
}

// Entry (i, j), which must exist: banded rows keep the diagonal at w/2.
template <class M>
auto &entry(const M &A, int32_t i, int32_t j) noexcept {
    return A.type == KW_BANDED ? A.a[i][j - i + band_below(A.w)] : A.a[i][j];
}

// Every stored value of a matrix, existing or not, set to zero, so that a
// result holds no stale values where its shape has none.
template <class M, class E>
void clear_stored(const M &A, E zero) noexcept {
    const int32_t last = matrix_columns(A.m, A.type, A.w);
    for (int32_t i = 0; i <= A.n; ++i)
        for (int32_t j = 0; j <= last; ++j) A.a[i][j] = zero;
}

// An input matrix with data and a known storage type.
template <class M>
bool usable(const M *A) noexcept {
    return A && A->n >= 0 && A->m >= 0 && A->a && A->w > 0 && known_type(A->type);
}

// The input test the solvers share: data and a known type (code 14), as many
// rows as columns (code 7), and a type the routine takes (code 14).
inline int16_t square_input(const RealMatrix *A, bool banded_too, char *name) noexcept {
    if (!usable(A)) return fail(KW_EARG, name);
    if (A->n != A->m) return fail(KW_ESIZE, name);
    if (A->type != KW_FULL && !(banded_too && A->type == KW_BANDED)) return fail(KW_EARG, name);
    return 0;
}

// A result record that shares its rows with an input cannot be written
// while the input is read.
template <class R, class M>
bool shares_rows(const R *result, const M *input) noexcept {
    return result && input && result->a &&
           static_cast<const void *>(result->a) == static_cast<const void *>(input->a);
}

}  // namespace kw
