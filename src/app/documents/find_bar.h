#pragma once
// SPDX-License-Identifier: MIT
//
// FindBar: the row below a timeline for typing what to find. It knows nothing about timelines: it
// signals what was typed and which match to go to, and shows the count it is given.

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QWidget>

namespace vell {

class FindBar final : public QWidget {
    Q_OBJECT

  public:
    explicit FindBar(QWidget* parent = nullptr);

    /// Shows the bar with the keyboard in it and what was typed last selected.
    void open();
    [[nodiscard]] QString text() const { return edit_->text(); }
    /// Shows "3 of 120"; current counts from 1, 0 for none. `counting` while there may be more.
    void setCount(qsizetype current, qsizetype total, bool counting);

  Q_SIGNALS:
    void textChanged(const QString& text);
    void nextRequested();
    void previousRequested();
    void closed();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLineEdit* edit_;
    QLabel* count_;
    QToolButton* previous_;
    QToolButton* next_;
};

}  // namespace vell
