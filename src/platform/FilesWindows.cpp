// The file services on Windows: names go to the system as UTF-16 (wide-character calls only),
// files are opened in binary mode, a save replaces its target in one step.
#include "platform/Files.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <cwchar>
#include <string>

#include "platform/RuntimeError.h"
#include "platform/Utf16.h"

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

// The run-time error of a failed call that creates, writes or replaces a file.
RuntimeError writeError(DWORD code) {
    switch (code) {
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
            return RuntimeError::pathNotFound();
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return diskFull();
        default:
            return accessError();
    }
}

std::wstring wide(const std::string& name) {
    return utf16::fromUtf8(name);
}

struct Handle {
    HANDLE h = INVALID_HANDLE_VALUE;
    Handle() = default;
    explicit Handle(HANDLE handle) : h(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }
    bool valid() const { return h != INVALID_HANDLE_VALUE; }
    HANDLE release() {
        HANDLE out = h;
        h = INVALID_HANDLE_VALUE;
        return out;
    }
    void reset(HANDLE handle) {
        close();
        h = handle;
    }
    void close() {
        if (valid()) {
            CloseHandle(h);
            h = INVALID_HANDLE_VALUE;
        }
    }
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// What an open handle stands for; the handle was opened following links.
Kind kindOfHandle(HANDLE h) {
    if (GetFileType(h) != FILE_TYPE_DISK) {
        return Kind::other;  // a console, pipe or device such as NUL
    }
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(h, &info)) {
        return Kind::other;
    }
    return (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? Kind::folder : Kind::regular;
}

Kind kindOfFailure(DWORD code) {
    switch (code) {
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return Kind::denied;
        case ERROR_CANT_RESOLVE_FILENAME:
            return Kind::linkLoop;
        case ERROR_PIPE_BUSY:
            return Kind::other;
        default:
            return Kind::missing;
    }
}

// The full name of the file a (possibly linked) name finally stands for.
std::wstring finalName(const std::wstring& name) {
    Handle h(CreateFileW(name.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                         FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!h.valid()) {
        return name;
    }
    std::wstring out(MAX_PATH, L'\0');
    DWORD n = GetFinalPathNameByHandleW(h.h, out.data(), static_cast<DWORD>(out.size()), 0);
    if (n >= out.size()) {
        out.resize(n + 1);
        n = GetFinalPathNameByHandleW(h.h, out.data(), static_cast<DWORD>(out.size()), 0);
    }
    if (n == 0 || n >= out.size()) {
        return name;
    }
    out.resize(n);
    return out;
}

// The folder part of a name, with its separator; empty for a bare name.
std::wstring folderOf(const std::wstring& name) {
    const size_t cut = name.find_last_of(L"\\/:");
    return cut == std::wstring::npos ? std::wstring() : name.substr(0, cut + 1);
}

void writeAll(HANDLE h, std::string_view bytes) {
    while (!bytes.empty()) {
        const DWORD chunk = static_cast<DWORD>(std::min<size_t>(bytes.size(), 1u << 20));
        DWORD written = 0;
        if (!WriteFile(h, bytes.data(), chunk, &written, nullptr)) {
            throw writeError(GetLastError());
        }
        if (written == 0) {
            throw diskFull();
        }
        bytes.remove_prefix(written);
    }
}

std::string folderWithSeparator(std::wstring folder) {
    if (folder.empty()) {
        return {};
    }
    if (folder.back() != L'\\' && folder.back() != L'/') {
        folder += L'\\';
    }
    CreateDirectoryW(folder.c_str(), nullptr);  // already there in all but odd set-ups
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        return {};
    }
    return utf16::toUtf8(folder);
}

}  // namespace

std::filesystem::path nativePath(const std::string& name) {
    return std::filesystem::path(wide(name));
}

