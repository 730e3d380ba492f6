#pragma once

#include <cstdint>

namespace vkl {

// Colours in the grid's encoding: 0x00BBGGRR for RGB, 0x800000NN for system colour NN.
using Color = uint32_t;

constexpr Color rgb(unsigned r, unsigned g, unsigned b) {
    return r | (g << 8) | (b << 16);
}
constexpr Color systemColor(unsigned index) {
    return 0x80000000u | index;
}
constexpr bool isSystemColor(Color c) {
    return (c & 0x80000000u) != 0;
}

constexpr Color kNormalColor = systemColor(19);      // button face: header row and column 0
constexpr Color kHighlightColor = systemColor(22);   // 3D light: the line of the selected node
constexpr Color kMarkingColor = rgb(255, 224, 192);  // 0xC0E0FF: lines marked for deletion
constexpr Color kWindowColor = systemColor(5);       // the grid's own back colour

}  // namespace vkl
