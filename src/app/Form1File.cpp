#include "app/Form1.h"

namespace vkl {

void Form1::openFlow() {}
void Form1::saveFlow() {}
void Form1::askDatadirClick() {}
void Form1::askImagedirClick() {}
void Form1::readMenuFile(const std::string&) {}
void Form1::writeMenuFile(const std::string&) {}
void Form1::deriveFlatTree() {}

}  // namespace vkl
