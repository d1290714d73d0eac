// SPDX-License-Identifier: MIT
#include "app/documents/document_tools.h"

#include <QMainWindow>
#include <QScreen>
#include <QStatusBar>
#include <algorithm>
#include <variant>

#include "app/documents/dates/go_to_date_dialog.h"
#include "app/documents/jump_history.h"
#include "app/documents/shared/shared_pane.h"
#include "app/documents/viewer/picture_viewer.h"
#include "app/windows/common_commands.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

constexpr int paneWidth = 290;    // points
constexpr int contextPart = 4;    // of the view, above a message that was gone to
constexpr int noticeTime = 4000;  // milliseconds
constexpr int distance = 8;       // points between the window and its calendar

/// Beside the window, where the screen has room for it; else the desktop places it.
void placeBeside(const QWidget& window, QWidget& dialog) {
    const QRect frame = window.frameGeometry();
    const QSize size = dialog.sizeHint();
    const int left = window.layoutDirection() == Qt::LeftToRight
                         ? frame.right() + distance
                         : frame.left() - distance - size.width();
    const QRect place(QPoint(left, frame.top()), size);
    if (window.screen()->availableGeometry().contains(place)) dialog.move(place.topLeft());
}

bool beginsDay(const TesselChatLog& log, qsizetype row) {
    return std::holds_alternative<TesselChatLog::NewDay>(
        log.events()[static_cast<size_t>(row)].value);
}

}  // namespace

DocumentTools::DocumentTools(QMainWindow& window, const Services& services, JumpHistory& history)
    : QObject(&window), window_(window), services_(services), history_(history) {}

QList<QAction*> DocumentTools::addGoCommands(QMenu& menu) {
    return {addCommand(menu, tr("Go to &Date …"), {QKeySequence(Qt::CTRL | Qt::Key_J)},
                       [this] { goToDate(); }),
            addCommand(menu, tr("&Previous Day"), {QKeySequence(Qt::ALT | Qt::Key_Up)},
                       [this] { goToNeighbouringDay(-1); }),
            addCommand(menu, tr("&Next Day"), {QKeySequence(Qt::ALT | Qt::Key_Down)},
                       [this] { goToNeighbouringDay(1); })};
}

QList<QAction*> DocumentTools::addViewCommands(QMenu& menu) {
    sharedAction_ = addCommand(menu, tr("&Shared Items"), {QKeySequence(Qt::Key_F9)},
                               [this] { toggleSharedPane(); });
    sharedAction_->setCheckable(true);
    return {sharedAction_};
}

void DocumentTools::setTimeline(TimelineView& timeline) {
    timeline_ = &timeline;
    connect(timeline_, &TimelineView::pictureOpened, this, &DocumentTools::openPicture);
}

void DocumentTools::chatChanged() {
    const bool hadPane = sharedPane_ && sharedPane_->isVisible();
    delete sharedPane_;
    delete dateDialog_;
    delete viewer_;
    contents_.reset();
    if (hadPane) showSharedPane();
}

ChatContents& DocumentTools::contents() {
    if (!contents_)
        contents_ = std::make_unique<ChatContents>(timeline_->sharedChatlog(), sharedCalendar());
    return *contents_;
}

qsizetype DocumentTools::readRow() const {
    const auto& visible = timeline_->timeline().visibleRows();
    const qsizetype current = timeline_->currentRow();
    const bool isSeen = std::any_of(visible.begin(), visible.end(), [current](const auto& shown) {
        return shown.index == current;
    });
    return isSeen ? current : timeline_->scroller().topRow();
}

qsizetype DocumentTools::dayOf(qsizetype row) const {
    while (row >= 0 && !beginsDay(timeline_->chatlog(), row))
        --row;
    return row;
}

