// SPDX-License-Identifier: MIT
//
// The menus and the toolbar of a document window.

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "app/desktop/desktop.h"
#include "app/desktop/settings.h"
#include "app/documents/dates/time_zones.h"
#include "app/documents/document_tools.h"
#include "app/documents/document_window.h"
#include "app/documents/find/chat_finder.h"
#include "app/windows/commands.h"
#include "app/windows/common_commands.h"
#include "app/windows/font_size.h"
#include "app/windows/font_size_panel.h"
#include "app/windows/icons.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr qint64 actualFontSize = 16;

}  // namespace

void DocumentWindow::buildMenus() {
    QToolBar* toolBar = addToolBar(tr("Toolbar"));
    toolBar->toggleViewAction()->setText(tr("&Toolbar"));
    buildFileMenu();
    buildEditMenu();
    buildFormatMenu();
    buildViewMenu(*toolBar);
    buildGoMenu();
    addWindowMenu(*menuBar(), commands_, *this);
    addHelpMenu(*menuBar(), commands_);

    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addAction(copyAction_);
    for (QAction* action : documentActions_)
        action->setEnabled(false);
}

void DocumentWindow::buildFileMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&File"));
    addOpeningCommands(menu, commands_, services_.recentFiles, *this);
    menu.addSeparator();
    documentActions_.append(addCommand(menu, tr("&Save Chat as Markdown …"),
                                       keysFor(QKeySequence::Save), [this] { saveAsMarkdown(); }));
    menu.addSeparator();
    addClosingCommands(menu, commands_, *this);
}

void DocumentWindow::buildEditMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&Edit"));
    copyAction_ = addCommand(menu, tr("Copy"), keysFor(QKeySequence::Copy), [this] { copy(); });
    copyAction_->setObjectName(QStringLiteral("copy"));
    copyAction_->setIcon(copyIcon());
    documentActions_.append(copyAction_);
    documentActions_.append(addCommand(menu, tr("Copy &Whole Chat"),
                                       {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
                                       [this] { copyWholeChat(); }));
    documentActions_.append(addCommand(menu, tr("Select &All"), keysFor(QKeySequence::SelectAll),
                                       [this] { timeline_->selectAll(); }));
    menu.addSeparator();
    documentActions_.append(
        addCommand(menu, tr("&Find …"), keysFor(QKeySequence::Find), [this] { finder_->open(); }));
    documentActions_.append(addCommand(menu, tr("Find &Next"), keysFor(QKeySequence::FindNext),
                                       [this] { finder_->step(1); }));
    documentActions_.append(addCommand(menu, tr("Find &Previous"),
                                       keysFor(QKeySequence::FindPrevious),
                                       [this] { finder_->step(-1); }));
}

void DocumentWindow::buildFormatMenu() {
    QMenu& font = *menuBar()->addMenu(tr("F&ormat"))->addMenu(tr("&Font"));
    addCommand(font, tr("&Show Fonts"), {QKeySequence(Qt::CTRL | Qt::Key_T)},
               [this] { showFontPanel(); });
    font.addSeparator();
    addCommand(font, tr("&Bigger"), keysFor(QKeySequence::ZoomIn), [this] {
        changeFontSize(int(FontAction::sizeUp));
    })->setObjectName(QStringLiteral("fontBigger"));
    addCommand(font, tr("S&maller"), keysFor(QKeySequence::ZoomOut), [this] {
        changeFontSize(int(FontAction::sizeDown));
    })->setObjectName(QStringLiteral("fontSmaller"));
}

void DocumentWindow::buildViewMenu(const QToolBar& toolBar) {
    QMenu& menu = *menuBar()->addMenu(tr("&View"));
    addCommand(menu, tr("&Actual Size"), {QKeySequence(Qt::CTRL | Qt::Key_0)},
               [this] { services_.settings.setTimelineFontSize(actualFontSize); });
    menu.addSeparator();
    menu.addAction(toolBar.toggleViewAction());
    documentActions_.append(tools_->addViewCommands(menu));
    menu.addMenu(new TimeZoneMenu(services_.settings, *this));
    menu.addSeparator();
    QAction* fullScreen =
        addCommand(menu, tr("&Full Screen"), keysFor(QKeySequence::FullScreen),
                   [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    fullScreen->setCheckable(true);
    connect(&menu, &QMenu::aboutToShow, this,
            [this, fullScreen] { fullScreen->setChecked(isFullScreen()); });
}

void DocumentWindow::buildGoMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&Go"));
    menu.addAction(history_.backAction());
    menu.addAction(history_.forwardAction());
    menu.addSeparator();
    documentActions_.append(tools_->addGoCommands(menu));
}

void DocumentWindow::changeFontSize(int action) {
    Settings& settings = services_.settings;
    settings.setTimelineFontSize(
        fontSizeAfter(static_cast<FontAction>(action), settings.timelineFontSize(), 0));
}

void DocumentWindow::showFontPanel() {
    if (!fontPanel_) {
        fontPanel_ = new FontSizePanel(this);
        Settings& settings = services_.settings;
        connect(fontPanel_, &FontSizePanel::sizeChosen, this, [&settings](double points) {
            settings.setTimelineFontSize(
                fontSizeAfter(FontAction::viaPanel, settings.timelineFontSize(), points));
        });
        connect(&settings, &Settings::timelineFontSizeChanged, fontPanel_, &FontSizePanel::setSize);
        fontPanel_->setSize(settings.timelineFontSize());
    }
    bringToFront(*fontPanel_);
}

}  // namespace vell
