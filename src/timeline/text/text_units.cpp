// SPDX-License-Identifier: MIT
#include "timeline/text/text_units.h"

#include <QTextBoundaryFinder>
#include <algorithm>

#include "foundation/line_break.h"

namespace vell {
namespace {

// No character, and hardly a word, reaches further than this.
constexpr qsizetype reach = 2048;

/// A finder over the neighbourhood of an offset, and where that starts.
struct Neighbourhood {
    Neighbourhood(QStringView text, qsizetype offset, TextUnit unit)
        : start(std::max<qsizetype>(offset - reach, 0)),
          finder(unit == TextUnit::word ? QTextBoundaryFinder::Word : QTextBoundaryFinder::Grapheme,
                 text.sliced(start, std::min(offset + reach, text.size()) - start)) {
        finder.setPosition(offset - start);
    }

    qsizetype start;
    QTextBoundaryFinder finder;
};

}  // namespace

TextRange unitAround(QStringView text, qsizetype offset, TextUnit unit) {
    offset = std::clamp<qsizetype>(offset, 0, text.size());
    if (unit == TextUnit::character) return {offset, offset};
    if (unit == TextUnit::paragraph) {
        qsizetype from = offset;
        qsizetype to = offset;
        while (from > 0 && !foundation::isLineBreak(text[from - 1].unicode()))
            --from;
        while (to < text.size() && !foundation::isLineBreak(text[to].unicode()))
            ++to;
        return {from, to};
    }
    Neighbourhood around(text, offset, unit);
    QTextBoundaryFinder& finder = around.finder;
    if (offset == text.size() || !finder.isAtBoundary()) finder.toPreviousBoundary();
    const qsizetype from = around.start + std::max<qsizetype>(finder.position(), 0);
    const qsizetype end = finder.toNextBoundary();
    return {from, end < 0 ? text.size() : around.start + end};
}

qsizetype nextPlace(QStringView text, qsizetype offset, TextUnit unit) {
    if (offset >= text.size()) return text.size();
    Neighbourhood around(text, offset, unit);
    while (around.finder.toNextBoundary() >= 0) {
        const bool isEnd = around.finder.boundaryReasons() & QTextBoundaryFinder::EndOfItem;
        if (unit == TextUnit::character || isEnd) return around.start + around.finder.position();
    }
    return std::min(offset + reach, text.size());
}

qsizetype previousPlace(QStringView text, qsizetype offset, TextUnit unit) {
    if (offset <= 0) return 0;
    Neighbourhood around(text, offset, unit);
    while (around.finder.toPreviousBoundary() >= 0) {
        const bool isStart = around.finder.boundaryReasons() & QTextBoundaryFinder::StartOfItem;
        if (unit == TextUnit::character || isStart) return around.start + around.finder.position();
    }
    return around.start;
}

}  // namespace vell
