// SPDX-License-Identifier: MIT
#include "timeline/timeline_view.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QTimerEvent>
#include <algorithm>
#include <array>
#include <utility>

#include "identity/contacts/contacts_store.h"
#include "timeline/accessibility/accessible_timeline.h"
#include "timeline/bubbles/bubble_colors.h"
#include "timeline/input/current_row.h"
#include "timeline/input/pointing.h"
#include "timeline/input/selecting.h"
#include "timeline/pictures/gif_player.h"
#include "timeline/pictures/picture_cache.h"

namespace vell {
namespace {

// The idle pass waits so long after the last scrolling, then works in slices. A slice may overrun
// by the longest row that is laid out at once.
constexpr int idlePause = 200;
constexpr int idleSlice = 4;
constexpr QSize idealSize(520, 640);

}  // namespace

TimelineView::TimelineView(std::shared_ptr<const TesselChatLog> chatlog, ContactsStore& contacts,
                           PictureCache& pictures, QWidget* parent)
    : QAbstractScrollArea(parent),
      context_{RowFonts(),      RowColors(), 1.0,
               Qt::LeftToRight, contacts,    BubbleColors::shared(),
               backgrounds_,    textTiles_,  pictures},
      layout_(std::move(chatlog), context_) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    AccessibleTimeline::install();
    presentSenders();
    selecting_ = std::make_unique<Selecting>(*this);
    connect(selecting_.get(), &Selecting::changed, this, &TimelineView::selectionChanged);
    pointing_ = std::make_unique<Pointing>(*this, *selecting_);
    currentRow_ = std::make_unique<CurrentRow>(*this, *pointing_);
    connect(currentRow_.get(), &CurrentRow::changed, this, &TimelineView::currentRowChanged);
    connect(currentRow_.get(), &CurrentRow::changed, this,
            [this](qsizetype row) { AccessibleTimeline::focusChanged(*this, row); });
    connect(pointing_.get(), &Pointing::linkHovered, this, &TimelineView::linkHovered);
    gifPlayer_ = std::make_unique<GifPlayer>();
    connect(pointing_.get(), &Pointing::pictureClicked, this, &TimelineView::playPicture);
    connect(gifPlayer_.get(), &GifPlayer::changed, this, &TimelineView::repaintRow);
    connect(&contacts, &ContactsStore::addressToContactChanged, this, [this] {
        layout_.invalidateCaptions();
        moved();
        AccessibleTimeline::namesChanged(*this);
    });
    connect(&pictures, &PictureCache::changed, this, &TimelineView::pictureChanged);
}

TimelineView::~TimelineView() {
    context_.pictures.forget(chatlog());
}

// Colours go by the order of the events, never by what happens to be painted first.
void TimelineView::presentSenders() {
    const auto& own = chatlog().ownUserID();
    // Converted logs share the strings of a sender's name, so most senders are known by their
    // addresses without a look at the letters.
    std::array<const TesselUserID*, 8> recent{};
    size_t next = 0;
    const auto isSame = [](const TesselUserID& a, const TesselUserID& b) {
        return a.userID.constData() == b.userID.constData() && a.userID.size() == b.userID.size() &&
               a.serviceID.rawValue.constData() == b.serviceID.rawValue.constData() &&
               a.serviceID.rawValue.size() == b.serviceID.rawValue.size();
    };
    for (const TesselChatLog::Event& event : chatlog().events()) {
        if (!event.sender) continue;
        const bool isKnown = std::any_of(recent.begin(), recent.end(), [&](const auto* known) {
            return known && isSame(*known, *event.sender);
        });
        if (isKnown) continue;
        context_.bubbleColors.styleForUser(event.sender, *event.sender == own);
        recent[next++ % recent.size()] = &*event.sender;
    }
}

QSize TimelineView::sizeHint() const {
    return idealSize;
}

int TimelineView::viewportWidth() const {
    return static_cast<int>(viewport()->width() * ratio());
}

int TimelineView::viewportHeight() const {
    return static_cast<int>(viewport()->height() * ratio());
}

void TimelineView::setFontSize(qint64 points) {
    if (points == fontSize_) return;
    fontSize_ = points;
    if (isBuilt_) rebuild();
}

void TimelineView::rebuild() {
    context_.fonts = RowFonts::make(font(), fontSize_);
    context_.colors = RowColors::make(palette());
    context_.ratio = viewport()->devicePixelRatioF();
    context_.direction = layoutDirection();
    textTiles_.clear();
    isBuilt_ = true;
    layout_.reset(viewportWidth(), viewportHeight());
    if (wantedRow_ > 0 || wantedPointsAbove_ > 0)
        scrollToRow(std::exchange(wantedRow_, 0), std::exchange(wantedPointsAbove_, 0));
    moved();
}

QPoint TimelineView::toDevice(QPoint point) const {
    return (QPointF(point) * ratio()).toPoint();
}

// ---- the selection -----------------------------------------------------------------------------

void TimelineView::setFindMatches(std::vector<TextRange> matches, qsizetype current) {
    selecting_->setFindMatches(std::move(matches), current);
}

bool TimelineView::hasSelection() const {
    return !selecting_->isEmpty();
}

QString TimelineView::selectedText() const {
    return selecting_->selection().text();
}

void TimelineView::selectAll() {
    selecting_->selectAll();
}

void TimelineView::clearSelection() {
    selecting_->clear();
}

void TimelineView::copySelection() const {
    if (auto data = selecting_->selection().mimeData())
        QGuiApplication::clipboard()->setMimeData(data.release());
}

