#pragma once
// SPDX-License-Identifier: MIT
//
// PdfCanvas: writes pages into a PDF, each as soon as it is complete. Serves one thread.
//
//     PdfCanvas canvas(device, format);
//     canvas.beginPage();
//     canvas.fill(…);
//     canvas.endPage();
//     canvas.finish(title, language);

#include <QByteArray>
#include <QHash>
#include <set>
#include <vector>

#include "paper/bubble_parts.h"
#include "paper/canvas.h"
#include "paper/paper_format.h"
#include "paper/pdf_file.h"
#include "paper/pdf_glyphs.h"
#include "paper/pdf_images.h"
#include "paper/pdf_outline.h"

namespace vell {

class PdfCanvas final : public PaperCanvas {
  public:
    /// What writes throws PdfFile::WriteFailed.
    PdfCanvas(QIODevice& device, const PaperFormat& format);

    void beginPage();
    void endPage();
    /// Ends the document.
    void finish(const QString& title, const QString& language);
    /// An entry of the outline that leads to a place on this page.
    void mark(int level, const QString& title, int top);

    void fill(const QRect& area, const QColor& color, qreal radius) override;
    void bubble(const QRect& frame, Style::Aqua aqua,
                ChatBubbleShape::Direction direction) override;
    void drawing(const QRect& area, const QImage& image) override;
    void photo(const QRect& area, const QImage& image, qreal radius) override;
    void text(const LaidOutText& text, QPoint origin, int from, int to,
              const QColor& color) override;
    void link(const QRect& area, const QString& address) override;

  private:
    /// The objects of a bubble's parts.
    struct Background {
        int left;
        int middle;
        int right;
    };

    void showImage(int object, const QRectF& area);
    void showLine(const LineGlyphs& line, QPointF origin, qreal ratio);
    void outlineOf(const QRectF& area, qreal radius);
    void setFill(const QColor& color);

    PdfFile file_;
    PdfImages images_;
    PdfGlyphs glyphs_;
    PaperFormat format_;
    int pageTree_;
    QHash<BubbleKey, Background> backgrounds_;
    std::vector<int> pages_;
    std::vector<OutlineEntry> outline_;

    // Of the page that is being painted.
    int page_ = 0;
    QByteArray content_;
    QByteArray links_;
    std::set<int> usedImages_;
    std::set<int> usedFonts_;
    QColor fillColor_;
};

}  // namespace vell
