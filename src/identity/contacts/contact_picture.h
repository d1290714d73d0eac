#pragma once
// SPDX-License-Identifier: MIT
//
// Pictures of contacts, scaled to the one size that they are shown at. Address books are read again
// at every change while pictures rarely change, so those of the last reads are cached by content.
// Any thread.

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <mutex>
#include <optional>

namespace vell {

/// The picture stretched to Style::userIconSize, at two pixels a point; nothing when the bytes are
/// no picture that can be decoded, or an unreasonable one.
[[nodiscard]] std::optional<QImage> contactPicture(const QByteArray& encoded);

class ContactPictureCache {
  public:
    ContactPictureCache() = default;
    ContactPictureCache(const ContactPictureCache&) = delete;
    ContactPictureCache& operator=(const ContactPictureCache&) = delete;

    /// As contactPicture() says.
    [[nodiscard]] std::optional<QImage> picture(const QByteArray& encoded);
    /// Drops what was not requested since the last call but one.
    void age();

  private:
    using Pictures = QHash<QByteArray, std::optional<QImage>>;  ///< by digest

    std::mutex mutex_;
    Pictures recent_;
    Pictures older_;
};

}  // namespace vell
