#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "platform/RuntimeError.h"

namespace vkl::text {

std::string trim(std::string_view s) {
    return std::string(trimmed(s));
}

namespace {

constexpr unsigned char upperOf(unsigned char c) {
    if (c >= 'a' && c <= 'z') {
        return static_cast<unsigned char>(c - 32);
    }
    // Windows-1252: à..þ map to À..Þ except ÷ (0xF7); š œ ž ÿ have their capitals elsewhere.
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) {
        return static_cast<unsigned char>(c - 32);
    }
    switch (c) {
        case 0x9A:
            return 0x8A;
        case 0x9C:
            return 0x8C;
        case 0x9E:
            return 0x8E;
        case 0xFF:
            return 0x9F;
        default:
            return c;
    }
}

constexpr unsigned char lowerOf(unsigned char c) {
    if (c >= 'A' && c <= 'Z') {
        return static_cast<unsigned char>(c + 32);
    }
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) {
        return static_cast<unsigned char>(c + 32);
    }
    switch (c) {
        case 0x8A:
            return 0x9A;
        case 0x8C:
            return 0x9C;
        case 0x8E:
            return 0x9E;
        case 0x9F:
            return 0xFF;
        default:
            return c;
    }
}

// The mappings as tables: the reader and the key lookups case whole titles per line.
template <unsigned char (*Map)(unsigned char)>
constexpr std::array<char, 256> caseTable() {
    std::array<char, 256> t{};
    for (int c = 0; c < 256; ++c) {
        t[static_cast<size_t>(c)] = static_cast<char>(Map(static_cast<unsigned char>(c)));
    }
    return t;
}

constexpr std::array<char, 256> kUpper = caseTable<upperOf>();
constexpr std::array<char, 256> kLower = caseTable<lowerOf>();

}  // namespace

char upperChar(char ch) {
    return kUpper[static_cast<unsigned char>(ch)];
}

char lowerChar(char ch) {
    return kLower[static_cast<unsigned char>(ch)];
}

std::string upper(std::string_view s) {
    std::string r;
    assignUpper(r, s);
    return r;
}

void assignUpper(std::string& out, std::string_view s) {
    copyInto(out, s);
    upperCopy(out.data(), out.data(), out.size());
}

void upperCopy(char* dst, const char* src, size_t n) {
    if (n < 8) {
        for (size_t i = 0; i < n; ++i) {
            dst[i] = upperChar(src[i]);
        }
        return;
    }
    // Eight plain ASCII bytes at a time: a bit per byte marks 'a'..'z', whose 0x20 bit goes.
    // The last eight bytes may overlap the word before; casing twice changes nothing more.
    constexpr uint64_t kOnes = 0x0101010101010101u;
    constexpr uint64_t kHigh = 0x8080808080808080u;
    for (size_t i = 0;; i += 8) {
        const size_t at = std::min(i, n - 8);
        uint64_t w;
        std::memcpy(&w, src + at, 8);
        if ((w & kHigh) != 0) {
            for (size_t k = at; k < at + 8; ++k) {
                dst[k] = upperChar(src[k]);
            }
        } else {
            const uint64_t fromA = w + kOnes * (0x80 - 'a');      // high bit: byte >= 'a'
            const uint64_t pastZ = w + kOnes * (0x80 - 'z' - 1);  // high bit: byte > 'z'
            w ^= (fromA & ~pastZ & kHigh) >> 2;
            std::memcpy(dst + at, &w, 8);
        }
        if (at == n - 8) {
            return;
        }
    }
}

std::string lower(std::string_view s) {
    std::string r(s);
    for (char& c : r) {
        c = lowerChar(c);
    }
    return r;
}

bool iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (lowerChar(a[i]) != lowerChar(b[i])) {
            return false;
        }
    }
    return true;
}

size_t ifind(std::string_view hay, std::string_view needle, size_t from) {
    if (needle.empty() || needle.size() > hay.size()) {
        return std::string_view::npos;
    }
    for (size_t i = from; i + needle.size() <= hay.size(); ++i) {
        if (iequals(hay.substr(i, needle.size()), needle)) {
            return i;
        }
    }
    return std::string_view::npos;
}

namespace {
template <typename Find>
std::string replaceWith(std::string_view s, std::string_view what, std::string_view with,
                        Find find) {
    if (what.empty()) {
        return std::string(s);
    }
    std::string out;
    out.reserve(s.size());
    size_t pos = 0;
    for (;;) {
        const size_t hit = find(s, what, pos);
        if (hit == std::string_view::npos) {
            break;
        }
        out.append(s.substr(pos, hit - pos));
        out.append(with);
        pos = hit + what.size();
    }
    out.append(s.substr(pos));
    return out;
}
}  // namespace

std::string ireplace(std::string_view s, std::string_view what, std::string_view with) {
    return replaceWith(s, what, with, [](std::string_view h, std::string_view n, size_t p) {
        return ifind(h, n, p);
    });
}

std::string replaceAll(std::string_view s, std::string_view what, std::string_view with) {
    return replaceWith(s, what, with, [](std::string_view h, std::string_view n, size_t p) {
        return h.find(n, p);
    });
}

bool startsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

std::vector<std::string> split(std::string_view s, char sep) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t hit = s.find(sep, start);
        if (hit == std::string_view::npos) {
            parts.emplace_back(s.substr(start));
            return parts;
        }
        parts.emplace_back(s.substr(start, hit - start));
        start = hit + 1;
    }
}

std::string join(const std::vector<std::string>& parts, std::string_view sep) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            out.append(sep);
        }
        out.append(parts[i]);
    }
    return out;
}

