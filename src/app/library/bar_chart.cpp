// SPDX-License-Identifier: MIT
#include "app/library/bar_chart.h"

#include <QHelpEvent>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QToolTip>
#include <QtMath>
#include <algorithm>

#include "app/library/list_row.h"

namespace vell {
namespace {

constexpr int columnsHeight = 120;
constexpr int labelGap = 4;
constexpr int rowGap = 6;
constexpr int widestColumn = 44;
constexpr qreal columnShare = 0.72;  // of its slot
constexpr qreal barCorner = 3;
constexpr qreal leastLength = 2;  // of what isn't nothing
constexpr qreal mostLabelShare = 0.35;

void fill(QPainter& painter, const QRectF& bar) {
    const qreal radius = std::min({barCorner, bar.width() / 2, bar.height() / 2});
    QPainterPath path;
    path.addRoundedRect(bar, radius, radius);
    painter.fillPath(path, painter.brush());
}

}  // namespace

BarChart::BarChart(const QString& title, Shape shape, QWidget* parent)
    : QWidget(parent), shape_(shape) {
    setAccessibleName(title);
    setFont(ListRow::smallFont(font()));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void BarChart::setBars(std::vector<Bar> bars) {
    bars_ = std::move(bars);
    most_ = 0;
    QStringList details;
    for (const Bar& bar : bars_) {
        most_ = std::max(most_, bar.value);
        details.append(bar.details);
    }
    setAccessibleDescription(details.join(QStringLiteral("; ")));
    updateGeometry();
    update();
}

QSize BarChart::sizeHint() const {
    const int line = fontMetrics().height();
    if (shape_ == Shape::columns) return {300, columnsHeight + labelGap + line};
    return {300, static_cast<int>(bars_.size()) * (line + rowGap)};
}

QRect BarChart::slot(std::size_t bar) const {
    const auto count = static_cast<int>(bars_.size());
    const auto at = static_cast<int>(bar);
    if (shape_ == Shape::rows) {
        const int height = fontMetrics().height() + rowGap;
        return {0, at * height, width(), height};
    }
    const int left = width() * at / count;
    const QRect slot(left, 0, width() * (at + 1) / count - left, height());
    return QStyle::visualRect(layoutDirection(), rect(), slot);
}

int BarChart::labelWidth() const {
    const QFontMetricsF metrics(font(), this);
    qreal widest = 0;
    for (const Bar& bar : bars_)
        widest = std::max(widest, metrics.horizontalAdvance(bar.label));
    return std::min(qCeil(widest) + 1, qRound(width() * mostLabelShare));
}

QColor BarChart::labelColor() const {
    return palette().color(QPalette::PlaceholderText);
}

/// As many as have room beside each other.
bool BarChart::showsLabel(std::size_t bar) const {
    int widest = 1;
    for (const Bar& each : bars_)
        widest = std::max(widest, fontMetrics().horizontalAdvance(each.label + u' '));
    const int room = std::max(1, width() / static_cast<int>(bars_.size()));
    const int step = (widest + room - 1) / room;
    return static_cast<int>(bar) % step == 0;
}

void BarChart::paintColumn(QPainter& painter, std::size_t bar) const {
    const QRect room = slot(bar);
    const int line = fontMetrics().height();
    const qreal full = room.height() - line - labelGap;
    const qreal width = std::min<qreal>(room.width() * columnShare, widestColumn);
    const qreal share = static_cast<qreal>(bars_[bar].value) / static_cast<qreal>(most_);
    if (bars_[bar].value > 0) {
        const qreal length = std::max(full * share, leastLength);
        fill(painter, QRectF(QRectF(room).center().x() - width / 2, full - length, width, length));
    }
    if (!showsLabel(bar)) return;
    QRect label(0, 0, this->width(), line);
    label.moveCenter(QPoint(room.center().x(), room.bottom() - line / 2));
    painter.setPen(labelColor());
    painter.drawText(label, Qt::AlignCenter | Qt::TextSingleLine, bars_[bar].label);
}

void BarChart::paintRow(QPainter& painter, std::size_t bar) const {
    const QRect room = slot(bar);
    const auto visual = [&](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect(), part);
    };
    const QString value = QLocale().toString(bars_[bar].value);
    const QString widestValue = QLocale().toString(most_);
    const int label = labelWidth();
    const int number = fontMetrics().horizontalAdvance(widestValue);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(visual({0, room.top(), label, room.height()}),
                     int(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) |
                         Qt::AlignVCenter | Qt::TextSingleLine),
                     fontMetrics().elidedText(bars_[bar].label, Qt::ElideRight, label));
    painter.setPen(labelColor());
    painter.drawText(visual({width() - number, room.top(), number, room.height()}),
                     int(QStyle::visualAlignment(layoutDirection(), Qt::AlignRight) |
                         Qt::AlignVCenter | Qt::TextSingleLine),
                     value);
    const int left = label + 2 * rowGap;
    const int full = std::max(0, width() - number - 2 * rowGap - left);
    const qreal share = static_cast<qreal>(bars_[bar].value) / static_cast<qreal>(most_);
    const int length = std::max(qRound(full * share), qRound(leastLength));
    fill(painter, visual({left, room.top() + rowGap / 2, length, room.height() - rowGap}));
}

void BarChart::paintEvent(QPaintEvent*) {
    if (most_ == 0) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(palette().color(QPalette::Highlight));
    for (std::size_t bar = 0; bar < bars_.size(); ++bar)
        shape_ == Shape::columns ? paintColumn(painter, bar) : paintRow(painter, bar);
}

bool BarChart::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    for (std::size_t bar = 0; bar < bars_.size(); ++bar) {
        if (!slot(bar).contains(help.pos())) continue;
        QToolTip::showText(help.globalPos(), bars_[bar].details, this, slot(bar));
        return true;
    }
    QToolTip::hideText();
    return true;
}

}  // namespace vell
