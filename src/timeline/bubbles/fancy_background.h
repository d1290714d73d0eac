#pragma once
// SPDX-License-Identifier: MIT
//
// FancyBackground: the glossy bubble behind a message, and the free functions that paint it. The
// layers, from the back:
//
//      shadow          black, below and a little around the shape
//      base gradient   clipped to the shape like everything above it
//      wide border     white, soft light, much blurred
//      narrow border   white, soft light at 0.8, less blurred
//      gloss           white, fading out downwards, inside the shape by `inset`
//
// Away from the corners nothing changes along x, and along y only the two gradients do. So masks
// are made once for a small bubble and stretched, and a finished background of one height serves
// bubbles of every width (BackgroundCache).

#include <QColor>
#include <QImage>
#include <QMargins>
#include <QSize>
#include <memory>

#include "timeline/bubbles/chat_bubble_shape.h"
#include "timeline/bubbles/coverage_mask.h"
#include "toolkit/style.h"

namespace vell {

struct FancyBackground {
    ChatBubbleShape shape;
    Style::ColorPair baseGradient;
    QMarginsF inset{2, 2, 2, 2};
};

/// The part at each end of a background, in points, beyond which nothing changes but the gradients.
inline constexpr qreal backgroundCap = 44;

/// Device pixels around a bubble that its shadow may touch.
[[nodiscard]] int backgroundMargin(qreal ratio);
/// backgroundCap in device pixels.
[[nodiscard]] int backgroundCapPixels(qreal ratio);

/// The layers' shapes for a bubble of one size, without colours.
struct BackgroundMasks {
    CoverageMask outline;
    CoverageMask shadow;
    CoverageMask wideBorder;
    CoverageMask narrowBorder;
    CoverageMask gloss;
    QSize size;  ///< of the bubble, in device pixels; the masks are larger by the margin all around

    [[nodiscard]] qsizetype byteCount() const { return 5 * outline.byteCount(); }
};

/// The masks of a bubble of this size in device pixels.
[[nodiscard]] BackgroundMasks makeBackgroundMasks(const ChatBubbleShape& shape,
                                                  const QMarginsF& inset, QSize size, qreal ratio);

/// The size of the smallest bubble whose masks, stretched, serve one of `size`.
[[nodiscard]] QSize stretchableSize(QSize size, qreal ratio);

/// Rows [firstRow, firstRow + rowCount) of the picture of a bubble `height` high, as wide as the
/// masks. Row 0 is the first of the margin above the bubble; everything is in device pixels. Masks
/// of a lower bubble are stretched at their middle row.
[[nodiscard]] QImage composeBackground(const BackgroundMasks& masks,
                                       const FancyBackground& background, int height, int firstRow,
                                       int rowCount, qreal ratio);

/// Some rows of a bubble, counted from its top edge.
struct BubbleRows {
    int height;  ///< of the bubble
    int first;
};

/// Whether `count` rows of two bubbles with these colours look alike. May say no where they do.
[[nodiscard]] bool looksAlike(const FancyBackground& background, BubbleRows a, BubbleRows b,
                              int count, qreal ratio);

}  // namespace vell
