#include "MenuGen.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

#include "menufile/Format.h"

namespace vkl::bench {

namespace {

// A small linear congruential generator: the same sequence on every platform and library.
struct Lcg {
    uint32_t state;
    uint32_t next() {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    }
};

constexpr const char* kWords[] = {"Drill", "Hole", "Thread", "Slot",    "Pocket", "Chamfer",
                                  "Bore",  "Ream", "Tap",    "Counter", "Sink",   "Groove",
                                  "Face",  "Mill", "Turn",   "Cut"};
constexpr const char* kActions[] = {"F", "D", "P", "LOS", "LWM", "LMM"};

void line(std::string& out, int depth, const std::string& text) {
    out.append(static_cast<size_t>(depth - 1), ' ');
    out += text;
    out += "\r\n";
}

}  // namespace

std::string generateMenu(const MenuShape& shape) {
    Lcg random{shape.seed};
    std::string out;
    out.reserve(static_cast<size_t>(shape.items) * 64 + 4096);
    line(out, 1, "# Created by VKL Editor");
    line(out, 1, "# generated menu for the benchmarks");
    line(out, 1, "#");
    // The header as the writer lays it out.
    line(out, 1, "1124165" + std::string(format::kLibraryNameSuffix));
    line(out, 1, "Generated tools" + std::string(format::kAboutSuffix));
    for (std::string_view fixed :
         {format::kPoweredBy, format::kWebAddress, format::kRightsReserved}) {
        line(out, 1, std::string(fixed));
    }
    line(out, 1, "Generated menu");
    for (std::string_view size : {"16", "16"}) {
        line(out, 1, std::string(size));
    }
    for (std::string_view fixed : format::kFixedTail) {
        line(out, 1, std::string(fixed));
    }
    line(out, 1, "SHORTCUT|datadir|C:\\data");

    const int groups = shape.submenus > 0 ? shape.submenus : 1;
    const int nesting = shape.nesting > 0 ? shape.nesting : 1;
    int item = 0;
    for (int g = 0; g < groups; ++g) {
        const int depth = shape.submenus > 0 ? 1 + g % nesting : 0;
        if (shape.submenus > 0) {
            const std::string name =
                std::string(kWords[random.next() % 16]) + " group " + std::to_string(g + 1);
            const std::string bitmap =
                random.next() % 2 == 0 ? "menus/group" + std::to_string(g + 1) + ".bmp" : "";
            line(out, depth, name + "|" + bitmap + "|S|" + name);
        }
        const int share = shape.items / groups + (g < shape.items % groups ? 1 : 0);
        for (int i = 0; i < share; ++i, ++item) {
            const char* action = kActions[random.next() % 6];
            const std::string n = std::to_string(item + 1);
            std::string title = std::string(kWords[random.next() % 16]) + " " +
                                kWords[random.next() % 16] + " " + n;
            std::string parameter =
                std::string(action) == "LOS"
                    ? "C:\\pkgs\\group" + std::to_string(g + 1) + "\\p" + n + ".pkg"
                    : "call_" + n;
            line(out, depth + 1, title + "|bitmaps/i" + n + ".bmp|" + action + "|" + parameter);
        }
    }
    return out;
}

void writeMenu(const std::string& path, const MenuShape& shape) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << generateMenu(shape);
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::string benchPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() /
            ("vkl-bench-" + std::to_string(::getpid()) + "-" + name))
        .string();
}

}  // namespace vkl::bench
