#pragma once

#include <cstdint>
#include <string>

namespace vkl {

// One entry of a menu file. A leaf line is one table row; submenu lines live in the tree.
struct MenuLine {
    int16_t depth = 1;  // 1 + leading blanks
    std::string title;
    std::string bitmap;
    std::string action;
    std::string parameter;
};

}  // namespace vkl
