/* Knotwork: IGES files: writers, reader and entity converters. */
#ifndef KNOTWORK_IGES_H
#define KNOTWORK_IGES_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
