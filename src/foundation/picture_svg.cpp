// SPDX-License-Identifier: MIT
//
// SVG by its root element: skips what XML allows before it (byte order mark, declaration, comments,
// processing instructions, a document type with its internal subset) and reads that one tag. No
// XML parser runs, and nothing past the first 64 KiB is looked at.
#include <QByteArray>
#include <QStringDecoder>
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "foundation/picture_header.h"

namespace foundation::picture {
namespace {

using Text = std::string_view;

constexpr qint64 window = 65536;
constexpr Text svgNamespace = "http://www.w3.org/2000/svg";

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

void skipSpace(Text& text) {
    text.remove_prefix(static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), isSpace) - text.begin()));
}

/// Goes behind the next occurrence of the mark; false when there is none.
bool skipPast(Text& text, Text mark) {
    const auto at = text.find(mark);
    if (at == Text::npos) return false;
    text.remove_prefix(at + mark.size());
    return true;
}

/// Goes behind a "<!DOCTYPE …>", whose internal subset may hold further declarations.
bool skipDocumentType(Text& text) {
    int depth = 0;
    while (!text.empty()) {
        if (text.starts_with("<!--")) {
            if (!skipPast(text, "-->")) return false;
            continue;
        }
        const char c = text.front();
        text.remove_prefix(1);
        if (c == '"' || c == '\'') {
            if (!skipPast(text, Text(&c, 1))) return false;
        } else if (c == '<') {
            ++depth;
        } else if (c == '>' && --depth == 0) {
            return true;
        }
    }
    return false;
}

/// Goes to the '<' of the root element.
bool skipProlog(Text& text) {
    while (true) {
        skipSpace(text);
        bool whole = false;
        if (text.starts_with("<?")) {
            whole = skipPast(text, "?>");
        } else if (text.starts_with("<!--")) {
            whole = skipPast(text, "-->");
        } else if (text.starts_with("<!DOCTYPE")) {
            whole = skipDocumentType(text);
        } else {
            return text.starts_with('<');
        }
        if (!whole) return false;
    }
}

Text takeName(Text& text) {
    const auto isNameEnd = [](char c) { return isSpace(c) || c == '=' || c == '>' || c == '/'; };
    const auto end = std::find_if(text.begin(), text.end(), isNameEnd);
    const Text name = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(name.size());
    return name;
}

/// The next attribute of a start tag; nothing at its end or where it is malformed.
struct Attribute {
    Text name;
    Text value;
};
std::optional<Attribute> takeAttribute(Text& text) {
    skipSpace(text);
    Attribute attribute{takeName(text), {}};
    skipSpace(text);
    if (attribute.name.empty() || !text.starts_with('=')) return {};
    text.remove_prefix(1);
    skipSpace(text);
    if (!text.starts_with('"') && !text.starts_with('\'')) return {};
    const auto end = text.find(text.front(), 1);
    if (end == Text::npos) return {};
    attribute.value = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    return attribute;
}

/// The number that a text begins with, which it is then without.
std::optional<double> takeNumber(Text& text) {
    skipSpace(text);
    const auto end = std::find_if_not(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E';
    });
    const auto digits = static_cast<qsizetype>(end - text.begin());
    bool isNumber = false;
    const double number = QByteArray(text.data(), digits).toDouble(&isNumber);
    text.remove_prefix(static_cast<std::size_t>(digits));
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<int> side(double pixels) {
    if (!(pixels > 0) || pixels > maximumSide) return {};
    return std::max(1, static_cast<int>(std::lround(pixels)));
}

/// A length in pixels, rounded; nothing in units that aren't lengths of their own.
std::optional<int> pixels(Text length) {
    constexpr std::pair<Text, double> units[] = {{"px", 1},         {"pt", 96 / 72.0}, {"pc", 16},
                                                 {"mm", 96 / 25.4}, {"cm", 96 / 2.54}, {"in", 96}};
    const auto number = takeNumber(length);
    skipSpace(length);
    if (!number) return {};
    if (length.empty()) return side(*number);
    for (const auto& [unit, factor] : units)
        if (length.starts_with(unit)) return side(*number * factor);
    return {};
}

/// Width and height of "x y width height", with blanks or commas between.
std::optional<QSize> viewBoxSize(Text box) {
    double numbers[4] = {};
    for (double& number : numbers) {
        const auto taken = takeNumber(box);
        if (!taken) return {};
        number = *taken;
        skipSpace(box);
        if (box.starts_with(',')) box.remove_prefix(1);
    }
    const auto width = side(numbers[2]);
    const auto height = side(numbers[3]);
    return width && height ? std::optional(QSize(*width, *height)) : std::nullopt;
}

std::optional<Header> readRoot(Text text) {
    text.remove_prefix(1);
    const Text element = takeName(text);
    const auto colon = element.find(':');
    const Text prefix = colon == Text::npos ? Text() : element.substr(0, colon);
    if (element.substr(colon == Text::npos ? 0 : colon + 1) != "svg") return {};
    const std::string declaration = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
    std::optional<Text> space;
    std::optional<int> width;
    std::optional<int> height;
    std::optional<QSize> box;
    while (const auto attribute = takeAttribute(text)) {
        if (attribute->name == declaration) space = attribute->value;
        if (attribute->name == "width") width = pixels(attribute->value);
        if (attribute->name == "height") height = pixels(attribute->value);
        if (attribute->name == "viewBox") box = viewBoxSize(attribute->value);
    }
    // Some writers name the namespace through an entity; very old ones not at all.
    if (space && *space != svgNamespace && !space->starts_with('&')) return {};
    if (!space && !prefix.empty()) return {};
    if (!width || !height) return Header{PictureFormat::svg, box};
    return Header{PictureFormat::svg, QSize(*width, *height)};
}

}  // namespace

std::optional<Header> recogniseSvg(const Bytes& bytes) {
    const QByteArrayView head = bytes.part(0, window).view();
    QByteArray converted;
    Text text(head.data(), static_cast<std::size_t>(head.size()));
    if (text.starts_with("\xef\xbb\xbf")) {
        text.remove_prefix(3);
    } else if (text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff")) {
        converted = QString(QStringDecoder(QStringDecoder::Utf16)(head)).toUtf8();
        text = Text(converted.constData(), static_cast<std::size_t>(converted.size()));
    }
    if (!skipProlog(text)) return {};
    return readRoot(text);
}

}  // namespace foundation::picture
