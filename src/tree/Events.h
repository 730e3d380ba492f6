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
// scrolling. Each event takes the tree, the grid and the view port it touches; what needs the
// menu file (the bitmap lookup) or the pop-up menus is handed back to the caller. A null port
// has no node under the pointer.
namespace vkl::tree {

// What the tree events remember between calls, kept by the window.
struct TreeEventState {
    std::string currentNodeKey;
    int16_t currentSubmenuSerial = 0;
    NodeRef pressedNode;
    NodeRef popupNode;
    NodeRef selectedNode;
    NodeRef treeSelected;       // the tree's selected node
    NodeRef treeDropHighlight;  // the tree's drop-highlighted node
    bool dragging = false;
    double lastDragX = 0;
    double lastDragY = 0;
    int16_t scrollDirection = 0;
    int16_t selectedRow = -1;  // the line the last node click highlighted
};

// Node click. A folder or the root takes the highlight off the selected line and becomes the
// current submenu; showFolderBitmap gets its entry of the submenu bitmap list when that is not
// empty. An item scrolls its line into sight, has showRowBitmap refresh the line's bitmap, and
// highlights the line.
void nodeClick(TreeEventState& s, TreeNodes& nodes, Grid& table, Color highlight, Color defaultCell,
               const TreeState& state, const std::string& key,
               const std::function<void(const std::string& bitmap)>& showFolderBitmap,
               const std::function<void(int16_t row)>& showRowBitmap);

// Mouse down (button 1 left, 2 right; x, y in twips). Returns the pop-up menu to open:
// "Menu1" for the root, "Menu2" for an item, "menu3" for a folder; empty for none.
std::string mouseDown(TreeEventState& s, TreeNodes& nodes, const TreeViewPort* port, int button,
                      double x, double y);

// After a label edit of the selected node: an item's line gets the typed text as its title.
void afterLabelEdit(TreeEventState& s, TreeNodes& nodes, Grid& table, const std::string& newText);

void startDrag(TreeEventState& s);

// Drag over: returns the effect (2 move, 0 no drop) and switches the edge scrolling on in the
// top 100 and bottom 200 twips of the tree (timerEnabled is the scroll timer's switch).
int dragOver(TreeEventState& s, const TreeNodes& nodes, const TreeViewPort* port, double x,
             double y, bool& timerEnabled);

// Drop: the dragged node becomes the last child of the folder under the pointer (a folder
// showing a bitmap hands the drop to its parent). Items take no drops; moves the tree refuses
// are ignored. Returns the effect reported to the source (0).
int dragDrop(TreeEventState& s, TreeNodes& nodes, const TreeViewPort* port,
             const std::string& draggedKey, double x, double y);

// A tick of the scroll timer: the node under the last drag position is drop-highlighted and
// the tree scrolls one line in the scroll direction.
void timerTick(TreeEventState& s, const TreeNodes& nodes, TreeViewPort* port);

// Edge bands of the drag, in twips: scroll up when 0 < y < kScrollUpBand, down when
// height - kScrollDownBand < y < height.
inline constexpr double kScrollUpBand = 100;
inline constexpr double kScrollDownBand = 200;

}  // namespace vkl::tree
