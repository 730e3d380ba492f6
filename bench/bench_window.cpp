// Commands on the 32,000-line menu in the real window, offscreen: opening it through the
// toolbar with the dialog answered by a script, removing from the tree's pop-up menus and
// switching the language, each with the views laid out and painted and the event loop run until
// it has nothing left to do. Compared with the reader alone (BM_ReadMenuFile) on the same bytes
// in the same run.
#ifdef VKL_BENCH_GUI

#include <benchmark/benchmark.h>

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QTableView>
#include <QToolBar>
#include <QTreeView>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "MenuGen.h"
#include "app/Form1.h"
#include "gui/MainWindow.h"
#include "gui/TreeModel.h"
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

// The generated menu, written once for all window benchmarks; the first call also makes the
// application.
const WindowMenu& windowMenu() {
    ensureApplication();
    static const WindowMenu menu;
    return menu;
}

QAction* toolbarAction(gui::MainWindow& window, const char* key) {
    for (QAction* a : window.findChild<QToolBar*>(QStringLiteral("Toolbar1"))->actions()) {
        if (a->data().toString() == QLatin1String(key)) {
            return a;
        }
    }
    throw std::runtime_error("no toolbar button " + std::string(key));
}

void BM_OpenInWindow(benchmark::State& state) {
    const WindowMenu& menu = windowMenu();
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
BENCHMARK(BM_OpenInWindow)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

// A window with the menu open, as a user has it after opening it.
struct OpenWindow {
    const WindowMenu& menu;
    test::ScriptedHost host;
    Form1 form;
    gui::MainWindow window;
    QAction* open;
    QTreeView* tree;

    OpenWindow() : menu(windowMenu()), form(host, menu.folder, 1), window(form) {
        host.temp = menu.folder + "/";
        window.load();
        window.resize(1400, 900);
        window.show();
        drainEvents();
        open = toolbarAction(window, "open");
        tree = window.findChild<QTreeView*>(QStringLiteral("Treeview"));
        reopen();
    }

    void reopen() {
        host.openAnswers.push_back(test::ScriptedHost::pick(menu.path));
        if (form.Table.rows() > 1) {
            host.answers.push_back(Answer::No);
        }
        open->trigger();
        drainEvents();
    }

    // Right-clicks a node, picks an entry of its pop-up, and lets the window finish. The node
    // is scrolled into sight first, untimed: a user scrolls to it before the command.
    void popupCommand(benchmark::State& state, const std::string& key, const char* entry) {
        auto* model = static_cast<gui::TreeModel*>(tree->model());
        const QModelIndex at = model->indexOf(form.Treeview.find(key));
        state.PauseTiming();
        tree->scrollTo(at);
        drainEvents();
        state.ResumeTiming();
        const QPointF point = tree->visualRect(at).center();
        host.popupAnswers.push_back(entry);
        QMouseEvent press(QEvent::MouseButtonPress, point, tree->viewport()->mapToGlobal(point),
                          Qt::RightButton, Qt::RightButton, Qt::NoModifier);
        QCoreApplication::sendEvent(tree->viewport(), &press);
        QMouseEvent release(QEvent::MouseButtonRelease, point, tree->viewport()->mapToGlobal(point),
                            Qt::RightButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(tree->viewport(), &release);
        drainEvents();
    }

    bool clean() const {
        return !window.ended() && host.endCount == 0 && host.answers.empty() &&
               host.popupAnswers.empty();
    }
    void expectClean(benchmark::State& state) const {
        if (!clean()) {
            state.SkipWithError("the command did not run cleanly in the window");
        }
    }
};

// The pop-up's Remove on an item near the top: one line goes, every line below is renumbered.
void BM_WindowRemoveItem(benchmark::State& state) {
    OpenWindow w;
    int rows = w.form.Table.rows();
    for (auto _ : state) {
        w.popupCommand(state, "Child2", "remove1");
        if (w.form.Table.rows() != --rows) {
            state.SkipWithError("the item's line was not removed");
            break;
        }
    }
    w.expectClean(state);
}
BENCHMARK(BM_WindowRemoveItem)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

// Remove with Children on submenus of 100 items near the top (every third submenu of the
// generated menu holds items only), one after the other as a user clears out a menu; the menu
// is opened again (untimed) after every ten, so that it keeps 31,000 lines or more.
void BM_WindowRemoveFolder(benchmark::State& state) {
    OpenWindow w;
    int removed = 0;
    for (auto _ : state) {
        if (removed == 10) {
            state.PauseTiming();
            w.reopen();
            removed = 0;
            state.ResumeTiming();
        }
        const std::string key = "Menu" + std::to_string(3 * (removed + 1));
        const int rows = w.form.Table.rows();
        w.popupCommand(state, key, "remove2");
        ++removed;
        if (w.form.Table.rows() != rows - 100 || !w.form.Treeview.find(key).isNull()) {
            state.SkipWithError("the submenu and its lines were not removed");
            break;
        }
    }
    w.expectClean(state);
}
BENCHMARK(BM_WindowRemoveFolder)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

// German, then English again: captions, the grid's header row and the colour pass.
void BM_WindowSwitchLanguage(benchmark::State& state) {
    OpenWindow w;
    QAction* german = toolbarAction(w.window, "useger");
    QAction* english = toolbarAction(w.window, "useeng");
    for (auto _ : state) {
        german->trigger();
        drainEvents();
        english->trigger();
        drainEvents();
    }
    if (!w.clean() || w.form.languageCode != 1 || w.form.Table.rows() != 32001) {
        state.SkipWithError("the language did not switch cleanly in the window");
    }
}
BENCHMARK(BM_WindowSwitchLanguage)->Unit(benchmark::kMillisecond)->Setup(bench::startClean);

}  // namespace

#endif  // VKL_BENCH_GUI
