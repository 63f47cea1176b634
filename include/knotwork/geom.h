/* Knotwork: elementary geometry: vectors, lines, planes, boxes, transforms and fits. */
#ifndef KNOTWORK_GEOM_H
#define KNOTWORK_GEOM_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
