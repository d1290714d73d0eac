// SPDX-License-Identifier: MIT
//
// The pane of a chat whose messages come from many files.
#include <QApplication>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "app/documents/chat_pane.h"
#include "app/documents/chat_tools.h"
#include "app/documents/find/chat_finder.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"
#include "toolkit/text_search.h"

namespace vell {
namespace {

constexpr int waitInterval = 100;  // milliseconds

}  // namespace

void ChatPane::showSessions(const QString& name, const std::vector<QByteArray>& paths) {
    if (paths.empty()) return clear();
    const bool isSame = merged_ && chat_.name == name;
    stopReading();
    if (!isSame) {
        wanted_.reset();
        showLoading();
        chat_.name = name;
    }
    paths_ = paths;
    // A goTo() may follow, which says what is to be seen first.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!reading_ && !paths_.empty()) readSessions();
        },
        Qt::QueuedConnection);
}

void ChatPane::readSessions() {
    stopReading();
    const QByteArray first = wanted_ ? wanted_->path : merged_ ? topFile() : paths_.back();
    const auto at = std::find(paths_.begin(), paths_.end(), first);
    const auto index =
        at == paths_.end() ? paths_.size() - 1 : static_cast<std::size_t>(at - paths_.begin());
    reading_ = std::make_shared<CallbackGuard>(this);
    reader_.emplace(paths_, index, sharedCalendar().withoutCache(),
                    [this, callbacks = reading_](SessionReader::Result result) {
                        ExpansionBound expansion(*result.chat.log());
                        Sessions sessions{std::move(result), std::move(expansion)};
                        callbacks->post([this, sessions = std::move(sessions)]() mutable {
                            take(std::move(sessions));
                        });
                    });
}

void ChatPane::stopReading() {
    if (reading_) reading_->close();
    reading_.reset();
    reader_.reset();
    waiting_.reset();
    waitTimer_.stop();
}

void ChatPane::take(Sessions sessions) {
    const SessionReader::Result& result = sessions.result;
    Q_EMIT progressed(result.done, result.all);
    const bool isLast = result.done == result.all;
    if (isLast) {
        reading_.reset();
        reader_.reset();
    }
    // What is shown already is replaced by all of it or by more.
    if (merged_ && !isLast && result.chat.log()->events().size() < chat_.log->events().size())
        return;
    waiting_ = std::move(sessions);
    waitTimer_.start(timeline_ && isInUse() ? waitInterval : 0, this);
}

void ChatPane::timerEvent(QTimerEvent* event) {
    if (event->timerId() != waitTimer_.timerId()) return QMainWindow::timerEvent(event);
    if (timeline_ && isInUse()) {
        waitTimer_.start(waitInterval, this);
        return;
    }
    waitTimer_.stop();
    showMerged(*std::exchange(waiting_, std::nullopt));
}

// Rows get other numbers, which neither the mouse nor an open menu or picture would follow.
bool ChatPane::isInUse() const {
    return QApplication::mouseButtons() != Qt::NoButton || QApplication::activePopupWidget() ||
           tools_->isViewing();
}

void ChatPane::showMerged(Sessions sessions) {
    SessionReader::Result& result = sessions.result;
    chat_.log = result.chat.log();
    chat_.expansion = std::make_shared<const ExpansionBound>(std::move(sessions.expansion));
    chat_.fileSize = result.fileSize;
    if (!timeline_) {
        merged_ = std::move(result.chat);
        makeTimeline();
        if (!wanted_) timeline_->scroller().scrollToRow(std::ssize(chat_.log->events()) - 1);
    } else {
        const MergedChat before = std::exchange(*merged_, std::move(result.chat));
        const auto newRow = [&](qsizetype row) { return rowAfter(before, row); };
        timeline_->replaceChatlog(chat_.log, newRow);
        history_.mapRows(newRow);
        finder_->chatReplaced(newRow);
        tools_->chatChanged();
        // The rows are others; what the find bar has found meanwhile is its own.
        if (marks_ && timeline_->findMatches() == marks_) markWords();
        Q_EMIT changed();
    }
    goToWanted();
}

// What stood in a file that is gone is where the next later session begins.
qsizetype ChatPane::rowAfter(const MergedChat& before, qsizetype row) const {
    const EventOrigin origin = before.originAt(row);
    const auto session =
        std::find_if(before.sessions().begin(), before.sessions().end(),
                     [&](const MergedSession& each) { return each.file == origin.file; });
    if (session == before.sessions().end()) return 0;
    if (const auto found = rowOf(session->path, origin.sequence)) return *found;
    for (const MergedSession& later : merged_->sessions()) {
        if (later.row >= 0 &&
            later.first.secondsSinceReferenceDate >= session->first.secondsSinceReferenceDate)
            return later.row;
    }
    return std::ssize(chat_.log->events()) - 1;
}

QByteArray ChatPane::topFile() const {
    const EventOrigin origin = merged_->originAt(timeline_->scroller().topRow());
    for (const MergedSession& session : merged_->sessions())
        if (session.file == origin.file) return session.path;
    return {};
}

std::optional<qsizetype> ChatPane::rowOf(const QByteArray& path, qint64 sequence) const {
    for (const MergedSession& session : merged_->sessions()) {
        if (session.path != path) continue;
        if (sequence == 0 && session.row >= 0) return session.row;
        return merged_->rowOf({session.file, static_cast<std::uint32_t>(sequence)});
    }
    return std::nullopt;
}

void ChatPane::goTo(const QByteArray& path, qint64 sequence, const QStringList& words) {
    wanted_ = Wanted{path, sequence, words};
    if (timeline_ && merged_) goToWanted();
}

void ChatPane::goToWanted() {
    const auto row = wanted_ ? rowOf(wanted_->path, wanted_->sequence) : std::nullopt;
    if (!row) return;
    reached_ = *std::exchange(wanted_, std::nullopt);
    markWords();
    if (timeline_->timeline().rowCount() == 0) {  // not on the screen yet
        timeline_->scroller().scrollToRow(*row);
        return;
    }
    history_.jump([&] {
        timeline_->scroller().scrollToRow(*row);
        const int context = timeline_->height() / contextPart;
        timeline_->scroller().scrollByPixels(-qRound(context * timeline_->devicePixelRatioF()));
        timeline_->setCurrentRow(*row);
    });
}

void ChatPane::markWords() {
    std::vector<TextSpan> spans;
    const auto row = rowOf(reached_.path, reached_.sequence);
    const QString text =
        row ? rowText(chat_.log->events()[static_cast<std::size_t>(*row)]) : QString();
    for (const QString& word : reached_.words) {
        std::vector<TextMatch> matches;
        TextSearch(word).find(text, matches);
        for (const TextMatch& match : matches)
            spans.push_back({{*row, match.position}, {*row, match.position + match.length}});
    }
    std::sort(spans.begin(), spans.end(),
              [](const TextSpan& a, const TextSpan& b) { return a.from < b.from; });
    marks_ = std::make_shared<const FoundSpans>(std::move(spans));
    timeline_->setFindMatches(marks_, -1);
}

void ChatPane::stepSession(int direction) {
    if (!merged_ || !timeline_) return;
    const auto row = merged_->sessionBeside(timeline_->scroller().topRow(), direction);
    if (!row) {
        notice(direction < 0 ? tr("There is no earlier session.")
                             : tr("There is no later session."));
        return;
    }
    history_.jump([&] {
        timeline_->scroller().scrollToRow(*row);
        timeline_->setCurrentRow(*row);
    });
    timeline_->setFocus();
}

}  // namespace vell
