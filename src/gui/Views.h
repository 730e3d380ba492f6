#pragma once

#include <QPixmap>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTreeView>

#include <functional>

#include "platform/TreeViewPort.h"

class QKeyEvent;

namespace vkl::gui {

// Twips (1440 to the logical inch) and pixels of a widget's screen.
double toTwipsX(const QWidget* w, double px);
double toTwipsY(const QWidget* w, double px);
int toPixelsX(const QWidget* w, double twips);
int toPixelsY(const QWidget* w, double twips);

// The character code a key press delivers to a key-press handler: the Windows-1252 code of the
// typed character (Enter 13, Backspace 8, Escape 27), or -1 for keys that type nothing.
int keyAscii(const QKeyEvent& event);

// The mouse button as the handlers count it: 1 left, 2 right, 4 middle; 0 for any other.
int buttonCode(Qt::MouseButton button);
// The shift state as the handlers count it: 1 Shift, 2 Ctrl, 4 Alt.
int shiftCode(Qt::KeyboardModifiers modifiers);

// The MIME type of a control dragged onto the grid; the data is the control's name.
inline constexpr char kControlMimeType[] = "application/x-vkl-control";

// A cell of the menu table: its colour, its text on one line, and a frame when it is the current
// cell of the focused grid. Cells carry no pictures, check marks or selection, so the general
// item painting (which lays the text out several times per cell) is not needed; with 32,000
// lines a reset repaints many cells at once.
class GridCellDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

  private:
    void paintCell(QPainter* painter, const QStyleOptionViewItem& option,
                   const QModelIndex& index) const;
};

// A node of the menu tree: its picture and its label, in the selection's or the drop
// highlight's colours. Laid out by hand for the same reason as the grid's cells.
class NodeDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

// A scroll bar that keeps its last picture and shows it again while nothing drawn in it changed.
// The views lay themselves out after every removal of a line and Qt repaints their scroll bars
// each time, though with 32,000 lines a removal moves the slider by less than a pixel; the
// style's groove is costly to paint (its fills go to Qt's thread pool). Pressed or under the
// pointer, it is painted as usual: those states are not in the picture.
class StillScrollBar : public QScrollBar {
  public:
    using QScrollBar::QScrollBar;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Picture {
        const QStyle* style = nullptr;
        QRect rect;
        QRect slider;
        int state = 0;
        qint64 palette = 0;
        qreal pixelRatio = 1;
        bool atMinimum = false;
        bool atMaximum = false;
        friend bool operator==(const Picture&, const Picture&) = default;
    };
    Picture shown_;
    QPixmap kept_;
};

// The menu table's view. Its events go to the window's hooks, in the order the form's handlers
// need them: a press is announced before the current cell moves and again after it moved.
class GridView : public QTableView {
  public:
    using QTableView::QTableView;

    std::function<void(QMouseEvent*)> beforePress;
    std::function<void(QMouseEvent*)> afterPress;
    std::function<void(QMouseEvent*)> clicked;        // release of a single click
    std::function<void(QMouseEvent*)> doubleClicked;  // after the view handled it
    std::function<bool(QKeyEvent*)> keyTyped;         // true: the key was taken
    std::function<void(QFocusEvent*)> focusGained;
    std::function<void(const QString& control, int viewRow)> controlDropped;

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    bool afterDoubleClick_ = false;
};

// The menu tree's view, and the pixel operations the form's tree logic asks for (positions in
// twips of the viewport).
class NodeView : public QTreeView, public TreeViewPort {
  public:
    using QTreeView::QTreeView;

    // Node under a viewport point, as the tree keys it ("" when none).
    std::function<std::string(const QModelIndex&)> keyOf;
    std::function<void(QMouseEvent*)> pressed;  // before the view selects
    std::function<void(const QModelIndex&)> nodeClicked;
    std::function<QString()> dragStarting;    // returns the dragged node's key
    std::function<int(QPointF)> draggedOver;  // returns the effect: 2 move, 0 no drop
    std::function<void(const QString& text, QPointF)> dropped;

    std::string hitTest(double x, double y) const override;
    void scrollLine(int request) override;
    double heightTwips() const override;

    using QTreeView::edit;

  protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QPersistentModelIndex pressedIndex_;
    Qt::MouseButton pressedButton_ = Qt::NoButton;
    // Whether the pressed node was selected before the press reached the form, which selects it.
    bool pressedWasSelected_ = false;
};

}  // namespace vkl::gui
