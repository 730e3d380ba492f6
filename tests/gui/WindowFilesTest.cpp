// Opening and saving menu files through the real window's toolbar: what the grid and the tree
// show afterwards, the append question, and the bytes a save leaves on disk.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "gui/Icons.h"
#include "menufile/Format.h"
#include "support/WindowFixture.h"

using vkl::Answer;
using vkl::Buttons;
using vkl::test::ScriptedHost;
using window_test::shownText;
using window_test::Window;

namespace {

// The name of the tree picture an index shows, "-" for none.
QString pictureOf(const QModelIndex& index) {
    const QVariant decoration = index.data(Qt::DecorationRole);
    if (!decoration.isValid()) {
        return QStringLiteral("-");
    }
    const QImage shown = decoration.value<QIcon>().pixmap(16, 16).toImage();
    for (const char* key : {"root", "arrow2", "arrow1", "folderclosed2", "item", "folderclosed",
                            "image_here", "blank"}) {
        if (vkl::gui::icons::node(QLatin1String(key)).pixmap(16, 16).toImage() == shown) {
            return QLatin1String(key);
        }
    }
    return QStringLiteral("?");
}

// The tree as the view's model shows it: one line per node, two blanks per level, the text and
// the picture, and a "+" for a node the view shows expanded.
QStringList treeLines(QTreeView* view, const QModelIndex& parent = {}, int depth = 0) {
    QStringList lines;
    QAbstractItemModel* model = view->model();
    for (int r = 0; r < model->rowCount(parent); ++r) {
        const QModelIndex at = model->index(r, 0, parent);
        lines << QString(depth * 2, QLatin1Char(' ')) + at.data().toString() + QLatin1Char(' ') +
                     pictureOf(at) + (view->isExpanded(at) ? QStringLiteral(" +") : QString());
        lines << treeLines(view, at, depth + 1);
    }
    return lines;
}

QStringList rowTexts(Window& w, int gridRow) {
    QStringList texts;
    for (int c = 0; c < 5; ++c) {
        texts << w.cellText(gridRow, c);
    }
    return texts;
}

const QStringList kToolsTree{
    QStringLiteral("Top Menu root +"),
    QStringLiteral("  Holes folderclosed +"),
    QStringLiteral("    THROUGH HOLE -"),
    QStringLiteral("    LIBRARY -"),
    QStringLiteral("    Threads folderclosed +"),
    QStringLiteral("      METRIC -"),
    QStringLiteral("      FINE -"),
    QStringLiteral("  Slots folderclosed +"),
    QStringLiteral("    KEY SLOT -"),
    QString::fromUtf8("    SENKUNG FÜR SCHRAUBEN -"),
    QStringLiteral("  Empty folderclosed"),
    QStringLiteral("  ABOUT -"),
};

}  // namespace

class WindowFilesTest : public QObject, window_test::WindowCase {
    Q_OBJECT
  private slots:
    void init() { QVERIFY(start()); }
    void cleanup() { window_.reset(); }
    void openShowsTheRowsTheTreeAndTheHeader();
    void secondOpenAppendsOrOverwrites();
    void saveWritesTheMenuAndItReadsBack();
    void refusedAndCancelledCommandsChangeNothing();
};

