// SPDX-License-Identifier: MIT
#include "library/library_statistics.h"

#include <QSet>
#include <algorithm>
#include <chrono>

namespace vell {
namespace {

constexpr qint64 secondsPerHour = 3600;
constexpr qint64 hoursPerDay = 24;

/// Counts messages in any order.
class Counter {
  public:
    Counter(LibraryStatistics& statistics, const foundation::Calendar& calendar)
        : statistics_(statistics), calendar_(calendar) {}

    void add(foundation::Date date) {
        ++statistics_.messages;
        const auto second = calendar_.localSecond(date);
        if (!second) return;
        dates_.push_back(date.secondsSinceReferenceDate);
        const qint64 hour = floorDivide(*second, secondsPerHour);
        const qint64 day = floorDivide(hour, hoursPerDay);
        ++statistics_.hours[static_cast<std::size_t>(hour - day * hoursPerDay)];
        if (day != day_) {
            day_ = day;
            const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
            year_ = static_cast<int>(date.year());
        }
        ++statistics_.years[year_];
    }
    void finish() {
        if (dates_.empty()) return;
        std::sort(dates_.begin(), dates_.end());
        statistics_.span = {{dates_.front()}, {dates_.back()}};
        for (std::size_t i = 1; i < dates_.size(); ++i) {
            const auto& silence = statistics_.silence;
            if (!silence ||
                dates_[i] - dates_[i - 1] > silence->end.secondsSinceReferenceDate -
                                                silence->begin.secondsSinceReferenceDate)
                statistics_.silence = {{dates_[i - 1]}, {dates_[i]}};
        }
        const int last = statistics_.years.rbegin()->first;
        for (int year = statistics_.years.begin()->first; year < last; ++year)
            statistics_.years.try_emplace(year, 0);
    }

  private:
    LibraryStatistics& statistics_;
    const foundation::Calendar& calendar_;
    std::vector<double> dates_;
    qint64 day_ = std::numeric_limits<qint64>::min();
    int year_ = 0;

    static qint64 floorDivide(qint64 value, qint64 by) {
        return value / by - (value % by < 0 ? 1 : 0);
    }
};

/// For each person in the database the one that stands for them.
QHash<qint64, int> personsByNumber(LibraryStore& store, const LibraryPeople& people) {
    QHash<TesselUserID, int> byAddress;
    for (std::size_t i = 0; i < people.contents.people.size(); ++i)
        byAddress.insert(people.contents.people[i], people.personOf[i]);
    QHash<qint64, int> result;
    Statement rows = store.database().prepare("SELECT id, service, account FROM people");
    while (rows.step())
        result.insert(rows.integer(0), byAddress.value({{rows.text(1)}, rows.text(2)}, -1));
    return result;
}

QSet<qint64> wantedFiles(const LibraryPeople& people, int partner) {
    QSet<qint64> files;
    for (std::size_t i = 0; i < people.contents.conversations.size(); ++i) {
        if (partner < 0 || people.partnerOf(static_cast<int>(i)) == partner)
            files.insert(people.contents.conversations[i].file);
    }
    return files;
}

}  // namespace

LibraryStatistics LibraryStatistics::read(LibraryStore& store, const LibraryPeople& people,
                                          int partner, const foundation::Calendar& calendar) {
    LibraryStatistics statistics;
    const QHash<qint64, int> persons = personsByNumber(store, people);
    const QSet<qint64> files = wantedFiles(people, partner);
    QHash<int, qint64> messages;
    Counter counter(statistics, calendar);
    Statement rows = store.database().prepare(
        "SELECT file, sender, date FROM messages WHERE sender IS NOT NULL");
    while (rows.step()) {
        if (!files.contains(rows.integer(0))) continue;
        const int person = persons.value(rows.integer(1), -1);
        if (person < 0) continue;
        ++messages[person];
        counter.add(rows.date(2));
    }
    counter.finish();
    for (auto each = messages.cbegin(); each != messages.cend(); ++each)
        statistics.writers.push_back({each.key(), each.value()});
    std::sort(statistics.writers.begin(), statistics.writers.end(),
              [](const Writer& a, const Writer& b) {
                  return a.messages != b.messages ? a.messages > b.messages : a.person < b.person;
              });
    return statistics;
}

}  // namespace vell
