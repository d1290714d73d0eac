// SPDX-License-Identifier: MIT
#include "paper/pdf_document.h"

#include <QDate>
#include <QLocale>

#include "paper/page_painter.h"
#include "paper/paginator.h"
#include "paper/pdf_canvas.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

constexpr qint64 secondsPerDay = 86'400;

/// Marks years, months and days in the outline as they begin.
class DayMarks {
  public:
    explicit DayMarks(PdfCanvas& canvas) : canvas_(canvas) {}

    void add(foundation::Date timestamp, int top) {
        const auto second = calendar_.localSecond(timestamp);
        if (!second) return;
        const qint64 days = (*second - (*second < 0 ? secondsPerDay - 1 : 0)) / secondsPerDay;
        const QDate day = QDate(1970, 1, 1).addDays(days);
        if (!day.isValid() || day == last_) return;
        const bool isNewYear = !last_.isValid() || day.year() != last_.year();
        if (isNewYear) canvas_.mark(0, QString::number(day.year()), top);
        if (isNewYear || day.month() != last_.month())
            canvas_.mark(1, QLocale().standaloneMonthName(day.month()), top);
        canvas_.mark(2, dayFormatter().string(timestamp), top);
        last_ = day;
    }

  private:
    PdfCanvas& canvas_;
    foundation::Calendar calendar_ = sharedCalendar();
    QDate last_;
};

/// Whether a row is what a message is counted by: the end of its first piece.
bool countsAsMessage(const TesselChatLog& chatlog, const PaperRow& row) {
    return chatlog.event(row.event).isMessage() && row.isLast &&
           !chatlog.continuesMessage(static_cast<size_t>(row.event));
}

}  // namespace

PdfResult writePdf(const TesselChatLog& chatlog, const PaperSetup& setup, QIODevice& device,
                   const PaperProgress& progress, const PageRange& range) {
    PaperContext context(setup);
    const PagePainter painter(chatlog, context, setup);
    Paginator paginator(chatlog, context, painter.rowsSize());
    PdfCanvas canvas(device, setup.format);
    DayMarks marks(canvas);
    PdfResult result;
    const auto all = static_cast<qsizetype>(chatlog.events().size());
    for (auto page = paginator.next(); page && page->number <= range.last;
         page = paginator.next()) {
        if (progress && !progress(paginator.done(), all)) return result;
        if (page->number < range.first) continue;
        canvas.beginPage();
        painter.paint(canvas, *page);
        for (const PaperRow& row : page->rows) {
            const auto& event = chatlog.event(row.event);
            marks.add(event.timestamp, painter.paperTop(row));
            result.messages += countsAsMessage(chatlog, row);
        }
        canvas.endPage();
        ++result.pages;
    }
    if (result.pages == 0) {
        canvas.beginPage();
        canvas.endPage();
    }
    canvas.finish(setup.title, QLocale().bcp47Name());
    result.isComplete = true;
    return result;
}

}  // namespace vell
