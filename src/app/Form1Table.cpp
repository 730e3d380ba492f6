#include "app/Form1.h"

namespace vkl {

void Form1::addEmptyLine() {}
void Form1::deleteMarkedLines() {}
void Form1::removeLineOfNode(const std::string&) {}
void Form1::tableKeyPress(int&) {}
void Form1::text1KeyPress(int&) {}
void Form1::text1Change(const std::string&) {}
void Form1::text1Click() {}
void Form1::commitText() {}
void Form1::combo1Click(const std::string&) {}
void Form1::tableMouseDown(int) {}
void Form1::tableClick() {}
void Form1::tableDblClick() {}
void Form1::tableDragDrop(const std::string&, int) {}

}  // namespace vkl
