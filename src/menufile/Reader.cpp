#include "menufile/Reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/Bulk.h"
#include "platform/Files.h"
#include "platform/Int16.h"
#include "platform/Text.h"
#include "tree/Derivation.h"

namespace vkl::menufile {

// ---- LineReader ----------------------------------------------------------------------------

namespace {
constexpr size_t kBlockSize = 1 << 16;
}  // namespace

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
        // A file that grows while it is read is bounded like one that was large to begin with.
        bytesRead_ += n;
        if (bytesRead_ > files::kMaxMenuFileBytes) {
            throw RuntimeError::outOfMemory();
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

void LineReader::checkLength() const {
    if (carry_.size() > files::kMaxLineBytes) {
        throw RuntimeError::outOfMemory();
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
            if (!carrying) {
                ++line_;
                return piece;
            }
            carry_.append(piece);
            checkLength();
            ++line_;
            return carry_;
        }
        if (!carrying) {
            carry_.clear();
            carrying = true;
        }
        carry_.append(data_ + pos_, size_ - pos_);
        pos_ = size_;
        checkLength();
    }
}

// ---- Reading a menu file -------------------------------------------------------------------

std::string_view bareFileName(std::string_view path) {
    // Cutting after the last "/" and then after the last "\\" leaves what follows the last of
    // either. Searched from the end, eight bytes at a time: every line read asks for one or two.
    constexpr uint64_t kOnes = 0x0101010101010101u;
    constexpr uint64_t kHigh = 0x8080808080808080u;
    const auto zeroBytes = [](uint64_t x) { return ~(((x & ~kHigh) + ~kHigh) | x) & kHigh; };
    size_t end = path.size();
    for (; end >= 8; end -= 8) {
        uint64_t w;
        std::memcpy(&w, path.data() + end - 8, 8);
        const uint64_t seps = zeroBytes(w ^ (kOnes * '/')) | zeroBytes(w ^ (kOnes * '\\'));
        if (seps != 0) {
            const int last = std::endian::native == std::endian::little
                                 ? (63 - std::countl_zero(seps)) / 8
                                 : (63 - std::countr_zero(seps)) / 8;
            return path.substr(end - 8 + static_cast<size_t>(last) + 1);
        }
    }
    while (end > 0 && path[end - 1] != '/' && path[end - 1] != '\\') {
        --end;
    }
    return path.substr(end);
}

namespace {

using text::trimmed;

// The header field a header line fills, by its position among the non-comment lines; null for
// the positions whose text is fixed.
std::string HeaderFields::*headerField(int position) {
    switch (position) {
        case 2:
            return &HeaderFields::text3;
        case 6:
            return &HeaderFields::text2;
        case 7:
            return &HeaderFields::combo2;
        case 8:
            return &HeaderFields::combo3;
        default:
            return nullptr;
    }
}

// The fields of a body line, split at every "|" (empty fields kept). Only the first four are
// needed: a menu line has exactly four, a SHORTCUT line uses three.
struct Fields {
    static constexpr size_t kKept = 4;
    std::array<std::string_view, kKept> at;
    size_t count = 0;  // kKept + 1 stands for any number above kKept

    const std::string_view& operator[](size_t i) const { return at[i]; }
    size_t size() const { return count; }

    void split(std::string_view s) {
#if defined(__SSE2__)
        if (s.size() >= 16 && s.size() <= 64) {
            splitShort(s);
            return;
        }
#endif
        size_t n = 0;  // kept in a register, not in the member the views are stored next to
        size_t start = 0;
        for (;;) {
            if (n == kKept) {
                count = n + 1;  // the fourth field ended at a "|": more follow
                return;
            }
            const size_t bar = s.find('|', start);
            if (bar == std::string_view::npos) {
                at[n] = s.substr(start);
                count = n + 1;
                return;
            }
            at[n++] = s.substr(start, bar - start);
            start = bar + 1;
        }
    }

#if defined(__SSE2__)
    // Nearly every menu line is 16 to 64 bytes long: all its "|" are found at once, sixteen
    // bytes at a time, as one bit per byte; the last sixteen bytes may overlap the ones before.
    void splitShort(std::string_view s) {
        const char* p = s.data();
        const size_t length = s.size();
        const __m128i bar = _mm_set1_epi8('|');
        const auto barsAt = [&](size_t i) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            return static_cast<uint64_t>(
                static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, bar))));
        };
        uint64_t bars = 0;
        size_t i = 0;
        for (; i + 16 <= length; i += 16) {
            bars |= barsAt(i) << i;
        }
        if (i < length) {
            bars |= (barsAt(length - 16) >> (i - (length - 16))) << i;
        }
        size_t k = 0;
        size_t start = 0;
        for (; bars != 0 && k < kKept; ++k) {
            const auto end = static_cast<size_t>(std::countr_zero(bars));
            at[k] = s.substr(start, end - start);
            start = end + 1;
            bars &= bars - 1;
        }
        if (k < kKept) {
            at[k] = s.substr(start);
            count = k + 1;
        } else {
            count = kKept + 1;  // the fourth field ended at a "|": more follow
        }
    }
#endif
};

