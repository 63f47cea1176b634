/* Knotwork: points, derivatives and normals of curves, surfaces and functions. */
#ifndef KNOTWORK_EVAL_H
#define KNOTWORK_EVAL_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
