#pragma once
// SPDX-License-Identifier: MIT
//
// FloatingDay: shows the day of the rows at the top edge while they are scrolled, and fades a
// second later. A day separator that comes up takes its place.

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QRect>

#include "timeline/layout/timeline_layout.h"

class QAbstractScrollArea;
class QPainter;

namespace vell {

class FloatingDay final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it.
    FloatingDay(QAbstractScrollArea& area, const TimelineLayout& layout, const RowContext& context)
        : area_(area), layout_(layout), context_(context) {}

    /// To be called after rows may have moved; shows the day if they have.
    void follow();
    /// Hides the day. The next follow() only takes note of where the rows are.
    void reset();
    /// Where it is painted, in device pixels; empty while it isn't shown.
    [[nodiscard]] QRect shownArea() const { return timer_.isActive() ? area() : QRect(); }
    /// The painter counts the viewport's device pixels.
    void paint(QPainter& painter) const;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    struct Place {
        qsizetype row = -1;
        qint64 top = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };

    void setText(const QString& text);
    [[nodiscard]] qreal opacity() const;
    [[nodiscard]] int fadeMilliseconds() const;
    /// Outside the viewport while a separator is there.
    [[nodiscard]] QRect area() const;
    void updateArea();

    QAbstractScrollArea& area_;
    const TimelineLayout& layout_;
    const RowContext& context_;
    Place place_;
    QString text_;
    QImage label_;
    QBasicTimer timer_;  // active while it is shown
    bool isFading_ = false;
    QElapsedTimer sinceFading_;
};

}  // namespace vell
