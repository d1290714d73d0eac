// SPDX-License-Identifier: MIT
#include "toolkit/safe_file_name.h"

#include <QList>
#include <algorithm>

namespace vell {
namespace {

// An ending longer than this is part of the name.
constexpr qsizetype longestExtension = 16;
constexpr char32_t zeroWidthNonJoiner = 0x200c;
constexpr char32_t zeroWidthJoiner = 0x200d;

bool isInvisible(char32_t c) {
    switch (QChar::category(c)) {
        case QChar::Other_Format:
            // Tags spell the flags of regions.
            return c != zeroWidthJoiner && c != zeroWidthNonJoiner && (c < 0xe0020 || c > 0xe007f);
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
    }
}

/// As much of the text as fits, cut between two characters.
QString cut(const QString& text, qsizetype bytes) {
    QString part = text;
    while (part.toUtf8().size() > bytes) {
        const qsizetype over = (part.toUtf8().size() - bytes + 3) / 4;
        part.chop(std::max<qsizetype>(over, 1));
        if (!part.isEmpty() && part.back().isHighSurrogate()) part.chop(1);
    }
    return part;
}

// The text without what changes the characters beside it and isn't seen; what joins emoji and
// letters stays. Lone surrogates come out as replacement characters.
QString withoutInvisible(const QString& text) {
    QString seen;
    seen.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        if (!isInvisible(c)) seen += QString::fromUcs4(&c, 1);
    }
    return seen;
}

bool isEdge(QChar c) {
    return c == u'.' || c.isSpace();
}

}  // namespace

QString safeFileName(const QString& name, const QString& fallback, const QString& extension) {
    const auto lastFolder = std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\'));
    QString safe = withoutInvisible(name.sliced(lastFolder + 1));
    while (!safe.isEmpty() && isEdge(safe.front()))
        safe.remove(0, 1);
    while (!safe.isEmpty() && isEdge(safe.back()))
        safe.chop(1);
    if (safe.isEmpty()) safe = fallback;
    const qsizetype dot = safe.lastIndexOf(u'.');
    const bool hasExtension = dot > 0 && safe.size() - dot <= longestExtension;
    if (!hasExtension && !extension.isEmpty())
        return safeFileName(safe + u'.' + extension, fallback);
    const QString ending = hasExtension ? safe.sliced(dot) : QString();
    return cut(safe.chopped(ending.size()), longestFileName - ending.toUtf8().size()) + ending;
}

}  // namespace vell
