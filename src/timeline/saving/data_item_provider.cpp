// SPDX-License-Identifier: MIT
#include "timeline/saving/data_item_provider.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QUrl>
#include <algorithm>
#include <array>
#include <utility>

#include "foundation/print.h"
#include "timeline/rows/row_text.h"
#include "timeline/saving/private_files.h"
#include "toolkit/safe_file_name.h"

namespace vell {
namespace {

using foundation::PictureFormat;

struct KnownType {
    const char* identifier;
    PictureFormat format;
};

constexpr std::array knownTypes{
    KnownType{"public.png", PictureFormat::png},
    KnownType{"public.jpeg", PictureFormat::jpeg},
    KnownType{"com.compuserve.gif", PictureFormat::gif},
    KnownType{"public.tiff", PictureFormat::tiff},
    KnownType{"com.microsoft.bmp", PictureFormat::bmp},
    KnownType{"com.microsoft.ico", PictureFormat::ico},
    KnownType{"com.apple.icns", PictureFormat::icns},
    KnownType{"org.webmproject.webp", PictureFormat::webp},
    KnownType{"public.heic", PictureFormat::heic},
    KnownType{"public.avif", PictureFormat::avif},
    KnownType{"com.adobe.photoshop-image", PictureFormat::photoshop},
    KnownType{"public.jpeg-2000", PictureFormat::jpeg2000},
    KnownType{"com.apple.pict", PictureFormat::pict},
    KnownType{"com.adobe.pdf", PictureFormat::pdf},
    KnownType{"public.svg-image", PictureFormat::svg},
};

QString mimeName(PictureFormat format) {
    return QString::fromLatin1(foundation::mimeType(format));
}

/// The provider's data in the form that clipboards and drags carry.
class ProvidedData : public QMimeData {
  public:
    explicit ProvidedData(const TesselChatLog::Image& image)
        : data_(image.data()), type_(image.type()), mimeType_(pictureMimeType(image)) {}

    [[nodiscard]] QStringList formats() const override { return {mimeType_}; }
    [[nodiscard]] bool hasFormat(const QString& format) const override {
        return formats().contains(format);
    }

  protected:
    [[nodiscard]] QVariant retrieveData(const QString& format, QMetaType) const override {
        const QString asked = format == mimeType_ ? type_ : identifier(format);
        const DataItemProvider provider(data_.load().value_or(foundation::Data()), type_);
        // What gets this far is a request within this process.
        static_cast<void>(provider.itemProviderVisibilityForRepresentation(asked));
        try {
            return provider.loadData(asked).toByteArray();
        } catch (const DataItemProvider::FailedToProvidePasteboardImage&) {
            return {};
        }
    }

  private:
    static QString identifier(const QString& mimeType) {
        for (const KnownType& known : knownTypes) {
            if (mimeType == mimeName(known.format)) return QString::fromLatin1(known.identifier);
        }
        return mimeType;
    }

    foundation::StoredData data_;
    QString type_;
    QString mimeType_;
};

class DraggedData final : public ProvidedData {
  public:
    explicit DraggedData(const TesselChatLog::Image& image) : ProvidedData(image), image_(image) {}

    [[nodiscard]] QStringList formats() const override {
        return ProvidedData::formats() << uriList();
    }

  protected:
    [[nodiscard]] QVariant retrieveData(const QString& format, QMetaType type) const override {
        if (format != uriList()) return ProvidedData::retrieveData(format, type);
        const auto data = path_.isEmpty() ? image_.data().load() : std::nullopt;
        if (data) path_ = PrivateFiles::shared().write(pictureFileName(image_), *data);
        if (path_.isEmpty()) return {};
        const QUrl address = QUrl::fromLocalFile(path_);
        // QMimeData::urls() asks for a list, and newer versions of Qt don't make one of bytes.
        if (type.id() == QMetaType::QVariantList) return QVariantList{address};
        return address.toEncoded() + "\r\n";
    }

  private:
    static QString uriList() { return QStringLiteral("text/uri-list"); }

    TesselChatLog::Image image_;
    mutable QString path_;
};

}  // namespace

DataItemProvider::DataItemProvider(foundation::Data data, QString type)
    : data_(std::move(data)), type_(std::move(type)) {}

QStringList DataItemProvider::writableTypeIdentifiers() {
    QStringList all;
    for (const KnownType& known : knownTypes)
        all += QString::fromLatin1(known.identifier);
    return all;
}

DataItemProvider::Visibility DataItemProvider::itemProviderVisibilityForRepresentation(
    const QString& type) const {
    foundation::print(QStringLiteral("ASK FOR VIS: %1 own: %2").arg(type, type_));
    return type == type_ ? Visibility::all : Visibility::ownProcess;
}

const foundation::Data& DataItemProvider::loadData(const QString& type) const {
    foundation::print(QStringLiteral("ASK FOR: ") + type_);
    if (type != type_) throw FailedToProvidePasteboardImage();
    return data_;
}

QString pictureMimeType(const TesselChatLog::Image& image) {
    const QString& type = image.type();
    for (const KnownType& known : knownTypes) {
        if (type == QLatin1String(known.identifier)) return mimeName(known.format);
    }
    // Anything else could pass the bytes off as a list of files, say.
    static const QRegularExpression identifier(
        QStringLiteral("^[\\p{L}\\p{N}-]+(\\.[\\p{L}\\p{N}-]+)+$"));
    if (type != QLatin1String("public.image") && identifier.match(type).hasMatch()) return type;
    return mimeName(image.image().format);
}

QString pictureFileName(const TesselChatLog::Image& image) {
    return safeFileName(pictureName(image), QCoreApplication::translate("Timeline", "Picture"),
                        QString::fromLatin1(foundation::fileExtension(image.image().format)));
}

std::unique_ptr<QMimeData> pictureForCopying(const TesselChatLog::Image& image) {
    return std::make_unique<ProvidedData>(image);
}

std::unique_ptr<QMimeData> pictureForDragging(const TesselChatLog::Image& image) {
    return std::make_unique<DraggedData>(image);
}

}  // namespace vell
