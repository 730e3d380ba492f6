#pragma once

#include <cstdlib>
#include <optional>
#include <string>

// MinGW's <stdlib.h> defines "environ" as a macro; Host::environ needs the plain word. Taken
// after <cstdlib>, whose include guard keeps the macro from coming back.
#ifdef environ
#undef environ
#endif

namespace vkl {

// What only a toolkit or the operating system does. The window implements it with real
// dialogs; tests answer from a script and record every call.

enum class Buttons { Ok, YesNo };
enum class Answer { Ok, Yes, No };

struct MessageBox {
    std::string prompt;
    // The title; none means the program's default title (its name).
    std::optional<std::string> title;
    Buttons buttons = Buttons::Ok;
    bool questionIcon = false;
    bool defaultNo = false;  // questions default to No
};

struct FileDialog {
    std::string filter;   // "Name|pattern|Name|pattern"
    int filterIndex = 1;  // 1-based, as the common dialog counts
    std::string initialDir;
    bool overwritePrompt = false;
};

// Result of a file dialog: the full name and the file title (the name without folder); both
// empty when the user cancelled.
struct ChosenFile {
    std::string fileName;
    std::string fileTitle;
    bool cancelled() const { return fileName.empty(); }
};

struct ClockReading {
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
};

struct PictureSize {
    int width = 0;  // pixels
    int height = 0;
};

class Host {
  public:
    virtual ~Host() = default;

    virtual Answer msgBox(const MessageBox& box) = 0;
    virtual ChosenFile openDialog(const FileDialog& dialog) = 0;
    virtual ChosenFile saveDialog(const FileDialog& dialog) = 0;
    // The folder browser; empty when cancelled.
    virtual std::string browseForFolder(const std::string& title) = 0;
    // The user's temporary folder with a trailing separator; none when the call fails.
    virtual std::optional<std::string> tempPath() = 0;
    // The environment entry by 1-based index ("NAME=value"); empty past the last one.
    virtual std::string environ(int index) = 0;
    virtual ClockReading now() = 0;
    // Loads a picture file and tells its size; a file that is no picture raises run-time
    // error 481.
    virtual PictureSize loadPicture(const std::string& path) = 0;
    // Shows a pop-up menu (by the name of its menu group) at the pointer and returns the name
    // of the entry chosen, empty when none was.
    virtual std::string popupMenu(const std::string& menu) = 0;
    // Ends the program (the window unloads; nothing is saved).
    virtual void endProgram() = 0;
};

}  // namespace vkl
