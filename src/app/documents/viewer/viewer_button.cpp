// SPDX-License-Identifier: MIT
#include "app/documents/viewer/viewer_button.h"

#include <QPainter>
#include <QPainterPath>

namespace vell {
namespace {

constexpr int diameter = 40;
constexpr qreal strokeWidth = 2;
constexpr int restingAlpha = 96;
constexpr int hoveredAlpha = 160;

/// Around the origin, some 16 points wide.
QPainterPath path(ViewerButton::Sign sign) {
    using Sign = ViewerButton::Sign;
    QPainterPath path;
    const auto line = [&path](std::initializer_list<QPointF> points) {
        path.moveTo(*points.begin());
        for (const QPointF& point : points)
            path.lineTo(point);
    };
    switch (sign) {
        case Sign::left:
            line({{3, -7}, {-4, 0}, {3, 7}});
            break;
        case Sign::right:
            line({{-3, -7}, {4, 0}, {-3, 7}});
            break;
        case Sign::close:
            line({{-6, -6}, {6, 6}});
            line({{-6, 6}, {6, -6}});
            break;
        case Sign::copy:
            path.addRoundedRect(QRectF(-3, -3, 10, 11), 2, 2);
            line({{-6, 4}, {-6, -7}, {3, -7}});
            break;
        case Sign::save:
            line({{0, -8}, {0, 3}});
            line({{-5, -2}, {0, 3}, {5, -2}});
            line({{-7, 4}, {-7, 8}, {7, 8}, {7, 4}});
            break;
    }
    return path;
}

}  // namespace

ViewerButton::ViewerButton(Sign sign, const QString& text, QWidget* parent)
    : QAbstractButton(parent), sign_(sign) {
    setToolTip(text);
    setAccessibleName(text);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::ArrowCursor);
    resize(sizeHint());
}

QSize ViewerButton::sizeHint() const {
    return {diameter, diameter};
}

void ViewerButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(1, 1, -1, -1);
    const bool isActive = (underMouse() || isDown()) && isEnabled();
    painter.setBrush(QColor(0, 0, 0, isActive ? hoveredAlpha : restingAlpha));
    painter.setPen(hasFocus() ? QPen(Qt::white, strokeWidth) : QPen(Qt::NoPen));
    painter.drawEllipse(circle);
    painter.translate(circle.center());
    painter.setBrush(Qt::NoBrush);
    const QColor ink = isEnabled() ? QColor(Qt::white) : QColor(255, 255, 255, restingAlpha);
    painter.setPen(QPen(ink, strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path(sign_));
}

}  // namespace vell
