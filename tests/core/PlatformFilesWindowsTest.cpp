// The file services on Windows (FilesWindows.cpp); the POSIX ones have PlatformFilesTest.cpp.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "support/CoreSupport.h"

// After the support headers: its macros (MessageBox among them) would rename their names.
#include <windows.h>

namespace vkl {
namespace {

namespace fs = std::filesystem;
using test::errorOf;

void save(const std::string& path, const std::string& bytes) {
    files::SafeWriter w(path);
    w.write(bytes);
    w.commit();
}

std::string readAll(const std::string& name) {
    files::File f = files::openForReading(name);
    std::string bytes;
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0;) {
        bytes.append(buffer, n);
    }
    return bytes;
}

std::vector<std::string> namesIn(const test::TempDir& dir) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(files::nativePath(dir.dir()))) {
        const std::u8string n = e.path().filename().u8string();
        names.emplace_back(n.begin(), n.end());
    }
    return names;
}

// Names in UTF-8 reach the system as UTF-16, and bytes pass as they are: CR LF, a lone CR and
// CTRL-Z (the end of a file in the C runtime's text mode) are data.
TEST(FilesWindows, NamesAreUnicodeAndBytesAreBinary) {
    test::TempDir dir;
    const std::string name = dir.dir() + "M\xC3\xA4rz \xE2\x82\xAC.vkl";  // "März €.vkl"
    const std::string bytes =
        "a\r\nb\rc\x1A"
        "d\n\x1A";
    save(name, bytes);
    EXPECT_EQ(readAll(name), bytes);
    EXPECT_EQ(namesIn(dir), std::vector<std::string>{"M\xC3\xA4rz \xE2\x82\xAC.vkl"});
    EXPECT_EQ(files::kindOf(name), files::Kind::regular);
    EXPECT_EQ(files::nativePath(name).filename().wstring(), L"M\u00e4rz \u20ac.vkl");
}

TEST(FilesWindows, OnlyRegularFilesAreReadAndOnlyWithinBounds) {
    test::TempDir dir;
    EXPECT_EQ(files::kindOf(dir.dir()), files::Kind::folder);
    EXPECT_EQ(files::kindOf("NUL"), files::Kind::other);
    EXPECT_EQ(files::kindOf(dir.file("absent")), files::Kind::missing);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.dir()); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading("NUL"); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.file("absent")); }), 53);
    const std::string big = dir.file("big.vkl");
    test::writeBytes(big, std::string(101, 'x'));
    EXPECT_EQ(errorOf([&] { files::openForReading(big, 100); }), 7);
    EXPECT_TRUE(files::openForReading(big, 101));
}

// A save replaces the whole file or nothing: a writer dropped before commit, a read-only file,
// a folder and a missing folder leave what was there and no file beside it.
TEST(FilesWindows, SavingReplacesTheWholeFileOrNothing) {
    test::TempDir dir;
    const std::string target = dir.file("menu.vkl");
    test::writeBytes(target, std::string(5000, 'o'));
    save(target, "new");
    EXPECT_EQ(test::readBytes(target), "new");
    // Other names of the file see the new bytes too.
    const std::wstring twin = files::nativePath(dir.file("twin.vkl")).wstring();
    ASSERT_TRUE(CreateHardLinkW(twin.c_str(), files::nativePath(target).c_str(), nullptr));
    save(target, "newer");
    EXPECT_EQ(test::readBytes(dir.file("twin.vkl")), "newer");
    ASSERT_TRUE(DeleteFileW(twin.c_str()));
    save(target, "new");
    {
        files::SafeWriter dropped(target);
        dropped.write("half");
    }
    EXPECT_EQ(test::readBytes(target), "new");

    const std::wstring wide = files::nativePath(target).wstring();
    SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(errorOf([&] { save(target, "refused"); }), 75);
    SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(errorOf([&] { save(dir.dir(), "x"); }), 75);
    EXPECT_EQ(errorOf([&] { save(dir.file("no\\such.vkl"), "x"); }), 76);
    EXPECT_EQ(test::readBytes(target), "new");
    EXPECT_EQ(namesIn(dir), std::vector<std::string>{"menu.vkl"});
}

TEST(FilesWindows, SmallFilesUserFoldersAndTheInstanceLock) {
    test::TempDir dir;
    const std::string name = dir.file("ZOVDEF2.txt");
    files::overwriteSmallFile(name, "a longer first line\r\n");
    files::overwriteSmallFile(name, "short\r\n");
    EXPECT_EQ(test::readBytes(name), "short\r\n");
    EXPECT_EQ(errorOf([&] { files::overwriteSmallFile(dir.dir(), "x"); }), 75);

    for (const std::string& folder : {files::userRuntimeFolder(), files::userStateFolder()}) {
        ASSERT_FALSE(folder.empty());
        EXPECT_EQ(folder.back(), '\\');
        EXPECT_EQ(files::kindOf(folder), files::Kind::folder);
    }

    const std::string lock = files::userRuntimeFolder() + "vkleditor-test.lock";
    {
        files::InstanceLock first(lock);
        EXPECT_TRUE(first.acquire());
        EXPECT_TRUE(first.acquire());
        EXPECT_FALSE(files::InstanceLock(lock).acquire());
        EXPECT_TRUE(files::InstanceLock(lock + "2").acquire());
    }
    EXPECT_TRUE(files::InstanceLock(lock).acquire());  // gone with its holder
}

}  // namespace
}  // namespace vkl
