#pragma once
// SPDX-License-Identifier: MIT
//
// RowPlace: what of a timeline lies below a point. Points count device pixels.

#include <QPoint>
#include <optional>

#include "timeline/input/selection.h"
#include "timeline/layout/timeline_layout.h"

namespace vell {

struct RowPlace {
    qsizetype row = 0;
    QPoint point;  ///< from the row's top left corner
    const TimelineLayout::Row* content = nullptr;

    [[nodiscard]] bool isOnText() const;
    [[nodiscard]] bool isOnPicture() const;
    /// The place between two characters that is nearest; with `character` the place before the
    /// character that is below the point.
    [[nodiscard]] TextPosition position(bool character = false) const;
};

/// The row at a point of the viewport, or the nearest; nothing in an empty log. Holds until
/// something moves.
[[nodiscard]] std::optional<RowPlace> rowPlaceAt(TimelineLayout& timeline, QPoint point);

}  // namespace vell
