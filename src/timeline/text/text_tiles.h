#pragma once
// SPDX-License-Identifier: MIT
//
// TextTiles: pictures of text with its blurred shadow, so that scrolling draws no glyph twice. A
// tile is a band of a message, never higher than `tileHeight` device pixels; the cache is bounded
// in bytes. Clear it when fonts, colours, widths or the ratio change. GUI thread only.

#include <QCache>
#include <QColor>
#include <QImage>
#include <QRect>
#include <memory>
#include <vector>

#include "timeline/text/laid_out_text.h"
#include "toolkit/style.h"

class QPainter;

namespace vell {

struct TextColors {
    QColor text;
    Style::TextShadow shadow;
};

/// Draws the part of a text that `visible` shows, with its shadow, directly; what is outside may be
/// drawn or not. All in device pixels. Shadows are black or white and lie straight below.
void paintShadowedText(QPainter& painter, const LaidOutText& text, QPoint origin,
                       const QRect& visible, const TextColors& colors, qreal ratio);

class TextTiles {
  public:
    static constexpr int tileHeight = 256;
    static constexpr qsizetype defaultBytes = qsizetype(64) * 1024 * 1024;

    explicit TextTiles(qsizetype maxBytes = defaultBytes) : tiles_(maxBytes) {}

    /// As paintShadowedText(), from kept tiles where there are any. `id` identifies the text.
    void paint(QPainter& painter, qint64 id, const LaidOutText& text, QPoint origin,
               const QRect& visible, const TextColors& colors, qreal ratio);
    void clear() { tiles_.clear(); }
    [[nodiscard]] qsizetype byteCount() const { return tiles_.totalCost(); }

  private:
    struct Key {
        qint64 id;
        qsizetype block;  ///< of a long text; its others may still change their heights
        int band;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.id, key.block, key.band);
        }
    };

    /// What of a tile isn't empty: the rows of glyphs, without the spacing between lines.
    struct Tile {
        struct Rows {
            int top;
            int height;
        };
        explicit Tile(QImage image);
        QImage image;
        std::vector<Rows> rows;
    };

    QCache<Key, Tile> tiles_;
};

}  // namespace vell
