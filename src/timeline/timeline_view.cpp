// SPDX-License-Identifier: MIT
#include "timeline/timeline_view.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "foundation/line_break.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/bubbles/bubble_colors.h"
#include "timeline/input/keyboard_navigation.h"
#include "timeline/input/row_interaction.h"
#include "timeline/input/row_place.h"
#include "timeline/input/selection_controller.h"
#include "timeline/layout/scroll_bar_marks.h"
#include "timeline/painting/floating_day.h"
#include "timeline/painting/row_painter.h"
#include "timeline/pictures/gif_player.h"
#include "timeline/pictures/picture_cache.h"

namespace vell {
namespace {

constexpr QSize idealSize(520, 640);
constexpr qsizetype longestPhrase = 200;

}  // namespace

TimelineView::TimelineView(std::shared_ptr<const TesselChatLog> chatlog, ContactsStore& contacts,
                           PictureCache& pictures, QWidget* parent)
    : QAbstractScrollArea(parent),
      context_{RowFonts(),      RowColors(), 1.0,
               Qt::LeftToRight, contacts,    BubbleColors::shared(),
               backgrounds_,    textTiles_,  pictures},
      layout_(std::move(chatlog), context_),
      scroller_(*this, layout_, context_),
      selection_(std::make_unique<SelectionController>(*this, layout_, context_, scroller_)),
      rows_(std::make_unique<RowInteraction>(*this, layout_, context_, *selection_)),
      keyboard_(std::make_unique<KeyboardNavigation>(*this, layout_, context_, scroller_, *rows_)),
      gifPlayer_(std::make_unique<GifPlayer>()),
      painter_(
          std::make_unique<RowPainter>(*viewport(), layout_, context_, *selection_, *gifPlayer_)),
      day_(std::make_unique<FloatingDay>(*this, layout_, context_)),
      marks_(new ScrollBarMarks(*verticalScrollBar(), layout_, context_)) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    context_.bubbleColors.present(layout_.chatlog());
    connect(&scroller_, &TimelineScroller::moved, this, &TimelineView::stopUnseenPicture);
    connect(&scroller_, &TimelineScroller::moved, day_.get(), &FloatingDay::follow);
    connect(&scroller_, &TimelineScroller::moved, this, &TimelineView::refresh);
    connect(selection_.get(), &SelectionController::changed, this, &TimelineView::selectionChanged);
    connect(keyboard_.get(), &KeyboardNavigation::changed, this, &TimelineView::currentRowChanged);
    connect(keyboard_.get(), &KeyboardNavigation::jumped, this, &TimelineView::jumped);
    connect(rows_.get(), &RowInteraction::linkHovered, this, &TimelineView::linkHovered);
    connect(rows_.get(), &RowInteraction::gifClicked, this, &TimelineView::playPicture);
    connect(rows_.get(), &RowInteraction::pictureOpened, this, &TimelineView::pictureOpened);
    connect(rows_.get(), &RowInteraction::sessionOpened, this, &TimelineView::sessionOpened);
    connect(gifPlayer_.get(), &GifPlayer::changed, this, &TimelineView::refresh);
    connect(gifPlayer_.get(), &GifPlayer::changed, this, &TimelineView::stopUnseenPicture);
    connect(&contacts, &ContactsStore::addressToContactChanged, this, [this] {
        layout_.invalidateCaptions();
        painter_->reset();
        scroller_.update();
        Q_EMIT namesChanged();
    });
    connect(&pictures, &PictureCache::changed, this, &TimelineView::pictureChanged);
}

