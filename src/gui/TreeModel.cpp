#include "gui/TreeModel.h"

#include <QGuiApplication>

#include "gui/Convert.h"
#include "gui/Icons.h"
#include "platform/Text.h"

namespace vkl::gui {

namespace {

static_assert(sizeof(quintptr) >= 8, "the index id carries a node's slot and uid");

// An index carries the node's slot and the low half of its uid; a slot reused by a later node
// then does not pass for the removed one.
quintptr pack(NodeRef n) {
    return (static_cast<quintptr>(n.uid & 0xFFFFFFFFu) << 32) | static_cast<uint32_t>(n.slot);
}

NodeRef unpack(quintptr id) {
    NodeRef n;
    n.slot = static_cast<int32_t>(id & 0xFFFFFFFFu);
    n.uid = static_cast<uint64_t>(id >> 32);
    return n;
}

}  // namespace

TreeModel::TreeModel(TreeNodes& nodes, QObject* parent)
    : QAbstractItemModel(parent), nodes_(nodes), palette_(QGuiApplication::palette()) {
    TreeNodes::Observer o;
    o.beginReset = [this] { beginResetModel(); };
    o.endReset = [this] {
        endResetModel();
        emit expansionNeedsRefresh({});
    };
    o.aboutToInsert = [this](NodeRef parent, int pos) {
        beginInsertRows(indexOf(parent), pos, pos);
    };
    o.inserted = [this] { endInsertRows(); };
    o.aboutToRemove = [this](NodeRef parent, int first, int last) {
        beginRemoveRows(indexOf(parent), first, last);
    };
    o.removed = [this] { endRemoveRows(); };
    o.aboutToMove = [this](NodeRef from, int fromPos, NodeRef to, int toPos) {
        moving_ = nodes_.childAt(from, fromPos);
        // Moving the last child to the end of its own parent changes nothing; Qt refuses to
        // announce such a move.
        moveAnnounced_ = beginMoveRows(indexOf(from), fromPos, fromPos, indexOf(to), toPos);
    };
    o.moved = [this] {
        if (moveAnnounced_) {
            endMoveRows();
        }
        moveAnnounced_ = false;
        if (nodes_.alive(moving_)) {
            emit expansionNeedsRefresh(indexOf(moving_));
        }
        moving_ = {};
    };
    o.changed = [this](NodeRef n) {
        const QModelIndex at = indexOf(n);
        emit dataChanged(at, at);
    };
    o.expandedChanged = [this](NodeRef n) { emit expandedChanged(indexOf(n), nodes_.expanded(n)); };
    o.ensureVisible = [this](NodeRef n) { emit ensureVisible(indexOf(n)); };
    nodes_.setObserver(std::move(o));
}

TreeModel::~TreeModel() {
    nodes_.setObserver({});
}

NodeRef TreeModel::node(const QModelIndex& index) const {
    if (!index.isValid() || index.model() != this) {
        return {};
    }
    const NodeRef n = unpack(index.internalId());
    return nodes_.alive(n) ? n : NodeRef{};
}

QModelIndex TreeModel::indexOf(NodeRef n) const {
    if (n.isNull() || !nodes_.alive(n)) {
        return {};
    }
    return createIndex(nodes_.position(n), 0, pack(n));
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0 || row < 0) {
        return {};
    }
    NodeRef p;
    if (parent.isValid()) {
        p = node(parent);
        if (p.isNull() || parent.column() != 0) {
            return {};
        }
    }
    const NodeRef child = nodes_.childAt(p, row);
    if (child.isNull()) {
        return {};
    }
    return createIndex(row, 0, pack(child));
}

QModelIndex TreeModel::parent(const QModelIndex& child) const {
    const NodeRef n = node(child);
    if (n.isNull()) {
        return {};
    }
    return indexOf(nodes_.parent(n));
}

int TreeModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return nodes_.childCount({});
    }
    if (parent.column() != 0) {
        return 0;
    }
    const NodeRef p = node(parent);
    return p.isNull() ? 0 : nodes_.childCount(p);
}

int TreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool TreeModel::hasChildren(const QModelIndex& parent) const {
    // Asked for every node the tree view lays out: one lookup instead of a row and a column
    // count.
    return rowCount(parent) > 0;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
    const NodeRef n = node(index);
    if (n.isNull()) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return fromCp1252(nodes_.text(n));
        case Qt::DecorationRole: {
            const QIcon icon = icons::node(fromCp1252(nodes_.image(n)));
            return icon.isNull() ? QVariant() : QVariant(icon);
        }
        case Qt::BackgroundRole:
            return n == dropHighlight_ ? QVariant(palette_.color(QPalette::Highlight)) : QVariant();
        case Qt::ForegroundRole:
            return n == dropHighlight_ ? QVariant(palette_.color(QPalette::HighlightedText))
                                       : QVariant();
        default:
            return {};
    }
}

bool TreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || node(index).isNull()) {
        return false;
    }
    emit labelEdited(index, value.toString());
    return true;
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const {
    const NodeRef n = node(index);
    if (n.isNull()) {
        return Qt::ItemIsDropEnabled;
    }
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable |
                          Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    // A folded node without children tells the view so, which then skips two lookups for it on
    // every layout: most nodes of a large menu are such items. The answer changes with the
    // node; once the node is unfolded, the view keeps its state as for any other.
    if (nodes_.childCount(n) == 0 && !nodes_.expanded(n)) {
        flags |= Qt::ItemNeverHasChildren;
    }
    return flags;
}

void TreeModel::setDropHighlight(NodeRef n) {
    if (n == dropHighlight_) {
        return;
    }
    const QModelIndex before = indexOf(dropHighlight_);
    dropHighlight_ = n;
    const QModelIndex after = indexOf(n);
    if (before.isValid()) {
        emit dataChanged(before, before, {Qt::BackgroundRole, Qt::ForegroundRole});
    }
    if (after.isValid()) {
        emit dataChanged(after, after, {Qt::BackgroundRole, Qt::ForegroundRole});
    }
}

}  // namespace vkl::gui
