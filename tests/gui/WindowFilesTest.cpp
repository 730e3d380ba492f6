// Opening and saving menu files through the real window's toolbar: what the grid and the tree
// show afterwards, and cancelled or refused commands.
#include "support/WindowFixture.h"

using namespace window_test;

namespace {

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
    // What the grid, the tree and the header show in text is held against vklcheck for every menu
    // file (CliAgreementTest); here, how the views lay it out.
    void openShowsTheRowsTheTreeAndTheHeader() {
        QVERIFY(w->host.messages.empty());  // an empty table is overwritten without a question
        QCOMPARE(shownText(w->window, "decfilename"),
                 QString::fromStdString(window_test::toolsMenu()));
        QVERIFY(!w->child<QLineEdit>("Datadir")->isEnabled());

        // One line below the other, inside the viewport.
        QCOMPARE(w->table()->model()->rowCount(), 7);
        for (int r = 1; r <= 7; ++r) {
            const QRect line = w->table()->visualRect(w->cell(r, 1));
            QVERIFY(w->table()->viewport()->rect().contains(line));
            QCOMPARE(w->table()->rowAt(line.center().y()), r - 1);
        }
        // Folders open as read, deeper lines made visible.
        QCOMPARE(treeLines(w->tree()), kToolsTree);
        const QRect metric = w->tree()->visualRect(w->node("Child3"));
        QVERIFY(metric.isValid() && w->tree()->viewport()->rect().contains(metric));
    }

    void saveShowsTheNameAndItReadsBack() {
        const std::string out = w->path("saved.vkl");
        w->host.saveAnswers.push_back(vkl::test::ScriptedHost::pick(out));
        QVERIFY(w->clickTool("save"));
        QCOMPARE(w->host.lastPrompt(), std::string("Menu 'Empty' without children is ignored !"));
        QCOMPARE(shownText(w->window, "decfilename"), QString::fromStdString(out));

        // Opened again: the same lines, the titles now in upper case, no empty submenu.
        w->host.answers = {vkl::Answer::No};
        QVERIFY(w->open(out));
        QCOMPARE(w->table()->model()->rowCount(), 7);
        QCOMPARE(w->cellText(6, 1), QString::fromUtf8("SENKUNG FÜR SCHRAUBEN"));
        QCOMPARE(treeLines(w->tree()).size(), kToolsTree.size() - 1);
        QCOMPARE(w->host.endCount, 0);
    }

    void refusedAndCancelledCommandsChangeNothing() {
        // A cancelled open leaves table, tree and file name as they were.
        w->host.openAnswers.push_back({});
        QVERIFY(w->clickTool("open"));
        QCOMPARE(w->host.openRequests.size(), size_t{2});
        QCOMPARE(w->table()->model()->rowCount(), 7);
        QCOMPARE(treeLines(w->tree()), kToolsTree);
        QCOMPARE(shownText(w->window, "decfilename"),
                 QString::fromStdString(window_test::toolsMenu()));

        // A cancelled save writes nothing and keeps the file name shown.
        w->host.saveAnswers.push_back({});
        QVERIFY(w->clickTool("save"));
        QCOMPARE(w->host.saveRequests.size(), size_t{1});
        QCOMPARE(shownText(w->window, "decfilename"),
                 QString::fromStdString(window_test::toolsMenu()));
        QCOMPARE(QDir(w->dir.path()).entryList(QDir::Files), QStringList{"ZOVDEF2.txt"});
        QCOMPARE(w->host.endCount, 0);
    }

    // Every test starts in a new window showing the tools menu.
    void init() { QVERIFY(start()); }
};

QTEST_MAIN(WindowFilesTest)
#include "WindowFilesTest.moc"
