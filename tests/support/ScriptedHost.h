#pragma once

// Shared by the core and the window tests, so free of any test framework: a scripted host, the
// window's core over an outline, and files and run-time errors as plain values.

#include <deque>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/Form1.h"
#include "platform/Host.h"
#include "platform/RuntimeError.h"

namespace vkl::test {

// A host that answers from queues and records every call. A question or dialog with nothing
// scripted for it fails the test loudly instead of guessing an answer.
class ScriptedHost : public Host {
  public:
    // Scripts.
    std::deque<Answer> answers;                       // for Yes/No questions
    std::deque<ChosenFile> openAnswers, saveAnswers;  // file dialogs (empty fileName = cancel)
    std::deque<std::string> folderAnswers;            // folder browser (empty = cancel)
    std::deque<std::string> popupAnswers;  // entry chosen in a pop-up menu (empty = none)
    std::function<void(const std::string& menu)> onPopup;  // runs while the pop-up is open
    std::optional<std::string> temp;  // temporary folder; none = the call fails
    std::vector<std::string> env;     // "NAME=value" entries
    ClockReading clock{11, 24, 16, 5};

    // Records.
    std::vector<MessageBox> messages;
    std::vector<FileDialog> openRequests, saveRequests;
    std::vector<std::string> browseTitles;
    std::vector<std::string> popups;
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
    // The message boxes shown, one a line: "[title] prompt {yes/no ? no-first}", the title
    // only when one was given, the braces only for what differs from a plain OK box.
    std::string boxes() const;
};

// Writes a small valid 24-bit BMP of the given size.
void writeBmp(const std::string& path, int width, int height);

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

inline std::string readBytes(const std::string& path) {
    std::ostringstream s;
    s << std::ifstream(path, std::ios::binary).rdbuf();
    return s.str();
}

// The number of the run-time error f raises, 0 when none.
inline int errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

// The window's core over a menu given as an outline: leading blanks are the depth below the
// root, "M" is a folder (serials from 1), anything else an item line titled so (rows in order).
struct Window {
    explicit Window(const std::vector<std::string>& outline = {},
                    const std::string& installDir = "C:\\inst");
    NodeRef node(const std::string& key) const { return form.Treeview.byKey(key); }
    std::string text(const std::string& key) const { return form.Treeview.text(node(key)); }
    std::string cell(int row, int col) const { return form.Table.textMatrix(row, col); }
    // A line's cell colours, one letter each: Marking, Normal, Highlight, default cell, else '?'.
    std::string colors(int row) const;
    void moveTo(int row, int col) {
        form.Table.setRow(row);
        form.Table.setCol(col);
    }
    ScriptedHost host;
    Form1 form;
};

// Every caption of the form.
inline std::string Captions::*const kCaptions[] = {
    &Captions::label1,        &Captions::label2,      &Captions::label3,    &Captions::label4,
    &Captions::askDatadir,    &Captions::askImagedir, &Captions::expand,    &Captions::colapse,
    &Captions::onlymenus,     &Captions::quit,        &Captions::addsub,    &Captions::addabove1,
    &Captions::remove1,       &Captions::addabove2,   &Captions::addbelow2, &Captions::remove2,
    &Captions::removechilden, &Captions::addimage};

// The outline of n items titled T1 to Tn.
std::vector<std::string> items(int n);

}  // namespace vkl::test
