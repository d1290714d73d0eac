// SPDX-License-Identifier: MIT
#include "timeline/text/text_blocks.h"

#include <QTextBoundaryFinder>
#include <algorithm>

#include "foundation/line_break.h"

namespace vell {
namespace {

// Longer paragraphs, in full blocks, are cut into shorter blocks: what comes on the screen while
// they are scrolled is laid out sooner, and among that many lines short ones don't show.
constexpr qsizetype manyBlocks = 4;

// How far back from a full block's end a blank is looked for, and a character's start.
constexpr qsizetype blankSearch = 256;
constexpr qsizetype clusterSearch = 128;

bool isRegionalIndicator(QStringView text, qsizetype at) {
    return text[at] == QChar(0xD83C) && text[at + 1] >= QChar(0xDDE6) &&
           text[at + 1] <= QChar(0xDDFF);
}

// The length of the first block of a paragraph that is longer than `longest`, which blocks may be.
int firstPart(QStringView paragraph, qsizetype longest) {
    for (qsizetype i = longest; i > longest - blankSearch; --i) {
        if (paragraph[i - 1] == u' ' || paragraph[i - 1] == u'\t') return static_cast<int>(i);
    }
    qsizetype from = longest - clusterSearch;
    if (paragraph[from].isLowSurrogate()) --from;
    while (from >= 2 && isRegionalIndicator(paragraph, from - 2))
        from -= 2;  // flags come in pairs
    const qsizetype to = std::min<qsizetype>(longest + clusterSearch, paragraph.size());
    const QStringView around = paragraph.sliced(from, to - from);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around.data(), around.size());
    finder.setPosition(longest - from);
    const qsizetype boundary =
        finder.isAtBoundary() ? finder.position() : finder.toPreviousBoundary();
    if (boundary > 0) return static_cast<int>(from + boundary);
    return static_cast<int>(paragraph[longest].isLowSurrogate() ? longest - 1 : longest);
}

bool isRightToLeft(QStringView paragraph, Qt::LayoutDirection direction) {
    for (qsizetype i = 0; i < paragraph.size(); ++i) {
        char32_t c = paragraph[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < paragraph.size()) {
            c = QChar::surrogateToUcs4(paragraph[i], paragraph[i + 1]);
            ++i;
        }
        switch (QChar::direction(c)) {
            case QChar::DirL:
                return false;
            case QChar::DirR:
            case QChar::DirAL:
                return true;
            default:
                break;
        }
    }
    return direction == Qt::RightToLeft;
}

}  // namespace

std::vector<TextBlock> splitIntoBlocks(QStringView text, Qt::LayoutDirection direction) {
    std::vector<TextBlock> blocks;
    qsizetype start = 0;
    while (true) {
        qsizetype end = start;
        while (end < text.size() && !foundation::isLineBreak(text[end].unicode()))
            ++end;
        const bool rightToLeft = isRightToLeft(text.sliced(start, end - start), direction);
        const qsizetype longest =
            end - start > manyBlocks * longestBlock ? longestBlock / 2 : longestBlock;
        while (end - start > longest) {
            const int length = firstPart(text.sliced(start, end - start), longest);
            blocks.push_back({start, length, rightToLeft});
            start += length;
        }
        blocks.push_back({start, static_cast<int>(end - start), rightToLeft});
        if (end == text.size()) return blocks;
        const bool pair = text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n';
        start = end + (pair ? 2 : 1);
    }
}

}  // namespace vell
