#pragma once
// SPDX-License-Identifier: MIT
//
// Selection: what of a chat log's rows is selected. It lives on the log alone and remembers places,
// never texts, so that selecting all of a million events costs nothing. GUI thread only.

#include <QMimeData>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "timeline/rows/text_highlight.h"
#include "timeline/text/text_range.h"
#include "timeline/text/text_units.h"
#include "transcript/chat_log.h"

namespace vell {

/// Who gets what is selected: the clipboard, or the mouse, by a drag or its middle button.
enum class SelectionTarget { clipboard, mouse };
/// Makes what it gets of a selection that isn't empty; null for nothing.
using SelectionExporter =
    std::function<std::unique_ptr<QMimeData>(const TextSpan& selected, SelectionTarget target)>;

class Selection {
  public:
    using Log = std::shared_ptr<const TesselChatLog>;

    explicit Selection(Log chatlog) : chatlog_(std::move(chatlog)) {}

    /// Begins a selection with the unit at a position.
    void start(TextPosition position, TextUnit unit);
    /// Moves the selection's free end to a position, by whole units.
    void extend(TextPosition position);
    void selectAll();
    void clear();

    /// Whether a row has to show something as selected.
    [[nodiscard]] bool isEmpty() const;
    [[nodiscard]] const TextSpan& span() const { return span_; }
    /// The free end; nothing before start().
    [[nodiscard]] const std::optional<TextPosition>& focus() const { return focus_; }
    /// What of a row is selected, if anything.
    [[nodiscard]] std::optional<TextHighlight> highlight(qsizetype row) const;
    /// What of each row is selected, as lines.
    [[nodiscard]] QString text() const;

    /// A row's neighbour (step 1 or -1) in which something can be selected; -1 for none.
    [[nodiscard]] qsizetype selectableRow(qsizetype row, int step) const;
    /// The first and the last position of a row.
    [[nodiscard]] TextPosition rowStart(qsizetype row) const { return {row, 0}; }
    [[nodiscard]] TextPosition rowEnd(qsizetype row) const;

  private:
    [[nodiscard]] TextSpan unitAt(TextPosition position) const;

    Log chatlog_;
    TextUnit unit_ = TextUnit::character;
    TextSpan origin_;  // the unit that start() took
    std::optional<TextPosition> focus_;
    TextSpan span_;
};

/// Whether a row shows something of a span: a part of its text, or all of an empty one.
[[nodiscard]] bool showsSomething(const TesselChatLog& chatlog, const TextSpan& span,
                                  qsizetype row);
/// The selected parts of a log's rows, a line each.
[[nodiscard]] QString selectedText(const TesselChatLog& chatlog, const TextSpan& span);

}  // namespace vell
