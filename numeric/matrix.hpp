// The matrix record family: one body for real, integer, Point and
// ControlPoint matrices.
#pragma once

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

}  // namespace kw
