// The real main window, offscreen, over a form whose dialogs are answered by a script.
#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QtTest>

#include <memory>

#include "app/Form1.h"
#include "gui/GridModel.h"
#include "gui/MainWindow.h"
#include "gui/TreeModel.h"
#include "platform/RuntimeError.h"
#include "support/ScriptedHost.h"
#include "support/WindowFixture.h"

using vkl::Answer;
using vkl::Buttons;
using vkl::NodeRef;
using vkl::TreeNodes;
using vkl::test::ScriptedHost;
using window_test::Window;

namespace {

// A host whose folder browser fails the way the operating system can.
class FailingBrowserHost : public ScriptedHost {
  public:
    std::string browseForFolder(const std::string&) override {
        throw vkl::RuntimeError::pathNotFound();
    }
};

using window_test::shownText;

struct Caption {
    const char* control;
    const char* english;
    const char* german;
};

const Caption kCaptions[] = {
    {"Label1", "BMP Size in X", "BMP Groesse in X"},
    {"Label2", "BMP Size in Y", "BMP Groesse in Y"},
    {"Label3", "Main Menu Title", "Haupt-Menu Titel"},
    {"Label4", "About text", "Info Text"},
    {"ask_datadir", "Data Directory", "Daten Verzeichnis"},
    {"ask_imagedir", "Image Directory", "Bilder Verzeichnis"},
    {"Text2", "Write here your own menu title !", "Hier eigenen Menu Titel eintragen !"},
    {"Text3", "Write here your own ABOUT text !", "Hier eigenen Info Text eintragen !"},
    {"Expand", "Expand", "Expandieren"},
    {"Colapse", "Collapse", "Reduzieren"},
    {"onlymenus", "Menus Only", "Nur Menus"},
    {"Quit", "Quit", "Schliessen"},
    {"addsub", "Add Sub menu", "Add Sub menu"},
    {"addabove1", "Add Sub menu above", "Neues Submenu darueber"},
    {"remove1", "Remove", "Loeschen"},
    {"addabove2", "Add Sub menu above", "Neues Submenu darueber"},
    {"addbelow2", "Add Sub menu below", "Neues Submenu darunter"},
    {"remove2", "Remove with children", "Loeschen mit allem darunter"},
    {"removechilden", "Remove children only", "Loeschen alles darunter"},
    {"addimage", "Add Image File", "Menu Bild selektieren"},
};

void expectLanguage(QWidget& window, QAbstractItemModel& grid, bool german) {
    for (const Caption& c : kCaptions) {
        QCOMPARE(shownText(window, c.control), QString::fromLatin1(german ? c.german : c.english));
    }
    const QStringList headers =
        german ? QStringList{"Nr", "Menu Titel", "Bild Datei", "A", "Aktions Parameter"}
               : QStringList{"Nr", "Menu Title", "Bmp file", "C", "Command Parameter"};
    for (int c = 0; c < headers.size(); ++c) {
        QCOMPARE(grid.headerData(c, Qt::Horizontal).toString(), headers.at(c));
    }
}

}  // namespace

class MainWindowTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void init() { QVERIFY(start(false)); }
    void cleanup() { window_.reset(); }
    void toolbarHasItsNineEntries();
    void layoutKeepsFieldsAboveAndTreeBeside();
    void captionsFollowTheLanguage();
    void gridShowsFiveSizedColumns();
    void quitAsksFirstAndTheFrameDoesNot();
    void runtimeErrorEndsTheProgram();
    void editorsLieOverTheirCell();
    void typingEditsTheCurrentCell();
    void controlDroppedOnALineReachesThatLine();
    void fieldsTimerAndPreviewFollowTheForm();
    void treeFollowsTheFormBothWays();
    void treePressesReachTheForm();
};

