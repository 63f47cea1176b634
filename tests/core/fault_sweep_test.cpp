// Every allocating routine of the foundation, failed at each allocation in turn.
#include "core/fault_sweep.hpp"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

using namespace kwtest;

bool empty(const Curve *r) { return U_iscurn(r); }
bool empty(const Surface *r) { return U_issurn(r); }
bool empty(const CurveFunction *r) { return U_iscfnn(r); }
bool empty(const SurfaceFunction *r) { return U_issfnn(r); }
bool empty(KnotVector *const *k) { return *k == nullptr; }
void make_empty(KnotVector **k) { *k = nullptr; }
using kw::make_empty;

// The call fills an empty record from inputs prepared with no fault armed;
// a failed call leaves the record empty.
template <class R, class In = std::nullptr_t>
FaultCase filling(std::string name,
                  std::type_identity_t<std::function<int16_t(const In &, R *, StorageStacks *)>> fill,
                  std::type_identity_t<std::function<In(StorageStacks *)>> inputs =
                      [](StorageStacks *) { return In{}; }) {
    return {std::move(name), [=](StorageStacks *stk) {
                const In in = inputs(stk);
                R rec;
                make_empty(&rec);
                return std::function<int()>([=]() mutable {
                    const int st = fill(in, &rec, stk);
                    if (st) EXPECT_TRUE(empty(&rec));
                    return st;
                });
            }};
}
using None = std::nullptr_t;
char caller[] = "T_CALLER";

// A resize from 4 to 9 elements (2 x 3 to 4 x 1): on success the common
// elements come over and the old array is gone (the lists hold the new one
// alone); on failure the caller keeps the old array, still on its list.
template <auto get, auto ral>
FaultCase resizing(const char *name, std::vector<std::pair<int, int>> lists) {
    constexpr bool one = std::is_invocable_v<decltype(get), int32_t, StorageStacks *>;
    return {name, [](StorageStacks *stk) {
                auto a = [stk] { if constexpr (one) return get(4, stk); else return get(2, 3, stk); }();
                auto cell = [](auto p, int i, int j) {
                    if constexpr (one) return reinterpret_cast<unsigned char *>(&p[j]);
                    else return reinterpret_cast<unsigned char *>(&p[i][j]);
                };
                const size_t size = [&] { if constexpr (one) return sizeof(*a); else return sizeof(**a); }();
                const int rows = one ? 0 : 2, cols = one ? 4 : 3, kept = one ? 4 : 1;
                for (int i = 0; i <= rows; ++i)
                    for (int j = 0; j <= cols; ++j) std::memset(cell(a, i, j), 7 * i + j + 1, size);
                return std::function<int()>([=]() mutable {
                    const auto old = a;
                    int st;
                    if constexpr (one) st = ral(&a, 4, 9, stk); else st = ral(&a, 2, 3, 4, 1, stk);
                    if (st) EXPECT_TRUE(a == old && on_a_list(stk, old));
                    for (int i = 0; i <= rows && !st; ++i)
                        for (int j = 0; j <= kept; ++j) EXPECT_EQ(*cell(a, i, j), 7 * i + j + 1);
                    return st;
                });
            }, std::move(lists)};
}

std::vector<const void *> arrays(const Curve *r) { return {r->pol->Pw, r->knt->U}; }
std::vector<const void *> arrays(const Surface *r) { return {r->net->Pw, r->knu->U, r->knv->U}; }
std::vector<const void *> arrays(const CurveFunction *r) { return {r->cvl->v, r->knt->U}; }
std::vector<const void *> arrays(const SurfaceFunction *r) { return {r->svl->v, r->knu->U, r->knv->U}; }

// Compaction of an object whose counts were shrunk: on failure it keeps its
// arrays, still on their lists.
template <class R>
FaultCase compacting(const char *name, std::function<R *(StorageStacks *)> make, int16_t (*compact)(R *, StorageStacks *)) {
    return {name, [=](StorageStacks *stk) {
                R *r = make(stk);
                return std::function<int()>([=] {
                    const std::vector<const void *> before = arrays(r);
                    const int st = compact(r, stk);
                    if (st) EXPECT_EQ(arrays(r), before);
                    for (const void *a : arrays(r)) EXPECT_TRUE(on_a_list(stk, a));
                    return st;
                });
            }};
}

