#pragma once
// SPDX-License-Identifier: MIT
//
// PdfGlyphs: the fonts of a PDF, made of the glyphs that its pages show. Each glyph is an outline
// of its own together with the text that it stands for: the letters of a ligature, a letter with
// its marks, an emoji in colours. So every text can be found and copied as it was written, in all
// scripts and from any font. (Type 3 fonts; 256 glyphs each.)

#include <QByteArray>
#include <QHash>
#include <QRawFont>
#include <QString>
#include <vector>

#include "paper/glyph_clusters.h"
#include "paper/pdf_file.h"
#include "paper/pdf_images.h"

namespace vell {

class PdfGlyphs {
  public:
    /// Units an em.
    static constexpr int em = 1000;

    struct Code {
        int font;  ///< 0, 1, 2 …
        uchar code;
        int advance;  ///< in units
    };

    PdfGlyphs(PdfFile& file, PdfImages& images) : file_(file), images_(images) {}

    /// The code of a cluster of the line; its outline is written with the first.
    Code code(const LineGlyphs& line, const GlyphCluster& cluster);
    /// The object that a page's resources name.
    [[nodiscard]] int object(int font) const { return fonts_[static_cast<size_t>(font)].object; }
    /// Writes the fonts themselves.
    void finish();

  private:
    struct Font {
        int object;
        QRect box;
        QByteArray procedures;  // entries of the dictionary
        QByteArray images;
        std::vector<int> advances;
        std::vector<QString> texts;
    };
    /// The number of a face, whatever its size.
    int face(const QRawFont& font);
    Code add(const LineGlyphs& line, const GlyphCluster& cluster);
    QByteArray outline(const LineGlyphs& line, const GlyphCluster& cluster, int advance,
                       Font& font);
    QByteArray colored(const LineGlyphs& line, const GlyphCluster& cluster, Font& font);
    void writeFont(const Font& font);

    PdfFile& file_;
    PdfImages& images_;
    std::vector<Font> fonts_;
    QHash<QRawFont, int> faces_;
    QHash<QString, int> faceNumbers_;
    QHash<quint64, Code> plain_;  // one glyph that stands for one UTF-16 unit
    QHash<QByteArray, Code> others_;
};

}  // namespace vell
