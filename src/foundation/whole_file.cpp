// SPDX-License-Identifier: MIT
#include "foundation/whole_file.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileDevice>
#include <algorithm>
#include <limits>

#include "foundation/error.h"

namespace foundation {
namespace {

constexpr qint64 mostBytes = qint64{4} << 30;
constexpr qint64 chunkSize = 1 << 20;

Error readError(ReadErrorCode code, const QString& sentence) {
    return {QStringLiteral("NSCocoaErrorDomain"), static_cast<qint64>(code), sentence};
}

Error tooLarge() {
    return readError(ReadErrorCode::tooLarge,
                     QStringLiteral("it is larger than %1 MiB, the most that can be read")
                         .arg(mostFileBytes() >> 20));
}

bool isDevice(const QFileDevice& file) {
    struct stat status {};
    return file.handle() >= 0 && ::fstat(file.handle(), &status) == 0 &&
           (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

}  // namespace

qint64 mostFileBytes() {
    qint64 memory = std::numeric_limits<qint64>::max();
    const qint64 pages = ::sysconf(_SC_PHYS_PAGES);
    if (pages > 0) memory = pages * ::sysconf(_SC_PAGESIZE);
    struct rlimit limit {};
    if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        memory = std::min(memory, static_cast<qint64>(limit.rlim_cur));
    return std::min(mostBytes, memory / 2);
}

QByteArray readWhole(QIODevice& file) {
    const auto* onDisk = qobject_cast<QFileDevice*>(&file);
    // The null device counts as an empty file.
    if (onDisk && isDevice(*onDisk) && !file.peek(1).isEmpty())
        throw readError(ReadErrorCode::unknown, QStringLiteral("it is a device, not a file"));
    const qint64 most = mostFileBytes();
    QByteArray bytes;
    if (!file.isSequential()) {
        const qint64 size = file.size() - file.pos();
        if (size > most) throw tooLarge();
        bytes.resize(size);
        bytes.truncate(std::max<qint64>(file.read(bytes.data(), size), 0));
    }
    // A pipe, a growing file, or one of the system's own, which have no size.
    for (;;) {
        const QByteArray more = file.read(chunkSize);
        if (more.isEmpty()) break;
        if (bytes.size() + more.size() > most) throw tooLarge();
        bytes += more;
    }
    if (onDisk && onDisk->error() != QFileDevice::NoError)
        throw readError(ReadErrorCode::unknown, onDisk->errorString());
    return bytes;
}

}  // namespace foundation
