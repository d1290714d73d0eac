// SPDX-License-Identifier: MIT
//
// Loads on their threads: order and cancelling.
#include "app/documents/document_loader.h"
#include "windows.h"

namespace {

using vell::DocumentLoader;
using vell::LoadThread;
using vell::test::StallingReader;
using vell::test::waitUntil;

TEST(Loading, ACancelledLoadIsNotReported) {
    const auto reader = std::make_shared<StallingReader>();
    LoadThread thread;
    DocumentLoader loader(reader, thread.queue(), [] {});
    auto ticket = loader.load(QStringLiteral("stalled"),
                              [](const auto&) { ADD_FAILURE() << "it was reported"; });
    ticket.reset();
    reader->release();
    bool done = false;
    const auto other = loader.load(QStringLiteral("x"), [&](const auto&) { done = true; });
    EXPECT_TRUE(waitUntil([&] { return done; }));
    QCoreApplication::processEvents();
}

TEST(Loading, DocumentsTakePrecedenceOverSummaries) {
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
