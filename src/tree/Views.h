#pragma once

#include <string>

#include "platform/TreeNodes.h"

// How much of the tree shows. None of these change the menu; each leaves the current node key
// on the last node in index order, so that a pop-up command given without a click first acts
// on that node.
namespace vkl::tree {

// Expands (or collapses) the root and every folder; items stay as they are.
void setAllExpanded(TreeNodes& nodes, std::string& currentNodeKey, bool expanded);

// Collapses everything, then opens each folder (and the root) that has a folder among the
// nodes whose indices run from its first child's to that child's last sibling's. The range is
// one of indices, not of children: any folder created in between opens it.
void showMenusOnly(TreeNodes& nodes, std::string& currentNodeKey);

}  // namespace vkl::tree
