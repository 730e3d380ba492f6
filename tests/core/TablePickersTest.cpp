#include <gtest/gtest.h>

#include <string>

#include "app/Form1.h"
#include "support/CoreSupport.h"
#include "table/Pickers.h"

namespace vkl {
namespace {

struct Picking : test::Window {
    Picking() : test::Window(test::items(2)) {
        form.Table.setTextMatrix(1, 3, "los");
        form.Table.setTextMatrix(2, 3, "S");
        form.Table.setTextMatrix(2, 4, "old");
    }
    void doubleClick(int row, int col) {
        moveTo(row, col);
        form.tableDblClick();
    }
};

TEST(TablePickers, BitmapCellTakesTheTitleWithoutAnyExtension) {
    Picking p;
    const std::pair<const char*, const char*> picks[] = {
        {"C:\\pics\\Open.BMP", "Open"},
        {"C:\\pics\\a.bmp.old.bmp", "a.old"},
        {"Arrow.bMp", "Arrow"},
        {"C:\\x\\a.b.bmpmp", "a"},  // the second pass takes what the first one joined
        {"C:\\x\\plain", "plain"}};
    for (const auto& [chosen, cell] : picks) {
        p.host.openAnswers.push_back(test::ScriptedHost::pick(chosen));
        p.doubleClick(2, 2);
        EXPECT_EQ(p.form.Table.textMatrix(2, 2), cell) << chosen;
    }
    EXPECT_EQ(p.host.openRequests.at(0).filter + std::to_string(p.host.openRequests[0].filterIndex),
              "All Files (*.*)|*.*|BMP Files (*.bmp)|*.bmp2");

    p.host.openAnswers.push_back({});  // cancelled
    p.doubleClick(2, 2);
    EXPECT_EQ(p.form.Table.textMatrix(2, 2), "plain");
}

TEST(TablePickers, PackageDialogOnlyForPackageLines) {
    Picking p;
    p.host.openAnswers.push_back(test::ScriptedHost::pick("D:\\pkgs\\lib.Pkg"));
    p.doubleClick(1, 4);
    EXPECT_EQ(p.form.Table.textMatrix(1, 4), "lib");
    EXPECT_EQ(p.host.openRequests.at(0).filter + std::to_string(p.host.openRequests[0].filterIndex),
              "All Files (*.*)|*.*|Pkg Files (*.pkg)|*.pkg2");

    // No dialog anywhere else (an unscripted dialog would throw).
    p.doubleClick(2, 4);  // an "S" line
    p.doubleClick(1, 3);
    p.doubleClick(1, 1);
    p.doubleClick(1, 0);
    p.doubleClick(0, 2);
    EXPECT_EQ(p.host.openRequests.size(), 1u);
    EXPECT_EQ(p.form.Table.textMatrix(2, 4), "old");
}

TEST(TablePickers, PackagePathCheckReportsEnvironmentComponents) {
    Picking p;
    p.host.env = {"PkgRoot=C:/Pkgs", "HOME=/Home/User", "noequals"};
    p.form.Datadir.text = "D:/Data";
    p.form.Table.setTextMatrix(1, 4, "DataDir/pkgroot/HOME/lib");
    p.moveTo(1, 4);
    EXPECT_EQ(table::checkPackagePath(p.form.Table, p.host, p.form.Datadir.text),
              "d:/data/c:/pkgs//home/user/lib");
    EXPECT_EQ(p.host.boxes(), "pkgrootfound !\nhomefound !\n");

    p.host.messages.clear();
    p.form.tableClick();
    EXPECT_EQ(p.host.messages.size(), 2u);
    EXPECT_EQ(p.form.Table.textMatrix(1, 4), "DataDir/pkgroot/HOME/lib");

    // Not a package path: other codes, other columns, an empty cell.
    p.host.messages.clear();
    p.form.Table.setTextMatrix(2, 4, "home");
    p.form.Table.setRow(2);
    p.form.tableClick();
    p.moveTo(1, 1);
    p.form.tableClick();
    p.form.Table.setTextMatrix(1, 4, "");
    p.form.Table.setCol(4);
    p.form.tableClick();
    EXPECT_TRUE(p.host.messages.empty());
}

TEST(TablePickers, DropOnGridWritesTheHoleTypeIntoColumnSix) {
    Picking p;
    p.form.holeType = 3;
    p.form.tableDragDrop("Picture4", 2);
    EXPECT_EQ(p.host.boxes(), "[] drag drop\n");
    EXPECT_EQ(test::cellAt(p.form.Table.row(), p.form.Table.col()), "2,6");
    EXPECT_EQ(p.form.Table.textMatrix(2, 6),
              "MACH_ADV_LIBRARY_COUNTERBORED_THROUGHHOLE_WITH_CHAMFER");

    p.form.holeType = 13;  // outside the table: nothing written
    p.form.tableDragDrop("Picture4", 1);
    EXPECT_EQ(p.form.Table.textMatrix(1, 6), "");
    p.form.holeType = 0;
    p.form.Table.setCol(1);
    p.form.tableDragDrop("Picture1", 2);  // another control only selects
    EXPECT_EQ(test::cellAt(p.form.Table.row(), p.form.Table.col()), "2,6");
    EXPECT_EQ(p.form.Table.textMatrix(2, 6),
              "MACH_ADV_LIBRARY_COUNTERBORED_THROUGHHOLE_WITH_CHAMFER");
    EXPECT_EQ(p.host.messages.size(), 3u);
}

}  // namespace
}  // namespace vkl
