#include "gui/Views.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHash>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStaticText>
#include <QStyleOptionSlider>
#include <QtMath>

#include "gui/Convert.h"
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

// ---- Item painting ----------------------------------------------------------------------------

namespace {

// The laid-out glyphs of the texts painted lately, by font and text: a repaint after scrolling,
// removing or renumbering lines shows mostly texts painted just before, and laying a text out
// costs more than drawing it.
class ShapedTexts {
  public:
    const QStaticText& get(const QString& text, const QFont& font) {
        if (font != font_ || shaped_.size() > kMaxTexts) {
            shaped_.clear();
            font_ = font;
        }
        auto at = shaped_.find(text);
        if (at == shaped_.end()) {
            QStaticText shaped(text);
            shaped.setTextFormat(Qt::PlainText);
            shaped.setPerformanceHint(QStaticText::AggressiveCaching);
            shaped.prepare(QTransform(), font);
            at = shaped_.insert(text, shaped);
        }
        return *at;
    }

  private:
    static constexpr qsizetype kMaxTexts = 8192;
    QFont font_;
    QHash<QString, QStaticText> shaped_;
};

// One line of text in a cell, cut with an ellipsis when it is too wide. Placed by hand from the
// font's metrics: the general text layout costs several times as much per cell.
void drawLine(QPainter* painter, const QStyleOptionViewItem& option, QRect room,
              const QString& text, Qt::Alignment alignment) {
    static ShapedTexts* const cache = new ShapedTexts;  // kept to the end, like the fonts
    const QWidget* view = option.widget;
    const QStyle* style = view ? view->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1;
    room.adjust(margin, 0, -margin, 0);
    const QFontMetrics& metrics = option.fontMetrics;
    const QStaticText* shown = &cache->get(text, option.font);
    int width = qCeil(shown->size().width());
    if (width > room.width()) {
        shown = &cache->get(metrics.elidedText(text, Qt::ElideRight, room.width()), option.font);
        width = qCeil(shown->size().width());
    }
    int x = room.left();
    if (alignment & Qt::AlignHCenter) {
        x += (room.width() - width) / 2;
    } else if (alignment & Qt::AlignRight) {
        x = room.right() + 1 - width;
    }
    const int y = room.top() + (room.height() - metrics.height()) / 2;
    painter->drawStaticText(QPoint(x, y), *shown);
}

QPalette::ColorGroup colorGroup(const QStyleOptionViewItem& option) {
    if (!(option.state & QStyle::State_Enabled)) {
        return QPalette::Disabled;
    }
    return option.state & QStyle::State_Active ? QPalette::Normal : QPalette::Inactive;
}

}  // namespace

// ---- GridCellDelegate -------------------------------------------------------------------------

void GridCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    // The grid's lines are the last column and row of pixels of every cell, filled solid: the
    // view's own line drawing blends pixel by pixel and costs as much as the cells' texts.
    const QRect& whole = option.rect;
    const QWidget* view = option.widget;
    const QStyle* style = view ? view->style() : QApplication::style();
    QColor line = QColor::fromRgba(
        static_cast<QRgb>(style->styleHint(QStyle::SH_Table_GridLineColor, &option, view)));
    if (line.alpha() < 255) {
        line = mix(line, option.palette.color(QPalette::Base), line.alphaF());
    }
    painter->fillRect(QRect(whole.right(), whole.top(), 1, whole.height()), line);
    painter->fillRect(QRect(whole.left(), whole.bottom(), whole.width() - 1, 1), line);
    QStyleOptionViewItem cell = option;
    cell.rect = whole.adjusted(0, 0, -1, -1);
    paintCell(painter, cell, index);
}

