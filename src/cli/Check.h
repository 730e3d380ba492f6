#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/Form1.h"
#include "menufile/Reader.h"

// What the editor makes of a menu file, told line by line: the reader's own account of the
// lines it drops, and what the save command would leave out of what was read.
namespace vkl::cli {

// Reasons of this tool's own findings (the reader names the reasons of its skipped lines).
inline constexpr std::string_view kEndsInHeader = "the file ends inside the header";
inline constexpr std::string_view kThirdShortcut =
    "third SHORTCUT line ends the editor (run-time error 9)";
inline constexpr std::string_view kRowLimit = "row limit reached (run-time error 6)";
inline constexpr std::string_view kSubmenuLimit = "submenu limit reached (run-time error 6)";
inline constexpr std::string_view kTooDeep = "indentation too deep (run-time error 6)";
inline constexpr std::string_view kEmptySubmenu = "submenu without children is not saved";
std::string headerMenuLineReason(int position);
std::string rowLeftOutReason(int row);

struct SkippedLine {
    long line = 0;
    std::string text;
    std::string reason;
};

struct FatalLine {
    long line = 0;
    std::string text;
    int error = 0;
    std::string description;
};

// Listens to the reader while Form1 reads the file.
class ReadLog : public menufile::ReadDiagnostics {
  public:
    void headerLine(int position, long lineNumber, std::string_view text) override;
    void headerEnded(long lineNumber, bool complete) override;
    void skippedLine(long lineNumber, std::string_view text, std::string_view reason) override;
    void menuLine(long lineNumber, std::string_view text, NodeRef node) override;
    void fatalLine(long lineNumber, std::string_view text, const RuntimeError& error) override;

    std::vector<SkippedLine> header;  // header findings, reason filled in
    std::vector<SkippedLine> skipped;
    std::optional<FatalLine> fatal;

    struct Origin {
        long line = 0;
        std::string text;
    };
    // The line each folder and item node came from, by the node's identity.
    const Origin* originOf(NodeRef node) const;

  private:
    std::optional<SkippedLine> lastHeader_;
    std::unordered_map<uint64_t, Origin> origins_;
};

// One line of the default output; line 0 when the finding has no line, text empty when none.
struct Finding {
    long line = 0;
    std::string reason;
    std::optional<std::string> text;
};

// All findings in line order: header, skipped lines, the reading's fatal error, and what the
// save command would leave out of the table and tree that were read (empty submenus, item
// rows with missing entries).
std::vector<Finding> findings(const Form1& form, const ReadLog& log);

// How many times a file read with these SHORTCUT pairs and directory fields can be saved and
// opened again before a save writes a third SHORTCUT line, which the next open ends on; 0
// when never. The writer adds the directory fields as lines of their own to the pairs it
// writes back, so a data-directory pair makes the file unreadable after two saves.
int savesUntilUnreadable(const Shortcuts& shortcuts, const std::string& datadir,
                         const std::string& imagedir);
std::string unreadableAfterSaves(int saves);

// The default report: "FILE:LINE: reason: text" per finding, then the summary line.
std::string textReport(const std::string& file, const Form1& form, const ReadLog& log,
                       const std::vector<Finding>& found);

// The JSON report: header, shortcuts, rows, tree, submenuBitmaps, skipped, fatal. UTF-8.
std::string jsonReport(const Form1& form, const ReadLog& log);

}  // namespace vkl::cli
