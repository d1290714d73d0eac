#pragma once
// SPDX-License-Identifier: MIT
//
// DocumentLoader: opens transcripts without ever blocking the window thread. Each file is read on a
// detached thread, which owns all it touches, so that a file on a stalled mount delays no other;
// conversions run on the load thread. Lives on the window thread.

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "app/documents/document.h"
#include "app/documents/file_reader.h"
#include "app/documents/load_thread.h"

namespace vell {

/// Whether a file is read as a whole, or what is left of a damaged one.
enum class Reading { whole, recovery };

class DocumentLoader {
  public:
    struct Result {
        std::shared_ptr<const VellDocument> document;  ///< null on failure
        std::optional<foundation::Error> error;        ///< set on failure
    };
    using Completion = std::function<void(Result)>;

    /// Destroying the ticket cancels the load: its completion is not called.
    using Ticket = std::shared_ptr<void>;

    /// `presentLoadLogWindow` is called on the load thread when a load has failed and there is a
    /// log of it.
    DocumentLoader(std::shared_ptr<FileReader> reader, std::shared_ptr<LoadThread::Queue> queue,
                   std::function<void()> presentLoadLogWindow);

    /// Starts a load; the completion is called on the window thread unless the ticket is destroyed.
    [[nodiscard]] Ticket load(const QString& path, Completion completion,
                              Reading reading = Reading::whole);

    [[nodiscard]] const std::shared_ptr<FileReader>& reader() const { return reader_; }

  private:
    std::shared_ptr<FileReader> reader_;
    std::shared_ptr<LoadThread::Queue> queue_;
    std::function<void()> presentLoadLogWindow_;
};

}  // namespace vell
