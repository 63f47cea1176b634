// The matrix record family and the floating-point overflow guard.
#include "numeric/matrix.hpp"

#include <cmath>

namespace kw {

int16_t matrix_storage_ok(const RealMatrix *mat, int32_t n, int32_t m, char *name) {
    return E_rmasto(mat, n, m, name);
}
int16_t matrix_storage_ok(const IntegerMatrix *mat, int32_t n, int32_t m, char *name) {
    return E_imasto(mat, n, m, name);
}
int16_t matrix_storage_ok(const PointMatrix *mat, int32_t n, int32_t m, char *name) {
    return E_pmasto(mat, n, m, name);
}
int16_t matrix_storage_ok(const ControlPointMatrix *mat, int32_t n, int32_t m, char *name) {
    return E_cmasto(mat, n, m, name);
}

namespace {
int16_t no_error_check = 0;
}  // namespace

bool overflow_checks() noexcept { return no_error_check <= 0; }

}  // namespace kw

using namespace kw;

// ---- Overflow guard ----------------------------------------------------------

void M_NoErrChk(int16_t flag) { no_error_check = flag; }

int16_t M_chkfop(double a, double b, int16_t op) {
    if (!overflow_checks()) return 0;
    // The operation itself, in round-to-nearest without traps, says exactly
    // whether the result leaves the finite doubles; a bound on magnitudes
    // would also refuse a - a for a large a.
    double r = 0.0;
    switch (op) {
    case 1:
        r = a + b;
        break;
    case 2:
        r = a - b;
        break;
    case 3:
        r = a * b;
        break;
    case 4:
        if (b == 0.0) return 1;
        r = a / b;
        break;
    default:
        return 1;
    }
    return !std::isfinite(r);
}

// ---- Real matrices --------------------------------------------------------

void M_inirma(RealMatrix *mat) { matrix_empty<double>(mat); }
void M_makrma(RealMatrix *mat, int32_t n, int32_t m, double **a, int32_t type, int32_t w) {
    *mat = RealMatrix{n, m, a, type, w};
}
void M_rmabre(const RealMatrix *mat, int32_t *n, int32_t *m, double ***a, int32_t *type, int32_t *w) {
    matrix_break<double>(mat, n, m, a, type, w);
}
void M_rmadef(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w) {
    matrix_define<double>(mat, n, m, type, w);
}
void M_rmaind(const RealMatrix *mat, int32_t *n, int32_t *m) {
    *n = mat->n;
    *m = mat->m;
}
void M_rmarmp(const RealMatrix *mat, double ***a) { *a = mat->a; }
int16_t M_getrma(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "M_GETRMA";
    return matrix_get<double>(mat, n, m, type, w, name, stk);
}
int16_t M_isrman(const RealMatrix *mat) { return matrix_is_empty<double>(mat); }
int16_t M_rmachk(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                 StorageStacks *stk) {
    return matrix_check<double>(mat, n, m, type, w, name, stk);
}

// ---- Integer matrices -----------------------------------------------------

void M_iniima(IntegerMatrix *mat) { matrix_empty<int32_t>(mat); }
void M_makima(IntegerMatrix *mat, int32_t n, int32_t m, int32_t **a, int32_t type, int32_t w) {
    *mat = IntegerMatrix{n, m, a, type, w};
}
void M_imabre(const IntegerMatrix *mat, int32_t *n, int32_t *m, int32_t ***a, int32_t *type, int32_t *w) {
    matrix_break<int32_t>(mat, n, m, a, type, w);
}
void M_imadef(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w) {
    matrix_define<int32_t>(mat, n, m, type, w);
}
void M_imaind(const IntegerMatrix *mat, int32_t *n, int32_t *m) {
    *n = mat->n;
    *m = mat->m;
}
void M_imaimp(const IntegerMatrix *mat, int32_t ***a) { *a = mat->a; }
int16_t M_getima(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "M_GETIMA";
    return matrix_get<int32_t>(mat, n, m, type, w, name, stk);
}
int16_t M_isiman(const IntegerMatrix *mat) { return matrix_is_empty<int32_t>(mat); }
int16_t M_imachk(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                 StorageStacks *stk) {
    return matrix_check<int32_t>(mat, n, m, type, w, name, stk);
}

// ---- Point matrices -------------------------------------------------------

void M_inipma(PointMatrix *mat) { matrix_empty<Point>(mat); }
void M_makpma(PointMatrix *mat, int32_t n, int32_t m, Point **a, int32_t type, int32_t w) {
    *mat = PointMatrix{n, m, a, type, w};
}
void M_pmabre(const PointMatrix *mat, int32_t *n, int32_t *m, Point ***a, int32_t *type, int32_t *w) {
    matrix_break<Point>(mat, n, m, a, type, w);
}
void M_pmadef(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w) {
    matrix_define<Point>(mat, n, m, type, w);
}
void M_pmaind(const PointMatrix *mat, int32_t *n, int32_t *m) {
    *n = mat->n;
    *m = mat->m;
}
void M_pmapmp(const PointMatrix *mat, Point ***a) { *a = mat->a; }
int16_t M_getpma(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "M_GETPMA";
    return matrix_get<Point>(mat, n, m, type, w, name, stk);
}
int16_t M_ispman(const PointMatrix *mat) { return matrix_is_empty<Point>(mat); }
int16_t M_pmachk(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                 StorageStacks *stk) {
    return matrix_check<Point>(mat, n, m, type, w, name, stk);
}

// ---- ControlPoint matrices ------------------------------------------------

void M_inicma(ControlPointMatrix *mat) { matrix_empty<ControlPoint>(mat); }
void M_makcma(ControlPointMatrix *mat, int32_t n, int32_t m, ControlPoint **a, int32_t type, int32_t w) {
    *mat = ControlPointMatrix{n, m, a, type, w};
}
void M_cmabre(const ControlPointMatrix *mat, int32_t *n, int32_t *m, ControlPoint ***a, int32_t *type, int32_t *w) {
    matrix_break<ControlPoint>(mat, n, m, a, type, w);
}
void M_cmadef(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w) {
    matrix_define<ControlPoint>(mat, n, m, type, w);
}
void M_cmaind(const ControlPointMatrix *mat, int32_t *n, int32_t *m) {
    *n = mat->n;
    *m = mat->m;
}
void M_cmacmp(const ControlPointMatrix *mat, ControlPoint ***a) { *a = mat->a; }
int16_t M_getcma(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "M_GETCMA";
    return matrix_get<ControlPoint>(mat, n, m, type, w, name, stk);
}
int16_t M_iscman(const ControlPointMatrix *mat) { return matrix_is_empty<ControlPoint>(mat); }
int16_t M_cmachk(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                 StorageStacks *stk) {
    return matrix_check<ControlPoint>(mat, n, m, type, w, name, stk);
}
