#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vkl::cli {

struct Options {
    int16_t languageCode = 1;  // 1 English, 2 German
    bool json = false;
    bool help = false;
    bool version = false;
    std::string resave;  // empty: no save
    std::string file;
};

// The command line, or the reason it is not a valid one (error non-empty).
struct ParsedOptions {
    Options options;
    std::string error;
};

// vklcheck [--lang 1|2] [--json] [--resave OUT] FILE, or --help, or --version. "--" ends the
// options, so a file whose name starts with "-" can still be checked.
ParsedOptions parseOptions(const std::vector<std::string>& args);

inline constexpr int kExitClean = 0;
inline constexpr int kExitLoss = 1;
inline constexpr int kExitError = 2;
inline constexpr int kExitUsage = 64;

extern const char* const kUsage;

}  // namespace vkl::cli
