// SPDX-License-Identifier: MIT
#include "paper/page_printing.h"

#include <QPainter>

#include "paper/page_painter.h"
#include "paper/paginator.h"
#include "paper/painter_canvas.h"

namespace vell {
namespace {

constexpr qreal pointsPerInch = 72;

}  // namespace

int printPages(const TesselChatLog& chatlog, const PaperSetup& setup, QPagedPaintDevice& device,
               const PageRange& range, const PaperProgress& progress) {
    PaperContext context(setup);
    const PagePainter pagePainter(chatlog, context, setup);
    Paginator paginator(chatlog, context, pagePainter.rowsSize());
    QPainter painter;
    if (!painter.begin(&device)) return -1;
    painter.scale(device.logicalDpiX() / pointsPerInch, device.logicalDpiY() / pointsPerInch);
    PainterCanvas canvas(painter);
    int count = 0;
    const auto all = static_cast<qsizetype>(chatlog.events().size());
    for (auto page = paginator.next(); page && page->number <= range.last;
         page = paginator.next()) {
        if (!progress(paginator.done(), all)) break;
        if (page->number < range.first) continue;
        if (count > 0 && !device.newPage()) return -1;
        pagePainter.paint(canvas, *page);
        ++count;
    }
    return painter.end() ? count : -1;
}

}  // namespace vell
