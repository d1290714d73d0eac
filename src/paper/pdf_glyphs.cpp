// SPDX-License-Identifier: MIT
#include "paper/pdf_glyphs.h"

#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <cmath>

namespace vell {
namespace {

constexpr size_t mostGlyphs = 256;  // of one font
constexpr int imageEm = 136;        // pixels: what colour fonts are drawn in
constexpr int mostMappings = 100;   // in one block of a character map

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

const PdfGlyphs::Face& PdfGlyphs::face(const QRawFont& font) {
    const auto known = faces_.constFind(font);
    if (known != faces_.cend()) return *known;
    Face made{font, 0};
    made.font.setPixelSize(em);
    const QString name = QStringLiteral("%1|%2|%3|%4")
                             .arg(font.familyName(), font.styleName())
                             .arg(font.weight())
                             .arg(font.style());
    const auto number = faceNumbers_.constFind(font.isValid() ? name : QString());
    made.number = number == faceNumbers_.cend() ? static_cast<int>(faceNumbers_.size()) : *number;
    faceNumbers_.insert(font.isValid() ? name : QString(), made.number);
    return *faces_.insert(font, made);
}

PdfGlyphs::Code PdfGlyphs::code(const LineGlyphs& line, const GlyphCluster& cluster) {
    const auto faceOf = [&](const GlyphCluster::Glyph& glyph) {
        return face(line.fonts[static_cast<size_t>(glyph.font)]).number;
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
    if (fonts_.empty() || fonts_.back().texts.size() == mostGlyphs)
        fonts_.push_back({file_.reserve(), {}, {}, {}, {}, {}});
    Font& font = fonts_.back();
    qreal advance = 0;
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        const Face& known = face(line.fonts[static_cast<size_t>(glyph.font)]);
        const QList<QPointF> found = known.font.advancesForGlyphIndexes({glyph.index});
        const qreal size = line.fonts[static_cast<size_t>(glyph.font)].pixelSize();
        const qreal left = size > 0 ? glyph.offset.x() * em / size : 0;
        if (!found.isEmpty()) advance = std::max(advance, left + found.front().x());
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
    QPainterPath path;
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        const QRawFont& small = line.fonts[static_cast<size_t>(glyph.font)];
        if (!small.isValid()) {
            path.addPath(missingGlyph());
            continue;
        }
        const QPointF offset = glyph.offset * em / small.pixelSize();
        path.addPath(face(small).font.pathForGlyph(glyph.index).translated(offset));
    }
    const QByteArray width = QByteArray::number(advance) + " 0 ";
    if (path.isEmpty()) return width + "d0\n" + coloured(line, cluster, font);
    const QRect box = path.controlPointRect().toAlignedRect().adjusted(-1, -1, 1, 1);
    font.box |= box;
    return width + place(box.bottomLeft()) + place(box.topRight()) + "d1\n" + filled(path);
}

// Fonts in colours hold pictures; what has neither an outline nor a picture is a space.
QByteArray PdfGlyphs::coloured(const LineGlyphs& line, const GlyphCluster& cluster, Font& font) {
    if (cluster.text.trimmed().isEmpty()) return {};
    QImage image(2 * imageEm * static_cast<int>(std::min<size_t>(cluster.glyphs.size(), 8)),
                 2 * imageEm, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QPoint origin(imageEm / 2, imageEm * 3 / 2);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        QRawFont large = line.fonts[static_cast<size_t>(glyph.font)];
        if (!large.isValid()) continue;
        const qreal scale = imageEm / large.pixelSize();
        large.setPixelSize(imageEm);
        QGlyphRun run;
        run.setRawFont(large);
        run.setGlyphIndexes({glyph.index});
        run.setPositions({QPointF(0, 0)});
        painter.drawGlyphRun(origin + glyph.offset * scale, run);
    }
    painter.end();
    const PdfImages::Placed placed = images_.cropped(image);
    if (placed.object == 0) return {};
    const qreal scale = qreal{em} / imageEm;
    const QRectF area((placed.area.x() - origin.x()) * scale,
                      (placed.area.y() - origin.y()) * scale, placed.area.width() * scale,
                      placed.area.height() * scale);
    font.box |= area.toAlignedRect();
    const QByteArray name = "/X" + QByteArray::number(placed.object);
    font.images += name + ' ' + pdfReference(placed.object) + '\n';
    return "q " + pdfNumber(area.width()) + " 0 0 " + pdfNumber(area.height()) + ' ' +
           pdfNumber(area.x()) + ' ' + pdfNumber(-area.y() - area.height()) + " cm " + name +
           " Do Q\n";
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
