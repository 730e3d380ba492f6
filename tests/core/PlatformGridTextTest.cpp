#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Grid.h"
#include "platform/Int16.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

using test::errorOf;

// Long random runs of every way rows are set up, cut, removed and reused, against a plain
// table of strings. Reused rows must come back empty however their cells were stored before.
TEST(Grid, RandomOperationsMatchAPlainTable) {
    struct Row {
        std::array<std::string, Grid::kCols> text;
        std::array<Color, Grid::kCols> color{};
    };
    test::Random random;
    const auto pick = [&](int n) { return random.below(n); };
    auto randomText = [&] {
        static const std::string x(300, 'x'), y(70000, 'y');
        static const std::string pieces[] = {"", "1", "Drill", "hole.bmp", "F", "LOS", x, y};
        std::string t = pieces[pick(7) + (pick(50) == 0 ? 1 : 0)];
        return pick(2) == 0 ? t : t + std::to_string(pick(1000));
    };
    for (int run = 0; run < 40; ++run) {
        Grid g;
        std::vector<Row> model(1);
        const auto at = [&](int row) -> Row& { return model[static_cast<size_t>(row)]; };
        const auto cell = [](int col) { return static_cast<size_t>(col); };
        int bulk = 0;
        for (int step = 0; step < 1500; ++step) {
            const int rows = static_cast<int>(model.size());
            const int r = pick(rows + 1);  // one past the end now and then
            const int c = pick(Grid::kCols);
            switch (pick(12)) {
                case 0: {
                    const int n = pick(13);
                    if (n == 0) {
                        EXPECT_EQ(errorOf([&] { g.setRows(0); }), 381);
                        break;
                    }
                    g.setRows(n);
                    model.resize(static_cast<size_t>(n));
                    break;
                }
                case 1:
                case 2:
                    if (r < rows) {
                        const std::string t = randomText();
                        g.setTextMatrix(r, c, t);
                        at(r).text[cell(c)] = t;
                    } else {
                        EXPECT_EQ(errorOf([&] { g.setTextMatrix(r, c, "x"); }), 381);
                    }
                    break;
                case 3: {
                    // A line read from a file: the cells are parts of it, or texts from
                    // elsewhere.
                    if (r >= rows) {
                        break;
                    }
                    std::string line;
                    for (int k = 0; k < 3; ++k) {
                        line += randomText() + "|";
                    }
                    std::array<std::string_view, Grid::kCols> parts;
                    std::array<std::string, Grid::kCols> elsewhere;
                    for (size_t k = 0; k < parts.size(); ++k) {
                        if (pick(3) == 0) {
                            elsewhere[k] = randomText();
                            parts[k] = elsewhere[k];
                        } else {
                            const size_t from =
                                static_cast<size_t>(pick(static_cast<int>(line.size())));
                            parts[k] =
                                std::string_view(line).substr(from, static_cast<size_t>(pick(9)));
                        }
                        at(r).text[k] = std::string(parts[k]);
                    }
                    g.setRowTexts(r, line, parts);
                    break;
                }
                case 4:
                    if (r < rows) {
                        EXPECT_EQ(g.textMatrix(r, c), at(r).text[cell(c)]);
                    } else {
                        EXPECT_EQ(errorOf([&] { (void)g.textMatrix(r, c); }), 381);
                    }
                    break;
                case 5:
                    if (r == 0 || r >= rows || rows <= 2) {
                        EXPECT_NE(errorOf([&] { g.removeItem(r); }), 0);
                    } else {
                        g.removeItem(r);
                        model.erase(model.begin() + r);
                    }
                    break;
                case 6: {
                    std::vector<bool> remove(static_cast<size_t>(pick(rows + 2)));
                    for (size_t k = 0; k < remove.size(); ++k) {
                        remove[k] = pick(3) == 0;
                    }
                    std::vector<Row> kept{model[0]};
                    for (size_t k = 1; k < model.size(); ++k) {
                        if (k >= remove.size() || !remove[k]) {
                            kept.push_back(model[k]);
                        }
                    }
                    if (kept.size() < 2 && kept.size() < model.size()) {
                        EXPECT_EQ(errorOf([&] { g.removeRows(remove); }), 30015);
                    } else {
                        g.removeRows(remove);
                        model = kept;
                    }
                    break;
                }
                case 7:
                    EXPECT_EQ(g.appendRow(), rows);
                    model.emplace_back();
                    break;
                case 8:
                    if (r < rows) {
                        const Color color = pick(2) == 0
                                                ? kMarkingColor
                                                : rgb(1, 2, static_cast<unsigned>(pick(9)));
                        g.setBackColorAt(r, c, color);
                        at(r).color[cell(c)] = color;
                    }
                    break;
                case 9:
                    if (bulk > 0 && pick(2) == 0) {
                        g.endBulk();
                        --bulk;
                    } else {
                        g.beginBulk();
                        ++bulk;
                    }
                    break;
                case 10: {
                    if (r > 0 && r < rows && pick(3) == 0) {
                        g.numberRow(r);
                        at(r).text[0] = std::to_string(r);
                        break;
                    }
                    // Outside a bulk scope, exactly the rows whose number changed are told.
                    std::vector<int> told, changed;
                    Grid::Observer o;
                    o.cellChanged = [&](int row, int col) { told.push_back(col == 0 ? row : -1); };
                    g.setObserver(bulk == 0 ? o : Grid::Observer{});
                    g.numberRows();
                    g.setObserver({});
                    for (int k = 1; k < rows; ++k) {
                        if (std::exchange(at(k).text[0], std::to_string(k)) != at(k).text[0]) {
                            changed.push_back(k);
                        }
                    }
                    if (bulk == 0) {
                        EXPECT_EQ(told, changed) << "step " << step;
                    }
                    break;
                }
                default:
                    if (pick(20) == 0) {
                        g = Grid(g);  // a copy holds the same table
                    }
                    break;
            }
            ASSERT_EQ(g.rows(), static_cast<int>(model.size())) << "step " << step;
            const int checked = pick(static_cast<int>(model.size()));
            for (int k = 0; k < Grid::kCols; ++k) {
                ASSERT_EQ(g.textView(checked, k), at(checked).text[cell(k)]) << "step " << step;
                ASSERT_EQ(g.backColorAt(checked, k), at(checked).color[cell(k)]);
            }
        }
        while (bulk-- > 0) {
            g.endBulk();
        }
        for (int r = 0; r < g.rows(); ++r) {
            for (int k = 0; k < Grid::kCols; ++k) {
                ASSERT_EQ(g.textMatrix(r, k), at(r).text[cell(k)]);
            }
        }
    }
}

