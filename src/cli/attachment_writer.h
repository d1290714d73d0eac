#pragma once
// SPDX-License-Identifier: MIT
//
// AttachmentWriter: writes the pictures and files of one transcript byte for byte into a folder of
// their own. Their names come from other people and are made harmless. What exists with other bytes
// is never replaced; what exists with the same bytes is left as it is.

#include <sys/types.h>

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <map>
#include <utility>

#include "cli/export_plan.h"
#include "cli/input.h"
#include "cli/options.h"
#include "export/attachment_paths.h"
#include "foundation/data.h"
#include "foundation/file_wrapper.h"
#include "transcript/chat_log.h"

namespace vell {

class AttachmentWriter {
  public:
    /// Borrows all of them.
    AttachmentWriter(const Options& options, const ExportJob& job, const Input& input);

    /// Returns where everything is, seen from the document. Throws WriteError.
    [[nodiscard]] AttachmentPaths write(const TesselChatLog& log);

  private:
    using Bytes = std::pair<const char*, qsizetype>;

    const Options& options_;
    const ExportJob& job_;
    const Input& input_;
    const bool picturesOnly_;
    const QString folder_;
    const mode_t permissions_;
    quint64 budget_;
    std::map<Bytes, QByteArray> written_;  // names; one picture may be in a log a thousand times
    QHash<QByteArray, int> copies_;        // of a path; many may have the same
    QSet<QByteArray> folders_;             // of attached folders

    QByteArray add(const TesselChatLog::Event& event);
    QByteArray addFile(const foundation::FileWrapper& wrapper, foundation::Date date);
    QByteArray addBytes(const foundation::StoredData& stored, const QString& name,
                        foundation::Date date);
    void makeOwnFolder() const;
    void makeFolder(const QByteArray& path) const;
    void spend(qsizetype bytes);
    QByteArray place(const QByteArray& folder, const QString& name, const foundation::Data& data,
                     foundation::Date date);
    QByteArray placeFolder(const QByteArray& folder, const foundation::FileWrapper& wrapper,
                           foundation::Date date);
    QByteArray nextPath(const QByteArray& folder, const QString& name);
};

}  // namespace vell
