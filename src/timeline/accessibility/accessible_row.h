#pragma once
// SPDX-License-Identifier: MIT
//
// AccessibleRow: one row of the timeline as an item for screen readers: what it is called, what it
// is, its text, and what can be done with it. It holds no more than the row's number.

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <optional>

#include "timeline/text/text_range.h"
#include "transcript/chat_log.h"

namespace vell {

class AccessibleTimeline;
class TimelineView;

/// What a row is called: "Sender: text, time" for messages, and the dates of separators.
[[nodiscard]] QString accessibleRowName(TimelineView& view, qsizetype row);

class AccessibleRow final : public QAccessibleInterface,
                            public QAccessibleActionInterface,
                            public QAccessibleTextInterface {
  public:
    AccessibleRow(const AccessibleTimeline& timeline, qsizetype row)
        : timeline_(timeline), row_(row) {}

    [[nodiscard]] qsizetype row() const { return row_; }

    [[nodiscard]] bool isValid() const override { return true; }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override;
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int position) override;
    void selection(int index, int* from, int* to) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int from, int to) override;
    void setSelection(int index, int from, int to) override;
    void removeSelection(int index) override;
    [[nodiscard]] QString text(int from, int to) const override;
    [[nodiscard]] int characterCount() const override;
    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* from,
                         int* to) const override;
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int* from,
                             int* to) const override;
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int* from,
                            int* to) const override;
    QString attributes(int offset, int* from, int* to) const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int from, int to) override;

  private:
    [[nodiscard]] QString content() const;
    [[nodiscard]] std::optional<TextRange> lineAt(int offset) const;
    [[nodiscard]] const TesselChatLog::Event& event() const;
    /// Whether there is a link to open or a GIF to play.
    [[nodiscard]] bool canBePressed() const;

    const AccessibleTimeline& timeline_;
    qsizetype row_;
};

}  // namespace vell
