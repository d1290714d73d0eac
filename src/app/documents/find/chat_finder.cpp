// SPDX-License-Identifier: MIT
#include "app/documents/find/chat_finder.h"

#include <QBoxLayout>
#include <QMainWindow>
#include <QSet>
#include <QTimer>

#include "app/documents/find/find_bar.h"
#include "app/documents/find/match_list.h"
#include "app/documents/jump_history.h"
#include "identity/contacts/sender_name.h"
#include "timeline/timeline_view.h"
#include "toolkit/shown_text.h"

namespace vell {

ChatFinder::ChatFinder(QMainWindow& window, QBoxLayout& layout, TimelineView& timeline,
                       JumpHistory& history)
    : window_(window),
      layout_(layout),
      timeline_(timeline),
      history_(history),
      search_(timeline.sharedChatlog()) {
    timeline_.setFindMatches(search_.matches(), -1);
    connect(&search_, &ChatSearch::started, this, &ChatFinder::begin);
    connect(&search_, &ChatSearch::found, this, &ChatFinder::take);
    connect(&search_, &ChatSearch::finished, this, &ChatFinder::finish);
}

ChatFinder::~ChatFinder() {
    delete bar_;
    delete list_;
}

void ChatFinder::makeBar() {
    bar_ = new FindBar;
    layout_.insertWidget(1, bar_);
    connect(bar_, &FindBar::changed, this, &ChatFinder::search);
    connect(bar_, &FindBar::nextRequested, this, [this] { step(1); });
    connect(bar_, &FindBar::previousRequested, this, [this] { step(-1); });
    connect(bar_, &FindBar::listToggled, this, &ChatFinder::showList);
    connect(bar_, &FindBar::listEntered, this, &ChatFinder::enterList);
    connect(bar_, &FindBar::closed, this, &ChatFinder::close);
    connect(&timeline_, &TimelineView::namesChanged, this, [this] {
        fillPeople();
        if (list_) list_->updateTexts();
    });
    fillPeople();
}

void ChatFinder::fillPeople() {
    QSet<SharedUserID> known;
    QList<FindBar::Person> people;
    for (const TesselChatLog::Event& event : timeline_.chatlog().events()) {
        if (!event.sender || known.contains(event.sender)) continue;
        known.insert(event.sender);
        people.emplace_back(shownText(senderName(*event.sender, timeline_.context().contacts)),
                            event.sender);
    }
    bar_->setPeople(people);
}

void ChatFinder::makeList() {
    list_ = new MatchList(timeline_.sharedChatlog(), timeline_.context().contacts, &window_);
    window_.addDockWidget(Qt::BottomDockWidgetArea, list_);
    connect(list_, &MatchList::chosen, this, [this](qsizetype index) { choose(index); });
    connect(list_, &MatchList::left, this, [this] { bar_->open(); });
}

void ChatFinder::chatReplaced(const TimelineView::RowMap& rowOf) {
    anchor_.row = rowOf(anchor_.row);
    // A match that is still being looked for is gone to.
    isStaying_ = isStaying_ || current_ >= 0 || !search_.isRunning();
    search_.setLog(timeline_.sharedChatlog());
    lastPlace_ = timeline_.scroller().place();
    if (list_) {
        const bool wasShown = list_->isVisible();
        delete list_;
        if (wasShown) showList(true);
    }
    if (!bar_) return;
    fillPeople();
    if (!bar_->isVisible()) return;
    search_.start(bar_->query(), anchor_.row);
}

void ChatFinder::open() {
    if (!bar_) makeBar();
    const bool wasOpen = bar_->isVisible();
    const QString before = bar_->query().text;
    bar_->open();
    const auto selected = timeline_.selectedPhrase();
    if (selected) {
        // The selection itself is the first match.
        anchor_ = selected->span.from;
        lastPlace_ = timeline_.scroller().place();
        isRefining_ = false;
        bar_->setText(selected->text);
        bar_->open();
    }
    if (!wasOpen && bar_->query().text == before) search();
    if (!wasOpen && list_) list_->show();
}

void ChatFinder::close() {
    bar_->hide();
    if (list_) list_->hide();
    search_.start({});
    timeline_.setFocus();
}

void ChatFinder::search() {
    // While the reader stays, a longer word is looked for from where the shorter one was.
    if (const TimelinePlace place = timeline_.scroller().place(); place != lastPlace_) {
        anchor_ = timeline_.topPosition();
        lastPlace_ = place;
        isRefining_ = false;
    }
    isStaying_ = false;
    search_.start(bar_->query(), anchor_.row);
}

void ChatFinder::begin() {
    current_ = -1;
    if (list_) list_->setMatches(search_.matches());
    showState();
}

void ChatFinder::take(qsizetype first, qsizetype count) {
    if (list_) list_->grow(first, count);
    if (current_ >= first) current_ += count;
    if (current_ < 0) {
        if (const qsizetype next = search_.matches()->firstAt(anchor_);
            next < search_.matches()->size()) {
            if (!isStaying_) {
                goTo(next);
                isRefining_ = true;
                return;
            }
            current_ = next;
        }
    }
    showState();
}

void ChatFinder::finish() {
    if (current_ < 0 && !search_.matches()->isEmpty() && !isStaying_) {
        goTo(0);
        isRefining_ = true;
    } else {
        showState();
    }
    isStaying_ = false;
}

void ChatFinder::step(int direction) {
    if (!bar_ || !bar_->isVisible()) {
        open();
        return;
    }
    if (current_ < 0) return;
    const qsizetype count = search_.matches()->size();
    choose((current_ + direction + count) % count);
}

void ChatFinder::choose(qsizetype index) {
    anchor_ = (*search_.matches())[index].from;
    isRefining_ = false;
    goTo(index);
}

void ChatFinder::goTo(qsizetype index) {
    current_ = index;
    const TextSpan match = (*search_.matches())[index];
    showState();
    const auto reveal = [&] { timeline_.scroller().revealText(match); };
    if (isRefining_) {
        reveal();
    } else {
        history_.jump(reveal);
    }
    lastPlace_ = timeline_.scroller().place();
}

void ChatFinder::showList(bool isShown) {
    if (isShown && !list_) {
        makeList();
        list_->setMatches(search_.matches());
        list_->setCurrent(current_);
    }
    if (!list_) return;
    list_->setVisible(isShown);
    // The list takes room from the timeline.
    QTimer::singleShot(0, this, [this] {
        if (current_ < 0) return;
        timeline_.scroller().revealText((*search_.matches())[current_]);
        lastPlace_ = timeline_.scroller().place();
    });
}

void ChatFinder::enterList() {
    if (list_ && list_->isVisible()) list_->takeFocus();
}

void ChatFinder::showState() {
    timeline_.setFindMatches(search_.matches(), current_);
    if (list_) list_->setCurrent(current_);
    bar_->setCount(current_ + 1, search_.matches()->size(), search_.isRunning());
    if (!search_.problem().isEmpty()) bar_->clearCount();
    QString notice;
    if (!search_.problem().isEmpty()) {
        notice = tr("Not a regular expression: %1.").arg(search_.problem());
    } else if (search_.abandoned() > 0) {
        notice = tr("The expression takes too long; some matches may be missing.");
    }
    bar_->setNotice(notice);
}

}  // namespace vell
