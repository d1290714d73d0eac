#pragma once
// SPDX-License-Identifier: MIT
//
// Whether a file is a transcript, from its name and first bytes, without decoding it.

#include <QByteArrayView>
#include <QString>

namespace vell {

/// How many leading bytes looksLikeTranscript expects, if the file has them.
inline constexpr qsizetype transcriptProbeSize = 65536;
/// How many of them are enough to reject a file.
inline constexpr qsizetype archiveMagicSize = 13;

/// Whether the name ends in ".ichat", in any letter case.
[[nodiscard]] bool hasTranscriptExtension(const QString& fileName);
/// Whether the bytes begin like a keyed or non-keyed archive.
[[nodiscard]] bool beginsLikeArchive(QByteArrayView head);
/// Whether they also name the class of messages or of participants.
[[nodiscard]] bool looksLikeTranscript(QByteArrayView head);

}  // namespace vell
