// SPDX-License-Identifier: MIT
//
// The menus and the toolbar of a document window.

#include <QAction>
#include <QActionGroup>
#include <QFileInfo>
#include <QFontDialog>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>

#include "app/application.h"
#include "app/document_window.h"
#include "app/find_bar.h"
#include "app/font_size.h"
#include "timeline/timeline_view.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

constexpr qint64 actualFontSize = 16;

/// One entry of a menu: text, shortcuts, what it does.
template <class Function>
QAction* add(QMenu& menu, const QString& text, const QList<QKeySequence>& shortcuts,
             Function function) {
    QAction* action = menu.addAction(text);
    action->setShortcuts(shortcuts);
    QObject::connect(action, &QAction::triggered, &menu, function);
    return action;
}

QList<QKeySequence> standard(QKeySequence::StandardKey key) {
    return QKeySequence::keyBindings(key);
}

}  // namespace

void DocumentWindow::buildMenus() {
    buildFileMenu();
    buildEditMenu();
    buildFormatMenu();
    buildViewMenu();
    buildWindowAndHelpMenus();

    QToolBar* toolBar = addToolBar(tr("Toolbar"));
    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addAction(copyAction_);
    for (QAction* action : documentActions_)
        action->setEnabled(false);
}

void DocumentWindow::buildFileMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&File"));
    if (Application::offersFindFiles()) {
        add(menu, tr("Find iChat Files …"), {}, [this] { application_.findFiles(); });
        menu.addSeparator();
    }
    add(menu, tr("&Open …"), standard(QKeySequence::Open),
        [this] { application_.showOpenDialog(this); });

    QMenu* recent = menu.addMenu(tr("Open &Recent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] {
        recent->clear();
        for (const QString& path : application_.recentFiles().paths()) {
            QAction* action = recent->addAction(QFileInfo(path).fileName());
            action->setToolTip(path);
            connect(action, &QAction::triggered, this, [this, path] { application_.open({path}); });
        }
        recent->addSeparator();
        add(*recent, tr("&Clear Menu"), {}, [this] { application_.recentFiles().clear(); });
    });

    menu.addSeparator();
    documentActions_.append(add(menu, tr("&Save Chat as Markdown …"), standard(QKeySequence::Save),
                                [this] { saveAsMarkdown(); }));
    menu.addSeparator();
    add(menu, tr("Pre&ferences …"), standard(QKeySequence::Preferences), [this] {
        application_.showPreferences();
    })->setMenuRole(QAction::PreferencesRole);
    add(menu, tr("&Close"), standard(QKeySequence::Close), [this] { close(); });
    add(menu, tr("&Quit"), standard(QKeySequence::Quit), [this] {
        application_.quit();
    })->setMenuRole(QAction::QuitRole);
}

void DocumentWindow::buildEditMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&Edit"));
    copyAction_ = add(menu, tr("Copy"), standard(QKeySequence::Copy), [this] { copyWholeChat(); });
    copyAction_->setObjectName(QStringLiteral("copy"));
    copyAction_->setIcon(QIcon::fromTheme(QStringLiteral("edit-copy")));
    documentActions_.append(copyAction_);
    menu.addSeparator();
    documentActions_.append(
        add(menu, tr("&Find …"), standard(QKeySequence::Find), [this] { openFindBar(); }));
    documentActions_.append(
        add(menu, tr("Find &Next"), standard(QKeySequence::FindNext), [this] { goToMatch(1); }));
    documentActions_.append(add(menu, tr("Find &Previous"), standard(QKeySequence::FindPrevious),
                                [this] { goToMatch(-1); }));
}

void DocumentWindow::buildFormatMenu() {
    QMenu& font = *menuBar()->addMenu(tr("F&ormat"))->addMenu(tr("&Font"));
    add(font, tr("&Show Fonts"), {QKeySequence(Qt::CTRL | Qt::Key_T)}, [this] { showFontPanel(); });
    font.addSeparator();
    QList<QKeySequence> bigger = standard(QKeySequence::ZoomIn);
    bigger.append(QKeySequence(Qt::CTRL | Qt::Key_Equal));
    add(font, tr("&Bigger"), bigger, [this] {
        changeFontSize(int(FontAction::sizeUp));
    })->setObjectName(QStringLiteral("fontBigger"));
    add(font, tr("S&maller"), standard(QKeySequence::ZoomOut), [this] {
        changeFontSize(int(FontAction::sizeDown));
    })->setObjectName(QStringLiteral("fontSmaller"));
}

void DocumentWindow::buildViewMenu() {
    QMenu& menu = *menuBar()->addMenu(tr("&View"));
    add(menu, tr("&Actual Size"), {QKeySequence(Qt::CTRL | Qt::Key_0)},
        [this] { application_.settings().setTimelineFontSize(actualFontSize); });
    menu.addSeparator();
    QAction* fullScreen = add(menu, tr("&Full Screen"), standard(QKeySequence::FullScreen),
                              [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    fullScreen->setCheckable(true);
    connect(&menu, &QMenu::aboutToShow, this,
            [this, fullScreen] { fullScreen->setChecked(isFullScreen()); });
}

void DocumentWindow::buildWindowAndHelpMenus() {
    QMenu* windows = menuBar()->addMenu(tr("&Window"));
    connect(windows, &QMenu::aboutToShow, this, [this, windows] {
        windows->clear();
        for (DocumentWindow* window : application_.documentWindows()) {
            QAction* action = windows->addAction(window->windowTitle());
            action->setCheckable(true);
            action->setChecked(window == this);
            connect(action, &QAction::triggered, window, [window] {
                window->raise();
                window->activateWindow();
            });
        }
    });

    QMenu& help = *menuBar()->addMenu(tr("&Help"));
    add(help, tr("About %1 …").arg(applicationInfo().appName), {}, [this] {
        application_.showAbout();
    })->setMenuRole(QAction::AboutRole);
    add(help, tr("Report Bug …"), {}, [] { Application::openBugReport(); });
}

void DocumentWindow::changeFontSize(int action) {
    Settings& settings = application_.settings();
    settings.setTimelineFontSize(
        fontSizeAfter(static_cast<FontAction>(action), settings.timelineFontSize(), 0));
}

void DocumentWindow::showFontPanel() {
    if (!fontPanel_) {
        fontPanel_ = new QFontDialog(this);
        fontPanel_->setOption(QFontDialog::NoButtons);
        connect(fontPanel_, &QFontDialog::currentFontChanged, this, [this](const QFont& font) {
            Settings& settings = application_.settings();
            const FontAction action = panelAction(panelFont_, font);
            panelFont_ = font;
            settings.setTimelineFontSize(
                fontSizeAfter(action, settings.timelineFontSize(), font.pointSizeF()));
        });
    }
    panelFont_ = font();
    panelFont_.setPointSizeF(paintableFontSize(application_.settings().timelineFontSize()));
    {
        const QSignalBlocker quiet(fontPanel_);
        fontPanel_->setCurrentFont(panelFont_);
    }
    fontPanel_->show();
    fontPanel_->raise();
}

}  // namespace vell