void MainWindowTest::toolbarHasItsNineEntries() {
    Window& e = *window_;
    QToolBar* bar = e.child<QToolBar>("Toolbar1");
    QVERIFY(bar);
    QCOMPARE(e.window.toolBarArea(bar), Qt::TopToolBarArea);
    const QList<QAction*> actions = bar->actions();
    QCOMPARE(actions.size(), 9);
    const QStringList keys{"open", "save",    "",       "lineadd", "linedel",
                           "",     "vklname", "useeng", "useger"};
    const QStringList tips{"Open File",
                           "Save File",
                           "",
                           "Add an empty line",
                           "Delete already selected lines",
                           "",
                           "Selected VKL name",
                           "English",
                           "Deutsch"};
    QList<QImage> pictures;
    for (int i = 0; i < actions.size(); ++i) {
        QAction* a = actions.at(i);
        QCOMPARE(a->isSeparator(), keys.at(i).isEmpty());
        if (keys.at(i).isEmpty()) {
            continue;
        }
        QCOMPARE(a->data().toString(), keys.at(i));
        QCOMPARE(a->toolTip(), tips.at(i));
        QCOMPARE(a->statusTip(), i == 6 ? QStringLiteral("fdsfd") : tips.at(i));
        if (keys.at(i) != QLatin1String("vklname")) {
            QVERIFY2(!a->icon().isNull(), qPrintable(keys.at(i)));
            const QImage picture = a->icon().pixmap(16, 16).toImage();
            QVERIFY2(!pictures.contains(picture), qPrintable(keys.at(i)));
            pictures << picture;
        }
    }
    // Buttons 420 twips high; the placeholder keeps 14040 twips of room on the toolbar.
    QCOMPARE(bar->iconSize().height(), qRound(420 * e.window.logicalDpiY() / 1440.0) - 8);
    QWidget* room = bar->widgetForAction(actions.at(6));
    QVERIFY(room);
    QCOMPARE(room->width(), qRound(14040 * e.window.logicalDpiX() / 1440.0));
    QCOMPARE(room->toolTip(), QStringLiteral("Selected VKL name"));
}

void MainWindowTest::layoutKeepsFieldsAboveAndTreeBeside() {
    Window& e = *window_;
    const auto box = [&](const char* name) {
        auto* w = e.child<QWidget>(name);
        return w ? QRect(w->mapTo(&e.window, QPoint(0, 0)), w->size()) : QRect();
    };
    const QRect table = box("Table");
    const QRect tree = box("Treeview");
    const QRect toolbar = box("Toolbar1");
    for (const char* field : {"Label1", "Combo2", "Label2", "Combo3", "Label3", "Text2", "Label4",
                              "Text3", "ask_datadir", "Datadir", "ask_imagedir", "Imagedir"}) {
        const QRect r = box(field);
        QVERIFY2(r.isValid() && e.child<QWidget>(field)->isVisible(), field);
        QVERIFY2(r.top() >= toolbar.bottom() && r.bottom() < table.top(), field);
    }
    QVERIFY(tree.left() > table.right());
    QVERIFY(tree.top() < table.bottom() && tree.bottom() > table.top());
    // Nothing is cut off by the window's edge; the grid shows its five columns whole.
    for (const char* name : {"Table", "Treeview", "Expand", "Colapse", "onlymenus", "Quit",
                             "decfilename", "Text3", "Imagedir"}) {
        QVERIFY2(e.window.rect().contains(box(name)), name);
    }
    int columns = 0;
    for (int c = 0; c < 5; ++c) {
        columns += e.table()->columnWidth(c);
    }
    QVERIFY(e.table()->viewport()->width() >= columns);
}

void MainWindowTest::captionsFollowTheLanguage() {
    Window& e = *window_;
    expectLanguage(e.window, *e.table()->model(), false);
    QVERIFY(e.clickTool("useger"));
    expectLanguage(e.window, *e.table()->model(), true);
    QVERIFY(e.clickTool("useeng"));
    expectLanguage(e.window, *e.table()->model(), false);

    Window de(2);
    expectLanguage(de.window, *de.table()->model(), true);
    // Any other code shows English captions.
    Window other(3);
    expectLanguage(other.window, *other.table()->model(), false);
}

