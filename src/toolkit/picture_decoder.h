#pragma once
// SPDX-License-Identifier: MIT
//
// Makes pixels of pictures: upright, the first one of those that hold several, and not larger than
// they are needed. All functions may be called on any thread at the same time; a picture that
// can't be drawn comes back with the reason in words, never as an exception. Drawings (SVG, PDF)
// need a program with fonts, so one without a QGuiApplication gets the reason instead.
//
//     const DecodedPicture decoded = decodePicture(picture, bubble.size() * ratio);

#include <QSize>
#include <QString>

#include "foundation/picture.h"
#include "toolkit/drawn_picture.h"

namespace vell {

struct DecodedPicture {
    DrawnPicture picture;
    /// Why there is none, for people; empty when there is one.
    QString problem;

    explicit operator bool() const { return problem.isEmpty(); }
};

/// Decodes the picture at the size in pixels that it is wanted in, or at its own when that is
/// smaller or none is given. The mode says how the wanted size is meant; drawings are enlarged.
[[nodiscard]] DecodedPicture decodePicture(const foundation::Picture& picture, QSize wanted = {},
                                           Qt::AspectRatioMode mode = Qt::KeepAspectRatio);

/// Width and height in pixels as it will be drawn, cameras held upright again; empty when nobody
/// can tell. Reads headers only.
[[nodiscard]] QSize drawnSize(const foundation::Picture& picture);

}  // namespace vell
