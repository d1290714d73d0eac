#pragma once
// SPDX-License-Identifier: MIT
//
// PaperCanvas: what pages are painted on, one after the other: a document's pages, a printer's, or
// a picture of one. Lengths are the device pixels that rows are laid out in, from the top left
// corner of the paper less its margins.

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include "timeline/bubbles/chat_bubble_shape.h"
#include "toolkit/style.h"

namespace vell {

class LaidOutText;

class PaperCanvas {
  public:
    PaperCanvas() = default;
    PaperCanvas(const PaperCanvas&) = delete;
    PaperCanvas& operator=(const PaperCanvas&) = delete;
    virtual ~PaperCanvas() = default;

    /// Opaque colours only; the radius is that of the corners.
    virtual void fill(const QRect& area, const QColor& color, qreal radius = 0) = 0;
    virtual void bubble(const QRect& frame, Style::Aqua aqua,
                        ChatBubbleShape::Direction direction) = 0;
    /// A picture of few colours, kept exact.
    virtual void drawing(const QRect& area, const QImage& image) = 0;
    virtual void photo(const QRect& area, const QImage& image, qreal radius) = 0;
    /// The lines that touch [from, to) of a text whose top left corner is at the origin.
    virtual void text(const LaidOutText& text, QPoint origin, int from, int to,
                      const QColor& color) = 0;
    /// Makes an area lead to an address.
    virtual void link(const QRect& area, const QString& address) = 0;
};

}  // namespace vell
