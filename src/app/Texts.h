#pragma once

#include <array>
#include <string_view>

// The interface texts of the main window in English and German. Each site keeps its own
// language test: captions are German only when the code is 2, message boxes English only when
// it is 1, so callers pass the outcome of their own test.
namespace vkl::texts {

// Everything the language refresh writes, in the order it writes it.
struct WindowTexts {
    std::array<std::string_view, 5> headers;  // row 0, columns 0 to 4
    std::string_view askDatadir;
    std::string_view askImagedir;
    std::string_view label1;     // bitmap size in X
    std::string_view label2;     // bitmap size in Y
    std::string_view label3;     // main menu title
    std::string_view label4;     // About text
    std::string_view menuTitle;  // the text put into Text2
    std::string_view aboutText;  // the text put into Text3
    std::string_view expand;
    std::string_view colapse;
    std::string_view onlymenus;
    std::string_view quit;
    std::string_view addabove1;
    std::string_view remove1;
    std::string_view addbelow2;
    std::string_view addabove2;
    std::string_view remove2;
    std::string_view removechilden;
    std::string_view addimage;
};

const WindowTexts& window(bool german);

// Title of a line or tree item that was just created.
std::string_view placeholder(bool german);

// The quit question. The prompt always speaks of unsaved changes: nothing records whether the
// menu was saved.
std::string_view quitTitle(bool english);
std::string_view quitPrompt(bool english);

// Toolbar tooltips; English in every language.
inline constexpr std::string_view kTipOpen = "Open File";
inline constexpr std::string_view kTipSave = "Save File";
inline constexpr std::string_view kTipLineAdd = "Add an empty line";
inline constexpr std::string_view kTipLineDel = "Delete already selected lines";
inline constexpr std::string_view kTipVklName = "Selected VKL name";
inline constexpr std::string_view kTipEnglish = "English";
inline constexpr std::string_view kTipGerman = "Deutsch";
// The description of the file-name placeholder, as it was designed.
inline constexpr std::string_view kVklNameDescription = "fdsfd";

}  // namespace vkl::texts
