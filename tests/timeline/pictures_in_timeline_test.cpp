// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTest>
#include <initializer_list>
#include <set>
#include <vector>

#include "identity/waiting.h"
#include "timeline/gif.h"
#include "timeline/pictures/gif_player.h"
#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::waitFor;

TesselChatLog::Image shownPicture(const QByteArray& bytes, const char* path = nullptr) {
    const foundation::Data data(bytes);
    const auto picture = foundation::recognisePicture(data);
    EXPECT_TRUE(picture);
    std::optional<QString> name;
    if (path) name = QString::fromUtf8(path);
    return {picture.value_or(foundation::Picture()), data, QStringLiteral("public.image"), name};
}

QByteArray png(QSize size, const QColor& color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QBuffer buffer;
    image.save(&buffer, "png");
    return buffer.data();
}

/// A timeline with one picture in its first row and many lines below.
class PictureWindow : public test::Window {
  public:
    template <class... Images>
    explicit PictureWindow(const Images&... images) : Window(log({images...})) {}

    /// The colour of a picture between its edge and a sign in its middle.
    QColor side(qsizetype row = 0) { return colorAt(row, 0.1); }
    QColor middle(qsizetype row = 0) { return colorAt(row, 0.5); }
    QColor colorAt(qsizetype row, qreal part) {
        const QImage seen = view.viewport()->grab().toImage();
        TimelineLayout& timeline = view.timeline();
        const QPoint corner(timeline.rowLeft(), static_cast<int>(timeline.rowTop(row)));
        const QRect content = timeline.row(row).layout.content;
        return seen.pixelColor(
            QPoint(content.left() + qRound(part * content.width()), content.center().y()) + corner);
    }
    bool shows(const QColor& color, qsizetype row = 0) {
        return waitFor([&] { return side(row) == color; });
    }
    /// What stands in a picture's place.
    QString text(qsizetype row) {
        const LaidOutText* text = view.timeline().row(row).layout.text.get();
        return text ? text->text() : QString();
    }

  private:
    static TesselChatLog log(std::initializer_list<TesselChatLog::Image> images) {
        LogBuilder log;
        for (const TesselChatLog::Image& image : images)
            log.add(bob, image);
        for (int i = 0; i < 200; ++i)
            log.text(bob, QStringLiteral("below"));
        return log.log();
    }
};

TEST(GifInTimeline, PlaysOnClickAndOnlyWhileVisible) {
    PictureWindow window(shownPicture(test::gif(QSize(40, 40), {Qt::red, Qt::blue}, 3)));
    ASSERT_TRUE(window.shows(Qt::red));
    QTest::qWait(150);
    EXPECT_EQ(window.side(), QColor(Qt::red)) << "plays by itself";
    EXPECT_EQ(window.middle(), QColor(Qt::white)) << "the play sign";
    PictureWindow still(shownPicture(test::gif(QSize(40, 40), {Qt::red}, 3)));
    ASSERT_TRUE(still.shows(Qt::red));
    EXPECT_EQ(still.middle(), QColor(Qt::red)) << "nothing to play";

    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::blue));
    EXPECT_EQ(window.middle(), window.side()) << "a sign on what plays";
    EXPECT_TRUE(window.shows(Qt::red)) << "doesn't begin anew";
    EXPECT_TRUE(window.shows(Qt::blue));

    window.view.scroller().scrollToRow(100);
    window.view.scroller().scrollToRow(0);
    ASSERT_TRUE(window.shows(Qt::red));
    QTest::qWait(150);
    EXPECT_EQ(window.side(), QColor(Qt::red)) << "played on unseen";

    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::blue));
    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::red));
}

TEST(GifInTimeline, UnplayablePicturesStayStill) {
    GifPlayer player;
    const auto still = shownPicture(test::gif(QSize(8, 8), {Qt::red}, 3));
    player.toggle(0, still.image(), QSize(8, 8));
    EXPECT_TRUE(waitFor([&] { return player.row() < 0; })) << "one frame";
    QByteArray wide = test::gif(QSize(8, 8), {Qt::red, Qt::blue}, 3);
    wide.replace(6, 4, QByteArray::fromHex("ffffffff"));
    player.toggle(0, shownPicture(wide).image(), QSize(8, 8));
    EXPECT_LT(player.row(), 0) << "each frame would be gigabytes";
    player.toggle(0, shownPicture(png(QSize(8, 8), Qt::red)).image(), QSize(8, 8));
    EXPECT_LT(player.row(), 0) << "no GIF";
    const auto frames = shownPicture(test::gif(QSize(90, 60), {Qt::red, Qt::blue}, 3));
    player.toggle(5, frames.image(), QSize(30, 20));
    ASSERT_TRUE(waitFor([&] { return player.frame(5) != nullptr; }));
    EXPECT_EQ(player.frame(5)->size(), QSize(30, 20)) << "kept larger than it is shown";
    EXPECT_FALSE(player.frame(4));
    player.toggle(5, frames.image(), QSize(30, 20));
    EXPECT_LT(player.row(), 0) << "a second click doesn't stop it";
}

