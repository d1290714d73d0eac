#pragma once
// SPDX-License-Identifier: MIT
//
// The glyphs of a laid-out line, each with the text it stands for, so that what is painted can be
// read, searched and copied again. Letters that share a glyph, and glyphs that share a letter, are
// one cluster.

#include <QPointF>
#include <QRawFont>
#include <QStringView>
#include <vector>

class QTextLine;

namespace vell {

struct GlyphCluster {
    struct Glyph {
        quint32 index;
        QPointF offset;  ///< from the cluster's place
        int font;        ///< index into the line's fonts
    };
    QStringView text;
    QPointF place;  ///< on the baseline, in the layout's points
    std::vector<Glyph> glyphs;
};

struct LineGlyphs {
    std::vector<QRawFont> fonts;         ///< one may be invalid: its glyphs are none of any font
    std::vector<GlyphCluster> clusters;  ///< from left to right
};

/// Empty for the font of boxes, whose name the toolkit fails to ask for.
[[nodiscard]] QString familyOf(const QRawFont& font);

/// The glyphs of a line of the layout of this text.
[[nodiscard]] LineGlyphs lineGlyphs(const QTextLine& line, QStringView text);

}  // namespace vell
