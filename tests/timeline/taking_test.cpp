// SPDX-License-Identifier: MIT
//
// What leaves the program: pictures and files, their types and their names.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <algorithm>
#include <ctime>

#include "foundation/print.h"
#include "timeline/fixture.h"
#include "timeline/saving/data_item_provider.h"
#include "timeline/saving/private_files.h"
#include "timeline/saving/saving.h"
#include "toolkit/safe_file_name.h"

namespace vell {
namespace {

using foundation::Data;
using foundation::FileWrapper;

TesselChatLog::Image image(const char* type, const char* path = nullptr) {
    const Data data(QByteArray("\x89PNG and the rest", 16));
    return {{data, foundation::PictureFormat::png, QSize(1, 1)},
            data,
            QString::fromUtf8(type),
            path ? std::optional(QString::fromUtf8(path)) : std::nullopt};
}

/// The diagnostic lines since it was made.
class Printed {
  public:
    Printed() {
        foundation::setPrintFunction([this](QStringView line) { lines += line.toString(); });
    }
    ~Printed() { foundation::setPrintFunction({}); }
    QStringList lines;
};

TEST(DataItemProvider, ProvidesItsBytesUnderItsOwnTypeOnly) {
    const TesselChatLog::Image picture = image("public.png");
    const DataItemProvider provider(*picture.data().load(), picture.type());
    Printed printed;
    using Visibility = DataItemProvider::Visibility;
    const auto visibility = [&](const char* type) {
        return provider.itemProviderVisibilityForRepresentation(QString::fromLatin1(type));
    };
    EXPECT_EQ(visibility("public.png"), Visibility::all);
    EXPECT_EQ(visibility("public.tiff"), Visibility::ownProcess);
    EXPECT_EQ(provider.loadData(QStringLiteral("public.png")), *picture.data().load());
    EXPECT_THROW(static_cast<void>(provider.loadData(QStringLiteral("public.tiff"))),
                 DataItemProvider::FailedToProvidePasteboardImage);
    EXPECT_EQ(printed.lines,
              (QStringList{QStringLiteral("ASK FOR VIS: public.png own: public.png"),
                           QStringLiteral("ASK FOR VIS: public.tiff own: public.png"),
                           QStringLiteral("ASK FOR: public.png"),
                           QStringLiteral("ASK FOR: public.png")}));
}

TEST(DataItemProvider, ClipboardsHoldOneTypeOfData) {
    const struct {
        const char* identifier;
        const char* mimeType;
    } rows[] = {
        {"public.jpeg", "image/jpeg"},  // what the archive says, whatever the bytes are
        {"com.adobe.pdf", "application/pdf"},
        {"public.image", "image/png"},
        {"com.example.painting", "com.example.painting"},
        {"text/uri-list", "image/png"},  // bytes that pose as a list of files
        {"UTF8_STRING", "image/png"},
        {"", "image/png"},
    };
    Printed printed;
    for (const auto& row : rows) {
        const TesselChatLog::Image picture = image(row.identifier);
        const auto data = pictureForCopying(picture);
        const QString type = QString::fromLatin1(row.mimeType);
        EXPECT_EQ(data->formats(), QStringList{type}) << row.identifier;
        EXPECT_EQ(data->data(type), picture.data().load()->toByteArray()) << row.identifier;
        EXPECT_TRUE(data->data(QStringLiteral("image/tiff")).isEmpty()) << row.identifier;
        EXPECT_FALSE(data->hasImage()) << row.identifier;
    }
}

TEST(DataItemProvider, DragsWriteAFileOnRequest) {
    Printed printed;
    const TesselChatLog::Image picture =
        image("public.png", "/Users/x/Desktop/../.cat\u202egnp.sh");
    const auto data = pictureForDragging(picture);
    EXPECT_EQ(data->formats(),
              (QStringList{QStringLiteral("image/png"), QStringLiteral("text/uri-list")}));
    ASSERT_EQ(data->urls().size(), 1);
    EXPECT_EQ(data->urls(), data->urls()) << "another file at each question";
    QFile file(data->urls()[0].toLocalFile());
    EXPECT_EQ(QFileInfo(file).fileName(), QStringLiteral("catgnp.sh"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), picture.data().load()->toByteArray());
    EXPECT_FALSE(QFileInfo(file).isExecutable());
    QDir folder = QFileInfo(file).dir();
    folder.cdUp();
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                            QFileDevice::ExeGroup | QFileDevice::ReadOther |
                            QFileDevice::WriteOther | QFileDevice::ExeOther;
    EXPECT_FALSE(QFileInfo(folder.path()).permissions() & others);
    EXPECT_TRUE(printed.lines.isEmpty()) << "a file is no data";
}

TEST(DataItemProvider, PrivateFilesGoWithTheirOwner) {
    QString path;
    {
        PrivateFiles files;
        path = files.write(QStringLiteral("name"), Data(QByteArray("bytes")));
        EXPECT_TRUE(QFile::exists(path));
    }
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_FALSE(QFile::exists(QFileInfo(path).path()));
}

TEST(SafeFileName, NamesAreVisibleAndHarmless) {
    const QString long_(400, u'x');
    const QString cats = QString::fromUtf8("🐈").repeated(400);
    const struct {
        const char* fault;
        QString name;
        QString safe;
    } rows[] = {
        {"an ordinary name", QString::fromUtf8("Kätzchen im Bad.jpeg"), {}},
        {"a family is parted", QString::fromUtf8("👩‍👩‍👧.png"), {}},
        {"leaves the folder", QStringLiteral("../../etc/passwd"), QStringLiteral("passwd")},
        {"another system's folders", QStringLiteral("C:\\x\\cat.png"), QStringLiteral("cat.png")},
        {"is a folder", QStringLiteral("cats/"), QStringLiteral("File")},
        {"is the folder above", QStringLiteral(".."), QStringLiteral("File")},
        {"hides", QStringLiteral(" ..bashrc"), QStringLiteral("bashrc")},
        {"hides behind something unseen", QString::fromUtf8("\u200b.bashrc"),
         QStringLiteral("bashrc")},
        {"reads backwards", QString::fromUtf8("cat\u202egnp.exe"), QStringLiteral("catgnp.exe")},
        {"rings and breaks lines", QStringLiteral("a\x07\nb\x7f\u0085.txt"),
         QStringLiteral("ab.txt")},
        {"half a character", QStringLiteral("a") + QChar(0xd83d) + QStringLiteral(".png"),
         QStringLiteral("a") + QChar(QChar::ReplacementCharacter) + QStringLiteral(".png")},
        {"a lost ending", long_ + QStringLiteral(".png"),
         QString(196, u'x') + QStringLiteral(".png")},
        {"bytes, not characters", cats, cats.left(100)},
        {"nothing", {}, QStringLiteral("File")},
    };
    for (const auto& row : rows) {
        const QString safe = safeFileName(row.name, QStringLiteral("File"));
        EXPECT_EQ(safe, row.safe.isEmpty() ? row.name : row.safe) << row.fault;
        EXPECT_LE(safe.toUtf8().size(), longestFileName) << row.fault;
    }
    EXPECT_EQ(safeFileName(QStringLiteral("cat"), {}, QStringLiteral("png")),
              QStringLiteral("cat.png"));
    EXPECT_EQ(safeFileName(QStringLiteral("cat.jpg"), {}, QStringLiteral("png")),
              QStringLiteral("cat.jpg"));
}

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST(Saving, FoldersAreWrittenInsideThemselvesAndNothingCanBeRun) {
    const auto entry = [](const char* name, const char* bytes) {
        auto file = std::make_shared<FileWrapper>(Data(QByteArray(bytes)));
        file->filename = QString::fromUtf8(name);
        return file;
    };
    FileWrapper folder(FileWrapper::Kind::directory);
    auto link = std::make_shared<FileWrapper>(FileWrapper::Kind::symbolicLink);
    link->filename = QStringLiteral("link");
    folder.children = {entry("../outside", "1"), entry("outside", "2"), entry(".hidden", "3"),
                       link};

    const QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("saved"));
    EXPECT_EQ(writeWrapper(path, folder), QString());
    EXPECT_EQ(
        QDir(path).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System),
        (QStringList{QStringLiteral("2 outside"), QStringLiteral("hidden"),
                     QStringLiteral("outside")}));
    EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    EXPECT_NE(writeWrapper(path, folder), QString()) << "mixes two folders";

