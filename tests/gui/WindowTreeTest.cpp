// The menu tree in the real window: dragging nodes onto folders, the scroll timer near the
// edges, label edits, pop-up commands and views, and the preview of a folder's bitmap.
#include "support/WindowFixture.h"

using window_test::Window;

namespace {

// A drag of the tree's node, begun with the mouse the way the user begins it; the view's
// own start-drag makes the data the drop will carry.
struct TreeDrag {
    Window& w;
    QMimeData data;

    TreeDrag(Window& window, const std::string& fromKey) : w(window) {
        QWidget* viewport = w.tree()->viewport();
        const QPoint from = w.nodeCentre(fromKey);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        // The drag starts once the pointer has moved far enough with the button down.
        QTest::mouseMove(viewport, from + QPoint(2, 0));
        const QPoint far = from + QPoint(QApplication::startDragDistance() + 4, 0);
        QTest::mouseMove(viewport, far);
        // The view keeps the drag until the event loop runs again; the newest one is this.
        const QList<QDrag*> drags = w.tree()->findChildren<QDrag*>();
        if (!drags.isEmpty()) {
            data.setText(drags.last()->mimeData()->text());
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, far);
    }

    // Passes over a point of the tree's viewport; true when the view would take a drop there.
    bool over(QPoint at) {
        return window_test::dragOver(w.tree()->viewport(), at, data, Qt::MoveAction);
    }
    void dropOn(QPoint at) {
        window_test::dragOver(w.tree()->viewport(), at, data, Qt::MoveAction, true);
    }
};

}  // namespace

class WindowTreeTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void droppedNodeBecomesTheFoldersLastChild() {
        QAbstractItemModel* model = w->tree()->model();

        // The drag carries the key of the node it started on.
        TreeDrag about(*w, "Child7");
        QCOMPARE(about.data.text(), QStringLiteral("Child7"));
        QVERIFY(w->form.treeEvents.dragging);
        QVERIFY(about.over(w->nodeCentre("Menu3")));
        about.dropOn(w->nodeCentre("Menu3"));
        QVERIFY(!w->form.treeEvents.dragging);
        QCOMPARE(model->rowCount(w->node("Menu3")), 3);
        QCOMPARE(model->index(2, 0, w->node("Menu3")), w->node("Child7"));
        QCOMPARE(w->node("Child7").data().toString(), QStringLiteral("ABOUT"));
        QCOMPARE(model->rowCount(w->node("Menu0")), 3);

