// vklcheck against the window: for the menu files of the tests and for random menus, what the
// tool prints as JSON is what the window shows after opening the same file.
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <random>
#include <vector>

#include "support/WindowFixture.h"

using namespace window_test;

namespace {

// ---- Random menus --------------------------------------------------------------------------

// Texts with letters outside ASCII (umlauts, sharp s, the euro sign), blanks and a tab; written
// here in UTF-8, put into the files in Windows-1252.
const char* const kTitles[] = {"Bohren", "Größe ändern", "Fräsen",    "Through hole",
                               "Straße", "Preis € 5",    "Key slot ", "Ärger\tTab",
                               "Café",   "Übersicht"};
const char* const kBitmaps[] = {
    "", "a.bmp", "C:\\bmp\\x.bmp", "sub/dir/über.bmp", "[installdir]/img/y.bmp", " spaced.bmp "};
const char* const kItemActions[] = {"F", "D", "P", "LOS", "los", "LWM", "LMM", "f"};
const char* const kParameters[] = {"do_it", "dlg # not a comment", "C:\\tools\\x.exe", "größe"};
const char* const kPackages[] = {"C:\\pkg/sub\\holes.pkg", "D:\\pkg\\", "pkg/", "plain.pkg"};
const char* const kInvalid[] = {"Five|fields|F|x|y",  "Three|x.bmp|F",     "|x.bmp|F|no_title",
                                "Noaction|x.bmp| |x", "Noparam|x.bmp|F| ", "no bars at all"};
const char* const kShortcuts[] = {"SHORTCUT|datadir|C:\\data\\März", "shortcut|BmpDir|D:\\bitmaps",
                                  "SHORTCUT|other|x", "Shortcut|bmpdir|[installdir]\\bitmaps"};

class RandomMenu {
  public:
    explicit RandomMenu(unsigned seed) : rng_(seed) {}

    // A menu file: comments, the twelve header lines (a comment or a blank line here and there,
    // now and then a menu line the header swallows), then a body of submenus, items, SHORTCUT
    // lines, invalid lines, comments and blank lines at random depths. A third SHORTCUT line
    // (ends the reading) only when asked; no items at all when asked.
    std::string build(bool thirdShortcut, bool withItems) {
        const int eolKind = pick(8);  // mostly CR LF, sometimes LF, CR or mixed
        for (int i = pick(15); i > 0; --i) {
            line(i % 5 == 0 ? "#" : "# Created by VKL Editor", eolKind);
        }
        const std::string header[12] = {
            "1124165 # this is a unique library name - not visible for user",
            std::string(pickOf(kTitles)) + " # 1. text in the [About] box",
            "Powered by Loomvault  # 2.text",
            "www.example.com",
            "All rights reserved",
            std::string("  ") + pickOf(kTitles),
            pick(5) == 0 ? "abc" : std::to_string(10 + pick(60)),
            std::to_string(10 + pick(60)),
            "10",
            "10",
            "11",
            "11"};
        for (int p = 0; p < 12; ++p) {
            if (pick(8) == 0) {
                line(pick(2) == 0 ? "# inside the header" : "   ", eolKind);
            }
            line(p == 3 && pick(6) == 0 ? "Swallowed|s.bmp|F|swallowed" : header[p], eolKind);
        }

        int shortcutsLeft = thirdShortcut ? 3 : pick(3);
        int depth = 0;
        const int count = 8 + pick(40);
        for (int i = 0; i < count; ++i) {
            // Mostly the same level or one step; now and then several levels deeper at once, or
            // back to the top.
            const int roll = pick(10);
            depth = roll == 9   ? 0
                    : roll >= 7 ? std::max(0, depth - 1 - pick(2))
                    : roll == 6 ? depth + 2 + pick(3)
                                : depth + (roll >= 4 ? 1 : 0);
            depth = std::min(depth, 12);
            const std::string blanks(static_cast<size_t>(depth), ' ');
            const int kind = pick(20);
            if (shortcutsLeft > 0 && (kind == 0 || (thirdShortcut && i > count / 2))) {
                line(blanks + pickOf(kShortcuts), eolKind);
                --shortcutsLeft;
            } else if (kind < 6 || !withItems) {
                const std::string title = pickOf(kTitles);
                line(blanks + title + "|" + pickOf(kBitmaps) + (pick(4) == 0 ? "|s|" : "|S|") +
                         title,
                     eolKind);
            } else if (kind < 15) {
                const std::string action = pickOf(kItemActions);
                const bool package = action == "LOS" || action == "los";
                line(blanks + pickOf(kTitles) + "|" + pickOf(kBitmaps) + "|" + action + "|" +
                         (package ? pickOf(kPackages) : pickOf(kParameters)),
                     eolKind);
            } else if (kind < 18) {
                line(blanks + pickOf(kInvalid), eolKind);
            } else {
                line(kind == 18 ? blanks + "# a comment" : blanks, eolKind);
            }
        }
        return bytes_;
    }

  private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
    template <size_t N>
    const char* pickOf(const char* const (&list)[N]) {
        return list[pick(static_cast<int>(N))];
    }
    void line(const std::string& text, int eolKind) {
        static const char* const kEnds[] = {"\r\n", "\n", "\r"};
        const int kind = eolKind < 5 ? 0 : eolKind < 6 ? 1 : eolKind < 7 ? 2 : pick(3);
        bytes_ += vkl::text::utf8ToCp1252(text) + kEnds[kind];
    }

