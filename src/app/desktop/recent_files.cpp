// SPDX-License-Identifier: MIT
#include "app/desktop/recent_files.h"

#include "app/desktop/recently_used.h"

namespace vell {
namespace {

const QString key = QStringLiteral("RecentFiles");

}  // namespace

RecentFiles::RecentFiles(QObject* parent) : QObject(parent) {}

QStringList RecentFiles::paths() const {
    return store_.value(key).toStringList();
}

void RecentFiles::add(const QString& path) {
    QStringList files = paths();
    files.removeAll(path);
    files.prepend(path);
    if (files.size() > limit) files.resize(limit);
    store_.setValue(key, files);
    recentlyUsed::add(path);
    Q_EMIT changed();
}

void RecentFiles::clear() {
    store_.remove(key);
    recentlyUsed::removeOwn();
    Q_EMIT changed();
}

}  // namespace vell
