#include "gui/Icons.h"

#include <QFont>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <functional>
#include <utility>

namespace vkl::gui::icons {

namespace {

// Every picture is drawn on a 16 x 16 grid and scaled to the pixels the views ask for, at the
// screen's device pixel ratio, so that it is as sharp at 200 % as at 100 %.
using Drawing = std::function<void(QPainter&)>;

const QColor kOutline(60, 60, 60);
const QColor kFolder(240, 196, 72);
const QColor kFolderDark(196, 148, 32);
const QColor kPaper(252, 252, 248);

class DrawnIcon : public QIconEngine {
  public:
    explicit DrawnIcon(Drawing draw) : draw_(std::move(draw)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }
    // size is in device pixels; the pixmap carries the ratio it was drawn for.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override {
        if (size.isEmpty()) {
            return {};
        }
        const QString key = QStringLiteral("%1x%2/%3/%4")
                                .arg(size.width())
                                .arg(size.height())
                                .arg(static_cast<int>(mode))
                                .arg(scale);
        if (const auto hit = drawn_.constFind(key); hit != drawn_.constEnd()) {
            return *hit;
        }
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size.width() / 16.0, size.height() / 16.0);
        if (mode == QIcon::Disabled) {
            p.setOpacity(0.4);
        }
        draw_(p);
        p.end();
        pixmap.setDevicePixelRatio(scale);
        drawn_.insert(key, pixmap);
        return pixmap;
    }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
    QIconEngine* clone() const override { return new DrawnIcon(draw_); }
    QString key() const override { return QStringLiteral("vkl-drawn"); }

  private:
    Drawing draw_;
    QHash<QString, QPixmap> drawn_;
};

QIcon render(const Drawing& draw) {
    return QIcon(new DrawnIcon(draw));
}

