// SPDX-License-Identifier: MIT
#include "app/documents/chat_search.h"

#include <QElapsedTimer>
#include <utility>
#include <variant>

#include "foundation/guarded.h"

namespace vell {
namespace {

constexpr int batchInterval = 40;       // milliseconds between batches
constexpr size_t maxMatches = 1 << 20;  // more are of no use

}  // namespace

QStringView searchableText(const TesselChatLog::Event& event) {
    if (const auto* text = std::get_if<TesselChatLog::PlainText>(&event.value)) return text->text;
    if (const auto* link = std::get_if<TesselChatLog::Link>(&event.value)) return link->title;
    return {};
}

ChatSearch::ChatSearch(std::shared_ptr<const TesselChatLog> log, QObject* parent)
    : QObject(parent), log_(std::move(log)) {}

ChatSearch::~ChatSearch() {
    cancel();
}

void ChatSearch::start(const QString& text) {
    cancel();
    matches_.clear();
    const TextSearch search(text);
    if (!search.isEmpty()) {
        running_ = std::make_shared<Run>(*this);
        foundation::runDetached([run = running_, log = log_, search] { find(run, *log, search); },
                                [run = running_] { report(run, {}, true); });
    }
    Q_EMIT changed();
}

void ChatSearch::cancel() {
    if (!running_) return;
    running_->cancelled = true;
    running_->callbacks.close();
    running_.reset();
}

void ChatSearch::append(const std::vector<TextSpan>& found, bool isLast) {
    matches_.insert(matches_.end(), found.begin(), found.end());
    if (isLast) running_.reset();
    Q_EMIT changed();
}

void ChatSearch::report(const std::shared_ptr<Run>& run, std::vector<TextSpan> found, bool isLast) {
    run->callbacks.post([run, found = std::move(found), isLast] {
        if (!run->cancelled) run->search.append(found, isLast);
    });
}

void ChatSearch::find(const std::shared_ptr<Run>& run, const TesselChatLog& log,
                      const TextSearch& text) {
    std::vector<TextSpan> found;
    size_t total = 0;
    QElapsedTimer sinceBatch;
    sinceBatch.start();
    for (qsizetype event = 0; event < std::ssize(log.events()) && total < maxMatches; ++event) {
        if (run->cancelled) return;
        for (const auto& range :
             text.matches(searchableText(log.events()[static_cast<size_t>(event)]))) {
            found.push_back({{event, range.position}, {event, range.position + range.length}});
            ++total;
        }
        if (!found.empty() && sinceBatch.hasExpired(batchInterval)) {
            report(run, std::exchange(found, {}), false);
            sinceBatch.restart();
        }
    }
    report(run, std::move(found), true);
}

}  // namespace vell
