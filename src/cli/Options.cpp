#include "cli/Options.h"

namespace vkl::cli {

const char* const kUsage =
    "usage: vklcheck [--lang 1|2] [--json] [--resave OUT] FILE\n"
    "       vklcheck --help\n"
    "       vklcheck --version\n"
    "\n"
    "Reads the menu file FILE as the VKL Editor's open command does and tells what the editor\n"
    "makes of it: the lines it leaves out and why, then a summary.\n"
    "\n"
    "  --json        print what was read as one JSON object instead\n"
    "  --resave OUT  also save to OUT as the editor's save command would; the editor's\n"
    "                messages go to standard error\n"
    "  --lang 1|2    language of the editor's texts: 1 English (default), 2 German\n"
    "  --help        print this text\n"
    "  --version     print the program's version\n"
    "\n"
    "Exit status: 0 nothing would be lost, 1 lines are skipped or left out on save,\n"
    "2 run-time error or unreadable file, 64 usage error.\n";

ParsedOptions parseOptions(const std::vector<std::string>& args) {
    ParsedOptions parsed;
    Options& o = parsed.options;
    std::vector<std::string> files;
    bool optionsEnded = false;
    bool langSeen = false;
    bool resaveSeen = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (optionsEnded || a == "-" || a.empty() || a.front() != '-') {
            files.push_back(a);
            continue;
        }
        if (a == "--") {
            optionsEnded = true;
        } else if (a == "--help" || a == "-h") {
            o.help = true;
        } else if (a == "--version") {
            o.version = true;
        } else if (a == "--json") {
            o.json = true;
        } else if (a == "--lang" || a == "--resave") {
            const bool lang = a == "--lang";
            if (lang ? langSeen : resaveSeen) {
                parsed.error = a + " given twice";
                return parsed;
            }
            if (i + 1 >= args.size()) {
                parsed.error = a + " needs a value";
                return parsed;
            }
            const std::string& value = args[++i];
            if (lang) {
                langSeen = true;
                if (value != "1" && value != "2") {
                    parsed.error = "--lang takes 1 (English) or 2 (German), not '" + value + "'";
                    return parsed;
                }
                o.languageCode = value == "1" ? 1 : 2;
            } else {
                resaveSeen = true;
                if (value.empty()) {
                    parsed.error = "--resave needs a file name";
                    return parsed;
                }
                o.resave = value;
            }
        } else {
            parsed.error = "unknown option '" + a + "'";
            return parsed;
        }
    }
    if (o.help || o.version) {
        return parsed;
    }
    if (files.empty()) {
        parsed.error = "no menu file given";
    } else if (files.size() > 1) {
        parsed.error = "one menu file at a time, not " + std::to_string(files.size());
    } else {
        o.file = files.front();
    }
    return parsed;
}

}  // namespace vkl::cli
