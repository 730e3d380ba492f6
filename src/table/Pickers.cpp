#include "table/Pickers.h"

#include <vector>

#include "platform/Environment.h"
#include "platform/Text.h"
#include "table/CellEdit.h"

namespace vkl::table {

namespace {

void pickInto(Grid& grid, Host& host, std::string_view filter, std::string_view ext, int col) {
    FileDialog dialog;
    dialog.filter = std::string(filter);
    dialog.filterIndex = 2;
    const ChosenFile chosen = host.openDialog(dialog);
    if (chosen.cancelled()) {
        return;
    }
    grid.setTextMatrix(grid.row(), col, withoutExtension(chosen.fileTitle, ext));
}

}  // namespace

bool isPackageLine(const Grid& grid, int row) {
    return text::upper(grid.textMatrix(row, kActionColumn)) == kPackageCode;
}

std::string withoutExtension(std::string title, std::string_view ext) {
    // Three spellings, each removed ignoring case: the first pass usually does all the work,
    // but a removal can join the pieces of a new occurrence, which a later pass then takes.
    const std::string lowerExt = text::lower(ext);
    const std::string upperExt = text::upper(ext);
    std::string capitalExt = lowerExt;
    if (capitalExt.size() > 1) {
        capitalExt[1] = text::upperChar(capitalExt[1]);
    }
    for (const std::string& spelling : {lowerExt, upperExt, capitalExt}) {
        title = text::ireplace(title, spelling, "");
    }
    return title;
}

void pickForCell(Grid& grid, Host& host) {
    const int row = grid.row();
    const int col = grid.col();
    if (col == 0 || row == 0) {
        return;
    }
    if (col == kBitmapColumn) {
        pickInto(grid, host, kBitmapFilter, ".bmp", kBitmapColumn);
    } else if (col == kParameterColumn && isPackageLine(grid, row)) {
        pickInto(grid, host, kPackageFilter, ".pkg", kParameterColumn);
    }
}

std::string checkPackagePath(const Grid& grid, Host& host, const std::string& dataDir) {
    const int row = grid.row();
    if (row == 0 || grid.col() != kParameterColumn || !isPackageLine(grid, row) ||
        grid.text().empty()) {
        return {};
    }
    const std::string path = text::ireplace(grid.text(), "datadir/", dataDir + "/");
    std::vector<std::string> parts = text::split(path, '/');
    const auto environment = lowerEnvironment(host);
    for (std::string& part : parts) {
        part = text::lower(part);
        for (const auto& [name, value] : environment) {
            if (part == name) {
                MessageBox box;
                box.prompt = name + "found !";
                host.msgBox(box);
                // The walk goes on with the replaced component.
                part = value;
            }
        }
    }
    return text::join(parts, "/");
}

void dropOnGrid(Grid& grid, Host& host, const std::string& sourceName, int targetRow,
                int holeType) {
    MessageBox notice;
    notice.prompt = "drag drop";
    notice.title = std::string();
    host.msgBox(notice);
    grid.setCol(kDropColumn);
    grid.setRow(targetRow);
    if (sourceName != kHoleTypeSource) {
        return;
    }
    grid.setCol(kDropColumn);
    if (holeType >= 0 && holeType < static_cast<int>(kHoleTypes.size())) {
        grid.setText(std::string(kHoleTypes[static_cast<size_t>(holeType)]));
    }
}

}  // namespace vkl::table
