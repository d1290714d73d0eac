// SPDX-License-Identifier: MIT
#include "foundation/keyed/archive.h"

#include "foundation/keyed/errors.h"
#include "foundation/keyed/limits.h"
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

bool isVersion(const std::optional<Node>& node) {
    return node && node->kind == Kind::integer && node->count == 100000;
}

}  // namespace

Archive::Archive(const Data& data) : list_(openList(data)), fileSize_(quint64(data.size())) {
    const Node archive = list_.node(list_.topObject());
    const auto version = find(archive, "$version");
    const auto top = find(archive, "$top");
    const auto objects = find(archive, "$objects");
    // "$archiver" is not looked at: archivers that derive from the platform's write their own name.
    if (!isVersion(version) || !top || top->kind != Kind::dictionary || !objects ||
        objects->kind != Kind::array || objects->count > elementLimit(fileSize_))
        throw incomprehensibleArchiveError(data);
    top_ = *top;
    objects_ = *objects;
}

std::optional<Node> Archive::find(const Node& dictionary, std::string_view key) const {
    if (dictionary.kind != Kind::dictionary) return std::nullopt;
    const QByteArrayView wanted(key.data(), qsizetype(key.size()));
    for (quint64 i = 0; i < dictionary.count; ++i)
        if (ascii(list_.node(list_.key(dictionary, i))) == wanted)
            return list_.node(list_.value(dictionary, i));
    return std::nullopt;
}

std::optional<quint64> Archive::disguisedUid(const Node& dictionary) const {
    const auto number = find(dictionary, "CF$UID");
    if (!number || number->kind != Kind::integer) return std::nullopt;
    return number->count;
}

}  // namespace foundation::keyed
