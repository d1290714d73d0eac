// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <memory>

#include "foundation/error.h"
#include "foundation/local_path.h"
#include "foundation/print.h"
#include "identity/vcard_source.h"
#include "toolkit/console.h"
#include "transcript/load_log.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::localPath;

namespace {

constexpr int kDone = 0;
constexpr int kSomeFailed = 1;
constexpr int kUsage = 2;
constexpr qsizetype kManyFiles = 10;

void writeText(std::FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

/// On one line, without what could move a terminal's cursor.
QString oneLine(QString text) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control) c = u' ';
    }
    return text;
}

/// The reason of a failure for people.
QString reasonOf(const std::exception& error) {
    const auto* archive = dynamic_cast<const foundation::Error*>(&error);
    if (!archive) return QString::fromUtf8(error.what());
    const QString text = archive->debugDescription().isEmpty() ? archive->description()
                                                               : archive->debugDescription();
    const bool isUnreadable =
        archive->code() == static_cast<qint64>(foundation::CoderErrorCode::readCorrupt) ||
        archive->code() == static_cast<qint64>(foundation::CoderErrorCode::valueNotFound);
    if (!isUnreadable) return text;
    // The name of the platform's function in front says nothing to people.
    const auto prefix = text.startsWith(u"*** -[") ? text.indexOf(u"]: ") : -1;
    return u"no transcript, or damaged: "_s + (prefix < 0 ? text : text.mid(prefix + 3));
}

foundation::FileWrapper wrapperOf(const QString& file) {
    using Kind = foundation::FileWrapper::Kind;
    if (file == u"-") return foundation::FileWrapper(Kind::regularFile);
    const QFileInfo info(localPath(file));
    const Kind kind = info.isSymLink() ? Kind::symbolicLink
                      : info.isDir()   ? Kind::directory
                                       : Kind::regularFile;
    foundation::FileWrapper wrapper(kind);
    wrapper.filename = info.fileName();
    return wrapper;
}

ContactsStore::Table contactsOf(const Options& options) {
    try {
        return readContactTable(options.contacts, *console::defaultConsole());
    } catch (const ContactsError& error) {
        throw UsageError{u"the contacts can't be read: "_s + error.debugDescription()};
    }
}

}  // namespace

Exporter::Exporter(const Options& options, Streams streams)
    : options_(options), streams_(streams), contacts_(contactsOf(options)) {}

bool Exporter::run() {
    try {
        prepareOutput();
    } catch (const WriteError& error) {
        report(*options_.output, error.reason);
        return false;
    }
    const qsizetype count = options_.files.size();
    showsProgress_ = count >= kManyFiles && isatty(fileno(streams_.error)) != 0;
    bool allDone = true;
    for (qsizetype i = 0; i < count; ++i) {
        showProgress(i, options_.files[i]);
        if (!exportOne(options_.files[i])) allDone = false;
    }
    clearProgress();
    return allDone;
}

void Exporter::prepareOutput() {
    if (!options_.output) return;
    for (const QString& file : options_.files) {
        if (file != u"-") transcripts_.insert(QFileInfo(localPath(file)).canonicalFilePath());
    }
    const QFileInfo info(localPath(*options_.output));
    intoFolder_ = info.isDir() || options_.files.size() > 1 || options_.output->endsWith(u'/');
    if (!intoFolder_ || info.isDir()) return;
    if (info.exists()) throw UsageError{*options_.output + u" is no folder"_s};
    if (!QDir().mkpath(info.absoluteFilePath())) throw WriteError{u"the folder can't be made"_s};
}

bool Exporter::exportOne(const QString& file) {
    const auto log = tesselLoadLog();
    if (log) log->openFile(wrapperOf(file));
    std::optional<TesselChatLog> chatLog;
    try {
        chatLog.emplace(read(file));
    } catch (const std::exception& error) {
        report(file, reasonOf(error));
        if (log && options_.printsLoadLog) writeText(streams_.error, log->grabLog());
        return false;
    }
    try {
        write(*chatLog, file);
    } catch (const WriteError& error) {
        report(file, error.reason);
        return false;
    }
    return true;
}

TesselChatLog Exporter::read(const QString& file) const {
    if (file == u"-") {
        return TesselChatLog::fromData(streams_.input.readAll(), std::nullopt, options_.calendar);
    }
    return TesselChatLog::fromFile(file, options_.calendar);
}

void Exporter::write(const TesselChatLog& log, const QString& file) {
    const FormatContext context{options_.calendar, options_.locale, contacts_};
    const auto writeTo = [&](QIODevice& device) { options_.format->write(log, context, device); };
    if (!options_.output) {
        writeTo(streams_.output);
        return;
    }
    QString path = *options_.output;
    if (intoFolder_)
        path += u'/' + names_.nameFor(file, QString::fromLatin1(options_.format->fileExtension));
    if (QFileInfo target(localPath(path));
        target.exists() && transcripts_.contains(target.canonicalFilePath()))
        throw WriteError{path + u": a transcript itself, never replaced"_s};
    try {
        writeFile(path, options_.force, writeTo);
    } catch (const WriteError& error) {
        throw WriteError{path + u": "_s + error.reason};
    }
}

void Exporter::report(const QString& file, const QString& reason) const {
    clearProgress();
    const QString name = file == u"-" ? u"stdin"_s : file;
    writeText(streams_.error,
              oneLine(u"vell-export: "_s + name + u": "_s + reason.simplified()) + u'\n');
}

void Exporter::showProgress(qsizetype done, const QString& file) const {
    if (!showsProgress_) return;
    const QString name = oneLine(QFileInfo(localPath(file)).fileName()).left(50);
    writeText(streams_.error,
              u"\r\033[K%1 of %2: "_s.arg(done + 1).arg(options_.files.size()) + name);
}

void Exporter::clearProgress() const {
    if (showsProgress_) writeText(streams_.error, u"\r\033[K"_s);
}

int runExport(const QStringList& arguments, Streams streams) {
    // Standard output is for documents.
    foundation::setPrintTarget(streams.error);
    console::setDefaultConsole(std::make_shared<Console2<>>(FileOutputStream(streams.error),
                                                            FileOutputStream(streams.error),
                                                            LogLevel::defaultLevel()));
    try {
        const Options options = parseOptions(arguments);
        return Exporter(options, streams).run() ? kDone : kSomeFailed;
    } catch (const Information& information) {
        streams.output.write(information.text.toUtf8());
        return kDone;
    } catch (const UsageError& error) {
        writeText(streams.error,
                  u"vell-export: "_s + error.reason + u"\nTry 'vell-export --help' for more.\n"_s);
        return kUsage;
    }
}

}  // namespace vell
