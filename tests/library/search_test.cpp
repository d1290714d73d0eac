// SPDX-License-Identifier: MIT
//
// What the index finds is what reading all files finds.
#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "archive.h"
#include "library/direct_search.h"
#include "library/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::Fixture;

QStringList described(const SearchHit& hit) {
    QStringList lines;
    const auto add = [&](const FoundMessage& message) {
        lines.append(QString::fromUtf8(hit.path) + u'|' + QString::number(message.sequence) + u'|' +
                     message.date.description() + u'|' +
                     (message.sender ? message.sender->userID : QString()) + u'|' + message.text);
    };
    for (const FoundMessage& message : hit.before)
        add(message);
    add(hit.message);
    for (const FoundMessage& message : hit.after)
        add(message);
    return lines;
}

/// A message of the archive.
struct Written {
    QString text;
    QString day;  // local
};

/// A word, part of one, a phrase, or some of these with a filter, out of a message.
QString randomQuery(const std::vector<Written>& all, std::mt19937& random) {
    const auto below = [&](qsizetype limit) {
        return static_cast<qsizetype>(random() % static_cast<unsigned>(limit));
    };
    const Written& said = all[static_cast<size_t>(below(std::ssize(all)))];
    QStringList words = said.text.split(u' ', Qt::SkipEmptyParts);
    QString word = words[below(words.size())].remove(u'"').remove(u':');
    const qsizetype begin = below(std::max<qsizetype>(1, word.size()));
    switch (below(5)) {
        case 0:
            word.truncate(2);
            break;
        case 1:
            word = u'"' + words.sliced(0, std::min<qsizetype>(2, words.size())).join(u' ') + u'"';
            break;
        case 2:
            word = words.first() + u' ' + word.toUpper();
            break;
        case 3:
            word = word.sliced(begin, std::min<qsizetype>(2, word.size() - begin));
            break;
        default:
            break;
    }
    const QStringList filters{u""_s,
                              u"from:an "_s,
                              u"with:ben "_s,
                              u"in:%1 "_s.arg(said.day),
                              u"before:%1 "_s.arg(said.day),
                              u"after:%1 "_s.arg(said.day),
                              u"has:link "_s,
                              u"has:picture "_s};
    return filters[below(below(2) == 0 ? 1 : filters.size())] + word;
}

TEST(Search, IndexFindsWhatReadingFinds) {
    // Its days begin within those of the database.
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    const Fixture fixture;
    archive::write(QString::fromStdString(fixture.chats), {12, 600, 10});
    LibraryStore store(fixture.database);
    fixture.update(store);
    std::vector<Written> all;
    Statement rows = store.database().prepare(
        "SELECT text, date(date + 978307200, 'unixepoch', 'localtime') FROM messages");
    while (rows.step())
        all.push_back({rows.text(0), rows.text(1)});

    const std::string firstFolder =
        fixture.path(QDir(fixture.path({})).entryList(QDir::Dirs | QDir::NoDotAndDotDot)[0])
            .toStdString();
    std::mt19937 random(7);
    qsizetype found = 0;
    for (int i = 0; i < 200; ++i) {
        const Query query = Query::parse(randomQuery(all, random));
        if (query.isEmpty()) continue;
        SearchScope scope{{fixture.chats}, i % 3 == 0, i % 2, {}};
        if (i % 5 == 0) scope.folders = {fixture.chats + "/Copies"};
        if (i % 10 == 1) scope.folders = {firstFolder};
        std::vector<QStringList> inIndex;
        LibrarySearch search(store, scope);
        search.run(query, [&](const SearchHit& hit) {
            inIndex.push_back(described(hit));
            return true;
        });
        std::vector<QStringList> inFiles;
        directSearch(query, scope, test::neverStops, {}, [&](const SearchHit& hit) {
            inFiles.push_back(described(hit));
            return true;
        });
        EXPECT_EQ(inIndex, inFiles) << "query " << i;
        EXPECT_EQ(search.count(query), std::ssize(inFiles)) << "query " << i;
        found += std::ssize(inFiles);
    }
    EXPECT_GT(found, 400);
}

}  // namespace
}  // namespace vell
