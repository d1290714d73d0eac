// SPDX-License-Identifier: MIT
#include "app/desktop/recently_used.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QTimeZone>

namespace {

namespace recentlyUsed = vell::recentlyUsed;

const QByteArray others = R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0" xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks"
      xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info">
  <bookmark href="file:///a%20b.txt" added="2020-01-01T00:00:00Z" modified="2020-01-01T00:00:00Z" visited="2020-01-01T00:00:00Z">
    <info><metadata owner="http://freedesktop.org">
      <mime:mime-type type="text/plain"/>
      <bookmark:groups><bookmark:group>Office</bookmark:group></bookmark:groups>
      <bookmark:applications><bookmark:application name="Editor" exec="&apos;editor %u&apos;" modified="2020-01-01T00:00:00Z" count="3"/></bookmark:applications>
    </metadata></info>
  </bookmark>
</xbel>)";

const QDateTime moment = QDateTime::fromSecsSinceEpoch(1246712645, QTimeZone::utc());

QStringList applications(const QByteArray& list, const QString& address) {
    QDomDocument document;
    EXPECT_TRUE(document.setContent(list));
    QStringList names;
    const auto bookmarks = document.elementsByTagName(QStringLiteral("bookmark"));
    for (int i = 0; i < bookmarks.size(); ++i) {
        const QDomElement bookmark = bookmarks.at(i).toElement();
        if (bookmark.attribute(QStringLiteral("href")) != address) continue;
        const auto entries = bookmark.elementsByTagName(QStringLiteral("bookmark:application"));
        for (int j = 0; j < entries.size(); ++j) {
            const QDomElement entry = entries.at(j).toElement();
            names.append(entry.attribute(QStringLiteral("name")) + u' ' +
                         entry.attribute(QStringLiteral("count")));
        }
    }
    return names;
}

TEST(RecentlyUsed, EntriesOfOtherProgramsAreKept) {
    const QString theirs = QStringLiteral("file:///a%20b.txt");
    const QString ours = QStringLiteral("file:///chat.ichat");
    auto list = recentlyUsed::withEntry(others, ours, moment);
    ASSERT_TRUE(list);
    list = recentlyUsed::withEntry(*list, ours, moment.addDays(1));
    list = recentlyUsed::withEntry(*list, theirs, moment);
    ASSERT_TRUE(list);
    EXPECT_EQ(applications(*list, ours), QStringList{QStringLiteral("Vell 2")});
    EXPECT_EQ(applications(*list, theirs),
              QStringList({QStringLiteral("Editor 3"), QStringLiteral("Vell 1")}));
    EXPECT_TRUE(list->contains("Office"));

    const auto cleared = recentlyUsed::withoutOwnEntries(*list);
    ASSERT_TRUE(cleared);
    EXPECT_EQ(applications(*cleared, ours), QStringList());
    EXPECT_EQ(applications(*cleared, theirs), QStringList{QStringLiteral("Editor 3")});
}

TEST(RecentlyUsed, AMalformedListIsNotChanged) {
    for (const QByteArray& list : {QByteArray("<xbel"), QByteArray("<html/>"), QByteArray("\0", 1)})
        EXPECT_FALSE(recentlyUsed::withEntry(list, QStringLiteral("file:///x"), moment));
    EXPECT_TRUE(recentlyUsed::withEntry({}, QStringLiteral("file:///x"), moment));
}

}  // namespace
