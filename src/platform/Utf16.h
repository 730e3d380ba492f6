#pragma once

#ifdef _WIN32

#include <string>
#include <string_view>

// Windows keeps names in UTF-16; the core keeps them in UTF-8. Invalid UTF-8 bytes become
// U+FFFD rather than a name that silently means another file.
namespace vkl::utf16 {

std::wstring fromUtf8(std::string_view utf8);
std::string toUtf8(std::wstring_view utf16);

}  // namespace vkl::utf16

#endif
