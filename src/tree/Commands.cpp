#include "tree/Commands.h"

#include <algorithm>
#include <climits>
#include <vector>

#include "platform/Bulk.h"
#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "table/RowOps.h"

namespace vkl::tree {

NodeRef addSubmenu(TreeNodes& nodes, TreeState& state, const std::string& currentKey,
                   int relationship) {
    state.nodeSerial = add16(state.nodeSerial, 1);
    return nodes.add(nodes.byKey(currentKey), relationship, keys::folder(state.nodeSerial), "MENU",
                     keys::kFolderImage);
}

namespace {

// The marking walk over a subtree. Marking a level and purging at the end of it, innermost
// levels first, costs a full pass over the table per folder. The walk below paints the same
// rows and performs a single purge at the end; what the purges in between would have done to
// the walk itself is tracked instead:
//  - a purge deletes every marked line, and with its item node everything below that node;
//  - so an item the walk descended into (it is painted before its children) is gone after the
//    first purge inside it, and so is every node still waiting below it;
//  - a line that was marked before the command goes with the first purge; when the walk only
//    reaches its node after that, the node and what hangs below it are not walked, and a node
//    left without children that way is not descended into (no level, no purge);
//  - likewise the top node itself goes when it, or an item above it, was marked before.
// Rows are read from keys as they stand; a purge would renumber rows and keys alike, so a key
// names the same line either way.
class MarkingWalk {
  public:
    MarkingWalk(Grid& table, TreeNodes& nodes, Color marking)
        : table_(table), nodes_(nodes), marking_(marking) {}

    void run(NodeRef top) {
        for (NodeRef p = top; !p.isNull(); p = nodes_.parent(p)) {
            const std::string& key = nodes_.key(p);
            if (keys::isItem(key) && marked(keys::rowOf(key))) {
                topDoomed_ = true;
            }
        }
        walk(top, 0);
    }

    // The row the grid's current row would have held after the last paint, numbered as the
    // table stood then (lines purged before that paint no longer counted); 0 when nothing was
    // painted. Must be asked before the final purge.
    long currentRowAsPainted() const {
        if (!painted_) {
            return 0;
        }
        if (lastEpoch_ == 0 || lastRow_ < 1) {
            return lastRow_;
        }
        long before = 0;
        for (long q = 1; q < lastRow_ && q < table_.rows(); ++q) {
            if (table_.backColorAt(static_cast<int>(q), 1) == marking_) {
                ++before;
            }
        }
        // Lines painted after the last paint's purge still stood when it was painted.
        for (const auto& [row, epoch] : paints_) {
            if (epoch >= lastEpoch_ && row >= 1 && row < lastRow_) {
                --before;
            }
        }
        return lastRow_ - before;
    }

  private:
    bool marked(long row) const {
        return row >= 1 && row < table_.rows() &&
               table_.backColorAt(static_cast<int>(row), 1) == marking_;
    }

    void paint(long row) {
        const int r = static_cast<int>(std::clamp<long>(row, INT_MIN, INT_MAX));
        table_.setRow(r);
        for (int c = 0; c < table_.cols(); ++c) {
            table_.setCol(c);
            table_.setBackColorAt(r, c, marking_);
        }
        table_.setCol(0);
        table_.setBackColorAt(r, 0, marking_);
        painted_ = true;
        lastRow_ = row;
        lastEpoch_ = purges_;
        paints_.emplace_back(row, purges_);
    }

    // A node the walk reaches after the first purge is gone already when its line was marked
    // before the command.
    bool purgedBefore(NodeRef n) const {
        const std::string& key = nodes_.key(n);
        return purges_ > 0 && keys::isItem(key) && marked(keys::rowOf(key));
    }

    bool hasChildrenLeft(NodeRef n) const {
        for (NodeRef c = nodes_.child(n); !c.isNull(); c = nodes_.next(c)) {
            if (!purgedBefore(c)) {
                return true;
            }
        }
        return false;
    }