void MainWindowTest::gridShowsFiveSizedColumns() {
    Window& e = *window_;
    QTableView* table = e.table();
    QVERIFY(!table->verticalHeader()->isVisible());
    const QFontMetrics metrics(table->font());
    const auto expectColumns = [&] {
        const int letters[] = {5, 23, 53, 9, 46};
        for (int c = 0; c < 5; ++c) {
            QVERIFY(!table->isColumnHidden(c));
            QCOMPARE(table->columnWidth(c),
                     metrics.horizontalAdvance(QString(letters[c], QLatin1Char('n'))));
        }
        QVERIFY(table->isColumnHidden(5));
        QVERIFY(table->isColumnHidden(6));
    };
    expectColumns();
    // Bulk work resets the model; the column layout must survive it.
    e.form.Table.beginBulk();
    e.form.Table.setRows(12);
    e.form.Table.endBulk();
    QCOMPARE(table->model()->rowCount(), 11);
    expectColumns();
    QCOMPARE(table->model()->headerData(4, Qt::Horizontal).toString(),
             QStringLiteral("Command Parameter"));
}

void MainWindowTest::quitAsksFirstAndTheFrameDoesNot() {
    Window& e = *window_;
    e.host.answers = {Answer::No};
    QTest::mouseClick(e.child<QAbstractButton>("Quit"), Qt::LeftButton);
    QCOMPARE(e.host.messages.size(), size_t{1});  // the question itself: AppForm1Quit
    QCOMPARE(e.host.endCount, 0);
    QVERIFY(e.window.isVisible());

    e.host.answers = {Answer::Yes};
    QTest::mouseClick(e.child<QAbstractButton>("Quit"), Qt::LeftButton);
    QCOMPARE(e.host.messages.size(), size_t{2});
    QCOMPARE(e.host.endCount, 1);

    Window framed;
    framed.window.close();
    QCOMPARE(framed.host.endCount, 1);
    QVERIFY(framed.host.messages.empty());
}

void MainWindowTest::runtimeErrorEndsTheProgram() {
    Window& e = *window_;
    QVERIFY(!e.window.run([] { throw vkl::RuntimeError::overflow(); }));
    QCOMPARE(e.host.endCount, 1);
    QCOMPARE(e.host.messages.size(), size_t{1});
    QCOMPARE(e.host.messages.back().prompt, std::string("Run-time error '6':\n\nOverflow"));
    QVERIFY(!e.host.messages.back().title.has_value());
    QCOMPARE(e.host.messages.back().buttons, Buttons::Ok);
    // Once ended, no further handler runs.
    bool ran = false;
    QVERIFY(!e.window.run([&] { ran = true; }));
    QVERIFY(!ran);

    // The same through a real control: the folder button's handler meets a failing browser.
    window_test::BasicWindow<FailingBrowserHost> f;
    QTest::mouseClick(f.child<QAbstractButton>("ask_datadir"), Qt::LeftButton);
    QCOMPARE(f.host.messages.size(), size_t{1});
    QCOMPARE(f.host.messages.back().prompt, std::string("Run-time error '76':\n\nPath not found"));
    QCOMPARE(f.host.endCount, 1);
}

