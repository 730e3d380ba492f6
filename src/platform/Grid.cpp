#include "platform/Grid.h"

#include <algorithm>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl {

namespace {
// Offsets into a row's line are 16-bit; a text that does not fit gets the cell's own string.
constexpr size_t kMaxLine = UINT16_MAX;
}  // namespace

// ---- Rows ----------------------------------------------------------------------------------

Grid::Row::Row(const Row& other)
    : back(other.back), kept(other.kept), from(other.from), size(other.size), line(other.line) {
    if (other.own) {
        own = std::make_unique<std::array<std::string, kCols>>(*other.own);
    }
}

Grid::Row& Grid::Row::operator=(const Row& other) {
    if (this != &other) {
        Row copy(other);
        *this = std::move(copy);
    }
    return *this;
}

void Grid::clearRow(uint32_t i) {
    // A row taken again comes back empty and without colour, like a new one: every text an
    // empty part at the start of an empty line, whatever offsets its cells had before (a
    // cell with a string of its own kept offsets into a line since compacted). Its strings
    // stay as storage.
    numberOf_[i] = -1;
    Row& row = pooled(i);
    row.back.fill(0);
    row.from.fill(0);
    row.size.fill(0);
    row.line.clear();
    row.kept = kAllKept;
}

std::string_view Grid::NumberTexts::text(int32_t n) const {
    const auto block = static_cast<size_t>(n) / kChunkRows;
    while (blocks_.size() <= block) {
        auto made = std::make_unique<Block>();
        text::DecimalCounter counter;
        const auto first = static_cast<long long>(blocks_.size() * kChunkRows);
        for (size_t k = 0; k < kChunkRows; ++k) {
            made->from[k] = static_cast<uint32_t>(made->digits.size());
            made->digits.append(counter.text(first + static_cast<long long>(k)));
        }
        made->from[kChunkRows] = static_cast<uint32_t>(made->digits.size());
        blocks_.push_back(std::move(made));
    }
    const Block& b = *blocks_[block];
    const size_t k = static_cast<size_t>(n) % kChunkRows;
    return std::string_view(b.digits).substr(b.from[k], b.from[k + 1] - b.from[k]);
}

std::string_view Grid::textOf(const Row& row, int c) {
    const auto at = static_cast<size_t>(c);
    if ((row.kept >> c & 1) != 0) {
        return {row.line.data() + row.from[at], row.size[at]};
    }
    return (*row.own)[at];
}

std::string& Grid::ownText(Row& row, int c) {
    if (!row.own) {
        row.own = std::make_unique<std::array<std::string, kCols>>();
    }
    const auto at = static_cast<size_t>(c);
    std::string& text = (*row.own)[at];
    if ((row.kept >> c & 1) != 0) {
        text.assign(row.line, row.from[at], row.size[at]);
        row.kept = static_cast<uint8_t>(row.kept & ~(1u << c));
    }
    return text;
}

void Grid::store(Row& row, int c, std::string_view text) {
    const auto at = static_cast<size_t>(c);
    if ((row.kept >> c & 1) == 0) {
        // A cell too long for the line's offsets keeps a string of its own.
        text::copyInto((*row.own)[at], text);
        return;
    }
    // A part nobody else uses and of the same length (a renumbered line) is overwritten in
    // place; anything else goes after the line.
    if (text.size() == row.size[at] && !text.empty()) {
        const size_t begin = row.from[at];
        const size_t end = begin + row.size[at];
        bool shared = false;
        for (int k = 0; k < kCols; ++k) {
            const auto other = static_cast<size_t>(k);
            if (k != c && (row.kept >> k & 1) != 0 && row.size[other] > 0 &&
                row.from[other] < end && begin < row.from[other] + row.size[other]) {
                shared = true;
            }
        }
        if (!shared) {
            std::copy(text.begin(), text.end(), row.line.begin() + static_cast<long>(begin));
            return;
        }
    }
    if (row.line.size() + text.size() > kMaxLine) {
        compact(row);
    }
    if (row.line.size() + text.size() > kMaxLine) {
        text::copyInto(ownText(row, c), text);
        return;
    }
    row.from[at] = static_cast<uint16_t>(row.line.size());
    row.size[at] = static_cast<uint16_t>(text.size());
    row.line.append(text);
    // Parts written over and over must not let the line grow without end.
    size_t used = 0;
    for (size_t k = 0; k < kCols; ++k) {
        used += (row.kept >> k & 1) != 0 ? row.size[k] : 0;
    }
    if (row.line.size() > 2 * used + 64) {
        compact(row);
    }
}

