// SPDX-License-Identifier: MIT
#include "writers/property_list_writer.h"

#include <QDateTime>
#include <QHashFunctions>
#include <QTimeZone>
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace writers {
namespace {

void appendBigEndian(QByteArray& bytes, quint64 value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes.append(shift < 64 ? static_cast<char>(value >> shift) : '\0');
}

/// Negative numbers take eight bytes: the shorter widths are unsigned.
QByteArray encodedInteger(qint64 value) {
    const auto bits = static_cast<quint64>(value);
    const int power = bits <= 0xff ? 0 : bits <= 0xffff ? 1 : bits <= 0xffffffff ? 2 : 3;
    QByteArray bytes(1, static_cast<char>(0x10 | power));
    appendBigEndian(bytes, bits, 1 << power);
    return bytes;
}

/// The marker with the count in its low nibble or, from 15 on, in an integer behind it.
QByteArray markerWithCount(int kind, qsizetype count) {
    if (count < 15) return QByteArray(1, static_cast<char>(kind << 4 | static_cast<int>(count)));
    return QByteArray(1, static_cast<char>(kind << 4 | 0xf)) + encodedInteger(count);
}

/// The least number of bytes that holds more than the value.
int widthFor(quint64 value) {
    int width = 1;
    while (width < 8 && (value >> (8 * width)) != 0)
        ++width;
    return width;
}

}  // namespace

PropertyListWriter::Node PropertyListWriter::addScalar(QByteArrayView encoded, bool shared) {
    const size_t hash = qHash(encoded);
    if (shared) {
        const auto known = shared_.find(hash);
        if (known != shared_.end()) {
            const Entry& entry = entries_[known->second];
            if (QByteArrayView(encoded_).sliced(entry.begin, entry.count) == encoded)
                return known->second;
        }
    }
    entries_.push_back({encoded_.size(), encoded.size(), Kind::scalar});
    encoded_.append(encoded);
    const auto node = static_cast<Node>(entries_.size() - 1);
    if (shared) shared_.emplace(hash, node);
    return node;
}

PropertyListWriter::Node PropertyListWriter::addContainer(Kind kind, std::vector<Node> references) {
    entries_.push_back({static_cast<qsizetype>(references_.size()),
                        static_cast<qsizetype>(references.size()), kind});
    references_.insert(references_.end(), references.begin(), references.end());
    return static_cast<Node>(entries_.size() - 1);
}

PropertyListWriter::Node PropertyListWriter::boolean(bool value) {
    return addScalar(value ? "\x09" : "\x08", true);
}

PropertyListWriter::Node PropertyListWriter::integer(qint64 value) {
    return addScalar(encodedInteger(value), true);
}

PropertyListWriter::Node PropertyListWriter::real(double value) {
    QByteArray encoded("\x23");
    appendBigEndian(encoded, std::bit_cast<quint64>(value), 8);
    return addScalar(encoded, true);
}

PropertyListWriter::Node PropertyListWriter::date(double seconds) {
    QByteArray encoded("\x33");
    appendBigEndian(encoded, std::bit_cast<quint64>(seconds), 8);
    return addScalar(encoded, true);
}

PropertyListWriter::Node PropertyListWriter::data(QByteArrayView bytes) {
    return addScalar(markerWithCount(4, bytes.size()) + bytes.toByteArray(), true);
}

PropertyListWriter::Node PropertyListWriter::string(QStringView text) {
    const bool isAscii = std::all_of(text.begin(), text.end(), [](QChar c) { return c < u'\x80'; });
    QByteArray encoded = markerWithCount(isAscii ? 5 : 6, text.size());
    for (const QChar unit : text)
        appendBigEndian(encoded, unit.unicode(), isAscii ? 1 : 2);
    return addScalar(encoded, true);
}

PropertyListWriter::Node PropertyListWriter::uid(quint32 value) {
    const int width = value <= 0xff ? 1 : value <= 0xffff ? 2 : 4;
    QByteArray encoded(1, static_cast<char>(0x80 | (width - 1)));
    appendBigEndian(encoded, value, width);
    return addScalar(encoded, false);
}

PropertyListWriter::Node PropertyListWriter::raw(QByteArrayView encoded) {
    return addScalar(encoded, false);
}

PropertyListWriter::Node PropertyListWriter::array(const std::vector<Node>& elements) {
    return addContainer(Kind::array, elements);
}

PropertyListWriter::Node PropertyListWriter::dictionary(
    const std::vector<std::pair<Node, Node>>& pairs) {
    std::vector<Node> references;
    references.reserve(2 * pairs.size());
    for (const auto& pair : pairs)
        references.push_back(pair.first);
    for (const auto& pair : pairs)
        references.push_back(pair.second);
    return addContainer(Kind::dictionary, std::move(references));
}

/// The platform's order: a container, then everything below it, keys first.
std::vector<PropertyListWriter::Node> PropertyListWriter::inFileOrder(Node top) const {
    std::vector<Node> order;
    std::vector<bool> placed(entries_.size());
    std::vector<Node> waiting{top};
    while (!waiting.empty()) {
        const Node node = waiting.back();
        waiting.pop_back();
        if (placed[node]) continue;
        placed[node] = true;
        order.push_back(node);
        const Entry& entry = entries_[node];
        if (entry.kind == Kind::scalar) continue;
        for (qsizetype i = entry.count; i-- > 0;)
            waiting.push_back(references_[static_cast<size_t>(entry.begin + i)]);
    }
    return order;
}

QByteArray PropertyListWriter::binary(Node top, Widths widths) const {
    const std::vector<Node> order = inFileOrder(top);
    std::vector<Node> numbers(entries_.size());
    for (size_t i = 0; i < order.size(); ++i)
        numbers[order[i]] = static_cast<Node>(i);
    const int referenceWidth = widths.reference ? widths.reference : widthFor(order.size());

    QByteArray bytes("bplist00");
    bytes.reserve(encoded_.size() + static_cast<qsizetype>(references_.size()) * referenceWidth +
                  static_cast<qsizetype>(order.size()) * 9 + 64);
    std::vector<qsizetype> offsets;
    offsets.reserve(order.size());
    for (const Node node : order) {
        offsets.push_back(bytes.size());
        const Entry& entry = entries_[node];
        if (entry.kind == Kind::scalar) {
            bytes.append(QByteArrayView(encoded_).sliced(entry.begin, entry.count));
            continue;
        }
        const bool isArray = entry.kind == Kind::array;
        bytes.append(markerWithCount(isArray ? 0xa : 0xd, isArray ? entry.count : entry.count / 2));
        for (qsizetype i = 0; i < entry.count; ++i)
            appendBigEndian(bytes, numbers[references_[static_cast<size_t>(entry.begin + i)]],
                            referenceWidth);
    }
    const auto table = static_cast<quint64>(bytes.size());
    const int offsetWidth = widths.offset ? widths.offset : widthFor(table);
    for (const qsizetype offset : offsets)
        appendBigEndian(bytes, static_cast<quint64>(offset), offsetWidth);
    bytes.append(6, '\0');
    bytes.append(static_cast<char>(offsetWidth)).append(static_cast<char>(referenceWidth));
    appendBigEndian(bytes, order.size(), 8);
    appendBigEndian(bytes, 0, 8);
    appendBigEndian(bytes, table, 8);
    return bytes;
}

QByteArray PropertyListWriter::xml(Node top) const {
    QByteArray xml(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n");
    appendXml(xml, top);
    return xml + "</plist>\n";
}

void PropertyListWriter::appendXml(QByteArray& xml, Node node) const {
    const Entry& entry = entries_[node];
    const auto reference = [&](qsizetype i) {
        return references_[static_cast<size_t>(entry.begin + i)];
    };
    if (entry.kind == Kind::scalar) {
        appendScalarXml(xml, QByteArrayView(encoded_).sliced(entry.begin, entry.count));
    } else if (entry.kind == Kind::array) {
        xml += "<array>\n";
        for (qsizetype i = 0; i < entry.count; ++i)
            appendXml(xml, reference(i));
        xml += "</array>\n";
    } else {
        xml += "<dict>\n";
        for (qsizetype i = 0; i < entry.count / 2; ++i) {
            QByteArray key;
            appendXml(key, reference(i));
            xml += key.replace("<string>", "<key>").replace("</string>", "</key>");
            appendXml(xml, reference(entry.count / 2 + i));
        }
        xml += "</dict>\n";
    }
}

void PropertyListWriter::appendScalarXml(QByteArray& xml, QByteArrayView encoded) const {
    const int kind = static_cast<quint8>(encoded[0]) >> 4;
    const int low = static_cast<quint8>(encoded[0]) & 0xf;
    QByteArrayView body = encoded.sliced(1);
    if (kind >= 4 && kind <= 6 && low == 0xf) body = body.sliced(1 + (1 << (body[0] & 0xf)));
    quint64 number = 0;
    for (const char byte : body.first(qMin<qsizetype>(8, body.size())))
        number = number << 8 | static_cast<quint8>(byte);

    if (kind == 0) {
        xml += low == 9 ? "<true/>" : "<false/>";
    } else if (kind == 1) {
        xml += "<integer>" + QByteArray::number(static_cast<qint64>(number)) + "</integer>";
    } else if (kind == 2) {
        const auto value = std::bit_cast<double>(number);
        xml +=
            "<real>" + QByteArray::number(value, 'g', QLocale::FloatingPointShortest) + "</real>";
    } else if (kind == 3) {
        constexpr qint64 referenceDate = 978307200;
        const qint64 seconds = std::llround(std::bit_cast<double>(number)) + referenceDate;
        const auto date = QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc());
        xml += "<date>" + date.toString(Qt::ISODate).toLatin1() + "</date>";
    } else if (kind == 4) {
        xml += "<data>" + body.toByteArray().toBase64() + "</data>";
    } else if (kind == 8) {
        xml +=
            "<dict><key>CF$UID</key><integer>" + QByteArray::number(number) + "</integer></dict>";
    } else {
        QString text(body.size() / (kind == 6 ? 2 : 1), Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            text[i] = kind == 6 ? QChar(qFromBigEndian<quint16>(body.data() + 2 * i))
                                : QChar(static_cast<quint8>(body[i]));
        xml += "<string>" + text.toHtmlEscaped().toUtf8() + "</string>";
    }
    xml += '\n';
}

}  // namespace writers