Kind kindOf(const std::string& name) {
    if (name.empty()) {
        return Kind::missing;
    }
    // A handle with no access rights follows links and opens folders too.
    Handle h(CreateFileW(wide(name).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                         FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!h.valid()) {
        return kindOfFailure(GetLastError());
    }
    return kindOfHandle(h.h);
}

File openForReading(const std::string& name, std::uint64_t maxBytes) {
    switch (kindOf(name)) {
        case Kind::missing:
            throw RuntimeError::fileNotFound();
        case Kind::denied:
            throw RuntimeError::permissionDenied();
        case Kind::regular:
            break;
        default:
            throw accessError();
    }
    Handle h(CreateFileW(wide(name).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) {
        const DWORD code = GetLastError();
        if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) {
            throw RuntimeError::fileNotFound();
        }
        throw code == ERROR_ACCESS_DENIED ? RuntimeError::permissionDenied() : accessError();
    }
    // The name may have changed hands since it was looked at: the open handle decides.
    if (kindOfHandle(h.h) != Kind::regular) {
        throw accessError();
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(h.h, &size)) {
        throw accessError();
    }
    if (static_cast<std::uint64_t>(size.QuadPart) > maxBytes) {
        throw outOfMemory();
    }
    const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(h.h), _O_RDONLY | _O_BINARY);
    if (fd == -1) {
        throw accessError();
    }
    h.release();  // the descriptor owns it now
    std::FILE* f = _fdopen(fd, "rb");
    if (f == nullptr) {
        _close(fd);
        throw accessError();
    }
    return File(f);
}

// The new content goes to a temporary file beside the file the name finally stands for, and
// ReplaceFileW puts it in the target's place in one step, keeping the target's attributes,
// security and creation time; a link keeps pointing at the replaced file. A file with other
// hard links would lose them to a replacement: it is written in place instead, behind a
// safety copy of its old content (the temporary file) that is put back if a write fails.
struct SafeWriter::Impl {
    std::wstring target;
    std::wstring temp;
    Handle file;
    bool targetExists = false;
    bool inPlace = false;
    std::string content;  // in place: the new bytes, written at commit
    bool committed = false;
};

