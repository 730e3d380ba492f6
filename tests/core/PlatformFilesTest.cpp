// The file services of both platforms (FilesPosix.cpp, FilesWindows.cpp): what they share is
// checked alike, what they do their own way in a section per platform.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "support/CoreSupport.h"

// After the support headers: windows.h's macros (MessageBox among them) would rename their names.
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#endif

namespace vkl {
namespace {

namespace fs = std::filesystem;
using test::errorOf;
using test::readBytes;
using test::writeBytes;

void save(const std::string& path, const std::string& bytes) {
    files::SafeWriter w(path);
    w.write(bytes);
    w.commit();
}

// What kind of file a name is; the messages for each: vklcheck's files and bad_input groups.
TEST(Files, OnlyRegularFilesAreReadAndOnlyWithinBounds) {
    test::TempDir dir;
#ifdef _WIN32
    const std::string device = "NUL";
#else
    const std::string device = "/dev/zero";
    const std::string fifo = dir.file("fifo.vkl");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { files::openForReading(fifo); }), 75);  // at once, no writer needed
#endif
    EXPECT_EQ(files::kindOf(dir.dir()), files::Kind::folder);
    EXPECT_EQ(files::kindOf(device), files::Kind::other);
    EXPECT_EQ(files::kindOf(dir.file("absent")), files::Kind::missing);
    EXPECT_EQ(errorOf([&] { files::openForReading(device); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.dir()); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.file("absent")); }), 53);
    const std::string big = dir.file("big.vkl");
    writeBytes(big, std::string(101, 'x'));
    EXPECT_EQ(errorOf([&] { files::openForReading(big, 100); }), 7);
    EXPECT_TRUE(files::openForReading(big, 101));
}

TEST(Files, SmallFilesAreWrittenInPlaceAndNeverThroughALink) {
    test::TempDir dir;
    const std::string name = dir.file("ZOVDEF2.txt");
    files::overwriteSmallFile(name, "a longer first line\r\n");
    files::overwriteSmallFile(name, "short\r\n");
    EXPECT_EQ(readBytes(name), "short\r\n");
    EXPECT_EQ(errorOf([&] { files::overwriteSmallFile(dir.dir(), "x"); }), 75);
#ifndef _WIN32  // Windows: links need rights a user seldom has
    const std::string secret = dir.file("secret");
    writeBytes(secret, "private");
    fs::remove(name);
    fs::create_symlink(secret, name);
    EXPECT_EQ(errorOf([&] { files::overwriteSmallFile(name, "x\r\n"); }), 75);
    EXPECT_EQ(readBytes(secret), "private");
#endif
}

#ifdef _WIN32

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

// A save replaces the whole file or nothing: a writer dropped before commit, a read-only file,
// a folder and a missing folder leave what was there and no file beside it.
TEST(FilesWindows, SavingReplacesTheWholeFileOrNothing) {
    test::TempDir dir;
    const std::string target = dir.file("menu.vkl");
    writeBytes(target, std::string(5000, 'o'));
    save(target, "new");
    EXPECT_EQ(readBytes(target), "new");
    // Other names of the file see the new bytes too.
    const std::wstring twin = files::nativePath(dir.file("twin.vkl")).wstring();
    ASSERT_TRUE(CreateHardLinkW(twin.c_str(), files::nativePath(target).c_str(), nullptr));
    save(target, "newer");
    EXPECT_EQ(readBytes(dir.file("twin.vkl")), "newer");
    ASSERT_TRUE(DeleteFileW(twin.c_str()));
    save(target, "new");
    {
        files::SafeWriter dropped(target);
        dropped.write("half");
    }
    EXPECT_EQ(readBytes(target), "new");

    const std::wstring wide = files::nativePath(target).wstring();
    SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(errorOf([&] { save(target, "refused"); }), 75);
    SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(errorOf([&] { save(dir.dir(), "x"); }), 75);
    EXPECT_EQ(errorOf([&] { save(dir.file("no\\such.vkl"), "x"); }), 76);
    EXPECT_EQ(readBytes(target), "new");
    EXPECT_EQ(namesIn(dir), std::vector<std::string>{"menu.vkl"});
}

TEST(FilesWindows, UserFoldersAndTheInstanceLock) {
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

#else

// Names in the folder other than the ones given: what a save left behind.
std::vector<std::string> strays(const test::TempDir& dir, std::vector<std::string> known) {
    std::vector<std::string> found;
    for (const auto& e : fs::directory_iterator(dir.dir())) {
        const std::string name = e.path().filename().string();
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            found.push_back(name);
        }
    }
    return found;
}

