// Surface points and first partials on the bicubic surface of a 20 x 20
// net, polynomial and rational, at 1e6 random parameter pairs and on a
// 1000 x 1000 grid taken row by row.
#include <GeomAdaptor_Surface.hxx>

#include "differential/peers.hpp"
#include "fixtures.hpp"
#include "kernel.hpp"

namespace {

using namespace bench;

constexpr size_t kCount = 1000000, kChunk = 1024;

struct Pairs {
    std::vector<double> u, v;
};

template <bool Rational>
void surface_cases() {
    static const Surface sur = make_surface(Rational);
    static const Handle(Geom_BSplineSurface) occt = peer::occt_surface(sur);
    static const peer::SislSurf sisl = peer::sisl_surface(sur);
    static const Pairs random{parameters(kCount, 0.0, 1.0, false, 3), parameters(kCount, 0.0, 1.0, false, 4)};
    static const Pairs rows = [] {
        Pairs g;
        grid(1000, g.u, g.v);
        return g;
    }();
    const double *U = sur.knu->U, *V = sur.knv->U;
    ControlPoint *const *Pw = sur.net->Pw;
    const int n = sur.net->n;
    const std::string kind = Rational ? "rational" : "polynomial";
    for (const Pairs *at : {&random, &rows}) {
        const std::string where = std::string(at == &random ? "random" : "grid") + "/" + kind;
        const std::vector<double> &u = at->u, &v = at->v;
        add("surface point/" + where, "N_surevn", [&u, &v](benchmark::State &) {
            Point S;
            for (size_t i = 0; i < u.size(); ++i) N_surevn(&sur, u[i], v[i], KW_RIGHT, KW_RIGHT, &S), keep(S);
            return u.size();
        });
        add("surface point/" + where, "N_surevm", [&u, &v](benchmark::State &) {
            static Point S[kChunk];
            for (size_t i = 0; i < u.size(); i += kChunk)
                N_surevm(&sur, int32_t(std::min(kChunk, u.size() - i)) - 1, &u[i], &v[i], KW_RIGHT, KW_RIGHT, S), keep(S);
            return u.size();
        });
        add("surface point/" + where, "kernel", [&u, &v, U, V, Pw, n](benchmark::State &) {
            for (size_t i = 0; i < u.size(); ++i) keep(kernel::surface_point<3, Rational>(U, n, V, n, Pw, u[i], v[i]));
            return u.size();
        });
        add("surface point/" + where, "SISL", [&u, &v](benchmark::State &) {
            double S[3];
            int left1 = 0, left2 = 0, stat;
            for (size_t i = 0; i < u.size(); ++i) {
                double uv[2] = {u[i], v[i]};
                s1424(sisl.get(), 0, 0, uv, &left1, &left2, S, &stat), keep(S[0]);
            }
            return u.size();
        });
        add("surface point/" + where, "OCCT", [&u, &v](benchmark::State &) {
            gp_Pnt S;
            for (size_t i = 0; i < u.size(); ++i) occt->D0(u[i], v[i], S), keep(S);
            return u.size();
        });
        add("surface point/" + where, "OCCT cached", [&u, &v](benchmark::State &) {
            const GeomAdaptor_Surface adaptor(occt);
            gp_Pnt S;
            for (size_t i = 0; i < u.size(); ++i) adaptor.D0(u[i], v[i], S), keep(S);
            return u.size();
        });
        add("surface ders/" + where, "N_surder", [&u, &v](benchmark::State &) {
            Point d[2][2], *r[2] = {d[0], d[1]};
            PointMatrix SKL{1, 1, r, KW_FULL, 1};
            for (size_t i = 0; i < u.size(); ++i) N_surder(&sur, u[i], v[i], KW_RIGHT, KW_RIGHT, 1, 1, 1, &SKL), keep(d);
            return u.size();
        });
        add("surface ders/" + where, "N_surdrm", [&u, &v](benchmark::State &) {
            static Point S[4 * kChunk];
            for (size_t i = 0; i < u.size(); i += kChunk)
                N_surdrm(&sur, int32_t(std::min(kChunk, u.size() - i)) - 1, &u[i], &v[i], KW_RIGHT, KW_RIGHT, 1, 1, 1, S),
                    keep(S);
            return u.size();
        });
        add("surface ders/" + where, "kernel", [&u, &v, U, V, Pw, n](benchmark::State &) {
            Point S[3];
            for (size_t i = 0; i < u.size(); ++i) kernel::surface_ders<3, Rational>(U, n, V, n, Pw, u[i], v[i], S), keep(S);
            return u.size();
        });
        add("surface ders/" + where, "SISL", [&u, &v](benchmark::State &) {
            double S[12];
            int left1 = 0, left2 = 0, stat;
            for (size_t i = 0; i < u.size(); ++i) {
                double uv[2] = {u[i], v[i]};
                s1424(sisl.get(), 1, 1, uv, &left1, &left2, S, &stat), keep(S);
            }
            return u.size();
        });
        add("surface ders/" + where, "OCCT", [&u, &v](benchmark::State &) {
            gp_Pnt S;
            gp_Vec Su, Sv;
            for (size_t i = 0; i < u.size(); ++i) occt->D1(u[i], v[i], S, Su, Sv), keep(Sv);
            return u.size();
        });
        add("surface ders/" + where, "OCCT cached", [&u, &v](benchmark::State &) {
            const GeomAdaptor_Surface adaptor(occt);
            gp_Pnt S;
            gp_Vec Su, Sv;
            for (size_t i = 0; i < u.size(); ++i) adaptor.D1(u[i], v[i], S, Su, Sv), keep(Sv);
            return u.size();
        });
    }
}

const int registered = [] {
    surface_cases<false>();
    surface_cases<true>();
    return 0;
}();

}  // namespace