namespace {

DWORD linkCount(const std::wstring& name) {
    Handle h(CreateFileW(name.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    return h.valid() && GetFileInformationByHandle(h.h, &info) ? info.nNumberOfLinks : 1;
}

std::string readWhole(const std::wstring& name) {
    Handle h(CreateFileW(name.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) {
        throw writeError(GetLastError());
    }
    std::string bytes;
    char buffer[65536];
    DWORD n = 0;
    while (ReadFile(h.h, buffer, sizeof buffer, &n, nullptr) && n > 0) {
        bytes.append(buffer, n);
    }
    return bytes;
}

void overwrite(const std::wstring& name, std::string_view bytes) {
    Handle h(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) {
        throw writeError(GetLastError());
    }
    writeAll(h.h, bytes);
    if (!SetEndOfFile(h.h) || !FlushFileBuffers(h.h)) {
        throw writeError(GetLastError());
    }
}

}  // namespace

SafeWriter::SafeWriter(const std::string& name) : impl_(std::make_unique<Impl>()) {
    Impl& d = *impl_;
    d.target = wide(name);
    if (d.target.empty()) {
        throw RuntimeError::pathNotFound();
    }
    const DWORD attributes = GetFileAttributesW(d.target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
            d.target = finalName(d.target);  // a link: its target is the file to replace
        }
        const Kind kind = kindOf(utf16::toUtf8(d.target));
        if (kind != Kind::regular) {
            throw kind == Kind::missing ? RuntimeError::pathNotFound() : accessError();
        }
        // As opening a read-only file for output does.
        if (GetFileAttributesW(d.target.c_str()) & FILE_ATTRIBUTE_READONLY) {
            throw accessError();
        }
        d.targetExists = true;
        d.inPlace = linkCount(d.target) > 1;
    } else {
        const DWORD code = GetLastError();
        if (code != ERROR_FILE_NOT_FOUND) {
            throw code == ERROR_PATH_NOT_FOUND ? RuntimeError::pathNotFound() : accessError();
        }
    }

    static std::atomic<unsigned> serial{0};
    const std::wstring stem =
        folderOf(d.target) + L".vkl-save-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int attempt = 0; attempt < 100; ++attempt) {
        d.temp = stem + std::to_wstring(serial++) + L".tmp";
        d.file.reset(CreateFileW(d.temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
        if (d.file.valid()) {
            return;
        }
        const DWORD code = GetLastError();
        if (code != ERROR_FILE_EXISTS && code != ERROR_ALREADY_EXISTS) {
            d.temp.clear();
            throw writeError(code);
        }
    }
    d.temp.clear();
    throw accessError();
}

SafeWriter::~SafeWriter() {
    if (impl_ && !impl_->committed && !impl_->temp.empty()) {
        impl_->file.close();
        DeleteFileW(impl_->temp.c_str());
    }
}

void SafeWriter::write(std::string_view bytes) {
    if (!impl_->file.valid()) {
        throw accessError();
    }
    if (impl_->inPlace) {
        impl_->content.append(bytes);
        return;
    }
    writeAll(impl_->file.h, bytes);
}

void SafeWriter::commit() {
    Impl& d = *impl_;
    if (!d.file.valid()) {
        throw accessError();
    }
    if (d.inPlace) {
        const std::string old = readWhole(d.target);
        writeAll(d.file.h, old);
        if (!FlushFileBuffers(d.file.h)) {
            throw writeError(GetLastError());
        }
        d.file.close();
        try {
            overwrite(d.target, d.content);
        } catch (const RuntimeError&) {
            try {
                overwrite(d.target, old);
            } catch (const RuntimeError&) {
                d.committed = true;  // the safety copy stays: it holds the only old bytes
                throw;
            }
            throw;
        }
        DeleteFileW(d.temp.c_str());
        d.committed = true;
        return;
    }
    if (!FlushFileBuffers(d.file.h)) {
        throw writeError(GetLastError());
    }
    d.file.close();
    bool moved = false;
    if (d.targetExists) {
        moved = ReplaceFileW(d.target.c_str(), d.temp.c_str(), nullptr,
                             REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0;
    }
    if (!moved) {
        // No target yet (or the file system cannot replace): a move that overwrites.
        moved = MoveFileExW(d.temp.c_str(), d.target.c_str(),
                            MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    }
    if (!moved) {
        const DWORD code = GetLastError();
        DeleteFileW(d.temp.c_str());
        d.temp.clear();
        throw writeError(code);
    }
    d.committed = true;
}

void overwriteSmallFile(const std::string& name, std::string_view bytes) {
    const std::wstring w = wide(name);
    if (w.empty()) {
        throw RuntimeError::pathNotFound();
    }
    // FILE_FLAG_OPEN_REPARSE_POINT opens a link itself instead of its target.
    Handle h(CreateFileW(w.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!h.valid()) {
        throw writeError(GetLastError());
    }
    BY_HANDLE_FILE_INFORMATION info{};
    if (GetFileType(h.h) != FILE_TYPE_DISK || !GetFileInformationByHandle(h.h, &info) ||
        (info.dwFileAttributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY))) {
        throw accessError();
    }
    writeAll(h.h, bytes);
    if (!SetEndOfFile(h.h)) {
        throw writeError(GetLastError());
    }
}

// The user's temporary folder (%TEMP%) serves both: Windows keeps it per user and across
// logins, and the editor has always kept its last-folder file there.
std::string userRuntimeFolder() {
    wchar_t buffer[MAX_PATH + 2];
    const DWORD n = GetTempPathW(MAX_PATH + 2, buffer);
    if (n == 0 || n > MAX_PATH + 1) {
        return {};
    }
    return folderWithSeparator(std::wstring(buffer, n));
}

std::string userStateFolder() {
    return userRuntimeFolder();
}

// A named mutex in the session's own namespace: the system drops it with the last handle, so
// a copy that crashed leaves nothing stale behind.
struct InstanceLock::Impl {
    std::wstring mutexName;
    HANDLE mutex = nullptr;
};

InstanceLock::InstanceLock(const std::string& name) : impl_(std::make_unique<Impl>()) {
    std::wstring key = wide(name);
    for (wchar_t& c : key) {
        if (c == L'\\') {
            c = L'/';  // a backslash would name a namespace
        }
    }
    impl_->mutexName = L"Local\\vkleditor-" + key.substr(0, MAX_PATH - 32);
}

InstanceLock::~InstanceLock() {
    if (impl_->mutex != nullptr) {
        CloseHandle(impl_->mutex);
    }
}

bool InstanceLock::acquire() {
    if (impl_->mutex != nullptr) {
        return true;
    }
    HANDLE mutex = CreateMutexW(nullptr, FALSE, impl_->mutexName.c_str());
    if (mutex == nullptr) {
        return false;
    }
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        CloseHandle(mutex);
        return false;
    }
    impl_->mutex = mutex;
    return true;
}

}  // namespace vkl::files
