#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// What the editor asks of the file system, one implementation per platform (FilesPosix.cpp,
// FilesWindows.cpp). File names are byte strings in UTF-8 (on Linux the bytes the system
// takes); on Windows they are converted to UTF-16 at the system call, never passed through
// the ANSI code page. Files are always binary: CR LF, a lone CR and CTRL-Z are data.
namespace vkl::files {

// Bounds no real menu comes near (a full menu of 32,767 rows with 1 KiB lines is 32 MiB).
// Beyond them reading ends with run-time error 7.
inline constexpr std::uint64_t kMaxMenuFileBytes = std::uint64_t{64} << 20;
inline constexpr std::size_t kMaxLineBytes = std::size_t{1} << 20;

// The system's path for a file name of the core.
std::filesystem::path nativePath(const std::string& name);

// What a name stands for, after following symbolic links.
enum class Kind { missing, regular, folder, other, linkLoop, denied };
Kind kindOf(const std::string& name);

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Opens a regular file for binary reading, following symbolic links, and never blocks: a
// FIFO, device, socket or folder is refused at once with run-time error 75 (Path/File access
// error). A missing file raises 53, a refused one 70, one larger than maxBytes 7 (Out of
// memory).
File openForReading(const std::string& name, std::uint64_t maxBytes = kMaxMenuFileBytes);

// Replaces the whole content of a file so that, at every instant, the file holds either its
// old bytes or all of its new ones; a writer dropped before commit() leaves the old file and
// no temporary file behind. The file keeps its identity: a symbolic link stays a link and its
// target receives the content, other hard links see the new content, owner, group and mode
// stay. A read-only file is refused as the original platform refuses opening it for output.
// Errors: a missing folder 76, a folder or file that cannot be written 75, a full disk 61.
class SafeWriter {
  public:
    explicit SafeWriter(const std::string& name);
    ~SafeWriter();

    void write(std::string_view bytes);
    void commit();

    struct Impl;

  private:
    std::unique_ptr<Impl> impl_;
};

// Makes bytes the whole content of a small file, written in place (no new file beside it and
// no wait for the disk), never following a symbolic link at name. Errors as SafeWriter's.
void overwriteSmallFile(const std::string& name, std::string_view bytes);

// The user's own folders, created (private to the user) when missing; empty when none can be
// had. The runtime folder holds the single-instance lock and is gone after logout; the state
// folder holds the last-folder file and lasts across logins. Both end in a separator.
std::string userRuntimeFolder();
std::string userStateFolder();

// One running copy of the editor per user: held while this object lives. A lock that no live
// process holds (its copy crashed) is taken over, whatever the lock file says.
class InstanceLock {
  public:
    explicit InstanceLock(const std::string& name);
    ~InstanceLock();

    // True when this copy holds the lock.
    bool acquire();

    struct Impl;

  private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace vkl::files
