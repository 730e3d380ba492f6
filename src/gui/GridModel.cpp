#include "gui/GridModel.h"

#include <QGuiApplication>

#include <algorithm>

#include "gui/Convert.h"
#include "platform/Text.h"

namespace vkl::gui {

GridModel::GridModel(Grid& grid, QObject* parent)
    : QAbstractTableModel(parent),
      grid_(grid),
      shownRows_(grid.rows() - 1),
      palette_(QGuiApplication::palette()) {
    Grid::Observer o;
    o.beginReset = [this] { beginResetModel(); };
    o.endReset = [this] {
        shownRows_ = grid_.rows() - 1;
        endResetModel();
        emit headerDataChanged(Qt::Horizontal, 0, Grid::kCols - 1);
    };
    o.cellChanged = [this](int r, int c) {
        if (r == 0) {
            emit headerDataChanged(Qt::Horizontal, c, c);
        } else if (r <= shownRows_) {
            const QModelIndex at = index(r - 1, c);
            emit dataChanged(at, at, {Qt::DisplayRole, Qt::BackgroundRole});
        }
    };
    o.rowsChanged = [this](int first, int last) {
        if (first == 0) {
            emit headerDataChanged(Qt::Horizontal, 0, Grid::kCols - 1);
        }
        const int top = std::max(first, 1);
        const int bottom = std::min(last, shownRows_);
        if (top <= bottom) {
            emit dataChanged(index(top - 1, 0), index(bottom - 1, Grid::kCols - 1),
                             {Qt::DisplayRole, Qt::BackgroundRole});
        }
    };
    // The grid announces appended rows only once they exist; the count the views see moves
    // between begin and end all the same.
    o.rowsInserted = [this](int first, int last) {
        beginInsertRows({}, first - 1, last - 1);
        shownRows_ += last - first + 1;
        endInsertRows();
    };
    o.rowsAboutToBeRemoved = [this](int first, int last) {
        beginRemoveRows({}, first - 1, last - 1);
    };
    o.rowsRemoved = [this](int first, int last) {
        shownRows_ -= last - first + 1;
        endRemoveRows();
    };
    grid_.setObserver(std::move(o));
}

GridModel::~GridModel() {
    grid_.setObserver({});
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shownRows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Grid::kCols;
}

void GridModel::setPalette(const QPalette& palette) {
    palette_ = palette;
    if (shownRows_ > 0) {
        emit dataChanged(index(0, 0), index(shownRows_ - 1, Grid::kCols - 1), {Qt::BackgroundRole});
    }
}

QColor GridModel::color(Color value) const {
    if (value == 0) {
        return {};
    }
    if (!isSystemColor(value)) {
        return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                      static_cast<int>((value >> 16) & 0xFF));
    }
    switch (value & 0xFF) {
        case 5:  // window
            return palette_.color(QPalette::Base);
        case 8:  // window text
            return palette_.color(QPalette::Text);
        case 13:  // highlight
            return palette_.color(QPalette::Highlight);
        case 14:  // highlight text
            return palette_.color(QPalette::HighlightedText);
        case 15:  // button face
        case 19:  // the normal colour of the header row and the number column
            return palette_.color(QPalette::Button);
        case 16:  // button shadow
            return palette_.color(QPalette::Mid);
        case 18:  // button text
            return palette_.color(QPalette::ButtonText);
        case 20:  // button highlight
            return palette_.color(QPalette::Light);
        case 21:  // 3D dark shadow
            return palette_.color(QPalette::Shadow);
        case 22:
            // 3D light marks the line of the selected tree node; on a flat modern palette it
            // would vanish into the base, so it is a light tint of the highlight instead.
            return mix(palette_.color(QPalette::Highlight), palette_.color(QPalette::Base), 0.3);
        case 23:  // tooltip text
            return palette_.color(QPalette::ToolTipText);
        case 24:  // tooltip back
            return palette_.color(QPalette::ToolTipBase);
        default:
            return palette_.color(QPalette::Window);
    }
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= shownRows_ || index.column() >= Grid::kCols) {
        return {};
    }
    const int r = index.row() + 1;
    if (r >= grid_.rows()) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
            return fromCp1252(grid_.textView(r, index.column()));
        case Qt::BackgroundRole: {
            const QColor c = color(grid_.backColorAt(r, index.column()));
            return c.isValid() ? QVariant(c) : QVariant();
        }
        case Qt::TextAlignmentRole:
            switch (index.column()) {
                case 2:
                case 4:
                    return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
                case 3:
                    return static_cast<int>(Qt::AlignCenter);
                default:
                    return {};
            }
        default:
            return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= Grid::kCols) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    if (role == Qt::DisplayRole) {
        return fromCp1252(grid_.textView(0, section));
    }
    return {};
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

}  // namespace vkl::gui
