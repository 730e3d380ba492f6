// The file services on Linux and other POSIX systems.
#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Files.h"
#include "platform/RuntimeError.h"

namespace vkl::files {

namespace {

RuntimeError accessError() {
    return {75, "Path/File access error"};
}

RuntimeError diskFull() {
    return {61, "Disk full"};
}

RuntimeError outOfMemory() {
    return {7, "Out of memory"};
}

// The error of a failed create or write.
RuntimeError writeError(int err) {
    switch (err) {
        case ENOENT:
        case ENOTDIR:
            return RuntimeError::pathNotFound();
        case ENOSPC:
        case EDQUOT:
            return diskFull();
        default:
            return accessError();
    }
}

class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    ~Fd() { reset(); }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = fd;
    }
    // Closes now and tells the error of the close (a full disk can show only here).
    int close() {
        const int fd = release();
        return fd >= 0 && ::close(fd) != 0 ? errno : 0;
    }

  private:
    int fd_;
};

// Writes all bytes; the errno of the failure, or 0.
int writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return 0;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The name a save writes to: a symbolic link is followed to the file it names, which need not
// exist yet. A loop of links is refused.
std::string resolveLinks(const std::string& name) {
    std::string path = name;
    for (int hops = 0; hops < 40; ++hops) {
        struct stat st {};
        if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) {
            return path;
        }
        std::string target(static_cast<size_t>(st.st_size) + 256, '\0');
        const ssize_t n = ::readlink(path.c_str(), target.data(), target.size());
        if (n < 0) {
            throw accessError();
        }
        target.resize(static_cast<size_t>(n));
        path = target.front() == '/' ? target : folderOf(path) + "/" + target;
    }
    throw accessError();
}

// A folder of the user's own, made when missing; empty when it is not safely the user's.
std::string privateFolder(const std::string& path) {
    if (path.empty() || path.front() != '/') {
        return {};
    }
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        return {};
    }
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode) || st.st_uid != ::geteuid() ||
        (st.st_mode & 077) != 0) {
        return {};
    }
    return path.back() == '/' ? path : path + "/";
}

std::string withoutSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
        return home;
    }
    const passwd* pw = ::getpwuid(::geteuid());
    return pw != nullptr && pw->pw_dir != nullptr ? pw->pw_dir : "";
}

}  // namespace

std::filesystem::path nativePath(const std::string& name) {
    return std::filesystem::path(name);
}

Kind kindOf(const std::string& name) {
    struct stat st {};
    if (::stat(name.c_str(), &st) != 0) {
        switch (errno) {
            case ELOOP:
                return Kind::linkLoop;
            case EACCES:
                return Kind::denied;
            default:
                return Kind::missing;
        }
    }
    if (S_ISREG(st.st_mode)) {
        return Kind::regular;
    }
    return S_ISDIR(st.st_mode) ? Kind::folder : Kind::other;
}

File openForReading(const std::string& name, std::uint64_t maxBytes) {
    // Without O_NONBLOCK, opening a FIFO waits for a writer that may never come.
    Fd fd(::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() < 0) {
        switch (errno) {
            case ENOENT:
                throw RuntimeError::fileNotFound();
            case EACCES:
            case EPERM:
                throw RuntimeError::permissionDenied();
            default:
                throw accessError();
        }
    }
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode)) {
        throw accessError();
    }
    if (static_cast<std::uint64_t>(st.st_size) > maxBytes) {
        throw outOfMemory();
    }
    const int flags = ::fcntl(fd.get(), F_GETFL);
    if (flags < 0 || ::fcntl(fd.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) {
        throw accessError();
    }
    File file(::fdopen(fd.get(), "rb"));
    if (!file) {
        throw outOfMemory();
    }
    fd.release();
    return file;
}

// ---- Saving ----------------------------------------------------------------------------------

// Two ways to save. Replacing: the new content goes into a file of its own beside the target,
// which takes the old file's owner, group and mode and is renamed over it once it is on disk.
// In place, when replacing would change the file's identity (other hard links, an owner this
// user cannot give away, a device): the old content is first kept in a safety copy beside the
// target, the target is then rewritten, and the copy is removed once the new content is on
// disk; a failed write puts the old content back.
struct SafeWriter::Impl {
    std::string target;  // after following symbolic links
    std::string temp;    // the new file (replacing) or the safety copy (in place); "" if none
    Fd fd;               // what the bytes go to
    bool inPlace = false;
    bool replacesDevice = false;  // a device or FIFO is written as it is, without copy
    bool unnamed = false;         // the new file has no name yet
    bool done = false;
    off_t oldSize = 0;

