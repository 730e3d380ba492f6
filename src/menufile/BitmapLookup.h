#pragma once

#include <string>

#include "platform/Host.h"
#include "platform/MenuState.h"

// Turns the bitmap text of a menu line into a file on disk: image directory with environment
// names, SHORTCUT keys and the "[installdir]" placeholder, the way the add-on resolves it.
namespace vkl::menufile {

// Where a bitmap text is resolved against.
struct BitmapSources {
    const std::string& imageDir;  // the Imagedir field; empty: the text stands alone
    const Shortcuts& shortcuts;
    const std::string& installDir;
};

// The path the editor computes for a bitmap text: Windows separators, lower case, the install
// directory in place of the placeholder. Reads the environment through the host.
std::string computeBitmapPath(Host& host, const BitmapSources& sources, const std::string& written);

// Finds the file a computed path names on this machine: "\" separates folders, and because the
// computed path is lower case, each component that does not exist as written is matched against
// the folder's entries without regard to case. Only files count, not folders. Empty when none.
std::string findBitmapFile(const std::string& computedPath);

// The message shown when the file is missing (English only, by design).
std::string bitmapNotFoundMessage(const std::string& computedPath);

// Computes the path, finds the file and reports a missing one with an OK box under the
// program's default title. Returns the file to show, empty when it is missing.
std::string lookUpBitmap(Host& host, const BitmapSources& sources, const std::string& written);

}  // namespace vkl::menufile
