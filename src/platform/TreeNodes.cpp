#include "platform/TreeNodes.h"

#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl {

namespace {

// Whether s begins with prefix, compared in place: stems are a few letters, a library call
// would cost more than the comparison.
bool startsWith(std::string_view s, std::string_view prefix) {
    if (s.size() < prefix.size()) {
        return false;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (s[i] != prefix[i]) {
            return false;
        }
    }
    return true;
}

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
    nodes_[0].kids.clear();
    used_ = 1;
    order_.clear();
    dead_ = 0;
    unfolded_.clear();
    for (KeyStem& s : stems_) {
        std::fill(s.byNumber.begin(), s.byNumber.end(), -1);
    }
    keyIndex_.clear();
    endBulk();
}

// ---- Key index -----------------------------------------------------------------------------

bool TreeNodes::splitKey(std::string_view key, std::string_view& stem, uint32_t& number) {
    size_t at = key.size();
    while (at > 0 && key[at - 1] >= '0' && key[at - 1] <= '9') {
        --at;
    }
    if (!numberOf(key.substr(at), number)) {
        return false;
    }
    stem = key.substr(0, at);
    return true;
}
bool TreeNodes::numberOf(std::string_view digits, uint32_t& number) {
    // One spelling per number: no leading zero, so "Child07" is a key of its own.
    if (digits.empty() || digits.size() > 5 || (digits.size() > 1 && digits[0] == '0')) {
        return false;
    }
    uint32_t n = 0;
    for (const char c : digits) {
        const auto digit = static_cast<uint32_t>(static_cast<unsigned char>(c) - '0');
        if (digit > 9) {
            return false;
        }
        n = n * 10 + digit;
    }
    number = n;
    return n < kMaxStemNumber;
}

TreeNodes::KeyStem* TreeNodes::matchStem(std::string_view key, uint32_t& number) const {
    // A stem never ends in a digit, so the digits after a matching stem are exactly the digits
    // the key ends in. The stem matched last is tried first: keys come in runs of one kind.
    const size_t count = stems_.size();
    for (size_t k = 0; k < count; ++k) {
        const size_t at = k == 0 ? lastStem_ : (k <= lastStem_ ? k - 1 : k);
        const std::string& stem = stems_[at].stem;
        if (key.size() > stem.size() && startsWith(key, stem) &&
            numberOf(key.substr(stem.size()), number)) {
            lastStem_ = at;
            return const_cast<KeyStem*>(&stems_[at]);
        }
    }
    return nullptr;
}

int32_t* TreeNodes::stemCell(std::string_view key, bool make) {
    uint32_t number = 0;
    KeyStem* found = matchStem(key, number);
    if (found == nullptr) {
        // A stem is taken in only while there are few; keys of further stems are hashed. Stems
        // are never given up, so a key is always looked for where it was put.
        std::string_view stem;
        if (!make || stems_.size() >= kMaxStems || !splitKey(key, stem, number) ||
            stem.size() > text::DecimalCounter::kPrefixMax) {
            return nullptr;
        }
        found = &stems_.emplace_back(KeyStem{std::string(stem), {}, text::DecimalCounter(stem)});
    }
    if (!make && number >= found->byNumber.size()) {
        return nullptr;
    }
    return stemCellOf(*found, number);
}

TreeNodes::KeyStem* TreeNodes::knownStem(std::string_view stem) const {
    const auto same = [stem](const std::string& known) {
        return known.size() == stem.size() && startsWith(stem, known);
    };
    if (lastStem_ < stems_.size() && same(stems_[lastStem_].stem)) {
        return const_cast<KeyStem*>(&stems_[lastStem_]);
    }
    for (size_t k = 0; k < stems_.size(); ++k) {
        if (same(stems_[k].stem)) {
            lastStem_ = k;
            return const_cast<KeyStem*>(&stems_[k]);
        }
    }
    return nullptr;
}

int32_t* TreeNodes::stemCellOf(KeyStem& stem, uint32_t number) {
    std::vector<int32_t>& slots = stem.byNumber;
    if (number >= slots.size()) {
        slots.resize(std::max<size_t>(number + 1, slots.size() * 2), -1);
    }
    return &slots[number];
}

