#pragma once
// SPDX-License-Identifier: MIT
//
// SelectionController: how mouse and keyboard select text in a timeline, and what is highlighted.
//
//     press, drag          characters, across rows; beyond the edges the timeline scrolls
//     double, triple click words, paragraphs
//     Shift with a click or the cursor keys moves the selection's free end

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <memory>
#include <optional>
#include <vector>

#include "timeline/input/selection.h"
#include "timeline/rows/row_context.h"
#include "timeline/text/found_spans.h"
#include "timeline/text/text_range.h"

class QAbstractScrollArea;
class QKeyEvent;
class QMouseEvent;

namespace vell {

class TimelineLayout;
class TimelineScroller;
struct RowPlace;

class SelectionController final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive the controller.
    SelectionController(QAbstractScrollArea& area, TimelineLayout& layout,
                        const RowContext& context, TimelineScroller& scroller);

    /// Another log has been laid out; nothing stays selected.
    void setChatlog(std::shared_ptr<const TesselChatLog> chatlog);

    /// The selected parts of the rows, a line each.
    [[nodiscard]] QString text() const { return selection_.text(); }
    /// Replaces the text by what a clipboard or a drag is to carry of a selection.
    void setExporter(SelectionExporter exporter) { exporter_ = std::move(exporter); }
    /// Puts what is selected on the clipboard; without a selection nothing happens.
    void copy() const;
    void select(const TextSpan& span);
    void selectAll();
    void clear();
    /// Whether nothing is selected.
    [[nodiscard]] bool isEmpty() const { return isEmpty_; }

    [[nodiscard]] const Selection& selection() const { return selection_; }
    /// `current` is an index, -1 for none.
    void setFindMatches(std::shared_ptr<const FoundSpans> matches, qsizetype current);
    [[nodiscard]] const std::shared_ptr<const FoundSpans>& findMatches() const { return matches_; }
    /// What is highlighted of a part of a row's text; holds until the next call.
    [[nodiscard]] std::span<const TextHighlight> highlights(qsizetype row, TextRange part);

    // Events, with the place they are at; what returns true has consumed its event.
    bool press(const QMouseEvent& event, const std::optional<RowPlace>& place);
    bool move(const QMouseEvent& event, const std::optional<RowPlace>& place);
    bool release(const QMouseEvent& event);
    /// Without a selection, Shift and the keys begin one at the current row; -1 where there is
    /// none.
    bool key(const QKeyEvent& event, qsizetype currentRow);

  Q_SIGNALS:
    void changed();

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    [[nodiscard]] std::unique_ptr<QMimeData> mimeData(SelectionTarget target) const;
    [[nodiscard]] bool isOnSelection(const RowPlace& place) const;
    void dragSelection();
    void dragTo(const std::optional<RowPlace>& place);
    void dragToPointer();
    [[nodiscard]] TextUnit clickUnit(const QMouseEvent& event);
    [[nodiscard]] std::optional<TextPosition> moved(TextPosition from, const QKeyEvent& event);
    [[nodiscard]] TextPosition movedAcross(TextPosition from, bool forward, TextUnit unit);
    [[nodiscard]] TextPosition movedByLine(TextPosition from, int step);
    [[nodiscard]] TextPosition movedByPage(TextPosition from, int direction);
    void update();

    QAbstractScrollArea& area_;
    TimelineLayout& layout_;
    const RowContext& context_;
    TimelineScroller& scroller_;
    Selection selection_;
    bool isEmpty_ = true;
    std::shared_ptr<const FoundSpans> matches_;  // null before any search
    qsizetype currentMatch_ = -1;
    std::vector<TextHighlight> highlights_;

    SelectionExporter exporter_;

    bool isDragging_ = false;
    // Pressed on selected text, which is dragged away unless the mouse stays where it is.
    std::optional<TextPosition> grabbed_;
    QPoint pointer_;
    QBasicTimer scrollTimer_;
    QElapsedTimer sinceClick_;
    QPoint clickPlace_;
    int clicks_ = 0;
};

}  // namespace vell
