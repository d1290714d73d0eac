// SPDX-License-Identifier: MIT
#include "app/windows/common_commands.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMenuBar>

#include "app/desktop/desktop.h"
#include "app/desktop/opening.h"
#include "app/desktop/recent_files.h"
#include "app/windows/commands.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

void fillRecent(QMenu& menu, Commands& commands, RecentFiles& recentFiles) {
    menu.clear();
    const QStringList paths = recentFiles.paths();
    for (const QString& path : paths) {
        QAction* action = addCommand(menu, menuText(QFileInfo(path).fileName()), {},
                                     [&commands, path] { commands.open({path}); });
        action->setToolTip(path);
    }
    menu.addSeparator();
    addCommand(menu, Commands::tr("&Clear Menu"), {}, [&recentFiles] {
        recentFiles.clear();
    })->setEnabled(!paths.isEmpty());
}

}  // namespace

QList<QKeySequence> keysFor(QKeySequence::StandardKey command) {
    QList<QKeySequence> keys = QKeySequence::keyBindings(command);
    const auto customary = [command]() -> QKeySequence {
        switch (command) {
            case QKeySequence::Close:
                return Qt::CTRL | Qt::Key_W;
            case QKeySequence::Quit:
                return Qt::CTRL | Qt::Key_Q;
            case QKeySequence::Preferences:
                return Qt::CTRL | Qt::Key_Comma;
            case QKeySequence::FullScreen:
                return Qt::Key_F11;
            case QKeySequence::ZoomIn:
                return Qt::CTRL | Qt::Key_Equal;
            default:
                return {};
        }
    }();
    if (!customary.isEmpty() && !keys.contains(customary)) keys.append(customary);
    return keys;
}

void addOpeningCommands(QMenu& menu, Commands& commands, RecentFiles& recentFiles,
                        QWidget& window) {
    if (commands.offersFindFiles()) {
        addCommand(menu, Commands::tr("Find iChat Files …"), {},
                   [&commands] { commands.findFiles(); });
        menu.addSeparator();
    }
    addCommand(menu, Commands::tr("&Open …"), keysFor(QKeySequence::Open),
               [&commands, &window] { commands.showOpenDialog(&window); });
    QMenu* recent = menu.addMenu(Commands::tr("Open &Recent"));
    recent->setToolTipsVisible(true);
    QObject::connect(recent, &QMenu::aboutToShow, recent, [recent, &commands, &recentFiles] {
        fillRecent(*recent, commands, recentFiles);
    });
}

void addClosingCommands(QMenu& menu, Commands& commands, QWidget& window) {
    addCommand(menu, Commands::tr("Pre&ferences …"), keysFor(QKeySequence::Preferences),
               [&commands] { commands.showPreferences(); })
        ->setMenuRole(QAction::PreferencesRole);
    addCommand(menu, Commands::tr("&Close"), keysFor(QKeySequence::Close),
               [&window] { window.close(); });
    addCommand(menu, Commands::tr("&Quit"), keysFor(QKeySequence::Quit), [&commands] {
        commands.quit();
    })->setMenuRole(QAction::QuitRole);
}

void addWindowMenu(QMenuBar& menuBar, Commands& commands, QWidget& window) {
    QMenu& menu = *menuBar.addMenu(Commands::tr("&Window"));
    // Owned by the window: it stays when the menu is filled anew.
    auto* library = new QAction(Commands::tr("&Library"), &window);
    library->setShortcut(Qt::CTRL | Qt::Key_L);
    window.addAction(library);
    QObject::connect(library, &QAction::triggered, &window,
                     [&commands] { commands.showLibrary(); });
    QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&menu, &commands, &window, library] {
        menu.clear();
        menu.addAction(library);
        menu.addSeparator();
        int number = 0;
        for (QWidget* other : commands.windows()) {
            const QString key = ++number < 10 ? QStringLiteral("&%1 ").arg(number) : QString();
            QAction* action = menu.addAction(key + menuText(other->windowTitle()));
            QObject::connect(action, &QAction::triggered, other, [other] { bringToFront(*other); });
            if (other == &window) menu.setDefaultAction(action);
        }
    });
}

void addHelpMenu(QMenuBar& menuBar, Commands& commands) {
    QMenu& help = *menuBar.addMenu(Commands::tr("&Help"));
    const QString name = applicationInfo().appName;
    addCommand(help, Commands::tr("%1 &Help").arg(name), keysFor(QKeySequence::HelpContents),
               [&menuBar] { openWithDesktop(QUrl(address(InfoAddress::support)), menuBar); });
    help.addSeparator();
    addCommand(help, Commands::tr("About %1 …").arg(name), {}, [&commands] {
        commands.showAbout();
    })->setMenuRole(QAction::AboutRole);
    addCommand(help, Commands::tr("Report Bug …"), {},
               [&menuBar] { openWithDesktop(reportBug(), menuBar); });
}

void addClosingShortcuts(QWidget& window) {
    const auto add = [&window](QKeySequence::StandardKey keys, auto function) {
        auto* action = new QAction(&window);
        action->setShortcuts(keysFor(keys));
        QObject::connect(action, &QAction::triggered, &window, function);
        window.addAction(action);
    };
    add(QKeySequence::Close, [&window] { window.close(); });
    add(QKeySequence::Quit, [] { QCoreApplication::quit(); });
}

}  // namespace vell