int32_t TreeNodes::findSlot(std::string_view key) const {
    if (key.empty()) {
        return -1;
    }
    uint32_t number = 0;
    if (const KeyStem* s = matchStem(key, number)) {
        return number < s->byNumber.size() ? s->byNumber[number] : -1;
    }
    const auto it = keyIndex_.find(std::string(key));
    return it == keyIndex_.end() ? -1 : it->second;
}

void TreeNodes::indexKey(int32_t slot) {
    tryIndexKey(slot);
}

bool TreeNodes::tryIndexKey(int32_t slot) {
    const std::string& key = nodes_[static_cast<size_t>(slot)].key;
    if (key.empty()) {
        return true;
    }
    if (int32_t* cell = stemCell(key, true)) {
        if (*cell >= 0) {
            return false;
        }
        *cell = slot;
        return true;
    }
    return keyIndex_.emplace(key, slot).second;
}

void TreeNodes::unindexKey(int32_t slot) {
    const std::string& key = nodes_[static_cast<size_t>(slot)].key;
    if (key.empty()) {
        return;
    }
    if (int32_t* cell = stemCell(key, false)) {
        if (*cell == slot) {
            *cell = -1;
        }
        return;
    }
    const auto it = keyIndex_.find(key);
    if (it != keyIndex_.end() && it->second == slot) {
        keyIndex_.erase(it);
    }
}

// ---- Nodes ---------------------------------------------------------------------------------

void TreeNodes::deadNode() {
    throw RuntimeError::objectNotSet();
}

void TreeNodes::insertKid(int32_t parent, int pos, int32_t kid) {
    auto& kids = nodes_[static_cast<size_t>(parent)].kids;
    nodes_[static_cast<size_t>(kid)].parent = parent;
    if (static_cast<size_t>(pos) == kids.size()) {
        kids.push_back(kid);
        nodes_[static_cast<size_t>(kid)].pos = pos;
        return;
    }
    kids.insert(kids.begin() + pos, kid);
    for (size_t i = static_cast<size_t>(pos); i < kids.size(); ++i) {
        nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
    }
}

void TreeNodes::eraseKid(int32_t parent, int pos) {
    auto& kids = nodes_[static_cast<size_t>(parent)].kids;
    kids.erase(kids.begin() + pos);
    for (size_t i = static_cast<size_t>(pos); i < kids.size(); ++i) {
        nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
    }
}

NodeRef TreeNodes::add(const std::string& relativeKey, int relationship, std::string_view key,
                       std::string_view text, std::string_view image) {
    NodeRef relative;
    if (!relativeKey.empty()) {
        relative = byKey(relativeKey);
    }
    return add(relative, relationship, key, text, image);
}

int32_t TreeNodes::newSlot(std::string_view key, std::string_view text, std::string_view image) {
    // The texts are copied before the node array can grow: they may be views into it.
    if (used_ == nodes_.size()) {
        Node fresh;
        fresh.key.assign(key);
        fresh.text.assign(text);
        fresh.image.assign(image);
        nodes_.push_back(std::move(fresh));
    } else {
        Node& reused = nodes_[used_];
        text::copyInto(reused.key, key);
        text::copyInto(reused.text, text);
        if (image.empty()) {
            reused.image.clear();
        } else {
            text::copyInto(reused.image, image);
        }
        reused.kids.clear();
        reused.pos = 0;
        reused.expanded = false;
        reused.alive = true;
    }
    return static_cast<int32_t>(used_++);
}

NodeRef TreeNodes::add(NodeRef relative, int relationship, std::string_view key,
                       std::string_view text, std::string_view image) {
    if (!relative.isNull() && !alive(relative)) {
        throw RuntimeError::elementNotFound();
    }
    // The stem array cell of the key is found once, for the check and for the entry.
    int32_t* const cell = key.empty() ? nullptr : stemCell(key, true);
    if (cell != nullptr ? *cell >= 0 : findSlot(key) >= 0) {
        throw RuntimeError::keyNotUnique();
    }
    return insertNode(relative, relationship, cell, key, text, image);
}

