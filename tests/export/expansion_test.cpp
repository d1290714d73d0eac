// SPDX-License-Identifier: MIT
#include "export/expansion.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "export/format.h"
#include "export/log_builder.h"
#include "export/message.h"
#include "identity/contacts/contacts_store.h"

using namespace Qt::StringLiterals;

namespace vell::test {
namespace {

const ContactsStore contacts({{u"c"_s, {u"1"_s, u"c"_s, QString(3000, u'n'), std::nullopt}}});

qint64 write(const char* format, const TesselChatLog& log, const ByteSink& output) {
    const FormatContext context(foundation::Calendar::current(), "C", contacts);
    return findFormat(QString::fromLatin1(format))
        ->write({.log = log, .context = context, .file = u"a.ichat"_s}, output);
}

/// Messages with the same text, by all senders in turn.
LogBuilder chat(int count, const QString& text, const QStringList& senders = {u"b"_s}) {
    LogBuilder log;
    for (int i = 0; i < count; ++i) {
        const QString& sender = senders[i % senders.size()];
        log.text(sender, text);
        if (senders.size() > 1) log.user(sender);
    }
    return log;
}

/// Slices of one buffer, each beginning `step` bytes after the previous one.
LogBuilder files(int count, qsizetype step) {
    const foundation::Data all(QByteArray(20'000, 'x'));
    LogBuilder log;
    for (int i = 0; i < count; ++i)
        log.file(u"b"_s, u"f"_s, all.slice(i * step, 10'000));
    return log;
}

TEST(Expansion, CountsWhatEachFormatWritesAndReads) {
    const QString text(1000, u'a');
    const QString name(1000, u'n');
    const struct {
        const char* what;
        LogBuilder log;
        bool inMarkdown;
        bool inJson;
    } rows[] = {
        {"one text in many messages", chat(100, text), true, true},
        {"not yet too much, although escapes could make it so", chat(30, text), false, false},
        {"a long name, written once or each time", chat(100, u"x"_s, {name}), false, true},
        {"two long names in turn", chat(100, u"x"_s, {name, name + u'm'}), true, true},
        {"a long name of a contact, in turn", chat(60, u"x"_s, {u"b"_s, u"c"_s}), true, false},
        {"one file in many messages is read once", files(100, 0), false, false},
        {"files that overlap", files(100, 1), false, true},
    };
    for (const auto& row : rows) {
        const TesselChatLog log = row.log.log();
        const auto expands = [&](const char* format) {
            return (findFormat(QString::fromLatin1(format))->readsAttachments &&
                    attachmentsExceed(60'000, log)) ||
                   expandsBeyond(60'000, ExpansionBound(log), contacts,
                                 [&](const ByteSink& output) { write(format, log, output); });
        };
        EXPECT_EQ(expands("markdown"), row.inMarkdown) << row.what;
        EXPECT_EQ(expands("json"), row.inJson) << row.what;
    }
    EXPECT_EQ(exportLimit(1'000'000), (64U << 20) + 16'000'000U);
}

TEST(Expansion, DocumentsAreWrittenPieceByPieceAndWithinTheirBound) {
    const QString longest = u"<\U0001f408\x01&"_s.repeated(1000);
    LogBuilder builder;
    for (int i = 0; i < 10; ++i) {
        builder.text(u"b"_s, longest);
        for (int run = 0; run < 20; ++run)
            builder.joined().link(u"b"_s, u"http://a/"_s, longest);
        builder.newDay().image(u"c"_s, longest).file(u"\""_s, longest, "contents").system(u"=\""_s);
    }
    const TesselChatLog log = builder.log();
    for (const Format& format : formats()) {
        SCOPED_TRACE(format.name);
        qsizetype largest = 0;
        quint64 sum = 0;
        const qint64 messages = write(format.name, log, [&](QByteArrayView bytes) {
            largest = std::max(largest, bytes.size());
            sum += static_cast<quint64>(bytes.size());
        });
        EXPECT_EQ(messages, 40);
        EXPECT_EQ(messages, messageCount(log));
        EXPECT_GT(sum, 1'000'000U);
        EXPECT_LT(sum, ExpansionBound(log).bytes(contacts));
        EXPECT_LT(largest, 250'000);
    }
}

TEST(Expansion, PicturesInADocumentAreWithinTheBound) {
    const foundation::Data data(QByteArray(300'000, 'x'));
    const TesselChatLog::Image image({data, foundation::PictureFormat::png, {}}, data,
                                     u"public.png"_s, {});
    LogBuilder crowd;  // each has a picture
    for (int i = 0; i < 200; ++i)
        crowd.text(QString::number(i), {});
    const TesselChatLog logs[] = {LogBuilder().log().withEvents({{1, {0}, {}, image}}, {}),
                                  crowd.log()};
    for (const TesselChatLog& log : logs) {
        quint64 sum = 0;
        write("html", log,
              [&sum](QByteArrayView bytes) { sum += static_cast<quint64>(bytes.size()); });
        EXPECT_GT(sum, 200'000U);
        EXPECT_LT(sum, ExpansionBound(log, {.hasPictures = true}).bytes(contacts));
    }
}

}  // namespace
}  // namespace vell::test
