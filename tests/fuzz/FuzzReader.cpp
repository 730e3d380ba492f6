// Reads arbitrary bytes as a menu file, twice into the same state (the second time appended, as
// an open over an earlier file does), and checks what must hold whatever the input.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "menufile/Reader.h"
#include "menufile/Writer.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"
#include "tree/Derivation.h"

namespace {

void require(bool ok) {
    if (!ok) {
        __builtin_trap();
    }
}

// Every row read has its item node, and every item node points at a row of the table. Rows
// before firstRead were there before the read, which rebuilt the tree without them.
void checkTies(const vkl::Grid& grid, const vkl::TreeNodes& nodes, int firstRead) {
    for (int r = firstRead; r < grid.rows(); ++r) {
        require(!nodes.find(vkl::keys::item(r)).isNull());
    }
    for (int i = 1; i <= nodes.count(); ++i) {
        const std::string& key = nodes.key(nodes.byIndex(i));
        if (vkl::keys::isItem(key)) {
            const long row = vkl::keys::rowOf(key);
            require(row >= 1 && row < grid.rows());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    vkl::Grid grid;
    vkl::TreeNodes nodes;
    vkl::TreeState tree;
    vkl::Shortcuts shortcuts;
    vkl::menufile::HeaderFields header;
    const vkl::menufile::MenuModel model{grid, nodes, tree, shortcuts, header};
    int16_t appendAt = 1;
    try {
        vkl::menufile::readMenuBytes(bytes, model, 1, vkl::kNormalColor);
        checkTies(grid, nodes, 1);
        appendAt = static_cast<int16_t>(grid.rows() > 1 ? grid.rows() - 1 : 1);
        vkl::menufile::readMenuBytes(bytes, model, appendAt, vkl::kNormalColor);
    } catch (const vkl::RuntimeError& e) {
        require(e.number() == 6 || e.number() == 9);
        return 0;
    }
    checkTies(grid, nodes, appendAt);
    (void)vkl::menufile::checkRows(grid);
    nodes.clear();
    vkl::tree::deriveFlat(grid, nodes, tree, 1);
    require(nodes.count() == grid.rows());
    return 0;
}
