#include "app/Texts.h"

#include "platform/NodeKeys.h"

namespace vkl::texts {

namespace {

constexpr WindowTexts kEnglish{
    {"Nr", "Menu Title", "Bmp file", "C", "Command Parameter"},
    "Data Directory",
    "Image Directory",
    "BMP Size in X",
    "BMP Size in Y",
    "Main Menu Title",
    "About text",
    "Write here your own menu title !",
    "Write here your own ABOUT text !",
    "Expand",
    "Collapse",
    "Menus Only",
    "Quit",
    "Add Sub menu above",
    "Remove",
    "Add Sub menu below",
    "Add Sub menu above",
    "Remove with children",
    "Remove children only",
    "Add Image File",
};

constexpr WindowTexts kGerman{
    {"Nr", "Menu Titel", "Bild Datei", "A", "Aktions Parameter"},
    "Daten Verzeichnis",
    "Bilder Verzeichnis",
    "BMP Groesse in X",
    "BMP Groesse in Y",
    "Haupt-Menu Titel",
    "Info Text",
    "Hier eigenen Menu Titel eintragen !",
    "Hier eigenen Info Text eintragen !",
    "Expandieren",
    "Reduzieren",
    "Nur Menus",
    "Schliessen",
    "Neues Submenu darueber",
    "Loeschen",
    "Neues Submenu darunter",
    "Neues Submenu darueber",
    "Loeschen mit allem darunter",
    "Loeschen alles darunter",
    "Menu Bild selektieren",
};

}  // namespace

const WindowTexts& window(bool german) {
    return german ? kGerman : kEnglish;
}

std::string_view placeholder(bool german) {
    return german ? keys::kNewItemDe : keys::kNewItemEn;
}

std::string_view quitTitle(bool english) {
    return english ? "Confirm Quit" : "VKL Editor Verlassen ?";
}

std::string_view quitPrompt(bool english) {
    // Windows-1252: 0xC4 is the capital A umlaut, 0xF6 the small o umlaut.
    return english ? "Changes not saved! Do you really want to quit !"
                   : "\xC4nderungen nicht gespeichert ! - M\xF6"
                     "chten Sie das Program verlassen ?";
}

}  // namespace vkl::texts
