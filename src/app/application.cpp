// SPDX-License-Identifier: MIT
#include "app/application.h"

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <algorithm>
#include <utility>

#include "app/desktop/desktop.h"
#include "app/desktop/secondary_text.h"
#include "app/documents/dates/time_zones.h"
#include "app/documents/document_window.h"
#include "app/documents/load_log_window.h"
#include "app/documents/open_failures.h"
#include "app/library/library.h"
#include "app/library/library_window.h"
#include "app/search/file_facts.h"
#include "app/search/find_files_window.h"
#include "app/search/saved_search.h"
#include "app/windows/about_window.h"
#include "app/windows/common_commands.h"
#include "app/windows/panel_window.h"
#include "app/windows/preferences_window.h"
#include "app/windows/welcome_window.h"
#include "foundation/whole_file.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/system_contacts.h"
#include "identity/service/service_source.h"
#include "identity/vcard/vcard_source.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

OpenFailures::Cause causeOf(const foundation::Error& error) {
    using foundation::ReadErrorCode;
    switch (static_cast<ReadErrorCode>(error.code())) {
        case ReadErrorCode::noSuchFile:
            return OpenFailures::Cause::missing;
        case ReadErrorCode::noPermission:
            return OpenFailures::Cause::unreadable;
        case ReadErrorCode::tooLarge:
            return OpenFailures::Cause::tooLarge;
        default:
            return OpenFailures::Cause::damaged;
    }
}

}  // namespace

Application::Application(std::shared_ptr<FileReader> reader)
    : loader_(reader ? std::move(reader) : std::make_shared<DiskFileReader>(), loadThread_.queue(),
              presentLoadLogWindowIfNecessary) {
    repairSecondaryText();
    if (!settings_.timeZone().isEmpty()) useTimeZone(settings_.timeZone());
    connect(&settings_, &Settings::timeZoneChanged, this, &useTimeZone);
    openContacts();
    connect(&instance_, &SingleInstance::received, this, [this](const QStringList& paths) {
        if (!paths.isEmpty()) {
            open(paths);
        } else if (windows_.empty()) {
            showWelcome();
        } else {
            bringToFront(*windows_.back().window);
        }
    });
    // When the desktop session ends, the windows aren't closed one by one.
    connect(qApp, &QGuiApplication::commitDataRequest, this, &Application::rememberPlaces,
            Qt::DirectConnection);
    qApp->installEventFilter(this);
    connect(&drops_, &FileDrops::dropped, this, &Application::takeDrop);
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

bool Application::listenForOtherStarts() {
    return instance_.listen();
}

void Application::open(const QStringList& paths) {
    const auto facts = fileFacts(paths);
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const FileFacts known = facts[static_cast<size_t>(i)].value_or(FileFacts());
        if (!isStandardInput(paths[i]) && known.isFolder) {
            showFindWindow({paths[i]});
        } else {
            openTranscript(paths[i], known.canonicalPath);
        }
    }
}

/// Shows what is left of damaged transcripts.
void Application::recover(const QStringList& paths) {
    const auto facts = fileFacts(paths);
    for (qsizetype i = 0; i < paths.size(); ++i)
        openTranscript(paths[i], facts[static_cast<size_t>(i)].value_or(FileFacts()).canonicalPath,
                       Reading::recovery);
}

void Application::openTranscript(const QString& path, const QString& canonicalPath,
                                 Reading reading) {
    if (DocumentWindow* window = windowFor(path, canonicalPath)) {
        bringToFront(*window);
        return;
    }
    const Services services{settings_, recentFiles_, *contacts_, pictures_};
    auto* window = new DocumentWindow(*this, services, loader_, path, reading);
    windows_.push_back({window, canonicalPath});
    connect(window, &DocumentWindow::shown, this, [this] {
        rememberWindows();
        pauseLibrary();
    });
    connect(window, &DocumentWindow::failed, this,
            [this, window](const foundation::Error& error) { giveUp(window, error); });
    connect(window, &DocumentWindow::closed, this, &Application::remove);
    connect(window, &DocumentWindow::titlesChanged, this, &Application::distinguishWindows);
    distinguishWindows();
    pauseLibrary();
    window->show();
    if (welcome_) welcome_->close();
}

