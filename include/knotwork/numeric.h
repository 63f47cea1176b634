/* Knotwork: matrices, linear solvers, sorting and roots. */
#ifndef KNOTWORK_NUMERIC_H
#define KNOTWORK_NUMERIC_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
