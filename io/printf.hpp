// printf's layout of whole numbers, fixed-point reals and texts, without
// printf's dependence on the host's locale: the fixed record formats of the
// exchange files are used as they stand, and a decimal comma never leaks in.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace kw::io {

// One argument of a format: a whole number, a real or a text.
struct Arg {
    enum Kind { kWhole, kReal, kText };
    Kind kind;
    int64_t i = 0;
    double d = 0.0;
    const char *s = "";
    Arg() noexcept : kind(kWhole) {}
    Arg(int v) noexcept : kind(kWhole), i(v) {}
    Arg(long v) noexcept : kind(kWhole), i(v) {}
    Arg(long long v) noexcept : kind(kWhole), i(v) {}
    Arg(double v) noexcept : kind(kReal), d(v) {}
    Arg(const char *v) noexcept : kind(kText), s(v) {}
};

// buf[0..room) := fmt with its conversions replaced by args in order, as
// snprintf in the "C" locale writes them, for the conversions %d, %f and %s
// with an optional width, precision and length modifier (h, l), and %%.
// Returns the length written (no terminating zero), or -1 when the result
// would not fit, a real is not finite, or the arguments do not match the
// conversions.
int format(char *buf, int room, const char *fmt, const Arg *args, int count) noexcept;
inline int format(char *buf, int room, const char *fmt, std::initializer_list<Arg> args) noexcept {
    return format(buf, room, fmt, args.begin(), static_cast<int>(args.size()));
}

}  // namespace kw::io
