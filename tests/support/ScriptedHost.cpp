#include "support/ScriptedHost.h"

#include <cstdint>
#include <fstream>

#include "platform/RuntimeError.h"

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
}  // namespace

Answer ScriptedHost::msgBox(const MessageBox& box) {
    messages.push_back(box);
    if (box.buttons == Buttons::YesNo) {
        return take(answers, "a Yes/No question");
    }
    return Answer::Ok;
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
    if (index < 1 || static_cast<size_t>(index) > env.size()) {
        return {};
    }
    return env[static_cast<size_t>(index) - 1];
}

PictureSize ScriptedHost::loadPicture(const std::string& path) {
    picturesLoaded.push_back(path);
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
    if (popupAnswers.empty()) {
        return {};
    }
    std::string entry = popupAnswers.front();
    popupAnswers.pop_front();
    return entry;
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

std::optional<PictureSize> bmpSize(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char h[26] = {};
    if (!in.read(reinterpret_cast<char*>(h), sizeof h) || h[0] != 'B' || h[1] != 'M') {
        return std::nullopt;
    }
    auto le32 = [&](int at) {
        return static_cast<int32_t>(
            static_cast<uint32_t>(h[at]) | (static_cast<uint32_t>(h[at + 1]) << 8) |
            (static_cast<uint32_t>(h[at + 2]) << 16) | (static_cast<uint32_t>(h[at + 3]) << 24));
    };
    const int32_t w = le32(18);
    const int32_t hgt = le32(22);
    if (w <= 0 || hgt == 0) {
        return std::nullopt;
    }
    return PictureSize{w, hgt < 0 ? -hgt : hgt};
}

void writeBmp(const std::string& path, int width, int height) {
    const int rowBytes = (width * 3 + 3) & ~3;
    const uint32_t pixelBytes = static_cast<uint32_t>(rowBytes * height);
    const uint32_t fileSize = 54 + pixelBytes;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    auto put16 = [&](uint16_t v) {
        out.put(static_cast<char>(v & 0xFF));
        out.put(static_cast<char>(v >> 8));
    };
    auto put32 = [&](uint32_t v) {
        put16(static_cast<uint16_t>(v & 0xFFFF));
        put16(static_cast<uint16_t>(v >> 16));
    };
    out.put('B');
    out.put('M');
    put32(fileSize);
    put32(0);
    put32(54);
    put32(40);
    put32(static_cast<uint32_t>(width));
    put32(static_cast<uint32_t>(height));
    put16(1);
    put16(24);
    put32(0);
    put32(pixelBytes);
    put32(2835);
    put32(2835);
    put32(0);
    put32(0);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowBytes; ++x) {
            out.put(static_cast<char>((x * 7 + y * 13) & 0xFF));
        }
    }
}

}  // namespace vkl::test
