// SPDX-License-Identifier: MIT
#include "identity/vcard/contact_files.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

namespace vell {
namespace {

class Finder {
  public:
    explicit Finder(const std::stop_token& stop) : stop_(stop) {}

    void add(const QString& path) {
        const QFileInfo info(path);
        if (info.isDir()) {
            walk(info);
            return;
        }
        // Replacing a file or creating a missing path changes the folder that contains it.
        QFileInfo around(info.absolutePath());
        while (!around.isDir() && !around.isRoot())
            around = QFileInfo(around.absolutePath());
        addFolder(around.absoluteFilePath());
        if (info.isFile()) addFile(info);
    }

    ContactFiles take() {
        found_.fingerprint = hash_.result();
        return std::move(found_);
    }

  private:
    void addFolder(const QString& path) {
        if (!found_.folders.contains(path)) found_.folders.append(path);
    }

    void addFile(const QFileInfo& info) {
        found_.files.append(info.absoluteFilePath());
        const qint64 facts[] = {info.size(), info.lastModified().toMSecsSinceEpoch(),
                                info.metadataChangeTime().toMSecsSinceEpoch()};
        hash_.addData(info.absoluteFilePath().toUtf8());
        hash_.addData(QByteArray::fromRawData(reinterpret_cast<const char*>(facts), sizeof facts));
    }

    void walk(const QFileInfo& folder) {
        // Links may lead in circles.
        const QString path = folder.canonicalFilePath();
        if (stop_.stop_requested() || walked_.contains(path)) return;
        walked_.insert(path);
        addFolder(folder.absoluteFilePath());
        QFileInfoList entries =
            QDir(folder.absoluteFilePath())
                .entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Unsorted);
        std::sort(entries.begin(), entries.end(), [](const QFileInfo& a, const QFileInfo& b) {
            return a.fileName() < b.fileName();
        });
        for (const QFileInfo& entry : entries) {
            if (entry.isDir()) {
                walk(entry);
            } else if (entry.isFile() && isCardFile(entry)) {
                addFile(entry);
            }
        }
    }

    static bool isCardFile(const QFileInfo& info) {
        const QString suffix = info.suffix();
        return suffix.compare(u"vcf", Qt::CaseInsensitive) == 0 ||
               suffix.compare(u"vcard", Qt::CaseInsensitive) == 0;
    }

    const std::stop_token& stop_;
    ContactFiles found_;
    QSet<QString> walked_;
    QCryptographicHash hash_{QCryptographicHash::Sha1};
};

}  // namespace

ContactFiles findContactFiles(const QStringList& paths, const std::stop_token& stop) {
    Finder finder(stop);
    for (const QString& path : paths)
        finder.add(path);
    return finder.take();
}

}  // namespace vell
