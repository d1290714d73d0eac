#pragma once
// SPDX-License-Identifier: MIT
//
// From bytes to pixels, with the platform's decoders. Bytes may be anything; a decoder may then
// crash, hang or take all memory there is, so this runs in the confined process only.

#include <QImage>
#include <QString>

#include "foundation/data.h"

namespace vell {

struct Drawn {
    QImage image;  ///< RGB32 or ARGB32_Premultiplied; null where there is none
    QString problem;
};

/// The picture upright, at most in the size wanted. Without its proportions it fills that size
/// where it is large enough, unless its orientation differs from what its header says.
[[nodiscard]] Drawn draw(const foundation::Data& bytes, QSize wanted, bool keepsProportions);

/// In the one colour space and layout that painting is fast with.
[[nodiscard]] QImage readyToPaint(QImage image);

/// Bounds the memory of a picture, and loads in advance what decoders otherwise load from disk on
/// first use: plug-ins and fonts.
void loadDecoders();

}  // namespace vell
