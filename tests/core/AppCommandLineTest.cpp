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

}  // namespace
}  // namespace vkl::startup
