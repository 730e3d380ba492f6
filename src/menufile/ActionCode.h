#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vkl {

// The text code of a menu line's action. Codes are compared without regard to case.
struct ActionCodeInfo {
    std::string_view code;   // as written in the file
    std::string_view label;  // the entry of the action drop-down
};

inline constexpr std::array<ActionCodeInfo, 7> kActionCodes{{
    {"S", "Submenu"},
    {"D", "Dialog"},
    {"F", "Function"},
    {"P", "External program"},
    {"LOS", "PKG"},
    {"LWM", "WM"},
    {"LMM", "MM"},
}};

// The code written for a drop-down label (exact, case-sensitive match), none when no entry
// has that label.
std::optional<std::string> codeForLabel(std::string_view label);

// True for "S" in any case: the line opens a submenu.
bool isSubmenuCode(std::string_view code);

}  // namespace vkl
