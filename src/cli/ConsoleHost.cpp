#include "cli/ConsoleHost.h"

#include <ctime>
#include <filesystem>

#include "platform/RuntimeError.h"
#include "platform/Text.h"

extern char** environ;

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
    return {saveTarget, std::filesystem::path(saveTarget).filename().string()};
}

std::string ConsoleHost::browseForFolder(const std::string&) {
    return {};
}

std::string ConsoleHost::environ(int index) {
    if (index < 1 || ::environ == nullptr) {
        return {};
    }
    for (int i = 1; ::environ[i - 1] != nullptr; ++i) {
        if (i == index) {
            return ::environ[i - 1];
        }
    }
    return {};
}

ClockReading ConsoleHost::now() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
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