qsizetype TimelineView::currentRow() const {
    return currentRow_->index();
}

void TimelineView::setCurrentRow(qsizetype row) {
    currentRow_->goTo(row, 1);
}

void TimelineView::activateRow(qsizetype row) {
    pointing_->activate(row);
}

Links& TimelineView::links() {
    return pointing_->links();
}

// ---- events ------------------------------------------------------------------------------------

void TimelineView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    if (!isBuilt_) rebuild();
}

void TimelineView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    gifPlayer_->stop();
}

void TimelineView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    switch (event->type()) {
        case QEvent::FontChange:
        case QEvent::PaletteChange:
        case QEvent::StyleChange:
        case QEvent::LayoutDirectionChange:
            if (isBuilt_) rebuild();
            break;
        default:
            break;
    }
}

void TimelineView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    if (!isBuilt_) return;
    if (event->size().width() != event->oldSize().width()) {
        rebuild();
    } else {
        layout_.setViewportHeight(viewportHeight());
        moved();
    }
}

void TimelineView::restartIdlePass() {
    idleTimer_.start(idlePause, this);
}

void TimelineView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == frameTimer_.timerId()) {
        const double elapsed = static_cast<double>(frameClock_.nsecsElapsed()) / 1e6;
        frameClock_.restart();
        layout_.scrollBy(smoothScroll_.step(elapsed));
        if (!smoothScroll_.isMoving()) frameTimer_.stop();
        moved();
    } else if (event->timerId() == idleTimer_.timerId()) {
        idleTimer_.start(0, this);
        if (!layout_.makeExact(QDeadlineTimer(idleSlice))) idleTimer_.stop();
        syncScrollBar();
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

void TimelineView::pictureChanged(const char* bytes) {
    std::vector<qsizetype> changed;
    bool isProblem = false;
    for (const auto& visible : layout_.visibleRows()) {
        const auto* view = std::get_if<ImageBubbleView>(&visible.row->view.content());
        if (!view || view->image.image().data.begin() != bytes) continue;
        changed.push_back(visible.index);
        isProblem = !pictures().problem(view->image.image()).isEmpty();
    }
    if (changed.empty()) return;
    for (const qsizetype index : changed) {
        layout_.invalidateRow(index);
        if (isProblem) AccessibleTimeline::nameChanged(*this, index);
    }
    moved();
}

void TimelineView::playPicture(qsizetype row) {
    const TimelineRowView& view = layout_.row(row).view;
    if (const auto* image = std::get_if<ImageBubbleView>(&view.content()))
        gifPlayer_->toggle(row, image->image.image(), layout_.row(row).layout.content.size());
}

void TimelineView::stopUnseenPicture() {
    const auto& rows = layout_.visibleRows();
    const bool isSeen = std::any_of(rows.begin(), rows.end(), [this](const auto& visible) {
        return visible.index == gifPlayer_->row();
    });
    if (!isSeen || window()->isMinimized()) gifPlayer_->stop();
}

void TimelineView::repaintRow(qsizetype row) {
    for (const auto& visible : layout_.visibleRows()) {
        if (visible.index != row) continue;
        const QRectF place(layout_.rowLeft(), visible.top, layout_.rowWidth(),
                           visible.row->layout.height);
        viewport()->update(
            QRectF(place.topLeft() / ratio(), place.size() / ratio()).toAlignedRect());
    }
    stopUnseenPicture();
}

// ---- painting ----------------------------------------------------------------------------------

void TimelineView::paintEvent(QPaintEvent* event) {
    if (!isBuilt_ || viewport()->devicePixelRatioF() != ratio()) rebuild();
    QPainter painter(viewport());
    // Rows count device pixels, from the one that is nearest to the viewport's corner.
    const QPointF corner = painter.deviceTransform().map(QPointF(0, 0));
    painter.scale(1 / ratio(), 1 / ratio());
    painter.translate(QPointF(corner.toPoint()) - corner);
    const QRect& area = event->rect();
    const QRect exposed = QRectF(area.x() * ratio(), area.y() * ratio(), area.width() * ratio(),
                                 area.height() * ratio())
                              .toAlignedRect();
    paintBackground(painter, exposed);
    paintRows(painter, exposed);
}

// A bubble that is higher than the window hides most of what would be filled below it.
void TimelineView::paintBackground(QPainter& painter, const QRect& exposed) {
    QRegion free(exposed);
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        free -= opaquePart(visible.row->layout.frame, ratio())
                    .translated(layout_.rowLeft(), visible.top);
    }
    for (const QRect& rect : free)
        painter.fillRect(rect, context_.colors.background);
}

void TimelineView::paintRows(QPainter& painter, const QRect& exposed) {
    const int left = layout_.rowLeft();
    // Shadows reach a little beyond their rows.
    const int around = context_.px(standardSpacing);
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        const QRect part = exposed.translated(-left, -visible.top);
        if (part.top() > visible.row->layout.height + around || part.bottom() < -around) continue;
        const RowLayout& layout = visible.row->layout;
        const int above = layout.content.top();
        const auto [from, to] =
            layout.text ? layout.text->offsetsBetween(part.top() - above, part.bottom() + 1 - above)
                        : std::pair<qsizetype, qsizetype>(0, 1);
        painter.save();
        painter.translate(left, visible.top);
        visible.row->view.paint(
            painter, layout, context_,
            {visible.index, part, selecting_->highlights(visible.index, from, to),
             gifPlayer_->frame(visible.index)});
        painter.restore();
    }
    currentRow_->paint(painter);
}

}  // namespace vell
