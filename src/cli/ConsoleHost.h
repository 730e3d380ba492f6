#pragma once

#include <cstdio>
#include <string>

#include "platform/Host.h"

namespace vkl::cli {

// The editor's host without a screen: message boxes are printed (Windows-1252 to UTF-8) instead
// of shown, the save dialog answers with the file given on the command line, and nothing else
// of the window's world exists. Questions are not expected in the flows run here; one that
// comes anyway is printed and answered No, the answer that changes nothing.
class ConsoleHost : public Host {
  public:
    explicit ConsoleHost(std::FILE* out) : out_(out) {}

    // The file the save dialog "chooses"; empty cancels the dialog.
    std::string saveTarget;

    // What the flows asked for.
    int messageCount = 0;
    int saveDialogs = 0;

    Answer msgBox(const MessageBox& box) override;
    ChosenFile openDialog(const FileDialog& dialog) override;
    ChosenFile saveDialog(const FileDialog& dialog) override;
    std::string browseForFolder(const std::string& title) override;
    // None: the last-folder file is neither read nor written.
    std::optional<std::string> tempPath() override { return std::nullopt; }
    std::string environ(int index) override;
    ClockReading now() override;
    PictureSize loadPicture(const std::string& path) override;
    std::string popupMenu(const std::string& menu) override;
    void endProgram() override {}

    // Prints a run-time error as the window's box shows it.
    void printError(const std::string& message);

  private:
    std::FILE* out_;
};

}  // namespace vkl::cli