void DocumentTools::goToDate() {
    ChatContents& contents = this->contents();
    if (!dateDialog_) {
        dateDialog_ = new GoToDateDialog(&window_);
        dateDialog_->setAttribute(Qt::WA_DeleteOnClose);
        connect(dateDialog_, &GoToDateDialog::chosen, this, [this](qsizetype row) { goTo(row); });
        const auto fill = [this, &contents] { dateDialog_->setDays(contents.days()); };
        placeBeside(window_, *dateDialog_);
        if (contents.isReady()) fill();
        connect(&contents, &ChatContents::ready, dateDialog_, fill);
    }
    if (const qsizetype row = dayOf(readRow()); row >= 0) {
        const auto& event = timeline_->chatlog().events()[static_cast<size_t>(row)];
        if (const auto date = localDate(event.timestamp, sharedCalendar()))
            dateDialog_->showDate(*date);
    }
    dateDialog_->show();
    dateDialog_->activateWindow();
}

void DocumentTools::goToNeighbouringDay(int direction) {
    const TesselChatLog& log = timeline_->chatlog();
    qsizetype row = readRow();
    if (direction < 0) {
        row = dayOf(dayOf(row) - 1);
    } else {
        do
            ++row;
        while (row < std::ssize(log.events()) && !beginsDay(log, row));
    }
    if (row >= 0 && row < std::ssize(log.events())) {
        goTo(row);
        return;
    }
    window_.statusBar()->showMessage(
        direction < 0 ? tr("The chat has no earlier day.") : tr("The chat has no later day."),
        noticeTime);
}

void DocumentTools::openPicture(qsizetype row) {
    delete viewer_;
    viewer_ = new PictureViewer(window_, timeline_->sharedChatlog(), row, services_.pictures,
                                services_.contacts);
    ChatContents& contents = this->contents();
    const auto fill = [this, &contents] { viewer_->setRows(contents.rows(SharedKind::picture)); };
    if (contents.isReady()) fill();
    connect(&contents, &ChatContents::ready, viewer_, fill);
    connect(viewer_, &PictureViewer::closed, this, [this, row] {
        timeline_->setFocus();
        if (viewer_->row() != row) goTo(viewer_->row());
    });
}

void DocumentTools::toggleSharedPane() {
    if (sharedPane_ && sharedPane_->isVisible()) {
        sharedPane_->close();
    } else {
        showSharedPane();
    }
}

void DocumentTools::showSharedPane() {
    if (!sharedPane_) {
        sharedPane_ = new SharedPane(timeline_->sharedChatlog(), services_.pictures,
                                     services_.contacts, &window_);
        connect(sharedPane_, &QDockWidget::visibilityChanged, sharedAction_, &QAction::setChecked);
        connect(sharedPane_, &SharedPane::left, this, [this] { timeline_->setFocus(); });
        connect(sharedPane_, &SharedPane::chosen, this,
                [this](qsizetype row) { goTo(row, timeline_->height() / contextPart); });
        connect(sharedPane_, &SharedPane::opened, this,
                [this](qsizetype row) { timeline_->activateRow(row); });
        ChatContents& contents = this->contents();
        const auto fill = [this, &contents] { sharedPane_->setContents(contents); };
        if (contents.isReady()) fill();
        connect(&contents, &ChatContents::ready, sharedPane_, fill);
        const bool isMirrored = window_.layoutDirection() == Qt::RightToLeft;
        window_.addDockWidget(isMirrored ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea,
                              sharedPane_);
        widenFor(paneWidth);
        window_.resizeDocks({sharedPane_}, {paneWidth}, Qt::Horizontal);
    }
    sharedPane_->show();
    sharedPane_->focusItems();
}

// The chat keeps its width, where the screen has room for it.
void DocumentTools::widenFor(int points) {
    const QRect screen = window_.screen()->availableGeometry();
    const int most = screen.right() - window_.frameGeometry().right();
    if (window_.isMaximized() || window_.isFullScreen() || most < points) return;
    window_.resize(window_.width() + points, window_.height());
}

void DocumentTools::goTo(qsizetype row, int pointsAbove) {
    history_.jump([this, row, pointsAbove] {
        timeline_->scroller().scrollToRow(row);
        timeline_->scroller().scrollByPixels(-qRound(pointsAbove * timeline_->devicePixelRatioF()));
        timeline_->setCurrentRow(row);
    });
    timeline_->setFocus();
}

}  // namespace vell
