// SPDX-License-Identifier: MIT
//
// Small files whose references multiply them: either the log stays in proportion to the file, or
// the file is refused; in both cases the memory it takes is bounded by its size.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <functional>

#include "foundation/error.h"
#include "support/keyed_archive_writer.h"
#include "support/non_keyed_archive_writer.h"
#include "support/property_list_writer.h"
#include "support/transcript_writer.h"
#include "transcript/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using support::KeyedArchiveWriter;
using support::NonKeyedArchiveWriter;
using support::Uid;

constexpr qsizetype kMiB = 1 << 20;
constexpr int kRefused = -1;
// The outcome of a load in a process of its own, so that one peak never hides another.
struct Outcome {
    qint64 events = 0;
    qint64 peak = 0;  ///< bytes above what the process had before; 0 where that can't be told
};

qint64 statusField(const char* name) {
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(qstrlen(name)).replace("kB", "").trimmed().toLongLong() * 1024;
    }
    return 0;
}

bool startMeasuringPeak() {
    QFile reset(u"/proc/self/clear_refs"_s);
    return reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && reset.write("5") == 1;
}

Outcome load(const QByteArray& bytes) {
    Outcome outcome;
    malloc_trim(0);
    const bool isMeasured = startMeasuringPeak();
    const qint64 before = statusField("VmRSS:");
    try {
        const TesselChatLog log =
            TesselChatLog::fromData(bytes, std::nullopt, *foundation::Calendar::named("UTC"));
        outcome.events = static_cast<qint64>(log.events().size());
    } catch (const foundation::Error&) {
        outcome.events = kRefused;
    }
    if (isMeasured) outcome.peak = statusField("VmHWM:") - before;
    return outcome;
}

Outcome loadInAnotherProcess(const QByteArray& bytes) {
    Outcome outcome;
    int ends[2];
    if (pipe(ends) != 0) return outcome;
    const pid_t child = fork();
    if (child == 0) {
        const test::PrintedLines printed;
        const Outcome mine = load(bytes);
        const bool isTold = write(ends[1], &mine, sizeof mine) == sizeof mine;
        _exit(isTold ? 0 : 1);
    }
    close(ends[1]);
    EXPECT_EQ(read(ends[0], &outcome, sizeof outcome), static_cast<ssize_t>(sizeof outcome));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return outcome;
}

/// Names `messages` in turn, `count` times, in a file of about this size.
QByteArray nonKeyedReferences(qsizetype size, int count, int messages, bool areAlike) {
    NonKeyedArchiveWriter archive;
    archive.array(4, [&] {
        archive.string(u"AIM"_s);
        archive.string(QString(size - 2 * count - 2000, u'x'));
        archive.array(count, [&] {
            std::vector<int> numbers;
            for (int i = 0; i < messages; ++i) {
                numbers.push_back(archive.object("InstantMessage", [&] {
                    archive.object("Presentity", [&] {
                        archive.string(u"AIM"_s);
                        archive.string(areAlike ? u"ann"_s : QString::number(i));
                    });
                    archive.date(areAlike ? 0 : i * 1e6);
                    archive.attributedString(u"hi"_s, {});
                    archive.group("I");
                    archive.integer(0);
                }));
            }
            for (int i = messages; i < count; ++i)
                archive.reference(numbers[static_cast<std::size_t>(i % messages)]);
        });
        archive.array(0, [] {});
    });
    return archive.bytes();
}

/// A keyed transcript of these messages, each made by a function.
QByteArray keyedMessages(const std::function<std::vector<Uid>(KeyedArchiveWriter&)>& makeMessages) {
    KeyedArchiveWriter archive;
    const Uid service = archive.string(u"AIM"_s);
    const Uid messages = archive.array(makeMessages(archive));
    archive.setTop(u"root"_s, archive.array({service, service, messages, archive.array({})}));
    return archive.binary();
}

Uid message(KeyedArchiveWriter& archive, const KeyedArchiveWriter::Members& members) {
    return archive.object({u"InstantMessage"_s, u"NSObject"_s}, members);
}

