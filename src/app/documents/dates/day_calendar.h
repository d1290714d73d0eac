#pragma once
// SPDX-License-Identifier: MIT
//
// DayCalendar: a month of a chat, each day shaded by how much was written on it.

#include <QCalendarWidget>
#include <vector>

#include "app/documents/chat_contents.h"

namespace vell {

class DayCalendar final : public QCalendarWidget {
    Q_OBJECT

  public:
    explicit DayCalendar(QWidget* parent = nullptr);

    /// The days of the chat, sorted. The calendar ends with them.
    void setDays(std::vector<ChatDay> days);
    [[nodiscard]] const std::vector<ChatDay>& days() const { return days_; }
    /// The day of the chat on this date; null when nothing was written.
    [[nodiscard]] const ChatDay* day(QDate date) const;
    /// The nearest day of the chat before (-1) or after (1) the date; null when there is none.
    [[nodiscard]] const ChatDay* neighbour(QDate date, int direction) const;

  protected:
    void changeEvent(QEvent* event) override;
    void paintCell(QPainter* painter, const QRect& rect, QDate date) const override;

  private:
    void setHeaderColors();

    std::vector<ChatDay> days_;
    qsizetype most_ = 0;  // messages of the busiest day
};

}  // namespace vell