    void walk(NodeRef node, int depth) {
        std::vector<NodeRef> kids;
        for (NodeRef c = nodes_.child(node); !c.isNull(); c = nodes_.next(c)) {
            kids.push_back(c);
        }
        for (const NodeRef c : kids) {
            if (purgedBefore(c)) {
                continue;
            }
            const bool item = keys::isItem(nodes_.key(c));
            if (item) {
                paint(keys::rowOf(nodes_.key(c)));
            }
            if (hasChildrenLeft(c)) {
                const bool shallowestItem = item && firstItemDepth_ < 0;
                if (shallowestItem) {
                    firstItemDepth_ = depth + 1;
                }
                walk(c, depth + 1);
                if (shallowestItem) {
                    firstItemDepth_ = -1;
                }
                if (killedDepth_ <= depth) {
                    break;  // this node went with a purge: nothing below it is left
                }
                killedDepth_ = INT_MAX;
            }
        }
        purge();
    }

    // The purge at the end of a level: deletes nothing yet, but every marked item still on the
    // walk's path goes, and with it every level below the shallowest such item.
    void purge() {
        ++purges_;
        if (topDoomed_) {
            killedDepth_ = 0;
        } else if (firstItemDepth_ >= 0) {
            killedDepth_ = std::min(killedDepth_, firstItemDepth_);
        }
    }

    Grid& table_;
    TreeNodes& nodes_;
    Color marking_;
    bool topDoomed_ = false;
    int firstItemDepth_ = -1;    // depth of the shallowest item the walk is inside of
    int killedDepth_ = INT_MAX;  // levels at this depth and deeper are gone
    int purges_ = 0;
    bool painted_ = false;
    long lastRow_ = 0;
    int lastEpoch_ = 0;
    std::vector<std::pair<long, int>> paints_;  // row, purges before the paint
};

}  // namespace

void markAndPurgeSubtree(Grid& table, TreeNodes& nodes, NodeRef node, Color markingColor,
                         Color defaultCellColor, Color normalColor) {
    const BulkScope<Grid> bulk(table);  // one reset for the whole command
    MarkingWalk walk(table, nodes, markingColor);
    walk.run(node);
    const long current = walk.currentRowAsPainted();
    table::deleteMarkedLines(table, nodes, markingColor, defaultCellColor, normalColor);
    if (current > 0 && current < table.rows()) {
        table.setRow(static_cast<int>(current));
    }
}

void removeNode(Grid& table, TreeNodes& nodes, const std::string& currentKey, int value,
                Color markingColor, Color defaultCellColor, Color normalColor) {
    const NodeRef node = nodes.byKey(currentKey);
    if (keys::isItem(currentKey)) {
        // The value does not matter for an item. Items nested below it lose their nodes with
        // it but keep their lines.
        nodes.remove(node);
        table::removeLineOfNode(table, nodes, currentKey, defaultCellColor, normalColor);
        return;
    }
    if (nodes.children(node) > 0) {
        markAndPurgeSubtree(table, nodes, node, markingColor, defaultCellColor, normalColor);
    }
    if (value == 1) {
        // Looked up again: the purge may have taken the node along (an item above it that was
        // marked before), and then the control reports the missing key.
        nodes.remove(nodes.byKey(currentKey));
    }
}

bool addImage(Host& host, TreeNodes& nodes, TreeState& state, const std::string& imageDir,
              const std::string& currentKey, int16_t currentSubmenuSerial) {
    FileDialog dialog;
    if (!imageDir.empty()) {
        dialog.initialDir = imageDir;
    }
    dialog.filter = kImageFilter;
    dialog.filterIndex = 2;
    const ChosenFile chosen = host.openDialog(dialog);
    if (chosen.cancelled()) {
        return false;
    }
    // Like every file dialog command this one runs with errors ignored: a key that names no
    // node only skips the image, and a serial below 0 has no list entry to take the path.
    const NodeRef node = nodes.find(currentKey);
    if (!node.isNull()) {
        nodes.setImage(node, "image_here");
    }
    if (currentSubmenuSerial < 0) {
        return true;
    }
    const auto serial = static_cast<size_t>(currentSubmenuSerial);
    if (serial >= state.submenuBitmaps.size()) {
        state.submenuBitmaps.resize(serial + 1);
    }
    state.submenuBitmaps[serial] = chosen.fileName;
    state.highestBitmapSerial = std::max(state.highestBitmapSerial, currentSubmenuSerial);
    return true;
}

}  // namespace vkl::tree
