// SPDX-License-Identifier: MIT
#include "timeline/input/row_interaction.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <algorithm>
#include <utility>
#include <variant>

#include "identity/contacts/sender_name.h"
#include "timeline/input/row_menu.h"
#include "timeline/input/row_place.h"
#include "timeline/input/selection_controller.h"
#include "timeline/layout/timeline_layout.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/saving/data_item_provider.h"
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

RowInteraction::RowInteraction(QAbstractScrollArea& area, TimelineLayout& layout,
                               const RowContext& context, SelectionController& selection)
    : area_(area), layout_(layout), context_(context), selection_(selection), links_(area) {}

const TesselChatLog::Event& RowInteraction::eventAt(qsizetype row) const {
    return layout_.chatlog().event(row);
}

const TesselChatLog::Link* RowInteraction::linkAt(const RowPlace& place) const {
    return place.isOnText() ? std::get_if<TesselChatLog::Link>(&eventAt(place.row).value) : nullptr;
}

bool RowInteraction::isOnHeading(const RowPlace& place) const {
    return std::holds_alternative<TesselChatLog::Session>(eventAt(place.row).value) &&
           place.content->layout.frame.contains(place.point);
}

// ---- clicks and drags --------------------------------------------------------------------------

bool RowInteraction::press(const QMouseEvent& event, const std::optional<RowPlace>& place) {
    pressed_.reset();
    if (event.button() != Qt::LeftButton || event.modifiers() != Qt::NoModifier || !place)
        return false;
    const bool isOnPicture = place->isOnPicture();
    if (!isOnPicture && !linkAt(*place) && !isOnHeading(*place)) return false;
    pressed_ = event.position().toPoint();
    pressedRow_ = place->row;
    if (isOnPicture) selection_.clear();
    return isOnPicture;  // texts can be selected
}

bool RowInteraction::move(const QMouseEvent& event, const std::optional<RowPlace>& place) {
    if (event.buttons() == Qt::NoButton) hover(place);
    if (!pressed_ || !(event.buttons() & Qt::LeftButton)) return false;
    const bool isPicture = std::holds_alternative<TesselChatLog::Image>(eventAt(pressedRow_).value);
    const QPoint point = event.position().toPoint();
    if ((point - *pressed_).manhattanLength() < QApplication::startDragDistance()) return isPicture;
    pressed_.reset();
    if (isPicture) dragPicture(pressedRow_);
    return isPicture;
}

void RowInteraction::release(const QMouseEvent& event, const std::optional<RowPlace>& place) {
    if (event.button() != Qt::LeftButton || !std::exchange(pressed_, {})) return;
    if (!place || place->row != pressedRow_) return;
    if (place->isOnPicture()) {
        clickPicture(pressedRow_);
    } else if ((linkAt(*place) || isOnHeading(*place)) && selection_.isEmpty()) {
        open(pressedRow_);
    }
}

void RowInteraction::open(qsizetype row) {
    if (const auto* link = std::get_if<TesselChatLog::Link>(&eventAt(row).value)) {
        links_.open(link->url->absoluteString(), link->title);
    } else if (const auto* session = std::get_if<TesselChatLog::Session>(&eventAt(row).value)) {
        Q_EMIT sessionOpened(session->path);
    } else {
        Q_EMIT pictureOpened(row);
    }
}

void RowInteraction::clickPicture(qsizetype row) {
    if (isGif(eventAt(row).value)) {
        Q_EMIT gifClicked(row);
    } else {
        Q_EMIT pictureOpened(row);
    }
}

bool RowInteraction::canOpen(const TesselChatLog::Event::Value& value) const {
    if (const auto* image = std::get_if<TesselChatLog::Image>(&value))
        return context_.pictures.problem(image->image()).isEmpty();
    return std::holds_alternative<TesselChatLog::Link>(value) ||
           std::holds_alternative<TesselChatLog::Session>(value);
}

void RowInteraction::activate(qsizetype row) {
    const TesselChatLog::Event::Value& value = eventAt(row).value;
    if (std::holds_alternative<TesselChatLog::Link>(value) ||
        std::holds_alternative<TesselChatLog::Session>(value)) {
        open(row);
    } else if (canOpen(value)) {
        clickPicture(row);
    } else if (std::holds_alternative<TesselChatLog::Image>(value) ||
               std::holds_alternative<TesselChatLog::File>(value)) {
        showMenu(row);
    }
}

void RowInteraction::dragPicture(qsizetype row) {
    const auto image = std::get<TesselChatLog::Image>(eventAt(row).value);
    auto* drag = new QDrag(area_.viewport());
    drag->setMimeData(pictureForDragging(image).release());
    const qreal ratio = area_.viewport()->devicePixelRatioF();
    const QSize room = QSize(thumbnailPoints, thumbnailPoints) * ratio;
    const QSize shown = layout_.row(row).layout.content.size();
    if (const QImage* pixels = context_.pictures.image(image.image(), shown)) {
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

void RowInteraction::hover(const std::optional<RowPlace>& place) {
    QString address;
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (place) {
        if (const TesselChatLog::Link* link = linkAt(*place)) {
            address = shownAddress(link->url->absoluteString());
            shape = Qt::PointingHandCursor;
        } else if (isOnHeading(*place)) {
            shape = Qt::PointingHandCursor;
        } else if (place->isOnText()) {
            shape = Qt::IBeamCursor;
        }
    }
    if (area_.viewport()->cursor().shape() != shape) area_.viewport()->setCursor(shape);
    if (address == hovered_) return;
    hovered_ = address;
    Q_EMIT linkHovered(hovered_);
}

void RowInteraction::showToolTip(const QHelpEvent& event, const RowPlace& place) {
    const TesselChatLog::Event& shown = eventAt(place.row);
    QStringList lines;
    if (const TesselChatLog::Link* link = linkAt(place))
        lines += shownAddress(link->url->absoluteString());
    if (const auto* session = std::get_if<TesselChatLog::Session>(&shown.value))
        lines += shownText(QFile::decodeName(session->path));
    if (shown.sender) lines += shownText(senderName(*shown.sender, context_.contacts));
    lines += fullDateFormatter().string(shown.timestamp);
    QToolTip::showText(event.globalPos(), toolTip(lines), area_.viewport());
}

// ---- the context menu --------------------------------------------------------------------------

void RowInteraction::showMenu(qsizetype row, std::optional<QPoint> at) {
    if (row < 0) return;
    if (!at) {
        const QRect content = layout_.row(row).layout.content;
        const auto y = std::clamp<qint64>(layout_.rowTop(row) + content.center().y(), 0,
                                          layout_.viewportHeight() - 1);
        at = (QPointF(layout_.rowLeft() + content.center().x(), static_cast<qreal>(y)) /
              context_.ratio)
                 .toPoint();
    }
    auto* menu = new RowMenu(
        area_, selection_, eventAt(row),
        canOpen(eventAt(row).value) ? [this, row] { open(row); } : std::function<void()>());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(area_.viewport()->mapToGlobal(*at));
}

}  // namespace vell
