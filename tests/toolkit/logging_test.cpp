// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QByteArray>
#include <QStringList>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "foundation/print.h"
#include "toolkit/console.h"
#include "toolkit/module_logger.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

/// A stream that remembers, shared by its copies; it fails from the given write on.
struct MemoryStream {
    std::shared_ptr<std::string> bytes = std::make_shared<std::string>();
    int writesLeft = 1000;

    void write(std::span<const QByteArrayView> buckets) {
        if (writesLeft-- == 0) throw std::runtime_error("disk full");
        for (const QByteArrayView bucket : buckets)
            bytes->append(bucket.begin(), bucket.end());
    }
};

/// Collects the plain prints of one test.
struct PrintCapture {
    PrintCapture() {
        foundation::setPrintFunction([this](QStringView line) { lines.append(line.toString()); });
    }
    ~PrintCapture() { foundation::setPrintFunction({}); }
    QStringList lines;
};

/// A C stream over memory, so that real fwrite calls are seen.
struct MemoryFile {
    char* data = nullptr;
    std::size_t size = 0;
    std::FILE* handle = open_memstream(&data, &size);
    ~MemoryFile() { std::free(data); }
};

TEST(LogLevel, UnknownNamesAreReportedOnceAndMeanError) {
    const PrintCapture print;
    for (const char* text : {"verbose", "Warn", "debugging", "tracer", "logs", " log"}) {
        EXPECT_EQ(LogLevel::fromString(QString::fromUtf8(text)), LogLevel::error) << text;
    }
    ASSERT_EQ(print.lines.size(), 6);
    EXPECT_EQ(print.lines.first(), u"ERROR: unsupported LOGLEVEL: `verbose`");
}

TEST(LogLevel, RawValuesAndNamesAreThoseOfTheLevels) {
    for (int raw = 0; raw < 5; raw++) {
        const auto level = LogLevel::fromRawValue(raw);
        ASSERT_TRUE(level);
        EXPECT_EQ(level->rawValue(), raw);
        EXPECT_EQ(LogLevel::fromString(level->description()), level);
    }
    for (const int none : {-1, 5, 256})
        EXPECT_FALSE(LogLevel::fromRawValue(none)) << none;
}

using LogLevelDeathTest = ::testing::Test;

TEST(LogLevelDeathTest, TheProcessLevelComesFromTheEnvironmentInAnyCase) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto report = [](const char* value) {
        value ? qputenv("LOGLEVEL", value) : qunsetenv("LOGLEVEL");
        foundation::setPrintTarget(stderr);
        std::fputs(qPrintable(LogLevel::defaultLevel().description()), stderr);
        std::exit(0);
    };
    const auto ok = ::testing::ExitedWithCode(0);
    EXPECT_EXIT(report(nullptr), ok, "^error$");
    EXPECT_EXIT(report(""), ok, "^error$");
    EXPECT_EXIT(report("Warning"), ok, "^warn$");
    EXPECT_EXIT(report("DEBUG"), ok, "^info$");
    EXPECT_EXIT(report("Verbose"), ok, "^ERROR: unsupported LOGLEVEL: `verbose`\nerror$");
}

TEST(Console, WritesTagMessageAndValues) {
    const PrintCapture print;
    MemoryStream out;
    Console<MemoryStream> log(out, LogLevel::trace);
    log.warn("M", 42, std::optional<int>());
    log.log(QStringLiteral("plain \u00e4"));
    log.error("e", std::runtime_error("why"), LogLevel(LogLevel::info), true, 0.5, "text");
    log.info([] { return QStringLiteral("lazy"); }, nullptr, std::optional<QString>(u"x"_s),
             'a' - 0);
    log.trace("t", std::nullopt, 3);
    log.dir(std::optional<QString>());
    log.dir(7);
    const std::shared_ptr<QString> absent;
    const char* const noText = nullptr;
    log.warn("one\nline", QString::fromUtf8("\t\x1b[2J \u009b|\u202ecod.exe\u2028\u061c|é😀"));
    foundation::print(u"\r\x7f\u2066\u00a0\u200b");
    EXPECT_EQ(print.lines, QStringList(u"\\u{D}\\u{7F}\\u{2066}\u00a0\u200b"_s));
    log.log(u"", absent, noText, std::string("std"), QByteArray("bytes"), QStringList({u"l"_s}));
    EXPECT_EQ(*out.bytes,
              "WARN:  M 42 <nil>\n"
              "plain ä\n"
              "ERROR: e why info true 0.5 text\n"
              "INFO:  lazy <nil> x 97\n"
              "Trace: t <nil> 3\n"
              "<nil>\n"
              "7\n"
              "WARN:  one\\u{A}line \\u{9}\\u{1B}[2J \\u{9B}|\\u{202E}cod.exe\\u{2028}\\u{61C}|é😀\n"
              " <nil> <nil> std bytes QList(l)\n");
}

TEST(Console, WhatIsOffIsNeverEvaluated) {
    MemoryStream out;
    Console<MemoryStream> log(out, LogLevel::warn);
    int evaluated = 0;
    const auto message = [&evaluated] {
        evaluated++;
        return QStringLiteral("m");
    };
    log.log(message, message);
    log.info(message);
    EXPECT_EQ(evaluated, 0);
    log.warn(message, message);
    EXPECT_EQ(evaluated, 2);
    log.setLogLevel(LogLevel::info);
    log.info(message);
    EXPECT_EQ(*out.bytes, "WARN:  m m\nINFO:  m\n");
    EXPECT_EQ(log.description(), u"<ConsoleLog: info error>");
    log.setLogLevel(LogLevel::error);
    EXPECT_EQ(log.description(), u"<ConsoleLog: error>");
}

