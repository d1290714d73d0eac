#pragma once
// SPDX-License-Identifier: MIT
//
// Picture: bytes that are recognised as a picture by their own header, with format and size. A
// table of ours decides, so that a transcript has the same events on every machine, and no
// third-party decoder runs while one is loaded. Drawing belongs to the toolkit.

#include <QSize>
#include <optional>

#include "foundation/stored_data.h"

namespace foundation {

enum class PictureFormat {
    png,
    jpeg,
    gif,
    tiff,
    bmp,
    ico,
    icns,
    webp,
    heic,
    avif,
    photoshop,
    jpeg2000,
    pict,
    pdf,
    svg,
};

/// A short name for people: "PNG", "JPEG 2000" …
[[nodiscard]] const char* name(PictureFormat format);
/// "image/png" …
[[nodiscard]] const char* mimeType(PictureFormat format);
/// The usual file extension without a dot: "png" …
[[nodiscard]] const char* fileExtension(PictureFormat format);

/// What of a picture's header matters only when it is shown.
struct PictureTraits {
    bool isTurned = false;
    bool isAnimated = false;
    int pixelsPerPoint = 1;
    friend bool operator==(const PictureTraits&, const PictureTraits&) = default;
};

struct Picture {
    StoredData data;
    PictureFormat format = PictureFormat::png;
    /// Width and height in pixels; absent where they are not cheap to find.
    std::optional<QSize> pixelSize;
    /// Known beforehand where the data aren't in memory.
    std::optional<PictureTraits> traits = {};

    friend bool operator==(const Picture&, const Picture&) = default;
};

/// The picture these bytes hold, or nothing. Looks at headers only, in time that does not grow with
/// the pixels.
[[nodiscard]] std::optional<Picture> recognisePicture(const Data& data);

/// Whether the file asks for a rotation by 90 or 270 degrees, as cameras held upright do.
[[nodiscard]] bool isTurned(const Picture& picture);

}  // namespace foundation
