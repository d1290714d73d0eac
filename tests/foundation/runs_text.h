#pragma once
// SPDX-License-Identifier: MIT
//
// The runs of an attributed string as text, to compare them at a glance.

#include <string>

#include "foundation/attributed_string.h"

namespace foundation::test {

/// Lengths of the runs, each with the link of its attributes: "2=http://x/ 1".
inline std::string runsOf(const Value& value) {
    const auto string = value.object<AttributedString>();
    if (!string) return "(none)";
    QString text;
    for (const auto& run : string->runs()) {
        text += QString::number(run.length);
        if (run.attributes) text += u'=' + run.attributes->link.description();
        text += u' ';
    }
    return text.trimmed().toStdString();
}

/// The attachment of the only run; null when there is no such thing.
inline std::shared_ptr<const TextAttachment> attachmentOf(const Value& value) {
    const auto string = value.object<AttributedString>();
    if (!string || string->runs().size() != 1 || !string->runs()[0].attributes) return nullptr;
    return string->runs()[0].attributes->attachment.object<TextAttachment>();
}

}  // namespace foundation::test
