#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Colors.h"

namespace vkl {

// The menu table as the logic sees it: rows x 7 columns of text with a back colour per cell.
// Row 0 is the fixed header row. Out-of-range cell access raises the grid's run-time error;
// out-of-range assignments of Row, Col and TopRow are refused and the old value stays.
class Grid {
  public:
    static constexpr int kCols = 7;

    // Changes are announced as they happen, except inside a bulk scope: there cell changes
    // gather into one range of rows, removals are still announced as removals, and rows added
    // or cut by setRows make the scope end in one reset. A scope that changed nothing
    // announces nothing.
    struct Observer {
        std::function<void()> beginReset;  // many rows change at once
        std::function<void()> endReset;
        std::function<void(int row, int col)> cellChanged;     // text or colour of one cell
        std::function<void(int first, int last)> rowsChanged;  // cells of these rows (0: header)
        std::function<void(int first, int last)> rowsInserted;
        std::function<void(int first, int last)> rowsAboutToBeRemoved;
        std::function<void(int first, int last)> rowsRemoved;
    };

    Grid();
    Grid(const Grid& other);
    Grid& operator=(const Grid& other);
    Grid(Grid&&) noexcept = default;
    Grid& operator=(Grid&&) noexcept = default;
    ~Grid();

    int rows() const { return rows_; }
    // Shrinking cuts rows off the end, growing appends empty rows. At least the header row stays.
    // Rows cut off keep their storage for the rows appended later, so refilling a big table
    // (a menu opened over another) allocates little.
    void setRows(int n);
    int cols() const { return kCols; }

    int row() const { return row_; }
    void setRow(int r) {
        if (r >= 0 && r < rows_) {
            row_ = r;
        }
    }
    int col() const { return col_; }
    void setCol(int c) {
        if (c >= 0 && c < kCols) {
            col_ = c;
        }
    }
    int topRow() const { return topRow_; }
    void setTopRow(int r);

    std::string textMatrix(int r, int c) const { return std::string(textView(r, c)); }
    // The same text as a view, without a copy: valid until the cell or its row changes.
    std::string_view textView(int r, int c) const {
        checkCol(c);
        const Row& row = rowAt(r);
        if (c == 0) {
            if (const int32_t n = numberOf_[order_[static_cast<size_t>(r)]]; n >= 0) {
                return numbers_.text(n);
            }
        }
        return textOf(row, c);
    }
    // The text is copied into the grid.
    void setTextMatrix(int r, int c, std::string_view text);
    // Sets the texts of all columns of row r at once, as setTextMatrix column by column would.
    void setRowTexts(int r, const std::array<std::string_view, kCols>& texts);
    // The same for texts that are mostly parts of one line (the fields of a line read from a
    // file): the row keeps one copy of the line and its cells are parts of it.
    void setRowTexts(int r, std::string_view line,
                     const std::array<std::string_view, kCols>& texts);
    // The text of the current cell.
    std::string text() const { return textMatrix(row_, col_); }
    void setText(std::string_view t) { setTextMatrix(row_, col_, t); }

    // The back colour of the current cell; an unset cell reads 0.
    Color cellBackColor() const { return backColorAt(row_, col_); }
    void setCellBackColor(Color c) { setBackColorAt(row_, col_, c); }
    // Inline: reading colours two cells per line.
    Color backColorAt(int r, int c) const {
        checkCol(c);
        return rowAt(r).back[static_cast<size_t>(c)];
    }
    void setBackColorAt(int r, int c, Color color) {
        checkCol(c);
        Color& target = rowAt(r).back[static_cast<size_t>(c)];
        if (target != color) {
            target = color;
            notifyCell(r, c);
        }
    }

    // The grid's own back colour (what the window paints where a cell has none of its own).
    Color backColor() const { return kWindowColor; }

    // Column 0 of every data row shows the row's number, announced for the rows whose text
    // changes. The rows keep no text for it: a row keeps the number it was given until its
    // column 0 is written again, wherever removals move it, so numbering 32,000 lines anew
    // after a removal touches none of them.
    void numberRows();
    // The same for row r alone: what the reader does for every line it adds.
    void numberRow(int r);

