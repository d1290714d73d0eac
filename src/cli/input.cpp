// SPDX-License-Identifier: MIT
#include "cli/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <new>

#include "cli/sink.h"
#include "foundation/error.h"
#include "foundation/local_path.h"
#include "foundation/whole_file.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// What is at the path, links followed; of a dangling link the link itself.
foundation::FileWrapper wrapperOf(const QString& name) {
    using Kind = foundation::FileWrapper::Kind;
    foundation::FileWrapper wrapper(Kind::regularFile);
    if (name == u"-") return wrapper;
    const QByteArray path = foundation::pathBytes(name);
    struct stat status {};
    if (::stat(path.constData(), &status) == 0)
        wrapper.kind = S_ISDIR(status.st_mode) ? Kind::directory : Kind::regularFile;
    else if (::lstat(path.constData(), &status) == 0)
        wrapper.kind = S_ISLNK(status.st_mode) ? Kind::symbolicLink : Kind::regularFile;
    wrapper.filename = QFileInfo(name).fileName();
    return wrapper;
}

int openInput(const QString& name) {
    const int descriptor = name == u"-" ? ::dup(STDIN_FILENO)
                                        : ::open(foundation::pathBytes(name).constData(),
                                                 O_RDONLY | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) throw ReadError{systemReason()};
    return descriptor;
}

void readInto(Input& input) {
    QFile file;
    if (!file.open(openInput(input.name), QIODevice::ReadOnly, QFile::AutoCloseHandle))
        throw ReadError{file.errorString()};
    struct stat status {};
    ::fstat(file.handle(), &status);
    if (S_ISDIR(status.st_mode)) throw ReadError{u"it is a folder"_s};
    try {
        input.bytes = foundation::Data(foundation::readWhole(file));
    } catch (const foundation::Error& error) {
        throw ReadError{error.debugDescription()};
    }
    input.size = input.bytes.size();
    if (!S_ISREG(status.st_mode)) return;
    input.permissions = status.st_mode & 0777;
    const QDateTime modified = file.fileTime(QFileDevice::FileModificationTime);
    if (input.name != u"-" && modified.isValid())
        input.date = foundation::Date::fromMillisecondsSinceEpoch(modified.toMSecsSinceEpoch());
}

}  // namespace

Input readInput(const QString& name, TesselLoadLog* log) {
    if (log) log->openFile(wrapperOf(name));
    const auto logFailure = [log](const QString& reason) {
        if (log) log->writeln(u"Failed to load the raw file into memory.\n"_s + reason);
    };
    Input result;
    result.name = name;
    try {
        readInto(result);
    } catch (const ReadError& error) {
        logFailure(error.reason);
        throw;
    } catch (const std::bad_alloc&) {
        logFailure(u"Out of memory."_s);
        throw;
    }
    return result;
}

}  // namespace vell
