// The item models over the grid and the tree, checked against Qt's own model rules while the
// plain models change underneath them.
#include <QAbstractItemModelTester>

#include <random>

#include "platform/Colors.h"
#include "support/WindowFixture.h"

using vkl::NodeRef;
using vkl::TreeNodes;
using vkl::gui::GridModel;
using vkl::gui::TreeModel;

namespace {

constexpr auto kQtTest = QAbstractItemModelTester::FailureReportingMode::QtTest;

// The texts of the children of parent in order, each followed by its own children in brackets.
QString shape(const QAbstractItemModel& model, const QModelIndex& parent = {}) {
    QStringList parts;
    for (int r = 0; r < model.rowCount(parent); ++r) {
        const QModelIndex child = model.index(r, 0, parent);
        QString part = child.data().toString();
        if (model.rowCount(child) > 0) {
            part += QLatin1Char('[') + shape(model, child) + QLatin1Char(']');
        }
        parts << part;
    }
    return parts.join(QLatin1Char(' '));
}

}  // namespace

class ModelsTest : public QObject {
    Q_OBJECT
  private slots:
    void gridRowsFollowTheGrid() {
        // Removing rows in too many runs at once is one reset.
        vkl::Grid grid;
        GridModel model(grid);
        QAbstractItemModelTester tester(&model, kQtTest);
        grid.setRows(2 * vkl::Grid::kMaxRemovalRuns + 4);
        grid.setTextMatrix(1, 1, "line 1");
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
        std::vector<bool> drop(static_cast<size_t>(grid.rows()), false);
        for (int r = 2; r < grid.rows(); r += 2) {
            drop[static_cast<size_t>(r)] = true;
        }
        grid.removeRows(drop);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(removed.count(), 0);
        QCOMPARE(model.rowCount(), grid.rows() - 1);
        QCOMPARE(model.index(0, 1).data().toString(), QStringLiteral("line 1"));
    }

    void gridCellsHeaderAndColours() {
        vkl::Grid grid;
        grid.setRows(3);
        GridModel model(grid);
        QAbstractItemModelTester tester(&model, kQtTest);

        // Row 0 is the header, not a data row.
        QSignalSpy header(&model, &QAbstractItemModel::headerDataChanged);
        grid.setTextMatrix(0, 1, "Menu Title");
        QCOMPARE(header.count(), 1);
        QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Menu Title"));

        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        grid.setTextMatrix(2, 4, "M\xfcller \x80");
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex(), model.index(1, 4));
        QCOMPARE(model.index(1, 4).data().toString(), QString::fromUtf8("Müller €"));

        // Colours: none, or an RGB value in the grid's byte order.
        QVERIFY(!model.index(0, 1).data(Qt::BackgroundRole).isValid());
        grid.setBackColorAt(1, 1, vkl::kMarkingColor);
        QCOMPARE(model.index(0, 1).data(Qt::BackgroundRole).value<QColor>(), QColor(255, 224, 192));
        // The line of the selected node: a tint of the highlight, neither it nor the base.
        const QColor lit = model.color(vkl::kHighlightColor);
        const QPalette palette = QGuiApplication::palette();
        QVERIFY(lit != palette.color(QPalette::Base) && lit != palette.color(QPalette::Highlight));
        QVERIFY(lit.blue() > lit.red());

