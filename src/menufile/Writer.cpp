#include "menufile/Writer.h"

#include <algorithm>
#include <utility>

#include "menufile/Format.h"
#include "platform/Int16.h"
#include "platform/NodeKeys.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl::menufile {

// ---- LineWriter ----------------------------------------------------------------------------

namespace {
constexpr size_t kFlushAt = 1 << 16;
}  // namespace

LineWriter::LineWriter(const std::string& path) : file_(path) {
    buffer_.reserve(kFlushAt + 4096);
}

void LineWriter::flush() {
    file_.write(buffer_);
    buffer_.clear();
}

void LineWriter::writeLine(std::string_view line) {
    buffer_.append(line);
    buffer_.append("\r\n");
    if (buffer_.size() >= kFlushAt) {
        flush();
    }
}

void LineWriter::writeLine(std::initializer_list<std::string_view> pieces) {
    for (std::string_view piece : pieces) {
        buffer_.append(piece);
    }
    buffer_.append("\r\n");
    if (buffer_.size() >= kFlushAt) {
        flush();
    }
}

void LineWriter::commit() {
    flush();
    file_.commit();
}

void overwriteLine(const std::string& path, std::string_view line) {
    std::string bytes(line);
    bytes += "\r\n";
    files::overwriteSmallFile(path, bytes);
}

std::vector<std::string> shortcutLines(const Shortcuts& s, const HeaderFields& h) {
    std::vector<std::string> lines;
    const std::string head = std::string(format::kShortcut) + "|";
    for (int16_t i = 0; i < s.count; ++i) {
        if (static_cast<size_t>(i) >= s.pairs.size()) {
            throw RuntimeError::subscriptOutOfRange();
        }
        const auto& [key, value] = s.pairs[static_cast<size_t>(i)];
        if (!key.empty() && !value.empty()) {
            lines.push_back(head + key + "|" + value);
        }
    }
    if (!h.datadir.empty()) {
        lines.push_back(head + h.datadir + "|" + h.datadir);
    }
    if (!h.imagedir.empty()) {
        lines.push_back(head + "|" + h.imagedir);
    }
    return lines;
}

// ---- Check before saving -------------------------------------------------------------------

namespace {

using text::trimmed;

bool blank(std::string_view s) {
    return std::all_of(s.begin(), s.end(), [](char c) { return c == ' '; });
}

}  // namespace

bool rowComplete(const Grid& grid, int row) {
    return !trimmed(grid.textView(row, 1)).empty() && !trimmed(grid.textView(row, 3)).empty() &&
           !trimmed(grid.textView(row, 4)).empty();
}

RowCheck checkRows(const Grid& grid) {
    RowCheck count;
    for (int r = 1; r < grid.rows(); ++r) {
        bool empty = true;
        bool complete = true;
        for (int c = 1; c < grid.cols(); ++c) {
            const bool cellBlank = blank(grid.textView(r, c));
            if (!cellBlank) {
                empty = false;
            }
            if (!empty && c != 2 && c != 5 && c != 6 && cellBlank) {
                complete = false;
            }
        }
        if (!complete) {
            count.bad = add16(count.bad, 1);
        } else if (!empty) {
            count.good = add16(count.good, 1);
        }
    }
    return count;
}

bool checkBeforeSaving(const Grid& grid, Host& host, int16_t languageCode) {
    if (checkRows(grid).good != 0) {
        return true;
    }
    const bool english = languageCode == 1;
    MessageBox box;
    box.prompt = english ? kCheckFailedPromptEn : kCheckFailedPromptDe;
    box.title = std::string(english ? kCheckFailedTitleEn : kCheckFailedTitleDe);
    box.buttons = Buttons::Ok;
    host.msgBox(box);
    return false;
}

std::string emptySubmenuMessage(std::string_view nodeText, bool english) {
    std::string m = english ? "Menu '" : "Leeres Menu '";
    m.append(nodeText);
    m.append(english ? "' without children is ignored !" : "' wird nicht abgespeichert  !");
    return m;
}

// ---- Writing -------------------------------------------------------------------------------

namespace {

class MenuWriter {
  public:
    MenuWriter(LineWriter& out, const MenuModel& m, bool english, Host& host, SaveRecord& record)
        : out_(out), m_(m), english_(english), host_(host), record_(record) {}