NodeRef TreeNodes::insertNumbered(NodeRef relative, int relationship, std::string_view stem,
                                  long number, std::string_view text, std::string_view image) {
    if (!relative.isNull() && !alive(relative)) {
        throw RuntimeError::elementNotFound();
    }
    KeyStem* const found = knownStem(stem);
    if (found == nullptr || number < 0 || number >= static_cast<long>(kMaxStemNumber)) {
        // A stem not taken in yet, or a number beyond the arrays: the key as text decides.
        std::string key(stem);
        key += text::str(number);
        return add(relative, relationship, key, text, image);
    }
    int32_t* const cell = stemCellOf(*found, static_cast<uint32_t>(number));
    if (*cell >= 0) {
        throw RuntimeError::keyNotUnique();
    }
    return insertNode(relative, relationship, cell, found->keys.text(number), text, image);
}

NodeRef TreeNodes::appendNumbered(NodeRef parent, std::string_view stem, long number,
                                  std::string_view text) {
    if (!alive(parent) || number < 0 || number >= static_cast<long>(kMaxStemNumber)) {
        return {};
    }
    KeyStem* const found = knownStem(stem);
    if (found == nullptr) {
        return {};
    }
    int32_t* const cell = stemCellOf(*found, static_cast<uint32_t>(number));
    if (*cell >= 0) {
        throw RuntimeError::keyNotUnique();
    }
    const int pos = static_cast<int>(nodes_[static_cast<size_t>(parent.slot)].kids.size());
    if (bulk_ == 0) {
        call(observer_.aboutToInsert, parent, pos);
    }
    const int32_t slot = newSlot(found->keys.text(number), text, {});
    Node& n = nodes_[static_cast<size_t>(slot)];
    n.uid = nextUid_++;
    n.index = count() + 1;
    n.parent = parent.slot;
    n.pos = pos;
    order_.push_back(slot);
    *cell = slot;
    nodes_[static_cast<size_t>(parent.slot)].kids.push_back(slot);
    if (bulk_ == 0) {
        call(observer_.inserted);
    }
    return {slot, n.uid};
}

