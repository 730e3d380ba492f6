#pragma once

#include <array>
#include <string_view>

// The fixed texts of a menu file.
namespace vkl::format {

inline constexpr std::array<std::string_view, 14> kCommentLines{{
    "# Created by VKL Editor",
    "# Submenus are automatically distinguished by spaces",
    "# Actions :",
    "#",
    "# S   ... calls a submenu",
    "# D   ... calls a dialog,",
    "# F   ... calls a function",
    "# P   ... calls an external program,",
    "# LOS ... loads a pkg file from operating system,",
    "# LWM ... loads a pkg file from WM",
    "# LMM ... loads a pkg file from MM",
    "#",
    "# Please do not use prefix 'SC_' for your own pkg files !",
    "#",
}};

inline constexpr std::string_view kLibraryNameSuffix =
    " # this is a unique library name - not visible for user";
inline constexpr std::string_view kAboutSuffix = " # 1. text in the [About] box";
inline constexpr std::string_view kPoweredBy = "Powered by Loomvault  # 2.text";
// The publisher's web address (header position 4).
inline constexpr std::string_view kWebAddress = "www.loomvault.com";
inline constexpr std::string_view kRightsReserved = "All rights reserved";
inline constexpr std::array<std::string_view, 4> kFixedTail{{"10", "10", "11", "11"}};

inline constexpr std::string_view kShortcut = "SHORTCUT";

inline constexpr std::string_view kMenuFileFilter = "All Files (*.*)|*.*|VKL Files (*.vkl)|*.vkl";

}  // namespace vkl::format