void WindowFilesTest::openShowsTheRowsTheTreeAndTheHeader() {
    Window& w = *window_;
    QCOMPARE(w.host.endCount, 0);
    QVERIFY(w.host.messages.empty());  // an empty table is overwritten without a question
    QCOMPARE(w.host.openRequests.size(), size_t{1});
    QCOMPARE(w.host.openRequests[0].filter,
             std::string("All Files (*.*)|*.*|VKL Files (*.vkl)|*.vkl"));
    QCOMPARE(w.host.openRequests[0].filterIndex, 2);

    QCOMPARE(shownText(w.window, "decfilename"), QString::fromStdString(window_test::toolsMenu()));
    QCOMPARE(shownText(w.window, "Text2"), QStringLiteral("Drill menu"));
    QCOMPARE(shownText(w.window, "Text3"),
             QStringLiteral("Drilling tools # 1. text in the [About] box"));
    QCOMPARE(shownText(w.window, "Combo2"), QStringLiteral("60"));
    QCOMPARE(shownText(w.window, "Combo3"), QStringLiteral("70"));
    QCOMPARE(shownText(w.window, "Datadir"), QStringLiteral("C:\\data"));
    QVERIFY(!w.child<QLineEdit>("Datadir")->isEnabled());

    // One grid line per item line, in file order; the broken line is gone.
    QCOMPARE(w.table()->model()->rowCount(), 7);
    const QStringList expected[] = {
        {"1", "Through hole", "th.bmp", "F", "make_hole"},
        {"2", "Library", "lib.bmp", "LOS", "holes.pkg"},
        {"3", "Metric", "m.bmp", "D", "metric_dialog"},
        {"4", "Fine", "f.bmp", "D", "fine_dialog"},
        {"5", "Key slot", "ks.bmp", "P", "slotter.exe"},
        {"6", QString::fromUtf8("Senkung für Schrauben"), "sink.bmp", "F", "sink_hole"},
        {"7", "About", "info.bmp", "D", "about_dialog"},
    };
    for (int r = 1; r <= 7; ++r) {
        QCOMPARE(rowTexts(w, r), expected[r - 1]);
        // Laid out in the view, one below the other, inside the viewport.
        const QRect line = w.table()->visualRect(w.cell(r, 1));
        QVERIFY(w.table()->viewport()->rect().contains(line));
        QCOMPARE(w.table()->rowAt(line.center().y()), r - 1);
    }
    QCOMPARE(w.form.Table.textMatrix(2, 5), std::string("C:\\bmp/lib.bmp"));
    QCOMPARE(w.form.Table.textMatrix(2, 6), std::string("C:\\pkg/sub\\holes.pkg"));

    // The tree: folders and items as indented, items upper-cased, deeper lines made visible.
    QCOMPARE(treeLines(w.tree()), kToolsTree);
    const QRect metric = w.tree()->visualRect(w.node("Child3"));
    QVERIFY(metric.isValid() && w.tree()->viewport()->rect().contains(metric));

    // The folder of the file is remembered in the temporary folder for the next open.
    const QByteArray remembered = window_test::readAll(w.path("ZOVDEF2.txt"));
    QCOMPARE(remembered, QByteArray(VKL_TEST_DATA "/window/\r\n"));
}

void WindowFilesTest::secondOpenAppendsOrOverwrites() {
    Window& w = *window_;
    QCOMPARE(w.table()->model()->rowCount(), 7);

    // Yes appends: the last line with text gives way to the first line read, new folders get
    // the serials after the existing ones, and the tree holds only the file just read.
    w.host.answers = {Answer::Yes};
    QVERIFY(w.open(window_test::toolsMenu()));
    QCOMPARE(w.host.messages.size(), size_t{1});
    const vkl::MessageBox& asked = w.host.messages.back();
    QCOMPARE(asked.prompt,
             std::string("Table has already data inside ! \rDo you want to append to the end !"));
    QCOMPARE(asked.title.value_or(""), std::string("Overwrite or append ?"));
    QCOMPARE(asked.buttons, Buttons::YesNo);
    QVERIFY(asked.defaultNo);
    QCOMPARE(w.host.openRequests.back().initialDir, std::string(VKL_TEST_DATA "/window/"));
    QCOMPARE(w.table()->model()->rowCount(), 13);
    QCOMPARE(w.cellText(6, 1), QString::fromUtf8("Senkung für Schrauben"));
    QCOMPARE(w.cellText(7, 0), QStringLiteral("7"));
    QCOMPARE(w.cellText(7, 1), QStringLiteral("Through hole"));
    QCOMPARE(w.cellText(13, 1), QStringLiteral("About"));
    QVERIFY(!w.node("Menu1").isValid());
    QCOMPARE(w.node("Menu5").data().toString(), QStringLiteral("Holes"));
    QCOMPARE(w.node("Menu6").parent(), w.node("Menu5"));
    QCOMPARE(w.node("Child7").data().toString(), QStringLiteral("THROUGH HOLE"));
    QCOMPARE(w.node("Child13").parent(), w.node("Menu0"));

    // No overwrites and numbers the folders from 1 again.
    w.host.answers = {Answer::No};
    QVERIFY(w.open(window_test::toolsMenu()));
    QCOMPARE(w.host.messages.size(), size_t{2});
    QCOMPARE(w.table()->model()->rowCount(), 7);
    QCOMPARE(w.cellText(7, 1), QStringLiteral("About"));
    QCOMPARE(treeLines(w.tree()), kToolsTree);
    QCOMPARE(w.node("Menu1").data().toString(), QStringLiteral("Holes"));
}

