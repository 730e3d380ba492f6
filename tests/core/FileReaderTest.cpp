#include <gtest/gtest.h>

#include <cstdio>

#include "support/CoreSupport.h"

namespace vkl {
namespace {

using test::crlf;
using test::errorOf;
using test::menuFile;
using test::Model;

const std::string kData = VKL_TEST_DATA;

// Records what the reader tells a listener, one line per event.
struct Recorder : menufile::ReadDiagnostics {
    std::string events;
    void add(const std::string& what, long line, std::string_view text) {
        events += what + "@" + std::to_string(line) + ":" + std::string(text) + "\n";
    }
    void headerLine(int position, long line, std::string_view text) override {
        add("H" + std::to_string(position), line, text);
    }
    void headerEnded(long line, bool complete) override { add(complete ? "end" : "cut", line, ""); }
    void skippedLine(long line, std::string_view text, std::string_view reason) override {
        add(std::string(reason), line, text);
    }
    void fatalLine(long line, std::string_view text, const RuntimeError& e) override {
        add("error " + std::to_string(e.number()), line, text);
    }
};

TEST(FileReader, HeaderTakesFourPositionsCountingDataLinesOnly) {
    Model m;
    Recorder rec;
    m.read(crlf({"# c", "", "lib", "  # comment", " About | bar # 1. text ", "p3", "p4", "", "p5",
                 " Title ", "32", "24", "p9", "p10", "p11", "p12", "I|a.bmp|F|f"}),
           1, &rec);
    EXPECT_EQ(m.header(), "Title|About | bar # 1. text|32|24||");
    EXPECT_EQ(m.rows(), "1|I|a.bmp|F|f|a.bmp|f\n");  // the line after position 12 is body
    EXPECT_TRUE(rec.events.starts_with("H1@3:lib\nH2@5: About | bar # 1. text \nH3@6:p3\n"));
    EXPECT_TRUE(rec.events.ends_with("H12@16:p12\nend@16:\n")) << rec.events;

    // Fewer than twelve header lines: the menu lines are eaten as header lines.
    m.readFile(kData + "/short_header.vkl");
    EXPECT_EQ(m.rows() + m.shape(), "Menu0");
    EXPECT_EQ(m.fields.combo2, "Other|b.bmp|F|g");
    rec.events.clear();
    m.read(crlf({"# only comments", "   "}), 1, &rec);
    EXPECT_EQ(rec.events, "cut@2:\n");
}

// A third pair raises error 9: vklcheck's json group and the writer's round trip.
TEST(FileReader, ShortcutLinesKeepTwoPairs) {
    Model m;
    m.read(menuFile({" ShortCut |DataDir|C:\\data", "SHORTCUT|bmpDIR|D:\\bmp|extra"}));
    EXPECT_EQ(m.shortcuts.pairs[0][0] + m.shortcuts.pairs[0][1] + std::to_string(m.shortcuts.count),
              "DataDirC:\\data2");
    EXPECT_EQ(m.header(), "Title|About|16|16|C:\\data|D:\\bmp");
    // The writer's own form and a key with a blank are no keys; missing fields are stored empty.
    Model w;
    w.read(menuFile({"SHORTCUT|C:\\data|C:\\data", "SHORTCUT| datadir"}));
    EXPECT_EQ(w.fields.datadir, "");
    EXPECT_EQ(w.shortcuts.pairs[1], (std::array<std::string, 2>{" datadir", ""}));
}

TEST(FileReader, TableIsCutToTheAppendStartRowFirst) {
    Model m;
    m.grid.setRows(5);
    for (int r = 1; r < 5; ++r) {
        m.grid.setTextMatrix(r, 1, "old");
    }
    m.read(menuFile({"New|n.bmp|F|f", "Next|x.bmp|F|g"}), 3);
    EXPECT_EQ(m.rows(2), "|old|||||\n3|New|n.bmp|F|f|n.bmp|f\n4|Next|x.bmp|F|g|x.bmp|g\n");
    EXPECT_EQ(m.shape(), "Menu0{Child3 Child4}");
    EXPECT_EQ(m.grid.backColorAt(3, 0) + m.grid.backColorAt(4, 0), 2 * kNormalColor);

    // A missing file (or a folder): only the cut; tree, fields and pairs stay as they were.
    test::TempDir dir;
    m.shortcuts.count = 1;
    EXPECT_FALSE(m.readFile(dir.file("absent.vkl"), 2).opened);
    EXPECT_FALSE(m.readFile(dir.dir(), 2).opened);
    EXPECT_EQ(std::to_string(m.grid.rows()) + " rows " + std::to_string(m.shortcuts.count) +
                  " pair " + m.shape() + m.header(),
              "2 rows 1 pair Menu0{Child3 Child4}Title|About|16|16||");
}

TEST(FileReader, SixteenBitLimitsRaiseOverflowAtTheLine) {
    Model m;
    Recorder rec;
    m.grid.setRows(32767);
    // Rows 32,766 and 32,767 fit; the line needing row 32,768 raises error 6.
    const std::string three = menuFile({"A|a|F|f", "B|b|F|g", "C|c|F|h"});
    EXPECT_EQ(errorOf([&] { m.read(three, 32766, &rec); }), 6);
    EXPECT_EQ(m.rows(32767), "32767|B|b|F|g|b|g\n");
    EXPECT_TRUE(rec.events.ends_with("error 6@16:C|c|F|h\n")) << rec.events;
    // Depth is 1 + leading blanks: 32,766 blanks fit, 32,767 overflow even on a blank line.
    EXPECT_EQ(errorOf([&] { m.read(menuFile({std::string(32766, ' ') + "D|d|F|f"})); }), 0);
    EXPECT_EQ(m.tree.deepestLevel, 32767);
    EXPECT_EQ(errorOf([&] { m.read(menuFile({std::string(32767, ' ')})); }), 6);
}

std::vector<std::string> linesOf(menufile::LineReader& in) {
    std::vector<std::string> lines;
    while (!in.atEnd()) {
        lines.emplace_back(in.readLine());
    }
    return lines;
}

TEST(FileReader, LinesEndAtCrLfLfOrLoneCrAlsoAcrossBlocks) {
    menufile::LineReader mem(std::string_view("a\r\nb\nc\rd\r\r\ne\0f\r\n\r\n", 18));
    EXPECT_EQ(linesOf(mem),
              (std::vector<std::string>{"a", "b", "c", "d", "", std::string("e\0f", 3), ""}));
    // Files are read in blocks of 64 KiB: line ends split between blocks, lines longer than a
    // block and a last line without an end must give the lines the same bytes give in memory.
    const size_t block = 1 << 16;
    for (const std::string& bytes :
         {std::string(block - 1, 'x') + "\r\nnext", std::string(block - 1, 'y') + "\rnext\r\n",
          std::string(3 * block + 5, 'z') + "\nshort\r\n" + std::string(block, 'w'),
          std::string(block, '\r')}) {
        std::FILE* f = std::tmpfile();
        ASSERT_NE(f, nullptr);
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::rewind(f);
        menufile::LineReader fromFile(f);
        menufile::LineReader fromMemory(bytes);
        EXPECT_EQ(linesOf(fromFile), linesOf(fromMemory));
        EXPECT_EQ(fromFile.lineNumber(), fromMemory.lineNumber());
        std::fclose(f);
    }
}

// Lines of every length around the sixteen-byte blocks the fields are searched in, with bars
// anywhere (also in the last byte): the lines kept and their titles are those a plain split
// at every "|" gives.
TEST(FileReader, FieldsOfLinesOfEveryLengthAreThoseOfAPlainSplit) {
    test::Random random;
    std::vector<std::string> body;
    std::string titles;
    for (size_t length = 1; length <= 140; ++length) {
        for (int variant = 0; variant < 8; ++variant) {
            std::string line(length, 'a');
            for (char& c : line) {
                c = "ab|F"[random.below(4)];
            }
            line.front() = 'T';
            line.back() = variant % 2 == 0 ? '|' : 'z';
            body.push_back(line);
            const std::vector<std::string> fields = text::split(line, '|');
            if (fields.size() == 4 && !fields[0].empty() && !fields[2].empty() &&
                !fields[3].empty()) {
                titles += fields[0] + "\n";
            }
        }
    }
    Model m;
    m.read(menuFile(body));
    std::string read;
    for (int r = 1; r < m.grid.rows(); ++r) {
        read += m.grid.textMatrix(r, 1) + "\n";
    }
    EXPECT_EQ(read, titles);
}

}  // namespace
}  // namespace vkl
