#include <gtest/gtest.h>

#include "platform/Grid.h"
#include "platform/Int16.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl {
namespace {

int errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(Grid, RowsGrowAndCutAndAccessOutsideRaises) {
    Grid g;
    EXPECT_EQ(g.rows(), 1);
    g.setRows(4);
    g.setTextMatrix(3, 6, "x");
    EXPECT_EQ(g.textMatrix(3, 6), "x");
    EXPECT_EQ(g.backColorAt(3, 6), 0u);  // unset cell reads 0
    g.setRows(3);
    EXPECT_EQ(g.rows(), 3);
    EXPECT_EQ(errorOf([&] { (void)g.textMatrix(3, 0); }), 381);
    EXPECT_EQ(errorOf([&] { g.setTextMatrix(1, 7, "x"); }), 381);
    EXPECT_EQ(errorOf([&] { g.setRows(0); }), 381);
}

TEST(Grid, CurrentCellAssignmentsOutOfRangeAreRefused) {
    Grid g;
    g.setRows(3);
    g.setRow(2);
    g.setCol(6);
    g.setCol(7);
    g.setRow(3);
    g.setRow(-1);
    EXPECT_EQ(g.row(), 2);
    EXPECT_EQ(g.col(), 6);
    g.setCellBackColor(kMarkingColor);
    EXPECT_EQ(g.backColorAt(2, 6), kMarkingColor);
    g.setRows(2);  // cutting the current row moves the current row up
    EXPECT_EQ(g.row(), 1);
}

TEST(Grid, RemovalKeepsTheLastDataRow) {
    Grid g;
    g.setRows(5);
    for (int r = 1; r < 5; ++r) {
        g.setTextMatrix(r, 1, std::to_string(r));
    }
    g.removeItem(2);
    EXPECT_EQ(g.textMatrix(2, 1), "3");
    g.removeRows({false, true, false, true});  // rows 1 and 3 of "1","3","4"
    EXPECT_EQ(g.rows(), 2);
    EXPECT_EQ(g.textMatrix(1, 1), "3");
    EXPECT_EQ(errorOf([&] { g.removeItem(1); }), 30015);
    EXPECT_EQ(errorOf([&] { g.removeRows({false, true}); }), 30015);
    EXPECT_EQ(errorOf([&] { g.removeItem(0); }), 30015);
    EXPECT_EQ(g.rows(), 2);
}

TEST(Text, TrimRemovesBlanksButNotTabs) {
    EXPECT_EQ(text::trim("  a b  "), "a b");
    EXPECT_EQ(text::trim("\ta\t "), "\ta\t");
    EXPECT_EQ(text::trim("   "), "");
}

TEST(Text, CaseFollowsWindows1252) {
    EXPECT_EQ(text::upper("abc\xE4\xF6\xFC\xDF\xF7\x9A\xFF"), "ABC\xC4\xD6\xDC\xDF\xF7\x8A\x9F");
    EXPECT_EQ(text::lower("ABC\xC4\xD6\xDC\xD7"), "abc\xE4\xF6\xFC\xD7");
    EXPECT_TRUE(text::iequals("DataDir", "DATADIR"));
    EXPECT_EQ(text::ireplace("a.BMP.old.bmp", ".bmp", ""), "a.old");
    EXPECT_EQ(text::ireplace("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(text::split("a||b", '|').size(), 3u);
    EXPECT_EQ(text::split("", '|').size(), 1u);
}

TEST(Text, NumbersConvertLikeTheRuntime) {
    EXPECT_EQ(text::val("601abc"), 601.0);
    EXPECT_EQ(text::val("  -12.5x"), -12.5);
    EXPECT_EQ(text::val("abc"), 0.0);
    EXPECT_EQ(text::val(""), 0.0);
    EXPECT_EQ(text::toInt16(" 2 "), 2);
    EXPECT_EQ(text::toInt16("2.5"), 2);  // half to even
    EXPECT_EQ(text::toInt16("3.5"), 4);
    EXPECT_EQ(text::toInt16("-32768"), -32768);
    EXPECT_EQ(errorOf([] { text::toInt16("x"); }), 13);
    EXPECT_EQ(errorOf([] { text::toInt16(""); }), 13);
    EXPECT_EQ(errorOf([] { text::toInt16("2x"); }), 13);
    EXPECT_EQ(errorOf([] { text::toInt16("32768"); }), 6);
    EXPECT_EQ(text::keyNumber("Child12", 'd'), 12);
    EXPECT_EQ(text::keyNumber("Menu0", 'u'), 0);
    EXPECT_EQ(errorOf([] { add16(32767, 1); }), 6);
    EXPECT_EQ(add16(32766, 1), 32767);
}

}  // namespace
}  // namespace vkl

namespace vkl {
namespace {

TEST(Text, Windows1252RoundTripsThroughUtf8) {
    std::string all;
    for (int b = 1; b < 256; ++b) {
        all.push_back(static_cast<char>(b));
    }
    EXPECT_EQ(text::utf8ToCp1252(text::cp1252ToUtf8(all)), all);
    EXPECT_EQ(text::cp1252ToUtf8("\x80\xE4"), "\xE2\x82\xAC\xC3\xA4");  // euro sign, a umlaut
    EXPECT_EQ(text::utf8ToCp1252("\xE4\xB8\xAD"), "?");  // outside the code page
}

}  // namespace
}  // namespace vkl
