#include <gtest/gtest.h>

#include "support/CoreSupport.h"
#include "tree/Derivation.h"

namespace vkl {
namespace {

using test::menuFile;
using test::Model;

TEST(FileDerivation, IndentationDecidesTheParent) {
    Model m;
    m.read(menuFile({
        "A|a|S|A", " B|b|S|B", "  c|c|F|c",  // Menu1{Menu2{Child1}}
        "D |d|S|D",                          // back to the top
        "   e|e|F|e",                        // three deeper: the level-3 node of the last block
        " f|f|F|f", " g|g|F|g",              // siblings under Menu3
        "E|x|F|x", " h|h|F|h",               // an item under an item
    }));
    EXPECT_EQ(m.shape(), "Menu0{Menu1{Menu2{Child1{Child2}}} Menu3{Child3 Child4} Child5{Child6}}");
    EXPECT_EQ(m.text("Menu0") + m.nodes.image(m.nodes.byKey("Menu0")), "Top Menuroot");
    EXPECT_EQ(m.text("Menu3") + m.nodes.image(m.nodes.byKey("Menu3")), "Dfolderclosed");
    EXPECT_EQ(m.text("Child2") + m.nodes.image(m.nodes.byKey("Child2")), "E");
    // Deeper nodes were made visible: their ancestors are expanded, the others are not.
    EXPECT_TRUE(m.nodes.expanded(m.nodes.byKey("Child1")));
    EXPECT_FALSE(m.nodes.expanded(m.nodes.byKey("Child2")));

    // Levels that never held a node: the deepest shallower level that has one, else the root.
    // first: the root; x: levels 3 and 2 are empty, so Menu1; z: level 5 holds "first".
    Model gaps;
    gaps.read(menuFile({"    first|x|F|x", "A|a|S|A", "   x|x|F|x", "  y|y|S|y", "     z|z|F|z"}));
    EXPECT_EQ(gaps.shape(), "Menu0{Child1{Child3} Menu1{Child2 Menu2}}");
}

TEST(FileDerivation, NodesOfAnEarlierReadCountAsNone) {
    Model m;
    m.read(menuFile({"A|a.bmp|S|A", " B|b.bmp|S|B", "  c|c|F|c", "   d|d|F|d"}));
    // Read again without resetting the serial (as when appending): serials go on, the level
    // nodes of the first read are gone, the bitmap list starts afresh.
    m.read(menuFile({"X|x.bmp|S|X", "    deep|d|F|d", "   mid|m|F|m", "Y||S|Y", " y|y|F|y"}));
    EXPECT_EQ(m.shape(), "Menu0{Menu3{Child1 Child2} Menu4{Child3}}");
    EXPECT_EQ(m.tree.submenuBitmaps, (std::vector<std::string>{"", "", "", "x.bmp"}));
    EXPECT_EQ(m.tree.highestBitmapSerial, 3);
    EXPECT_EQ(m.tree.deepestLevel, 5);

    // A level node removed between lines counts as none too.
    m.nodes.remove(m.nodes.byKey("Menu4"));
    EXPECT_EQ(tree::levelParent(m.nodes, m.tree, m.nodes.byKey("Menu0"), 3),
              m.nodes.byKey("Menu0"));
}

TEST(FileDerivation, FlatTreeListsEveryRowUnderTheRootOnlyWhenTheTreeIsEmpty) {
    for (int16_t language : {int16_t{1}, int16_t{2}}) {
        Model m;
        m.grid.setRows(4);
        m.grid.setTextMatrix(1, 1, "Word");
        m.grid.setTextMatrix(2, 3, "F");  // no title
        m.grid.setTextMatrix(3, 1, "  two blanks");
        m.tree.submenuBitmaps = {"", "old", "older"};
        EXPECT_TRUE(tree::deriveFlat(m.grid, m.nodes, m.tree, language));
        EXPECT_EQ(m.shape(), "Menu0{Child1 Child2 Child3}");
        EXPECT_EQ(m.text("Child1") + "/" + m.text("Child2") + "/" + m.text("Child3"),
                  "Word/ /  two blanks");
        EXPECT_TRUE(m.nodes.expanded(m.nodes.byKey("Menu0")));
        EXPECT_EQ(m.tree.submenuBitmaps, (std::vector<std::string>{"", ""}));

        // A tree that exists stays as it is.
        m.grid.setTextMatrix(1, 1, "Changed");
        m.grid.setRows(6);
        EXPECT_FALSE(tree::deriveFlat(m.grid, m.nodes, m.tree, language));
        EXPECT_EQ(m.shape(), "Menu0{Child1 Child2 Child3}");
        EXPECT_EQ(m.text("Child1"), "Word");
    }
}

}  // namespace
}  // namespace vkl