DocumentWindow* Application::windowFor(const QString& path, const QString& canonicalPath) const {
    if (isStandardInput(path)) return nullptr;
    const auto same = [&](const OpenWindow& open) {
        return open.window->path() == path ||
               (!canonicalPath.isEmpty() && open.canonicalPath == canonicalPath);
    };
    const auto found = std::find_if(windows_.begin(), windows_.end(), same);
    return found == windows_.end() ? nullptr : found->window;
}

void Application::remove(DocumentWindow* window) {
    std::erase_if(windows_, [window](const OpenWindow& open) { return open.window == window; });
    rememberWindows();
    distinguishWindows();
    pauseLibrary();
}

/// Transcripts that are being opened come first.
void Application::pauseLibrary() {
    if (!library_) return;
    library_->setPaused(std::ranges::any_of(
        windows_, [](const OpenWindow& open) { return !open.window->isLoaded(); }));
}

void Application::distinguishWindows() {
    std::vector<qsizetype> lengths(windows_.size(), 0);
    const auto title = [&](size_t i) { return windows_[i].window->titles()[lengths[i]]; };
    for (bool isDone = false; !isDone;) {
        isDone = true;
        QHash<QString, int> uses;
        for (size_t i = 0; i < windows_.size(); ++i)
            ++uses[title(i)];
        for (size_t i = 0; i < windows_.size(); ++i) {
            if (uses[title(i)] == 1 || lengths[i] + 1 == windows_[i].window->titles().size())
                continue;
            ++lengths[i];
            isDone = false;
        }
    }
    for (size_t i = 0; i < windows_.size(); ++i)
        windows_[i].window->setTitle(title(i));
}

QWidgetList Application::windows() const {
    QWidgetList others;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && !window->parentWidget() &&
            (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog) &&
            !qobject_cast<DocumentWindow*>(window))
            others.append(window);
    }
    std::ranges::sort(others, {}, &QWidget::windowTitle);
    return documentWindows() + others;
}

QWidgetList Application::documentWindows() const {
    QWidgetList windows;
    for (const OpenWindow& open : windows_)
        windows.append(open.window);
    return windows;
}

void Application::openWithoutFiles() {
    if (settings_.restoresWindows()) {
        QStringList paths = settings_.lastWindows();
        const auto facts = fileFacts(paths);
        // Each is remembered again once it is shown: one that crashes the program does so only
        // once.
        settings_.setLastWindows({});
        // A file that was removed since the last session is not an error.
        for (qsizetype i = paths.size(); i-- > 0;) {
            const auto& known = facts[static_cast<size_t>(i)];
            if (known && !known->exists) paths.removeAt(i);
        }
        open(paths);
    }
    if (windows_.empty()) showWelcome();
}

void Application::giveUp(DocumentWindow* window, const foundation::Error& error) {
    remove(window);
    if (windows_.empty()) showWelcome();  // or the program would end
    const OpenFailures::Cause cause = causeOf(error);
    const bool isLost = window->isRecovery() && cause == OpenFailures::Cause::damaged;
    reportFailure(window->path(), isLost ? OpenFailures::Cause::beyondRecovery : cause);
}

// One dialog for all that fail at about the same time, so that none covers another.
void Application::reportFailure(const QString& path, OpenFailures::Cause cause) {
    if (cause == OpenFailures::Cause::missing || cause == OpenFailures::Cause::unreadable)
        recentFiles_.remove(path);
    if (!failures_) {
        failures_ = new OpenFailures;
        connect(failures_, &OpenFailures::recoveryRequested, this, &Application::recover);
    }
    const bool isStream = isStandardInput(path);
    failures_->add(isStream ? tr("Standard Input") : QFileInfo(path).fileName(),
                   isStream ? QString() : path, cause);
}

