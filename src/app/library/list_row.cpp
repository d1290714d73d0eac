// SPDX-License-Identifier: MIT
#include "app/library/list_row.h"

#include <QStyle>
#include <QTextOption>
#include <QWidget>
#include <algorithm>

namespace vell {
namespace {

constexpr int inset = 4;            // of the selection
constexpr int selectionCorner = 6;  // of the selection
constexpr int linesPadding = 8;     // above and below the lines
constexpr int lineGap = 3;
constexpr int endGap = 8;
constexpr qreal smallShare = 0.88;
constexpr float fadedShare = 0.6F;
constexpr float quietSelection = 0.12F;

}  // namespace

QFont ListRow::smallFont(QFont font) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * smallShare);
    else
        font.setPixelSize(std::max(1, qRound(font.pixelSize() * smallShare)));
    return font;
}

int ListRow::singleHeight(const QFont& font) {
    return 2 * linesPadding + QFontMetrics(font).height();
}

int ListRow::height(const QFont& font, int leastContent) {
    const int lines =
        QFontMetrics(font).height() + lineGap + QFontMetrics(smallFont(font)).height();
    return 2 * linesPadding + std::max(lines, leastContent);
}

ListRow::ListRow(QPainter& painter, const QStyleOptionViewItem& option)
    : painter_(painter),
      option_(option),
      isHighlighted_((option.state & QStyle::State_Selected) && option.widget &&
                     option.widget->hasFocus()),
      room_(option.rect.adjusted(margin, linesPadding, -margin, -linesPadding)) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    text_ = option.palette.color(isHighlighted_ ? QPalette::HighlightedText : QPalette::Text);
    if (!(option.state & QStyle::State_Selected)) return;
    QColor ground = option.palette.color(isHighlighted_ ? QPalette::Highlight : QPalette::Text);
    if (!isHighlighted_) ground.setAlphaF(quietSelection);
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(ground);
    painter_.drawRoundedRect(option.rect.adjusted(inset, 1, -inset, -1), selectionCorner,
                             selectionCorner);
}

ListRow::~ListRow() {
    painter_.restore();
}

QRect ListRow::takeStart(int width) {
    QRect taken = room_;
    taken.setWidth(width);
    taken = QStyle::visualRect(option_.direction, room_, taken);
    if (option_.direction == Qt::RightToLeft)
        room_.setRight(taken.left() - 1 - endGap);
    else
        room_.setLeft(taken.right() + 1 + endGap);
    return taken;
}

QRect ListRow::place(Line line) const {
    const int first = QFontMetrics(font(Line::first, Weight::normal)).height();
    const int second = QFontMetrics(font(Line::second, Weight::normal)).height();
    if (line == Line::only)
        return {room_.left(), option_.rect.top(), room_.width(), option_.rect.height()};
    const int top = room_.center().y() - (first + lineGap + second) / 2;
    return line == Line::first ? QRect(room_.left(), top, room_.width(), first)
                               : QRect(room_.left(), top + first + lineGap, room_.width(), second);
}

QFont ListRow::font(Line line, Weight weight) const {
    QFont font = line == Line::second ? smallFont(option_.font) : option_.font;
    if (weight == Weight::strong) font.setWeight(QFont::DemiBold);
    return font;
}

QColor ListRow::color(Weight weight) const {
    QColor color = text_;
    if (weight == Weight::faded) color.setAlphaF(color.alphaF() * fadedShare);
    return color;
}

void ListRow::writeEnd(Line line, const QString& text) {
    if (text.isEmpty()) return;
    const QFont font = smallFont(option_.font);
    painter_.setFont(font);
    painter_.setPen(color(Weight::faded));
    const auto side = QStyle::visualAlignment(option_.direction, Qt::AlignRight);
    painter_.drawText(place(line), int(side | Qt::AlignVCenter | Qt::TextSingleLine), text);
    int& end = line == Line::second ? secondEnd_ : firstEnd_;
    end = QFontMetrics(font).horizontalAdvance(text) + endGap;
}

void ListRow::write(Line line, const QString& text, Weight weight,
                    const QVector<QTextLayout::FormatRange>& formats) {
    QRect room = place(line);
    const int end = line == Line::second ? secondEnd_ : firstEnd_;
    if (option_.direction == Qt::RightToLeft)
        room.setLeft(room.left() + end);
    else
        room.setRight(room.right() - end);
    const QFont font = this->font(line, weight);
    const QFontMetrics metrics(font);
    QTextLayout layout(metrics.elidedText(text, Qt::ElideRight, room.width()), font);
    // What people wrote runs in its own direction, whatever the desktop's is.
    QTextOption flow(QStyle::visualAlignment(option_.direction, Qt::AlignLeft) | Qt::AlignAbsolute);
    flow.setTextDirection(Qt::LayoutDirectionAuto);
    flow.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(flow);
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine row = layout.createLine();
    if (row.isValid()) row.setLineWidth(room.width());
    layout.endLayout();
    painter_.setPen(color(weight));
    painter_.setClipRect(room);
    const qreal above = (room.height() - layout.boundingRect().height()) / 2;
    layout.draw(&painter_, QPointF(room.left(), room.top() + above));
    painter_.setClipping(false);
}

}  // namespace vell