    void fail(int err) { throw writeError(err); }
    void removeTemp() {
        if (!temp.empty()) {
            ::unlink(temp.c_str());
            temp.clear();
        }
    }
    // The new content in a file beside the target that has no name until it is complete, so
    // that a save killed on the way leaves nothing behind. Where the file system cannot do
    // that, the file is named at once.
    int createUnnamed(mode_t mode) {
#if defined(O_TMPFILE)
        const int f = ::open(folderOf(target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
        if (f >= 0) {
            unnamed = true;
            return f;
        }
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
            fail(errno);
        }
#endif
        return createBeside(mode);
    }
    // Gives the unnamed file the name it is renamed from.
    void name() {
        if (!unnamed) {
            return;
        }
        const std::string self = "/proc/self/fd/" + std::to_string(fd.get());
        for (int attempt = 0; attempt < 100; ++attempt) {
            const std::string candidate = nameBeside();
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, candidate.c_str(), AT_SYMLINK_FOLLOW) ==
                    0 ||
                ::linkat(fd.get(), "", AT_FDCWD, candidate.c_str(), AT_EMPTY_PATH) == 0) {
                temp = candidate;
                unnamed = false;
                return;
            }
            if (errno != EEXIST) {
                fail(errno);
            }
        }
        throw accessError();
    }
    std::string nameBeside() const {
        static unsigned counter = 0;
        const std::string base = target.substr(target.rfind('/') + 1);
        return folderOf(target) + "/." + base + ".saving-" + std::to_string(::getpid()) + "-" +
               std::to_string(counter++);
    }
    // A new file beside the target, named at once: the name is needed to rename it over the
    // target or to restore from it.
    int createBeside(mode_t mode) {
        for (int attempt = 0; attempt < 100; ++attempt) {
            std::string candidate = nameBeside();
            const int f = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (f >= 0) {
                temp = std::move(candidate);
                return f;
            }
            if (errno != EEXIST) {
                fail(errno);
            }
        }
        throw accessError();
    }
    void restore();
};

