// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard.h"

#include <QStringConverter>
#include <algorithm>
#include <optional>

namespace vell {
namespace {

constexpr size_t longestCharsetName = 40;
constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

char upper(char byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

bool equals(std::string_view text, std::string_view upperCase) {
    return std::equal(text.begin(), text.end(), upperCase.begin(), upperCase.end(),
                      [](char a, char b) { return upper(a) == b; });
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isBase64(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte == '+' || byte == '/' || byte == '=' ||
           isBlank(byte);
}

int hexDigit(char byte) {
    if (byte >= '0' && byte <= '9') return byte - '0';
    if (upper(byte) >= 'A' && upper(byte) <= 'F') return upper(byte) - 'A' + 10;
    return -1;
}

QByteArray fromQuotedPrintable(std::string_view text) {
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(text.size()));
    for (size_t i = 0; i < text.size(); i++) {
        const int high = text[i] == '=' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            bytes.append(static_cast<char>(high * 16 + low));
            i += 2;
        } else {
            bytes.append(text[i]);
        }
    }
    return bytes;
}

/// Calls visit(name, value) for each parameter until it answers true. Version 2.1 may leave the
/// name out, which is then empty.
template <class Visit>
void visitParameters(std::string_view text, Visit visit) {
    while (!text.empty()) {
        text.remove_prefix(1);  // the semicolon
        size_t end = 0, equalSign = std::string_view::npos;
        for (bool quoted = false; end < text.size() && (quoted || text[end] != ';'); end++) {
            if (text[end] == '"') quoted = !quoted;
            if (text[end] == '=' && equalSign == std::string_view::npos) equalSign = end;
        }
        const std::string_view whole = text.substr(0, end);
        text.remove_prefix(end);
        const bool isNamed = equalSign != std::string_view::npos;
        const std::string_view name = isNamed ? whole.substr(0, equalSign) : std::string_view();
        const std::string_view value = isNamed ? whole.substr(equalSign + 1) : whole;
        if (visit(trimmed(name), trimmed(value))) return;
    }
}

VCardProperty::Encoding transferEncoding(std::string_view parameters) {
    auto result = VCardProperty::Encoding::none;
    visitParameters(parameters, [&](std::string_view name, std::string_view value) {
        if (!name.empty() && !equals(name, "ENCODING")) return false;
        if (equals(value, "QUOTED-PRINTABLE")) {
            result = VCardProperty::Encoding::quotedPrintable;
        } else if (equals(value, "BASE64") || equals(value, "B")) {
            result = VCardProperty::Encoding::base64;
        }
        return result != VCardProperty::Encoding::none;
    });
    return result;
}

QString decoded(QByteArrayView bytes, std::string_view charset) {
    if (!charset.empty() && charset.size() <= longestCharsetName && !equals(charset, "UTF-8")) {
        QStringDecoder decoder(std::string(charset).c_str());
        QString text = decoder(bytes);
        if (decoder.isValid() && !decoder.hasError()) return text;
    }
    if (bytes.isValidUtf8()) return QString::fromUtf8(bytes);
    QStringDecoder western("windows-1252");
    if (!western.isValid()) return QString::fromLatin1(bytes);
    return western(bytes);
}

QString withoutNul(QString text) {
    return text.contains(QChar(u'\0')) ? text.remove(QChar(u'\0')) : text;
}

}  // namespace

bool VCardProperty::is(std::string_view upperCaseName) const {
    return equals(name, upperCaseName);
}

bool VCardProperty::nameStartsWith(std::string_view upperCase) const {
    return equals(name.substr(0, upperCase.size()), upperCase);
}

std::string_view VCardProperty::parameter(std::string_view upperCaseName) const {
    std::string_view result;
    visitParameters(
        parameters, [&](std::string_view parameterName, std::string_view parameterValue) {
            if (!equals(parameterName, upperCaseName)) return false;
            const bool quoted = !parameterValue.empty() && parameterValue.front() == '"';
            if (quoted) parameterValue.remove_prefix(1);
            result = parameterValue.substr(0, parameterValue.find(quoted ? '"' : ','));
            return true;
        });
    return result;
}

QByteArray VCardProperty::bytes() const {
    switch (encoding) {
        case Encoding::quotedPrintable:
            return fromQuotedPrintable(value);
        case Encoding::base64:
            return QByteArray::fromBase64(
                QByteArray::fromRawData(value.data(), static_cast<qsizetype>(value.size())));
        case Encoding::none:
            break;
    }
    return QByteArray(value.data(), static_cast<qsizetype>(value.size()));
}

QString VCardProperty::rawText() const {
    std::string_view charset = parameters.empty() ? std::string_view() : parameter("CHARSET");
    if (encoding == Encoding::none) {
        // A text that came through lines of bytes isn't in units of two or four, whatever it says.
        if (charset.size() >= 6 &&
            (equals(charset.substr(0, 6), "UTF-16") || equals(charset.substr(0, 6), "UTF-32")))
            charset = {};
        return withoutNul(decoded(value, charset));
    }
    return withoutNul(decoded(bytes(), charset));
}

QString VCardProperty::text() const {
    const QString raw = rawText();
    return raw.contains(u'\\') ? unescaped(raw, version) : raw;
}

QStringList VCardProperty::parts(QChar separator, Lists lists) const {
    QString raw = rawText();
    QStringList result;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= raw.size(); i++) {
        if (i + 1 < raw.size() && raw[i] == u'\\') {
            i++;
        } else if (i == raw.size() || raw[i] == separator) {
            result.append(unescaped(QStringView(raw).mid(start, i - start), version));
            start = i + 1;
        } else if (lists == Lists::joinedByBlanks && raw[i] == u',') {
            raw[i] = u' ';
        }
    }
    return result;
}