    std::mt19937 rng_;
    std::string bytes_;
};

// ---- What the window shows ---------------------------------------------------------------

// The tree one node a line, two blanks a level: "key|text|image|picture", from the tool's
// JSON and from the window's model.
QString nodeLine(int depth, const QStringList& fields) {
    return QString(depth * 2, QLatin1Char(' ')) + fields.join(QLatin1Char('|'));
}
void cliTree(const QJsonObject& node, int depth, QStringList& lines) {
    const QString image = node[QLatin1String("image")].toString();
    lines << nodeLine(
        depth, {node[QLatin1String("key")].toString(), node[QLatin1String("text")].toString(),
                image, vkl::gui::icons::node(image).isNull() ? QStringLiteral("-") : image});
    for (const QJsonValue child : node[QLatin1String("children")].toArray()) {
        cliTree(child.toObject(), depth + 1, lines);
    }
}
void shownTree(vkl::gui::TreeModel& model, const QModelIndex& parent, int depth,
               QStringList& lines) {
    for (int r = 0; r < model.rowCount(parent); ++r) {
        const QModelIndex at = model.index(r, 0, parent);
        const vkl::NodeRef node = model.node(at);
        lines << nodeLine(depth, {utf8(model.nodes().key(node)), at.data().toString(),
                                  utf8(model.nodes().image(node)), window_test::pictureOf(at)});
        shownTree(model, at, depth + 1, lines);
    }
}

}  // namespace

class CliAgreementTest : public QObject {
    Q_OBJECT
    QTemporaryDir randomMenus_;
    QStringList randomFiles_;

  private slots:
    void initTestCase() {
        QVERIFY(randomMenus_.isValid());
        for (unsigned i = 0; i < 36; ++i) {
            const QString name = randomMenus_.filePath(
                QStringLiteral("random%1.vkl").arg(i, 2, 10, QLatin1Char('0')));
            QFile out(name);
            QVERIFY(out.open(QIODevice::WriteOnly));
            // Every twelfth menu ends in a third SHORTCUT line, another has no items.
            const std::string bytes = RandomMenu(20240611u + i).build(i % 12 == 11, i % 12 != 5);
            out.write(bytes.data(), static_cast<qint64>(bytes.size()));
            randomFiles_ << name;
        }
    }

    void jsonAgreesWithTheWindow_data() {
        QTest::addColumn<QString>("file");
        QStringList files;
        QDirIterator it(QStringLiteral(VKL_TEST_DATA), {QStringLiteral("*.vkl")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            files << it.next();
        }
        files.sort();
        QVERIFY(files.size() >= 5);
        for (const QString& f : files + randomFiles_) {
            const QString tag = f.startsWith(QStringLiteral(VKL_TEST_DATA))
                                    ? f.mid(int(qstrlen(VKL_TEST_DATA)) + 1)
                                    : QFileInfo(f).fileName();
            QTest::newRow(qPrintable(tag)) << f;
        }
    }

    void jsonAgreesWithTheWindow() {
        QFETCH(QString, file);
        QProcess cli;
        cli.start(QStringLiteral(VKL_VKLCHECK), {QStringLiteral("--json"), file});
        const bool finished =
            cli.waitForFinished(120000) && cli.exitStatus() == QProcess::NormalExit;
        const QByteArray err = cli.readAllStandardError();
        QVERIFY2(finished, err.constData());
        QJsonParseError parseError;
        const QJsonObject json =
            QJsonDocument::fromJson(cli.readAllStandardOutput(), &parseError).object();
        QVERIFY2(parseError.error == QJsonParseError::NoError,
                 qPrintable(parseError.errorString() + QLatin1Char('\n') + QString::fromUtf8(err)));

        Window w;
        QVERIFY(w.open(file.toStdString()));

        // A run-time error while reading: the window shows it and the program ends.
        const QJsonValue fatal = json[QLatin1String("fatal")];
        if (!fatal.isNull()) {
            QCOMPARE(cli.exitCode(), 2);
            QVERIFY2(w.window.ended() && w.host.endCount == 1,
                     "the CLI reports a run-time error, the window goes on");
            QCOMPARE(QString::fromStdString(w.host.lastPrompt()),
                     QStringLiteral("Run-time error '%1':\n\n%2")
                         .arg(fatal[QLatin1String("error")].toInt())
                         .arg(fatal[QLatin1String("description")].toString()));
            return;
        }
        QVERIFY2(!w.window.ended(), w.host.messages.empty() ? "" : w.host.lastPrompt().c_str());

        QStringList cliShows, windowShows;
        for (const char* name : {"Text2", "Text3", "Combo2", "Combo3", "Datadir", "Imagedir"}) {
            cliShows << json[QLatin1String("header")][QLatin1String(name)].toString();
            windowShows << window_test::shownText(w.window, name);
        }
        QCOMPARE(windowShows, cliShows);

        // Every column of the grid, the two hidden ones with the bitmap and parameter as written
        // included.
        cliShows.clear();
        for (const QJsonValue row : json[QLatin1String("rows")].toArray()) {
            cliShows << row.toVariant().toStringList().join(QLatin1Char('|'));
        }
        QCOMPARE(window_test::gridRows(*w.table()->model()), cliShows);

        cliShows.clear();
        windowShows.clear();
        if (const QJsonValue root = json[QLatin1String("tree")]; !root.isNull()) {
            cliTree(root.toObject(), 0, cliShows);
        }
        shownTree(*w.treeModel(), {}, 0, windowShows);
        QCOMPARE(windowShows, cliShows);
    }
};

QTEST_MAIN(CliAgreementTest)
#include "CliAgreementTest.moc"
