#include "tree/Views.h"

#include "platform/NodeKeys.h"

namespace vkl::tree {

void setAllExpanded(TreeNodes& nodes, std::string& currentNodeKey, bool expanded) {
    for (int i = 1; i <= nodes.count(); ++i) {
        const NodeRef n = nodes.byIndex(i);
        currentNodeKey = nodes.key(n);
        if (!keys::isItem(currentNodeKey)) {
            nodes.setExpanded(n, expanded);
        }
    }
}

void showMenusOnly(TreeNodes& nodes, std::string& currentNodeKey) {
    setAllExpanded(nodes, currentNodeKey, false);
    for (int i = 1; i <= nodes.count(); ++i) {
        const NodeRef n = nodes.byIndex(i);
        if (keys::isItem(nodes.key(n)) || nodes.children(n) == 0) {
            continue;
        }
        const NodeRef first = nodes.child(n);
        const int last = nodes.index(nodes.lastSibling(first));
        for (int j = nodes.index(first); j <= last; ++j) {
            if (!keys::isItem(nodes.key(nodes.byIndex(j)))) {
                nodes.setExpanded(n, true);
                break;
            }
        }
    }
}

}  // namespace vkl::tree