namespace {
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads sign, digits, fraction and exponent starting at i; returns the end of the number or
// npos when no digit was found.
size_t scanNumber(std::string_view s, size_t i, bool allowExponent) {
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
        ++i;
    }
    bool digits = false;
    while (i < s.size() && isDigit(s[i])) {
        ++i;
        digits = true;
    }
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && isDigit(s[i])) {
            ++i;
            digits = true;
        }
    }
    if (!digits) {
        return std::string_view::npos;
    }
    if (allowExponent && i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) {
            ++j;
        }
        if (j < s.size() && isDigit(s[j])) {
            while (j < s.size() && isDigit(s[j])) {
                ++j;
            }
            i = j;
        }
    }
    return i;
}
}  // namespace

double val(std::string_view s) {
    size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) {
        ++i;
    }
    const size_t end = scanNumber(s, i, true);
    if (end == std::string_view::npos) {
        return 0.0;
    }
    return std::strtod(std::string(s.substr(i, end - i)).c_str(), nullptr);
}

int16_t toInt16(std::string_view s) {
    const std::string t = trim(s);
    const size_t end = scanNumber(t, 0, true);
    if (t.empty() || end != t.size()) {
        throw RuntimeError::typeMismatch();
    }
    const double v = std::nearbyint(std::strtod(t.c_str(), nullptr));  // half to even
    if (!(v >= -32768.0 && v <= 32767.0)) {
        throw RuntimeError::overflow();
    }
    return static_cast<int16_t>(v);
}

long keyNumber(std::string_view key, char letter) {
    const size_t at = key.find(letter);
    if (at == std::string_view::npos) {
        return 0;
    }
    const std::string_view number = key.substr(at + 1);
    // The keys the editor makes end in plain digits; those read the same without the general
    // conversion.
    if (!number.empty() && number.size() <= 9 &&
        std::all_of(number.begin(), number.end(), isDigit)) {
        long n = 0;
        for (const char c : number) {
            n = n * 10 + (c - '0');
        }
        return n;
    }
    return static_cast<long>(val(lower(number)));
}

std::string str(long long n) {
    return std::to_string(n);
}

DecimalCounter::DecimalCounter(std::string_view prefix)
    : prefixSize_(std::min(prefix.size(), kPrefixMax)) {
    std::copy_n(prefix.begin(), prefixSize_, prefix_);
}

std::string_view DecimalCounter::convert(long long n) {
    const size_t end = kEnd;
    const size_t before = begin_;
    if (valid_ && last_ >= 0 && n > 0 && n - 1 == last_) {
        size_t i = end;
        while (i > begin_ && buffer_[i - 1] == '9') {
            buffer_[--i] = '0';
        }
        if (i == begin_) {
            buffer_[--begin_] = '1';  // 99 -> 100: one digit more
        } else {
            ++buffer_[i - 1];
        }
    } else {
        char digits[24];
        const char* stop = std::to_chars(digits, digits + sizeof digits, n).ptr;
        const auto length = static_cast<size_t>(stop - digits);
        begin_ = end - length;
        std::memcpy(buffer_ + begin_, digits, length);
    }
    if (begin_ != before || !valid_) {
        std::copy_n(prefix_, prefixSize_, buffer_ + begin_ - prefixSize_);
    }
    last_ = n;
    valid_ = true;
    return {buffer_ + begin_ - prefixSize_, end - begin_ + prefixSize_};
}

}  // namespace vkl::text

namespace vkl::text {

namespace {
// Unicode of the bytes 0x80..0x9F; 0 marks the five the code page leaves undefined.
constexpr char32_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char32_t decode1252(unsigned char c) {
    if (c >= 0x80 && c <= 0x9F && kHigh[c - 0x80] != 0) {
        return kHigh[c - 0x80];
    }
    return c;
}

void appendUtf8(std::string& out, char32_t u) {
    if (u < 0x80) {
        out.push_back(static_cast<char>(u));
    } else if (u < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (u >> 6)));
        out.push_back(static_cast<char>(0x80 | (u & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xE0 | (u >> 12)));
        out.push_back(static_cast<char>(0x80 | ((u >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (u & 0x3F)));
    }
}
}  // namespace

std::string cp1252ToUtf8(std::string_view s) {
    std::string out;
    out.reserve(s.size() + s.size() / 4);
    for (char c : s) {
        appendUtf8(out, decode1252(static_cast<unsigned char>(c)));
    }
    return out;
}

std::string utf8ToCp1252(std::string_view s) {
    std::string out;
    out.reserve(s.size());
    size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        char32_t u = 0;
        size_t len = 1;
        if (c < 0x80) {
            u = c;
        } else if ((c & 0xE0) == 0xC0) {
            len = 2;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
        } else {
            out.push_back('?');
            ++i;
            continue;
        }
        if (len > 1) {
            if (i + len > s.size()) {
                out.push_back('?');
                break;
            }
            u = c & (0xFF >> (len + 1));
            for (size_t k = 1; k < len; ++k) {
                u = (u << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
            }
        }
        i += len;
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            out.push_back(static_cast<char>(u));
            continue;
        }
        char mapped = '?';
        for (int b = 0; b < 32; ++b) {
            if (kHigh[b] == u || (kHigh[b] == 0 && u == static_cast<char32_t>(0x80 + b))) {
                mapped = static_cast<char>(0x80 + b);
                break;
            }
        }
        out.push_back(mapped);
    }
    return out;
}

}  // namespace vkl::text
