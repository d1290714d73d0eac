// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QBuffer>
#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <atomic>
#include <thread>
#include <vector>

#include "toolkit/drawn_picture.h"
#include "toolkit/picture_decoder.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

using foundation::Picture;
using foundation::PictureFormat;

QImage twoHalves(int width, int height, QColor left, QColor right) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++)
            image.setPixelColor(x, y, x < width / 2 ? left : right);
    }
    return image;
}

QByteArray saved(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

Picture recognised(const QByteArray& bytes) {
    const auto picture = foundation::recognisePicture(bytes);
    EXPECT_TRUE(picture);
    return picture.value_or(Picture());
}

bool isNearly(QColor a, QColor b) {
    return qAbs(a.red() - b.red()) < 12 && qAbs(a.green() - b.green()) < 12 &&
           qAbs(a.blue() - b.blue()) < 12;
}

/// A JPEG of a camera that was held upright: 40 × 20 as stored, its left half is the top.
QByteArray turnedJpeg() {
    QByteArray bytes = saved(twoHalves(40, 20, Qt::red, Qt::blue), "jpeg");
    const QByteArray exif = QByteArrayLiteral(
        "\xFF\xE1\x00\x22"
        "Exif\0\0II*\0\x08\0\0\0"
        "\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0"
        "\0\0\0\0");
    return bytes.insert(2, exif);
}

TEST(DecodePicture, AtItsOwnSizeOrSmaller) {
    const QImage image = twoHalves(100, 50, Qt::red, Qt::blue);
    const struct {
        QSize wanted;
        Qt::AspectRatioMode mode;
        QSize decoded;
    } rows[] = {
        {{}, Qt::KeepAspectRatio, {100, 50}},
        {{40, 40}, Qt::KeepAspectRatio, {40, 20}},
        {{40, 40}, Qt::KeepAspectRatioByExpanding, {80, 40}},
        {{40, 40}, Qt::IgnoreAspectRatio, {40, 40}},
        {{400, 400}, Qt::KeepAspectRatio, {100, 50}},
        {{400, 400}, Qt::KeepAspectRatioByExpanding, {100, 50}},
        {{400, 40}, Qt::IgnoreAspectRatio, {100, 40}},
    };
    for (const char* format : {"png", "jpeg", "bmp", "ico", "webp", "tiff"}) {
        const Picture picture = recognised(saved(image, format));
        for (const auto& row : rows) {
            const DecodedPicture decoded = decodePicture(picture, row.wanted, row.mode);
            ASSERT_TRUE(decoded) << format << decoded.problem.toStdString();
            EXPECT_EQ(decoded.picture.image.size(), row.decoded) << format;
            const QImage& pixels = decoded.picture.image;
            EXPECT_TRUE(isNearly(pixels.pixelColor(2, 2), Qt::red)) << format;
            EXPECT_TRUE(isNearly(pixels.pixelColor(pixels.width() - 3, 2), Qt::blue)) << format;
        }
        EXPECT_EQ(drawnSize(picture), QSize(100, 50));
    }
}

TEST(DecodePicture, CamerasAreHeldUpright) {
    const Picture picture = recognised(turnedJpeg());
    EXPECT_EQ(drawnSize(picture), QSize(20, 40));
    EXPECT_EQ(decodePicture(picture).picture.image.size(), QSize(20, 40));
    const QImage small = decodePicture(picture, QSize(10, 100)).picture.image;
    EXPECT_EQ(small.size(), QSize(10, 20));
    EXPECT_TRUE(isNearly(small.pixelColor(5, 1), Qt::red));
    EXPECT_TRUE(isNearly(small.pixelColor(5, 18), Qt::blue));
}

TEST(DecodePicture, TheFirstFrameOfAnAnimation) {
    // 1 × 1, red, then green.
    const QByteArray gif = QByteArray::fromHex(
        "474946383961010001009100 00ff000000ff000000ff000000"
        "21f9040000000000 2c00000000010001000002024401 00"
        "21f9040000000000 2c00000000010001000002024c01 003b");
    const DecodedPicture decoded = decodePicture(recognised(gif));
    ASSERT_TRUE(decoded) << decoded.problem.toStdString();
    EXPECT_EQ(decoded.picture.image.pixelColor(0, 0), QColor(Qt::red));
}

TEST(DecodePicture, WhatCannotBeDrawnIsExplained) {
    const QByteArray png = saved(twoHalves(60, 60, Qt::red, Qt::blue), "png");
    QByteArray huge = png;
    huge.replace(16, 8, QByteArray::fromHex("0000753000007530"));  // 30,000 × 30,000
    QByteArray lying = saved(twoHalves(10, 10, Qt::red, Qt::blue), "bmp");
    lying.replace(18, 8, QByteArray::fromHex("ffff0000 ffff0000"));
    const QByteArray svg = "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>";
    const struct {
        const char* what;
        Picture picture;
        const char* problem;
    } rows[] = {
        {"truncated", recognised(png.first(60)), "The picture is damaged: "},
        {"too many pixels", recognised(huge),
         "The picture is too large to be drawn: 30000 × 30000 pixels"},
        {"more pixels than bytes", recognised(lying), "The picture is too large to be drawn: "},
        {"no decoder", Picture{QByteArray("8BPS"), PictureFormat::photoshop, QSize(1, 1)},
         "Photoshop pictures can't be drawn on this system"},
        {"text needs fonts", recognised(svg), "SVG pictures can't be drawn without a window"},
        {"another format's bytes", Picture{png, PictureFormat::jpeg, QSize(60, 60)},
         "The picture is damaged: "},
        {"nothing", Picture{}, "The picture is damaged: "},
    };
    for (const auto& row : rows) {
        const DecodedPicture decoded = decodePicture(row.picture, QSize(8, 8));
        EXPECT_FALSE(decoded) << row.what;
        EXPECT_TRUE(decoded.picture.image.isNull()) << row.what;
        EXPECT_TRUE(decoded.problem.startsWith(QString::fromUtf8(row.problem)))
            << row.what << ": " << decoded.problem.toStdString();
    }
}

TEST(DecodePicture, ManyThreadsAtOnce) {
    const Picture picture = recognised(saved(twoHalves(200, 100, Qt::red, Qt::blue), "png"));
    const QImage alone = decodePicture(picture, QSize(50, 50)).picture.image;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            for (int n = 0; n < 50; n++)
                wrong += decodePicture(picture, QSize(50, 50)).picture.image != alone;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(DecodePicture, DrawingsAreEnlargedAndReadNoOtherFiles) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    const auto svg = [](const QByteArray& inside) {
        return recognised(
            "<?xml version='1.0'?><svg xmlns='http://www.w3.org/2000/svg' "
            "xmlns:l='http://www.w3.org/1999/xlink' width='9' height='9'>" +
            inside + "</svg>");
    };
    const QByteArray square = "<rect id='r' width='9' height='9' fill='#f00'/>";
    const DecodedPicture drawn = decodePicture(svg(square + "<use l:href='#r'/>"), QSize(90, 90));
    ASSERT_TRUE(drawn) << drawn.problem.toStdString();
    EXPECT_EQ(drawn.picture.image.size(), QSize(90, 90));
    EXPECT_EQ(drawn.picture.image.pixelColor(80, 80), QColor(Qt::red));
    for (const char* inside : {"<image l:href='/etc/hostname'/>", "<image href = \" file:///x\"/>",
                               "<?xml-stylesheet href='x.css'?>"}) {
        EXPECT_EQ(decodePicture(svg(inside)).problem,
                  u"SVG pictures that refer to other files are not drawn")
            << inside;
    }
    EXPECT_TRUE(decodePicture(svg("<image l:href='data:image/png;base64,AA'/>")));
}

TEST(QxResize, StretchesIntoWhatTheInsetsLeave) {
    const DrawnPicture wide{twoHalves(100, 50, Qt::red, Qt::blue), true};
    const DrawnPicture filled = wide.qxResize({38, 38});
    EXPECT_EQ(filled.image.size(), QSize(38, 38));
    EXPECT_TRUE(filled.isTemplate);
    EXPECT_EQ(filled.image.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(filled.image.pixelColor(37, 37), QColor(Qt::blue));
    EXPECT_EQ(wide.image.size(), QSize(100, 50));

    const QImage inset = wide.qxResize({38, 38}, {4, 4, 4, 4}).image;
    for (const QPoint outside : {QPoint(3, 20), QPoint(34, 20), QPoint(20, 3), QPoint(20, 34)}) {
        EXPECT_EQ(inset.pixelColor(outside).alpha(), 0) << outside.x() << ", " << outside.y();
    }
    for (const QPoint inside : {QPoint(4, 20), QPoint(33, 20), QPoint(12, 4), QPoint(12, 33)}) {
        EXPECT_EQ(inset.pixelColor(inside).alpha(), 255) << inside.x() << ", " << inside.y();
    }

    const QImage sharp = wide.qxResize({38, 38}, {10, 0, 0, 19}, 2).image;
    EXPECT_EQ(sharp.size(), QSize(76, 76));
    EXPECT_EQ(sharp.devicePixelRatio(), 2);
    EXPECT_EQ(sharp.pixelColor(19, 10).alpha(), 0) << "left";
    EXPECT_EQ(sharp.pixelColor(20, 37).alpha(), 255);
    EXPECT_EQ(sharp.pixelColor(20, 38).alpha(), 0) << "bottom";
}

TEST(QxResize, NothingToDrawIsNothing) {
    const DrawnPicture picture{twoHalves(4, 4, Qt::red, Qt::blue)};
    EXPECT_EQ(picture.qxResize({10, 10}, {5, 5, 5, 5}).image.pixelColor(5, 5).alpha(), 0);
    EXPECT_EQ(picture.qxResize({10, 10}, {9, 9, 9, 9}).image.pixelColor(5, 5).alpha(), 0);
    EXPECT_TRUE(picture.qxResize({0, 10}).image.isNull());
    EXPECT_EQ(DrawnPicture().qxResize({10, 10}).image.pixelColor(5, 5).alpha(), 0);
}

}  // namespace
}  // namespace vell
