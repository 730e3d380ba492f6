#include "app/CommandLine.h"

#include "platform/Text.h"

namespace vkl::startup {

std::string alreadyRunningMessage() {
    std::string message(kProgramName);
    message += kAlreadyRunningSuffix;
    return message;
}

std::optional<CommandLine> parseCommandLine(std::string_view raw) {
    std::string unquoted;
    unquoted.reserve(raw.size());
    for (char c : raw) {
        if (c != '"') {
            unquoted += c;
        }
    }
    const std::vector<std::string> fields = text::split(unquoted, '|');
    if (fields.size() != 3) {
        return std::nullopt;
    }
    CommandLine result;
    result.installDir = text::trim(fields[1]);
    result.languageCode = text::toInt16(text::trim(fields[2]));
    return result;
}

std::string joinArguments(const std::vector<std::string>& args) {
    return text::join(args, " ");
}

}  // namespace vkl::startup
