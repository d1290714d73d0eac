#pragma once
// SPDX-License-Identifier: MIT
//
// DrawnPicture: a picture as pixels, ready to be painted. A plain value; any thread may make one.

#include <QImage>
#include <QMarginsF>
#include <QSizeF>

namespace vell {

struct DrawnPicture {
    QImage image;
    /// Only its shape matters; it is painted in another colour.
    bool isTemplate = false;

    /// A new picture of this size in points, `devicePixelRatio` pixels each: this one stretched to
    /// what the insets leave, around it nothing. Its sides needn't keep their proportion.
    [[nodiscard]] DrawnPicture qxResize(QSizeF size, QMarginsF inset = {},
                                        qreal devicePixelRatio = 1) const;

    friend bool operator==(const DrawnPicture&, const DrawnPicture&) = default;
};

}  // namespace vell
