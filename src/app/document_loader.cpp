// SPDX-License-Identifier: MIT
#include "app/document_loader.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <thread>
#include <utility>

namespace vell {
namespace {

DocumentLoader::Result convert(const foundation::FileWrapper& file,
                               const std::function<void()>& presentLoadLogWindow) {
    try {
        return {
            std::make_shared<const VellDocument>(VellDocument::read(file, presentLoadLogWindow)),
            std::nullopt};
    } catch (const foundation::Error& error) {
        return {nullptr, error};
    }
}

}  // namespace

DocumentLoader::DocumentLoader(std::shared_ptr<FileReader> reader,
                               std::shared_ptr<LoadLane::Entrance> lane,
                               std::function<void()> presentLoadLogWindow)
    : reader_(std::move(reader)),
      lane_(std::move(lane)),
      presentLoadLogWindow_(std::move(presentLoadLogWindow)) {}

DocumentLoader::Ticket DocumentLoader::load(const QString& path, Completion completion) {
    const auto wanted = std::make_shared<Completion>(std::move(completion));
    const std::weak_ptr<Completion> stillWanted = wanted;

    // Posted from the lane only, which ends before the application object does.
    const auto finish = [stillWanted](Result result) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [stillWanted, result = std::move(result)] {
                if (const auto tell = stillWanted.lock()) (*tell)(result);
            },
            Qt::QueuedConnection);
    };

    std::thread([reader = reader_, lane = lane_, present = presentLoadLogWindow_, path, stillWanted,
                 finish] {
        const auto file = reader->read(path);
        lane->post(LoadLane::Priority::document, [file, present, stillWanted, finish] {
            if (stillWanted.expired()) return;
            finish(convert(*file, present));
        });
    }).detach();
    return wanted;
}

}  // namespace vell