SafeWriter::SafeWriter(const std::string& name) : impl_(std::make_unique<Impl>()) {
    Impl& w = *impl_;
    w.target = resolveLinks(name);
    struct stat st {};
    if (::stat(w.target.c_str(), &st) != 0) {
        if (errno != ENOENT) {
            w.fail(errno);
        }
        // A new file: made beside its name, with the mode a new file gets.
        w.fd.reset(w.createUnnamed(0666));
        return;
    }
    if (S_ISDIR(st.st_mode)) {
        throw accessError();
    }
    if (!S_ISREG(st.st_mode)) {
        // A device or FIFO takes the bytes as they come, as opening it for output does.
        w.fd.reset(::open(w.target.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        if (w.fd.get() < 0) {
            w.fail(errno);
        }
        w.replacesDevice = true;
        return;
    }
    // A read-only file is refused for everyone, as the original platform's read-only
    // attribute is; so is a file this user may not write.
    if ((st.st_mode & 0222) == 0 || ::access(w.target.c_str(), W_OK) != 0) {
        throw accessError();
    }
    const int f = w.createUnnamed(0600);
    w.fd.reset(f);
    const bool sameOwner = ::fchown(f, st.st_uid, st.st_gid) == 0;
    if (st.st_nlink == 1 && sameOwner && ::fchmod(f, st.st_mode & 07777) == 0) {
        return;
    }
    // The identity cannot be kept by replacing: keep a safety copy, then write in place.
    w.inPlace = true;
    w.oldSize = st.st_size;
    w.fd.reset();
    w.unnamed = false;
    const int copy = w.createBeside(0600);
    w.fd.reset(copy);
    Fd old(::open(w.target.c_str(), O_RDONLY | O_CLOEXEC));
    Fd target(::open(w.target.c_str(), O_WRONLY | O_CLOEXEC));
    if (old.get() < 0 || target.get() < 0) {
        w.removeTemp();
        throw accessError();
    }
    char block[1 << 16];
    for (;;) {
        const ssize_t n = ::read(old.get(), block, sizeof block);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        const int err = n < 0 ? EIO : writeAll(copy, block, static_cast<size_t>(n));
        if (err != 0) {
            w.removeTemp();
            w.fail(err);
        }
        if (n == 0) {
            break;
        }
    }
    if (::fsync(copy) != 0) {
        const int err = errno;
        w.removeTemp();
        w.fail(err);
    }
    w.fd.reset(target.release());
}

void SafeWriter::Impl::restore() {
    // Puts the old content back from the safety copy; the copy stays if that fails too.
    Fd copy(::open(temp.c_str(), O_RDONLY | O_CLOEXEC));
    char block[1 << 16];
    off_t at = 0;
    bool ok = copy.get() >= 0;
    while (ok) {
        const ssize_t n = ::pread(copy.get(), block, sizeof block, at);
        if (n <= 0) {
            ok = n == 0;
            break;
        }
        ok = ::pwrite(fd.get(), block, static_cast<size_t>(n), at) == n;
        at += n;
    }
    if (ok && ::ftruncate(fd.get(), oldSize) == 0 && ::fsync(fd.get()) == 0) {
        removeTemp();
    }
}

SafeWriter::~SafeWriter() {
    Impl& w = *impl_;
    if (w.done) {
        return;
    }
    if (w.inPlace) {
        w.restore();
    } else {
        w.removeTemp();
    }
}

void SafeWriter::write(std::string_view bytes) {
    if (const int err = writeAll(impl_->fd.get(), bytes.data(), bytes.size()); err != 0) {
        impl_->fail(err);
    }
}

void SafeWriter::commit() {
    Impl& w = *impl_;
    int err = 0;
    if (w.inPlace) {
        const off_t end = ::lseek(w.fd.get(), 0, SEEK_CUR);
        if (end < 0 || ::ftruncate(w.fd.get(), end) != 0 || ::fsync(w.fd.get()) != 0) {
            err = errno;
        }
    } else if (!w.replacesDevice && ::fsync(w.fd.get()) != 0) {
        // On disk before it replaces the old file: a crash leaves one of the two, whole.
        err = errno;
    }
    if (err != 0) {
        w.fail(err);
    }
    if (w.inPlace) {
        w.removeTemp();
    } else if (!w.replacesDevice) {
        w.name();
    }
    if (const int closed = w.fd.close(); closed != 0) {
        w.fail(closed);
    }
    if (!w.inPlace && !w.replacesDevice) {
        if (::rename(w.temp.c_str(), w.target.c_str()) != 0) {
            w.fail(errno);
        }
        w.temp.clear();
    }
    w.done = true;
}

void overwriteSmallFile(const std::string& name, std::string_view bytes) {
    // Not opened with truncation: emptying a file and filling it again makes the file system
    // write it out at once. O_NOFOLLOW: a link put in its place must not redirect the write.
    Fd fd(::open(name.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (fd.get() < 0) {
        throw writeError(errno);
    }
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode)) {
        throw accessError();
    }
    int err = writeAll(fd.get(), bytes.data(), bytes.size());
    if (err == 0 && ::ftruncate(fd.get(), static_cast<off_t>(bytes.size())) != 0) {
        err = errno;
    }
    if (const int closed = fd.close(); err == 0) {
        err = closed;
    }
    if (err != 0) {
        throw writeError(err);
    }
}

std::string userRuntimeFolder() {
    if (const char* dir = std::getenv("XDG_RUNTIME_DIR")) {
        if (std::string own = privateFolder(dir); !own.empty()) {
            return own;
        }
    }
    const char* tmp = std::getenv("TMPDIR");
    const std::string base = tmp != nullptr && tmp[0] == '/' ? withoutSlash(tmp) : "/tmp";
    if (std::string own = privateFolder(base + "/vkleditor-" + std::to_string(::geteuid()));
        !own.empty()) {
        return own;
    }
    // Someone else holds that name: the state folder is the user's too.
    return userStateFolder();
}

std::string userStateFolder() {
    std::string cache;
    if (const char* dir = std::getenv("XDG_CACHE_HOME"); dir != nullptr && dir[0] == '/') {
        cache = dir;
    } else if (const std::string home = homeFolder(); !home.empty()) {
        cache = home + "/.cache";
    }
    if (cache.empty()) {
        return {};
    }
    ::mkdir(cache.c_str(), 0700);  // the user's cache folder, when it is not there yet
    return privateFolder(withoutSlash(cache) + "/vkleditor");
}

// ---- One running copy per user ---------------------------------------------------------------

// An advisory lock on the file, which the system drops when the process ends however it ends:
// a copy that crashed leaves nothing that keeps the next one out, whatever the file holds.
struct InstanceLock::Impl {
    std::string name;
    Fd fd;
    bool held = false;
};

InstanceLock::InstanceLock(const std::string& name) : impl_(std::make_unique<Impl>()) {
    impl_->name = name;
}

InstanceLock::~InstanceLock() = default;

bool InstanceLock::acquire() {
    Impl& l = *impl_;
    if (l.held) {
        return true;
    }
    for (int attempt = 0; attempt < 2 && l.fd.get() < 0; ++attempt) {
        l.fd.reset(::open(l.name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (l.fd.get() < 0) {
            // Not a file this user can lock (a link, or someone else's): it holds no lock.
            ::unlink(l.name.c_str());
        }
    }
    if (l.fd.get() < 0) {
        // No lock can be had here at all; one copy too many is better than none.
        return l.held = true;
    }
    if (::flock(l.fd.get(), LOCK_EX | LOCK_NB) != 0) {
        return false;
    }
    // For whoever looks: which process holds it.
    const std::string pid = std::to_string(::getpid()) + "\n";
    if (::ftruncate(l.fd.get(), 0) == 0) {
        (void)::pwrite(l.fd.get(), pid.data(), pid.size(), 0);
    }
    return l.held = true;
}

}  // namespace vkl::files
