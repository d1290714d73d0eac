// SPDX-License-Identifier: MIT
#include "app/documents/find/chat_search.h"

#include <QElapsedTimer>
#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

#include "foundation/guarded.h"
#include "toolkit/pattern_search.h"

namespace vell {
namespace {

constexpr int batchInterval = 40;  // milliseconds between batches; the first match comes at once
// A pattern is given up once it has taken too long in this many messages.
constexpr qsizetype mostAbandoned = 20;

}  // namespace

QStringView searchableText(const TesselChatLog::Event& event) {
    if (const auto* text = std::get_if<TesselChatLog::PlainText>(&event.value)) return text->text;
    if (const auto* link = std::get_if<TesselChatLog::Link>(&event.value)) return link->title;
    return {};
}

/// The work of one search, on its thread.
class ChatSearch::Finder {
  public:
    Finder(std::shared_ptr<Run> run, std::shared_ptr<const TesselChatLog> log, ChatQuery query)
        : run_(std::move(run)),
          log_(std::move(log)),
          query_(std::move(query)),
          text_(query_.isPattern ? QString() : query_.text, query_.options),
          pattern_(query_.isPattern ? query_.text : QString(), query_.options, run_->cancelled) {}

    void find(qsizetype start) {
        batch_.problem = pattern_.problem();
        const qsizetype rows = std::ssize(log_->events());
        start = std::clamp<qsizetype>(start, 0, rows);
        sinceBatch_.start();
        if (batch_.problem.isEmpty()) {
            findIn(start, rows);
            if (!run_->cancelled) report(false);
            batch_.isBeforeStart = true;
            findIn(0, start);
        }
        if (!run_->cancelled) report(true);
    }

  private:
    void findIn(qsizetype first, qsizetype end) {
        for (qsizetype row = first; row < end && !isEnough(); ++row) {
            const auto& event = log_->event(row);
            if (query_.sender && query_.sender != event.sender) continue;
            const QStringView text = searchableText(event);
            if (text.isEmpty()) continue;
            inText_.clear();
            if (query_.isPattern) {
                batch_.abandoned += !pattern_.find(text, inText_);
            } else {
                text_.find(text, inText_);
            }
            for (const TextMatch& match : inText_)
                batch_.spans.push_back(
                    {{row, match.position}, {row, match.position + match.length}});
            const bool isDue = total_ == 0 || sinceBatch_.hasExpired(batchInterval);
            if (!batch_.spans.empty() && isDue) report(false);
        }
    }

    [[nodiscard]] bool isEnough() const {
        return run_->cancelled || batch_.abandoned >= mostAbandoned ||
               total_ + std::ssize(batch_.spans) >= mostMatches;
    }

    void report(bool isLast) {
        batch_.isLast = isLast;
        total_ += std::ssize(batch_.spans);
        Batch batch = batch_;
        batch_.spans.clear();
        sinceBatch_.restart();
        run_->callbacks.post([run = run_, batch = std::move(batch)] {
            if (!run->cancelled) run->search.take(batch);
        });
    }

    std::shared_ptr<Run> run_;
    std::shared_ptr<const TesselChatLog> log_;
    ChatQuery query_;
    TextSearch text_;
    PatternSearch pattern_;
    std::vector<TextMatch> inText_;
    Batch batch_;  // the next one; its counts are those of the whole search
    qsizetype total_ = 0;
    QElapsedTimer sinceBatch_;
};

ChatSearch::ChatSearch(std::shared_ptr<const TesselChatLog> log, QObject* parent)
    : QObject(parent),
      log_(std::move(log)),
      matches_(std::make_shared<FoundSpans>()),
      shared_(matches_) {}

ChatSearch::~ChatSearch() {
    cancel();
}

void ChatSearch::setLog(std::shared_ptr<const TesselChatLog> log) {
    cancel();
    log_ = std::move(log);
    matches_ = std::make_shared<FoundSpans>();
    shared_ = matches_;
}

void ChatSearch::start(const ChatQuery& query, qsizetype row) {
    cancel();
    matches_ = std::make_shared<FoundSpans>();
    shared_ = matches_;
    problem_.clear();
    abandoned_ = 0;
    if (!query.text.isEmpty()) running_ = std::make_shared<Run>(*this);
    Q_EMIT started();
    if (!running_) {
        Q_EMIT finished();
        return;
    }
    foundation::runDetached(
        [run = running_, log = log_, query, row] { Finder(run, log, query).find(row); },
        [run = running_] {  // out of memory
            run->callbacks.post([run] {
                if (!run->cancelled) run->search.take({{}, false, true, {}, 0});
            });
        });
}

void ChatSearch::cancel() {
    if (!running_) return;
    running_->cancelled = true;
    running_->callbacks.close();
    running_.reset();
}

void ChatSearch::take(const Batch& batch) {
    problem_ = batch.problem;
    abandoned_ = batch.abandoned;
    const qsizetype first = matches_->append(batch.spans, batch.isBeforeStart);
    if (batch.isLast) running_.reset();
    if (!batch.spans.empty()) Q_EMIT found(first, std::ssize(batch.spans));
    if (batch.isLast) Q_EMIT finished();
}

}  // namespace vell
