#pragma once
// SPDX-License-Identifier: MIT
//
// RowContext: what every row needs beside its own event to be measured and painted: fonts, colours,
// the screen's device ratio and the caches. Owned by the timeline; rows only borrow it.

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QPoint>
#include <QRect>
#include <Qt>
#include <cmath>

#include "toolkit/emoji.h"

namespace vell {

class BackgroundCache;
class BubbleColors;
class ContactsStore;
class PictureCache;
class TextTiles;

/// Points: the default distance between things in a stack, and around them.
inline constexpr qreal standardSpacing = 8;
inline constexpr qreal standardPadding = 16;

struct RowFonts {
    QFont message;  ///< the user's timeline font, for bubbles and system lines
    QFont body;     ///< the desktop's application font, for separators
    QFont boldBody;
    QFont footnote;  ///< ten thirteenths of the body, for captions
    QString emojiFamily = vell::emojiFamily();

    /// The message font is the body's family, `fontSize` points high; sizes that no font can have
    /// are brought to the nearest that one can.
    static RowFonts make(const QFont& application, qint64 fontSize);
};

struct RowColors {
    QColor label;
    QColor secondaryLabel;
    QColor separator;
    QColor background;
    QColor highlight;
    QColor highlightedText;

    static RowColors make(const QPalette& palette);
};

struct RowContext {
    RowFonts fonts;
    RowColors colors;
    qreal ratio = 1;  ///< device pixels a point
    Qt::LayoutDirection direction = Qt::LeftToRight;
    const ContactsStore& contacts;
    BubbleColors& bubbleColors;
    BackgroundCache& backgrounds;
    TextTiles& textTiles;
    PictureCache& pictures;

    /// A length in points as whole device pixels.
    [[nodiscard]] int px(qreal points) const {
        return static_cast<int>(std::lround(points * ratio));
    }
    /// A place in points in device pixels.
    [[nodiscard]] QPoint toDevice(QPoint point) const { return (QPointF(point) * ratio).toPoint(); }
    /// The device pixels that an area in points touches.
    [[nodiscard]] QRect touchedPixels(const QRect& points) const;
    /// The points that an area in device pixels touches.
    [[nodiscard]] QRect touchedPoints(const QRect& pixels) const;
};

}  // namespace vell
