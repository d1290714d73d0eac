// SPDX-License-Identifier: MIT
//
// Any bytes through the table that recognises pictures: a recognised one never has an empty size.
// What is one is then drawn as vell-picture does it, and never larger than was asked for. Pictures
// that are honestly large are left out, as are PDF, whose decoder leaks, and drawings that use
// parts of theirs again and again: time and memory of these are bounded by the process alone.

#include <QGuiApplication>
#include <QImageReader>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/picture.h"
#include "foundation/picture_details.h"
#include "picture/animation.h"
#include "picture/decoding.h"

namespace {

using foundation::PictureFormat;

constexpr qint64 mostPixels = 250'000;
constexpr int mostMebibytes = 64;
constexpr QSize wanted(40, 30);

bool startApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz_picture";
    static char* arguments[] = {name, nullptr};
    static const QGuiApplication application(count, arguments);
    QImageReader::setAllocationLimit(mostMebibytes);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return true;
}

bool isModest(const foundation::Picture& picture) {
    const QSize size = picture.pixelSize.value_or(QSize(1, 1));
    if (qint64{size.width()} * size.height() > mostPixels) return false;
    if (picture.format == PictureFormat::pdf) return false;
    const QByteArray bytes = picture.data.load()->toByteArray();
    return picture.format != PictureFormat::svg ||
           !(bytes.contains("use") || bytes.contains("url"));
}

void check(const QImage& image) {
    if (image.width() > wanted.width() || image.height() > wanted.height()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const foundation::Data data(input);
    const auto picture = foundation::recognisePicture(data);
    if (!picture) return 0;
    if (picture->pixelSize && picture->pixelSize->isEmpty()) std::abort();
    static_cast<void>(foundation::isTurned(*picture));
    static_cast<void>(foundation::isAnimated(*picture));
    if (foundation::pixelsPerPoint(*picture) < 1) std::abort();
    if (!isModest(*picture)) return 0;
    [[maybe_unused]] static const bool isStarted = startApplication();
    check(vell::draw(data, wanted, false).image);
    if (picture->format != PictureFormat::gif) return 0;
    vell::Animation animation(data, wanted);
    for (int i = 0; i < 3; ++i)
        check(animation.next().image);
    return 0;
}
