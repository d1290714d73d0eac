// SPDX-License-Identifier: MIT
#include "foundation/keyed/decoder.h"

#include <utility>

#include "foundation/keyed/errors.h"
#include "foundation/object_memory.h"

namespace foundation::keyed {

Decoder::Decoder(const Archive& archive, std::span<const ClassInfo* const> allowedClasses,
                 const ClassRegistry& registry, Coder& coder)
    : archive_(archive),
      allowedClasses_(allowedClasses),
      registry_(registry),
      coder_(coder),
      budgets_(archive.fileSize()),
      strings_(archive.fileSize(), budgets_.bytes),
      layouts_(archive, budgets_),
      states_(archive.objectCount(), State::unvisited) {
    slots_.reserve(archive.objectCount());
    useLargePages(slots_.data(), slots_.capacity() * sizeof slots_.front());
    slots_.resize(archive.objectCount());
}

Value Decoder::decodeTop(std::string_view key) {
    const Ref value = archive_.top(key);
    if (value == none) throw missingKeyError(key);
    Value result = decodeValue(value, {key});
    const quint64 uid = archive_.uid(value);
    if (!result.isNothing() || uid == none) return result;
    const Node node = archive_.object(uid);
    if (node.kind() != Kind::dictionary) return result;
    // An instance without a result still counts as an object.
    const quint64 record = archive_.uid(Instance(node, layouts_).classRef());
    return std::make_shared<OpaqueObject>(archivedClassName(record));
}

Value Decoder::decodeKey(std::string_view key) {
    if (!current_) return {};
    // Keys that begin with "$" belong to the archive itself; a caller's own has one more.
    const Ref value = key.starts_with('$') ? current_->ref(std::string_view('$' + std::string(key)))
                                           : current_->ref(key);
    return value == none ? Value() : decodeValue(value, {key});
}

QString Decoder::withoutPrefix(const QString& text, qsizetype length) {
    return derivedTexts_.derived(text, nullptr, [&] {
        budgets_.derivedBytes.spend(valueOverhead + 2 * quint64(text.size()));
        return text.sliced(length);
    });
}

/// Plain values are inline or behind a UID.
Value Decoder::decodeValue(Ref value, const Demand& demand) {
    const quint64 uid = archive_.uid(value);
    if (uid != none) return decodeObject(uid, demand);
    const Node node = archive_.list().node(value);
    if (node.kind() == Kind::invalid) throw brokenValueError(demand.key);
    return scalar(node);
}

Value Decoder::decodeObject(quint64 uid, const Demand& demand) {
    if (uid >= slots_.size()) throw brokenValueError(demand.key);
    const State state = states_[uid];
    if (state == State::done) return slots_[uid];
    if (state == State::inProgress) return {};
    if (state == State::broken) throw brokenValueError(demand.key);
    const Node node = archive_.object(uid);
    // Plain values are let through even where their class is not allowed.
    if (node.kind() != Kind::dictionary) return decodePrimitive(node, demand.key);
    const Instance instance(node, layouts_);
    if (state != State::unchecked && state != State::nothing)
        return decodeNewInstance(uid, instance, demand);
    if (!demand.part) {
        classOf(instance, demand);
        if (state == State::unchecked) states_[uid] = State::done;
    }
    return slots_[uid];
}

Value Decoder::decodeNewInstance(quint64 uid, const Instance& instance, const Demand& demand) {
    const ClassInfo& info = classOf(instance, demand);
    if (demand.part && *demand.part != info.kind) {
        if (requiresWhole_) throw brokenValueError(demand.key);
        return {};
    }
    if (depth_ >= depthLimit) throw excessError("levels of nesting");
    budgets_.steps.spend(1);
    const State before = std::exchange(states_[uid], State::inProgress);
    ++depth_;
    const Instance* const enclosing = current_;
    Value value;
    try {
        if (requiresWhole_) requireWhole(instance.dictionary(), demand.key);
        value = build(uid, instance, info);
    } catch (...) {
        --depth_;
        current_ = enclosing;
        states_[uid] = State::broken;
        throw;
    }
    --depth_;
    states_[uid] = value.isNothing() ? State::nothing : before;
    if (auto object = value.object<Object>()) {
        slots_[uid] = std::move(object);
        states_[uid] = demand.part ? State::unchecked : State::done;
    }
    return value;
}

void Decoder::requireWhole(const Node& dictionary, std::string_view key) const {
    const BinaryPropertyList& list = archive_.list();
    for (quint64 i = 0; i < dictionary.count(); ++i) {
        const Kind name = list.node(list.key(dictionary, i)).kind();
        const Kind value = list.node(list.value(dictionary, i)).kind();
        if ((name != Kind::asciiString && name != Kind::utf16String) || value == Kind::invalid)
            throw brokenValueError(key);
    }
}

const ClassInfo* Decoder::knownClass(quint64 uid) {
    const Node node = archive_.object(uid);
    if (node.kind() != Kind::dictionary) return nullptr;
    try {
        const quint64 record = archive_.uid(Instance(node, layouts_).classRef());
        return record == none ? nullptr : classRecord(record).info;
    } catch (const Error&) {
        return nullptr;
    }
}

Value Decoder::decodePrimitive(const Node& node, std::string_view key) {
    switch (node.kind()) {
        case Kind::invalid:
            throw brokenValueError(key);
        case Kind::uid:
        case Kind::array:
        case Kind::set:
            throw missingClassInformationError();
        case Kind::asciiString:
            if (Archive::ascii(node) == "$null") return {};
            return scalar(node);
        default:
            return scalar(node);
    }
}

Value Decoder::build(quint64 uid, const Instance& instance, const ClassInfo& info) {
    const auto elements = [&](std::string_view prefix) {
        return decodeElements(instance, "NS.objects", prefix);
    };
    switch (info.kind) {
        case ClassKind::application:
            return initApplicationObject(uid, instance, info);
        case ClassKind::string:
            return decodeString(instance);
        case ClassKind::number:
            return decodeNumber(instance);
        case ClassKind::data:
            return decodeData(instance);
        case ClassKind::date:
            return decodeDate(instance);
        case ClassKind::url:
            return decodeUrl(instance);
        case ClassKind::array:
            return std::make_shared<Array>(elements("NS.object."));
        case ClassKind::set:
        case ClassKind::orderedSet:
            return std::make_shared<Set>(elements("NS.object."));
        case ClassKind::countedSet:
            return std::make_shared<Set>(elements("NS.object"));
        case ClassKind::dictionary:
            return decodeDictionary(instance);
        case ClassKind::attributedString:
            return decodeAttributedString(instance);
        case ClassKind::textAttachment:
            return decodeTextAttachment(instance);
        case ClassKind::fileWrapper:
            return decodeFileWrapper(instance);
        case ClassKind::none:
        case ClassKind::null:
        case ClassKind::calendar:
        case ClassKind::opaque:
            break;
    }
    return std::make_shared<OpaqueObject>(info.name);
}

Value Decoder::initApplicationObject(quint64 uid, const Instance& instance, const ClassInfo& info) {
    const Instance* const enclosing = std::exchange(current_, &instance);
    const quint32 enclosingUid = std::exchange(currentUid_, quint32(uid));
    Value value = info.initWithCoder(coder_);
    current_ = enclosing;
    currentUid_ = enclosingUid;
    return value;
}

Value Decoder::decodePart(const Instance& instance, const Key& key, ClassKind kind) {
    const Ref value = instance.ref(key);
    return value == none ? Value() : decodeValue(value, {key.name(), kind});
}

std::optional<Instance> Decoder::partInstance(quint64 uid, const Demand& demand) {
    const Node node = archive_.object(uid);
    if (node.kind() != Kind::dictionary) return std::nullopt;
    Instance instance(node, layouts_);
    if (classOf(instance, demand).kind != demand.part) return std::nullopt;
    return instance;
}

}  // namespace foundation::keyed
