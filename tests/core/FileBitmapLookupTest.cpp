#include <gtest/gtest.h>

#include <string>

#include "menufile/BitmapLookup.h"
#include "support/CoreSupport.h"

namespace vkl {
namespace {

TEST(BitmapLookup, ImageDirectoryAndShortcutsRewriteThePath) {
    test::ScriptedHost host;
    std::string imageDir;
    Shortcuts shortcuts;
    const std::string install = "C:/Brindle";
    auto computed = [&](const std::string& written) {
        return menufile::computeBitmapPath(host, {imageDir, shortcuts, install}, written);
    };
    host.env = {"HOMEDIR=/Users/Some One", "OTHER=x", "homedir=/Later/Wins"};
    imageDir = "HomeDir/Pics";
    EXPECT_EQ(computed("A.bmp"), "\\later\\wins\\pics\\a.bmp");
    imageDir = "[installdir]/Other";
    EXPECT_EQ(computed("Icons/B.bmp"), "C:\\Brindle\\x\\icons\\b.bmp");

    imageDir.clear();
    shortcuts.pairs = {{{"DATA", "d:/one"}, {"PICS", "p:/two"}}};
    shortcuts.count = 2;
    EXPECT_EQ(computed("Data\\pics\\x.bmp"), "data\\p:\\two\\x.bmp");
    shortcuts.count = 1;
    EXPECT_EQ(computed("Data\\pics\\x.bmp"), "d:\\one\\pics\\x.bmp");
}

#ifndef _WIN32
// The name on disk is UTF-8, the menu's is Windows-1252 and lower case: the umlaut matches too.
// (Windows names go through the UTF-16 conversion and the file system ignores case itself.)
TEST(BitmapLookup, FindsANameWithAnUmlautWhateverItsCaseAndCodePage) {
    test::TempDir dir;
    test::writeBmp(dir.file("Bohrer \xC3\x84.bmp"), 2, 2);
    EXPECT_EQ(menufile::findBitmapFile(dir.dir() + "bohrer \xE4.bmp"),
              dir.file("Bohrer \xC3\x84.bmp"));
}
#endif

}  // namespace
}  // namespace vkl
