// SPDX-License-Identifier: MIT
#include "cli/attachment_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>
#include <limits>

#include "cli/folders.h"
#include "cli/sink.h"
#include "cli/temporary_file.h"
#include "export/expansion.h"
#include "export/message.h"
#include "foundation/local_path.h"
#include "toolkit/safe_file_name.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::Data;
using foundation::FileWrapper;
using foundation::pathBytes;

namespace {

constexpr quint64 costOfFile = 4096;  // bytes, whatever is in it
constexpr mode_t readable = 0444;

/// "out/chat-files" beside "out/chat.html", or the job's own below the one that was asked for.
QString ownFolder(const Options& options, const ExportJob& job) {
    if (!options.attachments.isEmpty()) return options.attachments + u'/' + job.name;
    const QFileInfo document(job.document);
    return document.path() + u'/' + document.completeBaseName() + u"-files"_s;
}

/// Who may read a file may enter the folder of its attachments.
mode_t folderPermissions(mode_t file) {
    return (file & 0777) | ((file & readable) >> 2) | S_IRWXU;
}

bool holds(const QByteArray& path, const Data& data) {
    const int descriptor = ::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle))
        return false;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size != data.size())
        return false;
    constexpr qint64 bytesAtOnce = 1 << 16;
    for (QByteArrayView rest = data.view(); !rest.isEmpty();) {
        const QByteArray there = file.read(std::min<qint64>(bytesAtOnce, rest.size()));
        if (there.isEmpty() || !rest.startsWith(there)) return false;
        rest = rest.sliced(there.size());
    }
    return true;
}

std::optional<Data> bytesOf(const FileWrapper& wrapper) {
    if (!wrapper.isRegularFile() || !wrapper.contents) return std::nullopt;
    return wrapper.contents->load();
}

/// File systems refuse times that they can't express; then the file has that of its writing.
void setTime(int descriptor, foundation::Date date) {
    const auto milliseconds = date.millisecondsSinceEpoch();
    if (!milliseconds) return;
    const qint64 seconds = *milliseconds >= 0 ? *milliseconds / 1000 : (*milliseconds - 999) / 1000;
    const timespec time{seconds, (*milliseconds - seconds * 1000) * 1'000'000};
    const std::array<timespec, 2> times{time, time};
    [[maybe_unused]] const int refused = ::futimens(descriptor, times.data());
}

}  // namespace

AttachmentWriter::AttachmentWriter(const Options& options, const ExportJob& job, const Input& input)
    : options_(options),
      job_(job),
      input_(input),
      picturesOnly_(options.attachments.isEmpty()),
      folder_(ownFolder(options, job)),
      permissions_(input.permissions.value_or(0600) & 0666),
      budget_(options.expand ? std::numeric_limits<quint64>::max() : exportLimit(input.size)) {}

AttachmentPaths AttachmentWriter::write(const TesselChatLog& log) {
    const QString documentFolder =
        job_.document.isEmpty() ? u"."_s : QFileInfo(job_.document).path();
    const QString start = QDir(QFileInfo(documentFolder).absoluteFilePath())
                              .relativeFilePath(QFileInfo(folder_).absoluteFilePath());
    AttachmentPaths paths;
    for (const TesselChatLog::Event& event : log.events()) {
        const QByteArray path = add(event);
        if (path.isEmpty()) continue;
        const QByteArray name = path.sliced(pathBytes(folder_).size());
        paths.insert(event.sequence, start + foundation::pathFromArgument(name.constData()));
    }
    return paths;
}

/// The path of what was written for the event; empty for nothing.
QByteArray AttachmentWriter::add(const TesselChatLog::Event& event) {
    if (const auto* image = std::get_if<TesselChatLog::Image>(&event.value)) {
        const QString name =
            safeFileName(pictureName(picturePath(*image)), u"Picture"_s,
                         QString::fromLatin1(foundation::fileExtension(image->image().format)));
        return addBytes(image->data(), name, event.timestamp);
    }
    const auto* file = std::get_if<TesselChatLog::File>(&event.value);
    return file && !picturesOnly_ ? addFile(*file->wrapper, event.timestamp) : QByteArray();
}

