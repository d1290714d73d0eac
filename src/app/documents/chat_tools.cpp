// SPDX-License-Identifier: MIT
#include "app/documents/chat_tools.h"

#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <algorithm>
#include <utility>
#include <variant>

#include "app/documents/dates/go_to_date_dialog.h"
#include "app/documents/jump_history.h"
#include "app/documents/shared/shared_pane.h"
#include "app/documents/viewer/picture_viewer.h"
#include "app/windows/common_commands.h"
#include "app/windows/placement.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

constexpr int paneWidth = 290;  // points
constexpr int distance = 8;     // points between the window and its calendar

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
    return std::holds_alternative<TesselChatLog::NewDay>(log.event(row).value);
}

}  // namespace

ChatTools::ChatTools(QMainWindow& pane, const Services& services, JumpHistory& history)
    : QObject(&pane), pane_(pane), services_(services), history_(history) {}

QList<QAction*> ChatTools::addGoCommands(QMenu& menu) {
    return {addCommand(menu, tr("Go to &Date …"), {QKeySequence(Qt::CTRL | Qt::Key_J)},
                       [this] { goToDate(); }),
            addCommand(menu, tr("&Previous Day"), {QKeySequence(Qt::ALT | Qt::Key_Up)},
                       [this] { goToNeighbouringDay(-1); }),
            addCommand(menu, tr("&Next Day"), {QKeySequence(Qt::ALT | Qt::Key_Down)},
                       [this] { goToNeighbouringDay(1); })};
}

QList<QAction*> ChatTools::addViewCommands(QMenu& menu) {
    sharedAction_ = addCommand(menu, tr("&Shared Items"), {QKeySequence(Qt::Key_F9)},
                               [this] { toggleSharedPane(); });
    sharedAction_->setCheckable(true);
    return {sharedAction_};
}

void ChatTools::setTimeline(TimelineView& timeline) {
    timeline_ = &timeline;
    connect(timeline_, &TimelineView::pictureOpened, this, &ChatTools::openPicture);
    if (std::exchange(hadPane_, false)) showPaneAgain(paneWidth);
}

void ChatTools::close() {
    hadPane_ = hadPane_ || (sharedPane_ && sharedPane_->isVisible());
    delete sharedPane_;
    delete dateDialog_;
    delete viewer_;
    contents_.reset();
}

void ChatTools::chatChanged() {
    const bool hadPane = sharedPane_ && sharedPane_->isVisible();
    const int width = hadPane ? sharedPane_->width() : 0;
    const bool hadFocus = hadPane && sharedPane_->isAncestorOf(QApplication::focusWidget());
    close();
    hadPane_ = false;
    if (!hadPane) return;
    showPaneAgain(width);
    if (hadFocus) sharedPane_->focusItems();
}

void ChatTools::showPaneAgain(int width) {
    makeSharedPane();
    pane_.resizeDocks({sharedPane_}, {width}, Qt::Horizontal);
    sharedPane_->show();
}

bool ChatTools::isViewing() const {
    return viewer_ || dateDialog_;
}

ChatContents& ChatTools::contents() {
    if (!contents_)
        contents_ = std::make_unique<ChatContents>(timeline_->sharedChatlog(), sharedCalendar());
    return *contents_;
}

qsizetype ChatTools::readRow() const {
    const auto& visible = timeline_->timeline().visibleRows();
    const qsizetype current = timeline_->currentRow();
    const bool isSeen = std::any_of(visible.begin(), visible.end(), [current](const auto& shown) {
        return shown.index == current;
    });
    return isSeen ? current : timeline_->scroller().topRow();
}

qsizetype ChatTools::dayOf(qsizetype row) const {
    while (row >= 0 && !beginsDay(timeline_->chatlog(), row))
        --row;
    return row;
}

void ChatTools::goToDate() {
    ChatContents& contents = this->contents();
    if (!dateDialog_) {
        dateDialog_ = new GoToDateDialog(pane_.window());
        dateDialog_->setAttribute(Qt::WA_DeleteOnClose);
        connect(dateDialog_, &GoToDateDialog::chosen, this, [this](qsizetype row) { goTo(row); });
        const auto fill = [this, &contents] { dateDialog_->setDays(contents.days()); };
        placeBeside(*pane_.window(), *dateDialog_);
        if (contents.isReady()) fill();
        connect(&contents, &ChatContents::ready, dateDialog_, fill);
    }
    if (const qsizetype row = dayOf(readRow()); row >= 0) {
        const auto& event = timeline_->chatlog().event(row);
        if (const auto date = localDate(event.timestamp, sharedCalendar()))
            dateDialog_->showDate(*date);
    }
    dateDialog_->show();
    dateDialog_->activateWindow();
}

void ChatTools::goToNeighbouringDay(int direction) {
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
    Q_EMIT noticed(direction < 0 ? tr("The chat has no earlier day.")
                                 : tr("The chat has no later day."));
}

void ChatTools::openPicture(qsizetype row) {
    delete viewer_;
    viewer_ = new PictureViewer(*pane_.window(), timeline_->sharedChatlog(), row,
                                services_.pictures, services_.contacts);
    ChatContents& contents = this->contents();
    const auto fill = [this, &contents] { viewer_->setRows(contents.rows(SharedKind::picture)); };
    if (contents.isReady()) fill();
    connect(&contents, &ChatContents::ready, viewer_, fill);
    connect(viewer_, &PictureViewer::closed, this, [this, row] {
        timeline_->setFocus();
        if (viewer_->row() != row) goTo(viewer_->row());
    });
}

void ChatTools::toggleSharedPane() {
    if (sharedPane_ && sharedPane_->isVisible()) {
        sharedPane_->close();
    } else {
        showSharedPane();
    }
}

void ChatTools::showSharedPane() {
    if (!sharedPane_) {
        makeSharedPane();
        widen(*pane_.window(), paneWidth);
        pane_.resizeDocks({sharedPane_}, {paneWidth}, Qt::Horizontal);
    }
    sharedPane_->show();
    sharedPane_->focusItems();
}

void ChatTools::makeSharedPane() {
    sharedPane_ =
        new SharedPane(timeline_->sharedChatlog(), services_.pictures, services_.contacts, &pane_);
    if (sharedAction_)
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
    const bool isMirrored = pane_.layoutDirection() == Qt::RightToLeft;
    pane_.addDockWidget(isMirrored ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea, sharedPane_);
}

void ChatTools::goTo(qsizetype row, int pointsAbove) {
    history_.jump([this, row, pointsAbove] {
        timeline_->scroller().scrollToRow(row);
        timeline_->scroller().scrollByPixels(-qRound(pointsAbove * timeline_->devicePixelRatioF()));
        timeline_->setCurrentRow(row);
    });
    timeline_->setFocus();
}

}  // namespace vell
