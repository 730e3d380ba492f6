#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/TreeNodes.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

using test::errorOf;

// The reader's one-step add: as add for a key in use, and no node where it cannot hold one.
TEST(TreeNodes, AppendNumberedRaisesOnAKeyInUseAndDeclinesWhatItCannotHold) {
    TreeNodes t;
    const NodeRef root = t.add(NodeRef{}, TreeNodes::kChild, "Menu0", "Top Menu", "root");
    t.addNumbered(root, TreeNodes::kChild, "Child", 7, "SEVEN");  // takes the stem in
    const NodeRef twelve = t.appendNumbered(root, "Child", 12, "TWELVE");
    EXPECT_EQ(t.byKey("Child12"), twelve);
    EXPECT_EQ(errorOf([&] { t.appendNumbered(root, "Child", 7, "again"); }), 35602);
    EXPECT_TRUE(t.appendNumbered(root, "Other", 21, "x").isNull());
    EXPECT_TRUE(t.appendNumbered(root, "Child", 1L << 20, "x").isNull());
    EXPECT_EQ(t.count(), 3);
}

// The node collection as plain data: creation order is index order, children in lists.
struct PlainTree {
    struct Node {
        std::string key;
        int parent = -1;
        std::vector<int> kids;
        bool alive = true;
        bool expanded = false;
    };
    std::vector<Node> nodes;
    std::vector<int> tops;

    std::vector<int>& siblingsOf(int n) {
        return nodes[n].parent < 0 ? tops : nodes[nodes[n].parent].kids;
    }
    bool keyTaken(const std::string& key) const {
        return !key.empty() && std::any_of(nodes.begin(), nodes.end(),
                                           [&](const Node& n) { return n.alive && n.key == key; });
    }
    int add(int relative, int relationship, const std::string& key) {
        nodes.emplace_back();
        nodes.back().key = key;
        const int n = static_cast<int>(nodes.size()) - 1;
        if (relative < 0) {
            tops.push_back(n);
        } else if (relationship == TreeNodes::kChild) {
            nodes[n].parent = relative;
            nodes[relative].kids.push_back(n);
        } else {
            nodes[n].parent = nodes[relative].parent;
            std::vector<int>& sibs = siblingsOf(relative);
            const auto at = std::find(sibs.begin(), sibs.end(), relative);
            sibs.insert(relationship == TreeNodes::kNext ? at + 1 : at, n);
        }
        return n;
    }
    void remove(int n) {
        if (nodes[n].alive) {
            detach(n);
            kill(n);
        }
    }
    void kill(int n) {
        nodes[n].alive = false;
        std::for_each(nodes[n].kids.begin(), nodes[n].kids.end(), [&](int k) { kill(k); });
    }
    void detach(int n) { std::erase(siblingsOf(n), n); }
    bool below(int n, int top) const { return n >= 0 && (n == top || below(nodes[n].parent, top)); }
};

