// SPDX-License-Identifier: MIT
#include "app/documents/chat_pane.h"

#include <QBoxLayout>
#include <QProgressBar>
#include <QStackedWidget>
#include <QTimer>
#include <utility>

#include "app/desktop/opening.h"
#include "app/desktop/settings.h"
#include "app/documents/archive/archive_tool.h"
#include "app/documents/chat_tools.h"
#include "app/documents/contacts_bar.h"
#include "app/documents/find/chat_finder.h"
#include "timeline/accessibility/accessible_timeline.h"
#include "timeline/input/links.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr QSize minimumContent(272, 320);
constexpr int spinnerDelay = 200;     // milliseconds; most transcripts are loaded sooner
constexpr int noticeDuration = 4000;  // milliseconds

QWidget* emptyPage() {
    auto* page = new QWidget;
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    return page;
}

/// Shown while a transcript is read: nothing at first, then a progress bar.
QWidget* loadingPage() {
    auto* page = emptyPage();
    auto* spinner = new QProgressBar;
    spinner->setRange(0, 0);
    spinner->setTextVisible(false);
    spinner->setMaximumWidth(160);
    spinner->setAccessibleName(ChatPane::tr("Opening …"));
    spinner->hide();
    QTimer::singleShot(spinnerDelay, spinner, &QWidget::show);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(spinner, 0, Qt::AlignCenter);
    return page;
}

}  // namespace

ChatPane::ChatPane(const Services& services, QWidget* parent)
    : QMainWindow(parent),
      services_(services),
      pages_(new QStackedWidget),
      tools_(new ChatTools(*this, services_, history_)),
      archive_(new ArchiveTool(*this, chat_, timeline_)) {
    setWindowFlags(Qt::Widget);  // a main window for its docks, inside another window
    auto* content = emptyPage();
    content->setMinimumSize(minimumContent);
    layout_ = new QVBoxLayout(content);
    layout_->setContentsMargins({});
    layout_->setSpacing(0);
    layout_->addWidget(pages_, 1);
    layout_->addWidget(new ContactsBar(services_.contacts));
    setCentralWidget(content);
    pages_->addWidget(emptyPage());

    connect(tools_, &ChatTools::noticed, this, &ChatPane::notice);
    connect(&services_.settings, &Settings::timelineFontSizeChanged, this, [this](qint64 points) {
        if (timeline_) showFontSize(points);
    });
    connect(&services_.settings, &Settings::timeZoneChanged, this, &ChatPane::followTimeZone);
}

ChatPane::~ChatPane() {
    if (reading_) reading_->close();
    if (zoneChange_) zoneChange_->close();
    finder_.reset();
}

void ChatPane::showPage(QWidget* page) {
    QWidget* before = pages_->currentWidget();
    pages_->setCurrentIndex(pages_->addWidget(page));
    delete before;
}

void ChatPane::showLoading() {
    dropChat();
    showPage(loadingPage());
}

void ChatPane::clear() {
    stopReading();
    dropChat();
    showPage(emptyPage());
}

void ChatPane::dropChat() {
    merged_.reset();
    paths_.clear();
    marks_.reset();
    if (!timeline_) return;
    finder_.reset();
    tools_->close();
    archive_->close();
    showPage(emptyPage());  // deletes the timeline
    timeline_ = nullptr;
    chat_ = {};
    for (QAction* action : actions_)
        action->setEnabled(false);
}

void ChatPane::showChat(ShownChat chat) {
    stopReading();
    dropChat();
    chat_ = std::move(chat);
    makeTimeline();
}

void ChatPane::makeTimeline() {
    timeline_ = new TimelineView(chat_.log, services_.contacts, services_.pictures);
    AccessibleTimeline::attach(*timeline_);
    history_.attach(*timeline_);
    timeline_->links().setOpener([this](const QUrl& url) {
        openWithDesktop(url, *window());  // which explains a failure
        return true;
    });
    finder_ = std::make_unique<ChatFinder>(*this, *layout_, *timeline_, history_);
    connect(timeline_, &TimelineView::linkHovered, this,
            [this](const QString& address) { Q_EMIT noticed(address, 0); });
    connect(timeline_, &TimelineView::sessionOpened, this, &ChatPane::sessionOpened);
    timeline_->setSelectionExporter([this](const TextSpan& selected, SelectionTarget target) {
        return selectionData(selected, target);
    });
    timeline_->setFontSize(services_.settings.timelineFontSize());
    timeline_->viewport()->installEventFilter(this);
    tools_->setTimeline(*timeline_);
    showPage(timeline_);
    for (QAction* action : actions_)
        action->setEnabled(true);
    if (zoneChange_ && !merged_) followTimeZone();  // it changed while the file was read
}

bool ChatPane::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Paint) {
        object->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &ChatPane::shown, Qt::QueuedConnection);
    }
    return QMainWindow::eventFilter(object, event);
}

// The size may be any number, and the timeline doesn't show what it can't paint.
void ChatPane::showFontSize(qint64 points) {
    timeline_->setFontSize(points);
    const int painted = timeline_->context().fonts.message.pixelSize();
    const QString size = locale().toString(points);
    notice(painted == points
               ? tr("Font size: %1").arg(size)
               : tr("Font size: %1, shown as %2").arg(size, locale().toString(painted)));
}

void ChatPane::notice(const QString& text) {
    Q_EMIT noticed(text, noticeDuration);
}

void ChatPane::copy() {
    if (timeline_->hasSelection()) {
        timeline_->copySelection();
    } else {
        copyWholeChat();
    }
}

}  // namespace vell