NodeRef TreeNodes::insertNode(NodeRef relative, int relationship, int32_t* cell,
                              std::string_view key, std::string_view text, std::string_view image) {
    int32_t parent = 0;
    int pos = 0;
    if (relative.isNull()) {
        pos = static_cast<int>(nodes_[0].kids.size());
    } else {
        const Node& rel = nodes_[static_cast<size_t>(relative.slot)];  // alive, checked above
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
    const int32_t slot = newSlot(key, text, image);
    Node& n = nodes_[static_cast<size_t>(slot)];
    n.uid = nextUid_++;
    n.index = count() + 1;
    order_.push_back(slot);
    if (cell != nullptr) {
        *cell = slot;
    } else {
        indexKey(slot);
    }
    insertKid(parent, pos, slot);
    if (bulk_ == 0) {
        call(observer_.inserted);
    }
    return refOf(slot);
}

void TreeNodes::collectSubtree(int32_t slot, std::vector<int32_t>& out) const {
    // Level by level, out itself holding the nodes still to be opened.
    const size_t first = out.size();
    out.push_back(slot);
    for (size_t i = first; i < out.size(); ++i) {
        const auto& kids = nodes_[static_cast<size_t>(out[i])].kids;
        out.insert(out.end(), kids.begin(), kids.end());
    }
}

void TreeNodes::settleIndices() const {
    if (dead_ == 0) {
        return;
    }
    dead_ = 0;
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

void TreeNodes::cutKids(int32_t parent, int first, int last) {
    auto& kids = nodes_[static_cast<size_t>(parent)].kids;
    std::vector<int32_t> gone;
    for (int pos = first; pos <= last; ++pos) {
        gone.clear();
        collectSubtree(kids[static_cast<size_t>(pos)], gone);
        for (int32_t s : gone) {
            unindexKey(s);
            Node& dead = nodes_[static_cast<size_t>(s)];
            dead.alive = false;
            dead.kids.clear();
        }
        dead_ += gone.size();
    }
    kids.erase(kids.begin() + first, kids.begin() + last + 1);
    for (size_t i = static_cast<size_t>(first); i < kids.size(); ++i) {
        nodes_[static_cast<size_t>(kids[i])].pos = static_cast<int>(i);
    }
}

void TreeNodes::remove(NodeRef n) {
    const Node& target = node(n);
    const int32_t parent = target.parent;
    const int pos = target.pos;
    if (bulk_ == 0) {
        call(observer_.aboutToRemove, refOf(parent), pos, pos);
    }
    cutKids(parent, pos, pos);
    if (bulk_ == 0) {
        call(observer_.removed);
    }
}

void TreeNodes::removeMany(const std::vector<NodeRef>& targets) {
    if (bulk_ > 0) {
        removeManyAtOnce(targets);
        return;
    }
    // The nodes that go with their own subtree, not inside another one that goes, by parent
    // and position.
    std::vector<char> listed(used_, 0);
    for (const NodeRef& n : targets) {
        if (alive(n)) {
            listed[static_cast<size_t>(n.slot)] = 1;
        }
    }
    std::vector<std::pair<int32_t, int>> tops;
    for (const NodeRef& n : targets) {
        if (!alive(n) || listed[static_cast<size_t>(n.slot)] != 1) {
            continue;
        }
        listed[static_cast<size_t>(n.slot)] = 2;  // a node named twice goes once
        const Node& target = nodes_[static_cast<size_t>(n.slot)];
        bool inside = false;
        for (int32_t p = target.parent; p != 0 && !inside;
             p = nodes_[static_cast<size_t>(p)].parent) {
            inside = listed[static_cast<size_t>(p)] != 0;
        }
        if (!inside) {
            tops.emplace_back(target.parent, target.pos);
        }
    }
    std::sort(tops.begin(), tops.end());
    struct Run {
        int32_t parent;
        int first;
        int last;
    };
    std::vector<Run> runs;
    for (const auto& [parent, pos] : tops) {
        if (!runs.empty() && runs.back().parent == parent && runs.back().last == pos - 1) {
            runs.back().last = pos;
        } else {
            runs.push_back({parent, pos, pos});
        }
    }
    if (runs.size() > static_cast<size_t>(kMaxRemovalRuns)) {
        beginBulk();
        removeManyAtOnce(targets);
        endBulk();
        return;
    }
    // Bottom up within each parent, so that the positions of the runs above stay right.
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        call(observer_.aboutToRemove, refOf(run->parent), run->first, run->last);
        cutKids(run->parent, run->first, run->last);
        call(observer_.removed);
    }
}

void TreeNodes::removeManyAtOnce(const std::vector<NodeRef>& targets) {
    std::vector<int32_t> parentsTouched;
    std::vector<char> touched(used_, 0);
    std::vector<int32_t> gone;
    for (const NodeRef& n : targets) {
        if (!alive(n)) {
            continue;
        }
        gone.clear();
        collectSubtree(n.slot, gone);
        for (int32_t s : gone) {
            unindexKey(s);
            nodes_[static_cast<size_t>(s)].alive = false;
        }
        dead_ += gone.size();
        const int32_t parent = nodes_[static_cast<size_t>(n.slot)].parent;
        if (touched[static_cast<size_t>(parent)] == 0) {
            touched[static_cast<size_t>(parent)] = 1;
            parentsTouched.push_back(parent);
        }
    }
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
}

NodeRef TreeNodes::byIndex(int index) const {
    if (index < 1 || index > count()) {
        throw RuntimeError::subscriptOutOfRange();
    }
    settleIndices();
    return refOf(order_[static_cast<size_t>(index - 1)]);
}

NodeRef TreeNodes::find(const std::string& key) const {
    return refOf(findSlot(key));
}

NodeRef TreeNodes::findNumbered(std::string_view stem, long number) const {
    if (const KeyStem* s = knownStem(stem);
        s != nullptr && number >= 0 && number < static_cast<long>(kMaxStemNumber)) {
        const auto at = static_cast<size_t>(number);
        return refOf(at < s->byNumber.size() ? s->byNumber[at] : -1);
    }
    return find(std::string(stem) + text::str(number));
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
    if (findSlot(key) >= 0) {
        throw RuntimeError::keyNotUnique();
    }
    unindexKey(n.slot);
    target.key = std::move(key);
    indexKey(n.slot);
}

void TreeNodes::rekey(const std::vector<std::pair<NodeRef, std::string>>& changes) {
    for (const auto& [n, k] : changes) {
        node(n);
    }
    // All old keys are released before any new one is taken; a clash puts the old ones back.
    std::vector<std::string> old;
    old.reserve(changes.size());
    std::vector<char> renamed(used_, 0);
    for (const auto& [n, k] : changes) {
        old.push_back(nodes_[static_cast<size_t>(n.slot)].key);
        unindexKey(n.slot);
    }
    size_t done = 0;
    for (; done < changes.size(); ++done) {
        const auto& [n, k] = changes[done];
        if (renamed[static_cast<size_t>(n.slot)] != 0) {
            unindexKey(n.slot);  // a node named twice gives up the key it took the first time
        }
        renamed[static_cast<size_t>(n.slot)] = 1;
        nodes_[static_cast<size_t>(n.slot)].key = k;
        if (!tryIndexKey(n.slot)) {
            break;
        }
    }
    if (done == changes.size()) {
        return;
    }
    for (size_t i = 0; i <= done; ++i) {
        unindexKey(changes[i].first.slot);
    }
    for (size_t i = 0; i <= done; ++i) {
        nodes_[static_cast<size_t>(changes[i].first.slot)].key = old[i];
    }
    for (const auto& [n, k] : changes) {
        unindexKey(n.slot);
        indexKey(n.slot);
    }
    throw RuntimeError::keyNotUnique();
}

void TreeNodes::rekeyNumbered(std::string_view stem,
                              const std::vector<std::pair<NodeRef, long>>& changes) {
    for (const auto& [n, number] : changes) {
        node(n);
    }
    KeyStem* const s = knownStem(stem);
    bool direct = s != nullptr;
    std::vector<char> moving(used_, 0);
    size_t highest = 0;
    for (const auto& [n, number] : changes) {
        char& mark = moving[static_cast<size_t>(n.slot)];
        // A node named twice, or a number beyond the arrays: the keys as text decide.
        direct = direct && mark == 0 && number >= 0 && number < static_cast<long>(kMaxStemNumber);
        mark = 1;
        highest = std::max(highest, static_cast<size_t>(std::max(number, 0L)));
    }
    if (!direct) {
        std::vector<std::pair<NodeRef, std::string>> keyed;
        keyed.reserve(changes.size());
        for (const auto& [n, number] : changes) {
            keyed.emplace_back(n, std::string(stem) + text::str(number));
        }
        rekey(keyed);
        return;
    }
    // Checked before anything changes: a new key held by a node that keeps its key, or given
    // twice, refuses the whole change.
    std::vector<char> given(highest + 1, 0);
    for (const auto& [n, number] : changes) {
        const auto at = static_cast<size_t>(number);
        const int32_t holder = at < s->byNumber.size() ? s->byNumber[at] : -1;
        if ((holder >= 0 && moving[static_cast<size_t>(holder)] == 0) || given[at] != 0) {
            throw RuntimeError::keyNotUnique();
        }
        given[at] = 1;
    }
    for (const auto& [n, number] : changes) {
        unindexKey(n.slot);
    }
    for (const auto& [n, number] : changes) {
        text::copyInto(nodes_[static_cast<size_t>(n.slot)].key, s->keys.text(number));
        *stemCellOf(*s, static_cast<uint32_t>(number)) = n.slot;
    }
}

std::vector<std::pair<NodeRef, long>> TreeNodes::numberedFrom(std::string_view prefix,
                                                              long from) const {
    std::vector<std::pair<NodeRef, long>> out;
    for (const KeyStem& s : stems_) {
        if (!startsWith(s.stem, prefix)) {
            continue;
        }
        const bool exact = s.stem.size() == prefix.size();
        const size_t first = exact ? static_cast<size_t>(std::max(from, 0L)) : 0;
        for (size_t k = first; k < s.byNumber.size(); ++k) {
            const int32_t slot = s.byNumber[k];
            if (slot > 0 && nodes_[static_cast<size_t>(slot)].alive) {
                out.emplace_back(refOf(slot), exact ? static_cast<long>(k) : -1L);
            }
        }
    }
    for (const auto& [key, slot] : keyIndex_) {
        if (slot > 0 && nodes_[static_cast<size_t>(slot)].alive && startsWith(key, prefix)) {
            out.emplace_back(refOf(slot), -1L);
        }
    }
    return out;
}

bool TreeNodes::closeNumberGaps(std::string_view stem, const std::vector<bool>& gaps) {
    KeyStem* const s = knownStem(stem);
    if (s == nullptr) {
        return false;
    }
    const size_t cells = s->byNumber.size();
    for (size_t k = 0; k < gaps.size() && k < cells; ++k) {
        if (gaps[k] && s->byNumber[k] >= 0) {
            return false;
        }
    }
    for (const KeyStem& other : stems_) {
        if (&other != s && startsWith(other.stem, stem) &&
            std::any_of(other.byNumber.begin(), other.byNumber.end(),
                        [](int32_t slot) { return slot >= 0; })) {
            return false;
        }
    }
    for (const auto& [key, slot] : keyIndex_) {
        if (slot > 0 && startsWith(key, stem)) {
            return false;
        }
    }
    // Upwards: each key moves into a gap or a cell a key below it has just left.
    size_t shift = 0;
    for (size_t k = 0; k < cells; ++k) {
        if (k < gaps.size() && gaps[k]) {
            ++shift;
            continue;
        }
        const int32_t slot = s->byNumber[k];
        if (slot < 0 || shift == 0) {
            continue;
        }
        s->byNumber[k - shift] = slot;
        s->byNumber[k] = -1;
        text::copyInto(nodes_[static_cast<size_t>(slot)].key,
                       s->keys.text(static_cast<long>(k - shift)));
    }
    return true;
}

void TreeNodes::setShown(NodeRef n, std::string Node::*field, std::string value) {
    std::string& shown = node(n).*field;
    if (shown != value) {
        shown = std::move(value);
        if (bulk_ == 0) {
            call(observer_.changed, n);
        }
    }
}

void TreeNodes::setText(NodeRef n, std::string text) {
    setShown(n, &Node::text, std::move(text));
}

void TreeNodes::setImage(NodeRef n, std::string image) {
    setShown(n, &Node::image, std::move(image));
}

void TreeNodes::setExpanded(NodeRef n, bool expanded) {
    Node& target = node(n);
    if (target.expanded != expanded) {
        target.expanded = expanded;
        if (expanded) {
            unfolded_.push_back(n.slot);
        }
        if (bulk_ == 0) {
            call(observer_.expandedChanged, n);
        }
    }
}

void TreeNodes::ensureVisible(NodeRef n) {
    for (int32_t p = node(n).parent; p != 0; p = nodes_[static_cast<size_t>(p)].parent) {
        Node& up = nodes_[static_cast<size_t>(p)];
        if (!up.expanded) {
            up.expanded = true;
            unfolded_.push_back(p);
            if (bulk_ == 0) {
                call(observer_.expandedChanged, refOf(p));
            }
        }
    }
    if (bulk_ == 0) {
        call(observer_.ensureVisible, n);
    }
}

NodeRef TreeNodes::parent(NodeRef n) const {
    return refOf(node(n).parent);
}

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

int TreeNodes::children(NodeRef n) const {
    return static_cast<int>(node(n).kids.size());
}

std::vector<NodeRef> TreeNodes::expandedParents() const {
    // Every node unfolded since the last clear was noted when it was unfolded: the few hundred
    // notes are looked at, not the nodes. Notes of nodes folded or removed since, and second
    // notes of the same node, go.
    std::sort(unfolded_.begin(), unfolded_.end());
    unfolded_.erase(std::unique(unfolded_.begin(), unfolded_.end()), unfolded_.end());
    std::erase_if(unfolded_, [this](int32_t slot) {
        const Node& n = nodes_[static_cast<size_t>(slot)];
        return !n.alive || !n.expanded;
    });
    std::vector<NodeRef> found;
    for (const int32_t slot : unfolded_) {
        const Node& n = nodes_[static_cast<size_t>(slot)];
        if (!n.kids.empty()) {
            found.push_back({slot, n.uid});
        }
    }
    return found;
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
