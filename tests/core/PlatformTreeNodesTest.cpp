#include <gtest/gtest.h>

#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/TreeNodes.h"

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

std::vector<std::string> keysInIndexOrder(const TreeNodes& t) {
    std::vector<std::string> keys;
    for (int i = 1; i <= t.count(); ++i) {
        keys.push_back(t.key(t.byIndex(i)));
    }
    return keys;
}

std::vector<std::string> childKeys(const TreeNodes& t, const std::string& parent) {
    std::vector<std::string> keys;
    for (NodeRef c = t.child(t.byKey(parent)); !c.isNull(); c = t.next(c)) {
        keys.push_back(t.key(c));
    }
    return keys;
}

// Root with two folders; A holds a1, a2; B holds b1.
TreeNodes sample() {
    TreeNodes t;
    t.add(NodeRef{}, TreeNodes::kChild, "Menu0", "Top Menu", "root");
    t.add("Menu0", TreeNodes::kChild, "A", "A");
    t.add("Menu0", TreeNodes::kChild, "B", "B");
    t.add("A", TreeNodes::kChild, "a1", "a1");
    t.add("A", TreeNodes::kChild, "a2", "a2");
    t.add("B", TreeNodes::kChild, "b1", "b1");
    return t;
}

TEST(TreeNodes, RelationshipsPlaceNodesAndIndicesFollowCreation) {
    TreeNodes t = sample();
    t.add("a2", TreeNodes::kPrevious, "x", "x");  // before a2
    t.add("a1", TreeNodes::kNext, "y", "y");      // after a1
    EXPECT_EQ(childKeys(t, "A"), (std::vector<std::string>{"a1", "y", "x", "a2"}));
    // Index order is creation order wherever the node sits.
    EXPECT_EQ(keysInIndexOrder(t),
              (std::vector<std::string>{"Menu0", "A", "B", "a1", "a2", "b1", "x", "y"}));
    EXPECT_EQ(t.index(t.byKey("y")), 8);
    EXPECT_EQ(t.key(t.firstSibling(t.byKey("x"))), "a1");
    EXPECT_EQ(t.key(t.lastSibling(t.byKey("x"))), "a2");
    EXPECT_EQ(t.children(t.byKey("A")), 4);
    EXPECT_TRUE(t.parent(t.byKey("Menu0")).isNull());
}

TEST(TreeNodes, SiblingOfTopLevelNodeIsAnotherTopLevelNode) {
    TreeNodes t = sample();
    t.add("Menu0", TreeNodes::kPrevious, "Menu9", "MENU");
    EXPECT_TRUE(t.parent(t.byKey("Menu9")).isNull());
    EXPECT_EQ(t.key(t.childAt(NodeRef{}, 0)), "Menu9");
    EXPECT_EQ(t.key(t.childAt(NodeRef{}, 1)), "Menu0");
}

TEST(TreeNodes, RemoveTakesSubtreeAndClosesIndexGap) {
    TreeNodes t = sample();
    const NodeRef b1 = t.byKey("b1");
    const NodeRef a1 = t.byKey("a1");
    t.remove(t.byKey("A"));
    EXPECT_EQ(keysInIndexOrder(t), (std::vector<std::string>{"Menu0", "B", "b1"}));
    EXPECT_EQ(t.index(b1), 3);
    EXPECT_FALSE(t.alive(a1));
    EXPECT_TRUE(t.find("a1").isNull());
    // The freed key can be used again, and the old reference does not reach the new node.
    const NodeRef again = t.add("Menu0", TreeNodes::kChild, "a1", "new");
    EXPECT_FALSE(t.alive(a1));
    EXPECT_TRUE(t.alive(again));
    EXPECT_EQ(errorOf([&] { (void)t.text(a1); }), 91);
}

TEST(TreeNodes, RemoveManyEqualsOneByOne) {
    TreeNodes one = sample();
    TreeNodes many = sample();
    one.remove(one.byKey("a1"));
    one.remove(one.byKey("B"));
    many.removeMany({many.byKey("a1"), many.byKey("B"), many.byKey("b1"), NodeRef{}});
    EXPECT_EQ(keysInIndexOrder(one), keysInIndexOrder(many));
    EXPECT_EQ(childKeys(many, "A"), (std::vector<std::string>{"a2"}));
    EXPECT_EQ(many.position(many.byKey("a2")), 0);
}

TEST(TreeNodes, ReparentKeepsIndexAndRefusesCycles) {
    TreeNodes t = sample();
    t.setParent(t.byKey("A"), t.byKey("B"));
    EXPECT_EQ(childKeys(t, "B"), (std::vector<std::string>{"b1", "A"}));
    EXPECT_EQ(t.index(t.byKey("A")), 2);
    EXPECT_EQ(childKeys(t, "A"), (std::vector<std::string>{"a1", "a2"}));
    // Below itself or below its own descendant: refused, nothing moves.
    EXPECT_EQ(errorOf([&] { t.setParent(t.byKey("B"), t.byKey("a1")); }), 35614);
    EXPECT_EQ(errorOf([&] { t.setParent(t.byKey("B"), t.byKey("B")); }), 35614);
    EXPECT_EQ(childKeys(t, "Menu0"), (std::vector<std::string>{"B"}));
}

