#include <gtest/gtest.h>

#include <filesystem>

#include "menufile/Format.h"
#include "menufile/Writer.h"
#include "support/CoreSupport.h"
#include "support/ScriptedHost.h"

namespace vkl {
namespace {

namespace fs = std::filesystem;
using test::crlfLines;
using test::errorOf;
using test::linesFrom;
using test::menuFile;
using test::Model;
using test::readBytes;
using Lines = std::vector<std::string>;

struct Saving {
    test::ScriptedHost host;
    menufile::SaveRecord record{{7}, 1, true};  // left from an earlier save

    void save(Model& m, const std::string& path, int16_t language = 1) {
        menufile::writeMenuFile(path, m.model(), language, host, record);
    }
    std::string prompts() const {
        std::string p;
        for (const MessageBox& box : host.messages) {
            p += box.prompt + "\n";
        }
        return p;
    }
};

TEST(FileWriter, CheckCountsRowsFromTheirFirstFilledCellAndRefusesWithoutAGoodOne) {
    Model m;
    m.grid.setRows(6);
    m.grid.setTextMatrix(1, 1, "   ");  // blanks only: empty
    m.grid.setTextMatrix(2, 3, "F");    // no title, all after it filled: good
    m.grid.setTextMatrix(2, 4, "p");
    m.grid.setTextMatrix(3, 1, "T");      // no action or parameter: bad
    m.grid.setTextMatrix(4, 2, "b.bmp");  // a bitmap, then no action: bad
    m.grid.setTextMatrix(5, 6, "w");      // only the last column: good
    EXPECT_EQ(menufile::checkRows(m.grid).good, 2);
    EXPECT_EQ(menufile::checkRows(m.grid).bad, 2);

    test::TempDir dir;
    test::writeBytes(dir.file("old.vkl"), "old contents");
    m.grid.setRows(4);
    m.grid.removeItem(2);  // left: an empty row and two bad ones
    Saving s;
    s.save(m, dir.file("old.vkl"), 1);
    s.save(m, dir.file("new.vkl"), 2);
    EXPECT_EQ(readBytes(dir.file("old.vkl")), "old contents");
    EXPECT_FALSE(fs::exists(dir.file("new.vkl")));
    EXPECT_TRUE(!s.record.saved && s.record.skippedCount == 0 && s.record.skippedRows.empty());
    ASSERT_EQ(s.host.messages.size(), 2u);
    EXPECT_EQ(s.host.messages[0].title, "Check before saving failed !");
    EXPECT_EQ(s.host.messages[1].title, "Kontrolle vor dem Abspeichern ist gescheitert !");
    EXPECT_EQ(s.prompts(),
              "Table is all empty or all existing lines have missing entries  ! Nothing to save !\n"
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

TEST(FileWriter, HeadHoldsCommentsLibraryNameAndShortcutForms) {
    test::TempDir dir;
    Model m;
    m.read(menuFile({"I|b|F|p"}));
    m.fields.datadir = "C:\\dd";
    m.fields.imagedir = "I:\\img";
    m.shortcuts.count = 2;
    m.shortcuts.pairs[0] = {"datadir", "C:\\d"};
    m.shortcuts.pairs[1] = {"k", ""};  // an empty value is not written
    TickingHost host;
    menufile::SaveRecord record;
    menufile::writeMenuFile(dir.file("m.vkl"), m.model(), 1, host, record);
    EXPECT_EQ(linesFrom(dir.file("m.vkl"), 14).substr(0, 11), "1203004000 ");
    EXPECT_EQ(linesFrom(dir.file("m.vkl")),
              "SHORTCUT|datadir|C:\\d\nSHORTCUT|C:\\dd|C:\\dd\nSHORTCUT||I:\\img\nI|b|F|p\n");
}

TEST(FileWriter, TreeWalkWritesNodesDepthFirstFromTheirRows) {
    test::TempDir dir;
    for (int16_t language : {int16_t{1}, int16_t{2}}) {
        Model m;
        m.read(menuFile({"Top|top.bmp|S|Top", " item a|a.bmp|F|fa", "  sub of item|s.bmp|D|d",
                         " Pkg|p.bmp|LOS|C:\\p\\x.pkg", " Empty|e.bmp|S|Empty",
                         " Broken|b.bmp|S|Broken", "  bad|b.bmp|F|p", "Last| l.bmp |F|l",
                         "Only|o.bmp|F|o"}));
        m.grid.setTextMatrix(1, 4, "");             // item a: no parameter: reported
        m.grid.setTextMatrix(4, 4, " ");            // bad: blank parameter: reported
        m.grid.setTextMatrix(5, 1, "typed title");  // the node text is written, not the cell
        m.grid.setTextMatrix(5, 4, "shown");        // not LOS: column 4, not 6
        for (int c : {1, 3, 4}) {
            m.grid.setTextMatrix(6, c, "");  // only the bitmap left: silent
        }
        m.tree.highestBitmapSerial = 2;  // Broken (serial 3) lies past it: no bitmap
        Saving s;
        s.save(m, dir.file("walk.vkl"), language);
        EXPECT_EQ(linesFrom(dir.file("walk.vkl")),
                  "Top|top.bmp|S|Top\n  SUB OF ITEM|s.bmp|D|d\n PKG|p.bmp|LOS|C:\\p\\x.pkg\n"
                  " Broken||S|Broken\nLAST|l.bmp|F|shown\n");
        EXPECT_TRUE(s.record.saved);
        EXPECT_EQ(s.record.skippedRows, (std::vector<int16_t>{1, 4}));
        EXPECT_EQ(s.record.skippedCount, 2);
        EXPECT_FALSE(s.host.messages.at(0).title || s.host.messages.at(1).title);
        EXPECT_EQ(s.prompts(), language == 1
                                   ? "Menu 'Empty' without children is ignored !\n"
                                     "Following table lines have missing entries and are not "
                                     "stored :\r\r1,4\n"
                                   : "Leeres Menu 'Empty' wird nicht abgespeichert  !\n"
                                     "Folgende Tabellenzeilen haben leere Spalten und wurden nicht "
                                     "abgespeichert :\r\r1,4\n");
    }
    // After a second open the list is short again while the highest serial stayed high: the
    // entries nobody stored read as empty.
    Model m;
    m.read(menuFile({"A|a.bmp|S|A", " x|x|F|x", "B|b.bmp|S|B", " y|y|F|y"}));
    m.tree.submenuBitmaps = {"", "a.bmp"};
    m.tree.highestBitmapSerial = 9;
    Saving s;
    s.save(m, dir.file("m.vkl"));
    EXPECT_EQ(linesFrom(dir.file("m.vkl")), "A|a.bmp|S|A\n X|x|F|x\nB||S|B\n Y|y|F|y\n");
}

TEST(FileWriter, SaveReplacesTheOldFileOnlyWhenComplete) {
    test::TempDir dir;
    const std::string path = dir.file("menu.vkl");
    test::writeBytes(path, std::string(5000, 'o'));
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(path, mode);
    Model m;
    m.read(menuFile({"Good|g.bmp|F|g"}));
    Saving s;
    s.save(m, path);
    EXPECT_EQ(linesFrom(path), "GOOD|g.bmp|F|g\n");
#ifndef _WIN32  // Windows keeps a read-only attribute, no modes
    EXPECT_EQ(fs::status(path).permissions() & fs::perms::all, mode);
#endif
    const std::string good = readBytes(path);

    // A run-time error half way through the walk leaves the old file whole, and nothing beside.
    m.nodes.add("Menu0", TreeNodes::kChild, "Child99", "DANGLING");
    EXPECT_EQ(errorOf([&] { s.save(m, path); }), 381);
    EXPECT_EQ(readBytes(path), good);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.dir()), fs::directory_iterator()), 1);