        QVERIFY(!(model.flags(model.index(0, 1)) & Qt::ItemIsEditable));
    }

    void treeFollowsAddsMovesAndRemoves() {
        TreeNodes nodes;
        TreeModel model(nodes);
        QAbstractItemModelTester tester(&model, kQtTest);

        const NodeRef root = nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
        const NodeRef a = nodes.add(root, TreeNodes::kChild, "Menu1", "A", "folderclosed");
        nodes.add(root, TreeNodes::kChild, "Child1", "one");
        nodes.add(a, TreeNodes::kChild, "Child2", "two");
        nodes.add("Child1", TreeNodes::kPrevious, "Menu2", "B", "folderclosed");
        nodes.add("Menu1", TreeNodes::kNext, "Child3", "three");
        QCOMPARE(shape(model), QStringLiteral("Top Menu[A[two] three B one]"));

        // Re-parenting: a node with its subtree becomes the last child of its new parent.
        nodes.setParent(a, nodes.byKey("Menu2"));
        QCOMPARE(shape(model), QStringLiteral("Top Menu[three B[A[two]] one]"));
        nodes.setParent(nodes.byKey("Child3"), root);
        QCOMPARE(shape(model), QStringLiteral("Top Menu[B[A[two]] one three]"));
        nodes.setParent(nodes.byKey("Child3"), root);  // already the last child: nothing moves
        QCOMPARE(shape(model), QStringLiteral("Top Menu[B[A[two]] one three]"));
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        nodes.setText(nodes.byKey("Child2"), "TWO");
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex(), model.indexOf(nodes.byKey("Child2")));

        nodes.remove(nodes.byKey("Menu2"));
        QCOMPARE(shape(model), QStringLiteral("Top Menu[one three]"));

        // Siblings side by side go as one removal, not as a reset.
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
        nodes.removeMany({nodes.byKey("Child1"), nodes.byKey("Child3")});
        QCOMPARE(reset.count(), 0);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(shape(model), QStringLiteral("Top Menu"));
        nodes.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void treeIndexesOfRemovedNodesAreDead() {
        TreeNodes nodes;
        TreeModel model(nodes);
        const NodeRef root = nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
        const NodeRef item = nodes.add(root, TreeNodes::kChild, "Child1", "one");
        const QModelIndex stale = model.indexOf(item);
        QCOMPARE(model.node(stale), item);
        QCOMPARE(model.parent(stale), model.indexOf(root));

        // A node added after the clear takes the same slot; the old index must not reach it.
        nodes.clear();
        nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
        const NodeRef newcomer =
            nodes.add(nodes.byKey("Menu0"), TreeNodes::kChild, "Child1", "new");
        QCOMPARE(newcomer.slot, item.slot);
        QVERIFY(model.node(stale).isNull());
        QVERIFY(!model.data(stale).isValid());
        QVERIFY(!model.parent(stale).isValid());
        QCOMPARE(model.rowCount(stale), 0);
    }

    void treeShowsTextIconsAndDropHighlight() {
        TreeNodes nodes;
        TreeModel model(nodes);
        const NodeRef root = nodes.add(NodeRef{}, 0, "Menu0", "Top Menu", "root");
        const NodeRef item = nodes.add(root, TreeNodes::kChild, "Child1",
                                       std::string("Gr\xfc\xdf"
                                                   "e"));
        QCOMPARE(model.indexOf(item).data().toString(), QString::fromUtf8("Grüße"));

        // The eight pictures of the tree are told apart; the blank one paints nothing.
        QList<QImage> drawn;
        for (const char* key : window_test::kNodePictures) {
            const QImage image = vkl::gui::icons::node(QLatin1String(key)).pixmap(16, 16).toImage();
            QVERIFY2(!image.isNull() && !drawn.contains(image), key);
            drawn << image.convertToFormat(QImage::Format_ARGB32);
        }
        QImage nothing(drawn.last().size(), QImage::Format_ARGB32);
        nothing.fill(Qt::transparent);
        QCOMPARE(drawn.last(), nothing);
        QVERIFY(!model.indexOf(item).data(Qt::DecorationRole).isValid());
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        nodes.setImage(item, "arrow2");
        QCOMPARE(changed.count(), 1);
        QVERIFY(model.indexOf(item).data(Qt::DecorationRole).isValid());

        QPalette palette;
        palette.setColor(QPalette::Highlight, QColor(1, 2, 3));
        model.setPalette(palette);
        QVERIFY(!model.indexOf(item).data(Qt::BackgroundRole).isValid());
        changed.clear();
        model.setDropHighlight(item);
        QCOMPARE(model.indexOf(item).data(Qt::BackgroundRole).value<QColor>(), QColor(1, 2, 3));
        model.setDropHighlight(root);
        QCOMPARE(changed.count(), 3);  // on, then off and on elsewhere
        QVERIFY(!model.indexOf(item).data(Qt::BackgroundRole).isValid());
    }

    void commandsAnnounceWhatTheyChangedAndNoMore() {
        // Random removals and language switches on a read menu: the models follow the plain ones
        // by removals and one range of changed rows, never by a reset (the tree model reads the
        // plain tree in place; its shape is checked above).
        QTemporaryDir dir;
        const std::string path = dir.filePath(QStringLiteral("menu.vkl")).toStdString();
        window_test::writeGroups(path);
        vkl::test::ScriptedHost host;
        vkl::Form1 form(host, dir.path().toStdString(), 1);
        form.load();
        GridModel grid(form.Table);
        TreeModel tree(form.Treeview);
        QAbstractItemModelTester gridTester(&grid, kQtTest);
        QAbstractItemModelTester treeTester(&tree, kQtTest);
        form.readMenuFile(path);
        QSignalSpy gridResets(&grid, &QAbstractItemModel::modelReset);
        QSignalSpy treeResets(&tree, &QAbstractItemModel::modelReset);
        QSignalSpy gridChanges(&grid, &QAbstractItemModel::dataChanged);

        std::mt19937 random(11);
        const char* const kEntries[] = {"remove1", "remove2", "removechilden"};
        const auto pick = [&](const std::string& stem) {
            std::vector<std::string> keys;
            for (int i = 1; i <= form.Treeview.count(); ++i) {
                const std::string& key = form.Treeview.key(form.Treeview.byIndex(i));
                if (key.rfind(stem, 0) == 0 && key != "Menu0") {
                    keys.push_back(key);
                }
            }
            return keys.empty() ? std::string() : keys[random() % keys.size()];
        };
        for (int step = 0; step < 40 && form.Table.rows() > 12; ++step) {
            gridChanges.clear();
            const int command = static_cast<int>(random() % 5);
            if (command == 4) {
                // The colour pass paints the lines read since the last switch; switching again
                // changes only the header row, and no line is announced.
                form.setLanguage(2);
                form.setLanguage(1);
                QVERIFY(gridChanges.count() <= 1);
                gridChanges.clear();
                form.setLanguage(2);
                form.setLanguage(1);
                QCOMPARE(gridChanges.count(), 0);
            } else if (command == 3) {
                for (int k = 0; k < 3; ++k) {
                    form.Table.setRow(1 + static_cast<int>(random() % (form.Table.rows() - 1)));
                    form.Table.setCol(0);
                    form.tableClick();
                }
                gridChanges.clear();
                form.deleteMarkedLines();
            } else {
                form.treeEvents.currentNodeKey = pick(command == 0 ? "Child" : "Menu");
                if (form.treeEvents.currentNodeKey.empty()) {
                    continue;
                }
                form.menuClick(kEntries[command]);
            }
            QVERIFY(gridChanges.count() <= 1);
            QCOMPARE(gridResets.count(), 0);
            QCOMPARE(treeResets.count(), 0);
            QCOMPARE(grid.rowCount(), form.Table.rows() - 1);
            for (int r = 0; r < grid.rowCount(); ++r) {
                for (int c = 0; c < 5; ++c) {
                    QCOMPARE(grid.index(r, c).data().toString().toStdString(),
                             form.Table.textMatrix(r + 1, c));
                }
            }
        }
    }
};

QTEST_MAIN(ModelsTest)
#include "ModelsTest.moc"