// Runs f in a child process and returns its exit status (or 128 + signal).
template <typename F>
int inChild(F f) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        f();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(Files, SavingKeepsLinksNamesOwnerAndMode) {
    test::TempDir dir;
    const std::string target = dir.file("target.vkl");
    writeBytes(target, "old");
    ::chmod(target.c_str(), 0640);
    fs::create_symlink("target.vkl", dir.file("link.vkl"));
    save(dir.file("link.vkl"), "new");
    EXPECT_TRUE(fs::is_symlink(dir.file("link.vkl")));
    EXPECT_EQ(readBytes(target), "new");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));

    fs::create_hard_link(target, dir.file("other.vkl"));
    save(target, "newer");
    EXPECT_EQ(readBytes(dir.file("other.vkl")), "newer");

    // A dangling link gets its file; a read-only file and a folder are refused.
    fs::create_symlink("later.vkl", dir.file("dangling.vkl"));
    save(dir.file("dangling.vkl"), "first");
    EXPECT_EQ(readBytes(dir.file("later.vkl")), "first");
    ::chmod(target.c_str(), 0444);
    EXPECT_EQ(errorOf([&] { save(target, "refused"); }), 75);
    EXPECT_EQ(readBytes(target), "newer");
    EXPECT_EQ(errorOf([&] { save(dir.dir(), "x"); }), 75);
    EXPECT_EQ(errorOf([&] { save(dir.file("no/such.vkl"), "x"); }), 76);
    EXPECT_EQ(errorOf([&] { save("/dev/full", "x"); }), 61);
    EXPECT_EQ(strays(dir, {"target.vkl", "link.vkl", "other.vkl", "dangling.vkl", "later.vkl"}),
              std::vector<std::string>{});
}

// A save that fails half way, or a process killed at any moment of one, leaves the old bytes
// or the new ones, whole. Writes are made to fail by a file-size limit, in place and replacing.
TEST(Files, AFailedOrKilledSaveLeavesOldOrNewBytes) {
    test::TempDir dir;
    const std::string target = dir.file("menu.vkl");
    const std::string old(300'000, 'o');
    const std::string fresh(600'000, 'n');
    for (const bool hardLinked : {false, true}) {
        writeBytes(target, old);
        if (hardLinked) {
            fs::create_hard_link(target, dir.file("twin.vkl"));
        }
        const int status = inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{400'000, 400'000};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            std::exit(errorOf([&] { save(target, fresh); }) == 75 ? 0 : 1);
        });
        EXPECT_EQ(status, 0);
        EXPECT_EQ(readBytes(target), old) << "hard link " << hardLinked;
        EXPECT_EQ(strays(dir, {"menu.vkl", "twin.vkl"}), std::vector<std::string>{});
        fs::remove(dir.file("twin.vkl"));
    }

    test::Random random;
    writeBytes(target, old);
    for (int run = 0; run < 12; ++run) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            for (;;) {
                save(target, fresh);
                save(target, old);
            }
        }
        ::usleep(static_cast<useconds_t>(random.below(20'000)));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        const std::string now = readBytes(target);
        EXPECT_TRUE(now == old || now == fresh) << now.size() << " bytes";
    }
}

TEST(Files, UserFoldersArePrivate) {
    test::TempDir dir;
    const std::string cache = dir.dir() + "cache";
    ::setenv("XDG_CACHE_HOME", cache.c_str(), 1);
    ::unsetenv("XDG_RUNTIME_DIR");
    ::setenv("TMPDIR", dir.dir().c_str(), 1);
    const std::string state = files::userStateFolder();
    EXPECT_EQ(state, cache + "/vkleditor/");
    EXPECT_EQ(fs::status(state).permissions(), fs::perms::owner_all);
    const std::string runtime = dir.dir() + "vkleditor-" + std::to_string(::geteuid()) + "/";
    EXPECT_EQ(files::userRuntimeFolder(), runtime);
    EXPECT_EQ(fs::status(runtime).permissions(), fs::perms::owner_all);
    // A folder of that name that others may write is not the user's own.
    ::chmod(runtime.c_str(), 0777);
    EXPECT_EQ(files::userRuntimeFolder(), state);
    ::unsetenv("XDG_CACHE_HOME");
    ::unsetenv("TMPDIR");
}

TEST(Files, OneCopyPerLockUntilItsProcessEndsWhateverTheFileHolds) {
    test::TempDir dir;
    const std::string lock = dir.file("vkleditor.lock");
    {
        files::InstanceLock first(lock);
        EXPECT_TRUE(first.acquire());
        EXPECT_TRUE(first.acquire());
        EXPECT_EQ(inChild([&] { std::exit(files::InstanceLock(lock).acquire() ? 1 : 0); }), 0);
    }
    // A copy that crashed left its lock file: it keeps nobody out, nor does what it holds.
    EXPECT_EQ(inChild([&] {
                  files::InstanceLock held(lock);
                  (void)held.acquire();
                  std::abort();
              }),
              128 + SIGABRT);
    writeBytes(lock, "garbage that names no process");
    EXPECT_TRUE(files::InstanceLock(lock).acquire());
    // A link put in its place is not followed.
    const std::string other = dir.file("other");
    writeBytes(other, "keep");
    fs::remove(lock);
    fs::create_symlink(other, lock);
    EXPECT_TRUE(files::InstanceLock(lock).acquire());
    EXPECT_EQ(readBytes(other), "keep");
}

#endif

}  // namespace
}  // namespace vkl
