// SPDX-License-Identifier: MIT
//
// What the pane of a chat puts into the menus of its window.
#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include "app/desktop/desktop.h"
#include "app/desktop/settings.h"
#include "app/documents/archive/archive_tool.h"
#include "app/documents/chat_pane.h"
#include "app/documents/chat_tools.h"
#include "app/documents/find/chat_finder.h"
#include "app/windows/common_commands.h"
#include "app/windows/font_size.h"
#include "app/windows/font_size_panel.h"
#include "app/windows/icons.h"
#include "timeline/timeline_view.h"

namespace vell {

void ChatPane::enableWithChat(QAction* action) {
    action->setEnabled(timeline_ != nullptr);
    actions_.append(action);
}

void ChatPane::addSaveCommand(QMenu& menu) {
    enableWithChat(addCommand(menu, tr("&Save Chat as Markdown …"), keysFor(QKeySequence::Save),
                              [this] { saveAsMarkdown(); }));
    enableWithChat(addCommand(menu, tr("&Export …"),
                              {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E)},
                              [this] { exportChat(); }));
    enableWithChat(
        addCommand(menu, tr("&Print …"), keysFor(QKeySequence::Print), [this] { print(); }));
}

void ChatPane::addEditCommands(QMenu& menu) {
    copyAction_ = addCommand(menu, tr("Copy"), keysFor(QKeySequence::Copy), [this] { copy(); });
    copyAction_->setObjectName(QStringLiteral("copy"));
    copyAction_->setIcon(copyIcon());
    enableWithChat(copyAction_);
    enableWithChat(addCommand(menu, tr("Copy &Whole Chat"),
                              {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
                              [this] { copyWholeChat(); }));
    enableWithChat(addCommand(menu, tr("Select &All"), keysFor(QKeySequence::SelectAll),
                              [this] { timeline_->selectAll(); }));
    menu.addSeparator();
    enableWithChat(
        addCommand(menu, tr("&Find …"), keysFor(QKeySequence::Find), [this] { finder_->open(); }));
    enableWithChat(addCommand(menu, tr("Find &Next"), keysFor(QKeySequence::FindNext),
                              [this] { finder_->step(1); }));
    enableWithChat(addCommand(menu, tr("Find &Previous"), keysFor(QKeySequence::FindPrevious),
                              [this] { finder_->step(-1); }));
}

void ChatPane::addFontCommands(QMenu& menu) {
    addCommand(menu, tr("&Show Fonts"), {QKeySequence(Qt::CTRL | Qt::Key_T)},
               [this] { showFontPanel(); });
    menu.addSeparator();
    addCommand(menu, tr("&Bigger"), keysFor(QKeySequence::ZoomIn), [this] {
        changeFontSize(int(FontAction::sizeUp));
    })->setObjectName(QStringLiteral("fontBigger"));
    addCommand(menu, tr("S&maller"), keysFor(QKeySequence::ZoomOut), [this] {
        changeFontSize(int(FontAction::sizeDown));
    })->setObjectName(QStringLiteral("fontSmaller"));
}

void ChatPane::addSharedCommand(QMenu& menu) {
    for (QAction* action : tools_->addViewCommands(menu))
        enableWithChat(action);
}

void ChatPane::addArchiveCommand(QMenu& menu) {
    enableWithChat(archive_->addCommandTo(menu));
}

void ChatPane::addGoCommands(QMenu& menu) {
    menu.addAction(history_.backAction());
    menu.addAction(history_.forwardAction());
    menu.addSeparator();
    for (QAction* action : tools_->addGoCommands(menu))
        enableWithChat(action);
}

void ChatPane::addSessionCommands(QMenu& menu) {
    enableWithChat(addCommand(menu, tr("P&revious Session"),
                              {QKeySequence(Qt::ALT | Qt::Key_PageUp)},
                              [this] { stepSession(-1); }));
    enableWithChat(addCommand(menu, tr("Ne&xt Session"), {QKeySequence(Qt::ALT | Qt::Key_PageDown)},
                              [this] { stepSession(1); }));
}

void ChatPane::changeFontSize(int action) {
    Settings& settings = services_.settings;
    settings.setTimelineFontSize(
        fontSizeAfter(static_cast<FontAction>(action), settings.timelineFontSize(), 0));
}

void ChatPane::showFontPanel() {
    if (!fontPanel_) {
        fontPanel_ = new FontSizePanel(window());
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
