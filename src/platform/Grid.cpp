#include "platform/Grid.h"

#include <algorithm>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl {

Grid::Grid() : pool_(1), order_(1, 0) {}

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

void Grid::clearRow(Row& row) {
    // A row taken again comes back empty and without colour, like a new one: every text an
    // empty part, its strings kept as storage.
    row.back.fill(0);
    row.size.fill(0);
    row.kept = kAllKept;
}

void Grid::grow(int n) {
    for (auto r = static_cast<size_t>(rows_); r < static_cast<size_t>(n); ++r) {
        if (r < order_.size()) {
            clearRow(pool_[order_[r]]);
        } else {
            order_.push_back(static_cast<uint32_t>(pool_.size()));
            pool_.emplace_back();
        }
    }
    rows_ = n;
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
        grow(n);
        if (bulk_ == 0 && observer_.rowsInserted) {
            observer_.rowsInserted(old, n - 1);
        }
    } else {
        if (bulk_ == 0 && observer_.rowsAboutToBeRemoved) {
            observer_.rowsAboutToBeRemoved(n, old - 1);
        }
        rows_ = n;
        if (bulk_ == 0 && observer_.rowsRemoved) {
            observer_.rowsRemoved(n, old - 1);
        }
    }
    clampCurrent();
}

int Grid::appendRow() {
    // setRows(rows() + 1) for the one row the reader adds per line.
    const int r = rows_;
    grow(r + 1);
    if (bulk_ == 0 && observer_.rowsInserted) {
        observer_.rowsInserted(r, r);
    }
    return r;
}

void Grid::clampCurrent() {
    if (row_ >= rows()) {
        row_ = rows() - 1;
    }
    if (topRow_ >= rows()) {
        topRow_ = rows() > 1 ? rows() - 1 : 1;
    }
}

void Grid::currentChanged() {
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

Grid::Row& Grid::rowAt(int r) const {
    if (r < 0 || r >= rows_) {
        throw RuntimeError::gridSubscript();
    }
    return pool_[order_[static_cast<size_t>(r)]];
}

void Grid::checkCol(int c) {
    if (c < 0 || c >= kCols) {
        throw RuntimeError::gridSubscript();
    }
}

std::string_view Grid::textOf(const Row& row, int c) {
    const auto at = static_cast<size_t>(c);
    if ((row.kept >> c & 1) != 0) {
        return {row.line.data() + row.from[at], row.size[at]};
    }
    return row.text[at];
}

std::string& Grid::ownText(Row& row, int c) {
    const auto at = static_cast<size_t>(c);
    std::string& text = row.text[at];
    if ((row.kept >> c & 1) != 0) {
        text.assign(row.line, row.from[at], row.size[at]);
        row.kept = static_cast<uint8_t>(row.kept & ~(1u << c));
    }
    return text;
}

void Grid::notifyCell(int r, int c) {
    if (bulk_ == 0 && observer_.cellChanged) {
        observer_.cellChanged(r, c);
    }
}

const std::string& Grid::textMatrix(int r, int c) const {
    checkCol(c);
    return ownText(rowAt(r), c);
}

void Grid::setTextMatrix(int r, int c, std::string_view text) {
    checkCol(c);
    Row& row = rowAt(r);
    if (textOf(row, c) != text) {
        text::copyInto(row.text[static_cast<size_t>(c)], text);
        row.kept = static_cast<uint8_t>(row.kept & ~(1u << c));
        notifyCell(r, c);
    }
}

void Grid::setRowTexts(int r, const std::array<std::string_view, kCols>& texts) {
    Row& row = rowAt(r);
    if (bulk_ > 0) {
        // Nobody to tell which cells changed: copy without comparing.
        for (size_t c = 0; c < texts.size(); ++c) {
            text::copyInto(row.text[c], texts[c]);
        }
        row.kept = 0;
        return;
    }
    for (int c = 0; c < kCols; ++c) {
        setTextMatrix(r, c, texts[static_cast<size_t>(c)]);
    }
}

void Grid::setRowTexts(int r, std::string_view line,
                       const std::array<std::string_view, kCols>& texts) {
    constexpr size_t kMaxKept = UINT16_MAX;
    if (bulk_ == 0 || line.size() > kMaxKept) {
        setRowTexts(r, texts);
        return;
    }
    Row& row = rowAt(r);
    row.line.assign(line);
    // Addresses compared as numbers: a text lies in the line or anywhere else.
    const auto base = reinterpret_cast<uintptr_t>(line.data());
    const size_t length = line.size();
    uint8_t kept = kAllKept;
    for (size_t c = 0; c < texts.size(); ++c) {
        const std::string_view text = texts[c];
        const uintptr_t offset = reinterpret_cast<uintptr_t>(text.data()) - base;
        size_t at = 0;
        if (text.size() <= length && offset <= length - text.size()) {
            at = offset;
        } else if (row.line.size() + text.size() <= kMaxKept) {
            at = row.line.size();  // a text from elsewhere goes after the line
            row.line.append(text);
        } else {
            text::copyInto(row.text[c], text);
            kept = static_cast<uint8_t>(kept & ~(1u << c));
            continue;
        }
        row.from[c] = static_cast<uint16_t>(at);
        row.size[c] = static_cast<uint16_t>(text.size());
    }
    row.kept = kept;
}

Color Grid::backColorAt(int r, int c) const {
    checkCol(c);
    return rowAt(r).back[static_cast<size_t>(c)];
}

void Grid::setBackColorAt(int r, int c, Color color) {
    checkCol(c);
    Color& target = rowAt(r).back[static_cast<size_t>(c)];
    if (target != color) {
        target = color;
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
    // The removed row goes behind the table, where its storage waits for reuse.
    const auto at = order_.begin() + r;
    std::rotate(at, at + 1, order_.begin() + rows_);
    --rows_;
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
    // The rows that stay move up in order; the removed ones end up behind the table, where
    // their storage waits for reuse.
    size_t out = 1;
    for (size_t r = 1; r < static_cast<size_t>(rows_); ++r) {
        if (r < remove.size() && remove[r]) {
            continue;
        }
        if (out != r) {
            std::swap(order_[out], order_[r]);
        }
        ++out;
    }
    rows_ = static_cast<int>(out);
    clampCurrent();
    endBulk();
}

}  // namespace vkl
