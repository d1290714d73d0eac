// SPDX-License-Identifier: MIT
#include "transcript/log_size.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "transcript/run.h"

namespace vell {
namespace {

using foundation::AttributedString;

// Upper bounds of what a text and a run's payload take besides their content.
constexpr quint64 textOverhead = 48;
constexpr quint64 payloadSize = 256;

class LogSizeEstimate {
  public:
    void add(const std::shared_ptr<const InstantMessage>& message);
    [[nodiscard]] LogSize result() const { return {events_, events_ * eventSize + extra_}; }

  private:
    static constexpr quint64 eventSize = sizeof(TesselChatLog::Event);
    quint64 events_ = 0;
    quint64 extra_ = 0;  // bytes
    std::optional<foundation::Date> previousDate_;
    std::shared_ptr<const Presentity> previousSender_;
    // The number of runs, by who sends the string: a system message has texts of its own.
    std::unordered_map<const AttributedString*, quint64> sharedBySenders_;
    std::unordered_map<const AttributedString*, quint64> sharedBySystem_;
    std::unordered_set<const QChar*> replacedTexts_;

    quint64 countRunsOf(const std::shared_ptr<const InstantMessage>& message);
    void countNew(const AttributedString& string, const RunCensus& census, bool isSystem);
    void countReplaced(const QString& text);
};

void LogSizeEstimate::add(const std::shared_ptr<const InstantMessage>& message) {
    // A message without a date, or with the one before's, opens no day and no minute.
    if (message->date && message->date != previousDate_) ++events_;
    previousDate_ = message->date ? message->date : previousDate_;
    if (previousSender_ && previousSender_ != message->sender) ++events_;
    previousSender_ = message->sender;

    const quint64 runs = message->message ? countRunsOf(message) : 0;
    events_ += runs > 0 ? runs : 1;
    if (runs == 0 && !message->sender && message->originalMessage)
        countReplaced(*message->originalMessage);
}

quint64 LogSizeEstimate::countRunsOf(const std::shared_ptr<const InstantMessage>& message) {
    const AttributedString& string = *message->message;
    const bool isSystem = !message->sender;
    if (message.use_count() == 1 && message->message.use_count() == 1) {
        const RunCensus census = countRuns(string);
        countNew(string, census, isSystem);
        return census.runs;
    }
    auto& shared = isSystem ? sharedBySystem_ : sharedBySenders_;
    const auto [at, isNew] = shared.try_emplace(&string);
    if (isNew) {
        const RunCensus census = countRuns(string);
        countNew(string, census, isSystem);
        extra_ += census.runs * sizeof(Run);  // kept until the last message was converted
        at->second = census.runs;
    }
    return at->second;
}

void LogSizeEstimate::countNew(const AttributedString& string, const RunCensus& census,
                               bool isSystem) {
    if (census.runs > 1) extra_ += census.runs * (textOverhead + payloadSize);
    // A system message's pieces are copied once more, at most twice as long.
    extra_ += census.copiedUnits * sizeof(QChar) * (isSystem ? 3 : 1);
    if (isSystem && census.copiedUnits == 0) countReplaced(string.text());
}

/// The copy in which placeholders are replaced, once for each text.
void LogSizeEstimate::countReplaced(const QString& text) {
    if (replacedTexts_.insert(text.constData()).second && text.contains(u"%@"))
        extra_ += textOverhead + static_cast<quint64>(text.size()) * 2 * sizeof(QChar);
}

}  // namespace

LogSize estimateLogSize(std::span<const std::shared_ptr<const InstantMessage>> messages) {
    LogSizeEstimate estimate;
    for (const auto& message : messages)
        estimate.add(message);
    return estimate.result();
}

}  // namespace vell
