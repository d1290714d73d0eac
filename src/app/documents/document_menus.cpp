// SPDX-License-Identifier: MIT
//
// The menus and the toolbar of a document window.
#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "app/desktop/settings.h"
#include "app/documents/chat_pane.h"
#include "app/documents/dates/time_zones.h"
#include "app/documents/document_window.h"
#include "app/windows/commands.h"
#include "app/windows/common_commands.h"

namespace vell {
namespace {

constexpr qint64 actualFontSize = 16;

}  // namespace

void DocumentWindow::buildMenus() {
    QToolBar* toolBar = addToolBar(tr("Toolbar"));
    toolBar->toggleViewAction()->setText(tr("&Toolbar"));
    QMenu& file = *menuBar()->addMenu(tr("&File"));
    addOpeningCommands(file, commands_, services_.recentFiles, *this);
    file.addSeparator();
    pane_->addSaveCommand(file);
    file.addSeparator();
    addClosingCommands(file, commands_, *this);
    pane_->addEditCommands(*menuBar()->addMenu(tr("&Edit")));
    pane_->addFontCommands(*menuBar()->addMenu(tr("F&ormat"))->addMenu(tr("&Font")));
    buildViewMenu(*toolBar);
    pane_->addGoCommands(*menuBar()->addMenu(tr("&Go")));
    addWindowMenu(*menuBar(), commands_, *this);
    addHelpMenu(*menuBar(), commands_);

    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addAction(pane_->copyAction());
}

void DocumentWindow::buildViewMenu(const QToolBar& toolBar) {
    QMenu& menu = *menuBar()->addMenu(tr("&View"));
    addCommand(menu, tr("&Actual Size"), {QKeySequence(Qt::CTRL | Qt::Key_0)},
               [this] { services_.settings.setTimelineFontSize(actualFontSize); });
    menu.addSeparator();
    menu.addAction(toolBar.toggleViewAction());
    pane_->addSharedCommand(menu);
    pane_->addArchiveCommand(menu);
    menu.addMenu(new TimeZoneMenu(services_.settings, *this));
    menu.addSeparator();
    QAction* fullScreen =
        addCommand(menu, tr("&Full Screen"), keysFor(QKeySequence::FullScreen),
                   [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    fullScreen->setCheckable(true);
    connect(&menu, &QMenu::aboutToShow, this,
            [this, fullScreen] { fullScreen->setChecked(isFullScreen()); });
}

}  // namespace vell
