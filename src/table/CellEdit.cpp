#include "table/CellEdit.h"

#include <algorithm>

#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"

namespace vkl::table {

int upperLetter(int keyAscii) {
    return keyAscii >= 'a' && keyAscii <= 'z' ? keyAscii - 32 : keyAscii;
}

std::string keyText(int keyAscii) {
    if (keyAscii > 255) {
        throw RuntimeError(5, "Invalid procedure call or argument");
    }
    if (keyAscii < 0) {
        const unsigned code = static_cast<unsigned>(keyAscii) & 0xFFFFu;
        std::string both;
        both.push_back(static_cast<char>(code >> 8));
        both.push_back(static_cast<char>(code & 0xFFu));
        return both;
    }
    return std::string(1, static_cast<char>(keyAscii));
}

EditOpening openEdit(const Grid& grid, int keyAscii) {
    EditOpening opening;
    if (grid.col() == kActionColumn) {
        opening.dropDown = true;
        return opening;
    }
    if (keyAscii > 32 || keyAscii < 0) {
        opening.text = keyText(keyAscii);
        opening.selStart = 1;
    } else {
        opening.text = grid.text();
        // The caret goes to position 1000, which a text box cuts to the end of its text.
        opening.selStart = std::min(1000, static_cast<int>(opening.text.size()));
    }
    return opening;
}

NodeRef nodeOfRow(const TreeNodes& nodes, int row) {
    return nodes.find(keys::item(row));
}

void enterLabel(const Grid& grid, TreeNodes& nodes, const std::string& editorText) {
    if (grid.col() != kBitmapColumn || nodes.count() == 0) {
        return;
    }
    const NodeRef node = nodeOfRow(nodes, grid.row());
    if (!node.isNull()) {
        nodes.setText(node, editorText);
    }
}

int16_t countKey(int16_t typedCount, int keyAscii) {
    return add16(typedCount, keyAscii == kKeyBackspace ? -1 : 1);
}

bool bitmapKeyFilter(int& keyAscii, int16_t typedCount) {
    keyAscii = upperLetter(keyAscii);
    if (typedCount > kBitmapKeyLimit) {
        keyAscii = 0;
        return true;
    }
    return false;
}

void titleToTree(TreeNodes& nodes, const EditState& edit, const std::string& editorText) {
    if (edit.col != kTitleColumn) {
        return;
    }
    const NodeRef node = nodeOfRow(nodes, edit.row);
    if (!node.isNull()) {
        nodes.setText(node, editorText);
    }
}

void commitCode(Grid& grid, EditState& edit, const std::optional<std::string>& code) {
    if (!code) {
        return;
    }
    grid.setTextMatrix(edit.row, edit.col, *code);
    edit.lastCode = *code;
}

void repeatCode(Grid& grid, const std::string& lastCode) {
    if (grid.col() == kActionColumn && !lastCode.empty()) {
        grid.setText(lastCode);
    }
}

}  // namespace vkl::table
