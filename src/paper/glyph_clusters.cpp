// SPDX-License-Identifier: MIT
#include "paper/glyph_clusters.h"

#include <QGlyphRun>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <algorithm>
#include <iterator>
#include <optional>

namespace vell {
namespace {

constexpr qreal samePlace = 1.0 / 64;

/// The clusters of a run that has one glyph for each UTF-16 unit of the text; otherwise nothing.
std::optional<std::vector<GlyphCluster>> plainClusters(const QGlyphRun& run, QStringView text,
                                                       int font) {
    const QList<quint32> glyphs = run.glyphIndexes();
    const QList<QPointF> places = run.positions();
    if (glyphs.size() != text.size() || !run.rawFont().isValid()) return std::nullopt;
    QList<quint32> expected = run.rawFont().glyphIndexesForString(text.toString());
    bool isReversed = false;
    if (expected != glyphs && run.isRightToLeft()) {
        std::reverse(expected.begin(), expected.end());
        isReversed = true;
    }
    if (expected != glyphs) return std::nullopt;
    std::vector<GlyphCluster> clusters;
    clusters.reserve(static_cast<size_t>(glyphs.size()));
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        const qsizetype at = isReversed ? glyphs.size() - 1 - i : i;
        if (text[at].isMark()) return std::nullopt;
        clusters.push_back({text.sliced(at, 1), places[i], {{glyphs[i], {}, font}}});
    }
    return clusters;
}

/// Goes through a line word by word, and letter by letter where a word has other glyphs than
/// letters.
class Collector {
  public:
    Collector(const QTextLine& line, QStringView text) : line_(line), text_(text) {}

    LineGlyphs collect() {
        const qsizetype end =
            std::min<qsizetype>(line_.textStart() + line_.textLength(), text_.size());
        for (qsizetype from = line_.textStart(); from < end;) {
            qsizetype to = from;
            while (to < end && !text_[to].isSpace())
                ++to;
            while (to < end && text_[to].isSpace())
                ++to;
            if (!addPlainWord(from, to)) addLetters(from, to);
            from = to;
        }
        return std::move(result_);
    }

  private:
    bool addPlainWord(qsizetype from, qsizetype to) {
        const QList<QGlyphRun> runs =
            line_.glyphRuns(static_cast<int>(from), static_cast<int>(to - from));
        if (runs.size() != 1) return false;
        auto clusters = plainClusters(runs.first(), text_.sliced(from, to - from),
                                      fontIndex(runs.first().rawFont()));
        if (!clusters) return false;
        std::move(clusters->begin(), clusters->end(), std::back_inserter(result_.clusters));
        return true;
    }

    void addLetters(qsizetype from, qsizetype end) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text_.data(), text_.size());
        finder.setPosition(from);
        while (from < end) {
            const qsizetype next = finder.toNextBoundary();
            const qsizetype to = next < 0 ? end : std::min(next, end);
            add(from, to);
            from = to;
        }
    }

    int fontIndex(const QRawFont& font) {
        const auto known = std::find(result_.fonts.begin(), result_.fonts.end(), font);
        const auto index = static_cast<int>(known - result_.fonts.begin());
        if (known == result_.fonts.end()) result_.fonts.push_back(font);
        return index;
    }

    void add(qsizetype from, qsizetype to) {
        GlyphCluster cluster{text_.sliced(from, to - from), {}, {}};
        for (const QGlyphRun& run :
             line_.glyphRuns(static_cast<int>(from), static_cast<int>(to - from))) {
            const int font = fontIndex(run.rawFont());
            const QList<quint32> glyphs = run.glyphIndexes();
            const QList<QPointF> places = run.positions();
            for (qsizetype i = 0; i < glyphs.size(); ++i) {
                if (cluster.glyphs.empty()) cluster.place = places[i];
                cluster.glyphs.push_back({glyphs[i], places[i] - cluster.place, font});
            }
        }
        // A letter without a glyph of its own belongs to the one before it in the text.
        if (isShared(cluster)) {
            GlyphCluster& last = result_.clusters.back();
            last.text = QStringView(last.text.data(), cluster.text.data() + cluster.text.size());
        } else if (!cluster.glyphs.empty()) {
            result_.clusters.push_back(std::move(cluster));
        }
    }

    [[nodiscard]] bool isShared(const GlyphCluster& cluster) const {
        if (result_.clusters.empty()) return false;
        if (cluster.glyphs.empty()) return true;
        const GlyphCluster& last = result_.clusters.back();
        const QPointF apart = last.place - cluster.place;
        return last.glyphs.front().index == cluster.glyphs.front().index &&
               std::abs(apart.x()) < samePlace && std::abs(apart.y()) < samePlace;
    }

    const QTextLine& line_;
    QStringView text_;
    LineGlyphs result_;
};

}  // namespace

QString familyOf(const QRawFont& font) {
    return font.isValid() && !font.fontTable("head").isEmpty() ? font.familyName() : QString();
}

LineGlyphs lineGlyphs(const QTextLine& line, QStringView text) {
    const qsizetype start = std::min<qsizetype>(line.textStart(), text.size());
    const qsizetype length = std::min<qsizetype>(line.textLength(), text.size() - start);
    const QList<QGlyphRun> runs = line.glyphRuns();
    std::optional<std::vector<GlyphCluster>> plain;
    if (runs.size() == 1) {
        const QStringView content = text.sliced(start, length);
        plain = plainClusters(runs.first(), content, 0);
        // What isn't painted is the space at which the line was broken.
        if (!plain) plain = plainClusters(runs.first(), content.trimmed(), 0);
    }
    LineGlyphs result = plain ? LineGlyphs{{runs.first().rawFont()}, std::move(*plain)}
                              : Collector(line, text).collect();
    std::stable_sort(result.clusters.begin(), result.clusters.end(),
                     [](const auto& a, const auto& b) { return a.place.x() < b.place.x(); });
    return result;
}

}  // namespace vell
