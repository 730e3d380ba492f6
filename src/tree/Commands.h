#pragma once

#include <cstdint>
#include <string>

#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/Host.h"
#include "platform/MenuState.h"
#include "platform/TreeNodes.h"

// The commands of the tree's pop-up menus. Each acts on the node keyed by the current node key;
// a key that names no node raises the tree control's error.
namespace vkl::tree {

// Adds a folder "MENU" with the next serial, placed by relationship (TreeNodes::kChild inside,
// kPrevious above, kNext below) to the node keyed currentKey. The current key stays as it is.
NodeRef addSubmenu(TreeNodes& nodes, TreeState& state, const std::string& currentKey,
                   int relationship);

// The remove commands: value 1 removes the node with everything below it, value 0 only its
// children's rows. An item node always goes alone with its one row (nested items lose their
// nodes but keep their rows). A folder or the root has the rows of all items below it deleted.
// Deleted lines are the marked ones; a line that must stay as the grid's last row is reset to
// defaultCellColor (normalColor in column 0).
void removeNode(Grid& table, TreeNodes& nodes, const std::string& currentKey, int value,
                Color markingColor, Color defaultCellColor, Color normalColor);

// Marks the rows of the items below node and deletes them. The result is that of marking the
// children level by level and purging the marked rows at the end of every nested walk,
// innermost first; only the deletion itself is done once, at the end.
void markAndPurgeSubtree(Grid& table, TreeNodes& nodes, NodeRef node, Color markingColor,
                         Color defaultCellColor, Color normalColor);

// Add image: asks for a bitmap (starting in imageDir when set), gives the node keyed
// currentKey the image "image_here" and stores the full path under the current submenu
// serial. Returns false when the dialog was cancelled (nothing changes then).
bool addImage(Host& host, TreeNodes& nodes, TreeState& state, const std::string& imageDir,
              const std::string& currentKey, int16_t currentSubmenuSerial);

inline constexpr const char* kImageFilter = "All Files (*.*)|*.*|Bmp Files (*.bmp)|*.bmp";

}  // namespace vkl::tree
