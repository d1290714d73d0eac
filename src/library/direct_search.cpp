// SPDX-License-Identifier: MIT
#include "library/direct_search.h"

#include <algorithm>
#include <memory>

#include "library/indexer.h"
#include "library/parallel_files.h"

namespace vell {
namespace {

struct RankedHit {
    int rank = 0;
    SearchHit hit;
};

/// Searches files one after the other.
class FileSearch {
  public:
    FileSearch(Query query, SearchScope scope)
        : query_(std::move(query)), scope_(std::move(scope)) {}

    std::vector<RankedHit> hitsIn(const FoundFile& file) {
        const Conversation conversation = reader_.read(file).conversation;
        std::vector<RankedHit> hits;
        if (!isWanted(conversation)) return hits;
        const std::vector<bool> isSender = sendersOf(conversation);
        const auto& messages = conversation.messages;
        for (std::size_t i = 0; i < messages.size(); ++i) {
            const LibraryMessage& message = messages[i];
            if (!query_.accepts(message.date, message.kinds)) continue;
            if (!query_.from.isEmpty() &&
                (message.sender < 0 || !isSender[static_cast<std::size_t>(message.sender)]))
                continue;
            tokenizer_.read(message.text);
            const auto rank = query_.rank(tokenizer_);
            if (!rank) continue;
            hits.push_back({scope_.bestFirst ? *rank : 0, hitAt(file, conversation, i)});
        }
        return hits;
    }

  private:
    const Query query_;
    const SearchScope scope_;
    TranscriptReader reader_;
    TextTokenizer tokenizer_;

    [[nodiscard]] bool isWanted(const Conversation& conversation) const {
        return std::all_of(query_.with.begin(), query_.with.end(), [&](const QString& typed) {
            return std::any_of(
                conversation.people.begin(), conversation.people.end(),
                [&](const TesselUserID& person) { return isNamed(person, typed, scope_); });
        });
    }

    [[nodiscard]] std::vector<bool> sendersOf(const Conversation& conversation) const {
        std::vector<bool> result;
        for (const TesselUserID& person : conversation.people) {
            result.push_back(
                std::any_of(query_.from.begin(), query_.from.end(),
                            [&](const QString& typed) { return isNamed(person, typed, scope_); }));
        }
        return result;
    }

    [[nodiscard]] SearchHit hitAt(const FoundFile& file, const Conversation& conversation,
                                  std::size_t index) const {
        SearchHit hit{file.path, messageAt(conversation, index), {}, {}};
        const auto context = static_cast<std::size_t>(scope_.context);
        for (std::size_t i = index - std::min(index, context); i < index; ++i)
            hit.before.push_back(messageAt(conversation, i));
        const std::size_t end = std::min(conversation.messages.size(), index + 1 + context);
        for (std::size_t i = index + 1; i < end; ++i)
            hit.after.push_back(messageAt(conversation, i));
        return hit;
    }

    [[nodiscard]] static FoundMessage messageAt(const Conversation& conversation,
                                                std::size_t index) {
        const LibraryMessage& message = conversation.messages[index];
        FoundMessage found{message.sequence, message.date, {}, message.kinds, message.text};
        if (message.sender >= 0)
            found.sender = conversation.people[static_cast<std::size_t>(message.sender)];
        return found;
    }
};

}  // namespace

void directSearch(const Query& query, const SearchScope& scope, const std::atomic<bool>& stop,
                  const std::function<void(qsizetype done, qsizetype all)>& onFile,
                  const TakeHit& take) {
    const std::vector<FoundFile> found = transcriptsIn(scope.folders, stop);
    ParallelFiles<std::vector<RankedHit>> files(
        found,
        [query, scope] {
            return [search = std::make_shared<FileSearch>(query, scope)](const FoundFile& file) {
                return search->hitsIn(file);
            };
        },
        [](const auto& hits) { return hits.size() * sizeof(RankedHit); });
    std::vector<RankedHit> hits;
    qsizetype done = 0;
    while (auto more = files.next(stop)) {
        std::move(more->begin(), more->end(), std::back_inserter(hits));
        if (onFile) onFile(++done, std::ssize(found));
    }
    std::sort(hits.begin(), hits.end(), [](const RankedHit& a, const RankedHit& b) {
        return a.rank != b.rank ? a.rank < b.rank : isNewer(a.hit, b.hit);
    });
    for (const RankedHit& hit : hits) {
        if (stop || !take(hit.hit)) return;
    }
}

}  // namespace vell
