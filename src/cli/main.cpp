// vklcheck: reads a menu file with the editor's own code and tells what the editor makes of it.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "app/Form1.h"
#include "cli/Check.h"
#include "cli/ConsoleHost.h"
#include "cli/Options.h"
#include "platform/Process.h"
#include "platform/RuntimeError.h"

namespace vkl::cli {
namespace {

std::string errorLine(const RuntimeError& e) {
    return "Run-time error '" + std::to_string(e.number()) + "': " + e.description();
}

// Refuses what the reader would take for a missing file and read as nothing.
bool readable(const std::string& file) {
    std::error_code ec;
    const auto status = std::filesystem::status(file, ec);
    if (ec || !std::filesystem::exists(status)) {
        std::fprintf(stderr, "vklcheck: %s: no such file\n", file.c_str());
        return false;
    }
    if (std::filesystem::is_directory(status)) {
        std::fprintf(stderr, "vklcheck: %s: is a folder, not a menu file\n", file.c_str());
        return false;
    }
    return true;
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
        lost = lost || host.saveDialogs == 0 || !form.saved || host.messageCount != messagesBefore;
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
