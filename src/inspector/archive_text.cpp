// SPDX-License-Identifier: MIT
#include "inspector/archive_text.h"

#include <utility>

#include "foundation/plist/xml_property_list_reader.h"
#include "foundation/plist/xml_to_binary.h"
#include "inspector/forms.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::BinaryPropertyList;

QString writeArchive(const foundation::Data& data, const Output& output) {
    TextLines lines(output);
    QString problem;
    const bool isXml = foundation::XmlPropertyListReader::looksLikeXml(data.view());
    if (data.view().startsWith("bplist0")) {
        const auto list = BinaryPropertyList::open(data);
        if (!list) return u"its table of objects is damaged"_s;
        problem = writeKeyed(*list, Offsets::shown, lines);
    } else if (isXml) {
        const auto binary = foundation::binaryFromXml(data);
        const auto list = binary ? BinaryPropertyList::open(*binary) : std::nullopt;
        if (!list) return u"its XML is no property list, or damaged"_s;
        problem = writeKeyed(*list, Offsets::hidden, lines);
    } else {
        problem = writeNonKeyed(data, lines);
    }
    lines.flush();
    return problem;
}

}  // namespace vell::inspector
