// SPDX-License-Identifier: MIT
//
// A database that can't be used keeps nobody from finding: the program says so and reads the files.
#include "library/library_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QProcess>

#include "library/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;

struct UnusableDatabase {
    const char* what;
    const char* script;  // makes $db unusable; $chats are the transcripts
    const char* said;
};

TEST(Store, UnusableDatabasesAreMadeAnewOrLeftAlone) {
    const UnusableDatabase cases[] = {
        {"usable", "vell-find nothing -- $chats", ""},
        {"garbage", "head -c 9000 /dev/urandom > $db", "the index was damaged, and is made again"},
        {"cut short", "vell-find nothing -- $chats; truncate -s 20000 $db", "damaged"},
        {"overwritten inside",
         "vell-find nothing -- $chats\n"
         "head -c 30000 /dev/zero | dd of=$db bs=1 seek=4096 conv=notrunc 2>/dev/null",
         "damaged"},
        {"another program's", "sqlite3 $db 'CREATE TABLE t(a)'", "belongs to another program"},
        {"older",
         "vell-find nothing -- $chats; sqlite3 $db 'PRAGMA user_version = 1; DROP TABLE stretches'",
         ""},
        {"newer", "vell-find nothing -- $chats; sqlite3 $db 'PRAGMA user_version = 99'",
         "from a newer version"},
        {"no folder for it", "rm -r $XDG_CACHE_HOME/vell; touch $XDG_CACHE_HOME/vell",
         "its folder can't be made"},
        {"no room for it", "ulimit -f 16", "so the files are read"},
        {"a folder at its place", "mkdir $db", "unable to open database file"},
        {"in use", "{ echo 'BEGIN EXCLUSIVE;'; sleep 9; } | sqlite3 $db & sleep 1",
         "another program is using it"},
    };
    for (const UnusableDatabase& c : cases) {
        SCOPED_TRACE(c.what);
        const test::Fixture fixture;
        fixture.chat(u"ann"_s, {u"hello"_s});
        QProcess shell;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, QFileInfo(QStringLiteral(VELL_FIND)).path() + u':' +
                                          environment.value(u"PATH"_s));
        environment.insert(u"XDG_CACHE_HOME"_s, fixture.place.path());
        environment.insert(u"chats"_s, QString::fromStdString(fixture.chats));
        environment.insert(u"db"_s, fixture.place.filePath(u"vell/library/messages.sqlite"_s));
        shell.setProcessEnvironment(environment);
        shell.start(u"/bin/sh"_s,
                    {u"-c"_s, u"mkdir -p $(dirname $db)\n"_s + QString::fromLatin1(c.script) +
                                  u"\nvell-find hello -- $chats; s=$?\n"
                                  "kill $! 2>/dev/null; exit $s"_s});
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(shell.exitCode(), 0);
        EXPECT_TRUE(shell.readAllStandardOutput().endsWith(" ann: hello\n"));
        const QByteArray said = shell.readAllStandardError();
        EXPECT_TRUE(said.contains(c.said)) << said.toStdString();
        EXPECT_EQ(said.count('\n'), *c.said ? 1 : 0) << said.toStdString();
    }
}

TEST(Store, IsPrivate) {
    const test::Fixture fixture;
    const LibraryStore store(fixture.database);
    struct stat status {};
    ASSERT_EQ(::stat(fixture.database.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    ASSERT_EQ(::stat(fixture.place.filePath(u"db"_s).toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
}

}  // namespace
}  // namespace vell
