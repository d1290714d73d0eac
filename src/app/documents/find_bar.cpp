// SPDX-License-Identifier: MIT
#include "app/documents/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QStyle>

namespace vell {

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      edit_(new QLineEdit),
      count_(new QLabel),
      previous_(new QToolButton),
      next_(new QToolButton) {
    setObjectName(QStringLiteral("findBar"));
    edit_->setObjectName(QStringLiteral("findText"));
    edit_->setPlaceholderText(tr("Find in chat"));
    edit_->setAccessibleName(tr("Find in chat"));
    edit_->setClearButtonEnabled(true);
    count_->setObjectName(QStringLiteral("findCount"));
    previous_->setArrowType(Qt::UpArrow);
    previous_->setToolTip(tr("Previous match"));
    previous_->setAccessibleName(previous_->toolTip());
    next_->setArrowType(Qt::DownArrow);
    next_->setToolTip(tr("Next match"));
    next_->setAccessibleName(next_->toolTip());
    auto* close = new QToolButton;
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close"));
    close->setAccessibleName(close->toolTip());
    close->setAutoRaise(true);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 6, 8, 6);
    layout->addWidget(edit_, 1);
    layout->addWidget(count_);
    layout->addWidget(previous_);
    layout->addWidget(next_);
    layout->addWidget(close);

    connect(edit_, &QLineEdit::textChanged, this, &FindBar::textChanged);
    connect(previous_, &QToolButton::clicked, this, &FindBar::previousRequested);
    connect(next_, &QToolButton::clicked, this, &FindBar::nextRequested);
    connect(close, &QToolButton::clicked, this, &FindBar::closed);
    setCount(0, 0, false);
    hide();
}

void FindBar::open() {
    show();
    edit_->selectAll();
    edit_->setFocus(Qt::ShortcutFocusReason);
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
        const QString all = locale.toString(qlonglong(total));
        //: "3 of 120" matches; the second number grows while the search is under way.
        count_->setText(tr("%1 of %2")
                            .arg(locale.toString(qlonglong(current)),
                                 counting ? all + QStringLiteral(" …") : all));
    }
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
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace vell