    void writeHead() {
        for (std::string_view line : format::kCommentLines) {
            out_.writeLine(line);
        }
        // Month, day, hour and minute, each read from the clock on its own.
        const int month = host_.now().month;
        const int day = host_.now().day;
        const int hour = host_.now().hour;
        const int minute = host_.now().minute;
        out_.writeLine({text::str(month), text::str(day), text::str(hour), text::str(minute),
                        format::kLibraryNameSuffix});
        const HeaderFields& h = m_.header;
        out_.writeLine({h.text3, format::kAboutSuffix});
        out_.writeLine(format::kPoweredBy);
        out_.writeLine(format::kWebAddress);
        out_.writeLine(format::kRightsReserved);
        out_.writeLine(h.text2);
        out_.writeLine(h.combo2);
        out_.writeLine(h.combo3);
        for (std::string_view line : format::kFixedTail) {
            out_.writeLine(line);
        }
        for (const std::string& line : shortcutLines(m_.shortcuts, h)) {
            out_.writeLine(line);
        }
    }

    // Depth-first from the first node: a node, then its children one level deeper, then its
    // next sibling. Kept off the call stack so that a deep tree cannot exhaust it.
    void writeTree() {
        const TreeNodes& nodes = m_.nodes;
        if (nodes.count() == 0) {
            return;
        }
        std::vector<std::pair<NodeRef, int16_t>> pending{{nodes.byIndex(1), 0}};
        while (!pending.empty()) {
            const auto [node, depth] = pending.back();
            pending.pop_back();
            writeNode(node, depth);
            if (const NodeRef next = nodes.next(node); !next.isNull()) {
                pending.emplace_back(next, depth);
            }
            if (const NodeRef child = nodes.child(node); !child.isNull()) {
                pending.emplace_back(child, add16(depth, 1));
            }
        }
    }

    void reportSkipped() {
        if (record_.skippedCount == 0) {
            return;
        }
        std::string list;
        for (int16_t row : record_.skippedRows) {
            if (!list.empty()) {
                list += ',';
            }
            list += text::str(row);
        }
        MessageBox box;
        box.prompt.assign(english_ ? kSkippedRowsEn : kSkippedRowsDe).append("\r\r").append(list);
        host_.msgBox(box);
    }

  private:
    void writeNode(NodeRef node, int16_t depth) {
        const TreeNodes& nodes = m_.nodes;
        const std::string& key = nodes.key(node);
        if (key == keys::kRoot) {
            return;
        }
        indent_.assign(static_cast<size_t>(std::max(0, depth - 1)), ' ');
        if (keys::isItem(key)) {
            writeItem(node, key);
        } else {
            writeSubmenu(node, key);
        }
    }

    void writeItem(NodeRef node, const std::string& key) {
        const Grid& g = m_.grid;
        const long row = keys::rowOf(key);
        if (row < 0 || row >= g.rows()) {
            throw RuntimeError::gridSubscript();
        }
        const int r = static_cast<int>(row);
        const std::string_view title = trimmed(g.textView(r, 1));
        const std::string_view action = trimmed(g.textView(r, 3));
        const std::string_view shown = trimmed(g.textView(r, 4));
        const std::string_view bitmap = trimmed(g.textView(r, 5));
        const std::string_view written = trimmed(g.textView(r, 6));
        if (rowComplete(g, r)) {
            const bool package = text::iequals(action, "LOS");
            out_.writeLine({indent_, m_.nodes.text(node), "|", bitmap, "|", action, "|",
                            package ? written : shown});
        } else if (!title.empty() || !action.empty() || !shown.empty()) {
            record_.skippedRows.push_back(checked16(row));
            record_.skippedCount = add16(record_.skippedCount, 1);
        }
    }

    void writeSubmenu(NodeRef node, const std::string& key) {
        const TreeNodes& nodes = m_.nodes;
        const std::string& title = nodes.text(node);
        if (nodes.children(node) == 0) {
            MessageBox box;
            box.prompt = emptySubmenuMessage(title, english_);
            host_.msgBox(box);
            return;
        }
        const long serial = keys::serialOf(key);
        std::string_view bitmap;
        if (serial <= m_.tree.highestBitmapSerial) {
            bitmap = m_.tree.submenuBitmap(serial);
        }
        out_.writeLine({indent_, title, "|", bitmap, "|S|", title});
    }

    LineWriter& out_;
    const MenuModel& m_;
    bool english_;
    Host& host_;
    SaveRecord& record_;
    std::string indent_;
};

}  // namespace

void writeMenuFile(const std::string& path, const MenuModel& source, int16_t languageCode,
                   Host& host, SaveRecord& record) {
    record.skippedCount = 0;
    record.skippedRows.clear();
    record.saved = false;
    if (!checkBeforeSaving(source.grid, host, languageCode)) {
        return;
    }
    LineWriter out(path);
    MenuWriter writer(out, source, languageCode == 1, host, record);
    writer.writeHead();
    writer.writeTree();
    out.commit();
    record.saved = true;
    writer.reportSkipped();
}

}  // namespace vkl::menufile