// Long random runs of adds by every relationship, with keys of the editor's stems, other keys
// and none, removals of subtrees one by one and many at once, renumbering, re-parenting and
// clearing, each step compared with the plain model through every lookup.
TEST(TreeNodes, RandomOperationsMatchAPlainTree) {
    test::Random random;
    const auto below = [&](int n) { return random.below(n); };
    static const char* const stems[] = {"Child", "Menu", "Node", "x"};
    for (int run = 0; run < 30; ++run) {
        TreeNodes t;
        PlainTree m;
        std::vector<NodeRef> refs;  // the node of each model node
        auto live = [&] {
            std::vector<int> out;
            for (int n = 0; n < static_cast<int>(m.nodes.size()); ++n) {
                if (m.nodes[n].alive) {
                    out.push_back(n);
                }
            }
            return out;
        };
        auto randomKey = [&] {
            const int kind = below(6);
            const int number = below(3) == 0 ? below(100000) : below(60);
            return kind == 0   ? std::string()
                   : kind == 1 ? std::string("key") + static_cast<char>('a' + below(26))
                               : stems[below(4)] + std::to_string(number);
        };
        for (int step = 0; step < 400; ++step) {
            const std::vector<int> alive = live();
            const int some = alive.empty() ? -1 : alive[below(static_cast<int>(alive.size()))];
            switch (below(12)) {
                case 0:
                case 1:
                case 2: {
                    const int relative = below(4) == 0 ? -1 : some;
                    const int relationship = 2 + below(3);
                    const std::string key = randomKey();
                    const NodeRef rel = relative < 0 ? NodeRef{} : refs[relative];
                    const bool numbered = !key.empty() && std::isdigit(key.back()) && below(2) == 0;
                    const auto add = [&] {
                        if (!numbered) {
                            return t.add(rel, relationship, key, "t");
                        }
                        const size_t digits = key.find_first_of("0123456789");
                        return t.addNumbered(rel, relationship, key.substr(0, digits),
                                             std::stol(key.substr(digits)), "t");
                    };
                    if (m.keyTaken(key)) {
                        EXPECT_EQ(errorOf([&] { add(); }), 35602) << key;
                    } else {
                        refs.push_back(add());
                        m.add(relative, relationship, key);
                    }
                    break;
                }
                case 3:
                    if (some >= 0) {
                        t.remove(refs[some]);
                        m.remove(some);
                    }
                    break;
                case 4: {
                    std::vector<NodeRef> many;
                    for (int n : alive) {
                        if (below(4) == 0) {
                            many.push_back(refs[n]);
                            m.remove(n);
                        }
                    }
                    t.removeMany(many);
                    break;
                }
                case 5: {
                    // Renumbering: a chain of nodes takes keys some of them held before.
                    std::vector<std::pair<NodeRef, long>> changes;
                    std::vector<std::pair<NodeRef, std::string>> keyed;
                    std::vector<int> chosen;
                    const std::string stem = stems[below(4)];
                    for (int n : alive) {
                        if (below(3) == 0) {
                            const long number = below(60) + (below(5) == 0 ? 70000 : 0);
                            changes.emplace_back(refs[n], number);
                            keyed.emplace_back(refs[n], stem + std::to_string(number));
                            chosen.push_back(n);
                        }
                    }
                    PlainTree after = m;
                    for (int n : chosen) {
                        after.nodes[n].key.clear();
                    }
                    bool clash = false;
                    for (size_t k = 0; k < chosen.size(); ++k) {
                        clash = clash || after.keyTaken(keyed[k].second);
                        after.nodes[chosen[k]].key = keyed[k].second;
                    }
                    if (clash) {
                        EXPECT_EQ(errorOf([&] { t.rekeyNumbered(stem, changes); }), 35602);
                    } else {
                        below(2) == 0 ? t.rekeyNumbered(stem, changes) : t.rekey(keyed);
                        m = after;
                    }
                    break;
                }
                case 6: {
                    const int other =
                        alive.empty() ? -1 : alive[below(static_cast<int>(alive.size()))];
                    if (some < 0 || other < 0) {
                        break;
                    }
                    if (m.below(other, some)) {
                        EXPECT_EQ(errorOf([&] { t.setParent(refs[some], refs[other]); }), 35614);
                    } else {
                        t.setParent(refs[some], refs[other]);
                        m.detach(some);
                        m.nodes[some].parent = other;
                        m.nodes[other].kids.push_back(some);
                    }
                    break;
                }
                case 7:
                    if (below(10) == 0) {
                        t.clear();
                        for (int n : alive) {
                            m.nodes[n].alive = false;
                        }
                        m.tops.clear();
                    }
                    break;
                case 8:
                    if (some >= 0) {
                        const bool open = below(2) == 0;
                        t.setExpanded(refs[some], open);
                        m.nodes[some].expanded = open;
                    }
                    break;
                case 9:
                    if (some >= 0) {  // unfolds the ancestors only
                        t.ensureVisible(refs[some]);
                        for (int p = m.nodes[some].parent; p >= 0; p = m.nodes[p].parent) {
                            m.nodes[p].expanded = true;
                        }
                    }
                    break;
                default:
                    if (!m.nodes.empty()) {
                        const int gone = below(static_cast<int>(m.nodes.size()));
                        if (!m.nodes[gone].alive) {
                            EXPECT_FALSE(t.alive(refs[gone]));
                            EXPECT_EQ(errorOf([&] { (void)t.key(refs[gone]); }), 91);
                            EXPECT_EQ(errorOf([&] { t.add(refs[gone], 4, "", "t"); }), 35601);
                        }
                    }
                    break;
            }
            // Every lookup agrees with the model; the unfolded nodes with children are those a
            // view is told after a reset.
            const std::vector<int> now = live();
            ASSERT_EQ(t.count(), static_cast<int>(now.size())) << "step " << step;
            std::vector<int> unfolded;
            for (const NodeRef n : t.expandedParents()) {
                unfolded.push_back(t.index(n));
            }
            std::sort(unfolded.begin(), unfolded.end());
            std::vector<int> expected;
            for (size_t i = 0; i < now.size(); ++i) {
                const int n = now[i];
                const NodeRef r = refs[n];
                const int index = static_cast<int>(i) + 1;
                const std::vector<int>& kids = m.nodes[n].kids;
                const std::vector<int>& sibs = m.siblingsOf(n);
                const long at = std::find(sibs.begin(), sibs.end(), n) - sibs.begin();
                const auto ref = [&](const std::vector<int>& v, size_t k) {
                    return k < v.size() && v[k] >= 0 ? refs[v[k]] : NodeRef{};
                };
                ASSERT_EQ((std::vector<NodeRef>{t.byIndex(index), t.parent(r), t.child(r),
                                                t.next(r), t.firstSibling(r), t.lastSibling(r)}),
                          (std::vector<NodeRef>{r, ref({m.nodes[n].parent}, 0), ref(kids, 0),
                                                ref(sibs, at + 1), refs[sibs.front()],
                                                refs[sibs.back()]}))
                    << "step " << step;
                ASSERT_EQ(
                    (std::vector<long>{t.index(r), t.children(r), t.position(r), t.expanded(r)}),
                    (std::vector<long>{index, static_cast<long>(kids.size()), at,
                                       m.nodes[n].expanded}));
                ASSERT_EQ(t.key(r), m.nodes[n].key);
                if (!m.nodes[n].key.empty()) {
                    ASSERT_EQ(t.find(m.nodes[n].key), r) << m.nodes[n].key;
                }
                if (m.nodes[n].expanded && !kids.empty()) {
                    expected.push_back(index);
                }
            }
            ASSERT_EQ(unfolded, expected) << "step " << step;
            ASSERT_TRUE(t.find("absent").isNull());
            ASSERT_EQ(errorOf([&] { (void)t.byKey("absent"); }), 35601);
            for (const int index : {0, t.count() + 1}) {
                ASSERT_EQ(errorOf([&] { (void)t.byIndex(index); }), 9);
            }
        }
    }
}

}  // namespace
}  // namespace vkl
