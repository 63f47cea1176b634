// Locale-independent number formatting and parsing.
#include "io/numbers.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace kw::io {

namespace {

bool digit(char c) noexcept { return c >= '0' && c <= '9'; }

// Skips a run of digits from i; returns how many there were.
std::size_t digits(std::string_view s, std::size_t &i) noexcept {
    const std::size_t start = i;
    while (i < s.size() && digit(s[i])) ++i;
    return i - start;
}

bool decimal_syntax(std::string_view s) noexcept {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t mantissa = digits(s, i);
    if (i < s.size() && s[i] == '.') {
        ++i;
        mantissa += digits(s, i);
    }
    if (mantissa == 0) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
        if (digits(s, i) == 0) return false;
    }
    return i == s.size();
}

bool nonfinite_word(std::string_view s) noexcept {
    if (!s.empty() && s[0] == '-') s.remove_prefix(1);
    return s == "inf" || s == "nan";
}

}  // namespace

int format_fixed(char *buf, double v, int width, int precision) noexcept {
    char digits_buf[kNumberRoom];
    const auto r =
        std::to_chars(digits_buf, digits_buf + kNumberRoom, v, std::chars_format::fixed, precision);
    const int len = static_cast<int>(r.ptr - digits_buf);
    const int pad = std::max(0, std::min(width, kNumberRoom) - len);
    std::memset(buf, ' ', static_cast<std::size_t>(pad));
    std::memcpy(buf + pad, digits_buf, static_cast<std::size_t>(len));
    return pad + len;
}

int format_integer(char *buf, int64_t v) noexcept {
    return static_cast<int>(std::to_chars(buf, buf + kNumberRoom, v).ptr - buf);
}

bool parse_real(std::string_view s, bool nonfinite, double *v) noexcept {
    if (!decimal_syntax(s) && !(nonfinite && nonfinite_word(s))) return false;
    if (s[0] == '+') s.remove_prefix(1);
    double x = 0.0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), x);
    if (r.ec != std::errc{} || r.ptr != s.data() + s.size()) return false;
    *v = x;
    return true;
}

bool parse_integer(std::string_view s, int64_t *v) noexcept {
    std::size_t i = 0;
    const bool negative = !s.empty() && s[0] == '-';
    if (!s.empty() && (s[0] == '+' || s[0] == '-')) ++i;
    if (digits(s, i) == 0 || i != s.size()) return false;
    const std::string_view body = s.substr(s[0] == '+' ? 1 : 0);
    int64_t x = 0;
    const auto r = std::from_chars(body.data(), body.data() + body.size(), x);
    if (r.ec == std::errc::result_out_of_range)
        x = negative ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    *v = x;
    return true;
}

}  // namespace kw::io
