#include "platform/Process.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <cwchar>

#include "platform/Utf16.h"

namespace vkl::process {

std::string rawCommandLine() {
    return utf16::toUtf8(GetCommandLineW());
}

std::vector<std::string> arguments(int, char**) {
    std::vector<std::string> args;
    int count = 0;
    // CommandLineToArgvW reads a name for an empty line; GetCommandLineW always holds the
    // program name, so the first entry is dropped either way.
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &count);
    if (argv == nullptr) {
        return args;
    }
    for (int i = 1; i < count; ++i) {
        args.push_back(utf16::toUtf8(argv[i]));
    }
    LocalFree(argv);
    return args;
}

std::vector<std::string> environment() {
    std::vector<std::string> entries;
    LPWCH block = GetEnvironmentStringsW();
    if (block == nullptr) {
        return entries;
    }
    for (const wchar_t* e = block; *e != L'\0'; e += std::wcslen(e) + 1) {
        // Entries such as "=C:=C:\work" hold the current folder per drive, not variables.
        if (*e != L'=') {
            entries.push_back(utf16::toUtf8(e));
        }
    }
    FreeEnvironmentStringsW(block);
    return entries;
}

void binaryStdio() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace vkl::process
