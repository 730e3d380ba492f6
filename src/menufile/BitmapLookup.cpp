#include "menufile/BitmapLookup.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl::menufile {

namespace {

namespace fs = std::filesystem;

// Names go to the system through files::, which converts them for Windows.
bool isFile(const std::string& path) {
    return files::kindOf(path) == files::Kind::regular;
}

bool exists(const std::string& path) {
    return files::kindOf(path) != files::Kind::missing;
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) {
        return name;
    }
    if (folder.back() == '/') {
        return folder + name;
    }
    return folder + "/" + name;
}

// The entry of folder whose name equals wanted (lower case) without regard to case; the
// smallest such name when several differ only in case, so that the choice is repeatable.
// Names on disk may be UTF-8 or single-byte; both readings are compared.
std::string matchIgnoringCase(const std::string& folder, const std::string& wanted) {
    std::error_code ec;
    fs::directory_iterator it(files::nativePath(folder.empty() ? "." : folder), ec);
    std::string best;
    for (; !ec && it != fs::directory_iterator(); it.increment(ec)) {
        const std::u8string utf8 = it->path().filename().u8string();
        const std::string name(utf8.begin(), utf8.end());
        if (text::lower(name) == wanted || text::lower(text::utf8ToCp1252(name)) == wanted) {
            if (best.empty() || name < best) {
                best = name;
            }
        }
    }
    return best;
}

}  // namespace

std::string computeBitmapPath(Host& host, const BitmapSources& sources,
                              const std::string& written) {
    std::string path;
    if (sources.imageDir.empty()) {
        path = written;
    } else {
        const auto environment = lowerEnvironment(host);
        std::vector<std::string> parts = text::split(sources.imageDir, '/');
        for (std::string& part : parts) {
            const std::string wanted = text::lower(part);
            part = wanted;
            // Every entry is tried, so when several names match, the last one wins.
            for (const auto& [name, value] : environment) {
                if (name == wanted) {
                    part = value;
                }
            }
        }
        path = text::join(parts, "/") + "/" + written;
    }

    const Shortcuts& sc = sources.shortcuts;
    if (sc.count >= 1) {
        if (static_cast<size_t>(sc.count) > sc.pairs.size()) {
            throw RuntimeError::subscriptOutOfRange();
        }
        // Each pair starts again from the unsplit path, so only the last pair's replacements
        // reach the result. The add-on resolves its bitmaps the same way; kept on purpose.
        std::vector<std::string> pieces;
        for (int i = 0; i < sc.count; ++i) {
            const auto& pair = sc.pairs[static_cast<size_t>(i)];
            pieces = text::split(path, '\\');
            for (std::string& piece : pieces) {
                piece = text::ireplace(piece, pair[0], pair[1]);
            }
        }
        path = text::join(pieces, "\\");
    }

    path = text::replaceAll(path, "/", "\\");
    path = text::lower(path);
    path = text::ireplace(path, "[installdir]", sources.installDir);
    // The install directory may bring its own "/".
    path = text::replaceAll(path, "/", "\\");
    return path;
}

std::string findBitmapFile(const std::string& computedPath) {
    const std::string native = text::replaceAll(computedPath, "\\", "/");
    if (native.empty()) {
        return {};
    }
    if (isFile(native)) {
        return native;
    }
    std::string current = native.front() == '/' ? "/" : "";
    for (const std::string& part : text::split(native, '/')) {
        if (part.empty() || part == ".") {
            continue;
        }
        const std::string exact = joinPath(current, part);
        if (exists(exact)) {
            current = exact;
            continue;
        }
        if (part == "..") {
            return {};
        }
        const std::string match = matchIgnoringCase(current, text::lower(part));
        if (match.empty()) {
            return {};
        }
        current = joinPath(current, match);
    }
    return isFile(current) ? current : std::string();
}

std::string bitmapNotFoundMessage(const std::string& computedPath) {
    return "BMP File not found !\r\r\n'" + computedPath + "'";
}

std::string lookUpBitmap(Host& host, const BitmapSources& sources, const std::string& written) {
    const std::string computed = computeBitmapPath(host, sources, written);
    std::string file = findBitmapFile(computed);
    if (file.empty()) {
        MessageBox box;
        box.prompt = bitmapNotFoundMessage(computed);
        box.buttons = Buttons::Ok;
        host.msgBox(box);
    }
    return file;
}

}  // namespace vkl::menufile
