#pragma once
// SPDX-License-Identifier: MIT
//
// ChatSearch: finds a text in all events of a chat on a thread of its own, so that typing is never
// held up; results arrive in event order, in batches, on the window thread.

#include <QObject>
#include <atomic>
#include <memory>
#include <vector>

#include "timeline/text/text_range.h"
#include "toolkit/callback_guard.h"
#include "toolkit/text_search.h"
#include "transcript/chat_log.h"

namespace vell {

class ChatSearch final : public QObject {
    Q_OBJECT

  public:
    explicit ChatSearch(std::shared_ptr<const TesselChatLog> log, QObject* parent = nullptr);
    ~ChatSearch() override;

    /// Starts a new search and drops earlier results. An empty text finds nothing.
    void start(const QString& text);
    [[nodiscard]] bool isRunning() const { return running_ != nullptr; }
    /// The matches found so far, in order.
    [[nodiscard]] const std::vector<TextSpan>& matches() const { return matches_; }

  Q_SIGNALS:
    /// matches() or isRunning() changed.
    void changed();

  private:
    struct Run {
        explicit Run(ChatSearch& owner) : search(owner), callbacks(&owner) {}
        std::atomic<bool> cancelled = false;
        ChatSearch& search;  // alive until the run is cancelled
        CallbackGuard callbacks;
    };
    void cancel();
    void append(const std::vector<TextSpan>& found, bool isLast);
    static void report(const std::shared_ptr<Run>& run, std::vector<TextSpan> found, bool isLast);
    static void find(const std::shared_ptr<Run>& run, const TesselChatLog& log,
                     const TextSearch& text);

    std::shared_ptr<const TesselChatLog> log_;
    std::vector<TextSpan> matches_;
    std::shared_ptr<Run> running_;
};

/// The text of an event that can be searched; empty for markers, pictures and files.
[[nodiscard]] QStringView searchableText(const TesselChatLog::Event& event);

}  // namespace vell