QString unescaped(QStringView rawText, VCardVersion version) {
    QString text;
    text.reserve(rawText.size());
    for (qsizetype i = 0; i < rawText.size(); i++) {
        const QChar next = i + 1 < rawText.size() ? rawText[i + 1] : QChar();
        if (rawText[i] != u'\\') {
            text.append(rawText[i]);
        } else if (next == u';' || next == u',' || next == u':' || next == u'\\') {
            text.append(next);
            i++;
        } else if ((next == u'n' || next == u'N') && version != VCardVersion::v2_1) {
            text.append(u'\n');
            i++;
        } else {
            text.append(u'\\');
        }
    }
    return text;
}

int VCardProperty::preference() const {
    constexpr int least = 100;
    if (version != VCardVersion::v4_0) return least + 1;
    const std::string_view value = parameter("PREF");
    bool isNumber = false;
    const int rank =
        QByteArrayView(value.data(), static_cast<qsizetype>(value.size())).toInt(&isNumber);
    return isNumber && rank >= 1 && rank <= least ? rank : least + 1;
}

std::string vcardText(QByteArrayView file) {
    const auto isAscii = [](char byte) { return byte > 0; };
    std::optional<QStringConverter::Encoding> wide;
    if (file.startsWith("\xfe\xff") || (file.size() > 1 && file[0] == 0 && isAscii(file[1])))
        wide = QStringConverter::Utf16BE;
    if (file.startsWith("\xff\xfe") || (file.size() > 1 && isAscii(file[0]) && file[1] == 0))
        wide = QStringConverter::Utf16LE;
    if (!wide) return std::string(file.data(), static_cast<size_t>(file.size()));
    QStringDecoder decoder(*wide);
    return QString(decoder(file)).toStdString();
}

VCardScanner::Mark VCardScanner::mark(std::string_view line) {
    // Exports that were joined have a byte-order mark before each first card.
    if (line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
    if (line.size() < 3) return Mark::none;
    const char first = upper(line[0]), second = upper(line[1]);
    if ((first != 'B' || second != 'E') && (first != 'E' || second != 'N')) return Mark::none;
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos || !equals(trimmed(line.substr(colon + 1)), "VCARD"))
        return Mark::none;
    const std::string_view name = trimmed(line.substr(0, colon));
    if (equals(name, "BEGIN")) return Mark::begin;
    if (equals(name, "END")) return Mark::end;
    return Mark::none;
}

std::string_view VCardScanner::peekLine() {
    // The next line feed is remembered: a text without any is searched for it once.
    if (lineFeed_ < position_) lineFeed_ = std::min(text_.find('\n', position_), text_.size());
    const std::string_view line = text_.substr(position_, lineFeed_ - position_);
    return line.substr(0, line.find('\r'));
}

std::string_view VCardScanner::takeLine() {
    const std::string_view line = peekLine();
    position_ += line.size();
    const bool isPair = text_.substr(position_, 2) == "\r\n";
    position_ = std::min(position_ + (isPair ? 2 : 1), text_.size());
    linesTaken_++;
    return line;
}

bool VCardScanner::nextLineIsFolded() const {
    return position_ < text_.size() && isBlank(text_[position_]);
}

