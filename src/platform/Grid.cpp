#include "platform/Grid.h"

#include "platform/RuntimeError.h"

namespace vkl {

Grid::Grid() : cells_(1) {}

void Grid::beginBulk() {
    if (bulk_++ == 0 && observer_.beginReset) {
        observer_.beginReset();
    }
}

void Grid::endBulk() {
    if (--bulk_ == 0 && observer_.endReset) {
        observer_.endReset();
    }
}

void Grid::setRows(int n) {
    if (n < 1) {
        throw RuntimeError::gridSubscript();
    }
    const int old = rows();
    if (n == old) {
        return;
    }
    if (n > old) {
        if (bulk_ == 0 && observer_.rowsInserted) {
            cells_.resize(static_cast<size_t>(n));
            observer_.rowsInserted(old, n - 1);
        } else {
            cells_.resize(static_cast<size_t>(n));
        }
    } else {
        if (bulk_ == 0 && observer_.rowsAboutToBeRemoved) {
            observer_.rowsAboutToBeRemoved(n, old - 1);
        }
        cells_.resize(static_cast<size_t>(n));
        if (bulk_ == 0 && observer_.rowsRemoved) {
            observer_.rowsRemoved(n, old - 1);
        }
    }
    clampCurrent();
}

int Grid::appendRow() {
    setRows(rows() + 1);
    return rows() - 1;
}

void Grid::clampCurrent() {
    if (row_ >= rows()) {
        row_ = rows() - 1;
    }
    if (topRow_ >= rows()) {
        topRow_ = rows() > 1 ? rows() - 1 : 1;
    }
}

void Grid::setRow(int r) {
    if (r < 0 || r >= rows() || r == row_) {
        return;
    }
    row_ = r;
    if (bulk_ == 0 && observer_.currentChanged) {
        observer_.currentChanged();
    }
}

void Grid::setCol(int c) {
    if (c < 0 || c >= kCols || c == col_) {
        return;
    }
    col_ = c;
    if (bulk_ == 0 && observer_.currentChanged) {
        observer_.currentChanged();
    }
}

void Grid::setTopRow(int r) {
    if (r < 1 || r >= rows()) {
        return;
    }
    topRow_ = r;
    if (bulk_ == 0 && observer_.currentChanged) {
        observer_.currentChanged();
    }
}

const Grid::Cell& Grid::cell(int r, int c) const {
    if (r < 0 || r >= rows() || c < 0 || c >= kCols) {
        throw RuntimeError::gridSubscript();
    }
    return cells_[static_cast<size_t>(r)][static_cast<size_t>(c)];
}

Grid::Cell& Grid::cell(int r, int c) {
    return const_cast<Cell&>(static_cast<const Grid*>(this)->cell(r, c));
}

void Grid::notifyCell(int r, int c) {
    if (bulk_ == 0 && observer_.cellChanged) {
        observer_.cellChanged(r, c);
    }
}

const std::string& Grid::textMatrix(int r, int c) const { return cell(r, c).text; }

void Grid::setTextMatrix(int r, int c, std::string text) {
    Cell& target = cell(r, c);
    if (target.text != text) {
        target.text = std::move(text);
        notifyCell(r, c);
    }
}

Color Grid::backColorAt(int r, int c) const { return cell(r, c).back; }

void Grid::setBackColorAt(int r, int c, Color color) {
    Cell& target = cell(r, c);
    if (target.back != color) {
        target.back = color;
        notifyCell(r, c);
    }
}

void Grid::removeItem(int r) {
    if (r < 0 || r >= rows()) {
        throw RuntimeError::gridSubscript();
    }
    if (r == 0 || rows() <= 2) {
        throw RuntimeError::cannotRemoveLastRow();
    }
    if (bulk_ == 0 && observer_.rowsAboutToBeRemoved) {
        observer_.rowsAboutToBeRemoved(r, r);
    }
    cells_.erase(cells_.begin() + r);
    clampCurrent();
    if (bulk_ == 0 && observer_.rowsRemoved) {
        observer_.rowsRemoved(r, r);
    }
}

void Grid::removeRows(const std::vector<bool>& remove) {
    int dropping = 0;
    for (int r = 1; r < rows() && r < static_cast<int>(remove.size()); ++r) {
        dropping += remove[static_cast<size_t>(r)] ? 1 : 0;
    }
    if (dropping == 0) {
        return;
    }
    if (rows() - dropping < 2) {
        throw RuntimeError::cannotRemoveLastRow();
    }
    beginBulk();
    size_t out = 1;
    for (size_t r = 1; r < cells_.size(); ++r) {
        if (r < remove.size() && remove[r]) {
            continue;
        }
        if (out != r) {
            cells_[out] = std::move(cells_[r]);
        }
        ++out;
    }
    cells_.resize(out);
    clampCurrent();
    endBulk();
}

}  // namespace vkl