TimelineView::~TimelineView() {
    context_.pictures.forget(chatlog());
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

void TimelineView::setChatlog(std::shared_ptr<const TesselChatLog> chatlog) {
    gifPlayer_->stop();
    selection_->setChatlog(chatlog);
    layout_.setChatlog(std::move(chatlog));
    if (isBuilt_) rebuild();
}

void TimelineView::replaceChatlog(std::shared_ptr<const TesselChatLog> chatlog,
                                  const RowMap& rowOf) {
    const auto& visible = layout_.visibleRows();
    const auto kept = std::find_if(visible.begin(), visible.end(), [this](const auto& row) {
        return this->chatlog().event(row.index).isMessage();
    });
    const bool isMessageKept = kept != visible.end();
    const qsizetype row = isMessageKept ? kept->index : scroller_.topRow();
    const int top = isMessageKept ? kept->top : 0;
    const qreal pointsAbove = isMessageKept ? 0 : scroller_.pointsAbove();
    std::optional<TextSpan> selected;
    if (hasSelection()) {
        const auto moved = [&](TextPosition at) -> TextPosition {
            const auto& event = this->chatlog().event(at.row);
            return {rowOf(at.row), event.isMessage() ? at.offset : 0};
        };
        selected = {moved(selectedSpan().from), moved(selectedSpan().to)};
    }
    const qsizetype current = currentRow();

    setChatlog(std::move(chatlog));
    context_.bubbleColors.present(layout_.chatlog());
    if (current >= 0) keyboard_->setRow(rowOf(current));
    if (selected) select(*selected);
    scroller_.scrollToRow(rowOf(row), pointsAbove);
    if (top != 0) scroller_.scrollByPixels(-top);
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
    painter_->reset();
    day_->reset();
    isBuilt_ = true;
    layout_.reset(viewportWidth(), viewportHeight());
    scroller_.reset();
}

// ---- the selection -----------------------------------------------------------------------------

void TimelineView::setFindMatches(std::shared_ptr<const FoundSpans> matches, qsizetype current) {
    marks_->setMatches(matches, current);
    selection_->setFindMatches(std::move(matches), current);
}

const std::shared_ptr<const FoundSpans>& TimelineView::findMatches() const {
    return selection_->findMatches();
}

bool TimelineView::hasSelection() const {
    return !selection_->isEmpty();
}

QString TimelineView::selectedText() const {
    return selection_->text();
}

const TextSpan& TimelineView::selectedSpan() const {
    return selection_->selection().span();
}

const std::optional<TextPosition>& TimelineView::caret() const {
    return selection_->selection().focus();
}

void TimelineView::select(const TextSpan& span) {
    selection_->select(span);
}

std::optional<TimelineView::Phrase> TimelineView::selectedPhrase() const {
    const TextSpan& span = selectedSpan();
    if (!hasSelection() || span.from.row != span.to.row ||
        span.to.offset - span.from.offset > longestPhrase)
        return std::nullopt;
    const QString text = selectedText();
    if (std::any_of(text.begin(), text.end(),
                    [](QChar unit) { return foundation::isLineBreak(unit.unicode()); }))
        return std::nullopt;
    return Phrase{text, span};
}

void TimelineView::selectAll() {
    selection_->selectAll();
}

void TimelineView::clearSelection() {
    selection_->clear();
}

void TimelineView::setSelectionExporter(SelectionExporter exporter) {
    selection_->setExporter(std::move(exporter));
}

void TimelineView::copySelection() const {
    selection_->copy();
}

TextPosition TimelineView::topPosition() {
    const auto place = placeAt({0, 0});
    if (!place) return {};
    const RowLayout& layout = place->content->layout;
    const int y = place->point.y() - layout.content.top();
    return {place->row, layout.text && y > 0 ? layout.text->line(y).start : 0};
}

qsizetype TimelineView::currentRow() const {
    return keyboard_->row();
}

void TimelineView::setCurrentRow(qsizetype row) {
    keyboard_->goTo(row, 1);
}

void TimelineView::activateRow(qsizetype row) {
    rows_->activate(row);
}

Links& TimelineView::links() {
    return rows_->links();
}

// ---- pictures ----------------------------------------------------------------------------------

void TimelineView::pictureChanged(const char* bytes) {
    std::vector<qsizetype> changed;
    bool isProblem = false;
    for (const auto& visible : layout_.visibleRows()) {
        const auto* view = std::get_if<ImageBubbleView>(&visible.row->view.content());
        if (!view || view->image.image().data.identity() != bytes) continue;
        changed.push_back(visible.index);
        isProblem = !context_.pictures.problem(view->image.image()).isEmpty();
    }
    if (changed.empty()) return;
    for (const qsizetype index : changed) {
        layout_.invalidateRow(index);
        if (isProblem) Q_EMIT pictureFailed(index);
    }
    scroller_.update();
}

void TimelineView::playPicture(qsizetype row) {
    const TimelineRowView& view = layout_.row(row).view;
    if (const auto* image = std::get_if<ImageBubbleView>(&view.content()))
        gifPlayer_->toggle(row, image->image.image(), layout_.row(row).layout.content.size());
}

void TimelineView::stopUnseenPicture() {
    if (!layout_.isVisible(gifPlayer_->row()) || window()->isMinimized()) gifPlayer_->stop();
}

void TimelineView::refresh() {
    painter_->refresh({keyboard_->ringArea(), day_->shownArea()});
}

// ---- painting ----------------------------------------------------------------------------------

void TimelineView::paintEvent(QPaintEvent* event) {
    if (!isBuilt_ || viewport()->devicePixelRatioF() != ratio()) rebuild();
    QPainter painter(viewport());
    // Rows count device pixels, from the one that is nearest to the viewport's corner.
    const QPointF corner = painter.deviceTransform().map(QPointF(0, 0));
    painter.scale(1 / ratio(), 1 / ratio());
    painter.translate(QPointF(corner.toPoint()) - corner);
    painter_->prepare(event->region());
    for (const QRect& rect : event->region()) {
        const QRect part = context_.touchedPixels(rect);
        painter.setClipRect(part);
        painter_->paint(painter, part);
        keyboard_->paint(painter);
        day_->paint(painter);
    }
}

}  // namespace vell
