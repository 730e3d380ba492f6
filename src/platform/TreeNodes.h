#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/Text.h"

namespace vkl {

// A reference to a node that knows when its node was removed: it stays comparable and can be
// asked whether it is still alive, but never reaches a node that replaced it.
struct NodeRef {
    int32_t slot = -1;
    uint64_t uid = 0;
    bool isNull() const { return slot < 0; }
    friend bool operator==(const NodeRef&, const NodeRef&) = default;
};

// The tree's node collection: key, text, image key, parent, ordered children, expanded flag and
// index. Index order is the order of creation: a new node gets index Count+1 wherever it sits;
// removing a node removes its subtree and closes the gap; re-parenting keeps the index.
// Indices are 1-based. Errors are those of the tree control (see RuntimeError).
class TreeNodes {
  public:
    enum Relationship { kFirst = 0, kLast = 1, kNext = 2, kPrevious = 3, kChild = 4 };

    struct Observer {
        std::function<void()> beginReset;
        std::function<void()> endReset;
        // parent is null for top-level nodes; pos is the position among the siblings.
        std::function<void(NodeRef parent, int pos)> aboutToInsert;
        std::function<void()> inserted;
        // The children at positions first..last of parent go, each with its subtree.
        std::function<void(NodeRef parent, int first, int last)> aboutToRemove;
        std::function<void()> removed;
        std::function<void(NodeRef from, int fromPos, NodeRef to, int toPos)> aboutToMove;
        std::function<void()> moved;
        std::function<void(NodeRef)> changed;  // text or image
        std::function<void(NodeRef)> expandedChanged;
        std::function<void(NodeRef)> ensureVisible;  // the view should scroll it into sight
    };

    int count() const { return static_cast<int>(order_.size() - dead_); }
    // Removes every node. The storage of the nodes is kept for the next ones: a menu opened
    // over another refills the tree without allocating again.
    void clear();

    // Nodes.Add: with a null relative the node is appended as a top-level node; otherwise it is
    // placed by relationship to the relative. A missing relative raises "Element not found",
    // a key already in use raises "Key is not unique in collection". An empty key is allowed
    // and not indexed. The texts are copied (they may be views of other nodes' texts).
    NodeRef add(NodeRef relative, int relationship, std::string_view key, std::string_view text,
                std::string_view image = {});
    // The same with the relative given by key; an empty relative key means no relative.
    NodeRef add(const std::string& relativeKey, int relationship, std::string_view key,
                std::string_view text, std::string_view image = {});
    // The same with the key given as a stem and a number, the way the editor names its nodes
    // ("Child" and 12 for "Child12"): the reader adds one node per line this way, without
    // writing each key out and reading it back.
    NodeRef addNumbered(NodeRef relative, int relationship, std::string_view stem, long number,
                        std::string_view text, std::string_view image = {}) {
        if (relationship == kChild && image.empty()) {
            if (const NodeRef added = appendNumbered(relative, stem, number, text);
                !added.isNull()) {
                return added;
            }
        }
        return insertNumbered(relative, relationship, stem, number, text, image);
    }
    // addNumbered(parent, kChild, stem, number, text) for a live parent, a stem taken in and a
    // number the arrays hold, in one step: what reading does once per item line, and what
    // addNumbered does first. Returns a null reference, having done nothing, when one of these
    // does not hold.
    NodeRef appendNumbered(NodeRef parent, std::string_view stem, long number,
                           std::string_view text);

    // Removes the node and its whole subtree.
    void remove(NodeRef node);
    // Removes several nodes (each with its subtree) in one pass; null or dead references and
    // nodes inside an already removed subtree are skipped. Siblings next to each other are
    // announced as one removal; more than kMaxRemovalRuns such runs as one reset.
    void removeMany(const std::vector<NodeRef>& nodes);
    static constexpr int kMaxRemovalRuns = 32;

    // Lookup: 1-based index (out of range raises "Subscript out of range") and key (missing
    // raises "Element not found"). find() returns a null reference instead of raising.
    NodeRef byIndex(int index) const;
    NodeRef byKey(const std::string& key) const;
    NodeRef find(const std::string& key) const;
    // find() for the key made of stem and number ("Child" and 12 for "Child12").
    NodeRef findNumbered(std::string_view stem, long number) const;

    bool alive(NodeRef n) const {
        return n.slot > 0 && static_cast<size_t>(n.slot) < used_ &&
               nodes_[static_cast<size_t>(n.slot)].alive &&
               nodes_[static_cast<size_t>(n.slot)].uid == n.uid;
    }

