#include <gtest/gtest.h>

#include "app/CommandLine.h"
#include "platform/RuntimeError.h"

namespace vkl::startup {
namespace {

int errorOf(std::string_view raw) {
    try {
        (void)parseCommandLine(raw);
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(AppCommandLine, ThreeFieldsGiveInstallDirAndLanguage) {
    auto line = parseCommandLine("a|b|2");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "b");
    EXPECT_EQ(line->languageCode, 2);

    line = parseCommandLine("\"a\"|\"b\"|\"1\"");  // quotes go before the split
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "b");
    EXPECT_EQ(line->languageCode, 1);

    line = parseCommandLine(" a | C:\\Brindle mark | 2 ");  // blanks trimmed, inner ones kept
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "C:\\Brindle mark");
    EXPECT_EQ(line->languageCode, 2);

    line = parseCommandLine("x|\"C:\\Program Files\"\\sub|3");  // a quote mid-field goes too
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "C:\\Program Files\\sub");
    EXPECT_EQ(line->languageCode, 3);

    line = parseCommandLine("a|\tdir |1");  // only blanks are trimmed, not tabs
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "\tdir");
}

TEST(AppCommandLine, AnyOtherFieldCountIsRefusedBeforeConverting) {
    EXPECT_FALSE(parseCommandLine("a|b"));
    EXPECT_FALSE(parseCommandLine("a|b|1|x"));
    EXPECT_FALSE(parseCommandLine(""));
    EXPECT_FALSE(parseCommandLine("\"\""));
    EXPECT_FALSE(parseCommandLine("a|b|x|y"));  // the bad field 3 is never converted
    EXPECT_FALSE(parseCommandLine("a\"|\"b"));  // a "|" between quotes still splits
}

TEST(AppCommandLine, BadLanguageFieldRaisesUncaughtErrors) {
    EXPECT_EQ(errorOf("a|b|x"), 13);
    EXPECT_EQ(errorOf("a|b|"), 13);
    EXPECT_EQ(errorOf("||"), 13);
    EXPECT_EQ(errorOf("a|b|70000"), 6);
    EXPECT_EQ(errorOf("a|b|-32769"), 6);
    EXPECT_EQ(parseCommandLine("a|b|-32768")->languageCode, -32768);
}

TEST(AppCommandLine, StartupMessagesNameTheProgram) {
    EXPECT_EQ(alreadyRunningMessage(),
              "VKL Editor is already running. Please use existing instance or close it first !");
    EXPECT_EQ(joinArguments({"a|b", "c|2"}), "a|b c|2");
    EXPECT_EQ(parseCommandLine(joinArguments({"x|inst", "dir|1"}))->installDir, "inst dir");
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
        {"", ""},
    };
    for (const auto& [raw, rest] : cases) {
        EXPECT_EQ(afterProgramName(raw), rest) << raw;
    }
    const auto line = parseCommandLine(afterProgramName("vkleditor.exe  x|  C:\\My  Menus |1"));
    ASSERT_TRUE(line);
    EXPECT_EQ(line->installDir, "C:\\My  Menus");
    EXPECT_EQ(parseCommandLine(afterProgramName(cases[1].first))->installDir,
              "C:\\Program Files\\BM");
}

}  // namespace
}  // namespace vkl::startup
