/* Knotwork: knot insertion and splitting. */
#ifndef KNOTWORK_TOOLS_H
#define KNOTWORK_TOOLS_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
