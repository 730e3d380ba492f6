#include "app/Form1.h"

namespace vkl {

void Form1::treeviewNodeClick(const std::string&) {}
void Form1::treeviewMouseDown(int, int, double, double) {}
void Form1::treeviewAfterLabelEdit(const std::string&) {}
void Form1::treeviewStartDrag() {}
int Form1::treeviewDragOver(double, double) { return 0; }
void Form1::treeviewDragDrop(const std::string&, double, double) {}
void Form1::timer1Tick() {}
void Form1::formDragOver(const std::string&) {}
void Form1::menuClick(const std::string&) {}
void Form1::expandClick() {}
void Form1::colapseClick() {}
void Form1::onlymenusClick() {}
void Form1::showRowBitmap(int) {}

}  // namespace vkl
