// Recording failures from C++ internals.
#pragma once

#include "knotwork/errors.h"

namespace kw {

// Records code under the routine's name and gives the failure status.
inline int16_t fail(int32_t code, char *name) noexcept {
    E_seterr(code, name);
    return 1;
}

}  // namespace kw
