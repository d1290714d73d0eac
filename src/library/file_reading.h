#pragma once
// SPDX-License-Identifier: MIT
//
// TranscriptReader: reads transcripts for the library, one after the other; each thread has its
// own. Whatever is wrong with a file is that file's reason: never an exception, nor a printed line.

#include <QByteArray>
#include <QSet>
#include <QString>
#include <memory>
#include <vector>

#include "foundation/calendar.h"
#include "library/conversation.h"
#include "library/folder_walk.h"

namespace vell {

struct FileReading {
    FoundFile file;   ///< as it was while it was read
    QByteArray hash;  ///< of its bytes; empty when they couldn't be read
    /// Why there is no conversation, in plain words; empty otherwise.
    QString reason;
    /// Its bytes are known, and it was read no further.
    bool isKnown = false;
    Conversation conversation;
};

/// A file's bytes; what is known of the file becomes what it was while it was read. Throws.
[[nodiscard]] QByteArray readBytes(FoundFile& file);
/// The transcript in a file's bytes. Throws.
[[nodiscard]] TesselChatLog logOf(const FoundFile& file, const foundation::Data& bytes,
                                  const foundation::Calendar& calendar);

class TranscriptReader {
  public:
    using Hashes = std::shared_ptr<const QSet<QByteArray>>;

    /// Files whose hash is among these, if there are any, are read no further.
    explicit TranscriptReader(Hashes knownHashes = {});

    [[nodiscard]] FileReading read(const FoundFile& file);

  private:
    Hashes knownHashes_;
    foundation::Calendar calendar_;

    void readInto(FileReading& reading);
};

}  // namespace vell
