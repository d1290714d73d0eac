// SPDX-License-Identifier: MIT
//
// Whole transcripts of both archive forms against their expected events; the README beside them
// says how they are compared.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <cmath>

#include "cli/program.h"
#include "foundation/date.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;

QJsonObject parsed(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return document.object();
}

std::string text(const QJsonValue& value) {
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).toStdString();
}

QSet<QString> asSet(const QJsonArray& array) {
    QSet<QString> result;
    for (const QJsonValue& value : array)
        result.insert(value.isString() ? value.toString() : QString::fromStdString(text(value)));
    return result;
}

void compareTime(const QJsonObject& expected, const QJsonObject& actual, const QString& file) {
    const QJsonValue wanted = expected[u"secondsSinceReferenceDate"_s];
    const double seconds = actual[u"secondsSinceReferenceDate"_s].toDouble();
    if (wanted == u"file"_s) {
        const auto modified = foundation::Date::fromMillisecondsSinceEpoch(
            QFileInfo(file).lastModified().toMSecsSinceEpoch());
        EXPECT_NEAR(seconds, modified.secondsSinceReferenceDate, 1e-3);
    } else if (wanted.toDouble() < -6e10) {
        EXPECT_LT(seconds, -6e10);
        EXPECT_EQ(actual[u"timestamp"_s].toString().toStdString(), "0001-01-01T00:00:00.000Z");
    } else {
        EXPECT_NEAR(seconds, wanted.toDouble(), 1e-6);
    }
}

void compareEvents(const QJsonObject& expected, const QJsonObject& actual, const QString& file) {
    SCOPED_TRACE("event " + text(expected));
    compareTime(expected, actual, file);
    if (expected.contains(u"participants"_s)) {
        constexpr QStringView prefix = u"Participants: ";
        const QString names = actual[u"text"_s].toString();
        EXPECT_TRUE(names.startsWith(prefix));
        EXPECT_EQ(asSet(QJsonArray::fromStringList(names.mid(prefix.size()).split(u", "_s))),
                  asSet(expected[u"participants"_s].toArray()));
        return;
    }
    for (auto member = expected.begin(); member != expected.end(); ++member) {
        if (member.key() == u"secondsSinceReferenceDate") continue;
        ASSERT_TRUE(actual.contains(member.key())) << member.key().toStdString();
        EXPECT_EQ(text(actual[member.key()]), text(member.value())) << member.key().toStdString();
    }
}

TEST(Transcripts, HaveTheExpectedEvents) {
    const QDir folder(QStringLiteral(VELL_TEST_DATA "/transcripts"));
    const QStringList files = folder.entryList({u"*.ichat"_s});
    ASSERT_GE(files.size(), 30);
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        const QString path = folder.filePath(name);
        QString zone = QFileInfo(name).completeBaseName().section(u'@', 1);
        zone.replace(u'+', u'/');
        const test::Result run =
            test::run({u"--format"_s, u"json"_s, u"--time-zone"_s, zone, path});
        ASSERT_EQ(run.status, 0) << run.error.toStdString();
        const QJsonObject actual = parsed(run.output);
        const QJsonObject expected = parsed(
            test::readFile(folder.filePath(QFileInfo(name).completeBaseName() + u".json"_s)));
        for (const char* key : {"schema", "serviceID", "ownUserID"})
            EXPECT_EQ(text(actual[QLatin1StringView(key)]), text(expected[QLatin1StringView(key)]));
        EXPECT_EQ(asSet(actual[u"otherUserIDs"_s].toArray()),
                  asSet(expected[u"otherUserIDs"_s].toArray()));
        const QJsonArray events = actual[u"events"_s].toArray();
        const QJsonArray wanted = expected[u"events"_s].toArray();
        ASSERT_EQ(events.size(), wanted.size());
        for (qsizetype i = 0; i < wanted.size(); ++i)
            compareEvents(wanted[i].toObject(), events[i].toObject(), path);
    }
}

}  // namespace
}  // namespace vell
