#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Grid.h"
#include "platform/TreeNodes.h"
#include "platform/VectorState.h"

// Generated menu files for the benchmarks: deterministic, so every run measures the same bytes.
namespace vkl::bench {

struct MenuShape {
    int items = 32000;   // item lines (table rows)
    int submenus = 320;  // submenu lines; the items are shared out among them in order
    int nesting = 3;     // submenu i sits at depth 1 + i % nesting, inside the one before it
    uint32_t seed = 1;   // varies titles, actions and which submenus carry a bitmap
};

// The bytes of a menu file as the writer lays it out (CR LF lines): comment block, twelve header
// lines, one SHORTCUT pair, then each submenu line followed by its items one level deeper.
std::string generateMenu(const MenuShape& shape = {});

// Writes the generated menu to path, replacing what is there.
void writeMenu(const std::string& path, const MenuShape& shape = {});

// Every benchmark starts as the editor's handlers do, with the vector registers' upper halves
// cleared: the window benchmarks run before it may have left them in use.
inline void startClean(const benchmark::State&) {
    clearUpperVectorHalves();
}

// A path for a benchmark file in the temporary folder, distinct per process.
std::string benchPath(const std::string& name);

// The table and the tree that the line and node commands work on.
struct Menu {
    Grid grid;
    TreeNodes nodes;
};

// Runs command on a fresh copy of base in each iteration; making the copy and tearing down the
// previous one are not timed. Returns what the last command left.
template <class Command>
std::optional<Menu> onFreshCopies(benchmark::State& state, const Menu& base, Command command) {
    std::optional<Menu> menu;
    for (auto _ : state) {
        state.PauseTiming();
        menu.emplace(base);
        state.ResumeTiming();
        command(*menu);
        benchmark::DoNotOptimize(menu->grid.rows());
    }
    return menu;
}

}  // namespace vkl::bench
