// SPDX-License-Identifier: MIT
//
// The index follows the files, and goes on wherever it was ended.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QElapsedTimer>
#include <QProcess>
#include <chrono>
#include <random>
#include <thread>

#include "archive.h"
#include "library/batch_writer.h"
#include "library/file_list.h"
#include "library/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::dump;
using test::Fixture;

/// What an index that is made in one go holds.
QStringList freshDump(const Fixture& fixture) {
    const Fixture other;
    LibraryStore store(other.database);
    fixture.update(store);
    return dump(store);
}

qint64 found(LibraryStore& store, const Fixture& fixture, const QString& text) {
    return LibrarySearch(store, {{fixture.chats}, false, 0, {}}).count(Query::parse(text));
}

TEST(Update, FollowsTheFiles) {
    const Fixture fixture;
    LibraryStore store(fixture.database);
    qsizetype read = 0;
    const auto update = [&] {
        Indexer indexer(store);
        read = 0;
        indexer.onProgress = [&read](const Indexer::Progress& progress) { read = progress.done; };
        indexer.update({fixture.chats}, test::neverStops);
        EXPECT_EQ(dump(store), freshDump(fixture));
        store.database().run("INSERT INTO words (words) VALUES ('integrity-check')");
        for (const char* left : {"participants WHERE file NOT IN (SELECT id FROM files)",
                                 "stretches WHERE file NOT IN (SELECT id FROM files)",
                                 "people WHERE id NOT IN (SELECT person FROM participants)"})
            EXPECT_EQ(store.database().value(QByteArray("SELECT count(*) FROM ") + left), 0)
                << left;
    };
    fixture.chat(u"ann.ichat"_s, {u"apple"_s, u"pear"_s});
    fixture.chat(u"ben.ichat"_s, {u"plum"_s});
    fixture.chat(u"eve.ichat"_s, {u"fig"_s});
    fixture.write(u"bad.ichat"_s, "nothing");
    update();
    EXPECT_EQ(read, 4);
    update();
    EXPECT_EQ(read, 0) << "nothing is new; the broken file has not changed either";
    fixture.chat(u"ann.ichat"_s, {u"cherry"_s});
    fixture.chat(u"bad.ichat"_s, {u"mended"_s});
    fixture.chat(u"dan.ichat"_s, {u"fog"_s});
    QFile::remove(fixture.path(u"eve.ichat"_s));
    update();
    EXPECT_EQ(found(store, fixture, u"apple"_s) + found(store, fixture, u"fig"_s), 0);
    EXPECT_EQ(found(store, fixture, u"cherry"_s) + found(store, fixture, u"mended"_s), 2);
    QFile::rename(fixture.path(u"ben.ichat"_s), fixture.path(u"moved.ichat"_s));
    update();
    EXPECT_EQ(read, 0) << "a renamed file isn't read again";
    QFile::copy(fixture.path(u"moved.ichat"_s), fixture.path(u"copy 1.ichat"_s));
    QFile::copy(fixture.path(u"moved.ichat"_s), fixture.path(u"copy 2.ichat"_s));
    QFile::remove(fixture.path(u"moved.ichat"_s));
    ::utimensat(AT_FDCWD, fixture.path(u"dan.ichat"_s).toUtf8().constData(), nullptr, 0);
    update();
    EXPECT_EQ(found(store, fixture, u"plum"_s), 2);
    QFile::rename(fixture.path(u"ann.ichat"_s), fixture.path(u"exchanged"_s));
    QFile::rename(fixture.path(u"dan.ichat"_s), fixture.path(u"ann.ichat"_s));
    QFile::rename(fixture.path(u"exchanged"_s), fixture.path(u"dan.ichat"_s));
    update();
    const auto replace = [&](const QString& name, const char* before, const char* after) {
        QFile file(fixture.path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        ASSERT_TRUE(bytes.contains(before));
        file.seek(0);
        file.write(bytes.replace(before, after));
    };
    replace(u"dan.ichat"_s, "cherry", "banana");
    update();
    EXPECT_EQ(found(store, fixture, u"banana"_s), 1) << "as long as before";
    QFile::rename(fixture.path(u"dan.ichat"_s), fixture.path(u"kept.ichat"_s));
    replace(u"kept.ichat"_s, "banana", "orange");
    update();
    QFile::rename(fixture.path(u"kept.ichat"_s), fixture.path(u"one.ichat"_s));
    std::filesystem::create_hard_link(fixture.chats + "/one.ichat", fixture.chats + "/two.ichat");
    update();
    EXPECT_EQ(found(store, fixture, u"orange"_s), 2) << "one file under two names";
    QFile::remove(fixture.path(u"two.ichat"_s));
    QFile::rename(fixture.path(u"copy 1.ichat"_s), fixture.path(u"copy 2.ichat"_s));
    update();
    QFile::remove(fixture.path(u"one.ichat"_s));
    QFile::copy(fixture.path(u"copy 2.ichat"_s), fixture.path(u"one.ichat"_s));
    QFile::remove(fixture.path(u"copy 2.ichat"_s));
    update();
    EXPECT_EQ(found(store, fixture, u"orange"_s), 0) << "a moved file takes a known one's place";
}

TEST(Update, OfOneFolderLeavesTheOthers) {
    const Fixture fixture;
    LibraryStore store(fixture.database);
    for (const char* name : {"a", "ab"}) {
        std::filesystem::create_directory(fixture.chats + '/' + name);
        fixture.chat(QString::fromLatin1(name) + u"/x.ichat"_s, {u"plum"_s});
    }
    fixture.update(store);
    QFile::remove(fixture.path(u"a/x.ichat"_s));
    QFile::remove(fixture.path(u"ab/x.ichat"_s));
    Indexer(store).update({fixture.chats + "/a"}, test::neverStops);
    EXPECT_EQ(found(store, fixture, u"plum"_s), 1);
}

/// Starts vell-find with its index in a folder of the fixture's.
void startFind(QProcess& process, const Fixture& fixture, const QString& cache) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CACHE_HOME"_s, fixture.place.filePath(cache));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VELL_FIND),
                  {u"word"_s, u"--"_s, QString::fromStdString(fixture.chats)});
}

