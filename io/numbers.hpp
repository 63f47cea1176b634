// Numbers in text files, written and read the same way whatever locale the
// host has set: a decimal comma in the host's locale must not leak into a
// file, nor make a valid file unreadable.
#pragma once

#include <cstdint>
#include <string_view>

namespace kw::io {

// Room for any double in fixed notation with up to 20 decimals: 309 integer
// digits, a sign, the point and the decimals.
inline constexpr int kNumberRoom = 352;

// v as printf's "%<width>.<precision>f" writes it in the "C" locale: fixed
// notation, right-justified in width. buf holds kNumberRoom characters; the
// length is returned and no terminating zero is written.
int format_fixed(char *buf, double v, int width, int precision) noexcept;
// v as "%ld" writes it.
int format_integer(char *buf, int64_t v) noexcept;

// A decimal number: [+|-] digits [. [digits]] or [+|-] . digits, then an
// optional exponent e|E [+|-] digits. With `nonfinite`, also "inf", "-inf",
// "nan" and "-nan", as a writer prints values that are not finite. False for
// anything else, and for a value beyond the range of a double.
bool parse_real(std::string_view s, bool nonfinite, double *v) noexcept;

// [+|-] digits. False when malformed; a value beyond the 64-bit range is
// clamped to it, so that range checks downstream refuse it.
bool parse_integer(std::string_view s, int64_t *v) noexcept;

}  // namespace kw::io
