#include <gtest/gtest.h>

#include "app/CommandLine.h"
#include "platform/RuntimeError.h"

namespace vkl::startup {
namespace {

// The line, then what it gives: install folder and language, "refused" for no start-up line,
// or "error N" for the run-time error it raises.
std::string parsed(std::string_view raw) {
    try {
        const auto line = parseCommandLine(raw);
        return line ? line->installDir + "/" + std::to_string(line->languageCode) : "refused";
    } catch (const RuntimeError& e) {
        return "error " + std::to_string(e.number());
    }
}

TEST(AppCommandLine, ThreeFieldsGiveInstallDirAndLanguageAndNothingElseDoes) {
    const std::pair<std::string_view, std::string> cases[] = {
        {"a|b|2", "b/2"},
        {"\"a\"|\"b\"|\"1\"", "b/1"},                          // quotes go before the split
        {" a | C:\\Brindle mark | 2 ", "C:\\Brindle mark/2"},  // blanks trimmed, inner kept
        {"x|\"C:\\Program Files\"\\sub|3", "C:\\Program Files\\sub/3"},  // a quote mid-field too
        {"a|\tdir |1", "\tdir/1"},  // only blanks are trimmed, not tabs
        {"a|b|-32768", "b/-32768"},
        {"a|b", "refused"},
        {"a|b|1|x", "refused"},
        {"", "refused"},
        {"\"\"", "refused"},
        {"a|b|x|y", "refused"},  // the bad field 3 is never converted
        {"a\"|\"b", "refused"},  // a "|" between quotes still splits
        {"a|b|x", "error 13"},
        {"a|b|", "error 13"},
        {"||", "error 13"},
        {"a|b|70000", "error 6"},
        {"a|b|-32769", "error 6"}};
    for (const auto& [raw, result] : cases) {
        EXPECT_EQ(parsed(raw), result) << raw;
    }
}

TEST(AppCommandLine, StartupMessagesNameTheProgram) {
    EXPECT_EQ(alreadyRunningMessage(),
              "VKL Editor is already running. Please use existing instance or close it first !");
    EXPECT_EQ(joinArguments({"a|b", "c|2"}), "a|b c|2");
    EXPECT_EQ(parsed(joinArguments({"x|inst", "dir|1"})), "inst dir/1");
}

// How Windows hands the host's line over: the program name goes, the rest stays verbatim, so
// quotes still go before the split and a run of blanks inside a field survives (joining
// separate arguments would leave one blank).
TEST(AppCommandLine, WindowsLineLosesOnlyTheProgramName) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {R"("C:\Program Files\Brindlemark\vkleditor.exe" x|C:\BM|2)", R"(x|C:\BM|2)"},
        {R"(vkleditor.exe   "x|C:\Program Files\BM|1" )", R"("x|C:\Program Files\BM|1" )"},
        {"vkleditor.exe\tx|C:\\My  Menus|1", "x|C:\\My  Menus|1"},
        {R"("C:\a b\vkleditor.exe"x|y|1)", "x|y|1"},
        {R"("C:\unclosed quote a|b|1)", ""},
        {"vkleditor.exe", ""},
        {"", ""}};
    for (const auto& [raw, rest] : cases) {
        EXPECT_EQ(afterProgramName(raw), rest) << raw;
    }
    EXPECT_EQ(parsed(afterProgramName("vkleditor.exe  x|  C:\\My  Menus |1")), "C:\\My  Menus/1");
    EXPECT_EQ(parsed(afterProgramName(cases[1].first)), "C:\\Program Files\\BM/1");
}

}  // namespace
}  // namespace vkl::startup
