#pragma once
// SPDX-License-Identifier: MIT
//
// PagePainter: paints a page's rows as the timeline shows them, below a heading with the day and
// the chat's title, and with the page's number at the foot.

#include <QSize>
#include <QString>

#include "paper/canvas.h"
#include "paper/paginator.h"
#include "paper/paper_context.h"
#include "transcript/chat_log.h"

namespace vell {

class PagePainter {
  public:
    /// Borrows log and context.
    PagePainter(const TesselChatLog& chatlog, PaperContext& context, const PaperSetup& setup);

    /// The room that the rows of a page have.
    [[nodiscard]] QSize rowsSize() const;
    /// Where a row stands on the paper.
    [[nodiscard]] int paperTop(const PaperRow& row) const { return headingHeight_ + row.top; }

    void paint(PaperCanvas& canvas, const PaperPage& page) const;

  private:
    void paintHeading(PaperCanvas& canvas, const PaperPage& page) const;
    [[nodiscard]] RowLayout line(const QString& text, Qt::Alignment side, int width) const;

    const TesselChatLog& chatlog_;
    PaperContext& context_;
    QString title_;
    QSize area_;
    int lineHeight_;
    int headingHeight_;
    int footHeight_;
};

}  // namespace vell
