#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/MenuState.h"
#include "platform/TreeNodes.h"
#include "platform/TreeViewPort.h"

// How the tree reacts to the user: clicks, presses, label edits, drag and drop with edge
// scrolling. The window's state is reached through TreeWindow; what needs the menu file (the
// bitmap lookup) or the pop-up menus is handed back to the caller.
namespace vkl::tree {

// The parts of the main window the tree events read and write.
struct TreeWindow {
    TreeNodes& nodes;
    Grid& table;
    TreeViewPort* port;  // none: no node is ever under the pointer
    std::string& currentNodeKey;
    int16_t& currentSubmenuSerial;
    NodeRef& pressedNode;
    NodeRef& popupNode;
    NodeRef& selectedNode;
    NodeRef& treeSelected;       // the tree's selected node
    NodeRef& treeDropHighlight;  // the tree's drop-highlighted node
    bool& dragging;
    double& lastDragX;
    double& lastDragY;
    int16_t& scrollDirection;
    int16_t& selectedRow;
    bool& timerEnabled;
    Color highlightColor;
    Color defaultCellColor;
};

// Node click. A folder or the root takes the highlight off the selected line and becomes the
// current submenu; showFolderBitmap gets its entry of the submenu bitmap list when that is not
// empty. An item scrolls its line into sight, has showRowBitmap refresh the line's bitmap, and
// highlights the line.
void nodeClick(TreeWindow& w, const TreeState& state, const std::string& key,
               const std::function<void(const std::string& bitmap)>& showFolderBitmap,
               const std::function<void(int16_t row)>& showRowBitmap);

// Mouse down (button 1 left, 2 right; x, y in twips). Returns the pop-up menu to open:
// "Menu1" for the root, "Menu2" for an item, "menu3" for a folder; empty for none.
std::string mouseDown(TreeWindow& w, int button, double x, double y);

// After a label edit of the selected node: an item's line gets the typed text as its title.
void afterLabelEdit(TreeWindow& w, const std::string& newText);

void startDrag(TreeWindow& w);

// Drag over: returns the effect (2 move, 0 no drop) and switches the edge scrolling on in the
// top 100 and bottom 200 twips of the tree.
int dragOver(TreeWindow& w, double x, double y);

// Drop: the dragged node becomes the last child of the folder under the pointer (a folder
// showing a bitmap hands the drop to its parent). Items take no drops; moves the tree refuses
// are ignored. Returns the effect reported to the source (0).
int dragDrop(TreeWindow& w, const std::string& draggedKey, double x, double y);

// A tick of the scroll timer: the node under the last drag position is drop-highlighted and
// the tree scrolls one line in the scroll direction.
void timerTick(TreeWindow& w);

// Edge bands of the drag, in twips: scroll up when 0 < y < kScrollUpBand, down when
// height - kScrollDownBand < y < height.
inline constexpr double kScrollUpBand = 100;
inline constexpr double kScrollDownBand = 200;

}  // namespace vkl::tree
