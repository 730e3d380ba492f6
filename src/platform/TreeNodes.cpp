#include "platform/TreeNodes.h"

#include <algorithm>

#include "platform/RuntimeError.h"

namespace vkl {

namespace {
template <typename F, typename... A>
void call(const F& f, A&&... a) {
    if (f) {
        f(std::forward<A>(a)...);
    }
}
}  // namespace

void TreeNodes::beginBulk() {
    if (bulk_++ == 0) {
        call(observer_.beginReset);
    }
}

void TreeNodes::endBulk() {
    if (--bulk_ == 0) {
        call(observer_.endReset);
    }
}

void TreeNodes::clear() {
    beginBulk();
    nodes_.assign(1, Node{});
    order_.clear();
    byKey_.clear();
    endBulk();
}

bool TreeNodes::alive(NodeRef n) const {
    return n.slot > 0 && static_cast<size_t>(n.slot) < nodes_.size() &&
           nodes_[static_cast<size_t>(n.slot)].alive && nodes_[static_cast<size_t>(n.slot)].uid == n.uid;
}

const TreeNodes::Node& TreeNodes::node(NodeRef n) const {
    if (!alive(n)) {
        throw RuntimeError::objectNotSet();
    }
    return nodes_[static_cast<size_t>(n.slot)];
}

TreeNodes::Node& TreeNodes::node(NodeRef n) {
    return const_cast<Node&>(static_cast<const TreeNodes*>(this)->node(n));
}

NodeRef TreeNodes::refOf(int32_t slot) const {
    if (slot <= 0) {
        return {};
    }
    return {slot, nodes_[static_cast<size_t>(slot)].uid};
}

int32_t TreeNodes::slotOf(NodeRef n) const {
    if (n.isNull()) {
        return 0;
    }
    node(n);  // validates
    return n.slot;
}

void TreeNodes::insertKid(int32_t parent, int pos, int32_t kid) {
    auto& kids = nodes_[static_cast<size_t>(parent)].kids;
    kids.insert(kids.begin() + pos, kid);
    for (size_t i = static_cast<size_t>(pos); i < kids.size(); ++i) {
        nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
    }
    nodes_[static_cast<size_t>(kid)].parent = parent;
}

void TreeNodes::eraseKid(int32_t parent, int pos) {
    auto& kids = nodes_[static_cast<size_t>(parent)].kids;
    kids.erase(kids.begin() + pos);
    for (size_t i = static_cast<size_t>(pos); i < kids.size(); ++i) {
        nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
    }
}

NodeRef TreeNodes::add(const std::string& relativeKey, int relationship, std::string key,
                       std::string text, std::string image) {
    NodeRef relative;
    if (!relativeKey.empty()) {
        relative = byKey(relativeKey);
    }
    return add(relative, relationship, std::move(key), std::move(text), std::move(image));
}

NodeRef TreeNodes::add(NodeRef relative, int relationship, std::string key, std::string text,
                       std::string image) {
    if (!relative.isNull() && !alive(relative)) {
        throw RuntimeError::elementNotFound();
    }
    if (!key.empty() && byKey_.count(key) != 0) {
        throw RuntimeError::keyNotUnique();
    }
    int32_t parent = 0;
    int pos = 0;
    if (relative.isNull()) {
        pos = static_cast<int>(nodes_[0].kids.size());
    } else {
        const Node& rel = node(relative);
        switch (relationship) {
            case kChild:
                parent = relative.slot;
                pos = static_cast<int>(rel.kids.size());
                break;
            case kFirst:
                parent = rel.parent;
                pos = 0;
                break;
            case kLast:
                parent = rel.parent;
                pos = static_cast<int>(nodes_[static_cast<size_t>(parent)].kids.size());
                break;
            case kNext:
                parent = rel.parent;
                pos = rel.pos + 1;
                break;
            case kPrevious:
                parent = rel.parent;
                pos = rel.pos;
                break;
            default:
                throw RuntimeError(380, "Invalid property value");
        }
    }
    if (bulk_ == 0) {
        call(observer_.aboutToInsert, refOf(parent), pos);
    }
    const auto slot = static_cast<int32_t>(nodes_.size());
    Node n;
    n.key = std::move(key);
    n.text = std::move(text);
    n.image = std::move(image);
    n.uid = nextUid_++;
    n.index = count() + 1;
    nodes_.push_back(std::move(n));
    order_.push_back(slot);
    if (!nodes_.back().key.empty()) {
        byKey_.emplace(nodes_.back().key, slot);
    }
    insertKid(parent, pos, slot);
    if (bulk_ == 0) {
        call(observer_.inserted);
    }
    return refOf(slot);
}

void TreeNodes::collectSubtree(int32_t slot, std::vector<int32_t>& out) const {
    std::vector<int32_t> stack{slot};
    while (!stack.empty()) {
        const int32_t s = stack.back();
        stack.pop_back();
        out.push_back(s);
        const auto& kids = nodes_[static_cast<size_t>(s)].kids;
        stack.insert(stack.end(), kids.begin(), kids.end());
    }
}

void TreeNodes::compactIndices() {
    size_t out = 0;
    for (size_t i = 0; i < order_.size(); ++i) {
        const int32_t s = order_[i];
        if (nodes_[static_cast<size_t>(s)].alive) {
            order_[out] = s;
            nodes_[static_cast<size_t>(s)].index = static_cast<int>(out) + 1;
            ++out;
        }
    }
    order_.resize(out);
}

void TreeNodes::remove(NodeRef n) {
    const Node& target = node(n);
    const int32_t parent = target.parent;
    const int pos = target.pos;
    if (bulk_ == 0) {
        call(observer_.aboutToRemove, refOf(parent), pos);
    }
    std::vector<int32_t> gone;
    collectSubtree(n.slot, gone);
    for (int32_t s : gone) {
        Node& dead = nodes_[static_cast<size_t>(s)];
        dead.alive = false;
        if (!dead.key.empty()) {
            byKey_.erase(dead.key);
        }
        dead.kids.clear();
    }
    eraseKid(parent, pos);
    compactIndices();
    if (bulk_ == 0) {
        call(observer_.removed);
    }
}

void TreeNodes::removeMany(const std::vector<NodeRef>& targets) {
    beginBulk();
    std::vector<int32_t> parentsTouched;
    for (const NodeRef& n : targets) {
        if (!alive(n)) {
            continue;
        }
        std::vector<int32_t> gone;
        collectSubtree(n.slot, gone);
        for (int32_t s : gone) {
            Node& dead = nodes_[static_cast<size_t>(s)];
            dead.alive = false;
            if (!dead.key.empty()) {
                byKey_.erase(dead.key);
            }
        }
        parentsTouched.push_back(nodes_[static_cast<size_t>(n.slot)].parent);
    }
    std::sort(parentsTouched.begin(), parentsTouched.end());
    parentsTouched.erase(std::unique(parentsTouched.begin(), parentsTouched.end()),
                         parentsTouched.end());
    for (int32_t p : parentsTouched) {
        Node& parent = nodes_[static_cast<size_t>(p)];
        if (p != 0 && !parent.alive) {
            continue;
        }
        auto& kids = parent.kids;
        kids.erase(std::remove_if(kids.begin(), kids.end(),
                                  [&](int32_t k) { return !nodes_[static_cast<size_t>(k)].alive; }),
                   kids.end());
        for (size_t i = 0; i < kids.size(); ++i) {
            nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
        }
    }
    compactIndices();
    endBulk();
}

NodeRef TreeNodes::byIndex(int index) const {
    if (index < 1 || index > count()) {
        throw RuntimeError::subscriptOutOfRange();
    }
    return refOf(order_[static_cast<size_t>(index - 1)]);
}

NodeRef TreeNodes::find(const std::string& key) const {
    const auto it = byKey_.find(key);
    return it == byKey_.end() ? NodeRef{} : refOf(it->second);
}

NodeRef TreeNodes::byKey(const std::string& key) const {
    const NodeRef n = find(key);
    if (n.isNull()) {
        throw RuntimeError::elementNotFound();
    }
    return n;
}

void TreeNodes::setKey(NodeRef n, std::string key) {
    Node& target = node(n);
    if (target.key == key) {
        return;
    }
    if (!key.empty() && byKey_.count(key) != 0) {
        throw RuntimeError::keyNotUnique();
    }
    if (!target.key.empty()) {
        byKey_.erase(target.key);
    }
    target.key = std::move(key);
    if (!target.key.empty()) {
        byKey_.emplace(target.key, n.slot);
    }
}

void TreeNodes::rekey(const std::vector<std::pair<NodeRef, std::string>>& changes) {
    for (const auto& [n, k] : changes) {
        node(n);
    }
    // Check first so that a clash changes nothing.
    std::unordered_map<std::string, int32_t> taken;
    std::vector<char> moving(nodes_.size(), 0);
    for (const auto& [n, k] : changes) {
        moving[static_cast<size_t>(n.slot)] = 1;
    }
    for (const auto& [n, k] : changes) {
        if (k.empty()) {
            continue;
        }
        const auto it = byKey_.find(k);
        if (it != byKey_.end() && !moving[static_cast<size_t>(it->second)]) {
            throw RuntimeError::keyNotUnique();
        }
        if (!taken.emplace(k, n.slot).second) {
            throw RuntimeError::keyNotUnique();
        }
    }
    for (const auto& [n, k] : changes) {
        Node& target = nodes_[static_cast<size_t>(n.slot)];
        if (!target.key.empty()) {
            const auto it = byKey_.find(target.key);
            if (it != byKey_.end() && it->second == n.slot) {
                byKey_.erase(it);
            }
        }
    }
    for (const auto& [n, k] : changes) {
        nodes_[static_cast<size_t>(n.slot)].key = k;
        if (!k.empty()) {
            byKey_[k] = n.slot;
        }
    }
}

void TreeNodes::setText(NodeRef n, std::string text) {
    Node& target = node(n);
    if (target.text != text) {
        target.text = std::move(text);
        if (bulk_ == 0) {
            call(observer_.changed, n);
        }
    }
}

void TreeNodes::setImage(NodeRef n, std::string image) {
    Node& target = node(n);
    if (target.image != image) {
        target.image = std::move(image);
        if (bulk_ == 0) {
            call(observer_.changed, n);
        }
    }
}

void TreeNodes::setExpanded(NodeRef n, bool expanded) {
    Node& target = node(n);
    if (target.expanded != expanded) {
        target.expanded = expanded;
        if (bulk_ == 0) {
            call(observer_.expandedChanged, n);
        }
    }
}

void TreeNodes::ensureVisible(NodeRef n) {
    for (NodeRef p = parent(n); !p.isNull(); p = parent(p)) {
        setExpanded(p, true);
    }
    if (bulk_ == 0) {
        call(observer_.ensureVisible, n);
    }
}

NodeRef TreeNodes::parent(NodeRef n) const { return refOf(node(n).parent); }

NodeRef TreeNodes::child(NodeRef n) const {
    const auto& kids = node(n).kids;
    return kids.empty() ? NodeRef{} : refOf(kids.front());
}

NodeRef TreeNodes::lastChild(NodeRef n) const {
    const auto& kids = node(n).kids;
    return kids.empty() ? NodeRef{} : refOf(kids.back());
}

NodeRef TreeNodes::next(NodeRef n) const {
    const Node& self = node(n);
    const auto& kids = nodes_[static_cast<size_t>(self.parent)].kids;
    const auto at = static_cast<size_t>(self.pos) + 1;
    return at < kids.size() ? refOf(kids[at]) : NodeRef{};
}

NodeRef TreeNodes::previous(NodeRef n) const {
    const Node& self = node(n);
    const auto& kids = nodes_[static_cast<size_t>(self.parent)].kids;
    return self.pos > 0 ? refOf(kids[static_cast<size_t>(self.pos) - 1]) : NodeRef{};
}

NodeRef TreeNodes::firstSibling(NodeRef n) const {
    return refOf(nodes_[static_cast<size_t>(node(n).parent)].kids.front());
}

NodeRef TreeNodes::lastSibling(NodeRef n) const {
    return refOf(nodes_[static_cast<size_t>(node(n).parent)].kids.back());
}

int TreeNodes::children(NodeRef n) const { return static_cast<int>(node(n).kids.size()); }

NodeRef TreeNodes::childAt(NodeRef parent, int pos) const {
    const auto& kids = nodes_[static_cast<size_t>(slotOf(parent))].kids;
    if (pos < 0 || static_cast<size_t>(pos) >= kids.size()) {
        return {};
    }
    return refOf(kids[static_cast<size_t>(pos)]);
}

int TreeNodes::childCount(NodeRef parent) const {
    return static_cast<int>(nodes_[static_cast<size_t>(slotOf(parent))].kids.size());
}

bool TreeNodes::isAncestorOf(NodeRef ancestor, NodeRef n) const {
    const int32_t a = slotOf(ancestor);
    for (int32_t s = node(n).parent; s != 0; s = nodes_[static_cast<size_t>(s)].parent) {
        if (s == a) {
            return true;
        }
    }
    return false;
}

void TreeNodes::setParent(NodeRef n, NodeRef newParent) {
    Node& self = node(n);
    const int32_t to = slotOf(newParent);
    if (to == n.slot || isAncestorOf(n, newParent)) {
        throw RuntimeError::invalidParent();
    }
    const int32_t from = self.parent;
    const int fromPos = self.pos;
    int toPos = static_cast<int>(nodes_[static_cast<size_t>(to)].kids.size());
    if (bulk_ == 0) {
        call(observer_.aboutToMove, refOf(from), fromPos, refOf(to), toPos);
    }
    eraseKid(from, fromPos);
    toPos = static_cast<int>(nodes_[static_cast<size_t>(to)].kids.size());
    insertKid(to, toPos, n.slot);
    if (bulk_ == 0) {
        call(observer_.moved);
    }
}

}  // namespace vkl
