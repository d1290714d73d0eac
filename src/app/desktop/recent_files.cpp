// SPDX-License-Identifier: MIT
#include "app/desktop/recent_files.h"

#include "app/desktop/recently_used.h"
#include "app/desktop/settings.h"

namespace vell {
namespace {

const QString key = QStringLiteral("RecentFiles");

}  // namespace

RecentFiles::RecentFiles(QObject* parent) : QObject(parent) {}

QStringList RecentFiles::paths() const {
    return storedPaths(store_, key);
}

void RecentFiles::add(const QString& path) {
    QStringList files = paths();
    files.removeAll(path);
    files.prepend(path);
    if (files.size() > limit) files.resize(limit);
    storePaths(store_, key, files);
    recentlyUsed::add(path);
    Q_EMIT changed();
}

void RecentFiles::remove(const QString& path) {
    QStringList files = paths();
    if (files.removeAll(path) == 0) return;
    storePaths(store_, key, files);
    Q_EMIT changed();
}

void RecentFiles::clear() {
    store_.remove(key);
    recentlyUsed::removeOwn();
    Q_EMIT changed();
}

}  // namespace vell
