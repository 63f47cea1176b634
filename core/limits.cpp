// Library-wide tolerances and limits, writable by the host.
#include "knotwork/types.h"

double U_tolpoi = 1e-7;
double U_minwei = 0.001;
double U_maxwei = 100.0;
int16_t U_maxdeg = KW_MAX_DEGREE;
double U_tolzer = 1e-12;
double M_tolpiv = 1e-9;
double M_tolsvd = 6e-08;
int32_t M_itesvd = 30;
int32_t M_iteevv = 30;
int32_t N_itenew = 50;
