#pragma once
// SPDX-License-Identifier: MIT
//
// GoToDateDialog: a calendar to move through a chat by. It stays open beside the chat, which
// follows each click and each step; the return key and a double click close it.

#include <QDate>
#include <QDialog>
#include <vector>

#include "app/documents/chat_contents.h"

class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

namespace vell {

class DayCalendar;

class GoToDateDialog final : public QDialog {
    Q_OBJECT

  public:
    explicit GoToDateDialog(QWidget* parent);

    /// Until they are there, the calendar is plain.
    void setDays(const std::vector<ChatDay>& days);
    /// Selects a date without going anywhere.
    void showDate(QDate date);

  Q_SIGNALS:
    /// The row at which the chosen day begins.
    void chosen(qsizetype row);

  private:
    [[nodiscard]] QWidget* buildMonths();
    [[nodiscard]] QWidget* buildSteps();
    void fillYears();
    void fillMonths(QMenu& months, int year);
    void describeSelection();
    /// Goes to the date, or to the nearest day after it, else before it, with messages.
    void go(QDate date);
    void step(int direction);

    DayCalendar* calendar_;
    QToolButton* month_;
    QMenu* years_;
    QLabel* description_;
    QPushButton* previous_;
    QPushButton* next_;
};

}  // namespace vell
