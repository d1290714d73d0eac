#pragma once
// SPDX-License-Identifier: MIT
//
// FindBar: the rows below a timeline for typing what to find, and how. It knows nothing about
// timelines: it signals what is asked for, and shows the counts it is given.

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QWidget>
#include <utility>

#include "app/documents/find/chat_search.h"

class QComboBox;

namespace vell {

class FindBar final : public QWidget {
    Q_OBJECT

  public:
    /// A name and whose it is.
    using Person = std::pair<QString, SharedUserID>;

    explicit FindBar(QWidget* parent = nullptr);

    /// Shows the bar with the keyboard in it and its text selected.
    void open();
    /// Replaces the text; of a pattern, by one that finds just this.
    void setText(const QString& text);
    /// Whose messages can be searched, beside everybody's. The choice stays.
    void setPeople(const QList<Person>& people);
    [[nodiscard]] ChatQuery query() const;
    /// Shows "3 of 120"; current counts from 1, 0 for none. `counting` while there may be more.
    void setCount(qsizetype current, qsizetype total, bool counting);
    void clearCount() { count_->clear(); }
    /// A line of its own; empty for none.
    void setNotice(const QString& notice);

  Q_SIGNALS:
    /// query() is another one.
    void changed();
    void nextRequested();
    void previousRequested();
    void listToggled(bool isShown);
    /// The keyboard is to move to the list of matches.
    void listEntered();
    void closed();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QToolButton* addOption(const QString& symbol, const QString& name);
    QLayout* makeTextRow();
    QLayout* makeOptionsRow();

    QLineEdit* edit_;
    QLabel* count_;
    QToolButton* previous_;
    QToolButton* next_;
    QToolButton* matchCase_;
    QToolButton* wholeWords_;
    QToolButton* pattern_;
    QComboBox* people_;
    QToolButton* list_;
    QLabel* notice_;
};

}  // namespace vell
