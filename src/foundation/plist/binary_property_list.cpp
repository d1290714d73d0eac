// SPDX-License-Identifier: MIT
#include "foundation/plist/binary_property_list.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "foundation/checked.h"

namespace foundation {
namespace {

constexpr quint64 trailerSize = 32;
constexpr quint64 largestCount = quint64(std::numeric_limits<qint64>::max());

/// Whether a number of this many bytes can address everything below the bound.
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
    const auto tableOffset = qFromBigEndian<quint64>(trailer + 24);

    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8) return false;
    if (objectCount_ < 1 || objectCount_ > largestCount || topObject_ >= objectCount_) return false;
    if (tableOffset <= magicSize || tableOffset >= size - trailerSize) return false;
    const auto tableSize = tryMultiply<quint64>(objectCount_, offsetSize_);
    if (!tableSize || *tableSize != size - trailerSize - tableOffset) return false;
    table_ = begin_ + tableOffset;
    for (const unsigned oneByte : {0x4, 0x5})
        itemSizes_[oneByte] = 1;
    itemSizes_[0x6] = 2;
    for (const unsigned list : {0xa, 0xc})
        itemSizes_[list] = refSize_;
    itemSizes_[0xd] = static_cast<quint8>(2 * refSize_);
    return canAddress(refSize_, objectCount_) && canAddress(offsetSize_, tableOffset);
}

bool BinaryPropertyList::offsetsLieInObjectTable() const {
    quint64 largest = 0;
    for (quint64 i = 0; i < objectCount_; ++i)
        largest = std::max(largest, load(table_ + i * offsetSize_, offsetSize_));
    return largest < quint64(table_ - begin_) && marker(topObject_);
}

BinaryPropertyList::Node BinaryPropertyList::scalar(const char* at, quint64 room) {
    const auto marker = static_cast<unsigned char>(*at);
    const char* const payload = at + 1;
    const unsigned low = marker & 0x0f;
    switch (marker >> 4) {
        case 0x0:
            if (marker == 0x00) return Node::scalar(Kind::null, 0);
            if (marker == 0x08 || marker == 0x09) return Node::scalar(Kind::boolean, marker & 1u);
            return {};
        case 0x1: {
            const unsigned size = 1u << (low & 7);
            if (low > 4 || size > room) return {};
            // One, two and four bytes are unsigned, eight are signed; of sixteen the lower half
            // counts, unsigned.
            if (size < 16) return Node::scalar(Kind::integer, load(payload, size));
            const quint64 value = load(payload + 8, 8);
            return Node::scalar(value > largestCount ? Kind::hugeInteger : Kind::integer, value);
        }
        case 0x2:
            if (marker == 0x22 && room >= 4) {
                const double real = std::bit_cast<float>(quint32(load(payload, 4)));
                return Node::scalar(Kind::real, std::bit_cast<quint64>(real));
            }
            if (marker == 0x23 && room >= 8) return Node::scalar(Kind::real, load(payload, 8));
            return {};
        case 0x3:
            if (marker == 0x33 && room >= 8) return Node::scalar(Kind::date, load(payload, 8));
            return {};
        case 0x8: {
            const quint64 value = readUid(at, room);
            return value == none ? Node() : Node::scalar(Kind::uid, value);
        }
        default:
            return {};
    }
}

/// A node whose count precedes its items, as an integer of any size.
BinaryPropertyList::Node BinaryPropertyList::withLongCount(Kind kind, const char* at, quint64 room,
                                                           quint8 itemSize) {
    const unsigned size = 1u << (*at & 0x07);
    if (room <= size || (*at & 0xf8) != 0x10 || size > 16) return {};
    const quint64 count = size == 16 ? load(at + 9, 8) : load(at + 1, size);
    room -= 1 + size;
    // The first comparison keeps the product of the second small.
    if (count > room || count * itemSize > room) return {};
    return Node::items(kind, count, at + 1 + size);
}

Data BinaryPropertyList::slice(const Node& node) const {
    const quint64 size = node.kind() == Kind::utf16String ? 2 * node.count() : node.count();
    return data_.slice(node.payload() - begin_, qsizetype(size));
}

}  // namespace foundation
