#include "platform/Environment.h"

#include "platform/Text.h"

namespace vkl {

std::vector<std::pair<std::string, std::string>> lowerEnvironment(Host& host) {
    std::vector<std::pair<std::string, std::string>> entries;
    for (int i = 1;; ++i) {
        const std::string entry = host.environ(i);
        if (entry.empty()) {
            return entries;
        }
        const size_t eq = entry.find('=');
        entries.emplace_back(
            text::lower(entry.substr(0, eq)),
            eq == std::string::npos ? std::string() : text::lower(entry.substr(eq + 1)));
    }
}

}  // namespace vkl
