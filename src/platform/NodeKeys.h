#pragma once

#include <string>
#include <string_view>

#include "platform/Text.h"

// The key scheme that ties tree nodes to table rows: root "Menu0", folders "Menu" + serial,
// items "Child" + row. Numbers are read after the first "u" or "d", never at a fixed offset.
namespace vkl::keys {

inline constexpr std::string_view kRoot = "Menu0";
inline constexpr std::string_view kRootText = "Top Menu";

// The image of a folder node, and the label a new item line's node is given in each language.
inline constexpr std::string_view kFolderImage = "folderclosed";
inline constexpr std::string_view kNewItemEn = "[New Item]";
inline constexpr std::string_view kNewItemDe = "[Neue Zeile]";

// The item keys are this stem followed by the row.
inline constexpr std::string_view kItemStem = "Child";

inline bool isItem(std::string_view key) {
    return key.substr(0, kItemStem.size()) == kItemStem;
}
inline bool isFolderOrRoot(std::string_view key) {
    return key.substr(0, 4) == "Menu";
}
inline std::string item(long row) {
    return std::string(kItemStem) + text::str(row);
}
inline std::string folder(long serial) {
    return "Menu" + text::str(serial);
}
// Row of an item key: the text after the first "d".
inline long rowOf(std::string_view key) {
    return text::keyNumber(key, 'd');
}
// Serial of a folder key: the text after the first "u" (0 for the root).
inline long serialOf(std::string_view key) {
    return text::keyNumber(key, 'u');
}

}  // namespace vkl::keys
