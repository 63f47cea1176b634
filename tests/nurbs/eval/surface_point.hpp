// A surface point for tests, summed directly over the homogeneous net with
// the basis functions of each direction.
#pragma once

#include "core/arith.hpp"
#include "knotwork.h"

namespace kwtest {

inline Point surface_point(const Surface &s, double u, double v) {
    double Nu[KW_MAX_DEGREE + 1], Nv[KW_MAX_DEGREE + 1];
    int32_t su, sv;
    N_kntalb(s.knu, s.p, u, KW_RIGHT, Nu, &su);
    N_kntalb(s.knv, s.q, v, KW_RIGHT, Nv, &sv);
    ControlPoint sum{0, 0, 0, 0};
    for (int i = 0; i <= s.p; ++i)
        for (int j = 0; j <= s.q; ++j) {
            ControlPoint P = s.net->Pw[su - s.p + i][sv - s.q + j];
            if (P.w == KW_NONRATIONAL) P.w = 1.0;
            sum = kw::sum(sum, kw::scale(Nu[i] * Nv[j], P));
        }
    return kw::euclid(sum);
}

}  // namespace kwtest