bool VCardScanner::nextCard() {
    while (depth_ > 0)
        (void)next();
    while (position_ < text_.size()) {
        if (mark(takeLine()) != Mark::begin) continue;
        cardLine_ = linesTaken_;
        depth_ = 1;
        isWhole_ = false;
        isAfterAgent_ = false;
        property_ = {};
        return true;
    }
    return false;
}

VCardScanner::VCardScanner(std::string_view text)
    : text_(text), lineFeed_(std::min(text.find('\n'), text.size())) {}

const VCardProperty* VCardScanner::next() {
    while (depth_ > 0 && position_ < text_.size()) {
        if (const Mark found = mark(peekLine()); found != Mark::none) {
            if (!takeMark(found)) return nullptr;
            continue;
        }
        line_ = takeLine();
        if (line_.empty()) continue;
        isAfterAgent_ = false;
        if (!readProperty()) continue;
        if (property_.is("AGENT")) enterAgent(property_.value);
        if (depth_ > 1) continue;
        if (property_.is("VERSION")) {
            const std::string_view number = trimmed(property_.value);
            if (number == "2.1") property_.version = VCardVersion::v2_1;
            if (number == "4.0") property_.version = VCardVersion::v4_0;
        }
        return &property_;
    }
    depth_ = 0;
    return nullptr;
}

/// Whether the card goes on behind the mark. One that begins where none may ends the card, and is
/// left to be read.
bool VCardScanner::takeMark(Mark mark) {
    if (mark == Mark::begin && !isAfterAgent_) {
        depth_ = 0;
        return false;
    }
    isAfterAgent_ = false;
    (void)takeLine();
    depth_ += mark == Mark::begin ? 1 : -1;
    isWhole_ = depth_ == 0;
    return depth_ > 0;
}

/// The agent's card begins in the same line, or in the next.
void VCardScanner::enterAgent(std::string_view value) {
    if (mark(value) == Mark::begin) depth_++;
    isAfterAgent_ = value.empty();
}

bool VCardScanner::readProperty() {
    isJoined_ = false;
    Header header;
    if (!findHeader(line_, Quotes::respected, header)) {
        // The line may be folded before its colon.
        appendFoldedLines();
        if (!findHeader(line_, Quotes::respected, header) &&
            !findHeader(line_, Quotes::ignored, header))
            return false;
    }
    property_.encoding =
        transferEncoding(line_.substr(header.nameEnd, header.colon - header.nameEnd));
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
    property_.name = line_.substr(header.nameStart, header.nameEnd - header.nameStart);
    property_.parameters = line_.substr(header.nameEnd, header.colon - header.nameEnd);
    property_.value = line_.substr(header.colon + 1);
    return true;
}

bool VCardScanner::findHeader(std::string_view line, Quotes quotes, Header& header) {
    header = {};
    size_t i = 0;
    for (; i < line.size() && line[i] != ':' && line[i] != ';'; i++)
        if (line[i] == '.') header.nameStart = i + 1;
    header.nameEnd = i;
    for (bool quoted = false; i < line.size() && (quoted || line[i] != ':'); i++)
        if (line[i] == '"' && quotes == Quotes::respected) quoted = !quoted;
    header.colon = i;
    return i < line.size() && header.nameEnd > header.nameStart;
}

void VCardScanner::append(std::string_view continuation) {
    if (!isJoined_) joined_.assign(line_);
    isJoined_ = true;
    joined_.append(continuation);
    line_ = joined_;
}

void VCardScanner::appendFoldedLines() {
    // Version 2.1 folds in front of white space that belongs to the text.
    const size_t dropped = property_.version == VCardVersion::v2_1 ? 0 : 1;
    while (nextLineIsFolded())
        append(takeLine().substr(dropped));
}

void VCardScanner::appendSoftBreaks() {
    for (;;) {
        const size_t last = line_.find_last_not_of(" \t");
        const bool isSoftBreak = last != std::string_view::npos && line_[last] == '=';
        if (isSoftBreak) {
            append({});
            joined_.resize(last);
            line_ = joined_;
            if (position_ >= text_.size() || mark(peekLine()) != Mark::none) return;
            append(takeLine());
        } else if (!isSoftBreak && nextLineIsFolded()) {
            appendFoldedLines();
        } else {
            return;
        }
    }
}

void VCardScanner::appendBareBase64() {
    for (;;) {
        appendFoldedLines();
        if (position_ >= text_.size()) return;
        const std::string_view next = peekLine();
        if (next.empty() || !std::all_of(next.begin(), next.end(), isBase64)) return;
        append(takeLine());
    }
}

}  // namespace vell
