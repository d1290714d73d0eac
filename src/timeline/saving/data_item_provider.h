#pragma once
// SPDX-License-Identifier: MIT
//
// DataItemProvider: the bytes of a picture for another program, under their own type and no other.
// Nothing is ever converted. Each request is printed, which helps to see what a
// program that refuses a picture was looking for.

#include <QMimeData>
#include <QString>
#include <QStringList>
#include <memory>

#include "foundation/data.h"
#include "transcript/chat_log.h"

namespace vell {

class DataItemProvider {
  public:
    /// The requested type isn't that of the data.
    struct FailedToProvidePasteboardImage {};
    /// Who may see a representation.
    enum class Visibility { all, ownProcess };

    /// The type is a uniform type identifier.
    DataItemProvider(foundation::Data data, QString type);

    /// What a provider can have to write: the types of all pictures that are recognised.
    [[nodiscard]] static QStringList writableTypeIdentifiers();
    /// What this one writes: its own type.
    [[nodiscard]] QStringList writableTypeIdentifiersForItemProvider() const { return {type_}; }
    [[nodiscard]] Visibility itemProviderVisibilityForRepresentation(const QString& type) const;
    /// The bytes as they are; throws FailedToProvidePasteboardImage.
    [[nodiscard]] const foundation::Data& loadData(const QString& type) const;

  private:
    foundation::Data data_;
    QString type_;
};

/// The MIME type of a picture's uniform type identifier. The identifier of pictures in general, and
/// what is no identifier at all, takes the type of the bytes; an unknown one stands for itself.
[[nodiscard]] QString pictureMimeType(const TesselChatLog::Image& image);

/// A file name for the picture that is safe to write.
[[nodiscard]] QString pictureFileName(const TesselChatLog::Image& image);

/// The picture for a clipboard: one type of data.
[[nodiscard]] std::unique_ptr<QMimeData> pictureForCopying(const TesselChatLog::Image& image);
/// The picture for dragging. The desktop has no promise of a file, so there is the address of one
/// beside the data; it is written on request.
[[nodiscard]] std::unique_ptr<QMimeData> pictureForDragging(const TesselChatLog::Image& image);

}  // namespace vell
