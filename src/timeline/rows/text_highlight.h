#pragma once
// SPDX-License-Identifier: MIT
//
// What lies behind stretches of a text that stand out: the selection and the matches of a search.
// Their colours suit the text in front of them, whatever bubble or palette is below. The text
// itself is painted as always, so that its kept pictures go on serving.

#include <QColor>
#include <limits>
#include <span>

#include "timeline/rows/row_context.h"
#include "timeline/text/text_range.h"

class QPainter;

namespace vell {

struct RowLayout;
struct RowPaint;

enum class HighlightKind { match, selection, currentMatch };

/// A part of a row's text; a picture is one unit.
struct TextHighlight {
    /// As a range's end: the line break behind the text is highlighted, too.
    static constexpr qsizetype textEnd = std::numeric_limits<qsizetype>::max();
    TextRange range;
    HighlightKind kind = HighlightKind::selection;
    friend bool operator==(const TextHighlight&, const TextHighlight&) = default;
};

/// Paints what lies behind a row's text of this colour; the painter counts device pixels from the
/// row's top left corner.
void paintHighlights(QPainter& painter, const RowLayout& layout, const QColor& textColor,
                     const RowContext& context, const RowPaint& what);

/// What lies over a selected picture.
[[nodiscard]] QColor selectedPictureColor(const RowContext& context);

}  // namespace vell