void Application::showOpenDialog(QWidget* parent) {
    auto* dialog = new QFileDialog(parent, tr("Open Transcripts"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    if (const QStringList recent = recentFiles_.paths(); !recent.isEmpty()) {
        const QString folder = QFileInfo(recent.front()).path();
        if (fileFacts(folder).value_or(FileFacts()).isFolder) dialog->setDirectory(folder);
    }
    dialog->setNameFilters({tr("Transcripts (*.ichat)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::filesSelected, this, &Application::open);
    dialog->open();
}

void Application::showWelcome() {
    if (!welcome_) {
        welcome_ = new WelcomeWindow(*this, recentFiles_, *contacts_, pictures_);
        welcome_->setAttribute(Qt::WA_DeleteOnClose);
    }
    bringToFront(*welcome_);
}

bool Application::offersFindFiles() const {
    return searchQueryPath().has_value();
}

void Application::findFiles() {
    if (!openSavedSearch()) showFindWindow({});
}

void Application::showFindWindow(const QStringList& folders) {
    auto* window = new FindFilesWindow(loader_.reader(), *contacts_, folders);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &FindFilesWindow::openRequested, this, &Application::open);
    connect(window, &FindFilesWindow::addToLibraryRequested, this, &Application::addToLibrary);
    addClosingShortcuts(*window);
    window->show();
}

bool Application::hasLibrary() const {
    return !settings_.libraryFolders().isEmpty();
}

void Application::showLibrary() {
    if (!library_)
        library_ = std::make_unique<Library>(settings_, *contacts_, LibraryStore::defaultPath());
    if (!libraryWindow_) {
        const Services services{settings_, recentFiles_, *contacts_, pictures_};
        libraryWindow_ = new LibraryWindow(*this, services, *library_);
    }
    bringToFront(*libraryWindow_);
    if (welcome_) welcome_->close();
}

void Application::addToLibrary(const QStringList& folders) {
    showLibrary();
    library_->addFolders(folders);
}

/// Folders dropped on these windows are for the library.
void Application::takeDrop(const QStringList& paths, const QWidget* window) {
    QStringList folders;
    QStringList others;
    const auto facts = fileFacts(paths);
    const bool mayAdd = window && (window == welcome_ || window == libraryWindow_);
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const bool isFolder = facts[static_cast<size_t>(i)].value_or(FileFacts()).isFolder;
        (mayAdd && isFolder ? folders : others).append(paths[i]);
    }
    if (!folders.isEmpty()) addToLibrary(folders);
    if (!others.isEmpty()) open(others);
}

void Application::showAbout() {
    if (!aboutWindow_) aboutWindow_.reset(makeAboutWindow(applicationInfo()));
    bringToFront(*aboutWindow_);
}

void Application::showPreferences() {
    if (!preferences_) {
        preferences_ = std::make_unique<PreferencesWindow>(settings_, *contacts_, *systemContacts_);
        addClosingShortcuts(*preferences_);
    }
    bringToFront(*preferences_);
}

// Closing the last window ends the program, and the next session begins with what it showed. A
// transcript that isn't shown yet may turn out to be damaged, or crash the program.
void Application::rememberWindows() {
    QStringList paths;
    for (const OpenWindow& open : windows_) {
        if (open.window->isLoaded() && !open.window->isRecovery() &&
            !isStandardInput(open.window->path()))
            paths.append(open.window->path());
    }
    if (!isQuitting_ && !paths.isEmpty()) settings_.setLastWindows(paths);
}

// However the program is quit, the next session begins with what is open now.
void Application::beginQuitting() {
    rememberWindows();
    isQuitting_ = true;
}

void Application::rememberPlaces() const {
    for (const OpenWindow& open : windows_)
        open.window->savePlace();
}

bool Application::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Quit) beginQuitting();
    if (object == qApp && event->type() == QEvent::ApplicationPaletteChange) repairSecondaryText();
    return QObject::eventFilter(object, event);
}

void Application::quit() {
    beginQuitting();
    QApplication::closeAllWindows();
    QApplication::quit();
}

}  // namespace vell