TEST(Console2, SendsOnlyErrorsToStandardError) {
    MemoryStream out;
    MemoryStream err;
    Console2<MemoryStream, MemoryStream> log(out, err, LogLevel::trace);
    log.error("a", 1);
    log.warn("b");
    log.log("c");
    log.info("d");
    log.trace("e");
    EXPECT_EQ(*err.bytes, "ERROR: a 1\n");
    EXPECT_EQ(*out.bytes, "WARN:  b\nc\nINFO:  d\nTrace: e\n");
}

TEST(Console, AFailedWriteAbandonsTheLineAndIsPrinted) {
    const PrintCapture print;
    MemoryStream out;
    out.writesLeft = 2;
    Console<MemoryStream> log(out, LogLevel::log);
    log.log("m", 1, 2);
    EXPECT_EQ(*out.bytes, "m 1");
    EXPECT_EQ(print.lines, QStringList({u"ERROR LOG WRITE FAILED: disk full"_s}));
}

TEST(FileOutputStream, WritesBucketsAndReportsAClosedOrFullStream) {
    const PrintCapture print;
    MemoryFile file;
    Console<> log(FileOutputStream(file.handle), LogLevel::trace);
    log.log("");  // nothing but empty buckets before the line feed
    log.log("a", "");
    log.stdoutStream().flush();
    EXPECT_STREQ(file.data, "\na \n");
    EXPECT_TRUE(print.lines.isEmpty());

    log.stdoutStream().end();
    EXPECT_EQ(log.stdoutStream().handle(), nullptr);
    log.stdoutStream().end();
    log.stdoutStream().flush();
    log.error("lost");
    EXPECT_EQ(print.lines, QStringList({u"ERROR LOG WRITE FAILED: Closed"_s}));

    std::FILE* full = std::fopen("/dev/full", "w");
    ASSERT_TRUE(full);
    std::setbuf(full, nullptr);
    Console<> lost(FileOutputStream(full), LogLevel::trace);
    lost.error("lost");
    lost.stdoutStream().end();
    EXPECT_EQ(print.lines.last(), u"ERROR LOG WRITE FAILED: WriteFailed");
}

TEST(ModuleLogger, FiltersTwiceAndForwardsPlainLines) {
    MemoryStream out;
    MemoryStream err;
    const auto parent =
        std::make_shared<Console2<MemoryStream, MemoryStream>>(out, err, LogLevel::trace);
    ModuleLogger log(parent, u"KVS"_s, LogLevel::info);
    log.error("bad", 1);
    log.trace("too fine for the module");
    EXPECT_EQ(*out.bytes, "KVS:      bad 1\n") << "no tag, never standard error";
    EXPECT_TRUE(err.bytes->empty());

    out.bytes->clear();
    parent->setLogLevel(LogLevel::log);
    log.info("too fine for the parent");
    EXPECT_TRUE(out.bytes->empty());
    parent->setLogLevel(LogLevel::warn);
    bool evaluated = false;
    log.warn([&evaluated] {
        evaluated = true;
        return u"off at the parent's plain level"_s;
    });
    EXPECT_TRUE(out.bytes->empty());
    EXPECT_FALSE(evaluated);
    EXPECT_EQ(log.description(), u"<ModLog[KVS]: info parent<ConsoleLog: warn error>>");
}

TEST(ModuleLogger, LevelComesFromItsVariableElseFromTheParent) {
    const auto parent = std::make_shared<Console<MemoryStream>>(MemoryStream(), LogLevel::warn);
    qputenv("LOGLEVEL_KVS", "Trace");
    qputenv("LOGLEVEL_EMPTY", "");
    EXPECT_EQ(ModuleLogger(parent, u" kvs\n"_s).logLevel(), LogLevel::trace);
    EXPECT_EQ(ModuleLogger(parent, u"Empty"_s).logLevel(), LogLevel::warn);
    EXPECT_EQ(ModuleLogger(parent, u"none"_s).logLevel(), LogLevel::warn);
    EXPECT_EQ(ModuleLogger(parent, u"kvs"_s, LogLevel::log).logLevel(), LogLevel::log);
    parent->setLogLevel(LogLevel::trace);
    qunsetenv("LOGLEVEL_KVS");
    qunsetenv("LOGLEVEL_EMPTY");
}

TEST(ModuleLogger, RegisteredOnesAreSharedAndAligned) {
    MemoryStream out;
    const auto before = console::defaultConsole();
    console::setDefaultConsole(std::make_shared<Console<MemoryStream>>(out, LogLevel::trace));
    const auto a = ModuleLogger::defaultLogger(u"A"_s);
    EXPECT_EQ(ModuleLogger::getMaxPrefixLength(), 8);
    a->log("m");
    const auto nine = ModuleLogger::defaultLogger(u"e\u0301tranger9"_s);  // ten code units
    EXPECT_EQ(ModuleLogger::getMaxPrefixLength(), 10 - 1);
    a->log("m");
    nine->log("m");
    EXPECT_EQ(ModuleLogger::defaultLogger(u"A"_s), a);
    console::setDefaultConsole(before);
    EXPECT_NE(a->parent(), before) << "a new default console does not move old module loggers";
    EXPECT_EQ(*out.bytes, "A:        m\nA:         m\ne\u0301tranger9: m\n");
}

}  // namespace
}  // namespace vell
