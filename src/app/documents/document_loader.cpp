// SPDX-License-Identifier: MIT
#include "app/documents/document_loader.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <new>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/whole_file.h"

namespace vell {
namespace {

/// A file on its way to the load thread.
struct Read {
    std::shared_ptr<const foundation::FileWrapper> file;
    std::optional<foundation::Error> problem;  ///< why it has no contents, where that is known
};

Read read(FileReader& reader, const QString& path) {
    std::optional<foundation::Error> problem;
    try {
        return {reader.read(path), std::nullopt};
    } catch (const foundation::Error& error) {
        problem = error;
    } catch (const std::bad_alloc&) {
        problem = foundation::Error(QStringLiteral("NSCocoaErrorDomain"),
                                    static_cast<qint64>(foundation::ReadErrorCode::tooLarge));
    }
    auto unread =
        std::make_shared<foundation::FileWrapper>(foundation::FileWrapper::Kind::regularFile);
    unread->filename = path.section(u'/', -1);
    return {std::move(unread), std::move(problem)};
}

/// Whether nothing of the file was seen, which leaves nothing to write into a load log.
bool wasOutOfReach(const foundation::Error& error) {
    using foundation::ReadErrorCode;
    return error.code() == static_cast<qint64>(ReadErrorCode::noSuchFile) ||
           error.code() == static_cast<qint64>(ReadErrorCode::noPermission);
}

DocumentLoader::Result convert(const Read& read, Reading reading,
                               const std::function<void()>& presentLoadLogWindow) {
    if (read.problem && wasOutOfReach(*read.problem)) return {nullptr, read.problem};
    try {
        return {std::make_shared<const VellDocument>(
                    reading == Reading::recovery
                        ? VellDocument::recover(*read.file)
                        : VellDocument::read(*read.file, presentLoadLogWindow)),
                std::nullopt};
    } catch (const foundation::Error& error) {
        return {nullptr, read.problem ? read.problem : error};
    }
}

}  // namespace

DocumentLoader::DocumentLoader(std::shared_ptr<FileReader> reader,
                               std::shared_ptr<LoadThread::Queue> queue,
                               std::function<void()> presentLoadLogWindow)
    : reader_(std::move(reader)),
      queue_(std::move(queue)),
      presentLoadLogWindow_(std::move(presentLoadLogWindow)) {}

DocumentLoader::Ticket DocumentLoader::load(const QString& path, Completion completion,
                                            Reading reading) {
    const auto wanted = std::make_shared<Completion>(std::move(completion));
    const std::weak_ptr<Completion> stillWanted = wanted;

    // Posted from the load thread only, which ends before the application object does.
    const auto finish = [stillWanted](Result result) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [stillWanted, result = std::move(result)] {
                if (const auto complete = stillWanted.lock()) (*complete)(result);
            },
            Qt::QueuedConnection);
    };

    const auto fail = [finish] { finish({nullptr, fileReadCorruptFileError()}); };
    foundation::runDetached(
        [reader = reader_, queue = queue_, present = presentLoadLogWindow_, path, reading,
         stillWanted, finish, fail] {
            const auto convertIt = [file = read(*reader, path), reading, present, stillWanted,
                                    finish] {
                if (!stillWanted.expired()) finish(convert(file, reading, present));
            };
            queue->post(foundation::guarded(convertIt, fail));
        },
        [queue = queue_, fail] { queue->post(fail); });
    return wanted;
}

}  // namespace vell
