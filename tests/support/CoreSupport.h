#pragma once

// Shared by the core tests: a model to read into, real files in a temporary folder, compact
// descriptions of tree and table, and (from ScriptedHost.h) the scripted host and window core.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "menufile/Reader.h"
#include "platform/Text.h"
#include "support/ScriptedHost.h"

namespace vkl::test {

// A folder of its own for one test, removed afterwards.
class TempDir {
  public:
    TempDir() {
        static std::atomic<int> n{0};
        path_ = std::filesystem::temp_directory_path() /
                ("vkl-file-test-" + std::to_string(::getpid()) + "-" + std::to_string(n++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    std::string dir() const { return path_.string() + "/"; }

  private:
    std::filesystem::path path_;
};

// A random source seeded anew for each run; a failure names the seed.
struct Random {
    unsigned seed = std::random_device{}();
    ::testing::ScopedTrace trace{__FILE__, __LINE__, "seed " + std::to_string(seed)};
    std::mt19937 rng{seed};
    // From 0 to n - 1; 0 when n is not above 0.
    int below(int n) { return n <= 0 ? 0 : static_cast<int>(rng() % static_cast<unsigned>(n)); }
};

// A row and column as "row,col", for comparing a current cell in one check.
inline std::string cellAt(int row, int col) {
    return std::to_string(row) + "," + std::to_string(col);
}

// Splits written bytes at CR LF; a line end of any other kind fails the test.
inline std::vector<std::string> crlfLines(const std::string& bytes) {
    std::vector<std::string> lines = text::split(bytes, '\n');
    EXPECT_EQ(lines.back(), "") << "last line has no CR LF";
    lines.pop_back();
    for (std::string& l : lines) {
        EXPECT_TRUE(l.ends_with('\r') && l.find('\r') == l.size() - 1) << l;
        l.erase(std::min(l.size(), l.find('\r')));
    }
    return lines;
}

// The written lines from `from` on, each followed by "\n" (26: after comments and header).
inline std::string linesFrom(const std::string& path, size_t from = 26) {
    const std::vector<std::string> lines = crlfLines(readBytes(path));
    std::string s;
    for (size_t i = from; i < lines.size(); ++i) {
        s += lines[i] + "\n";
    }
    return s;
}

inline std::string crlf(const std::vector<std::string>& lines) {
    std::string s;
    for (const auto& l : lines) {
        s += l + "\r\n";
    }
    return s;
}

// A menu file: one comment line, the twelve header lines (lines 2 to 13; the reader takes
// About, title and the sizes from positions 2, 6, 7 and 8), then the body from line 14 on.
inline std::string menuFile(const std::vector<std::string>& body) {
    return crlf({"# test menu", "lib", "About", "p3", "p4", "p5", "Title", "16", "16", "p9", "p10",
                 "p11", "p12"}) +
           crlf(body);
}

// The tree as "key{child child}", e.g. "Menu0{Menu1{Child1} Child2}".
inline std::string shape(const TreeNodes& nodes) {
    std::string out;
    std::function<void(NodeRef)> walk = [&](NodeRef n) {
        out += nodes.key(n);
        if (NodeRef c = nodes.child(n); !c.isNull()) {
            out += "{";
            for (; !c.isNull(); c = nodes.next(c)) {
                walk(c);
                out += nodes.next(c).isNull() ? "}" : " ";
            }
        }
    };
    if (nodes.count() > 0) {
        walk(nodes.byIndex(1));
    }
    return out;
}

// Grid and tree as text: the current cell, every cell with its colour, then every node in index
// order as "key:text<parent@position".
inline std::string dump(const Grid& g, const TreeNodes& t) {
    std::string s = std::to_string(g.row()) + "," + std::to_string(g.col()) + "\n";
    for (int r = 0; r < g.rows(); ++r) {
        for (int c = 0; c < g.cols(); ++c) {
            s += g.textMatrix(r, c) + "/" + std::to_string(g.backColorAt(r, c)) + "|";
        }
        s += "\n";
    }
    for (int i = 1; i <= t.count(); ++i) {
        const NodeRef n = t.byIndex(i);
        const NodeRef p = t.parent(n);
        s += t.key(n) + ":" + t.text(n) + "<" + (p.isNull() ? "" : t.key(p)) + "@" +
             std::to_string(t.position(n)) + "\n";
    }
    return s;
}

// Everything a menu file is read into.
struct Model {
    Grid grid;
    TreeNodes nodes;
    TreeState tree;
    Shortcuts shortcuts;
    menufile::HeaderFields fields;
    menufile::MenuModel model() { return {grid, nodes, tree, shortcuts, fields}; }

    menufile::ReadOutcome read(const std::string& bytes, int16_t appendStartRow = 1,
                               menufile::ReadDiagnostics* d = nullptr) {
        return menufile::readMenuBytes(bytes, model(), appendStartRow, kNormalColor, d);
    }
    menufile::ReadOutcome readFile(const std::string& path, int16_t appendStartRow = 1) {
        return menufile::readMenuFile(path, model(), appendStartRow, kNormalColor);
    }
    std::string shape() const { return test::shape(nodes); }
    std::string text(const std::string& key) const { return nodes.text(nodes.byKey(key)); }
    // Rows from `from` on, one per line, columns 0..6 joined by "|".
    std::string rows(int from = 1) const {
        std::string s;
        for (int r = from; r < grid.rows(); ++r) {
            for (int c = 0; c < Grid::kCols; ++c) {
                s += grid.textMatrix(r, c) + (c + 1 < Grid::kCols ? "|" : "\n");
            }
        }
        return s;
    }
    // The header fields: title, About, sizes, data and image directory.
    std::string header() const {
        const auto& f = fields;
        return f.text2 + "|" + f.text3 + "|" + f.combo2 + "|" + f.combo3 + "|" + f.datadir + "|" +
               f.imagedir;
    }
};

}  // namespace vkl::test
