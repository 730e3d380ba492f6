// The real main window, offscreen, over a form whose dialogs are answered by a script: what it
// shows of the form, and how its controls reach the form's handlers.
#include <QMimeData>
#include <QTimer>

#include "gui/GridModel.h"
#include "platform/RuntimeError.h"
#include "support/WindowFixture.h"

using vkl::Answer;
using vkl::ToolbarButton;
using vkl::test::ScriptedHost;
using window_test::shownText;
using window_test::utf8;
using window_test::Window;

namespace {

// A host whose folder browser fails the way the operating system can.
class FailingBrowserHost : public ScriptedHost {
  public:
    std::string browseForFolder(const std::string&) override {
        throw vkl::RuntimeError::pathNotFound();
    }
};

// Every caption, pop-up entry and column heading shows what the form holds for it.
void expectCaptionsOfTheForm(Window& e) {
    const vkl::Captions& c = e.form.captions;
    const std::string* const texts[] = {
        &c.label1,  &c.label2,    &c.label3,    &c.label4,  &c.askDatadir,    &c.askImagedir,
        &c.expand,  &c.colapse,   &c.onlymenus, &c.quit,    &c.addsub,        &c.addabove1,
        &c.remove1, &c.addabove2, &c.addbelow2, &c.remove2, &c.removechilden, &c.addimage};
    const char* const names[] = {
        "Label1",  "Label2",    "Label3",    "Label4",  "ask_datadir",   "ask_imagedir",
        "Expand",  "Colapse",   "onlymenus", "Quit",    "addsub",        "addabove1",
        "remove1", "addabove2", "addbelow2", "remove2", "removechilden", "addimage"};
    static_assert(std::size(texts) == std::size(names));
    QStringList held;
    QStringList seen;
    for (size_t i = 0; i < std::size(names); ++i) {
        held << utf8(*texts[i]);
        seen << shownText(e.window, names[i]);
    }
    for (int col = 0; col < 5; ++col) {
        held << utf8(e.form.Table.textMatrix(0, col));
        seen << e.table()->model()->headerData(col, Qt::Horizontal).toString();
    }
    QCOMPARE(seen, held);
}

}  // namespace

class MainWindowTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void toolbarShowsTheFormsButtons() {
        Window& e = *window_;
        QToolBar* bar = e.child<QToolBar>("Toolbar1");
        QCOMPARE(e.window.toolBarArea(bar), Qt::TopToolBarArea);
        const QList<QAction*> actions = bar->actions();
        QCOMPARE(actions.size(), 9);
        QCOMPARE(actions.size(), static_cast<int>(e.form.toolbar.size()));
        QList<QImage> pictures;
        for (int i = 0; i < actions.size(); ++i) {
            const ToolbarButton& b = e.form.toolbar[static_cast<size_t>(i)];
            QAction* a = actions.at(i);
            QCOMPARE(a->isSeparator(), b.style == ToolbarButton::Style::Separator);
            QCOMPARE(a->toolTip(), utf8(b.tooltip));
            QCOMPARE(a->statusTip(), utf8(b.description));
            if (b.style == ToolbarButton::Style::Normal) {
                // Each button has a picture of its own.
                const QImage picture = a->icon().pixmap(16, 16).toImage();
                QVERIFY2(!picture.isNull() && !pictures.contains(picture), b.key.c_str());
                pictures << picture;
            } else if (b.style == ToolbarButton::Style::Placeholder) {
                QCOMPARE(bar->widgetForAction(a)->width(),
                         qRound(b.widthTwips * e.window.logicalDpiX() / 1440.0));
            }
        }
        QCOMPARE(bar->iconSize().height(),
                 qRound(e.form.toolbarButtonSize * e.window.logicalDpiY() / 1440.0) - 8);
    }

    void captionsFollowTheLanguage() {
        Window& e = *window_;
        expectCaptionsOfTheForm(e);
        for (const char* key : {"useger", "useeng"}) {
            QVERIFY(e.clickTool(key));
            expectCaptionsOfTheForm(e);
            QCOMPARE(shownText(e.window, "Expand"),
                     QLatin1String(key == std::string("useger") ? "Expandieren" : "Expand"));
        }
        Window de(2);
        expectCaptionsOfTheForm(de);
        QCOMPARE(shownText(de.window, "Quit"), QStringLiteral("Schliessen"));
    }

    void quitAsksFirstAndTheFrameDoesNot() {
        Window& e = *window_;
        e.host.answers = {Answer::No};
        QTest::mouseClick(e.child<QAbstractButton>("Quit"), Qt::LeftButton);
        QCOMPARE(e.host.messages.size(), size_t{1});  // the question itself
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

    void runtimeErrorEndsTheProgram() {
        Window& e = *window_;
        QVERIFY(!e.window.run([] { throw vkl::RuntimeError::overflow(); }));
        QCOMPARE(e.host.endCount, 1);
        QCOMPARE(e.host.messages.size(), size_t{1});
        QCOMPARE(e.host.lastPrompt(), std::string("Run-time error '6':\n\nOverflow"));
        QVERIFY(!e.host.messages.back().title.has_value());
        // Once ended, no further handler runs.
        bool ran = false;
        QVERIFY(!e.window.run([&] { ran = true; }));
        QVERIFY(!ran);

        // The same through a real control: the folder button's handler meets a failing browser.
        window_test::BasicWindow<FailingBrowserHost> f;
        QTest::mouseClick(f.child<QAbstractButton>("ask_datadir"), Qt::LeftButton);
        QCOMPARE(f.host.lastPrompt(), std::string("Run-time error '76':\n\nPath not found"));
        QCOMPARE(f.host.endCount, 1);
    }

    void controlDroppedOnALineReachesThatLine() {
        Window& e = *window_;
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
        const QPoint below(at.x(), e.table()->visualRect(e.cell(7, 2)).bottom() + 30);
        QDragMoveEvent outside(below, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &outside);
        QVERIFY(!outside.isAccepted());
    }

    void fieldsAndPreviewFollowTheForm() {
        Window& e = *window_;
        // What the user types reaches the form's fields; the size fields take digits only.
        e.child<QLineEdit>("Text2")->end(false);
        QTest::keyClicks(e.child<QLineEdit>("Text2"), "!");
        QCOMPARE(e.form.Text2.text, std::string("Drill menu!"));
        auto* combo2 = e.child<QComboBox>("Combo2");
        QCOMPARE(combo2->currentText(), QStringLiteral("60"));
        combo2->lineEdit()->end(false);
        QTest::keyClicks(combo2, "x5.5");
        QCOMPARE(combo2->currentText(), QStringLiteral("6055"));
        QCOMPARE(e.form.Combo2.text, std::string("6055"));

        // The preview shows when the form says so, and closing it tells the form.
        vkl::test::writeBmp(e.path("menu.bmp"), 40, 30);
        e.form.preview = {true, true, e.path("menu.bmp"), 40, 30};
        e.window.sync();
        auto* preview = e.child<QWidget>("preview");
        QVERIFY(preview && preview->isVisible());  // its picture and place: WindowTreeTest
        preview->close();
        QVERIFY(!e.form.preview.shown);
    }

    void treePressesReachTheForm() {
        Window& e = *window_;
        QWidget* viewport = e.tree()->viewport();

        // The right button opens the menu of the node's kind, found by the press position.
        for (const char* key : {"Menu0", "Child7", "Menu1"}) {
            QTest::mouseClick(viewport, Qt::RightButton, {}, e.nodeCentre(key));
        }
        QCOMPARE(e.host.popups, (std::vector<std::string>{"Menu1", "Menu2", "menu3"}));
        QCOMPARE(e.form.treeEvents.currentNodeKey, std::string("Menu1"));

        // Folding a folder and moving the current node in the view reach the form.
        e.tree()->collapse(e.node("Menu1"));
        QVERIFY(!e.form.Treeview.expanded(e.form.Treeview.byKey("Menu1")));
        e.tree()->setCurrentIndex(e.node("Menu3"));
        QCOMPARE(e.form.treeEvents.treeSelected, e.form.Treeview.byKey("Menu3"));

        // A left click on an item selects it and marks its line.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, e.nodeCentre("Child7"));
        QCOMPARE(e.form.treeEvents.currentNodeKey, std::string("Child7"));
        QCOMPARE(e.tree()->currentIndex(), e.node("Child7"));
        QCOMPARE(e.form.Table.backColorAt(7, 1), e.form.highlightColor);
        QCOMPARE(
            e.cell(7, 1).data(Qt::BackgroundRole).value<QColor>(),
            static_cast<vkl::gui::GridModel*>(e.table()->model())->color(e.form.highlightColor));
    }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
