// SPDX-License-Identifier: MIT
#include "timeline/saving/private_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

namespace vell {

PrivateFiles& PrivateFiles::shared() {
    // The application object ends before the process, which may leave without destroying statics.
    static PrivateFiles* const files = [] {
        qAddPostRoutine([] { shared().folder_.reset(); });
        return new PrivateFiles;
    }();
    return *files;
}

QString PrivateFiles::write(const QString& name, const foundation::Data& data) {
    if (!folder_) {
        folder_ = std::make_unique<QTemporaryDir>(QDir::tempPath() +
                                                  QStringLiteral("/vell-pictures-XXXXXX"));
    }
    if (!folder_->isValid()) return {};
    const QString number = QString::number(++count_);
    if (!QDir(folder_->path()).mkdir(number)) return {};
    const QString path = folder_->filePath(number + u'/' + name);
    return writeFile(path, data).isEmpty() ? path : QString();
}

QString writeFile(const QString& path, const foundation::Data& data) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return file.errorString();
    // A file that is replaced may have been a program.
    constexpr auto run = QFileDevice::ExeOwner | QFileDevice::ExeUser | QFileDevice::ExeGroup |
                         QFileDevice::ExeOther;
    file.setPermissions(file.permissions() & ~run);
    if (file.write(data.begin(), data.size()) == data.size() && file.commit()) return {};
    return file.errorString();
}

}  // namespace vell
