#include "platform/Utf16.h"

#include <windows.h>

#include <climits>

namespace vkl::utf16 {

std::wstring fromUtf8(std::string_view utf8) {
    if (utf8.empty() || utf8.size() > INT_MAX) {
        return {};
    }
    const int size = static_cast<int>(utf8.size());
    const int wide = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring out(static_cast<size_t>(wide), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, out.data(), wide);
    return out;
}

std::string toUtf8(std::wstring_view utf16) {
    if (utf16.empty() || utf16.size() > INT_MAX) {
        return {};
    }
    const int size = static_cast<int>(utf16.size());
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, out.data(), bytes, nullptr, nullptr);
    return out;
}

}  // namespace vkl::utf16
