#pragma once
// SPDX-License-Identifier: MIT
//
// ConversationList: the library's middle column: the conversations with somebody by year and month,
// below headings that collapse.

#include <QTreeView>
#include <memory>

#include "app/library/conversation_model.h"

namespace vell {

class ConversationList final : public QTreeView {
    Q_OBJECT

  public:
    explicit ConversationList(const QByteArray& database, QWidget* parent = nullptr);

    void show(const std::shared_ptr<const LibraryPeople>& people, int partner);
    /// The same after the library has changed: what was chosen and which headings are closed stays.
    void refresh(const std::shared_ptr<const LibraryPeople>& people, int partner);
    [[nodiscard]] const ConversationModel& conversations() const { return *model_; }
    /// The file of the current conversation; empty without one.
    [[nodiscard]] QByteArray chosen() const;

  Q_SIGNALS:
    /// The user goes to a conversation.
    void chosenChanged(const QByteArray& path);
    /// It is to be opened in a window of its own.
    void opened(const QByteArray& path);

  protected:
    void drawBranches(QPainter* painter, const QRect& rect,
                      const QModelIndex& index) const override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void expandRecent();
    /// Calls the function with each heading.
    template <class Function>
    void forHeadings(Function function) const;

    ConversationModel* model_;
    bool isFilling_ = false;
};

}  // namespace vell
