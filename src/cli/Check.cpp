#include "cli/Check.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>

#include "menufile/ActionCode.h"
#include "menufile/Writer.h"
#include "platform/NodeKeys.h"
#include "platform/Text.h"

namespace vkl::cli {

std::string headerMenuLineReason(int position) {
    return "header position " + std::to_string(position) + " looks like a menu line";
}

std::string rowLeftOutReason(int row) {
    return "table line " + std::to_string(row) + " has missing entries and is not saved";
}

// ---- Listening to the reader ---------------------------------------------------------------

void ReadLog::headerLine(int position, long lineNumber, std::string_view text) {
    lastHeader_ = SkippedLine{lineNumber, std::string(text), {}};
    // The header takes any line by its position; positions 2 and 6 are read back as a whole,
    // the others are dropped, and with them a menu line that strayed into the header.
    if (position != 2 && position != 6 && std::count(text.begin(), text.end(), '|') == 3) {
        header.push_back({lineNumber, std::string(text), headerMenuLineReason(position)});
    }
}

void ReadLog::headerEnded(long lineNumber, bool complete) {
    if (complete) {
        return;
    }
    if (lastHeader_) {
        header.push_back({lastHeader_->line, lastHeader_->text, std::string(kEndsInHeader)});
    } else {
        // Not one header line: nothing to point at but the file's end.
        header.push_back({lineNumber, {}, std::string(kEndsInHeader)});
    }
}

void ReadLog::skippedLine(long lineNumber, std::string_view text, std::string_view reason) {
    skipped.push_back({lineNumber, std::string(text), std::string(reason)});
}

void ReadLog::menuLine(long lineNumber, std::string_view text, NodeRef node) {
    origins_[node.uid] = Origin{lineNumber, std::string(text)};
}

void ReadLog::fatalLine(long lineNumber, std::string_view text, const RuntimeError& error) {
    fatal = FatalLine{lineNumber, std::string(text), error.number(), error.description()};
}

const ReadLog::Origin* ReadLog::originOf(NodeRef node) const {
    const auto it = origins_.find(node.uid);
    return it == origins_.end() ? nullptr : &it->second;
}

// ---- Findings ------------------------------------------------------------------------------

namespace {

using text::trimmed;

// Which of the reader's limits a run-time error stands for.
std::string fatalReason(const Form1& form, const FatalLine& fatal) {
    constexpr long kMax16 = std::numeric_limits<int16_t>::max();
    if (fatal.error == 9 && form.shortcuts.count == 2) {
        return std::string(kThirdShortcut);
    }
    if (fatal.error == 6) {
        const size_t blanks = std::min(fatal.text.find_first_not_of(' '), fatal.text.size());
        if (static_cast<long>(blanks) + 1 > kMax16) {
            return std::string(kTooDeep);
        }
        // A submenu line counts folders, an item line rows: the line says which counter ran out.
        const std::vector<std::string> fields = text::split(trimmed(fatal.text), '|');
        const bool submenu = fields.size() == 4 && isSubmenuCode(fields[2]);
        if (submenu && form.tree.nodeSerial >= kMax16) {
            return std::string(kSubmenuLimit);
        }
        if (!submenu && form.Table.rows() - 1 >= kMax16) {
            return std::string(kRowLimit);
        }
    }
    return "run-time error " + std::to_string(fatal.error) + " (" + fatal.description + ")";
}

}  // namespace

std::vector<Finding> findings(const Form1& form, const ReadLog& log) {
    std::vector<Finding> found;
    for (const SkippedLine& h : log.header) {
        // Header data lines are never empty: an empty text means there was no line to show.
        found.push_back(
            {h.line, h.reason, h.text.empty() ? std::nullopt : std::optional<std::string>(h.text)});
    }
    for (const SkippedLine& s : log.skipped) {
        found.push_back({s.line, s.reason, s.text});
    }

    // What the save would leave out, judged as the writer judges it: a folder without
    // children, an item whose title, action or parameter as shown is empty. After a run-time
    // error the editor has ended and nothing is saved at all.
    const TreeNodes& nodes = form.Treeview;
    for (int i = 1; !log.fatal && i <= nodes.count(); ++i) {
        const NodeRef n = nodes.byIndex(i);
        const std::string& key = nodes.key(n);
        const ReadLog::Origin* origin = log.originOf(n);
        if (key == keys::kRoot || origin == nullptr) {
            continue;
        }
        if (!keys::isItem(key)) {
            if (nodes.children(n) == 0) {
                found.push_back({origin->line, std::string(kEmptySubmenu), origin->text});
            }
            continue;
        }
        const long row = keys::rowOf(key);
        if (row < 1 || row >= form.Table.rows()) {
            continue;
        }
        const int r = static_cast<int>(row);
        if (!menufile::rowComplete(form.Table, r)) {
            found.push_back({origin->line, rowLeftOutReason(r), origin->text});
        }
    }

    std::stable_sort(found.begin(), found.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    // The line that ended the reading is the last one read.
    if (log.fatal) {
        found.push_back({log.fatal->line, fatalReason(form, *log.fatal), log.fatal->text});
    } else if (const int saves =
                   savesUntilUnreadable(form.shortcuts, form.Datadir.text, form.Imagedir.text);
               saves > 0) {
        found.push_back({0, unreadableAfterSaves(saves), std::nullopt});
    }
    return found;
}

int savesUntilUnreadable(const Shortcuts& shortcuts, const std::string& datadir,
                         const std::string& imagedir) {
    // Each round saves what was read and opens the result in an editor started afresh, with
    // the writer's and the reader's own code; the lines repeat once nothing grows any more.
    Shortcuts pairs = shortcuts;
    menufile::HeaderFields fields;
    fields.datadir = datadir;
    fields.imagedir = imagedir;
    std::vector<std::string> previous;
    for (int saves = 1; saves <= 8; ++saves) {
        std::vector<std::string> lines = menufile::shortcutLines(pairs, fields);
        if (lines == previous) {
            return 0;
        }
        std::string bytes;
        for (int i = 0; i < 12; ++i) {
            bytes += "-\n";  // a header line
        }
        for (const std::string& line : lines) {
            bytes += line + "\n";
        }
        Grid grid;
        TreeNodes nodes;
        TreeState tree;
        menufile::HeaderFields read;
        pairs = {};
        try {
            menufile::readMenuBytes(bytes, {grid, nodes, tree, pairs, read}, 1, kNormalColor);
        } catch (const RuntimeError& e) {
            if (e.number() == 9) {
                return saves;
            }
            throw;
        }
        fields.datadir = read.datadir;
        fields.imagedir = read.imagedir;
        previous = std::move(lines);
    }
    return 0;
}

std::string unreadableAfterSaves(int saves) {
    return "saving this file " + std::to_string(saves) + (saves == 1 ? " time" : " times") +
           " makes it unreadable (third SHORTCUT line, run-time error 9)";
}

// ---- The default report --------------------------------------------------------------------

namespace {

// A line's text fit for a terminal: control bytes spelled out, deep indentation counted
// instead of shown, very long lines cut.
std::string shown(std::string_view s) {
    constexpr size_t kMaxBlanks = 40;
    constexpr size_t kMaxShown = 200;
    std::string out;
    const size_t blanks = std::min(s.find_first_not_of(' '), s.size());
    if (blanks > kMaxBlanks) {
        out = "(" + std::to_string(blanks) + " blanks)";
        s.remove_prefix(blanks);
    }
    for (const char c : s.substr(0, kMaxShown)) {
        const auto u = static_cast<unsigned char>(c);
        if ((u < 0x20 && c != '\t') || u == 0x7F) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", u);
            out += escaped;
        } else {
            out += c;
        }
    }
    out = text::cp1252ToUtf8(out);
    if (s.size() > kMaxShown) {
        out += "... (" + std::to_string(s.size() - kMaxShown) + " more bytes)";
    }
    return out;
}

std::string counted(long n, std::string_view one, std::string_view many) {
    return std::to_string(n) + " " + std::string(n == 1 ? one : many);
}

long folderCount(const TreeNodes& nodes) {
    long folders = 0;
    for (int i = 1; i <= nodes.count(); ++i) {
        const std::string& key = nodes.key(nodes.byIndex(i));
        if (key != keys::kRoot && !keys::isItem(key)) {
            ++folders;
        }
    }
    return folders;
}

}  // namespace

std::string textReport(const std::string& file, const Form1& form, const ReadLog& log,
                       const std::vector<Finding>& found) {
    // The name as the shell gave it: it is in the system's encoding, not the menu's.
    const std::string& name = file;
    std::string out;
    for (const Finding& f : found) {
        out += name;
        if (f.line > 0) {
            out += ':';
            out += std::to_string(f.line);
        }
        out += ": ";
        out += f.reason;
        if (f.text) {
            out += ": ";
            out += shown(*f.text);
        }
        out += '\n';
    }
    out += name + ": " + counted(form.Table.rows() - 1, "row", "rows") + ", " +
           counted(folderCount(form.Treeview), "submenu", "submenus") + ", " +
           counted(form.shortcuts.count, "SHORTCUT pair", "SHORTCUT pairs") + ", " +
           counted(static_cast<long>(log.skipped.size()), "skipped line", "skipped lines") + "\n";
    return out;
}

// ---- The JSON report -----------------------------------------------------------------------

namespace {

using nlohmann::json;

json utf8(std::string_view cp1252) {
    return json(text::cp1252ToUtf8(cp1252));
}

// The tree written without recursion: a file can nest its submenus deeper than a call stack.
void appendTree(std::string& out, const TreeNodes& nodes) {
    if (nodes.count() == 0) {
        out += "null";
        return;
    }
    const auto open = [&](NodeRef n) {
        out += "{\"key\":" + utf8(nodes.key(n)).dump() + ",\"text\":" + utf8(nodes.text(n)).dump() +
               ",\"image\":" + utf8(nodes.image(n)).dump() + ",\"children\":[";
    };
    NodeRef top = nodes.byIndex(1);
    while (!nodes.parent(top).isNull()) {
        top = nodes.parent(top);
    }
    std::vector<NodeRef> path{top};
    open(top);
    NodeRef next = nodes.child(top);
    for (;;) {
        if (!next.isNull()) {
            open(next);
            path.push_back(next);
            next = nodes.child(next);
            continue;
        }
        out += "]}";
        const NodeRef done = path.back();
        path.pop_back();
        if (path.empty()) {
            return;
        }
        next = nodes.next(done);
        if (!next.isNull()) {
            out += ',';
        }
    }
}

}  // namespace

std::string jsonReport(const Form1& form, const ReadLog& log) {
    json header = json::object();
    header["Text2"] = utf8(form.Text2.text);
    header["Text3"] = utf8(form.Text3.text);
    header["Combo2"] = utf8(form.Combo2.text);
    header["Combo3"] = utf8(form.Combo3.text);
    header["Datadir"] = utf8(form.Datadir.text);
    header["Imagedir"] = utf8(form.Imagedir.text);

    json shortcuts = json::array();
    const Shortcuts& s = form.shortcuts;
    for (size_t i = 0; i < s.pairs.size() && static_cast<int>(i) < s.count; ++i) {
        shortcuts.push_back(json::array({utf8(s.pairs[i][0]), utf8(s.pairs[i][1])}));
    }

    json rows = json::array();
    for (int r = 1; r < form.Table.rows(); ++r) {
        json row = json::array();
        for (int c = 0; c < Grid::kCols; ++c) {
            row.push_back(utf8(form.Table.textView(r, c)));
        }
        rows.push_back(std::move(row));
    }

    json bitmaps = json::object();
    const std::vector<std::string>& list = form.tree.submenuBitmaps;
    for (size_t serial = 0; serial < list.size(); ++serial) {
        if (!list[serial].empty()) {
            bitmaps[std::to_string(serial)] = utf8(list[serial]);
        }
    }

    json skipped = json::array();
    for (const SkippedLine& line : log.skipped) {
        skipped.push_back(
            {{"line", line.line}, {"text", utf8(line.text)}, {"reason", line.reason}});
    }

    json fatal = nullptr;
    if (log.fatal) {
        fatal = {{"line", log.fatal->line},
                 {"error", log.fatal->error},
                 {"description", utf8(log.fatal->description)}};
    }

    // Keys in the order a reader of the output expects them, not sorted.
    std::string out = "{\"header\":" + header.dump() + ",\"shortcuts\":" + shortcuts.dump() +
                      ",\"rows\":" + rows.dump() + ",\"tree\":";
    appendTree(out, form.Treeview);
    out += ",\"submenuBitmaps\":" + bitmaps.dump() + ",\"skipped\":" + skipped.dump() +
           ",\"fatal\":" + fatal.dump() + "}\n";
    return out;
}

}  // namespace vkl::cli
