#pragma once
// SPDX-License-Identifier: MIT
//
// BinaryPropertyList: the objects of a binary property list ("bplist00"), read in place. No tree is
// built: a reference is looked up in the offset table and returned as a Node, two words about the
// bytes of that object. Opening checks the frame and every offset; a Node's payload is inside the
// object table, so its bytes can be read without a further check.

#include <QtEndian>
#include <QtGlobal>
#include <array>
#include <optional>

#include "foundation/data.h"

namespace foundation {

class BinaryPropertyList {
  public:
    /// Names one object; valid below objectCount().
    using Ref = quint64;
    /// No object, no UID. (An optional would be returned through memory, which shows in a loop over
    /// millions of references.)
    static constexpr quint64 none = ~quint64(0);

    enum class Kind : quint8 {
        invalid,  ///< a reference out of range or an object that breaks the format
        null,
        boolean,
        integer,
        hugeInteger,  ///< above the signed range
        real,
        date,
        data,
        asciiString,
        utf16String,
        uid,
        array,
        set,
        dictionary,
    };

    /// One object, not owning: valid as long as the list. Two words, so that it travels in
    /// registers.
    class Node {
      public:
        Node() = default;
        static Node scalar(Kind kind, quint64 value) {
            Node node;
            node.value_ = value;
            node.tag_ = quint64(kind);
            return node;
        }
        static Node items(Kind kind, quint64 count, const char* payload) {
            Node node;
            node.payload_ = payload;
            node.tag_ = count << 8 | quint64(kind);
            return node;
        }

        [[nodiscard]] Kind kind() const { return Kind(tag_ & 0xff); }
        /// Bytes of data and ASCII, units of UTF-16, elements, pairs; less than 2^56.
        [[nodiscard]] quint64 count() const { return tag_ >> 8; }
        /// The items' bytes.
        [[nodiscard]] const char* payload() const { return payload_; }
        /// Of booleans, UIDs and integers (two's complement); the bits of a double for reals and
        /// dates.
        [[nodiscard]] quint64 value() const { return value_; }

      private:
        union {
            quint64 value_ = 0;
            const char* payload_;
        };
        quint64 tag_ = quint64(Kind::invalid);
    };

    /// Nothing when the frame is malformed. Accepts any character at the last place of the magic.
    [[nodiscard]] static std::optional<BinaryPropertyList> open(const Data& data);

    [[nodiscard]] const Data& data() const { return data_; }
    [[nodiscard]] quint64 objectCount() const { return objectCount_; }
    [[nodiscard]] Ref topObject() const { return topObject_; }
    [[nodiscard]] Node node(Ref ref) const;
    /// The value when the object is a UID, else none: a shortcut for node().
    [[nodiscard]] quint64 uid(Ref ref) const;
    /// The bytes of the references to a dictionary's keys.
    [[nodiscard]] QByteArrayView keyRefBytes(const Node& dictionary) const {
        return {dictionary.payload(), qsizetype(dictionary.count() * refSize_)};
    }
    /// The element of an array or set; the index must be below its count.
    [[nodiscard]] Ref element(const Node& array, quint64 index) const {
        return load(array.payload() + index * refSize_, refSize_);
    }
    /// The key of a dictionary's pair; the index must be below its count.
    [[nodiscard]] Ref key(const Node& dictionary, quint64 index) const {
        return element(dictionary, index);
    }
    /// The value of a dictionary's pair; the index must be below its count.
    [[nodiscard]] Ref value(const Node& dictionary, quint64 index) const {
        return element(dictionary, dictionary.count() + index);
    }
    /// Where the object stands in the file; the reference must be valid.
    [[nodiscard]] quint64 offset(Ref ref) const {
        return load(table_ + ref * offsetSize_, offsetSize_);
    }
    /// The bytes of a data or string object, a slice of the file's.
    [[nodiscard]] Data slice(const Node& node) const;

  private:
    static constexpr quint64 magicSize = 8;

    BinaryPropertyList() = default;

    Data data_;
    const char* begin_ = nullptr;
    const char* table_ = nullptr;  ///< the offset table, where the object table ends
    quint64 objectCount_ = 0;
    quint64 topObject_ = 0;
    quint8 offsetSize_ = 0;
    quint8 refSize_ = 0;
    /// By the high half of a marker: the bytes that each of its items takes; 0 for what has none.
    std::array<quint8, 16> itemSizes_{};

    /// A big-endian integer of 1 to 8 bytes. It loads eight: the trailer follows everything that is
    /// ever read this way, so the rest of them is inside the file.
    [[nodiscard]] static quint64 load(const char* bytes, unsigned size) {
        return qFromBigEndian<quint64>(bytes) >> (64 - 8 * size);
    }
    /// The position of an object's marker; null for none.
    [[nodiscard]] const char* marker(Ref ref) const {
        if (ref >= objectCount_) return nullptr;
        const quint64 offset = load(table_ + ref * offsetSize_, offsetSize_);
        return offset < magicSize ? nullptr : begin_ + offset;
    }
    [[nodiscard]] static quint64 readUid(const char* marker, quint64 room) {
        const unsigned size = (static_cast<unsigned char>(*marker) & 0x0fu) + 1;
        if (size > 8 || size > room) return none;
        const quint64 value = load(marker + 1, size);
        return value > 0xffffffffu ? none : value;
    }
    [[nodiscard]] bool readTrailer();
    [[nodiscard]] bool offsetsLieInObjectTable() const;
    [[nodiscard]] static Node scalar(const char* marker, quint64 room);
    [[nodiscard]] static Node withLongCount(Kind kind, const char* count, quint64 room,
                                            quint8 itemSize);
};

inline BinaryPropertyList::Node BinaryPropertyList::node(Ref ref) const {
    static constexpr std::array<Kind, 16> kinds{
        Kind::invalid, Kind::invalid,     Kind::invalid,     Kind::invalid,
        Kind::data,    Kind::asciiString, Kind::utf16String, Kind::invalid,
        Kind::invalid, Kind::invalid,     Kind::array,       Kind::invalid,
        Kind::set,     Kind::dictionary,  Kind::invalid,     Kind::invalid};
    const char* const at = marker(ref);
    if (!at) return {};
    const auto room = quint64(table_ - at - 1);
    const unsigned high = static_cast<unsigned char>(*at) >> 4;
    const unsigned low = static_cast<unsigned char>(*at) & 0x0fu;
    if (itemSizes_[high] == 0) return scalar(at, room);
    if (low == 0x0f) return withLongCount(kinds[high], at + 1, room, itemSizes_[high]);
    return quint64(low) * itemSizes_[high] <= room ? Node::items(kinds[high], low, at + 1) : Node();
}

inline quint64 BinaryPropertyList::uid(Ref ref) const {
    const char* const at = marker(ref);
    if (!at || (*at & 0xf0) != 0x80) return none;
    return readUid(at, quint64(table_ - at - 1));
}

}  // namespace foundation
