/* Knotwork: span search and basis functions. */
#ifndef KNOTWORK_KNOTS_H
#define KNOTWORK_KNOTS_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
