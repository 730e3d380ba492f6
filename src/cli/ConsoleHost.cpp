#include "cli/ConsoleHost.h"

#include <ctime>

#include "platform/Process.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl::cli {

namespace {

// A box's carriage returns start new lines on a terminal too.
std::string forTerminal(std::string_view cp1252) {
    std::string s = text::cp1252ToUtf8(cp1252);
    for (char& c : s) {
        if (c == '\r') {
            c = '\n';
        }
    }
    return s;
}

}  // namespace

Answer ConsoleHost::msgBox(const MessageBox& box) {
    ++messageCount;
    std::string line;
    if (box.title) {
        line = forTerminal(*box.title) + " - ";
    }
    line += forTerminal(box.prompt);
    std::fprintf(out_, "%s\n", line.c_str());
    return box.buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
}

ChosenFile ConsoleHost::openDialog(const FileDialog&) {
    return {};
}

ChosenFile ConsoleHost::saveDialog(const FileDialog&) {
    ++saveDialogs;
    if (saveTarget.empty()) {
        return {};
    }
    // The file title: the name after the last separator (a backslash is one only on Windows).
#ifdef _WIN32
    const size_t cut = saveTarget.find_last_of("/\\");
#else
    const size_t cut = saveTarget.find_last_of('/');
#endif
    return {saveTarget, cut == std::string::npos ? saveTarget : saveTarget.substr(cut + 1)};
}

std::string ConsoleHost::browseForFolder(const std::string&) {
    return {};
}

std::string ConsoleHost::environ(int index) {
    static const std::vector<std::string> entries = process::environment();
    if (index < 1 || static_cast<size_t>(index) > entries.size()) {
        return {};
    }
    return entries[static_cast<size_t>(index) - 1];
}

ClockReading ConsoleHost::now() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &t);
#else
    localtime_r(&t, &local);
#endif
    return {local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min};
}

PictureSize ConsoleHost::loadPicture(const std::string&) {
    throw RuntimeError::invalidPicture();
}

std::string ConsoleHost::popupMenu(const std::string&) {
    return {};
}

void ConsoleHost::printError(const std::string& message) {
    std::fprintf(out_, "%s\n", forTerminal(message).c_str());
}

}  // namespace vkl::cli