void WindowFilesTest::saveWritesTheMenuAndItReadsBack() {
    Window& w = *window_;
    const std::string out = w.path("saved.vkl");
    w.host.saveAnswers.push_back(ScriptedHost::pick(out));
    QVERIFY(w.clickTool("save"));
    QCOMPARE(w.host.endCount, 0);
    QCOMPARE(w.host.saveRequests.size(), size_t{1});
    QVERIFY(w.host.saveRequests[0].overwritePrompt);
    QCOMPARE(w.host.saveRequests[0].filterIndex, 2);
    // The empty submenu is reported and left out.
    QCOMPARE(w.host.messages.size(), size_t{1});
    QCOMPARE(w.host.lastPrompt(), std::string("Menu 'Empty' without children is ignored !"));
    QCOMPARE(shownText(w.window, "decfilename"), QString::fromStdString(out));

    // The fixed comment lines, then the menu as the window holds it.
    QByteArray expected;
    for (std::string_view comment : vkl::format::kCommentLines) {
        expected += QByteArray(comment.data(), static_cast<qsizetype>(comment.size())) + "\r\n";
    }
    expected += window_test::crlfLines({
        "1124165 # this is a unique library name - not visible for user",
        "Drilling tools # 1. text in the [About] box # 1. text in the [About] box",
        "Powered by Loomvault  # 2.text",
        "www.loomvault.com",
        "All rights reserved",
        "Drill menu",
        "60",
        "70",
        "10",
        "10",
        "11",
        "11",
        "SHORTCUT|datadir|C:\\data",
        "SHORTCUT|C:\\data|C:\\data",
        "Holes|[installdir]/img/holes.bmp|S|Holes",
        " THROUGH HOLE|th.bmp|F|make_hole",
        " LIBRARY|C:\\bmp/lib.bmp|LOS|C:\\pkg/sub\\holes.pkg",
        " Threads|[installdir]/img/threads.bmp|S|Threads",
        "  METRIC|m.bmp|D|metric_dialog",
        "  FINE|f.bmp|D|fine_dialog",
        "Slots||S|Slots",
        " KEY SLOT|ks.bmp|P|slotter.exe",
        " SENKUNG F\xdcR SCHRAUBEN|sink.bmp|F|sink_hole",
        "ABOUT|info.bmp|D|about_dialog",
    });
    QCOMPARE(window_test::readAll(out), expected);

    // What the window shows of the saved menu once it is opened again: the same lines, the
    // titles now in upper case, the About text one comment longer.
    w.host.answers = {Answer::No};
    QVERIFY(w.open(out));
    QCOMPARE(w.table()->model()->rowCount(), 7);
    QCOMPARE(w.cellText(6, 1), QString::fromUtf8("SENKUNG FÜR SCHRAUBEN"));
    QCOMPARE(w.cellText(2, 4), QStringLiteral("holes.pkg"));
    QCOMPARE(
        shownText(w.window, "Text3"),
        QStringLiteral("Drilling tools # 1. text in the [About] box # 1. text in the [About] box"));
    QCOMPARE(treeLines(w.tree()).size(), kToolsTree.size() - 1);  // without the empty submenu
}

void WindowFilesTest::refusedAndCancelledCommandsChangeNothing() {
    // An empty table is not saved: the check says so and no dialog opens.
    Window w;
    QVERIFY(w.clickTool("save"));
    QCOMPARE(w.host.endCount, 0);
    QVERIFY(w.host.saveRequests.empty());
    QCOMPARE(w.host.lastPrompt(),
             std::string("Table is all empty or all existing lines have missing entries  ! "
                         "Nothing to save !"));
    QCOMPARE(w.host.messages.back().title.value_or(""),
             std::string("Check before saving failed !"));

    // A cancelled open leaves table, tree and file name as they were.
    QVERIFY(w.open(window_test::toolsMenu()));
    w.host.openAnswers.push_back({});
    QVERIFY(w.clickTool("open"));
    QCOMPARE(w.host.openRequests.size(), size_t{2});
    QCOMPARE(w.table()->model()->rowCount(), 7);
    QCOMPARE(treeLines(w.tree()), kToolsTree);
    QCOMPARE(shownText(w.window, "decfilename"), QString::fromStdString(window_test::toolsMenu()));

    // A cancelled save writes nothing and keeps the file name shown.
    w.host.saveAnswers.push_back({});
    QVERIFY(w.clickTool("save"));
    QCOMPARE(w.host.saveRequests.size(), size_t{1});
    QCOMPARE(shownText(w.window, "decfilename"), QString::fromStdString(window_test::toolsMenu()));
    QCOMPARE(QDir(w.dir.path()).entryList(QDir::Files), QStringList{"ZOVDEF2.txt"});
    QCOMPARE(w.host.endCount, 0);
}

QTEST_MAIN(WindowFilesTest)
#include "WindowFilesTest.moc"
