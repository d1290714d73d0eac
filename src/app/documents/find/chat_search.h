#pragma once
// SPDX-License-Identifier: MIT
//
// ChatSearch: finds a text or pattern in all events of a chat on a thread of its own, so that
// typing is never held up. It begins at the row that is read and goes on from the chat's start;
// matches arrive in batches on the window thread.

#include <QObject>
#include <atomic>
#include <memory>
#include <vector>

#include "timeline/text/found_spans.h"
#include "toolkit/callback_guard.h"
#include "toolkit/text_search.h"
#include "transcript/chat_log.h"

namespace vell {

/// What is looked for.
struct ChatQuery {
    QString text;
    bool isPattern = false;  ///< a regular expression
    SearchOptions options;
    SharedUserID sender;  ///< whose messages; null for everybody's
    friend bool operator==(const ChatQuery&, const ChatQuery&) = default;
};

class ChatSearch final : public QObject {
    Q_OBJECT

  public:
    /// More matches are of no use.
    static constexpr qsizetype mostMatches = 1 << 20;

    explicit ChatSearch(std::shared_ptr<const TesselChatLog> log, QObject* parent = nullptr);
    ~ChatSearch() override;

    /// Stops, forgets what was found, and searches another log from now on.
    void setLog(std::shared_ptr<const TesselChatLog> log);
    /// Starts a new search at a row and drops earlier results. An empty text finds nothing.
    void start(const ChatQuery& query, qsizetype row = 0);
    [[nodiscard]] bool isRunning() const { return running_ != nullptr; }
    /// The matches found so far; never null. A new search begins another list.
    [[nodiscard]] const std::shared_ptr<const FoundSpans>& matches() const { return shared_; }
    /// Why the pattern can't be used; empty when it can.
    [[nodiscard]] const QString& problem() const { return problem_; }
    /// In how many messages the pattern took too long.
    [[nodiscard]] qsizetype abandoned() const { return abandoned_; }

  Q_SIGNALS:
    /// A search has begun; there are no matches yet.
    void started();
    /// There are `count` more matches, which begin at this index.
    void found(qsizetype first, qsizetype count);
    /// All that is to be found has been.
    void finished();

  private:
    struct Run {
        explicit Run(ChatSearch& owner) : search(owner), callbacks(&owner) {}
        std::atomic<bool> cancelled = false;
        ChatSearch& search;  // alive until the run is cancelled
        CallbackGuard callbacks;
    };
    struct Batch {
        std::vector<TextSpan> spans;
        bool isBeforeStart = false;
        bool isLast = false;
        QString problem;
        qsizetype abandoned = 0;
    };
    class Finder;
    void cancel();
    void take(const Batch& batch);

    std::shared_ptr<const TesselChatLog> log_;
    std::shared_ptr<FoundSpans> matches_;
    std::shared_ptr<const FoundSpans> shared_;  // the same
    QString problem_;
    qsizetype abandoned_ = 0;
    std::shared_ptr<Run> running_;
};

/// The text of an event that can be searched; empty for markers, pictures and files.
[[nodiscard]] QStringView searchableText(const TesselChatLog::Event& event);

}  // namespace vell
