// SPDX-License-Identifier: MIT
#include "app/library/conversation_model.h"

#include <QLocale>
#include <QRegularExpression>
#include <algorithm>

#include "app/documents/chat_contents.h"
#include "app/library/people_model.h"
#include "app/library/shown_facts.h"
#include "foundation/local_path.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

// The internal id of an index: what it stands for in the lowest bits, above them which heading it
// is or stands below.
constexpr quintptr kindMask = 3;
constexpr quintptr yearKind = 0;
constexpr quintptr monthKind = 1;
constexpr quintptr conversationKind = 2;

// Of those scrolled past, the beginnings aren't read.
constexpr std::size_t mostWanted = 200;

quintptr idOf(quintptr kind, int number) {
    return static_cast<quintptr>(number) << 2 | kind;
}

int numberOf(const QModelIndex& index) {
    return static_cast<int>(index.internalId() >> 2);
}

quintptr kindOf(const QModelIndex& index) {
    return index.internalId() & kindMask;
}

}  // namespace

ConversationModel::ConversationModel(const QByteArray& database, QObject* parent)
    : QAbstractItemModel(parent),
      people_(std::make_shared<LibraryPeople>(LibraryContents(), PersonAliases(),
                                              ContactsStore::Table())),
      partner_(PeopleModel::everybody),
      reading_(database, this, [](const QString&) {}) {
    wordsTimer_.setSingleShot(true);
    connect(&wordsTimer_, &QTimer::timeout, this, &ConversationModel::readWords);
}

void ConversationModel::show(std::shared_ptr<const LibraryPeople> people, int partner) {
    beginResetModel();
    wanted_.clear();
    people_ = std::move(people);
    partner_ = partner;
    arrange();
    endResetModel();
}

void ConversationModel::arrange() {
    shown_.clear();
    years_.clear();
    months_.clear();
    if (partner_ != PeopleModel::everybody) {
        shown_ = people_->partners[static_cast<std::size_t>(partner_)].conversations;
    } else {
        for (int i = 0; i < static_cast<int>(people_->contents.conversations.size()); ++i)
            shown_.push_back(i);
    }
    const foundation::Calendar calendar = sharedCalendar();
    for (int row = 0; row < count(); ++row) {
        const auto index = static_cast<std::size_t>(shown_[static_cast<std::size_t>(row)]);
        const auto day = localDate(people_->contents.conversations[index].begin, calendar);
        const QDate month = day ? QDate(day->year(), day->month(), 1) : QDate();
        const QDate year = day ? QDate(day->year(), 1, 1) : QDate();
        if (months_.empty() || months_.back().begin != month) {
            if (years_.empty() || years_.back().begin != year)
                years_.push_back({year, static_cast<int>(months_.size()), 0, 0});
            months_.push_back({month, row, 0, static_cast<int>(years_.size()) - 1});
            ++years_.back().count;
        }
        ++months_.back().count;
    }
}

const LibraryConversation* ConversationModel::conversation(const QModelIndex& index) const {
    if (!index.isValid() || kindOf(index) != conversationKind) return nullptr;
    const Heading& month = months_[static_cast<std::size_t>(numberOf(index))];
    const int shown =
        shown_[static_cast<std::size_t>(month.first) + static_cast<std::size_t>(index.row())];
    return &people_->contents.conversations[static_cast<std::size_t>(shown)];
}

const ConversationModel::Heading* ConversationModel::heading(const QModelIndex& index) const {
    if (!index.isValid() || kindOf(index) == conversationKind) return nullptr;
    const auto number = static_cast<std::size_t>(numberOf(index));
    return kindOf(index) == yearKind ? &years_[number] : &months_[number];
}

bool ConversationModel::isYear(const QModelIndex& index) const {
    return index.isValid() && kindOf(index) == yearKind;
}

QModelIndex ConversationModel::indexOf(const QByteArray& path) const {
    const int conversation = people_->conversationAt(path);
    const auto at = std::find(shown_.begin(), shown_.end(), conversation);
    if (conversation < 0 || at == shown_.end()) return {};
    const int row = static_cast<int>(at - shown_.begin());
    const auto behind =
        std::upper_bound(months_.begin(), months_.end(), row,
                         [](int row, const Heading& month) { return row < month.first; });
    const auto month = behind - 1;
    return createIndex(row - month->first, 0,
                       idOf(conversationKind, static_cast<int>(month - months_.begin())));
}

