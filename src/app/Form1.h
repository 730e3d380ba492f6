#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/Controls.h"
#include "menufile/Writer.h"
#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/Host.h"
#include "platform/MenuState.h"
#include "platform/TreeNodes.h"
#include "platform/TreeViewPort.h"
#include "table/CellEdit.h"
#include "tree/Events.h"

namespace vkl {

namespace menufile {
class ReadDiagnostics;
}

// The main window's state and handlers, without a toolkit. Every user action of the window is
// one handler here; the Qt window only forwards events and shows this state. Run-time errors
// leave the handlers as RuntimeError.
class Form1 {
  public:
    Form1(Host& host, std::string installDir, int16_t languageCode);

    // ---- Start-up and texts --------------------------------------------------------------
    void load();
    void refreshTexts();
    void setLanguage(int16_t code);
    void toolbarClick(const std::string& key);
    void quitClick();

    // Bitmap size fields (Combo2 and Combo3 behave alike).
    void sizeFieldKeyPress(int& keyAscii);
    void sizeFieldLeave(ComboBox& field);

    // ---- Files ---------------------------------------------------------------------------
    void openFlow();
    void saveFlow();
    void askDatadirClick();
    void askImagedirClick();
    // The editor reads without diagnostics; a checking tool passes its listener.
    void readMenuFile(const std::string& path, menufile::ReadDiagnostics* diagnostics = nullptr);
    void writeMenuFile(const std::string& path);
    // Derives a flat tree from the table when the tree is empty.
    void deriveFlatTree();

    // ---- Table ---------------------------------------------------------------------------
    void addEmptyLine();
    void deleteMarkedLines();
    // Removes the table row of an item node and renumbers (tree removal commands).
    void removeLineOfNode(const std::string& nodeKey);

    void tableKeyPress(int& keyAscii);          // start edit
    void text1KeyPress(int& keyAscii);          // editor key filter
    void text1Change(const std::string& text);  // title to tree
    // The editor's caret or selection moved (what select-all and typing keep track of).
    void text1Caret(int selStart, int selLength);
    // The user moved the grid's current cell (an open edit is taken over first) or scrolled it.
    void tableCurrentChanged(int row, int col);
    void tableScrolled(int topRow);
    void text1Click();   // select all
    void commitText();   // the grid takes over again after an edit
    void text1Cancel();  // Escape: the edit is dropped, nothing is written
    // A toolbar button or pop-up menu takes the focus: an open editor is taken over first,
    // as when it loses the focus.
    void commitEditors();
    void combo1Click(const std::string& text);   // commit drop-down (also on losing focus)
    void combo1Cancel();                         // Escape: the drop-down hides, nothing is written
    void combo1Browse(const std::string& text);  // the arrows moved in the list: shown, not written
    void tableMouseDown(int button);             // repeat code; clear selection
    void tableClick();                           // toggle mark; package path check
    void tableDblClick();                        // pick for cell
    void tableDragDrop(const std::string& sourceName, int targetRow);

    // ---- Tree ----------------------------------------------------------------------------
    void treeviewNodeClick(const std::string& key);
    void treeviewMouseDown(int button, int shift, double x, double y);
    void treeviewAfterLabelEdit(const std::string& newText);
    // The user selected, unfolded or folded a node, or typed a new label into one.
    void treeviewSelect(NodeRef node);
    void treeviewExpand(NodeRef node, bool expanded);
    void treeviewLabelEdited(NodeRef node, const std::string& label);
    // Closing the window by its frame: the program ends, nothing is asked or saved.
    void formUnload();
    void treeviewStartDrag();
    // Returns the effect (2 move, 0 no drop).
    int treeviewDragOver(double x, double y);
    void treeviewDragDrop(const std::string& draggedKey, double x, double y);
    void timer1Tick();
    void formDragOver(const std::string& sourceName);
    // Pop-up menu entries by name: addsub, addabove1, addabove2, addbelow2, remove1, remove2,
    // removechilden, addimage.
    void menuClick(const std::string& entry);
    void expandClick();
    void colapseClick();
    void onlymenusClick();
    void showRowBitmap(int row);

    // ---- State (read by the window and the tests) ------------------------------------------
    Host& host;
    TreeViewPort* treePort = nullptr;  // set by whoever shows the tree
    // Set by whoever shows the form: brings the view up to date before a pop-up menu takes
    // over the events, so that the pop-up shows over the node it was opened for.
    std::function<void()> showBeforePopup;

    std::string installDir;
    int16_t languageCode;
    int16_t appendStartRow = 999;
    Color normalColor = kNormalColor;
    Color markingColor = kMarkingColor;
    Color highlightColor = kHighlightColor;
    Color defaultCellColor = 0;

    Grid Table;
    TreeNodes Treeview;

    TextBox Text1, Text2, Text3, Datadir, Imagedir;
    ComboBox Combo1, Combo2, Combo3;
    std::string decfilename;
    Captions captions;
    std::vector<ToolbarButton> toolbar;
    int toolbarButtonSize = 0;  // twips
    Timer Timer1;
    PreviewState preview;

    // Layout as designed (twips and letter counts); the window converts.
    static constexpr int kTableLeft = 120;
    static constexpr int kTableTop = 1920;
    static constexpr int kTableHeight = 5260;
    static constexpr int kTableMargin = 100;
    static constexpr int kColumnLetters[Grid::kCols] = {5, 23, 53, 9, 46, 0, 0};
    static constexpr int kCombo1Letters = 13;

    TreeState tree;
    Shortcuts shortcuts;
    int16_t addedLines = 0;

    table::EditState edit;
    tree::TreeEventState treeEvents;
    int16_t holeType = 0;
    menufile::SaveRecord saveRecord;

    // Message boxes: English when the code is exactly 1, German otherwise.
    bool messagesInEnglish() const { return languageCode == 1; }
    // Captions: German when the code is exactly 2, English otherwise.
    bool captionsInGerman() const { return languageCode == 2; }
};

}  // namespace vkl