QPen outline(qreal width = 0.8) {
    return QPen(kOutline, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void closedFolder(QPainter& p, const QColor& body, const QColor& tab) {
    p.setPen(outline());
    p.setBrush(tab);
    QPainterPath tabPath;
    tabPath.moveTo(1.5, 4.5);
    tabPath.lineTo(1.5, 3.0);
    tabPath.lineTo(6.0, 3.0);
    tabPath.lineTo(7.5, 4.5);
    tabPath.closeSubpath();
    p.drawPath(tabPath);
    p.setBrush(body);
    p.drawRoundedRect(QRectF(1.5, 4.5, 13.0, 9.0), 1.0, 1.0);
}

void ruledLines(QPainter& p) {
    p.setPen(outline());
    p.setBrush(kPaper);
    p.drawRect(QRectF(1.5, 2.5, 10.0, 11.0));
    p.setPen(QPen(QColor(110, 130, 170), 1.0));
    for (qreal y : {5.0, 7.5, 10.0}) {
        p.drawLine(QPointF(3.0, y), QPointF(10.0, y));
    }
}

void badge(QPainter& p, const QString& text, const QColor& back) {
    p.setPen(outline());
    p.setBrush(back);
    p.drawRoundedRect(QRectF(0.5, 3.0, 15.0, 10.0), 2.0, 2.0);
    QFont font;
    font.setBold(true);
    font.setPixelSize(7);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRectF(0.5, 3.0, 15.0, 10.0), Qt::AlignCenter, text);
}

void arrow(QPainter& p, const QColor& fill) {
    p.setPen(outline());
    p.setBrush(fill);
    QPainterPath path;
    path.moveTo(2.0, 6.0);
    path.lineTo(8.0, 6.0);
    path.lineTo(8.0, 3.0);
    path.lineTo(14.0, 8.0);
    path.lineTo(8.0, 13.0);
    path.lineTo(8.0, 10.0);
    path.lineTo(2.0, 10.0);
    path.closeSubpath();
    p.drawPath(path);
}

const QHash<QString, Drawing>& toolbarDrawings() {
    static const QHash<QString, Drawing> drawings{
        {"open",
         [](QPainter& p) {
             closedFolder(p, kFolderDark, kFolderDark);
             // The lifted front of an open folder.
             p.setBrush(kFolder);
             QPainterPath front;
             front.moveTo(3.5, 7.0);
             front.lineTo(15.5, 7.0);
             front.lineTo(13.0, 13.5);
             front.lineTo(1.5, 13.5);
             front.closeSubpath();
             p.drawPath(front);
         }},
        {"save",
         [](QPainter& p) {
             p.setPen(outline());
             p.setBrush(QColor(58, 96, 168));
             QPainterPath body;
             body.moveTo(1.5, 1.5);
             body.lineTo(12.5, 1.5);
             body.lineTo(14.5, 3.5);
             body.lineTo(14.5, 14.5);
             body.lineTo(1.5, 14.5);
             body.closeSubpath();
             p.drawPath(body);
             p.setBrush(QColor(220, 224, 232));
             p.drawRect(QRectF(4.0, 1.5, 7.0, 4.5));  // shutter
             p.setBrush(kPaper);
             p.drawRect(QRectF(3.5, 8.5, 9.0, 6.0));  // label
         }},
        {"addline",
         [](QPainter& p) {
             ruledLines(p);
             p.setPen(outline());
             p.setBrush(QColor(46, 160, 67));
             p.drawEllipse(QRectF(8.5, 8.5, 7.0, 7.0));
             p.setPen(QPen(Qt::white, 1.4));
             p.drawLine(QPointF(10.2, 12.0), QPointF(13.8, 12.0));
             p.drawLine(QPointF(12.0, 10.2), QPointF(12.0, 13.8));
         }},
        {"delline",
         [](QPainter& p) {
             ruledLines(p);
             p.setPen(outline());
             p.setBrush(QColor(200, 48, 48));
             p.drawEllipse(QRectF(8.5, 8.5, 7.0, 7.0));
             p.setPen(QPen(Qt::white, 1.4));
             p.drawLine(QPointF(10.4, 10.4), QPointF(13.6, 13.6));
             p.drawLine(QPointF(13.6, 10.4), QPointF(10.4, 13.6));
         }},
        {"useeng", [](QPainter& p) { badge(p, QStringLiteral("EN"), QColor(36, 72, 150)); }},
        {"useger", [](QPainter& p) { badge(p, QStringLiteral("DE"), QColor(40, 40, 40)); }},
    };
    return drawings;
}

const QHash<QString, Drawing>& nodeDrawings() {
    static const QHash<QString, Drawing> drawings{
        {"root",
         [](QPainter& p) {
             // A menu: a title bar over three entries.
             p.setPen(outline());
             p.setBrush(kPaper);
             p.drawRect(QRectF(1.5, 1.5, 13.0, 13.0));
             p.setBrush(QColor(58, 96, 168));
             p.drawRect(QRectF(1.5, 1.5, 13.0, 3.5));
             p.setPen(QPen(QColor(90, 90, 90), 1.0));
             for (qreal y : {7.5, 10.0, 12.5}) {
                 p.drawLine(QPointF(3.5, y), QPointF(12.5, y));
             }
         }},
        {"arrow2", [](QPainter& p) { arrow(p, QColor(214, 64, 48)); }},
        {"arrow1", [](QPainter& p) { arrow(p, QColor(58, 120, 200)); }},
        {"folderclosed2",
         [](QPainter& p) { closedFolder(p, QColor(150, 200, 110), QColor(110, 160, 80)); }},
        {"item",
         [](QPainter& p) {
             p.setPen(outline());
             p.setBrush(kPaper);
             p.drawRect(QRectF(3.5, 1.5, 9.0, 13.0));
             p.setPen(QPen(QColor(120, 120, 120), 1.0));
             for (qreal y : {5.0, 8.0, 11.0}) {
                 p.drawLine(QPointF(5.0, y), QPointF(11.0, y));
             }
         }},
        {"folderclosed", [](QPainter& p) { closedFolder(p, kFolder, kFolderDark); }},
        {"image_here",
         [](QPainter& p) {
             closedFolder(p, kFolder, kFolderDark);
             // A small landscape picture on the folder.
             p.setPen(outline(0.6));
             p.setBrush(QColor(170, 210, 240));
             p.drawRect(QRectF(6.5, 7.0, 8.0, 6.0));
             p.setPen(Qt::NoPen);
             p.setBrush(QColor(60, 140, 60));
             QPainterPath hill;
             hill.moveTo(6.8, 12.7);
             hill.lineTo(9.5, 9.0);
             hill.lineTo(11.5, 11.0);
             hill.lineTo(12.5, 10.0);
             hill.lineTo(14.2, 12.7);
             hill.closeSubpath();
             p.drawPath(hill);
             p.setBrush(QColor(250, 210, 60));
             p.drawEllipse(QRectF(12.0, 7.6, 1.8, 1.8));
         }},
        {"blank", [](QPainter&) {}},
    };
    return drawings;
}

QIcon cached(QHash<QString, QIcon>& cache, const QHash<QString, Drawing>& drawings,
             const QString& key) {
    const auto hit = cache.constFind(key);
    if (hit != cache.constEnd()) {
        return *hit;
    }
    const auto drawing = drawings.constFind(key);
    QIcon icon = drawing == drawings.constEnd() ? QIcon() : render(*drawing);
    cache.insert(key, icon);
    return icon;
}

}  // namespace

// The caches live until the process ends: pixmaps must not be destroyed after the application
// object has gone, which a function-local static would do at exit.
QIcon toolbar(const QString& key) {
    static auto* cache = new QHash<QString, QIcon>;
    return cached(*cache, toolbarDrawings(), key);
}

QIcon node(const QString& key) {
    static auto* cache = new QHash<QString, QIcon>;
    return cached(*cache, nodeDrawings(), key);
}

}  // namespace vkl::gui::icons
