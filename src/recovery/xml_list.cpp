// SPDX-License-Identifier: MIT
//
// Objects of an XML archive are numbered by their place in one array, and its elements stand in
// lines of one indentation: a "<" in a text is always escaped, so a line break, that indentation
// and a "<" are nothing else. Each element is read by itself; one that can't be is replaced by an
// array, which no archive has there and nothing can be decoded from.
#include <algorithm>

#include "foundation/plist/xml_to_binary.h"
#include "recovery/names.h"
#include "recovery/repaired_list.h"
#include "recovery/xml_text.h"

namespace vell::recovery {
namespace {

using foundation::BinaryPropertyList;
using foundation::Data;

constexpr qsizetype widestIndentation = 16;
constexpr QByteArrayView unreadable = "<array/>";

bool isValue(QByteArrayView element) {
    return foundation::binaryFromXml(Data(element.toByteArray())).has_value();
}

/// Class names are the only texts in a class's record.
QByteArray withCorrectedClasses(QByteArrayView record) {
    constexpr QByteArrayView begin = "<string>";
    QByteArray result;
    qsizetype from = 0;
    for (qsizetype at = record.indexOf(begin); at >= 0; at = record.indexOf(begin, from)) {
        at += begin.size();
        const qsizetype end = std::max(record.indexOf('<', at), at);
        result.append(record.sliced(from, at - from))
            .append(correctedClass(record.sliced(at, end - at)));
        from = end;
    }
    return result.append(record.sliced(from));
}

/// Where the line of the first object begins, behind its line break; -1 if it can't be found.
qsizetype firstObject(QByteArrayView text) {
    qsizetype at = text.indexOf("<key>$objects</key>");
    if (at >= 0) at = text.indexOf("<array>", at);
    if (at >= 0) at = text.indexOf('\n', at) + 1;
    if (at > 0) return at;
    at = text.indexOf("<string>$null</string>");
    return at < 0 ? -1 : text.lastIndexOf('\n', at) + 1;
}

}  // namespace

std::optional<RepairedList> repairedXml(const Data& data) {
    const XmlText xml(data);
    const QByteArrayView text = xml.corrected();
    const qsizetype lineBreak = firstObject(text);
    if (lineBreak < 1) return std::nullopt;
    const qsizetype null = std::max(text.indexOf('<', lineBreak), lineBreak);
    const qsizetype indentation = null - lineBreak;
    if (indentation < 1 || indentation > widestIndentation) return std::nullopt;
    const QByteArray lineStart = text.sliced(lineBreak - 1, indentation + 1).toByteArray();
    const QByteArray elementStart = lineStart + '<';
    const QByteArray arrayEnd = lineStart.chopped(1) + "</array>";

    qsizetype end = text.indexOf(arrayEnd, null);
    const bool isCut = end < 0;
    if (isCut) end = text.size();
    QByteArray repaired = "<dict><key>$objects</key><array>";
    qsizetype damagedAfter = isCut ? text.size() : -1;
    for (qsizetype from = lineBreak - 1; from < end;) {
        // A closing tag of the same indentation belongs to the element before it.
        qsizetype next = text.indexOf(elementStart, from + 1);
        while (next >= 0 && next + elementStart.size() < text.size() &&
               text[next + elementStart.size()] == '/')
            next = text.indexOf(elementStart, next + 1);
        if (next < 0 || next > end) next = end;
        const QByteArrayView piece = text.sliced(from, next - from);
        if (from == lineBreak - 1) {
            repaired.append("<string>$null</string>");
        } else if (isValue(piece)) {
            repaired.append(piece.contains("<key>$classname</key>") ? withCorrectedClasses(piece)
                                                                    : piece.toByteArray());
        } else {
            if (damagedAfter < 0 || damagedAfter > from)
                damagedAfter = isCut && next == end ? text.size() : from;
            repaired.append(unreadable);
        }
        from = next;
    }
    repaired.append("</array></dict>");
    const auto binary = foundation::binaryFromXml(Data(repaired));
    if (!binary) return std::nullopt;
    auto list = BinaryPropertyList::open(*binary);
    if (!list) return std::nullopt;
    const auto array = objectsArray(*list);
    if (!array) return std::nullopt;
    return RepairedList{*std::move(list), *array,
                        xml.placeInFile(damagedAfter < 0 ? end : damagedAfter)};
}

}  // namespace vell::recovery
