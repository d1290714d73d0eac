#pragma once
// SPDX-License-Identifier: MIT
//
// KeyedArchive: a property list that holds an archive. "$top" names the values that were archived,
// "$objects" holds all objects of the graph, which refer to each other by UID, their index there.

#include <string_view>

#include "foundation/plist/binary_property_list.h"

namespace foundation::keyed {

using Node = BinaryPropertyList::Node;
using Kind = BinaryPropertyList::Kind;
using Ref = BinaryPropertyList::Ref;
/// No reference, no UID.
constexpr quint64 none = BinaryPropertyList::none;

class Archive {
  public:
    /// Reads either form of property list. Throws Error when the data holds no keyed archive.
    explicit Archive(const Data& data);
    /// An archive of which only the array of its objects is known.
    Archive(BinaryPropertyList list, Ref objects);

    [[nodiscard]] const BinaryPropertyList& list() const { return list_; }
    /// The bytes of the file; every budget is a multiple of it.
    [[nodiscard]] quint64 fileSize() const { return fileSize_; }

    /// The elements of "$objects".
    [[nodiscard]] quint64 objectCount() const { return objects_.count(); }
    /// Invalid when there is no such object.
    [[nodiscard]] Node object(quint64 uid) const {
        if (uid >= objects_.count()) return {};
        return list_.node(list_.element(objects_, uid));
    }
    /// The value under a key of "$top", or none.
    [[nodiscard]] Ref top(std::string_view key) const { return find(top_, key); }

    /// The UID that a value is, or none: a UID object or, as some converters write it, a dictionary
    /// whose only entry is an integer "CF$UID".
    [[nodiscard]] quint64 uid(Ref value) const {
        const quint64 uid = list_.uid(value);
        return uid != none ? uid : disguisedUid(list_.node(value));
    }
    /// The bytes of an ASCII string; null for anything else.
    [[nodiscard]] static QByteArrayView ascii(const Node& node) {
        if (node.kind() != Kind::asciiString) return {};
        return {node.payload(), qsizetype(node.count())};
    }
    /// The first value under a key, compared as bytes, or none. Looks through all pairs.
    [[nodiscard]] Ref find(const Node& dictionary, std::string_view key) const;

  private:
    BinaryPropertyList list_;
    quint64 fileSize_;
    Node top_;
    Node objects_;

    [[nodiscard]] quint64 disguisedUid(const Node& value) const;
};

}  // namespace foundation::keyed
