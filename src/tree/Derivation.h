#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Grid.h"
#include "platform/MenuState.h"
#include "platform/Text.h"
#include "platform/TreeNodes.h"

// Building the tree: level by level while a menu file is read, or flat from the table.
namespace vkl::tree {

inline constexpr std::string_view kRootImage = "root";

// The parent a line of the given level hangs under: the root at level 1, otherwise the level
// node of level - 1. A level whose node was removed or never set counts as none; the line then
// goes to the deepest shallower level that still has a live node, the root when none has. Null
// only when there is no root either (the line then becomes a top-level node).
NodeRef levelParent(const TreeNodes& nodes, const TreeState& state, NodeRef root, int level);

// Places the lines of one file into the tree. The reader owns one of these per read.
class LevelDerivation {
  public:
    LevelDerivation(TreeNodes& nodes, TreeState& state) : nodes_(nodes), state_(state) {}

    // Clears the tree, adds the root and re-creates the submenu bitmap list.
    void begin();
    // A submenu line: the next serial, a folder node under the level parent, and its bitmap
    // (field 1 trimmed; stored only when not empty). Returns the folder node.
    NodeRef submenu(int16_t level, std::string_view title, std::string_view bitmapField);
    // An item line whose table row the reader has just appended: node "Child" + row with the
    // title upper-cased. Returns the item node.
    NodeRef item(int16_t level, long row, std::string_view titleField);
    // Makes the level node of level 1 visible.
    void end();

    NodeRef root() const { return root_; }

  private:
    NodeRef place(int16_t level, NodeRef parent, NodeRef node);
    NodeRef parentFor(int16_t level);

    TreeNodes& nodes_;
    TreeState& state_;
    NodeRef root_;
    NodeRef visibleParent_;  // the parent of the node last made visible
    std::string title_;      // the upper-cased title of a long item title, storage reused
};

// Flat derivation from the table: acts only on an empty tree; every row r becomes a child
// "Child" + r of the root with its title cell as text (a single blank for an empty title).
// Returns true when it built a tree.
bool deriveFlat(const Grid& grid, TreeNodes& nodes, TreeState& state, int16_t languageCode);

}  // namespace vkl::tree
