// Storage contexts: lists of allocations, allocators, kills and resizes.
#include "core/storage.hpp"

#include <cstdio>

namespace kw {

StackNode *new_node(void *block) noexcept {
    auto *node = static_cast<StackNode *>(allocate(sizeof(StackNode)));
    if (node) *node = StackNode{block, nullptr};
    return node;
}

void link(StorageStacks *stk, int list, StackNode *node) noexcept {
    node->next = stk->head[list];
    stk->head[list] = node;
}

StackNode *unlink(void *block, int list, StorageStacks *stk) noexcept {
    StackNode *prev = nullptr;
    for (StackNode *node = stk->head[list]; node; prev = node, node = node->next) {
        if (node->block != block) continue;
        (prev ? prev->next : stk->head[list]) = node->next;
        return node;
    }
    return nullptr;
}

void kill_block(void *block, int list, StorageStacks *stk) noexcept {
    StackNode *node = block ? unlink(block, list, stk) : nullptr;
    if (!node) return;
    release(block);
    release(node);
}

void *get_block(std::size_t count, std::size_t size, int list, char *name,
                StorageStacks *stk) noexcept {
    std::size_t bytes = 0;
    if (count == 0) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    if (!byte_size(count, size, &bytes)) {
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    void *block = allocate(bytes);
    if (!block) {
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    StackNode *node = new_node(block);
    if (!node) {
        release(block);
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    link(stk, list, node);
    return block;
}

}  // namespace kw

using namespace kw;

// ---- Context ----------------------------------------------------------------

void N_inurbs(StorageStacks *stk) {
    std::fill_n(stk->head, KW_STACK_LISTS, nullptr);
}

void N_enurbs(StorageStacks *stk) {
    for (StackNode *&head : stk->head) {
        while (head) {
            StackNode *node = head;
            head = node->next;
            release(node->block);
            release(node);
        }
    }
}

void U_shwstk(const StorageStacks *stk) {
    // Lists 28 to 32 (the function records and their arrays) are not shown.
    static constexpr const char *label[KW_STACK_LISTS] = {
        "f1d: ", "f2d: ", "i1d: ", "i2d: ", "i3d: ", "r1d: ", "r2d: ", "r3d: ", "r4d: ", "p1d: ",
        "p2d: ", "p3d: ", "c1d: ", "c2d: ", "c3d: ", "cur: ", "cu2: ", "cu3: ", "cu4: ", "sur: ",
        "su2: ", "su3: ", "pol: ", "net: ", "knt: ", "kn2: ", "cvl: ", "svl: ", nullptr,  nullptr,
        nullptr, nullptr, nullptr, "ima: ", "rma: ", "pma: ", "cma: "};
    for (int list = 0; list < KW_STACK_LISTS; ++list) {
        if (!label[list]) continue;
        std::fputs(label[list], stdout);
        for (const StackNode *node = stk->head[list]; node; node = node->next) std::putchar('*');
        std::fputs("|\n", stdout);
    }
}

// ---- Arrays -------------------------------------------------------------------

int16_t *S_getf1d(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETF1D";
    return get1d<int16_t>(n, name, stk);
}
int32_t *S_geti1d(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETI1D";
    return get1d<int32_t>(n, name, stk);
}
double *S_getr1d(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETR1D";
    return get1d<double>(n, name, stk);
}
Point *S_getp1d(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETP1D";
    return get1d<Point>(n, name, stk);
}
ControlPoint *S_getc1d(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETC1D";
    return get1d<ControlPoint>(n, name, stk);
}

int16_t **S_getf2d(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETF2D";
    return get2d<int16_t>(n, m, name, stk);
}
int32_t **S_geti2d(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETI2D";
    return get2d<int32_t>(n, m, name, stk);
}
double **S_getr2d(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETR2D";
    return get2d<double>(n, m, name, stk);
}
Point **S_getp2d(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETP2D";
    return get2d<Point>(n, m, name, stk);
}
ControlPoint **S_getc2d(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETC2D";
    return get2d<ControlPoint>(n, m, name, stk);
}

int16_t **S_getf1p(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETF1P";
    return get1p<int16_t>(n, name, stk);
}
int32_t **S_geti1p(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETI1P";
    return get1p<int32_t>(n, name, stk);
}
double **S_getr1p(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETR1P";
    return get1p<double>(n, name, stk);
}
Point **S_getp1p(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETP1P";
    return get1p<Point>(n, name, stk);
}
ControlPoint **S_getc1p(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETC1P";
    return get1p<ControlPoint>(n, name, stk);
}

int32_t ***S_geti2p(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETI2P";
    return get2p<int32_t>(n, m, name, stk);
}
double ***S_getr2p(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETR2P";
    return get2p<double>(n, m, name, stk);
}
Point ***S_getp2p(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETP2P";
    return get2p<Point>(n, m, name, stk);
}
ControlPoint ***S_getc2p(int32_t n, int32_t m, StorageStacks *stk) {
    static char name[] = "S_GETC2P";
    return get2p<ControlPoint>(n, m, name, stk);
}

double ***S_getr3d(int32_t n, int32_t m, int32_t k, StorageStacks *stk) {
    static char name[] = "S_GETR3D";
    // Planes of (m+1) x (k+1) doubles: the second level and the data as one
    // 2-D array of (n+1)(m+1) rows, then the top level over its rows.
    const std::size_t planes = elements(n), rows = elements(m);
    if (planes == 0 || rows == 0) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    double **second =
        get_rows<double>(planes * rows, elements(k), KW_LIST_R1D, KW_LIST_R2D, name, stk);
    if (!second) return nullptr;
    auto ***top = static_cast<double ***>(get_block(planes, sizeof(double **), KW_LIST_R3D, name, stk));
    if (!top) {
        kill_rows<double>(second, KW_LIST_R1D, KW_LIST_R2D, stk);
        return nullptr;
    }
    for (std::size_t i = 0; i < planes; ++i) top[i] = second + i * rows;
    return top;
}

double ****S_getr4d(int32_t n, int32_t m, int32_t k, int32_t l, StorageStacks *stk) {
    static char name[] = "S_GETR4D";
    const std::size_t blocks = elements(n), planes = elements(m);
    if (blocks == 0 || planes == 0) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    if (blocks * planes > static_cast<std::size_t>(INT32_MAX)) {
        E_seterr(KW_ENOMEM, name);
        return nullptr;
    }
    double ***third = S_getr3d(static_cast<int32_t>(blocks * planes) - 1, k, l, stk);
    if (!third) return nullptr;
    auto ****top = static_cast<double ****>(get_block(blocks, sizeof(double ***), KW_LIST_R4D, name, stk));
    if (!top) {
        U_kilr3d(third, stk);
        return nullptr;
    }
    for (std::size_t i = 0; i < blocks; ++i) top[i] = third + i * planes;
    return top;
}

double ***S_getr12(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETR12";
    return get_pointers<double **>(n, KW_LIST_R3D, name, stk);
}

Point **S_getp2v(int32_t n, const int32_t *len, StorageStacks *stk) {
    static char name[] = "S_GETP2V";
    if (n < 0 || !len) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    std::size_t total = 0;
    for (int32_t i = 0; i <= n; ++i) {
        if (len[i] < 0) {
            E_seterr(KW_EARG, name);
            return nullptr;
        }
        total += elements(len[i]);
    }
    return get_rows<Point>(elements(n), total, KW_LIST_P1D, KW_LIST_P2D, name, stk,
                           [n, len](Point **row, Point *data) {
                               for (int32_t i = 0; i <= n; data += elements(len[i]), ++i)
                                   row[i] = data;
                           });
}

// ---- Empty records --------------------------------------------------------------

Curve *S_getcus(StorageStacks *stk) {
    static char name[] = "S_GETCUS";
    return get_record<Curve>(KW_LIST_CUR, name, stk);
}
Surface *S_getsus(StorageStacks *stk) {
    static char name[] = "S_GETSUS";
    return get_record<Surface>(KW_LIST_SUR, name, stk);
}
ControlPolygon *S_getpos(StorageStacks *stk) {
    static char name[] = "S_GETPOS";
    return get_record<ControlPolygon>(KW_LIST_POL, name, stk);
}
ControlNet *S_getnes(StorageStacks *stk) {
    static char name[] = "S_GETNES";
    return get_record<ControlNet>(KW_LIST_NET, name, stk);
}
KnotVector *S_getkns(StorageStacks *stk) {
    static char name[] = "S_GETKNS";
    return get_record<KnotVector>(KW_LIST_KNT, name, stk);
}
ValueVector *S_getcvl(StorageStacks *stk) {
    static char name[] = "S_GETCVL";
    return get_record<ValueVector>(KW_LIST_CVL, name, stk);
}
ValueGrid *S_getsvl(StorageStacks *stk) {
    static char name[] = "S_GETSVL";
    return get_record<ValueGrid>(KW_LIST_SVL, name, stk);
}
CurveFunction *S_getcfs(StorageStacks *stk) {
    static char name[] = "S_GETCFS";
    return get_record<CurveFunction>(KW_LIST_CFN, name, stk);
}
SurfaceFunction *S_getsfs(StorageStacks *stk) {
    static char name[] = "S_GETSFS";
    return get_record<SurfaceFunction>(KW_LIST_SFN, name, stk);
}

// ---- Arrays of record pointers ----------------------------------------------------

Curve **S_getcua(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETCUA";
    return get_pointers<Curve *>(n, KW_LIST_CU2, name, stk);
}
Curve **S_getcu1(int32_t n, int16_t flag, StorageStacks *stk) {
    static char name[] = "S_GETCU1";
    // S_getcus hands out empty records, so flag 1 asks for nothing more.
    (void)flag;
    return get_objects<Curve>(n, KW_LIST_CU2, name, stk, [stk] { return S_getcus(stk); });
}
Curve **S_getcub(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETCUB";
    return get_pointers<Curve *>(n, KW_LIST_CU3, name, stk);
}
Curve **S_getcuc(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETCUC";
    return get_pointers<Curve *>(n, KW_LIST_CU4, name, stk);
}
Surface **S_getsu1(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETSU1";
    return get_objects<Surface>(n, KW_LIST_SU2, name, stk, [stk] { return S_getsus(stk); });
}
Surface **S_getsua(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETSUA";
    return get_pointers<Surface *>(n, KW_LIST_SU2, name, stk);
}
KnotVector **S_getkpa(int32_t n, StorageStacks *stk) {
    static char name[] = "S_GETKPA";
    return get_pointers<KnotVector *>(n, KW_LIST_KN2, name, stk);
}

// ---- Complete objects ---------------------------------------------------------------
// Parts obtained before a later part fails stay on the context for N_enurbs.

KnotVector *S_getknt(int32_t m, StorageStacks *stk) {
    KnotVector *knt = S_getkns(stk);
    if (!knt) return nullptr;
    double *U = S_getr1d(m, stk);
    if (!U) return nullptr;
    U_makknt(knt, U, m);
    return knt;
}

ControlPolygon *S_getpol(int32_t n, StorageStacks *stk) {
    ControlPolygon *pol = S_getpos(stk);
    if (!pol) return nullptr;
    ControlPoint *Pw = S_getc1d(n, stk);
    if (!Pw) return nullptr;
    U_makpl1(pol, Pw, n);
    return pol;
}

ControlNet *S_getnet(int32_t n, int32_t m, StorageStacks *stk) {
    ControlNet *net = S_getnes(stk);
    if (!net) return nullptr;
    ControlPoint **Pw = S_getc2d(n, m, stk);
    if (!Pw) return nullptr;
    U_maknt1(net, Pw, n, m);
    return net;
}

Curve *S_getcur(int32_t n, int16_t p, int32_t m, StorageStacks *stk) {
    ControlPolygon *pol = S_getpol(n, stk);
    if (!pol) return nullptr;
    KnotVector *knt = S_getknt(m, stk);
    if (!knt) return nullptr;
    Curve *cur = S_getcus(stk);
    if (!cur) return nullptr;
    U_makcu1(cur, pol, p, knt);
    return cur;
}

Surface *S_getsur(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                  StorageStacks *stk) {
    ControlNet *net = S_getnet(n, m, stk);
    if (!net) return nullptr;
    KnotVector *knu = S_getknt(r, stk);
    if (!knu) return nullptr;
    KnotVector *knv = S_getknt(s, stk);
    if (!knv) return nullptr;
    Surface *sur = S_getsus(stk);
    if (!sur) return nullptr;
    U_maksu1(sur, net, p, q, knu, knv);
    return sur;
}

ValueVector *S_getcvs(int32_t n, StorageStacks *stk) {
    ValueVector *cvl = S_getcvl(stk);
    if (!cvl) return nullptr;
    double *v = S_getr1d(n, stk);
    if (!v) return nullptr;
    U_makcvl(cvl, v, n);
    return cvl;
}

ValueGrid *S_getsvs(int32_t n, int32_t m, StorageStacks *stk) {
    ValueGrid *svl = S_getsvl(stk);
    if (!svl) return nullptr;
    double **v = S_getr2d(n, m, stk);
    if (!v) return nullptr;
    U_maksvl(svl, v, n, m);
    return svl;
}

CurveFunction *S_getcfn(int32_t n, int16_t p, int32_t m, StorageStacks *stk) {
    ValueVector *cvl = S_getcvs(n, stk);
    if (!cvl) return nullptr;
    KnotVector *knt = S_getknt(m, stk);
    if (!knt) return nullptr;
    CurveFunction *cfn = S_getcfs(stk);
    if (!cfn) return nullptr;
    U_makcf1(cfn, cvl, p, knt);
    return cfn;
}

SurfaceFunction *S_getsfn(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                          StorageStacks *stk) {
    ValueGrid *svl = S_getsvs(n, m, stk);
    if (!svl) return nullptr;
    KnotVector *knu = S_getknt(r, stk);
    if (!knu) return nullptr;
    KnotVector *knv = S_getknt(s, stk);
    if (!knv) return nullptr;
    SurfaceFunction *sfn = S_getsfs(stk);
    if (!sfn) return nullptr;
    U_maksf1(sfn, svl, p, q, knu, knv);
    return sfn;
}

Curve **S_getcu2(int32_t n, int16_t p, int32_t m, int32_t k, StorageStacks *stk) {
    static char name[] = "S_GETCU2";
    return get_objects<Curve>(k, KW_LIST_CU2, name, stk,
                              [=] { return S_getcur(n, p, m, stk); });
}

Surface **S_getsu3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s, int32_t k,
                   StorageStacks *stk) {
    static char name[] = "S_GETSU3";
    return get_objects<Surface>(k, KW_LIST_SU2, name, stk,
                                [=] { return S_getsur(n, m, p, q, r, s, stk); });
}

CurveFunction **S_getcf2(int32_t n, int16_t p, int32_t m, int32_t k, StorageStacks *stk) {
    static char name[] = "S_GETCF2";
    return get_objects<CurveFunction>(k, KW_LIST_CF2, name, stk,
                                      [=] { return S_getcfn(n, p, m, stk); });
}

KnotVector **S_getkn2(int32_t m, int32_t k, StorageStacks *stk) {
    static char name[] = "S_GETKN2";
    return get_objects<KnotVector>(k, KW_LIST_KN2, name, stk, [=] { return S_getknt(m, stk); });
}

Curve ***S_getcs3(int32_t n, int16_t p, int32_t m, int32_t k, int32_t l, StorageStacks *stk) {
    static char name[] = "S_GETCS3";
    return get_object_grid<Curve>(k, l, KW_LIST_CU2, KW_LIST_CU3, name, stk,
                                  [=] { return S_getcur(n, p, m, stk); });
}

Surface ***S_getss3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s, int32_t k,
                    int32_t l, StorageStacks *stk) {
    static char name[] = "S_GETSS3";
    return get_object_grid<Surface>(k, l, KW_LIST_SU2, KW_LIST_SU3, name, stk,
                                    [=] { return S_getsur(n, m, p, q, r, s, stk); });
}

SurfaceFunction ***S_getsf3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                            int32_t k, int32_t l, StorageStacks *stk) {
    static char name[] = "S_GETSF3";
    return get_object_grid<SurfaceFunction>(k, l, KW_LIST_SF2, KW_LIST_SF3, name, stk,
                                            [=] { return S_getsfn(n, m, p, q, r, s, stk); });
}

