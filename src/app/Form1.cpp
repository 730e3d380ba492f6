#include "app/Form1.h"

namespace vkl {

Form1::Form1(Host& h, std::string install, int16_t code)
    : host(h), installDir(std::move(install)), languageCode(code) {}

void Form1::load() {}
void Form1::refreshTexts() {}
void Form1::setLanguage(int16_t code) { languageCode = code; }
void Form1::toolbarClick(const std::string&) {}
void Form1::quitClick() {}
void Form1::sizeFieldKeyPress(int&) {}
void Form1::sizeFieldLeave(ComboBox&) {}

}  // namespace vkl
