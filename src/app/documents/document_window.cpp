// SPDX-License-Identifier: MIT
#include "app/documents/document_window.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/documents/chat_pane.h"
#include "app/documents/chat_title.h"
#include "app/documents/dates/time_zones.h"
#include "app/documents/recovery_bar.h"
#include "app/windows/window_geometry.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr QSize idealContent(520, 720);
constexpr int longestWaitForFrame = 250;  // milliseconds

}  // namespace

DocumentWindow::DocumentWindow(Commands& commands, const Services& services, DocumentLoader& loader,
                               const QString& path, Reading reading)
    : commands_(commands),
      services_(services),
      path_(path),
      reading_(reading),
      pane_(new ChatPane(services)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("documentWindow"));
    updateTitles();
    setWindowFilePath(isStandardInput(path) ? QString() : path);
    pane_->showLoading();
    setCentralWidget(pane_);
    resize(idealContent);
    statusBar()->setSizeGripEnabled(true);
    buildMenus();
    restorePlace();

    connect(pane_, &ChatPane::shown, this, &DocumentWindow::shown);
    connect(pane_, &ChatPane::changed, this, &DocumentWindow::updateTitles);
    connect(pane_, &ChatPane::noticed, statusBar(), &QStatusBar::showMessage);
    connect(&services_.contacts, &ContactsStore::addressToContactChanged, this,
            &DocumentWindow::updateTitles);
    connect(&services_.settings, &Settings::timeZoneChanged, this, &DocumentWindow::showTimeZone);
    showTimeZone();
    load_ = loader.load(
        path, [this](DocumentLoader::Result result) { take(std::move(result)); }, reading);
    // A window on another workspace isn't painted at all.
    QTimer::singleShot(longestWaitForFrame, this, &DocumentWindow::stopWaitingForFrame);
}

DocumentWindow::~DocumentWindow() = default;

bool DocumentWindow::isLoaded() const {
    return pane_->timeline() != nullptr;
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
    if (result.document->extent()) showExtent(*result.document->extent());
    pane_->showChat({result.document->sharedChatlog(),
                     std::make_shared<const ExpansionBound>(result.document->expansion()),
                     result.document->data().size(),
                     isStandardInput(path_) ? QString() : QFileInfo(path_).completeBaseName(),
                     result.document->data(), isRecovery()});
    updateTitles();
    TimelineView& timeline = *pane_->timeline();
    if (const auto place = services_.settings.windowPlace(path_))
        timeline.scroller().scrollToRow(place->topRow, place->pointsAbove);
    timeline.setFocus();
    if (!isStandardInput(path_) && !isRecovery()) services_.recentFiles.add(path_);
}

void DocumentWindow::showExtent(const recovery::Extent& extent) {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(new RecoveryBar(extent));
    layout->addWidget(takeCentralWidget(), 1);
    setCentralWidget(content);
}

void DocumentWindow::updateTitles() {
    if (isLoaded()) {
        titles_ = chatTitles(*pane_->chat().log, services_.contacts, path_);
    } else if (isStandardInput(path_)) {
        titles_ = {tr("Standard Input")};
    } else {
        titles_ = {QFileInfo(path_).completeBaseName(), QDir::toNativeSeparators(path_)};
    }
    if (isRecovery())
        for (QString& title : titles_)
            title = tr("%1 (recovered)").arg(title);
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
    if (!isLoaded() || isStandardInput(path_)) return;
    const TimelinePlace place = pane_->timeline()->scroller().place();
    services_.settings.setWindowPlace(path_, {saveGeometry(), place.row, place.pointsAbove});
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    load_.reset();
    waiting_.reset();
    savePlace();
    QMainWindow::closeEvent(event);
    Q_EMIT closed(this);
}

void DocumentWindow::showTimeZone() {
    const QString zone = services_.settings.timeZone();
    if (!zoneLabel_) {
        if (zone.isEmpty()) return;
        zoneLabel_ = new QLabel;
        zoneLabel_->setTextFormat(Qt::PlainText);
        zoneLabel_->setContentsMargins(8, 0, 8, 0);
        statusBar()->addPermanentWidget(zoneLabel_);
    }
    zoneLabel_->setText(tr("Time zone: %1").arg(cityOf(zone)));
    zoneLabel_->setToolTip(zone);
    zoneLabel_->setVisible(!zone.isEmpty());
}

}  // namespace vell
