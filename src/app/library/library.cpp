// SPDX-License-Identifier: MIT
#include "app/library/library.h"

#include <utility>

#include "app/desktop/settings.h"
#include "app/library/folder_watch.h"
#include "app/search/file_facts.h"
#include "foundation/local_path.h"

namespace vell {
namespace {

constexpr qint64 damageNotice = 60'000;  // milliseconds; later runs don't take it away
constexpr int lockPatience = 5000;       // milliseconds
constexpr int refreshInterval = 1500;    // milliseconds, while files are being indexed
// Milliseconds until folders are looked at again that can't all be watched, and that can: files
// that are changed in place are seen by looking only.
constexpr qint64 trustUnwatched = 10'000;
constexpr qint64 trustWatched = 60'000;

QString unusableNotice(const QString& reason) {
    return Library::tr("The library’s index can’t be used: %1. Chats can be opened as ever.")
        .arg(reason);
}

}  // namespace

Library::Library(Settings& settings, ContactsStore& contacts, const QByteArray& database)
    : settings_(settings),
      contacts_(contacts),
      database_(database),
      people_(std::make_shared<LibraryPeople>(LibraryContents(), PersonAliases(),
                                              ContactsStore::Table())),
      searchedNames_(std::make_shared<QHash<TesselUserID, QString>>()),
      reading_(database, this,
               [this](const QString& reason) { setNotice(unusableNotice(reason)); }),
      watch_(std::make_unique<FolderWatch>(this, [this] { look(); })) {
    Indexing::Callbacks callbacks;
    callbacks.onState = [this](const Indexing::State& state) { takeState(state); };
    callbacks.onCommitted = [this] {
        if (!refresh_.isActive()) refresh_.start(isRead_ ? refreshInterval : 0);
    };
    callbacks.onEnd = [this](const Indexing::End& end) { takeEnd(end); };
    indexer_ = std::make_unique<Indexing>(database_, this, std::move(callbacks));
    refresh_.setSingleShot(true);
    connect(&refresh_, &QTimer::timeout, this, &Library::readContents);
    connect(&settings_, &Settings::libraryFoldersChanged, this, [this] {
        Q_EMIT foldersChanged();
        readContents();
        look();
    });
    connect(&settings_, &Settings::libraryAliasesChanged, this, &Library::readContents);
    connect(&contacts_, &ContactsStore::addressToContactChanged, this, &Library::readContents);
    look();
}

Library::~Library() = default;

QStringList Library::folders() const {
    return settings_.libraryFolders();
}

void Library::addFolders(const QStringList& paths) {
    QStringList all = folders();
    const auto facts = fileFacts(paths);
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const auto& known = facts[static_cast<std::size_t>(i)];
        if (known && !known->isFolder) continue;
        const QString path = known ? known->canonicalPath : paths[i];
        if (!all.contains(path)) all.append(path);
    }
    settings_.setLibraryFolders(all);
}

void Library::removeFolder(const QString& path) {
    QStringList all = folders();
    all.removeAll(path);
    settings_.setLibraryFolders(all);
}

SearchScope Library::scope() const {
    SearchScope scope;
    scope.folders = readFolders_;
    scope.nameOf = [names = searchedNames_](const TesselUserID& user) {
        return names->value(user, user.userID);
    };
    return scope;
}

void Library::join(const TesselUserID& person, const TesselUserID& other) {
    PersonAliases aliases = PersonAliases::fromLines(settings_.libraryAliases());
    aliases.join(people_->addressesOf(person), people_->addressesOf(other));
    settings_.setLibraryAliases(aliases.lines());
}

void Library::separate(const TesselUserID& person) {
    PersonAliases aliases = PersonAliases::fromLines(settings_.libraryAliases());
    aliases.separate(people_->addressesOf(person));
    settings_.setLibraryAliases(aliases.lines());
}

/// While there is nothing to read yet, its user waits.
Indexer::Priority Library::priority() const {
    return people_->contents.conversations.empty() ? Indexer::Priority::normal
                                                   : Indexer::Priority::background;
}

void Library::look() {
    sinceLook_.start();
    if (folders().isEmpty()) {
        isRead_ = true;
        takeState(std::nullopt);
        return;
    }
    // A run may be busy with a folder that has been removed.
    if (folders() == lookedAt_)
        indexer_->start(folders(), priority());
    else
        indexer_->restart(folders(), priority());
    lookedAt_ = folders();
    if (!indexing_) takeState(Indexing::State());
}

void Library::lookAgain() {
    if (sinceLook_.hasExpired(watch_->isComplete() ? trustWatched : trustUnwatched)) look();
}

void Library::setPaused(bool isPaused) {
    indexer_->setPaused(isPaused);
    if (!indexing_) return;
    indexing_->isPaused = isPaused;
    Q_EMIT stateChanged();
}

void Library::setNotice(const QString& notice) {
    if (notice == notice_) return;
    notice_ = notice;
    Q_EMIT stateChanged();
}

void Library::takeState(const std::optional<Indexing::State>& state) {
    indexing_ = state;
    Q_EMIT stateChanged();
}

void Library::takeEnd(const Indexing::End& end) {
    QString notice;
    if (end.isLocked) {
        notice = tr("Another program is working on the library’s index.");
        QTimer::singleShot(lockPatience, this, &Library::look);
    } else if (!end.refusal.isEmpty()) {
        notice = unusableNotice(end.refusal);
    } else if (end.wasDamaged) {
        notice = tr("The library’s index was damaged and has been made again.");
        sinceDamage_.start();
    } else if (sinceDamage_.isValid() && !sinceDamage_.hasExpired(damageNotice)) {
        notice = notice_;
    } else if (!end.missing.isEmpty()) {
        notice = tr("The folder “%1” isn’t there now.").arg(end.missing.join(u", "));
    }
    const bool isUsable = end.refusal.isEmpty() || end.isLocked;
    // Until what was found has been read, "0 conversations" would be wrong.
    isRead_ = !isUsable || (isRead_ && !people_->contents.conversations.empty());
    setNotice(notice);
    takeState(std::nullopt);
    if (isUsable) readContents();
}

std::vector<std::string> Library::wantedFolders() const {
    std::vector<std::string> wanted;
    for (const QString& folder : folders())
        wanted.push_back(foundation::pathBytes(folder).toStdString());
    return wanted;
}

void Library::readContents() {
    refresh_.stop();
    const PersonAliases aliases = PersonAliases::fromLines(settings_.libraryAliases());
    reading_.post([this, callbacks = reading_.callbacks(), folders = wantedFolders(), aliases,
                   contacts = contacts_.addressToContact()](
                      LibraryStore& store, const LibraryThread::IsCancelled& isCancelled) {
        auto people = std::make_shared<const LibraryPeople>(LibraryContents::read(store, folders),
                                                            aliases, contacts);
        if (isCancelled()) return;
        auto names = std::make_shared<const QHash<TesselUserID, QString>>(people->searchedNames());
        callbacks->post([this, people, names, folders] {
            people_ = people;
            searchedNames_ = names;
            readFolders_ = folders;
            isRead_ = true;
            watch_->watch(people_, folders);
            Q_EMIT peopleChanged();
        });
    });
}

}  // namespace vell