    const std::string& key(NodeRef n) const { return node(n).key; }
    const std::string& text(NodeRef n) const { return node(n).text; }
    const std::string& image(NodeRef n) const { return node(n).image; }
    bool expanded(NodeRef n) const { return node(n).expanded; }
    int index(NodeRef n) const {
        const Node& target = node(n);
        settleIndices();
        return target.index;
    }

    void setKey(NodeRef n, std::string key);
    void setText(NodeRef n, std::string text);
    void setImage(NodeRef n, std::string image);
    void setExpanded(NodeRef n, bool expanded);
    // Expands every ancestor so that the node can be seen, and asks the view to scroll to it.
    void ensureVisible(NodeRef n);

    // Gives many nodes new keys at once (old keys are released before new ones are taken, so
    // a chain of renumberings cannot collide with itself). A clash with a key left in place
    // raises "Key is not unique in collection" and changes nothing.
    void rekey(const std::vector<std::pair<NodeRef, std::string>>& changes);
    // rekey() with each new key given as stem and number: what renumbering the item keys of
    // thousands of rows does, without writing every key out and reading it back.
    void rekeyNumbered(std::string_view stem, const std::vector<std::pair<NodeRef, long>>& changes);

    // The live nodes whose keys begin with prefix, each with the number of its key: those keyed
    // prefix + a number (the way the editor names nodes) from the number `from` on, in order,
    // then the keys of any other form with the number -1 (the caller reads them). A lower
    // prefix + number key is left out. What renumbering thousands of item keys needs instead
    // of a pass over every node.
    std::vector<std::pair<NodeRef, long>> numberedFrom(std::string_view prefix, long from) const;
    // The keys stem + k become stem + (k - the number of gaps below k), as rekeyNumbered would
    // make them, when every key beginning with stem is of that form and no gap (k with
    // gaps[k] set) names a node: what removing lines does to the keys of the lines below.
    // Returns false, having changed nothing, when one of these does not hold.
    bool closeNumberGaps(std::string_view stem, const std::vector<bool>& gaps);

    // Relationships. parent() is null for top-level nodes; the others are null when absent.
    NodeRef parent(NodeRef n) const;
    NodeRef child(NodeRef n) const;  // first child
    NodeRef lastChild(NodeRef n) const;
    NodeRef next(NodeRef n) const;
    NodeRef previous(NodeRef n) const;
    NodeRef firstSibling(NodeRef n) const;
    NodeRef lastSibling(NodeRef n) const;
    int children(NodeRef n) const;
    // Position among its siblings (0-based) and the sibling at a position; a null parent means
    // the top level.
    int position(NodeRef n) const { return node(n).pos; }
    // Inline: a tree view asks for these once or twice per node on every layout.
    NodeRef childAt(NodeRef parent, int pos) const {
        const auto& kids = nodes_[static_cast<size_t>(slotOf(parent))].kids;
        if (pos < 0 || static_cast<size_t>(pos) >= kids.size()) {
            return {};
        }
        return refOf(kids[static_cast<size_t>(pos)]);
    }
    int childCount(NodeRef parent) const {
        return static_cast<int>(nodes_[static_cast<size_t>(slotOf(parent))].kids.size());
    }
    bool isAncestorOf(NodeRef ancestor, NodeRef n) const;
    // The live nodes that are expanded and have children, in no particular order: what a view
    // that has forgotten every expanded node needs, found in one pass.
    std::vector<NodeRef> expandedParents() const;

    // Assigning Parent: the node, with its subtree, becomes the last child of newParent and
    // keeps its index. Moving a node below itself raises the control's invalid-parent error.
    void setParent(NodeRef n, NodeRef newParent);

    void setObserver(Observer o) { observer_ = std::move(o); }
    void beginBulk();
    void endBulk();
    // Inside beginBulk/endBulk: the observer hears nothing but the final reset.
    bool inBulk() const { return bulk_ > 0; }

  private:
    struct Node {
        std::string key;
        std::string text;
        std::string image;
        uint64_t uid = 0;
        int32_t parent = 0;  // slot; 0 is the hidden super-root holding the top level
        std::vector<int32_t> kids;
        int pos = 0;
        mutable int index = 0;
        bool expanded = false;
        bool alive = true;
    };

