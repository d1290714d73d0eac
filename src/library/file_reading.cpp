// SPDX-License-Identifier: MIT
#include "library/file_reading.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QCryptographicHash>
#include <QFile>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "foundation/error.h"
#include "foundation/plain_reason.h"
#include "foundation/print.h"
#include "foundation/whole_file.h"

namespace vell {
namespace {

constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
constexpr qint64 nanosecondsPerMillisecond = 1'000'000;

}  // namespace

TranscriptReader::TranscriptReader(Hashes knownHashes)
    : knownHashes_(std::move(knownHashes)), calendar_(foundation::Calendar::current()) {}

FileReading TranscriptReader::read(const FoundFile& file) {
    const foundation::SilentThread silent;
    FileReading reading;
    reading.file = file;
    try {
        readInto(reading);
    } catch (const std::exception& error) {
        reading.conversation = {};
        reading.reason = foundation::plainReason(error);
    }
    return reading;
}

QByteArray readBytes(FoundFile& found) {
    const int descriptor =
        ::open(found.path.constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle))
        throw std::system_error(errno, std::generic_category());
    struct stat status {};
    ::fstat(descriptor, &status);
    found.size = status.st_size;
    found.modified = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec;
    found.inode = status.st_ino;
    return foundation::readWhole(file);
}

TesselChatLog logOf(const FoundFile& file, const foundation::Data& bytes,
                    const foundation::Calendar& calendar) {
    if (bytes.isEmpty()) throw std::runtime_error("it is empty");
    const auto modified =
        foundation::Date::fromMillisecondsSinceEpoch(file.modified / nanosecondsPerMillisecond);
    return TesselChatLog::fromData(bytes, modified, calendar);
}

void TranscriptReader::readInto(FileReading& reading) {
    const QByteArray bytes = readBytes(reading.file);
    reading.hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
    if (knownHashes_ && knownHashes_->contains(reading.hash)) {
        reading.isKnown = true;
        return;
    }
    reading.conversation = conversationOf(logOf(reading.file, bytes, calendar_), bytes.size());
}

}  // namespace vell
