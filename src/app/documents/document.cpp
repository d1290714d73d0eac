// SPDX-License-Identifier: MIT
#include "app/documents/document.h"

#include <optional>
#include <utility>

#include "foundation/print.h"
#include "toolkit/date_formatters.h"
#include "transcript/content_types.h"
#include "transcript/load_log.h"

namespace vell {
namespace {

const QString cocoaErrorDomain = QStringLiteral("NSCocoaErrorDomain");

}  // namespace

foundation::Error fileReadCorruptFileError() {
    return {cocoaErrorDomain, 259};
}

foundation::Error textWriteInapplicableDocumentTypeError() {
    return {cocoaErrorDomain, 66062};
}

VellDocument::VellDocument(TesselChatLog chatlog, foundation::Data data,
                           std::optional<recovery::Extent> extent)
    : chatlog_(std::make_shared<const TesselChatLog>(std::move(chatlog))),
      data_(std::move(data)),
      extent_(extent),
      expansion_(*chatlog_) {}

VellDocument VellDocument::read(const foundation::FileWrapper& file,
                                const std::function<void()>& presentLoadLogWindow) {
    const std::shared_ptr<TesselLoadLog> log = tesselLoadLog();
    if (log) log->openFile(file);

    if (!file.isRegularFile() || !file.contents) {
        if (log) log->writeln(QStringLiteral("Failed to load the raw file into memory."));
        presentLoadLogWindow();
        throw fileReadCorruptFileError();
    }

    const foundation::Data bytes = file.contents->load().value_or(foundation::Data());
    try {
        return {TesselChatLog::fromData(bytes, file.modificationDate, sharedCalendar(), log.get()),
                bytes};
    } catch (const std::exception& error) {
        // The cause stays in the load log; callers only ever see one error.
        foundation::print(QStringLiteral("ERROR: ") + QString::fromUtf8(error.what()));
        presentLoadLogWindow();
        throw fileReadCorruptFileError();
    }
}

VellDocument VellDocument::recover(const foundation::FileWrapper& file) {
    if (!file.isRegularFile() || !file.contents) throw fileReadCorruptFileError();
    const foundation::Data bytes = file.contents->load().value_or(foundation::Data());
    auto recovered = recovery::recoverChatLog(bytes, file.modificationDate, sharedCalendar());
    if (!recovered) throw fileReadCorruptFileError();
    return {std::move(recovered->log), bytes, recovered->extent};
}

std::shared_ptr<const foundation::FileWrapper> VellDocument::fileWrapper(
    const QString& contentType, std::shared_ptr<const foundation::FileWrapper> existingFile) const {
    if (contentType != iChatTranscriptType.identifier) {
        foundation::print(QStringLiteral("Save error: invalid type: ") + contentType);
        throw textWriteInapplicableDocumentTypeError();
    }
    if (existingFile) {
        // An existing wrapper always wins, so that opened bytes are never written again.
        foundation::print(QStringLiteral("Save: returning existing wrapper (FB9122684) ..."));
        return existingFile;
    }
    foundation::print(
        QStringLiteral("Save: returning new wrapper for data (#%1 bytes)").arg(data_.size()));
    return std::make_shared<const foundation::FileWrapper>(data_);
}

const QStringList& VellDocument::readableContentTypes() {
    static const QStringList types{iChatTranscriptType.identifier.toString()};
    return types;
}

const QStringList& VellDocument::writableContentTypes() {
    static const QStringList none;
    return none;
}

}  // namespace vell
