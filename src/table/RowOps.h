#pragma once

#include <cstdint>
#include <string>

#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/MenuState.h"
#include "platform/TreeNodes.h"

// The operations that change the set of menu lines and keep the item keys of the tree in step:
// the item node of row r is keyed "Child" + r, so removing a row renumbers the keys after it.
namespace vkl::table {

// Appends an empty line at the end of the table and returns its row n: number in column 0,
// current cell (n, 0) in the normal colour. When the tree holds nodes, the added-lines counter
// grows (16-bit, checked), the level nodes are cut to level 1 and a node "Child"+n labelled " "
// is added under the root and becomes the level-1 node.
int addEmptyLine(Grid& grid, TreeNodes& nodes, TreeState& tree, int16_t& addedLines,
                 Color normalColor, bool german);

// A click on the number of a line (Col 0, Row not 0) marks the whole line, or unmarks it when
// it is marked already; the row's item node shows "arrow2" while marked, "blank" after.
// Any other current cell leaves the marks alone.
void toggleMark(Grid& grid, TreeNodes& nodes, Color markingColor, Color defaultCellColor,
                Color normalColor);

// Deletes every data row whose column-1 cell carries markingColor, with its item node
// ("Child"+row), renumbers item keys and rewrites column 0. Linear time.
// The grid cannot lose its last data row: when every line is marked, row 1 stays as an empty,
// unmarked line (texts cleared, colours reset) and only its node is removed.
void deleteMarkedLines(Grid& grid, TreeNodes& nodes, Color markingColor, Color defaultCellColor = 0,
                       Color normalColor = kNormalColor);

// Removes the row of an item node key ("Child"+r) and renumbers keys and column 0.
// The node itself is left to the caller (the tree command removes it). When r is the only data
// row left, the row is emptied and unmarked instead of removed. A row that does not exist
// raises the grid's error.
void removeLineOfNode(Grid& grid, TreeNodes& nodes, const std::string& nodeKey,
                      Color defaultCellColor = 0, Color normalColor = kNormalColor);

// A click into the grid takes the highlight of a tree selection away: the first row whose
// column-1 cell has highlightColor gets defaultCellColor in columns 1 and up (never column 0).
// Only that first row is reset.
void clearSelection(Grid& grid, Color highlightColor, Color defaultCellColor);

}  // namespace vkl::table
