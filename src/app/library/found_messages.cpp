// SPDX-License-Identifier: MIT
#include "app/library/found_messages.h"

#include <algorithm>
#include <utility>

#include "app/documents/find/match_model.h"
#include "app/library/library.h"
#include "app/library/shown_facts.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "library/library_search.h"
#include "toolkit/shown_text.h"
#include "toolkit/text_tokens.h"

namespace vell {
namespace {

constexpr std::size_t firstBatch = 50;
constexpr std::size_t laterBatch = 500;
// Of a long text only the beginning is searched for the place of a match.
constexpr qsizetype mostTokenized = 20'000;

/// The line of the text that holds the first match, with all matches in it.
void setLine(FoundMessages::Row& row, const FoundMessage& message, const Query& query,
             TextTokenizer& tokenizer) {
    const QString text = message.text.left(mostTokenized);
    tokenizer.read(text);
    const auto found = stretchesOf(query, tokenizer);
    const TextStretch first = found.empty() ? TextStretch() : found.front();
    const auto around = lineAround(text, first.position, first.position + first.length);
    row.line = around.text.isEmpty() ? placeholderFor(message.kinds) : around.text;
    const qsizetype shift = around.start - first.position;
    for (const TextStretch& stretch : found) {
        if (stretch.position + stretch.length + shift > row.line.size()) break;
        row.stretches.push_back({stretch.position + shift, stretch.length});
    }
}

}  // namespace

/// What a search does on its thread.
struct FoundMessages::Search {
    FoundMessages* owner;
    quint64 number;
    std::shared_ptr<CallbackGuard> callbacks;
    Query query;
    SearchScope scope;
    std::shared_ptr<const LibraryPeople> people;

    /// Whether another file with the same bytes stands for this one.
    [[nodiscard]] bool isCopy(const QByteArray& path) const {
        const int conversation = people->conversationAt(path);
        return conversation >= 0 &&
               people->contents.conversations[static_cast<std::size_t>(conversation)].path != path;
    }
    void run(LibraryStore& store, const LibraryThread::IsCancelled& isCancelled) const {
        LibrarySearch search(store, scope);
        TextTokenizer tokenizer;
        std::vector<Row> batch;
        int listed = 0;
        search.run(query, [&](const SearchHit& hit) {
            if (isCopy(hit.path)) return !isCancelled();
            Row row{hit.path, hit.message.sequence, hit.message.date, hit.message.sender, {}, {}};
            setLine(row, hit.message, query, tokenizer);
            batch.push_back(std::move(row));
            ++listed;
            if (batch.size() == (listed <= static_cast<int>(firstBatch) ? firstBatch : laterBatch))
                post([rows = std::exchange(batch, {})](FoundMessages& to) { to.append(rows); });
            return listed < mostListed && !isCancelled();
        });
        if (isCancelled()) return;
        post([rows = std::move(batch)](FoundMessages& to) { to.append(rows); });
        const qint64 count = listed < mostListed ? listed : search.count(query);
        post([count](FoundMessages& to) { to.takeCount(count); });
    }

    template <class Function>
    void post(Function function) const {
        callbacks->post([owner = owner, number = number, function = std::move(function)] {
            if (owner->newest_ == number) function(*owner);
        });
    }
};

FoundMessages::FoundMessages(Library& library, const ContactsStore& contacts, QObject* parent)
    : QAbstractListModel(parent),
      library_(library),
      contacts_(contacts),
      thread_(library.database(), this, [this](const QString& reason) {
          library_.setNotice(tr("The library can’t be searched: %1").arg(reason));
          takeCount(0);
      }) {}

void FoundMessages::search(const QString& text, bool bestFirst) {
    Query query = Query::parse(text);
    words_.clear();
    for (const Query::Phrase& phrase : query.phrases)
        words_.append(QStringList(phrase.tokens.begin(), phrase.tokens.end()).join(u' '));
    Search search{this,
                  ++newest_,
                  thread_.callbacks(),
                  std::move(query),
                  library_.scope(),
                  library_.people()};
    search.scope.bestFirst = bestFirst;
    // The old rows stay until the first new ones come, so that nothing flickers.
    isStale_ = true;
    isSearching_ = true;
    count_.reset();
    thread_.post([search = std::move(search)](LibraryStore& store,
                                              const LibraryThread::IsCancelled& isCancelled) {
        search.run(store, isCancelled);
    });
    Q_EMIT stateChanged();
}

void FoundMessages::clear() {
    ++newest_;
    thread_.cancel();
    beginResetModel();
    rows_.clear();
    isStale_ = false;
    endResetModel();
    isSearching_ = false;
    count_.reset();
    Q_EMIT stateChanged();
}

void FoundMessages::append(std::vector<Row> rows) {
    if (std::exchange(isStale_, false)) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    } else if (!rows.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
        std::move(rows.begin(), rows.end(), std::back_inserter(rows_));
        endInsertRows();
    }
    Q_EMIT stateChanged();
}

void FoundMessages::takeCount(qint64 count) {
    count_ = count;
    isSearching_ = false;
    Q_EMIT stateChanged();
}

QString FoundMessages::origin(const Row& row) const {
    const LibraryPeople& people = *library_.people();
    QString sender =
        row.sender ? shownText(senderName(*row.sender, contacts_)).simplified() : QString();
    const int conversation = people.conversationAt(row.path);
    if (conversation < 0) return sender;
    const auto& partner = people.partners[static_cast<std::size_t>(people.partnerOf(conversation))];
    if (sender.isEmpty() || partner.name == sender) return partner.name;
    //: Who wrote a message › whom the conversation is with.
    return tr("%1 › %2").arg(sender, partner.name);
}

int FoundMessages::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FoundMessages::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Row& row = this->row(index);
    if (role == Qt::DisplayRole) return row.line;
    if (role == Qt::AccessibleTextRole) {
        //: "Jonas, 1 May 2005: the line that holds the match"
        return tr("%1, %2: %3").arg(origin(row), shownDay(row.date), row.line);
    }
    return {};
}

}  // namespace vell
