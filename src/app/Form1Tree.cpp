#include "app/Form1.h"
#include "menufile/BitmapLookup.h"
#include "platform/RuntimeError.h"
#include "tree/Commands.h"
#include "tree/Events.h"
#include "tree/Views.h"

namespace vkl {

namespace {

// Resolves a bitmap text and shows the file in the preview window, or reports it missing.
void showBitmap(Form1& f, const std::string& written) {
    const menufile::BitmapSources sources{f.Imagedir.text, f.shortcuts, f.installDir};
    const std::string file = menufile::lookUpBitmap(f.host, sources, written);
    if (file.empty()) {
        return;
    }
    // Reaching the picture box creates the window; it shows once the picture is in.
    f.preview.created = true;
    const PictureSize size = f.host.loadPicture(file);
    f.preview.picture = file;
    f.preview.pictureWidth = size.width;
    f.preview.pictureHeight = size.height;
    f.preview.shown = true;
}

}  // namespace

void Form1::treeviewNodeClick(const std::string& key) {
    tree::nodeClick(
        treeEvents, Treeview, Table, highlightColor, defaultCellColor, tree, key,
        [this](const std::string& bitmap) { showBitmap(*this, bitmap); },
        [this](int16_t row) { showRowBitmap(row); });
}

void Form1::treeviewMouseDown(int button, int, double x, double y) {
    const std::string menu = tree::mouseDown(treeEvents, Treeview, treePort, button, x, y);
    if (menu.empty()) {
        return;
    }
    if (showBeforePopup) {
        showBeforePopup();
    }
    const std::string entry = host.popupMenu(menu);
    if (!entry.empty()) {
        menuClick(entry);
    }
}

void Form1::treeviewAfterLabelEdit(const std::string& newText) {
    tree::afterLabelEdit(treeEvents, Treeview, Table, newText);
}

void Form1::treeviewSelect(NodeRef node) {
    treeEvents.treeSelected = node;
}

void Form1::treeviewExpand(NodeRef node, bool expanded) {
    if (Treeview.alive(node)) {
        Treeview.setExpanded(node, expanded);
    }
}

void Form1::treeviewLabelEdited(NodeRef node, const std::string& label) {
    // The edited node is the selected one; the handler gives it the label (and an item's line
    // its title).
    treeEvents.treeSelected = node;
    treeviewAfterLabelEdit(label);
}

void Form1::formUnload() {
    host.endProgram();
}

void Form1::treeviewStartDrag() {
    tree::startDrag(treeEvents);
}

int Form1::treeviewDragOver(double x, double y) {
    return tree::dragOver(treeEvents, Treeview, treePort, x, y, Timer1.enabled);
}

void Form1::treeviewDragDrop(const std::string& draggedKey, double x, double y) {
    tree::dragDrop(treeEvents, Treeview, treePort, draggedKey, x, y);
}

void Form1::timer1Tick() {
    tree::timerTick(treeEvents, Treeview, treePort);
}

void Form1::formDragOver(const std::string&) {
    // The handler asks the drag source for a member no control has; the failed late-bound
    // lookup is not caught and ends the program. Kept as the editor has always behaved.
    throw RuntimeError::noSuchMember();
}

void Form1::menuClick(const std::string& entry) {
    commitEditors();
    // The pop-ups open only on a node, which makes it current; without one there is nothing
    // to act on.
    if (treeEvents.currentNodeKey.empty()) {
        return;
    }
    if (entry == "addsub") {
        tree::addSubmenu(Treeview, tree, treeEvents.currentNodeKey, TreeNodes::kChild);
    } else if (entry == "addabove1" || entry == "addabove2") {
        tree::addSubmenu(Treeview, tree, treeEvents.currentNodeKey, TreeNodes::kPrevious);
    } else if (entry == "addbelow2") {
        tree::addSubmenu(Treeview, tree, treeEvents.currentNodeKey, TreeNodes::kNext);
    } else if (entry == "remove1" || entry == "remove2") {
        tree::removeNode(Table, Treeview, treeEvents.currentNodeKey, 1, markingColor,
                         defaultCellColor, normalColor);
    } else if (entry == "removechilden") {
        tree::removeNode(Table, Treeview, treeEvents.currentNodeKey, 0, markingColor,
                         defaultCellColor, normalColor);
    } else if (entry == "addimage") {
        tree::addImage(host, Treeview, tree, Imagedir.text, treeEvents.currentNodeKey,
                       treeEvents.currentSubmenuSerial);
    }
}

void Form1::expandClick() {
    tree::setAllExpanded(Treeview, treeEvents.currentNodeKey, true);
}

void Form1::colapseClick() {
    tree::setAllExpanded(Treeview, treeEvents.currentNodeKey, false);
}

void Form1::onlymenusClick() {
    tree::showMenusOnly(Treeview, treeEvents.currentNodeKey);
}

void Form1::showRowBitmap(int row) {
    // A line without a bitmap name shows nothing, whatever its written bitmap holds.
    if (Table.textMatrix(row, 2).empty()) {
        return;
    }
    const std::string written = Table.textMatrix(row, 5);
    showBitmap(*this, written);
}

}  // namespace vkl