QByteArray AttachmentWriter::addFile(const FileWrapper& wrapper, foundation::Date date) {
    if (wrapper.isRegularFile() && wrapper.contents)
        return addBytes(*wrapper.contents, safeFileName(fileName(wrapper), u"File"_s),
                        wrapper.modificationDate.value_or(date));
    if (!wrapper.isDirectory()) return {};  // links lead out of the folder
    makeOwnFolder();
    return placeFolder(pathBytes(folder_), wrapper, date);
}

QByteArray AttachmentWriter::addBytes(const foundation::StoredData& stored, const QString& name,
                                      foundation::Date date) {
    QByteArray& path = written_[{stored.identity(), stored.size()}];
    const auto data = path.isEmpty() ? stored.load() : std::nullopt;
    if (data) {
        makeOwnFolder();
        path = place(pathBytes(folder_), name, *data, date);
    }
    return path;
}

void AttachmentWriter::makeOwnFolder() const {
    const QByteArray path = pathBytes(folder_);
    try {
        if (!options_.attachments.isEmpty()) createFolder(pathBytes(options_.attachments));
        mirrorFolder(folderOf(path), folderOf(pathBytes(job_.file)));
        makeFolder(path);
    } catch (const WriteError& error) {
        throw WriteError{folder_ + u": "_s + error.reason};
    }
}

/// Unless something is there already.
void AttachmentWriter::makeFolder(const QByteArray& path) const {
    if (::mkdir(path.constData(), folderPermissions(permissions_)) == 0 || errno == EEXIST) return;
    throw WriteError{u"the folder can't be created: "_s + systemReason()};
}

/// Contents can be shared, and so be larger than the file that they are in.
void AttachmentWriter::spend(qsizetype bytes) {
    const quint64 cost = static_cast<quint64>(bytes) + costOfFile;
    if (cost > budget_)
        throw WriteError{
            u"its attachments take more than %1 MB, out of all proportion to the file "
            "(--expand allows it)"_s.arg(exportLimit(input_.size) / 1'000'000)};
    budget_ -= cost;
}

/// "name", then "2 name" and so on.
QByteArray AttachmentWriter::nextPath(const QByteArray& folder, const QString& name) {
    const int copy = ++copies_[folder + '/' + name.toUtf8()];
    return folder + '/' +
           (copy == 1 ? name : safeFileName(QString::number(copy) + u' ' + name, {})).toUtf8();
}

QByteArray AttachmentWriter::place(const QByteArray& folder, const QString& name, const Data& data,
                                   foundation::Date date) {
    spend(data.size());
    for (;;) {
        QByteArray path = nextPath(folder, name);
        struct stat status {};
        if (::lstat(path.constData(), &status) == 0) {
            if (holds(path, data)) return path;
            continue;
        }
        try {
            TemporaryFile temporary(folder);
            Sink sink(temporary.descriptor());
            sink.write(data.view());
            sink.flush();
            setTime(temporary.descriptor(), date);
            temporary.keepAs(path, permissions_, false);
            return path;
        } catch (const WriteError& error) {
            throw WriteError{foundation::pathFromArgument(path.constData()) + u": "_s +
                             error.reason};
        }
    }
}

/// A folder that an earlier run has written is completed.
QByteArray AttachmentWriter::placeFolder(const QByteArray& folder, const FileWrapper& wrapper,
                                         foundation::Date date) {
    spend(0);
    for (;;) {
        QByteArray path = nextPath(folder, safeFileName(fileName(wrapper), u"Folder"_s));
        struct stat status {};
        makeFolder(path);
        if (::lstat(path.constData(), &status) != 0 || !S_ISDIR(status.st_mode)) continue;
        if (folders_.contains(path)) continue;
        folders_.insert(path);
        for (const auto& child : wrapper.children) {
            const auto childDate = child->modificationDate.value_or(date);
            if (child->isDirectory())
                placeFolder(path, *child, childDate);
            else if (const auto data = bytesOf(*child))
                place(path, safeFileName(fileName(*child), u"File"_s), *data, childDate);
        }
        return path;
    }
}

}  // namespace vell
