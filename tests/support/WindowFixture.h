// The real main window, offscreen, over a form whose dialogs are answered by a script, with a
// temporary folder that serves as the install directory, the user's temporary folder and the
// place for saved menus and bitmaps.
#pragma once

#include <QtTest>
#include <QtWidgets>

#include <memory>
#include <string>

#include "app/Form1.h"
#include "gui/GridModel.h"
#include "gui/Icons.h"
#include "gui/MainWindow.h"
#include "gui/TreeModel.h"
#include "platform/Text.h"
#include "support/ScriptedHost.h"

namespace window_test {

// The tools menu of tests/data/window: Holes (items Through hole and Library, submenu Threads
// with Metric and Fine), Slots (Key slot and Senkung für Schrauben), an empty submenu, About
// at the top and one broken line.
inline std::string toolsMenu() {
    return VKL_TEST_DATA "/window/tools.vkl";
}

// A menu of 20 submenus three deep ("Menu1" to "Menu20") with 12 lines each, written to path.
inline void writeGroups(const std::string& path) {
    QFile out(QString::fromStdString(path));
    QVERIFY(out.open(QIODevice::WriteOnly));
    QByteArray text =
        "# groups\r\n1 # library\r\nAbout\r\n2\r\n3\r\n4\r\nTitle\r\n"
        "100\r\n100\r\n10\r\n10\r\n11\r\n11\r\n";
    int item = 0;
    for (int g = 0; g < 20; ++g) {
        const QByteArray indent(g % 3, ' ');
        text += indent + "Group " + QByteArray::number(g) + "||S|Group " + QByteArray::number(g) +
                "\r\n";
        for (int i = 0; i < 12; ++i, ++item) {
            text += indent + " Item " + QByteArray::number(item) + "|i.bmp|F|call_" +
                    QByteArray::number(item) + "\r\n";
        }
    }
    out.write(text);
}

template <typename Host = vkl::test::ScriptedHost>
struct BasicWindow {
    Host host;
    QTemporaryDir dir;
    vkl::Form1 form;
    vkl::gui::MainWindow window;

    explicit BasicWindow(int16_t language = 1)
        : form(host, dir.path().toStdString(), language), window(form) {
        host.temp = dir.path().toStdString() + "/";
        window.load();
        window.resize(1400, 800);
        window.show();
    }

    std::string path(const char* name) const {
        return dir.filePath(QLatin1String(name)).toStdString();
    }

    template <typename W>
    W* child(const char* name) {
        return window.findChild<W*>(QString::fromLatin1(name));
    }
    QTableView* table() { return child<QTableView>("Table"); }
    QTreeView* tree() { return child<QTreeView>("Treeview"); }
    vkl::gui::TreeModel* treeModel() { return static_cast<vkl::gui::TreeModel*>(tree()->model()); }

    // A cell of the grid (row 1 is the first line) and a node of the tree, as the views see them.
    QModelIndex cell(int gridRow, int col) { return table()->model()->index(gridRow - 1, col); }
    QString cellText(int gridRow, int col) { return cell(gridRow, col).data().toString(); }
    QPoint cellCentre(int gridRow, int col) {
        return table()->visualRect(cell(gridRow, col)).center();
    }
    QModelIndex node(const std::string& key) {
        return treeModel()->indexOf(form.Treeview.find(key));
    }
    QPoint nodeCentre(const std::string& key) { return tree()->visualRect(node(key)).center(); }

    // Clicks a toolbar button by its key, as the user does.
    bool clickTool(const char* key) {
        auto* bar = child<QToolBar>("Toolbar1");
        for (QAction* a : bar->actions()) {
            if (a->data().toString() == QLatin1String(key)) {
                QTest::mouseClick(bar->widgetForAction(a), Qt::LeftButton);
                return true;
            }
        }
        return false;
    }

    // Opens a menu file through the toolbar and the scripted open dialog.
    bool open(const std::string& file) {
        host.openAnswers.push_back(vkl::test::ScriptedHost::pick(file));
        return clickTool("open");
    }
};
using Window = BasicWindow<>;

// Passes a drag carrying data over a point of a view's viewport, as Qt does: true when the view
// takes it there. With drop, the data is dropped there too.
inline bool dragOver(QWidget* viewport, QPoint at, QMimeData& data, Qt::DropAction action,
                     bool drop = false) {
    QDragEnterEvent enter(at, action, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDragMoveEvent move(at, action, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    if (drop) {
        QDropEvent dropped(at, action, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &dropped);
    }
    return enter.isAccepted() && move.isAccepted();
}

// The common start of a window test case, for its init(): a window shown, with the tools menu
// open. The window of one case lives until the next case starts.
struct WindowCase {
    std::unique_ptr<Window> w;
    bool start() {
        w.reset();
        w = std::make_unique<Window>();
        return QTest::qWaitForWindowExposed(&w->window) && w->open(toolsMenu());
    }
};

// The keys of the eight pictures a node of the tree can show.
inline const char* const kNodePictures[] = {"root", "arrow2",       "arrow1",     "folderclosed2",
                                            "item", "folderclosed", "image_here", "blank"};

// Text the form holds in Windows-1252, as the window shows it.
inline QString utf8(const std::string& cp1252) {
    return QString::fromStdString(vkl::text::cp1252ToUtf8(cp1252));
}

// Every row of a grid model, its cells joined by "|".
inline QStringList gridRows(const QAbstractItemModel& grid) {
    QStringList rows;
    for (int r = 0; r < grid.rowCount(); ++r) {
        QStringList cells;
        for (int c = 0; c < grid.columnCount(); ++c) {
            cells << grid.index(r, c).data().toString();
        }
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

// The name of the node picture an index shows, "-" for none, "?" for one that is none of them.
inline QString pictureOf(const QModelIndex& index) {
    const QVariant decoration = index.data(Qt::DecorationRole);
    if (!decoration.isValid()) {
        return QStringLiteral("-");
    }
    const QImage shown = decoration.value<QIcon>().pixmap(16, 16).toImage();
    for (const char* key : kNodePictures) {
        if (vkl::gui::icons::node(QLatin1String(key)).pixmap(16, 16).toImage() == shown) {
            return QLatin1String(key);
        }
    }
    return QStringLiteral("?");
}

// The tree as its view shows it: one line per node, two blanks per level, the text, the picture
// and a "+" for a node the view shows expanded.
inline QStringList treeLines(QTreeView* view, const QModelIndex& parent = {}, int depth = 0) {
    QStringList lines;
    QAbstractItemModel* model = view->model();
    for (int r = 0; r < model->rowCount(parent); ++r) {
        const QModelIndex at = model->index(r, 0, parent);
        lines << QString(depth * 2, QLatin1Char(' ')) + at.data().toString() + QLatin1Char(' ') +
                     pictureOf(at) + (view->isExpanded(at) ? QStringLiteral(" +") : QString())
              << treeLines(view, at, depth + 1);
    }
    return lines;
}

// Whatever a named control shows: a caption, a label, a field's text or a menu entry.
inline QString shownText(QWidget& window, const char* name) {
    const QString n = QString::fromLatin1(name);
    if (auto* c = window.findChild<QComboBox*>(n)) {
        return c->currentText();
    }
    // Actions, buttons, labels and fields all hold it as their text.
    for (QObject* control : window.findChildren<QObject*>(n)) {
        if (const QVariant text = control->property("text"); text.isValid()) {
            return text.toString();
        }
    }
    return QStringLiteral("<no control %1>").arg(n);
}

}  // namespace window_test
