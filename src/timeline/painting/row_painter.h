#pragma once
// SPDX-License-Identifier: MIT
//
// RowPainter: paints the rows that are on the screen. After rows have moved or changed, refresh()
// moves the pixels that are there and asks for the lines that come in or look different; the paint
// event then paints these alone. GUI thread only.

#include <QRect>

#include "timeline/painting/visible_pieces.h"

class QPainter;
class QWidget;

namespace vell {

class RowPainter {
  public:
    /// What is painted over the rows, in device pixels; empty where there is none.
    struct Overlays {
        QRect ring;  ///< moves with its row
        QRect day;   ///< stands still
    };

    /// All must outlive it.
    RowPainter(QWidget& viewport, const TimelineLayout& layout, const RowContext& context,
               SelectionController& selection, const GifPlayer& player)
        : viewport_(viewport),
          layout_(layout),
          context_(context),
          selection_(selection),
          player_(player) {}

    /// Brings to the screen what has changed since it was painted.
    void refresh(const Overlays& overlays);
    /// To be called when rows look different though their layouts are the same.
    void reset() { shown_ = {}; }

    /// To be called at the start of a paint event: what was changed without a refresh() outside of
    /// the event's region is painted by another one.
    void prepare(const QRegion& region);
    /// Paints a part of the viewport; the painter counts its device pixels.
    void paint(QPainter& painter, const QRect& part) const;

  private:
    /// Returns whether the pixels could be moved, which needs whole points.
    bool movePixels(int down);
    void update(const QRegion& pixels);
    void paintBackground(QPainter& painter, const QRect& part) const;
    void paintRows(QPainter& painter, const QRect& part) const;

    QWidget& viewport_;
    const TimelineLayout& layout_;
    const RowContext& context_;
    SelectionController& selection_;
    const GifPlayer& player_;
    VisiblePieces shown_;  // once pending paint events have come
    Overlays overlays_;
};

}  // namespace vell
