#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "menufile/Reader.h"
#include "platform/Files.h"
#include "platform/Grid.h"
#include "platform/Host.h"

namespace vkl::menufile {

// Writes lines ended by CR LF as the new content of a file, saved safely: until commit() the
// old file stays as it was, and a writer dropped without commit leaves it so. A folder that
// does not exist raises run-time error 76, one that cannot be written or a read-only file 75,
// a full disk 61.
class LineWriter {
  public:
    explicit LineWriter(const std::string& path);

    void writeLine(std::string_view line);
    // One line made of several pieces.
    void writeLine(std::initializer_list<std::string_view> pieces);
    void commit();

  private:
    void flush();

    files::SafeWriter file_;
    std::string buffer_;
};

// Makes line and CR LF the whole content of the file at path, written in place: for the
// one-line last-folder file, which every open writes and where a torn line only points the
// Open dialog elsewhere. Raises the errors LineWriter raises.
void overwriteLine(const std::string& path, std::string_view line);

// The SHORTCUT lines a save writes: the stored pairs with key and value, then the data
// directory as its own key and value, then the image directory with an empty key. The reader
// takes neither of the last two back into the directory fields.
std::vector<std::string> shortcutLines(const Shortcuts& shortcuts, const HeaderFields& header);

// Texts of the check before saving and of the writer's reports.
inline constexpr std::string_view kCheckFailedTitleEn = "Check before saving failed !";
inline constexpr std::string_view kCheckFailedPromptEn =
    "Table is all empty or all existing lines have missing entries  ! Nothing to save !";
inline constexpr std::string_view kCheckFailedTitleDe =
    "Kontrolle vor dem Abspeichern ist gescheitert !";
inline constexpr std::string_view kCheckFailedPromptDe =
    "Tabelle ist komplett leer oder alle Zeilen haben mindestens eine fehlende Spalte ! Es wurde "
    "nicht abgespeichert ! ";
inline constexpr std::string_view kSkippedRowsEn =
    "Following table lines have missing entries and are not stored :";
inline constexpr std::string_view kSkippedRowsDe =
    "Folgende Tabellenzeilen haben leere Spalten und wurden nicht abgespeichert :";

// The message about a submenu without children, in English when the code is 1.
std::string emptySubmenuMessage(std::string_view nodeText, bool english);

// An item row is written only when its title, action and parameter as shown hold more than
// blanks.
bool rowComplete(const Grid& grid, int row);

// The scan of the check before saving. A row counts as empty until its first non-blank cell
// (columns 1 to 6 in order); from there on, an empty cell outside columns 2, 5 and 6 makes it
// incomplete. Empty cells before the first filled one are not held against the row.
struct RowCheck {
    int16_t good = 0;  // rows neither empty nor incomplete
    int16_t bad = 0;   // incomplete rows
};
RowCheck checkRows(const Grid& grid);

// The check with its message: true when at least one row is good; otherwise the failure
// message is shown (English when the code is 1) and false returned.
bool checkBeforeSaving(const Grid& grid, Host& host, int16_t languageCode);

// What the writer records of one save, kept by its caller.
struct SaveRecord {
    std::vector<int16_t> skippedRows;  // rows of item nodes that could not be written
    int16_t skippedCount = 0;
    bool saved = false;  // true once the file is closed
};

// Writes the menu: comment block, header, SHORTCUT lines, then the tree depth-first with the
// item lines taken from the table. Incomplete rows are left out and listed at the end, empty
// submenus are reported one by one. Nothing is written when the check finds no good row.
void writeMenuFile(const std::string& path, const MenuModel& source, int16_t languageCode,
                   Host& host, SaveRecord& record);

}  // namespace vkl::menufile