void GridCellDelegate::paintCell(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    const QVariant back = index.data(Qt::BackgroundRole);
    if (back.isValid()) {
        painter->fillRect(option.rect, qvariant_cast<QBrush>(back));
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    if (!text.isEmpty()) {
        const QVariant align = index.data(Qt::TextAlignmentRole);
        const Qt::Alignment alignment =
            align.isValid() ? Qt::Alignment(align.toInt()) : (Qt::AlignLeft | Qt::AlignVCenter);
        painter->save();
        painter->setFont(option.font);
        painter->setPen(option.palette.color(colorGroup(option), QPalette::Text));
        drawLine(painter, option, option.rect, text, alignment);
        painter->restore();
    }
    if (option.state & QStyle::State_HasFocus) {
        // The current cell, framed so that its own colour still shows.
        painter->save();
        painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRectF(option.rect).adjusted(1, 1, -1, -1));
        painter->restore();
    }
}

// ---- NodeDelegate -----------------------------------------------------------------------------

void NodeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QPalette::ColorGroup group = colorGroup(option);
    const bool selected = option.state & QStyle::State_Selected;
    QColor ink = option.palette.color(group, QPalette::Text);
    if (selected) {
        painter->fillRect(option.rect, option.palette.brush(group, QPalette::Highlight));
        ink = option.palette.color(group, QPalette::HighlightedText);
    } else {
        const QVariant back = index.data(Qt::BackgroundRole);
        if (back.isValid()) {
            painter->fillRect(option.rect, qvariant_cast<QBrush>(back));
        }
        const QVariant fore = index.data(Qt::ForegroundRole);
        if (fore.isValid()) {
            ink = qvariant_cast<QColor>(fore);
        }
    }
    QRect room = option.rect;
    const QVariant decoration = index.data(Qt::DecorationRole);
    if (decoration.isValid()) {
        const QSize size = option.decorationSize;
        const QRect at(room.left() + 2, room.top() + (room.height() - size.height()) / 2,
                       size.width(), size.height());
        qvariant_cast<QIcon>(decoration)
            .paint(painter, at, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
        room.setLeft(at.right() + 1);
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    if (!text.isEmpty()) {
        painter->save();
        painter->setFont(option.font);
        painter->setPen(ink);
        drawLine(painter, option, room, text, Qt::AlignLeft | Qt::AlignVCenter);
        painter->restore();
    }
}

// ---- StillScrollBar ---------------------------------------------------------------------------

void StillScrollBar::paintEvent(QPaintEvent* event) {
    if (underMouse() || isSliderDown()) {
        QScrollBar::paintEvent(event);
        return;
    }
    QStyleOptionSlider option;
    initStyleOption(&option);
    const Picture now{
        style(), option.rect,
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this),
        static_cast<int>(option.state), option.palette.cacheKey(), devicePixelRatio(),
        // Some styles grey out an arrow that can go no further.
        value() == minimum(), value() == maximum()};
    if (kept_.isNull() || !(now == shown_)) {
        kept_ = QPixmap(option.rect.size() * now.pixelRatio);
        kept_.setDevicePixelRatio(now.pixelRatio);
        kept_.fill(Qt::transparent);
        // A painter on the picture starts as one on the widget would.
        QPainter into(&kept_);
        into.setPen(palette().color(foregroundRole()));
        into.setBackground(palette().brush(backgroundRole()));
        into.setFont(font());
        option.subControls = QStyle::SC_All;
        style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &into, this);
        shown_ = now;
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, kept_);
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

bool NodeView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    // The form selects the node on the press, before the view sees it; only a click on a node
    // that was selected already starts editing its label.
    if (trigger == SelectedClicked && !pressedWasSelected_) {
        return false;
    }
    return QTreeView::edit(index, trigger, event);
}

void NodeView::mousePressEvent(QMouseEvent* event) {
    pressedButton_ = event->button();
    pressedIndex_ = indexAt(event->position().toPoint());
    pressedWasSelected_ =
        pressedIndex_.isValid() && selectionModel() && selectionModel()->isSelected(pressedIndex_);
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
    // A press that became a drag is no click, wherever the release ends up.
    pressedButton_ = Qt::NoButton;
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
