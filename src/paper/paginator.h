#pragma once
// SPDX-License-Identifier: MIT
//
// Paginator: divides a chat into pages, one after the other, and keeps no more of it than the page
// at hand. Marks stay with the message below them and captions with the one above. A text is cut
// only if it is longer than a page, and then between two lines.
//
//     Paginator paginator(log, context, size);
//     while (const auto page = paginator.next()) …

#include <QSize>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "paper/paper_context.h"
#include "timeline/rows/timeline_row_view.h"
#include "transcript/chat_log.h"

namespace vell {

struct PaperRow {
    qsizetype event = 0;  ///< index
    std::shared_ptr<const TimelineRowView> view;
    RowLayout layout;    ///< of this part of the row
    int top = 0;         ///< from the top of the page's rows
    int textTop = 0;     ///< how much of the text stands on pages before
    bool isLast = true;  ///< no part of the row follows
};

struct PaperPage {
    int number = 0;  ///< from 1
    std::vector<PaperRow> rows;
};

class Paginator {
  public:
    /// Borrows all; the size is that of a page's rows, in device pixels.
    Paginator(const TesselChatLog& chatlog, PaperContext& context, QSize size);

    /// The next page; nothing after the last. An empty chat has none.
    [[nodiscard]] std::optional<PaperPage> next();
    /// How many events have been laid out.
    [[nodiscard]] qsizetype done() const { return event_; }

  private:
    struct Waiting {
        PaperRow row;
        int unitHeight = 0;  ///< of the rows that should stay together, at the first of them
    };

    [[nodiscard]] bool fill();
    [[nodiscard]] bool beginsPage(const Waiting& waiting, int room) const;
    /// Divides a row that is higher than the room; what is returned stands in it, and the row is
    /// what remains. Nothing where not even a line fits.
    [[nodiscard]] std::optional<PaperRow> cut(PaperRow& row, int room) const;
    [[nodiscard]] int spacing() const { return context_.rows().px(standardSpacing); }

    const TesselChatLog& chatlog_;
    PaperContext& context_;
    QSize size_;
    qsizetype event_ = 0;
    int pages_ = 0;
    std::deque<Waiting> waiting_;
};

}  // namespace vell
