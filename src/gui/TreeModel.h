#pragma once

#include <QAbstractItemModel>
#include <QPalette>

#include "platform/TreeNodes.h"

namespace vkl::gui {

// The menu tree as Qt sees it: the top-level nodes of the collection at the root, one column.
// The collection tells this model of every change through its observer. Edits of a label are
// handed on (labelEdited) rather than written: the window runs the form's handler for them.
class TreeModel : public QAbstractItemModel {
    Q_OBJECT
  public:
    explicit TreeModel(TreeNodes& nodes, QObject* parent = nullptr);
    ~TreeModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

    // The node of an index (null for the invisible root or a node that no longer exists) and
    // the index of a node (invalid for null or removed nodes).
    NodeRef node(const QModelIndex& index) const;
    QModelIndex indexOf(NodeRef node) const;

    // The node drawn as the drop target.
    void setDropHighlight(NodeRef node);
    NodeRef dropHighlight() const { return dropHighlight_; }
    void setPalette(const QPalette& palette) { palette_ = palette; }

    TreeNodes& nodes() { return nodes_; }

  signals:
    void labelEdited(const QModelIndex& index, const QString& text);
    // The collection changed the expanded flag of a node, or wants it scrolled into sight.
    void expandedChanged(const QModelIndex& index, bool expanded);
    void ensureVisible(const QModelIndex& index);
    // A reset or a move ended: the views re-read the expanded flags below this index (the
    // invisible root after a reset).
    void expansionNeedsRefresh(const QModelIndex& below);

  private:
    TreeNodes& nodes_;
    NodeRef dropHighlight_;
    NodeRef moving_;  // the node being moved, null when the move is a no-op for the views
    bool moveAnnounced_ = false;
    QPalette palette_;
};

}  // namespace vkl::gui
