#pragma once
// SPDX-License-Identifier: MIT
//
// AccessibleTimeline: the timeline as screen readers see it, a list with an item for each row that
// shows something. It describes the log and not what is painted; items are made on request, and the
// oldest are dropped. GUI thread only.
//
//     AccessibleTimeline::attach(*view);  // once for each view

#include <QAccessibleWidget>
#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

namespace vell {

class TimelineView;

class AccessibleTimeline final : public QAccessibleWidget {
  public:
    /// The most items kept.
    static constexpr size_t mostItems = 16'384;

    /// Makes a view's interface one of these, and reports changes in it to assistive technology.
    static void attach(TimelineView& view);

    explicit AccessibleTimeline(TimelineView& view);
    ~AccessibleTimeline() override;

    [[nodiscard]] TimelineView& view() const;
    /// A row's rectangle on the screen, in points; as far as it is known for rows never seen.
    [[nodiscard]] QRect rowRect(qsizetype row) const;
    /// The same of the character at an offset of a row's text.
    [[nodiscard]] QRect characterRect(qsizetype row, qsizetype offset) const;
    /// The offset of the character of a row that is nearest to a point of the screen; -1 where the
    /// row has no text.
    [[nodiscard]] qsizetype offsetAt(qsizetype row, QPoint point) const;

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;

  private:
    /// Rows that are no children, in order; found on first use.
    const std::vector<qsizetype>& leftOut() const;
    [[nodiscard]] bool isLeftOut(qsizetype row) const;
    [[nodiscard]] qsizetype rowOfChild(int index) const;
    [[nodiscard]] QAccessibleInterface* item(qsizetype row) const;
    void namesChanged() const;
    void nameChanged(qsizetype row) const;
    void focusChanged(qsizetype row) const;
    void caretChanged() const;
    [[nodiscard]] QRect toScreen(const QRect& inRow, qsizetype row) const;

    mutable std::optional<std::vector<qsizetype>> leftOut_;
    mutable std::unordered_map<qsizetype, QAccessible::Id> items_;
    mutable std::deque<qsizetype> made_;  // the rows of items_, the oldest first
};

}  // namespace vell