TEST(TreeNodes, ErrorsOfTheControl) {
    TreeNodes t = sample();
    EXPECT_EQ(errorOf([&] { t.add("Menu0", TreeNodes::kChild, "a1", "dup"); }), 35602);
    EXPECT_EQ(errorOf([&] { t.add("nope", TreeNodes::kChild, "z", "z"); }), 35601);
    EXPECT_EQ(errorOf([&] { (void)t.byKey("nope"); }), 35601);
    EXPECT_EQ(errorOf([&] { (void)t.byIndex(0); }), 9);
    EXPECT_EQ(errorOf([&] { (void)t.byIndex(7); }), 9);
    EXPECT_EQ(t.count(), 6);
}

TEST(TreeNodes, RekeyRenumbersAChainWithoutCollidingWithItself) {
    TreeNodes t;
    t.add(NodeRef{}, TreeNodes::kChild, "Menu0", "root");
    for (int r = 1; r <= 4; ++r) {
        t.add("Menu0", TreeNodes::kChild, "Child" + std::to_string(r), std::to_string(r));
    }
    t.remove(t.byKey("Child2"));
    t.rekey({{t.byKey("Child3"), "Child2"}, {t.byKey("Child4"), "Child3"}});
    EXPECT_EQ(t.text(t.byKey("Child2")), "3");
    EXPECT_EQ(t.text(t.byKey("Child3")), "4");
    EXPECT_TRUE(t.find("Child4").isNull());
    // A clash with a key that stays refuses the whole change.
    EXPECT_EQ(errorOf([&] { t.rekey({{t.byKey("Child3"), "Child1"}}); }), 35602);
    EXPECT_EQ(t.text(t.byKey("Child3")), "4");
}

TEST(TreeNodes, EnsureVisibleExpandsAncestorsOnly) {
    TreeNodes t = sample();
    t.add("a1", TreeNodes::kChild, "deep", "deep");
    t.ensureVisible(t.byKey("deep"));
    EXPECT_TRUE(t.expanded(t.byKey("a1")));
    EXPECT_TRUE(t.expanded(t.byKey("A")));
    EXPECT_TRUE(t.expanded(t.byKey("Menu0")));
    EXPECT_FALSE(t.expanded(t.byKey("deep")));
    EXPECT_FALSE(t.expanded(t.byKey("B")));
}

TEST(TreeNodes, NumberedKeysAreTheKeysOfStemAndNumber) {
    TreeNodes t = sample();
    const NodeRef a = t.byKey("A");
    // The general way and the reader's one-step way make the same kind of node.
    const NodeRef first = t.addNumbered(a, TreeNodes::kChild, "Child", 7, "SEVEN");
    const NodeRef second = t.appendNumbered(a, "Child", 12, "TWELVE");
    ASSERT_FALSE(second.isNull());
    EXPECT_EQ(childKeys(t, "A"), (std::vector<std::string>{"a1", "a2", "Child7", "Child12"}));
    EXPECT_EQ(t.byKey("Child12"), second);
    EXPECT_EQ(t.findNumbered("Child", 7), first);
    EXPECT_EQ(t.text(second), "TWELVE");
    EXPECT_EQ(t.index(second), 8);
    EXPECT_EQ(t.position(second), 3);
    // A key in use raises as add does; the one-step way declines a parent that is gone, a
    // stem not taken in and a number beyond the arrays, leaving the tree as it was.
    const int notUnique = errorOf([&] { t.add("A", TreeNodes::kChild, "Child7", "again"); });
    EXPECT_NE(notUnique, 0);
    EXPECT_EQ(errorOf([&] { t.appendNumbered(a, "Child", 7, "again"); }), notUnique);
    const NodeRef b1 = t.byKey("b1");
    t.remove(b1);
    EXPECT_TRUE(t.appendNumbered(b1, "Child", 20, "x").isNull());
    EXPECT_TRUE(t.appendNumbered(a, "Other", 21, "x").isNull());
    EXPECT_TRUE(t.appendNumbered(a, "Child", 1L << 20, "x").isNull());
    EXPECT_EQ(t.count(), 7);
}

// The unfolded nodes with children, by key, as a view after a reset is told them.
std::vector<std::string> expandedParentKeys(const TreeNodes& t) {
    std::vector<std::string> keys;
    for (const NodeRef n : t.expandedParents()) {
        keys.push_back(t.key(n));
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

TEST(TreeNodes, ExpandedParentsAreTheUnfoldedNodesThatHaveChildren) {
    TreeNodes t = sample();
    t.add("a1", TreeNodes::kChild, "deep", "deep");
    t.ensureVisible(t.byKey("deep"));    // Menu0, A, a1
    t.setExpanded(t.byKey("b1"), true);  // a leaf: unfolded, but nothing to show
    t.setExpanded(t.byKey("B"), true);
    t.setExpanded(t.byKey("B"), false);  // folded again
    t.setExpanded(t.byKey("A"), false);
    t.setExpanded(t.byKey("A"), true);  // unfolded twice
    EXPECT_EQ(expandedParentKeys(t), (std::vector<std::string>{"A", "Menu0", "a1"}));

    // A removed node goes; a leaf that gets a child counts from then on; asking twice changes
    // nothing.
    t.remove(t.byKey("deep"));
    t.add("b1", TreeNodes::kChild, "b1x", "b1x");
    t.remove(t.byKey("A"));
    EXPECT_EQ(expandedParentKeys(t), (std::vector<std::string>{"Menu0", "b1"}));
    EXPECT_EQ(expandedParentKeys(t), (std::vector<std::string>{"Menu0", "b1"}));

    // A cleared collection starts without any.
    t.clear();
    t.add(NodeRef{}, TreeNodes::kChild, "Menu0", "Top Menu");
    t.add("Menu0", TreeNodes::kChild, "A", "A");
    EXPECT_TRUE(t.expandedParents().empty());
}

}  // namespace
}  // namespace vkl
