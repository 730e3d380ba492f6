#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include "platform/Files.h"
#include "support/CoreSupport.h"

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

// What kind of file a name is: vklcheck's files and bad_input groups.
TEST(Files, OnlyRegularFilesAreReadAndOnlyWithinBounds) {
    test::TempDir dir;
    const std::string fifo = dir.file("fifo.vkl");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { files::openForReading(fifo); }), 75);  // at once, no writer needed
    EXPECT_EQ(errorOf([&] { files::openForReading("/dev/zero"); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.dir()); }), 75);
    EXPECT_EQ(errorOf([&] { files::openForReading(dir.file("absent")); }), 53);
    const std::string big = dir.file("big.vkl");
    writeBytes(big, std::string(101, 'x'));
    EXPECT_EQ(errorOf([&] { files::openForReading(big, 100); }), 7);
    EXPECT_TRUE(files::openForReading(big, 101));
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

    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    writeBytes(target, old);
    for (int run = 0; run < 12; ++run) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            for (;;) {
                save(target, fresh);
                save(target, old);
            }
        }
        ::usleep(static_cast<useconds_t>(rng() % 20'000));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        const std::string now = readBytes(target);
        EXPECT_TRUE(now == old || now == fresh) << now.size() << " bytes";
    }
}

TEST(Files, SmallFilesAreWrittenInPlaceAndNeverThroughALink) {
    test::TempDir dir;
    const std::string name = dir.file("ZOVDEF2.txt");
    files::overwriteSmallFile(name, "a longer first line\r\n");
    files::overwriteSmallFile(name, "short\r\n");
    EXPECT_EQ(readBytes(name), "short\r\n");
    const std::string secret = dir.file("secret");
    writeBytes(secret, "private");
    fs::remove(name);
    fs::create_symlink(secret, name);
    EXPECT_EQ(errorOf([&] { files::overwriteSmallFile(name, "x\r\n"); }), 75);
    EXPECT_EQ(readBytes(secret), "private");
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

}  // namespace
}  // namespace vkl