// ---- Matrices -----------------------------------------------------------------------

namespace {

template <class E>
Matrix<E> *get_matrix(int32_t n, int32_t m, int32_t type, int32_t w, int list,
                      E **(*get_data)(int32_t, int32_t, StorageStacks *), char *name,
                      StorageStacks *stk) {
    if (type < KW_FULL || type > KW_BANDED || w < 1) {
        E_seterr(KW_EARG, name);
        return nullptr;
    }
    E **a = get_data(n, stored_columns(m, type, w), stk);
    if (!a) return nullptr;
    auto *mat = get_record<Matrix<E>>(list, name, stk);
    if (!mat) return nullptr;
    *mat = Matrix<E>{n, m, a, type, w};
    return mat;
}

}  // namespace

RealMatrix *S_getrma(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "S_GETRMA";
    return get_matrix<double>(n, m, type, w, KW_LIST_RMA, S_getr2d, name, stk);
}
IntegerMatrix *S_getima(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "S_GETIMA";
    return get_matrix<int32_t>(n, m, type, w, KW_LIST_IMA, S_geti2d, name, stk);
}
PointMatrix *S_getpma(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "S_GETPMA";
    return get_matrix<Point>(n, m, type, w, KW_LIST_PMA, S_getp2d, name, stk);
}
ControlPointMatrix *S_getcma(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk) {
    static char name[] = "S_GETCMA";
    return get_matrix<ControlPoint>(n, m, type, w, KW_LIST_CMA, S_getc2d, name, stk);
}

