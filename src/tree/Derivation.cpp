#include "tree/Derivation.h"

#include <algorithm>

#include "platform/Bulk.h"
#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/Text.h"

namespace vkl::tree {

namespace {

NodeRef addRoot(TreeNodes& nodes) {
    return nodes.add(NodeRef{}, TreeNodes::kChild, keys::kRoot, keys::kRootText, kRootImage);
}

}  // namespace

NodeRef levelParent(const TreeNodes& nodes, const TreeState& state, NodeRef root, int level) {
    const int known = static_cast<int>(state.levelNodes.size()) - 1;
    for (int l = std::min(level - 1, known); l >= 1; --l) {
        const NodeRef candidate = state.levelNodes[static_cast<size_t>(l)];
        if (nodes.alive(candidate)) {
            return candidate;
        }
    }
    return nodes.alive(root) ? root : NodeRef{};
}

void LevelDerivation::begin() {
    nodes_.clear();
    root_ = addRoot(nodes_);
    visibleParent_ = {};
    state_.resetBitmapList();
}

NodeRef LevelDerivation::parentFor(int16_t level) {
    state_.currentLevel = level;
    if (level > state_.deepestLevel) {
        state_.deepestLevel = level;
    }
    // Others may have cut the array shorter than the deepest level; never index past it.
    state_.growLevels(std::max<int>(level, state_.deepestLevel));
    if (level > 1) {
        // Mostly the level node one up is there: the search below would stop at it at once.
        const NodeRef up = state_.levelNodes[static_cast<size_t>(level) - 1];
        if (nodes_.alive(up)) {
            return up;
        }
    }
    if (!nodes_.alive(root_)) {
        root_ = nodes_.find(std::string(keys::kRoot));
    }
    return levelParent(nodes_, state_, root_, level);
}

NodeRef LevelDerivation::place(int16_t level, NodeRef parent, NodeRef node) {
    state_.levelNodes[static_cast<size_t>(level)] = node;
    if (level > 1) {
        // Nothing folds a node up while a file is read: once a node was made visible, its
        // later siblings are visible too, and with the views silent there is nothing to tell.
        if (parent != visibleParent_ || !nodes_.inBulk()) {
            nodes_.ensureVisible(node);
            visibleParent_ = parent;
        }
    }
    return node;
}

NodeRef LevelDerivation::submenu(int16_t level, std::string_view title,
                                 std::string_view bitmapField) {
    const int16_t serial = add16(state_.nodeSerial, 1);
    state_.nodeSerial = serial;
    const NodeRef parent = parentFor(level);
    const NodeRef node =
        nodes_.add(parent, TreeNodes::kChild, keys::folder(serial), title, keys::kFolderImage);
    place(level, parent, node);
    std::string bitmap = text::trim(bitmapField);
    if (!bitmap.empty()) {
        if (state_.submenuBitmaps.size() <= static_cast<size_t>(serial)) {
            state_.submenuBitmaps.resize(static_cast<size_t>(serial) + 1);
        }
        state_.submenuBitmaps[static_cast<size_t>(serial)] = std::move(bitmap);
        state_.highestBitmapSerial = std::max(state_.highestBitmapSerial, serial);
    }
    return node;
}

NodeRef LevelDerivation::item(int16_t level, long row, std::string_view titleField) {
    const NodeRef parent = parentFor(level);
    // The node keys::item(row) with the title upper-cased, made without allocating: the reader
    // makes one per line.
    char shortTitle[96];
    std::string_view title;
    if (titleField.size() <= sizeof shortTitle) {
        text::upperCopy(shortTitle, titleField.data(), titleField.size());
        title = std::string_view(shortTitle, titleField.size());
    } else {
        text::assignUpper(title_, titleField);
        title = title_;
    }
    const NodeRef node = nodes_.addNumbered(parent, TreeNodes::kChild, keys::kItemStem, row, title);
    return place(level, parent, node);
}

void LevelDerivation::end() {
    if (state_.levelNodes.size() > 1 && nodes_.alive(state_.levelNodes[1])) {
        nodes_.ensureVisible(state_.levelNodes[1]);
    }
}

bool deriveFlat(const Grid& grid, TreeNodes& nodes, TreeState& state, int16_t languageCode) {
    if (nodes.count() > 0) {
        return false;
    }
    const BulkScope<TreeNodes> bulk(nodes);  // one reset instead of a notice per node
    nodes.clear();
    state.resetBitmapList();
    const NodeRef root = addRoot(nodes);
    for (int r = 1; r < grid.rows(); ++r) {
        std::string title(grid.textView(r, 1));
        if (title.empty()) {
            // The placeholder is chosen and then replaced: an empty title shows as one blank.
            title = languageCode == 1 ? keys::kNewItemEn : keys::kNewItemDe;
            title.assign(1, ' ');
        }
        nodes.add(root, TreeNodes::kChild, keys::item(r), std::move(title));
    }
    nodes.setExpanded(root, true);
    return true;
}

}  // namespace vkl::tree
