/* Knotwork: text files, printers and pictures. */
#ifndef KNOTWORK_IO_H
#define KNOTWORK_IO_H

#include "types.h"

KW_BEGIN_DECLS

KW_END_DECLS

#endif
