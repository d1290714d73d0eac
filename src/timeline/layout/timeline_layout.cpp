// SPDX-License-Identifier: MIT
#include "timeline/layout/timeline_layout.h"

#include <algorithm>
#include <utility>

namespace vell {
namespace {

// Rows further than this from the viewport are forgotten once there are many of them.
constexpr qsizetype keptAround = 128;
// How far from the viewport the idle pass goes in a log that is too large for all of it.
constexpr qsizetype exactAround = 1000;
// Longer moves, in viewports, go by what is known of the heights.
constexpr qint64 longestWalk = 4;

}  // namespace

TimelineLayout::TimelineLayout(std::shared_ptr<const TesselChatLog> chatlog,
                               const RowContext& context)
    : chatlog_(std::move(chatlog)), context_(context), estimates_(*chatlog_) {}

// ---- heights -----------------------------------------------------------------------------------

int TimelineLayout::rowLeft() const {
    return context_.px(standardPadding);
}

qint64 TimelineLayout::contentHeight() const {
    if (heights_.total() == 0) return 0;
    // The spacing below the last row is part of the padding.
    return heights_.total() + context_.px(standardPadding) - context_.px(standardSpacing);
}

int TimelineLayout::spacedHeight(const Row& row) const {
    return row.layout.height > 0 ? row.layout.height + context_.px(standardSpacing) : 0;
}

void TimelineLayout::noteHeight(qsizetype index, const Row& row) {
    heights_.setHeight(index, spacedHeight(row));
    const LaidOutText* text = row.layout.text.get();
    isExact_[static_cast<size_t>(index)] = !text || !text->isLong() || !text->firstEstimated();
}

std::unique_ptr<TimelineLayout::Row> TimelineLayout::makeRow(qsizetype index) {
    const TesselChatLog::Event& event = chatlog_->event(index);
    auto row = std::make_unique<Row>(
        Row{TimelineRowView(event, TimelineRowView::isOwn(event, *chatlog_)), {}, ++rowsMade_});
    row->layout = row->view.measure(context_, rowWidth_);
    return row;
}

TimelineLayout::Row* TimelineLayout::longRow(qsizetype index) const {
    const auto found = longRows_.find(index);
    return found == longRows_.end() ? nullptr : found->second.get();
}

TimelineLayout::Row& TimelineLayout::materialise(qsizetype index) {
    if (Row* row = longRow(index)) return *row;
    if (const auto found = rows_.find(index); found != rows_.end()) return *found->second;
    std::unique_ptr<Row> made = makeRow(index);
    Row& row = *made;
    noteHeight(index, row);
    const bool isLong = row.layout.text && row.layout.text->isLong();
    (isLong ? longRows_ : rows_).emplace(index, std::move(made));
    return row;
}

const TimelineLayout::Row& TimelineLayout::row(qsizetype index) {
    return materialise(index);
}

void TimelineLayout::dropFarRows() {
    if (rows_.size() <= visible_.size() + 4 * keptAround || visible_.empty()) return;
    const qsizetype from = visible_.front().index - keptAround;
    const qsizetype to = visible_.back().index + keptAround;
    std::erase_if(rows_, [&](const auto& entry) { return entry.first < from || entry.first > to; });
}

// ---- pieces ------------------------------------------------------------------------------------

TimelineLayout::Span TimelineLayout::span(Piece piece) const {
    const Row* row = longRow(piece.row);
    if (!row) return {0, heights_.height(piece.row)};
    const LaidOutText& text = *row->layout.text;
    const int top = row->layout.content.top();
    return {piece.block == 0 ? 0 : top + text.blockTop(piece.block),
            piece.block + 1 == text.blockCount() ? heights_.height(piece.row)
                                                 : top + text.blockTop(piece.block + 1)};
}

TimelineLayout::Span TimelineLayout::measurePiece(Piece piece) {
    Row& row = materialise(piece.row);
    if (row.layout.text && row.layout.text->measureBlock(piece.block)) {
        row.layout.fitText();
        noteHeight(piece.row, row);
    }
    return span(piece);
}

bool TimelineLayout::previous(Piece& piece) {
    if (piece.block > 0) {
        --piece.block;
        return true;
    }
    if (piece.row == 0) return false;
    --piece.row;
    materialise(piece.row);
    const Row* row = longRow(piece.row);
    piece.block = row ? row->layout.text->blockCount() - 1 : 0;
    return true;
}

bool TimelineLayout::next(Piece& piece) {
    const Row* row = longRow(piece.row);
    if (row && piece.block + 1 < row->layout.text->blockCount()) {
        ++piece.block;
        return true;
    }
    if (piece.row + 1 == rowCount()) return false;
    piece = {piece.row + 1, 0};
    return true;
}

TimelineLayout::Piece TimelineLayout::pieceAt(qsizetype index, qint64 inRow) {
    const Row& row = materialise(index);
    if (!longRow(index)) return {index, 0};
    return {index, row.layout.text->blockAt(inRow - row.layout.content.top())};
}

// ---- the place ---------------------------------------------------------------------------------

qint64 TimelineLayout::offset() const {
    if (rowCount() == 0) return 0;
    return heights_.top(anchor_.row) + span(anchor_).top + anchorPixels_;
}

void TimelineLayout::moveUp(qint64 pixels) {
    anchorPixels_ -= pixels;
    while (anchorPixels_ < 0) {
        if (!previous(anchor_)) {
            anchorPixels_ = 0;
            return;
        }
        const Span above = measurePiece(anchor_);
        anchorPixels_ += above.bottom - above.top;
    }
}

void TimelineLayout::moveDown(qint64 pixels) {
    anchorPixels_ += pixels;
    while (true) {
        const Span here = measurePiece(anchor_);
        if (anchorPixels_ < here.bottom - here.top || !next(anchor_)) return;
        anchorPixels_ -= here.bottom - here.top;
    }
}

// Lays out what is on the screen; returns whether the screen reaches the log's end.
bool TimelineLayout::fill() {
    visible_.clear();
    Piece piece = anchor_;
    const qint64 anchorTop = measurePiece(piece).top;
    qint64 top = -anchorTop - anchorPixels_;
    while (true) {
        const qsizetype index = piece.row;
        // Measuring a block moves what is below it only: the ones above are exact or off the
        // screen.
        while (top + measurePiece(piece).bottom < viewportHeight_ && next(piece)) {
            if (piece.row != index) break;
        }
        if (heights_.height(index) > 0) {
            visible_.push_back({index, static_cast<int>(top), &materialise(index)});
        }
        top += heights_.height(index);
        if (top >= viewportHeight_) return false;
        if (index + 1 == rowCount()) return true;
        piece = {index + 1, 0};
    }
}

void TimelineLayout::settle() {
    if (rowCount() == 0 || rowWidth_ <= 0) return;
    moveDown(0);
    if (fill()) {
        const qint64 end = contentHeight() - offset();
        if (end < viewportHeight_ && offset() > 0) {
            moveUp(viewportHeight_ - end);
            fill();
        }
    }
    dropFarRows();
}

void TimelineLayout::setChatlog(std::shared_ptr<const TesselChatLog> chatlog) {
    if (chatlog->events().size() != chatlog_->events().size()) {
        rows_.clear();
        longRows_.clear();
        visible_.clear();
        anchor_ = {};
        anchorPixels_ = 0;
    }
    chatlog_ = std::move(chatlog);
    estimates_ = RowEstimates(*chatlog_);
}

void TimelineLayout::reset(int viewportWidth, int viewportHeight) {
    struct {
        qint64 inRow = 0;
        std::optional<qsizetype> textOffset;
        qint64 inLine = 0;
    } place;
    if (!visible_.empty()) {
        const RowLayout& layout = materialise(anchor_.row).layout;
        place.inRow = span(anchor_).top + anchorPixels_;
        const qint64 inText = place.inRow - layout.content.top();
        if (layout.text && inText >= 0 && inText < layout.text->height()) {
            const LaidOutText::Line line = layout.text->line(inText);
            place.textOffset = line.start;
            place.inLine = inText - line.top;
        }
    }
    rowWidth_ = std::max(viewportWidth - 2 * rowLeft(), 1);
    viewportHeight_ = viewportHeight;
    rows_.clear();
    longRows_.clear();
    visible_.clear();
    estimates_.prepare(context_, rowWidth_);
    const int spacing = context_.px(standardSpacing);
    const auto count = static_cast<qsizetype>(chatlog_->events().size());
    heights_.assign(count, [&](qsizetype i) {
        const int height = estimates_.height(i);
        return height > 0 ? height + spacing : 0;
    });
    isExact_.assign(static_cast<size_t>(count), false);
    exactFrom_ = exactTo_ = anchor_.row;
    if (count == 0) return;

    if (place.textOffset) {
        const QRect caret = exactCaret(anchor_.row, *place.textOffset);
        place.inRow = caret.top() + std::min<qint64>(place.inLine, caret.height() - 1);
    }
    anchorAt(anchor_.row, place.inRow);
    settle();
}

void TimelineLayout::anchorAt(qsizetype index, qint64 inRow) {
    anchor_ = pieceAt(index, inRow);
    const Span here = measurePiece(anchor_);
    anchorPixels_ =
        std::clamp<qint64>(inRow - here.top, 0, std::max<qint64>(here.bottom - here.top - 1, 0));
}

void TimelineLayout::setViewportHeight(int height) {
    if (height == viewportHeight_) return;
    viewportHeight_ = height;
    settle();
}

void TimelineLayout::scrollTo(qint64 offset) {
    if (rowCount() == 0) return;
    const qint64 last = std::max<qint64>(contentHeight() - viewportHeight_, 0);
    if (offset >= last) {
        // Rows near the end may be higher than thought: the end is found from below.
        anchor_ = {rowCount() - 1, 0};
        materialise(anchor_.row);
        if (const Row* row = longRow(anchor_.row)) {
            anchor_.block = row->layout.text->blockCount() - 1;
        }
        const Span here = measurePiece(anchor_);
        anchorPixels_ = here.bottom - here.top;
    } else {
        const qsizetype index = heights_.indexAt(std::max<qint64>(offset, 0));
        anchorAt(index, std::max<qint64>(offset, 0) - heights_.top(index));
    }
    settle();
}

void TimelineLayout::scrollBy(qint64 pixels) {
    if (rowCount() == 0 || pixels == 0) return;
    if (std::abs(pixels) > longestWalk * viewportHeight_) {
        scrollTo(offset() + pixels);
        return;
    }
    pixels < 0 ? moveUp(-pixels) : moveDown(pixels);
    settle();
}

void TimelineLayout::scrollToRow(qsizetype index, qint64 pixelsAbove) {
    anchorAt(index, pixelsAbove);
    settle();
}

bool TimelineLayout::isVisible(qsizetype index) const {
    return std::any_of(visible_.begin(), visible_.end(),
                       [index](const VisibleRow& row) { return row.index == index; });
}

void TimelineLayout::reveal(qsizetype index, const QRect& part) {
    if (!isVisible(index)) {
        const bool isBelow = index > anchor_.row;
        scrollToRow(index);
        if (isBelow) scrollBy(-std::max(0, viewportHeight_ - part.bottom() - 1));
    }
    const qint64 top = rowTop(index) + part.top();
    const qint64 bottom = rowTop(index) + part.bottom() + 1;
    if (bottom > viewportHeight_ && top > 0) {
        scrollBy(std::min(bottom - viewportHeight_, top));
    } else if (top < 0) {
        scrollBy(top);
    }
}

qsizetype TimelineLayout::rowAt(int y) const {
    if (visible_.empty()) return -1;
    const auto below =
        std::upper_bound(visible_.begin(), visible_.end(), y,
                         [](int place, const VisibleRow& row) { return place < row.top; });
    return below == visible_.begin() ? visible_.front().index : std::prev(below)->index;
}

QRect TimelineLayout::exactCaret(qsizetype index, qsizetype textOffset) {
    Row& row = materialise(index);
    if (!row.layout.text) return row.layout.content;
    const qsizetype block = row.layout.text->blockOf(textOffset);
    const int before = row.layout.height;
    measurePiece({index, block});
    if (row.layout.height != before && !visible_.empty()) fill();
    return row.layout.text->caret(textOffset).translated(row.layout.content.topLeft());
}

void TimelineLayout::invalidateRow(qsizetype index) {
    rows_.erase(index);
    longRows_.erase(index);
    isExact_[static_cast<size_t>(index)] = false;
    exactFrom_ = exactTo_ = anchor_.row;
    if (anchor_.row == index) anchor_.block = 0;
    settle();
}

void TimelineLayout::invalidateCaptions() {
    std::erase_if(rows_, [&](const auto& entry) { return estimates_.isCaption(entry.first); });
    for (qsizetype i = 0; i < rowCount(); ++i) {
        if (estimates_.isCaption(i)) isExact_[static_cast<size_t>(i)] = false;
    }
    exactFrom_ = exactTo_ = anchor_.row;
    settle();
}

// ---- the idle pass -----------------------------------------------------------------------------

bool TimelineLayout::makeRowExact(qsizetype index, QDeadlineTimer deadline) {
    Row* row = longRow(index);
    if (!row) {
        std::unique_ptr<Row> made = makeRow(index);
        noteHeight(index, *made);
        if (isExact_[static_cast<size_t>(index)]) return true;
        row = longRows_.emplace(index, std::move(made)).first->second.get();
    }
    LaidOutText& text = *row->layout.text;
    auto block = text.firstEstimated();
    while (block && !deadline.hasExpired()) {
        text.measureBlock(*block);
        block = text.firstEstimated(*block);
    }
    row->layout.fitText();
    noteHeight(index, *row);
    return !block;
}

bool TimelineLayout::makeExact(QDeadlineTimer deadline) {
    if (rowCount() == 0) return false;
    const bool isAll = rowCount() <= mostMadeExact;
    const qsizetype from = isAll ? 0 : std::max<qsizetype>(anchor_.row - exactAround, 0);
    const qsizetype to = isAll ? rowCount() : std::min(anchor_.row + exactAround, rowCount());
    if (anchor_.row < exactFrom_ || anchor_.row > exactTo_) exactFrom_ = exactTo_ = anchor_.row;
    bool hasMore = true;
    while (!deadline.hasExpired()) {
        const bool isDown = exactTo_ < to;
        if (!isDown && exactFrom_ <= from) {
            hasMore = false;
            break;
        }
        const qsizetype index = isDown ? exactTo_ : exactFrom_ - 1;
        if (!isExact_[static_cast<size_t>(index)] && !makeRowExact(index, deadline)) break;
        isDown ? ++exactTo_ : --exactFrom_;
    }
    if (!longRows_.empty()) fill();  // one of them may be on the screen
    return hasMore;
}

}  // namespace vell
