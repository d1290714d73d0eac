// SPDX-License-Identifier: MIT
//
// Loads on their threads: cancelling.
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

}  // namespace
