#pragma once
// SPDX-License-Identifier: MIT
//
// Pointing: what the mouse does to a timeline's rows beside selecting text: it shows whose they are
// and where links lead, opens links, drags pictures away and asks for the context menu. It watches
// the view's events, as Selecting does, and sees them first.

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <optional>

#include "timeline/input/links.h"
#include "transcript/chat_log.h"

class QContextMenuEvent;
class QHelpEvent;
class QMouseEvent;

namespace vell {

class Selecting;
class TimelineView;
struct RowPlace;

class Pointing final : public QObject {
    Q_OBJECT

  public:
    /// Watches the view, which must outlive it.
    Pointing(TimelineView& view, Selecting& selecting);

    [[nodiscard]] Links& links() { return links_; }
    /// Acts on a row as a click does: opens a link, plays a GIF; of other pictures and of files,
    /// which have no such act, the context menu comes up.
    void activate(qsizetype row);
    /// Shows a row's context menu at a place of the viewport, or at the row.
    void showMenu(qsizetype row, std::optional<QPoint> at = {});

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    /// The address below the mouse, for people; empty when there is none any more.
    void linkHovered(const QString& address);
    void pictureClicked(qsizetype row);

  private:
    [[nodiscard]] std::optional<RowPlace> placeAt(QPoint point) const;
    [[nodiscard]] const TesselChatLog::Event& eventAt(qsizetype row) const;
    [[nodiscard]] const TesselChatLog::Link* linkAt(const RowPlace& place) const;
    bool press(const QMouseEvent& event);
    bool move(const QMouseEvent& event);
    void release(const QMouseEvent& event);
    void hover(std::optional<QPoint> point);
    void showToolTip(const QHelpEvent& event);
    bool contextMenu(const QContextMenuEvent& event);
    void dragPicture(qsizetype row);
    void open(qsizetype row);

    TimelineView& view_;
    Selecting& selecting_;
    Links links_;
    QString hovered_;
    std::optional<QPoint> pressed_;  // with the left button, on a link or picture
    qsizetype pressedRow_ = -1;
};

}  // namespace vell
