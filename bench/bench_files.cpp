// Reading and writing a menu of 32,000 item lines, each beside its floor: the same bytes read or
// written line by line with the same line reader and writer, doing nothing else.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "MenuGen.h"
#include "menufile/Reader.h"
#include "menufile/Writer.h"
#include "platform/Colors.h"
#include "support/ScriptedHost.h"

namespace {

using namespace vkl;

// Everything the reader fills and the writer reads.
struct State {
    Grid grid;
    TreeNodes nodes;
    TreeState tree;
    Shortcuts shortcuts;
    menufile::HeaderFields header;
    menufile::MenuModel model() { return {grid, nodes, tree, shortcuts, header}; }
};

// A benchmark file, removed when the run ends.
struct BenchFile {
    std::string path;
    explicit BenchFile(const std::string& name) : path(bench::benchPath(name)) {}
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;
    ~BenchFile() {
        std::error_code ec;
        std::filesystem::remove(path, ec);
    }
};

struct GeneratedMenu : BenchFile {
    GeneratedMenu() : BenchFile("read.vkl") { bench::writeMenu(path); }
};

const std::string& menuPath() {
    static const GeneratedMenu file;
    return file.path;
}

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

void BM_RawLineScan(benchmark::State& state) {
    int64_t bytes = 0;
    for (auto _ : state) {
        std::unique_ptr<std::FILE, FileCloser> file(std::fopen(menuPath().c_str(), "rb"));
        menufile::LineReader in(file.get());
        size_t total = 0;
        while (!in.atEnd()) {
            total += in.readLine().size();
        }
        benchmark::DoNotOptimize(total);
        bytes += static_cast<int64_t>(total);
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_RawLineScan)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

void BM_ReadMenuFile(benchmark::State& state) {
    // Opened again and again in one editor, as a user opens one menu after another: each read
    // replaces the menu the previous one left in the table and the tree.
    State s;
    for (auto _ : state) {
        s.tree.nodeSerial = 0;
        menufile::readMenuFile(menuPath(), s.model(), 1, kNormalColor);
    }
    state.counters["rows"] = s.grid.rows() - 1;
}
BENCHMARK(BM_ReadMenuFile)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

// The menu loaded once, and the lines the writer makes of it.
struct Written {
    State state;
    test::ScriptedHost host;
    std::vector<std::string> lines;
    BenchFile file{"write.vkl"};
    const std::string& path = file.path;

    Written() {
        menufile::readMenuFile(menuPath(), state.model(), 1, kNormalColor);
        save();
        std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
        menufile::LineReader in(file.get());
        while (!in.atEnd()) {
            lines.emplace_back(in.readLine());
        }
    }
    void save() {
        menufile::SaveRecord record;
        menufile::writeMenuFile(path, state.model(), 1, host, record);
        if (!record.saved || record.skippedCount != 0 || !host.messages.empty()) {
            throw std::runtime_error("the generated menu did not save cleanly");
        }
    }
};

Written& written() {
    static Written w;
    return w;
}

void BM_RawLineWrite(benchmark::State& state) {
    Written& w = written();
    for (auto _ : state) {
        menufile::LineWriter out(w.path);
        for (const std::string& line : w.lines) {
            out.writeLine(line);
        }
        out.commit();
    }
    state.counters["lines"] = static_cast<double>(w.lines.size());
}
BENCHMARK(BM_RawLineWrite)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

void BM_WriteMenuFile(benchmark::State& state) {
    Written& w = written();
    for (auto _ : state) {
        w.save();
    }
}
BENCHMARK(BM_WriteMenuFile)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

}  // namespace
