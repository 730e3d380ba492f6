// The real host services: message boxes, file filters, environment, pictures, pop-up menus,
// and ending the program.
#include <QtTest>
#include <QtWidgets>

#include "gui/QtHost.h"
#include "platform/Files.h"
#include "support/ScriptedHost.h"

using vkl::Answer;
using vkl::gui::QtHost;

namespace {

// Shows a message box through the host; once it is up, records it as "title|icon|buttons|default
// button|text" and presses the button.
Answer answerBox(QtHost& host, const vkl::MessageBox& box, QMessageBox::StandardButton press,
                 QString& seen) {
    seen.clear();
    QTimer::singleShot(0, [&] {
        auto* shown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!shown) {
            return;
        }
        QStringList buttons;
        for (QAbstractButton* b : shown->buttons()) {
            buttons << b->text().remove(QLatin1Char('&'));
        }
        buttons.sort();
        const QPushButton* chosen = shown->defaultButton();
        seen =
            QStringList{shown->windowTitle(), QString::number(shown->icon()),
                        buttons.join(QLatin1Char(',')),
                        chosen ? chosen->text().remove(QLatin1Char('&')) : QString(), shown->text()}
                .join(QLatin1Char('|'));
        shown->button(press)->click();
    });
    return host.msgBox(box);
}

}  // namespace

class QtHostTest : public QObject {
    Q_OBJECT
  private slots:
    void messageBoxesHaveTheirButtonsTitleAndIcon() {
        QtHost host;
        QString seen;
        const vkl::MessageBox quit{.prompt = "Changes not saved! Do you really want to quit !",
                                   .title = "Confirm Quit",
                                   .buttons = vkl::Buttons::YesNo,
                                   .questionIcon = true,
                                   .defaultNo = true};
        QCOMPARE(answerBox(host, quit, QMessageBox::Yes, seen), Answer::Yes);
        // (Icon 4 is the question mark, 0 none.)
        QCOMPARE(seen, QStringLiteral("Confirm Quit|4|No,Yes|No|") + quit.prompt.c_str());
        QCOMPARE(answerBox(host, quit, QMessageBox::No, seen), Answer::No);

        // Windows-1252 text, carriage returns as line breaks, the program's name as default title.
        vkl::MessageBox notice;
        notice.prompt = "\xc4nderungen\rzweite Zeile\r\ndritte";
        QCOMPARE(answerBox(host, notice, QMessageBox::Ok, seen), Answer::Ok);
        QCOMPARE(seen, QString::fromUtf8("VKL Editor|0|OK|OK|Änderungen\nzweite Zeile\ndritte"));
        notice.title = "";
        answerBox(host, notice, QMessageBox::Ok, seen);
        QCOMPARE(seen, QString::fromUtf8("|0|OK|OK|Änderungen\nzweite Zeile\ndritte"));
    }

    void fileFiltersKeepTheirNamesAndMatchAllFiles() {
        QCOMPARE(QtHost::nameFilters("All Files (*.*)|*.*|VKL Files (*.vkl)|*.vkl"),
                 (QStringList{"All Files (*.*) (*)", "VKL Files (*.vkl) (*.vkl)"}));
        QCOMPARE(QtHost::nameFilters("Pictures|*.bmp; *.DIB|Odd"),
                 (QStringList{"Pictures (*.bmp *.DIB)", "Odd (*)"}));
        QCOMPARE(QtHost::nameFilters("|*.txt"), QStringList{"*.txt (*.txt)"});
        QVERIFY(QtHost::nameFilters("").isEmpty());
    }

    void environmentAndTempFolder() {
        QtHost host;
        QStringList entries;
        int i = 1;
        for (std::string e = host.environ(i); !e.empty(); e = host.environ(++i)) {
            entries << QString::fromStdString(e);
        }
        QCOMPARE(entries, QProcessEnvironment::systemEnvironment().toStringList());
        QCOMPARE(host.environ(0), std::string());

        QCOMPARE(host.tempPath().value_or(""), vkl::files::userStateFolder());
    }

    void picturesAreMeasuredOrRefused() {
        QtHost host;
        QTemporaryDir dir;
        const std::string bmp = dir.filePath(QStringLiteral("Menu Bild.bmp")).toStdString();
        vkl::test::writeBmp(bmp, 37, 21);
        const vkl::PictureSize size = host.loadPicture(bmp);
        QCOMPARE(std::pair(size.width, size.height), std::pair(37, 21));

        const std::string text = dir.filePath(QStringLiteral("notes.bmp")).toStdString();
        vkl::test::writeBytes(text, "this is no picture at all\n");
        QCOMPARE(vkl::test::errorOf([&] { host.loadPicture(text); }), 481);
        const std::string missing = dir.filePath(QStringLiteral("missing.bmp")).toStdString();
        QCOMPARE(vkl::test::errorOf([&] { host.loadPicture(missing); }), 53);
    }

    void popupMenuReturnsTheChosenEntry() {
        QWidget window;
        auto* menu = new QMenu(&window);
        menu->setObjectName(QStringLiteral("Menu2"));
        menu->addAction(QStringLiteral("Add above"))->setObjectName(QStringLiteral("addabove1"));
        menu->addSeparator();
        menu->addAction(QStringLiteral("Remove"))->setObjectName(QStringLiteral("remove1"));
        window.show();
        QtHost host;
        host.setWindow(&window);

        QTimer::singleShot(0, [] {
            if (auto* open = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                QAction* remove = open->actions().last();
                QTest::mouseClick(open, Qt::LeftButton, {}, open->actionGeometry(remove).center());
            }
        });
        QCOMPARE(host.popupMenu("Menu2"), std::string("remove1"));

        QTimer::singleShot(0, [] {
            if (auto* open = QApplication::activePopupWidget()) {
                open->close();
            }
        });
        QCOMPARE(host.popupMenu("Menu2"), std::string());
        QCOMPARE(host.popupMenu("menu9"), std::string());
    }

    void endingTheProgramLeavesTheEventLoop() {
        QWidget window;
        window.show();
        QtHost host;
        host.setWindow(&window);
        QVERIFY(!host.ended());
        QEventLoop loop;
        QTimer::singleShot(0, [&] { host.endProgram(); });
        QTimer::singleShot(5000, &loop, [&] { loop.exit(7); });
        QCOMPARE(loop.exec(), 0);
        QVERIFY(host.ended());
        QVERIFY(!window.isVisible());
    }
};

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QtHostTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "QtHostTest.moc"