void MainWindowTest::editorsLieOverTheirCell() {
    Window& e = *window_;
    e.form.Table.setRows(60);
    e.window.sync();
    auto* text1 = e.child<QLineEdit>("Text1");
    auto* combo1 = e.child<QComboBox>("Combo1");
    QVERIFY(!text1->isVisible());
    QVERIFY(!combo1->isVisible());
    QCOMPARE(text1->parentWidget(), e.table()->viewport());

    e.form.edit.row = 30;
    e.form.edit.col = 4;
    e.form.Text1.visible = true;
    e.form.Text1.text = "abc";
    e.form.Text1.selStart = 1000;
    e.window.sync();
    QVERIFY(text1->isVisible());
    QCOMPARE(text1->text(), QStringLiteral("abc"));
    QCOMPARE(text1->cursorPosition(), 3);
    QCOMPARE(e.form.Text1.selStart, 3);
    const auto over = [&] { return e.table()->visualRect(e.cell(30, 4)); };
    QCOMPARE(text1->geometry(), over());

    // Scrolling the grid and widening a column move the cell; the box follows it.
    const QRect before = over();
    e.table()->verticalScrollBar()->setValue(20);
    QCOMPARE(e.form.Table.topRow(), 21);
    QVERIFY(over() != before);
    QCOMPARE(text1->geometry(), over());
    e.table()->setColumnWidth(1, e.table()->columnWidth(1) + 40);
    QCOMPARE(text1->geometry(), over());

    e.form.Text1.visible = false;
    e.form.edit.row = 25;
    e.form.edit.col = 3;
    e.form.Combo1.visible = true;
    e.window.sync();
    QVERIFY(!text1->isVisible());
    QVERIFY(combo1->isVisible());
    QCOMPARE(combo1->geometry(), e.table()->visualRect(e.cell(25, 3)));
    QCOMPARE(combo1->count(), 7);
    QCOMPARE(combo1->itemText(4), QStringLiteral("PKG"));
}

void MainWindowTest::typingEditsTheCurrentCell() {
    Window& e = *window_;
    e.form.Table.setRows(5);
    e.form.Table.setTextMatrix(3, 4, "param");
    e.window.sync();
    QWidget* viewport = e.table()->viewport();
    auto* text1 = e.child<QLineEdit>("Text1");

    QTest::mouseClick(viewport, Qt::LeftButton, {}, e.cellCentre(2, 1));
    QCOMPARE(e.form.Table.row(), 2);
    QCOMPARE(e.form.Table.col(), 1);
    // A letter starts the edit: upper case, caret behind it, the box over the cell.
    QTest::keyClick(e.table(), Qt::Key_A, Qt::NoModifier);
    QVERIFY(text1->isVisible());
    QCOMPARE(text1->text(), QStringLiteral("A"));
    QCOMPARE(text1->cursorPosition(), 1);
    QCOMPARE(text1->geometry(), e.table()->visualRect(e.cell(2, 1)));
    QTest::keyClicks(text1, "bc");
    QCOMPARE(e.form.Text1.text, std::string("Abc"));

    // Clicking another cell takes the edit over into the cell it was made in.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, e.cellCentre(3, 4));
    QCOMPARE(e.form.Table.textMatrix(2, 1), std::string("Abc"));
    QCOMPARE(e.form.Table.textMatrix(3, 4), std::string("param"));
    QVERIFY(!text1->isVisible());
    QCOMPARE(e.form.Table.row(), 3);
    QCOMPARE(e.form.Table.col(), 4);

    // Space opens the cell's own text with the caret at the end; Enter takes it over.
    QTest::keyClick(e.table(), Qt::Key_Space);
    QCOMPARE(text1->text(), QStringLiteral("param"));
    QCOMPARE(text1->cursorPosition(), 5);
    QTest::sendKeyEvent(QTest::Click, text1, Qt::Key_Udiaeresis, QString::fromUtf8("ü"),
                        Qt::NoModifier);
    QTest::keyClick(text1, Qt::Key_Return);
    QVERIFY(!text1->isVisible());
    QCOMPARE(e.form.Table.textMatrix(3, 4), std::string("param\xfc"));
    QCOMPARE(e.table()->model()->index(2, 4).data().toString(), QString::fromUtf8("paramü"));

    // A key on the action column opens the drop-down; a choice writes the code.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, e.cellCentre(1, 3));
    QTest::keyClick(e.table(), Qt::Key_X);
    auto* combo1 = e.child<QComboBox>("Combo1");
    QVERIFY(combo1->isVisible());
    QVERIFY(!text1->isVisible());
    QCOMPARE(e.form.Table.textMatrix(1, 3), std::string());
    emit combo1->activated(combo1->findText(QStringLiteral("WM")));
    QCOMPARE(e.form.Table.textMatrix(1, 3), std::string("LWM"));
    QVERIFY(!combo1->isVisible());
}

