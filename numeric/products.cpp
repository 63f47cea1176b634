// Products and transposes of real matrices, products with Point and
// ControlPoint operands, and the matrix printer.
#include <cstdio>

#include "numeric/elements.hpp"
#include "numeric/matrix.hpp"

using namespace kw;

namespace {

// C(i, j) = sum over k of A(i, k) R(k, j) for the entries that exist in C;
// right(k, j) reads R and inner(j) gives the k where column j of R is
// stored, so zeros outside a triangle are never read.
template <class Right, class Inner>
void product(const RealMatrix &A, Right right, Inner inner, const RealMatrix &C) noexcept {
    clear_stored(C, 0.0);
    for (int32_t i = 0; i <= C.n; ++i) {
        const Span cols = row_span(C, i), stored = row_span(A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) {
            const Span k = meet(stored, inner(j));
            double sum = 0.0;
            for (int32_t p = k.lo; p <= k.hi; ++p) sum += entry(A, i, p) * right(p, j);
            entry(C, i, j) = sum;
        }
    }
}

// The checks of the products: data and known types (14), conforming sizes
// (7), no banded factor (14), a result apart from both factors (14).
int16_t factors_ok(const RealMatrix *A, const RealMatrix *B, bool transposed, const RealMatrix *C,
                   char *name) noexcept {
    if (!usable(A) || !usable(B)) return fail(KW_EARG, name);
    if (A->m != (transposed ? B->m : B->n)) return fail(KW_ESIZE, name);
    if (A->type == KW_BANDED || B->type == KW_BANDED) return fail(KW_EARG, name);
    if (shares_rows(C, A) || shares_rows(C, B)) return fail(KW_EARG, name);
    return 0;
}

// C = A B^T for M_rmamtr and M_rmamtm, once the factors are checked.
int16_t times_transpose(const RealMatrix *A, const RealMatrix *B, int32_t type, RealMatrix *C,
                        char *name, StorageStacks *stk) noexcept {
    if (M_rmachk(C, A->n, B->n, type, A->n + 1, name, stk)) return 1;
    product(*A, [B](int32_t k, int32_t j) { return entry(*B, j, k); },
            [B](int32_t j) { return row_span(*B, j); }, *C);
    return 0;
}

// Q(i) = sum over the stored j of A(i, j) P(j).
template <class T>
int16_t times_vector(const RealMatrix *A, const T *P, T *Q, char *name) noexcept {
    if (!usable(A)) return fail(KW_EARG, name);
    for (int32_t i = 0; i <= A->n; ++i) {
        const Span cols = row_span(*A, i);
        Combination<T> sum;
        sum.like(P[0]);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) sum.add(entry(*A, i, j), P[j]);
        Q[i] = sum.value();
    }
    return 0;
}

}  // namespace

int16_t M_rmamul(const RealMatrix *A, const RealMatrix *B, RealMatrix *C, StorageStacks *stk) {
    static char name[] = "M_RMAMUL";
    if (factors_ok(A, B, false, C, name)) return 1;
    // Two lower (or two upper) triangles give a lower (upper) one.
    const int32_t type = A->type == B->type ? A->type : KW_FULL;
    if (M_rmachk(C, A->n, B->m, type, A->n + 1, name, stk)) return 1;
    product(*A, [B](int32_t k, int32_t j) { return entry(*B, k, j); },
            [B](int32_t j) { return col_span(*B, j); }, *C);
    return 0;
}

int16_t M_rmamtr(const RealMatrix *A, const RealMatrix *B, RealMatrix *C, StorageStacks *stk) {
    static char name[] = "M_RMAMTR";
    if (factors_ok(A, B, true, C, name)) return 1;
    // B^T turns B's triangle over, so it must be the opposite one of A's.
    int32_t type = KW_FULL;
    if (A->type == KW_LOWERLEFT && B->type == KW_UPPERRIGHT) type = KW_LOWERLEFT;
    if (A->type == KW_UPPERRIGHT && B->type == KW_LOWERLEFT) type = KW_UPPERRIGHT;
    return times_transpose(A, B, type, C, name, stk);
}

