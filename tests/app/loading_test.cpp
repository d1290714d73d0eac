// SPDX-License-Identifier: MIT
//
// Loads on their threads: order, independence, cancelling, readers that never come back.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <condition_variable>
#include <map>
#include <mutex>

#include "app/documents/document_loader.h"
#include "foundation/print.h"
#include "transcript/load_log.h"

namespace {

using foundation::Data;
using foundation::FileWrapper;
using vell::DocumentLoader;
using vell::LoadThread;

/// Answers the bytes it was given; paths that begin with "stall" block until the end.
class FakeReader final : public vell::FileReader {
  public:
    std::shared_ptr<const FileWrapper> read(const QString& path) override {
        if (path.startsWith(QLatin1String("stall"))) {
            std::unique_lock lock(mutex_);
            released_.wait(lock, [this] { return isReleased_; });
        }
        return std::make_shared<FileWrapper>(Data(path.toUtf8()));
    }
    void release() {
        {
            const std::lock_guard lock(mutex_);
            isReleased_ = true;
        }
        released_.notify_all();
    }

  private:
    std::mutex mutex_;
    std::condition_variable released_;
    bool isReleased_ = false;
};

class Loading : public testing::Test {
  protected:
    Loading() {
        foundation::setPrintFunction([](QStringView) {});
    }
    ~Loading() override {
        reader->release();
        foundation::setPrintFunction({});
    }

    template <class Condition>
    static bool waitUntil(Condition condition) {
        QElapsedTimer timer;
        timer.start();
        while (!condition() && !timer.hasExpired(20000))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        return condition();
    }

    std::shared_ptr<FakeReader> reader = std::make_shared<FakeReader>();
};

TEST_F(Loading, EveryFailureCapturesTheLogOfItsOwnFile) {
    std::mutex mutex;
    QStringList logs;
    LoadThread thread;
    DocumentLoader loader(reader, thread.queue(), [&] {
        const std::lock_guard lock(mutex);
        logs.append(vell::tesselLoadLog()->grabLog());
    });
    std::vector<DocumentLoader::Ticket> tickets;
    int done = 0;
    constexpr int count = 20;
    for (int i = 0; i < count; ++i) {
        const QString bytes = QString(i + 1, QChar(u'a' + i));
        tickets.push_back(loader.load(bytes, [&](const DocumentLoader::Result& result) {
            EXPECT_FALSE(result.document);
            ++done;
        }));
    }
    ASSERT_TRUE(waitUntil([&] { return done == count; }));
    ASSERT_EQ(logs.size(), count);
    logs.sort();
    for (const QString& log : logs) {
        EXPECT_EQ(log.count(u"### Attempt to load from data w/ size: "), 1);
        const qsizetype at = log.indexOf(u"w/ size: ") + 9;
        const int size = log.mid(at, log.indexOf(u'\n', at) - at).toInt();
        EXPECT_TRUE(log.contains(QString(std::min(size, 16), QChar(u'a' + size - 1)) + u'|'))
            << log.toStdString();
    }
}

TEST_F(Loading, AStalledFileHoldsBackNothingButItself) {
    QElapsedTimer timer;
    {
        LoadThread thread;
        DocumentLoader loader(reader, thread.queue(), [] {});
        bool stalledDone = false;
        bool otherDone = false;
        const auto stalled = loader.load(
            QStringLiteral("stalled"), [&](const DocumentLoader::Result&) { stalledDone = true; });
        const auto other = loader.load(QStringLiteral("other"),
                                       [&](const DocumentLoader::Result&) { otherDone = true; });
        ASSERT_TRUE(waitUntil([&] { return otherDone; }));
        EXPECT_FALSE(stalledDone);
        timer.start();
    }
    EXPECT_LT(timer.elapsed(), 1000) << "the end waited for the stalled file";
}

TEST_F(Loading, NobodyHearsOfACancelledLoad) {
    LoadThread thread;
    DocumentLoader loader(reader, thread.queue(), [] {});
    auto ticket = loader.load(QStringLiteral("stall then gone"),
                              [](const auto&) { ADD_FAILURE() << "a cancelled load was told"; });
    ticket.reset();
    reader->release();
    bool done = false;
    const auto other = loader.load(QStringLiteral("x"), [&](const auto&) { done = true; });
    EXPECT_TRUE(waitUntil([&] { return done; }));
    QCoreApplication::processEvents();
}

TEST_F(Loading, OpenedDocumentsGoBeforeSummaries) {
    std::mutex gate;
    std::vector<std::string> order;
    LoadThread thread;
    gate.lock();
    std::atomic<int> finished = 0;
    thread.queue()->post(LoadThread::Priority::summary, [&] {
        const std::lock_guard lock(gate);
        ++finished;
    });
    for (const char* name : {"summary", "document"}) {
        thread.queue()->post(
            *name == 's' ? LoadThread::Priority::summary : LoadThread::Priority::document,
            [&, name] {
                order.emplace_back(name);
                ++finished;
            });
    }
    gate.unlock();
    ASSERT_TRUE(waitUntil([&] { return finished == 3; }));
    // The thread may have begun with the document before it met the first summary.
    EXPECT_EQ(order, (std::vector<std::string>{"document", "summary"}));
}

}  // namespace
