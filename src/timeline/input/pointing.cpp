// SPDX-License-Identifier: MIT
#include "timeline/input/pointing.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <algorithm>
#include <utility>
#include <variant>

#include "identity/contacts/sender_name.h"
#include "timeline/input/row_menu.h"
#include "timeline/input/row_place.h"
#include "timeline/input/selecting.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/saving/data_item_provider.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

constexpr int thumbnailPoints = 128;

/// Plain text for a tool tip, which would take some texts for markup.
QString toolTip(const QStringList& lines) {
    QString escaped = lines.join(u'\n').toHtmlEscaped();
    return QStringLiteral("<qt>") + escaped.replace(u'\n', QLatin1String("<br>")) +
           QStringLiteral("</qt>");
}

bool isGif(const TesselChatLog::Event::Value& value) {
    const auto* image = std::get_if<TesselChatLog::Image>(&value);
    return image && image->image().format == foundation::PictureFormat::gif;
}

}  // namespace

Pointing::Pointing(TimelineView& view, Selecting& selecting)
    : view_(view), selecting_(selecting), links_(view) {
    view.viewport()->installEventFilter(this);
    view.viewport()->setMouseTracking(true);
}

std::optional<RowPlace> Pointing::placeAt(QPoint point) const {
    return rowPlaceAt(view_.timeline(), view_.toDevice(point));
}

const TesselChatLog::Event& Pointing::eventAt(qsizetype row) const {
    return view_.chatlog().events()[static_cast<size_t>(row)];
}

const TesselChatLog::Link* Pointing::linkAt(const RowPlace& place) const {
    return place.isOnText() ? std::get_if<TesselChatLog::Link>(&eventAt(place.row).value) : nullptr;
}

bool Pointing::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            return press(*static_cast<QMouseEvent*>(event));
        case QEvent::MouseMove:
            return move(*static_cast<QMouseEvent*>(event));
        case QEvent::MouseButtonRelease:
            release(*static_cast<QMouseEvent*>(event));
            return false;
        case QEvent::Leave:
            hover({});
            return false;
        case QEvent::Paint:
            // Scrolling moves the rows below the mouse.
            if (view_.viewport()->underMouse() && !pressed_)
                hover(view_.viewport()->mapFromGlobal(QCursor::pos()));
            return false;
        case QEvent::ToolTip:
            showToolTip(*static_cast<QHelpEvent*>(event));
            return true;
        case QEvent::ContextMenu:
            return contextMenu(*static_cast<QContextMenuEvent*>(event));
        default:
            return false;
    }
}

// ---- clicks and drags --------------------------------------------------------------------------

bool Pointing::press(const QMouseEvent& event) {
    pressed_.reset();
    if (event.button() != Qt::LeftButton || event.modifiers() != Qt::NoModifier) return false;
    const QPoint point = event.position().toPoint();
    const auto place = placeAt(point);
    if (!place) return false;
    const bool isOnPicture = place->isOnPicture();
    if (!isOnPicture && !linkAt(*place)) return false;
    pressed_ = point;
    pressedRow_ = place->row;
    if (isOnPicture) selecting_.clear();
    return isOnPicture;  // a link's text can be selected
}

bool Pointing::move(const QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    if (event.buttons() == Qt::NoButton) hover(point);
    if (!pressed_ || !(event.buttons() & Qt::LeftButton)) return false;
    const bool isPicture = std::holds_alternative<TesselChatLog::Image>(eventAt(pressedRow_).value);
    if ((point - *pressed_).manhattanLength() < QApplication::startDragDistance()) return isPicture;
    pressed_.reset();
    if (isPicture) dragPicture(pressedRow_);
    return isPicture;
}

void Pointing::release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton || !std::exchange(pressed_, {})) return;
    const auto place = placeAt(event.position().toPoint());
    if (!place || place->row != pressedRow_) return;
    if (place->isOnPicture()) {
        Q_EMIT pictureClicked(pressedRow_);
    } else if (linkAt(*place) && selecting_.isEmpty()) {
        open(pressedRow_);
    }
}

