#include "table/RowOps.h"

#include <algorithm>
#include <climits>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Bulk.h"
#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/Text.h"

namespace vkl::table {

namespace {

// Gives every item node whose row k moves up by shift(k) > 0 the key of its new row, all in one
// rekey so that a chain of renumberings never meets itself. Rows below from do not move. The
// general way, for keys of any form: closeNumberGaps does it in place for the editor's own.
template <typename Shift>
void renumberItemKeys(TreeNodes& nodes, long from, Shift shift) {
    std::vector<std::pair<NodeRef, long>> changes;
    for (const auto& [n, number] : nodes.numberedFrom(keys::kItemStem, from)) {
        const long k = number >= 0 ? number : keys::rowOf(nodes.key(n));
        if (const long by = shift(k); by > 0) {
            changes.emplace_back(n, k - by);
        }
    }
    if (!changes.empty()) {
        nodes.rekeyNumbered(keys::kItemStem, changes);
    }
}

// The state of a line that stands in for a removed one because the grid keeps one data row:
// no text, unmarked and unselected.
void emptyLine(Grid& grid, int r, Color defaultCellColor, Color normalColor) {
    for (int c = 1; c < grid.cols(); ++c) {
        grid.setTextMatrix(r, c, std::string());
        grid.setBackColorAt(r, c, defaultCellColor);
    }
    grid.setBackColorAt(r, 0, normalColor);
}

}  // namespace

int addEmptyLine(Grid& grid, TreeNodes& nodes, TreeState& tree, int16_t& addedLines,
                 Color normalColor, bool german) {
    grid.setRows(grid.rows() + 1);
    const int n = grid.rows() - 1;
    grid.setTextMatrix(n, 0, text::str(n));
    grid.setRow(n);
    grid.setCol(0);
    grid.setCellBackColor(normalColor);
    if (nodes.count() > 0) {
        addedLines = add16(addedLines, 1);
        tree.levelNodes.resize(2);
        tree.deepestLevel = 1;
        // The placeholder is picked and then replaced: a new line always shows a blank label.
        std::string_view label = german ? keys::kNewItemDe : keys::kNewItemEn;
        label = " ";
        tree.levelNodes[1] = nodes.add(std::string(keys::kRoot), TreeNodes::kChild, keys::item(n),
                                       std::string(label));
    }
    return n;
}

void toggleMark(Grid& grid, TreeNodes& nodes, Color markingColor, Color defaultCellColor,
                Color normalColor) {
    if (grid.col() != 0 || grid.row() == 0) {
        return;
    }
    const int r = grid.row();
    const NodeRef node = nodes.find(keys::item(r));
    if (grid.cellBackColor() != markingColor) {
        for (int c = 1; c < grid.cols(); ++c) {
            grid.setBackColorAt(r, c, markingColor);
        }
        grid.setBackColorAt(r, 0, markingColor);
        if (!node.isNull()) {
            nodes.setImage(node, "arrow2");
        }
    } else {
        for (int c = 1; c < grid.cols(); ++c) {
            grid.setBackColorAt(r, c, defaultCellColor);
        }
        grid.setBackColorAt(r, 0, normalColor);
        if (!node.isNull()) {
            nodes.setImage(node, "blank");
        }
    }
}

void deleteMarkedLines(Grid& grid, TreeNodes& nodes, Color markingColor, Color defaultCellColor,
                       Color normalColor) {
    const int rows = grid.rows();
    std::vector<bool> remove(static_cast<size_t>(rows), false);
    int marked = 0;
    for (int r = 1; r < rows; ++r) {
        if (grid.backColorAt(r, 1) == markingColor) {
            remove[static_cast<size_t>(r)] = true;
            ++marked;
        }
    }
    if (marked == 0) {
        grid.numberRows();
        return;
    }

    // Row by row, bottom up, every marked row would go with the node of its row, and each node
    // keyed for a later row would move up by one per removed row before it. The same result in
    // one pass: collect the nodes, remove them together, shift the keys by a prefix count.
    std::vector<NodeRef> gone;
    gone.reserve(static_cast<size_t>(marked));
    for (int r = 1; r < rows; ++r) {
        if (remove[static_cast<size_t>(r)]) {
            const NodeRef n = nodes.findNumbered(keys::kItemStem, r);
            if (!n.isNull()) {
                gone.push_back(n);
            }
        }
    }
    nodes.removeMany(gone);

    // Every line marked: row 1 is the row the grid keeps. It is emptied in place, so it does
    // not count as removed and no key moves past it.
    const bool keepFirst = marked == rows - 1;
    if (keepFirst) {
        remove[1] = false;
    }
    // The keys close up in place when all item keys are of the editor's own form, which they
    // are unless a file or a test made them otherwise.
    if (!nodes.closeNumberGaps(keys::kItemStem, remove)) {
        std::vector<long> removedBefore(static_cast<size_t>(rows) + 1, 0);
        for (size_t k = 1; k < removedBefore.size(); ++k) {
            removedBefore[k] = removedBefore[k - 1] + (remove[k - 1] ? 1 : 0);
        }
        // Keys up to the first removed row keep their numbers.
        const long firstRemoved =
            std::find(remove.begin() + 1, remove.end(), true) - remove.begin();
        renumberItemKeys(nodes, firstRemoved + 1, [&](long k) -> long {
            return k <= 0 ? 0 : removedBefore[static_cast<size_t>(std::min<long>(k, rows))];
        });
    }

    const BulkScope<Grid> bulk(grid);
    grid.removeRows(remove);
    if (keepFirst) {
        emptyLine(grid, 1, defaultCellColor, normalColor);
    }
    grid.numberRows();
}

void removeLineOfNode(Grid& grid, TreeNodes& nodes, const std::string& nodeKey,
                      Color defaultCellColor, Color normalColor) {
    const long r = keys::rowOf(nodeKey);
    // The renumbering below reaches the views as one range of rows.
    const BulkScope<Grid> bulk(grid);
    if (r == 1 && grid.rows() == 2) {
        // The grid keeps its last data row: it stays as an empty line, nothing moves up.
        emptyLine(grid, 1, defaultCellColor, normalColor);
        grid.numberRows();
        return;
    }
    grid.removeItem(static_cast<int>(std::clamp<long>(r, INT_MIN, INT_MAX)));
    // Every key after the removed row moves up by one, in place as in deleteMarkedLines when
    // it can.
    std::vector<bool> gap(static_cast<size_t>(r) + 1, false);
    gap.back() = true;
    if (!nodes.closeNumberGaps(keys::kItemStem, gap)) {
        renumberItemKeys(nodes, r + 1, [r](long k) -> long { return k > r ? 1 : 0; });
    }
    grid.numberRows();
}

void clearSelection(Grid& grid, Color highlightColor, Color defaultCellColor) {
    for (int r = 1; r < grid.rows(); ++r) {
        if (grid.backColorAt(r, 1) == highlightColor) {
            for (int c = 1; c < grid.cols(); ++c) {
                grid.setBackColorAt(r, c, defaultCellColor);
            }
            return;
        }
    }
}

}  // namespace vkl::table
