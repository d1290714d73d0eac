// SPDX-License-Identifier: MIT
#include "library/transcript_probe.h"

namespace vell {

bool hasTranscriptExtension(const QString& fileName) {
    return fileName.endsWith(QLatin1String(".ichat"), Qt::CaseInsensitive);
}

bool beginsLikeArchive(QByteArrayView head) {
    if (head.startsWith("bplist00") || head.startsWith("<?xml")) return true;
    if (head.size() < archiveMagicSize || head[0] != '\x04' || head[1] != '\x0b') return false;
    const QByteArrayView name = head.sliced(2);
    return name.startsWith("streamtyped") || name.startsWith("typedstream");
}

bool looksLikeTranscript(QByteArrayView head) {
    // A chat without messages still has participants.
    return beginsLikeArchive(head) &&
           (head.contains(QByteArrayView("InstantMessage")) ||
            head.contains(QByteArrayView("Presentity"))) &&
           (!head.startsWith("<?xml") || head.contains(QByteArrayView("NSKeyedArchiver")));
}

}  // namespace vell