int16_t M_rmamtm(const RealMatrix *A, RealMatrix *C, StorageStacks *stk) {
    static char name[] = "M_RMAMTM";
    if (factors_ok(A, A, true, C, name)) return 1;
    return times_transpose(A, A, KW_FULL, C, name, stk);
}

int16_t M_rmatrp(const RealMatrix *A, RealMatrix *T, StorageStacks *stk) {
    static char name[] = "M_RMATRP";
    static constexpr int32_t turned[] = {KW_FULL, KW_UPPERRIGHT, KW_LOWERLEFT, KW_BANDED};
    if (!usable(A) || shares_rows(T, A)) return fail(KW_EARG, name);
    // A band turned over swaps its diagonals below and above; an even width
    // keeps fewer above, so its transpose takes the next odd width.
    int32_t w = A->m + 1;
    if (A->type == KW_BANDED) w = A->w % 2 == 0 ? A->w + 1 : A->w;
    if (M_rmachk(T, A->m, A->n, turned[A->type], w, name, stk)) return 1;
    clear_stored(*T, 0.0);
    for (int32_t i = 0; i <= T->n; ++i) {
        const Span rows = col_span(*A, i);
        for (int32_t j = rows.lo; j <= rows.hi; ++j) entry(*T, i, j) = entry(*A, j, i);
    }
    return 0;
}

int16_t M_rmapoi(const RealMatrix *A, const Point *P, Point *Q) {
    static char name[] = "M_RMAPOI";
    return times_vector(A, P, Q, name);
}

int16_t M_rmacpt(const RealMatrix *A, const ControlPoint *P, ControlPoint *Q) {
    static char name[] = "M_RMACPT";
    return times_vector(A, P, Q, name);
}

int16_t M_rmcprm(const RealMatrix *A, const ControlPointMatrix *P, int16_t side,
                 ControlPointMatrix *Q, StorageStacks *stk) {
    static char name[] = "M_RMCPRM";
    if (!usable(A) || !usable(P) || (side != 1 && side != 2)) return fail(KW_EARG, name);
    if ((side == 1 ? P->n : P->m) != A->m) return fail(KW_ESIZE, name);
    if (P->type != KW_FULL || shares_rows(Q, P)) return fail(KW_EARG, name);
    const int32_t rows = side == 1 ? A->n : P->n, cols = side == 1 ? P->m : A->n;
    if (M_cmachk(Q, rows, cols, KW_FULL, rows + 1, name, stk)) return 1;
    for (int32_t i = 0; i <= rows; ++i) {
        for (int32_t j = 0; j <= cols; ++j) {
            Combination<ControlPoint> sum;
            sum.like(P->a[0][0]);
            if (side == 1) {
                const Span k = row_span(*A, i);
                for (int32_t p = k.lo; p <= k.hi; ++p) sum.add(entry(*A, i, p), P->a[p][j]);
            } else {
                const Span k = row_span(*A, j);
                for (int32_t p = k.lo; p <= k.hi; ++p) sum.add(entry(*A, j, p), P->a[i][p]);
            }
            Q->a[i][j] = sum.value();
        }
    }
    return 0;
}

int16_t M_prtrma(const RealMatrix *A) {
    static char name[] = "M_PRTRMA";
    static const char *const words[] = {"full      ", "lowerleft ", "upperright", "banded    "};
    if (!A || !known_type(A->type)) return fail(KW_EARG, name);
    std::printf("%ld %ld\n", static_cast<long>(A->n), static_cast<long>(A->m));
    std::printf("%s\n", words[A->type]);
    std::printf("%d\n", static_cast<int>(A->w));
    if (!A->a) return 0;
    for (int32_t i = 0; i <= A->n; ++i) {
        // Stored columns: the band's w values, or the existing part of the row.
        const Span cols = A->type == KW_BANDED ? Span{0, A->w - 1} : row_span(*A, i);
        for (int32_t j = cols.lo; j <= cols.hi; ++j) std::printf("%lf ", A->a[i][j]);
        std::printf("\n");
    }
    return 0;
}
