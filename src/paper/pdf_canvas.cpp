// SPDX-License-Identifier: MIT
#include "paper/pdf_canvas.h"

#include <QTextLayout>
#include <QUrl>
#include <algorithm>
#include <cmath>

#include "paper/glyph_clusters.h"
#include "timeline/text/laid_out_text.h"

namespace vell {
namespace {

// How far from a corner the handles of a quarter of a circle are, as a part of the radius.
constexpr qreal roundHandle = 0.4477;
constexpr qreal missingSize = 16;  // points of the layout, where there is no font at all

QByteArray numbers(std::initializer_list<qreal> all) {
    QByteArray text;
    for (const qreal number : all)
        text += pdfNumber(number) + ' ';
    return text;
}

}  // namespace

PdfCanvas::PdfCanvas(QIODevice& device, const PaperFormat& format)
    : file_(device),
      images_(file_),
      glyphs_(file_, images_),
      format_(format),
      pageTree_(file_.reserve()) {}

void PdfCanvas::beginPage() {
    page_ = file_.reserve();
    pages_.push_back(page_);
    fillColor_ = QColor();
    // From here on as rows are laid out: device pixels, downwards from the upper margin.
    content_ = numbers({PaperFormat::scale, 0, 0, -PaperFormat::scale, PaperFormat::margin,
                        format_.sheet.height() - PaperFormat::margin}) +
               "cm\n";
    links_.clear();
    usedImages_.clear();
    usedFonts_.clear();
}

void PdfCanvas::endPage() {
    const int content = file_.reserve();
    file_.writeStream(content, "", content_);
    QByteArray fonts;
    for (const int font : usedFonts_)
        fonts += "/F" + QByteArray::number(font) + ' ' + pdfReference(glyphs_.object(font)) + ' ';
    QByteArray images;
    for (const int image : usedImages_)
        images += "/X" + QByteArray::number(image) + ' ' + pdfReference(image) + ' ';
    QByteArray value = "<< /Type /Page /Parent " + pdfReference(pageTree_) + " /MediaBox [0 0 " +
                       numbers({format_.sheet.width(), format_.sheet.height()}) + "]\n/Contents " +
                       pdfReference(content) + "\n/Resources << /Font << " + fonts +
                       ">> /XObject << " + images + ">> >>";
    if (!links_.isEmpty()) value += "\n/Annots [" + links_ + ']';
    file_.write(page_, value + " >>");
}

void PdfCanvas::finish(const QString& title, const QString& language) {
    glyphs_.finish();
    QByteArray kids;
    for (const int page : pages_)
        kids += pdfReference(page) + '\n';
    file_.write(pageTree_, "<< /Type /Pages /Count " +
                               QByteArray::number(static_cast<qint64>(pages_.size())) +
                               " /Kids [\n" + kids + "] >>");
    QByteArray catalog = "<< /Type /Catalog /Pages " + pdfReference(pageTree_) + " /Lang " +
                         pdfText(language) + " /ViewerPreferences << /DisplayDocTitle true >>";
    if (const int outline = writeOutline(file_, outline_); outline != 0)
        catalog += " /Outlines " + pdfReference(outline) + " /PageMode /UseOutlines";
    const int information = file_.write("<< /Title " + pdfText(title) + " /Creator " +
                                        pdfText(QStringLiteral("Vell")) + " >>");
    file_.finish(file_.write(catalog + " >>"), information);
}

void PdfCanvas::mark(int level, const QString& title, int top) {
    outline_.push_back({level, title, page_,
                        format_.sheet.height() - PaperFormat::margin - top * PaperFormat::scale});
}

void PdfCanvas::setFill(const QColor& color) {
    if (color == fillColor_) return;
    fillColor_ = color;
    content_ += numbers({color.redF(), color.greenF(), color.blueF()}) + "rg\n";
}

void PdfCanvas::outlineOf(const QRectF& area, qreal radius) {
    if (radius <= 0) {
        content_ += numbers({area.x(), area.y(), area.width(), area.height()}) + "re ";
        return;
    }
    const qreal r = std::min({radius, area.width() / 2, area.height() / 2});
    const qreal h = r * roundHandle;
    const qreal left = area.left();
    const qreal top = area.top();
    const qreal right = area.right();
    const qreal bottom = area.bottom();
    content_ += numbers({left + r, top}) + "m " + numbers({right - r, top}) + "l " +
                numbers({right - h, top, right, top + h, right, top + r}) + "c " +
                numbers({right, bottom - r}) + "l " +
                numbers({right, bottom - h, right - h, bottom, right - r, bottom}) + "c " +
                numbers({left + r, bottom}) + "l " +
                numbers({left + h, bottom, left, bottom - h, left, bottom - r}) + "c " +
                numbers({left, top + r}) + "l " +
                numbers({left, top + h, left + h, top, left + r, top}) + "c ";
}

void PdfCanvas::fill(const QRect& area, const QColor& color, qreal radius) {
    setFill(color);
    outlineOf(area, radius);
    content_ += "f\n";
}

void PdfCanvas::showImage(int object, const QRectF& area) {
    usedImages_.insert(object);
    content_ += "q " + numbers({area.width(), 0, 0, -area.height(), area.x(), area.bottom()}) +
                "cm /X" + QByteArray::number(object) + " Do Q\n";
}

void PdfCanvas::bubble(const QRect& frame, Style::Aqua aqua, ChatBubbleShape::Direction direction) {
    const BubbleKey key = bubbleKey(frame, aqua, direction);
    auto known = backgrounds_.constFind(key);
    if (known == backgrounds_.cend()) {
        const BubbleParts parts = makeBubbleParts(key);
        known =
            backgrounds_.insert(key, {images_.drawing(parts.left), images_.drawing(parts.middle),
                                      images_.drawing(parts.right)});
    }
    const BubblePlaces places = bubblePlaces(frame, key);
    showImage(known->middle, places.middle);
    showImage(known->left, places.left);
    showImage(known->right, places.right);
}

void PdfCanvas::drawing(const QRect& area, const QImage& image) {
    showImage(images_.drawing(image), area);
}

void PdfCanvas::photo(const QRect& area, const QImage& image, qreal radius) {
    content_ += "q ";
    outlineOf(area, radius);
    content_ += "W n\n";
    const QSizeF shown = QSizeF(image.size()).scaled(area.size(), Qt::KeepAspectRatio);
    const QPointF corner = QRectF(area).center() - QPointF(shown.width(), shown.height()) / 2;
    showImage(images_.photo(image), QRectF(corner, shown));
    content_ += "Q\n";
}

void PdfCanvas::text(const LaidOutText& text, QPoint origin, int from, int to,
                     const QColor& color) {
    setFill(color);
    text.forEachLine(from, to, [&](const QTextLine& line, QStringView content, int top) {
        const qreal ratio = text.format().ratio;
        const QPointF corner = origin + QPointF(0, top);
        showLine(lineGlyphs(line, content), corner, ratio);
        if (!text.format().isUnderlined) return;
        const QPointF start = corner + QPointF(line.x(), line.y() + line.ascent() + 1.5) * ratio;
        outlineOf(QRectF(start, QSizeF(line.naturalTextWidth(), 1) * ratio), 0);
        content_ += "f\n";
    });
}

void PdfCanvas::showLine(const LineGlyphs& line, QPointF origin, qreal ratio) {
    constexpr qreal nearness = 0.01;
    QByteArray shown;
    int font = -1;
    qreal size = 0;
    qreal baseline = 0;
    qreal x = 0;  // where the next glyph would stand
    QByteArray codes;
    const auto flush = [&] {
        if (codes.isEmpty()) return;
        shown += '[' + codes + "] TJ\n";
        codes.clear();
    };
    for (const GlyphCluster& cluster : line.clusters) {
        const PdfGlyphs::Code code = glyphs_.code(line, cluster);
        const QRawFont& raw = line.fonts[static_cast<size_t>(cluster.glyphs.front().font)];
        const qreal em = (raw.isValid() ? raw.pixelSize() : missingSize) * ratio;
        const QPointF place = origin + cluster.place * ratio;
        const bool isElsewhere = std::abs(place.y() - baseline) > nearness || font < 0;
        if (code.font != font || em != size) {
            flush();
            shown += "/F" + QByteArray::number(code.font) + ' ' + pdfNumber(em) + " Tf\n";
            usedFonts_.insert(code.font);
        }
        if (isElsewhere || code.font != font || em != size) {
            flush();
            shown += numbers({1, 0, 0, -1, place.x(), place.y()}) + "Tm\n";
            x = place.x();
        }
        font = code.font;
        size = em;
        baseline = place.y();
        const auto back = static_cast<int>(std::lround((x - place.x()) * PdfGlyphs::em / size));
        if (back != 0) codes += QByteArray::number(back);
        codes += pdfBytes(QByteArray(1, static_cast<char>(code.code)));
        x += (code.advance - back) * size / PdfGlyphs::em;
    }
    flush();
    if (!shown.isEmpty()) content_ += "BT\n" + shown + "ET\n";
}

void PdfCanvas::link(const QRect& area, const QString& address) {
    const QByteArray encoded = QUrl(address).toEncoded();
    if (encoded.isEmpty()) return;
    const qreal top = format_.sheet.height() - PaperFormat::margin;
    const auto point = [&](QPoint place) {
        return numbers({PaperFormat::margin + place.x() * PaperFormat::scale,
                        top - place.y() * PaperFormat::scale});
    };
    links_ += "<< /Type /Annot /Subtype /Link /F 4 /Border [0 0 0] /Rect [" +
              point(area.bottomLeft()) + point(area.topRight()) + "] /A << /S /URI /URI " +
              pdfBytes(encoded) + " >> >>\n";
}

}  // namespace vell
