#include "core/alloc.hpp"

#include <cstdlib>

namespace kw {

namespace {
long armed_index = 0;  // 0: no failure armed
bool fail_on = false;  // persistent failure from armed_index on
long attempted = 0;
bool has_fired = false;
}  // namespace

void *allocate(std::size_t bytes) noexcept {
    ++attempted;
    if (armed_index > 0 && (attempted == armed_index || (fail_on && attempted > armed_index))) {
        has_fired = true;
        return nullptr;
    }
    return std::malloc(bytes == 0 ? 1 : bytes);
}

void release(void *block) noexcept { std::free(block); }

namespace fault {
void fail_at(long k, bool persistent) noexcept {
    armed_index = k;
    fail_on = persistent;
    attempted = 0;
    has_fired = false;
}
bool fired() noexcept { return has_fired; }
long calls() noexcept { return attempted; }
}  // namespace fault

}  // namespace kw
