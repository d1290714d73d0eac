// SPDX-License-Identifier: MIT
#include "paper/paginator.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "timeline/text/laid_out_text.h"

namespace vell {
namespace {

using Log = TesselChatLog;

// A text that is longer than a page begins on one that has at least this part of it left.
constexpr int leastRoom = 4;

/// Gives a row whose text is another part of it, of this height, its size.
void resizeText(RowLayout& layout, int textHeight) {
    const int change = textHeight - layout.content.height();
    layout.content.setHeight(textHeight);
    if (!layout.frame.isEmpty()) layout.frame.setHeight(layout.frame.height() + change);
    layout.icon.translate(0, layout.icon.isEmpty() ? 0 : change);
    layout.height += change;
    // A single line is lower than the sender's picture.
    const int missing = layout.icon.isEmpty() ? 0 : std::max(0, -layout.icon.top());
    layout.content.translate(0, missing);
    layout.frame.translate(0, missing);
    layout.icon.translate(0, missing);
    layout.height += missing;
}

}  // namespace

Paginator::Paginator(const TesselChatLog& chatlog, PaperContext& context, QSize size,
                     PageStart start, int number)
    : chatlog_(chatlog), context_(context), size_(size), event_(start.event), number_(number) {
    if (start.textTop == 0 || !fill()) return;
    PaperRow& row = waiting_.front().row;
    resizeText(row.layout, row.layout.content.height() - start.textTop);
    row.textTop = start.textTop;
}

PageStart Paginator::start() const {
    if (waiting_.empty()) return {event_, 0};
    return {waiting_.front().row.event, waiting_.front().row.textTop};
}

bool Paginator::fill() {
    const auto& events = chatlog_.events();
    const auto count = static_cast<qsizetype>(events.size());
    bool hasContent = false;
    int height = 0;
    for (; event_ < count; ++event_) {
        const Log::Event& event = events[static_cast<size_t>(event_)];
        const bool isCaption = std::holds_alternative<Log::User>(event.value);
        if (hasContent && !isCaption) break;
        auto view =
            std::make_shared<const TimelineRowView>(event, TimelineRowView::isOwn(event, chatlog_));
        RowLayout layout = context_.measure(*view, size_.width());
        if (layout.height <= 0) continue;
        // A page may also begin with the caption of a message on the one before.
        hasContent = hasContent || isCaption || event.isMessage();
        height += layout.height + (waiting_.empty() ? 0 : spacing());
        waiting_.push_back({{event_, std::move(view), std::move(layout)}, 0});
    }
    if (waiting_.empty()) return false;
    waiting_.front().unitHeight = height;
    return true;
}

bool Paginator::beginsPage(const Waiting& waiting, int room) const {
    if (waiting.unitHeight <= room) return false;
    return waiting.unitHeight <= size_.height() || room < size_.height() / leastRoom;
}

std::optional<PaperRow> Paginator::cut(PaperRow& row, int room) const {
    const LaidOutText* text = row.layout.text.get();
    if (!text || row.layout.height <= size_.height()) return std::nullopt;
    const int textRoom = room - (row.layout.height - row.layout.content.height());
    const qint64 lineTop = text->line(row.textTop + textRoom + text->spacing()).top;
    auto end = static_cast<int>(lineTop);
    if (end <= row.textTop) {
        if (room < size_.height()) return std::nullopt;
        end = row.textTop + std::max(textRoom, 1);  // a line that is higher than a page
    }
    PaperRow first = row;
    first.isLast = false;
    resizeText(first.layout, std::max(end - text->spacing() - row.textTop, 1));
    resizeText(row.layout, row.layout.content.height() - (end - row.textTop));
    row.textTop = end;
    return first;
}

std::optional<PaperPage> Paginator::next() {
    PaperPage page;
    int y = 0;
    while (!waiting_.empty() || fill()) {
        Waiting& front = waiting_.front();
        const int top = page.rows.empty() ? 0 : y + spacing();
        const int room = size_.height() - top;
        if (!page.rows.empty() && beginsPage(front, room)) break;
        front.unitHeight = 0;
        std::optional<PaperRow> part;
        const bool fits = front.row.layout.height <= room;
        if (!fits) part = cut(front.row, room);
        if (!fits && !part && !page.rows.empty()) break;
        PaperRow& placed = page.rows.emplace_back(part ? std::move(*part) : front.row);
        placed.top = top;
        y = top + placed.layout.height;
        if (part) break;
        waiting_.pop_front();
    }
    if (page.rows.empty()) return std::nullopt;
    page.number = number_++;
    return page;
}

}  // namespace vell
