#pragma once
// SPDX-License-Identifier: MIT
//
// Application: owns what all windows share and carries out the commands that belong to none of
// them. Lives on the window thread for the whole run.

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>
#include <vector>

#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/desktop/single_instance.h"
#include "app/documents/document_loader.h"
#include "app/documents/file_drops.h"
#include "app/windows/contacts_dialog.h"
#include "timeline/pictures/picture_cache.h"

namespace vell {

class ContactsStore;
class DocumentWindow;
class OpenFailures;
class PanelWindow;
class PreferencesWindow;
class SystemContacts;
class VCardSource;
class WelcomeWindow;

class Application final : public QObject {
    Q_OBJECT

  public:
    /// Reads files with the reader; null means from the disk.
    explicit Application(std::shared_ptr<FileReader> reader = nullptr);
    ~Application() override;

    /// Opens transcripts in windows of their own, folders in the search window; a file that is open
    /// already has its window raised. Absolute paths, or "-" for standard input.
    void open(const QStringList& paths);
    /// What a start without files shows: the windows of the last visit, else the welcome.
    void openWithoutFiles();
    /// Takes over the files of later starts of the program, unless another instance does already.
    bool listenForOtherStarts();

    [[nodiscard]] Settings& settings() { return settings_; }
    [[nodiscard]] RecentFiles& recentFiles() { return recentFiles_; }
    [[nodiscard]] ContactsStore& contacts() { return *contacts_; }
    [[nodiscard]] PictureCache& pictures() { return pictures_; }
    [[nodiscard]] std::vector<DocumentWindow*> documentWindows() const;

    // Commands.
    void showOpenDialog(QWidget* parent);
    void showWelcome();
    /// Whether the saved search is among the program's resources.
    [[nodiscard]] static bool offersFindFiles();
    /// Opens the saved search with the desktop, or a search window of ours where none can.
    void findFiles();
    void showFindWindow(const QStringList& folders);
    void showAbout();
    void showPreferences();
    static void openBugReport();
    void quit();

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct OpenWindow {
        DocumentWindow* window;  // deletes itself on closing
        QString canonicalPath;   // empty when it wasn't told in time
    };

    void openContacts();
    void openTranscript(const QString& path, const QString& canonicalPath);
    void remove(DocumentWindow* window);
    void rememberWindows();
    void beginQuitting();
    void rememberPlaces() const;
    void giveUp(DocumentWindow* window, const foundation::Error& error);
    void reportFailure(const QString& path, const foundation::Error& error);
    [[nodiscard]] DocumentWindow* windowFor(const QString& path,
                                            const QString& canonicalPath) const;

    Settings settings_;
    RecentFiles recentFiles_;
    SingleInstance instance_;
    FileDrops drops_;
    LoadLane lane_;
    DocumentLoader loader_;
    ContactsDialog contactsDialog_;
    VCardSource* chosenCards_ = nullptr;  // owned by systemContacts_, that by contacts_
    SystemContacts* systemContacts_ = nullptr;
    QSettings contactsSettings_;
    std::unique_ptr<ContactsStore> contacts_;
    PictureCache pictures_;
    std::vector<OpenWindow> windows_;
    std::unique_ptr<PanelWindow> aboutWindow_;
    std::unique_ptr<PreferencesWindow> preferences_;
    QPointer<WelcomeWindow> welcome_;
    QPointer<OpenFailures> failures_;
    bool isQuitting_ = false;
};

}  // namespace vell
