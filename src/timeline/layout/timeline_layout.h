#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineLayout: which rows stand where. Every row has a height, estimated at first; one that is
// looked at gets its exact height, and an idle pass makes the others exact too. What is kept while
// that happens is the place at the top of the viewport: a row (in a long text a block) and the
// pixels above it. Offsets are computed from it, never the other way round, so that nothing on the
// screen moves when a row above it turns out higher than thought.
//
//        offset() ->  .----------.  <- the place: row 2, some pixels down
//                     |  row 2   |
//                     |  row 3   |  exact, like all rows that are seen
//                     `----------'
//
// Lengths are device pixels. GUI thread only.

#include <QDeadlineTimer>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "timeline/layout/row_estimates.h"
#include "timeline/rows/row_context.h"
#include "timeline/rows/timeline_row_view.h"
#include "timeline/text/height_tree.h"
#include "transcript/chat_log.h"

namespace vell {

class TimelineLayout {
  public:
    /// A row that is or was looked at.
    struct Row {
        TimelineRowView view;
        RowLayout layout;
        quint64 serial;  ///< no other row, nor this one laid out anew, ever has the same
    };
    struct VisibleRow {
        qsizetype index;
        int top;  ///< from the viewport's top edge
        const Row* row;
    };

    /// With more events than this the idle pass stays near the viewport.
    static constexpr qsizetype mostMadeExact = 100'000;

    /// The context is borrowed; after every change of it reset() must follow.
    TimelineLayout(std::shared_ptr<const TesselChatLog> chatlog, const RowContext& context);

    [[nodiscard]] const TesselChatLog& chatlog() const { return *chatlog_; }
    [[nodiscard]] const std::shared_ptr<const TesselChatLog>& sharedChatlog() const {
        return chatlog_;
    }
    [[nodiscard]] qsizetype rowCount() const { return heights_.count(); }
    /// Whether a row shows nothing, whatever the width.
    [[nodiscard]] bool isEmpty(qsizetype index) const { return estimates_.isEmpty(index); }

    /// Lays out another log; reset() must follow. The place is kept if there are as many rows.
    void setChatlog(std::shared_ptr<const TesselChatLog> chatlog);
    /// Forgets all heights but keeps the place. The width is that of the viewport.
    void reset(int viewportWidth, int viewportHeight);
    void setViewportHeight(int height);
    [[nodiscard]] int viewportHeight() const { return viewportHeight_; }
    /// The left edge of all rows, and their width.
    [[nodiscard]] int rowLeft() const;
    [[nodiscard]] int rowWidth() const { return rowWidth_; }

    /// The height of everything, as far as it is known.
    [[nodiscard]] qint64 contentHeight() const;
    /// Where the viewport's top edge is.
    [[nodiscard]] qint64 offset() const;

    /// Goes to an offset by what is known of the heights; for jumps.
    void scrollTo(qint64 offset);
    /// Moves by exactly this many pixels of what is really there, as far as there is something.
    void scrollBy(qint64 pixels);
    /// Moves as little as needed to show a row; `part` is what of it matters most, from its top
    /// left.
    void reveal(qsizetype index, const QRect& part);
    /// Brings a row's top to the viewport's, or the place this many pixels below it.
    void scrollToRow(qsizetype index, qint64 pixelsAbove = 0);

    /// The rows on the screen, top down; exact. Pointers hold until the next call that moves
    /// something.
    [[nodiscard]] const std::vector<VisibleRow>& visibleRows() const { return visible_; }
    /// Whether a row is among them.
    [[nodiscard]] bool isVisible(qsizetype index) const;
    /// Any row, laid out; exact unless its text is long.
    const Row& row(qsizetype index);
    /// A row's top in the viewport, as far as it is known.
    [[nodiscard]] qint64 rowTop(qsizetype index) const { return heights_.top(index) - offset(); }
    /// The same in the content, and the row at a place there.
    [[nodiscard]] qint64 rowOffset(qsizetype index) const { return heights_.top(index); }
    [[nodiscard]] qsizetype rowAtOffset(qint64 offset) const { return heights_.indexAt(offset); }
    /// The row at a place of the viewport, or the nearest; -1 in an empty log.
    [[nodiscard]] qsizetype rowAt(int y) const;
    [[nodiscard]] bool isExact(qsizetype index) const {
        return isExact_[static_cast<size_t>(index)];
    }
    /// Lays out the text around an offset, so that its caret is where it will be painted.
    QRect exactCaret(qsizetype index, qsizetype textOffset);

    /// Lays a row out anew, e.g. because its picture turned out to be another size.
    void invalidateRow(qsizetype index);
    /// Lays the captions out anew, because names have changed.
    void invalidateCaptions();

    /// Makes rows exact until the deadline; true while there is more to do.
    bool makeExact(QDeadlineTimer deadline);

  private:
    /// Something that can be at the viewport's top: a row, or a block of a row's long text.
    struct Piece {
        qsizetype row = 0;
        qsizetype block = 0;
        friend bool operator==(const Piece&, const Piece&) = default;
    };
    struct Span {
        qint64 top;  ///< from the row's top
        qint64 bottom;
    };

    Row& materialise(qsizetype index);
    std::unique_ptr<Row> makeRow(qsizetype index);
    [[nodiscard]] Row* longRow(qsizetype index) const;
    [[nodiscard]] int spacedHeight(const Row& row) const;
    void noteHeight(qsizetype index, const Row& row);

    Span measurePiece(Piece piece);
    [[nodiscard]] Span span(Piece piece) const;
    [[nodiscard]] bool previous(Piece& piece);
    [[nodiscard]] bool next(Piece& piece);
    Piece pieceAt(qsizetype index, qint64 inRow);
    void anchorAt(qsizetype index, qint64 inRow);
    void moveUp(qint64 pixels);
    void moveDown(qint64 pixels);
    void settle();
    bool fill();
    void dropFarRows();
    bool makeRowExact(qsizetype index, QDeadlineTimer deadline);

    std::shared_ptr<const TesselChatLog> chatlog_;
    const RowContext& context_;
    RowEstimates estimates_;
    HeightTree heights_;  // with the spacing below each row
    std::vector<bool> isExact_;
    int rowWidth_ = 0;
    int viewportHeight_ = 0;

    Piece anchor_;
    qint64 anchorPixels_ = 0;  // from the piece's top down to the viewport's

    std::unordered_map<qsizetype, std::unique_ptr<Row>> rows_;
    std::unordered_map<qsizetype, std::unique_ptr<Row>> longRows_;
    std::vector<VisibleRow> visible_;
    quint64 rowsMade_ = 0;

    // The idle pass works outwards from the place it started at: rows [exactFrom_, exactTo_) are
    // done.
    qsizetype exactFrom_ = 0;
    qsizetype exactTo_ = 0;
};

}  // namespace vell
