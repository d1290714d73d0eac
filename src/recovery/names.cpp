// SPDX-License-Identifier: MIT
#include "recovery/names.h"

#include <algorithm>
#include <span>
#include <vector>

#include "transcript/archived_classes.h"

namespace vell::recovery {
namespace {

/// Shorter names are near too many others.
constexpr qsizetype shortestName = 4;

constexpr QByteArrayView keys[] = {
    "$archiver",       "$version",        "$objects",    "$top",        "root",     "CF$UID",
    "$class",          "$classname",      "$classes",    "Sender",      "Subject",  "Time",
    "OriginalMessage", "IsRead",          "MessageText", "ServiceName", "NSString", "NSAttributes",
    "NS.string",       "NSAttributeInfo", "NS.keys",     "NS.objects",  "NS.bytes", "NS.time",
    "NS.data",         "NS.base",         "NS.relative",
};

std::vector<QByteArrayView> classNames() {
    std::vector<QByteArrayView> names{"NSObject", "NSNumber", "NSValue"};
    for (const foundation::ClassInfo* const info : allowedClassList())
        names.emplace_back(info->name);
    return names;
}

QByteArrayView corrected(QByteArrayView name, std::span<const QByteArrayView> known) {
    if (name.size() < shortestName) return name;
    QByteArrayView result = name;
    for (const QByteArrayView candidate : known) {
        if (candidate.size() != name.size()) continue;
        const qsizetype wrong = differences(candidate, name);
        if (wrong == 0) return name;
        if (wrong == 1) result = candidate;
    }
    return result;
}

}  // namespace

qsizetype differences(QByteArrayView a, QByteArrayView b) {
    qsizetype count = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        count += a[i] != b[i] ? 1 : 0;
    return count;
}

QByteArrayView correctedKey(QByteArrayView name) {
    return corrected(name, keys);
}

QByteArrayView correctedClass(QByteArrayView name) {
    static const std::vector<QByteArrayView> names = classNames();
    return corrected(name, names);
}

}  // namespace vell::recovery
