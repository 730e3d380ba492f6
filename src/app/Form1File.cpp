#include "app/Form1.h"
#include "menufile/Format.h"
#include "menufile/Reader.h"
#include "menufile/Writer.h"
#include "platform/Files.h"
#include "platform/Int16.h"
#include "platform/RuntimeError.h"
#include "tree/Derivation.h"

namespace vkl {

namespace {

constexpr std::string_view kLastFolderFile = "ZOVDEF2.txt";
constexpr std::string_view kFolderTitle = "Please select a folder";

// The header controls as the reader and the writer see them.
menufile::HeaderFields headerOf(const Form1& f) {
    return {f.Text2.text,  f.Text3.text,   f.Combo2.text,
            f.Combo3.text, f.Datadir.text, f.Imagedir.text};
}

// The first item of a file as the runtime's delimited read gives it: leading blanks skipped;
// a double quote starts a text that runs to the next double quote; otherwise the item ends at
// a comma or at the end of the line, trailing blanks dropped.
std::string firstDelimitedItem(const std::string& path) {
    files::File file;
    try {
        file = files::openForReading(path);
    } catch (const RuntimeError&) {
        return {};  // no file there (yet), or nothing that is one: no folder to start in
    }
    menufile::LineReader in(file.get());
    if (in.atEnd()) {
        return {};
    }
    std::string_view line = in.readLine();
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
        line.remove_prefix(1);
    }
    if (!line.empty() && line.front() == '"') {
        line.remove_prefix(1);
        return std::string(line.substr(0, line.find('"')));
    }
    line = line.substr(0, line.find(','));
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) {
        line.remove_suffix(1);
    }
    return std::string(line);
}

std::optional<std::string> lastFolderFile(Host& host) {
    const std::optional<std::string> temp = host.tempPath();
    if (!temp || temp->empty() || temp->size() > 511) {
        return std::nullopt;
    }
    std::string path = *temp;
    if (path.back() != '/' && path.back() != '\\') {
        path += '/';
    }
    return path + std::string(kLastFolderFile);
}

// Fills a disabled folder box through the folder browser; a cancelled browser keeps the text.
void chooseFolder(Host& host, TextBox& box) {
    const std::string before = box.text;
    box.enabled = true;
    std::string chosen = host.browseForFolder(std::string(kFolderTitle));
    chosen = chosen.substr(0, chosen.find('\0'));
    box.text = chosen.empty() ? before : chosen;
    box.enabled = false;
}

}  // namespace

void Form1::openFlow() {
    const std::optional<std::string> remembered = lastFolderFile(host);
    FileDialog dialog;
    if (remembered && files::kindOf(*remembered) != files::Kind::missing) {
        dialog.initialDir = firstDelimitedItem(*remembered);
    }
    dialog.filter = format::kMenuFileFilter;
    dialog.filterIndex = 2;
    const ChosenFile chosen = host.openDialog(dialog);
    if (chosen.cancelled()) {
        return;
    }
    decfilename = chosen.fileName;

    appendStartRow = 1;
    for (int r = Table.rows() - 1; r >= 1 && appendStartRow == 1; --r) {
        for (int c = 1; c < Table.cols(); ++c) {
            if (!Table.textView(r, c).empty()) {
                appendStartRow = checked16(r);
                break;
            }
        }
    }
    if (appendStartRow != 1) {
        const bool english = messagesInEnglish();
        MessageBox ask;
        ask.prompt =
            english ? "Table has already data inside ! \rDo you want to append to the end !"
                    : "Tabelle beinhaltet Daten !\rMoechten Sie neue Daten hinten einfuegen ? ";
        ask.title = english ? "Overwrite or append ?" : "Daten einfuegen ?";
        ask.buttons = Buttons::YesNo;
        ask.questionIcon = true;
        ask.defaultNo = true;
        if (host.msgBox(ask) != Answer::Yes) {
            appendStartRow = 1;
            tree.nodeSerial = 0;
        }
    }

    if (remembered) {
        const std::string& name = chosen.fileName;
        const size_t titleLength = std::min(chosen.fileTitle.size(), name.size());
        menufile::overwriteLine(*remembered,
                                std::string_view(name).substr(0, name.size() - titleLength));
    }
    readMenuFile(chosen.fileName);
}

void Form1::saveFlow() {
    if (!menufile::checkBeforeSaving(Table, host, languageCode)) {
        return;
    }
    deriveFlatTree();
    FileDialog dialog;
    dialog.filter = format::kMenuFileFilter;
    dialog.filterIndex = 2;
    dialog.overwritePrompt = true;
    const ChosenFile chosen = host.saveDialog(dialog);
    if (chosen.cancelled()) {
        return;
    }
    decfilename = chosen.fileName;
    writeMenuFile(chosen.fileName);
}

void Form1::askDatadirClick() {
    chooseFolder(host, Datadir);
}

void Form1::askImagedirClick() {
    chooseFolder(host, Imagedir);
}

void Form1::readMenuFile(const std::string& path, menufile::ReadDiagnostics* diagnostics) {
    menufile::HeaderFields header = headerOf(*this);
    const menufile::MenuModel model{Table, Treeview, tree, shortcuts, header};
    // Copies the fields back also when a run-time error ends the read half way.
    struct CopyBack {
        Form1& f;
        menufile::HeaderFields& h;
        ~CopyBack() {
            f.Text2.text = h.text2;
            f.Text3.text = h.text3;
            f.Combo2.text = h.combo2;
            f.Combo3.text = h.combo3;
            f.Datadir.text = h.datadir;
            f.Imagedir.text = h.imagedir;
        }
    } copyBack{*this, header};
    const menufile::ReadOutcome outcome =
        menufile::readMenuFile(path, model, appendStartRow, normalColor, diagnostics);
    // The directory boxes are enabled only to be filled, and stay disabled.
    if (outcome.datadirSet) {
        Datadir.enabled = false;
    }
    if (outcome.imagedirSet) {
        Imagedir.enabled = false;
    }
}

void Form1::writeMenuFile(const std::string& path) {
    menufile::HeaderFields header = headerOf(*this);
    const menufile::MenuModel model{Table, Treeview, tree, shortcuts, header};
    menufile::writeMenuFile(path, model, languageCode, host, saveRecord);
}

void Form1::deriveFlatTree() {
    tree::deriveFlat(Table, Treeview, tree, languageCode);
}

}  // namespace vkl
