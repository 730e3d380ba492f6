#pragma once

#include <string>
#include <vector>

// Plain models of the small controls of the main window. The window shows them; the logic
// reads and writes them.
namespace vkl {

struct TextBox {
    std::string text;
    bool visible = true;
    bool enabled = true;
    int selStart = 0;  // caret; values past the end put the caret at the end
    int selLength = 0;
    bool hasFocus = false;
};

struct ComboBox {
    std::vector<std::string> items;
    std::string text;
    bool visible = true;
    int widthLetters = 0;  // width as a run of the letter "n" (0: as designed)
};

struct Timer {
    bool enabled = false;
    int interval = 0;  // milliseconds
};

struct ToolbarButton {
    enum class Style { Normal, Separator, Placeholder };
    std::string key;
    std::string image;
    Style style = Style::Normal;
    std::string tooltip;
    std::string description;
    int widthTwips = 0;  // placeholders only
};

// The preview window: one picture box sized to the bitmap it shows.
struct PreviewState {
    bool created = false;
    bool shown = false;
    std::string picture;   // full path of the bitmap shown
    int pictureWidth = 0;  // pixels
    int pictureHeight = 0;
    // The window is the picture plus these frame allowances (twips): 850 in width for the
    // borders and the picture box's offset, 500 in height for the title bar and borders.
    static constexpr int kWidthMarginTwips = 850;
    static constexpr int kHeightMarginTwips = 500;
};

// Captions the language refresh writes, one per control or pop-up entry.
struct Captions {
    std::string askDatadir, askImagedir;
    std::string label1, label2, label3, label4;
    std::string expand, colapse, onlymenus, quit;
    // Pop-up entries; addsub keeps its designed caption.
    std::string addsub = "Add Sub menu";
    std::string addabove1 = "Add Sub menu Above";
    std::string remove1 = "Remove";
    std::string addabove2 = "Add Sub menu Above";
    std::string addbelow2 = "Add Sub menu Below";
    std::string remove2 = "Remove with Children";
    std::string removechilden = "Remove Children Only";
    std::string addimage = "Add Image File";
};

}  // namespace vkl
