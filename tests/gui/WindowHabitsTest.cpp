// The window as a desktop user meets it: the editors' drop-downs and keys, the pop-up menus over
// the pressed node, and a window small enough for every screen.
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>

#include "gui/WindowFixture.h"

using window_test::Window;

namespace {

QWidget* focused() {
    return QApplication::focusWidget();
}

}  // namespace

class WindowHabitsTest : public QObject {
    Q_OBJECT
  private slots:
    void dropDownOpensOnFirstClickAndWorksByKeys();
    void sizeFieldsKeepWhatIsTyped();
    void popupShowsThePressedNodeSelected();
    void escapeCancelsTheTextEdit();
};

void WindowHabitsTest::dropDownOpensOnFirstClickAndWorksByKeys() {
    Window w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    QVERIFY(w.open(window_test::toolsMenu()));
    QTableView* table = w.table();
    auto* combo1 = w.child<QComboBox>("Combo1");
    const auto typeOn = [&](int row, int col, char key) {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, w.cellCentre(row, col));
        QTest::keyClick(table, key);
    };

    // The first click on the arrow opens the list; a click on an entry writes its code.
    typeOn(1, 3, 'x');
    QVERIFY(combo1->isVisible());
    QCOMPARE(focused(), combo1);
    QTest::mouseClick(combo1, Qt::LeftButton, {},
                      QPoint(combo1->width() - 4, combo1->height() / 2));
    QVERIFY(combo1->isVisible());
    QTRY_VERIFY(combo1->view()->isVisible());
    QAbstractItemView* list = combo1->view();
    // The list takes no click as a choice until a double click could no longer be one.
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(4, 0)).center());
    QTRY_VERIFY(!combo1->isVisible());
    QCOMPARE(w.cellText(1, 3), QStringLiteral("LOS"));
    QCOMPARE(focused(), table);

    // By the keys: the arrows move without writing, Enter chooses.
    typeOn(2, 3, 'x');
    QCOMPARE(focused(), combo1);
    QTest::keyClick(combo1, Qt::Key_Down);
    QTest::keyClick(combo1, Qt::Key_Down);
    QVERIFY(combo1->isVisible());
    QCOMPARE(w.cellText(2, 3), QStringLiteral("LOS"));
    QTest::keyClick(combo1, Qt::Key_Return);
    QVERIFY(!combo1->isVisible());
    QCOMPARE(w.cellText(2, 3), QStringLiteral("LMM"));

    // F4 and Alt+Down open the list; Escape closes it, and a second Escape hides the
    // drop-down without writing.
    // (A click on the cell would stamp the last code into it; the keys move there.)
    QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, 'x');
    QTest::keyClick(combo1, Qt::Key_F4);
    QTRY_VERIFY(combo1->view()->isVisible());
    QTest::keyClick(combo1->view(), Qt::Key_Escape);
    QTRY_VERIFY(!combo1->view()->isVisible());
    QVERIFY(combo1->isVisible());
    QTest::keyClick(combo1, Qt::Key_Down, Qt::AltModifier);
    QTRY_VERIFY(combo1->view()->isVisible());
    QTest::keyClick(combo1->view(), Qt::Key_Escape);
    QTRY_VERIFY(!combo1->view()->isVisible());
    QTest::keyClick(combo1, Qt::Key_Up);
    QTest::keyClick(combo1, Qt::Key_Escape);
    QVERIFY(!combo1->isVisible());
    QCOMPARE(w.cellText(3, 3), QStringLiteral("D"));
    QCOMPARE(focused(), table);
    QCOMPARE(w.host.endCount, 0);
}

void WindowHabitsTest::sizeFieldsKeepWhatIsTyped() {
    Window w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    for (const char* name : {"Combo2", "Combo3"}) {
        auto* field = w.child<QComboBox>(name);
        vkl::ComboBox& model =
            QLatin1String(name) == QLatin1String("Combo2") ? w.form.Combo2 : w.form.Combo3;
        for (const char* typed : {"8", "6", "1", "55"}) {
            QTest::mouseClick(field->lineEdit(), Qt::LeftButton);
            field->lineEdit()->selectAll();
            QTest::keyClicks(field->lineEdit(), QLatin1String(typed));
            QCOMPARE(field->currentText(), QLatin1String(typed));
            QCOMPARE(model.text, std::string(typed));
            QTest::mouseClick(w.child<QLineEdit>("Text2"), Qt::LeftButton);
            QCOMPARE(field->currentText(), QLatin1String(typed));
        }
    }
}

void WindowHabitsTest::popupShowsThePressedNodeSelected() {
    Window w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    QVERIFY(w.open(window_test::toolsMenu()));
    QTreeView* tree = w.tree();
    tree->expandAll();
    QString shownAtPopup;
    w.host.onPopup = [&](const std::string&) {
        const QModelIndexList selected = tree->selectionModel()->selectedIndexes();
        shownAtPopup = selected.size() == 1 ? selected.front().data().toString() : QString();
    };
    for (const char* key : {"Child2", "Menu2", "Child1"}) {
        QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, w.nodeCentre(key));
        QCOMPARE(shownAtPopup, w.node(key).data().toString());
    }
}

void WindowHabitsTest::escapeCancelsTheTextEdit() {
    Window w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    QVERIFY(w.open(window_test::toolsMenu()));
    auto* text1 = w.child<QLineEdit>("Text1");
    for (int col : {1, 4}) {
        const QString cell = w.cellText(2, col);
        const QString label = w.node("Child2").data().toString();
        QTest::mouseClick(w.table()->viewport(), Qt::LeftButton, {}, w.cellCentre(2, col));
        QTest::keyClicks(w.table(), QStringLiteral("n"));
        QTest::keyClicks(text1, QStringLiteral("ew"));
        QCOMPARE(text1->text(), QStringLiteral("New"));
        QCOMPARE(w.node("Child2").data().toString(), col == 1 ? QStringLiteral("New") : label);
        QTest::keyClick(text1, Qt::Key_Escape);
        QVERIFY(!text1->isVisible());
        QCOMPARE(w.cellText(2, col), cell);
        QCOMPARE(w.node("Child2").data().toString(), label);
        QCOMPARE(focused(), w.table());
    }
}

QTEST_MAIN(WindowHabitsTest)
#include "WindowHabitsTest.moc"