void MainWindowTest::controlDroppedOnALineReachesThatLine() {
    Window& e = *window_;
    e.form.Table.setRows(6);
    e.form.holeType = 4;
    e.window.sync();
    QWidget* viewport = e.table()->viewport();
    QMimeData data;
    data.setData(QStringLiteral("application/x-vkl-control"), QByteArray("Picture4"));
    const QPoint at = e.cellCentre(4, 2);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QVERIFY(enter.isAccepted());
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QVERIFY(move.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    QCOMPARE(e.host.lastPrompt(), std::string("drag drop"));
    QCOMPARE(e.form.Table.textMatrix(4, 6), std::string("MACH_ADV_LIBRARY_BLINDHOLE"));
    QCOMPARE(e.form.Table.row(), 4);

    // Below the last line there is nothing to drop on.
    const QPoint below(at.x(), e.table()->visualRect(e.cell(5, 2)).bottom() + 30);
    QDragMoveEvent outside(below, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &outside);
    QVERIFY(!outside.isAccepted());
}

void MainWindowTest::fieldsTimerAndPreviewFollowTheForm() {
    Window& e = *window_;
    e.form.Datadir.text = "C:\\data";
    e.form.decfilename = "/tmp/menus/main.vkl";
    e.form.Timer1.enabled = true;
    e.form.Timer1.interval = 100;
    e.window.sync();
    auto* datadir = e.child<QLineEdit>("Datadir");
    QCOMPARE(datadir->text(), QStringLiteral("C:\\data"));
    QVERIFY(!datadir->isEnabled());
    QCOMPARE(shownText(e.window, "decfilename"), QStringLiteral("/tmp/menus/main.vkl"));
    auto* timer = e.window.findChild<QTimer*>(QStringLiteral("Timer1"));
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 100);
    e.form.Timer1.enabled = false;
    e.window.sync();
    QVERIFY(!timer->isActive());

    // What the user types reaches the form's fields; the size fields take digits only.
    e.child<QLineEdit>("Text2")->end(false);
    QTest::keyClicks(e.child<QLineEdit>("Text2"), "!");
    QCOMPARE(e.form.Text2.text, std::string("Write here your own menu title !!"));
    auto* combo2 = e.child<QComboBox>("Combo2");
    QCOMPARE(combo2->currentText(), QStringLiteral("100"));
    combo2->lineEdit()->end(false);
    QTest::keyClicks(combo2, "x5.");
    QCOMPARE(combo2->currentText(), QStringLiteral("1005"));
    QCOMPARE(e.form.Combo2.text, std::string("1005"));
    e.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&e.window));
    combo2->setFocus();
    QTRY_VERIFY(combo2->hasFocus());
    e.child<QLineEdit>("Text3")->setFocus();
    QTRY_COMPARE(combo2->currentText(), QStringLiteral("100"));
    QCOMPARE(e.form.Combo2.text, std::string("100"));

    QTemporaryDir dir;
    const std::string picture = dir.filePath(QStringLiteral("menu.bmp")).toStdString();
    vkl::test::writeBmp(picture, 40, 30);
    e.form.preview.created = true;
    e.form.preview.shown = true;
    e.form.preview.picture = picture;
    e.form.preview.pictureWidth = 40;
    e.form.preview.pictureHeight = 30;
    e.window.sync();
    auto* preview = e.child<QWidget>("preview");
    QVERIFY(preview && preview->isVisible());  // its picture and place: WindowTreeTest
    preview->close();
    QVERIFY(!e.form.preview.shown);
}

