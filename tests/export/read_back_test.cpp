// SPDX-License-Identifier: MIT
//
// Reads Markdown back with an independent reader: the words are those that were typed, below the
// name of their sender.
#include <gtest/gtest.h>

#include <random>

#include "export/commonmark.h"
#include "export/markdown.h"
#include "export/random_logs.h"

namespace vell::test {
namespace {

constexpr int nastyLogCount = 500;
constexpr int disorderlyLogCount = 300;

std::vector<ExpectedLog> makeLogs(ExpectedLog (*make)(std::mt19937&), int count) {
    std::mt19937 random(2009);
    std::vector<ExpectedLog> logs;
    while (static_cast<int>(logs.size()) < count)
        logs.push_back(make(random));
    return logs;
}

QStringList rendered(const std::vector<ExpectedLog>& logs) {
    QStringList texts;
    for (const ExpectedLog& expected : logs) {
        texts += generatePlainText(expected.log, ContactsStore(expected.contacts));
    }
    return texts;
}

TEST(ReadBack, EveryTextIsReadAsTyped) {
    if (!hasMarkdownReader()) GTEST_SKIP() << "cmark is not installed";
    const auto logs = makeLogs(nastyLog, nastyLogCount);
    const QStringList texts = rendered(logs);
    const auto found = readMarkdown(texts);
    ASSERT_EQ(found.size(), logs.size());
    for (std::size_t i = 0; i < logs.size(); ++i) {
        const QString& text = texts[static_cast<qsizetype>(i)];
        ASSERT_FALSE(text.contains(u'\r'));
        ASSERT_EQ(found[i], logs[i].blocks) << "log " << i << ":\n" << text.toStdString();
    }
}

TEST(ReadBack, EveryBodyFollowsItsSendersHeading) {
    if (!hasMarkdownReader()) GTEST_SKIP() << "cmark is not installed";
    const auto logs = makeLogs(disorderlyLog, disorderlyLogCount);
    const QStringList texts = rendered(logs);
    const auto found = readMarkdown(texts);
    ASSERT_EQ(found.size(), logs.size());
    for (std::size_t i = 0; i < logs.size(); ++i) {
        SCOPED_TRACE(texts[static_cast<qsizetype>(i)].toStdString());
        QString headed;
        std::vector<Block> bodies;
        for (const Block& block : found[i]) {
            ASSERT_NE(block.kind, Block::Kind::other);
            if (block.kind == Block::Kind::senderHeading) headed = block.text;
            if (block.kind == Block::Kind::system) headed.clear();
            const bool isBody =
                block.kind == Block::Kind::quote || block.kind == Block::Kind::paragraph;
            if (isBody) {
                ASSERT_EQ(headed, block.text.split(u'/').first());
            }
            if (isBody || block.kind == Block::Kind::system) bodies.push_back(block);
        }
        ASSERT_EQ(bodies, logs[i].blocks);
    }
}

}  // namespace
}  // namespace vell::test
