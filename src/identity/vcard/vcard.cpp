// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard.h"

#include <QStringConverter>
#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <utility>

namespace vell {
namespace {

constexpr qsizetype longestCharsetName = 40;
constexpr QByteArrayView byteOrderMark = "\xef\xbb\xbf";

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

bool equals(QByteArrayView a, QByteArrayView b) {
    // Lengths first: most properties of a card are of no interest.
    return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

QByteArrayView trimmed(QByteArrayView text) {
    while (!text.empty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.empty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool isBase64(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte == '+' || byte == '/' || byte == '=' ||
           isBlank(byte);
}

QByteArray fromQuotedPrintable(QByteArrayView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); i++) {
        unsigned code = 0;
        const char* const digits = text.data() + i + 1;
        if (text[i] == '=' && i + 2 < text.size() &&
            std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2) {
            bytes.append(static_cast<char>(code));
            i += 2;
        } else {
            bytes.append(text[i]);
        }
    }
    return bytes;
}

struct Parameter {
    QByteArrayView name;  ///< empty where version 2.1 leaves it out
    QByteArrayView value;
};

/// Cuts the first parameter, which starts with a semicolon, off a text that isn't empty.
Parameter takeParameter(QByteArrayView& text) {
    qsizetype end = 1, nameSize = -1;
    for (bool quoted = false; end < text.size() && (quoted || text[end] != ';'); end++) {
        if (text[end] == '"') quoted = !quoted;
        if (text[end] == '=' && nameSize < 0) nameSize = end - 1;
    }
    const QByteArrayView whole = text.sliced(1, end - 1);
    text = text.sliced(end);
    return {trimmed(whole.first(std::max<qsizetype>(nameSize, 0))),
            trimmed(whole.sliced(nameSize + 1))};
}

VCardProperty::Encoding transferEncoding(QByteArrayView parameters) {
    while (!parameters.empty()) {
        const auto [name, value] = takeParameter(parameters);
        if (!name.empty() && !equals(name, "ENCODING")) continue;
        if (equals(value, "QUOTED-PRINTABLE")) return VCardProperty::Encoding::quotedPrintable;
        if (equals(value, "BASE64") || equals(value, "B")) return VCardProperty::Encoding::base64;
    }
    return VCardProperty::Encoding::none;
}

QString decoded(QByteArrayView bytes, QByteArrayView charset) {
    if (!charset.empty() && charset.size() <= longestCharsetName && !equals(charset, "UTF-8")) {
        QStringDecoder decoder(charset.toByteArray().constData());
        QString text = decoder(bytes);
        if (decoder.isValid() && !decoder.hasError()) return text;
    }
    if (bytes.isValidUtf8()) return QString::fromUtf8(bytes);
    QStringDecoder western("windows-1252");
    if (!western.isValid()) return QString::fromLatin1(bytes);
    return western(bytes);
}

/// The value as characters, escapes still in place.
QString escapedText(const VCardProperty& property) {
    QString text;
    QByteArrayView charset = property.parameter("CHARSET");
    if (property.encoding == VCardProperty::Encoding::none) {
        // A text that came through lines of bytes isn't in units of two or four, whatever it says.
        const QByteArrayView family = charset.first(std::min<qsizetype>(charset.size(), 6));
        if (equals(family, "UTF-16") || equals(family, "UTF-32")) charset = {};
        text = decoded(property.value, charset);
    } else {
        text = decoded(property.bytes(), charset);
    }
    if (text.contains(QChar(u'\0'))) text.remove(QChar(u'\0'));
    return text;
}

enum class Mark { none, begin, end };

Mark mark(QByteArrayView line) {
    // Exports that were joined have a byte-order mark before each first card.
    if (line.startsWith(byteOrderMark)) line = line.sliced(byteOrderMark.size());
    // A quick test, as few lines are marks; one that starts with a space continues another.
    if (line.empty() || !QByteArrayView("BbEe").contains(line.front())) return Mark::none;
    const qsizetype colon = line.indexOf(':');
    if (colon < 0 || !equals(trimmed(line.sliced(colon + 1)), "VCARD")) return Mark::none;
    const QByteArrayView name = trimmed(line.first(colon));
    if (equals(name, "BEGIN")) return Mark::begin;
    return equals(name, "END") ? Mark::end : Mark::none;
}

struct Header {
    qsizetype nameStart = 0;
    qsizetype nameEnd = 0;
    qsizetype colon = 0;
};

enum class Quotes { respected, ignored };

std::optional<Header> findHeader(QByteArrayView line, Quotes quotes) {
    Header header;
    qsizetype i = 0;
    for (; i < line.size() && line[i] != ':' && line[i] != ';'; i++)
        if (line[i] == '.') header.nameStart = i + 1;
    header.nameEnd = i;
    for (bool quoted = false; i < line.size() && (quoted || line[i] != ':'); i++)
        if (line[i] == '"' && quotes == Quotes::respected) quoted = !quoted;
    header.colon = i;
    if (i == line.size() || header.nameEnd == header.nameStart) return std::nullopt;
    return header;
}

/// UTF-8 or another 8-bit character set, each line ended by a line feed or by CR LF.
QByteArray normalized(QByteArray file) {
    const auto isAscii = [](char byte) { return byte > 0; };
    std::optional<QStringConverter::Encoding> wide;
    if (file.startsWith("\xfe\xff") || (file.size() > 1 && file[0] == 0 && isAscii(file[1])))
        wide = QStringConverter::Utf16BE;
    if (file.startsWith("\xff\xfe") || (file.size() > 1 && isAscii(file[0]) && file[1] == 0))
        wide = QStringConverter::Utf16LE;
    if (wide) file = QString(QStringDecoder(*wide)(file)).toUtf8();
    for (qsizetype i = file.indexOf('\r'); i >= 0; i = file.indexOf('\r', i + 1))
        if (i + 1 == file.size() || std::as_const(file)[i + 1] != '\n') file[i] = '\n';
    return file;
}

}  // namespace

bool VCardProperty::is(QByteArrayView otherName) const {
    return equals(name, otherName);
}

QByteArrayView VCardProperty::parameter(QByteArrayView parameterName) const {
    for (QByteArrayView rest = parameters; !rest.empty();) {
        auto [candidate, found] = takeParameter(rest);
        if (!equals(candidate, parameterName)) continue;
        const bool isQuoted = found.startsWith('"');
        if (isQuoted) found = found.sliced(1);
        const qsizetype end = found.indexOf(isQuoted ? '"' : ',');
        return end < 0 ? found : found.first(end);
    }
    return {};
}

QByteArray VCardProperty::bytes() const {
    switch (encoding) {
        case Encoding::quotedPrintable:
            return fromQuotedPrintable(value);
        case Encoding::base64:
            return QByteArray::fromBase64(QByteArray::fromRawData(value.data(), value.size()));
        case Encoding::none:
            break;
    }
    return value.toByteArray();
}

QString VCardProperty::text() const {
    return parts({}).constFirst();
}

QStringList VCardProperty::parts(QChar separator, QChar listSeparator) const {
    const QString escaped = escapedText(*this);  // has no NUL, so a null separator never matches
    if (separator.isNull() && !escaped.contains(u'\\')) return {escaped};
    QStringList result;
    QString part;
    for (qsizetype i = 0; i < escaped.size(); i++) {
        const QChar next = i + 1 < escaped.size() ? escaped[i + 1] : QChar();
        if (escaped[i] == u'\\' &&
            (next == u';' || next == u',' || next == u':' || next == u'\\')) {
            part.append(next);
            i++;
        } else if (escaped[i] == u'\\' && (next == u'n' || next == u'N') &&
                   version != VCardVersion::v2_1) {
            part.append(u'\n');
            i++;
        } else if (escaped[i] == separator) {
            result.append(std::exchange(part, {}));
        } else {
            part.append(escaped[i] == listSeparator ? QChar(u' ') : escaped[i]);
        }
    }
    result.append(part);
    return result;
}

int VCardProperty::preference() const {
    constexpr int least = 100;
    if (version != VCardVersion::v4_0) return least + 1;
    bool isNumber = false;
    const int rank = parameter("PREF").toInt(&isNumber);
    return isNumber && rank >= 1 && rank <= least ? rank : least + 1;
}

VCardReader::VCardReader(QByteArray file) : text_(normalized(std::move(file))) {
    text_.detach();  // continuation lines are moved within it
}

QByteArrayView VCardReader::peekLine() const {
    const QByteArrayView rest = QByteArrayView(text_).sliced(position_);
    const qsizetype end = rest.indexOf('\n');
    const QByteArrayView line = end < 0 ? rest : rest.first(end);
    return line.endsWith('\r') ? line.chopped(1) : line;
}

QByteArrayView VCardReader::takeLine() {
    const QByteArrayView line = peekLine();
    position_ += line.size();
    if (!isAtEnd() && text_.at(position_) == '\r') position_++;
    if (!isAtEnd()) position_++;
    linesTaken_++;
    return line;
}

VCardReader::Card VCardReader::next(const Visit& visit) {
    do {
        if (isAtEnd()) return Card::none;
    } while (mark(takeLine()) != Mark::begin);
    cardLine_ = linesTaken_;
    property_ = {};
    int depth = 1;
    bool isAfterAgent = false;  // version 2.1 nests the card of a person's agent
    while (!isAtEnd()) {
        const Mark found = mark(peekLine());
        if (found == Mark::begin && !isAfterAgent) break;
        if (found != Mark::none) {
            (void)takeLine();
            isAfterAgent = false;
            depth += found == Mark::begin ? 1 : -1;
            if (depth == 0) return Card::whole;
        } else if (peekLine().empty()) {
            (void)takeLine();
        } else {
            isAfterAgent = false;
            if (!readProperty()) continue;
            if (property_.is("AGENT")) {
                // The agent's card begins in the same line, or in the next.
                if (mark(property_.value) == Mark::begin) depth++;
                isAfterAgent = property_.value.empty();
            }
            if (depth > 1) continue;
            if (property_.is("VERSION")) {
                const QByteArrayView number = trimmed(property_.value);
                if (number == "2.1") property_.version = VCardVersion::v2_1;
                if (number == "4.0") property_.version = VCardVersion::v4_0;
            }
            visit(property_);
        }
    }
    return Card::cutOff;
}

/// Takes the next line and those that continue it; false when they are no property.
bool VCardReader::readProperty() {
    lineStart_ = position_;
    lineSize_ = takeLine().size();
    std::optional<Header> header = findHeader(line(), Quotes::respected);
    if (!header) {
        // The line may be folded before its colon.
        appendFoldedLines();
        header = findHeader(line(), Quotes::respected);
        if (!header) header = findHeader(line(), Quotes::ignored);
        if (!header) return false;
    }
    const auto parameters = [&] {
        return line().sliced(header->nameEnd, header->colon - header->nameEnd);
    };
    property_.encoding = transferEncoding(parameters());
    switch (property_.encoding) {
        case VCardProperty::Encoding::quotedPrintable:
            appendSoftBreaks();
            break;
        case VCardProperty::Encoding::base64:
            appendBareBase64();
            break;
        case VCardProperty::Encoding::none:
            appendFoldedLines();
            break;
    }
    property_.name = line().sliced(header->nameStart, header->nameEnd - header->nameStart);
    property_.parameters = parameters();
    property_.value = line().sliced(header->colon + 1);
    return true;
}

void VCardReader::appendToLine(QByteArrayView continuation) {
    std::memmove(text_.data() + lineStart_ + lineSize_, continuation.data(),
                 static_cast<size_t>(continuation.size()));
    lineSize_ += continuation.size();
}

void VCardReader::appendFoldedLines() {
    // Version 2.1 folds in front of white space that belongs to the text.
    const qsizetype dropped = property_.version == VCardVersion::v2_1 ? 0 : 1;
    while (!isAtEnd() && isBlank(text_.at(position_)))
        appendToLine(takeLine().sliced(dropped));
}

void VCardReader::appendSoftBreaks() {
    for (;;) {
        qsizetype size = lineSize_;
        while (size > 0 && isBlank(text_.at(lineStart_ + size - 1)))
            size--;
        if (size > 0 && text_.at(lineStart_ + size - 1) == '=') {
            lineSize_ = size - 1;
            if (isAtEnd() || mark(peekLine()) != Mark::none) return;
            appendToLine(takeLine());
        } else if (!isAtEnd() && isBlank(text_.at(position_))) {
            appendFoldedLines();
        } else {
            return;
        }
    }
}

void VCardReader::appendBareBase64() {
    for (;;) {
        appendFoldedLines();
        if (isAtEnd()) return;
        const QByteArrayView next = peekLine();
        if (next.empty() || !std::all_of(next.begin(), next.end(), isBase64)) return;
        appendToLine(takeLine());
    }
}

}  // namespace vell
