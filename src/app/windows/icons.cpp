// SPDX-License-Identifier: MIT
#include "app/windows/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace vell {
namespace {

constexpr qreal gridSize = 16;

/// Draws lines on a grid of 16 points, scaled to the icon's size.
class LineIcon final : public QIconEngine {
  public:
    explicit LineIcon(const QPainterPath& lines) : lines_(lines) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const qreal scale = std::min(rect.width(), rect.height()) / gridSize;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(QGuiApplication::palette().color(group, role), 1.2, Qt::SolidLine,
                             Qt::RoundCap, Qt::RoundJoin));
        painter->translate(rect.center() + QPointF(0.5, 0.5) - QPointF(8, 8) * scale);
        painter->scale(scale, scale);
        painter->drawPath(lines_);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new LineIcon(lines_); }

  private:
    QPainterPath lines_;
};

}  // namespace

QIcon copyIcon() {
    QPainterPath lines;
    lines.addRoundedRect(QRectF(5.5, 5, 8, 9.5), 1.5, 1.5);
    lines.moveTo(3.5, 11);  // the sheet behind it
    lines.quadTo(2.5, 11, 2.5, 9.5);
    lines.lineTo(2.5, 3);
    lines.quadTo(2.5, 1.5, 4, 1.5);
    lines.lineTo(9, 1.5);
    lines.quadTo(10.5, 1.5, 10.5, 3);
    return QIcon(new LineIcon(lines));
}

QIcon peopleIcon() {
    QPainterPath lines;
    lines.addEllipse(QRectF(3.5, 3, 5, 5));
    lines.moveTo(1, 13.5);
    lines.cubicTo(1, 8.5, 11, 8.5, 11, 13.5);
    lines.closeSubpath();
    lines.moveTo(10.2, 3.2);  // who stands behind
    lines.cubicTo(13.5, 2.6, 14, 7.4, 11, 7.8);
    lines.moveTo(12.6, 10);
    lines.cubicTo(14.4, 10.6, 15, 12, 15, 13.5);
    lines.lineTo(13, 13.5);
    return QIcon(new LineIcon(lines));
}

QIcon sortIcon() {
    QPainterPath lines;
    for (const auto& [y, end] :
         {std::pair(4.5, 13.5), std::pair(8.0, 10.5), std::pair(11.5, 7.5)}) {
        lines.moveTo(2.5, y);
        lines.lineTo(end, y);
    }
    return QIcon(new LineIcon(lines));
}

QIcon searchIcon() {
    QPainterPath lines;
    lines.addEllipse(QRectF(2.5, 2.5, 8, 8));
    lines.moveTo(9.5, 9.5);
    lines.lineTo(13.5, 13.5);
    return QIcon(new LineIcon(lines));
}

QIcon chartIcon() {
    QPainterPath lines;
    lines.addRect(QRectF(2.5, 8.5, 2.5, 5));
    lines.addRect(QRectF(6.75, 3, 2.5, 10.5));
    lines.addRect(QRectF(11, 6, 2.5, 7.5));
    return QIcon(new LineIcon(lines));
}

QIcon addIcon() {
    QPainterPath lines;
    lines.moveTo(8, 3);
    lines.lineTo(8, 13);
    lines.moveTo(3, 8);
    lines.lineTo(13, 8);
    return QIcon(new LineIcon(lines));
}

}  // namespace vell