void Pointing::open(qsizetype row) {
    const auto& link = std::get<TesselChatLog::Link>(eventAt(row).value);
    links_.open(link.url->absoluteString(), link.title);
}

void Pointing::activate(qsizetype row) {
    const TesselChatLog::Event::Value& value = eventAt(row).value;
    if (std::holds_alternative<TesselChatLog::Link>(value)) {
        open(row);
    } else if (isGif(value)) {
        Q_EMIT pictureClicked(row);
    } else if (std::holds_alternative<TesselChatLog::Image>(value) ||
               std::holds_alternative<TesselChatLog::File>(value)) {
        showMenu(row);
    }
}

void Pointing::dragPicture(qsizetype row) {
    const auto image = std::get<TesselChatLog::Image>(eventAt(row).value);
    auto* drag = new QDrag(view_.viewport());
    drag->setMimeData(pictureForDragging(image).release());
    const qreal ratio = view_.viewport()->devicePixelRatioF();
    const QSize room = QSize(thumbnailPoints, thumbnailPoints) * ratio;
    const QSize shown = view_.timeline().row(row).layout.content.size();
    if (const QImage* pixels = view_.pictures().image(image.image(), shown)) {
        QPixmap thumbnail = QPixmap::fromImage(
            pixels->width() > room.width() || pixels->height() > room.height()
                ? pixels->scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                : *pixels);
        thumbnail.setDevicePixelRatio(ratio);
        drag->setPixmap(thumbnail);
    }
    drag->exec(Qt::CopyAction);  // the window may be gone when this returns
}

// ---- hovering ----------------------------------------------------------------------------------

void Pointing::hover(std::optional<QPoint> point) {
    QString address;
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (const auto place = point ? placeAt(*point) : std::nullopt) {
        if (const TesselChatLog::Link* link = linkAt(*place)) {
            address = shownAddress(link->url->absoluteString());
            shape = Qt::PointingHandCursor;
        } else if (place->isOnText()) {
            shape = Qt::IBeamCursor;
        }
    }
    if (view_.viewport()->cursor().shape() != shape) view_.viewport()->setCursor(shape);
    if (address == hovered_) return;
    hovered_ = address;
    Q_EMIT linkHovered(hovered_);
}

void Pointing::showToolTip(const QHelpEvent& event) {
    const auto place = placeAt(event.pos());
    if (!place) return;
    const TesselChatLog::Event& shown = eventAt(place->row);
    QStringList lines;
    if (const TesselChatLog::Link* link = linkAt(*place))
        lines += shownAddress(link->url->absoluteString());
    if (shown.sender) lines += shownText(senderName(*shown.sender, view_.contacts()));
    lines += fullDateFormatter().string(shown.timestamp);
    QToolTip::showText(event.globalPos(), toolTip(lines), view_.viewport());
}

// ---- the context menu --------------------------------------------------------------------------

bool Pointing::contextMenu(const QContextMenuEvent& event) {
    if (event.reason() == QContextMenuEvent::Keyboard) return false;  // that of the current row
    if (const auto place = placeAt(event.pos())) showMenu(place->row, event.pos());
    return true;
}

void Pointing::showMenu(qsizetype row, std::optional<QPoint> at) {
    if (row < 0) return;
    if (!at) {
        TimelineLayout& timeline = view_.timeline();
        const QRect content = timeline.row(row).layout.content;
        const auto y = std::clamp<qint64>(timeline.rowTop(row) + content.center().y(), 0,
                                          timeline.viewportHeight() - 1);
        at = (QPointF(timeline.rowLeft() + content.center().x(), static_cast<qreal>(y)) /
              view_.context().ratio)
                 .toPoint();
    }
    auto* menu = new RowMenu(view_, eventAt(row));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(view_.viewport()->mapToGlobal(*at));
}

}  // namespace vell
