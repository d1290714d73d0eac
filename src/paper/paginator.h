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

/// Where a page begins: at an event, or this far down in its text.
struct PageStart {
    qsizetype event = 0;
    int textTop = 0;
};

class Paginator {
  public:
    /// Borrows log and context; the size is that of a page's rows, in device pixels. Begins with
    /// the page of this number, which starts there.
    Paginator(const TesselChatLog& chatlog, PaperContext& context, QSize size, PageStart start = {},
              int number = 1);

    /// The next page; nothing after the last. An empty chat has none.
    [[nodiscard]] std::optional<PaperPage> next();
    /// Where the next page begins.
    [[nodiscard]] PageStart start() const;
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
    int number_;
    std::deque<Waiting> waiting_;
};

}  // namespace vell
