// The editor as Brindlemark starts it: "vkleditor <unused>|<install directory>|<language code>".
#include <QApplication>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/Form1.h"
#include "gui/MainWindow.h"
#include "gui/QtHost.h"
#include "platform/Files.h"
#include "platform/RuntimeError.h"

namespace {

const char* const kHelp =
    "usage: vkleditor \"<unused>|<install directory>|<language>\"\n"
    "       vkleditor --help\n"
    "       vkleditor --version\n"
    "\n"
    "Edits the menu files (.vkl) of the Brindlemark add-on. Brindlemark starts the editor with\n"
    "one argument of three \"|\"-separated fields: a field it does not use, its install\n"
    "directory (it replaces [installdir] in bitmap paths) and the language of the window,\n"
    "1 English or 2 German. Only one copy runs per user.\n";

void tell(vkl::Host& host, std::string prompt) {
    vkl::MessageBox box;
    box.prompt = std::move(prompt);
    host.msgBox(box);
}

}  // namespace

int main(int argc, char* argv[]) {
    // The command line as the host passed it, taken before Qt removes the options it knows.
    const std::string commandLine = vkl::startup::hostCommandLine(argc, argv);
    // A person asking, not the host (whose line holds "|"): answered with no window and no
    // single-instance lock, so it works beside a running copy and without a display.
    if (commandLine == "--version" || commandLine == "--help") {
        std::fputs(commandLine == "--help" ? kHelp : "vkleditor " VKL_VERSION "\n", stdout);
        return 0;
    }

    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));

    vkl::gui::QtHost host;
    // One copy per user: the lock lives in the user's own runtime folder.
    vkl::files::InstanceLock instance(vkl::files::userRuntimeFolder() + "vkleditor.lock");
    if (!instance.acquire()) {
        tell(host, vkl::startup::alreadyRunningMessage());
        return 1;
    }

    std::optional<vkl::startup::CommandLine> fields;
    try {
        fields = vkl::startup::parseCommandLine(commandLine);
    } catch (const vkl::RuntimeError& e) {
        tell(host, e.message());
        return 1;
    }
    if (!fields) {
        tell(host, std::string(vkl::startup::kWrongArguments));
        return 1;
    }

    vkl::Form1 form(host, fields->installDir, fields->languageCode);
    vkl::gui::MainWindow window(form);
    host.setWindow(&window);
    window.load();
    if (host.ended()) {
        return 0;
    }
    window.show();
    return app.exec();
}
