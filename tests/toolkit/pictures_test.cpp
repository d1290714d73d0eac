// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>
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
        {{40, 40}, Qt::KeepAspectRatio, {40, 20}},
        {{40, 40}, Qt::IgnoreAspectRatio, {40, 40}},
        {{400, 400}, Qt::KeepAspectRatio, {100, 50}},
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
    }
}

/// The same from a scanner.
QByteArray turnedTiff() {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "tiff");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    writer.write(twoHalves(40, 20, Qt::red, Qt::blue));
    return buffer.data();
}

TEST(DecodePicture, TurnedPicturesAreDrawnUpright) {
    for (const QByteArray& bytes : {turnedJpeg(), turnedTiff()}) {
        const Picture picture = recognised(bytes);
        EXPECT_TRUE(foundation::isTurned(picture));
        EXPECT_EQ(decodePicture(picture, QSize(99, 99)).picture.image.size(), QSize(20, 40));
        const QImage small = decodePicture(picture, QSize(10, 100)).picture.image;
        EXPECT_EQ(small.size(), QSize(10, 20));
        EXPECT_TRUE(isNearly(small.pixelColor(5, 1), Qt::red));
        EXPECT_TRUE(isNearly(small.pixelColor(5, 18), Qt::blue));
    }
    EXPECT_FALSE(
        foundation::isTurned(recognised(saved(QImage(2, 1, QImage::Format_RGB32), "jpeg"))));
}

TEST(DecodePicture, TheFirstFrameOfAnAnimation) {
    // 1 × 1, red, then green.
    const QByteArray gif = QByteArray::fromHex(
        "474946383961010001009100 00ff000000ff000000ff000000"
        "21f9040000000000 2c00000000010001000002024401 00"
        "21f9040000000000 2c00000000010001000002024c01 003b");
    const DecodedPicture decoded = decodePicture(recognised(gif), QSize(9, 9));
    ASSERT_TRUE(decoded) << decoded.problem.toStdString();
    EXPECT_EQ(decoded.picture.image.pixelColor(0, 0), QColor(Qt::red));
}