// ---- Arrays filled from coordinate arrays --------------------------------------------

ControlPoint *S_getcpa(const double *wx, const double *wy, const double *wz, const double *w,
                       int32_t n, StorageStacks *stk) {
    ControlPoint *Pw = S_getc1d(n, stk);
    if (!Pw) return nullptr;
    for (int32_t i = 0; i <= n; ++i) Pw[i] = ControlPoint{wx[i], wy[i], wz[i], w[i]};
    return Pw;
}

Point *S_getpoa(const double *x, const double *y, const double *z, int32_t n, StorageStacks *stk) {
    Point *P = S_getp1d(n, stk);
    if (!P) return nullptr;
    for (int32_t i = 0; i <= n; ++i) P[i] = Point{x[i], y[i], z[i]};
    return P;
}

Point **S_getpom(double *const *x, double *const *y, double *const *z, int32_t n, int32_t m,
                 StorageStacks *stk) {
    Point **P = S_getp2d(n, m, stk);
    if (!P) return nullptr;
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= m; ++j) P[i][j] = Point{x[i][j], y[i][j], z[i][j]};
    return P;
}

ControlPoint **S_getcpm(double *const *wx, double *const *wy, double *const *wz, double *const *w,
                        int32_t n, int32_t m, StorageStacks *stk) {
    ControlPoint **Pw = S_getc2d(n, m, stk);
    if (!Pw) return nullptr;
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= m; ++j)
            Pw[i][j] = ControlPoint{wx[i][j], wy[i][j], wz[i][j], w[i][j]};
    return Pw;
}

