// SPDX-License-Identifier: MIT
#include "timeline/painting/floating_day.h"

#include <QAbstractScrollArea>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QTimerEvent>
#include <algorithm>
#include <utility>
#include <variant>

#include "toolkit/date_formatters.h"
#include "toolkit/mixed_color.h"

namespace vell {
namespace {

constexpr int shownMilliseconds = 1000;
constexpr int fadeStepMilliseconds = 16;
constexpr qreal fromEdge = 8;  // points
constexpr qreal sidePadding = 14;
constexpr qreal dayPadding = 5;
constexpr float backgroundOpacity = 0.94f;

}  // namespace

void FloatingDay::reset() {
    timer_.stop();
    isFading_ = false;
    place_ = {};
    text_.clear();
    label_ = {};
}

void FloatingDay::follow() {
    const qsizetype row = layout_.rowAt(context_.px(fromEdge));
    if (row < 0) return;
    const Place before = std::exchange(place_, {row, layout_.rowTop(row)});
    if (before.row < 0 || before == place_) return;
    const auto& event = layout_.chatlog().event(row);
    setText(dayFormatter().string(event.timestamp));
    isFading_ = false;
    timer_.start(shownMilliseconds, this);
}

void FloatingDay::setText(const QString& text) {
    if (text == text_ && !label_.isNull()) return;
    text_ = text;
    const QFontMetrics metrics(context_.fonts.boldBody);
    const QSizeF points(metrics.horizontalAdvance(text) + 2 * sidePadding,
                        metrics.height() + 2 * dayPadding);
    label_ = QImage(context_.px(points.width()), context_.px(points.height()),
                    QImage::Format_ARGB32_Premultiplied);
    label_.fill(Qt::transparent);
    QPainter painter(&label_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(context_.ratio, context_.ratio);
    painter.setLayoutDirection(context_.direction);
    const RowColors& colors = context_.colors;
    QColor background = mixed(colors.background, colors.label, 0.07f);
    background.setAlphaF(backgroundOpacity);
    painter.setBrush(background);
    painter.setPen(mixed(colors.background, colors.label, 0.22f));
    const QRectF pill = QRectF(QPointF(0, 0), QSizeF(label_.size()) / context_.ratio)
                            .adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    painter.setFont(context_.fonts.boldBody);
    painter.setPen(mixed(colors.background, colors.label, 0.8f));
    painter.drawText(pill, Qt::AlignCenter, text);
}

QRect FloatingDay::area() const {
    const int edge = context_.px(fromEdge);
    const int width = layout_.rowWidth() + 2 * layout_.rowLeft();
    QRect place(QPoint((width - label_.width()) / 2, edge), label_.size());
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        if (visible.top > place.bottom() + edge) break;
        const bool isDay = std::holds_alternative<DaySeparatorView>(visible.row->view.content());
        if (isDay && visible.top >= 0)
            place.moveBottom(std::min(place.bottom(), visible.top - edge - 1));
    }
    return place;
}

int FloatingDay::fadeMilliseconds() const {
    return area_.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &area_);
}

qreal FloatingDay::opacity() const {
    if (!isFading_) return 1;
    return 1 - static_cast<qreal>(sinceFading_.elapsed()) / std::max(fadeMilliseconds(), 1);
}

void FloatingDay::paint(QPainter& painter) const {
    const qreal visible = opacity();
    if (!timer_.isActive() || visible <= 0) return;
    painter.setOpacity(visible);
    painter.drawImage(area().topLeft(), label_);
    painter.setOpacity(1);
}

void FloatingDay::updateArea() {
    area_.viewport()->update(context_.touchedPoints(area()));
}

void FloatingDay::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return;
    updateArea();
    if (!std::exchange(isFading_, true)) {
        sinceFading_.start();
        timer_.start(fadeStepMilliseconds, this);
    }
    if (opacity() <= 0) timer_.stop();
}

}  // namespace vell
