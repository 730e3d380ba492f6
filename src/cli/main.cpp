// vklcheck: reads a menu file with the editor's own code and tells what the editor makes of it.

#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/Form1.h"
#include "cli/Check.h"
#include "cli/ConsoleHost.h"
#include "cli/Options.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/RuntimeError.h"

namespace vkl::cli {
namespace {

std::string errorLine(const RuntimeError& e) {
    return "Run-time error '" + std::to_string(e.number()) + "': " + e.description();
}

// Refuses what the reader would take for a missing file and read as nothing, and what it
// refuses to read.
bool readable(const std::string& file) {
    static const std::map<files::Kind, const char*> kProblems{
        {files::Kind::missing, "no such file"},
        {files::Kind::folder, "is a folder, not a menu file"},
        {files::Kind::linkLoop, "is a loop of symbolic links, not a menu file"},
        {files::Kind::denied, "cannot be reached (permission denied)"},
        {files::Kind::other, "is not a regular file (a FIFO, device or socket)"}};
    const auto problem = kProblems.find(files::kindOf(file));
    if (problem == kProblems.end()) {
        return true;  // a regular file
    }
    std::fprintf(stderr, "vklcheck: %s: %s\n", file.c_str(), problem->second);
    return false;
}

// Opens a saved file as the editor's open command would; the error it ends on, if any.
std::optional<RuntimeError> reopenError(const std::string& file) {
    ConsoleHost host(stderr);  // reading shows no message
    Form1 form(host, {}, 1);
    form.load();
    form.appendStartRow = 1;
    try {
        form.readMenuFile(file);
    } catch (const RuntimeError& e) {
        return e;
    }
    return std::nullopt;
}

int run(const Options& o) {
    if (!readable(o.file)) {
        return kExitError;
    }
    ConsoleHost host(stderr);
    Form1 form(host, {}, o.languageCode);
    form.load();

    // The open command on an empty table: overwrite from row 1, serials from the start.
    form.appendStartRow = 1;
    form.tree.nodeSerial = 0;
    ReadLog log;
    try {
        form.readMenuFile(o.file, &log);
    } catch (const RuntimeError& e) {
        host.printError(errorLine(e));
        if (!log.fatal) {
            // The file could not be opened or read at all: there is nothing to report.
            std::fprintf(stderr, "vklcheck: %s: cannot be read\n", o.file.c_str());
            return kExitError;
        }
    }

    const std::vector<Finding> found = findings(form, log);
    const std::string report =
        o.json ? jsonReport(form, log) : textReport(o.file, form, log, found);
    std::fwrite(report.data(), 1, report.size(), stdout);
    if (o.json) {
        // Findings the JSON has no key for go beside it.
        for (const Finding& f : found) {
            if (f.line == 0 && !f.text) {
                std::fprintf(stderr, "vklcheck: %s: %s\n", o.file.c_str(), f.reason.c_str());
            }
        }
    }
    std::fflush(stdout);

    if (log.fatal) {
        // The editor ends at this error; there is nothing left to save.
        return kExitError;
    }
    bool lost = !found.empty();
    if (!o.resave.empty()) {
        host.saveTarget = o.resave;
        const int messagesBefore = host.messageCount;
        try {
            form.toolbarClick("save");
        } catch (const RuntimeError& e) {
            host.printError(errorLine(e));
            return kExitError;
        }
        // The check before saving refused (no dialog), or the writer reported empty submenus
        // or rows it left out.
        lost = lost || host.saveDialogs == 0 || !form.saveRecord.saved ||
               host.messageCount != messagesBefore;
        if (form.saveRecord.saved) {
            if (const std::optional<RuntimeError> e = reopenError(o.resave)) {
                std::fprintf(o.json ? stderr : stdout,
                             "%s: the saved file cannot be opened again: run-time error %d (%s)\n",
                             o.resave.c_str(), e->number(), e->description().c_str());
                lost = true;
            }
        }
    }
    return lost ? kExitLoss : kExitClean;
}

}  // namespace
}  // namespace vkl::cli

int main(int argc, char** argv) {
    using namespace vkl::cli;
    vkl::process::binaryStdio();
    const ParsedOptions parsed = parseOptions(vkl::process::arguments(argc, argv));
    if (!parsed.error.empty()) {
        std::fprintf(stderr, "vklcheck: %s\n%s", parsed.error.c_str(), kUsage);
        return kExitUsage;
    }
    if (parsed.options.help) {
        std::fputs(kUsage, stdout);
        return kExitClean;
    }
    if (parsed.options.version) {
        std::fputs("vklcheck " VKL_VERSION "\n", stdout);
        return kExitClean;
    }
    try {
        return run(parsed.options);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "vklcheck: %s\n", e.what());
        return kExitError;
    }
}
