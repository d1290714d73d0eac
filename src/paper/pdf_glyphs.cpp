// SPDX-License-Identifier: MIT
#include "paper/pdf_glyphs.h"

#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "paper/color_glyph.h"

namespace vell {
namespace {

constexpr size_t mostFontGlyphs = 256;  // of one font
constexpr int mostMappings = 100;       // in one block of a character map

int units(qreal number) {
    return static_cast<int>(std::lround(number));
}

QByteArray place(QPointF point) {
    return QByteArray::number(units(point.x())) + ' ' + QByteArray::number(units(-point.y())) + ' ';
}

QByteArray filled(const QPainterPath& path) {
    QByteArray content;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        switch (element.type) {
            case QPainterPath::MoveToElement:
                content += place(element) + "m\n";
                break;
            case QPainterPath::LineToElement:
                content += place(element) + "l\n";
                break;
            case QPainterPath::CurveToElement:
                content += place(element) + place(path.elementAt(i + 1)) +
                           place(path.elementAt(i + 2)) + "c\n";
                i += 2;
                break;
            case QPainterPath::CurveToDataElement:
                break;
        }
    }
    return content.isEmpty() ? content : content + "f\n";
}

/// What a font has no glyph for.
QPainterPath missingGlyph() {
    QPainterPath path;
    path.addRect(80, -700, 440, 700);
    QPainterPath inside;
    inside.addRect(130, -650, 340, 600);
    path.addPath(inside.toReversed());
    return path;
}

QByteArray characterMap(const std::vector<QString>& texts) {
    QByteArray map(
        "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
        "/CMapName /Text def\n/CMapType 2 def\n"
        "1 begincodespacerange\n<00> <ff>\nendcodespacerange\n");
    for (size_t from = 0; from < texts.size(); from += mostMappings) {
        const size_t to = std::min(from + mostMappings, texts.size());
        map += QByteArray::number(static_cast<qint64>(to - from)) + " beginbfchar\n";
        for (size_t code = from; code < to; ++code) {
            // Without the mark of byte order that texts elsewhere begin with.
            const QByteArray text = '<' + pdfText(texts[code]).sliced(sizeof("<feff") - 1);
            map += pdfBytes(QByteArray(1, static_cast<char>(code))) + ' ' + text + '\n';
        }
        map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

}  // namespace

int PdfGlyphs::face(const QRawFont& font) {
    const auto known = faces_.constFind(font);
    if (known != faces_.cend()) return *known;
    const QString name = font.isValid() ? QStringLiteral("%1|%2|%3|%4")
                                              .arg(familyOf(font), font.styleName())
                                              .arg(font.weight())
                                              .arg(font.style())
                                        : QString();
    if (!faceNumbers_.contains(name))
        faceNumbers_.insert(name, static_cast<int>(faceNumbers_.size()));
    return *faces_.insert(font, faceNumbers_.value(name));
}

PdfGlyphs::Code PdfGlyphs::code(const LineGlyphs& line, const GlyphCluster& cluster) {
    const auto faceOf = [&](const GlyphCluster::Glyph& glyph) {
        return face(line.fonts[static_cast<size_t>(glyph.font)]);
    };
    if (cluster.glyphs.size() == 1 && cluster.text.size() == 1) {
        const GlyphCluster::Glyph& glyph = cluster.glyphs.front();
        const quint64 key = static_cast<quint64>(faceOf(glyph)) << 48 |
                            static_cast<quint64>(glyph.index) << 16 | cluster.text[0].unicode();
        const auto known = plain_.constFind(key);
        return known != plain_.cend() ? *known : *plain_.insert(key, add(line, cluster));
    }
    QByteArray key = cluster.text.toUtf8();
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        const qreal size = line.fonts[static_cast<size_t>(glyph.font)].pixelSize();
        const qreal scale = size > 0 ? em / size : 0;
        key += '\0' + QByteArray::number(faceOf(glyph)) + ' ' + QByteArray::number(glyph.index) +
               ' ' + place(glyph.offset * scale);
    }
    const auto known = others_.constFind(key);
    return known != others_.cend() ? *known : *others_.insert(key, add(line, cluster));
}

PdfGlyphs::Code PdfGlyphs::add(const LineGlyphs& line, const GlyphCluster& cluster) {
    if (fonts_.empty() || fonts_.back().texts.size() == mostFontGlyphs)
        fonts_.push_back({file_.reserve(), {}, {}, {}, {}, {}});
    Font& font = fonts_.back();
    qreal advance = 0;
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        const QRawFont& raw = line.fonts[static_cast<size_t>(glyph.font)];
        if (!raw.isValid()) continue;
        const QList<QPointF> found = raw.advancesForGlyphIndexes({glyph.index});
        const qreal right = glyph.offset.x() + (found.isEmpty() ? 0 : found.front().x());
        advance = std::max(advance, right * em / raw.pixelSize());
    }
    const Code code{static_cast<int>(fonts_.size()) - 1, static_cast<uchar>(font.texts.size()),
                    units(advance)};
    const int procedure = file_.reserve();
    file_.writeStream(procedure, "", outline(line, cluster, code.advance, font));
    font.procedures += "/c" + QByteArray::number(code.code) + ' ' + pdfReference(procedure) + '\n';
    font.advances.push_back(code.advance);
    font.texts.push_back(cluster.text.toString());
    return code;
}

