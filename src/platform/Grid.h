#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "platform/Colors.h"

namespace vkl {

// The menu table as the logic sees it: rows x 7 columns of text with a back colour per cell.
// Row 0 is the fixed header row. Out-of-range cell access raises the grid's run-time error;
// out-of-range assignments of Row, Col and TopRow are refused and the old value stays.
class Grid {
public:
    static constexpr int kCols = 7;

    struct Observer {
        std::function<void()> beginReset;  // many rows change at once
        std::function<void()> endReset;
        std::function<void(int row, int col)> cellChanged;  // text or colour of one cell
        std::function<void(int first, int last)> rowsInserted;
        std::function<void(int first, int last)> rowsAboutToBeRemoved;
        std::function<void(int first, int last)> rowsRemoved;
        std::function<void()> currentChanged;  // Row, Col or TopRow
    };

    Grid();

    int rows() const { return static_cast<int>(cells_.size()); }
    // Shrinking cuts rows off the end, growing appends empty rows. At least the header row stays.
    void setRows(int n);
    int cols() const { return kCols; }

    int row() const { return row_; }
    void setRow(int r);
    int col() const { return col_; }
    void setCol(int c);
    int topRow() const { return topRow_; }
    void setTopRow(int r);

    const std::string& textMatrix(int r, int c) const;
    void setTextMatrix(int r, int c, std::string text);
    // The text of the current cell.
    const std::string& text() const { return textMatrix(row_, col_); }
    void setText(std::string t) { setTextMatrix(row_, col_, std::move(t)); }

    // The back colour of the current cell; an unset cell reads 0.
    Color cellBackColor() const { return backColorAt(row_, col_); }
    void setCellBackColor(Color c) { setBackColorAt(row_, col_, c); }
    Color backColorAt(int r, int c) const;
    void setBackColorAt(int r, int c, Color color);

    // The grid's own back colour (what the window paints where a cell has none of its own).
    Color backColor() const { return kWindowColor; }

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
    // Brackets bulk work so that a view hears one reset instead of one notice per row.
    void beginBulk();
    void endBulk();

private:
    struct Cell {
        std::string text;
        Color back = 0;
    };
    using Row = std::array<Cell, kCols>;

    const Cell& cell(int r, int c) const;
    Cell& cell(int r, int c);
    void clampCurrent();
    void notifyCell(int r, int c);

    std::vector<Row> cells_;
    int row_ = 0;
    int col_ = 0;
    int topRow_ = 1;
    int bulk_ = 0;
    Observer observer_;
};

}  // namespace vkl
