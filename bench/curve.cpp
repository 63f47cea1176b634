// Curve points and derivatives to order 2 on the 3-D cubic of 100 control
// points, polynomial and rational, over 1e6 parameters in random order and
// the same sorted.
#include <GeomAdaptor_Curve.hxx>

#include "differential/peers.hpp"
#include "fixtures.hpp"
#include "kernel.hpp"

namespace {

using namespace bench;

constexpr size_t kCount = 1000000;
// The batch evaluators take the parameters in chunks of this many, into an
// output buffer that stays in cache, as a sweep would.
constexpr size_t kChunk = 1024;

template <bool Rational>
void curve_cases(const char *order) {
    static const Curve cur = make_curve(Rational);
    static const Handle(Geom_BSplineCurve) occt = peer::occt_curve(cur);
    static const peer::SislCurve sisl = peer::sisl_curve(cur);
    static const std::vector<double> random = parameters(kCount, 0.0, 1.0, false),
                                     sorted = parameters(kCount, 0.0, 1.0, true);
    const double *U = cur.knt->U;
    const ControlPoint *Pw = cur.pol->Pw;
    const int n = cur.pol->n;
    const std::string kind = Rational ? "rational" : "polynomial";
    for (const auto *us : {&random, &sorted}) {
        const std::string at = std::string(us == &random ? "random" : "sorted") + "/" + kind;
        const std::vector<double> &u = *us;
        if (order == std::string("point")) {
            add("point/" + at, "N_curevn", [&u](benchmark::State &) {
                Point C;
                for (double t : u) N_curevn(&cur, t, KW_RIGHT, &C), keep(C);
                return u.size();
            });
            add("point/" + at, "N_curevm", [&u](benchmark::State &) {
                static Point C[kChunk];
                for (size_t i = 0; i < u.size(); i += kChunk)
                    N_curevm(&cur, int32_t(std::min(kChunk, u.size() - i)) - 1, &u[i], KW_RIGHT, C), keep(C);
                return u.size();
            });
            add("point/" + at, "kernel", [&u, U, Pw, n](benchmark::State &) {
                for (double t : u) keep(kernel::curve_point<3, Rational>(U, n, Pw, t));
                return u.size();
            });
            add("point/" + at, "SISL", [&u](benchmark::State &) {
                double C[3];
                int left = 0, stat;
                for (double t : u) s1221(sisl.get(), 0, t, &left, C, &stat), keep(C[0]);
                return u.size();
            });
            add("point/" + at, "OCCT", [&u](benchmark::State &) {
                gp_Pnt C;
                for (double t : u) occt->D0(t, C), keep(C);
                return u.size();
            });
            add("point/" + at, "OCCT cached", [&u](benchmark::State &) {
                const GeomAdaptor_Curve adaptor(occt);
                gp_Pnt C;
                for (double t : u) adaptor.D0(t, C), keep(C);
                return u.size();
            });
        } else {
            add("ders/" + at, "N_curder", [&u](benchmark::State &) {
                Point CK[3];
                for (double t : u) N_curder(&cur, t, KW_RIGHT, 2, CK), keep(CK);
                return u.size();
            });
            add("ders/" + at, "N_curdrm", [&u](benchmark::State &) {
                static Point CK[3 * kChunk];
                for (size_t i = 0; i < u.size(); i += kChunk)
                    N_curdrm(&cur, int32_t(std::min(kChunk, u.size() - i)) - 1, &u[i], KW_RIGHT, 2, CK), keep(CK);
                return u.size();
            });
            add("ders/" + at, "kernel", [&u, U, Pw, n](benchmark::State &) {
                Point CK[3];
                for (double t : u) kernel::curve_ders<3, 2, Rational>(U, n, Pw, t, CK), keep(CK);
                return u.size();
            });
            add("ders/" + at, "SISL", [&u](benchmark::State &) {
                double CK[9];
                int left = 0, stat;
                for (double t : u) s1221(sisl.get(), 2, t, &left, CK, &stat), keep(CK);
                return u.size();
            });
            add("ders/" + at, "OCCT", [&u](benchmark::State &) {
                gp_Pnt C;
                gp_Vec D1, D2;
                for (double t : u) occt->D2(t, C, D1, D2), keep(D2);
                return u.size();
            });
            add("ders/" + at, "OCCT cached", [&u](benchmark::State &) {
                const GeomAdaptor_Curve adaptor(occt);
                gp_Pnt C;
                gp_Vec D1, D2;
                for (double t : u) adaptor.D2(t, C, D1, D2), keep(D2);
                return u.size();
            });
        }
    }
}

const int registered = [] {
    for (const char *order : {"point", "ders"}) {
        curve_cases<false>(order);
        curve_cases<true>(order);
    }
    return 0;
}();

}  // namespace
