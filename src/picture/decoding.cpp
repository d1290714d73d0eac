// SPDX-License-Identifier: MIT
#include "picture/decoding.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QtEndian>
#include <optional>
#include <utility>

#include "foundation/picture.h"
#include "picture/svg_check.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

using foundation::Picture;
using foundation::PictureFormat;

/// The largest camera pictures have a third of it.
constexpr qint64 mostPixels = 400'000'000;
/// What that many take at four bytes each.
constexpr int allocationLimit = 1600;  // MiB

bool isDrawing(PictureFormat format) {
    return format == PictureFormat::svg || format == PictureFormat::pdf;
}

/// Lets an ICNS file's last element end where the file does: the decoder allocates whatever length
/// an element claims, up to 4 GiB.
void shortenLastElement(QByteArray& icns) {
    constexpr qsizetype header = 8;
    for (qsizetype at = header; icns.size() - at >= header;) {
        const qsizetype left = icns.size() - at;
        const auto length = qFromBigEndian<quint32>(icns.constData() + at + 4);
        if (length > left) qToBigEndian(static_cast<quint32>(left), icns.data() + at + 4);
        if (length < header || length > left) return;
        at += length;
    }
}

/// A reader over the picture's own bytes, placed at the image to show.
class Source {
  public:
    explicit Source(const Picture& picture)
        : picture_(picture),
          data_(*picture.data.load()),
          bytes_(QByteArray::fromRawData(data_.begin(), data_.size())),
          buffer_(&bytes_) {
        if (picture.format == PictureFormat::icns) shortenLastElement(bytes_);
        buffer_.open(QIODevice::ReadOnly);
        // The format is known: no other decoder may try the bytes.
        reader_.setAutoDetectImageFormat(false);
        reader_.setFormat(formatName());
        reader_.setDevice(&buffer_);
        reader_.setAutoTransform(true);
    }

    /// Why the bytes can't be passed to the reader; empty when they can.
    [[nodiscard]] QString obstacle() const {
        if (!QImageReader::supportedImageFormats().contains(formatName()))
            return words(u"can't be drawn on this system"_s);
        if (picture_.format != PictureFormat::svg) return {};
        const QString what = whyNotToDraw(bytes_);
        return what.isEmpty() ? QString() : words(what);
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

  private:
    const Picture& picture_;
    const foundation::Data data_;
    QByteArray bytes_;
    QBuffer buffer_;
    QImageReader reader_;

    /// "JPEG pictures …".
    [[nodiscard]] QString words(const QString& what) const {
        return QString::fromLatin1(name(picture_.format)) + u" pictures "_s + what;
    }
    /// As the reader calls it.
    [[nodiscard]] QByteArray formatName() const {
        return foundation::fileExtension(picture_.format);
    }
};

bool isTooLarge(QSize size) {
    return static_cast<qint64>(size.width()) * size.height() > mostPixels;
}

QString sizeInWords(QSize size) {
    return u"%1 × %2 pixels"_s.arg(size.width()).arg(size.height());
}

/// The size to decode at, as stored; nothing when that is its own.
std::optional<QSize> scaledSize(QSize own, QSize wanted, bool keepsProportions, bool enlarges) {
    if (own.isEmpty()) return std::nullopt;
    const auto mode = keepsProportions ? Qt::KeepAspectRatio : Qt::IgnoreAspectRatio;
    const QSize scaled = own.scaled(wanted, mode).expandedTo(QSize(1, 1));
    if (enlarges) return scaled;
    const QSize bounded = scaled.boundedTo(own);
    return bounded == own ? std::nullopt : std::optional(bounded);
}

}  // namespace

Drawn draw(const foundation::Data& bytes, QSize wanted, bool keepsProportions) {
    const auto picture = foundation::recognisePicture(bytes);
    if (!picture) return {{}, u"The picture is damaged"_s};
    Source source(*picture);
    if (QString obstacle = source.obstacle(); !obstacle.isEmpty()) return {{}, obstacle};
    const QSize own = source.storedSize();
    const bool isDrawn = isDrawing(picture->format);
    const bool isExpected = source.isTurned() == foundation::isTurned(*picture);
    const auto scaled = scaledSize(own, source.isTurned() ? wanted.transposed() : wanted,
                                   keepsProportions || !isExpected, isDrawn);
    // A drawing has no pixels before it is drawn; all others are at least looked at whole.
    const QSize largest =
        isDrawn ? scaled.value_or(own) : own.expandedTo(picture->pixelSize.value_or(own));
    if (isTooLarge(largest))
        return {{}, u"The picture is too large to be drawn: "_s + sizeInWords(largest)};
    if (scaled) source.reader().setScaledSize(*scaled);
    QImage image = source.reader().read();
    if (image.isNull()) return {{}, u"The picture is damaged: "_s + source.reader().errorString()};
    // Some readers know neither their size nor how to scale.
    if (image.width() > wanted.width() || image.height() > wanted.height())
        image = image.scaled(wanted, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return {readyToPaint(std::move(image)), {}};
}

QImage readyToPaint(QImage image) {
    const QColorSpace srgb(QColorSpace::SRgb);
    if (image.colorSpace().isValid() && image.colorSpace() != srgb) image.convertToColorSpace(srgb);
    return std::move(image).convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

void loadDecoders() {
    QImageReader::setAllocationLimit(allocationLimit);
    // The first bytes of formats whose libraries look for plug-ins or settings of their own, and
    // a drawing in the scripts and faces that drawings are usually set in.
    QByteArray text =
        "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>"
        "<text y='9'>漢あ한😀</text>";
    for (const char* family : {"sans-serif", "serif", "monospace"})
        for (const char* weight : {"normal", "bold"})
            for (const char* style : {"normal", "italic"})
                text += QByteArray("<text y='9' font-family='") + family + "' font-weight='" +
                        weight + "' font-style='" + style + "'>Ag</text>";
    const std::pair<const char*, QByteArray> samples[] = {
        {"svg", text + "</svg>"},
        {"heic", QByteArrayLiteral("\0\0\0\x18"
                                   "ftypheic\0\0\0\0mif1heic")},
        {"avif", QByteArrayLiteral("\0\0\0\x18"
                                   "ftypavif\0\0\0\0mif1avif")},
        {"pdf",
         "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
         "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
         "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>endobj\n"
         "trailer<</Root 1 0 R>>\n%%EOF\n"},
    };
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const auto& [format, sample] : samples) {
        if (!formats.contains(format)) continue;
        QBuffer buffer;
        buffer.setData(sample);
        buffer.open(QIODevice::ReadOnly);
        static_cast<void>(QImageReader(&buffer, format).read());
    }
}

}  // namespace vell
