#include <gtest/gtest.h>

#include <filesystem>

#include "menufile/Writer.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

namespace fs = std::filesystem;
using test::crlfLines;
using test::errorOf;
using test::linesFrom;
using test::menuFile;
using test::Model;
using test::readBytes;

// A model, a folder to save it in and the host that shows the writer's messages.
struct FileWriter : ::testing::Test {
    test::TempDir dir;
    Model m;
    test::ScriptedHost host;
    menufile::SaveRecord record{{7}, 1, true};  // left from an earlier save

    void save(const std::string& name, int16_t language = 1) {
        menufile::writeMenuFile(dir.file(name), m.model(), language, host, record);
    }
    // The body lines written to the file (after comments and header).
    std::string body(const std::string& name) { return linesFrom(dir.file(name)); }
};

TEST_F(FileWriter, CheckCountsRowsFromTheirFirstFilledCellAndRefusesWithoutAGoodOne) {
    m.grid.setRows(6);
    m.grid.setTextMatrix(1, 1, "   ");  // blanks only: empty
    m.grid.setTextMatrix(2, 3, "F");    // no title, all after it filled: good
    m.grid.setTextMatrix(2, 4, "p");
    m.grid.setTextMatrix(3, 1, "T");      // no action or parameter: bad
    m.grid.setTextMatrix(4, 2, "b.bmp");  // a bitmap, then no action: bad
    m.grid.setTextMatrix(5, 6, "w");      // only the last column: good
    const menufile::RowCheck counts = menufile::checkRows(m.grid);
    EXPECT_EQ(std::to_string(counts.good) + " good, " + std::to_string(counts.bad), "2 good, 2");

    test::writeBytes(dir.file("old.vkl"), "old contents");
    m.grid.setRows(4);
    m.grid.removeItem(2);  // left: an empty row and two bad ones
    save("old.vkl", 1);
    save("new.vkl", 2);
    EXPECT_EQ(readBytes(dir.file("old.vkl")), "old contents");
    EXPECT_FALSE(fs::exists(dir.file("new.vkl")));
    EXPECT_TRUE(!record.saved && record.skippedCount == 0 && record.skippedRows.empty());
    EXPECT_EQ(
        host.boxes(),
        "[Check before saving failed !] Table is all empty or all existing lines have missing "
        "entries  ! Nothing to save !\n[Kontrolle vor dem Abspeichern ist gescheitert !] "
        "Tabelle ist komplett leer oder alle Zeilen haben mindestens eine fehlende Spalte ! "
        "Es wurde nicht abgespeichert ! \n");
}

// A clock that moves on at every reading: month from the first, day from the second, ...
struct TickingHost : test::ScriptedHost {
    int readings = 0;
    ClockReading now() override {
        ++readings;
        return {readings, readings * 10, readings * 100, readings * 1000};
    }
};

TEST_F(FileWriter, HeadHoldsCommentsLibraryNameAndShortcutForms) {
    m.read(menuFile({"I|b|F|p"}));
    m.fields.datadir = "C:\\dd";
    m.fields.imagedir = "I:\\img";
    m.shortcuts.count = 2;
    m.shortcuts.pairs[0] = {"datadir", "C:\\d"};
    m.shortcuts.pairs[1] = {"k", ""};  // an empty value is not written
    TickingHost ticking;
    menufile::writeMenuFile(dir.file("m.vkl"), m.model(), 1, ticking, record);
    EXPECT_EQ(linesFrom(dir.file("m.vkl"), 14).substr(0, 11), "1203004000 ");
    EXPECT_EQ(body("m.vkl"),
              "SHORTCUT|datadir|C:\\d\nSHORTCUT|C:\\dd|C:\\dd\nSHORTCUT||I:\\img\nI|b|F|p\n");
}

