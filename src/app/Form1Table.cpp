#include "app/Form1.h"
#include "menufile/ActionCode.h"
#include "platform/Int16.h"
#include "table/CellEdit.h"
#include "table/Pickers.h"
#include "table/RowOps.h"

namespace vkl {

namespace {

// Enter in the editor: the bitmap column's node label, focus back to the grid (which commits the
// editor before the current cell moves), then one cell to the right. Past the last column the
// grid refuses the move and the current cell stays.
void enterSteps(Form1& form) {
    table::enterLabel(form.Table, form.Treeview, form.Text1.text);
    form.Text1.hasFocus = false;
    form.commitText();
    form.Table.setCol(form.Table.col() + 1);
}

}  // namespace

void Form1::addEmptyLine() {
    table::addEmptyLine(Table, Treeview, tree, addedLines, normalColor, captionsInGerman());
}

void Form1::deleteMarkedLines() {
    table::deleteMarkedLines(Table, Treeview, markingColor, defaultCellColor, normalColor);
}

void Form1::removeLineOfNode(const std::string& nodeKey) {
    table::removeLineOfNode(Table, Treeview, nodeKey, defaultCellColor, normalColor);
}

void Form1::tableKeyPress(int& keyAscii) {
    edit.typedCount = 0;
    edit.col = checked16(Table.col());
    edit.row = checked16(Table.row());
    keyAscii = table::upperLetter(keyAscii);
    const table::EditOpening opening = table::openEdit(Table, keyAscii);
    if (opening.dropDown) {
        // A code edit leaves a visible text box as it is.
        Combo1.visible = true;
        return;
    }
    Combo1.visible = false;
    edit.labelBefore.reset();
    if (edit.col == table::kTitleColumn) {
        if (const NodeRef node = table::nodeOfRow(Treeview, edit.row); !node.isNull()) {
            edit.labelBefore = Treeview.text(node);
        }
    }
    Text1.text = opening.text;
    Text1.selStart = opening.selStart;
    Text1.selLength = 0;
    Text1.visible = true;
    Text1.hasFocus = true;
    // Setting the text box's text is a change of it like any typed key.
    text1Change(Text1.text);
}

void Form1::text1KeyPress(int& keyAscii) {
    if (keyAscii == table::kKeyEnter) {
        enterSteps(*this);
    }
    edit.typedCount = table::countKey(edit.typedCount, keyAscii);
    if (edit.col == table::kBitmapColumn && table::bitmapKeyFilter(keyAscii, edit.typedCount)) {
        enterSteps(*this);
    }
}

void Form1::text1Change(const std::string& text) {
    Text1.text = text;
    table::titleToTree(Treeview, edit, text);
}

void Form1::text1Caret(int selStart, int selLength) {
    Text1.selStart = selStart;
    Text1.selLength = selLength;
}

void Form1::tableCurrentChanged(int row, int col) {
    commitText();
    Table.setRow(row);
    Table.setCol(col);
}

void Form1::tableScrolled(int topRow) {
    Table.setTopRow(topRow);
}

void Form1::text1Click() {
    Text1.selStart = 0;
    Text1.selLength = static_cast<int>(Text1.text.size());
}

void Form1::commitText() {
    if (!Text1.visible) {
        return;
    }
    Table.setText(Text1.text);
    Text1.visible = false;
}

void Form1::text1Cancel() {
    if (!Text1.visible) {
        return;
    }
    Text1.visible = false;
    Text1.hasFocus = false;
    // The title went to the node with every key; the label it had comes back.
    if (edit.col == table::kTitleColumn && edit.labelBefore) {
        const NodeRef node = table::nodeOfRow(Treeview, edit.row);
        if (!node.isNull()) {
            Treeview.setText(node, *edit.labelBefore);
        }
    }
    edit.labelBefore.reset();
}

void Form1::combo1Browse(const std::string& text) {
    Combo1.text = text;
}

void Form1::combo1Cancel() {
    Combo1.visible = false;
}

void Form1::commitEditors() {
    if (Combo1.visible) {
        combo1Click(Combo1.text);
    }
    if (Text1.visible) {
        Text1.hasFocus = false;
        commitText();
    }
}

void Form1::combo1Click(const std::string& text) {
    Combo1.text = text;
    table::commitCode(Table, edit, codeForLabel(text));
    Combo1.visible = false;
}

void Form1::tableMouseDown(int) {
    table::clearSelection(Table, highlightColor, defaultCellColor);
    table::repeatCode(Table, edit.lastCode);
}

void Form1::tableClick() {
    table::toggleMark(Table, Treeview, markingColor, defaultCellColor, normalColor);
    // The resolved path is only worked out; what the user sees are the message boxes.
    (void)table::checkPackagePath(Table, host, Datadir.text);
}

void Form1::tableDblClick() {
    table::pickForCell(Table, host);
}

void Form1::tableDragDrop(const std::string& sourceName, int targetRow) {
    table::dropOnGrid(Table, host, sourceName, targetRow, holeType);
}

}  // namespace vkl
