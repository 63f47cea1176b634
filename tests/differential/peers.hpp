// The same curve or surface as the two peer libraries hold it: OpenCASCADE
// (Cartesian poles, separate weights, distinct knots with multiplicities)
// and SISL (the knot sequence as it stands, homogeneous coefficients for a
// rational object). Shared by the differential tests and the benchmarks.
#pragma once

#include <Geom2d_BSplineCurve.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <sisl.h>

#include <memory>
#include <vector>

#include "knotwork.h"

namespace peer {

inline bool rational(const ControlPoint &P) { return P.w != KW_NONRATIONAL; }
inline bool planar(const ControlPoint &P) { return P.z == KW_PLANAR; }

// The Cartesian point of a control point, z = 0 when planar.
inline gp_Pnt cartesian(const ControlPoint &P) {
    const double w = rational(P) ? P.w : 1.0;
    return gp_Pnt(P.x / w, P.y / w, planar(P) ? 0.0 : P.z / w);
}

// U[0..m] as distinct knots with multiplicities, 1-based.
struct Breaks {
    TColStd_Array1OfReal knots;
    TColStd_Array1OfInteger mults;
    explicit Breaks(const KnotVector &k) {
        std::vector<double> v;
        std::vector<int> s;
        for (int32_t i = 0; i <= k.m; ++i) {
            if (i > 0 && k.U[i] == k.U[i - 1]) ++s.back();
            else v.push_back(k.U[i]), s.push_back(1);
        }
        knots.Resize(1, int(v.size()), false);
        mults.Resize(1, int(v.size()), false);
        for (size_t i = 0; i < v.size(); ++i) knots(int(i) + 1) = v[i], mults(int(i) + 1) = s[i];
    }
};

// OpenCASCADE's curve: 2-D curves as Geom2d (Pole turns a Cartesian point
// into the peer's), 3-D ones as Geom.
template <class G, class Poles, class Pole>
inline opencascade::handle<G> occt_curve_as(const Curve &c, Pole pole) {
    const int n = c.pol->n;
    Poles poles(1, n + 1);
    TColStd_Array1OfReal weights(1, n + 1);
    for (int i = 0; i <= n; ++i) {
        poles(i + 1) = pole(cartesian(c.pol->Pw[i]));
        weights(i + 1) = rational(c.pol->Pw[i]) ? c.pol->Pw[i].w : 1.0;
    }
    const Breaks b(*c.knt);
    if (!rational(c.pol->Pw[0])) return new G(poles, b.knots, b.mults, c.p);
    return new G(poles, weights, b.knots, b.mults, c.p);
}

inline Handle(Geom_BSplineCurve) occt_curve(const Curve &c) {
    return occt_curve_as<Geom_BSplineCurve, TColgp_Array1OfPnt>(c, [](const gp_Pnt &P) { return P; });
}

inline Handle(Geom2d_BSplineCurve) occt_curve2d(const Curve &c) {
    return occt_curve_as<Geom2d_BSplineCurve, TColgp_Array1OfPnt2d>(c, [](const gp_Pnt &P) { return gp_Pnt2d(P.X(), P.Y()); });
}

inline Handle(Geom_BSplineSurface) occt_surface(const Surface &s) {
    const int n = s.net->n, m = s.net->m;
    TColgp_Array2OfPnt poles(1, n + 1, 1, m + 1);
    TColStd_Array2OfReal weights(1, n + 1, 1, m + 1);
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= m; ++j) {
            const ControlPoint &P = s.net->Pw[i][j];
            poles(i + 1, j + 1) = cartesian(P);
            weights(i + 1, j + 1) = rational(P) ? P.w : 1.0;
        }
    const Breaks bu(*s.knu), bv(*s.knv);
    if (!rational(s.net->Pw[0][0]))
        return new Geom_BSplineSurface(poles, bu.knots, bv.knots, bu.mults, bv.mults, s.p, s.q);
    return new Geom_BSplineSurface(poles, weights, bu.knots, bv.knots, bu.mults, bv.mults, s.p, s.q);
}

// The coordinates SISL keeps of a control point: x, y (z) unweighted for a
// polynomial object, wx, wy (wz), w for a rational one; a planar point in 3
// dimensions has z = 0.
inline void sisl_coefs(const ControlPoint &P, int dim, std::vector<double> &out) {
    out.push_back(P.x);
    out.push_back(P.y);
    if (dim == 3) out.push_back(planar(P) ? 0.0 : P.z);
    if (rational(P)) out.push_back(P.w);
}

struct SislFree {
    void operator()(SISLCurve *c) const { freeCurve(c); }
    void operator()(SISLSurf *s) const { freeSurf(s); }
};
using SislCurve = std::unique_ptr<SISLCurve, SislFree>;
using SislSurf = std::unique_ptr<SISLSurf, SislFree>;

// SISL copies what it is given (icopy = 1).
inline SislCurve sisl_curve(const Curve &c) {
    const int n = c.pol->n, dim = planar(c.pol->Pw[0]) ? 2 : 3;
    std::vector<double> coef;
    for (int i = 0; i <= n; ++i) sisl_coefs(c.pol->Pw[i], dim, coef);
    return SislCurve(newCurve(n + 1, c.p + 1, c.knt->U, coef.data(), rational(c.pol->Pw[0]) ? 2 : 1, dim, 1));
}

// SISL runs the first parameter fastest: coefficient (i, j) at j (n+1) + i.
inline SislSurf sisl_surface(const Surface &s) {
    const int n = s.net->n, m = s.net->m;
    std::vector<double> coef;
    for (int j = 0; j <= m; ++j)
        for (int i = 0; i <= n; ++i) sisl_coefs(s.net->Pw[i][j], 3, coef);
    return SislSurf(newSurf(n + 1, m + 1, s.p + 1, s.q + 1, s.knu->U, s.knv->U, coef.data(),
                            rational(s.net->Pw[0][0]) ? 2 : 1, 3, 1));
}

}  // namespace peer
