// SPDX-License-Identifier: MIT
#include "timeline/input/selection.h"

#include <algorithm>
#include <utility>

#include "timeline/rows/row_text.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

const Event& eventAt(const TesselChatLog& chatlog, qsizetype row) {
    return chatlog.event(row);
}

bool isPicture(const Event& event) {
    return std::holds_alternative<TesselChatLog::Image>(event.value);
}

}  // namespace

bool showsSomething(const TesselChatLog& chatlog, const TextSpan& span, qsizetype row) {
    const Event& event = eventAt(chatlog, row);
    if (!isSelectable(event)) return false;
    const bool isFirst = row == span.from.row;
    const bool isLast = row == span.to.row;
    if (!isFirst && !isLast) return true;
    const qsizetype length = selectableLength(event);
    const qsizetype from = isFirst ? span.from.offset : 0;
    const qsizetype to = isLast ? std::min(span.to.offset, length) : length;
    return from < to;
}

TextSpan Selection::unitAt(TextPosition position) const {
    const Event& event = eventAt(*chatlog_, position.row);
    if (!isSelectable(event)) return {position, position};
    if (isPicture(event)) {
        const bool isWhole = unit_ != TextUnit::character;
        return {{position.row, isWhole ? 0 : position.offset},
                {position.row, isWhole ? 1 : position.offset}};
    }
    const auto [from, to] = unitAround(rowText(event), position.offset, unit_);
    return {{position.row, from}, {position.row, to}};
}

void Selection::start(TextPosition position, TextUnit unit) {
    unit_ = unit;
    origin_ = span_ = unitAt(position);
    focus_ = span_.to;
}

void Selection::extend(TextPosition position) {
    if (!focus_) {
        start(position, TextUnit::character);
        return;
    }
    const TextSpan unit = unitAt(position);
    focus_ = position < origin_.from ? unit.from : unit.to;
    span_ = {std::min(origin_.from, unit.from), std::max(origin_.to, unit.to)};
}

void Selection::selectAll() {
    if (chatlog_->events().empty()) return;
    start({0, 0}, TextUnit::character);
    extend(rowEnd(std::ssize(chatlog_->events()) - 1));
}

void Selection::clear() {
    focus_.reset();
    origin_ = span_ = {};
}

bool Selection::isEmpty() const {
    if (span_.from == span_.to) return true;
    for (qsizetype row = span_.from.row; row <= span_.to.row; ++row) {
        if (showsSomething(*chatlog_, span_, row)) return false;
    }
    return true;
}

std::optional<TextHighlight> Selection::highlight(qsizetype row) const {
    if (row < span_.from.row || row > span_.to.row || !showsSomething(*chatlog_, span_, row))
        return std::nullopt;
    // Behind the last selected character of a row that isn't the last comes its line break.
    const bool isWhole = row < span_.to.row || isPicture(eventAt(*chatlog_, row));
    return TextHighlight{{row == span_.from.row ? span_.from.offset : 0,
                          isWhole ? TextHighlight::textEnd : span_.to.offset},
                         HighlightKind::selection};
}

QString Selection::text() const {
    return isEmpty() ? QString() : selectedText(*chatlog_, span_);
}

qsizetype Selection::selectableRow(qsizetype row, int step) const {
    for (row += step; row >= 0 && row < std::ssize(chatlog_->events()); row += step) {
        if (isSelectable(eventAt(*chatlog_, row))) return row;
    }
    return -1;
}

TextPosition Selection::rowEnd(qsizetype row) const {
    return {row, selectableLength(eventAt(*chatlog_, row))};
}

QString selectedText(const TesselChatLog& chatlog, const TextSpan& span) {
    QString text;
    bool isFirst = true;
    for (qsizetype row = span.from.row; row <= span.to.row; ++row) {
        if (!showsSomething(chatlog, span, row)) continue;
        if (!std::exchange(isFirst, false)) text += u'\n';
        const Event& event = eventAt(chatlog, row);
        const QString whole = rowText(event);
        const qsizetype from = row == span.from.row && !isPicture(event) ? span.from.offset : 0;
        const bool isCut = row == span.to.row && !isPicture(event);
        text += QStringView(whole).sliced(
            from, (isCut ? std::min(span.to.offset, whole.size()) : whole.size()) - from);
    }
    return text;
}

}  // namespace vell
