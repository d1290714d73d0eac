// SPDX-License-Identifier: MIT
#include "library/session_reader.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDateTime>
#include <QImage>
#include <condition_variable>
#include <map>
#include <mutex>

#include "fixture.h"

namespace vell {
namespace {

using foundation::StoredData;
using writers::Transcript;

const foundation::Calendar universal = *foundation::Calendar::named("UTC");

/// All that a reader hands over.
std::vector<SessionReader::Result> results(const std::vector<QByteArray>& paths,
                                           std::size_t first) {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<SessionReader::Result> all;
    const SessionReader reader(paths, first, universal, [&](SessionReader::Result result) {
        const std::lock_guard lock(mutex);
        all.push_back(std::move(result));
        changed.notify_all();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return !all.empty() && all.back().done == all.back().all; });
    return all;
}

/// How often each text was said at each instant.
std::map<std::pair<double, QString>, int> texts(const TesselChatLog& log) {
    std::map<std::pair<double, QString>, int> counts;
    for (const TesselChatLog::Event& event : log.events()) {
        if (const auto* text = std::get_if<TesselChatLog::PlainText>(&event.value))
            ++counts[{event.timestamp.secondsSinceReferenceDate, text->text}];
    }
    return counts;
}

QByteArray pathOf(const test::Fixture& fixture, const char* name) {
    return QFile::encodeName(fixture.path(QString::fromLatin1(name)));
}

TEST(SessionReader, EveryMessageOfEveryFileIsThereOnce) {
    const test::Fixture fixture;
    std::vector<QByteArray> paths;
    std::map<std::pair<double, QString>, int> expected;
    qsizetype size = 0;
    for (int i = 0; i < 40; ++i) {
        // Every other file repeats the end of the one before, some things are said twice at once.
        Transcript chat{.service = QStringLiteral("AIM"), .people = {{QStringLiteral("ann")}}};
        for (int k = i % 2 == 0 ? 0 : -20; k < 30; ++k) {
            const int number = 30 * i + k;
            chat.messages.push_back({.sender = 0,
                                     .date = 60.0 * (number / 2),
                                     .body = {writers::words(QString::number(number / 4))}});
        }
        const QString name = QString::number(i);
        fixture.write(
            name, i % 3 == 0 ? writers::nonKeyedTranscript(chat) : writers::keyedTranscript(chat));
        paths.push_back(QFile::encodeName(fixture.path(name)));
        size += QFileInfo(fixture.path(name)).size();
        for (const auto& [said, count] :
             texts(TesselChatLog::fromFile(fixture.path(name), universal)))
            expected[said] = std::max(expected[said], count);
    }
    fixture.write(QStringLiteral("broken"), "bplist00 and no more");
    paths.insert(paths.begin() + 7, pathOf(fixture, "broken"));
    paths.push_back(pathOf(fixture, "gone"));

    const auto all = results(paths, 20);
    ASSERT_GT(all.size(), 1U);
    bool isThere = false;
    for (const MergedSession& session : all.front().chat.sessions())
        isThere = isThere || session.path == paths[20];
    EXPECT_TRUE(isThere) << "it is to be seen first";
    EXPECT_LT(all.front().done, all.front().all);
    EXPECT_EQ(texts(*all.back().chat.log()), expected);
    EXPECT_EQ(all.back().fileSize, size);
    ASSERT_EQ(all.back().failures.size(), 2U);
    EXPECT_FALSE(all.back().failures[0].reason.isEmpty());
    EXPECT_EQ(all.back().chat.sessions().size(), 40U);
}

TEST(SessionReader, PicturesStayInTheirFiles) {
    const test::Fixture fixture;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    QImage(40, 30, QImage::Format_RGB32).save(&buffer, "PNG");
    Transcript chat{.service = QStringLiteral("AIM"), .people = {{QStringLiteral("ann")}}};
    chat.messages = {
        {.sender = 0, .date = 1, .body = {writers::attached(QStringLiteral("a.png"), png)}},
        {.sender = 0, .date = 2, .body = {writers::attached(QStringLiteral("notes"), "words")}}};
    const QByteArray bytes = writers::nonKeyedTranscript(chat);
    const auto path = fixture.path(QStringLiteral("chat"));
    struct Row {
        const char* name;
        void (*change)(const QString& path, const QByteArray& bytes);
        bool isThere;
    };
    const Row rows[] = {
        {"untouched", [](const QString&, const QByteArray&) {}, true},
        {"gone", [](const QString& at, const QByteArray&) { QFile::remove(at); }, false},
        {"cut short", [](const QString& at, const QByteArray&) { QFile::resize(at, 100); }, false},
        {"written over",
         [](const QString& at, const QByteArray& same) {
             QFile file(at);
             if (file.open(QIODevice::ReadWrite)) file.write(same.left(1));
             file.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime);
         },
         false},
        {"replaced",
         [](const QString& at, const QByteArray& same) {
             QFile::rename(at, at + QStringLiteral("2"));
             QFile file(at);
             if (file.open(QIODevice::WriteOnly)) file.write(same);
         },
         false},
    };
    for (const Row& row : rows) {
        fixture.write(QStringLiteral("chat"), bytes);
        const MergedChat merged = results({QFile::encodeName(path)}, 0).back().chat;
        row.change(path, bytes);
        int found = 0;
        for (const TesselChatLog::Event& event : merged.log()->events()) {
            std::optional<StoredData> data;
            QByteArray expected = "words";
            if (const auto* image = std::get_if<TesselChatLog::Image>(&event.value)) {
                EXPECT_EQ(image->image().pixelSize, QSize(40, 30)) << row.name;
                EXPECT_TRUE(image->image().traits) << "or layout would read the file";
                EXPECT_EQ(image->data().identity(), image->image().data.identity());
                data = image->data();
                expected = png;
            } else if (const auto* file = std::get_if<TesselChatLog::File>(&event.value)) {
                data = file->wrapper->contents;
            }
            if (!data) continue;
            ++found;
            EXPECT_EQ(data->size(), expected.size()) << row.name;
            const auto loaded = data->load();
            EXPECT_EQ(loaded.has_value(), row.isThere) << row.name;
            EXPECT_EQ(loaded.value_or(foundation::Data()).toByteArray(),
                      row.isThere ? expected : QByteArray());
        }
        EXPECT_EQ(found, 2) << row.name;
    }
}

}  // namespace
}  // namespace vell
