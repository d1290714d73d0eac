// SPDX-License-Identifier: MIT
#include "app/documents/dates/go_to_date_dialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/documents/dates/day_calendar.h"
#include "app/windows/widgets.h"

namespace vell {

GoToDateDialog::GoToDateDialog(QWidget* parent)
    : QDialog(parent),
      calendar_(new DayCalendar),
      month_(new QToolButton),
      years_(new QMenu(month_)),
      description_(secondaryLabel({})),
      previous_(new QPushButton),
      next_(new QPushButton) {
    setObjectName(QStringLiteral("goToDate"));
    setWindowTitle(tr("Go to Date"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildMonths());
    layout->addWidget(calendar_, 1);
    layout->addWidget(description_);
    layout->addWidget(buildSteps());
    layout->setSizeConstraint(QLayout::SetFixedSize);
    calendar_->setMinimumSize(336, 252);
    description_->setAlignment(Qt::AlignCenter);
    connect(calendar_, &QCalendarWidget::selectionChanged, this,
            &GoToDateDialog::describeSelection);
    connect(calendar_, &QCalendarWidget::clicked, this, &GoToDateDialog::go);
    connect(calendar_, &QCalendarWidget::activated, this, [this](QDate date) {
        go(date);
        close();
    });
    calendar_->setFocus();
    describeSelection();
}

QWidget* GoToDateDialog::buildMonths() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    const auto arrow = [&](const QString& text, bool isForward) {
        auto* button = new QToolButton;
        const bool pointsRight = isForward == (layoutDirection() == Qt::LeftToRight);
        button->setArrowType(pointsRight ? Qt::RightArrow : Qt::LeftArrow);
        button->setAutoRaise(true);
        button->setToolTip(text);
        button->setAccessibleName(text);
        return button;
    };
    QToolButton* previous = arrow(tr("Previous month"), false);
    QToolButton* next = arrow(tr("Next month"), true);
    month_->setAutoRaise(true);
    month_->setPopupMode(QToolButton::InstantPopup);
    month_->setMenu(years_);
    QFont font = month_->font();
    font.setBold(true);
    month_->setFont(font);
    layout->addWidget(previous);
    layout->addStretch();
    layout->addWidget(month_);
    layout->addStretch();
    layout->addWidget(next);

    const auto showMonth = [this](int year, int month) {
        const QLocale locale;
        month_->setText(locale.standaloneMonthName(month) + u' ' + QString::number(year));
    };
    showMonth(calendar_->yearShown(), calendar_->monthShown());
    connect(calendar_, &QCalendarWidget::currentPageChanged, this, showMonth);
    connect(previous, &QToolButton::clicked, calendar_, &QCalendarWidget::showPreviousMonth);
    connect(next, &QToolButton::clicked, calendar_, &QCalendarWidget::showNextMonth);
    connect(years_, &QMenu::aboutToShow, this, &GoToDateDialog::fillYears);
    return row;
}

QWidget* GoToDateDialog::buildSteps() {
    auto* row = new QDialogButtonBox(QDialogButtonBox::Close);
    previous_->setText(tr("&Previous Day"));
    next_->setText(tr("&Next Day"));
    previous_->setToolTip(tr("To the previous day with messages (Alt+Up)"));
    previous_->setAutoDefault(false);
    next_->setToolTip(tr("To the next day with messages (Alt+Down)"));
    next_->setAutoDefault(false);
    row->button(QDialogButtonBox::Close)->setAutoDefault(false);
    row->addButton(previous_, QDialogButtonBox::ActionRole);
    row->addButton(next_, QDialogButtonBox::ActionRole);
    connect(row, &QDialogButtonBox::rejected, this, &QDialog::close);
    const auto add = [this](QPushButton* button, Qt::Key key, int direction) {
        auto* action = new QAction(this);
        action->setShortcut(QKeySequence(Qt::ALT | key));
        addAction(action);
        connect(action, &QAction::triggered, this, [this, direction] { step(direction); });
        connect(button, &QPushButton::clicked, this, [this, direction] { step(direction); });
    };
    add(previous_, Qt::Key_Up, -1);
    add(next_, Qt::Key_Down, 1);
    return row;
}

void GoToDateDialog::fillYears() {
    years_->clear();
    int last = 0;
    for (const ChatDay& day : calendar_->days()) {
        const int year = day.date.year();
        if (year == last) continue;
        last = year;
        QMenu* months = years_->addMenu(QString::number(year));
        connect(months, &QMenu::aboutToShow, this,
                [this, months, year] { fillMonths(*months, year); });
    }
}

void GoToDateDialog::fillMonths(QMenu& months, int year) {
    months.clear();
    int last = 0;
    for (const ChatDay& day : calendar_->days()) {
        const int month = day.date.month();
        if (day.date.year() != year || month == last) continue;
        last = month;
        months.addAction(QLocale().standaloneMonthName(month), this,
                         [this, year, month] { calendar_->setCurrentPage(year, month); });
    }
}

void GoToDateDialog::setDays(const std::vector<ChatDay>& days) {
    const QDate selected = calendar_->selectedDate();
    calendar_->setDays(days);
    calendar_->setSelectedDate(selected);
    describeSelection();
}

void GoToDateDialog::showDate(QDate date) {
    calendar_->setSelectedDate(date);
    calendar_->showSelectedDate();
}

void GoToDateDialog::describeSelection() {
    const QDate date = calendar_->selectedDate();
    const ChatDay* day = calendar_->day(date);
    const QString name = QLocale().toString(date, QLocale::LongFormat);
    QString content;
    if (day && day->messages > 0) {
        content = day->messages == 1
                      ? tr("1 message")
                      : tr("%1 messages").arg(QLocale().toString(qlonglong(day->messages)));
    } else if (day) {
        content = tr("no messages, notices only");
    } else {
        content = tr("nothing was written");
    }
    //: "DATE: 12 messages"
    description_->setText(calendar_->days().empty() ? name : tr("%1: %2").arg(name, content));
    previous_->setEnabled(calendar_->neighbour(date, -1));
    next_->setEnabled(calendar_->neighbour(date, 1));
}

void GoToDateDialog::go(QDate date) {
    const ChatDay* day = calendar_->day(date);
    if (!day) day = calendar_->neighbour(date, 1);
    if (!day) day = calendar_->neighbour(date, -1);
    if (!day) return;
    showDate(day->date);
    Q_EMIT chosen(day->row);
}

void GoToDateDialog::step(int direction) {
    if (const ChatDay* day = calendar_->neighbour(calendar_->selectedDate(), direction))
        go(day->date);
}

}  // namespace vell
