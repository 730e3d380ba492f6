#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Grid.h"
#include "platform/Host.h"

// Cells filled by choosing a file (the bitmap of a line, the package of an "LOS" line), the
// check of a package path against the environment, and the drop of a hole type on the grid.
namespace vkl::table {

inline constexpr std::string_view kBitmapFilter = "All Files (*.*)|*.*|BMP Files (*.bmp)|*.bmp";
inline constexpr std::string_view kPackageFilter = "All Files (*.*)|*.*|Pkg Files (*.pkg)|*.pkg";
inline constexpr std::string_view kPackageCode = "LOS";
inline constexpr std::string_view kHoleTypeSource = "Picture4";
inline constexpr int kDropColumn = 6;

// The identifiers a dropped hole type writes, by hole-type index.
inline constexpr std::array<std::string_view, 13> kHoleTypes{{
    "MACH_ADV_LIBRARY_COUNTERSUNK_THROUGHHOLE",
    "MACH_ADV_LIBRARY_COUNTERSUNK_PARTIALLY_TOLERANCED_THROUGHHOLE",
    "MACH_ADV_LIBRARY_COUNTERBORED_THROUGHHOLE",
    "MACH_ADV_LIBRARY_COUNTERBORED_THROUGHHOLE_WITH_CHAMFER",
    "MACH_ADV_LIBRARY_BLINDHOLE",
    "MACH_ADV_LIBRARY_COUNTERSUNK_BLINDHOLE",
    "MACH_ADV_LIBRARY_COUNTERSUNK_PARTIALLY_TOLERANCED_BLINDHOLE",
    "MACH_ADV_LIBRARY_COUNTERSUNK_PARTIALLY_TOLERANCED_FLAT_BLINDHOLE",
    "MACH_ADV_LIBRARY_COUNTERSUNK_FLAT_BLINDHOLE",
    "MACH_ADV_LIBRARY_FLAT_BLINDHOLE",
    "MACH_ADV_LIBRARY_PARTIALLY_THREADED_THROUGHHOLE",
    "MACH_ADV_LIBRARY_THREADED_THROUGHHOLE",
    "MACH_ADV_LIBRARY_PARTIALLY_THREADED_BLINDHOLE",
}};

// True when the line's action code, upper-cased, is "LOS" (its parameter names a package).
bool isPackageLine(const Grid& grid, int row);

// A file title without its extension: each of the three spellings is removed, ignoring case,
// everywhere in the name, one pass after the other.
std::string withoutExtension(std::string title, std::string_view ext);

// Double action on the current cell: the bitmap column opens the bitmap dialog, the parameter
// column of a package line the package dialog; the chosen name without folder and extension
// goes into the cell. The header row, the number column, other cells and a cancelled dialog
// change nothing.
void pickForCell(Grid& grid, Host& host);

// Click on the parameter of a package line: "datadir/" (any case) stands for the data
// directory; every path component that names an environment variable is reported in a message
// box and replaced by the variable's value. Returns the path so resolved; the table is not
// changed. Other cells return an empty text and show nothing.
std::string checkPackagePath(const Grid& grid, Host& host, const std::string& dataDir);

// A control dropped on the grid: the "drag drop" notice, then the target row's column 6 becomes
// current; a hole type dropped from its picture writes the identifier of holeType (0..12).
void dropOnGrid(Grid& grid, Host& host, const std::string& sourceName, int targetRow, int holeType);

}  // namespace vkl::table
