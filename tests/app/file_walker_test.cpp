// SPDX-License-Identifier: MIT
#include "app/search/file_walker.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>

#include "windows.h"

namespace {

using vell::FileWalker;

class Tree {
  public:
    void file(const QString& path, const QByteArray& bytes) {
        const QString whole = root.filePath(path);
        QDir().mkpath(QFileInfo(whole).path());
        QFile file(whole);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QTemporaryDir root;
};

QSet<QString> walk(const QStringList& folders, bool hidden) {
    FileWalker walker;
    QSet<QString> found;
    bool done = false;
    QObject::connect(&walker, &FileWalker::found, [&](const QList<FileWalker::Found>& files) {
        for (const auto& file : files) {
            EXPECT_FALSE(found.contains(file.path)) << "found twice: " << file.path.toStdString();
            found.insert(file.path);
        }
    });
    QObject::connect(&walker, &FileWalker::finished, [&] { done = true; });
    walker.start(folders, hidden);
    EXPECT_TRUE(vell::test::waitUntil([&] { return done; }));
    return found;
}

TEST(FileWalker, FindsTranscriptsByNameAndByBytes) {
    Tree tree;
    const QByteArray keyed = "bplist00 ... InstantMessage";
    const QByteArray nonKeyed = QByteArray("\x04\x0bstreamtyped\x81\xe8\x03") + " InstantMessage";
    tree.file(QStringLiteral("a.ichat"), "anything");
    tree.file(QStringLiteral("deep/er/B.ICHAT"), {});
    tree.file(QStringLiteral("deep/no-extension"), keyed);
    tree.file(QStringLiteral("deep/old.bak"), nonKeyed);
    tree.file(QStringLiteral("deep/preferences.plist"), "bplist00 something else");
    tree.file(QStringLiteral("deep/late"), keyed.left(8) + QByteArray(70000, ' ') + keyed);
    tree.file(QStringLiteral(".hidden/c.ichat"), {});
    tree.file(QStringLiteral("naïve 😀/d.ichat"), {});
    // A loop, and a second way to a folder: neither is followed.
    QFile::link(tree.root.path(), tree.root.filePath(QStringLiteral("deep/loop")));
    QFile::link(QStringLiteral("a.ichat"), tree.root.filePath(QStringLiteral("link.ichat")));

    const auto in = [&](std::initializer_list<const char*> names) {
        QSet<QString> paths;
        for (const char* name : names)
            paths.insert(tree.root.filePath(QString::fromUtf8(name)));
        return paths;
    };
    const QStringList twice{tree.root.path(), tree.root.filePath(QStringLiteral("deep"))};
    EXPECT_EQ(walk(twice, false), in({"a.ichat", "deep/er/B.ICHAT", "deep/no-extension",
                                      "deep/old.bak", "naïve 😀/d.ichat"}));
    EXPECT_TRUE(walk({tree.root.path()}, true)
                    .contains(tree.root.filePath(QStringLiteral(".hidden/c.ichat"))));
}

TEST(FileWalker, ACancelledWalkIsSilent) {
    Tree tree;
    for (int i = 0; i < 200; ++i)
        tree.file(QString::number(i) + QStringLiteral(".ichat"), {});
    FileWalker walker;
    QObject::connect(&walker, &FileWalker::found, [](const auto&) { ADD_FAILURE(); });
    QObject::connect(&walker, &FileWalker::finished, [] { ADD_FAILURE(); });
    walker.start({tree.root.path()}, false);
    walker.cancel();
    QTest::qWait(200);
    EXPECT_FALSE(walker.isRunning());
}

}  // namespace
