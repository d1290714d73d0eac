// SPDX-License-Identifier: MIT
//
// How an instance finds its class: "$class" refers to a record with "$classname", the names of the
// class and its superclasses ("$classes") and, for classes that few platforms have, names to fall
// back on ("$classhints").
#include <algorithm>

#include "foundation/keyed/decoder.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {
namespace {

constexpr Key classNameKey = "$classname";
constexpr Key classesKey = "$classes";
constexpr Key classHintsKey = "$classhints";

}  // namespace

const ClassInfo& Decoder::classOf(const Instance& instance, const Demand& demand) {
    const quint64 uid = archive_.uid(instance.classRef());
    const ClassRecord* record = instance.classRecord(uid);
    if (!record) {
        record = &classRecord(uid);
        instance.setClassRecord(uid, record);
    }
    if (!record->info) throw unknownClassError(archivedClassName(uid), demand.key);
    if (!demand.part) {
        if (!record->isAllowed)
            throw unexpectedClassError(*record->info, demand.key, allowedClasses_);
        if (!record->info->supportsSecureCoding) throw insecureClassError(*record->info);
    }
    return *record->info;
}

const ClassRecord& Decoder::classRecord(quint64 uid) {
    const auto known = classes_.find(uid);
    if (known != classes_.end()) return known->second;
    const Node node = archive_.object(uid);
    if (node.kind() != Kind::dictionary) throw missingClassInformationError();
    return classes_[uid] = readClassRecord(Instance(node, layouts_));
}

ClassRecord Decoder::readClassRecord(const Instance& record) {
    const Node name = record.value(classNameKey);
    if (name.kind() != Kind::asciiString && name.kind() != Kind::utf16String)
        throw missingClassInformationError();
    const QByteArrayView text = Archive::ascii(name);
    const ClassInfo* info = registry_.find({text.data(), std::size_t(text.size())});
    if (!info) info = firstKnownClass(record.value(classesKey));
    if (!info) info = firstKnownClass(record.value(classHintsKey));
    const auto holdsIt = [&](const ClassInfo* allowed) { return info->isSubclassOf(*allowed); };
    return {info, info && std::any_of(allowedClasses_.begin(), allowedClasses_.end(), holdsIt)};
}

/// Roots such as "NSObject" say nothing about an instance and are skipped.
const ClassInfo* Decoder::firstKnownClass(const Node& names) {
    if (names.kind() != Kind::array) return nullptr;
    budgets_.steps.spend(names.count());
    for (quint64 i = 0; i < names.count(); ++i) {
        const Node node = archive_.list().node(archive_.list().element(names, i));
        const QByteArrayView name = Archive::ascii(node);
        const ClassInfo* const info = registry_.find({name.data(), std::size_t(name.size())});
        if (info && info->kind != ClassKind::none) return info;
    }
    return nullptr;
}

QByteArray Decoder::archivedClassName(quint64 uid) {
    const Instance record(archive_.object(uid), layouts_);
    return scalar(record.value(classNameKey)).description().toUtf8();
}

}  // namespace foundation::keyed
