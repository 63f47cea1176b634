// The scanner and the line writer of the text format.
#include "io/text.hpp"

#include <cstring>

namespace kw::io {

namespace {
bool blank(int c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
}  // namespace

bool Scanner::token(std::string_view *t) noexcept {
    int c = std::getc(f_);
    while (c != EOF && blank(c)) c = std::getc(f_);
    int len = 0;
    while (c != EOF && !blank(c)) {
        if (len == kNumberRoom) return false;
        buf_[len++] = static_cast<char>(c);
        c = std::getc(f_);
    }
    if (c == EOF) return false;
    *t = std::string_view(buf_, static_cast<std::size_t>(len));
    return true;
}

bool Scanner::real(double *v) noexcept {
    std::string_view t;
    return token(&t) && parse_real(t, true, v);
}

bool Scanner::integer(int64_t *v) noexcept {
    std::string_view t;
    return token(&t) && parse_integer(t, v);
}

bool Scanner::can_hold(int64_t tokens) noexcept {
    const long here = std::ftell(f_);
    if (here < 0 || std::fseek(f_, 0, SEEK_END) != 0) return true;
    const long end = std::ftell(f_);
    if (std::fseek(f_, here, SEEK_SET) != 0 || end < here) return true;
    return (end - here) / 2 >= tokens;
}

bool Scanner::at_end() noexcept {
    int c = std::getc(f_);
    while (c != EOF && blank(c)) c = std::getc(f_);
    return c == EOF;
}

void Writer::put(const char *s, int len) noexcept {
    std::fwrite(s, 1, static_cast<std::size_t>(len), f_);
}

void Writer::integers(std::initializer_list<int64_t> v) noexcept {
    char buf[kNumberRoom];
    const char *sep = "";
    for (int64_t x : v) {
        text(sep);
        put(buf, format_integer(buf, x));
        sep = sep_;
    }
    text("\n");
}

void Writer::reals(const double *v, int count) noexcept {
    char buf[kNumberRoom];
    for (int i = 0; i < count; ++i) {
        if (i > 0) text(sep_);
        put(buf, format_fixed(buf, v[i], kRealWidth, kRealDecimals));
    }
    text("\n");
}

void Writer::text(const char *s) noexcept { put(s, static_cast<int>(std::strlen(s))); }

bool Writer::ok() const noexcept { return !std::ferror(f_); }

}  // namespace kw::io
