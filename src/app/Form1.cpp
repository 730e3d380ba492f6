#include "app/Form1.h"

#include "app/Texts.h"
#include "menufile/ActionCode.h"
#include "platform/Text.h"

namespace vkl {

namespace {

ToolbarButton button(std::string_view key, std::string_view image, std::string_view tooltip) {
    ToolbarButton b;
    b.key = key;
    b.image = image;
    b.tooltip = tooltip;
    b.description = tooltip;
    return b;
}

ToolbarButton separator() {
    ToolbarButton b;
    b.style = ToolbarButton::Style::Separator;
    return b;
}

// Room for the name of the file being edited.
ToolbarButton fileNamePlaceholder() {
    ToolbarButton b;
    b.key = "vklname";
    b.style = ToolbarButton::Style::Placeholder;
    b.tooltip = texts::kTipVklName;
    b.description = texts::kVklNameDescription;
    b.widthTwips = 14040;
    return b;
}

}  // namespace

Form1::Form1(Host& h, std::string install, int16_t code)
    : host(h), installDir(std::move(install)), languageCode(code) {}

void Form1::load() {
    // The menu-bar groups that carry the pop-up menus, the language pictures, the other
    // picture boxes and the window style bit have no state here: the window never shows them.
    // Nor do the file dialog's defaults, the form flag and the image folder, which load sets
    // and nothing reads.
    Timer1.enabled = false;
    Timer1.interval = 100;

    shortcuts.count = 0;
    tree.highestBitmapSerial = 0;
    appendStartRow = 999;
    normalColor = kNormalColor;
    markingColor = kMarkingColor;
    highlightColor = kHighlightColor;
    defaultCellColor = Table.backColor();

    toolbarButtonSize = 420;
    toolbar.clear();
    toolbar.push_back(button("open", "open", texts::kTipOpen));
    toolbar.push_back(button("save", "save", texts::kTipSave));
    toolbar.push_back(separator());
    toolbar.push_back(button("lineadd", "addline", texts::kTipLineAdd));
    toolbar.push_back(button("linedel", "delline", texts::kTipLineDel));
    toolbar.push_back(separator());
    toolbar.push_back(fileNamePlaceholder());
    toolbar.push_back(button("useeng", "useeng", texts::kTipEnglish));
    toolbar.push_back(button("useger", "useger", texts::kTipGerman));

    // The directories are filled only through the folder browser.
    Datadir.enabled = false;
    Imagedir.enabled = false;

    Combo1.items.clear();
    for (const ActionCodeInfo& info : kActionCodes) {
        Combo1.items.emplace_back(info.label);
    }
    Combo1.visible = false;

    for (ComboBox* size : {&Combo2, &Combo3}) {
        size->items = {"50", "60", "70", "80", "90", "100"};
        size->text = "100";
    }

    decfilename.clear();
    Text1.text.clear();
    Text1.visible = false;

    // Position, column widths (kColumnLetters), grid width with its kTableMargin and column
    // alignment are laid out by the window from the constants of this class.
    Combo1.widthLetters = kCombo1Letters;

    Table.setRow(0);
    Table.setCol(0);
    refreshTexts();

    Table.numberRows();
    tree.nodeSerial = 0;
    addedLines = 0;
}

void Form1::refreshTexts() {
    const bool german = captionsInGerman();

    // Row 0 and column 0 carry the normal colour, also on rows added since the last refresh.
    // Done through the current cell, which ends on the last row of column 0.
    Table.beginBulk();
    Table.setRow(0);
    for (int c = 0; c < Table.cols(); ++c) {
        Table.setCol(c);
        Table.setCellBackColor(normalColor);
    }
    Table.setCol(0);
    for (int r = 0; r < Table.rows(); ++r) {
        Table.setRow(r);
        Table.setCellBackColor(normalColor);
    }
    Table.endBulk();

    const texts::WindowTexts& t = texts::window(german);
    for (int c = 0; c < static_cast<int>(t.headers.size()); ++c) {
        Table.setTextMatrix(0, c, std::string(t.headers[static_cast<size_t>(c)]));
    }
    captions.askDatadir = t.askDatadir;
    captions.askImagedir = t.askImagedir;
    captions.label1 = t.label1;
    captions.label2 = t.label2;
    captions.label3 = t.label3;
    captions.label4 = t.label4;
    // Whatever the user typed or a file supplied is replaced.
    Text2.text = t.menuTitle;
    Text3.text = t.aboutText;
    captions.expand = t.expand;
    captions.colapse = t.colapse;
    captions.onlymenus = t.onlymenus;
    captions.quit = t.quit;
    captions.addabove1 = t.addabove1;
    captions.remove1 = t.remove1;
    captions.addbelow2 = t.addbelow2;
    captions.addabove2 = t.addabove2;
    captions.remove2 = t.remove2;
    captions.removechilden = t.removechilden;
    captions.addimage = t.addimage;

    // Only tree items still carrying the other language's placeholder, exactly, are retitled.
    const std::string_view other = texts::placeholder(!german);
    const std::string mine(texts::placeholder(german));
    for (int i = 1; i <= Treeview.count(); ++i) {
        const NodeRef node = Treeview.byIndex(i);
        if (Treeview.text(node) == other) {
            Treeview.setText(node, mine);
        }
    }
}

void Form1::setLanguage(int16_t code) {
    languageCode = code;
    refreshTexts();
}

void Form1::toolbarClick(const std::string& key) {
    commitEditors();
    if (key == "open") {
        openFlow();
    } else if (key == "save") {
        saveFlow();
    } else if (key == "lineadd") {
        addEmptyLine();
    } else if (key == "linedel") {
        deleteMarkedLines();
    } else if (key == "showmenu") {
        // No such button is built; should one be added, it shows the derived tree expanded.
        deriveFlatTree();
        expandClick();
    } else if (key == "useeng") {
        setLanguage(1);
    } else if (key == "useger") {
        setLanguage(2);
    }
}

void Form1::quitClick() {
    const bool english = messagesInEnglish();
    MessageBox box;
    box.prompt = texts::quitPrompt(english);
    box.title = std::string(texts::quitTitle(english));
    box.buttons = Buttons::YesNo;
    box.questionIcon = true;
    box.defaultNo = true;
    if (host.msgBox(box) == Answer::Yes) {
        host.endProgram();
    }
}

void Form1::sizeFieldKeyPress(int& keyAscii) {
    const bool digit = keyAscii >= '0' && keyAscii <= '9';
    if (!digit && keyAscii != 13 && keyAscii != 8) {
        keyAscii = 0;
    }
}

void Form1::sizeFieldLeave(ComboBox& field) {
    // Two independent checks: the exact text "0", then any value above 600.
    if (field.text == "0") {
        field.text = "100";
    }
    if (text::val(field.text) > 600) {
        field.text = "100";
    }
}

}  // namespace vkl
