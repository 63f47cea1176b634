// The library-wide error state: the last code and the routine that set it.
#include "knotwork/errors.h"

namespace {
char blank[] = " ";
int32_t error_code = 0;
char *error_routine = blank;
}  // namespace

int32_t E_seterr(int32_t code, char *name) {
    error_code = code;
    error_routine = name ? name : blank;
    return code;
}

int32_t E_errtyp(void) { return error_code; }

void E_clrerr(void) {
    error_code = 0;
    error_routine = blank;
}

const char *E_errnam(void) { return error_routine; }
