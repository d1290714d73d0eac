// SPDX-License-Identifier: MIT
#include "app/documents/shared/shared_delegate.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <variant>

#include "app/documents/shared/shared_items.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_context.h"

namespace vell {
namespace {

constexpr int cellGap = 3;  // points around a picture
constexpr qreal cellCorner = 6;
constexpr int linePadding = 8;  // around the lines of a link or a file
constexpr qreal smallFont = 0.85;
constexpr int longestSide = 4;  // in cells; longer pictures show their middle smaller

QFont secondaryFont(QFont font) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * smallFont);
    } else {
        font.setPixelSize(std::max(1, qRound(font.pixelSize() * smallFont)));
    }
    return font;
}

/// The size in which the picture covers the cell.
QSize covering(QSize picture, QSize cell) {
    if (picture.isEmpty()) return cell;
    const QSize size = picture.scaled(cell, Qt::KeepAspectRatioByExpanding);
    const QSize most = cell * longestSide;
    return size.width() > most.width() || size.height() > most.height()
               ? picture.scaled(most, Qt::KeepAspectRatio).expandedTo(QSize(1, 1))
               : size;
}

}  // namespace

SharedDelegate::SharedDelegate(const SharedItems& items, PictureCache& pictures, QObject* parent)
    : QStyledItemDelegate(parent), items_(items), pictures_(pictures) {}

int SharedDelegate::lineItemHeight(const QFont& font) {
    const int secondary = QFontMetrics(secondaryFont(font)).lineSpacing();
    return 2 * linePadding + QFontMetrics(font).lineSpacing() + 2 * secondary;
}

void SharedDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const TesselChatLog::Event* event = items_.eventAt(index);
    if (!event) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (const auto* image = std::get_if<TesselChatLog::Image>(&event->value)) {
        paintPicture(*painter, option, *image);
    } else {
        paintLines(*painter, option, items_.lines(index));
    }
    painter->restore();
}

void SharedDelegate::paintPicture(QPainter& painter, const QStyleOptionViewItem& option,
                                  const TesselChatLog::Image& image) const {
    const QRect cell = option.rect.adjusted(cellGap, cellGap, -cellGap, -cellGap);
    QPainterPath rounded;
    rounded.addRoundedRect(cell, cellCorner, cellCorner);
    const foundation::Picture& picture = image.image();
    const QColor placeholder = RowColors::make(option.palette).separator;
    if (!pictures_.problem(picture).isEmpty()) {
        painter.fillPath(rounded, placeholder);
        painter.setPen(option.palette.color(QPalette::Text));
        painter.drawText(cell, Qt::AlignCenter,
                         QString::fromLatin1(foundation::name(picture.format)));
    } else {
        const qreal ratio = painter.device()->devicePixelRatioF();
        const QSize pixels =
            covering(pictures_.size(picture), (QSizeF(cell.size()) * ratio).toSize());
        if (const QImage* shown = pictures_.image(picture, pixels)) {
            const QSizeF size =
                QSizeF(shown->size()).scaled(cell.size(), Qt::KeepAspectRatioByExpanding);
            QRectF place(QPointF(), size);
            place.moveCenter(QRectF(cell).center());
            painter.setClipPath(rounded);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(place, *shown);
            painter.setClipping(false);
        } else {
            painter.fillPath(rounded, placeholder);
        }
    }
    if (option.state & QStyle::State_Selected) {
        painter.setPen(QPen(option.palette.color(QPalette::Highlight), cellGap));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cell, cellCorner, cellCorner);
    }
}

void SharedDelegate::paintLines(QPainter& painter, const QStyleOptionViewItem& option,
                                const QStringList& lines) const {
    const bool isSelected = option.state & QStyle::State_Selected;
    if (isSelected) painter.fillRect(option.rect, option.palette.color(QPalette::Highlight));
    const RowColors colors = RowColors::make(option.palette);
    QRect line = option.rect.adjusted(linePadding, linePadding, -linePadding, 0);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QFont font = i == 0 ? option.font : secondaryFont(option.font);
        const QFontMetrics metrics(font);
        line.setHeight(metrics.lineSpacing());
        painter.setFont(font);
        painter.setPen(isSelected ? colors.highlightedText
                       : i == 0   ? colors.label
                                  : colors.secondaryLabel);
        const bool isAddress = items_.kind() == SharedKind::link && i == 1;
        painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeading,
                         metrics.elidedText(lines[i], isAddress ? Qt::ElideMiddle : Qt::ElideRight,
                                            line.width()));
        line.translate(0, line.height());
    }
}

}  // namespace vell
