// SPDX-License-Identifier: MIT
#include "app/documents/document_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "app/desktop/opening.h"
#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/documents/chat_title.h"
#include "app/documents/contacts_bar.h"
#include "app/documents/document_tools.h"
#include "app/documents/find/chat_finder.h"
#include "app/windows/font_size.h"
#include "app/windows/window_geometry.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/accessibility/accessible_timeline.h"
#include "timeline/input/links.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr QSize minimumContent(272, 320);
constexpr QSize idealContent(520, 720);
constexpr int spinnerDelay = 200;         // milliseconds; most transcripts are loaded sooner
constexpr int longestWaitForFrame = 250;  // milliseconds
constexpr int noticeDuration = 4000;      // milliseconds

/// Shown while a transcript is read: nothing at first, then a progress bar.
QWidget* loadingPage() {
    auto* page = new QWidget;
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    auto* spinner = new QProgressBar;
    spinner->setRange(0, 0);
    spinner->setTextVisible(false);
    spinner->setMaximumWidth(160);
    spinner->setAccessibleName(DocumentWindow::tr("Opening …"));
    spinner->hide();
    QTimer::singleShot(spinnerDelay, spinner, &QWidget::show);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(spinner, 0, Qt::AlignCenter);
    return page;
}

}  // namespace

DocumentWindow::DocumentWindow(Commands& commands, const Services& services, DocumentLoader& loader,
                               const QString& path)
    : commands_(commands),
      services_(services),
      path_(path),
      tools_(new DocumentTools(*this, services_, history_)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("documentWindow"));
    updateTitles();
    setWindowFilePath(isStandardInput(path) ? QString() : path);
    buildContent();
    buildMenus();
    restorePlace();

    connect(&services_.settings, &Settings::timelineFontSizeChanged, this, [this](qint64 points) {
        if (timeline_) showFontSize(points);
    });
    connect(&services_.contacts, &ContactsStore::addressToContactChanged, this,
            &DocumentWindow::updateTitles);
    connect(&services_.settings, &Settings::timeZoneChanged, this, &DocumentWindow::followTimeZone);
    showTimeZone();
    load_ = loader.load(path, [this](DocumentLoader::Result result) { take(std::move(result)); });
    // A window on another workspace isn't painted at all.
    QTimer::singleShot(longestWaitForFrame, this, &DocumentWindow::stopWaitingForFrame);
}

DocumentWindow::~DocumentWindow() {
    if (zoneChange_) zoneChange_->close();
}

void DocumentWindow::buildContent() {
    pages_ = new QStackedWidget;
    pages_->addWidget(loadingPage());
    contactsBar_ = new ContactsBar(services_.contacts);

    auto* content = new QWidget;
    content->setAutoFillBackground(true);
    content->setBackgroundRole(QPalette::Base);
    content->setMinimumSize(minimumContent);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(pages_, 1);
    layout->addWidget(contactsBar_);
    setCentralWidget(content);
    resize(idealContent);
    statusBar()->setSizeGripEnabled(true);
}

// Laying out and painting bubbles takes longer than all else up to the first frame.
void DocumentWindow::take(DocumentLoader::Result result) {
    load_.reset();
    if (waitsForFrame_) {
        waiting_ = std::move(result);
    } else {
        loaded(result);
    }
}

void DocumentWindow::paintEvent(QPaintEvent* event) {
    QMainWindow::paintEvent(event);
    if (waitsForFrame_) QTimer::singleShot(0, this, &DocumentWindow::stopWaitingForFrame);
}

void DocumentWindow::stopWaitingForFrame() {
    waitsForFrame_ = false;
    if (const auto result = std::exchange(waiting_, std::nullopt)) loaded(*result);
}

void DocumentWindow::loaded(const DocumentLoader::Result& result) {
    if (!result.document) {
        Q_EMIT failed(*result.error);
        close();
        return;
    }
    document_ = result.document;
    updateTitles();
    timeline_ =
        new TimelineView(document_->sharedChatlog(), services_.contacts, services_.pictures);
    AccessibleTimeline::attach(*timeline_);
    history_.attach(*timeline_);
    timeline_->links().setOpener([this](const QUrl& url) {
        openWithDesktop(url, *this);  // which explains a failure
        return true;
    });
    makeFinder();
    connect(timeline_, &TimelineView::linkHovered, statusBar(),
            [this](const QString& address) { statusBar()->showMessage(address); });
    timeline_->setSelectionExporter([this](const TextSpan& selected, SelectionTarget target) {
        return selectionData(selected, target);
    });
    timeline_->setFontSize(services_.settings.timelineFontSize());
    timeline_->viewport()->installEventFilter(this);
    tools_->setTimeline(*timeline_);
    pages_->setCurrentIndex(pages_->addWidget(timeline_));
    delete pages_->widget(0);
    if (const auto place = services_.settings.windowPlace(path_))
        timeline_->scroller().scrollToRow(place->topRow, place->pointsAbove);
    timeline_->setFocus();
    for (QAction* action : documentActions_)
        action->setEnabled(true);
    if (!isStandardInput(path_)) services_.recentFiles.add(path_);
    if (zoneChange_) followTimeZone();  // it changed while the file was read
}

void DocumentWindow::makeFinder() {
    auto& layout = *static_cast<QVBoxLayout*>(centralWidget()->layout());
    finder_ = std::make_unique<ChatFinder>(*this, layout, *timeline_, history_);
}

bool DocumentWindow::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Paint) {
        object->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &DocumentWindow::shown, Qt::QueuedConnection);
    }
    return QMainWindow::eventFilter(object, event);
}

// The size may be any number, and the timeline doesn't show what it can't paint.
void DocumentWindow::showFontSize(qint64 points) {
    timeline_->setFontSize(points);
    const int painted = timeline_->context().fonts.message.pixelSize();
    const QString size = locale().toString(points);
    showNotice(painted == points
                   ? tr("Font size: %1").arg(size)
                   : tr("Font size: %1, shown as %2").arg(size, locale().toString(painted)));
}

void DocumentWindow::showNotice(const QString& text) {
    statusBar()->showMessage(text, noticeDuration);
}

void DocumentWindow::updateTitles() {
    if (document_) {
        titles_ = chatTitles(document_->chatlog(), services_.contacts, path_);
    } else if (isStandardInput(path_)) {
        titles_ = {tr("Standard Input")};
    } else {
        titles_ = {QFileInfo(path_).completeBaseName(), QDir::toNativeSeparators(path_)};
    }
    setTitle(titles_.front());
    Q_EMIT titlesChanged();
}

void DocumentWindow::setTitle(QString title) {
    // Qt replaces "[*]" by its own mark for unsaved changes.
    setWindowTitle(title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void DocumentWindow::restorePlace() {
    if (const auto place = services_.settings.windowPlace(path_))
        restoreWindow(*this, place->geometry);
}

void DocumentWindow::savePlace() const {
    if (!document_ || isStandardInput(path_)) return;
    services_.settings.setWindowPlace(path_, {saveGeometry(), timeline_->scroller().topRow(),
                                              timeline_->scroller().pointsAbove()});
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    load_.reset();
    waiting_.reset();
    savePlace();
    QMainWindow::closeEvent(event);
    Q_EMIT closed(this);
}

void DocumentWindow::copy() {
    if (timeline_->hasSelection()) {
        timeline_->copySelection();
    } else {
        copyWholeChat();
    }
}

}  // namespace vell