QByteArray PdfGlyphs::outline(const LineGlyphs& line, const GlyphCluster& cluster, int advance,
                              Font& font) {
    const QByteArray width = QByteArray::number(advance) + " 0 ";
    if (isColored(line, cluster)) return width + "d0\n" + colored(line, cluster, font);
    QPainterPath path;
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        const QRawFont& raw = line.fonts[static_cast<size_t>(glyph.font)];
        if (!raw.isValid()) {
            path.addPath(missingGlyph());
            continue;
        }
        const qreal scale = em / raw.pixelSize();
        const QPainterPath unscaled = raw.pathForGlyph(glyph.index).translated(glyph.offset);
        path.addPath(QTransform::fromScale(scale, scale).map(unscaled));
    }
    if (path.isEmpty()) return width + "0 0 0 0 d1\n";
    const QRect box = path.controlPointRect().toAlignedRect().adjusted(-1, -1, 1, 1);
    font.box |= box;
    return width + place(box.bottomLeft()) + place(box.topRight()) + "d1\n" + filled(path);
}

QByteArray PdfGlyphs::colored(const LineGlyphs& line, const GlyphCluster& cluster, Font& font) {
    const ColorGlyph glyph = colorGlyph(line, cluster);
    if (glyph.image.isNull()) return {};
    constexpr qreal scale = qreal{em} / ColorGlyph::em;
    const QRectF area(glyph.origin * scale, QSizeF(glyph.image.size()) * scale);
    font.box |= area.toAlignedRect();
    const int object = images_.drawing(glyph.image);
    const QByteArray name = "/X" + QByteArray::number(object);
    font.images += name + ' ' + pdfReference(object) + '\n';
    return "q " + pdfNumber(area.width()) + " 0 0 " + pdfNumber(area.height()) + ' ' +
           pdfNumber(area.x()) + ' ' + pdfNumber(-area.bottom()) + " cm " + name + " Do Q\n";
}

void PdfGlyphs::writeFont(const Font& font) {
    const int map = file_.reserve();
    file_.writeStream(map, "", characterMap(font.texts));
    QByteArray widths;
    QByteArray names;
    for (size_t i = 0; i < font.advances.size(); ++i) {
        widths += QByteArray::number(font.advances[i]) + ' ';
        names += "/c" + QByteArray::number(static_cast<int>(i)) + ' ';
    }
    const QByteArray box = place(font.box.bottomLeft()) + place(font.box.topRight());
    file_.write(font.object,
                "<< /Type /Font /Subtype /Type3 /FontMatrix [0.001 0 0 0.001 0 0]\n/FontBBox [" +
                    box + "]\n/FirstChar 0 /LastChar " +
                    QByteArray::number(static_cast<qint64>(font.advances.size()) - 1) +
                    "\n/Widths [" + widths + "]\n/Encoding << /Type /Encoding /Differences [0 " +
                    names + "] >>\n/Resources << /XObject << " + font.images +
                    ">> >>\n/CharProcs << " + font.procedures + ">>\n/ToUnicode " +
                    pdfReference(map) + " >>");
}

void PdfGlyphs::finish() {
    for (const Font& font : fonts_)
        writeFont(font);
}

}  // namespace vell
