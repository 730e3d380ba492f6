#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

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
        std::function<void(NodeRef parent, int pos)> aboutToRemove;
        std::function<void()> removed;
        std::function<void(NodeRef from, int fromPos, NodeRef to, int toPos)> aboutToMove;
        std::function<void()> moved;
        std::function<void(NodeRef)> changed;          // text or image
        std::function<void(NodeRef)> expandedChanged;
        std::function<void(NodeRef)> ensureVisible;    // the view should scroll it into sight
    };

    int count() const { return static_cast<int>(order_.size()); }
    void clear();

    // Nodes.Add: with a null relative the node is appended as a top-level node; otherwise it is
    // placed by relationship to the relative. A missing relative raises "Element not found",
    // a key already in use raises "Key is not unique in collection". An empty key is allowed
    // and not indexed.
    NodeRef add(NodeRef relative, int relationship, std::string key, std::string text,
                std::string image = {});
    // The same with the relative given by key; an empty relative key means no relative.
    NodeRef add(const std::string& relativeKey, int relationship, std::string key,
                std::string text, std::string image = {});

    // Removes the node and its whole subtree.
    void remove(NodeRef node);
    // Removes several nodes (each with its subtree) in one pass; null or dead references and
    // nodes inside an already removed subtree are skipped.
    void removeMany(const std::vector<NodeRef>& nodes);

    // Lookup: 1-based index (out of range raises "Subscript out of range") and key (missing
    // raises "Element not found"). find() returns a null reference instead of raising.
    NodeRef byIndex(int index) const;
    NodeRef byKey(const std::string& key) const;
    NodeRef find(const std::string& key) const;

    bool alive(NodeRef n) const;

    const std::string& key(NodeRef n) const { return node(n).key; }
    const std::string& text(NodeRef n) const { return node(n).text; }
    const std::string& image(NodeRef n) const { return node(n).image; }
    bool expanded(NodeRef n) const { return node(n).expanded; }
    int index(NodeRef n) const { return node(n).index; }

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
    NodeRef childAt(NodeRef parent, int pos) const;
    int childCount(NodeRef parent) const;
    bool isAncestorOf(NodeRef ancestor, NodeRef n) const;

    // Assigning Parent: the node, with its subtree, becomes the last child of newParent and
    // keeps its index. Moving a node below itself raises the control's invalid-parent error.
    void setParent(NodeRef n, NodeRef newParent);

    void setObserver(Observer o) { observer_ = std::move(o); }
    void beginBulk();
    void endBulk();

private:
    struct Node {
        std::string key;
        std::string text;
        std::string image;
        uint64_t uid = 0;
        int32_t parent = 0;  // slot; 0 is the hidden super-root holding the top level
        std::vector<int32_t> kids;
        int pos = 0;
        int index = 0;
        bool expanded = false;
        bool alive = true;
    };

    const Node& node(NodeRef n) const;
    Node& node(NodeRef n);
    NodeRef refOf(int32_t slot) const;
    int32_t slotOf(NodeRef n) const;  // 0 for a null reference (the top level)
    void insertKid(int32_t parent, int pos, int32_t kid);
    void eraseKid(int32_t parent, int pos);
    void collectSubtree(int32_t slot, std::vector<int32_t>& out) const;
    void compactIndices();

    std::vector<Node> nodes_ = std::vector<Node>(1);  // slot 0: super-root
    std::vector<int32_t> order_;                      // index-1 -> slot
    std::unordered_map<std::string, int32_t> byKey_;
    uint64_t nextUid_ = 1;
    int bulk_ = 0;
    Observer observer_;
};

}  // namespace vkl
