#pragma once

#include <QIcon>
#include <QString>

// The pictures of the window, drawn in code: the toolbar's image list and the tree's.
namespace vkl::gui::icons {

// Toolbar pictures by image key: "open", "save", "addline", "delline", "useeng", "useger".
// An unknown key gives a null icon.
QIcon toolbar(const QString& key);

// Tree pictures by image key: "root", "arrow2", "arrow1", "folderclosed2", "item",
// "folderclosed", "image_here", "blank". An empty or unknown key gives a null icon (no picture).
QIcon node(const QString& key);

}  // namespace vkl::gui::icons