/// Many attributed strings over one long text, cut into a plain run and a link.
QByteArray keyedSharedText(qsizetype length, int count, bool isSystem) {
    return keyedMessages([&](KeyedArchiveWriter& archive) {
        const Uid sender =
            archive.object({u"Presentity"_s, u"NSObject"_s}, {{u"ID"_s, archive.string(u"ann"_s)}});
        const Uid text = archive.mutableString(QString(length, u'x') + u"%@"_s);
        const Uid plain = archive.dictionary({});
        const Uid link = archive.dictionary({{archive.string(u"NSLink"_s), archive.url(u"a:b"_s)}});
        std::vector<Uid> result;
        for (int i = 0; i < count; ++i) {
            const Uid body = archive.attributedString(
                text, {{static_cast<quint64>(length), plain}, {2, isSystem ? plain : link}});
            KeyedArchiveWriter::Members members{{u"MessageText"_s, body}};
            if (!isSystem) members.emplace_back(u"Sender"_s, sender);
            result.push_back(message(archive, members));
        }
        return result;
    });
}

/// Arrays of arrays …, each holding the next one many times over: a byte for each element, where an
/// archiver would write eight.
QByteArray keyedNestedArrays(int levels, int width) {
    support::PropertyListWriter list;
    const auto objects = [&list, levels, width] {
        std::vector<support::PropertyListWriter::Node> result{list.string(u"$null")};
        const auto classUid = list.uid(static_cast<quint32>(levels) + 1);
        for (quint32 i = 0; i < static_cast<quint32>(levels); ++i) {
            const auto next = list.uid(i + 1 < static_cast<quint32>(levels) ? i + 2 : 0);
            const std::vector elements(static_cast<std::size_t>(width), next);
            result.push_back(list.dictionary({{list.string(u"NS.objects"), list.array(elements)},
                                              {list.string(u"$class"), classUid}}));
        }
        result.push_back(list.dictionary({{list.string(u"$classname"), list.string(u"NSArray")}}));
        return list.array(result);
    }();
    return list.binary(list.dictionary({
        {list.string(u"$version"), list.integer(100000)},
        {list.string(u"$top"), list.dictionary({{list.string(u"root"), list.uid(1)}})},
        {list.string(u"$objects"), objects},
    }));
}

/// One body of many empty runs, shared by many messages.
QByteArray keyedEmptyRuns(int runs, int messages) {
    return keyedMessages([&](KeyedArchiveWriter& archive) {
        const Uid attributes = archive.dictionary({});
        std::vector<KeyedArchiveWriter::Run> list(static_cast<std::size_t>(runs), {0, attributes});
        list.push_back({2, attributes});
        const Uid body = archive.attributedString(archive.string(u"hi"_s), list);
        std::vector<Uid> result;
        for (int i = 0; i < messages; ++i)
            result.push_back(message(archive, {{u"MessageText"_s, body}}));
        return result;
    });
}

/// The most events that a writer gets into a byte: short texts, and a new sender and minute each.
support::Transcript densest(int messages) {
    support::Transcript result{.service = u"AIM"_s, .people = {{u"a"_s}, {u"b"_s}}};
    for (int i = 0; i < messages; ++i) {
        result.messages.push_back({.sender = static_cast<size_t>(i % 2),
                                   .date = i * 60.0,
                                   .body = {support::words(u"x"_s)}});
    }
    return result;
}

TEST(Hostile, LogsStayInProportionToTheirFiles) {
    constexpr qsizetype size = 3 * kMiB;
    constexpr int count = size / 8;
    struct Row {
        const char* name;
        QByteArray bytes;
        qint64 events;
    };
    const Row rows[] = {
        {"one message, as often as an array may be long", nonKeyedReferences(size, count, 1, true),
         count + 1},
        {"one message, more often than that", nonKeyedReferences(2 * count + 4000, count, 1, true),
         kRefused},
        {"two messages in turn, with markers between all of them",
         nonKeyedReferences(2 * size, 2 * count, 2, false), kRefused},
        {"a long text cut in two", keyedSharedText(kMiB, 500, false), kRefused},
        {"a long text that is shared whole", keyedSharedText(kMiB, 5000, true), 5000},
        {"a long text cut in two, within bounds", keyedSharedText(1000, 3000, false), 6000},
        {"arrays in arrays", keyedNestedArrays(20, 50'000), kRefused},
        {"empty runs in every message", keyedEmptyRuns(100'000, 1000), 1000},
        {"the densest honest transcript, keyed", support::keyedTranscript(densest(20'000)),
         60'000 - 1},
        {"the densest honest transcript, non-keyed", support::nonKeyedTranscript(densest(20'000)),
         60'000 - 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = loadInAnotherProcess(row.bytes);
        EXPECT_EQ(outcome.events, row.events);
#if !defined(__SANITIZE_ADDRESS__)
        EXPECT_LT(outcome.peak, row.bytes.size() * 24 + 128 * kMiB);
#endif
    }
}

}  // namespace
}  // namespace vell
