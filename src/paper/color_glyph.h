#pragma once
// SPDX-License-Identifier: MIT
//
// Glyphs of fonts in colours, such as emoji: they have no outline and are pictures instead.

#include <QImage>
#include <QPointF>

#include "paper/glyph_clusters.h"

namespace vell {

struct ColorGlyph {
    /// Pixels an em.
    static constexpr int em = 136;

    QImage image;    ///< null where nothing is seen
    QPointF origin;  ///< of the picture's top left corner, from the cluster's place, in its pixels
};

/// Whether a cluster is of such a font. Asking that for an outline is more than useless: all its
/// glyphs then get another width.
[[nodiscard]] bool isColored(const LineGlyphs& line, const GlyphCluster& cluster);

[[nodiscard]] ColorGlyph colorGlyph(const LineGlyphs& line, const GlyphCluster& cluster);

}  // namespace vell
