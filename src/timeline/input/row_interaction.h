#pragma once
// SPDX-License-Identifier: MIT
//
// RowInteraction: what the mouse does to a timeline's rows beside selecting text: it shows whose
// they are and where links lead, opens links, drags pictures away and shows the context menu.

#include <QObject>
#include <QPoint>
#include <optional>

#include "timeline/input/links.h"
#include "timeline/rows/row_context.h"
#include "transcript/chat_log.h"

class QAbstractScrollArea;
class QHelpEvent;
class QMouseEvent;

namespace vell {

class SelectionController;
class TimelineLayout;
struct RowPlace;

class RowInteraction final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it.
    RowInteraction(QAbstractScrollArea& area, TimelineLayout& layout, const RowContext& context,
                   SelectionController& selection);

    [[nodiscard]] Links& links() { return links_; }
    /// Acts on a row as a click does: opens a link or a picture, plays a GIF. Of files, and of
    /// pictures that can't be drawn, the context menu comes up.
    void activate(qsizetype row);
    /// Shows a row's context menu at a place of the viewport, or at the row.
    void showMenu(qsizetype row, std::optional<QPoint> at = {});

    // Events, with the place they are at; what returns true has consumed its event.
    bool press(const QMouseEvent& event, const std::optional<RowPlace>& place);
    bool move(const QMouseEvent& event, const std::optional<RowPlace>& place);
    void release(const QMouseEvent& event, const std::optional<RowPlace>& place);
    /// Shows what the mouse is over; without a place it has left.
    void hover(const std::optional<RowPlace>& place);
    void showToolTip(const QHelpEvent& event, const RowPlace& place);
    /// Whether a click or drag of a link or picture has begun.
    [[nodiscard]] bool isPressed() const { return pressed_.has_value(); }

  Q_SIGNALS:
    /// The address below the mouse, for people; empty when there is none any more.
    void linkHovered(const QString& address);
    /// A GIF is to play, or to stop.
    void gifClicked(qsizetype row);
    /// A picture is to be shown large.
    void pictureOpened(qsizetype row);
    /// A session's file is to be shown alone.
    void sessionOpened(const QByteArray& path);

  private:
    [[nodiscard]] const TesselChatLog::Event& eventAt(qsizetype row) const;
    [[nodiscard]] const TesselChatLog::Link* linkAt(const RowPlace& place) const;
    [[nodiscard]] bool isOnHeading(const RowPlace& place) const;
    void dragPicture(qsizetype row);
    void open(qsizetype row);
    void clickPicture(qsizetype row);
    /// Links, headings of sessions, and pictures that aren't known not to be drawable.
    [[nodiscard]] bool canOpen(const TesselChatLog::Event::Value& value) const;

    QAbstractScrollArea& area_;
    TimelineLayout& layout_;
    const RowContext& context_;
    SelectionController& selection_;
    Links links_;
    QString hovered_;
    std::optional<QPoint> pressed_;  // with the left button, on a link or picture
    qsizetype pressedRow_ = -1;
};

}  // namespace vell