// ---- Kills ------------------------------------------------------------------------------

void U_kilf1d(int16_t *a, StorageStacks *stk) { kill1d(a, stk); }
void U_kilf2d(int16_t **a, StorageStacks *stk) { kill2d(a, stk); }
void U_kili1d(int32_t *a, StorageStacks *stk) { kill1d(a, stk); }
void U_kili1p(int32_t **a, StorageStacks *stk) { kill1p(a, stk); }
void U_kili2d(int32_t **a, StorageStacks *stk) { kill2d(a, stk); }
void U_kili2p(int32_t ***a, StorageStacks *stk) { kill2p(a, stk); }
void U_kilr1d(double *a, StorageStacks *stk) { kill1d(a, stk); }
void U_kilr2d(double **a, StorageStacks *stk) { kill2d(a, stk); }
void U_kilp1d(Point *a, StorageStacks *stk) { kill1d(a, stk); }
void U_kilp2d(Point **a, StorageStacks *stk) { kill2d(a, stk); }
void U_kilc1d(ControlPoint *a, StorageStacks *stk) { kill1d(a, stk); }
void U_kilc2d(ControlPoint **a, StorageStacks *stk) { kill2d(a, stk); }

void U_kilr3d(double ***a, StorageStacks *stk) {
    StackNode *node = a ? unlink(a, KW_LIST_R3D, stk) : nullptr;
    if (!node) return;
    double **second = a[0];
    release(a);
    release(node);
    U_kilr2d(second, stk);
}