TEST(Text, NumbersConvertLikeTheRuntime) {
    // Each result, or "E" and the number of the error raised.
    const auto show = [](const std::function<long()>& f) {
        long v = 0;
        const int e = errorOf([&] { v = f(); });
        return e != 0 ? "E" + std::to_string(e) : std::to_string(v);
    };
    std::string s;
    for (const char* in : {"601abc", "  -12.5x", "abc", ""}) {
        s += std::to_string(text::val(in)) + " ";
    }
    for (const char* in : {" 2 ", "2.5", "3.5", "-32768", "2x", "32768"}) {  // half to even
        s += show([&] { return text::toInt16(in); }) + " ";
    }
    s += show([] { return text::keyNumber("Child12", 'd'); }) + " " +
         show([] { return text::keyNumber("Menu0", 'u'); }) + " " +
         show([] { return add16(32767, 1); }) + " " + show([] { return add16(32766, 1); });
    EXPECT_EQ(s, "601.000000 -12.500000 0.000000 0.000000 2 2 4 -32768 E13 E6 12 0 E6 32767");
}

TEST(Text, Windows1252RoundTripsThroughUtf8) {
    std::string all;
    for (int b = 1; b < 256; ++b) {
        all.push_back(static_cast<char>(b));
    }
    EXPECT_EQ(text::utf8ToCp1252(text::cp1252ToUtf8(all)), all);
    EXPECT_EQ(text::cp1252ToUtf8("\x80\xE4"), "\xE2\x82\xAC\xC3\xA4");  // euro sign, a umlaut
    EXPECT_EQ(text::utf8ToCp1252("\xE4\xB8\xAD"), "?");                 // outside the code page
}

}  // namespace
}  // namespace vkl
