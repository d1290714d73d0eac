// SPDX-License-Identifier: MIT
//
// Each large allocation outside the window thread fails, in turn: that file fails, and the program
// goes on.
#include <QSignalSpy>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>

#include "app/documents/find/chat_search.h"
#include "app/search/transcript_table.h"
#include "identity/contacts/contacts_store.h"
#include "windows.h"

namespace {

/// How many more allocations succeed outside the window thread; none fails when it is negative.
std::atomic<int> untilFailure = -1;
thread_local bool isWindowThread = false;

}  // namespace

void* operator new(std::size_t size) {
    // The toolkit doesn't survive a failure while it constructs its own small objects.
    constexpr std::size_t large = 4096;
    if (size >= large && !isWindowThread && untilFailure >= 0 && untilFailure.fetch_sub(1) == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;
using vell::DocumentLoader;

class OutOfMemory : public Windows {
  protected:
    OutOfMemory() { isWindowThread = true; }
    ~OutOfMemory() override { untilFailure = -1; }

    /// Repeats the work with the next allocation failing, until none fails.
    static void failEverywhere(const char* name, const std::function<bool()>& work) {
        int failures = 0;
        for (bool hasFailed = true; hasFailed; ++failures) {
            untilFailure = failures;
            ASSERT_TRUE(work()) << name << " did not end; allocation " << failures;
            hasFailed = untilFailure.exchange(-1) < 0;
        }
        EXPECT_GT(failures, 1) << name << ": no allocation failed";
    }
};

TEST_F(OutOfMemory, OneFileFailsAndTheProgramGoesOn) {
    const QString path = file(u"a.ichat"_s, chat(3000));
    const auto log = std::make_shared<const vell::TesselChatLog>(
        vell::TesselChatLog::fromFile(path, foundation::Calendar::current()));
    vell::LoadThread thread;
    DocumentLoader loader(std::make_shared<vell::DiskFileReader>(), thread.queue(), [] {});

    vell::ContactsStore contacts;

    failEverywhere("document", [&] {
        int reports = 0;
        const auto ticket = loader.load(path, [&](const DocumentLoader::Result& result) {
            EXPECT_NE(result.document != nullptr, result.error.has_value());
            ++reports;
        });
        return waitUntil([&] { return reports > 0; }) && reports == 1;
    });
    failEverywhere("summary", [&] {
        vell::TranscriptTable table(loader.reader(), contacts);
        table.add({{path, 1}});
        return waitUntil([&] {
            const auto cell = table.index(0, vell::TranscriptTable::participantsColumn);
            return !table.data(cell, Qt::DisplayRole).toString().isEmpty();
        });
    });
    failEverywhere("search in a chat", [&] {
        vell::ChatSearch search(log);
        search.start({u"number"_s, false, {}, {}});
        return waitUntil([&] { return !search.isRunning(); });
    });
    EXPECT_TRUE(opened(path)) << "the program goes on";
}

}  // namespace
