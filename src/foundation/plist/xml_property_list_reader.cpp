// SPDX-License-Identifier: MIT
#include "foundation/plist/xml_property_list_reader.h"

#include <QString>
#include <QStringConverter>
#include <cmath>
#include <limits>
#include <utility>

#include "foundation/checked.h"

namespace foundation {
namespace {

/// As the binary form's readers have it.
constexpr std::size_t depthLimit = 512;

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

QByteArrayView trimmedFront(QByteArrayView bytes) {
    while (!bytes.isEmpty() && isBlank(bytes.front()))
        bytes = bytes.sliced(1);
    return bytes;
}

/// The encoding named by an XML declaration at the front, in lower case; empty without one.
QByteArray declaredEncoding(QByteArrayView bytes) {
    if (!bytes.startsWith("<?xml")) return {};
    const qsizetype end = bytes.indexOf("?>");
    if (end < 0) return {};
    QByteArrayView declaration = bytes.first(end);
    const qsizetype at = declaration.indexOf("encoding");
    if (at < 0) return {};
    declaration = trimmedFront(declaration.sliced(at + 8));
    if (!declaration.startsWith('=')) return {};
    declaration = trimmedFront(declaration.sliced(1));
    if (declaration.isEmpty()) return {};
    const qsizetype close = declaration.indexOf(declaration.front(), 1);
    return close < 0 ? QByteArray() : declaration.sliced(1, close - 1).toByteArray().toLower();
}

/// The text as UTF-8; null when it is not valid in its encoding, or the encoding is not known.
QByteArray toUtf8(const Data& data) {
    const QByteArrayView bytes = data.view();
    if (const auto marked = QStringConverter::encodingForData(bytes);
        marked && *marked != QStringConverter::Utf8) {
        QStringDecoder decode(*marked);
        const QString text = decode(bytes);
        return decode.hasError() ? QByteArray() : text.toUtf8();
    }
    const QByteArray encoding = declaredEncoding(bytes);
    if (encoding == "iso-8859-1" || encoding == "latin1")
        return QString::fromLatin1(bytes).toUtf8();
    if (!encoding.isEmpty() && encoding != "utf-8" && encoding != "us-ascii") return {};
    if (!bytes.isValidUtf8()) return {};
    // The reader keeps the data's owner alive only through a copy: these files are rare and small.
    return bytes.startsWith("\xef\xbb\xbf") ? bytes.sliced(3).toByteArray() : bytes.toByteArray();
}

/// Days from 1970-01-01 to a day of the proleptic Gregorian calendar.
qint64 daysFromCivil(qint64 year, int month, int day) {
    year -= month <= 2;
    const qint64 era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = year - era * 400;
    const auto dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

}  // namespace

XmlPropertyListReader::XmlPropertyListReader(const Data& data)
    : bytes_(toUtf8(data)), rest_(bytes_) {
    failed_ = rest_.isEmpty();
}

bool XmlPropertyListReader::looksLikeXml(QByteArrayView bytes) {
    if (bytes.startsWith("\xef\xbb\xbf")) bytes = bytes.sliced(3);
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff")) return true;
    return trimmedFront(bytes).startsWith('<');
}

XmlPropertyListReader::Token XmlPropertyListReader::next() {
    if (failed_) return Token::invalid;
    if (std::exchange(pendingEnd_, false)) {
        const bool isArray = open_.back() == Open::array;
        return close(isArray ? "array" : "dict");
    }
    return readElement();
}

XmlPropertyListReader::Token XmlPropertyListReader::fail() {
    failed_ = true;
    return Token::invalid;
}

XmlPropertyListReader::Token XmlPropertyListReader::readElement() {
    if (!skipMisc()) return fail();
    if (rest_.isEmpty()) return complete_ && open_.back() == Open::document ? Token::end : fail();
    if (!rest_.startsWith('<')) return fail();
    rest_ = rest_.sliced(1);
    const bool isClosing = rest_.startsWith('/');
    if (isClosing) rest_ = rest_.sliced(1);
    const QByteArrayView name = readName();
    bool isEmpty = false;
    if (!readTagEnd(isEmpty) || (isClosing && isEmpty)) return fail();
    if (isClosing) return close(name);

    if (name == "plist") {
        if (open_.back() != Open::document || complete_ || isEmpty) return fail();
        open_.push_back(Open::plist);
        return readElement();
    }
    if (name == "key") {
        if (open_.back() != Open::keys || !(isEmpty || readText(name))) return fail();
        if (isEmpty) text_ = {};
        open_.back() = Open::value;
        return Token::key;
    }
    if (!mayHoldValue()) return fail();
    if (name == "dict") return begin(Open::keys, isEmpty);
    if (name == "array") return begin(Open::array, isEmpty);
    return readLeaf(name, isEmpty);
}

bool XmlPropertyListReader::mayHoldValue() const {
    switch (open_.back()) {
        case Open::document:
        case Open::plist:
            return !complete_;
        case Open::array:
        case Open::value:
            return true;
        case Open::keys:
            return false;
    }
    return false;
}

XmlPropertyListReader::Token XmlPropertyListReader::begin(Open kind, bool isEmpty) {
    if (open_.size() >= depthLimit) return fail();
    open_.push_back(kind);
    pendingEnd_ = isEmpty;
    return kind == Open::array ? Token::beginArray : Token::beginDictionary;
}

XmlPropertyListReader::Token XmlPropertyListReader::close(QByteArrayView name) {
    const Open closed = open_.back();
    if (closed == Open::plist && name == "plist" && complete_) {
        open_.pop_back();
        return readElement();
    }
    const bool isArray = closed == Open::array && name == "array";
    const bool isDictionary = closed == Open::keys && name == "dict";
    if (!isArray && !isDictionary) return fail();
    open_.pop_back();
    return finishValue(isArray ? Token::endArray : Token::endDictionary);
}

/// Notes in the enclosing element that a value has been read whole.
XmlPropertyListReader::Token XmlPropertyListReader::finishValue(Token token) {
    if (open_.back() == Open::value)
        open_.back() = Open::keys;
    else if (open_.back() != Open::array)
        complete_ = true;
    return token;
}

XmlPropertyListReader::Token XmlPropertyListReader::readLeaf(QByteArrayView name, bool isEmpty) {
    text_ = {};
    if (!isEmpty && !readText(name)) return fail();
    if (name == "string") return finishValue(Token::string);
    if (name == "true" || name == "false") {
        if (!trimmedFront(text_).isEmpty()) return fail();
        magnitude_ = name == "true";
        negative_ = false;
        return finishValue(Token::boolean);
    }
    if (name == "integer") return readInteger() ? finishValue(Token::integer) : fail();
    if (name == "real") return readReal() ? finishValue(Token::real) : fail();
    if (name == "date") return readDate() ? finishValue(Token::date) : fail();
    if (name == "data") return readBase64() ? finishValue(Token::data) : fail();
    return fail();
}

/// Passes over white space, comments, processing instructions and the document type; behind the
/// object also over NUL bytes, which some writers leave at the end of the file.
bool XmlPropertyListReader::skipMisc() {
    while (true) {
        const bool isDone = complete_ && open_.back() == Open::document;
        while (!rest_.isEmpty() && (isBlank(rest_.front()) || (isDone && rest_.front() == '\0')))
            rest_ = rest_.sliced(1);
        bool skipped = false;
        if (rest_.startsWith("<!--"))
            skipped = skipPast("-->");
        else if (rest_.startsWith("<?"))
            skipped = skipPast("?>");
        else if (rest_.startsWith("<!DOCTYPE") && open_.back() == Open::document && !complete_)
            skipped = skipDocumentType();
        else
            return true;
        if (!skipped) return false;
    }
}

bool XmlPropertyListReader::skipPast(QByteArrayView end) {
    // The "--" that opens a comment does not close it.
    const qsizetype at = rest_.indexOf(end, end == "-->" ? 4 : 2);
    if (at < 0) return false;
    rest_ = rest_.sliced(at + end.size());
    return true;
}

/// The internal subset is passed over with the rest; what it declares does not exist for us.
bool XmlPropertyListReader::skipDocumentType() {
    int brackets = 0;
    while (!rest_.isEmpty()) {
        const char c = rest_.front();
        if (c == '"' || c == '\'') {
            const qsizetype close = rest_.indexOf(c, 1);
            if (close < 0) return false;
            rest_ = rest_.sliced(close + 1);
            continue;
        }
        if (rest_.startsWith("<!--")) {
            if (!skipPast("-->")) return false;
            continue;
        }
        rest_ = rest_.sliced(1);
        if (c == '[') ++brackets;
        if (c == ']') --brackets;
        if (c == '>' && brackets == 0) return true;
    }
    return false;
}

QByteArrayView XmlPropertyListReader::readName() {
    qsizetype size = 0;
    while (size < rest_.size() && !isBlank(rest_[size]) && rest_[size] != '>' && rest_[size] != '/')
        ++size;
    const QByteArrayView name = rest_.first(size);
    rest_ = rest_.sliced(size);
    return name;
}

/// Passes over attributes up to and including ">" or "/>".
bool XmlPropertyListReader::readTagEnd(bool& isEmpty) {
    while (!rest_.isEmpty()) {
        const char c = rest_.front();
        if (c == '"' || c == '\'') {
            const qsizetype close = rest_.indexOf(c, 1);
            if (close < 0) return false;
            rest_ = rest_.sliced(close + 1);
            continue;
        }
        if (c == '<') return false;
        isEmpty = rest_.startsWith("/>");
        rest_ = rest_.sliced(isEmpty ? 2 : 1);
        if (isEmpty || c == '>') return true;
    }
    return false;
}

/// The text of a leaf and its end tag. Text that stands in the bytes as it is gets answered there.
bool XmlPropertyListReader::readText(QByteArrayView name) {
    buffer_.clear();
    bool isBuffered = false;
    while (true) {
        qsizetype size = 0;
        while (size < rest_.size() && rest_[size] != '<' && rest_[size] != '&')
            ++size;
        if (size == rest_.size()) return false;
        const QByteArrayView plain = rest_.first(size);
        rest_ = rest_.sliced(size);
        if (rest_.startsWith("</")) {
            if (isBuffered) buffer_.append(plain);
            text_ = isBuffered ? QByteArrayView(buffer_) : plain;
            break;
        }
        isBuffered = true;
        buffer_.append(plain);
        if (!(rest_.front() == '&' ? appendReference() : appendMarkup())) return false;
    }
    rest_ = rest_.sliced(2);
    bool isEmpty = false;
    return readName() == name && readTagEnd(isEmpty) && !isEmpty;
}

bool XmlPropertyListReader::appendMarkup() {
    if (rest_.startsWith("<!--")) return skipPast("-->");
    if (rest_.startsWith("<?")) return skipPast("?>");
    constexpr QByteArrayView open("<![CDATA[");
    if (!rest_.startsWith(open)) return false;
    const qsizetype end = rest_.indexOf("]]>");
    if (end < 0) return false;
    buffer_.append(rest_.sliced(open.size(), end - open.size()));
    rest_ = rest_.sliced(end + 3);
    return true;
}

bool XmlPropertyListReader::appendReference() {
    constexpr std::pair<QByteArrayView, char> entities[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
    for (const auto& [reference, character] : entities) {
        if (!rest_.startsWith(reference)) continue;
        buffer_.append(character);
        rest_ = rest_.sliced(reference.size());
        return true;
    }
    if (!rest_.startsWith("&#")) return false;
    const bool isHex = rest_.startsWith("&#x");
    QByteArrayView digits = rest_.sliced(isHex ? 3 : 2);
    // The longest reference that means something, with room for a few leading zeros.
    const qsizetype end = digits.first(qMin(digits.size(), qsizetype(16))).indexOf(';');
    if (end < 1) return false;
    bool isNumber = false;
    const uint point = digits.first(end).toUInt(&isNumber, isHex ? 16 : 10);
    if (!isNumber || digits.front() == '+' || point == 0 || point > 0x10ffff) return false;
    const auto code = static_cast<char32_t>(QChar::isSurrogate(point) ? 0xfffd : point);
    buffer_.append(QString::fromUcs4(&code, 1).toUtf8());
    rest_ = digits.sliced(end + 1);
    return true;
}

/// Decimal or "0x", with an optional sign: what 64 bits can hold, signed or unsigned.
bool XmlPropertyListReader::readInteger() {
    QByteArrayView text = text_.trimmed();
    negative_ = text.startsWith('-');
    if (negative_ || text.startsWith('+')) text = text.sliced(1);
    const bool isHex = text.startsWith("0x") || text.startsWith("0X");
    if (isHex) text = text.sliced(2);
    if (text.isEmpty() || text.front() == '+' || text.front() == '-') return false;
    bool isNumber = false;
    magnitude_ = text.toULongLong(&isNumber, isHex ? 16 : 10);
    return isNumber && (!negative_ || magnitude_ <= quint64(1) << 63);
}

bool XmlPropertyListReader::readReal() {
    const QByteArray text = text_.trimmed().toByteArray().toLower();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr std::pair<QByteArrayView, double> names[] = {
        {"nan", std::numeric_limits<double>::quiet_NaN()},
        {"inf", infinity},
        {"+inf", infinity},
        {"infinity", infinity},
        {"+infinity", infinity},
        {"-inf", -infinity},
        {"-infinity", -infinity}};
    for (const auto& [name, value] : names) {
        if (text != name) continue;
        real_ = value;
        return true;
    }
    bool isNumber = false;
    real_ = text.toDouble(&isNumber);
    return isNumber || std::isinf(real_);
}

/// "YYYY-MM-DDTHH:MM:SSZ"; the year may be longer and negative.
bool XmlPropertyListReader::readDate() {
    QByteArrayView text = text_.trimmed();
    const bool isBefore = text.startsWith('-');
    if (isBefore) text = text.sliced(1);
    const auto number = [&text](qsizetype most, char end) {
        qsizetype size = 0;
        int value = 0;
        for (; size < qMin(most, text.size()) && text[size] >= '0' && text[size] <= '9'; ++size)
            value = 10 * value + (text[size] - '0');
        if (size == 0 || size >= text.size() || text[size] != end) return -1;
        text = text.sliced(size + 1);
        return value;
    };
    const int year = number(9, '-');
    const int month = number(2, '-');
    const int day = number(2, 'T');
    const int hour = number(2, ':');
    const int minute = number(2, ':');
    const int second = number(2, 'Z');
    if (year < 0 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || hour > 24 ||
        minute < 0 || minute > 59 || second < 0 || second > 60 || !text.isEmpty())
        return false;
    const qint64 days =
        daysFromCivil(isBefore ? -year : year, month, day) - daysFromCivil(2001, 1, 1);
    real_ = double(days) * 86400 + hour * 3600 + minute * 60 + second;
    return true;
}

bool XmlPropertyListReader::readBase64() {
    QByteArray plain;
    plain.reserve(text_.size());
    for (const char c : text_)
        if (!isBlank(c)) plain.append(c);
    const auto decoded =
        QByteArray::fromBase64Encoding(std::move(plain), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return false;
    buffer_ = decoded.decoded;
    text_ = buffer_;
    return true;
}

}  // namespace foundation
