// SPDX-License-Identifier: MIT
//
// Archives as trees.
#include "app/documents/archive/archive_model.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>

#include "app/documents/archive/message_links.h"
#include "windows.h"
#include "writers/keyed_archive_writer.h"

using namespace Qt::StringLiterals;
using vell::ArchiveModel;
using vell::MessageLinks;

namespace {

std::unique_ptr<ArchiveModel> modelOf(const QByteArray& bytes) {
    return std::make_unique<ArchiveModel>(
        vell::inspector::openArchive(foundation::Data(bytes)).archive);
}

QString shown(const QModelIndex& index, ArchiveModel::Column column) {
    return index.siblingAtColumn(column).data().toString();
}

TEST(ArchiveModel, FindsAnyOfManyObjectsInRanges) {
    writers::KeyedArchiveWriter archive;
    std::vector<writers::Uid> all;
    for (int i = 0; i < 2500; ++i)
        all.push_back(archive.direct(u"text %1"_s.arg(i)));
    archive.setTop(u"root"_s, archive.array(all));
    const auto model = modelOf(archive.binary());
    const QAbstractItemModelTester tester(model.get(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model->fetchMore({});
    const int rows = model->rowCount({});
    EXPECT_LT(rows, 20);
    EXPECT_EQ(shown(model->index(rows - 1, 0, {}), ArchiveModel::name), u"#2000 – #2502");
    for (const int number : {1, 999, 1000, 1001, 2500}) {
        const QModelIndex index = model->objectIndex(quint64(number));
        EXPECT_EQ(shown(index, ArchiveModel::name), u"#%1"_s.arg(number));
        EXPECT_EQ(shown(index, ArchiveModel::value), u"\"text %1\""_s.arg(number - 1));
        EXPECT_EQ(model->objectAt(index), number);
    }
    EXPECT_FALSE(model->objectIndex(5000).isValid());
    // The array's elements, too, and what they refer to.
    QModelIndex index = model->objectIndex(2501);
    for (const int row : {0, 1, 5}) {
        model->fetchMore(index);
        index = model->index(row, 0, index);
    }
    EXPECT_EQ(shown(index, ArchiveModel::name), u"[1005]");
    EXPECT_EQ(shown(index, ArchiveModel::value), u"#1006 \"text 1005\"");
    EXPECT_EQ(model->path(index), u"#2501.NS.objects[1005]");
    EXPECT_EQ(model->objectAt(index), 2501);
}

TEST(MessageLinks, LeadFromRowsToObjectsAndBack) {
    writers::Transcript chat{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {1}, {}};
    chat.messages = {{.sender = 0, .date = 1, .body = {writers::words(u"a"_s)}},
                     {.sender = {}, .date = 2, .body = {}},  // has no events
                     {.sender = 1,
                      .date = 1e6,
                      .body = {writers::words(u"b"_s), writers::linked(u"c"_s, u"x:y"_s)}},
                     {.sender = 0, .date = 2e6, .body = {writers::words(u"d"_s)}}};
    for (const QByteArray& bytes :
         {writers::keyedTranscript(chat), writers::nonKeyedTranscript(chat)}) {
        const auto utc = *foundation::Calendar::named("UTC");
        const auto log = vell::TesselChatLog::fromData(foundation::Data(bytes), std::nullopt, utc);
        const auto model = modelOf(bytes);
        for (const auto& shownLog :
             {log, log.markedIn(*foundation::Calendar::named("Asia/Tokyo"))}) {
            const MessageLinks links(shownLog);
            QStringList texts;
            std::set<quint32> objects;
            for (qsizetype row = 0; row < std::ssize(shownLog.events()); ++row) {
                const auto object = links.objectOf(row);
                if (!object) continue;
                EXPECT_EQ(shown(model->objectIndex(*object), ArchiveModel::value),
                          u"InstantMessage");
                const auto rows = links.rowsOf(*object);
                ASSERT_TRUE(rows);
                EXPECT_TRUE(rows->first <= row && row <= rows->last);
                objects.insert(*object);
            }
            EXPECT_EQ(objects.size(), 3);
            const auto rows = links.rowsOf(*std::next(objects.begin()));
            EXPECT_EQ(rows->last - rows->first, 1);
            EXPECT_FALSE(links.rowsOf(0));
        }
    }
}

}  // namespace
