// SPDX-License-Identifier: MIT
#include "app/documents/archive/archive_tool.h"

#include <QMainWindow>

#include "app/documents/archive/archive_pane.h"
#include "app/windows/common_commands.h"
#include "app/windows/placement.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr int archiveWidth = 480;  // points

}  // namespace

ArchiveTool::ArchiveTool(QMainWindow& pane, const ShownChat& chat, TimelineView* const& timeline)
    : QObject(&pane), pane_(pane), chat_(chat), timeline_(timeline) {}

QAction* ArchiveTool::addCommandTo(QMenu& menu) {
    action_ =
        addCommand(menu, tr("Show A&rchive"), {QKeySequence(Qt::Key_F12)}, [this] { toggle(); });
    action_->setCheckable(true);
    return action_;
}

void ArchiveTool::close() {
    delete archive_;
}

void ArchiveTool::chatChanged() {
    if (archive_) archive_->setLog(*chat_.log);
}

void ArchiveTool::toggle() {
    if (archive_ && archive_->isVisible()) {
        archive_->close();
        return;
    }
    if (!archive_) makePane();
    archive_->show();
    archive_->focusTree();
}

void ArchiveTool::makePane() {
    archive_ = new ArchivePane(chat_, *timeline_, &pane_);
    connect(archive_, &QDockWidget::visibilityChanged, action_, &QAction::setChecked);
    connect(archive_, &ArchivePane::left, this, [this] { timeline_->setFocus(); });
    const bool isMirrored = pane_.layoutDirection() == Qt::RightToLeft;
    pane_.addDockWidget(isMirrored ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea, archive_);
    widen(*pane_.window(), archiveWidth);
    pane_.resizeDocks({archive_}, {archiveWidth}, Qt::Horizontal);
}

}  // namespace vell
