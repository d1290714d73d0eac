// SPDX-License-Identifier: MIT
#include "timeline/rows/image_bubble_view.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QStringList>
#include <QTransform>
#include <algorithm>

#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_text.h"

namespace vell {
namespace {

constexpr qreal padding = 6;
constexpr qreal tailPadding = 10;
constexpr qreal cornerRadius = 16;
constexpr qreal highest = 480;
constexpr qreal playSign = 48;
// What a picture gets whose size isn't known before it is decoded, in points.
constexpr QSize unknownSize(240, 180);

QSize fitted(QSize natural, QSize room) {
    if (natural.width() > room.width() || natural.height() > room.height()) {
        natural.scale(room, Qt::KeepAspectRatio);
    }
    return natural.expandedTo(QSize(1, 1));
}

/// A triangle in a dark disc: a click plays the picture.
void paintPlaySign(QPainter& painter, const QRect& room, const RowContext& context) {
    const qreal side =
        std::min<qreal>({playSign * context.ratio, room.width() * 0.6, room.height() * 0.6});
    const QPointF middle = QRectF(room).center();
    painter.setPen(QPen(QColor(255, 255, 255, 200), side / 24));
    painter.setBrush(QColor(0, 0, 0, 130));
    painter.drawEllipse(middle, side / 2, side / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    const qreal reach = side / 4;
    painter.drawPolygon(
        QPolygonF({middle + QPointF(-reach * 0.7, -reach), middle + QPointF(reach * 1.1, 0),
                   middle + QPointF(-reach * 0.7, reach)}));
}

}  // namespace

//      others                              own
//        ,------------------.                ,------------------.
//        |        6         |                |         6        |
//        | 10 [picture] 6   |                |   6 [picture] 10 |
//      _ |        6         |                |         6        | _
//      `-------------------'                  `-------------------'

RowLayout ImageBubbleView::measure(const RowContext& context, int width) const {
    if (const QString problem = context.pictures.problem(image.image()); !problem.isEmpty()) {
        return explanation(problem).measure(context, width);
    }
    const int plain = context.px(padding);
    const int tail = context.px(tailPadding);
    const QMargins margins(owner.isOwn ? plain : tail, plain, owner.isOwn ? tail : plain, plain);
    const int widest = std::min(widestBubble(owner, context, width) - plain - tail, width * 2 / 3);
    const QSize known = context.pictures.size(image.image());
    const QSize points = known.isEmpty() ? unknownSize : known;
    const QSize natural(context.px(points.width()), context.px(points.height()));
    return placeBubble(owner, fitted(natural, QSize(widest, context.px(highest))), margins, context,
                       width);
}

void ImageBubbleView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                            const RowPaint& what) const {
    if (layout.text) {
        explanation({}).paint(painter, layout, context, what);
        return;
    }
    paintBubble(painter, owner, layout, context, what);
    const QRect& room = layout.content;
    const qreal radius =
        std::min<qreal>({cornerRadius * context.ratio, room.width() / 2.0, room.height() / 2.0});
    QPainterPath rounded;
    rounded.addRoundedRect(room, radius, radius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QImage* pixels =
        what.frame ? what.frame : context.pictures.image(image.image(), room.size());
    if (pixels) {
        // As a texture, so that the rounded corners are smooth; it may be one of another size.
        const QSizeF shown = QSizeF(pixels->size()).scaled(room.size(), Qt::KeepAspectRatio);
        const QPointF corner = QRectF(room).center() - QPointF(shown.width(), shown.height()) / 2;
        QBrush texture(*pixels);
        texture.setTransform(
            QTransform::fromTranslate(corner.x(), corner.y())
                .scale(shown.width() / pixels->width(), shown.height() / pixels->height()));
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.fillPath(rounded, texture);
    } else {
        painter.fillPath(rounded, context.colors.separator);
    }
    if (!what.frame && context.pictures.isAnimated(image.image()))
        paintPlaySign(painter, room, context);
    for (const TextHighlight& highlight : what.highlights) {
        if (highlight.kind == HighlightKind::selection)
            painter.fillPath(rounded, selectedPictureColor(context));
    }
    painter.restore();
}

QString ImageBubbleView::name() const {
    return pictureName(image);
}

PlainMessageBubbleView ImageBubbleView::explanation(const QString& problem) const {
    QStringList lines{name(), QString::fromLatin1(foundation::name(image.image().format)), problem};
    lines.removeAll(QString());
    PlainMessageBubbleView bubble;
    bubble.content = lines.join(u'\n');
    bubble.owner = owner;
    return bubble;
}

}  // namespace vell
