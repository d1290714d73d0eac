#pragma once
// SPDX-License-Identifier: MIT
//
// BinaryPropertyList: the objects of a binary property list ("bplist00"), read where they lie. No
// tree is built: a reference is looked up in the offset table and answered as a Node, a few words
// about the bytes of that object. Opening checks the frame and every offset; a Node's payload lies
// inside the object table, so its bytes may be read without a further check.

#include <QtEndian>
#include <QtGlobal>
#include <optional>

#include "foundation/data.h"

namespace foundation {

class BinaryPropertyList {
  public:
    /// Names one object; valid below objectCount().
    using Ref = quint64;

    enum class Kind : quint8 {
        invalid,  ///< a reference out of range or an object that breaks the format
        null,
        boolean,
        integer,
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

    /// One object, not owning: valid as long as the list.
    struct Node {
        Kind kind = Kind::invalid;
        /// False for an integer above the signed range.
        bool isSigned = true;
        /// Bytes of data and ASCII, units of UTF-16, elements, pairs; the value itself for
        /// booleans, integers (two's complement) and UIDs, the bits of a double for reals and
        /// dates.
        quint64 count = 0;
        const char* payload = nullptr;
    };

    /// Nothing when the frame is malformed. Accepts any character at the last place of the magic.
    [[nodiscard]] static std::optional<BinaryPropertyList> open(const Data& data);

    [[nodiscard]] const Data& data() const { return data_; }
    [[nodiscard]] quint64 objectCount() const { return objectCount_; }
    [[nodiscard]] Ref topObject() const { return topObject_; }
    [[nodiscard]] Node node(Ref ref) const;
    /// The bytes of the references to a dictionary's keys.
    [[nodiscard]] QByteArrayView keyRefBytes(const Node& dictionary) const {
        return {dictionary.payload, qsizetype(dictionary.count * refSize_)};
    }
    /// The element of an array or set; the index must lie below its count.
    [[nodiscard]] Ref element(const Node& array, quint64 index) const {
        return load(array.payload + index * refSize_, refSize_);
    }
    /// The key of a dictionary's pair; the index must lie below its count.
    [[nodiscard]] Ref key(const Node& dictionary, quint64 index) const {
        return element(dictionary, index);
    }
    /// The value of a dictionary's pair; the index must lie below its count.
    [[nodiscard]] Ref value(const Node& dictionary, quint64 index) const {
        return element(dictionary, dictionary.count + index);
    }
    /// The bytes of a data or string object, a slice of the file's.
    [[nodiscard]] Data slice(const Node& node) const;

  private:
    BinaryPropertyList() = default;

    Data data_;
    const char* begin_ = nullptr;
    quint64 tableOffset_ = 0;  ///< of the offset table, where the object table ends
    quint64 objectCount_ = 0;
    quint64 topObject_ = 0;
    quint8 offsetSize_ = 0;
    quint8 refSize_ = 0;

    /// A big-endian integer of 1 to 8 bytes. It loads eight: the trailer follows everything that is
    /// ever read this way, so the rest of them lies inside the file.
    [[nodiscard]] static quint64 load(const char* bytes, unsigned size) {
        return qFromBigEndian<quint64>(bytes) >> (64 - 8 * size);
    }
    [[nodiscard]] bool readTrailer();
    [[nodiscard]] bool offsetsLieInObjectTable() const;
    [[nodiscard]] Node scalar(unsigned char marker, const char* payload, quint64 room) const;
    [[nodiscard]] Node counted(unsigned char marker, const char* payload, quint64 room) const;
};

inline BinaryPropertyList::Node BinaryPropertyList::node(Ref ref) const {
    if (ref >= objectCount_) return {};
    const quint64 offset = load(begin_ + tableOffset_ + ref * offsetSize_, offsetSize_);
    if (offset < 8) return {};
    const auto marker = static_cast<unsigned char>(begin_[offset]);
    const char* payload = begin_ + offset + 1;
    const quint64 room = tableOffset_ - offset - 1;
    return marker < 0x40 || (marker & 0xf0) == 0x80 ? scalar(marker, payload, room)
                                                    : counted(marker, payload, room);
}

}  // namespace foundation
