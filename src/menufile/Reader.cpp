#include "menufile/Reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "platform/Int16.h"
#include "platform/Text.h"
#include "tree/Derivation.h"

namespace vkl::menufile {

// ---- LineReader ----------------------------------------------------------------------------

namespace {
constexpr size_t kBlockSize = 1 << 16;
}

LineReader::LineReader(std::string_view bytes) : data_(bytes.data()), size_(bytes.size()) {}

LineReader::LineReader(std::FILE* file) : file_(file), buffer_(kBlockSize) {}

bool LineReader::refill() {
    if (file_ == nullptr) {
        return false;
    }
    for (;;) {
        const size_t n = std::fread(buffer_.data(), 1, buffer_.size(), file_);
        if (n == 0) {
            if (std::ferror(file_) != 0) {
                throw RuntimeError(57, "Device I/O error");
            }
            return false;
        }
        data_ = buffer_.data();
        size_ = n;
        pos_ = 0;
        nextLf_ = nextCr_ = -1;
        if (crPending_) {
            crPending_ = false;
            if (data_[0] == '\n') {
                pos_ = 1;  // the LF of a CR LF split between two blocks
            }
        }
        if (pos_ < size_) {
            return true;
        }
    }
}

bool LineReader::atEnd() {
    if (pos_ < size_) {
        return false;
    }
    return !refill();
}

size_t LineReader::nextBreak() {
    // Each byte is searched once per kind of line end: the positions found are kept until the
    // reading passes them.
    const auto find = [&](long& cached, char c) {
        if (cached < static_cast<long>(pos_)) {
            const void* hit = std::memchr(data_ + pos_, c, size_ - pos_);
            cached = hit == nullptr ? static_cast<long>(size_)
                                    : static_cast<long>(static_cast<const char*>(hit) - data_);
        }
        return static_cast<size_t>(cached);
    };
    const size_t lf = find(nextLf_, '\n');
    const size_t cr = find(nextCr_, '\r');
    return std::min(lf, cr);
}

std::string_view LineReader::readLine() {
    bool carrying = false;
    for (;;) {
        if (pos_ >= size_ && !refill()) {
            ++line_;
            return carrying ? std::string_view(carry_) : std::string_view();
        }
        const size_t stop = nextBreak();
        if (stop < size_) {
            const std::string_view piece(data_ + pos_, stop - pos_);
            pos_ = stop + 1;
            if (data_[stop] == '\r') {
                if (pos_ < size_) {
                    if (data_[pos_] == '\n') {
                        ++pos_;
                    }
                } else {
                    crPending_ = true;
                }
            }
            ++line_;
            if (!carrying) {
                return piece;
            }
            carry_.append(piece);
            return carry_;
        }
        if (!carrying) {
            carry_.clear();
            carrying = true;
        }
        carry_.append(data_ + pos_, size_ - pos_);
        pos_ = size_;
    }
}

// ---- Reading a menu file -------------------------------------------------------------------

std::string_view bareFileName(std::string_view path) {
    const size_t slash = path.rfind('/');
    if (slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
    }
    const size_t backslash = path.rfind('\\');
    if (backslash != std::string_view::npos) {
        path.remove_prefix(backslash + 1);
    }
    return path;
}

namespace {

std::string_view trimmed(std::string_view s) {
    size_t b = 0;
    size_t e = s.size();
    while (b < e && s[b] == ' ') {
        ++b;
    }
    while (e > b && s[e - 1] == ' ') {
        --e;
    }
    return s.substr(b, e - b);
}

void splitFields(std::string_view s, std::vector<std::string_view>& fields) {
    fields.clear();
    size_t start = 0;
    for (;;) {
        const size_t bar = s.find('|', start);
        if (bar == std::string_view::npos) {
            fields.push_back(s.substr(start));
            return;
        }
        fields.push_back(s.substr(start, bar - start));
        start = bar + 1;
    }
}

// Views hear one reset for the whole read instead of one notice per row and node.
class Bulk {
  public:
    Bulk(Grid& grid, TreeNodes& nodes) : grid_(grid), nodes_(nodes) {
        grid_.beginBulk();
        nodes_.beginBulk();
    }
    ~Bulk() {
        nodes_.endBulk();
        grid_.endBulk();
    }
    Bulk(const Bulk&) = delete;
    Bulk& operator=(const Bulk&) = delete;

  private:
    Grid& grid_;
    TreeNodes& nodes_;
};

class MenuReader {
  public:
    // Cuts the table to the append start row; the rows read follow from there.
    MenuReader(const MenuModel& m, int16_t appendStartRow, Color normalColor,
               ReadDiagnostics* diagnostics)
        : m_(m),
          bulk_(m.grid, m.nodes),
          normal_(normalColor),
          diag_(diagnostics),
          derivation_(m.nodes, m.tree) {
        fields_.reserve(8);
        m_.grid.setRows(appendStartRow);
        rowCounter_ = sub16(appendStartRow, 1);
    }

    ReadOutcome read(LineReader& in) {
        outcome_.opened = true;
        derivation_.begin();
        m_.shortcuts.count = 0;
        readHeader(in);
        readBody(in);
        return finish();
    }

    ReadOutcome finish() {
        m_.grid.setRow(0);
        derivation_.end();
        return outcome_;
    }

