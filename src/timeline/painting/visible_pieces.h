#pragma once
// SPDX-License-Identifier: MIT
//
// What a timeline shows, in pieces that look the same wherever they stand: rows, and blocks of a
// long row. Comparing what is to be shown with what was painted tells how far the rows have moved
// and which lines of the viewport must be painted again. All in device pixels of the viewport.

#include <QRegion>
#include <optional>
#include <vector>

#include "timeline/layout/timeline_layout.h"
#include "timeline/rows/text_highlight.h"
#include "toolkit/style.h"

namespace vell {

class GifPlayer;
class SelectionController;

/// All that the look of a piece depends on, and where it is.
struct VisiblePiece {
    struct Look {
        qsizetype row = 0;
        qsizetype block = 0;
        quint64 layout = 0;  ///< the row's; another one may look different
        qint64 frame = 0;    ///< of a picture that moves
        int height = 0;
        std::vector<TextHighlight> highlights;
        friend bool operator==(const Look&, const Look&) = default;
    };
    Look look;
    int top = 0;

    [[nodiscard]] int bottom() const { return top + look.height; }
    friend bool operator==(const VisiblePiece&, const VisiblePiece&) = default;
};

/// The bubble around a long text: its colours change as parts off the screen change their height.
struct LongBubble {
    qsizetype row = 0;
    QRect frame;
    Style::Aqua aqua = Style::Aqua::graphite;
    friend bool operator==(const LongBubble&, const LongBubble&) = default;
};

struct VisiblePieces {
    std::vector<VisiblePiece> pieces;  ///< top down
    std::vector<LongBubble> longBubbles;
    friend bool operator==(const VisiblePieces&, const VisiblePieces&) = default;
};

[[nodiscard]] VisiblePieces visiblePieces(const TimelineLayout& layout, const RowContext& context,
                                          SelectionController& selection, const GifPlayer& player);

struct Repaint {
    /// How far down the rows have moved; nothing when none of them is on the screen any more.
    std::optional<int> moved;
    QRegion lines;  ///< of the viewport as it is to be: what must be painted
};

/// `after` is to be painted where `before` was.
[[nodiscard]] Repaint repaintFor(const VisiblePieces& before, const VisiblePieces& after,
                                 QSize viewport, const RowContext& context);

}  // namespace vell
