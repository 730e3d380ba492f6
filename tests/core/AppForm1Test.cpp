#include <gtest/gtest.h>

#include "app/Form1.h"
#include "platform/Text.h"
#include "support/ScriptedHost.h"

namespace vkl {
namespace {

struct Window {
    explicit Window(int16_t code, int rows = 1) : form(host, "C:\\inst", code) {
        form.Table.setRows(rows);
        form.load();
    }
    test::ScriptedHost host;
    Form1 form;
};

TEST(AppForm1Load, ColoursHeaderAndNumberColumnAndNumbersRows) {
    Window w(1, 4);
    const Grid& t = w.form.Table;
    for (int c = 0; c < Grid::kCols; ++c) {
        EXPECT_EQ(t.backColorAt(0, c), kNormalColor) << c;
    }
    for (int r = 1; r < 4; ++r) {
        EXPECT_EQ(t.backColorAt(r, 0), kNormalColor) << r;
        EXPECT_EQ(t.textMatrix(r, 0), text::str(r));
        EXPECT_EQ(t.backColorAt(r, 1), 0u) << r;  // data cells keep the grid's own colour
    }
    EXPECT_EQ(w.form.defaultCellColor, t.backColor());
    EXPECT_EQ(t.textMatrix(0, 4), "Command Parameter");
    w.form.Table.setRow(2);
    w.form.Table.setCol(3);
    w.form.load();
    EXPECT_EQ(w.form.toolbar.size(), 9u);  // built anew, not appended
    // The header's first cell is made current, and colouring column 0 leaves its last row
    // current.
    EXPECT_EQ(t.row() * 10 + t.col(), 30);
}

TEST(AppForm1Texts, SwitchRewritesCaptionsHeaderAndTitleFieldsOnly) {
    Window w(2, 3);
    Form1& f = w.form;
    EXPECT_EQ(f.Table.textMatrix(0, 3), "A");
    EXPECT_EQ(f.captions.remove2, "Loeschen mit allem darunter");
    EXPECT_EQ(f.Text3.text, "Hier eigenen Info Text eintragen !");
    f.Table.setTextMatrix(2, 1, "[Neue Zeile]");
    f.Table.setRows(5);  // rows added since load get the number column's colour too
    f.Text2.text = "My menu";
    f.Text3.text = "From a file";
    f.toolbarClick("useeng");
    EXPECT_EQ(f.languageCode, 1);
    EXPECT_EQ(f.Table.textMatrix(0, 1), "Menu Title");
    EXPECT_EQ(f.captions.addimage, "Add Image File");
    EXPECT_EQ(f.captions.addsub, "Add Sub menu");  // never retitled
    EXPECT_EQ(f.Text2.text, "Write here your own menu title !");
    EXPECT_EQ(f.Text3.text, "Write here your own ABOUT text !");
    EXPECT_EQ(f.Table.textMatrix(2, 1), "[Neue Zeile]");  // table cells are not retitled
    EXPECT_EQ(f.Table.backColorAt(4, 0), kNormalColor);
    EXPECT_EQ(f.Table.backColorAt(4, 1), 0u);

    f.Text2.text = "typed again";
    f.toolbarClick("useeng");  // the same language again still resets the fields
    EXPECT_EQ(f.Text2.text, "Write here your own menu title !");
    for (int16_t code : {0, 3}) {  // captions are German for 2 only
        f.setLanguage(2);
        f.setLanguage(code);
        EXPECT_EQ(f.captions.colapse, "Collapse") << code;
        EXPECT_EQ(f.Table.textMatrix(0, 2), "Bmp file") << code;
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
    w.form.setLanguage(2);
    auto text = [&](const char* key) { return t.text(t.byKey(key)); };
    EXPECT_EQ(text("Menu1"), "[Neue Zeile]");
    EXPECT_EQ(text("Child1"), "[Neue Zeile]");
    EXPECT_EQ(text("Child2"), "[new item]");
    EXPECT_EQ(text("Child3"), "[New Item] ");
    EXPECT_EQ(text("Child4"), "[Neue Zeile]");
    w.form.setLanguage(3);  // any code but 2 writes English
    EXPECT_EQ(text("Child1"), "[New Item]");
    EXPECT_EQ(text("Child4"), "[New Item]");
    EXPECT_EQ(text("Menu0"), "Top Menu");
}

TEST(AppForm1Toolbar, KeysOtherThanTheLanguageKeysLeaveTextsAlone) {
    Window w(2);
    for (const char* key : {"vklname", "USEENG", "Useeng", "useeng ", "", "showMenu"}) {
        w.form.toolbarClick(key);
        EXPECT_EQ(w.form.languageCode, 2) << key;
    }
    EXPECT_EQ(w.form.Table.textMatrix(0, 1), "Menu Titel");
    EXPECT_TRUE(w.host.messages.empty());
    EXPECT_TRUE(w.host.openRequests.empty());
    EXPECT_TRUE(w.host.saveRequests.empty());
}

TEST(AppForm1Quit, AsksInMessageLanguageAndEndsOnlyOnYes) {
    Window en(1);
    en.host.answers = {Answer::No, Answer::Yes};
    en.form.quitClick();
    EXPECT_EQ(en.host.endCount, 0);
    en.form.quitClick();
    EXPECT_EQ(en.host.endCount, 1);
    ASSERT_EQ(en.host.messages.size(), 2u);
    const MessageBox& m = en.host.messages[1];
    EXPECT_EQ(m.prompt, "Changes not saved! Do you really want to quit !");
    EXPECT_EQ(m.title, "Confirm Quit");
    EXPECT_TRUE(m.buttons == Buttons::YesNo && m.questionIcon && m.defaultNo);

    for (int16_t code : {2, 3, 0}) {  // German unless exactly 1, whatever the captions say
        Window w(code);
        w.host.answers = {Answer::Yes};
        w.form.quitClick();
        EXPECT_EQ(w.host.endCount, 1);
        ASSERT_EQ(w.host.messages.size(), 1u);
        EXPECT_EQ(w.host.messages[0].title, "VKL Editor Verlassen ?");
        EXPECT_EQ(text::cp1252ToUtf8(w.host.messages[0].prompt),
                  "Änderungen nicht gespeichert ! - Möchten Sie das Program verlassen ?");
        EXPECT_EQ(w.host.messages[0].prompt.size(), 68u);  // one byte per umlaut
    }
}

TEST(AppForm1SizeField, FiltersKeysAndCorrectsOnLeaving) {
    Window w(1);
    for (int key : std::initializer_list<int>{'0', '5', '9', 8, 13}) {
        int k = key;
        w.form.sizeFieldKeyPress(k);
        EXPECT_EQ(k, key);
    }
    for (int key : std::initializer_list<int>{'/', ':', '-', '.', 'a', ' ', 127, 10, 0xF6}) {
        int k = key;
        w.form.sizeFieldKeyPress(k);
        EXPECT_EQ(k, 0) << key;
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
