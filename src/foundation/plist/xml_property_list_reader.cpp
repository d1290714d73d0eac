// SPDX-License-Identifier: MIT
#include "foundation/plist/xml_property_list_reader.h"

#include <QString>
#include <QStringConverter>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

namespace foundation {
namespace {

/// As the binary form's readers have it.
constexpr std::size_t depthLimit = 512;
/// What ends an element's name.
constexpr QByteArrayView nameEnds = " \t\r\n>/";

/// The encoding named by an XML declaration at the front, in lower case; empty without one.
QByteArray declaredEncoding(QByteArrayView bytes) {
    XmlScanner text(bytes);
    if (!text.skip("<?xml") || bytes.indexOf("?>") < 0) return {};
    while (const auto attribute = text.readAttribute())
        if (attribute->name == "encoding") return attribute->value.toByteArray().toLower();
    return {};
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
    // A copy, since it outlives the data: these files are rare and small.
    return bytes.startsWith("\xef\xbb\xbf") ? bytes.sliced(3).toByteArray() : bytes.toByteArray();
}

/// From 2001-01-01 to a day of the proleptic Gregorian calendar, which repeats itself after 400
/// years; the library's years end at 32767.
std::chrono::days daysFromReference(int year, unsigned month, unsigned day) {
    using namespace std::chrono;
    constexpr sys_days reference = 2001y / January / 1;
    constexpr days cycle = sys_days(2400y / January / 1) - sys_days(2000y / January / 1);
    const sys_days inCycle =
        std::chrono::year(year % 400) / std::chrono::month(month) / std::chrono::day(day);
    return inCycle - reference + year / 400 * cycle;
}

}  // namespace

XmlPropertyListReader::XmlPropertyListReader(const Data& data)
    : bytes_(toUtf8(data)), failed_(bytes_.isEmpty()) {
    // Some writers leave NUL bytes at the end of the file.
    QByteArrayView text(bytes_);
    while (text.endsWith('\0') || (!text.isEmpty() && XmlScanner::isBlank(text.back())))
        text.chop(1);
    xml_ = XmlScanner(text);
}

bool XmlPropertyListReader::looksLikeXml(QByteArrayView bytes) {
    if (bytes.startsWith("\xef\xbb\xbf")) bytes = bytes.sliced(3);
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff")) return true;
    XmlScanner text(bytes);
    text.skipBlanks();
    return text.skip("<");
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
    const bool isOutside = open_.back() == Open::document;
    if (!xml_.skipMisc(isOutside && !complete_)) return fail();
    if (xml_.rest().isEmpty()) return complete_ && isOutside ? Token::end : fail();
    if (!xml_.skip("<")) return fail();
    const bool isClosing = xml_.skip("/");
    const QByteArrayView name = xml_.readUntil(nameEnds);
    const auto isEmpty = xml_.skipTagEnd();
    if (!isEmpty || (isClosing && *isEmpty)) return fail();
    if (isClosing) return close(name);

    if (name == "plist") {
        if (open_.back() != Open::document || complete_ || *isEmpty) return fail();
        open_.push_back(Open::plist);
        return readElement();
    }
    if (name == "key") {
        if (open_.back() != Open::keys || !(*isEmpty || readText(name))) return fail();
        if (*isEmpty) text_ = {};
        open_.back() = Open::value;
        return Token::key;
    }
    if (!mayHoldValue()) return fail();
    if (name == "dict") return begin(Open::keys, *isEmpty);
    if (name == "array") return begin(Open::array, *isEmpty);
    return readLeaf(name, *isEmpty);
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

/// Records in the enclosing element that a value is complete.
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
        if (!text_.trimmed().isEmpty()) return fail();
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

/// Reads the text of a leaf and its end tag. Text without markup is not copied.
bool XmlPropertyListReader::readText(QByteArrayView name) {
    buffer_.clear();
    bool isBuffered = false;
    while (true) {
        const QByteArrayView plain = xml_.readUntil("<&");
        if (xml_.rest().isEmpty()) return false;
        if (xml_.skip("</")) {
            if (isBuffered) buffer_.append(plain);
            text_ = isBuffered ? QByteArrayView(buffer_) : plain;
            break;
        }
        isBuffered = true;
        buffer_.append(plain);
        if (!(xml_.skip("&") ? appendReference() : appendMarkup())) return false;
    }
    return xml_.readUntil(nameEnds) == name && xml_.skipTagEnd() == false;
}

bool XmlPropertyListReader::appendMarkup() {
    if (xml_.skip("<!--")) return xml_.skipPast("-->");
    if (xml_.skip("<?")) return xml_.skipPast("?>");
    if (!xml_.skip("<![CDATA[")) return false;
    const QByteArrayView section = xml_.rest();
    constexpr QByteArrayView end("]]>");
    if (!xml_.skipPast(end)) return false;
    buffer_.append(section.chopped(xml_.rest().size() + end.size()));
    return true;
}

/// Behind its "&".
bool XmlPropertyListReader::appendReference() {
    constexpr std::pair<QByteArrayView, char> entities[] = {
        {"lt;", '<'}, {"gt;", '>'}, {"amp;", '&'}, {"quot;", '"'}, {"apos;", '\''}};
    for (const auto& [reference, character] : entities) {
        if (!xml_.skip(reference)) continue;
        buffer_.append(character);
        return true;
    }
    if (!xml_.skip("#")) return false;
    const bool isHex = xml_.skip("x");
    QByteArrayView digits = xml_.rest();
    // The longest reference that means something, with room for a few leading zeros.
    const qsizetype end = digits.first(qMin(digits.size(), qsizetype(16))).indexOf(';');
    if (end < 1) return false;
    bool isNumber = false;
    const uint point = digits.first(end).toUInt(&isNumber, isHex ? 16 : 10);
    if (!isNumber || digits.front() == '+' || point == 0 || point > 0x10ffff) return false;
    const auto code = static_cast<char32_t>(QChar::isSurrogate(point) ? 0xfffd : point);
    buffer_.append(QString::fromUcs4(&code, 1).toUtf8());
    return xml_.skipPast(";");
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
    using namespace std::chrono;
    const sys_seconds::duration seconds =
        daysFromReference(isBefore ? -year : year, unsigned(month), unsigned(day)) + hours(hour) +
        minutes(minute) + std::chrono::seconds(second);
    real_ = double(seconds.count());
    return true;
}

bool XmlPropertyListReader::readBase64() {
    QByteArray plain;
    plain.reserve(text_.size());
    for (const char c : text_)
        if (!XmlScanner::isBlank(c)) plain.append(c);
    const auto decoded =
        QByteArray::fromBase64Encoding(std::move(plain), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return false;
    buffer_ = decoded.decoded;
    text_ = buffer_;
    return true;
}

}  // namespace foundation
