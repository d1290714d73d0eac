#pragma once
// SPDX-License-Identifier: MIT
//
// The rows that mark a new session, day and minute. Their fonts are the desktop's, whatever the
// size of the messages.

#include <QString>

#include "foundation/date.h"
#include "timeline/rows/row_context.h"
#include "timeline/rows/row_layout.h"

namespace vell {

/// A line across the row, interrupted by the date.
struct DaySeparatorView {
    foundation::Date timestamp;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
    friend bool operator==(const DaySeparatorView&, const DaySeparatorView&) = default;
};

/// The name of the file that the following messages are from, on a field that can be clicked.
struct SessionHeadingView {
    QString name;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

/// The time, centred.
struct TimeSeparatorView {
    foundation::Date timestamp;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
    friend bool operator==(const TimeSeparatorView&, const TimeSeparatorView&) = default;
};

}  // namespace vell
