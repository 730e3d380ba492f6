#include <gtest/gtest.h>

#include "app/Form1.h"
#include "platform/Text.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

struct Window {
    explicit Window(int16_t code, int rows = 1) : form(host, "C:\\inst", code) {
        form.Table.setRows(rows);
        form.load();
    }
    std::string headerRow() const {
        std::string s;
        for (int c = 0; c < Grid::kCols; ++c) {
            s += form.Table.textMatrix(0, c) + "|";
        }
        return s;
    }
    test::ScriptedHost host;
    Form1 form;
};

TEST(AppForm1Load, ColoursHeaderAndNumberColumnAndNumbersRows) {
    Window w(1, 4);
    const Grid& t = w.form.Table;
    for (int r = 0; r < 4; ++r) {
        EXPECT_EQ(t.backColorAt(r, 0), kNormalColor) << r;
        EXPECT_EQ(t.backColorAt(r, 1), r == 0 ? kNormalColor : 0u) << r;  // the grid's own
        EXPECT_EQ(t.textMatrix(r, 0), r == 0 ? t.textMatrix(0, 0) : text::str(r));
    }
    EXPECT_EQ(w.form.defaultCellColor, t.backColor());
    const size_t buttons = w.form.toolbar.size();
    w.form.Table.setRow(2);
    w.form.Table.setCol(3);
    w.form.load();
    EXPECT_EQ(w.form.toolbar.size(), buttons);  // built anew, not appended
    // The header's first cell is made current, and colouring column 0 leaves its last row
    // current.
    EXPECT_EQ(test::cellAt(t.row(), t.col()), "3,0");
}

// Every caption but the designed one of addsub differs between the languages; a switch gives
// what a window started in that language shows and resets the title fields, not the cells.
TEST(AppForm1Texts, SwitchRewritesCaptionsHeaderAndTitleFieldsOnly) {
    const Window en(1);
    Window w(2, 3);
    Form1& f = w.form;
    for (auto field : test::kCaptions) {
        EXPECT_EQ(f.captions.*field == en.form.captions.*field, field == &Captions::addsub);
    }
    EXPECT_NE(f.Text3.text, en.form.Text3.text);
    f.Table.setTextMatrix(2, 1, "[Neue Zeile]");
    f.Table.setRows(5);  // rows added since load get the number column's colour too
    f.Text3.text = "From a file";
    for (int i = 0; i < 2; ++i) {  // the same language again still resets the fields
        f.Text2.text = "typed";
        f.toolbarClick("useeng");
        EXPECT_EQ(f.languageCode, 1);
        EXPECT_EQ(f.Text2.text + f.Text3.text, en.form.Text2.text + en.form.Text3.text);
    }
    EXPECT_EQ(w.headerRow(), en.headerRow());
    EXPECT_EQ(en.headerRow(), "Nr|Menu Title|Bmp file|C|Command Parameter|||");
    for (auto field : test::kCaptions) {
        EXPECT_EQ(f.captions.*field, en.form.captions.*field);
    }
    EXPECT_EQ(f.Table.textMatrix(2, 1), "[Neue Zeile]");  // table cells are not retitled
    EXPECT_EQ(f.Table.backColorAt(4, 0), kNormalColor);
    EXPECT_EQ(f.Table.backColorAt(4, 1), 0u);
    for (int16_t code : {0, 3}) {  // captions are German for 2 only
        f.setLanguage(2);
        f.setLanguage(code);
        EXPECT_EQ(f.captions.colapse, en.form.captions.colapse) << code;
        EXPECT_EQ(w.headerRow(), en.headerRow()) << code;
    }
}

TEST(AppForm1Texts, RetitlesOnlyExactPlaceholdersOfTheOtherLanguage) {
    Window w(1);
    TreeNodes& t = w.form.Treeview;
    t.add(NodeRef{}, TreeNodes::kLast, "Menu0", "Top Menu");
    t.add("Menu0", TreeNodes::kChild, "Menu1", "[New Item]");
    t.add("Menu1", TreeNodes::kChild, "Child1", "[New Item]");
    t.add("Menu0", TreeNodes::kChild, "Child2", "[new item]");
    t.add("Menu0", TreeNodes::kChild, "Child3", "[New Item] ");
    t.add("Menu0", TreeNodes::kChild, "Child4", "[Neue Zeile]");
    auto texts = [&] {  // in the order added
        std::string s;
        for (int i = 1; i <= t.count(); ++i) {
            s += t.text(t.byIndex(i)) + "|";
        }
        return s;
    };
    w.form.setLanguage(2);
    EXPECT_EQ(texts(), "Top Menu|[Neue Zeile]|[Neue Zeile]|[new item]|[New Item] |[Neue Zeile]|");
    w.form.setLanguage(3);  // any code but 2 writes English
    EXPECT_EQ(texts(), "Top Menu|[New Item]|[New Item]|[new item]|[New Item] |[New Item]|");
}

TEST(AppForm1Toolbar, KeysOtherThanTheLanguageKeysLeaveTextsAlone) {
    Window w(2);
    const std::string german = w.headerRow();
    for (const char* key : {"vklname", "USEENG", "Useeng", "useeng ", "", "showMenu"}) {
        w.form.toolbarClick(key);
        EXPECT_EQ(w.form.languageCode, 2) << key;
    }
    EXPECT_EQ(w.headerRow(), german);
    EXPECT_TRUE(w.host.messages.empty() && w.host.openRequests.empty() &&
                w.host.saveRequests.empty());
}

TEST(AppForm1Quit, AsksInMessageLanguageAndEndsOnlyOnYes) {
    // German unless exactly 1, whatever the captions say; one byte per umlaut.
    const std::string en = "[Confirm Quit] Changes not saved! Do you really want to quit !";
    const std::string de =
        "[VKL Editor Verlassen ?] \xC4nderungen nicht gespeichert ! - M\xF6"
        "chten Sie das Program verlassen ?";
    for (int16_t code : {1, 2, 3, 0}) {
        Window w(code);
        w.host.answers = {Answer::No, Answer::Yes};
        w.form.quitClick();
        EXPECT_EQ(w.host.endCount, 0);
        w.form.quitClick();
        EXPECT_EQ(w.host.endCount, 1);
        const std::string box = (code == 1 ? en : de) + " {yes/no ? no-first}\n";
        EXPECT_EQ(w.host.boxes(), box + box) << code;
    }
}

TEST(AppForm1SizeField, FiltersKeysAndCorrectsOnLeaving) {
    Window w(1);
    const int keys[] = {'0', '5', '9', 8, 13, '/', ':', '-', '.', 'a', ' ', 127, 10, 0xF6};
    for (size_t i = 0; i < std::size(keys); ++i) {  // the first five pass, the others are eaten
        int k = keys[i];
        w.form.sizeFieldKeyPress(k);
        EXPECT_EQ(k, i < 5 ? keys[i] : 0) << keys[i];
    }
    const std::vector<std::pair<std::string, std::string>> leave{
        {"0", "100"}, {"601", "100"}, {"600", "600"},  {"", ""},         {"00", "00"},
        {"50", "50"}, {"abc", "abc"}, {"700x", "100"}, {"600.5", "100"}, {" 999", "100"}};
    for (const auto& [typed, kept] : leave) {
        ComboBox field;
        field.text = typed;
        w.form.sizeFieldLeave(field);
        EXPECT_EQ(field.text, kept) << typed;
    }
}

}  // namespace
}  // namespace vkl
