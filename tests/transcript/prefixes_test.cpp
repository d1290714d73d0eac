// SPDX-License-Identifier: MIT
//
// Files that were cut off: whatever their length, they are read without harm or refused.
#include <gtest/gtest.h>

#include <QFile>
#include <future>

#include "transcript/fixture.h"
#include "transcript/load_log.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// How many proper prefixes could be read.
int readablePrefixes(const QByteArray& bytes) {
    const auto calendar = *foundation::Calendar::named("UTC");
    int readable = 0;
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        // A buffer of just that size, so that a sanitizer sees every byte read beyond its end.
        const QByteArray prefix(bytes.constData(), length);
        try {
            static_cast<void>(TesselChatLog::fromData(prefix, foundation::Date(), calendar));
            ++readable;
        } catch (const std::exception&) {
            // Refused, as it should be.
        }
    }
    return readable;
}

TEST(Prefixes, OfSamplesAndTranscripts) {
    const QStringList files{
        u"samples/Nobody said anything.ichat"_s,
        u"samples/The cat in the bathtub.ichat"_s,
        u"samples/Two umbrellas.ichat"_s,
        u"tests/data/transcripts/keyed-000@UTC.ichat"_s,
        u"tests/data/transcripts/keyed-001@Europe+Berlin.ichat"_s,
        u"tests/data/transcripts/keyed-005@America+Los_Angeles.ichat"_s,
        u"tests/data/transcripts/keyed-010@UTC.ichat"_s,
        u"tests/data/transcripts/keyed-012@Europe+Berlin.ichat"_s,
        u"tests/data/transcripts/nonkeyed-001@Europe+Berlin.ichat"_s,
        u"tests/data/transcripts/nonkeyed-002@Pacific+Auckland.ichat"_s,
        u"tests/data/transcripts/nonkeyed-004@America+Los_Angeles.ichat"_s,
        u"tests/data/transcripts/nonkeyed-010@Asia+Kolkata.ichat"_s,
        u"tests/data/transcripts/nonkeyed-011@UTC.ichat"_s,
    };
    const test::PrintedLines printed;
    // All at once, since readers share no mutable state.
    std::vector<std::future<int>> readable;
    for (const QString& file : files) {
        const QByteArray bytes = contentsOf(QStringLiteral(VELL_SOURCE "/") + file);
        EXPECT_GT(bytes.size(), 100);
        readable.push_back(std::async(std::launch::async, readablePrefixes, bytes));
    }
    for (std::size_t i = 0; i < readable.size(); ++i)
        EXPECT_EQ(readable[i].get(), 0) << files[static_cast<qsizetype>(i)].toStdString();
}

}  // namespace
}  // namespace vell
