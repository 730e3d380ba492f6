#include "gui/Views.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>

#include "platform/Text.h"

namespace vkl::gui {

double toTwipsX(const QWidget* w, double px) {
    return px * 1440.0 / w->logicalDpiX();
}
double toTwipsY(const QWidget* w, double px) {
    return px * 1440.0 / w->logicalDpiY();
}
int toPixelsX(const QWidget* w, double twips) {
    return qRound(twips * w->logicalDpiX() / 1440.0);
}
int toPixelsY(const QWidget* w, double twips) {
    return qRound(twips * w->logicalDpiY() / 1440.0);
}

int keyAscii(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Backspace:
            return 8;
        case Qt::Key_Escape:
            return 27;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Delete:
            return -1;
        default:
            break;
    }
    const QString typed = event.text();
    if (typed.isEmpty()) {
        return -1;
    }
    const char16_t first = typed.at(0).unicode();
    if (first < 32) {
        return first;  // control characters, as Ctrl+letter types them
    }
    if (first == 127) {
        return -1;
    }
    const std::string code = text::utf8ToCp1252(
        QString(typed.at(0).isHighSurrogate() ? typed.left(2) : typed.left(1)).toStdString());
    return code.empty() ? -1 : static_cast<unsigned char>(code[0]);
}

int buttonCode(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return 1;
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 4;
        default:
            return 0;
    }
}

int shiftCode(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
           (modifiers & Qt::AltModifier ? 4 : 0);
}

// ---- GridView ---------------------------------------------------------------------------------

void GridView::mousePressEvent(QMouseEvent* event) {
    afterDoubleClick_ = false;
    if (beforePress) {
        beforePress(event);
    }
    QTableView::mousePressEvent(event);
    if (afterPress) {
        afterPress(event);
    }
}

void GridView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    // The release that ends a double click is no click of its own.
    if (afterDoubleClick_) {
        afterDoubleClick_ = false;
        return;
    }
    if (clicked) {
        clicked(event);
    }
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (beforePress) {
        beforePress(event);
    }
    QTableView::mouseDoubleClickEvent(event);
    afterDoubleClick_ = true;
    if (doubleClicked) {
        doubleClicked(event);
    }
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (keyTyped && keyTyped(event)) {
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void GridView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    if (focusGained) {
        focusGained(event);
    }
}

void GridView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(QString::fromLatin1(kControlMimeType))) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void GridView::dragMoveEvent(QDragMoveEvent* event) {
    // A control can only land on a line of the table.
    if (event->mimeData()->hasFormat(QString::fromLatin1(kControlMimeType)) &&
        rowAt(event->position().toPoint().y()) >= 0) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void GridView::dropEvent(QDropEvent* event) {
    const int row = rowAt(event->position().toPoint().y());
    const QByteArray name = event->mimeData()->data(QString::fromLatin1(kControlMimeType));
    if (row < 0 || name.isNull()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    if (controlDropped) {
        controlDropped(QString::fromUtf8(name), row);
    }
}

// ---- NodeView ---------------------------------------------------------------------------------

std::string NodeView::hitTest(double x, double y) const {
    const QModelIndex at = indexAt(QPoint(toPixelsX(this, x), toPixelsY(this, y)));
    return at.isValid() && keyOf ? keyOf(at) : std::string();
}

void NodeView::scrollLine(int request) {
    verticalScrollBar()->triggerAction(request == 0 ? QAbstractSlider::SliderSingleStepSub
                                                    : QAbstractSlider::SliderSingleStepAdd);
}

double NodeView::heightTwips() const {
    return toTwipsY(this, viewport()->height());
}

void NodeView::mousePressEvent(QMouseEvent* event) {
    pressedButton_ = event->button();
    pressedIndex_ = indexAt(event->position().toPoint());
    if (pressed) {
        pressed(event);
    }
    // The right button only opens the pop-up menus; it neither selects nor starts a drag.
    if (event->button() != Qt::RightButton) {
        QTreeView::mousePressEvent(event);
    }
}

void NodeView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        return;
    }
    QTreeView::mouseReleaseEvent(event);
    const QModelIndex at = indexAt(event->position().toPoint());
    // A click on a node's label or picture, not on the branch sign beside it.
    if (event->button() == Qt::LeftButton && pressedButton_ == Qt::LeftButton && at.isValid() &&
        at == pressedIndex_ && visualRect(at).contains(event->position().toPoint()) &&
        nodeClicked) {
        nodeClicked(at);
    }
    pressedButton_ = Qt::NoButton;
}

void NodeView::startDrag(Qt::DropActions) {
    if (!dragStarting) {
        return;
    }
    const QString key = dragStarting();
    auto* data = new QMimeData;
    data->setText(key);
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    const QIcon icon = currentIndex().data(Qt::DecorationRole).value<QIcon>();
    if (!icon.isNull()) {
        drag->setPixmap(icon.pixmap(iconSize().isValid() ? iconSize() : QSize(16, 16)));
    }
    drag->exec(Qt::MoveAction);
}

void NodeView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasText()) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void NodeView::dragMoveEvent(QDragMoveEvent* event) {
    const int effect = draggedOver ? draggedOver(event->position()) : 0;
    if (effect == 2 && event->mimeData()->hasText()) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void NodeView::dragLeaveEvent(QDragLeaveEvent* event) {
    // The drop highlight and the dragging flag stay as the form left them.
    event->accept();
}

void NodeView::dropEvent(QDropEvent* event) {
    if (dropped) {
        dropped(event->mimeData()->text(), event->position());
    }
    // The node was moved here; the source has nothing to remove.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
}

}  // namespace vkl::gui