class MenuReader {
  public:
    // Cuts the table to the append start row; the rows read follow from there.
    MenuReader(const MenuModel& m, int16_t appendStartRow, Color normalColor,
               ReadDiagnostics* diagnostics)
        : m_(m),
          gridBulk_(m.grid),
          nodesBulk_(m.nodes),
          normal_(normalColor),
          diag_(diagnostics),
          derivation_(m.nodes, m.tree) {
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
            if (std::string HeaderFields::*field = headerField(position)) {
                m_.header.*field = line;
            }
            if (position == 12) {
                if (diag_ != nullptr) {
                    diag_->headerEnded(in.lineNumber(), true);
                }
                return;
            }
        }
        if (diag_ != nullptr) {
            diag_->headerEnded(in.lineNumber(), false);
        }
    }

    void readBody(LineReader& in) {
        std::string_view raw;
        bool lineRead = false;  // a line too long to read ends the reading before it is read
        try {
            while (!in.atEnd()) {
                lineRead = false;
                raw = in.readLine();
                lineRead = true;
                bodyLine(in.lineNumber(), raw);
            }
        } catch (const RuntimeError& e) {
            if (diag_ != nullptr) {
                diag_->fatalLine(lineRead ? in.lineNumber() : in.lineNumber() + 1,
                                 lineRead ? raw : std::string_view(), e);
            }
            throw;
        }
    }

    void bodyLine(long lineNumber, std::string_view raw) {
        size_t blanks = 0;
        while (blanks < raw.size() && raw[blanks] == ' ') {
            ++blanks;
        }
        const int16_t depth = checked16(1 + static_cast<long long>(blanks));
        m_.tree.currentLevel = depth;
        std::string_view line = raw.substr(blanks);  // trimmed: the leading blanks are gone
        while (!line.empty() && line.back() == ' ') {
            line.remove_suffix(1);
        }
        if (line.empty() || line.front() == '#') {
            return;
        }
        fields_.split(line);
        const std::string_view title = trimmed(fields_[0]);
        constexpr std::string_view kShortcut = "shortcut";
        if (title.size() == kShortcut.size() && text::iequals(title, kShortcut)) {
            shortcutLine();
            return;
        }
        const std::string_view action =
            fields_.size() > 2 ? trimmed(fields_[2]) : std::string_view();
        std::string_view reason;
        if (fields_.size() != 4) {
            reason = kWrongFieldCount;
        } else if (title.empty()) {
            reason = kEmptyTitle;
        } else if (action.empty()) {
            reason = kEmptyAction;
        } else if (trimmed(fields_[3]).empty()) {
            reason = kEmptyParameter;
        }
        if (!reason.empty()) {
            if (diag_ != nullptr) {
                diag_->skippedLine(lineNumber, raw, reason);
            }
            return;
        }
        // The submenu code "S" in either case: the only letter whose other case is "s".
        const bool submenu = action.size() == 1 && (action[0] == 's' || action[0] == 'S');
        const NodeRef node =
            submenu ? derivation_.submenu(depth, title, fields_[1]) : itemLine(depth, line);
        if (diag_ != nullptr) {
            diag_->menuLine(lineNumber, raw, node);
        }
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

    NodeRef itemLine(int16_t depth, std::string_view line) {
        rowCounter_ = add16(rowCounter_, 1);
        const int row = rowCounter_;
        Grid& g = m_.grid;
        g.appendRow();
        const NodeRef node = derivation_.item(depth, row, fields_[0]);
        g.setCol(0);
        g.setCellBackColor(normal_);
        g.setRow(row);
        g.setCellBackColor(normal_);
        const std::string_view title = fields_[0];
        const std::string_view bitmap = fields_[1];
        const std::string_view action = fields_[2];
        const std::string_view parameter = fields_[3];
        const bool package = action.size() == 3 && text::iequals(action, "LOS");
        // Title, bitmap name, action, parameter as shown, bitmap and parameter as written (an
        // empty bitmap leaves both bitmap cells empty), and the row's number before them.
        g.setRowTexts(row, line,
                      {std::string_view(), title, bareFileName(bitmap), action,
                       package ? bareFileName(parameter) : parameter, bitmap, parameter});
        g.numberRow(row);
        return node;
    }

    const MenuModel& m_;
    // Views hear one reset for the whole read instead of one notice per row and node; the
    // tree's comes first, as the members end in the reverse order.
    BulkScope<Grid> gridBulk_;
    BulkScope<TreeNodes> nodesBulk_;
    Color normal_;
    ReadDiagnostics* diag_;
    tree::LevelDerivation derivation_;
    Fields fields_;
    int16_t rowCounter_ = 0;
    ReadOutcome outcome_;
};

}  // namespace

ReadOutcome readMenuFile(const std::string& path, const MenuModel& target, int16_t appendStartRow,
                         Color normalColor, ReadDiagnostics* diagnostics) {
    MenuReader reader(target, appendStartRow, normalColor, diagnostics);
    // The platform's exists test: a folder, or a name that leads nowhere, is no file.
    switch (files::kindOf(path)) {
        case files::Kind::missing:
        case files::Kind::folder:
        case files::Kind::linkLoop:
            return reader.finish();
        default:
            break;
    }
    const files::File file = files::openForReading(path);
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
