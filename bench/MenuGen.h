#pragma once

#include <cstdint>
#include <string>

// Generated menu files for the benchmarks: deterministic, so every run measures the same bytes.
namespace vkl::bench {

struct MenuShape {
    int items = 32000;   // item lines (table rows)
    int submenus = 320;  // submenu lines; the items are shared out among them in order
    int nesting = 3;     // submenu i sits at depth 1 + i % nesting, inside the one before it
    uint32_t seed = 1;   // varies titles, actions and which submenus carry a bitmap
};

// The bytes of a menu file as the writer lays it out (CR LF lines): comment block, twelve header
// lines, one SHORTCUT pair, then each submenu line followed by its items one level deeper.
std::string generateMenu(const MenuShape& shape = {});

// Writes the generated menu to path, replacing what is there.
void writeMenu(const std::string& path, const MenuShape& shape = {});

// A path for a benchmark file in the temporary folder, distinct per process.
std::string benchPath(const std::string& name);

}  // namespace vkl::bench
