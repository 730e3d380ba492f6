#include "app/CommandLine.h"

#include "platform/Process.h"
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

std::string afterProgramName(std::string_view raw) {
    const auto blank = [&](size_t i) { return raw[i] == ' ' || raw[i] == '\t'; };
    size_t i = 0;
    if (!raw.empty() && raw.front() == '"') {
        const size_t close = raw.find('"', 1);
        i = close == std::string_view::npos ? raw.size() : close + 1;
    } else {
        while (i < raw.size() && !blank(i)) {
            ++i;
        }
    }
    while (i < raw.size() && blank(i)) {
        ++i;
    }
    return std::string(raw.substr(i));
}

std::string hostCommandLine(int argc, char** argv) {
    const std::string raw = process::rawCommandLine();
    if (!raw.empty()) {
        return afterProgramName(raw);
    }
    return joinArguments(process::arguments(argc, argv));
}

}  // namespace vkl::startup