QByteArray indexIn(const Fixture& fixture, const QString& cache) {
    return QFile::encodeName(fixture.place.filePath(cache + u"/vell/library/messages.sqlite"_s));
}

TEST(Update, GoesOnAfterBeingKilled) {
    const Fixture fixture;
    archive::write(QString::fromStdString(fixture.chats), {100, 40'000, 5});
    QElapsedTimer time;
    time.start();
    QProcess undisturbed;
    startFind(undisturbed, fixture, u"undisturbed"_s);
    ASSERT_TRUE(undisturbed.waitForFinished(-1));
    std::mt19937 random(3);
    const auto longest = static_cast<unsigned>(time.elapsed()) / 2;
    int killed = 0;
    for (int i = 0; i < 10; ++i) {
        QProcess process;
        startFind(process, fixture, u"killed"_s);
        if (process.waitForFinished(static_cast<int>(random() % longest))) {
            QDir(fixture.place.filePath(u"killed"_s)).removeRecursively();
            continue;
        }
        process.kill();
        process.waitForFinished(-1);
        ++killed;
    }
    EXPECT_GT(killed, 0);
    LibraryStore store(indexIn(fixture, u"killed"_s));
    EXPECT_FALSE(store.wasDamaged());
    fixture.update(store);
    LibraryStore other(indexIn(fixture, u"undisturbed"_s));
    EXPECT_EQ(dump(store), dump(other));
    store.database().run("INSERT INTO words (words) VALUES ('integrity-check')");
}

TEST(Update, WritesInBatches) {
    const Fixture fixture;
    for (const QString& name : {u"ann.ichat"_s, u"ben.ichat"_s, u"eve.ichat"_s})
        fixture.chat(name, {u"plum"_s, u"pear"_s});
    LibraryStore store(fixture.database);
    TextTokenizer tokenizer;
    BatchWriter writer(store, [] { return false; });
    const auto add = [&](const FoundFile& file) {
        writer.add(prepared(TranscriptReader().read(file), tokenizer));
        writer.flush();
    };
    const auto files = transcriptsIn({fixture.chats}, test::neverStops, {});
    std::for_each(files.begin(), files.end(), add);
    // The number of the last one becomes that of the next one to come.
    const auto last = store.files().back();
    writer.remove(last.id);
    writer.flush();
    add(last.file);
    writer.update(last.id, last.file);
    writer.flush();
    EXPECT_EQ(dump(store), freshDump(fixture));
}

TEST(Update, StopsWhenAsked) {
    const Fixture fixture;
    archive::write(QString::fromStdString(fixture.chats), {60, 1'200, 0});
    LibraryStore store(fixture.database);
    for (const int files : {1, 30, 59}) {
        std::atomic<bool> stop = false;
        Indexer indexer(store);
        indexer.onProgress = [&](const Indexer::Progress& p) { stop = p.done >= files; };
        indexer.update({fixture.chats}, stop);
        EXPECT_TRUE(store.files().empty()) << "nothing is written once it is stopped";
    }
    fixture.update(store);
    EXPECT_EQ(dump(store), freshDump(fixture));
}

TEST(Update, WaitsWhilePausedAndShowsWhatItHasWritten) {
    const Fixture fixture;
    fixture.chat(u"ann.ichat"_s, {u"plum"_s});
    LibraryStore store(fixture.database);
    Indexer indexer(store);
    LibraryStore searched(fixture.database, LibraryStore::Access::read);
    qint64 seen = 0;
    indexer.onCommitted = [&] { seen = found(searched, fixture, u"plum"_s); };
    indexer.setPaused(true);
    std::atomic<bool> stop = false;
    std::atomic<bool> hasBegun = false;
    indexer.onFound = [&](qsizetype) {
        hasBegun = true;
        hasBegun.notify_one();
    };
    std::thread other([&] { indexer.update({fixture.chats}, stop); });
    hasBegun.wait(false);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(fileCountsIn(searched).files, 0);
    LibraryStore second(fixture.database);
    EXPECT_THROW(fixture.update(second), DatabaseError) << "one indexes at a time";
    // A search that goes on doesn't keep the indexer waiting.
    LibraryStore busy(fixture.database, LibraryStore::Access::read);
    Statement open = busy.database().prepare("SELECT id FROM people UNION SELECT 1");
    EXPECT_TRUE(open.step());
    indexer.setPaused(false);
    other.join();
    open.reset();
    EXPECT_EQ(seen, 1);
    indexer.setPaused(true);
    fixture.chat(u"ben.ichat"_s, {u"plum"_s});
    other = std::thread([&] { indexer.update({fixture.chats}, stop); });
    stop = true;
    other.join();
    EXPECT_EQ(fileCountsIn(searched).files, 1);
}

TEST(Update, ListsBrokenFilesAndCopies) {
    const Fixture fixture;
    LibraryStore store(fixture.database);
    fixture.chat(u"b.ichat"_s, {u"plum"_s, u"pear"_s});
    fixture.chat(u"c.ichat"_s, {u"fig"_s});
    QFile::copy(fixture.path(u"b.ichat"_s), fixture.path(u"a.ichat"_s));
    fixture.write(u"bad.ichat"_s, "nothing");
    fixture.write(u"worse.ichat"_s, "nothing at all");
    fixture.update(store);
    store.database().run("UPDATE files SET hash = x'' WHERE reason IS NOT NULL");  // unreadable
    const FileCounts counts = fileCountsIn(store);
    EXPECT_EQ(std::tuple(counts.files, counts.broken, counts.copies, counts.messages),
              std::tuple(5, 2, 1, 5));
    const auto broken = brokenFilesIn(store);
    ASSERT_EQ(broken.size(), 2U);
    EXPECT_TRUE(broken[0].path.endsWith("/bad.ichat"));
    EXPECT_FALSE(broken[0].reason.isEmpty());
    const auto copies = copiesIn(store);
    ASSERT_EQ(copies.size(), 1U);
    ASSERT_EQ(copies[0].paths.size(), 2U);
    EXPECT_TRUE(copies[0].paths[0].endsWith("/a.ichat"));
}

}  // namespace
}  // namespace vell
