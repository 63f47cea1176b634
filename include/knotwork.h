/* Knotwork: NURBS curves and surfaces for CAD, CAM and modelling programs.

   Objects live on storage contexts that the host owns (storage.h). Routines
   take their inputs first, write results through pointers, take the storage
   context last, and return 0 on success or 1 after recording an error code
   and their own name (errors.h). */
#ifndef KNOTWORK_H
#define KNOTWORK_H

#include "knotwork/types.h"
#include "knotwork/errors.h"
#include "knotwork/storage.h"
#include "knotwork/records.h"
#include "knotwork/arith.h"
#include "knotwork/geom.h"
#include "knotwork/numeric.h"
#include "knotwork/knots.h"
#include "knotwork/eval.h"
#include "knotwork/tools.h"
#include "knotwork/io.h"
#include "knotwork/iges.h"

#endif
