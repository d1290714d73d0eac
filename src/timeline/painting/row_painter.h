#pragma once
// SPDX-License-Identifier: MIT
//
// RowPainter: paints the rows that are on the screen. Once they have been scrolled it keeps a
// picture of them, moves that with the rows, and paints only what comes in or looks different. GUI
// thread only.

#include "timeline/painting/scrolled_image.h"
#include "timeline/painting/visible_pieces.h"

class QPainter;

namespace vell {

class RowPainter {
  public:
    /// All must outlive it.
    RowPainter(const TimelineLayout& layout, const RowContext& context,
               SelectionController& selection, const GifPlayer& player)
        : layout_(layout), context_(context), selection_(selection), player_(player) {}

    /// Paints a part of a viewport of this size; the painter counts its device pixels.
    void paint(QPainter& painter, QSize viewport, const QRect& part);
    /// To be called when rows look different though their layouts are the same, and while nothing
    /// of them is seen: lets go of the picture.
    void reset();

  private:
    void update(QSize viewport);
    void paintAll(QPainter& painter, const QRect& part) const;
    void paintBackground(QPainter& painter, const QRect& part) const;
    void paintRows(QPainter& painter, const QRect& part) const;

    const TimelineLayout& layout_;
    const RowContext& context_;
    SelectionController& selection_;
    const GifPlayer& player_;
    VisiblePieces painted_;
    ScrolledImage image_;
};

}  // namespace vell
