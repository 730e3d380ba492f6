#include "tree/Events.h"

#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"

namespace vkl::tree {

namespace {

NodeRef underPointer(const TreeWindow& w, double x, double y) {
    if (w.port == nullptr) {
        return {};
    }
    const std::string key = w.port->hitTest(x, y);
    return key.empty() ? NodeRef{} : w.nodes.find(key);
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
void unhighlightSelectedLine(TreeWindow& w) {
    Grid& table = w.table;
    table.setCol(1);
    w.selectedRow = -1;
    for (int r = 1; r < table.rows(); ++r) {
        if (table.backColorAt(r, 1) == w.highlightColor) {
            w.selectedRow = checked16(r);
        }
    }
    // The search goes through the lines as current rows and leaves the last one current.
    if (table.rows() > 1) {
        table.setRow(table.rows() - 1);
    }
    if (w.selectedRow != -1) {
        paintLine(table, w.selectedRow, w.defaultCellColor);
    }
}

}  // namespace

void nodeClick(TreeWindow& w, const TreeState& state, const std::string& key,
               const std::function<void(const std::string& bitmap)>& showFolderBitmap,
               const std::function<void(int16_t row)>& showRowBitmap) {
    const NodeRef node = w.nodes.byKey(key);
    w.treeSelected = node;
    w.currentNodeKey = key;
    if (!keys::isItem(key)) {
        unhighlightSelectedLine(w);
        w.currentSubmenuSerial = checked16(keys::serialOf(key));
        const std::string& bitmap = state.submenuBitmap(w.currentSubmenuSerial);
        if (!bitmap.empty()) {
            showFolderBitmap(bitmap);
        }
        w.treeSelected = node;
        return;
    }
    const int16_t row = checked16(keys::rowOf(key));
    // Lines further down show five lines below the top of the table.
    w.table.setTopRow(row > 10 ? row - 5 : 1);
    w.table.setRow(row);
    showRowBitmap(row);
    unhighlightSelectedLine(w);
    paintLine(w.table, row, w.highlightColor);
    w.selectedRow = row;
    w.treeSelected = node;
}

std::string mouseDown(TreeWindow& w, int button, double x, double y) {
    const NodeRef hit = underPointer(w, x, y);
    w.pressedNode = hit;
    if (hit.isNull()) {
        return {};
    }
    const std::string key = w.nodes.key(hit);
    w.currentNodeKey = key;
    if (key == keys::kRoot) {
        if (button == 1) {
            w.nodes.setExpanded(hit, true);
            return {};
        }
        if (button == 2) {
            return "Menu1";
        }
    }
    w.treeSelected = hit;
    w.selectedNode = w.treeSelected;
    if (button != 2) {
        return {};
    }
    w.currentNodeKey = w.nodes.key(w.selectedNode);
    w.popupNode = hit;
    if (keys::isFolderOrRoot(key)) {
        w.currentSubmenuSerial = checked16(keys::serialOf(key));
        return "menu3";
    }
    return "Menu2";
}

void afterLabelEdit(TreeWindow& w, const std::string& newText) {
    if (!w.nodes.alive(w.treeSelected)) {
        return;
    }
    const std::string key = w.nodes.key(w.treeSelected);
    if (keys::isItem(key)) {
        // The whole title is replaced, leading blanks (the line's depth) included.
        w.table.setTextMatrix(checked16(keys::rowOf(key)), 1, newText);
    }
    w.nodes.setText(w.treeSelected, newText);
}

void startDrag(TreeWindow& w) {
    w.dragging = true;
}

int dragOver(TreeWindow& w, double x, double y) {
    const NodeRef hit = underPointer(w, x, y);
    if (hit.isNull() || !w.dragging) {
        return 0;
    }
    w.treeDropHighlight = hit;
    w.lastDragX = x;
    w.lastDragY = y;
    const double height = w.port->heightTwips();
    if (y > 0 && y < kScrollUpBand) {
        w.scrollDirection = -1;
        w.timerEnabled = true;
    } else if (y > height - kScrollDownBand && y < height) {
        w.scrollDirection = 1;
        w.timerEnabled = true;
    } else {
        w.timerEnabled = false;
    }
    return 2;
}

int dragDrop(TreeWindow& w, const std::string& draggedKey, double x, double y) {
    NodeRef target = underPointer(w, x, y);
    if (!target.isNull()) {
        const std::string key = w.nodes.key(target);
        w.currentNodeKey = key;
        if (keys::isFolderOrRoot(key)) {
            // A folder that shows a bitmap passes the drop on to its parent.
            if (w.nodes.image(target) != keys::kFolderImage && key != keys::kRoot) {
                target = w.nodes.parent(target);
            }
            const NodeRef dragged = w.nodes.find(draggedKey);
            if (!target.isNull() && !dragged.isNull()) {
                try {
                    w.nodes.setParent(dragged, target);
                } catch (const RuntimeError&) {
                    // A move below the node itself is refused by the tree; the drop is ignored.
                }
            }
        }
    }
    w.dragging = false;
    return 0;
}

void timerTick(TreeWindow& w) {
    w.treeDropHighlight = underPointer(w, w.lastDragX, w.lastDragY);
    if (w.port != nullptr) {
        w.port->scrollLine(w.scrollDirection == -1 ? 0 : 1);
    }
}

}  // namespace vkl::tree
