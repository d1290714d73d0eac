// SPDX-License-Identifier: MIT
#include "foundation/plist/binary_property_list.h"

#include <bit>
#include <limits>

#include "foundation/checked.h"

namespace foundation {
namespace {

constexpr quint64 magicSize = 8;
constexpr quint64 trailerSize = 32;
constexpr quint64 largestCount = quint64(std::numeric_limits<qint64>::max());

/// Whether a number of so many bytes can tell apart everything below the bound.
bool canAddress(unsigned bytes, quint64 bound) {
    return bytes == 8 || (quint64(1) << (8 * bytes)) > bound;
}

}  // namespace

std::optional<BinaryPropertyList> BinaryPropertyList::open(const Data& data) {
    BinaryPropertyList list;
    list.data_ = data;
    list.begin_ = data.begin();
    if (quint64(data.size()) < magicSize + 1 + trailerSize) return std::nullopt;
    if (!data.view().startsWith("bplist0")) return std::nullopt;
    if (!list.readTrailer() || !list.offsetsLieInObjectTable()) return std::nullopt;
    return list;
}

bool BinaryPropertyList::readTrailer() {
    const auto size = quint64(data_.size());
    const char* trailer = begin_ + size - trailerSize;
    offsetSize_ = static_cast<quint8>(trailer[6]);
    refSize_ = static_cast<quint8>(trailer[7]);
    objectCount_ = qFromBigEndian<quint64>(trailer + 8);
    topObject_ = qFromBigEndian<quint64>(trailer + 16);
    tableOffset_ = qFromBigEndian<quint64>(trailer + 24);

    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8) return false;
    if (objectCount_ < 1 || objectCount_ > largestCount || topObject_ >= objectCount_) return false;
    if (tableOffset_ <= magicSize || tableOffset_ >= size - trailerSize) return false;
    const auto tableSize = tryMultiply<quint64>(objectCount_, offsetSize_);
    if (!tableSize || *tableSize != size - trailerSize - tableOffset_) return false;
    return canAddress(refSize_, objectCount_) && canAddress(offsetSize_, tableOffset_);
}

bool BinaryPropertyList::offsetsLieInObjectTable() const {
    const char* table = begin_ + tableOffset_;
    quint64 largest = 0;
    for (quint64 i = 0; i < objectCount_; ++i) {
        const quint64 offset = load(table + i * offsetSize_, offsetSize_);
        largest = offset > largest ? offset : largest;
    }
    return largest < tableOffset_ &&
           load(table + topObject_ * offsetSize_, offsetSize_) >= magicSize;
}

BinaryPropertyList::Node BinaryPropertyList::scalar(unsigned char marker, const char* payload,
                                                    quint64 room) const {
    const unsigned low = marker & 0x0f;
    switch (marker >> 4) {
        case 0x0:
            if (marker == 0x00) return {.kind = Kind::null};
            if (marker == 0x08 || marker == 0x09)
                return {.kind = Kind::boolean, .count = marker & 1u};
            return {};
        case 0x1: {
            const unsigned size = 1u << (low & 7);
            if (low > 4 || size > room) return {};
            // One, two and four bytes are unsigned, eight are signed; of sixteen the lower half
            // counts, unsigned.
            if (size == 16) {
                const auto value = qFromBigEndian<quint64>(payload + 8);
                return {.kind = Kind::integer, .isSigned = value <= largestCount, .count = value};
            }
            return {.kind = Kind::integer, .count = load(payload, size)};
        }
        case 0x2:
            if (marker == 0x22 && room >= 4) {
                const auto real = std::bit_cast<float>(qFromBigEndian<quint32>(payload));
                return {.kind = Kind::real, .count = std::bit_cast<quint64>(double(real))};
            }
            if (marker == 0x23 && room >= 8) return {.kind = Kind::real, .count = load(payload, 8)};
            return {};
        case 0x3:
            if (marker == 0x33 && room >= 8) return {.kind = Kind::date, .count = load(payload, 8)};
            return {};
        default: {
            const unsigned size = low + 1;
            if (size > 8 || size > room) return {};
            const quint64 value = load(payload, size);
            if (value > std::numeric_limits<quint32>::max()) return {};
            return {.kind = Kind::uid, .count = value};
        }
    }
}

BinaryPropertyList::Node BinaryPropertyList::counted(unsigned char marker, const char* payload,
                                                     quint64 room) const {
    quint64 count = marker & 0x0f;
    if (count == 0x0f) {
        if (room < 1 || (*payload & 0xf0) != 0x10) return {};
        const Node inlined = scalar(static_cast<unsigned char>(*payload), payload + 1, room - 1);
        if (inlined.kind != Kind::integer || inlined.count > largestCount) return {};
        count = inlined.count;
        const quint64 skipped = 1 + (quint64(1) << (*payload & 0x0f));
        payload += skipped;
        room -= skipped;
    }
    const auto fitting = [&](Kind kind, quint64 width) -> Node {
        if (count > room / width) return {};
        return {.kind = kind, .count = count, .payload = payload};
    };
    switch (marker >> 4) {
        case 0x4:
            return fitting(Kind::data, 1);
        case 0x5:
            return fitting(Kind::asciiString, 1);
        case 0x6:
            return fitting(Kind::utf16String, 2);
        case 0xa:
            return fitting(Kind::array, refSize_);
        case 0xc:
            return fitting(Kind::set, refSize_);
        case 0xd:
            return fitting(Kind::dictionary, quint64(2) * refSize_);
        default:
            return {};
    }
}

Data BinaryPropertyList::slice(const Node& node) const {
    const quint64 size = node.kind == Kind::utf16String ? 2 * node.count : node.count;
    return data_.slice(node.payload - begin_, qsizetype(size));
}

}  // namespace foundation
