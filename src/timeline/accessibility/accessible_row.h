#pragma once
// SPDX-License-Identifier: MIT
//
// AccessibleRow: one row of the timeline as an item for screen readers: what it is called, what it
// is and what can be done with it. It holds no more than the row's number.

#include <QAccessible>
#include <QAccessibleActionInterface>

#include "transcript/chat_log.h"

namespace vell {

class AccessibleTimeline;
class TimelineView;

/// What a row is called: "Sender: text, time" for messages, the dates of separators, and for
/// captions whose messages end there.
[[nodiscard]] QString accessibleRowName(TimelineView& view, qsizetype row);

class AccessibleRow final : public QAccessibleInterface, public QAccessibleActionInterface {
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

  private:
    [[nodiscard]] const TesselChatLog::Event& event() const;
    /// Whether there is a link to open or a GIF to play.
    [[nodiscard]] bool canBePressed() const;

    const AccessibleTimeline& timeline_;
    qsizetype row_;
};

}  // namespace vell
