#pragma once

#include <string>

namespace vkl {

// The few tree operations that need pixels. Positions are twips in the tree's own coordinates.
class TreeViewPort {
  public:
    virtual ~TreeViewPort() = default;
    // Key of the node under the point; empty when there is none.
    virtual std::string hitTest(double x, double y) const = 0;
    // Scrolls one line: request 0 up, 1 down (the vertical-scroll message's line requests).
    virtual void scrollLine(int request) = 0;
    // The tree's height in twips.
    virtual double heightTwips() const = 0;
};

}  // namespace vkl
