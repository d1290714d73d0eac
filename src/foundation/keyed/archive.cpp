// SPDX-License-Identifier: MIT
#include "foundation/keyed/archive.h"

#include "foundation/keyed/budgets.h"
#include "foundation/keyed/errors.h"
#include "foundation/plist/xml_property_list_reader.h"
#include "foundation/plist/xml_to_binary.h"

namespace foundation::keyed {
namespace {

/// The header of a typed stream: a version, a length of eleven, and the signature of either byte
/// order.
bool isNonKeyed(QByteArrayView bytes) {
    if (bytes.size() < 13 || bytes[1] != 11) return false;
    const QByteArrayView signature = bytes.sliced(2, 11);
    return signature == "streamtyped" || signature == "typedstream";
}

BinaryPropertyList openList(const Data& data) {
    if (data.isEmpty()) throw emptyDataError();
    if (isNonKeyed(data.view())) throw nonKeyedArchiveError();
    std::optional<BinaryPropertyList> list;
    if (!XmlPropertyListReader::looksLikeXml(data.view()))
        list = BinaryPropertyList::open(data);
    else if (const auto converted = binaryFromXml(data))
        list = BinaryPropertyList::open(*converted);
    if (!list) throw incomprehensibleArchiveError(data);
    return *std::move(list);
}

}  // namespace

Archive::Archive(const Data& data) : list_(openList(data)), fileSize_(quint64(data.size())) {
    const Node archive = list_.node(list_.topObject());
    const auto value = [&](std::string_view key) { return list_.node(find(archive, key)); };
    const Node version = value("$version");
    top_ = value("$top");
    objects_ = value("$objects");
    // "$archiver" is not looked at: archivers that derive from the platform's write their own name.
    if (version.kind() != Kind::integer || version.value() != 100000 ||
        top_.kind() != Kind::dictionary || objects_.kind() != Kind::array ||
        objects_.count() > elementLimit(fileSize_))
        throw incomprehensibleArchiveError(data);
}

Archive::Archive(BinaryPropertyList list, Ref objects)
    : list_(std::move(list)),
      fileSize_(quint64(list_.data().size())),
      objects_(list_.node(objects)) {
    if (objects_.kind() != Kind::array || objects_.count() > elementLimit(fileSize_))
        throw incomprehensibleArchiveError(list_.data());
}

Ref Archive::find(const Node& dictionary, std::string_view key) const {
    if (dictionary.kind() != Kind::dictionary) return none;
    const QByteArrayView wanted(key.data(), qsizetype(key.size()));
    for (quint64 i = 0; i < dictionary.count(); ++i)
        if (ascii(list_.node(list_.key(dictionary, i))) == wanted)
            return list_.value(dictionary, i);
    return none;
}

quint64 Archive::disguisedUid(const Node& value) const {
    if (value.kind() != Kind::dictionary || value.count() != 1) return none;
    const Node number = list_.node(find(value, "CF$UID"));
    return number.kind() == Kind::integer ? number.value() : none;
}

}  // namespace foundation::keyed
