// Opening the 32,000-line menu in the real window, offscreen: the toolbar's open command with
// the dialog answered by a script, the grid and tree models filled, the views laid out and
// painted, and the event loop run until it has nothing left to do. Compared with the reader
// alone (BM_ReadMenuFile) on the same bytes in the same run.
#ifdef VKL_BENCH_GUI

#include <benchmark/benchmark.h>

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QTableView>
#include <QToolBar>
#include <QTreeView>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "MenuGen.h"
#include "app/Form1.h"
#include "gui/MainWindow.h"
#include "support/ScriptedHost.h"

namespace {

using namespace vkl;

// One application for the whole run, created by the first window benchmark and kept until the
// process ends (Qt wants no second one and no widgets outliving it).
void ensureApplication() {
    if (QApplication::instance() == nullptr) {
        static int argc = 1;
        static char name[] = "vkl_bench";
        static char* argv[] = {name, nullptr};
        new QApplication(argc, argv);
    }
}

// Runs the event loop until it has no work left: posted events, layouts, paints.
void drainEvents() {
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    QCoreApplication::sendPostedEvents();
    while (dispatcher->processEvents(QEventLoop::AllEvents)) {
        QCoreApplication::sendPostedEvents();
    }
}

struct WindowMenu {
    std::string folder = bench::benchPath("window");
    std::string path = folder + "/menu.vkl";
    WindowMenu() {
        std::filesystem::create_directories(folder);
        bench::writeMenu(path);
    }
    WindowMenu(const WindowMenu&) = delete;
    WindowMenu& operator=(const WindowMenu&) = delete;
    ~WindowMenu() {
        std::error_code ec;
        std::filesystem::remove_all(folder, ec);
    }
};

QAction* toolbarAction(gui::MainWindow& window, const char* key) {
    for (QAction* a : window.findChild<QToolBar*>(QStringLiteral("Toolbar1"))->actions()) {
        if (a->data().toString() == QLatin1String(key)) {
            return a;
        }
    }
    throw std::runtime_error("no toolbar button " + std::string(key));
}

void BM_OpenInWindow(benchmark::State& state) {
    ensureApplication();
    static const WindowMenu menu;
    test::ScriptedHost host;
    host.temp = menu.folder + "/";
    Form1 form(host, menu.folder, 1);
    gui::MainWindow window(form);
    window.load();
    window.resize(1400, 900);
    window.show();
    drainEvents();
    QAction* open = toolbarAction(window, "open");
    auto* table = window.findChild<QTableView*>(QStringLiteral("Table"));
    auto* tree = window.findChild<QTreeView*>(QStringLiteral("Treeview"));

    for (auto _ : state) {
        // As a user opens one menu after another: the second open asks whether to append, and
        // the answer No replaces the menu shown.
        host.openAnswers.push_back(test::ScriptedHost::pick(menu.path));
        if (form.Table.rows() > 1) {
            host.answers.push_back(Answer::No);
        }
        open->trigger();
        drainEvents();
    }

    if (window.ended() || host.endCount != 0 || !host.answers.empty() ||
        table->model()->rowCount() != 32000 || tree->model()->rowCount() != 1) {
        state.SkipWithError("the menu did not open cleanly in the window");
    }
    state.counters["rows"] = table->model()->rowCount();
}
BENCHMARK(BM_OpenInWindow)->Unit(benchmark::kMillisecond);

}  // namespace

#endif  // VKL_BENCH_GUI