const std::vector<FaultCase> &foundation_cases() {
    static const int32_t len[3] = {2, 0, 4};
    static double c0[2] = {1, 2}, c1[2] = {3, 4};
    static double *grid[2] = {c0, c1};
    static ControlPoint g0[2], g1[2];
    static ControlPoint *grid_cp[2] = {g0, g1};
    static double U4[4] = {0, 0, 1, 1};
    static const std::vector<FaultCase> cases = {
        // Primitive allocators.
        call("S_getf1d", [](StorageStacks *s) { return status(S_getf1d(3, s)); }, {{KW_LIST_F1D, 1}}),
        call("S_geti1d", [](StorageStacks *s) { return status(S_geti1d(3, s)); }, {{KW_LIST_I1D, 1}}),
        call("S_getr1d", [](StorageStacks *s) { return status(S_getr1d(3, s)); }, {{KW_LIST_R1D, 1}}),
        call("S_getp1d", [](StorageStacks *s) { return status(S_getp1d(3, s)); }, {{KW_LIST_P1D, 1}}),
        call("S_getc1d", [](StorageStacks *s) { return status(S_getc1d(3, s)); }, {{KW_LIST_C1D, 1}}),
        call("S_getf2d", [](StorageStacks *s) { return status(S_getf2d(2, 3, s)); }, {{KW_LIST_F1D, 1}, {KW_LIST_F2D, 1}}),
        call("S_geti2d", [](StorageStacks *s) { return status(S_geti2d(2, 3, s)); }, {{KW_LIST_I1D, 1}, {KW_LIST_I2D, 1}}),
        call("S_getr2d", [](StorageStacks *s) { return status(S_getr2d(2, 3, s)); }, {{KW_LIST_R1D, 1}, {KW_LIST_R2D, 1}}),
        call("S_getp2d", [](StorageStacks *s) { return status(S_getp2d(2, 3, s)); }, {{KW_LIST_P1D, 1}, {KW_LIST_P2D, 1}}),
        call("S_getc2d", [](StorageStacks *s) { return status(S_getc2d(2, 3, s)); }, {{KW_LIST_C1D, 1}, {KW_LIST_C2D, 1}}),
        call("S_getf1p", [](StorageStacks *s) { return status(S_getf1p(3, s)); }, {{KW_LIST_F2D, 1}}),
        call("S_geti1p", [](StorageStacks *s) { return status(S_geti1p(3, s)); }, {{KW_LIST_I2D, 1}}),
        call("S_getr1p", [](StorageStacks *s) { return status(S_getr1p(3, s)); }, {{KW_LIST_R2D, 1}}),
        call("S_getp1p", [](StorageStacks *s) { return status(S_getp1p(3, s)); }, {{KW_LIST_P2D, 1}}),
        call("S_getc1p", [](StorageStacks *s) { return status(S_getc1p(3, s)); }, {{KW_LIST_C2D, 1}}),
        call("S_geti2p", [](StorageStacks *s) { return status(S_geti2p(2, 3, s)); }, {{KW_LIST_I2D, 1}, {KW_LIST_I3D, 1}}),
        call("S_getr2p", [](StorageStacks *s) { return status(S_getr2p(2, 3, s)); }, {{KW_LIST_R2D, 1}, {KW_LIST_R3D, 1}}),
        call("S_getp2p", [](StorageStacks *s) { return status(S_getp2p(2, 3, s)); }, {{KW_LIST_P2D, 1}, {KW_LIST_P3D, 1}}),
        call("S_getc2p", [](StorageStacks *s) { return status(S_getc2p(2, 3, s)); }, {{KW_LIST_C2D, 1}, {KW_LIST_C3D, 1}}),
        call("S_getr3d", [](StorageStacks *s) { return status(S_getr3d(2, 1, 3, s)); }, {{KW_LIST_R1D, 1}, {KW_LIST_R2D, 1}, {KW_LIST_R3D, 1}}),
        call("S_getr4d", [](StorageStacks *s) { return status(S_getr4d(1, 2, 1, 3, s)); },
             {{KW_LIST_R1D, 1}, {KW_LIST_R2D, 1}, {KW_LIST_R3D, 1}, {KW_LIST_R4D, 1}}),
        call("S_getr12", [](StorageStacks *s) { return status(S_getr12(3, s)); }, {{KW_LIST_R3D, 1}}),
        call("S_getp2v", [](StorageStacks *s) { return status(S_getp2v(2, len, s)); }, {{KW_LIST_P1D, 1}, {KW_LIST_P2D, 1}}),
        call("S_getcus", [](StorageStacks *s) { return status(S_getcus(s)); }, {{KW_LIST_CUR, 1}}),
        call("S_getsus", [](StorageStacks *s) { return status(S_getsus(s)); }, {{KW_LIST_SUR, 1}}),
        call("S_getpos", [](StorageStacks *s) { return status(S_getpos(s)); }, {{KW_LIST_POL, 1}}),
        call("S_getnes", [](StorageStacks *s) { return status(S_getnes(s)); }, {{KW_LIST_NET, 1}}),
        call("S_getkns", [](StorageStacks *s) { return status(S_getkns(s)); }, {{KW_LIST_KNT, 1}}),
        call("S_getcvl", [](StorageStacks *s) { return status(S_getcvl(s)); }, {{KW_LIST_CVL, 1}}),
        call("S_getsvl", [](StorageStacks *s) { return status(S_getsvl(s)); }, {{KW_LIST_SVL, 1}}),
        call("S_getcfs", [](StorageStacks *s) { return status(S_getcfs(s)); }, {{KW_LIST_CFN, 1}}),
        call("S_getsfs", [](StorageStacks *s) { return status(S_getsfs(s)); }, {{KW_LIST_SFN, 1}}),
        call("S_getcua", [](StorageStacks *s) { return status(S_getcua(3, s)); }, {{KW_LIST_CU2, 1}}),
        call("S_getcu1 flag 0", [](StorageStacks *s) { return status(S_getcu1(3, 0, s)); }, {{KW_LIST_CU2, 1}, {KW_LIST_CUR, 4}}),
        call("S_getcu1 flag 1", [](StorageStacks *s) { return status(S_getcu1(3, 1, s)); }, {{KW_LIST_CU2, 1}, {KW_LIST_CUR, 4}}),
        call("S_getcub", [](StorageStacks *s) { return status(S_getcub(3, s)); }, {{KW_LIST_CU3, 1}}),
        call("S_getcuc", [](StorageStacks *s) { return status(S_getcuc(3, s)); }, {{KW_LIST_CU4, 1}}),
        call("S_getsu1", [](StorageStacks *s) { return status(S_getsu1(3, s)); }, {{KW_LIST_SU2, 1}, {KW_LIST_SUR, 4}}),
        call("S_getsua", [](StorageStacks *s) { return status(S_getsua(3, s)); }, {{KW_LIST_SU2, 1}}),
        call("S_getkpa", [](StorageStacks *s) { return status(S_getkpa(3, s)); }, {{KW_LIST_KN2, 1}}),
        // Composite allocators.
        call("S_getknt", [](StorageStacks *s) { return status(S_getknt(5, s)); }),
        call("S_getpol", [](StorageStacks *s) { return status(S_getpol(3, s)); }),
        call("S_getnet", [](StorageStacks *s) { return status(S_getnet(2, 3, s)); }),
        call("S_getcur", [](StorageStacks *s) { return status(S_getcur(3, 2, 6, s)); },
             {{KW_LIST_POL, 1}, {KW_LIST_C1D, 1}, {KW_LIST_KNT, 1}, {KW_LIST_R1D, 1}, {KW_LIST_CUR, 1}}),
        call("S_getsur", [](StorageStacks *s) { return status(S_getsur(2, 3, 1, 2, 4, 6, s)); }),
        call("S_getcvs", [](StorageStacks *s) { return status(S_getcvs(3, s)); }),
        call("S_getsvs", [](StorageStacks *s) { return status(S_getsvs(2, 3, s)); }),
        call("S_getcfn", [](StorageStacks *s) { return status(S_getcfn(3, 2, 6, s)); }),
        call("S_getsfn", [](StorageStacks *s) { return status(S_getsfn(2, 3, 1, 2, 4, 6, s)); },
             {{KW_LIST_SVL, 1}, {KW_LIST_R1D, 3}, {KW_LIST_R2D, 1}, {KW_LIST_KNT, 2}, {KW_LIST_SFN, 1}}),
        call("S_getcu2", [](StorageStacks *s) { return status(S_getcu2(3, 2, 6, 2, s)); }),
        call("S_getsu3", [](StorageStacks *s) { return status(S_getsu3(1, 1, 1, 1, 3, 3, 1, s)); }),
        call("S_getcf2", [](StorageStacks *s) { return status(S_getcf2(3, 2, 6, 1, s)); }),
        call("S_getkn2", [](StorageStacks *s) { return status(S_getkn2(5, 2, s)); }),
        call("S_getcs3", [](StorageStacks *s) { return status(S_getcs3(3, 2, 6, 1, 1, s)); },
             {{KW_LIST_CU2, 1}, {KW_LIST_CU3, 1}, {KW_LIST_CUR, 4}, {KW_LIST_POL, 4}, {KW_LIST_C1D, 4}, {KW_LIST_KNT, 4}, {KW_LIST_R1D, 4}}),
        call("S_getss3", [](StorageStacks *s) { return status(S_getss3(1, 1, 1, 1, 3, 3, 1, 1, s)); }),
        call("S_getsf3", [](StorageStacks *s) { return status(S_getsf3(1, 1, 1, 1, 3, 3, 1, 0, s)); }),
        call("S_getrma", [](StorageStacks *s) { return status(S_getrma(3, 3, KW_FULL, 4, s)); },
             {{KW_LIST_R1D, 1}, {KW_LIST_R2D, 1}, {KW_LIST_RMA, 1}}),
        call("S_getima", [](StorageStacks *s) { return status(S_getima(3, 3, KW_BANDED, 3, s)); },
             {{KW_LIST_I1D, 1}, {KW_LIST_I2D, 1}, {KW_LIST_IMA, 1}}),
        call("S_getpma", [](StorageStacks *s) { return status(S_getpma(3, 3, KW_LOWERLEFT, 4, s)); },
             {{KW_LIST_P1D, 1}, {KW_LIST_P2D, 1}, {KW_LIST_PMA, 1}}),
        call("S_getcma", [](StorageStacks *s) { return status(S_getcma(3, 3, KW_UPPERRIGHT, 4, s)); },
             {{KW_LIST_C1D, 1}, {KW_LIST_C2D, 1}, {KW_LIST_CMA, 1}}),
        call("S_getcpa", [](StorageStacks *s) { return status(S_getcpa(c0, c1, c0, c1, 1, s)); }),
        call("S_getpoa", [](StorageStacks *s) { return status(S_getpoa(c0, c1, c0, 1, s)); }),
        call("S_getpom", [](StorageStacks *s) { return status(S_getpom(grid, grid, grid, 1, 1, s)); }),
        call("S_getcpm", [](StorageStacks *s) { return status(S_getcpm(grid, grid, grid, grid, 1, 1, s)); }, {{KW_LIST_C1D, 1}, {KW_LIST_C2D, 1}}),
        // Records: makes, output checks (which get an empty record) and copies into empty records.
        filling<Curve>("U_makcu2", [](None, Curve *c, StorageStacks *s) { static ControlPoint P[2]; return U_makcu2(c, P, 1, 1, U4, 3, s); }),
        filling<Curve>("U_makcu3", [](None, Curve *c, StorageStacks *s) { return U_makcu3(c, c0, c1, c0, c1, 1, 1, U4, 3, s); }),
        filling<Surface>("U_maksu2", [](None, Surface *r, StorageStacks *s) { return U_maksu2(r, grid_cp, 1, 1, 1, 1, U4, U4, 3, 3, s); }),
        filling<CurveFunction>("U_makcf2", [](None, CurveFunction *f, StorageStacks *s) { return U_makcf2(f, c0, 1, 1, U4, 3, s); }),
        filling<SurfaceFunction>("U_maksf2", [](None, SurfaceFunction *f, StorageStacks *s) { return U_maksf2(f, grid, 1, 1, 1, 1, U4, U4, 3, 3, s); }),
        filling<Curve, ControlPolygon *>("U_makcpl", [](ControlPolygon *const &pol, Curve *c, StorageStacks *s) { return U_makcpl(c, pol, 0, 0, 1, 1, s); },
                                         [](StorageStacks *s) { return S_getpol(1, s); }),
        filling<Surface, ControlNet *>("U_makspl", [](ControlNet *const &net, Surface *r, StorageStacks *s) { return U_makspl(r, net, 0, 1, 0, 1, s); },
                                       [](StorageStacks *s) { return S_getnet(1, 1, s); }),
        call("U_maknt2", [](StorageStacks *s) { ControlNet n; return (int)U_maknt2(&n, grid, grid, grid, grid, 1, 1, s); }),
        call("U_makpl2", [](StorageStacks *s) { ControlPolygon p; return (int)U_makpl2(&p, c0, c1, c0, c1, 1, s); }),
        filling<Curve>("U_curchk", [](None, Curve *c, StorageStacks *s) { return U_curchk(c, 3, 2, 6, caller, s); }),
        filling<Surface>("U_surchk", [](None, Surface *r, StorageStacks *s) { return U_surchk(r, 2, 3, 1, 2, 4, 6, caller, s); }),
        filling<CurveFunction>("U_cfnchk", [](None, CurveFunction *f, StorageStacks *s) { return U_cfnchk(f, 3, 2, 6, caller, s); }),
        filling<SurfaceFunction>("U_sfnchk", [](None, SurfaceFunction *f, StorageStacks *s) { return U_sfnchk(f, 2, 3, 1, 2, 4, 6, caller, s); }),
        filling<KnotVector *>("U_kntchk", [](None, KnotVector **k, StorageStacks *s) { return U_kntchk(k, 5, caller, s); }),
        filling<Curve, Curve *>("U_curcop", [](Curve *const &src, Curve *c, StorageStacks *s) { return U_curcop(src, c, s); },
                                [](StorageStacks *s) { return S_getcur(3, 2, 6, s); }),
        filling<Surface, Surface *>("U_surcop", [](Surface *const &src, Surface *r, StorageStacks *s) { return U_surcop(src, r, s); },
                                    [](StorageStacks *s) { return S_getsur(2, 3, 1, 2, 4, 6, s); }),
        filling<CurveFunction, CurveFunction *>("U_cfncop", [](CurveFunction *const &src, CurveFunction *f, StorageStacks *s) { return U_cfncop(src, f, s); },
                                                [](StorageStacks *s) { return S_getcfn(3, 2, 6, s); }),
        filling<SurfaceFunction, SurfaceFunction *>("U_sfncop", [](SurfaceFunction *const &src, SurfaceFunction *f, StorageStacks *s) { return U_sfncop(src, f, s); },
                                                    [](StorageStacks *s) { return S_getsfn(2, 3, 1, 2, 4, 6, s); }),
        filling<KnotVector *, KnotVector *>("U_kntcop", [](KnotVector *const &src, KnotVector **k, StorageStacks *s) { return U_kntcop(src, k, s); },
                                            [](StorageStacks *s) { return S_getknt(5, s); }),
        compacting<Curve>("U_curcmp", [](StorageStacks *s) { Curve *c = S_getcur(6, 2, 9, s); U_defcur(c, 3, 2, 6); return c; }, U_curcmp),
        compacting<Surface>("U_surcmp", [](StorageStacks *s) { Surface *r = S_getsur(4, 4, 1, 1, 6, 6, s); U_defsur(r, 2, 3, 1, 1, 4, 5); return r; }, U_surcmp),
        compacting<CurveFunction>("U_cfncmp", [](StorageStacks *s) { return S_getcfn(6, 2, 9, s); }, U_cfncmp),
        compacting<SurfaceFunction>("U_sfncmp", [](StorageStacks *s) { return S_getsfn(2, 3, 1, 2, 4, 6, s); }, U_sfncmp),
        // Resizes.
        resizing<S_getf1d, U_ralf1d>("U_ralf1d", {{KW_LIST_F1D, 1}}),
        resizing<S_geti1d, U_rali1d>("U_rali1d", {{KW_LIST_I1D, 1}}),
        resizing<S_geti1p, U_rali1p>("U_rali1p", {{KW_LIST_I2D, 1}}),
        resizing<S_getr1d, U_ralr1d>("U_ralr1d", {{KW_LIST_R1D, 1}}),
        resizing<S_getp1d, U_ralp1d>("U_ralp1d", {{KW_LIST_P1D, 1}}),
        resizing<S_getc1d, U_ralc1d>("U_ralc1d", {{KW_LIST_C1D, 1}}),
        resizing<S_getf2d, U_ralf2d>("U_ralf2d", {{KW_LIST_F1D, 1}, {KW_LIST_F2D, 1}}),
        resizing<S_geti2d, U_rali2d>("U_rali2d", {{KW_LIST_I1D, 1}, {KW_LIST_I2D, 1}}),
        resizing<S_geti2p, U_rali2p>("U_rali2p", {{KW_LIST_I2D, 1}, {KW_LIST_I3D, 1}}),
        resizing<S_getr2d, U_ralr2d>("U_ralr2d", {{KW_LIST_R1D, 1}, {KW_LIST_R2D, 1}}),
        resizing<S_getp2d, U_ralp2d>("U_ralp2d", {{KW_LIST_P1D, 1}, {KW_LIST_P2D, 1}}),
        resizing<S_getc2d, U_ralc2d>("U_ralc2d", {{KW_LIST_C1D, 1}, {KW_LIST_C2D, 1}}),
        // Matrix records.
        call("M_rmachk", [](StorageStacks *s) { static char nm[] = "T_CALLER"; RealMatrix a; M_inirma(&a); return (int)M_rmachk(&a, 3, 3, KW_FULL, 4, nm, s); }),
        call("M_imachk", [](StorageStacks *s) { static char nm[] = "T_CALLER"; IntegerMatrix a; M_iniima(&a); return (int)M_imachk(&a, 3, 3, KW_FULL, 4, nm, s); }),
        call("M_pmachk", [](StorageStacks *s) { static char nm[] = "T_CALLER"; PointMatrix a; M_inipma(&a); return (int)M_pmachk(&a, 3, 3, KW_FULL, 4, nm, s); }),
        call("M_cmachk", [](StorageStacks *s) { static char nm[] = "T_CALLER"; ControlPointMatrix a; M_inicma(&a); return (int)M_cmachk(&a, 3, 3, KW_BANDED, 3, nm, s); }),
    };
    return cases;
}

