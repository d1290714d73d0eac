#pragma once
// SPDX-License-Identifier: MIT
//
// Application: owns what all windows share, and carries out the commands of the program as a whole.
// Lives on the window thread for the whole run.

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>
#include <vector>

#include "app/desktop/file_drops.h"
#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/desktop/single_instance.h"
#include "app/documents/document_loader.h"
#include "app/documents/open_failures.h"
#include "app/windows/commands.h"
#include "app/windows/contacts_dialog.h"
#include "timeline/pictures/picture_cache.h"

namespace vell {

class ContactsStore;
class DocumentWindow;
class Library;
class LibraryWindow;
class PanelWindow;
class PreferencesWindow;
class SystemContacts;
class VCardSource;
class WelcomeWindow;

class Application final : public QObject, public Commands {
    Q_OBJECT

  public:
    /// Reads files with the reader; null means from the disk.
    explicit Application(std::shared_ptr<FileReader> reader = nullptr);
    ~Application() override;

    /// What a start without files shows: the windows of the last session, else the welcome window.
    void openWithoutFiles();
    /// Opens the files of later starts of the program, unless another instance does already.
    bool listenForOtherStarts();

    void open(const QStringList& paths) override;
    void showOpenDialog(QWidget* parent) override;
    [[nodiscard]] bool offersFindFiles() const override;
    /// Opens the saved search with the desktop, or a search window of ours where none can.
    void findFiles() override;
    void showLibrary() override;
    [[nodiscard]] bool hasLibrary() const override;
    void addToLibrary(const QStringList& folders) override;
    void showAbout() override;
    void showPreferences() override;
    void quit() override;
    [[nodiscard]] QWidgetList windows() const override;
    /// The windows of open transcripts, oldest first.
    [[nodiscard]] QWidgetList documentWindows() const;

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct OpenWindow {
        DocumentWindow* window;  // deletes itself on closing
        QString canonicalPath;   // empty if the file system didn't respond in time
    };

    void openContacts();
    void pauseLibrary();
    void takeDrop(const QStringList& paths, const QWidget* window);
    void showWelcome();
    void showFindWindow(const QStringList& folders);
    void openTranscript(const QString& path, const QString& canonicalPath,
                        Reading reading = Reading::whole);
    void recover(const QStringList& paths);
    void remove(DocumentWindow* window);
    /// Gives windows of the same people on the same days longer titles.
    void distinguishWindows();
    void rememberWindows();
    void beginQuitting();
    void rememberPlaces() const;
    void giveUp(DocumentWindow* window, const foundation::Error& error);
    void reportFailure(const QString& path, OpenFailures::Cause cause);
    [[nodiscard]] DocumentWindow* windowFor(const QString& path,
                                            const QString& canonicalPath) const;

    Settings settings_;
    RecentFiles recentFiles_;
    SingleInstance instance_;
    FileDrops drops_;
    LoadThread loadThread_;
    DocumentLoader loader_;
    ContactsDialog contactsDialog_;
    VCardSource* chosenCards_ = nullptr;  // owned by systemContacts_, that by contacts_
    SystemContacts* systemContacts_ = nullptr;
    QSettings contactsSettings_;
    std::unique_ptr<ContactsStore> contacts_;
    PictureCache pictures_;
    std::unique_ptr<Library> library_;  // null until it is first needed
    QPointer<LibraryWindow> libraryWindow_;
    std::vector<OpenWindow> windows_;
    std::unique_ptr<PanelWindow> aboutWindow_;
    std::unique_ptr<PreferencesWindow> preferences_;
    QPointer<WelcomeWindow> welcome_;
    QPointer<OpenFailures> failures_;
    bool isQuitting_ = false;
};

}  // namespace vell
