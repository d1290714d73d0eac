#pragma once
// SPDX-License-Identifier: MIT
//
// PaperFormat: a sheet, its margins, and how large a chat's device pixels are on it.

#include <QLocale>
#include <QPageSize>
#include <QSize>
#include <QSizeF>

namespace vell {

struct PaperFormat {
    /// Device pixels a point of the rows' layout.
    static constexpr qreal ratio = 2;
    /// Points of the paper (1/72 inch) a device pixel: messages of 16 points are printed in 10.
    static constexpr qreal scale = 10.0 / 16 / ratio;
    /// On all sides, in points of the paper; page headings and numbers stand within the rest.
    static constexpr qreal margin = 40;

    QSizeF sheet;  ///< in points of the paper

    [[nodiscard]] static PaperFormat of(const QPageSize& size) {
        return {size.size(QPageSize::Point)};
    }
    /// What is between the margins, in device pixels.
    [[nodiscard]] QSize area() const;
};

/// The paper that is usual where the locale is spoken: letter or A4.
[[nodiscard]] QPageSize usualPaper(const QLocale& locale);

}  // namespace vell