  private:
    void readHeader(LineReader& in) {
        int16_t position = 0;
        while (!in.atEnd()) {
            const std::string_view raw = in.readLine();
            const std::string_view line = trimmed(raw);
            if (line.empty() || line.front() == '#') {
                continue;
            }
            position = add16(position, 1);
            if (diag_ != nullptr) {
                diag_->headerLine(position, in.lineNumber(), raw);
            }
            switch (position) {
                case 2:
                    m_.header.text3 = line;
                    break;
                case 6:
                    m_.header.text2 = line;
                    break;
                case 7:
                    m_.header.combo2 = line;
                    break;
                case 8:
                    m_.header.combo3 = line;
                    break;
                case 12:
                    if (diag_ != nullptr) {
                        diag_->headerEnded(in.lineNumber(), true);
                    }
                    return;
                default:
                    break;
            }
        }
        if (diag_ != nullptr) {
            diag_->headerEnded(in.lineNumber(), false);
        }
    }

    void readBody(LineReader& in) {
        while (!in.atEnd()) {
            const std::string_view raw = in.readLine();
            try {
                bodyLine(in.lineNumber(), raw);
            } catch (const RuntimeError& e) {
                if (diag_ != nullptr) {
                    diag_->fatalLine(in.lineNumber(), raw, e);
                }
                throw;
            }
        }
    }

    void bodyLine(long lineNumber, std::string_view raw) {
        size_t blanks = 0;
        while (blanks < raw.size() && raw[blanks] == ' ') {
            ++blanks;
        }
        const int16_t depth = checked16(1 + static_cast<long long>(blanks));
        m_.tree.currentLevel = depth;
        const std::string_view line = trimmed(raw.substr(blanks));
        if (line.empty() || line.front() == '#') {
            return;
        }
        splitFields(line, fields_);
        if (text::iequals(trimmed(fields_[0]), "shortcut")) {
            shortcutLine();
            return;
        }
        if (const std::string_view reason = rejection(); !reason.empty()) {
            if (diag_ != nullptr) {
                diag_->skippedLine(lineNumber, raw, reason);
            }
            return;
        }
        if (text::iequals(trimmed(fields_[2]), "s")) {
            derivation_.submenu(depth, std::string(trimmed(fields_[0])), fields_[1]);
        } else {
            itemLine(depth);
        }
    }

    std::string_view rejection() const {
        if (fields_.size() != 4) {
            return kWrongFieldCount;
        }
        if (trimmed(fields_[0]).empty()) {
            return kEmptyTitle;
        }
        if (trimmed(fields_[2]).empty()) {
            return kEmptyAction;
        }
        if (trimmed(fields_[3]).empty()) {
            return kEmptyParameter;
        }
        return {};
    }

    void shortcutLine() {
        Shortcuts& s = m_.shortcuts;
        if (s.count < 0 || static_cast<size_t>(s.count) >= s.pairs.size()) {
            throw RuntimeError::subscriptOutOfRange();
        }
        const std::string_view key = fields_.size() > 1 ? fields_[1] : std::string_view();
        const std::string_view value = fields_.size() > 2 ? fields_[2] : std::string_view();
        s.pairs[static_cast<size_t>(s.count)] = {std::string(key), std::string(value)};
        s.count = add16(s.count, 1);
        if (text::iequals(key, "datadir")) {
            m_.header.datadir = value;
            outcome_.datadirSet = true;
        } else if (text::iequals(key, "bmpdir")) {
            m_.header.imagedir = value;
            outcome_.imagedirSet = true;
        }
    }

    void itemLine(int16_t depth) {
        rowCounter_ = add16(rowCounter_, 1);
        const int row = rowCounter_;
        Grid& g = m_.grid;
        g.setRows(g.rows() + 1);
        derivation_.item(depth, row, fields_[0]);
        g.setCol(0);
        g.setCellBackColor(normal_);
        g.setRow(row);
        g.setCellBackColor(normal_);
        g.setTextMatrix(row, 0, text::str(row));
        const std::string_view title = fields_[0];
        const std::string_view bitmap = fields_[1];
        const std::string_view action = fields_[2];
        const std::string_view parameter = fields_[3];
        g.setTextMatrix(row, 1, std::string(title));
        if (!bitmap.empty()) {
            g.setTextMatrix(row, 2, std::string(bareFileName(bitmap)));
            g.setTextMatrix(row, 5, std::string(bitmap));
        }
        g.setTextMatrix(row, 3, std::string(action));
        const bool package = text::iequals(action, "LOS");
        g.setTextMatrix(row, 4, std::string(package ? bareFileName(parameter) : parameter));
        g.setTextMatrix(row, 6, std::string(parameter));
    }

    const MenuModel& m_;
    Bulk bulk_;
    Color normal_;
    ReadDiagnostics* diag_;
    tree::LevelDerivation derivation_;
    std::vector<std::string_view> fields_;
    int16_t rowCounter_ = 0;
    ReadOutcome outcome_;
};

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

bool fileExists(const std::string& path) {
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    return !ec && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

RuntimeError openError(int err) {
    switch (err) {
        case ENOENT:
            return RuntimeError::fileNotFound();
        case EACCES:
        case EPERM:
            return RuntimeError::permissionDenied();
        default:
            return {75, "Path/File access error"};
    }
}

}  // namespace

ReadOutcome readMenuFile(const std::string& path, const MenuModel& target, int16_t appendStartRow,
                         Color normalColor, ReadDiagnostics* diagnostics) {
    MenuReader reader(target, appendStartRow, normalColor, diagnostics);
    if (!fileExists(path)) {
        return reader.finish();
    }
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        throw openError(errno);
    }
    LineReader in(file.get());
    return reader.read(in);
}

ReadOutcome readMenuBytes(std::string_view bytes, const MenuModel& target, int16_t appendStartRow,
                          Color normalColor, ReadDiagnostics* diagnostics) {
    MenuReader reader(target, appendStartRow, normalColor, diagnostics);
    LineReader in(bytes);
    return reader.read(in);
}

}  // namespace vkl::menufile
