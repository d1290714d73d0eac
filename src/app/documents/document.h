#pragma once
// SPDX-License-Identifier: MIT
//
// VellDocument: one opened transcript, its converted chat and the bytes it came from. Read once,
// never changed, never written: saving returns what was opened.

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

#include "export/expansion.h"
#include "foundation/error.h"
#include "foundation/file_wrapper.h"
#include "recovery/recovery.h"
#include "transcript/chat_log.h"

namespace vell {

/// The two errors a document reports, both without user info.
[[nodiscard]] foundation::Error fileReadCorruptFileError();
[[nodiscard]] foundation::Error textWriteInapplicableDocumentTypeError();

class VellDocument {
  public:
    VellDocument(TesselChatLog chatlog, foundation::Data data,
                 std::optional<recovery::Extent> extent = {});

    /// Reads a transcript from its wrapper, on any thread. Every step is in the load log; on
    /// failure `presentLoadLogWindow` is called and fileReadCorruptFileError() thrown.
    static VellDocument read(const foundation::FileWrapper& file,
                             const std::function<void()>& presentLoadLogWindow);

    /// What can be read of a damaged transcript. Throws fileReadCorruptFileError() if that is
    /// nothing; writes to no log.
    static VellDocument recover(const foundation::FileWrapper& file);

    /// What saving as `contentType` would write: the existing wrapper when there is one, else a new
    /// one with the bytes as read. Throws textWriteInapplicableDocumentTypeError() for other types.
    [[nodiscard]] std::shared_ptr<const foundation::FileWrapper> fileWrapper(
        const QString& contentType,
        std::shared_ptr<const foundation::FileWrapper> existingFile) const;

    static const QStringList& readableContentTypes();
    static const QStringList& writableContentTypes();

    [[nodiscard]] const TesselChatLog& chatlog() const { return *chatlog_; }
    /// The same, shared, for views that outlive the document.
    [[nodiscard]] const std::shared_ptr<const TesselChatLog>& sharedChatlog() const {
        return chatlog_;
    }
    /// The file's complete bytes, exactly as read.
    [[nodiscard]] const foundation::Data& data() const { return data_; }
    /// Of a recovered document.
    [[nodiscard]] const std::optional<recovery::Extent>& extent() const { return extent_; }
    /// Of the chat's exports.
    [[nodiscard]] const ExpansionBound& expansion() const { return expansion_; }

  private:
    std::shared_ptr<const TesselChatLog> chatlog_;
    foundation::Data data_;
    std::optional<recovery::Extent> extent_;
    ExpansionBound expansion_;
};

}  // namespace vell
