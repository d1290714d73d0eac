#pragma once
// SPDX-License-Identifier: MIT
//
// IconGenerator: a small picture for senders without one, always the same for the same identity.
// Generators keep no state and may be used from any thread. Sizes are finite, positive and small;
// anything else is a bug and stops the program.
//
//     const std::optional<QImage> picture = Identicon().icon(userID, Style::userIconSize, 1.0);

#include <QByteArrayView>
#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QStringView>
#include <optional>

namespace vell {

class IconGenerator {
  public:
    virtual ~IconGenerator() = default;

    /// The picture of a number; the size counts pixels.
    [[nodiscard]] virtual QImage icon(quint32 number, QSizeF size) const = 0;

    /// The picture of a number; the size counts points, of `scale` pixels each.
    [[nodiscard]] QImage icon(quint32 number, QSizeF size, qreal scale) const;
    /// The picture of the bytes' hash.
    [[nodiscard]] QImage icon(QByteArrayView data, QSizeF size, qreal scale) const;
    /// The picture of the text's UTF-8 bytes; nothing when it has none (a lone surrogate).
    [[nodiscard]] std::optional<QImage> icon(QStringView string, QSizeF size, qreal scale) const;

  protected:
    IconGenerator() = default;
    IconGenerator(const IconGenerator&) = default;
    IconGenerator& operator=(const IconGenerator&) = default;
};

/// Jenkins' one-at-a-time hash; 0 for no bytes.
[[nodiscard]] quint32 jenkinsHash(QByteArrayView data);

/// An opaque colour of five bits each, red highest; bit 15 is ignored.
[[nodiscard]] QColor color(quint16 value);

/// The image stretched to a size in pixels, unchanged when it has that size already; nothing when
/// there can be no such image.
[[nodiscard]] std::optional<QImage> scale(const QImage& image, int width, int height);

/// A transparent canvas of this many pixels; stops the program when there can be none.
[[nodiscard]] QImage iconCanvas(double width, double height);

}  // namespace vell
