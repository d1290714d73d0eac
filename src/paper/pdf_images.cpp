// SPDX-License-Identifier: MIT
#include "paper/pdf_images.h"

#include <QBuffer>
#include <QImageWriter>
#include <algorithm>

namespace vell {
namespace {

constexpr int jpegQuality = 90;
constexpr int smallPicture = 64 * 64;  // pixels

QByteArray entries(QSize size, const char* colors) {
    return "/Type /XObject /Subtype /Image /Width " + QByteArray::number(size.width()) +
           " /Height " + QByteArray::number(size.height()) + " /BitsPerComponent 8 /ColorSpace /" +
           colors;
}

bool isOpaque(const QImage& image) {
    if (!image.hasAlphaChannel()) return true;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (!std::all_of(row, row + image.width(), [](QRgb p) { return qAlpha(p) == 255; }))
            return false;
    }
    return true;
}

}  // namespace

int PdfImages::write(const QImage& image) {
    const auto count = qsizetype{image.width()} * image.height();
    QByteArray colors(3 * count, Qt::Uninitialized);
    QByteArray opacity(count, Qt::Uninitialized);
    char* color = colors.data();
    char* cover = opacity.data();
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            *color++ = static_cast<char>(qRed(row[x]));
            *color++ = static_cast<char>(qGreen(row[x]));
            *color++ = static_cast<char>(qBlue(row[x]));
            *cover++ = static_cast<char>(qAlpha(row[x]));
        }
    }
    QByteArray dictionary = entries(image.size(), "DeviceRGB");
    if (!isOpaque(image)) {
        const int mask = file_.reserve();
        file_.writeStream(mask, entries(image.size(), "DeviceGray"), opacity);
        dictionary += " /SMask " + pdfReference(mask);
    }
    const int object = file_.reserve();
    file_.writeStream(object, dictionary, colors);
    return object;
}

int PdfImages::writeJpeg(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(jpegQuality);
    if (!writer.write(image.convertToFormat(QImage::Format_RGB888))) return 0;
    const int object = file_.reserve();
    file_.writeEncoded(object, entries(image.size(), "DeviceRGB") + " /Filter /DCTDecode", bytes);
    return object;
}

int PdfImages::drawing(const QImage& image) {
    const auto known = known_.constFind(image.cacheKey());
    if (known != known_.cend()) return *known;
    const int object = write(image.convertToFormat(QImage::Format_ARGB32));
    known_.insert(image.cacheKey(), object);
    return object;
}

int PdfImages::photo(const QImage& image) {
    const auto known = known_.constFind(image.cacheKey());
    if (known != known_.cend()) return *known;
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    int object = 0;
    if (image.width() * image.height() > smallPicture && isOpaque(pixels))
        object = writeJpeg(pixels);
    if (object == 0) object = write(pixels);
    known_.insert(image.cacheKey(), object);
    return object;
}

}  // namespace vell
