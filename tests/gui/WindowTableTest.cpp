// Editing the menu table in the real window: keys typed on the grid and into the editor over
// the cell, the pickers behind a double click, action codes, marking and deleting lines, and a
// menu made from nothing and saved.
#include "support/WindowFixture.h"

using vkl::test::ScriptedHost;
using namespace window_test;

class WindowTableTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void typedTitleReachesCellAndNodeLabel() {
        for (int i = 0; i < 40; ++i) {
            QVERIFY(w->clickTool("lineadd"));
        }
        QCOMPARE(w->table()->model()->rowCount(), 47);
        QCOMPARE(w->node("Child40").data().toString(), QStringLiteral(" "));
        QTableView* table = w->table();
        auto* text1 = w->child<QLineEdit>("Text1");

        // A letter, an umlaut, on a title far down: the editor lies over that cell of the scrolled
        // grid and the line's node takes the title as it is typed.
        table->scrollTo(w->cell(40, 1), QAbstractItemView::PositionAtCenter);
        QVERIFY(table->verticalScrollBar()->value() > 0);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, w->cellCentre(40, 1));
        QCOMPARE(w->form.Table.row(), 40);
        QTest::sendKeyEvent(QTest::Click, table, Qt::Key_Udiaeresis, QString::fromUtf8("ü"), {});
        QVERIFY(text1->isVisible());
        QCOMPARE(text1->text(), QString::fromUtf8("ü"));
        QCOMPARE(text1->cursorPosition(), 1);
        QCOMPARE(text1->geometry(), table->visualRect(w->cell(40, 1)));
        QVERIFY(table->viewport()->rect().contains(text1->geometry()));
        QCOMPARE(w->node("Child40").data().toString(), QString::fromUtf8("ü"));
        QTest::keyClicks(text1, "rsQ");
        QCOMPARE(w->node("Child40").data().toString(), QString::fromUtf8("ürsQ"));

        // The window grows while the edit is open: the grid scrolls back and the editor stays on
        // its cell.
        table->verticalScrollBar()->setValue(table->verticalScrollBar()->maximum());
        QCOMPARE(text1->geometry(), table->visualRect(w->cell(40, 1)));
        const QRect before = text1->geometry();
        w->window.resize(1400, 1000);
        QTRY_VERIFY(table->visualRect(w->cell(40, 1)) != before);
        QCOMPARE(text1->geometry(), table->visualRect(w->cell(40, 1)));
        table->setColumnWidth(1, table->columnWidth(1) + 40);  // and when its column widens
        QCOMPARE(text1->geometry(), table->visualRect(w->cell(40, 1)));

        // Enter takes the text over into the cell and moves one cell to the right.
        QTest::keyClick(text1, Qt::Key_Return);
        QVERIFY(!text1->isVisible());
        QCOMPARE(w->form.Table.textMatrix(40, 1), std::string("\xfcrsQ"));
        QCOMPARE(table->currentIndex(), w->cell(40, 2));
        QCOMPARE(w->form.Table.col(), 2);

        // Space on a title opens its own text; the node takes that text too, and the edit is taken
        // over into its cell when another cell is clicked.
        table->scrollToTop();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, w->cellCentre(3, 1));
        QTest::keyClick(table, Qt::Key_Space);
        QCOMPARE(text1->text(), QStringLiteral("Metric"));
        QCOMPARE(text1->cursorPosition(), 6);
        QCOMPARE(w->node("Child3").data().toString(), QStringLiteral("Metric"));
        QTest::keyClicks(text1, "s");
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, w->cellCentre(5, 4));
        QVERIFY(!text1->isVisible());
        QCOMPARE(w->cellText(3, 1), QStringLiteral("Metrics"));
        QCOMPARE(w->node("Child3").data().toString(), QStringLiteral("Metrics"));
        QCOMPARE(w->cellText(5, 4), QStringLiteral("slotter.exe"));
    }

    void pickersAndActionCodesFillTheirCells() {
        QTableView* table = w->table();
        QWidget* viewport = table->viewport();

        // Bitmap column: the bare name of the chosen file, its extension gone in any case.
        w->host.openAnswers.push_back(ScriptedHost::pick("/pictures/a.bmp.old.BMP"));
        QTest::mouseDClick(viewport, Qt::LeftButton, {}, w->cellCentre(1, 2));
        QCOMPARE(w->cellText(1, 2), QStringLiteral("a.old"));

        // A key on the action column opens the list over the cell; the choice writes its code, and
        // a press on another action cell stamps the same code there.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, w->cellCentre(5, 3));
        QTest::keyClick(table, Qt::Key_X);
        auto* combo1 = w->child<QComboBox>("Combo1");
        QCOMPARE(combo1->geometry(), table->visualRect(w->cell(5, 3)));
        QCOMPARE(w->cellText(5, 3), QStringLiteral("P"));
        emit combo1->activated(combo1->findText(QStringLiteral("PKG")));
        QCOMPARE(w->cellText(5, 3), QStringLiteral("LOS"));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, w->cellCentre(7, 3));
        QCOMPARE(w->cellText(7, 3), QStringLiteral("LOS"));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, w->cellCentre(6, 2));
        QCOMPARE(w->cellText(6, 2), QStringLiteral("sink.bmp"));
    }

    void menuMadeFromNothingIsMarkedDeletedAndSaved() {
        Window own;
        QTableView* table = own.table();
        QWidget* viewport = table->viewport();
        auto* text1 = own.child<QLineEdit>("Text1");
        auto* combo1 = own.child<QComboBox>("Combo1");
        for (int i = 0; i < 3; ++i) {
            QVERIFY(own.clickTool("lineadd"));
        }
        QCOMPARE(table->model()->rowCount(), 3);
        QCOMPARE(own.cellText(3, 0), QStringLiteral("3"));
        QCOMPARE(own.tree()->model()->rowCount(), 0);  // no tree yet, so no nodes for new lines

        // Line 1: title, code from the list, parameter; line 2 gets the same code by a press.
        const auto type = [&](int row, int col, Qt::Key first, const char* rest) {
            QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(row, col));
            QTest::keyClick(table, first);
            QTest::keyClicks(text1, rest);
            QTest::keyClick(text1, Qt::Key_Return);
        };
        type(1, 1, Qt::Key_D, "rill");
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(1, 3));
        QTest::keyClick(table, Qt::Key_F);
        emit combo1->activated(combo1->findText(QStringLiteral("Function")));
        type(1, 4, Qt::Key_M, "ake_hole");
        type(2, 1, Qt::Key_T, "ap");
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(2, 3));
        type(2, 4, Qt::Key_T, "ap_hole");
        type(3, 1, Qt::Key_S, "ink");
        QCOMPARE(own.cellText(1, 1), QStringLiteral("Drill"));
        QCOMPARE(own.cellText(2, 3), QStringLiteral("F"));
        QCOMPARE(own.cellText(2, 4), QStringLiteral("Tap_hole"));

        // Marking line 1 by its number colours the whole line.
        const auto* grid = static_cast<vkl::gui::GridModel*>(table->model());
        const QColor marked = grid->color(own.form.markingColor);
        QCOMPARE(marked, QColor(255, 224, 192));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(1, 0));
        for (int c = 0; c < 5; ++c) {
            QCOMPARE(own.cell(1, c).data(Qt::BackgroundRole).value<QColor>(), marked);
        }
        QVERIFY(own.cell(2, 1).data(Qt::BackgroundRole).value<QColor>() != marked);

        // On screen the number cell, now the current cell, keeps the mark's colour inside a frame;
        // the title beside it shows its text on the same colour.
        own.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&own.window));
        table->setFocus();
        QTRY_VERIFY(table->hasFocus());
        const QImage shot = viewport->grab().toImage();
        const QRect number = table->visualRect(own.cell(1, 0));
        const QColor frame = table->palette().color(QPalette::Highlight);
        QCOMPARE(shot.pixelColor(number.right() - 6, number.center().y()), marked);
        QCOMPARE(shot.pixelColor(number.left() + 1, number.center().y()), frame);
        const QRect title = table->visualRect(own.cell(1, 1));
        QCOMPARE(shot.pixelColor(title.right() - 4, title.center().y()), marked);
        int ink = 0;
        for (int x = title.left() + 2; x < title.left() + 40; ++x) {
            for (int y = title.top() + 2; y < title.bottom() - 1; ++y) {
                ink += shot.pixelColor(x, y) != marked ? 1 : 0;
            }
        }
        QVERIFY2(ink > 20, "the title's text is drawn");

        // Saving derives the flat tree from the lines; the unfinished third line is left out.
        const std::string out = own.path("made.vkl");
        own.host.saveAnswers.push_back(ScriptedHost::pick(out));
        QVERIFY(own.clickTool("save"));
        QVERIFY(vkl::test::readBytes(out).ends_with(
            "\r\n11\r\nDrill||F|Make_hole\r\nTap||F|Tap_hole\r\n"));
        QTreeView* tree = own.tree();
        QCOMPARE(tree->model()->rowCount(), 1);
        QVERIFY(tree->isExpanded(own.node("Menu0")));

        // Now the lines have nodes: a mark shows on the node, and deleting takes line and node.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(3, 0));
        QCOMPARE(pictureOf(own.node("Child3")), QStringLiteral("arrow2"));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, own.cellCentre(3, 0));
        QCOMPARE(pictureOf(own.node("Child3")), QStringLiteral("blank"));
        QCOMPARE(own.cell(3, 1).data(Qt::BackgroundRole).value<QColor>(),
                 grid->color(own.form.defaultCellColor));
        QVERIFY(own.clickTool("linedel"));
        QCOMPARE(table->model()->rowCount(), 2);
        QCOMPARE(tree->model()->rowCount(own.node("Menu0")), 2);
        QVERIFY(!own.node("Child3").isValid());
        QCOMPARE(own.host.endCount, 0);
    }

    // No test ends the program.
    void cleanup() { QCOMPARE(w->host.endCount, 0); }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(WindowTableTest)
#include "WindowTableTest.moc"