    // Places that cannot be written raise the error nothing catches.
    m.nodes.remove(m.nodes.byKey("Child99"));
    EXPECT_EQ(errorOf([&] { s.save(m, dir.file("missing/menu.vkl")); }), 76);
    EXPECT_EQ(errorOf([&] { s.save(m, path + "/menu.vkl"); }), 76);
    fs::create_directory(dir.file("folder"));
    EXPECT_EQ(errorOf([&] { s.save(m, dir.file("folder")); }), 75);
    EXPECT_TRUE(fs::is_directory(dir.file("folder")));
    EXPECT_EQ(readBytes(path), good);
}

TEST(FileWriter, OpenThenSaveChangesOnlyWhatTheEditorChanges) {
    test::TempDir dir;
    Model m;
    m.readFile(std::string(VKL_TEST_DATA) + "/mixed.vkl");
    Saving s;
    s.save(m, dir.file("out.vkl"));
    EXPECT_EQ(linesFrom(dir.file("out.vkl"), 14),
              "1124165 # this is a unique library name - not visible for user\n"
              "Drilling # 1. text in the [About] box # 1. text in the [About] box\n"
              "Powered by Loomvault  # 2.text\n" +
                  std::string(format::kWebAddress) +
                  "\nAll rights reserved\nDrills\n24\n24\n10\n10\n11\n11\n"
                  "SHORTCUT|BmpDir|D:\\bitmaps\nSHORTCUT|DataDir|D:\\data\n"
                  "SHORTCUT|D:\\data|D:\\data\nSHORTCUT||D:\\bitmaps\n"
                  "Bohren|bohr.bmp|S|Bohren\n"
                  " GR\xD6\xDF"
                  "E \xC4NDERN|sizes/gr\xF6\xDF"
                  "e.bmp|F|resize_it\n"
                  " PAKET|C:\\x/y.bmp|los|C:/pkgs/sub\\drill.pkg\n"
                  "  UNDER ITEM|u.bmp|D|dlg # not a comment\n"
                  " Fr\xE4sen||S|Fr\xE4sen\n"
                  "  NUT|nut.bmp|P|C:\\tools\\nut.exe\n"
                  "ENDE||F|quit_menu\n"
                  "\tTABBED|t.bmp|F|tabbed\n");
    EXPECT_EQ(s.prompts(), "Menu 'Leer' without children is ignored !\n");

    // Two pairs plus both directory forms make four SHORTCUT lines: reading the saved file
    // back ends at the third.
    Model back;
    EXPECT_EQ(errorOf([&] { back.readFile(dir.file("out.vkl")); }), 9);

    // Without them the saved file reads back and saves alike, but for one more About comment.
    m.shortcuts.count = 0;
    m.fields.datadir.clear();
    m.fields.imagedir.clear();
    s.save(m, dir.file("plain.vkl"));
    Model again;
    again.readFile(dir.file("plain.vkl"));
    s.save(again, dir.file("again.vkl"));
    Lines first = crlfLines(readBytes(dir.file("plain.vkl")));
    first[15] += " # 1. text in the [About] box";
    EXPECT_EQ(crlfLines(readBytes(dir.file("again.vkl"))), first);
}

}  // namespace
}  // namespace vkl