void U_kilknt(KnotVector *knt, StorageStacks *stk) {
    if (!knt) return;
    double *U = knt->U;
    kill_block(knt, KW_LIST_KNT, stk);
    U_kilr1d(U, stk);
}

void U_kilpol(ControlPolygon *pol, StorageStacks *stk) {
    if (!pol) return;
    ControlPoint *Pw = pol->Pw;
    kill_block(pol, KW_LIST_POL, stk);
    U_kilc1d(Pw, stk);
}

void U_kilnet(ControlNet *net, StorageStacks *stk) {
    if (!net) return;
    ControlPoint **Pw = net->Pw;
    kill_block(net, KW_LIST_NET, stk);
    U_kilc2d(Pw, stk);
}

void U_kilcvl(ValueVector *cvl, StorageStacks *stk) {
    if (!cvl) return;
    double *v = cvl->v;
    kill_block(cvl, KW_LIST_CVL, stk);
    U_kilr1d(v, stk);
}

void U_kilsvl(ValueGrid *svl, StorageStacks *stk) {
    if (!svl) return;
    double **v = svl->v;
    kill_block(svl, KW_LIST_SVL, stk);
    U_kilr2d(v, stk);
}

void U_kilcur(Curve *cur, StorageStacks *stk) {
    if (!cur) return;
    U_kilpol(cur->pol, stk);
    U_kilknt(cur->knt, stk);
}

