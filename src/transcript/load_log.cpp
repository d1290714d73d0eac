// SPDX-License-Identifier: MIT
#include "transcript/load_log.h"

#include <algorithm>
#include <utility>

#include "foundation/printable.h"
#include "transcript/byte_data.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype dumpBytesPerLine = 16;
constexpr qsizetype longestExtension = 200;

std::atomic<std::shared_ptr<TesselLoadLog>>& sharedLog() {
    static std::atomic<std::shared_ptr<TesselLoadLog>> shared(std::make_shared<TesselLoadLog>());
    return shared;
}

}  // namespace

void TesselLoadLog::write(QStringView text) {
    const std::lock_guard guard(lock_);
    log_ += text;
}

void TesselLoadLog::writeln(QStringView text) {
    write(text.toString() + u'\n');
}

QString TesselLoadLog::grabLog() const {
    const std::lock_guard guard(lock_);
    return log_;
}

void TesselLoadLog::reset() {
    const std::lock_guard guard(lock_);
    log_.clear();
}

void TesselLoadLog::logPreambleOfData(QByteArrayView data) {
    QString text = u"### Attempt to load from data w/ size: "_s + QString::number(data.size());
    text += u"\n\n"_s;
    if (data.isEmpty()) {
        text += u"  *DATA IS EMTPY*\n\n"_s;
    } else {
        const auto length = std::clamp<qint64>(tesselDataPrefixLogLength, 0, data.size());
        text += hexdump(data.first(length), dumpBytesPerLine) + u"---\n\n"_s;
    }
    write(text);
}

void TesselLoadLog::logKeyedArchivedError(const foundation::Error& error) {
    QString text = u"## The NSKeyedArchived threw an exception:\n\n"_s;
    text += u"- Domain : "_s + error.domain() + u'\n';
    text += u"- Code   : "_s + QString::number(error.code()) + u'\n';
    text += u"- Error  : "_s + error.description() + u'\n';
    if (!error.underlyingErrors().empty()) text += u"- Underlying errors:\n"_s;
    for (const foundation::Error& underlying : error.underlyingErrors())
        text += u"- Error: "_s + underlying.description() + u'\n';
    write(text);
}

void TesselLoadLog::openFile(const foundation::FileWrapper& wrapper) {
    QString text = u"Opening new file [name not exposed]:\n"_s;
    text += wrapper.isDirectory() ? u"  DIRECTORY\n"_s : u"  not-a-dir\n"_s;
    text += wrapper.isRegularFile() ? u"  FILE\n"_s : u"  not-a-file\n"_s;
    text += wrapper.isSymbolicLink() ? u"  SYMLINK\n"_s : u"  not-a-symlink\n"_s;
    text += wrapper.filename ? u"  wrapper has filename\n"_s : u"  no filename?\n"_s;
    const QString name = wrapper.filename.value_or(QString());
    const auto dot = name.lastIndexOf(u'.');
    if (dot >= 0)
        text += u"  Extension: "_s +
                foundation::printable(QStringView(name).sliced(dot), longestExtension) + u'\n';
    else
        text += u"  No filename extension?\n"_s;
    text += u"---\n\n\n"_s;
    reset();
    write(text);
}

std::shared_ptr<TesselLoadLog> tesselLoadLog() {
    return sharedLog().load();
}

void setTesselLoadLog(std::shared_ptr<TesselLoadLog> log) {
    sharedLog().store(std::move(log));
}

}  // namespace vell
