#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Text helpers with the semantics the editor relies on. All text is Windows-1252 bytes.
namespace vkl::text {

// Removes blanks (the space character only, not tabs) at both ends; trimmed gives the part of
// s that is left, trim a copy of it.
inline std::string_view trimmed(std::string_view s) {
    size_t b = 0;
    size_t e = s.size();
    while (b < e && s[b] == ' ') {
        ++b;
    }
    while (e > b && s[e - 1] == ' ') {
        --e;
    }
    return s.substr(b, e - b);
}
std::string trim(std::string_view s);

// Case mapping of the Windows-1252 code page: umlauts and the other accented letters change too.
char upperChar(char c);
char lowerChar(char c);
std::string upper(std::string_view s);
std::string lower(std::string_view s);
// out takes s upper-cased, in the storage out already has.
void assignUpper(std::string& out, std::string_view s);
// The n bytes at src upper-cased to dst, which is src itself or does not overlap it.
void upperCopy(char* dst, const char* src, size_t n);

// out takes s (which may be a part of out), in the storage out already has. Cheaper than
// std::string::assign for the short texts of cells and nodes that are filled by the thousand.
inline void copyInto(std::string& out, std::string_view s) {
    const std::less<const char*> before;
    if (!before(s.data(), out.data()) && !before(out.data() + out.size(), s.data())) {
        out.assign(s);  // a part of out itself
        return;
    }
    out.clear();
    out.append(s);
}

bool iequals(std::string_view a, std::string_view b);
// Position of the first occurrence of needle, ignoring case; npos when absent or needle is empty.
size_t ifind(std::string_view hay, std::string_view needle, size_t from = 0);
// Replaces every occurrence of what (ignoring case) by with, scanning left to right.
std::string ireplace(std::string_view s, std::string_view what, std::string_view with);
// Replaces every occurrence of what (exact case) by with.
std::string replaceAll(std::string_view s, std::string_view what, std::string_view with);

bool startsWith(std::string_view s, std::string_view prefix);

// Splits at every occurrence of sep, keeping empty fields ("a||b" gives three fields).
std::vector<std::string> split(std::string_view s, char sep);
std::string join(const std::vector<std::string>& parts, std::string_view sep);

// The runtime's leading-numeric conversion: leading blanks skipped, an optional sign, digits
// and an optional fraction; anything that does not start a number gives 0.
double val(std::string_view s);

// Conversion of text to a 16-bit integer: surrounding blanks allowed, a number with an optional
// sign, fraction and exponent, rounded half to even. Text that is no number raises error 13
// (type mismatch); a number outside the 16-bit range raises error 6 (overflow).
int16_t toInt16(std::string_view s);

// The number of a node key: the text after the first occurrence of letter ("d" for "Child",
// "u" for "Menu"), read with the leading-numeric conversion (0 when the letter is absent).
long keyNumber(std::string_view key, char letter);

// Decimal text of a number, without blanks.
std::string str(long long n);

// Decimal text, after a fixed prefix, of numbers that mostly grow by one from call to call (the
// rows of a file being read): the digits of the last number are stepped on instead of
// converted anew.
class DecimalCounter {
  public:
    static constexpr size_t kPrefixMax = 15;
    // The prefix is cut to kPrefixMax characters.
    explicit DecimalCounter(std::string_view prefix = {});
    // The prefix followed by the decimal text of n, valid until the next call.
    std::string_view text(long long n) {
        if (valid_ && last_ >= 0 && last_ < n && n - last_ == 1 && buffer_[kEnd - 1] != '9') {
            ++buffer_[kEnd - 1];  // the common step: only the last digit changes
            last_ = n;
            return {buffer_ + begin_ - prefixSize_, kEnd - begin_ + prefixSize_};
        }
        return convert(n);
    }

  private:
    std::string_view convert(long long n);

    static constexpr size_t kEnd = kPrefixMax + 24;
    char buffer_[kEnd] = {};
    char prefix_[kPrefixMax] = {};
    size_t prefixSize_ = 0;
    size_t begin_ = kEnd;  // the digits are buffer_[begin_, kEnd)
    long long last_ = 0;
    bool valid_ = false;
};

// Windows-1252 bytes to UTF-8 and back, for the window and for JSON. Bytes the code page leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1 controls of the same value; characters
// outside the code page become "?".
std::string cp1252ToUtf8(std::string_view s);
std::string utf8ToCp1252(std::string_view s);

}  // namespace vkl::text