    const auto cost = [&](int count) {
        // In memory: what a disk's file system takes for a new file varies tenfold.
        const QTemporaryDir room(QStringLiteral("/dev/shm/vell-saving-XXXXXX"));
        FileWrapper many(FileWrapper::Kind::directory);
        many.children.assign(static_cast<size_t>(count), entry("x", ""));
        const QString into = room.filePath(QStringLiteral("many"));
        const double start = threadSeconds();
        EXPECT_EQ(writeWrapper(into, many), QString());
        EXPECT_EQ(QDir(into).entryList(QDir::Files).size(), count);
        return threadSeconds() - start;
    };
    // Other work on the machine only adds to it: the least of three tries counts.
    double some = cost(500);
    double many = cost(2000);
    for (int i = 0; i < 2 && many >= 8 * some; ++i) {
        some = std::min(some, cost(500));
        many = std::min(many, cost(2000));
    }
    EXPECT_LT(many, 8 * some) << "quadratic in what has one name";

    const QString program = home.filePath(QStringLiteral("program"));
    QFile old(program);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.setPermissions(old.permissions() | QFileDevice::ExeUser | QFileDevice::ExeOther);
    old.close();
    EXPECT_EQ(writeFile(program, Data(QByteArray("new"))), QString());
    EXPECT_FALSE(QFileInfo(program).isExecutable());
}

}  // namespace
}  // namespace vell
