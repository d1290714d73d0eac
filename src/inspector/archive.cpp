// SPDX-License-Identifier: MIT
#include "inspector/archive.h"

#include "foundation/plist/xml_property_list_reader.h"
#include "foundation/plist/xml_to_binary.h"
#include "inspector/keyed_archive.h"
#include "inspector/non_keyed_archive.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::BinaryPropertyList;

Opening openArchive(const foundation::Data& data, Offsets offsets) {
    if (data.view().startsWith("bplist0")) {
        auto list = BinaryPropertyList::open(data);
        if (!list) return {nullptr, u"its table of objects is damaged"_s};
        return {std::make_unique<KeyedArchive>(*std::move(list), offsets), {}};
    }
    if (foundation::XmlPropertyListReader::looksLikeXml(data.view())) {
        const auto binary = foundation::binaryFromXml(data);
        auto list = binary ? BinaryPropertyList::open(*binary) : std::nullopt;
        if (!list) return {nullptr, u"its XML is no property list, or damaged"_s};
        return {std::make_unique<KeyedArchive>(*std::move(list), Offsets::unknown), {}};
    }
    auto archive = NonKeyedArchive::open(data);
    if (!archive) return {nullptr, u"it begins like no archive"_s};
    const qint64 end = archive->breakOffset();
    return {std::move(archive),
            end < 0 ? QString() : u"it can't be read on after byte %1"_s.arg(end)};
}

}  // namespace vell::inspector
