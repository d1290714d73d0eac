#pragma once
// SPDX-License-Identifier: MIT
//
// MatchList: the list of a search's matches at a window's lower edge. It signals which match the
// reader goes to.

#include <QDockWidget>
#include <memory>

#include "timeline/text/found_spans.h"
#include "transcript/chat_log.h"

class QTableView;

namespace vell {

class ContactsStore;
class MatchModel;

class MatchList final : public QDockWidget {
    Q_OBJECT

  public:
    MatchList(std::shared_ptr<const TesselChatLog> log, const ContactsStore& contacts,
              QWidget* parent);

    void setMatches(const std::shared_ptr<const FoundSpans>& matches);
    /// This many matches were added.
    void grow(qsizetype first, qsizetype count);
    /// Selects a match; -1 for none.
    void setCurrent(qsizetype index);
    /// Names or dates read differently now.
    void updateTexts();
    void takeFocus();

  Q_SIGNALS:
    void chosen(qsizetype index);
    /// The reader wants to leave the list.
    void left();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    MatchModel* model_;
    QTableView* view_;
    bool isFollowing_ = false;  // a choice of ours, not the reader's
};

}  // namespace vell