TEST(PictureInTimeline, UndrawablePicturesShowNameTypeAndReason) {
    const QByteArray whole = png(QSize(300, 300), Qt::red);
    QByteArray huge = whole;
    huge.replace(16, 8, QByteArray::fromHex("0000753000007530"));
    const struct {
        const char* fault;
        QByteArray bytes;
        QString text;
    } rows[] = {
        {"cut off", whole.first(60), QStringLiteral("cat.png\nPNG\nThe picture is damaged: ")},
        {"900 megapixels", huge, QStringLiteral("cat.png\nPNG\nThe picture is too large")},
        {"no decoder", QByteArray::fromHex("3842505300010000000000000003000000090000000900080003"),
         QStringLiteral("cat.png\nPhotoshop\nPhotoshop pictures can't be drawn")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        PictureWindow window(shownPicture(row.bytes, "photos/cat.png"));
        waitFor([&] {
            window.middle();
            return !window.text(0).isEmpty();
        });
        EXPECT_TRUE(window.text(0).startsWith(row.text)) << window.text(0).toStdString();
    }
}

/// A drawing that takes its time.
QByteArray longDrawing() {
    return "<svg xmlns='http://www.w3.org/2000/svg' width='90' height='60'>" +
           QByteArray("<path d='M0 0L1 1'/>").repeated(500'000) + "</svg>";
}

QByteArray processFile(pid_t process, const char* name) {
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : QByteArray();
}

/// Those that draw pictures for this one.
std::vector<pid_t> pictureProcesses() {
    std::vector<pid_t> found;
    const QByteArray ours = "(vell-picture) ? " + QByteArray::number(getpid()) + ' ';
    for (const QString& id : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QByteArray stat = processFile(id.toInt(), "stat");
        if (stat.isEmpty()) continue;
        stat[stat.lastIndexOf(')') + 2] = '?';  // what it is doing
        if (stat.contains(ours)) found.push_back(id.toInt());
    }
    return found;
}

/// Whether it has been given a picture and computes; before that it would merely be started again.
bool isDrawing(pid_t process) {
    constexpr int enough = 20;  // ticks of 10 ms
    const QList<QByteArray> stat = processFile(process, "stat").split(' ');
    return processFile(process, "status").contains("Seccomp: 2 ") && stat.size() > 13 &&
           stat[13].toInt() >= enough;
}

void expectConfined(pid_t process) {
    const QByteArray status = processFile(process, "status");
    EXPECT_TRUE(status.contains("NoNewPrivs: 1 ")) << status.toStdString();
#if !defined(__SANITIZE_ADDRESS__)  // which opens pipes
    EXPECT_TRUE(processFile(process, "limits").contains("Max open files 0 0 "));
#endif
}

TEST(PictureInTimeline, KilledProcessCostsOneRow) {
    const auto slow = shownPicture(longDrawing());
    const auto blue = shownPicture(png(QSize(90, 60), Qt::blue));
    PictureWindow window(slow, blue);
    // The window goes on while a picture takes its time.
    ASSERT_TRUE(window.shows(Qt::blue, 1));
    ASSERT_EQ(window.text(0), QString());
    std::set<pid_t> killed;
    EXPECT_TRUE(waitFor([&] {
        for (const pid_t process : pictureProcesses())
            if (isDrawing(process) && killed.insert(process).second) {
                expectConfined(process);
                kill(process, SIGKILL);
            }
        window.middle();
        return !window.text(0).isEmpty();
    }));
    EXPECT_FALSE(killed.empty());
    EXPECT_EQ(window.text(0), QStringLiteral("SVG\nThe picture is damaged: drawing it broke off"));
    EXPECT_EQ(window.middle(1), QColor(Qt::blue));

    // Others go to another process, this one to none.
    PictureWindow next(shownPicture(png(QSize(90, 60), Qt::red)), slow);
    EXPECT_TRUE(next.shows(Qt::red));
    EXPECT_TRUE(waitFor([&] { return !next.text(1).isEmpty(); }, 3000)) << "tried again";
}

TEST(PictureCache, StaysWithinItsBudgetAndForgetsClosedLogs) {
    constexpr qsizetype bound = 4 * 100 * 100 * 4;
    PictureCache cache(bound);
    LogBuilder log;
    std::vector<TesselChatLog::Image> images;
    for (int i = 0; i < 12; ++i) {
        images.push_back(shownPicture(png(QSize(100, 100), QColor(i, 0, 0))));
        log.add(bob, images.back());
    }
    for (const auto& image : images) {
        EXPECT_EQ(cache.size(image.image()), QSize(100, 100));
        ASSERT_TRUE(waitFor([&] { return cache.image(image.image(), QSize(100, 100)); }));
        EXPECT_LE(cache.byteCount(), bound);
    }
    const foundation::Picture& last = images.back().image();
    EXPECT_TRUE(cache.image(last, QSize(50, 50))) << "nothing shown until the new size is there";
    cache.forget(log.log());
    EXPECT_EQ(cache.byteCount(), 0);
    EXPECT_FALSE(cache.image(last, QSize(50, 50))) << "freed bytes may be another picture's";
}

}  // namespace
}  // namespace vell
