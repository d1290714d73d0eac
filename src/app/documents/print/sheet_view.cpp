// SPDX-License-Identifier: MIT
#include "app/documents/print/sheet_view.h"

#include <QPainter>

namespace vell {
namespace {

constexpr qreal around = 16;  // points
constexpr int shadowOffset = 3;
constexpr QColor shadow(0, 0, 0, 60);
constexpr QSize usualSize(560, 720);
constexpr QSize leastSize(200, 240);

}  // namespace

SheetView::SheetView(QSizeF sheet) : sheet_(sheet) {
    setMinimumSize(leastSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize SheetView::sizeHint() const {
    return usualSize;
}

QRectF SheetView::place() const {
    const QSizeF room = QSizeF(size()) - QSizeF(2 * around, 2 * around);
    const QSizeF shown = sheet_.scaled(room.expandedTo(QSizeF(1, 1)), Qt::KeepAspectRatio);
    return {QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown};
}

qreal SheetView::scale() const {
    return place().width() * devicePixelRatioF() / sheet_.width();
}

void SheetView::setPicture(const QImage& picture) {
    picture_ = picture;
    update();
}

void SheetView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(rect(), palette().color(QPalette::Mid));
    const QRectF sheet = place();
    painter.fillRect(sheet.translated(shadowOffset, shadowOffset), shadow);
    painter.fillRect(sheet, Qt::white);
    if (!picture_.isNull()) painter.drawImage(sheet, picture_);
}

void SheetView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

}  // namespace vell
