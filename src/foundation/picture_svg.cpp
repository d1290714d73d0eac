// SPDX-License-Identifier: MIT
//
// SVG by its root element: skips what XML allows before it and reads that one tag. Nothing past the
// first 64 KiB is looked at.
#include <QByteArray>
#include <QStringDecoder>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "foundation/picture_header.h"
#include "foundation/xml_scanner.h"

namespace foundation::picture {
namespace {

constexpr qint64 window = 65536;
constexpr QByteArrayView svgNamespace = "http://www.w3.org/2000/svg";

/// The number that comes next; nothing when none does.
std::optional<double> readNumber(XmlScanner& text) {
    text.skipBlanks();
    const QByteArrayView rest = text.rest();
    const auto* const end = std::find_if_not(rest.begin(), rest.end(), [](char c) {
        return (c >= '0' && c <= '9') || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E';
    });
    const QByteArrayView digits = rest.first(end - rest.begin());
    text.skip(digits);
    bool isNumber = false;
    const double number = digits.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<int> side(double pixels) {
    if (!(pixels > 0) || pixels > maximumSide) return {};
    return std::max(1, static_cast<int>(std::lround(pixels)));
}

/// A length in pixels, rounded; nothing in units that aren't lengths of their own.
std::optional<int> pixels(QByteArrayView length) {
    constexpr std::pair<QByteArrayView, double> units[] = {
        {"px", 1}, {"pt", 96 / 72.0}, {"pc", 16}, {"mm", 96 / 25.4}, {"cm", 96 / 2.54}, {"in", 96}};
    XmlScanner text(length);
    const auto number = readNumber(text);
    text.skipBlanks();
    if (!number) return {};
    if (text.rest().isEmpty()) return side(*number);
    for (const auto& [unit, factor] : units)
        if (text.skip(unit)) return side(*number * factor);
    return {};
}

/// Width and height of "x y width height", with blanks or commas between.
std::optional<QSize> viewBoxSize(QByteArrayView box) {
    XmlScanner text(box);
    double numbers[4] = {};
    for (double& number : numbers) {
        const auto read = readNumber(text);
        if (!read) return {};
        number = *read;
        text.skipBlanks();
        text.skip(",");
    }
    const auto width = side(numbers[2]);
    const auto height = side(numbers[3]);
    return width && height ? std::optional(QSize(*width, *height)) : std::nullopt;
}

std::optional<Header> readRoot(XmlScanner& text) {
    const QByteArrayView element = text.readName();
    const qsizetype colon = element.indexOf(':');
    if (element.sliced(colon + 1) != "svg") return {};
    const QByteArray declaration =
        colon < 0 ? QByteArray("xmlns") : "xmlns:" + element.first(colon).toByteArray();
    std::optional<QByteArrayView> space;
    std::optional<int> width;
    std::optional<int> height;
    std::optional<QSize> box;
    while (const auto attribute = text.readAttribute()) {
        if (attribute->name == declaration) space = attribute->value;
        if (attribute->name == "width") width = pixels(attribute->value);
        if (attribute->name == "height") height = pixels(attribute->value);
        if (attribute->name == "viewBox") box = viewBoxSize(attribute->value);
    }
    // Some writers name the namespace through an entity; very old ones not at all.
    if (space && *space != svgNamespace && !space->startsWith('&')) return {};
    if (!space && colon >= 0) return {};
    if (!width || !height) return Header{PictureFormat::svg, box};
    return Header{PictureFormat::svg, QSize(*width, *height)};
}

}  // namespace

std::optional<Header> recogniseSvg(const Bytes& bytes) {
    QByteArrayView head = bytes.part(0, window).view();
    QByteArray converted;
    if (head.startsWith("\xff\xfe") || head.startsWith("\xfe\xff")) {
        converted = QString(QStringDecoder(QStringDecoder::Utf16)(head)).toUtf8();
        head = converted;
    }
    XmlScanner text(head);
    text.skip("\xef\xbb\xbf");
    if (!text.skipMisc(true) || !text.skip("<")) return {};
    return readRoot(text);
}

}  // namespace foundation::picture
