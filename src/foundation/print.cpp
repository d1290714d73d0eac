// SPDX-License-Identifier: MIT
#include "foundation/print.h"

#include <QByteArray>
#include <mutex>
#include <utility>

#include "foundation/elided.h"
#include "foundation/printable.h"

namespace foundation {
namespace {

struct Target {
    std::mutex mutex;
    std::FILE* stream = stdout;
    std::function<void(QStringView)> function;
};

Target& target() {
    static Target shared;
    return shared;
}

thread_local PrintingOfOneFile* currentFile = nullptr;
thread_local bool isSilent = false;

}  // namespace

void print(QStringView whole) {
    if (isSilent) return;
    if (currentFile && ++currentFile->lines_ > PrintingOfOneFile::mostLines) return;
    // Cut before it is escaped for the time's sake, and after it for the length's.
    const QString text =
        elided(printable(elided(whole.toString(), longestPrintedLine)), longestPrintedLine);
    Target& to = target();
    const std::lock_guard lock(to.mutex);
    if (to.function) {
        to.function(text);
        return;
    }
    QByteArray bytes = text.toUtf8();
    bytes.append('\n');
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), to.stream);
}

PrintingOfOneFile::PrintingOfOneFile() {
    currentFile = this;
}

PrintingOfOneFile::~PrintingOfOneFile() {
    currentFile = nullptr;
    if (lines_ > mostLines)
        print(QStringLiteral("WARN: %1 more lines about this file").arg(lines_ - mostLines));
}

SilentThread::SilentThread() {
    isSilent = true;
}

SilentThread::~SilentThread() {
    isSilent = false;
}

void setPrintTarget(std::FILE* stream) {
    const std::lock_guard lock(target().mutex);
    target().stream = stream;
}

void setPrintFunction(std::function<void(QStringView)> function) {
    const std::lock_guard lock(target().mutex);
    target().function = std::move(function);
}

}  // namespace foundation
