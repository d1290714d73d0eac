// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QBuffer>
#include <QTest>

#include "identity/waiting.h"
#include "timeline/gif.h"
#include "timeline/gif_player.h"
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
    explicit PictureWindow(const TesselChatLog::Image& image) : Window(log(image)) {}

    QColor middle() {
        const auto& row = view.timeline().row(0);
        return view.viewport()->grab().toImage().pixelColor(row.layout.content.center() +
                                                            QPoint(view.timeline().rowLeft(), 0));
    }
    bool shows(const QColor& color) {
        return waitFor([&] { return middle() == color; });
    }

  private:
    static TesselChatLog log(const TesselChatLog::Image& image) {
        LogBuilder log;
        log.add(bob, image);
        for (int i = 0; i < 200; ++i)
            log.text(bob, QStringLiteral("below"));
        return log.log();
    }
};

TEST(GifInTimeline, StandsStillUntilItIsClickedAndPlaysOnlyWhileSeen) {
    PictureWindow window(shownPicture(test::gif(QSize(40, 40), {Qt::red, Qt::blue}, 3)));
    ASSERT_TRUE(window.shows(Qt::red));
    QTest::qWait(150);
    EXPECT_EQ(window.middle(), QColor(Qt::red)) << "plays by itself";

    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::blue));
    EXPECT_TRUE(window.shows(Qt::red)) << "doesn't begin anew";
    EXPECT_TRUE(window.shows(Qt::blue));

    window.view.scrollToRow(100);
    window.view.scrollToRow(0);
    ASSERT_TRUE(window.shows(Qt::red));
    QTest::qWait(150);
    EXPECT_EQ(window.middle(), QColor(Qt::red)) << "played on unseen";

    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::blue));
    window.view.activateRow(0);
    EXPECT_TRUE(window.shows(Qt::red)) << "a second click doesn't stop it";
}

TEST(GifInTimeline, WhatCannotPlayStaysAPicture) {
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
}

TEST(PictureInTimeline, WhatCannotBeDrawnTellsItsNameTypeAndWhy) {
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
        {"no decoder", QByteArray(),
         QStringLiteral("cat.png\nPhotoshop\nPhotoshop pictures can't be drawn")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        const TesselChatLog::Image unknown = test::picture(QSize(90, 60));
        PictureWindow window(row.bytes.isEmpty()
                                 ? TesselChatLog::Image(unknown.image(), unknown.data(),
                                                        unknown.type(), QStringLiteral("cat.png"))
                                 : shownPicture(row.bytes, "photos/cat.png"));
        const auto text = [&] {
            const LaidOutText* text = window.view.timeline().row(0).layout.text.get();
            return text ? text->text() : QString();
        };
        waitFor([&] {
            window.view.viewport()->grab();
            return !text().isEmpty();
        });
        EXPECT_TRUE(text().startsWith(row.text)) << text().toStdString();
    }
}

TEST(PictureCache, KeepsItsBoundAndForgetsWhatIsGone) {
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
