#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Grid.h"
#include "platform/TreeNodes.h"

// The rules of editing a cell in place. The editors themselves (the text box over a cell and the
// action drop-down) belong to the window; these functions decide what they show and what
// reaches the grid and the tree.
namespace vkl::table {

inline constexpr int kKeyBackspace = 8;
inline constexpr int kKeyEnter = 13;
inline constexpr int kTitleColumn = 1;
inline constexpr int kBitmapColumn = 2;
inline constexpr int kActionColumn = 3;
inline constexpr int kParameterColumn = 4;
// Keys the bitmap column takes after the one that started the edit.
inline constexpr int kBitmapKeyLimit = 4;

// What an edit in place remembers: the cell it started on, the keys typed since, the last code
// chosen from the drop-down, and the label the row's item node had when a title edit started
// (an edit dropped by Escape gives it back).
struct EditState {
    int16_t col = 0;
    int16_t row = 0;
    int16_t typedCount = 0;
    std::string lastCode;
    std::optional<std::string> labelBefore;
};

// Lower-case "a".."z" become upper case; every other code is returned as it is.
int upperLetter(int keyAscii);

// The text of a typed character: one byte for 0..255, the two bytes of a double-byte
// character for a negative code. Codes above 255 raise run-time error 5.
std::string keyText(int keyAscii);

// What a key typed on the grid opens (keyAscii already passed through upperLetter).
struct EditOpening {
    bool dropDown = false;  // the action column: the drop-down opens, nothing is typed
    std::string text;       // the text box's text
    int selStart = 0;       // caret position
};
// A printable key (above 32, or a double-byte one) replaces the cell's text and the caret
// goes behind it; space, Enter and control keys open the cell's text with the caret at the
// end (position 1000, as far as the text reaches).
EditOpening openEdit(const Grid& grid, int keyAscii);

// The item node of a table row ("Child" + row); null when the row has none.
NodeRef nodeOfRow(const TreeNodes& nodes, int row);

// Enter in the editor: when the current column is the bitmap column and the tree holds nodes,
// the node of the current row takes the editor's text. The test is on the bitmap column, not on
// the title column; titles reach the tree through titleToTree.
void enterLabel(const Grid& grid, TreeNodes& nodes, const std::string& editorText);

// Typed count after a key: one less for Backspace, one more for any other key (16-bit).
int16_t countKey(int16_t typedCount, int keyAscii);

// The bitmap column's filter for a key already counted: letters become upper case; beyond the
// key limit the key is discarded (set to 0) and true tells the caller to run the Enter steps.
bool bitmapKeyFilter(int& keyAscii, int16_t typedCount);

// A title edit renames the item node of the edited row; edits of other columns do nothing.
void titleToTree(TreeNodes& nodes, const EditState& edit, const std::string& editorText);

// The drop-down's choice: a known code goes into the edited cell and is remembered as the last
// code; no code (a text that names no entry) writes nothing.
void commitCode(Grid& grid, EditState& edit, const std::optional<std::string>& code);

// A mouse press on the action column stamps the last chosen code into the current cell.
void repeatCode(Grid& grid, const std::string& lastCode);

}  // namespace vkl::table