TEST_F(FileWriter, TreeWalkWritesNodesDepthFirstFromTheirRows) {
    m.read(
        menuFile({"Top|top.bmp|S|Top", " item a|a.bmp|F|fa", "  sub of item|s.bmp|D|d",
                  " Pkg|p.bmp|LOS|C:\\p\\x.pkg", " Empty|e.bmp|S|Empty", " Broken|b.bmp|S|Broken",
                  "  bad|b.bmp|F|p", "Last| l.bmp |F|l", "Only|o.bmp|F|o"}));
    m.grid.setTextMatrix(1, 4, "");             // item a: no parameter: reported
    m.grid.setTextMatrix(4, 4, " ");            // bad: blank parameter: reported
    m.grid.setTextMatrix(5, 1, "typed title");  // the node text is written, not the cell
    m.grid.setTextMatrix(5, 4, "shown");        // not LOS: column 4, not 6
    for (int c : {1, 3, 4}) {
        m.grid.setTextMatrix(6, c, "");  // only the bitmap left: silent
    }
    m.tree.highestBitmapSerial = 2;  // Broken (serial 3) lies past it: no bitmap
    save("walk.vkl");
    EXPECT_EQ(body("walk.vkl"),
              "Top|top.bmp|S|Top\n  SUB OF ITEM|s.bmp|D|d\n PKG|p.bmp|LOS|C:\\p\\x.pkg\n"
              " Broken||S|Broken\nLAST|l.bmp|F|shown\n");
    EXPECT_TRUE(record.saved && record.skippedCount == 2);
    EXPECT_EQ(record.skippedRows, (std::vector<int16_t>{1, 4}));
    EXPECT_EQ(host.boxes(),
              "Menu 'Empty' without children is ignored !\n"
              "Following table lines have missing entries and are not stored :\r\r1,4\n");

    // After a second open the list is short again while the highest serial stayed high: the
    // entries nobody stored read as empty.
    m = Model();
    m.read(menuFile({"A|a.bmp|S|A", " x|x|F|x", "B|b.bmp|S|B", " y|y|F|y"}));
    m.tree.submenuBitmaps = {"", "a.bmp"};
    m.tree.highestBitmapSerial = 9;
    save("m.vkl");
    EXPECT_EQ(body("m.vkl"), "A|a.bmp|S|A\n X|x|F|x\nB||S|B\n Y|y|F|y\n");
}

TEST_F(FileWriter, SaveReplacesTheOldFileOnlyWhenComplete) {
    const std::string path = dir.file("menu.vkl");
    test::writeBytes(path, std::string(5000, 'o'));
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(path, mode);
    m.read(menuFile({"Good|g.bmp|F|g"}));
    save("menu.vkl");
    EXPECT_EQ(body("menu.vkl"), "GOOD|g.bmp|F|g\n");
#ifndef _WIN32  // Windows keeps a read-only attribute, no modes
    EXPECT_EQ(fs::status(path).permissions() & fs::perms::all, mode);
#endif
    const std::string good = readBytes(path);

    // A run-time error half way through the walk leaves the old file whole, and nothing beside.
    m.nodes.add("Menu0", TreeNodes::kChild, "Child99", "DANGLING");
    EXPECT_EQ(errorOf([&] { save("menu.vkl"); }), 381);
    EXPECT_EQ(readBytes(path), good);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.dir()), fs::directory_iterator()), 1);

    // Places that cannot be written raise the error nothing catches.
    m.nodes.remove(m.nodes.byKey("Child99"));
    fs::create_directory(dir.file("folder"));
    for (const auto& [name, error] : std::vector<std::pair<std::string, int>>{
             {"missing/menu.vkl", 76}, {"menu.vkl/menu.vkl", 76}, {"folder", 75}}) {
        EXPECT_EQ(errorOf([&, &to = name] { save(to); }), error) << name;
    }
    EXPECT_TRUE(fs::is_directory(dir.file("folder")));
    EXPECT_EQ(readBytes(path), good);
}

TEST_F(FileWriter, OpenThenSaveChangesOnlyWhatTheEditorChanges) {
    m.readFile(std::string(VKL_TEST_DATA) + "/mixed.vkl");
    save("out.vkl");
    // The lines themselves: vklcheck's resave and round trip groups.
    EXPECT_EQ(host.boxes(), "Menu 'Leer' without children is ignored !\n");

    // Two pairs plus both directory forms make four SHORTCUT lines: reading the saved file
    // back ends at the third.
    Model back;
    EXPECT_EQ(errorOf([&] { back.readFile(dir.file("out.vkl")); }), 9);

    // Without them the saved file reads back and saves alike, but for one more About comment.
    m.shortcuts.count = 0;
    m.fields.datadir.clear();
    m.fields.imagedir.clear();
    save("plain.vkl");
    std::vector<std::string> first = crlfLines(readBytes(dir.file("plain.vkl")));
    m = Model();
    m.readFile(dir.file("plain.vkl"));
    save("again.vkl");
    first[15] += " # 1. text in the [About] box";
    EXPECT_EQ(crlfLines(readBytes(dir.file("again.vkl"))), first);
}

}  // namespace
}  // namespace vkl