TEST(DecodePicture, WhatCannotBeDrawnIsExplained) {
    const QByteArray png = saved(twoHalves(60, 60, Qt::red, Qt::blue), "png");
    QByteArray huge = png;
    huge.replace(16, 8, QByteArray::fromHex("0000753000007530"));  // 30,000 × 30,000
    QByteArray lying = saved(twoHalves(10, 10, Qt::red, Qt::blue), "bmp");
    lying.replace(18, 8, QByteArray::fromHex("ffff0000 ffff0000"));
    const struct {
        const char* what;
        Picture picture;
        const char* problem;
    } rows[] = {
        {"truncated", recognised(png.first(60)), "The picture is damaged: "},
        {"too many pixels", recognised(huge),
         "The picture is too large to be drawn: 30000 × 30000 pixels"},
        {"more pixels than bytes", recognised(lying), "The picture is too large to be drawn: "},
        {"no decoder",
         recognised(QByteArray::fromHex("384250530001000000000000000300000001000000010008") + "xx"),
         "Photoshop pictures can't be drawn on this system"},
        {"nothing", Picture{}, "The picture is damaged"},
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

TEST(PictureDecoder, TrustsNothingFromTheProcess) {
    const QTemporaryDir folder;
    const Picture picture = recognised(saved(twoHalves(20, 10, Qt::red, Qt::blue), "png"));
    const QString missing = u"Pictures can't be drawn: vell-picture doesn't start"_s;
    const QString broken = u"The picture is damaged: drawing it broke off"_s;
    const struct {
        QString name;
        QString problem;
    } rows[] = {
        {u"is-not-there"_s, missing},
        {u"ends-at-once"_s, missing},
        {u"of-another-version"_s, missing},
        {u"ends-during-the-picture"_s, broken},
        {u"too-wide"_s, broken},
        {u"too-high"_s, broken},
        {u"below-zero"_s, broken},
        {u"never-the-next-frame"_s, broken},
        {u"takes-the-memory"_s, broken},
        {u"says-too-little"_s, broken},
        {u"says-too-much"_s, broken},
        {u"speaks-without-end"_s, QString(240, u' ')},
    };
    for (const auto& [name, problem] : rows) {
        const QString program = folder.filePath(name);
        if (name != u"is-not-there") QFile::link(QStringLiteral(HOSTILE_PICTURE), program);
        PictureDecoder decoder(program);
        const DecodedPicture decoded = decoder.decode(picture, QSize(9, 9));
        EXPECT_TRUE(decoded.picture.image.isNull()) << name.toStdString();
        EXPECT_EQ(decoded.problem, problem) << name.toStdString();
        if (problem != broken) continue;
        QFile::remove(program);
        EXPECT_EQ(decoder.decode(picture, QSize(5, 5)).problem, broken) << "tried again";
    }
}

TEST(DecodePicture, DrawingsAreEnlargedAndMustBeSelfContained) {
    const auto svg = [](const QByteArray& inside) {
        return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:l='http://www.w3.org/1999/xlink' "
               "width='9' height='9'>" +
               inside + "</svg>";
    };
    const QByteArray square = "<rect id='r' width='9' height='9' fill='#f00'/>";
    const QByteArray painted =
        "<linearGradient id='g'><stop stop-color='#f00'/></linearGradient>"
        "<rect width='9' height='9' fill='url( #g)'/>";
    const QString text = QString::fromUtf8(svg(square));
    const QByteArray utf16(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    for (const QByteArray& whole :
         {svg(square + "<use l:href='#r'/>"), svg(square + "<use l:href=' #r'/>"), svg(painted),
          svg("<style>rect { fill: #f00 }</style>" + square + "<text>Aä</text>"),
          "<?xml version='1.0' encoding='utf-8'?>" + svg(square), "\xff\xfe" + utf16}) {
        const DecodedPicture drawn = decodePicture(recognised(whole), QSize(90, 90));
        ASSERT_TRUE(drawn) << whole.toStdString() << drawn.problem.toStdString();
        EXPECT_EQ(drawn.picture.image.size(), QSize(90, 90));
        EXPECT_EQ(drawn.picture.image.pixelColor(80, 60), QColor(Qt::red)) << whole.toStdString();
    }
    const QString files = u"that refer to other files are not drawn"_s;
    const QString content = u"that hold scripts or other documents are not drawn"_s;
    const QString encoding = u"in other encodings than UTF-8 and UTF-16 are not drawn"_s;
    const QString type = u"with a document type are not drawn"_s;
    const struct {
        QByteArray whole;
        QString problem;
    } refused[] = {
        {svg("<image l:href='/etc/hostname'/>"), files},
        {svg("<image l:href='data:image/png;base64,AA'/>"), files},
        {svg("<x:IMAGE xmlns:x='urn:x' href='#r'/>"), files},
        {svg("<use href = \" file:///x#r\"/>"), files},
        {svg("<use l:href='x.svg#&#35;'/>"), files},
        {svg("<rect fill='url(\"x.svg#r\")'/>"), files},
        {svg("<rect style='fill: u\\72l(x)'/>"), files},
        {svg("<style>@import 'x.css';</style>"), files},
        {svg("<style><![CDATA[@font-face { src: ur]]><![CDATA[l(x) }]]></style>"), files},
        {svg("<script/>"), content},
        {svg("<foreignObject/>"), content},
        {svg("<?xml-stylesheet href='x.css'?>"), u"with processing instructions are not drawn"_s},
        {"<!DOCTYPE svg [<!ENTITY e 'x'>]>" + svg("<text>&e;</text>"), type},
        {"<?xml version='1.0' encoding='UTF-7'?>" + svg("+ADw-image/+AD4-"), encoding},
        {"<?xml version='1.0' encoding='latin1'?>" + svg(square), encoding},
        {svg("<g>"), u"with malformed XML are not drawn"_s},
    };
    for (const auto& [whole, problem] : refused)
        EXPECT_EQ(decodePicture(recognised(whole), QSize(9, 9)).problem,
                  u"SVG pictures "_s + problem)
            << whole.toStdString();
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

TEST(QxResize, EmptyTargetsStayTransparent) {
    const DrawnPicture picture{twoHalves(4, 4, Qt::red, Qt::blue)};
    EXPECT_EQ(picture.qxResize({10, 10}, {5, 5, 5, 5}).image.pixelColor(5, 5).alpha(), 0);
    EXPECT_EQ(picture.qxResize({10, 10}, {9, 9, 9, 9}).image.pixelColor(5, 5).alpha(), 0);
    EXPECT_TRUE(picture.qxResize({0, 10}).image.isNull());
    EXPECT_EQ(DrawnPicture().qxResize({10, 10}).image.pixelColor(5, 5).alpha(), 0);
}

}  // namespace
}  // namespace vell
