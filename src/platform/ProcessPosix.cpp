#include "platform/Process.h"

extern char** environ;

namespace vkl::process {

std::string rawCommandLine() {
    return {};
}

std::vector<std::string> arguments(int argc, char** argv) {
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
}

std::vector<std::string> environment() {
    std::vector<std::string> entries;
    for (char** e = ::environ; e != nullptr && *e != nullptr; ++e) {
        entries.emplace_back(*e);
    }
    return entries;
}

void binaryStdio() {}

}  // namespace vkl::process