    // Keys made of a stem and a number ("Child12", "Menu3": every key the editor gives) are
    // indexed by number in one array per stem, which the reader fills in order.
    struct KeyStem {
        std::string stem;
        std::vector<int32_t> byNumber;  // slots; negative where no node has the key
        text::DecimalCounter keys;      // the key texts, stem and number
    };
    static constexpr size_t kMaxStems = 4;
    static constexpr uint32_t kMaxStemNumber = 1u << 16;

    // addNumbered for every case: the relationship placed, the key's text made when the stem
    // or the number does not fit the arrays.
    NodeRef insertNumbered(NodeRef relative, int relationship, std::string_view stem, long number,
                           std::string_view text, std::string_view image);
    // The node of a live reference; raises "Object variable not set" for any other.
    const Node& node(NodeRef n) const {
        if (!alive(n)) {
            deadNode();
        }
        return nodes_[static_cast<size_t>(n.slot)];
    }
    Node& node(NodeRef n) {
        return const_cast<Node&>(static_cast<const TreeNodes*>(this)->node(n));
    }
    [[noreturn]] static void deadNode();
    NodeRef refOf(int32_t slot) const {
        if (slot <= 0) {
            return {};
        }
        return {slot, nodes_[static_cast<size_t>(slot)].uid};
    }
    // 0 for a null reference (the top level); raises as node() for a dead one.
    int32_t slotOf(NodeRef n) const {
        if (n.isNull()) {
            return 0;
        }
        node(n);  // validates
        return n.slot;
    }
    void insertKid(int32_t parent, int pos, int32_t kid);
    void eraseKid(int32_t parent, int pos);
    void collectSubtree(int32_t slot, std::vector<int32_t>& out) const;
    // Takes the children at positions first..last of parent out, with their subtrees, and
    // drops their keys; the indices are left for settleIndices.
    void cutKids(int32_t parent, int first, int last);
    void removeManyAtOnce(const std::vector<NodeRef>& targets);
    // Removals leave their nodes' entries in order_ (dead_ of them) and the indices after them
    // as they were; the first question about an index closes the gaps. A command that removes
    // in several steps then renumbers the nodes once, or not at all.
    void settleIndices() const;
    int32_t newSlot(std::string_view key, std::string_view text, std::string_view image);
    // Places a new node whose key (if any) has been checked; cell is its stem array cell.
    NodeRef insertNode(NodeRef relative, int relationship, int32_t* cell, std::string_view key,
                       std::string_view text, std::string_view image);
    int32_t* stemCellOf(KeyStem& stem, uint32_t number);
    // Text or image: a change is announced to the views.
    void setShown(NodeRef n, std::string Node::*field, std::string value);

    // The key index. Stem-and-number keys go to the stem arrays; all others to a hash map.
    static bool numberOf(std::string_view digits, uint32_t& number);
    static bool splitKey(std::string_view key, std::string_view& stem, uint32_t& number);
    KeyStem* matchStem(std::string_view key, uint32_t& number) const;
    KeyStem* knownStem(std::string_view stem) const;  // a stem taken in, or null
    // The stem array cell of key, grown to hold it when make is set; null when the key is not
    // of that form (or, without make, beyond the array).
    int32_t* stemCell(std::string_view key, bool make);
    int32_t findSlot(std::string_view key) const;  // negative when no node has the key
    void indexKey(int32_t slot);                   // the node's key must not be indexed yet
    bool tryIndexKey(int32_t slot);  // false, and nothing indexed, when the key is taken
    void unindexKey(int32_t slot);   // drops the node's key if the index holds it for this node

    // Slots [1, used_) hold the nodes made since the last clear (dead ones included); slots
    // from used_ on are storage kept for reuse.
    std::vector<Node> nodes_ = std::vector<Node>(1);  // slot 0: super-root
    size_t used_ = 1;
    mutable std::vector<int32_t> order_;  // index-1 -> slot, once settled
    mutable size_t dead_ = 0;
    // Slots of the nodes unfolded since the last clear, noted as they unfold; a note may be
    // doubled or stale until expandedParents() tidies the list.
    mutable std::vector<int32_t> unfolded_;
    std::vector<KeyStem> stems_;
    mutable size_t lastStem_ = 0;  // where the stems are searched first
    std::unordered_map<std::string, int32_t> keyIndex_;
    uint64_t nextUid_ = 1;
    int bulk_ = 0;
    Observer observer_;
};

}  // namespace vkl
