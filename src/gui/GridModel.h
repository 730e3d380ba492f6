#pragma once

#include <QAbstractTableModel>
#include <QPalette>

#include "platform/Colors.h"
#include "platform/Grid.h"

namespace vkl::gui {

// The menu table as Qt sees it: the data rows 1..Rows-1 of the grid are model rows 0..n-1, and
// row 0's texts are the horizontal header. The grid tells this model of every change through
// its observer; nothing is edited through Qt's own editors.
class GridModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    explicit GridModel(Grid& grid, QObject* parent = nullptr);
    ~GridModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The palette the grid's system colours are taken from.
    void setPalette(const QPalette& palette);
    // A grid colour as the window paints it; an invalid colour for 0 (the cell has none).
    QColor color(Color value) const;

    Grid& grid() { return grid_; }

  private:
    Grid& grid_;
    // The data rows the views know of; follows the grid only through its notices, so that
    // rowCount() is right between the begin and end of every structural change.
    int shownRows_ = 0;
    QPalette palette_;
};

}  // namespace vkl::gui
