#pragma once
// SPDX-License-Identifier: MIT
//
// ChatFinder: finding in one window's chat. It brings the find bar, the search, what the timeline
// shows of it, and the list of matches together.

#include <QObject>
#include <QPointer>
#include <memory>

#include "app/documents/find/chat_search.h"
#include "timeline/layout/timeline_scroller.h"
#include "timeline/text/text_range.h"
#include "timeline/timeline_view.h"

class QBoxLayout;
class QMainWindow;

namespace vell {

class FindBar;
class JumpHistory;
class MatchList;

class ChatFinder final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it. The bar goes below the first widget of the layout, the list of matches
    /// to the window's lower edge.
    ChatFinder(QMainWindow& window, QBoxLayout& layout, TimelineView& timeline,
               JumpHistory& history);
    ~ChatFinder() override;

    /// The timeline shows another log; the search goes on in it, and the reader stays.
    void chatReplaced(const TimelineView::RowMap& rowOf);

    /// Opens the bar; with what is selected, if that is part of one line.
    void open();
    /// Goes to the next match (1) or the one before (-1); opens the bar first.
    void step(int direction);

  private:
    void makeBar();
    void makeList();
    void fillPeople();
    void close();
    void search();
    void begin();
    void take(qsizetype first, qsizetype count);
    void finish();
    void showList(bool isShown);
    void enterList();
    /// The reader goes to a match.
    void choose(qsizetype index);
    /// Shows a match; the place that is left is remembered unless it was come to by typing.
    void goTo(qsizetype index);
    void showState();

    QMainWindow& window_;
    QBoxLayout& layout_;
    TimelineView& timeline_;
    JumpHistory& history_;
    ChatSearch search_;
    QPointer<FindBar> bar_;  // made when it is first needed, so that the window opens sooner
    QPointer<MatchList> list_;
    qsizetype current_ = -1;   // the index of a match
    TextPosition anchor_;      // the first match at or after this is gone to
    TimelinePlace lastPlace_;  // after the latest change of ours
    bool isRefining_ = false;  // the place before was come to by typing
    bool isStaying_ = false;   // the chat was replaced: a match is found again, not gone to
};

}  // namespace vell
