// SPDX-License-Identifier: MIT
#include "toolkit/picture_decoder.h"

#include <QBuffer>
#include <QByteArrayList>
#include <QColorSpace>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QImageReader>
#include <QRegularExpression>
#include <optional>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

using foundation::Picture;
using foundation::PictureFormat;

/// The largest camera pictures have a third of it.
constexpr qint64 kMostPixels = 400'000'000;
/// What that many take at four bytes each.
constexpr int kAllocationLimitInMebibytes = 1600;

bool isDrawing(PictureFormat format) {
    return format == PictureFormat::svg || format == PictureFormat::pdf;
}

/// Drawings set text, for which there must be fonts.
bool canDrawText() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

/// Whether drawing it would read other files: nothing in a transcript may make us do so. Entities
/// could spell a reference in many ways, and other encodings too.
bool refersToFiles(const foundation::Data& svg) {
    const QByteArray bytes = QByteArray::fromRawData(svg.begin(), svg.size());
    if (bytes.contains('\0') || bytes.contains("<!ENTITY")) return true;
    static const QRegularExpression reference(uR"(href\s*=\s*["']\s*(?!#|data:|["']))"_s);
    return reference.match(QString::fromUtf8(bytes)).hasMatch();
}

/// A reader over the picture's own bytes, placed at the image to show.
class Source {
  public:
    explicit Source(const Picture& picture)
        : picture_(picture),
          bytes_(QByteArray::fromRawData(picture.data.begin(), picture.data.size())),
          buffer_(&bytes_) {
        [[maybe_unused]] static const bool limited = [] {
            QImageReader::setAllocationLimit(kAllocationLimitInMebibytes);
            return true;
        }();
        buffer_.open(QIODevice::ReadOnly);
        // The format is known: nothing else gets to try the bytes.
        reader_.setAutoDetectImageFormat(false);
        reader_.setFormat(formatName());
        reader_.setDevice(&buffer_);
        reader_.setAutoTransform(true);
    }

    /// Why the bytes can't be given to the reader at all; empty when they can.
    [[nodiscard]] QString obstacle() {
        if (!QImageReader::supportedImageFormats().contains(formatName()))
            return words(u"can't be drawn on this system"_s);
        if (!isDrawing(picture_.format)) return {};
        if (!canDrawText()) return words(u"can't be drawn without a window"_s);
        if (picture_.format == PictureFormat::svg && refersToFiles(picture_.data))
            return words(u"that refer to other files are not drawn"_s);
        return {};
    }

    [[nodiscard]] QImageReader& reader() { return reader_; }

    /// Width and height as stored; chooses the largest image of an icon.
    [[nodiscard]] QSize storedSize() {
        const bool isIcon =
            picture_.format == PictureFormat::ico || picture_.format == PictureFormat::icns;
        if (!isIcon || !picture_.pixelSize) return reader_.size();
        for (int i = 0; i < reader_.imageCount(); ++i) {
            if (reader_.jumpToImage(i) && reader_.size() == *picture_.pixelSize) break;
        }
        return reader_.size();
    }

    /// Whether the picture lies on its side in the file.
    [[nodiscard]] bool isTurned() const {
        return reader_.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    }

    /// "JPEG pictures …".
    [[nodiscard]] QString words(const QString& what) const {
        return QString::fromLatin1(name(picture_.format)) + u" pictures "_s + what;
    }

  private:
    const Picture& picture_;
    QByteArray bytes_;
    QBuffer buffer_;
    QImageReader reader_;

    /// As the reader calls it.
    [[nodiscard]] QByteArray formatName() const {
        return foundation::fileExtension(picture_.format);
    }
};

bool isTooLarge(QSize size) {
    return static_cast<qint64>(size.width()) * size.height() > kMostPixels;
}

QString sizeInWords(QSize size) {
    return u"%1 × %2 pixels"_s.arg(size.width()).arg(size.height());
}

/// The size to decode at, as stored; nothing when that is its own.
std::optional<QSize> scaledSize(QSize own, QSize wanted, Qt::AspectRatioMode mode, bool enlarges) {
    if (wanted.isEmpty() || own.isEmpty()) return std::nullopt;
    const QSize scaled = own.scaled(wanted, mode).expandedTo(QSize(1, 1));
    if (enlarges) return scaled;
    if (mode == Qt::IgnoreAspectRatio) return scaled.boundedTo(own);
    const bool fits = scaled.width() <= own.width() && scaled.height() <= own.height();
    return fits ? std::optional(scaled) : std::nullopt;
}

/// In the one colour space and layout that painting is fast with.
QImage readyToPaint(QImage image) {
    const QColorSpace srgb(QColorSpace::SRgb);
    if (image.colorSpace().isValid() && image.colorSpace() != srgb) image.convertToColorSpace(srgb);
    return std::move(image).convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

}  // namespace

DecodedPicture decodePicture(const Picture& picture, QSize wanted, Qt::AspectRatioMode mode) {
    Source source(picture);
    if (const QString obstacle = source.obstacle(); !obstacle.isEmpty()) return {{}, obstacle};
    const QSize own = source.storedSize();
    const auto scaled = scaledSize(own, source.isTurned() ? wanted.transposed() : wanted, mode,
                                   isDrawing(picture.format));
    // A drawing has no pixels before it is drawn; all others are at least looked at whole.
    const QSize drawn = isDrawing(picture.format) ? scaled.value_or(own)
                                                  : own.expandedTo(picture.pixelSize.value_or(own));
    if (isTooLarge(drawn))
        return {{}, u"The picture is too large to be drawn: "_s + sizeInWords(drawn)};
    if (scaled) source.reader().setScaledSize(*scaled);
    QImage image = source.reader().read();
    if (image.isNull()) return {{}, u"The picture is damaged: "_s + source.reader().errorString()};
    return {{readyToPaint(std::move(image)), false}, {}};
}

QSize drawnSize(const Picture& picture) {
    Source source(picture);
    if (!source.obstacle().isEmpty()) return picture.pixelSize.value_or(QSize());
    const QSize own = picture.pixelSize ? *picture.pixelSize : source.storedSize();
    return source.isTurned() ? own.transposed() : own;
}

}  // namespace vell