void U_kilsur(Surface *sur, StorageStacks *stk) {
    if (!sur) return;
    U_kilnet(sur->net, stk);
    U_kilknt(sur->knu, stk);
    U_kilknt(sur->knv, stk);
}

void U_kilcfn(CurveFunction *cfn, StorageStacks *stk) {
    if (!cfn) return;
    U_kilcvl(cfn->cvl, stk);
    U_kilknt(cfn->knt, stk);
}

void U_kilsfn(SurfaceFunction *sfn, StorageStacks *stk) {
    if (!sfn) return;
    U_kilsvl(sfn->svl, stk);
    U_kilknt(sfn->knu, stk);
    U_kilknt(sfn->knv, stk);
}

// ---- Resizes ------------------------------------------------------------------------------

int16_t U_ralf1d(int16_t **a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<int16_t, S_getf1d, U_kilf1d>(a, oldn, newn, stk);
}
int16_t U_rali1d(int32_t **a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<int32_t, S_geti1d, U_kili1d>(a, oldn, newn, stk);
}
int16_t U_rali1p(int32_t ***a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<int32_t *, S_geti1p, U_kili1p>(a, oldn, newn, stk);
}
int16_t U_ralr1d(double **a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<double, S_getr1d, U_kilr1d>(a, oldn, newn, stk);
}
int16_t U_ralp1d(Point **a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<Point, S_getp1d, U_kilp1d>(a, oldn, newn, stk);
}
int16_t U_ralc1d(ControlPoint **a, int32_t oldn, int32_t newn, StorageStacks *stk) {
    return resize1d<ControlPoint, S_getc1d, U_kilc1d>(a, oldn, newn, stk);
}
int16_t U_ralf2d(int16_t ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<int16_t, S_getf2d, U_kilf2d>(a, oldn, oldm, newn, newm, stk);
}
int16_t U_rali2d(int32_t ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<int32_t, S_geti2d, U_kili2d>(a, oldn, oldm, newn, newm, stk);
}
int16_t U_rali2p(int32_t ****a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<int32_t *, S_geti2p, U_kili2p>(a, oldn, oldm, newn, newm, stk);
}
int16_t U_ralr2d(double ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<double, S_getr2d, U_kilr2d>(a, oldn, oldm, newn, newm, stk);
}
int16_t U_ralp2d(Point ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<Point, S_getp2d, U_kilp2d>(a, oldn, oldm, newn, newm, stk);
}
int16_t U_ralc2d(ControlPoint ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                 StorageStacks *stk) {
    return resize2d<ControlPoint, S_getc2d, U_kilc2d>(a, oldn, oldm, newn, newm, stk);
}
