// SPDX-License-Identifier: MIT
#include "app/documents/find/find_bar.h"

#include <QAccessible>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QStyle>

namespace vell {
namespace {

QToolButton* flatButton(const QString& name) {
    auto* button = new QToolButton;
    button->setAutoRaise(true);
    button->setToolTip(name);
    button->setAccessibleName(name);
    return button;
}

QToolButton* arrowButton(Qt::ArrowType arrow, const QString& name) {
    QToolButton* button = flatButton(name);
    button->setArrowType(arrow);
    return button;
}

}  // namespace

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      edit_(new QLineEdit),
      count_(new QLabel),
      previous_(arrowButton(Qt::UpArrow, tr("Previous match"))),
      next_(arrowButton(Qt::DownArrow, tr("Next match"))),
      matchCase_(addOption(QStringLiteral("Aa"), tr("Match case"))),
      wholeWords_(addOption(QStringLiteral("ab"), tr("Whole words"))),
      // A mark keeps the order of the signs in windows from right to left.
      pattern_(addOption(QStringLiteral("\u200e.*"), tr("Regular expression"))),
      people_(new QComboBox),
      list_(flatButton(tr("List of matches"))),
      notice_(new QLabel) {
    setObjectName(QStringLiteral("findBar"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 6, 8, 6);
    layout->setSpacing(4);
    layout->addLayout(makeTextRow());
    layout->addLayout(makeOptionsRow());
    notice_->setObjectName(QStringLiteral("findNotice"));
    notice_->setTextFormat(Qt::PlainText);
    notice_->setWordWrap(true);
    notice_->hide();
    layout->addWidget(notice_);
    setCount(0, 0, false);
    hide();
}

QLayout* FindBar::makeTextRow() {
    edit_->setObjectName(QStringLiteral("findText"));
    edit_->setPlaceholderText(tr("Find in chat"));
    edit_->setAccessibleName(tr("Find in chat"));
    edit_->setClearButtonEnabled(true);
    count_->setObjectName(QStringLiteral("findCount"));
    QToolButton* close = flatButton(tr("Close"));
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));

    auto* row = new QHBoxLayout;
    row->addWidget(edit_, 1);
    row->addWidget(count_);
    row->addWidget(previous_);
    row->addWidget(next_);
    row->addWidget(close);
    connect(edit_, &QLineEdit::textChanged, this, &FindBar::changed);
    connect(previous_, &QToolButton::clicked, this, &FindBar::previousRequested);
    connect(next_, &QToolButton::clicked, this, &FindBar::nextRequested);
    connect(close, &QToolButton::clicked, this, &FindBar::closed);
    return row;
}

QLayout* FindBar::makeOptionsRow() {
    QFont underlined = wholeWords_->font();
    underlined.setUnderline(true);
    wholeWords_->setFont(underlined);
    people_->setObjectName(QStringLiteral("findPerson"));
    people_->setToolTip(tr("Messages by"));
    people_->setAccessibleDescription(people_->toolTip());  // its name is the choice
    // A long name mustn't widen the window.
    people_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    people_->setMinimumContentsLength(8);
    people_->addItem(tr("Everybody"));
    connect(people_, &QComboBox::currentIndexChanged, this, &FindBar::changed);
    list_->setObjectName(QStringLiteral("findList"));
    list_->setText(tr("List"));
    list_->setCheckable(true);
    connect(list_, &QToolButton::toggled, this, &FindBar::listToggled);

    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    row->addWidget(matchCase_);
    row->addWidget(wholeWords_);
    row->addWidget(pattern_);
    row->addSpacing(6);
    row->addWidget(people_);
    row->addStretch(1);
    row->addWidget(list_);
    return row;
}

QToolButton* FindBar::addOption(const QString& symbol, const QString& name) {
    QToolButton* button = flatButton(name);
    button->setText(symbol);
    button->setCheckable(true);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::toggled, this, &FindBar::changed);
    return button;
}

void FindBar::open() {
    show();
    edit_->selectAll();
    edit_->setFocus(Qt::ShortcutFocusReason);
}

void FindBar::setText(const QString& text) {
    edit_->setText(pattern_->isChecked() ? QRegularExpression::escape(text) : text);
}

void FindBar::setPeople(const QList<Person>& people) {
    const QSignalBlocker quiet(people_);
    const SharedUserID sender = query().sender;
    while (people_->count() > 1)
        people_->removeItem(1);
    for (const auto& [name, user] : people) {
        people_->addItem(name, QVariant::fromValue(user));
        if (user == sender) people_->setCurrentIndex(people_->count() - 1);
    }
}

ChatQuery FindBar::query() const {
    return {edit_->text(),
            pattern_->isChecked(),
            {matchCase_->isChecked(), wholeWords_->isChecked()},
            people_->currentData().value<SharedUserID>()};
}

void FindBar::setCount(qsizetype current, qsizetype total, bool counting) {
    const QLocale locale;
    previous_->setEnabled(total > 0);
    next_->setEnabled(total > 0);
    if (edit_->text().isEmpty()) {
        count_->clear();
    } else if (current == 0) {
        count_->setText(counting ? tr("Searching …") : tr("Not found"));
    } else {
        QString all = locale.toString(qlonglong(total));
        if (counting) all += QStringLiteral(" …");
        // There may be more than are kept.
        else if (total >= ChatSearch::mostMatches)
            all += QStringLiteral("+");
        //: "3 of 120" matches; the second number grows while the search is under way.
        count_->setText(tr("%1 of %2").arg(locale.toString(qlonglong(current)), all));
    }
}

void FindBar::setNotice(const QString& notice) {
    if (notice == notice_->text()) return;
    notice_->setText(notice);
    notice_->setVisible(!notice.isEmpty());
    QAccessibleEvent event(notice_, QAccessible::Alert);
    if (!notice.isEmpty()) QAccessible::updateAccessibility(&event);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            Q_EMIT closed();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (event->modifiers() & Qt::ShiftModifier) {
                Q_EMIT previousRequested();
            } else {
                Q_EMIT nextRequested();
            }
            return;
        case Qt::Key_Down:
            Q_EMIT listEntered();
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace vell
