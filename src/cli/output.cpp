// SPDX-License-Identifier: MIT
#include "cli/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <optional>

#include "cli/folders.h"
#include "cli/temporary_file.h"
#include "foundation/local_path.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::pathBytes;

namespace {

const QString indexName = u"index"_s;

using Status = struct stat;

std::optional<Status> statusOf(const QByteArray& path) {
    Status status{};
    if (::stat(path.constData(), &status) != 0) return std::nullopt;
    return status;
}

std::optional<Status> statusOf(int descriptor) {
    Status status{};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    return status;
}

bool isLink(const QByteArray& path) {
    Status status{};
    return ::lstat(path.constData(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// The descriptor that the name stands for. Opening such a name would truncate a file that the
/// shell has opened, perhaps for appending.
std::optional<int> descriptorOf(const QString& name) {
    if (name == u"-" || name == u"/dev/stdout") return STDOUT_FILENO;
    if (name == u"/dev/stderr") return STDERR_FILENO;
    for (const QStringView folder : {u"/dev/fd/", u"/proc/self/fd/"}) {
        bool isNumber = false;
        const int number = QStringView(name).mid(folder.size()).toInt(&isNumber);
        if (name.startsWith(folder) && isNumber) return number;
    }
    return std::nullopt;
}

mode_t ordinaryPermissions() {
    const mode_t masked = ::umask(0);
    ::umask(masked);
    return 0666 & ~masked;
}

}  // namespace

QString OutputNames::nameFor(const ExportJob& job) {
    QString name = u"stdin"_s;
    if (job.file != u"-") {
        const QFileInfo info(foundation::localPath(job.file));
        name = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    }
    if (!job.folder.isEmpty()) name = job.folder + u'/' + name;
    // Bytes in the input's name that are no text become U+FFFD.
    const QList<uint> characters = name.toUcs4();
    name =
        QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.data()), characters.size());
    return unique(name);
}

QString OutputNames::unique(const QString& name) {
    QString result = name;
    for (int number = 2; taken_.contains(result); ++number)
        result = name + u'-' + QString::number(number);
    taken_.insert(result);
    return result;
}

Output::Output(const Options& options, ExportPlan& plan)
    : options_(options),
      transcripts_(plan.transcripts),
      ordinaryPermissions_(ordinaryPermissions()) {
    try {
        open(options.output, plan.isForSeveral());
    } catch (const WriteError& error) {
        throw WriteError{displayName() + u": "_s + error.reason};
    }
    const QString extension = QString::fromLatin1(options.format->extension);
    OutputNames names;
    if (options.index) static_cast<void>(names.unique(indexName));
    for (ExportJob& job : plan.jobs) {
        job.name = names.nameFor(job);
        if (isFolder_)
            job.document = options.output + u'/' + job.name + u'.' + extension;
        else if (!isStream())
            job.document = options.output;
    }
}

Output::~Output() {
    if (ownsStream_) ::close(stream_);
}

QString Output::displayName() const {
    return stream_ == STDOUT_FILENO ? u"standard output"_s : options_.output;
}

void Output::open(const QString& name, bool forSeveral) {
    if (options_.outputIsFolder) return openFolder(name);
    if (const auto descriptor = descriptorOf(name)) return openStream(*descriptor);
    const auto status = statusOf(pathBytes(name));
    if (status && S_ISDIR(status->st_mode)) {
        isFolder_ = true;
    } else if (status && (S_ISCHR(status->st_mode) || S_ISFIFO(status->st_mode))) {
        const int descriptor = ::open(pathBytes(name).constData(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
        if (descriptor < 0) throw WriteError{systemReason()};
        ownsStream_ = true;
        openStream(descriptor);
    } else if (forSeveral) {
        throw UsageError{name + u" is not a folder; several files need one (--output-dir)"_s};
    }
}

void Output::openFolder(const QString& name) {
    const QByteArray path = pathBytes(name);
    if (const auto status = statusOf(path); status && !S_ISDIR(status->st_mode))
        throw UsageError{name + u" is not a folder"_s};
    createFolder(path);
    isFolder_ = true;
}

void Output::openStream(int descriptor) {
    stream_ = descriptor;
    const auto status = statusOf(descriptor);
    if (status && transcripts_.contains({status->st_dev, status->st_ino}))
        throw WriteError{u"it is a transcript, which is never written to"_s};
}

void Output::write(const ExportJob& job, const Input& input, const Write& write) {
    if (isStream()) return writeToStream(write);
    try {
        writeToFile(job, input, write);
    } catch (const WriteError& error) {
        throw WriteError{job.document + u": "_s + error.reason};
    }
}

QString Output::indexPath() const {
    return options_.output + u'/' + indexName + u".html"_s;
}

bool Output::isCurrent(const ExportJob& job) {
    const auto source = statusOf(pathBytes(job.file));
    const auto document = statusOf(pathBytes(job.document));
    if (!source || !document || !S_ISREG(document->st_mode)) return false;
    const auto isAfter = [&written = document->st_mtim](const timespec& time) {
        return written.tv_sec != time.tv_sec ? written.tv_sec > time.tv_sec
                                             : written.tv_nsec > time.tv_nsec;
    };
    return isAfter(source->st_mtim) && isAfter(source->st_ctim);
}

void Output::writeToStream(const Write& write) {
    Sink sink(stream_);
    try {
        if (hasWritten_) sink.write(options_.format->separator);
        hasWritten_ = true;
        write(sink);
        sink.flush();
    } catch (const WriteError& error) {
        isBroken_ = true;
        throw WriteError{displayName() + u": "_s + error.reason};
    }
}

void Output::writeToFile(const ExportJob& job, const Input& input, const Write& write) const {
    const QByteArray path = pathBytes(job.document);
    const bool replaces = options_.force || options_.update;
    const auto there = statusOf(path);
    if (there && transcripts_.contains({there->st_dev, there->st_ino}))
        throw WriteError{u"it is a transcript, which is never replaced"_s};
    if ((there || isLink(path)) && !replaces)
        throw WriteError{u"the file exists (--force replaces it)"_s};
    if (there && !S_ISREG(there->st_mode)) throw WriteError{u"it is not a regular file"_s};

    // A link is replaced by a new file, whatever it leads to.
    mode_t permissions = ordinaryPermissions_;
    if (there && !isLink(path))
        permissions = there->st_mode & 0777;
    else if (input.permissions)
        permissions = *input.permissions & 0666;

    if (!job.folder.isEmpty()) mirrorFolder(folderOf(path), folderOf(pathBytes(job.file)));
    TemporaryFile temporary(folderOf(path));
    Sink sink(temporary.descriptor());
    write(sink);
    sink.flush();
    temporary.keepAs(path, permissions, replaces);
}

}  // namespace vell
