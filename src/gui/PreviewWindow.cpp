#include "gui/PreviewWindow.h"

#include <QCloseEvent>
#include <QPixmap>

namespace vkl::gui {

PreviewWindow::PreviewWindow(QWidget* owner, QSize margins)
    : QDialog(owner), picture_(new QLabel(this)), margins_(margins) {
    setObjectName(QStringLiteral("preview"));
    setModal(false);
    setWindowTitle(QStringLiteral("Preview"));
    picture_->setObjectName(QStringLiteral("Picture1"));
    picture_->setAlignment(Qt::AlignCenter);
}

void PreviewWindow::showPicture(const QString& fileName, QSize pictureSize) {
    if (fileName != fileName_ || picture_->pixmap().isNull()) {
        fileName_ = fileName;
        picture_->setPixmap(QPixmap(fileName));
    }
    if (!pictureSize.isValid() || pictureSize.isEmpty()) {
        pictureSize = picture_->pixmap().size();
    }
    const QSize client = pictureSize + margins_;
    if (isVisible() && size() != client && growsLeft) {
        // A new picture keeps the edge next to the main window where it was.
        move(pos() - QPoint(client.width() - size().width(), 0));
    }
    setFixedSize(client);
    // The picture sits in the middle of the margins.
    picture_->setGeometry(QRect(QPoint(margins_.width() / 2, margins_.height() / 2), pictureSize));
    if (!isVisible()) {
        show();
    }
}

void PreviewWindow::closeEvent(QCloseEvent* event) {
    QDialog::closeEvent(event);
    if (onClosed) {
        onClosed();
    }
}

}  // namespace vkl::gui
