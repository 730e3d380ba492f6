#include "gui/QtHost.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QCursor>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QMenu>
#include <QMessageBox>
#include <QProcessEnvironment>
#include <QPushButton>

#include "app/CommandLine.h"
#include "gui/Convert.h"
#include "platform/Files.h"
#include "platform/RuntimeError.h"
#include "platform/Text.h"

namespace vkl::gui {

namespace {

QString fromFileName(const std::string& s) {
    return QFile::decodeName(QByteArray::fromStdString(s));
}

std::string toFileName(const QString& s) {
    return QFile::encodeName(s).toStdString();
}

// Message texts break lines with CR LF or a lone CR; the box breaks them at "\n".
QString messageText(const std::string& prompt) {
    QString s = fromCp1252(prompt);
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    s.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return s;
}

}  // namespace

QStringList QtHost::nameFilters(const std::string& filter) {
    QStringList result;
    if (filter.empty()) {
        return result;
    }
    const std::vector<std::string> fields = text::split(filter, '|');
    for (size_t i = 0; i < fields.size(); i += 2) {
        const QString name = fromCp1252(text::trim(fields[i]));
        QStringList patterns;
        if (i + 1 < fields.size()) {
            for (const std::string& raw : text::split(fields[i + 1], ';')) {
                const std::string pattern = text::trim(raw);
                if (pattern.empty()) {
                    continue;
                }
                // "*.*" means every file on the systems the filters are written for.
                patterns << (pattern == "*.*" ? QStringLiteral("*") : fromCp1252(pattern));
            }
        }
        if (patterns.isEmpty()) {
            patterns << QStringLiteral("*");
        }
        patterns.removeDuplicates();
        const QString shown = name.isEmpty() ? patterns.join(QLatin1Char(' ')) : name;
        result << shown + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    return result;
}

Answer QtHost::msgBox(const MessageBox& box) {
    QMessageBox dialog(window_);
    dialog.setTextFormat(Qt::PlainText);
    dialog.setText(messageText(box.prompt));
    dialog.setWindowTitle(
        box.title ? fromCp1252(*box.title)
                  : QString::fromUtf8(startup::kProgramName.data(),
                                      static_cast<qsizetype>(startup::kProgramName.size())));
    dialog.setIcon(box.questionIcon ? QMessageBox::Question : QMessageBox::NoIcon);
    if (box.buttons == Buttons::YesNo) {
        dialog.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        dialog.setDefaultButton(box.defaultNo ? QMessageBox::No : QMessageBox::Yes);
        dialog.setEscapeButton(QMessageBox::No);
    } else {
        dialog.setStandardButtons(QMessageBox::Ok);
        dialog.setDefaultButton(QMessageBox::Ok);
        dialog.setEscapeButton(QMessageBox::Ok);
    }
    dialog.exec();
    if (box.buttons == Buttons::Ok) {
        return Answer::Ok;
    }
    return dialog.clickedButton() == dialog.button(QMessageBox::Yes) ? Answer::Yes : Answer::No;
}

ChosenFile QtHost::fileDialog(const FileDialog& request, bool save) {
    QFileDialog dialog(window_);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (save && !request.overwritePrompt) {
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    }
    if (!request.initialDir.empty()) {
        dialog.setDirectory(fromFileName(request.initialDir));
    }
    const QStringList filters = nameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        if (request.filterIndex >= 1 && request.filterIndex <= filters.size()) {
            dialog.selectNameFilter(filters.at(request.filterIndex - 1));
        }
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    const QString chosen = dialog.selectedFiles().constFirst();
    ChosenFile result;
    result.fileName = toFileName(chosen);
    result.fileTitle = toFileName(QFileInfo(chosen).fileName());
    return result;
}

ChosenFile QtHost::openDialog(const FileDialog& dialog) {
    return fileDialog(dialog, false);
}

ChosenFile QtHost::saveDialog(const FileDialog& dialog) {
    return fileDialog(dialog, true);
}

std::string QtHost::browseForFolder(const std::string& title) {
    // The folder ends up in a directory field and in the menu file, both Windows-1252 text.
    const QString folder = QFileDialog::getExistingDirectory(window_, fromCp1252(title), QString(),
                                                             QFileDialog::ShowDirsOnly);
    return toCp1252(folder);
}

std::optional<std::string> QtHost::tempPath() {
    // The user's own folder, never the shared temporary folder another user could write to.
    std::string dir = files::userStateFolder();
    if (dir.empty()) {
        return std::nullopt;
    }
    return dir;
}

std::string QtHost::environ(int index) {
    const QStringList entries = QProcessEnvironment::systemEnvironment().toStringList();
    if (index < 1 || index > entries.size()) {
        return {};
    }
    return toFileName(entries.at(index - 1));
}

ClockReading QtHost::now() {
    const QDateTime t = QDateTime::currentDateTime();
    return {t.date().month(), t.date().day(), t.time().hour(), t.time().minute()};
}

PictureSize QtHost::loadPicture(const std::string& path) {
    const QString name = fromFileName(path);
    if (!QFileInfo(name).isFile()) {
        throw RuntimeError::fileNotFound();
    }
    QImageReader reader(name);
    QSize size = reader.canRead() ? reader.size() : QSize();
    if (!size.isValid() && reader.canRead()) {
        size = reader.read().size();
    }
    if (!size.isValid() || size.isEmpty()) {
        throw RuntimeError::invalidPicture();
    }
    return {size.width(), size.height()};
}

std::string QtHost::popupMenu(const std::string& menu) {
    if (!window_) {
        return {};
    }
    auto* popup = window_->findChild<QMenu*>(QString::fromStdString(menu));
    if (!popup) {
        return {};
    }
    const QAction* chosen = popup->exec(QCursor::pos());
    return chosen ? chosen->objectName().toStdString() : std::string();
}

void QtHost::endProgram() {
    ended_ = true;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        w->hide();
    }
    QCoreApplication::exit(0);
}

}  // namespace vkl::gui
