// SPDX-License-Identifier: MIT
#include "app/documents/archive/message_links.h"

#include <algorithm>

namespace vell {
namespace {

bool isPiece(const TesselChatLog::Event& event) {
    return std::holds_alternative<TesselChatLog::PlainText>(event.value) ||
           std::holds_alternative<TesselChatLog::Image>(event.value) ||
           std::holds_alternative<TesselChatLog::File>(event.value) ||
           std::holds_alternative<TesselChatLog::Link>(event.value);
}

}  // namespace

MessageLinks::MessageLinks(const TesselChatLog& log) {
    const auto& numbers = log.archivedMessages();
    messages_.reserve(numbers.size());
    for (size_t index = 0; index < log.events().size(); ++index) {
        if (!isPiece(log.events()[index])) continue;
        const auto row = qsizetype(index);
        if (log.continuesMessage(index) && !messages_.empty()) {
            messages_.back().rows.last = row;
        } else if (messages_.size() < numbers.size()) {
            messages_.push_back({{row, row}, numbers[messages_.size()]});
        }
    }
    byObject_.reserve(messages_.size());
    for (const Message& message : messages_)
        if (message.object) byObject_.emplace_back(*message.object, message.rows);
    std::stable_sort(byObject_.begin(), byObject_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
}

std::optional<quint32> MessageLinks::objectOf(qsizetype row) const {
    const auto next = std::upper_bound(
        messages_.begin(), messages_.end(), row,
        [](qsizetype row, const Message& message) { return row < message.rows.first; });
    if (next == messages_.begin() || row > std::prev(next)->rows.last) return std::nullopt;
    return std::prev(next)->object;
}

std::optional<MessageLinks::Rows> MessageLinks::rowsOf(quint64 object) const {
    const auto found = std::lower_bound(
        byObject_.begin(), byObject_.end(), object,
        [](const auto& message, quint64 number) { return message.first < number; });
    if (found == byObject_.end() || found->first != object) return std::nullopt;
    return found->second;
}

}  // namespace vell
