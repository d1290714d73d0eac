#pragma once
// SPDX-License-Identifier: MIT
//
// FoundList: what a search in the library has found, in the middle column: who wrote it, when, and
// the line with the match marked.

#include <QListView>

#include "app/library/found_messages.h"

namespace vell {

class FoundList final : public QListView {
    Q_OBJECT

  public:
    FoundList(FoundMessages& found, const ContactsStore& contacts, QWidget* parent = nullptr);

    /// The first one when none was chosen.
    void chooseFirst();
    /// Null when there is none.
    [[nodiscard]] const FoundMessages::Row* chosen() const;

  Q_SIGNALS:
    /// The user looks at a message.
    void chosenChanged();
    /// The reader goes there.
    void entered();
    /// The keyboard goes back to the search field.
    void left();

  protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    FoundMessages& found_;
};

}  // namespace vell