void Grid::compact(Row& row) {
    std::string line;
    for (int k = 0; k < kCols; ++k) {
        const auto at = static_cast<size_t>(k);
        if ((row.kept >> k & 1) != 0) {
            const std::string_view part(row.line.data() + row.from[at], row.size[at]);
            row.from[at] = static_cast<uint16_t>(line.size());
            line.append(part);
        }
    }
    row.line.swap(line);
}

// ---- The grid ------------------------------------------------------------------------------

Grid::Grid() : rows_(0) {
    grow(1);
}

Grid::Grid(const Grid& other)
    : pooled_(other.pooled_),
      order_(other.order_),
      numberOf_(other.numberOf_),
      rows_(other.rows_),
      row_(other.row_),
      col_(other.col_),
      topRow_(other.topRow_),
      bulk_(other.bulk_),
      bulkReset_(other.bulkReset_),
      dirtyFirst_(other.dirtyFirst_),
      dirtyLast_(other.dirtyLast_),
      observer_(other.observer_) {
    for (const auto& chunk : other.chunks_) {
        auto copy = std::make_unique<Row[]>(kChunkRows);
        std::copy(chunk.get(), chunk.get() + kChunkRows, copy.get());
        chunks_.push_back(std::move(copy));
    }
}

Grid& Grid::operator=(const Grid& other) {
    if (this != &other) {
        Grid copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Grid::~Grid() = default;

void Grid::beginBulk() {
    ++bulk_;
}

void Grid::endBulk() {
    if (--bulk_ > 0) {
        return;
    }
    const bool reset = std::exchange(bulkReset_, false);
    const int first = std::exchange(dirtyFirst_, 0);
    const int last = std::min(std::exchange(dirtyLast_, -1), rows_ - 1);
    if (reset) {
        announceReset();
    } else if (first <= last && observer_.rowsChanged) {
        observer_.rowsChanged(first, last);
    }
}

void Grid::announceReset() {
    if (observer_.beginReset) {
        observer_.beginReset();
    }
    if (observer_.endReset) {
        observer_.endReset();
    }
}

void Grid::gatherRemoved(int first, int last) {
    // The rows gathered in a bulk scope so far move up with the rows below them.
    const int count = last - first + 1;
    if (bulk_ > 0 && dirtyFirst_ <= dirtyLast_ && dirtyLast_ >= first) {
        if (dirtyFirst_ > last) {
            dirtyFirst_ -= count;
        } else {
            dirtyFirst_ = std::min(dirtyFirst_, first);
        }
        dirtyLast_ = std::max(dirtyLast_ - count, dirtyFirst_);
    }
}

void Grid::grow(int n) {
    for (auto r = static_cast<size_t>(rows_); r < static_cast<size_t>(n); ++r) {
        if (r < order_.size()) {
            clearRow(order_[r]);
            continue;
        }
        if (pooled_ == chunks_.size() * kChunkRows) {
            chunks_.push_back(std::make_unique<Row[]>(kChunkRows));
            numberOf_.resize(chunks_.size() * kChunkRows, -1);
        }
        clearRow(pooled_);
        order_.push_back(pooled_++);
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
    // Inside a bulk scope a table cut or grown is refilled: the scope ends in one reset.
    if (bulk_ > 0) {
        bulkReset_ = true;
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
    if (static_cast<size_t>(r) < order_.size()) {
        clearRow(order_[static_cast<size_t>(r)]);  // a row kept from an earlier table
        rows_ = r + 1;
    } else {
        grow(r + 1);
    }
    if (bulk_ > 0) {
        bulkReset_ = true;
    } else if (observer_.rowsInserted) {
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

void Grid::setTopRow(int r) {
    if (r < 1 || r >= rows()) {
        return;
    }
    topRow_ = r;
}

void Grid::badCell() {
    throw RuntimeError::gridSubscript();
}

void Grid::notifyCell(int r, int c) {
    if (bulk_ > 0) {
        if (dirtyFirst_ > dirtyLast_) {
            dirtyFirst_ = r;
            dirtyLast_ = r;
        } else {
            dirtyFirst_ = std::min(dirtyFirst_, r);
            dirtyLast_ = std::max(dirtyLast_, r);
        }
    } else if (observer_.cellChanged) {
        observer_.cellChanged(r, c);
    }
}

void Grid::setTextMatrix(int r, int c, std::string_view text) {
    checkCol(c);
    Row& row = rowAt(r);
    if (c == 0) {
        if (textView(r, 0) == text) {
            return;
        }
        int32_t& number = numberOf_[order_[static_cast<size_t>(r)]];
        // The row's own number is kept as a number: numbering the rows again finds it so.
        if (text == numbers_.text(r)) {
            number = r;
        } else {
            number = -1;
            store(row, 0, text);
        }
        notifyCell(r, 0);
        return;
    }
    if (textOf(row, c) != text) {
        store(row, c, text);
        notifyCell(r, c);
    }
}

void Grid::numberRow(int r) {
    (void)rowAt(r);  // an unknown row raises the grid's error
    int32_t& number = numberOf_[order_[static_cast<size_t>(r)]];
    if (number != r) {
        number = r;
        notifyCell(r, 0);
    }
}

void Grid::numberRows() {
    for (int r = 1; r < rows_; ++r) {
        int32_t& number = numberOf_[order_[static_cast<size_t>(r)]];
        if (number == r) {
            continue;
        }
        // A text of its own is read only here; a number given before needs no row.
        const bool same = number < 0 && textOf(rowAt(r), 0) == numbers_.text(r);
        number = r;
        if (!same) {
            notifyCell(r, 0);
        }
    }
}

void Grid::setRowTexts(int r, const std::array<std::string_view, kCols>& texts) {
    (void)rowAt(r);  // an unknown row raises the grid's error
    for (int c = 0; c < kCols; ++c) {
        setTextMatrix(r, c, texts[static_cast<size_t>(c)]);
    }
}

void Grid::setRowTexts(int r, std::string_view line,
                       const std::array<std::string_view, kCols>& texts) {
    Row& row = rowAt(r);
    if (bulk_ == 0 || row.kept != kAllKept || line.size() > kMaxLine) {
        // Views to tell cell by cell, cells with strings of their own, or a line too long for
        // the offsets: the texts go in one by one.
        setRowTexts(r, texts);
        return;
    }
    // A few bytes to spare: renumbering a line later appends nothing.
    if (row.line.capacity() < line.size() + 8) {
        row.line.reserve(line.size() + 8);
    }
    row.line.assign(line);
    numberOf_[order_[static_cast<size_t>(r)]] = -1;
    // Addresses compared as numbers: a text lies in the line or anywhere else.
    const auto base = reinterpret_cast<uintptr_t>(line.data());
    const size_t length = line.size();
    for (size_t c = 0; c < texts.size(); ++c) {
        const std::string_view text = texts[c];
        const uintptr_t offset = reinterpret_cast<uintptr_t>(text.data()) - base;
        size_t at = 0;
        if (text.size() <= length && offset <= length - text.size()) {
            at = offset;
        } else if (row.line.size() + text.size() <= kMaxLine) {
            at = row.line.size();  // a text from elsewhere goes after the line
            row.line.append(text);
        } else {
            row.from[c] = 0;
            row.size[c] = 0;
            text::copyInto(ownText(row, static_cast<int>(c)), text);
            continue;
        }
        row.from[c] = static_cast<uint16_t>(at);
        row.size[c] = static_cast<uint16_t>(text.size());
    }
}

void Grid::removeItem(int r) {
    if (r < 0 || r >= rows()) {
        throw RuntimeError::gridSubscript();
    }
    if (r == 0 || rows() <= 2) {
        throw RuntimeError::cannotRemoveLastRow();
    }
    cutRows(r, r);
}

void Grid::cutRows(int first, int last) {
    // Announced while the rows are still there; the removed rows go behind the table, where
    // their storage waits for reuse.
    const bool announce = bulk_ == 0 || !bulkReset_;
    if (announce) {
        gatherRemoved(first, last);
        if (observer_.rowsAboutToBeRemoved) {
            observer_.rowsAboutToBeRemoved(first, last);
        }
    }
    const auto at = order_.begin() + first;
    std::rotate(at, at + (last - first + 1), order_.begin() + rows_);
    rows_ -= last - first + 1;
    clampCurrent();
    if (announce && observer_.rowsRemoved) {
        observer_.rowsRemoved(first, last);
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
    // The runs of removed rows go bottom up, so that the numbers of the runs above stay
    // right, each announced as a removal; too many of them make one pass and one reset.
    std::vector<std::pair<int, int>> runs;
    for (int r = 1; r < rows() && r < static_cast<int>(remove.size()); ++r) {
        if (!remove[static_cast<size_t>(r)]) {
            continue;
        }
        if (!runs.empty() && runs.back().second == r - 1) {
            runs.back().second = r;
        } else {
            runs.emplace_back(r, r);
        }
    }
    if (runs.size() <= static_cast<size_t>(kMaxRemovalRuns)) {
        for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
            cutRows(run->first, run->second);
        }
        return;
    }
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
    if (bulk_ > 0) {
        bulkReset_ = true;
    } else {
        announceReset();
    }
}

}  // namespace vkl
