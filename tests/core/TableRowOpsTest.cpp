#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "app/Form1.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"
#include "support/CoreSupport.h"
#include "table/RowOps.h"

namespace vkl {
namespace {

using keys::item;

// A window with `rows` lines titled T1.., each with its item node under the root.
struct Lines : test::Window {
    explicit Lines(int rows) : test::Window(test::items(rows)) {}
    void clickNumber(int r) {
        moveTo(r, 0);
        form.tableClick();
    }
};

// The delete as the editor describes it: bottom up, one row at a time.
void rowByRowDelete(Grid& g, TreeNodes& t) {
    for (int r = g.rows() - 1; r >= 1; --r) {
        if (g.backColorAt(r, 1) != kMarkingColor) {
            continue;
        }
        if (const NodeRef n = t.find(item(r)); !n.isNull()) {
            t.remove(n);
        }
        if (g.rows() == 2) {  // the row the grid keeps
            for (int c = 1; c < Grid::kCols; ++c) {
                g.setTextMatrix(r, c, "");
                g.setBackColorAt(r, c, 0);
            }
            g.setBackColorAt(r, 0, kNormalColor);
            continue;
        }
        g.removeItem(r);
        for (long k = r + 1; k <= 20; ++k) {  // the later keys move up one by one
            if (const NodeRef m = t.find(item(k)); !m.isNull()) {
                t.setKey(m, item(k - 1));
            }
        }
    }
    for (int r = 1; r < g.rows(); ++r) {
        g.setTextMatrix(r, 0, std::to_string(r));
    }
}

TEST(TableRowOps, LinearDeleteMatchesRowByRowOnRandomMenus) {
    std::mt19937 rng(4711);
    for (int round = 0; round < 300; ++round) {
        const int rows = 1 + static_cast<int>(rng() % 14);
        Grid g;
        TreeNodes t;
        g.setRows(rows + 1);
        g.setRow(static_cast<int>(rng() % static_cast<unsigned>(rows + 1)));
        std::vector<NodeRef> parents{t.add(NodeRef{}, TreeNodes::kLast, "Menu0", "Top", "root")};
        int serial = 0;
        for (int r = 1; r <= rows; ++r) {
            g.setTextMatrix(r, 1, std::string("T") + std::to_string(r));
            g.setTextMatrix(r, 3, std::to_string(rng() % 100));
            if (rng() % 4 == 0) {
                parents.push_back(t.add(parents[rng() % parents.size()], TreeNodes::kChild,
                                        std::string("Menu") + std::to_string(++serial), "F"));
            }
            if (rng() % 8 != 0) {  // some rows have no node
                parents.push_back(t.add(parents[rng() % parents.size()], TreeNodes::kChild, item(r),
                                        std::string("N") + std::to_string(r)));
            }
        }
        if (rng() % 3 == 0) {  // a node keyed beyond the last row
            t.add(parents[0], TreeNodes::kChild, item(rows + 2), "beyond");
        }
        const unsigned density = rng() % 5;  // 4: every row marked
        for (int r = 1; r <= rows; ++r) {
            if (density == 4 || rng() % 4 < density) {
                for (int c = 0; c < Grid::kCols; ++c) {
                    g.setBackColorAt(r, c, kMarkingColor);
                }
            }
        }
        Grid refGrid = g;
        TreeNodes refTree = t;
        rowByRowDelete(refGrid, refTree);
        table::deleteMarkedLines(g, t, kMarkingColor, 0, kNormalColor);
        ASSERT_EQ(test::dump(g, t), test::dump(refGrid, refTree)) << "round " << round;
    }
}

TEST(TableRowOps, AddEmptyLineAppendsAndAddsABlankNodeOnlyToATree) {
    Lines bare(2);
    bare.form.Treeview.clear();
    bare.form.toolbarClick("lineadd");
    const Grid& g = bare.form.Table;
    ASSERT_EQ(g.rows(), 4);
    EXPECT_EQ(g.textMatrix(3, 0) + "@" + test::cellAt(g.row(), g.col()), "3@3,0");
    EXPECT_EQ(g.backColorAt(3, 0), bare.form.normalColor);
    EXPECT_EQ(bare.form.Treeview.count(), 0);
    EXPECT_EQ(bare.form.addedLines, 0);

    Lines w(2);
    w.form.languageCode = 2;  // the German placeholder is replaced by the blank all the same
    w.form.tree.deepestLevel = 3;
    w.form.tree.levelNodes = {NodeRef{}, w.form.Treeview.find(item(1)),
                              w.form.Treeview.find(item(2)), NodeRef{}};
    w.form.addEmptyLine();
    const NodeRef added = w.form.Treeview.byKey(item(3));
    EXPECT_EQ(
        w.form.Treeview.text(added) + "<" + w.form.Treeview.key(w.form.Treeview.parent(added)),
        " <Menu0");
    EXPECT_EQ(std::to_string(w.form.tree.deepestLevel) + "/" + std::to_string(w.form.addedLines),
              "1/1");
    EXPECT_EQ(w.form.tree.levelNodes, (std::vector<NodeRef>{NodeRef{}, added}));

    w.form.addedLines = 32767;  // the counter is 16-bit
    EXPECT_EQ(test::errorOf([&] { w.form.addEmptyLine(); }), 6);
}

TEST(TableRowOps, MarkToggleOnlyFromTheNumberColumn) {
    Lines w(3);
    w.form.defaultCellColor = 0x123456;
    const auto image = [&] { return w.form.Treeview.image(w.form.Treeview.find(item(2))); };
    w.clickNumber(2);
    EXPECT_EQ(w.colors(2) + image(), "MMMMMMMarrow2");
    w.form.Table.setCol(1);  // a click on the title leaves the mark
    w.form.tableClick();
    EXPECT_EQ(w.colors(2), "MMMMMMM");
    w.clickNumber(2);
    EXPECT_EQ(w.colors(2) + image(), "Nddddddblank");
    w.form.Treeview.remove(w.form.Treeview.find(item(3)));
    w.clickNumber(3);  // a line without a node is marked all the same
    EXPECT_EQ(w.colors(3), "MMMMMMM");
    w.form.toolbarClick("linedel");
    EXPECT_EQ(w.form.Table.rows(), 3);
}

TEST(TableRowOps, RemovingTheLineOfTheOnlyRowEmptiesIt) {
    Lines one(1);
    one.form.removeLineOfNode(item(1));
    EXPECT_EQ(one.form.Table.rows(), 2);
    EXPECT_EQ(one.form.Table.textMatrix(1, 1), "");
}

TEST(TableRowOps, ClearSelectionResetsTheFirstHighlightedRowOnly) {
    Lines w(4);
    for (int c = 0; c < 2 * Grid::kCols; ++c) {
        w.form.Table.setBackColorAt(2 + c / Grid::kCols * 2, c % Grid::kCols, kHighlightColor);
    }
    w.moveTo(3, 4);
    w.form.tableMouseDown(1);
    EXPECT_EQ(w.colors(2) + w.colors(4), "HddddddHHHHHHH");
    EXPECT_EQ(test::cellAt(w.form.Table.row(), w.form.Table.col()), "3,4");
}

}  // namespace
}  // namespace vkl
