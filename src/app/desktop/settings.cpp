// SPDX-License-Identifier: MIT
#include "app/desktop/settings.h"

#include <QCryptographicHash>
#include <algorithm>

#include "foundation/local_path.h"
#include "library/person_aliases.h"

namespace vell {
namespace {

constexpr qint64 defaultTimelineFontSize = 16;
constexpr int rememberedPlaces = 500;
constexpr qsizetype rememberedTimeZones = 5;
const QString fontSizeKey = QStringLiteral("TimelineFontSize");
const QString restoresWindowsKey = QStringLiteral("RestoreWindows");
const QString lastWindowsKey = QStringLiteral("LastWindows");
const QString contactsFilesKey = QStringLiteral("ContactsFiles");
const QString libraryFoldersKey = QStringLiteral("Library/Folders");
const QString libraryAliasesKey = PersonAliases::settingsKey;
const QString timeZoneKey = QStringLiteral("TimeZone");
const QString recentTimeZonesKey = QStringLiteral("RecentTimeZones");
const QString placesOrderKey = QStringLiteral("WindowPlaces/Order");

/// A settings key can't contain the separators of a path.
QString placeKey(const QString& path) {
    const QByteArray digest =
        QCryptographicHash::hash(foundation::pathBytes(path), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("WindowPlaces/") + QString::fromLatin1(digest);
}

}  // namespace

QStringList storedPaths(const QSettings& store, const QString& key) {
    QStringList paths = store.value(key).toStringList();
    std::ranges::transform(paths, paths.begin(), &foundation::pathFromStored);
    return paths;
}

void storePaths(QSettings& store, const QString& key, const QStringList& paths) {
    QStringList texts;
    for (const QString& path : paths)
        texts.append(foundation::storedPath(path));
    store.setValue(key, texts);
}

Settings::Settings(QObject* parent) : QObject(parent) {}

qint64 Settings::timelineFontSize() const {
    bool isNumber = false;
    const qint64 points = store_.value(fontSizeKey).toLongLong(&isNumber);
    return isNumber ? points : defaultTimelineFontSize;
}

void Settings::setTimelineFontSize(qint64 points) {
    if (points == timelineFontSize()) return;
    store_.setValue(fontSizeKey, points);
    Q_EMIT timelineFontSizeChanged(points);
}

QString Settings::timeZone() const {
    return store_.value(timeZoneKey).toString();
}

void Settings::setTimeZone(const QString& zone) {
    if (zone == timeZone()) return;
    store_.setValue(timeZoneKey, zone);
    if (!zone.isEmpty()) {
        QStringList recent = recentTimeZones();
        recent.removeAll(zone);
        recent.prepend(zone);
        store_.setValue(recentTimeZonesKey, recent.mid(0, rememberedTimeZones));
    }
    Q_EMIT timeZoneChanged(zone);
}

QStringList Settings::recentTimeZones() const {
    return store_.value(recentTimeZonesKey).toStringList();
}

bool Settings::restoresWindows() const {
    return store_.value(restoresWindowsKey, true).toBool();
}

void Settings::setRestoresWindows(bool restores) {
    store_.setValue(restoresWindowsKey, restores);
}

QStringList Settings::lastWindows() const {
    return storedPaths(store_, lastWindowsKey);
}

void Settings::setLastWindows(const QStringList& paths) {
    storePaths(store_, lastWindowsKey, paths);
    store_.sync();  // the program may be ended at any time
}

std::optional<Settings::WindowPlace> Settings::windowPlace(const QString& path) const {
    const QVariantMap place = store_.value(placeKey(path)).toMap();
    if (place.isEmpty()) return std::nullopt;
    return WindowPlace{place.value(QStringLiteral("geometry")).toByteArray(),
                       place.value(QStringLiteral("row")).toLongLong(),
                       place.value(QStringLiteral("pointsAbove")).toDouble()};
}

void Settings::setWindowPlace(const QString& path, const WindowPlace& place) {
    const QString key = placeKey(path);
    QStringList order = store_.value(placesOrderKey).toStringList();
    order.removeAll(key);
    order.prepend(key);
    while (order.size() > rememberedPlaces)
        store_.remove(order.takeLast());
    store_.setValue(placesOrderKey, order);
    store_.setValue(key, QVariantMap{{QStringLiteral("geometry"), place.geometry},
                                     {QStringLiteral("row"), place.topRow},
                                     {QStringLiteral("pointsAbove"), place.pointsAbove}});
}

QStringList Settings::contactsFiles() const {
    return storedPaths(store_, contactsFilesKey);
}

void Settings::setContactsFiles(const QStringList& paths) {
    if (paths == contactsFiles()) return;
    storePaths(store_, contactsFilesKey, paths);
    Q_EMIT contactsFilesChanged(paths);
}

QStringList Settings::libraryFolders() const {
    return storedPaths(store_, libraryFoldersKey);
}

void Settings::setLibraryFolders(const QStringList& paths) {
    if (paths == libraryFolders()) return;
    storePaths(store_, libraryFoldersKey, paths);
    Q_EMIT libraryFoldersChanged();
}

QStringList Settings::libraryAliases() const {
    return store_.value(libraryAliasesKey).toStringList();
}

void Settings::setLibraryAliases(const QStringList& lines) {
    if (lines == libraryAliases()) return;
    store_.setValue(libraryAliasesKey, lines);
    Q_EMIT libraryAliasesChanged();
}

}  // namespace vell
