// The window as a desktop user meets it: the editors' drop-downs and keys, the pop-up menus over
// the pressed node, a window small enough for every screen, and scroll bars that show their state.
#include <random>

#include "gui/Views.h"
#include "support/WindowFixture.h"

class WindowHabitsTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void dropDownOpensOnFirstClickAndWorksByKeys() {
        QTableView* table = w->table();
        auto* combo1 = w->child<QComboBox>("Combo1");
        const auto typeOn = [&](int row, int col, char key) {
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, w->cellCentre(row, col));
            QTest::keyClick(table, key);
        };

        // The first click on the arrow opens the list; a click on an entry writes its code.
        typeOn(1, 3, 'x');
        QVERIFY(combo1->isVisible());
        QCOMPARE(QApplication::focusWidget(), combo1);
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
        QCOMPARE(w->cellText(1, 3), QStringLiteral("LOS"));
        QCOMPARE(QApplication::focusWidget(), table);

        // By the keys: the arrows move without writing, Enter chooses.
        typeOn(2, 3, 'x');
        QCOMPARE(QApplication::focusWidget(), combo1);
        QTest::keyClick(combo1, Qt::Key_Down);
        QTest::keyClick(combo1, Qt::Key_Down);
        QVERIFY(combo1->isVisible());
        QCOMPARE(w->cellText(2, 3), QStringLiteral("LOS"));
        QTest::keyClick(combo1, Qt::Key_Return);
        QVERIFY(!combo1->isVisible());
        QCOMPARE(w->cellText(2, 3), QStringLiteral("LMM"));

        // F4 and Alt+Down open the list; Escape closes it, and a second Escape hides the
        // drop-down without writing.
        // (A click on the cell would stamp the last code into it; the keys move there.)
        QTest::keyClick(table, Qt::Key_Down);
        QTest::keyClick(table, 'x');
        for (const QKeyCombination open : {QKeyCombination(Qt::Key_F4), Qt::ALT | Qt::Key_Down}) {
            QTest::keyClick(combo1, open.key(), open.keyboardModifiers());
            QTRY_VERIFY(combo1->view()->isVisible());
            QTest::keyClick(combo1->view(), Qt::Key_Escape);
            QTRY_VERIFY(!combo1->view()->isVisible());
            QVERIFY(combo1->isVisible());
        }
        QTest::keyClick(combo1, Qt::Key_Up);
        QTest::keyClick(combo1, Qt::Key_Escape);
        QVERIFY(!combo1->isVisible());
        QCOMPARE(w->cellText(3, 3), QStringLiteral("D"));
        QCOMPARE(QApplication::focusWidget(), table);
    }

    void sizeFieldsKeepWhatIsTyped() {
        for (auto [name, model] :
             {std::pair{"Combo2", &w->form.Combo2}, {"Combo3", &w->form.Combo3}}) {
            auto* field = w->child<QComboBox>(name);
            for (const char* typed : {"8", "6", "1", "55"}) {
                QTest::mouseClick(field->lineEdit(), Qt::LeftButton);
                field->lineEdit()->selectAll();
                QTest::keyClicks(field->lineEdit(), QLatin1String(typed));
                QCOMPARE(field->currentText(), QLatin1String(typed));
                QCOMPARE(model->text, std::string(typed));
                QTest::mouseClick(w->child<QLineEdit>("Text2"), Qt::LeftButton);
                QCOMPARE(field->currentText(), QLatin1String(typed));
            }
        }
    }

    void popupShowsThePressedNodeSelected() {
        QTreeView* tree = w->tree();
        tree->expandAll();
        QString shownAtPopup;
        w->host.onPopup = [&](const std::string&) {
            const QModelIndexList selected = tree->selectionModel()->selectedIndexes();
            shownAtPopup = selected.size() == 1 ? selected.front().data().toString() : QString();
        };
        for (const char* key : {"Child2", "Menu2", "Child1"}) {
            QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, w->nodeCentre(key));
            QCOMPARE(shownAtPopup, w->node(key).data().toString());
        }
    }

    void escapeCancelsTheTextEdit() {
        auto* text1 = w->child<QLineEdit>("Text1");
        for (int col : {1, 4}) {
            const QString cell = w->cellText(2, col);
            const QString label = w->node("Child2").data().toString();
            QTest::mouseClick(w->table()->viewport(), Qt::LeftButton, {}, w->cellCentre(2, col));
            QTest::keyClicks(w->table(), QStringLiteral("n"));
            QTest::keyClicks(text1, QStringLiteral("ew"));
            QCOMPARE(text1->text(), QStringLiteral("New"));
            QCOMPARE(w->node("Child2").data().toString(), col == 1 ? QStringLiteral("New") : label);
            QTest::keyClick(text1, Qt::Key_Escape);
            QVERIFY(!text1->isVisible());
            QCOMPARE(w->cellText(2, col), cell);
            QCOMPARE(w->node("Child2").data().toString(), label);
            QCOMPARE(QApplication::focusWidget(), w->table());
        }
    }

    void openAndSaveKeysRunTheToolbarCommands() {
        w->host.answers = {vkl::Answer::Yes};  // append
        w->host.openAnswers.push_back(vkl::test::ScriptedHost::pick(window_test::toolsMenu()));
        QTest::keySequence(&w->window, QKeySequence::Open);
        QCOMPARE(w->host.openRequests.size(), size_t{2});
        QCOMPARE(w->table()->model()->rowCount(), 13);
        const std::string saved = w->path("saved.vkl");
        w->host.saveAnswers.push_back(vkl::test::ScriptedHost::pick(saved));
        QTest::keySequence(w->table(), QKeySequence::Save);
        QCOMPARE(w->host.saveRequests.size(), size_t{1});
        QVERIFY(!vkl::test::readBytes(saved).empty());
        // The keys typed nothing into the grid.
        QVERIFY(!w->child<QLineEdit>("Text1")->isVisible());
    }

    void everyControlFitsTheSmallestWindow() {
        // 1600 x 1000 pixels at 200 % leave 800 x 500 logical pixels for the window.
        const QSize least = w->window.minimumSizeHint();
        QVERIFY2(least.width() <= 800 && least.height() <= 500,
                 qPrintable(QStringLiteral("%1 x %2").arg(least.width()).arg(least.height())));
        QTableView* table = w->table();
        const QFontMetrics metrics(table->font());
        for (const QSize size : {w->window.size(), QSize(1024, 640), least}) {
            w->window.resize(size);
            QTRY_COMPARE(w->window.size(), size);
            QCoreApplication::processEvents();
            const QRect inside = w->window.rect();
            int named = 0;
            for (QWidget* control : w->window.findChildren<QWidget*>()) {
                const QString name = control->objectName();
                if (name.isEmpty() || name.startsWith(QLatin1String("qt_")) ||
                    control->isWindow()) {
                    continue;
                }
                QVERIFY2(!control->accessibleName().isEmpty(), qPrintable(name));
                // The editors show only over a cell being edited.
                if (name == QLatin1String("Text1") || name == QLatin1String("Combo1")) {
                    continue;
                }
                ++named;
                const QRect at(control->mapTo(&w->window, QPoint(0, 0)), control->size());
                // The toolbar's placeholder is the one control that may give up all its width.
                if (name == QLatin1String("vklname") && at.width() == 0) {
                    continue;
                }
                QVERIFY2(control->isVisible() && at.width() > 0, qPrintable(name));
                QVERIFY2(inside.contains(at.adjusted(0, 0, std::max(0, 1 - at.width()), 0)),
                         qPrintable(name));
            }
            QCOMPARE(named, 27);
            // The header fields lie between the toolbar and the grid, the tree beside the grid.
            const auto box = [&](const char* name) {
                auto* c = w->child<QWidget>(name);
                return QRect(c->mapTo(&w->window, QPoint(0, 0)), c->size());
            };
            for (const char* field :
                 {"Label1", "Combo2", "Label2", "Combo3", "Label3", "Text2", "Label4", "Text3",
                  "ask_datadir", "Datadir", "ask_imagedir", "Imagedir"}) {
                QVERIFY2(box(field).top() >= box("Toolbar1").bottom() &&
                             box(field).bottom() < box("Table").top(),
                         field);
            }
            QVERIFY(box("Treeview").left() > box("Table").right());
            QVERIFY(box("Treeview").top() < box("Table").bottom() &&
                    box("Treeview").bottom() > box("Table").top());
            // The grid keeps its column widths, without row headings, and scrolls sideways to show
            // them.
            QVERIFY(!table->verticalHeader()->isVisible());
            int columns = 0;
            for (int c = 0; c < 5; ++c) {
                QCOMPARE(table->columnWidth(c),
                         metrics.horizontalAdvance(
                             QString(vkl::Form1::kColumnLetters[c], QLatin1Char('n'))));
                columns += table->columnWidth(c);
            }
            QCOMPARE(table->horizontalScrollBar()->maximum(),
                     std::max(0, columns - table->viewport()->width()));
        }
    }

    void commandsKeepWhatTheViewsShow() {
        const std::string menu = w->path("groups.vkl");
        window_test::writeGroups(menu);
        w->host.answers = {vkl::Answer::No};
        QVERIFY(w->open(menu));
        QTreeView* tree = w->tree();
        tree->collapse(w->node("Menu5"));
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, w->nodeCentre("Menu4"));
        QScrollBar* lines = w->table()->verticalScrollBar();
        QScrollBar* nodes = tree->verticalScrollBar();
        lines->setValue(99);
        nodes->setValue(nodes->maximum() / 3);
        QCoreApplication::sendPostedEvents();
        const int nodesAt = nodes->value();
        QVERIFY(nodesAt > 0);
        const auto folded = [&] {
            QString shown;
            for (int g = 1; g <= 20; ++g) {
                const QModelIndex at = w->node("Menu" + std::to_string(g));
                shown += !at.isValid() ? '_' : tree->isExpanded(at) ? '+' : '-';
            }
            return shown;
        };
        const QString before = folded();

        // Commands on lines and folders further down: what the views show stays.
        for (const char* entry : {"remove1", "removechilden", "remove2"}) {
            QVERIFY(w->window.run([&] {
                w->form.treeEvents.currentNodeKey =
                    std::string(entry) == "remove1" ? "Child200" : "Menu19";
                w->form.menuClick(entry);
            }));
            QCoreApplication::sendPostedEvents();
            QCOMPARE(lines->value(), 99);
            QCOMPARE(nodes->value(), nodesAt);
            QCOMPARE(tree->currentIndex(), w->node("Menu4"));
        }
        // Group 19 sat inside group 18.
        QString after = before;
        after[18] = '_';
        after[19] = '_';
        QCOMPARE(folded(), after);
    }

    void scrollBarsShowWhatTheyHold() {
        // The picture a scroll bar keeps against one painted afresh, over small random changes
        // of its range, position, size, state, colours, direction and style.
        std::vector<std::unique_ptr<QStyle>> styles;
        for (const QString& name : QStyleFactory::keys()) {
            styles.emplace_back(QStyleFactory::create(name));
        }
        std::mt19937 random(7);
        for (const Qt::Orientation o : {Qt::Vertical, Qt::Horizontal}) {
            vkl::gui::StillScrollBar still(o);
            QScrollBar plain(o);
            for (int step = 0; step < 400; ++step) {
                const unsigned what = random() % 7, small = random() % 40, big = random() % 300;
                const QColor colour = QColor::fromRgb(random());
                for (QScrollBar* bar : {static_cast<QScrollBar*>(&still), &plain}) {
                    switch (what) {
                        case 0:
                            bar->setRange(0, big < 100 ? small : 32000 + small);
                            break;
                        case 1:
                            bar->setValue(big < 100 ? bar->maximum() : small);
                            break;
                        case 2:
                            bar->resize(o == Qt::Vertical ? QSize(16, 100 + big)
                                                          : QSize(100 + big, 16));
                            break;
                        case 3:
                            bar->setEnabled(big >= 75);
                            break;
                        case 4:
                            bar->setLayoutDirection(big < 150 ? Qt::LeftToRight : Qt::RightToLeft);
                            break;
                        case 5:
                            bar->setStyle(styles[big % styles.size()].get());
                            break;
                        default: {
                            QPalette colours = bar->palette();
                            colours.setColor(QPalette::Button, colour);
                            bar->setPalette(colours);
                        }
                    }
                }
                QCOMPARE(still.grab().toImage(), plain.grab().toImage());
            }
        }
    }

    // No test ends the program.
    void cleanup() { QCOMPARE(w->host.endCount, 0); }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(WindowHabitsTest)
#include "WindowHabitsTest.moc"
