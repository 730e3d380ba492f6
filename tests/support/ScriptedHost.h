#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Host.h"

namespace vkl::test {

// A host that answers from queues and records every call. A question or dialog with nothing
// scripted for it fails the test loudly instead of guessing an answer.
class ScriptedHost : public Host {
  public:
    // Scripts.
    std::deque<Answer> answers;          // for Yes/No questions
    std::deque<ChosenFile> openAnswers;  // open dialogs (empty fileName = cancel)
    std::deque<ChosenFile> saveAnswers;
    std::deque<std::string> folderAnswers;  // folder browser (empty = cancel)
    std::deque<std::string> popupAnswers;   // entry chosen in a pop-up menu (empty = none)
    std::function<void(const std::string& menu)> onPopup;  // runs while the pop-up is open
    std::optional<std::string> temp;  // temporary folder; none = the call fails
    std::vector<std::string> env;     // "NAME=value" entries
    ClockReading clock{11, 24, 16, 5};

    // Records.
    std::vector<MessageBox> messages;
    std::vector<FileDialog> openRequests;
    std::vector<FileDialog> saveRequests;
    std::vector<std::string> browseTitles;
    std::vector<std::string> popups;
    std::vector<std::string> picturesLoaded;
    int endCount = 0;

    Answer msgBox(const MessageBox& box) override;
    ChosenFile openDialog(const FileDialog& dialog) override;
    ChosenFile saveDialog(const FileDialog& dialog) override;
    std::string browseForFolder(const std::string& title) override;
    std::optional<std::string> tempPath() override { return temp; }
    std::string environ(int index) override;
    ClockReading now() override { return clock; }
    PictureSize loadPicture(const std::string& path) override;
    std::string popupMenu(const std::string& menu) override;
    void endProgram() override { ++endCount; }

    // The answer a dialog gives when the user picks this file.
    static ChosenFile pick(const std::string& fullName);
    const std::string& lastPrompt() const;
};

// Reads width and height from a BMP file header; none when the file is no BMP.
std::optional<PictureSize> bmpSize(const std::string& path);
// Writes a small valid 24-bit BMP of the given size.
void writeBmp(const std::string& path, int width, int height);

}  // namespace vkl::test
