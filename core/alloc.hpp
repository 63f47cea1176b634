// The one gateway for every allocation the library makes, with the hook the
// tests use to make the k-th allocation fail.
#pragma once

#include <cstddef>

namespace kw {

void *allocate(std::size_t bytes) noexcept;
void release(void *block) noexcept;

// Fault injection: not part of the shared library's interface (hidden), but
// reachable from the tests, which link the static library.
namespace fault {
// Counting from the next allocation, the k-th one fails (k >= 1); with
// `persistent` every allocation from the k-th on fails. k = 0 disarms.
void fail_at(long k, bool persistent = false) noexcept;
// Whether an armed failure has happened since fail_at.
bool fired() noexcept;
// Allocations attempted since fail_at.
long calls() noexcept;
}  // namespace fault

}  // namespace kw
