// SPDX-License-Identifier: MIT
//
// What must not slow down unnoticed: ratios of processor times within one run, with twice the room
// that the benchmarks allow, so that a busy machine doesn't fail them.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>
#include <algorithm>
#include <ctime>
#include <vector>

#include "benchmarks/conversations.h"
#include "identity/contacts/contacts_store.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

using benchmarks::Form;

double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The least of some times, in seconds: what disturbs only ever adds.
template <class Task>
double timeOf(Task task) {
    double least = 1e9;
    for (int i = 0; i < 5; ++i) {
        const double start = processorTime();
        task();
        least = std::min(least, processorTime() - start);
    }
    return least;
}

TesselChatLog loaded(const QByteArray& bytes) {
    static const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    return TesselChatLog::fromData(foundation::Data(bytes), std::nullopt, calendar);
}

TEST(Speed, CostGrowsWithTheMessagesAndMarkdownIsCheaperThanLoading) {
    for (const Form form : {Form::keyed, Form::nonKeyed}) {
        const QByteArray few = benchmarks::conversation(2'000, form);
        const QByteArray many = benchmarks::conversation(20'000, form);
        const double loadingFew = timeOf([&] { (void)loaded(few); });
        const double loadingMany = timeOf([&] { (void)loaded(many); });
        EXPECT_LT(loadingMany, loadingFew * 10 * 2.6);
        const TesselChatLog log = loaded(many);
        const ContactsStore contacts;
        EXPECT_LT(timeOf([&] { (void)log.generatePlainText(contacts); }), loadingMany * 2);
    }
}

TEST(Speed, PicturesCostLittleMoreThanReadingTheirBytes) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pictures.ichat"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(benchmarks::pictures(64));
    file.close();
    const double reading = timeOf([&] {
        QFile bytes(path);
        EXPECT_TRUE(bytes.open(QIODevice::ReadOnly) && !bytes.readAll().isEmpty());
    });
    const foundation::Calendar calendar(QTimeZone::utc());
    const double loading = timeOf([&] { (void)TesselChatLog::fromFile(path, calendar); });
    EXPECT_LT(loading, reading * 2.6);
}

}  // namespace
}  // namespace vell
