#pragma once

#include <QMainWindow>

#include <functional>
#include <string>
#include <vector>

#include "app/Form1.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTimer;
class QToolBar;

namespace vkl::gui {

class GridModel;
class TreeModel;
class GridView;
class NodeView;
class PreviewWindow;

// The editor's main window over Form1. It does two things only: it turns Qt events into calls
// of the form's handlers, and it shows the form's state. Every child carries the name the form
// knows the control by (Toolbar1, Table, Treeview, Text1, Combo1, ...).
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(Form1& form, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Runs the form's load and shows its state: toolbar, lists, captions.
    void load();

    // Calls one handler of the form. A run-time error it raises is shown as the runtime shows
    // it and ends the program; the window then calls no further handlers. Returns false when
    // the handler did not complete.
    bool run(const std::function<void()>& handler);

    // Shows the form's state: captions, header fields, toolbar, overlays, current cell, tree
    // selection and drop highlight, timer, preview, file name.
    void sync();

    Form1& form() { return form_; }
    bool ended() const { return ended_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildWidgets();
    void buildMenus();
    void connectGrid();
    void connectTree();
    void rebuildToolbar();
    void sizeColumns();
    void fitCaptions();
    void fitToolbar();
    void fail(int number, const std::string& description);

    void syncCaptions();
    void syncHeaderFields();
    void syncText1();
    void syncCombo1();
    void syncCurrentCell();
    void syncTree();
    void syncTimer();
    void syncPreview();
    void placeOverlays();
    QRect cellRect(int gridRow, int gridCol) const;

    // Key presses of a field whose handler may change or swallow the key.
    bool filterKey(QWidget* field, QKeyEvent* event, const std::function<void(int&)>& handler);
    // The text box's text changed by typing: the form's copy follows, then its handler runs.
    void text1Edited(const QString& shown);
    // Keys of the action drop-down while its list is closed; true when taken.
    bool combo1Key(QKeyEvent* event);
    void refreshExpansion(const QModelIndex& below);

    Form1& form_;
    bool ended_ = false;
    bool syncing_ = false;
    int handlerDepth_ = 0;

    GridModel* gridModel_ = nullptr;
    TreeModel* treeModel_ = nullptr;

    QToolBar* toolbar_ = nullptr;
    QLabel* label1_ = nullptr;
    QLabel* label2_ = nullptr;
    QLabel* label3_ = nullptr;
    QLabel* label4_ = nullptr;
    QComboBox* combo2_ = nullptr;
    QComboBox* combo3_ = nullptr;
    QLineEdit* text2_ = nullptr;
    QLineEdit* text3_ = nullptr;
    QPushButton* askDatadir_ = nullptr;
    QPushButton* askImagedir_ = nullptr;
    QLineEdit* datadir_ = nullptr;
    QLineEdit* imagedir_ = nullptr;
    QLabel* decfilename_ = nullptr;
    GridView* table_ = nullptr;
    NodeView* tree_ = nullptr;
    QPushButton* expand_ = nullptr;
    QPushButton* colapse_ = nullptr;
    QPushButton* onlymenus_ = nullptr;
    QPushButton* quit_ = nullptr;
    QLineEdit* text1_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QMenu* menu1_ = nullptr;
    QMenu* menu2_ = nullptr;
    QMenu* menu3_ = nullptr;
    QTimer* timer1_ = nullptr;
    PreviewWindow* preview_ = nullptr;

    // What the window last took over from the form, where the widget alone cannot tell whether
    // the form changed it since.
    std::vector<ToolbarButton> shownToolbar_;
    bool shownText1Focus_ = false;
    int shownTopRow_ = -1;
    bool gridLayoutPending_ = false;  // the grid was reset and not laid out since
    int preferredTableWidth_ = 0;     // the grid with every column whole
    int designedRoom_ = 0;            // the toolbar placeholder's width as designed
    int toolbarOthers_ = 0;           // the toolbar's width without the placeholder
    // The tree's share of a first window, beside a grid shown whole.
    static constexpr int kPreferredTreeTwips = 5400;
};

}  // namespace vkl::gui
