// SPDX-License-Identifier: MIT
#include "app/library/people_model.h"

#include <QCollator>
#include <QMimeData>
#include <algorithm>
#include <map>

#include "app/library/shown_facts.h"
#include "library/query.h"

namespace vell {
namespace {

QHash<TesselUserID, int> personsByAddress(const LibraryPeople& people) {
    QHash<TesselUserID, int> result;
    for (std::size_t i = 0; i < people.contents.people.size(); ++i)
        result.insert(people.contents.people[i], people.personOf[i]);
    return result;
}

QString personType() {
    return QStringLiteral("application/x-vell-person");
}

TesselUserID draggedPerson(const QMimeData& data) {
    const QString text = QString::fromUtf8(data.data(personType()));
    return {{text.section(u'\n', 0, 0)}, text.section(u'\n', 1)};
}

}  // namespace

PeopleModel::PeopleModel(QObject* parent)
    : QAbstractListModel(parent),
      people_(std::make_shared<LibraryPeople>(LibraryContents(), PersonAliases(),
                                              ContactsStore::Table())) {
    rows_ = arranged();
}

void PeopleModel::setPeople(std::shared_ptr<const LibraryPeople> people) {
    Q_EMIT layoutAboutToBeChanged();
    // By the persons in each, who may have been joined meanwhile.
    const auto addresses = personsByAddress(*people);
    std::map<std::vector<int>, int> partners;
    for (std::size_t i = 0; i < people->partners.size(); ++i)
        partners.emplace(people->partners[i].persons, static_cast<int>(i));
    const auto now = [&](int partner) {
        std::vector<int> persons;
        for (const int person : people_->partners[static_cast<std::size_t>(partner)].persons) {
            persons.push_back(addresses.value(people_->addressAt(person), -1));
        }
        std::sort(persons.begin(), persons.end());
        persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
        const auto at = partners.find(persons);
        return at == partners.end() ? -1 : at->second;
    };
    const QModelIndexList before = persistentIndexList();
    std::vector<int> wanted;
    for (const QModelIndex& index : before) {
        const int old = partner(index);
        wanted.push_back(old == everybody ? everybody : std::max(now(old), everybody));
    }
    people_ = std::move(people);
    rows_ = arranged();
    QModelIndexList after;
    for (const int partner : wanted)
        after.append(indexOf(partner));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

void PeopleModel::setOrder(Order order) {
    order_ = order;
    rearrange();
}

void PeopleModel::setFilter(const QString& text) {
    filter_ = foldedText(text);
    rearrange();
}

void PeopleModel::setOthersOf(const TesselUserID& person) {
    othersOf_ = person;
    rearrange();
}

void PeopleModel::rearrange() {
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<int> partners;
    for (const QModelIndex& index : before)
        partners.push_back(partner(index));
    rows_ = arranged();
    QModelIndexList after;
    for (const int partner : partners)
        after.append(indexOf(partner));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

bool PeopleModel::isShown(int partner) const {
    if (othersOf_) {
        const auto person = personOf(partner);
        if (!person || *person == *othersOf_) return false;
    }
    return people_->partners[static_cast<std::size_t>(partner)].searchedFolded.contains(filter_);
}

std::vector<int> PeopleModel::arranged() const {
    std::vector<int> rows;
    const auto& partners = people_->partners;
    for (int i = 0; i < static_cast<int>(partners.size()); ++i) {
        if (isShown(i)) rows.push_back(i);
    }
    if (order_ == Order::name) {
        const QCollator collator;
        std::vector<QCollatorSortKey> keys;
        keys.reserve(partners.size());
        for (const LibraryPartner& partner : partners)
            keys.push_back(collator.sortKey(partner.name));
        std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) {
            return keys[static_cast<std::size_t>(a)] < keys[static_cast<std::size_t>(b)];
        });
    }
    if (filter_.isEmpty() && !othersOf_ && !partners.empty()) rows.insert(rows.begin(), everybody);
    return rows;
}

int PeopleModel::partner(const QModelIndex& index) const {
    return index.isValid() ? rows_[static_cast<std::size_t>(index.row())] : everybody;
}

QModelIndex PeopleModel::indexOf(int partner) const {
    const auto at = std::find(rows_.begin(), rows_.end(), partner);
    return at == rows_.end() ? QModelIndex() : index(static_cast<int>(at - rows_.begin()));
}

std::optional<TesselUserID> PeopleModel::person(const QModelIndex& index) const {
    return personOf(partner(index));
}

std::optional<TesselUserID> PeopleModel::personOf(int partner) const {
    if (partner == everybody) return std::nullopt;
    const auto& persons = people_->partners[static_cast<std::size_t>(partner)].persons;
    if (persons.size() != 1) return std::nullopt;
    return people_->addressAt(persons.front());
}

QString PeopleModel::details(const QModelIndex& index) const {
    const int at = partner(index);
    if (at == everybody) return shownMessages(people_->messages);
    const LibraryPartner& partner = people_->partners[static_cast<std::size_t>(at)];
    const QString day = shownDay(partner.last);
    const QString messages = shownMessages(partner.messages);
    return day.isEmpty() ? messages : messages + QStringLiteral(" · ") + day;
}

std::vector<TesselUserID> PeopleModel::pictured(const QModelIndex& index) const {
    const int at = partner(index);
    std::vector<TesselUserID> result;
    if (at == everybody) return result;
    for (const int person : people_->partners[static_cast<std::size_t>(at)].persons)
        result.push_back(people_->addressAt(person));
    return result;
}

int PeopleModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PeopleModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const int at = partner(index);
    const QString name =
        at == everybody ? tr("Everybody") : people_->partners[static_cast<std::size_t>(at)].name;
    switch (role) {
        case Qt::DisplayRole:
            return name;
        case Qt::AccessibleTextRole:
            return name + QStringLiteral(", ") + details(index);
        case Qt::ToolTipRole:
            if (at == everybody) return {};
            return people_->partners[static_cast<std::size_t>(at)].searched.trimmed();
        default:
            return {};
    }
}

Qt::ItemFlags PeopleModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractListModel::flags(index);
    if (person(index)) flags |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    return flags;
}

QStringList PeopleModel::mimeTypes() const {
    return {personType()};
}

QMimeData* PeopleModel::mimeData(const QModelIndexList& indexes) const {
    const auto dragged = person(indexes.value(0));
    if (!dragged) return nullptr;
    auto* data = new QMimeData;
    data->setData(personType(), (dragged->serviceID.rawValue + u'\n' + dragged->userID).toUtf8());
    return data;
}

bool PeopleModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                  const QModelIndex& parent) const {
    const auto target = person(parent);
    return data->hasFormat(personType()) && target && *target != draggedPerson(*data);
}

bool PeopleModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                               const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    Q_EMIT joinRequested(*person(parent), draggedPerson(*data));
    return true;
}

}  // namespace vell
