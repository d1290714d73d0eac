// SPDX-License-Identifier: MIT
#include "app/documents/file_reader.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <utility>

#include "foundation/error.h"
#include "foundation/local_path.h"
#include "foundation/whole_file.h"

namespace vell {
namespace {

using foundation::FileWrapper;

std::shared_ptr<FileWrapper> readStandardInput() {
    auto wrapper = std::make_shared<FileWrapper>(FileWrapper::Kind::regularFile);
    QFile input;
    if (input.open(stdin, QIODevice::ReadOnly))
        wrapper->contents = foundation::Data(foundation::readWhole(input));
    return wrapper;
}

foundation::Error readError(foundation::ReadErrorCode code) {
    return {QStringLiteral("NSCocoaErrorDomain"), static_cast<qint64>(code)};
}

std::optional<foundation::Data> readBytes(const QString& path) {
    QFile file;
    if (!foundation::openForReading(file, path)) {
        if (file.error() == QFileDevice::PermissionsError)
            throw readError(foundation::ReadErrorCode::noPermission);
        return std::nullopt;
    }
    if (file.isSequential()) return std::nullopt;
    return foundation::Data(foundation::readWhole(file));
}

}  // namespace

bool isStandardInput(const QString& path) {
    return path == QLatin1String("-");
}

std::shared_ptr<const FileWrapper> DiskFileReader::read(const QString& path) {
    if (isStandardInput(path)) return readStandardInput();

    const QFileInfo info(foundation::localPath(path));  // follows links
    auto wrapper = std::make_shared<FileWrapper>(FileWrapper::Kind::regularFile);
    wrapper->filename = info.fileName();
    wrapper->preferredFilename = wrapper->filename;
    if (!info.exists()) {
        // A name in an unknown encoding can be opened, but QFileInfo knows nothing about it.
        wrapper->contents = readBytes(path);
        if (!wrapper->contents) throw readError(foundation::ReadErrorCode::noSuchFile);
        return wrapper;
    }
    wrapper->modificationDate =
        foundation::Date::fromMillisecondsSinceEpoch(info.lastModified().toMSecsSinceEpoch());
    if (info.isDir()) {
        wrapper->kind = FileWrapper::Kind::directory;
    } else if (info.isFile()) {  // not a device or a pipe, which might be endless
        wrapper->contents = readBytes(path);
    }
    return wrapper;
}

}  // namespace vell