void MainWindowTest::treeFollowsTheFormBothWays() {
    Window& e = *window_;
    TreeNodes& nodes = e.form.Treeview;
    const NodeRef root = nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
    const NodeRef folder = nodes.add(root, TreeNodes::kChild, "Menu1", "SUB", "folderclosed");
    const NodeRef one = nodes.add(folder, TreeNodes::kChild, "Child1", "ONE");
    nodes.add(folder, TreeNodes::kChild, "Child2", "TWO");
    QTreeView* tree = e.tree();
    vkl::gui::TreeModel* model = e.treeModel();

    nodes.setExpanded(root, true);
    QVERIFY(tree->isExpanded(model->indexOf(root)));
    tree->expand(model->indexOf(folder));
    QVERIFY(nodes.expanded(folder));
    tree->collapse(model->indexOf(folder));
    QVERIFY(!nodes.expanded(folder));
    // Flags set during bulk work show once it ends.
    nodes.beginBulk();
    nodes.setExpanded(folder, true);
    nodes.add(root, TreeNodes::kChild, "Child3", "THREE");
    nodes.endBulk();
    QVERIFY(tree->isExpanded(model->indexOf(root)));
    QVERIFY(tree->isExpanded(model->indexOf(folder)));

    e.form.treeEvents.treeSelected = one;
    e.window.sync();
    QCOMPARE(tree->currentIndex(), model->indexOf(one));
    tree->setCurrentIndex(model->indexOf(folder));
    QCOMPARE(e.form.treeEvents.treeSelected, folder);

    e.form.treeEvents.treeDropHighlight = folder;
    e.window.sync();
    QVERIFY(model->indexOf(folder).data(Qt::BackgroundRole).isValid());
    QVERIFY(!model->indexOf(one).data(Qt::BackgroundRole).isValid());

    // The pixel operations the tree logic asks for, in twips.
    vkl::TreeViewPort* port = e.form.treePort;
    QVERIFY(port);
    const QPoint centre = tree->visualRect(model->indexOf(one)).center();
    const double dpiX = tree->logicalDpiX();
    const double dpiY = tree->logicalDpiY();
    QCOMPARE(port->hitTest(centre.x() * 1440.0 / dpiX, centre.y() * 1440.0 / dpiY),
             std::string("Child1"));
    QCOMPARE(port->hitTest(5, tree->viewport()->height() * 1440.0 / dpiY - 5), std::string());
    QCOMPARE(qRound(port->heightTwips()), qRound(tree->viewport()->height() * 1440.0 / dpiY));
    for (int i = 10; i < 200; ++i) {
        nodes.add(root, TreeNodes::kChild, "Child" + std::to_string(i), "ITEM");
    }
    QScrollBar* bar = tree->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    bar->setValue(0);
    port->scrollLine(1);
    QCOMPARE(bar->value(), bar->singleStep());
    port->scrollLine(0);
    QCOMPARE(bar->value(), 0);
}

void MainWindowTest::treePressesReachTheForm() {
    Window& e = *window_;
    TreeNodes& nodes = e.form.Treeview;
    const NodeRef root = nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
    const NodeRef folder = nodes.add(root, TreeNodes::kChild, "Menu1", "SUB", "folderclosed");
    const NodeRef item = nodes.add(root, TreeNodes::kChild, "Child2", "TWO");
    e.form.Table.setRows(3);
    nodes.setExpanded(root, true);
    e.window.sync();
    QTreeView* tree = e.tree();
    vkl::gui::TreeModel* model = e.treeModel();
    const auto at = [&](NodeRef n) { return tree->visualRect(model->indexOf(n)).center(); };

    // The right button opens the menu of the node's kind, found by the press position.
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, at(root));
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, at(item));
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, at(folder));
    QCOMPARE(e.host.popups, (std::vector<std::string>{"Menu1", "Menu2", "menu3"}));
    QCOMPARE(e.form.treeEvents.currentNodeKey, std::string("Menu1"));

    // A left click on an item selects it and marks its line.
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, at(item));
    QCOMPARE(e.form.treeEvents.currentNodeKey, std::string("Child2"));
    QCOMPARE(e.form.treeEvents.treeSelected, item);
    QCOMPARE(tree->currentIndex(), model->indexOf(item));
    QCOMPARE(e.form.Table.backColorAt(2, 1), e.form.highlightColor);
    QCOMPARE(e.table()->model()->index(1, 1).data(Qt::BackgroundRole).value<QColor>(),
             static_cast<vkl::gui::GridModel*>(e.table()->model())->color(e.form.highlightColor));
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
