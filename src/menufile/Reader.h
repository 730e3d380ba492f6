#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Colors.h"
#include "platform/Grid.h"
#include "platform/MenuState.h"
#include "platform/RuntimeError.h"
#include "platform/TreeNodes.h"

namespace vkl::menufile {

// Reads bytes line by line, untouched (Windows-1252, NUL bytes included). A line ends at CR LF,
// at LF or at a lone CR; the line end is not part of the line, and a last line without an end
// still counts. Reads files in blocks, so a long file costs no more memory than its longest line.
class LineReader {
  public:
    // Lines of bytes held in memory (not copied; they must outlive the reader).
    explicit LineReader(std::string_view bytes);
    // Lines of an open file (not owned, not closed here). A failing read raises run-time
    // error 57; a file or line beyond the bounds of a menu file raises 7 (Out of memory).
    explicit LineReader(std::FILE* file);

    bool atEnd();
    // The next line; the view stays valid until the next call. Call only when !atEnd().
    std::string_view readLine();
    // Physical number (1-based) of the line last read.
    long lineNumber() const { return line_; }

  private:
    bool refill();
    size_t nextBreak();
    void checkLength() const;

    std::FILE* file_ = nullptr;
    std::vector<char> buffer_;
    const char* data_ = nullptr;
    size_t size_ = 0;
    size_t pos_ = 0;
    long nextLf_ = -1;  // position of the next LF / CR at or after pos_; -1 when not yet looked
    long nextCr_ = -1;
    bool crPending_ = false;  // the last line ended in a CR at the end of a block
    std::string carry_;       // a line that runs over the end of a block
    long line_ = 0;
    uint64_t bytesRead_ = 0;
};

// The header fields of the main window, by the names of their controls.
struct HeaderFields {
    std::string text2;     // main menu title
    std::string text3;     // About text
    std::string combo2;    // bitmap size in X
    std::string combo3;    // bitmap size in Y
    std::string datadir;   // data directory
    std::string imagedir;  // image directory
};

// The state a menu file is read into and written from.
struct MenuModel {
    Grid& grid;
    TreeNodes& nodes;
    TreeState& tree;
    Shortcuts& shortcuts;
    HeaderFields& header;
};

// Why a body line was left out; a line gets the first that applies.
inline constexpr std::string_view kWrongFieldCount = "wrong number of fields";
inline constexpr std::string_view kEmptyTitle = "empty title";
inline constexpr std::string_view kEmptyAction = "empty action";
inline constexpr std::string_view kEmptyParameter = "empty parameter";

// Told what the reader does with the lines it would otherwise drop without a word. The editor
// reads without one; tools that explain a file to its author listen. Line numbers are physical
// and 1-based; texts are the lines as read, without their line end.
class ReadDiagnostics {
  public:
    virtual ~ReadDiagnostics() = default;
    // A header data line and the position it took (1..12).
    virtual void headerLine(int position, long lineNumber, std::string_view text) {
        (void)position, (void)lineNumber, (void)text;
    }
    // The header is over: complete at the line of position 12, or not complete when the file
    // ended first (lineNumber is then the last line of the file, 0 for an empty file).
    virtual void headerEnded(long lineNumber, bool complete) { (void)lineNumber, (void)complete; }
    // A body line that is neither a SHORTCUT line nor a valid menu line.
    virtual void skippedLine(long lineNumber, std::string_view text, std::string_view reason) {
        (void)lineNumber, (void)text, (void)reason;
    }
    // A body line taken into the menu, with the folder or item node it became.
    virtual void menuLine(long lineNumber, std::string_view text, NodeRef node) {
        (void)lineNumber, (void)text, (void)node;
    }
    // The run-time error about to leave the reader at this line.
    virtual void fatalLine(long lineNumber, std::string_view text, const RuntimeError& error) {
        (void)lineNumber, (void)text, (void)error;
    }
};

struct ReadOutcome {
    bool opened = false;       // the file was there: tree, list and pairs were started afresh
    bool datadirSet = false;   // a datadir pair filled the data directory field
    bool imagedirSet = false;  // a bmpdir pair filled the image directory field
};

// Reads one menu file into table, tree, header fields and SHORTCUT pairs. The table is first cut
// to appendStartRow rows and the rows read follow from there; a missing file changes nothing
// more. Node serial, deepest level and highest bitmap serial continue from their values.
// Raises run-time error 9 at a third SHORTCUT line and 6 where a row number or a depth would
// leave the 16-bit range; what was read up to there stays.
ReadOutcome readMenuFile(const std::string& path, const MenuModel& target, int16_t appendStartRow,
                         Color normalColor, ReadDiagnostics* diagnostics = nullptr);

// The same for a file's bytes held in memory (the file is taken as present).
ReadOutcome readMenuBytes(std::string_view bytes, const MenuModel& target, int16_t appendStartRow,
                          Color normalColor, ReadDiagnostics* diagnostics = nullptr);

// The bare file name of a path: the part after the last "/", then after the last "\".
std::string_view bareFileName(std::string_view path);

}  // namespace vkl::menufile
