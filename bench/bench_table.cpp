#include <benchmark/benchmark.h>

#include <optional>

#include "MenuGen.h"
#include "menufile/Reader.h"
#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/MenuState.h"
#include "platform/TreeNodes.h"
#include "table/RowOps.h"

namespace {

using vkl::bench::Menu;

// The generated 32,000-line menu as the reader leaves it, with every second line marked.
Menu markedMenu() {
    Menu m;
    vkl::TreeState tree;
    vkl::Shortcuts shortcuts;
    vkl::menufile::HeaderFields header;
    vkl::menufile::readMenuBytes(vkl::bench::generateMenu(),
                                 {m.grid, m.nodes, tree, shortcuts, header}, 1, vkl::kNormalColor);
    for (int r = 2; r < m.grid.rows(); r += 2) {
        for (int c = 0; c < vkl::Grid::kCols; ++c) {
            m.grid.setBackColorAt(r, c, vkl::kMarkingColor);
        }
    }
    return m;
}

// Deletes the 16,000 marked lines of the generated menu with their item nodes.
void BM_DeleteMarkedLines(benchmark::State& state) {
    const Menu base = markedMenu();
    const std::optional<Menu> menu = vkl::bench::onFreshCopies(state, base, [](Menu& m) {
        vkl::table::deleteMarkedLines(m.grid, m.nodes, vkl::kMarkingColor);
    });
    const int marked = (base.grid.rows() - 1) / 2;
    if (marked != 16000 || menu->grid.rows() != base.grid.rows() - marked ||
        menu->nodes.count() != base.nodes.count() - marked) {
        state.SkipWithError("the delete left the wrong lines");
    }
}
BENCHMARK(BM_DeleteMarkedLines)->Unit(benchmark::kMillisecond)->Setup(vkl::bench::startClean);

}  // namespace
