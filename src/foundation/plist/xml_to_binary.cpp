// SPDX-License-Identifier: MIT
#include "foundation/plist/xml_to_binary.h"

#include <QString>
#include <QtEndian>
#include <bit>
#include <limits>
#include <vector>

#include "foundation/plist/xml_property_list_reader.h"

namespace foundation {
namespace {

using Token = XmlPropertyListReader::Token;
using Ref = quint32;

/// Writes objects in the order in which they end; a container gathers the references of its parts
/// until then.
class Converter {
  public:
    explicit Converter(const Data& xml) : reader_(xml) {}

    std::optional<Data> convert();

  private:
    struct Container {
        std::size_t firstRef;  ///< in openRefs_
        bool holdsUid;         ///< its only entry so far is an integer "CF$UID"
        quint32 uid;
    };

    XmlPropertyListReader reader_;
    QByteArray bytes_ = "bplist00";
    std::vector<quint64> offsets_;
    std::vector<Container> open_;
    std::vector<Ref> openRefs_;  ///< of all open containers, the innermost last

    template <class Integer>
    void append(Integer value) {
        const Integer stored = qToBigEndian(value);
        bytes_.append(reinterpret_cast<const char*>(&stored), sizeof stored);
    }
    void beginObject();
    void appendCount(unsigned kind, quint64 count);
    void appendText(QByteArrayView utf8);
    void appendInteger();
    void appendLeaf(Token token);
    void noteUid(Token token);
    void endContainer(Token token);
    Data finish();
};

void Converter::beginObject() {
    openRefs_.push_back(Ref(offsets_.size()));
    offsets_.push_back(quint64(bytes_.size()));
}

void Converter::appendCount(unsigned kind, quint64 count) {
    if (count < 15) {
        bytes_.append(char(kind << 4 | count));
        return;
    }
    bytes_.append(char(kind << 4 | 15));
    bytes_.append(char(0x13));
    append(count);
}

void Converter::appendText(QByteArrayView utf8) {
    const QString text = QString::fromUtf8(utf8);
    if (text.size() == utf8.size()) {
        // As many units as bytes: all of them are ASCII.
        appendCount(0x5, quint64(utf8.size()));
        bytes_.append(utf8);
        return;
    }
    appendCount(0x6, quint64(text.size()));
    for (const QChar unit : text)
        append(quint16(unit.unicode()));
}

void Converter::appendInteger() {
    const quint64 magnitude = reader_.magnitude();
    if (magnitude > quint64(std::numeric_limits<qint64>::max()) && !reader_.isNegative()) {
        bytes_.append(char(0x14));
        append(quint64(0));
        append(magnitude);
        return;
    }
    bytes_.append(char(0x13));
    append(reader_.isNegative() ? ~magnitude + 1 : magnitude);
}

void Converter::appendLeaf(Token token) {
    beginObject();
    switch (token) {
        case Token::key:
        case Token::string:
            return appendText(reader_.text());
        case Token::integer:
            return appendInteger();
        case Token::boolean:
            bytes_.append(char(0x08 | reader_.magnitude()));
            return;
        case Token::data:
            appendCount(0x4, quint64(reader_.text().size()));
            bytes_.append(reader_.text());
            return;
        default:
            bytes_.append(char(token == Token::date ? 0x33 : 0x23));
            append(std::bit_cast<quint64>(reader_.real()));
    }
}

/// Keeps track of whether the innermost container is a UID in disguise.
void Converter::noteUid(Token token) {
    if (open_.empty()) return;
    Container& container = open_.back();
    const std::size_t parts = openRefs_.size() - container.firstRef;
    if (parts == 1)
        container.holdsUid = token == Token::key && reader_.text() == "CF$UID";
    else if (parts != 2 || token != Token::integer || reader_.isNegative() ||
             reader_.magnitude() > std::numeric_limits<quint32>::max())
        container.holdsUid = false;
    else if (container.holdsUid)
        container.uid = quint32(reader_.magnitude());
}

void Converter::endContainer(Token token) {
    const Container container = open_.back();
    open_.pop_back();
    const std::vector<Ref> refs(openRefs_.begin() + qsizetype(container.firstRef), openRefs_.end());
    openRefs_.resize(container.firstRef);
    beginObject();
    if (token == Token::endDictionary && container.holdsUid && refs.size() == 2) {
        bytes_.append(char(0x83));
        append(container.uid);
    } else if (token == Token::endDictionary) {
        appendCount(0xd, refs.size() / 2);
        for (const std::size_t first : {0, 1})
            for (std::size_t i = first; i < refs.size(); i += 2)
                append(refs[i]);
    } else {
        appendCount(0xa, refs.size());
        for (const Ref ref : refs)
            append(ref);
    }
}

Data Converter::finish() {
    const auto tableOffset = quint64(bytes_.size());
    bytes_.reserve(bytes_.size() + qsizetype(8 * offsets_.size() + 32));
    for (const quint64 offset : offsets_)
        append(offset);
    bytes_.append(6, '\0').append(char(8)).append(char(sizeof(Ref)));
    append(quint64(offsets_.size()));
    append(quint64(openRefs_.front()));
    append(tableOffset);
    return Data(bytes_);
}

std::optional<Data> Converter::convert() {
    while (true) {
        const Token token = reader_.next();
        if (offsets_.size() >= std::numeric_limits<Ref>::max()) return std::nullopt;
        switch (token) {
            case Token::invalid:
                return std::nullopt;
            case Token::end:
                return finish();
            case Token::beginArray:
            case Token::beginDictionary:
                open_.push_back({openRefs_.size(), false, 0});
                break;
            case Token::endArray:
            case Token::endDictionary:
                endContainer(token);
                noteUid(token);
                break;
            default:
                appendLeaf(token);
                noteUid(token);
        }
    }
}

}  // namespace

std::optional<Data> binaryFromXml(const Data& xml) {
    return Converter(xml).convert();
}

}  // namespace foundation
