#include <gtest/gtest.h>

#include <string>

#include "app/Form1.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

// A window with three lines and their nodes, labelled "T" unlike the cells; the editors start
// hidden as after load.
struct Editing : test::Window {
    Editing() : test::Window(test::items(3)) {
        form.Text1.visible = false;
        form.Combo1.visible = false;
        for (int r = 1; r <= 3; ++r) {
            form.Table.setTextMatrix(r, 4, std::string("param ") + std::to_string(r));
            form.Treeview.setText(test::Window::node("Child" + std::to_string(r)), "T");
        }
    }
    // A key typed on the grid at (row, col).
    int start(int row, int col, int key) {
        moveTo(row, col);
        form.tableKeyPress(key);
        return key;
    }
    // Keys typed into the text box; the box inserts what the filter lets through at the caret.
    void type(const std::string& keys) {
        for (char ch : keys) {
            int key = static_cast<unsigned char>(ch);
            form.text1KeyPress(key);
            if (key >= 32 && form.Text1.visible) {
                std::string t = form.Text1.text;
                const size_t at = std::min(t.size(), static_cast<size_t>(form.Text1.selStart));
                t.insert(at, 1, static_cast<char>(key));
                form.Text1.selStart = static_cast<int>(at) + 1;
                form.text1Change(t);
            }
        }
    }
    std::string node(int r) const { return text("Child" + std::to_string(r)); }
    // The text box (hidden "-"; shown "T", with the focus "F") with its text and caret, the
    // drop-down ("C" when shown) and the current cell.
    std::string editors() const {
        const TextBox& t = form.Text1;
        const std::string box =
            !t.visible ? (t.hasFocus ? "-F" : "-")
                       : (t.hasFocus ? "F '" : "T '") + t.text + "' " + std::to_string(t.selStart);
        return box + (form.Combo1.visible ? " C " : " - ") +
               test::cellAt(form.Table.row(), form.Table.col());
    }
};

TEST(TableEdit, StartingAnEditReplacesOrAppendsByKey) {
    Editing e;
    EXPECT_EQ(e.start(2, 1, 'a'), 'A');
    EXPECT_EQ(e.editors(), "F 'A' 1 - 2,1");
    EXPECT_EQ(test::cellAt(e.form.edit.row, e.form.edit.col), "2,1");
    EXPECT_EQ(e.node(2), "A");  // the title reaches the node as it is typed

    e.form.commitText();
    e.start(3, 4, ' ');
    EXPECT_EQ(e.editors(), "F 'param 3' 7 - 3,4");  // caret at the end
    EXPECT_EQ(e.node(3), "T");                      // other columns leave the node alone

    // The action column opens the drop-down; the text box stays as it was, the cell too.
    e.form.edit.typedCount = 3;
    e.start(1, 3, 'x');
    EXPECT_EQ(e.editors(), "F 'param 3' 7 C 1,3");
    EXPECT_EQ(e.cell(1, 3) + std::to_string(e.form.edit.typedCount), "0");
    e.start(1, 2, '5');  // a text edit hides the drop-down
    EXPECT_EQ(e.editors(), "F '5' 1 - 1,2");
}

TEST(TableEdit, EnterCommitsAndMovesRight) {
    Editing e;
    e.start(1, 1, 'a');
    e.type("bc\r");
    EXPECT_EQ(e.editors(), "- - 1,2");
    EXPECT_EQ(e.cell(1, 1) + e.node(1), "AbcAbc");

    e.start(2, 6, 'q');  // the last column: the grid refuses to move further
    e.type("\r");
    EXPECT_EQ(e.editors(), "- - 2,6");
    EXPECT_EQ(e.cell(2, 6), "Q");

    e.form.Text1.text = "stray";
    e.form.commitText();  // nothing to commit while the box is hidden
    EXPECT_EQ(e.cell(2, 6), "Q");
}

TEST(TableEdit, BitmapColumnTakesFourUpperCaseKeys) {
    Editing e;
    e.start(2, 2, 'x');
    e.type("abcd");
    EXPECT_EQ(e.editors(), "F 'XABCD' 5 - 2,2");
    int fifth = 'e';
    e.form.text1KeyPress(fifth);
    EXPECT_EQ(fifth, 0);
    EXPECT_EQ(e.form.Table.col(), 3);
    EXPECT_EQ(e.cell(2, 2) + e.node(2), "XABCDXABCD");  // Enter on the bitmap column labels it

    e.start(1, 2, 'y');  // Backspace gives a key back
    e.type("ab\bcde");
    EXPECT_TRUE(e.form.Text1.visible);
    EXPECT_EQ(e.form.edit.typedCount, 4);
    e.type("f");
    EXPECT_EQ(e.form.Table.col(), 3);

    // Enter as the fifth key runs the Enter steps twice: once as Enter, once for the limit.
    e.start(3, 2, 'z');
    e.type("1234\r");
    EXPECT_EQ(e.form.Table.col(), 4);
    EXPECT_EQ(e.cell(3, 2), "Z1234");
}

TEST(TableEdit, DropDownWritesCodesAndRepeatsTheLastOne) {
    Editing e;
    e.moveTo(2, 3);
    e.form.tableMouseDown(1);  // nothing chosen yet: the click changes nothing
    EXPECT_EQ(e.cell(2, 3), "");

    // Labels match exactly: "pkg" is none and writes the last code again.
    const std::pair<const char*, const char*> choices[] = {
        {"PKG", "LOS"}, {"WM", "LWM"}, {"MM", "LMM"}, {"Dialog", "D"}, {"pkg", "D"}};
    for (const auto& [label, code] : choices) {
        e.start(1, 3, 'p');
        e.form.Table.setRow(3);  // the code goes to the cell where the edit started
        e.form.combo1Click(label);
        EXPECT_EQ(e.cell(1, 3) + "/" + e.form.edit.lastCode, std::string(code) + "/" + code);
        EXPECT_FALSE(e.form.Combo1.visible);
    }
    e.form.Table.setRow(2);
    e.form.tableMouseDown(2);  // the last code chosen stamps another line
    EXPECT_EQ(e.cell(2, 3), "D");
    e.form.Table.setCol(1);
    e.form.tableMouseDown(1);
    EXPECT_EQ(e.cell(2, 1), "T2");
}

TEST(TableEdit, EscapeDropsTheEditAndGivesTheTitleBack) {
    Editing e;
    for (const int col : {1, 4}) {
        const std::string cell = e.cell(2, col);
        e.start(2, col, 'n');
        e.type("ew");
        EXPECT_EQ(e.node(2), col == 1 ? "New" : "T");
        e.form.text1Cancel();
        EXPECT_EQ(e.editors(), "- - 2," + std::to_string(col));
        EXPECT_EQ(e.cell(2, col) + e.node(2), cell + "T");
        e.form.commitText();  // nothing is left to commit
        EXPECT_EQ(e.cell(2, col), cell);
    }
    // The drop-down hides and writes nothing.
    e.start(3, 3, 'p');
    e.form.combo1Cancel();
    EXPECT_FALSE(e.form.Combo1.visible);
    EXPECT_EQ(e.cell(3, 3), "");
}

}  // namespace
}  // namespace vkl
