#include "support/ScriptedHost.h"

#include <cstdint>
#include <fstream>

#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl::test {

namespace {
template <typename T>
T take(std::deque<T>& queue, const char* what) {
    if (queue.empty()) {
        throw std::logic_error(std::string("test script has no answer for ") + what);
    }
    T v = std::move(queue.front());
    queue.pop_front();
    return v;
}

// Width and height from a BMP file header; none when the file is no BMP.
std::optional<PictureSize> bmpSize(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char h[26] = {};
    if (!in.read(reinterpret_cast<char*>(h), sizeof h) || h[0] != 'B' || h[1] != 'M') {
        return std::nullopt;
    }
    auto le32 = [&](int at) {
        return static_cast<int32_t>(h[at] | h[at + 1] << 8 | h[at + 2] << 16 |
                                    uint32_t{h[at + 3]} << 24);
    };
    const int32_t w = le32(18);
    const int32_t hgt = le32(22);
    if (w <= 0 || hgt == 0) {
        return std::nullopt;
    }
    return PictureSize{w, hgt < 0 ? -hgt : hgt};
}
}  // namespace

Answer ScriptedHost::msgBox(const MessageBox& box) {
    messages.push_back(box);
    return box.buttons == Buttons::YesNo ? take(answers, "a Yes/No question") : Answer::Ok;
}

ChosenFile ScriptedHost::openDialog(const FileDialog& dialog) {
    openRequests.push_back(dialog);
    return take(openAnswers, "an open dialog");
}

ChosenFile ScriptedHost::saveDialog(const FileDialog& dialog) {
    saveRequests.push_back(dialog);
    return take(saveAnswers, "a save dialog");
}

std::string ScriptedHost::browseForFolder(const std::string& title) {
    browseTitles.push_back(title);
    return take(folderAnswers, "a folder browser");
}

std::string ScriptedHost::environ(int index) {
    const auto i = static_cast<size_t>(index);
    return index >= 1 && i <= env.size() ? env[i - 1] : std::string();
}

PictureSize ScriptedHost::loadPicture(const std::string& path) {
    const auto size = bmpSize(path);
    if (!size) {
        throw RuntimeError::invalidPicture();
    }
    return *size;
}

std::string ScriptedHost::popupMenu(const std::string& menu) {
    popups.push_back(menu);
    if (onPopup) {
        onPopup(menu);
    }
    return popupAnswers.empty() ? std::string() : take(popupAnswers, "a pop-up menu");
}

ChosenFile ScriptedHost::pick(const std::string& fullName) {
    ChosenFile c;
    c.fileName = fullName;
    const size_t cut = fullName.find_last_of("/\\");
    c.fileTitle = cut == std::string::npos ? fullName : fullName.substr(cut + 1);
    return c;
}

const std::string& ScriptedHost::lastPrompt() const {
    if (messages.empty()) {
        throw std::logic_error("no message box was shown");
    }
    return messages.back().prompt;
}

std::string ScriptedHost::boxes() const {
    std::string s;
    for (const MessageBox& b : messages) {
        const std::string flags = std::string(b.buttons == Buttons::YesNo ? " yes/no" : "") +
                                  (b.questionIcon ? " ?" : "") + (b.defaultNo ? " no-first" : "");
        s += (b.title ? "[" + *b.title + "] " : "") + b.prompt +
             (flags.empty() ? "" : " {" + flags.substr(1) + "}") + "\n";
    }
    return s;
}

void writeBmp(const std::string& path, int width, int height) {
    const int rowBytes = (width * 3 + 3) & ~3;
    const auto pixelBytes = static_cast<uint32_t>(rowBytes * height);
    std::string bytes = "BM";
    // File header, then the info header: size 40, width, height, 1 plane, 24 bits, no
    // compression, pixel bytes, 2835 pixels per metre both ways, no palette.
    for (uint32_t v :
         {54 + pixelBytes, 0u, 54u, 40u, static_cast<uint32_t>(width),
          static_cast<uint32_t>(height), 1u | (24u << 16), 0u, pixelBytes, 2835u, 2835u, 0u, 0u}) {
        for (int i = 0; i < 4; ++i, v >>= 8) {
            bytes.push_back(static_cast<char>(v & 0xFF));
        }
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowBytes; ++x) {
            bytes.push_back(static_cast<char>((x * 7 + y * 13) & 0xFF));
        }
    }
    writeBytes(path, bytes);
}

Window::Window(const std::vector<std::string>& outline, const std::string& installDir)
    : form(host, installDir, 1) {
    TreeNodes& tree = form.Treeview;
    std::vector<NodeRef> level{tree.add(NodeRef{}, TreeNodes::kLast, "Menu0", "Top Menu", "root")};
    for (const std::string& line : outline) {
        const size_t depth = line.find_first_not_of(' ');
        level.resize(depth + 1);
        const std::string title = line.substr(depth);
        if (title == "M") {
            const std::string key = keys::folder(++form.tree.nodeSerial);
            level.push_back(tree.add(level[depth], TreeNodes::kChild, key, "SUB", "folderclosed"));
        } else {
            const int r = form.Table.appendRow();
            form.Table.setTextMatrix(r, 0, text::str(r));
            form.Table.setTextMatrix(r, 1, title);
            level.push_back(tree.add(level[depth], TreeNodes::kChild, keys::item(r), title));
        }
    }
}

std::string Window::colors(int row) const {
    std::string s;
    for (int c = 0; c < form.Table.cols(); ++c) {
        const Color k = form.Table.backColorAt(row, c);
        s += k == form.markingColor       ? 'M'
             : k == form.normalColor      ? 'N'
             : k == form.highlightColor   ? 'H'
             : k == form.defaultCellColor ? 'd'
                                          : '?';
    }
    return s;
}

std::vector<std::string> items(int n) {
    std::vector<std::string> out;
    for (int r = 1; r <= n; ++r) {
        out.push_back("T" + std::to_string(r));
    }
    return out;
}

}  // namespace vkl::test