QModelIndex ConversationModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
    if (!parent.isValid()) return createIndex(row, 0, idOf(yearKind, row));
    const int number = numberOf(parent);
    if (kindOf(parent) == monthKind) return createIndex(row, 0, idOf(conversationKind, number));
    const int firstMonth = years_[static_cast<std::size_t>(number)].first;
    return createIndex(row, 0, idOf(monthKind, firstMonth + row));
}

QModelIndex ConversationModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || kindOf(child) == yearKind) return {};
    const int number = numberOf(child);
    const int year = months_[static_cast<std::size_t>(number)].year;
    if (kindOf(child) == monthKind) return createIndex(year, 0, idOf(yearKind, year));
    return createIndex(number - years_[static_cast<std::size_t>(year)].first, 0,
                       idOf(monthKind, number));
}

int ConversationModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return static_cast<int>(years_.size());
    const Heading* heading = this->heading(parent);
    return heading ? heading->count : 0;
}

QString ConversationModel::title(const Heading& heading, bool isYear) {
    if (!heading.begin.isValid()) return tr("Without a date");
    const QLocale locale;
    return isYear ? QString::number(heading.begin.year())
                  : locale.standaloneMonthName(heading.begin.month());
}

ConversationModel::Texts ConversationModel::texts(const QModelIndex& index) const {
    if (const Heading* heading = this->heading(index))
        return {title(*heading, isYear(index)), {}, {}, {}};
    const LibraryConversation* conversation = this->conversation(index);
    if (!conversation) return {};
    Texts texts;
    texts.second = firstWordsOf(*conversation);
    texts.secondEnd = QLocale().toString(conversation->messages);
    const QString time = shownDayOfMonth(conversation->begin);
    if (partner_ == PeopleModel::everybody) {
        const int shown = people_->conversationAt(conversation->path);
        const int partner = people_->partnerOf(shown);
        texts.first = people_->partners[static_cast<std::size_t>(partner)].name;
        texts.firstEnd = time;
    } else {
        texts.first = time;
    }
    if (!conversation->copies.empty()) {
        //: A conversation whose file is there more than once.
        const QString copies = tr("%1 copies").arg(conversation->copies.size() + 1);
        texts.secondEnd = copies + QStringLiteral(" · ") + texts.secondEnd;
    }
    return texts;
}

QVariant ConversationModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const LibraryConversation* conversation = this->conversation(index);
    if (role == Qt::DisplayRole) return texts(index).first;
    if (!conversation) return {};
    if (role == Qt::ToolTipRole) {
        QString paths = foundation::pathFromArgument(conversation->path.constData());
        for (const QByteArray& copy : conversation->copies)
            paths += u'\n' + foundation::pathFromArgument(copy.constData());
        return paths;
    }
    if (role == Qt::AccessibleTextRole) {
        const Texts texts = this->texts(index);
        return QStringList{texts.first, texts.firstEnd, shownMessages(conversation->messages),
                           texts.second}
            .filter(QRegularExpression(QStringLiteral(".")))
            .join(QStringLiteral(", "));
    }
    return {};
}

QString ConversationModel::firstWordsOf(const LibraryConversation& conversation) const {
    const auto known = words_.constFind({conversation.path, conversation.messages});
    if (known != words_.cend()) return *known;
    std::erase(wanted_, &conversation);
    wanted_.push_back(&conversation);
    if (wanted_.size() > mostWanted) wanted_.erase(wanted_.begin());
    if (!wordsTimer_.isActive()) wordsTimer_.start(0);
    return {};
}

void ConversationModel::readWords() {
    // The people keep the conversations alive.
    reading_.post([this, callbacks = reading_.callbacks(), people = people_, wanted = wanted_](
                      LibraryStore& store, const LibraryThread::IsCancelled&) {
        QHash<WordsKey, QString> words;
        for (const LibraryConversation* each : wanted)
            words.insert({each->path, each->messages}, firstWords(store, each->file));
        callbacks->post([this, words] { takeWords(words); });
    });
}

void ConversationModel::takeWords(const QHash<WordsKey, QString>& words) {
    words_.insert(words);
    std::erase_if(wanted_, [&words](const LibraryConversation* each) {
        return words.contains({each->path, each->messages});
    });
    Q_EMIT wordsRead();
}

}  // namespace vell
