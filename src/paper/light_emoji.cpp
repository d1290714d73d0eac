// SPDX-License-Identifier: MIT
#include "paper/light_emoji.h"

#include <QByteArray>
#include <QFont>
#include <QFontDatabase>
#include <QtEndian>
#include <cmath>
#include <map>

#include "paper/glyph_clusters.h"
#include "toolkit/emoji.h"

namespace vell {
namespace {

constexpr char family[] = "Vell Light Emoji";
constexpr char measuredEmoji[] = "\U0001f600";

// Where in the tables of a font the numbers stand.
constexpr qsizetype unitsPerEmPlace = 18;      // head
constexpr qsizetype locationFormatPlace = 50;  // head
constexpr qsizetype ascenderPlace = 4;         // hhea
constexpr qsizetype advanceCountPlace = 34;    // hhea
constexpr qsizetype glyphCountPlace = 4;       // maxp
constexpr qsizetype typographicPlace = 68;     // OS/2
constexpr qsizetype leastSize = 78;            // of OS/2, and more than of the others

template <class Number>
QByteArray bigEndian(Number number) {
    QByteArray bytes(sizeof number, Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

quint16 numberAt(const QByteArray& table, qsizetype place) {
    return qFromBigEndian<quint16>(table.constData() + place);
}

void setNumber(QByteArray& table, qsizetype place, qreal number) {
    qToBigEndian(static_cast<qint16>(std::lround(number)), table.data() + place);
}

QByteArray nameTable() {
    constexpr quint16 unicode = 3;
    constexpr quint16 english = 0x409;
    QByteArray names;
    for (const char c : QByteArray(family))
        names += QByteArray(1, '\0') + c;
    const auto length = static_cast<quint16>(names.size());
    QByteArray table = bigEndian<quint16>(0) + bigEndian<quint16>(2) + bigEndian<quint16>(6 + 24);
    for (const quint16 name : {1, 4})  // family, full name
        table += bigEndian(unicode) + bigEndian<quint16>(1) + bigEndian(english) + bigEndian(name) +
                 bigEndian(length) + bigEndian<quint16>(0);
    return table + names;
}

QByteArray fontOf(const std::map<QByteArray, QByteArray>& tables) {
    constexpr quint32 trueType = 0x10000;
    constexpr qsizetype entrySize = 16;
    QByteArray directory = bigEndian(trueType) + bigEndian(static_cast<quint16>(tables.size())) +
                           QByteArray(6, '\0');  // for binary searches, which nothing does
    QByteArray contents;
    const qsizetype start = directory.size() + std::ssize(tables) * entrySize;
    for (const auto& [tag, table] : tables) {
        directory += tag + bigEndian<quint32>(0) +
                     bigEndian(static_cast<quint32>(start + contents.size())) +
                     bigEndian(static_cast<quint32>(table.size()));
        contents += table + QByteArray(-table.size() & 3, '\0');
    }
    return directory + contents;
}

/// Empty where the font isn't one of bitmaps, or isn't as expected.
QByteArray withoutPictures(QRawFont font) {
    if (!font.isValid() || font.fontTable("CBLC").isEmpty()) return {};
    std::map<QByteArray, QByteArray> tables;
    for (const char* tag : {"GDEF", "GSUB", "OS/2", "cmap", "head", "hhea", "hmtx", "maxp", "post"})
        if (const QByteArray table = font.fontTable(tag); !table.isEmpty()) tables[tag] = table;
    QByteArray& head = tables["head"];
    QByteArray& hhea = tables["hhea"];
    QByteArray& hmtx = tables["hmtx"];
    QByteArray& os2 = tables["OS/2"];
    if (head.size() < locationFormatPlace + 2 || hhea.size() < advanceCountPlace + 2 ||
        tables["maxp"].size() < glyphCountPlace + 2 || os2.size() < leastSize ||
        hmtx.size() < qsizetype{4} * numberAt(hhea, advanceCountPlace))
        return {};

    // Bitmaps have other advances than the tables say: all of them by the same factor.
    font.setPixelSize(numberAt(head, unitsPerEmPlace));
    const QList<quint32> glyphs = font.glyphIndexesForString(QString::fromUtf8(measuredEmoji));
    if (glyphs.size() != 1 || glyphs[0] >= numberAt(hhea, advanceCountPlace)) return {};
    const QList<QPointF> advances = font.advancesForGlyphIndexes(glyphs);
    const qreal listed = numberAt(hmtx, 4 * static_cast<qsizetype>(glyphs[0]));
    if (advances.size() != 1 || listed == 0) return {};
    for (qsizetype i = 0; i < numberAt(hhea, advanceCountPlace); ++i)
        setNumber(hmtx, 4 * i, numberAt(hmtx, 4 * i) * advances[0].x() / listed);
    for (const auto& [table, place] : {std::pair(&hhea, ascenderPlace), {&os2, typographicPlace}}) {
        setNumber(*table, place, font.ascent());
        setNumber(*table, place + 2, -font.descent());
        setNumber(*table, place + 4, font.leading());
    }

    setNumber(head, locationFormatPlace, 0);
    tables["glyf"] = QByteArray(4, '\0');  // no outlines
    tables["loca"] =
        QByteArray(qsizetype{2} * (numberAt(tables["maxp"], glyphCountPlace) + 1), '\0');
    tables["name"] = nameTable();
    return fontOf(tables);
}

}  // namespace

const QString& lightEmojiFamily() {
    static const QString light = [] {
        const QByteArray font =
            emojiFamily().isEmpty() ? QByteArray() : withoutPictures(paintedEmoji(16));
        const int number = font.isEmpty() ? -1 : QFontDatabase::addApplicationFontFromData(font);
        return number < 0 ? emojiFamily() : QFontDatabase::applicationFontFamilies(number).value(0);
    }();
    return light;
}

bool isLightEmoji(const QRawFont& font) {
    return familyOf(font) == QLatin1StringView(family);
}

QRawFont paintedEmoji(qreal pixelSize) {
    QRawFont font = QRawFont::fromFont(QFont(emojiFamily()));
    font.setPixelSize(pixelSize);
    return font;
}

}  // namespace vell