class FoundationSweep : public ::testing::TestWithParam<FaultCase> {};

TEST_P(FoundationSweep, FailsCleanlyAtEveryAllocation) {
    const std::vector<std::string> names = sweep(GetParam());
    EXPECT_FALSE(names.empty()) << "the routine never allocated";
}

INSTANTIATE_TEST_SUITE_P(Foundation, FoundationSweep, ::testing::ValuesIn(foundation_cases()),
                         [](const ::testing::TestParamInfo<FaultCase> &info) {
                             std::string id = info.param.name;
                             std::replace_if(id.begin(), id.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
                             return id;
                         });

// Composites take their parts in the order they are listed: the allocator
// that fails first, as the failing allocation moves on.
TEST(CompositeAllocators, TakeTheirPartsInOrder) {
    using V = std::vector<std::string>;
    const std::pair<std::string, V> table[] = {
        {"S_getcur", {"S_GETPOS", "S_GETC1D", "S_GETKNS", "S_GETR1D", "S_GETCUS"}},
        {"S_getsur", {"S_GETNES", "S_GETC2D", "S_GETKNS", "S_GETR1D", "S_GETKNS", "S_GETR1D", "S_GETSUS"}},
        {"S_getcfn", {"S_GETCVL", "S_GETR1D", "S_GETKNS", "S_GETR1D", "S_GETCFS"}},
        {"S_getsfn", {"S_GETSVL", "S_GETR2D", "S_GETKNS", "S_GETR1D", "S_GETKNS", "S_GETR1D", "S_GETSFS"}},
        {"S_getrma", {"S_GETR2D", "S_GETRMA"}},
        {"S_getcu1 flag 1", {"S_GETCU1", "S_GETCUS"}},
        {"U_makcu3", {"S_GETC1D", "S_GETPOS", "S_GETKNS"}},
        {"U_maksu2", {"S_GETNES", "S_GETKNS"}},
    };
    for (const auto &[name, order] : table) {
        const auto &cases = foundation_cases();
        const auto c = std::find_if(cases.begin(), cases.end(), [&](const FaultCase &f) { return f.name == name; });
        ASSERT_NE(c, cases.end()) << name;
        EXPECT_EQ(allocators(*c), order) << name;
    }
}

// A composite that fails late keeps its earlier parts until the context is
// emptied: failing the Curve record of S_getcur leaves polygon and knots.
TEST(CompositeAllocators, LeaveEarlierPartsForTheContext) {
    kw::LocalStacks stk;
    kw::fault::fail_at(9);
    EXPECT_EQ(S_getcur(3, 2, 6, stk.get()), nullptr);
    kw::fault::fail_at(0);
    const Census c = census(stk.get());
    EXPECT_EQ(c[KW_LIST_POL] + c[KW_LIST_C1D] + c[KW_LIST_KNT] + c[KW_LIST_R1D], 4);
    EXPECT_EQ(c[KW_LIST_CUR], 0);
}

}  // namespace
