// The line-oriented text format of curves, surfaces and point arrays: a
// scanner that reads it without trusting it, and a writer that lays it out
// for files (one blank between numbers) and for the console (two).
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string_view>

#include "io/numbers.hpp"

namespace kw::io {

// Real numbers are written as "%18.16f".
inline constexpr int kRealWidth = 18;
inline constexpr int kRealDecimals = 16;

// Reads blank-separated numbers from a stream. Every number must be followed
// by a blank or a line end, as the writers leave them: a number that the end
// of the input cuts off is a truncated file, not a shorter number.
class Scanner {
public:
    explicit Scanner(FILE *f) noexcept : f_(f) {}

    // False at the end of the input, for a token cut off by it, and for one
    // longer than any number the writers produce.
    bool token(std::string_view *t) noexcept;
    bool real(double *v) noexcept;
    // A whole number (clamped to 64 bits; the caller checks the range).
    bool integer(int64_t *v) noexcept;
    // Whether the rest of the input is long enough for `tokens` more numbers
    // (each takes at least a digit and a blank). An input that cannot tell
    // its length (a pipe) answers true: the reader then grows its arrays as
    // the numbers arrive, so that memory never runs ahead of the data.
    bool can_hold(int64_t tokens) noexcept;
    // Nothing but blanks up to the end.
    bool at_end() noexcept;

private:
    FILE *f_;
    char buf_[kNumberRoom];
};

// Writes numbers line by line.
class Writer {
public:
    Writer(FILE *f, const char *sep) noexcept : f_(f), sep_(sep) {}

    void integers(std::initializer_list<int64_t> v) noexcept;
    // count reals, "%18.16f" each.
    void reals(const double *v, int count) noexcept;
    void text(const char *s) noexcept;
    // False once the stream has reported an error.
    bool ok() const noexcept;

private:
    void put(const char *s, int len) noexcept;
    FILE *f_;
    const char *sep_;
};

}  // namespace kw::io
