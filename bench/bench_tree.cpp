#include <benchmark/benchmark.h>

#include <optional>
#include <string>

#include "MenuGen.h"
#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/NodeKeys.h"
#include "platform/TreeNodes.h"
#include "tree/Commands.h"

namespace {

using vkl::bench::Menu;

constexpr int kLines = 32000;
constexpr int kNested = 100;         // folders nested one inside the other below the target
constexpr int kPerFolder = 100;      // lines in each of them
constexpr int kOuterPerFolder = 10;  // lines per submenu elsewhere in the menu
const std::string kTarget = "Menu1";

// A 32,000-line menu whose first submenu holds 10,000 of the lines spread over 100 folders,
// each nested inside the one before; the other lines follow in submenus of ten.
Menu nestedMenu() {
    Menu m;
    m.grid.setRows(kLines + 1);
    m.nodes.add(vkl::NodeRef{}, vkl::TreeNodes::kLast, std::string(vkl::keys::kRoot), "Top Menu",
                "root");
    int serial = 1;
    m.nodes.add(std::string(vkl::keys::kRoot), vkl::TreeNodes::kChild, kTarget, "SUB",
                "folderclosed");
    std::string folder = kTarget;
    int row = 0;
    auto addLine = [&](const std::string& parent) {
        ++row;
        const std::string title = "Line " + std::to_string(row);
        m.grid.setTextMatrix(row, 0, std::to_string(row));
        m.grid.setTextMatrix(row, 1, title);
        m.grid.setTextMatrix(row, 2, "BMP" + std::to_string(row % 100));
        m.grid.setTextMatrix(row, 3, "F");
        m.grid.setTextMatrix(row, 4, "function_" + std::to_string(row));
        m.nodes.add(parent, vkl::TreeNodes::kChild, vkl::keys::item(row), title);
    };
    for (int f = 0; f < kNested; ++f) {
        const std::string inner = vkl::keys::folder(++serial);
        m.nodes.add(folder, vkl::TreeNodes::kChild, inner, "SUB", "folderclosed");
        folder = inner;
        for (int i = 0; i < kPerFolder; ++i) {
            addLine(folder);
        }
    }
    while (row < kLines) {
        if (row % kOuterPerFolder == 0) {
            folder = vkl::keys::folder(++serial);
            m.nodes.add(std::string(vkl::keys::kRoot), vkl::TreeNodes::kChild, folder, "SUB",
                        "folderclosed");
        }
        addLine(folder);
    }
    return m;
}

// "Remove Children Only" on the submenu holding 10,000 lines in 100 nested folders.
void BM_RemoveChildrenOnly(benchmark::State& state) {
    const Menu base = nestedMenu();
    const std::optional<Menu> menu = vkl::bench::onFreshCopies(state, base, [](Menu& m) {
        vkl::tree::removeNode(m.grid, m.nodes, kTarget, 0, vkl::kMarkingColor, 0,
                              vkl::kNormalColor);
    });
    const int removed = kNested * kPerFolder;
    const int outerFolders = (kLines - removed) / kOuterPerFolder;
    if (menu->grid.rows() != kLines - removed + 1 ||
        menu->nodes.count() != 1 + 1 + kNested + outerFolders + (kLines - removed) ||
        menu->grid.textMatrix(1, 1) != "Line " + std::to_string(removed + 1)) {
        state.SkipWithError("the removal left the wrong lines");
    }
}
BENCHMARK(BM_RemoveChildrenOnly)->Unit(benchmark::kMillisecond)->Setup(vkl::bench::startClean);

}  // namespace
