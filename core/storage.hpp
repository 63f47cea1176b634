// Storage contexts: one body per family of allocators, kills and resizes.
// The exported S_get*, U_kil* and U_ral* routines are thin wrappers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/alloc.hpp"
#include "core/error.hpp"
#include "knotwork/records.h"
#include "knotwork/storage.h"

namespace kw {

// ---- Nodes and lists ------------------------------------------------------

// A node for block, not yet linked; nullptr when memory is short.
StackNode *new_node(void *block) noexcept;
void link(StorageStacks *stk, int list, StackNode *node) noexcept;
// Takes the node of block out of list; nullptr when the list does not hold
// it. Reverse-order kills find their node at the head.
StackNode *unlink(void *block, int list, StorageStacks *stk) noexcept;
// Unlinks and frees block; an address the list does not hold is ignored.
void kill_block(void *block, int list, StorageStacks *stk) noexcept;

// bytes := count * size, false on overflow.
inline bool byte_size(std::size_t count, std::size_t size, std::size_t *bytes) noexcept {
    return !__builtin_mul_overflow(count, size, bytes);
}

// A block of count elements of size bytes on list, or nullptr after code 15
// (code 14 when a highest index is negative, which callers pass as count 0).
void *get_block(std::size_t count, std::size_t size, int list, char *name,
                StorageStacks *stk) noexcept;

// Elements of 0..n, or 0 when n is negative (not a valid highest index).
inline std::size_t elements(int32_t n) noexcept {
    return n < 0 ? 0 : static_cast<std::size_t>(n) + 1;
}

// ---- Lists of each element kind ------------------------------------------

template <class T>
struct Lists;
template <>
struct Lists<int16_t> {
    static constexpr int one = KW_LIST_F1D, two = KW_LIST_F2D, three = -1;
};
template <>
struct Lists<int32_t> {
    static constexpr int one = KW_LIST_I1D, two = KW_LIST_I2D, three = KW_LIST_I3D;
};
template <>
struct Lists<double> {
    static constexpr int one = KW_LIST_R1D, two = KW_LIST_R2D, three = KW_LIST_R3D;
};
template <>
struct Lists<Point> {
    static constexpr int one = KW_LIST_P1D, two = KW_LIST_P2D, three = KW_LIST_P3D;
};
template <>
struct Lists<ControlPoint> {
    static constexpr int one = KW_LIST_C1D, two = KW_LIST_C2D, three = KW_LIST_C3D;
};

// ---- Arrays ---------------------------------------------------------------

// n+1 elements on the kind's 1-D list.
template <class T>
T *get1d(int32_t n, char *name, StorageStacks *stk) noexcept {
    return static_cast<T *>(get_block(elements(n), sizeof(T), Lists<T>::one, name, stk));
}

// n+1 pointers on the kind's 2-D list (rows owned elsewhere).
template <class T>
T **get1p(int32_t n, char *name, StorageStacks *stk) noexcept {
    return static_cast<T **>(get_block(elements(n), sizeof(T *), Lists<T>::two, name, stk));
}

// Row pointers into one block of `cells` elements: the block goes on the
// `inner` list, the row pointers on `outer`, and fill(row, block) points the
// rows. Both nodes are linked only when everything was obtained, so a
// failure leaves the context as it was.
template <class E, class Fill>
E **get_rows(std::size_t rows, std::size_t cells, int inner, int outer, char *name,
             StorageStacks *stk, Fill fill) noexcept {
    std::size_t data_bytes = 0, row_bytes = 0;
    if (rows == 0 || cells == 0) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    if (!byte_size(cells, sizeof(E), &data_bytes) || !byte_size(rows, sizeof(E *), &row_bytes)) {
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    auto **row = static_cast<E **>(allocate(row_bytes));
    auto *data = row ? static_cast<E *>(allocate(data_bytes)) : nullptr;
    StackNode *data_node = data ? new_node(data) : nullptr;
    StackNode *row_node = data_node ? new_node(row) : nullptr;
    if (!row_node) {
        release(data_node);
        release(data);
        release(row);
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    fill(row, data);
    link(stk, inner, data_node);
    link(stk, outer, row_node);
    return row;
}

// A rectangular block of rows x cols elements.
template <class E>
E **get_rows(std::size_t rows, std::size_t cols, int inner, int outer, char *name,
             StorageStacks *stk) noexcept {
    std::size_t cells = 0;
    if (!byte_size(rows, cols, &cells)) {
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    if (cols == 0) cells = 0;
    return get_rows<E>(rows, cells, inner, outer, name, stk, [rows, cols](E **row, E *data) {
        for (std::size_t i = 0; i < rows; ++i) row[i] = data + i * cols;
    });
}

// (n+1) x (m+1) elements: the block on the 1-D list, rows on the 2-D list.
template <class T>
T **get2d(int32_t n, int32_t m, char *name, StorageStacks *stk) noexcept {
    return get_rows<T>(elements(n), elements(m), Lists<T>::one, Lists<T>::two, name, stk);
}

// (n+1) x (m+1) pointers: the pointer block on the 2-D list, rows on the 3-D.
template <class T>
T ***get2p(int32_t n, int32_t m, char *name, StorageStacks *stk) noexcept {
    return get_rows<T *>(elements(n), elements(m), Lists<T>::two, Lists<T>::three, name, stk);
}

template <class T>
void kill1d(T *a, StorageStacks *stk) noexcept {
    kill_block(a, Lists<T>::one, stk);
}

template <class T>
void kill1p(T **a, StorageStacks *stk) noexcept {
    kill_block(a, Lists<T>::two, stk);
}

// A 2-D kill frees the row pointers, having read row 0, which is the block.
// An array the list does not hold is not read at all.
template <class E>
void kill_rows(E **a, int inner, int outer, StorageStacks *stk) noexcept {
    StackNode *node = a ? unlink(a, outer, stk) : nullptr;
    if (!node) return;
    E *data = a[0];
    release(a);
    release(node);
    kill_block(data, inner, stk);
}

template <class T>
void kill2d(T **a, StorageStacks *stk) noexcept {
    kill_rows<T>(a, Lists<T>::one, Lists<T>::two, stk);
}

template <class T>
void kill2p(T ***a, StorageStacks *stk) noexcept {
    kill_rows<T *>(a, Lists<T>::two, Lists<T>::three, stk);
}

// Resizes keep elements 0..min(old, new) and kill the old array; on failure
// the old array is left as it was.
template <class T, T *(*get)(int32_t, StorageStacks *), void (*kill)(T *, StorageStacks *)>
int16_t resize1d(T **a, int32_t oldn, int32_t newn, StorageStacks *stk) noexcept {
    T *b = get(newn, stk);
    if (!b) return 1;
    if (*a && oldn >= 0) std::copy_n(*a, std::min(oldn, newn) + 1, b);
    kill(*a, stk);
    *a = b;
    return 0;
}

template <class T, T **(*get)(int32_t, int32_t, StorageStacks *),
          void (*kill)(T **, StorageStacks *)>
int16_t resize2d(T ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) noexcept {
    T **b = get(newn, newm, stk);
    if (!b) return 1;
    if (*a && oldm >= 0)
        for (int32_t i = 0; i <= std::min(oldn, newn); ++i)
            std::copy_n((*a)[i], std::min(oldm, newm) + 1, b[i]);
    kill(*a, stk);
    *a = b;
    return 0;
}

// ---- Records --------------------------------------------------------------

// The empty value of each record kind.
inline void make_empty(Curve *c) noexcept { U_inicur(c); }
inline void make_empty(Surface *s) noexcept { U_inisur(s); }
inline void make_empty(CurveFunction *f) noexcept { U_inicfn(f); }
inline void make_empty(SurfaceFunction *f) noexcept { U_inisfn(f); }
inline void make_empty(ControlPolygon *p) noexcept { *p = ControlPolygon{-1, nullptr}; }
inline void make_empty(ControlNet *n) noexcept { U_inigcp(n); }
inline void make_empty(KnotVector *k) noexcept { *k = KnotVector{-1, nullptr}; }
inline void make_empty(ValueVector *v) noexcept { *v = ValueVector{-1, nullptr}; }
inline void make_empty(ValueGrid *v) noexcept { *v = ValueGrid{-1, -1, nullptr}; }
template <class M>
void make_empty(M *mat) noexcept {
    *mat = M{-1, -1, nullptr, KW_FULL, 0};
}

// One empty record on list.
template <class R>
R *get_record(int list, char *name, StorageStacks *stk) noexcept {
    auto *r = static_cast<R *>(get_block(1, sizeof(R), list, name, stk));
    if (r) make_empty(r);
    return r;
}

// n+1 pointers of type P on list, each left null.
template <class P>
P *get_pointers(int32_t n, int list, char *name, StorageStacks *stk) noexcept {
    auto *a = static_cast<P *>(get_block(elements(n), sizeof(P), list, name, stk));
    if (a) std::fill_n(a, elements(n), nullptr);
    return a;
}

// Arrays of k+1 (or (k+1) x (l+1)) new objects, each made by make(). The
// pointers go on `list` (and the rows on `rows_list`). Objects already made
// when a later one fails stay on the context for N_enurbs.
template <class R, class Make>
R **get_objects(int32_t k, int list, char *name, StorageStacks *stk, Make make) noexcept {
    R **a = get_pointers<R *>(k, list, name, stk);
    if (!a) return nullptr;
    for (int32_t i = 0; i <= k; ++i)
        if (!(a[i] = make())) return nullptr;
    return a;
}

template <class R, class Make>
R ***get_object_grid(int32_t k, int32_t l, int list, int rows_list, char *name,
                     StorageStacks *stk, Make make) noexcept {
    R ***a = get_rows<R *>(elements(k), elements(l), list, rows_list, name, stk);
    if (!a) return nullptr;
    for (int32_t i = 0; i <= k; ++i)
        for (int32_t j = 0; j <= l; ++j)
            if (!(a[i][j] = make())) return nullptr;
    return a;
}

// ---- Matrices -------------------------------------------------------------

template <class E>
struct MatrixOf;
template <>
struct MatrixOf<double> {
    using type = RealMatrix;
};
template <>
struct MatrixOf<int32_t> {
    using type = IntegerMatrix;
};
template <>
struct MatrixOf<Point> {
    using type = PointMatrix;
};
template <>
struct MatrixOf<ControlPoint> {
    using type = ControlPointMatrix;
};
template <class E>
using Matrix = typename MatrixOf<E>::type;

// Highest stored column: a banded matrix keeps w values per row.
inline int32_t stored_columns(int32_t m, int32_t type, int32_t w) noexcept {
    return type == KW_BANDED ? w - 1 : m;
}

}  // namespace kw

namespace kw {

// The exported allocator of each element kind, so that a failure records the
// allocator's own name.
template <class T>
T *get1d(int32_t n, StorageStacks *stk) noexcept;
template <>
inline double *get1d<double>(int32_t n, StorageStacks *stk) noexcept {
    return S_getr1d(n, stk);
}
template <>
inline ControlPoint *get1d<ControlPoint>(int32_t n, StorageStacks *stk) noexcept {
    return S_getc1d(n, stk);
}
template <>
inline Point *get1d<Point>(int32_t n, StorageStacks *stk) noexcept {
    return S_getp1d(n, stk);
}
template <>
inline int32_t *get1d<int32_t>(int32_t n, StorageStacks *stk) noexcept {
    return S_geti1d(n, stk);
}

template <class T>
T **get2d(int32_t n, int32_t m, StorageStacks *stk) noexcept;
template <>
inline double **get2d<double>(int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_getr2d(n, m, stk);
}
template <>
inline ControlPoint **get2d<ControlPoint>(int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_getc2d(n, m, stk);
}
template <>
inline Point **get2d<Point>(int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_getp2d(n, m, stk);
}
template <>
inline int32_t **get2d<int32_t>(int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_geti2d(n, m, stk);
}

}  // namespace kw

namespace kw {

// A private storage context for a routine's scratch objects, emptied on every
// exit path.
class LocalStacks {
public:
    LocalStacks() noexcept { N_inurbs(&stk_); }
    ~LocalStacks() { N_enurbs(&stk_); }
    LocalStacks(const LocalStacks &) = delete;
    LocalStacks &operator=(const LocalStacks &) = delete;
    StorageStacks *get() noexcept { return &stk_; }

private:
    StorageStacks stk_;
};

}  // namespace kw
