// SPDX-License-Identifier: MIT
#include "app/common_commands.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMenuBar>

#include "app/application.h"
#include "app/desktop/desktop.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

struct Commands {
    Q_DECLARE_TR_FUNCTIONS(Commands)
};

void fillRecent(QMenu& menu, Application& application) {
    menu.clear();
    for (const QString& path : application.recentFiles().paths()) {
        QAction* action = addCommand(menu, menuText(QFileInfo(path).fileName()), {},
                                     [&application, path] { application.open({path}); });
        action->setToolTip(path);
    }
    menu.addSeparator();
    const bool isEmpty = application.recentFiles().paths().isEmpty();
    addCommand(menu, Commands::tr("&Clear Menu"), {}, [&application] {
        application.recentFiles().clear();
    })->setEnabled(!isEmpty);
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

void addOpeningCommands(QMenu& menu, Application& application, QWidget& window) {
    if (Application::offersFindFiles()) {
        addCommand(menu, Commands::tr("Find iChat Files …"), {},
                   [&application] { application.findFiles(); });
        menu.addSeparator();
    }
    addCommand(menu, Commands::tr("&Open …"), keysFor(QKeySequence::Open),
               [&application, &window] { application.showOpenDialog(&window); });
    QMenu* recent = menu.addMenu(Commands::tr("Open &Recent"));
    recent->setToolTipsVisible(true);
    QObject::connect(recent, &QMenu::aboutToShow, &application,
                     [recent, &application] { fillRecent(*recent, application); });
}

void addClosingCommands(QMenu& menu, Application& application, QWidget& window) {
    addCommand(menu, Commands::tr("Pre&ferences …"), keysFor(QKeySequence::Preferences),
               [&application] { application.showPreferences(); })
        ->setMenuRole(QAction::PreferencesRole);
    addCommand(menu, Commands::tr("&Close"), keysFor(QKeySequence::Close),
               [&window] { window.close(); });
    addCommand(menu, Commands::tr("&Quit"), keysFor(QKeySequence::Quit), [&application] {
        application.quit();
    })->setMenuRole(QAction::QuitRole);
}

void addHelpMenu(QMenuBar& menuBar, Application& application) {
    QMenu& help = *menuBar.addMenu(Commands::tr("&Help"));
    const QString name = applicationInfo().appName;
    addCommand(help, Commands::tr("%1 &Help").arg(name), keysFor(QKeySequence::HelpContents),
               [] { openWithDesktop(QUrl(address(InfoAddress::support))); });
    help.addSeparator();
    addCommand(help, Commands::tr("About %1 …").arg(name), {}, [&application] {
        application.showAbout();
    })->setMenuRole(QAction::AboutRole);
    addCommand(help, Commands::tr("Report Bug …"), {}, [] { Application::openBugReport(); });
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
