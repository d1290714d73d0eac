// SPDX-License-Identifier: MIT
#include "toolkit/shown_text.h"

#include <gtest/gtest.h>

namespace vell {
namespace {

TEST(ShownText, IsBoundedHoweverLongTheNamesAre) {
    EXPECT_EQ(shownText(QStringLiteral("Anna")), QStringLiteral("Anna"));
    const QString cats = QString::fromUtf8("🐈").repeated(1 << 20);
    EXPECT_EQ(shownText(u'x' + cats), u'x' + cats.first(longestShownText - 2) + QChar(u'…'));

    int asked = 0;
    const auto nameOf = [&](const QString& name) {
        ++asked;
        return name;
    };
    EXPECT_EQ(shownList(QStringList{"Anna", "Bob", "Anna"}, nameOf), QStringLiteral("Anna, Bob"));
    asked = 0;
    const QString list = shownList(QStringList(100'000, cats), nameOf);
    EXPECT_LT(list.size(), 3 * longestShownText);
    EXPECT_TRUE(list.endsWith(QStringLiteral("…")));
    asked = 0;
    QStringList people;
    for (int i = 0; i < 100'000; ++i)
        people.append(QString::number(i));
    EXPECT_LT(shownList(people, nameOf).size(), 3 * longestShownText);
    EXPECT_LT(asked, 1000);
}

}  // namespace
}  // namespace vell
