// SPDX-License-Identifier: MIT
#include "cli/folders.h"

#include <sys/stat.h>

#include <QString>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "cli/sink.h"

namespace vell {

using namespace Qt::StringLiterals;

QByteArray folderOf(const QByteArray& path) {
    const auto slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : path.first(std::max<qsizetype>(slash, 1));
}

void createFolder(const QByteArray& path) {
    std::error_code error;
    std::filesystem::create_directories(path.toStdString(), error);
    if (error)
        throw WriteError{u"the folder can't be created: "_s +
                         QString::fromStdString(error.message())};
}

void mirrorFolder(const QByteArray& path, const QByteArray& mirrored) {
    struct stat status {};
    if (::stat(path.constData(), &status) == 0) return;
    mirrorFolder(folderOf(path), folderOf(mirrored));
    const bool hasModel = ::stat(mirrored.constData(), &status) == 0;
    const mode_t permissions = hasModel ? status.st_mode & 0777 : 0777;
    if (::mkdir(path.constData(), permissions | S_IRWXU) != 0 && errno != EEXIST)
        throw WriteError{u"the folder can't be created: "_s + systemReason()};
}

}  // namespace vell
