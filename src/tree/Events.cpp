#include "tree/Events.h"

#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"

namespace vkl::tree {

namespace {

NodeRef underPointer(const TreeNodes& nodes, const TreeViewPort* port, double x, double y) {
    if (port == nullptr) {
        return {};
    }
    const std::string key = port->hitTest(x, y);
    return key.empty() ? NodeRef{} : nodes.find(key);
}

void paintLine(Grid& table, int row, Color color) {
    table.setRow(row);
    for (int c = 0; c < table.cols(); ++c) {
        table.setCol(c);
        table.setBackColorAt(row, c, color);
    }
}

// The selected line is the one whose title cell carries the highlight colour (the last one
// when there are several); it is painted back in the default cell colour.
void unhighlightSelectedLine(TreeEventState& s, Grid& table, Color highlight, Color defaultCell) {
    table.setCol(1);
    s.selectedRow = -1;
    for (int r = 1; r < table.rows(); ++r) {
        if (table.backColorAt(r, 1) == highlight) {
            s.selectedRow = checked16(r);
        }
    }
    // The search goes through the lines as current rows and leaves the last one current.
    if (table.rows() > 1) {
        table.setRow(table.rows() - 1);
    }
    if (s.selectedRow != -1) {
        paintLine(table, s.selectedRow, defaultCell);
    }
}

}  // namespace

void nodeClick(TreeEventState& s, TreeNodes& nodes, Grid& table, Color highlight, Color defaultCell,
               const TreeState& state, const std::string& key,
               const std::function<void(const std::string& bitmap)>& showFolderBitmap,
               const std::function<void(int16_t row)>& showRowBitmap) {
    const NodeRef node = nodes.byKey(key);
    s.treeSelected = node;
    s.currentNodeKey = key;
    if (!keys::isItem(key)) {
        unhighlightSelectedLine(s, table, highlight, defaultCell);
        s.currentSubmenuSerial = checked16(keys::serialOf(key));
        const std::string& bitmap = state.submenuBitmap(s.currentSubmenuSerial);
        if (!bitmap.empty()) {
            showFolderBitmap(bitmap);
        }
        s.treeSelected = node;
        return;
    }
    const int16_t row = checked16(keys::rowOf(key));
    // Lines further down show five lines below the top of the table.
    table.setTopRow(row > 10 ? row - 5 : 1);
    table.setRow(row);
    showRowBitmap(row);
    unhighlightSelectedLine(s, table, highlight, defaultCell);
    paintLine(table, row, highlight);
    s.selectedRow = row;
    s.treeSelected = node;
}

std::string mouseDown(TreeEventState& s, TreeNodes& nodes, const TreeViewPort* port, int button,
                      double x, double y) {
    const NodeRef hit = underPointer(nodes, port, x, y);
    s.pressedNode = hit;
    if (hit.isNull()) {
        return {};
    }
    const std::string key = nodes.key(hit);
    s.currentNodeKey = key;
    if (key == keys::kRoot) {
        if (button == 1) {
            nodes.setExpanded(hit, true);
            return {};
        }
        if (button == 2) {
            return "Menu1";
        }
    }
    s.treeSelected = hit;
    s.selectedNode = s.treeSelected;
    if (button != 2) {
        return {};
    }
    s.currentNodeKey = nodes.key(s.selectedNode);
    s.popupNode = hit;
    if (keys::isFolderOrRoot(key)) {
        s.currentSubmenuSerial = checked16(keys::serialOf(key));
        return "menu3";
    }
    return "Menu2";
}

void afterLabelEdit(TreeEventState& s, TreeNodes& nodes, Grid& table, const std::string& newText) {
    if (!nodes.alive(s.treeSelected)) {
        return;
    }
    const std::string key = nodes.key(s.treeSelected);
    if (keys::isItem(key)) {
        // The whole title is replaced, leading blanks (the line's depth) included.
        table.setTextMatrix(checked16(keys::rowOf(key)), 1, newText);
    }
    nodes.setText(s.treeSelected, newText);
}

void startDrag(TreeEventState& s) {
    s.dragging = true;
}

int dragOver(TreeEventState& s, const TreeNodes& nodes, const TreeViewPort* port, double x,
             double y, bool& timerEnabled) {
    const NodeRef hit = underPointer(nodes, port, x, y);
    if (hit.isNull() || !s.dragging) {
        return 0;
    }
    s.treeDropHighlight = hit;
    s.lastDragX = x;
    s.lastDragY = y;
    const double height = port->heightTwips();
    if (y > 0 && y < kScrollUpBand) {
        s.scrollDirection = -1;
        timerEnabled = true;
    } else if (y > height - kScrollDownBand && y < height) {
        s.scrollDirection = 1;
        timerEnabled = true;
    } else {
        timerEnabled = false;
    }
    return 2;
}

int dragDrop(TreeEventState& s, TreeNodes& nodes, const TreeViewPort* port,
             const std::string& draggedKey, double x, double y) {
    NodeRef target = underPointer(nodes, port, x, y);
    if (!target.isNull()) {
        const std::string key = nodes.key(target);
        s.currentNodeKey = key;
        if (keys::isFolderOrRoot(key)) {
            // A folder that shows a bitmap passes the drop on to its parent.
            if (nodes.image(target) != keys::kFolderImage && key != keys::kRoot) {
                target = nodes.parent(target);
            }
            const NodeRef dragged = nodes.find(draggedKey);
            if (!target.isNull() && !dragged.isNull()) {
                try {
                    nodes.setParent(dragged, target);
                } catch (const RuntimeError&) {
                    // A move below the node itself is refused by the tree; the drop is ignored.
                }
            }
        }
    }
    s.dragging = false;
    return 0;
}

void timerTick(TreeEventState& s, const TreeNodes& nodes, TreeViewPort* port) {
    s.treeDropHighlight = underPointer(nodes, port, s.lastDragX, s.lastDragY);
    if (port != nullptr) {
        port->scrollLine(s.scrollDirection == -1 ? 0 : 1);
    }
}

}  // namespace vkl::tree
