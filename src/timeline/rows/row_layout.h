#pragma once
// SPDX-License-Identifier: MIT
//
// RowLayout: where the parts of one row are, for one width. Measuring makes it and painting, hit
// testing and accessibility read it. Device pixels, from the row's top left corner.

#include <QImage>
#include <QRect>
#include <memory>
#include <span>

#include "timeline/rows/text_highlight.h"
#include "timeline/text/laid_out_text.h"

namespace vell {

struct RowLayout {
    int width = 0;
    int height = 0;                     ///< 0 for a row that shows nothing
    QRect frame;                        ///< the bubble, or what stands behind a separator's label
    QRect content;                      ///< the text or the picture
    QRect icon;                         ///< the sender's picture
    std::shared_ptr<LaidOutText> text;  ///< null where the content is no text

    /// Grows or shrinks the row after blocks of its text have been measured.
    void fitText() {
        const int change = text->height() - content.height();
        content.setHeight(content.height() + change);
        if (!frame.isEmpty()) frame.setHeight(frame.height() + change);
        if (!icon.isEmpty()) icon.translate(0, change);
        height += change;
    }
};

/// What of a row is to be painted, and how.
struct RowPaint {
    qint64 id = 0;  ///< identifies the row in caches
    QRect visible;  ///< from the row's top left corner; nothing outside need be painted
    std::span<const TextHighlight> highlights;  ///< later ones over earlier ones
    const QImage* frame = nullptr;              ///< of a picture that moves, in place of its first
};

}  // namespace vell
