#pragma once
// SPDX-License-Identifier: MIT
//
// Rows that are nothing but a text between flexible spacers: how they are laid out and painted.

#include <QColor>
#include <QString>

#include "timeline/rows/row_context.h"
#include "timeline/rows/row_layout.h"

namespace vell {

enum class LineSide { left, center, right };

/// The text at its side of the row; it wraps where the spacers can't shrink any more.
[[nodiscard]] RowLayout measureLine(const QString& text, const QFont& font, LineSide side,
                                    const RowContext& context, int width);

/// Paints the layout's text in one colour, on its highlights.
void paintLine(QPainter& painter, const RowLayout& layout, const QColor& color,
               const RowContext& context, const RowPaint& what);

}  // namespace vell
