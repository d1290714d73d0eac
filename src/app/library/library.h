#pragma once
// SPDX-License-Identifier: MIT
//
// Library: the user's folders of transcripts, what is known about them, and the work of keeping
// that up to date, which threads do in the background. Window thread only; never blocks it.

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <memory>
#include <optional>

#include "app/library/indexing.h"
#include "app/library/library_thread.h"
#include "library/library_people.h"
#include "library/search_hit.h"

namespace vell {

class FolderWatch;
class Settings;

class Library final : public QObject {
    Q_OBJECT

  public:
    /// The settings and the contacts must outlive it. Looks at the folders at once.
    Library(Settings& settings, ContactsStore& contacts, const QByteArray& database);
    ~Library() override;

    [[nodiscard]] QStringList folders() const;
    /// Files among the paths are ignored.
    void addFolders(const QStringList& paths);
    void removeFolder(const QString& path);

    /// Never null; empty until the database has been read.
    [[nodiscard]] const std::shared_ptr<const LibraryPeople>& people() const { return people_; }
    [[nodiscard]] bool isRead() const { return isRead_; }
    /// Where searches look, and what people are called there.
    [[nodiscard]] SearchScope scope() const;
    [[nodiscard]] const QByteArray& database() const { return database_; }

    /// One person from now on, called what the first one is.
    void join(const TesselUserID& person, const TesselUserID& other);
    /// Each address is a person of its own.
    void separate(const TesselUserID& person);

    /// Looks for new, changed and removed files.
    void look();
    /// The same if that was last done some time ago.
    void lookAgain();
    /// While transcripts are opened, indexing waits.
    void setPaused(bool isPaused);
    [[nodiscard]] const std::optional<Indexing::State>& indexing() const { return indexing_; }
    /// Why the index can't be used, or what happened to it; empty when all is well.
    [[nodiscard]] const QString& notice() const { return notice_; }
    void setNotice(const QString& notice);

  Q_SIGNALS:
    void foldersChanged();
    void peopleChanged();
    /// indexing() or notice().
    void stateChanged();

  private:
    void takeState(const std::optional<Indexing::State>& state);
    void takeEnd(const Indexing::End& end);
    [[nodiscard]] Indexer::Priority priority() const;
    void readContents();
    void changeAliases(const PersonAliases& aliases);
    [[nodiscard]] std::vector<std::string> wantedFolders() const;

    Settings& settings_;
    ContactsStore& contacts_;
    const QByteArray database_;
    std::shared_ptr<const LibraryPeople> people_;
    std::shared_ptr<const QHash<TesselUserID, QString>> searchedNames_;
    std::vector<std::string> readFolders_;  // as the file system has them
    bool isRead_ = false;
    std::optional<Indexing::State> indexing_;
    QString notice_;
    LibraryThread reading_;
    std::unique_ptr<FolderWatch> watch_;
    // Stops first when the program quits: the rest would have to share the processors with it.
    std::unique_ptr<Indexing> indexer_;
    QTimer refresh_;  // while files are being indexed
    QStringList lookedAt_;
    QElapsedTimer sinceLook_;
    QElapsedTimer sinceDamage_;
};

}  // namespace vell
