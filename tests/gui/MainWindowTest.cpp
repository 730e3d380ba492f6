// The real main window, offscreen, over a form whose dialogs are answered by a script: what it
// shows of the form, and how its controls reach the form's handlers.
#include "platform/RuntimeError.h"
#include "support/WindowFixture.h"

using vkl::ToolbarButton;
using namespace window_test;

namespace {

// A host whose folder browser fails the way the operating system can.
class FailingBrowserHost : public vkl::test::ScriptedHost {
  public:
    std::string browseForFolder(const std::string&) override {
        throw vkl::RuntimeError::pathNotFound();
    }
};

// Every caption, pop-up entry and column heading shows what the form holds for it.
void expectCaptionsOfTheForm(Window& e) {
    // The controls of vkl::test::kCaptions, in its order.
    const char* const names[] = {
        "Label1",  "Label2",    "Label3",    "Label4",  "ask_datadir",   "ask_imagedir",
        "Expand",  "Colapse",   "onlymenus", "Quit",    "addsub",        "addabove1",
        "remove1", "addabove2", "addbelow2", "remove2", "removechilden", "addimage"};
    static_assert(std::size(vkl::test::kCaptions) == std::size(names));
    QStringList held, seen;
    for (size_t i = 0; i < std::size(names); ++i) {
        held << utf8(e.form.captions.*vkl::test::kCaptions[i]);
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
        QToolBar* bar = w->child<QToolBar>("Toolbar1");
        QCOMPARE(w->window.toolBarArea(bar), Qt::TopToolBarArea);
        const QList<QAction*> actions = bar->actions();
        QCOMPARE(actions.size(), 9);
        QCOMPARE(actions.size(), static_cast<int>(w->form.toolbar.size()));
        QList<QImage> pictures;
        for (int i = 0; i < actions.size(); ++i) {
            const ToolbarButton& b = w->form.toolbar[static_cast<size_t>(i)];
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
                         qRound(b.widthTwips * w->window.logicalDpiX() / 1440.0));
            }
        }
        QCOMPARE(bar->iconSize().height(),
                 qRound(w->form.toolbarButtonSize * w->window.logicalDpiY() / 1440.0) - 8);
    }

    void captionsFollowTheLanguage() {
        expectCaptionsOfTheForm(*w);
        for (const char* key : {"useger", "useeng"}) {
            QVERIFY(w->clickTool(key));
            expectCaptionsOfTheForm(*w);
            QCOMPARE(shownText(w->window, "Expand"),
                     QLatin1String(key == std::string("useger") ? "Expandieren" : "Expand"));
        }
        Window de(2);
        expectCaptionsOfTheForm(de);
        QCOMPARE(shownText(de.window, "Quit"), QStringLiteral("Schliessen"));
    }

    void quitAsksFirstAndTheFrameDoesNot() {
        w->host.answers = {vkl::Answer::No};
        QTest::mouseClick(w->child<QAbstractButton>("Quit"), Qt::LeftButton);
        QCOMPARE(w->host.messages.size(), size_t{1});  // the question itself
        QCOMPARE(w->host.endCount, 0);
        QVERIFY(w->window.isVisible());

        w->host.answers = {vkl::Answer::Yes};
        QTest::mouseClick(w->child<QAbstractButton>("Quit"), Qt::LeftButton);
        QCOMPARE(w->host.messages.size(), size_t{2});
        QCOMPARE(w->host.endCount, 1);

        Window framed;
        framed.window.close();
        QCOMPARE(framed.host.endCount, 1);
        QVERIFY(framed.host.messages.empty());
    }

    void runtimeErrorEndsTheProgram() {
        QVERIFY(!w->window.run([] { throw vkl::RuntimeError::overflow(); }));
        QCOMPARE(w->host.endCount, 1);
        QCOMPARE(w->host.messages.size(), size_t{1});
        QCOMPARE(w->host.lastPrompt(), std::string("Run-time error '6':\n\nOverflow"));
        QVERIFY(!w->host.messages.back().title.has_value());
        // Once ended, no further handler runs.
        bool ran = false;
        QVERIFY(!w->window.run([&] { ran = true; }));
        QVERIFY(!ran);

        // The same through a real control: the folder button's handler meets a failing browser.
        window_test::BasicWindow<FailingBrowserHost> f;
        QTest::mouseClick(f.child<QAbstractButton>("ask_datadir"), Qt::LeftButton);
        QCOMPARE(f.host.lastPrompt(), std::string("Run-time error '76':\n\nPath not found"));
        QCOMPARE(f.host.endCount, 1);
    }

    void controlDroppedOnALineReachesThatLine() {
        w->form.holeType = 4;
        w->window.sync();
        QWidget* viewport = w->table()->viewport();
        QMimeData data;
        data.setData(QStringLiteral("application/x-vkl-control"), QByteArray("Picture4"));
        const QPoint at = w->cellCentre(4, 2);
        QVERIFY(dragOver(viewport, at, data, Qt::CopyAction, true));
        QCOMPARE(w->host.lastPrompt(), std::string("drag drop"));
        QCOMPARE(w->form.Table.textMatrix(4, 6), std::string("MACH_ADV_LIBRARY_BLINDHOLE"));
        QCOMPARE(w->form.Table.row(), 4);

        // Below the last line there is nothing to drop on.
        const QPoint below(at.x(), w->table()->visualRect(w->cell(7, 2)).bottom() + 30);
        QVERIFY(!dragOver(viewport, below, data, Qt::CopyAction));
    }

    void fieldsAndPreviewFollowTheForm() {
        // What the user types reaches the form's fields; the size fields take digits only.
        w->child<QLineEdit>("Text2")->end(false);
        QTest::keyClicks(w->child<QLineEdit>("Text2"), "!");
        QCOMPARE(w->form.Text2.text, std::string("Drill menu!"));
        auto* combo2 = w->child<QComboBox>("Combo2");
        QCOMPARE(combo2->currentText(), QStringLiteral("60"));
        combo2->lineEdit()->end(false);
        QTest::keyClicks(combo2, "x5.5");
        QCOMPARE(combo2->currentText(), QStringLiteral("6055"));
        QCOMPARE(w->form.Combo2.text, std::string("6055"));

        // The preview shows when the form says so, and closing it tells the form.
        vkl::test::writeBmp(w->path("menu.bmp"), 40, 30);
        w->form.preview = {true, true, w->path("menu.bmp"), 40, 30};
        w->window.sync();
        auto* preview = w->child<QWidget>("preview");
        QVERIFY(preview && preview->isVisible());  // its picture and place: WindowTreeTest
        preview->close();
        QVERIFY(!w->form.preview.shown);
    }

    void treePressesReachTheForm() {
        QWidget* viewport = w->tree()->viewport();

        // Folding a folder and moving the current node in the view reach the form.
        w->tree()->collapse(w->node("Menu1"));
        QVERIFY(!w->form.Treeview.expanded(w->form.Treeview.byKey("Menu1")));
        w->tree()->setCurrentIndex(w->node("Menu3"));
        QCOMPARE(w->form.treeEvents.treeSelected, w->form.Treeview.byKey("Menu3"));

        // A left click on an item selects it and marks its line.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, w->nodeCentre("Child7"));
        QCOMPARE(w->form.treeEvents.currentNodeKey, std::string("Child7"));
        QCOMPARE(w->tree()->currentIndex(), w->node("Child7"));
        QCOMPARE(w->form.Table.backColorAt(7, 1), w->form.highlightColor);
        QCOMPARE(
            w->cell(7, 1).data(Qt::BackgroundRole).value<QColor>(),
            static_cast<vkl::gui::GridModel*>(w->table()->model())->color(w->form.highlightColor));
    }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
