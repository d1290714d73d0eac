#pragma once
// SPDX-License-Identifier: MIT
//
// Commands that several kinds of windows offer: opening, closing, help.

#include <QAction>
#include <QKeySequence>
#include <QMenu>

class QMenuBar;

namespace vell {

class Commands;
class RecentFiles;

/// The desktop's keys for a command, and the usual ones where it has none.
[[nodiscard]] QList<QKeySequence> keysFor(QKeySequence::StandardKey command);

/// Adds an entry to a menu: text, shortcuts, what it does.
template <class Function>
QAction* addCommand(QMenu& menu, const QString& text, const QList<QKeySequence>& shortcuts,
                    Function function) {
    QAction* action = menu.addAction(text);
    action->setShortcuts(shortcuts);
    QObject::connect(action, &QAction::triggered, &menu, function);
    return action;
}

/// "Find iChat Files …" where the program has its saved search, "Open …", "Open Recent".
void addOpeningCommands(QMenu& menu, Commands& commands, RecentFiles& recentFiles, QWidget& window);

/// "Preferences …", "Close", "Quit".
void addClosingCommands(QMenu& menu, Commands& commands, QWidget& window);

/// The Window menu: every open window, the first nine with a number as their access key.
void addWindowMenu(QMenuBar& menuBar, Commands& commands, QWidget& window);

/// The Help menu: help, About, "Report Bug …".
void addHelpMenu(QMenuBar& menuBar, Commands& commands);

/// Adds the usual keys for closing and quitting to a window without menus.
void addClosingShortcuts(QWidget& window);

}  // namespace vell
