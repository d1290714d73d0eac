// SPDX-License-Identifier: MIT
#include "app/application.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <algorithm>
#include <utility>

#include "app/about_window.h"
#include "app/desktop.h"
#include "app/document_window.h"
#include "app/find_files_window.h"
#include "app/load_log_window.h"
#include "app/panel_window.h"
#include "app/preferences_window.h"
#include "app/saved_search.h"
#include "app/welcome_window.h"
#include "identity/contacts_store.h"
#include "identity/service_source.h"
#include "identity/system_contacts.h"
#include "identity/vcard_source.h"
#include "toolkit/application_info.h"

namespace vell {

Application::Application(std::shared_ptr<FileReader> reader)
    : loader_(reader ? std::move(reader) : std::make_shared<DiskFileReader>(), lane_.entrance(),
              presentLoadLogWindowIfNecessary) {
    openContacts();
    connect(&instance_, &SingleInstance::received, this, [this](const QStringList& paths) {
        if (!paths.isEmpty()) {
            open(paths);
        } else if (windows_.empty()) {
            showWelcome();
        } else {
            windows_.back()->raise();
            windows_.back()->activateWindow();
        }
    });
}

Application::~Application() = default;

void Application::openContacts() {
    auto chosen =
        std::make_unique<VCardSource>(settings_.contactsFiles(), VCardSource::Chosen::byUser);
    chosenCards_ = chosen.get();
    SystemContacts::Sources files;
    files.push_back(std::move(chosen));
    SystemContacts::Sources guarded;
    guarded.push_back(std::make_unique<VCardSource>(VCardSource::customaryFolders(),
                                                    VCardSource::Chosen::byCustom));
    guarded.push_back(std::make_unique<ServiceSource>());
    auto all = std::make_unique<SystemContacts>(contactsSettings_, contactsDialog_,
                                                std::move(files), std::move(guarded));
    systemContacts_ = all.get();
    contacts_ = std::make_unique<ContactsStore>(std::move(all), contactsSettings_);
    connect(&settings_, &Settings::contactsFilesChanged, this,
            [this](const QStringList& paths) { chosenCards_->setPaths(paths); });
}

void Application::listenForOtherStarts() {
    instance_.listen();
}

void Application::open(const QStringList& paths) {
    for (const QString& path : paths) {
        if (!isStandardInput(path) && QFileInfo(path).isDir()) {
            showFindWindow({path});
        } else {
            openTranscript(path);
        }
    }
}

void Application::openTranscript(const QString& path) {
    if (DocumentWindow* window = windowFor(path)) {
        window->show();
        window->raise();
        window->activateWindow();
        return;
    }
    auto* window = new DocumentWindow(*this, loader_, path);
    windows_.push_back(window);
    connect(window, &DocumentWindow::failed, this, &Application::reportFailure);
    connect(window, &DocumentWindow::closed, this, &Application::remove);
    connect(window, &QWidget::windowTitleChanged, this, &Application::documentWindowsChanged);
    window->show();
    if (welcome_) welcome_->close();
    rememberWindows();
    Q_EMIT documentWindowsChanged();
}

DocumentWindow* Application::windowFor(const QString& path) const {
    if (isStandardInput(path)) return nullptr;
    const QString canonical = QFileInfo(path).canonicalFilePath();
    const auto same = [&](const DocumentWindow* window) {
        return window->path() == path ||
               (!canonical.isEmpty() && QFileInfo(window->path()).canonicalFilePath() == canonical);
    };
    const auto found = std::find_if(windows_.begin(), windows_.end(), same);
    return found == windows_.end() ? nullptr : *found;
}

void Application::remove(DocumentWindow* window) {
    std::erase(windows_, window);
    rememberWindows();
    Q_EMIT documentWindowsChanged();
}

std::vector<DocumentWindow*> Application::documentWindows() const {
    return windows_;
}

void Application::openWithoutFiles() {
    if (settings_.restoresWindows()) {
        for (const QString& path : settings_.lastWindows()) {
            if (QFileInfo::exists(path)) openTranscript(path);
        }
    }
    if (windows_.empty()) showWelcome();
}

// One message for all that fail at about the same time: no dialog ever covers another.
void Application::reportFailure(const QString& path) {
    const QString name = isStandardInput(path) ? tr("Standard Input") : QFileInfo(path).fileName();
    const bool missing = !isStandardInput(path) && !QFileInfo::exists(path);
    const QString text =
        missing ? tr("The document “%1” could not be opened. There is no such file.").arg(name)
                : tr("The document “%1” could not be opened. The file is damaged or not a "
                     "transcript.")
                      .arg(name);
    if (failures_) {
        failures_->setInformativeText(failures_->informativeText().isEmpty()
                                          ? text
                                          : failures_->informativeText() + u'\n' + text);
        return;
    }
    failures_ =
        new QMessageBox(QMessageBox::Warning, applicationInfo().appName, text, QMessageBox::Ok);
    failures_->setObjectName(QStringLiteral("openFailed"));
    failures_->setAttribute(Qt::WA_DeleteOnClose);
    failures_->setWindowModality(Qt::NonModal);
    failures_->setTextFormat(Qt::PlainText);
    failures_->show();
}

void Application::showOpenDialog(QWidget* parent) {
    auto* dialog = new QFileDialog(parent, tr("Open Transcripts"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters({tr("Transcripts (*.ichat)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::filesSelected, this, &Application::open);
    dialog->open();
}

void Application::showWelcome() {
    if (!welcome_) {
        welcome_ = new WelcomeWindow(recentFiles_, offersFindFiles());
        welcome_->setAttribute(Qt::WA_DeleteOnClose);
        connect(welcome_, &WelcomeWindow::openRequested, this, &Application::open);
        connect(welcome_, &WelcomeWindow::openDialogRequested, this,
                [this] { showOpenDialog(welcome_); });
        connect(welcome_, &WelcomeWindow::findRequested, this, &Application::findFiles);
    }
    welcome_->show();
    welcome_->raise();
    welcome_->activateWindow();
}

bool Application::offersFindFiles() {
    return searchQueryPath().has_value();
}

void Application::findFiles() {
    if (!openSavedSearch()) showFindWindow({});
}

void Application::showFindWindow(const QStringList& folders) {
    auto* window = new FindFilesWindow(loader_, folders);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &FindFilesWindow::openRequested, this,
            [this](const QString& path) { open({path}); });
    window->show();
}

void Application::showAbout() {
    if (!aboutWindow_) aboutWindow_.reset(makeAboutWindow(applicationInfo()));
    aboutWindow_->show();
    aboutWindow_->raise();
    aboutWindow_->activateWindow();
}

void Application::showPreferences() {
    if (!preferences_)
        preferences_ = std::make_unique<PreferencesWindow>(settings_, *contacts_, *systemContacts_);
    preferences_->show();
    preferences_->raise();
    preferences_->activateWindow();
}

void Application::openBugReport() {
    openWithDesktop(reportBug());
}

// Closing the last window ends the program: what it showed is what the next visit begins with.
void Application::rememberWindows() {
    QStringList paths;
    for (const DocumentWindow* window : windows_) {
        if (!isStandardInput(window->path())) paths.append(window->path());
    }
    if (!isQuitting_ && !paths.isEmpty()) settings_.setLastWindows(paths);
}

void Application::quit() {
    isQuitting_ = true;
    QApplication::closeAllWindows();
    QApplication::quit();
}

}  // namespace vell