        // Below the last node there is nothing to drop on.
        TreeDrag nowhere(*w, "Child1");
        const QRect last = w->tree()->visualRect(w->node("Menu4"));
        QVERIFY(!nowhere.over(QPoint(last.center().x(), last.bottom() + 40)));
    }

    void draggingNearTheEdgesScrollsByTheTimer() {
        for (int i = 0; i < 80; ++i) {
            QVERIFY(w->clickTool("lineadd"));
        }
        QTreeView* tree = w->tree();
        QScrollBar* bar = tree->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 20);
        auto* timer = w->window.findChild<QTimer*>(QStringLiteral("Timer1"));
        QVERIFY(!timer->isActive());

        bar->setValue(bar->maximum() / 2);
        const int middle = bar->value();
        const QRect area = tree->viewport()->rect();
        const double pixelsPerTwip = tree->logicalDpiY() / 1440.0;
        const QPoint centre = area.center();
        TreeDrag drag(*w, w->form.Treeview.key(w->treeModel()->node(tree->indexAt(centre))));
        QVERIFY(w->form.treeEvents.dragging);

        // 50 twips below the top edge: the timer runs and each tick scrolls one line up, with the
        // node under the pointer drawn as the drop target.
        const QPoint nearTop(centre.x(), qRound(50 * pixelsPerTwip));
        QVERIFY(drag.over(nearTop));
        QVERIFY(tree->indexAt(nearTop).data(Qt::BackgroundRole).isValid());
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 100);
        QTRY_VERIFY(bar->value() < middle);

        // Near the bottom edge it scrolls down.
        const int stopped = bar->value();
        drag.over(QPoint(centre.x(), area.height() - qRound(100 * pixelsPerTwip)));
        QVERIFY(timer->isActive());
        QTRY_VERIFY(bar->value() > stopped);
        drag.over(centre);
        QVERIFY(!timer->isActive());
        drag.dropOn(centre);
        QVERIFY(!w->form.treeEvents.dragging);
    }

    void labelEditsReachTheTitleCell() {
        QTreeView* tree = w->tree();

        // Opens the label editor of a node, as the user does: a click selects the node; then a
        // second click on it, or F2, opens the editor.
        const auto editLabel = [&](const std::string& key, bool secondClick, const char* typed) {
            QWidget* viewport = tree->viewport();
            QTest::mouseClick(viewport, Qt::LeftButton, {}, w->nodeCentre(key));
            QCOMPARE(tree->currentIndex(), w->node(key));
            // The first click only selects: no editor opens, not even after a while.
            QTest::qWait(QApplication::doubleClickInterval() + 100);
            QVERIFY(!viewport->findChild<QLineEdit*>());
            if (secondClick) {
                QTest::mouseClick(viewport, Qt::LeftButton, {}, w->nodeCentre(key));
                QTRY_VERIFY(viewport->findChild<QLineEdit*>());
            } else {
                QTest::keyClick(tree, Qt::Key_F2);
            }
            auto* editor = viewport->findChild<QLineEdit*>();
            QVERIFY(editor && editor->isVisible());
            editor->selectAll();
            QTest::keyClicks(editor, typed);
            QTest::keyClick(editor, Qt::Key_Return);
            // The editor hands its text over once the key is done.
            QTRY_VERIFY(!viewport->findChild<QLineEdit*>());
        };

        // An item's new label is written, as typed, into its line's title.
        editLabel("Child4", true, "very fine");
        QCOMPARE(w->cellText(4, 1), QStringLiteral("very fine"));
        QCOMPARE(w->node("Child4").data().toString(), QStringLiteral("very fine"));
        QCOMPARE(w->cellText(3, 1), QStringLiteral("Metric"));

        // A folder's label changes the tree only.
        editLabel("Menu3", false, "Grooves");
        QCOMPARE(w->node("Menu3").data().toString(), QStringLiteral("Grooves"));

        // The window goes while an editor is still open: the editor commits as it closes, and the
        // window, half gone, must not take that for an edit.
        QTest::keyClick(tree, Qt::Key_F2);
        auto* open = tree->viewport()->findChild<QLineEdit*>();
        QVERIFY(open && open->isVisible());
        open->setFocus();
        QTest::keyClicks(open, "x");
    }

    void popupCommandsAndViewButtonsShowInTheTree() {
        QTreeView* tree = w->tree();
        const auto rightClick = [&](const std::string& key, const char* entry) {
            w->host.popupAnswers = {entry};
            QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, w->nodeCentre(key));
        };

        // The view buttons, over a new folder at the top and one inside Threads.
        rightClick("Menu0", "addsub");
        rightClick("Menu2", "addsub");
        QCOMPARE(w->node("Menu6").parent(), w->node("Menu2"));
        const auto expandedFolders = [&] {
            QStringList open;
            for (const char* key : {"Menu0", "Menu1", "Menu2", "Menu4", "Menu5", "Menu6"}) {
                if (tree->isExpanded(w->node(key))) {
                    open << QLatin1String(key);
                }
            }
            return open;
        };
        QTest::mouseClick(w->child<QWidget>("Colapse"), Qt::LeftButton);
        QCOMPARE(expandedFolders(), QStringList());
        QCOMPARE(w->form.treeEvents.currentNodeKey, std::string("Menu6"));
        QTest::mouseClick(w->child<QWidget>("Expand"), Qt::LeftButton);
        QCOMPARE(expandedFolders(),
                 (QStringList{"Menu0", "Menu1", "Menu2", "Menu4", "Menu5", "Menu6"}));
        QVERIFY(tree->viewport()->rect().intersects(tree->visualRect(w->node("Menu6"))));
        QTest::mouseClick(w->child<QWidget>("onlymenus"), Qt::LeftButton);
        QCOMPARE(expandedFolders(), (QStringList{"Menu0", "Menu1", "Menu2"}));
    }

    void folderClickShowsItsBitmapInThePreview() {
        Window own;
        // A window with room beside it on the screen.
        const QRect screen = own.window.screen()->availableGeometry();
        own.window.setGeometry(QRect(screen.topLeft(), own.window.minimumSizeHint()));
        QVERIFY(QTest::qWaitForWindowExposed(&own.window));
        QVERIFY(QDir(own.dir.path()).mkdir(QStringLiteral("img")));
        vkl::test::writeBmp(own.path("img/holes.bmp"), 48, 32);
        vkl::test::writeBmp(own.path("img/threads.bmp"), 64, 40);
        QVERIFY(own.open(window_test::toolsMenu()));
        QVERIFY(!own.child<QWidget>("preview"));
        const QSize margins(qRound(850 * own.window.logicalDpiX() / 1440.0),
                            qRound(500 * own.window.logicalDpiY() / 1440.0));
        QWidget* viewport = own.tree()->viewport();

        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.nodeCentre("Menu1"));
        auto* preview = own.child<QWidget>("preview");
        QVERIFY(preview && preview->isVisible() && preview->isWindow());
        QCOMPARE(preview->parentWidget(), &own.window);
        auto* box = preview->findChild<QLabel*>(QStringLiteral("Picture1"));
        const auto expectPicture = [&](QSize size) {
            QCOMPARE(box->pixmap().size(), size);
            QCOMPARE(box->size(), size);
            QCOMPARE(preview->size(), size + margins);
            QVERIFY(preview->rect().contains(box->geometry()));
        };
        expectPicture(QSize(48, 32));
        // It opens beside the window, on the tree's side, and keeps the edge next to it.
        QVERIFY(!preview->frameGeometry().intersects(own.window.frameGeometry()));
        QVERIFY(preview->frameGeometry().left() > own.tree()->mapToGlobal(QPoint(0, 0)).x());
        QVERIFY(screen.contains(preview->frameGeometry()));
        const QPoint corner = preview->frameGeometry().topLeft();

        // A second folder replaces the picture in the same window.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.nodeCentre("Menu2"));
        QCOMPARE(own.child<QWidget>("preview"), preview);
        expectPicture(QSize(64, 40));
        QCOMPARE(preview->frameGeometry().topLeft(), corner);

        // A folder without a bitmap shows nothing new.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.nodeCentre("Menu3"));
        QVERIFY(own.host.messages.empty());
        QCOMPARE(box->pixmap().size(), QSize(64, 40));
        QVERIFY(preview->isVisible());
    }

    // No test ends the program.
    void cleanup() { QCOMPARE(w->host.endCount, 0); }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(WindowTreeTest)
#include "WindowTreeTest.moc"
