// SPDX-License-Identifier: MIT
#include "library/person_aliases.h"

#include <QUrl>
#include <algorithm>
#include <numeric>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String joinedKey("joined");
constexpr QLatin1String separatedKey("separated");

QString encoded(const QString& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QString decoded(const QString& text) {
    return QUrl::fromPercentEncoding(text.toLatin1());
}

QString line(QLatin1String key, const PersonAliases::Addresses& addresses) {
    QStringList words{key};
    for (const TesselUserID& address : addresses)
        words.append(encoded(address.serviceID.rawValue) + u':' + encoded(address.userID));
    return words.join(u' ');
}

/// Joins sets of indexes; the lowest index stands for its set.
class JoinedIndexes {
  public:
    explicit JoinedIndexes(std::size_t count) : parents_(count) {
        std::iota(parents_.begin(), parents_.end(), 0);
    }
    [[nodiscard]] int find(int index) {
        while (parents_[static_cast<std::size_t>(index)] != index) {
            int& parent = parents_[static_cast<std::size_t>(index)];
            parent = parents_[static_cast<std::size_t>(parent)];
            index = parent;
        }
        return index;
    }
    void join(int a, int b) {
        const auto [low, high] = std::minmax({find(a), find(b)});
        parents_[static_cast<std::size_t>(high)] = low;
    }

  private:
    std::vector<int> parents_;
};

}  // namespace

void PersonAliases::forget(const Addresses& person) {
    for (const TesselUserID& address : person) {
        separated_.remove(address);
        for (Addresses& group : joined_)
            std::erase(group, address);
    }
    std::erase_if(joined_, [](const Addresses& group) { return group.size() < 2; });
}

void PersonAliases::join(const Addresses& person, const Addresses& other) {
    Addresses all = person;
    for (const TesselUserID& address : other) {
        if (std::find(all.begin(), all.end(), address) == all.end()) all.push_back(address);
    }
    forget(all);
    if (all.size() > 1) joined_.push_back(std::move(all));
}

void PersonAliases::separate(const Addresses& person) {
    forget(person);
    for (const TesselUserID& address : person)
        separated_.insert(address);
}

std::vector<int> PersonAliases::personOf(const Addresses& people,
                                         const QHash<QString, QString>& contactOf) const {
    JoinedIndexes sets(people.size());
    QHash<QString, int> firstOfContact;
    QHash<TesselUserID, int> indexes;
    for (int i = 0; i < static_cast<int>(people.size()); ++i) {
        const TesselUserID& address = people[static_cast<std::size_t>(i)];
        indexes.insert(address, i);
        const auto contact = contactOf.constFind(address.userID);
        if (contact == contactOf.cend() || separated_.contains(address)) continue;
        if (const auto first = firstOfContact.constFind(*contact); first != firstOfContact.cend())
            sets.join(*first, i);
        else
            firstOfContact.insert(*contact, i);
    }
    std::vector<int> namedBy(people.size(), -1);
    std::vector<std::pair<int, int>> names;  // a member of each group, and who names it
    for (const Addresses& group : joined_) {
        int main = -1;
        for (const TesselUserID& address : group) {
            const int index = indexes.value(address, -1);
            if (index < 0) continue;
            if (main < 0) main = index;
            sets.join(main, index);
        }
        if (main >= 0) names.emplace_back(main, main);
    }
    for (const auto& [member, main] : names)
        namedBy[static_cast<std::size_t>(sets.find(member))] = main;
    std::vector<int> result(people.size());
    for (int i = 0; i < static_cast<int>(people.size()); ++i) {
        const int set = sets.find(i);
        const int main = namedBy[static_cast<std::size_t>(set)];
        result[static_cast<std::size_t>(i)] = main < 0 ? set : main;
    }
    return result;
}

QStringList PersonAliases::lines() const {
    QStringList result;
    for (const Addresses& group : joined_)
        result.append(line(joinedKey, group));
    if (!separated_.isEmpty()) result.append(line(separatedKey, sorted(separated_)));
    return result;
}

PersonAliases PersonAliases::fromLines(const QStringList& lines) {
    PersonAliases result;
    for (const QString& line : lines) {
        const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
        Addresses addresses;
        for (const QString& word : words.mid(1)) {
            const qsizetype colon = word.indexOf(u':');
            if (colon >= 0)
                addresses.push_back({{decoded(word.left(colon))}, decoded(word.mid(colon + 1))});
        }
        if (words.value(0) == joinedKey)
            result.join(addresses, {});
        else if (words.value(0) == separatedKey)
            result.separate(addresses);
    }
    return result;
}

}  // namespace vell
