// SPDX-License-Identifier: MIT
//
// How an instance finds its class: "$class" names a record with "$classname", the names of the
// class and its superclasses ("$classes") and, for classes that few platforms have, those to fall
// back on
// ("$classhints").
#include <algorithm>

#include "foundation/keyed/decoder.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {

const ClassInfo& Decoder::classOf(const Instance& instance, std::string_view key, Check check) {
    const auto reference = instance.value("$class");
    const auto uid = reference ? archive_.uid(*reference) : std::nullopt;
    if (!uid || *uid >= states_.size()) throw missingClassInformationError();

    ClassRecord record{};
    if (states_[*uid] == State::classRecord) {
        record = classes_[std::size_t(*slots_[*uid].number()->toInt64())];
    } else {
        record = classRecord(*uid, Instance(archive_.object(*uid), layouts_));
    }
    if (!record.info) {
        const Instance names(archive_.object(*uid), layouts_);
        const QString name = scalar(*names.value("$classname")).description();
        throw unknownClassError(name.toUtf8(), key);
    }
    if (check == Check::allowedClasses) {
        if (!record.isAllowed) throw unexpectedClassError(*record.info, key, allowedClasses_);
        if (!record.info->supportsSecureCoding) throw insecureClassError(*record.info);
    }
    return *record.info;
}

/// Kept in the slot of its UID, which no value of the graph needs, for as long as none is there.
Decoder::ClassRecord Decoder::classRecord(quint64 uid, const Instance& record) {
    const auto name = record.value("$classname");
    if (!name || (name->kind != Kind::asciiString && name->kind != Kind::utf16String))
        throw missingClassInformationError();
    const ClassInfo* const info = resolveClass(record);
    const bool isAllowed =
        info && std::any_of(allowedClasses_.begin(), allowedClasses_.end(),
                            [&](const ClassInfo* allowed) { return info->isSubclassOf(*allowed); });
    if (states_[uid] == State::unvisited) {
        slots_[uid] = Number(qint64(classes_.size()));
        states_[uid] = State::classRecord;
        classes_.push_back({info, isAllowed});
    }
    return {info, isAllowed};
}

const ClassInfo* Decoder::resolveClass(const Instance& record) {
    const QByteArrayView name = Archive::ascii(*record.value("$classname"));
    if (const ClassInfo* exact = registry_.find({name.data(), std::size_t(name.size())}))
        return exact;
    if (const ClassInfo* superclass = firstKnownClass(record.value("$classes"))) return superclass;
    return firstKnownClass(record.value("$classhints"));
}

/// Roots such as "NSObject" say nothing about an instance and are passed over.
const ClassInfo* Decoder::firstKnownClass(const std::optional<Node>& names) {
    if (!names || names->kind != Kind::array) return nullptr;
    limits_.steps.spend(names->count);
    for (quint64 i = 0; i < names->count; ++i) {
        const Node node = archive_.list().node(archive_.list().element(*names, i));
        const QByteArrayView name = Archive::ascii(node);
        const ClassInfo* const info = registry_.find({name.data(), std::size_t(name.size())});
        if (info && info->kind != ClassKind::none) return info;
    }
    return nullptr;
}

}  // namespace foundation::keyed