    // Removes one data row; the grid refuses to remove its last data row.
    void removeItem(int r);
    // Removes every data row r with remove[r] true in one pass (entries beyond the rows and
    // entry 0 are ignored). Same refusal as removeItem when no data row would be left.
    void removeRows(const std::vector<bool>& remove);

    // Appends one empty data row and returns its number; used by the reader, which adds
    // thousands of rows and announces them as one reset.
    int appendRow();

    void setObserver(Observer o) { observer_ = std::move(o); }
    const Observer& observer() const { return observer_; }
    // Brackets bulk work so that a view hears few notices instead of one per cell.
    void beginBulk();
    void endBulk();
    // More runs of removed rows than this are announced as one reset: each removal notice
    // costs a view a pass over its rows.
    static constexpr int kMaxRemovalRuns = 32;

  private:
    // A row keeps the texts of its cells in one string, line: cell c is the part [from[c],
    // from[c] + size[c]) of it while bit c of kept is set. A text too long for the 16-bit
    // offsets goes into the cell's own string (own) instead, and the cell keeps using it.
    struct Row {
        std::array<Color, kCols> back{};
        uint8_t kept = 0;
        std::array<uint16_t, kCols> from{};
        std::array<uint16_t, kCols> size{};
        std::string line;
        std::unique_ptr<std::array<std::string, kCols>> own;

        Row() = default;
        Row(const Row& other);
        Row& operator=(const Row& other);
        Row(Row&&) noexcept = default;
        Row& operator=(Row&&) noexcept = default;
        ~Row() = default;
    };
    static constexpr uint8_t kAllKept = (1u << kCols) - 1;
    static constexpr size_t kChunkRows = 1024;

    // The decimal texts of 0, 1, 2 and on, made as far as they are asked for, in blocks that
    // never move: a view of one stays valid as long as the grid. A copied grid makes its own.
    class NumberTexts {
      public:
        std::string_view text(int32_t n) const;

      private:
        struct Block {
            std::string digits;
            std::array<uint32_t, kChunkRows + 1> from{};
        };
        mutable std::vector<std::unique_ptr<Block>> blocks_;
    };

    // The row of table row r; raises the grid's error for a row that does not exist.
    Row& rowAt(int r) const {
        if (r < 0 || r >= rows_) {
            badCell();
        }
        return pooled(order_[static_cast<size_t>(r)]);
    }
    Row& pooled(uint32_t i) const { return chunks_[i / kChunkRows][i % kChunkRows]; }
    static void checkCol(int c) {
        if (c < 0 || c >= kCols) {
            badCell();
        }
    }
    [[noreturn]] static void badCell();
    static std::string_view textOf(const Row& row, int c);
    static std::string& ownText(Row& row, int c);  // the cell's own string, made if need be
    static void store(Row& row, int c, std::string_view text);
    static void compact(Row& row);
    void clampCurrent();
    void notifyCell(int r, int c);
    // Takes rows first..last out, announced as a removal unless a reset is due anyway.
    void cutRows(int first, int last);
    // Moves the rows gathered in a bulk scope past a removal of rows first..last.
    void gatherRemoved(int first, int last);
    void announceReset();
    // Takes row i of the pool for a new table row: empty and without colour.
    void clearRow(uint32_t i);
    void grow(int n);

    // Rows are made in chunks and never move. Table row r is pooled(order_[r]) for r < rows_;
    // the pooled rows named after that are storage kept for reuse, so removing rows moves
    // entries of order_, not rows.
    std::vector<std::unique_ptr<Row[]>> chunks_;
    uint32_t pooled_ = 0;
    std::vector<uint32_t> order_;
    // Per pooled row: the number column 0 shows, or -1 when it shows the text stored for it.
    std::vector<int32_t> numberOf_;
    NumberTexts numbers_;
    int rows_ = 1;
    int row_ = 0;
    int col_ = 0;
    int topRow_ = 1;
    int bulk_ = 0;
    // What a bulk scope changed so far: rows added or cut (a reset at the end), the rows whose
    // cells changed, and whether Row, Col or TopRow moved.
    bool bulkReset_ = false;
    int dirtyFirst_ = 0;
    int dirtyLast_ = -1;
    Observer observer_;
};

}  // namespace vkl
