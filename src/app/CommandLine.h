#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The command line Brindlemark starts the editor with, and the messages start-up shows.
namespace vkl::startup {

// The program's name: the start of the already-running message and the default title of
// message boxes.
inline constexpr std::string_view kProgramName = "VKL Editor";
// Follows the program name in the message shown when a copy is already running.
inline constexpr std::string_view kAlreadyRunningSuffix =
    " is already running. Please use existing instance or close it first !";
inline constexpr std::string_view kWrongArguments =
    "Wrong nr of arguments - please run this program only from Brindlemark";

// The full already-running message.
std::string alreadyRunningMessage();

// The two fields of the command line the editor keeps (the first one is accepted and unused).
struct CommandLine {
    std::string installDir;
    int16_t languageCode = 0;
};

// Splits the raw command line: every double quote is removed first, then the text is split at
// each "|". Anything but exactly three fields (an empty line is one field) gives no result: the
// caller shows kWrongArguments and ends. Field 2 is trimmed into the install directory; field 3
// is trimmed and converted to a 16-bit integer, so a non-numeric field raises run-time error 13
// and one out of range error 6, neither caught here.
std::optional<CommandLine> parseCommandLine(std::string_view raw);

// The command line as the host passed it, for platforms that hand over separate arguments
// (the program name excluded): the arguments joined with single blanks.
std::string joinArguments(const std::vector<std::string>& args);

// What follows the program name in a raw Windows command line, by the rules the system
// splits it with: a name that starts with a double quote runs to the next one, any other to
// the first blank or tab; the blanks and tabs after it go too. The rest is kept as it stands,
// quotes and runs of blanks included.
std::string afterProgramName(std::string_view raw);

// The command line of this process as the host passed it, the program name excluded: on
// Windows the raw text the system keeps, elsewhere the arguments joined (joinArguments).
std::string hostCommandLine(int argc, char** argv);

}  // namespace vkl::startup
