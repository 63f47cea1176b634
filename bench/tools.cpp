// One knot inserted into the 3-D cubic of 100 control points (into a curve
// of its own each time), and the non-zero basis functions of its knot
// vector, at random parameters.
#include <BSplCLib.hxx>
#include <math_Matrix.hxx>

#include <cstring>

#include "differential/peers.hpp"
#include "fixtures.hpp"
#include "kernel.hpp"

extern "C" void s1220(double *et, int ik, int in, int *ileft, double ax, int ider, double ebiatx[], int *jstat);

namespace {

using namespace bench;

// Boehm's insertion of u (not a knot) once into a curve of degree P:
// Q[0..n+1] and UQ[0..m+1].
template <int P>
void insert_knot(const double *U, int n, const ControlPoint *Pw, double u, double *UQ, ControlPoint *Qw) {
    const int k = kernel::span<P>(U, n, u);
    std::memcpy(Qw, Pw, (k - P + 1) * sizeof *Pw);
    for (int i = k - P + 1; i <= k; ++i) {
        const double a = (u - U[i]) / (U[i + P] - U[i]), b = 1.0 - a;
        Qw[i] = ControlPoint{a * Pw[i].x + b * Pw[i - 1].x, a * Pw[i].y + b * Pw[i - 1].y, a * Pw[i].z + b * Pw[i - 1].z,
                             a * Pw[i].w + b * Pw[i - 1].w};
    }
    std::memcpy(Qw + k + 1, Pw + k, (n - k + 1) * sizeof *Pw);
    std::memcpy(UQ, U, (k + 1) * sizeof *U);
    UQ[k + 1] = u;
    std::memcpy(UQ + k + 2, U + k + 1, (n + P + 1 - k) * sizeof *U);
}

template <bool Rational>
void insertion_cases() {
    static const Curve cur = make_curve(Rational);
    static const Handle(Geom_BSplineCurve) occt = peer::occt_curve(cur);
    static const peer::SislCurve sisl = peer::sisl_curve(cur);
    static const std::vector<double> u = parameters(10000, 0.001, 0.999, false);
    const std::string group = std::string("insert knot/random/") + (Rational ? "rational" : "polynomial");
    add(group, "N_toocki", [](benchmark::State &) {
        static Curve out = [] {
            Curve c;
            U_inicur(&c);
            return c;
        }();
        for (double t : u) N_toocki(const_cast<Curve *>(&cur), t, 1, &out, stacks(), stacks()), keep(out.pol->Pw[50]);
        return u.size();
    });
    add(group, "kernel", [](benchmark::State &) {
        static std::vector<double> UQ(cur.knt->m + 2);
        static std::vector<ControlPoint> Qw(cur.pol->n + 2);
        for (double t : u) insert_knot<3>(cur.knt->U, cur.pol->n, cur.pol->Pw, t, UQ.data(), Qw.data()), keep(Qw[50]);
        return u.size();
    });
    add(group, "SISL", [](benchmark::State &) {
        for (double t : u) {
            SISLCurve *out = nullptr;
            int stat;
            s1017(sisl.get(), &out, t, &stat);
            keep(out->ecoef[150]);
            freeCurve(out);
        }
        return u.size();
    });
    add(group, "OCCT", [](benchmark::State &) {
        const int poles = occt->NbPoles(), knots = occt->NbKnots();
        TColgp_Array1OfPnt P(1, poles), Q(1, poles + 1);
        TColStd_Array1OfReal W(1, poles), QW(1, poles + 1), K(1, knots), QK(1, knots + 1), at(1, 1);
        TColStd_Array1OfInteger M(1, knots), QM(1, knots + 1), times(1, 1);
        occt->Poles(P), occt->Weights(W), occt->Knots(K), occt->Multiplicities(M);
        times(1) = 1;
        for (double t : u) {
            at(1) = t;
            BSplCLib::InsertKnots(3, false, P, Rational ? &W : nullptr, K, M, at, &times, Q, Rational ? &QW : nullptr,
                                  QK, QM, 0.0, true);
            keep(Q(50));
        }
        return u.size();
    });
}

void basis_cases() {
    static const Curve cur = make_curve(false);
    static const std::vector<double> u = parameters(1000000, 0.0, 1.0, false);
    const double *U = cur.knt->U;
    const int m = cur.knt->m, n = cur.pol->n;
    const std::string group = "basis/random";
    add(group, "N_kntalb", [](benchmark::State &) {
        double N[4];
        int32_t span;
        for (double t : u) N_kntalb(cur.knt, 3, t, KW_RIGHT, N, &span), keep(N);
        return u.size();
    });
    add(group, "kernel", [U, n](benchmark::State &) {
        for (double t : u) {
            const int s = kernel::span<3>(U, n, t);
            const kernel::Triangle<3> basis(U, s, t);
            keep(basis.B[3]);
        }
        return u.size();
    });
    add(group, "SISL", [U, n](benchmark::State &) {
        double N[4];
        int left = 0, stat;
        for (double t : u) s1220(const_cast<double *>(U), 4, n + 1, &left, t, 0, N, &stat), keep(N);
        return u.size();
    });
    add(group, "OCCT", [U, m](benchmark::State &) {
        TColStd_Array1OfReal flat(U[0], 1, m + 1);
        math_Matrix N(1, 1, 1, 4);
        int first;
        for (double t : u) BSplCLib::EvalBsplineBasis(0, 4, flat, t, first, N), keep(N(1, 1));
        return u.size();
    });
}

const int registered = [] {
    insertion_cases<false>();
    insertion_cases<true>();
    basis_cases();
    return 0;
}();

}  // namespace
