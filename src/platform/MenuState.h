#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/TreeNodes.h"

namespace vkl {

// The program-wide state of the tree derivation, shared by the reader, the tree commands and
// the row operations. Counters are 16-bit as the editor counts them.
struct TreeState {
    int16_t nodeSerial = 0;    // last serial handed out for a folder node
    int16_t currentLevel = 1;  // level of the line being read
    int16_t deepestLevel = 0;  // highest level seen; levelNodes has entries 1..deepestLevel
    std::vector<NodeRef> levelNodes = std::vector<NodeRef>(1);  // index 0 unused
    // Bitmap of each folder by serial; re-created with two empty entries at every derivation.
    std::vector<std::string> submenuBitmaps = std::vector<std::string>(2);
    int16_t highestBitmapSerial = 0;

    // A list entry nobody stored reads as empty.
    const std::string& submenuBitmap(long serial) const {
        static const std::string empty;
        if (serial < 0 || static_cast<size_t>(serial) >= submenuBitmaps.size()) {
            return empty;
        }
        return submenuBitmaps[static_cast<size_t>(serial)];
    }
    void resetBitmapList() { submenuBitmaps.assign(2, std::string()); }
    // Grows the level nodes to n entries (1..n), keeping contents.
    void growLevels(int n) {
        if (static_cast<int>(levelNodes.size()) < n + 1) {
            levelNodes.resize(static_cast<size_t>(n) + 1);
        }
    }
};

// The SHORTCUT pairs of the file read: two pairs at most.
struct Shortcuts {
    std::array<std::array<std::string, 2>, 2> pairs;  // (pair, 0) key, (pair, 1) value
    int16_t count = 0;
};

}  // namespace vkl
